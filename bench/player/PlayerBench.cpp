// The playback layer against bare libmpv with the same options, in one run, on 720p proxies
// served by the library server over authorised loopback HTTP:
//   (a) a new player to its file's first decoded frame, (b) exact seeks, p50 and p95 of
//       each, as ratios;
//   (c) frames landed per second in a simulated 4x jog (30 Hz tick, one tolerance seek in
//       flight), for the player's own seek mapping and for bare libmpv's exact and keyframe
//       seeks, on the import's keyframe spacing and on one keyframe a second.
// Measurements of the two alternate, so that a busy machine slows both alike.
//   build/bench/player/bench_player [seeks = 100] [opens = 40]
#include "BareMpv.h"
#include "BenchLibrary.h"
#include "MpvPlayer.h"
#include "MpvProperties.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QRandomGenerator>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace {

struct Spread {
    double p50 = 0, p95 = 0;
};

/// The median of a/b over pairs measured back to back: a busy machine slows both of a pair
/// alike, so this shakes less than the ratio of the two medians.
double pairedRatio(const std::vector<double> &a, const std::vector<double> &b)
{
    std::vector<double> ratios;
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i)
        ratios.push_back(a[i] / b[i]);
    std::sort(ratios.begin(), ratios.end());
    return ratios[ratios.size() / 2];
}

Spread spreadOf(std::vector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    const auto at = [&](double q) { return ms[std::min(ms.size() - 1, std::size_t(q * double(ms.size())))]; };
    return {at(0.5), at(0.95)};
}

/// Starts some work and runs the event loop, without polling, until `finish` is called (or a
/// minute passes); the milliseconds it took, negative when it never finished.
template <typename Start>
double timed(Start start)
{
    QEventLoop loop;
    bool done = false;
    const auto finish = [&] {
        done = true;
        loop.quit();
    };
    QElapsedTimer clock;
    clock.start();
    start(finish);
    if (!done) {
        QTimer::singleShot(60000, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return done ? double(clock.nsecsElapsed()) / 1e6 : -1;
}

double openWithPlayer(MpvPlayer &player, const QUrl &url, const QStringList &headers)
{
    QMetaObject::Connection connection;
    const double ms = timed([&](auto finish) {
        connection = QObject::connect(&player, &VideoPlayer::firstFrameReady, finish);
        player.replaceItem(url, headers);
    });
    QObject::disconnect(connection);
    return ms;
}

double seekWithPlayer(MpvPlayer &player, double seconds)
{
    bool landed = false;
    const double ms = timed([&](auto finish) {
        player.seekExactly(seconds, [&landed, finish](bool finished) {
            landed = finished;
            finish();
        });
    });
    return landed ? ms : -1;
}

JogFigures jogWithPlayer(MpvPlayer &player, const JogPlan &plan, double end)
{
    double target = 0, asked = 0, missSum = 0, worst = 0;
    bool inFlight = false;
    int frames = 0;
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        target = std::clamp(target + plan.speed * plan.tickSeconds, 0.0, end);
        if (inFlight)
            return;
        inFlight = true;
        asked = target;
        player.seek(target, plan.tolerance, plan.tolerance, [&](bool finished) {
            inFlight = false;
            if (!finished)
                return;
            ++frames;
            const double miss = std::abs(player.currentTime() - asked);
            missSum += miss;
            worst = std::max(worst, miss);
        });
    });
    QEventLoop loop;
    QTimer::singleShot(int(plan.wallSeconds * 1000), &loop, &QEventLoop::quit);
    tick.start(int(std::lround(plan.tickSeconds * 1000)));
    loop.exec();
    tick.stop();
    // Let the last seek land so it doesn't spill into the next measurement.
    while (inFlight)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    return {frames / plan.wallSeconds, frames ? missSum / frames : 0, worst};
}

void printJog(const char *what, const JogFigures &jog)
{
    std::printf("  %-44s %6.1f frames/s   miss mean %6.3f s, worst %6.3f s\n", what, jog.framesPerSecond, jog.meanMiss,
                jog.worstMiss);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int seeks = argc > 1 ? std::max(1, std::atoi(argv[1])) : 100;
    const int opens = argc > 2 ? std::max(1, std::atoi(argv[2])) : 40;

    std::printf("making two 720p proxies of %.0f s and serving them...\n", BenchLibrary::seconds);
    std::fflush(stdout);
    BenchLibrary library;
    if (!library.error().isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(library.error()));
        return 1;
    }
    // (a) Opening a flight: a new player, its file, its first decoded frame. Each is gone before
    // the next starts, so that no read-ahead of one competes with the other.
    const auto openFresh = [&](bool withPlayer) {
        QElapsedTimer clock;
        clock.start();
        if (withPlayer) {
            MpvPlayer fresh(MpvPlayer::Output::Headless);
            return openWithPlayer(fresh, library.proxy(), library.headers()) < 0 ? -1.0 : double(clock.nsecsElapsed()) / 1e6;
        }
        BareMpv fresh(library.headers());
        return fresh.open(library.proxy()) < 0 ? -1.0 : double(clock.nsecsElapsed()) / 1e6;
    };
    std::vector<double> playerOpens, bareOpens;
    if (openFresh(true) < 0 || openFresh(false) < 0) {
        std::fprintf(stderr, "the proxy did not open\n");
        return 1;
    }
    for (int i = 0; i < opens; ++i) {
        const bool playerFirst = i % 2 == 0;
        if (playerFirst)
            playerOpens.push_back(openFresh(true));
        bareOpens.push_back(openFresh(false));
        if (!playerFirst)
            playerOpens.push_back(openFresh(true));
    }

    MpvPlayer player(MpvPlayer::Output::Headless);
    BareMpv bare(library.headers());
    openWithPlayer(player, library.proxy(), library.headers());
    bare.open(library.proxy());

    // (b) Exact seeks to the same random times, alternating.
    std::vector<double> playerSeeks, bareSeeks;
    QRandomGenerator rng(20241122);
    for (int i = 0; i < seeks; ++i) {
        const double to = rng.bounded(BenchLibrary::seconds - 1.0);
        const bool playerFirst = i % 2 == 0;
        const double b0 = playerFirst ? 0 : bare.seek(to, MpvProperties::seekExact);
        const double a = seekWithPlayer(player, to);
        const double b = playerFirst ? bare.seek(to, MpvProperties::seekExact) : b0;
        if (a < 0 || b < 0) {
            std::fprintf(stderr, "a seek to %.3f failed (%s)\n", to, a < 0 ? "MpvPlayer" : "bare mpv");
            return 1;
        }
        playerSeeks.push_back(a);
        bareSeeks.push_back(b);
    }

    const Spread po = spreadOf(playerOpens), bo = spreadOf(bareOpens);
    const Spread ps = spreadOf(playerSeeks), bs = spreadOf(bareSeeks);
    std::printf("\nnew player to first decoded frame, %d each (ms):\n", opens);
    std::printf("  MpvPlayer  p50 %8.1f  p95 %8.1f\n", po.p50, po.p95);
    std::printf("  bare mpv   p50 %8.1f  p95 %8.1f\n", bo.p50, bo.p95);
    std::printf("  ratio      p50 %8.2f  p95 %8.2f   median of paired ratios %.2f   (goal <= 1.10)\n", po.p50 / bo.p50,
                po.p95 / bo.p95, pairedRatio(playerOpens, bareOpens));
    std::printf("\nexact seeks, %d each (ms):\n", seeks);
    std::printf("  MpvPlayer  p50 %8.1f  p95 %8.1f\n", ps.p50, ps.p95);
    std::printf("  bare mpv   p50 %8.1f  p95 %8.1f\n", bs.p50, bs.p95);
    std::printf("  ratio      p50 %8.2f  p95 %8.2f   median of paired ratios %.2f   (goal <= 1.10)\n", ps.p50 / bs.p50,
                ps.p95 / bs.p95, pairedRatio(playerSeeks, bareSeeks));
    std::fflush(stdout);

    // (c) The 4x jog, on both keyframe spacings.
    const JogPlan plan;
    for (const auto &[name, url] : {std::pair{"the import's keyframe spacing", library.proxy()},
                                    std::pair{"a keyframe every second", library.shortGopProxy()}}) {
        std::printf("\n4x jog for %.0f s, %s:\n", plan.wallSeconds, name);
        openWithPlayer(player, url, library.headers());
        printJog("MpvPlayer, tolerance 0.05 s", jogWithPlayer(player, plan, BenchLibrary::seconds));
        bare.open(url);
        printJog("bare mpv, absolute+exact", bare.jog(plan, 0, BenchLibrary::seconds, MpvProperties::seekExact));
        bare.open(url);
        printJog("bare mpv, absolute+keyframes", bare.jog(plan, 0, BenchLibrary::seconds, MpvProperties::seekKeyframe));
        std::fflush(stdout);
    }
    return 0;
}
