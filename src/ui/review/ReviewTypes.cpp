#include "ReviewTypes.h"

#include "PlayerClipRows.h"
#include "FlightMapView.h"
#include "JogBarView.h"
#include "MpvPlayer.h"
#include "MpvVideoItem.h"
#include "PlayerModel.h"
#include "ReviewSession.h"
#include "TimelinePlot.h"

#include <QQmlEngine>

void registerReviewTypes()
{
    const char *uri = "Aeroloom.Review";
    const QString byProgram = QStringLiteral("made by the program");
    qmlRegisterUncreatableType<VideoPlayer>(uri, 1, 0, "VideoPlayer", byProgram);
    qmlRegisterUncreatableType<MpvPlayer>(uri, 1, 0, "MpvPlayer", byProgram);
    qmlRegisterType<MpvVideoItem>(uri, 1, 0, "MpvVideoItem");
    qmlRegisterType<TimelinePlot>(uri, 1, 0, "TimelinePlot");
    qmlRegisterType<JogBarView>(uri, 1, 0, "JogBarView");
    qmlRegisterType<FlightMapView>(uri, 1, 0, "FlightMapView");
    qmlRegisterUncreatableType<PlayerModel>(uri, 1, 0, "PlayerModel", byProgram);
    qmlRegisterUncreatableType<PlayerClipRows>(uri, 1, 0, "PlayerClipRows", byProgram);
    qmlRegisterUncreatableType<ReviewSession>(uri, 1, 0, "ReviewSession", byProgram);
}
