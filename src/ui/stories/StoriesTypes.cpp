#include "StoriesTypes.h"

#include "AddClipsModel.h"
#include "DesktopHandoff.h"
#include "ReelDetailModel.h"
#include "ReelItemsModel.h"
#include "ReelModel.h"
#include "ReelsHubModel.h"
#include "ReelsHubRows.h"
#include "ReelsStore.h"
#include "RenderHistoryModel.h"
#include "RenderPlayback.h"
#include "RenderPlayerModel.h"
#include "RenderPreviewModel.h"
#include "SegmentPlayer.h"
#include "ShareSheetModel.h"
#include "StoryDevHooks.h"
#include "StoryNavigator.h"
#include "StoryPlayer.h"

#include <QQmlEngine>

void registerStoriesTypes()
{
    const char *uri = "Aeroloom.Stories";
    const QString byProgram = QStringLiteral("made by the program");
    qmlRegisterType<ReelDetailModel>(uri, 1, 0, "ReelDetailModel");
    qmlRegisterType<AddClipsModel>(uri, 1, 0, "AddClipsModel");
    qmlRegisterType<RenderPreviewModel>(uri, 1, 0, "RenderPreviewModel");
    qmlRegisterType<RenderHistoryModel>(uri, 1, 0, "RenderHistoryModel");
    qmlRegisterType<RenderPlayerModel>(uri, 1, 0, "RenderPlayerModel");
    qmlRegisterType<ShareSheetModel>(uri, 1, 0, "ShareSheetModel");
    qmlRegisterUncreatableType<ReelsStore>(uri, 1, 0, "ReelsStore", byProgram);
    qmlRegisterUncreatableType<ReelsHubModel>(uri, 1, 0, "ReelsHubModel", byProgram);
    qmlRegisterUncreatableType<ReelsHubRows>(uri, 1, 0, "ReelsHubRows", byProgram);
    qmlRegisterUncreatableType<ReelModel>(uri, 1, 0, "ReelModel", byProgram);
    qmlRegisterUncreatableType<ReelItemsModel>(uri, 1, 0, "ReelItemsModel", byProgram);
    qmlRegisterUncreatableType<StoryPlayer>(uri, 1, 0, "StoryPlayer", byProgram);
    qmlRegisterUncreatableType<SegmentPlayer>(uri, 1, 0, "SegmentPlayer", byProgram);
    qmlRegisterUncreatableType<StoryNavigator>(uri, 1, 0, "StoryNavigator", byProgram);
    qmlRegisterUncreatableType<StoryDevHooks>(uri, 1, 0, "StoryDevHooks", byProgram);
    qmlRegisterUncreatableType<RenderPlayback>(uri, 1, 0, "RenderPlayback", byProgram);
    qmlRegisterUncreatableType<DesktopHandoff>(uri, 1, 0, "DesktopHandoff", byProgram);
}
