#include "LightboxTypes.h"

#include "ClipFilmstrip.h"
#include "ClipFilmstripView.h"
#include "ClipLightboxModel.h"
#include "LightboxEngine.h"
#include "TrimSheetModel.h"

#include <QQmlEngine>

void registerLightboxTypes()
{
    const char *uri = "Aeroloom.Review";
    const QString madeInCode = QStringLiteral("made by the program");
    qmlRegisterType<ClipFilmstripView>(uri, 1, 0, "ClipFilmstripView");
    qmlRegisterUncreatableType<ClipLightboxModel>(uri, 1, 0, "ClipLightboxModel", madeInCode);
    qmlRegisterUncreatableType<TrimSheetModel>(uri, 1, 0, "TrimSheetModel", madeInCode);
    qmlRegisterUncreatableType<LightboxEngine>(uri, 1, 0, "LightboxEngine", madeInCode);
    qmlRegisterUncreatableType<ClipFilmstrip>(uri, 1, 0, "ClipFilmstrip", madeInCode);
}
