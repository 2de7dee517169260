#include "ReviewTypes.h"

#include "MpvPlayer.h"
#include "MpvVideoItem.h"

#include <QQmlEngine>

void registerReviewTypes()
{
    const char *uri = "Aeroloom.Review";
    qmlRegisterUncreatableType<VideoPlayer>(uri, 1, 0, "VideoPlayer", QStringLiteral("made by the program"));
    qmlRegisterUncreatableType<MpvPlayer>(uri, 1, 0, "MpvPlayer", QStringLiteral("made by the program"));
    qmlRegisterType<MpvVideoItem>(uri, 1, 0, "MpvVideoItem");
}
