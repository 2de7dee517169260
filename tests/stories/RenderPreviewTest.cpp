// The video screen's model against the real library: a real video made, followed by polling at
// a test's pace, played by real libmpv and saved; the server's refusals and odd answers given
// by the proxy in front of it.
#include "RenderPlayback.h"
#include "RenderPreviewModel.h"
#include "VideosFixture.h"

#include <QFile>

#include <chrono>

using namespace std::chrono_literals;
using nlohmann::json;

namespace {

class RenderPreview : public VideosFixture
{
protected:
    std::unique_ptr<RenderPreviewModel> model;

    RenderPreviewModel &open(const std::string &story, bool storyVertical = false)
    {
        model = std::make_unique<RenderPreviewModel>();
        model->setStore(store.get());
        model->setStoryId(QString::fromStdString(story));
        model->setStoryVertical(storyVertical);
        model->setPollInterval(20ms);
        return *model;
    }
    void TearDown() override
    {
        model.reset();
        VideosFixture::TearDown();
    }
    /// The status the proxy gives for `story` from now on.
    void answerStatus(const std::string &story, int status, const json &body)
    {
        proxy->answer("GET", "/api/projects/" + story + "/render", status, body.dump());
    }
    int polls(const std::string &story) const { return proxy->count("GET", "/api/projects/" + story + "/render"); }
    VideoPlayer *player() const { return model->playback() ? model->playback()->player() : nullptr; }
};

struct Step {
    bool rendering;
    bool progressDone;
    bool video;
};

TEST_F(RenderPreview, AVideoMadeHereSaysCreatedThenStartsSilently)
{
    const std::string story = storyOfTwo("Made here");
    RenderPreviewModel &m = open(story);
    m.setTrack("none");
    std::vector<Step> steps;
    const auto record = [&] { steps.push_back({m.rendering(), m.progressDone(), m.playerStamp().has_value()}); };
    QObject::connect(&m, &RenderPreviewModel::jobChanged, record);
    QObject::connect(&m, &RenderPreviewModel::statusChanged, record);
    m.appear();
    // The music list comes first, and a new library makes its music for it.
    ASSERT_TRUE(waitUntil([&] { return polls(story) == 1 && m.status(); }, 60000));
    EXPECT_EQ(m.status()->status, "idle");
    EXPECT_FALSE(m.playback());

    m.create();
    ASSERT_TRUE(waitUntil([&] { return m.rendering(); }));
    EXPECT_EQ(m.barText(), "Creating… 0%");
    EXPECT_EQ(m.buttonText(), "Creating");
    // Widescreen is the server's default and goes unsaid.
    EXPECT_EQ(bodies("POST", "/api/projects/" + story + "/render"),
              std::vector<std::string>{R"({"track":"none","beatSync":"bar","hud":false,"xfade":0.2})"});
    ASSERT_TRUE(waitUntil([&] { return m.progressDone() && player() && player()->isPlaying(); }, 60000));

    // "Created." stood before the video came, while the bar still said the job ran.
    const auto done = std::find_if(steps.begin(), steps.end(), [](const Step &s) { return s.progressDone; });
    ASSERT_NE(done, steps.end());
    EXPECT_TRUE(done->rendering);
    EXPECT_FALSE(done->video);
    EXPECT_TRUE(m.playerStamp());
    EXPECT_EQ(m.barText(), "Created.");
    EXPECT_EQ(m.buttonText(), "Create");
    EXPECT_TRUE(player()->isMuted());
    EXPECT_EQ(*m.playerStamp(), QString::fromStdString(finished(story)["rendered"]));
    EXPECT_EQ(m.musicText(), "no music");
    EXPECT_TRUE(m.staleLine().isEmpty());
    EXPECT_TRUE(m.note().isEmpty());

    // Nothing runs any more: the screen stops asking.
    const int asked = polls(story);
    waitUntil([] { return false; }, 200);
    EXPECT_EQ(polls(story), asked);
}

TEST_F(RenderPreview, AnEarlierVideoWaitsAndANewOneReplacesIt)
{
    const std::string story = storyOfTwo("Made before");
    const json first = renderOnServer(story);
    ASSERT_EQ(first["status"], "done");
    RenderPreviewModel &m = open(story);
    m.appear();
    ASSERT_TRUE(waitUntil([&] { return player() != nullptr; }));
    EXPECT_FALSE(m.progressDone());
    EXPECT_TRUE(m.barText().isEmpty());
    ASSERT_TRUE(waitUntil([&] { return player()->duration() > 2.5; }, 20000));
    EXPECT_FALSE(player()->isPlaying());
    EXPECT_FALSE(player()->isMuted());
    const QUrl firstSource = m.playback()->source();
    EXPECT_EQ(firstSource, RenderPlayback::stampedUrl(*client, QString::fromStdString(first["url"]),
                                                      QString::fromStdString(first["rendered"])));

    // The same answer again keeps the player on the file it has.
    run(m.refresh());
    EXPECT_EQ(m.playback()->source(), firstSource);

    // A newer video, even under the same path, is a new file for the same player.
    RenderStatus again = *m.status();
    again.rendered = *again.rendered + QStringLiteral("+1");
    VideoPlayer *same = player();
    m.apply(again);
    EXPECT_EQ(player(), same);
    EXPECT_NE(m.playback()->source(), firstSource);
    EXPECT_EQ(*m.playerStamp(), *again.rendered);
    EXPECT_FALSE(player()->isPlaying());

    // The story changed after the video: the screen says so.
    const json edited = json::array({item("20240512_093000_0001", "c2", 3.0, 4.5, "Low pass")});
    server->client()->Post(("/api/projects/" + story).c_str(), json{{"title", "Made before"}, {"notes", ""}, {"items", edited}}.dump(),
                           "application/json");
    run(m.refresh());
    EXPECT_EQ(m.staleLine(), "⚠ The story changed after this video was made — hit Create for the current cut.");
    EXPECT_TRUE(m.tags().contains("⚠ stale"));
}

TEST_F(RenderPreview, CreateSendsTheSettingsAsTheServerReadsThem)
{
    const std::string story = storyOfTwo("Settings");
    const std::string path = "/api/projects/" + story + "/render";
    // Accepted without making anything: only the body matters here.
    proxy->answer("POST", path, 200, R"({"status":"running","progress":0})");
    answerStatus(story, 200, json{{"status", "idle"}});
    struct Case {
        QString aspect;
        bool storyVertical;
        bool hud;
        QString sync;
        std::string body;
    };
    const Case cases[] = {
        {"landscape", false, true, "beat", R"({"track":"random","beatSync":"beat","hud":true,"xfade":0.2})"},
        // No room for the overlay in a vertical video; the widescreen one of "both" keeps it.
        {"vertical", false, true, "bar", R"({"track":"random","beatSync":"bar","hud":false,"xfade":0.2,"aspect":"vertical"})"},
        {"both", false, true, "bar", R"({"track":"random","beatSync":"bar","hud":true,"xfade":0.2,"aspect":"both"})"},
        // A story of vertical clips is vertical whatever the picker says.
        {"landscape", true, true, "", R"({"track":"random","hud":false,"xfade":0.2,"aspect":"vertical"})"},
    };
    for (const Case &c : cases) {
        proxy->clear();
        RenderPreviewModel &m = open(story, c.storyVertical);
        m.setAspect(c.aspect);
        m.setHud(c.hud);
        m.setSync(c.sync);
        run(m.start());
        EXPECT_EQ(bodies("POST", path), std::vector<std::string>{c.body}) << c.aspect.toStdString();
        EXPECT_TRUE(m.rendering());
        EXPECT_EQ(m.barText(), "Creating… 0%");
    }
}

TEST_F(RenderPreview, RefusalsSayWhyAndLeaveNothingRunning)
{
    const std::string story = storyOfTwo("Refused");
    const std::string path = "/api/projects/" + story + "/render";
    RenderPreviewModel &m = open(story);

    proxy->answer("POST", path, 409, R"({"error":"busy"})");
    run(m.start());
    EXPECT_EQ(m.note(), "Another video is already being made — try again in a minute.");
    EXPECT_FALSE(m.rendering());
    EXPECT_EQ(m.buttonText(), "Create");

    proxy->answer("POST", path, 500, R"({"error":"broken"})");
    run(m.start());
    EXPECT_EQ(m.note(), "Couldn’t start making the video.");

    // The next start clears the line before it asks.
    proxy->forget("POST", path);
    proxy->answer("POST", path, 200, "{}");
    run(m.start());
    EXPECT_TRUE(m.note().isEmpty());
    EXPECT_TRUE(m.rendering());
}

TEST_F(RenderPreview, PollingFollowsTheJobAndShrugsOffFailedPolls)
{
    const std::string story = storyOfTwo("Followed");
    answerStatus(story, 200, json{{"status", "running"}, {"id", "r9"}});
    RenderPreviewModel &m = open(story);
    m.appear();
    // A job started elsewhere is followed too; no progress yet reads 0 %.
    ASSERT_TRUE(waitUntil([&] { return m.rendering(); }));
    EXPECT_EQ(m.barText(), "Creating… 0%");
    answerStatus(story, 200, json{{"status", "running"}, {"progress", 0.428}});
    ASSERT_TRUE(waitUntil([&] { return m.barText() == "Creating… 42%"; }));

    // A dropped answer changes nothing; the next poll tries again.
    answerStatus(story, 502, json::object());
    const int before = polls(story);
    ASSERT_TRUE(waitUntil([&] { return polls(story) >= before + 3; }));
    EXPECT_TRUE(m.rendering());
    EXPECT_EQ(m.barText(), "Creating… 42%");
    EXPECT_FALSE(m.status());

    // A failure without words gets the screen's own; the bar goes, and so does the polling.
    answerStatus(story, 200, json{{"status", "error"}});
    ASSERT_TRUE(waitUntil([&] { return !m.rendering(); }));
    EXPECT_EQ(m.note(), "Could not make the video");
    EXPECT_TRUE(m.barText().isEmpty());
    EXPECT_TRUE(m.errorLine().isEmpty());  // no video to speak of
    const int after = polls(story);
    waitUntil([] { return false; }, 150);
    EXPECT_EQ(polls(story), after);

    // The server's words, with the video that still stands from before.
    m.apply(RenderStatus{"error", "r1", 1.0, "renders/r1.mp4", "2024-05-12T09:30:00", 3.0, false, "ffmpeg gave up", {}, {}});
    EXPECT_EQ(m.note(), "ffmpeg gave up");
    EXPECT_EQ(m.errorLine(), "⚠ Last attempt failed: ffmpeg gave up");
    EXPECT_FALSE(m.playback());  // only a finished video goes on the player
}

TEST_F(RenderPreview, TheDevelopmentAidFinishesAnOldVideoAsIfFresh)
{
    const std::string story = storyOfTwo("Aid");
    ASSERT_EQ(renderOnServer(story)["status"], "done");
    RenderPreviewModel &m = open(story);
    m.setAssumeRendering(true);
    m.appear();
    ASSERT_TRUE(waitUntil([&] { return player() && player()->isPlaying(); }, 20000));
    EXPECT_TRUE(m.progressDone());
    EXPECT_TRUE(player()->isMuted());
}

TEST_F(RenderPreview, SaveFetchesTheVideoForTheDesktop)
{
    const std::string story = storyOfTwo("Saved");
    const json done = renderOnServer(story);
    RenderPreviewModel &m = open(story);
    run(m.refresh());
    ASSERT_TRUE(m.canDownload());
    run(m.save());
    const QString name = QString::fromStdString(story + "_" + done["id"].get<std::string>() + ".mp4");
    ASSERT_EQ(QFileInfo(m.sharedFile()).fileName(), name);
    QFile saved(m.sharedFile());
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(saved.readAll().toStdString(), readFile(server->library() / "renders" / (done["id"].get<std::string>() + ".mp4")));
    EXPECT_FALSE(m.downloading());
    m.shareDismissed();
    EXPECT_TRUE(m.sharedFile().isEmpty());
    QFile::remove(saved.fileName());

    // A video the server no longer has.
    RenderStatus gone = *m.status();
    gone.url = QStringLiteral("renders/gone.mp4");
    m.apply(gone);
    run(m.save());
    EXPECT_EQ(m.note(), "Download failed.");
    EXPECT_TRUE(m.sharedFile().isEmpty());
    EXPECT_FALSE(m.downloading());
}

} // namespace
