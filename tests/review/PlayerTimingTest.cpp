// The rules of the player that are about time, on a hand-moved clock with a stand-in player
// whose seeks take 200 ms: the jog engine's one seek in flight, the 30 Hz tick, the observer
// standing aside during a jog, the end of a played clip, the keys' shuttle.
#include "APIClient.h"
#include "PlayerClipRows.h"
#include "JogShuttleEngine.h"
#include "ManualClock.h"
#include "PlayerModel.h"
#include "ClockedPlayer.h"

#include "CoroTest.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace std::chrono_literals;

namespace {
constexpr auto tick = JogShuttleEngine::tickInterval;

struct Jog : ::testing::Test {
    ManualClock clock;
    ClockedPlayer player{clock, 60};
    JogShuttleEngine engine{&clock};
    QList<double> ticks;

    void start(double from, double duration = 60)
    {
        engine.start(&player, from, duration, [this](double t) { ticks.append(t); });
    }
};
} // namespace

TEST_F(Jog, SlowSeeksAtFourTimesAreNeverQueued)
{
    start(10);
    engine.setDisplacement(0.9);
    QList<double> jogTimeAtSeek;
    for (int i = 0; i < 60; ++i) {
        const auto before = player.seeks.size();
        clock.advance(tick);
        if (player.seeks.size() > before)
            jogTimeAtSeek.append(engine.jogTime());
    }
    EXPECT_EQ(ticks.size(), 60);
    EXPECT_EQ(player.mostOutstanding, 1);
    ASSERT_GE(player.seeks.size(), 7);
    for (int i = 0; i < jogTimeAtSeek.size(); ++i) {
        // Each seek goes where the engine's time stands when it is sent, with the jog's tolerance.
        EXPECT_DOUBLE_EQ(player.seeks[i].time, jogTimeAtSeek[i]);
        EXPECT_DOUBLE_EQ(player.seeks[i].before, 0.05);
    }
    for (int i = 1; i < player.seeks.size(); ++i) {
        // Six ticks pass during each 200 ms seek; the next free tick jumps ~0.9 s at once.
        const double jump = player.seeks[i].time - player.seeks[i - 1].time;
        EXPECT_NEAR(jump, 7 * 4.0 / 30, 1e-9);
        EXPECT_GE(player.seeks[i].issuedAt - player.seeks[i - 1].issuedAt, 200ms);
    }
    // By the nominal rate: 60 ticks at 4× are 8 s of flight.
    EXPECT_NEAR(engine.jogTime(), 18, 1e-9);
}

TEST_F(Jog, HoldsAtTheEndsAndRestsInTheDeadZone)
{
    start(59.9);
    engine.setDisplacement(1);
    clock.advance(10 * tick + 500ms);
    EXPECT_DOUBLE_EQ(engine.jogTime(), 60);
    EXPECT_DOUBLE_EQ(player.seeks.last().time, 60) << "keeps seeking at the end";

    start(0.1);
    engine.setDisplacement(-0.5);
    clock.advance(10 * tick);
    EXPECT_DOUBLE_EQ(engine.jogTime(), 0);

    const auto seeksBefore = player.seeks.size();
    start(5);
    engine.setDisplacement(0.05);
    ticks.clear();
    clock.advance(30 * tick);
    EXPECT_TRUE(ticks.isEmpty());
    EXPECT_EQ(player.seeks.size(), seeksBefore) << "no seeks in the dead zone";

    start(0, 0);
    engine.setDisplacement(1);
    clock.advance(5 * tick);
    EXPECT_EQ(ticks, QList<double>({0, 0, 0, 0, 0})) << "a flight without a span";

    engine.stop();
    EXPECT_FALSE(engine.isRunning());
    EXPECT_EQ(engine.speed(), 0);
}

namespace {
struct Model : ::testing::Test {
    ManualClock clock;
    ClockedPlayer *player = new ClockedPlayer(clock, 120);
    std::unique_ptr<PlayerModel> model;

    void SetUp() override
    {
        Flight flight;
        flight.id = QStringLiteral("20240601_184512_0002");
        flight.duration = 120;
        flight.place = QStringLiteral("Cedar Ridge");
        PlayerModel::Setup setup;
        setup.clock = &clock;
        // Nothing listens there: saves fail at once.
        auto client = std::make_shared<APIClient>(QStringLiteral("http://127.0.0.1:9"), QStringLiteral("Bearer t"));
        model = std::make_unique<PlayerModel>(flight, client, player, setup);
    }
    void playTo(double t)
    {
        player->jumpTo(t);
        clock.advance(100ms);
    }
};
} // namespace

TEST_F(Model, OpensTheProxyWithTheClientsHeaderAndFollowsThePlayer)
{
    EXPECT_EQ(player->currentUrl().toString(), "http://127.0.0.1:9/flights/20240601_184512_0002/proxy.mp4");
    EXPECT_EQ(player->headers, QStringList({"Authorization: Bearer t"}));
    EXPECT_EQ(player->observerCount(), 1);
    playTo(12.5);
    EXPECT_DOUBLE_EQ(model->current(), 12.5);
    model->stop();
    EXPECT_EQ(player->observerCount(), 0);
    EXPECT_FALSE(player->isPlaying());
}

TEST_F(Model, TheObserverStandsAsideWhileJogging)
{
    playTo(30);
    model->play();
    model->beginJog();
    EXPECT_TRUE(model->isJogging());
    EXPECT_FALSE(player->isPlaying());
    model->jogTo(0.5);  // 1×
    clock.advance(15 * tick);
    EXPECT_NEAR(model->current(), 30.5, 1e-9) << "the jog's time, every tick";
    // The player lands elsewhere (a seek in flight): the observer doesn't pull `current` back.
    player->jumpTo(3);
    clock.advance(300ms);
    EXPECT_GT(model->current(), 30.5);

    model->endJog();
    EXPECT_FALSE(model->isJogging());
    EXPECT_TRUE(player->isPlaying()) << "letting go plays, even if paused before";
    player->jumpTo(3);
    clock.advance(100ms);
    EXPECT_NEAR(model->current(), 3.05, 0.05) << "the next tick brings back the player's time";
}

TEST_F(Model, SeekingEndsAJogWithoutPlaying)
{
    model->beginJog();
    model->jogTo(-0.7);
    clock.advance(5 * tick);
    model->seek(500);
    EXPECT_FALSE(model->isJogging());
    EXPECT_FALSE(model->jog().isRunning());
    EXPECT_FALSE(player->isPlaying());
    EXPECT_DOUBLE_EQ(player->seeks.last().time, 120) << "clamped to the flight";
    EXPECT_DOUBLE_EQ(player->seeks.last().after, 0.05);
    clock.advance(250ms);
    EXPECT_DOUBLE_EQ(model->current(), 120);
}

TEST_F(Model, APlayedClipStopsAtItsEndButNotDuringAJog)
{
    playTo(100);
    model->setMarkIn();
    playTo(104);
    model->setMarkOut();
    run(model->saveClipAsync(QStringLiteral("Orbit")));
    ASSERT_EQ(model->clips().size(), 1);

    playTo(110);  // past the clip: the observer must not stop it before the seek lands
    model->playClip(model->clips().first().id);
    EXPECT_DOUBLE_EQ(player->seeks.last().time, 100);
    EXPECT_DOUBLE_EQ(player->seeks.last().before, 0) << "exactly to the clip's start";
    clock.advance(200ms);
    EXPECT_TRUE(player->isPlaying());
    clock.advance(3950ms);
    EXPECT_TRUE(player->isPlaying());
    clock.advance(100ms);
    EXPECT_FALSE(player->isPlaying());
    EXPECT_NEAR(player->currentTime(), 104, 1.0 / 30) << "within a frame of the end, not a tick late";
    EXPECT_FALSE(model->segmentEnd());

    model->playClip(model->clips().first().id);
    clock.advance(200ms);
    model->beginJog();
    model->jogTo(0.9);
    clock.advance(2s);
    EXPECT_GT(model->current(), 104);
    EXPECT_TRUE(model->segmentEnd().has_value()) << "the jog ran past the end without it being honoured";
}

TEST_F(Model, MarksComeFromThePlayersTime)
{
    playTo(10);
    model->setMarkIn();
    EXPECT_EQ(model->markIn(), 10);
    EXPECT_EQ(model->title(), "Cedar Ridge");
    model->play();
    clock.advance(2s);
    EXPECT_NEAR(*model->pendingLength(), 2, 0.11) << "grows with the playhead while only in is set";

    // An out mark at the in mark is ignored, silently, and playback goes on.
    player->jumpTo(10);
    model->setMarkOut();
    EXPECT_FALSE(model->markOut());
    EXPECT_TRUE(player->isPlaying());

    model->pause();
    playTo(20);
    model->setMarkOut();
    EXPECT_EQ(model->markOut(), 20);
    EXPECT_FALSE(player->isPlaying()) << "paused to name the clip";
    EXPECT_EQ(model->title(), "New clip · 0:10.0");
    EXPECT_EQ(model->markedPath().size(), 0) << "no track";

    playTo(19.9);
    model->setMarkIn();
    EXPECT_EQ(model->markOut(), 20) << "an in mark before the out mark keeps it";
    playTo(20);
    model->setMarkIn();
    EXPECT_FALSE(model->markOut()) << "an in mark at the out mark clears it";

    model->setClipName(QStringLiteral("half typed"));
    model->clearMarks();
    EXPECT_FALSE(model->markIn());
    EXPECT_TRUE(model->clipName().isEmpty());
    EXPECT_TRUE(player->isPlaying());
}

TEST_F(Model, SavedClipsAreNamedByCountAndMillisecondsAndStayWhenTheSaveFails)
{
    run(model->saveClipAsync(QStringLiteral("nothing marked")));
    EXPECT_TRUE(model->clips().isEmpty());

    const auto mark = [&](double in, double out) {
        model->pause();
        playTo(in);
        model->setMarkIn();
        playTo(out);
        model->setMarkOut();
    };
    mark(12.4567, 12.4667);  // 0.01 s is a clip
    run(model->saveClipAsync(QStringLiteral(" \tRidge pass\t ")));
    ASSERT_EQ(model->clips().size(), 1);
    EXPECT_EQ(model->clips()[0].id, "c1_12456");
    EXPECT_EQ(model->clips()[0].label, "Ridge pass");
    EXPECT_FALSE(model->clips()[0].autoSuggested);
    EXPECT_FALSE(model->markIn());
    EXPECT_TRUE(player->isPlaying());
    EXPECT_EQ(model->toast(), "Save failed — check connection") << "and the clip stays";
    EXPECT_FALSE(model->saving());
    clock.advance(1600ms);
    EXPECT_EQ(model->toast(), "");

    mark(30, 35);
    run(model->saveClipAsync({}));
    run(model->deleteClipAsync(QStringLiteral("c1_12456")));
    mark(30, 40);
    run(model->saveClipAsync({}));
    ASSERT_EQ(model->clips().size(), 2);
    EXPECT_EQ(model->clips()[0].id, "c2_30000");
    EXPECT_EQ(model->clips()[1].id, "c2_30000") << "after a delete the count repeats";
    EXPECT_EQ(model->myClipRows()->rowCount(), 2);

    // Keeping a clip that isn't there sends nothing.
    clock.advance(2s);
    run(model->keepClipAsync(QStringLiteral("nope")));
    EXPECT_EQ(model->toast(), "");
}

TEST_F(Model, KeysShuttleThroughTheSameEngine)
{
    playTo(50);
    model->shuttle(1);
    EXPECT_TRUE(model->isJogging());
    EXPECT_EQ(model->jog().speed(), 1);
    model->shuttle(1);
    EXPECT_EQ(model->jog().speed(), 2);
    model->shuttle(1);
    model->shuttle(1);
    EXPECT_EQ(model->jog().speed(), 4);
    model->shuttle(-1);
    EXPECT_EQ(model->jog().speed(), -1) << "the other way starts again at 1×";
    clock.advance(30 * tick);
    const double shown = model->current();
    model->shuttleStop();
    EXPECT_FALSE(model->isJogging());
    EXPECT_FALSE(player->isPlaying());
    EXPECT_DOUBLE_EQ(player->seeks.last().time, shown) << "stops where the pilot sees it";

    // A drag after the keys starts from the bar's own displacement, not the keys' speed.
    model->beginJog();
    EXPECT_EQ(model->jog().speed(), 0);
    model->endJog();

    // Frames step only while paused.
    model->pause();
    clock.advance(300ms);
    const double at = player->currentTime();
    model->stepFrame(1);
    EXPECT_NEAR(player->seeks.last().time, at + 1.0 / 30, 1e-9);
    EXPECT_DOUBLE_EQ(player->seeks.last().before, 0);
    clock.advance(300ms);
    model->play();
    const auto seeks = player->seeks.size();
    model->stepFrame(-1);
    EXPECT_EQ(player->seeks.size(), seeks);
}
