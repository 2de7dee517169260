#include "TheaterTypes.h"

#include "TheaterController.h"
#include "TheaterWebSession.h"

#include <QQmlEngine>

void registerTheaterTypes()
{
    const char *uri = "Aeroloom.Review";
    qmlRegisterType<TheaterWebSession>(uri, 1, 0, "TheaterWebSession");
    qmlRegisterUncreatableType<TheaterController>(uri, 1, 0, "TheaterController", QStringLiteral("made by the program"));
}
