// The player model against a real token-guarded library holding flights made by the import
// pipeline from real-format card files, playing their proxies through libmpv (no window, no
// sound): what load() brings, marks and every clip edit round-tripping through clips.json, a save
// while the library is down, the end of a played clip, stories, and the light proxy.
#include "APIClient.h"
#include "PlayerClipRows.h"
#include "CoroTest.h"
#include "IngestedFlights.h"
#include "MpvPlayer.h"
#include "PlayerModel.h"
#include "ReviewSession.h"
#include "TestServer.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include <cmath>

namespace {

class PlayerEndToEnd : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { flights = new IngestedFlights(); }
    static void TearDownTestSuite()
    {
        delete flights;
        flights = nullptr;
    }

    void startServer(bool lightProxies = false, std::filesystem::path library = {}, int port = 0)
    {
        auto next = std::make_unique<TestServer>([&](ServerConfig &c) {
            c.auth = AuthMode::Token;
            c.lightProxies = lightProxies;
            if (!library.empty())
                c.library = library;
            c.port = port;
        });
        if (token.isEmpty()) {
            token = QString::fromStdString(next->server().createToken("pilot@example.org"));
            client = std::make_shared<APIClient>(QString::fromStdString(next->base()), QStringLiteral("Bearer ") + token);
        }
        servers.push_back(std::move(next));
    }
    TestServer &server() { return *servers.back(); }

    Flight flightRecord(const QString &id)
    {
        const auto manifest = run(client->fetchManifest());
        EXPECT_TRUE(manifest) << manifest.errorText().toStdString();
        for (const Flight &f : manifest.value())
            if (f.id == id)
                return f;
        ADD_FAILURE() << "no flight " << id.toStdString();
        return {};
    }

    void open(const QString &id, PlayerModel::Setup setup = {})
    {
        player = new MpvPlayer(MpvPlayer::Output::Headless);
        model = std::make_unique<PlayerModel>(flightRecord(id), client, player, setup);
    }

    /// The flight's clips.json as the library holds it.
    nlohmann::json serverClips(const QString &id)
    {
        auto http = server().client();
        http->set_bearer_token_auth(token.toStdString());
        return jsonOf(http->Get(("/flights/" + id.toStdString() + "/clips.json").c_str()))["clips"];
    }
    static nlohmann::json withId(const nlohmann::json &clips, const char *id)
    {
        for (const auto &c : clips)
            if (c["id"] == id)
                return c;
        return nullptr;
    }

    /// Moves the player to `t` exactly and waits for it to land there, paused.
    void pauseAt(double t)
    {
        model->pause();
        bool landed = false;
        player->seekExactly(t, [&](bool) { landed = true; });
        ASSERT_TRUE(waitUntil([&] { return landed; }, 20000));
    }

    static inline IngestedFlights *flights = nullptr;
    std::vector<std::unique_ptr<TestServer>> servers;  // the last one is serving
    QString token;
    std::shared_ptr<APIClient> client;
    MpvPlayer *player = nullptr;  // owned by the model
    std::unique_ptr<PlayerModel> model;
    const QString flightId = IngestedFlights::withTelemetry;
};

} // namespace

TEST_F(PlayerEndToEnd, LoadBringsClipsTrackStoriesAndMomentsAndPlays)
{
    startServer();
    ASSERT_TRUE(flights->upload(server(), flightId, QStringLiteral("Bearer ") + token));
    IngestedFlights::setMoments(server(), flightId, IngestedFlights::twoMoments);
    ASSERT_TRUE(run(client->saveClips(flightId, {clipOf("k1", 0.8, 2.0, "Take-off"),
                                                 clipOf("s1", 3.0, 4.0, "Pan left", true)})));
    ASSERT_TRUE(run(client->createProject(QStringLiteral("Alps"))));

    open(flightId);
    EXPECT_TRUE(player->currentUrl().toString().endsWith("/flights/" + flightId + "/proxy.mp4"));
    run(model->loadAsync());
    EXPECT_EQ(model->clips().size(), 2);
    EXPECT_EQ(model->myClipRows()->rowCount(), 1);
    EXPECT_EQ(model->suggestedClipRows()->rowCount(), 1);
    EXPECT_EQ(model->track().size(), IngestedFlights::samples);
    EXPECT_EQ(model->pathCoords().size(), IngestedFlights::samples);
    EXPECT_EQ(model->altPoints().size(), IngestedFlights::samples);
    ASSERT_EQ(model->reels().size(), 1);
    EXPECT_EQ(model->reels().first().title, "Alps");
    EXPECT_EQ(model->moments().size(), 2);
    // The climb lies under the take-off clip; only the turn is left as a moment.
    ASSERT_EQ(model->momentRanges().size(), 1);
    EXPECT_DOUBLE_EQ(model->momentRanges().first().toMap().value("start").toDouble(), 5.0);
    EXPECT_GT(model->maxAltitude(), 0);
    EXPECT_EQ(model->toast(), "");

    // Loaded means playing: the observer moves the playhead and the readouts follow the track.
    ASSERT_TRUE(waitUntil([&] { return model->current() > 1.0; }, 20000));
    EXPECT_TRUE(model->playing());
    EXPECT_TRUE(model->coordNow().isValid());
    EXPECT_TRUE(model->coordinateText().endsWith("E"));
    model->stop();
    const double stoppedAt = model->current();
    // The video is made to play on by itself: the stopped model no longer hears its time.
    player->play();
    ASSERT_TRUE(waitUntil([&] { return player->currentTime() > stoppedAt + 0.4; }, 10000));
    EXPECT_EQ(model->current(), stoppedAt) << "no observer after stop";
}

TEST_F(PlayerEndToEnd, AFlightWithoutTelemetryOrMomentsStillPlays)
{
    startServer();
    ASSERT_TRUE(flights->upload(server(), IngestedFlights::withoutTelemetry, QStringLiteral("Bearer ") + token));
    IngestedFlights::setMoments(server(), IngestedFlights::withoutTelemetry, nullptr);
    open(IngestedFlights::withoutTelemetry);
    run(model->loadAsync());
    EXPECT_TRUE(model->track().isEmpty());
    EXPECT_TRUE(model->moments().isEmpty()) << "moments.json answers 404";
    EXPECT_EQ(model->toast(), "") << "nothing is said about it";
    ASSERT_GT(model->duration(), 7);
    ASSERT_EQ(model->altPoints().size(), 2);
    EXPECT_EQ(model->altPoints()[1], (AltPoint{1, model->duration(), 0}));
    EXPECT_FALSE(model->coordNow().isValid());
    ASSERT_TRUE(waitUntil([&] { return model->current() > 0.5; }, 20000));
}

TEST_F(PlayerEndToEnd, MarksAndClipEditsRoundTripThroughTheLibrary)
{
    startServer();
    ASSERT_TRUE(flights->upload(server(), flightId, QStringLiteral("Bearer ") + token));
    ASSERT_TRUE(run(client->saveClips(flightId, {clipOf("s1", 3.0, 4.0, "Pan left", true),
                                                 clipOf("s2", 6.0, 7.0, "", true)})));
    open(flightId);
    run(model->loadAsync());
    ASSERT_TRUE(waitUntil([&] { return model->current() > 0.2; }, 20000));

    // The marks come from the player's own time, not the last observer tick.
    pauseAt(2.5);
    model->setMarkIn();
    ASSERT_TRUE(model->markIn());
    EXPECT_NEAR(*model->markIn(), 2.5, 1 / IngestedFlights::frameRate);
    model->play();
    ASSERT_TRUE(waitUntil([&] { return player->currentTime() > 3.4; }, 20000));
    model->setMarkOut();
    ASSERT_TRUE(model->hasRange());
    EXPECT_GT(*model->markOut(), 3.4);
    ASSERT_TRUE(waitUntil([&] { return !player->isPlaying(); }, 5000)) << "paused to name the clip";
    EXPECT_FALSE(model->markedPath().isEmpty());

    const QString in = QString::number(qint64(std::trunc(*model->markIn() * 1000)));
    run(model->saveClipAsync(QStringLiteral("  Climb out ")));
    EXPECT_EQ(model->toast(), "Clip saved");
    const QString newId = QStringLiteral("c3_") + in;
    const auto saved = withId(serverClips(flightId), newId.toUtf8().constData());
    ASSERT_FALSE(saved.is_null()) << serverClips(flightId).dump();
    EXPECT_EQ(saved["label"], "Climb out");
    EXPECT_FALSE(saved.contains("auto"));
    EXPECT_NEAR(saved["in"].get<double>(), 2.5, 0.04);

    run(model->keepClipAsync(QStringLiteral("s1")));
    EXPECT_EQ(model->toast(), "Kept — it's your clip now");
    const auto kept = withId(serverClips(flightId), "s1");
    EXPECT_FALSE(kept.contains("auto"));
    EXPECT_EQ(kept["why"], "Smooth pan") << "a kept suggestion keeps its reason";

    run(model->tossClipAsync(QStringLiteral("s2")));
    EXPECT_EQ(model->toast(), "Tossed — won't be suggested again");
    EXPECT_TRUE(withId(serverClips(flightId), "s2").is_null());

    run(model->deleteClipAsync(newId));
    EXPECT_EQ(model->toast(), "Deleted");
    const auto left = serverClips(flightId);
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(left[0]["id"], "s1");
    EXPECT_EQ(model->myClipRows()->rowCount(), 1);
    EXPECT_EQ(model->suggestedClipRows()->rowCount(), 0);
}

TEST_F(PlayerEndToEnd, ASaveWhileTheLibraryIsDownIsKeptAndSentWithTheNext)
{
    startServer();
    ASSERT_TRUE(flights->upload(server(), flightId, QStringLiteral("Bearer ") + token));
    ASSERT_TRUE(run(client->saveClips(flightId, {clipOf("s1", 3.0, 4.0, "Pan left", true)})));
    open(flightId);
    run(model->loadAsync());
    ASSERT_TRUE(waitUntil([&] { return model->current() > 0.2; }, 20000));
    pauseAt(1.0);
    model->setMarkIn();
    pauseAt(2.0);
    model->setMarkOut();

    const int port = server().server().port();
    const auto library = server().library();
    server().server().stop();
    run(model->saveClipAsync(QStringLiteral("Offline")));
    EXPECT_EQ(model->toast(), "Save failed — check connection");
    EXPECT_FALSE(model->saving());
    ASSERT_EQ(model->clips().size(), 2) << "the pilot's clip stays on the screen";

    // The library comes back where it was; the next change sends the whole list, the lost clip too.
    startServer(false, library, port);
    run(model->keepClipAsync(QStringLiteral("s1")));
    EXPECT_EQ(model->toast(), "Kept — it's your clip now");
    const auto clips = serverClips(flightId);
    ASSERT_EQ(clips.size(), 2u) << clips.dump();
    EXPECT_EQ(clips[1]["label"], "Offline");
}

TEST_F(PlayerEndToEnd, APlayedClipPausesOnItsEnd)
{
    startServer();
    ASSERT_TRUE(flights->upload(server(), flightId, QStringLiteral("Bearer ") + token));
    ASSERT_TRUE(run(client->saveClips(flightId, {clipOf("k1", 2.0, 3.5, "Ridge")})));
    open(flightId);
    run(model->loadAsync());
    ASSERT_TRUE(waitUntil([&] { return model->current() > 4.5; }, 20000)) << "start past the clip";

    model->playClip(QStringLiteral("k1"));
    ASSERT_TRUE(waitUntil([&] { return model->segmentEnd().has_value(); }, 10000));
    ASSERT_TRUE(waitUntil([&] { return !model->segmentEnd() && !player->isPlaying(); }, 10000));
    QTest::qWait(200);  // let the pause settle
    EXPECT_NEAR(player->currentTime(), 3.5, 2 / IngestedFlights::frameRate) << "within two frames of the end";
    EXPECT_FALSE(player->isPlaying());
}

TEST_F(PlayerEndToEnd, AddToStoryAppendsAnItemOnTheLibrary)
{
    startServer();
    ASSERT_TRUE(flights->upload(server(), flightId, QStringLiteral("Bearer ") + token));
    ASSERT_TRUE(run(client->saveClips(flightId, {clipOf("k1", 2.0, 3.5, "Ridge")})));
    const auto alps = run(client->createProject(QStringLiteral("Alps")));
    ASSERT_TRUE(alps);
    open(flightId);
    run(model->loadAsync());

    run(model->addToStoryAsync(QStringLiteral("k1"), alps->id));
    EXPECT_EQ(model->toast(), "Added to Alps");
    const auto story = run(client->fetchProject(alps->id));
    ASSERT_TRUE(story);
    ASSERT_EQ(story->items.size(), 1);
    EXPECT_EQ(story->items[0].flightId, flightId);
    EXPECT_EQ(story->items[0].clipId, "k1");
    EXPECT_DOUBLE_EQ(story->items[0].start, 2.0);
    EXPECT_DOUBLE_EQ(story->items[0].end, 3.5);
    EXPECT_EQ(story->items[0].label, "Ridge");
    EXPECT_FALSE(model->saving()) << "adding to a story is no save of the clips";

    ASSERT_TRUE(run(client->deleteProject(alps->id)));
    run(model->addToStoryAsync(QStringLiteral("k1"), alps->id));
    EXPECT_EQ(model->toast(), "Couldn’t add to story");
}

TEST_F(PlayerEndToEnd, TheLightProxyPlaysUnlessHighQualityIsAskedFor)
{
    startServer(true);
    ASSERT_TRUE(flights->upload(server(), flightId, QStringLiteral("Bearer ") + token));
    ASSERT_TRUE(waitUntil([&] { return flightRecord(flightId).p480.value_or(false); }, 120000));

    open(flightId);
    EXPECT_TRUE(player->currentUrl().toString().endsWith("/proxy_480.mp4"));
    QSignalSpy firstFrame(player, &VideoPlayer::firstFrameReady);
    run(model->loadAsync());
    ASSERT_TRUE(firstFrame.count() > 0 || firstFrame.wait(20000));
    ASSERT_TRUE(waitUntil([&] { return model->current() > 0.3; }, 20000));

    PlayerModel::Setup hq;
    hq.hq = true;
    open(flightId, hq);
    EXPECT_TRUE(player->currentUrl().toString().endsWith("/proxy.mp4"));
}

TEST_F(PlayerEndToEnd, TheDevelopmentEntryOpensAFlightOnlyOnceTheManifestNamesIt)
{
    startServer();
    ASSERT_TRUE(flights->upload(server(), flightId, QStringLiteral("Bearer ") + token));
    ReviewSession session(client, [] { return new MpvPlayer(MpvPlayer::Output::Headless); }, [] {
        PlayerModel::Setup setup;
        setup.spikeMarks = true;
        return setup;
    });
    EXPECT_FALSE(run(session.openById(QStringLiteral("20990101_000000_0009"))));
    EXPECT_EQ(session.player(), nullptr);

    session.setDebugFlightId(flightId);
    ASSERT_TRUE(run(session.openById(flightId)));
    PlayerModel *opened = session.player();
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->flightId(), flightId);
    ASSERT_TRUE(waitUntil([&] { return opened->hasRange(); }, 20000));
    EXPECT_NEAR(*opened->markIn(), 0.11 * opened->duration(), 1e-9);
    EXPECT_NEAR(*opened->markOut(), 0.16 * opened->duration(), 1e-9);
    // The 3D theater takes over the flight: the player stops where it was and waits.
    ASSERT_TRUE(waitUntil([&] { return opened->playing(); }, 20000));
    QSignalSpy theater(&session, &ReviewSession::theaterRequested);
    opened->requestTheater();
    EXPECT_EQ(theater.value(0).value(0).toString(), flightId);
    EXPECT_TRUE(waitUntil([&] { return !opened->playing(); }, 5000));

    QPointer<PlayerModel> gone(opened);
    session.close();
    EXPECT_EQ(session.player(), nullptr);
    EXPECT_TRUE(session.debugFlightId().isEmpty()) << "the main view takes over once it is closed";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(gone.isNull()) << "the model goes with its screen";
}
