// A story's made videos and the player of one, against the real library and its real videos.
#include "RenderHistoryModel.h"
#include "RenderPlayback.h"
#include "RenderPlayerModel.h"
#include "VideosFixture.h"

#include <QAbstractItemModelTester>
#include <QFileInfo>

using nlohmann::json;

namespace {

class RenderHistory : public VideosFixture
{
protected:
    static inline std::string story, other;
    static inline json older, newer, elsewhere;

    // Three videos made once for the suite: two of one story (one with a link), one of another.
    void SetUp() override
    {
        VideosFixture::SetUp();
        if (!story.empty())
            return;
        story = storyOfTwo("History");
        other = storyOfTwo("Elsewhere");
        older = renderOnServer(story);
        newer = renderOnServer(story, {{"track", "none"}, {"hud", false}, {"xfade", 0.2}, {"aspect", "vertical"}});
        elsewhere = renderOnServer(other);
        shareOnServer(story, older["id"]);
        shareOnServer(other, elsewhere["id"]);
    }

    std::unique_ptr<RenderHistoryModel> history()
    {
        auto model = std::make_unique<RenderHistoryModel>();
        model->setStore(store.get());
        model->setStoryId(QString::fromStdString(story));
        return model;
    }
    static QString id(const json &status) { return QString::fromStdString(status["id"].get<std::string>()); }
};

TEST_F(RenderHistory, ListsTheStorysVideosNewestFirstWithTheirLinks)
{
    auto model = history();
    QAbstractItemModelTester tester(model.get(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    run(model->fetch());
    ASSERT_EQ(model->rowCount(), 2);
    EXPECT_EQ(model->countText(), "2 on server");
    EXPECT_EQ(model->data(model->index(0), RenderHistoryModel::RenderIdRole).toString(), id(newer));
    EXPECT_EQ(model->data(model->index(1), RenderHistoryModel::RenderIdRole).toString(), id(older));
    EXPECT_FALSE(model->data(model->index(0), RenderHistoryModel::SharedRole).toBool());
    EXPECT_TRUE(model->data(model->index(1), RenderHistoryModel::SharedRole).toBool());
    EXPECT_TRUE(model->data(model->index(0), RenderHistoryModel::VerticalRole).toBool());
    EXPECT_TRUE(model->data(model->index(0), RenderHistoryModel::TagsRole).toStringList().contains("▯ vertical"));
    // Only this story's links are kept.
    EXPECT_EQ(model->shares().size(), 1);
    EXPECT_TRUE(model->shares().contains(id(older)));

    // The poster beside each video is an image the library serves.
    const QUrl poster = model->data(model->index(0), RenderHistoryModel::PosterRole).toUrl();
    const auto still = server->client()->Get(poster.path().toStdString().c_str());
    ASSERT_TRUE(still);
    EXPECT_EQ(still->status, 200);
    EXPECT_EQ(still->get_header_value("Content-Type"), "image/jpeg");

    // What the share sheet reports comes back in the list.
    model->setShare(id(newer), model->shareFor(id(older)));
    EXPECT_TRUE(model->data(model->index(0), RenderHistoryModel::SharedRole).toBool());
    model->setShare(id(newer), QVariant());
    EXPECT_FALSE(model->data(model->index(0), RenderHistoryModel::SharedRole).toBool());
}

TEST_F(RenderHistory, ReloadsWhenTheVideoSheetClosesAndKeepsItsListOnFailure)
{
    auto model = history();
    run(model->fetch());
    const std::string path = "/api/projects/" + story + "/renders";
    const int asked = proxy->count("GET", path);
    model->setRefreshKey(1);
    ASSERT_TRUE(waitUntil([&] { return proxy->count("GET", path) == asked + 1; }));

    proxy->answer("GET", path, 500, "{}");
    run(model->fetch());
    EXPECT_EQ(model->rowCount(), 2);

    // A refused delete leaves the video listed.
    proxy->forget("GET", path);
    proxy->answer("DELETE", path + "/" + older["id"].get<std::string>(), 500, "{}");
    run(model->deleteVideo(id(older)));
    EXPECT_EQ(model->rowCount(), 2);
}

TEST_F(RenderHistory, SavesUnderTheStoryAndVideoNames)
{
    auto model = history();
    run(model->fetch());
    run(model->saveVideo(id(newer)));
    EXPECT_EQ(QFileInfo(model->sharedFile()).fileName(), QString::fromStdString(story) + "_" + id(newer) + ".mp4");
    EXPECT_EQ(std::size_t(QFileInfo(model->sharedFile()).size()),
              readFile(server->library() / "renders" / (newer["id"].get<std::string>() + ".mp4")).size());
    QFile::remove(model->sharedFile());

    proxy->answer("GET", "/" + older["url"].get<std::string>(), 404, "{}");
    run(model->saveVideo(id(older)));
    EXPECT_EQ(store->toast(), "Download failed.");
}

TEST_F(RenderHistory, ThePlayerFindsAVideoByItsIdAndPlaysIt)
{
    // From the hub: the store's list of all videos says what the video is.
    run(store->reload());
    proxy->clear();
    RenderPlayerModel fromHub;
    fromHub.setStore(store.get());
    fromHub.setStoryId(QString::fromStdString(story));
    fromHub.setRenderId(id(newer));
    run(fromHub.open());
    EXPECT_EQ(proxy->count("GET", "/api/projects/" + story + "/renders"), 0);
    ASSERT_TRUE(fromHub.playback());
    EXPECT_TRUE(fromHub.vertical());
    EXPECT_EQ(fromHub.storyTitle(), "History");
    EXPECT_EQ(fromHub.playback()->source(), RenderPlayback::stampedUrl(*client, QString::fromStdString(newer["url"]),
                                                                      QString::fromStdString(newer["rendered"])));
    VideoPlayer *player = fromHub.playback()->player();
    ASSERT_TRUE(waitUntil([&] { return player->isPlaying() && player->currentTime() > 0.3; }, 20000));

    // A video the hub doesn't know yet: the story's own list is asked.
    ReelsStore unloaded(client);
    unloaded.setPlayerFactory([] { return new MpvPlayer(MpvPlayer::Output::Headless); });
    RenderPlayerModel fresh;
    fresh.setStore(&unloaded);
    fresh.setStoryId(QString::fromStdString(story));
    fresh.setRenderId(id(older));
    run(fresh.open());
    EXPECT_EQ(proxy->count("GET", "/api/projects/" + story + "/renders"), 1);
    EXPECT_FALSE(fresh.missing());
    EXPECT_FALSE(fresh.vertical());

    RenderPlayerModel gone;
    gone.setStore(store.get());
    gone.setStoryId(QString::fromStdString(story));
    gone.setRenderId("no-such-video");
    run(gone.open());
    EXPECT_TRUE(gone.missing());
    EXPECT_FALSE(gone.playback());
}

TEST_F(RenderHistory, DeletingAVideoTakesItOffTheList)
{
    const json extra = renderOnServer(story);
    auto model = history();
    run(model->fetch());
    ASSERT_EQ(model->rowCount(), 3);
    run(model->deleteVideo(id(extra)));
    EXPECT_EQ(model->rowCount(), 2);
    EXPECT_EQ(server->client()->Get(("/" + extra["url"].get<std::string>()).c_str())->status, 404);
}

} // namespace
