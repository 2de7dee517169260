#include "CuttingTypes.h"

#include "CutFlowFactory.h"

#include <CutFlowModel.h>
#include <CutRowsModel.h>

#include <QQmlEngine>

void registerCuttingTypes(CutFlowFactory &factory)
{
    const char *uri = "Aeroloom.Cutting";
    qmlRegisterUncreatableType<CutFlowModel>(uri, 1, 0, "CutFlowModel", QStringLiteral("made by CutFlows"));
    qmlRegisterUncreatableType<CutRowsModel>(uri, 1, 0, "CutRowsModel", QStringLiteral("made by the program"));
    qmlRegisterSingletonInstance(uri, 1, 0, "CutFlows", &factory);
}
