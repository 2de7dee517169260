// The player's arithmetic: telemetry look-ups and the altitude curve, the timeline's scale and
// ruler, the shuttle's speed table, the clip list's words and the map's redraw rules.
#include "ClipPrompts.h"
#include "FlightMapCoordinator.h"
#include "FlightTrack.h"
#include "JogBar.h"
#include "JogShuttleEngine.h"
#include "TimelineScale.h"
#include "TrackLookup.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {
QList<TrackSample> trackOf(int n, double interval = 0.1)
{
    QList<TrackSample> track;
    for (int i = 0; i < n; ++i)
        track.append(TrackSample{i * interval, 47.0 + i * 1e-5, 8.0 + i * 1e-5, double(i % 120), 0.0, 5.0, 0.0});
    return track;
}

Clip clipOf(double start, double end, QString label = {}, std::optional<bool> suggested = {})
{
    Clip clip;
    clip.id = QStringLiteral("c");
    clip.start = start;
    clip.end = end;
    clip.label = std::move(label);
    clip.autoSuggested = suggested;
    return clip;
}

Moment momentOf(double start, double end)
{
    Moment moment;
    moment.start = start;
    moment.end = end;
    return moment;
}
} // namespace

TEST(FlightTrack, SampleAtIsTheLatestNotAfterWithoutInterpolation)
{
    const auto at = [](const QList<TrackSample> &track, double t) {
        const auto s = TrackLookup::sample(track, t);
        return s ? int(track.indexOf(*s)) : -1;
    };
    EXPECT_EQ(at({}, 3), -1);
    const auto track = trackOf(11, 1.0);  // 0 … 10 s
    EXPECT_EQ(at(track, -5), 0);
    EXPECT_EQ(at(track, 0), 0);
    EXPECT_EQ(at(track, 2.9), 2);
    EXPECT_EQ(at(track, 3), 3);
    EXPECT_EQ(at(track, 9.99), 9);
    EXPECT_EQ(at(track, 10), 10);
    EXPECT_EQ(at(track, 99), 10);
    // Two samples at one time: the later one is the latest not after it.
    QList<TrackSample> doubled = trackOf(3, 1.0);
    doubled.insert(2, doubled[1]);
    doubled[2].yaw = 90;
    EXPECT_EQ(TrackLookup::sample(doubled, 1.5)->yaw, 90);
}

TEST(FlightTrack, AltitudeCurveThinsToAboutThreeHundredAndEndsAtTheEnd)
{
    EXPECT_EQ(FlightTrack::altitudeCurve(trackOf(299), true).size(), 299);
    EXPECT_EQ(FlightTrack::altitudeCurve(trackOf(300), true).size(), 300);
    EXPECT_EQ(FlightTrack::altitudeCurve(trackOf(599), true).size(), 599);
    const auto stepped = FlightTrack::altitudeCurve(trackOf(600), true);
    ASSERT_EQ(stepped.size(), 301);
    EXPECT_DOUBLE_EQ(stepped[1].t, trackOf(600)[2].t);
    EXPECT_DOUBLE_EQ(stepped.last().t, trackOf(600).last().t);
    for (int i = 0; i < stepped.size(); ++i)
        ASSERT_EQ(stepped[i].id, i);

    // Feet unless metric; a missing altitude is 0, not a hole in the curve.
    QList<TrackSample> track = trackOf(3);
    track[1].relAlt.reset();
    track[2].relAlt = 100;
    const auto feet = FlightTrack::altitudeCurve(track, false);
    EXPECT_DOUBLE_EQ(feet[1].alt, 0);
    EXPECT_DOUBLE_EQ(feet[2].alt, 328.084);

    const auto flat = FlightTrack::flatCurve(42);
    ASSERT_EQ(flat.size(), 2);
    EXPECT_EQ(flat[1], (AltPoint{1, 42, 0}));
}

TEST(FlightTrack, PeakDropsMissingAltitudesAndTruncates)
{
    EXPECT_EQ(FlightTrack::maxAltitude({}, true), 0);
    QList<TrackSample> track = trackOf(3);
    for (auto &s : track)
        s.relAlt.reset();
    EXPECT_EQ(FlightTrack::maxAltitude(track, true), 0);
    track[1].relAlt = -4;
    EXPECT_EQ(FlightTrack::maxAltitude(track, true), -4) << "a flight below its take-off point";
    track[2].relAlt = 30.9;
    EXPECT_EQ(FlightTrack::maxAltitude(track, true), 30);
    EXPECT_EQ(FlightTrack::maxAltitude(track, false), 101);  // 101.378 ft
}

TEST(FlightTrack, MarkedPathTakesBothEnds)
{
    const auto track = trackOf(11);
    const auto stretch = FlightTrack::markedPath(track, 0.2, 0.5);
    ASSERT_EQ(stretch.size(), 4);
    EXPECT_EQ(stretch.first(), QPointF(track[2].lon, track[2].lat));
    EXPECT_EQ(stretch.last(), QPointF(track[5].lon, track[5].lat));
}

TEST(FlightTrack, AMomentHidesOnlyUnderMoreThanHalfOfAClip)
{
    // Moment 10…20; a clip of 10 s overlapping it by exactly 5.5 s leaves it visible.
    const Moment moment = momentOf(10, 20);
    EXPECT_FALSE(FlightTrack::covers(clipOf(14.5, 24.5), moment));
    EXPECT_TRUE(FlightTrack::covers(clipOf(14.49, 24.49), moment));
    // A short clip inside a long moment covers it: the shorter of the two sets the limit.
    EXPECT_TRUE(FlightTrack::covers(clipOf(12, 13), moment));
    EXPECT_FALSE(FlightTrack::covers(clipOf(30, 40), moment));

    // Mine and suggested clips alike hide what they cover.
    const QList<Moment> moments{momentOf(0, 4), moment, momentOf(50, 55)};
    const auto visible = FlightTrack::uncoveredMoments(moments, {clipOf(11, 19), clipOf(50, 56, {}, true)});
    ASSERT_EQ(visible.size(), 1);
    EXPECT_DOUBLE_EQ(visible[0].start, 0);
}

TEST(FlightTrack, CoordinateTextNamesHemispheres)
{
    EXPECT_EQ(FlightTrack::formatCoordinate(46.55934, 8.00311), "46.5593°N 8.0031°E");
    EXPECT_EQ(FlightTrack::formatCoordinate(-33.8688, -151.20929), "33.8688°S 151.2093°W");
    EXPECT_EQ(FlightTrack::formatCoordinate(0, 0), "0.0000°N 0.0000°E");
}

TEST(TimelineScale, SpanAndPositions)
{
    EXPECT_DOUBLE_EQ(TimelineScale::span(0, {}), 1);
    EXPECT_DOUBLE_EQ(TimelineScale::span(120, {}), 120);
    // A track whose last sample comes after the duration extends the axis.
    EXPECT_DOUBLE_EQ(TimelineScale::span(120, {{0, 0, 0}, {1, 125.5, 0}}), 125.5);

    const auto frame = TimelineScale::Frame::of(248, 40, 8, 100);
    EXPECT_DOUBLE_EQ(frame.width, 200);
    EXPECT_DOUBLE_EQ(frame.xOf(50), 140);
    EXPECT_DOUBLE_EQ(frame.timeAt(140), 50);
    EXPECT_DOUBLE_EQ(frame.timeAt(0), 0) << "a drag past the left end";
    EXPECT_DOUBLE_EQ(frame.timeAt(1000), 100) << "a drag past the right end";
    EXPECT_DOUBLE_EQ(TimelineScale::Frame::of(10, 40, 8, 100).width, 1) << "too narrow a view";
}

TEST(TimelineScale, ScaleTopRoundsUpToHundreds)
{
    EXPECT_DOUBLE_EQ(TimelineScale::scaleTop({}), 100);
    EXPECT_DOUBLE_EQ(TimelineScale::scaleTop({{0, 0, 99}}), 100);
    EXPECT_DOUBLE_EQ(TimelineScale::scaleTop({{0, 0, 100}}), 100);
    EXPECT_DOUBLE_EQ(TimelineScale::scaleTop({{0, 0, 101}}), 200);
    EXPECT_DOUBLE_EQ(TimelineScale::scaleTop({{0, 0, -20}}), 100);
}

TEST(TimelineScale, MarkerAltitudeInterpolatesBetweenPoints)
{
    const QList<AltPoint> points{{0, 0, 0}, {1, 10, 100}, {2, 20, 50}};
    EXPECT_DOUBLE_EQ(TimelineScale::altitudeAt({}, 5), 0);
    EXPECT_DOUBLE_EQ(TimelineScale::altitudeAt(points, -1), 0);
    EXPECT_DOUBLE_EQ(TimelineScale::altitudeAt(points, 5), 50);
    EXPECT_DOUBLE_EQ(TimelineScale::altitudeAt(points, 15), 75);
    EXPECT_DOUBLE_EQ(TimelineScale::altitudeAt(points, 30), 50);
    // Two points at one time don't divide by zero.
    const QList<AltPoint> step{{0, 0, 0}, {1, 10, 100}, {2, 10, 300}, {3, 20, 300}};
    EXPECT_TRUE(std::isfinite(TimelineScale::altitudeAt(step, 10)));
}

TEST(TimelineScale, RulerLabelsStayClear)
{
    const auto frame = TimelineScale::Frame::of(640, 40, 0, 600);  // 1 s per point
    // Playhead label right of it; near the right edge, left of it.
    auto labels = TimelineScale::rulerLabels(frame, 100, std::nullopt, std::nullopt);
    ASSERT_EQ(labels.size(), 1);
    EXPECT_DOUBLE_EQ(labels[0].centerX, 140 + 38);
    EXPECT_EQ(labels[0].text, "1:40");
    labels = TimelineScale::rulerLabels(frame, 580, std::nullopt, std::nullopt);
    EXPECT_DOUBLE_EQ(labels[0].centerX, 620 - 38);

    // Marks' labels sit left of them, right near the left edge.
    labels = TimelineScale::rulerLabels(frame, 400, 10, 300);
    ASSERT_EQ(labels.size(), 3);
    EXPECT_DOUBLE_EQ(labels[1].centerX, 50 + 38);
    EXPECT_DOUBLE_EQ(labels[2].centerX, 340 - 38);
    for (const auto &label : labels)
        EXPECT_EQ(label.row, 0);

    // A playhead just before the out mark: the out label drops to the second row.
    labels = TimelineScale::rulerLabels(frame, 290, 10, 300);
    EXPECT_EQ(labels[0].row, 0);
    EXPECT_EQ(labels[1].row, 0);
    EXPECT_EQ(labels[2].row, 1);
    labels = TimelineScale::rulerLabels(frame, 150, 10, 300);
    EXPECT_EQ(labels[2].row, 0) << "far enough apart to share the row";
}

TEST(TimelineScale, PendingBandFollowsThePlayheadWithOnlyAnInMark)
{
    EXPECT_FALSE(TimelineScale::pendingBand(std::nullopt, std::nullopt, 5));
    EXPECT_EQ(TimelineScale::pendingBand(10, std::nullopt, 14), (std::pair<double, double>{10, 14}));
    EXPECT_EQ(TimelineScale::pendingBand(10, std::nullopt, 8), (std::pair<double, double>{10, 10}));
    EXPECT_EQ(TimelineScale::pendingBand(10, 12, 30), (std::pair<double, double>{10, 12}));
}

TEST(JogShuttle, SpeedTableAndItsLabels)
{
    EXPECT_EQ(JogShuttleEngine::speedFor(0.0999), 0);
    EXPECT_EQ(JogShuttleEngine::speedFor(0.1), 0.5);
    EXPECT_EQ(JogShuttleEngine::speedFor(0.3499), 0.5);
    EXPECT_EQ(JogShuttleEngine::speedFor(-0.35), -1);
    EXPECT_EQ(JogShuttleEngine::speedFor(0.6), 2);
    EXPECT_EQ(JogShuttleEngine::speedFor(0.85), 4);
    EXPECT_EQ(JogShuttleEngine::speedFor(-1), -4);
    EXPECT_EQ(JogShuttleEngine::labelFor(0.05), "");
    EXPECT_EQ(JogShuttleEngine::labelFor(-0.2), "½×");
    EXPECT_EQ(JogShuttleEngine::labelFor(0.9), "4×");
    // The keys' shuttle lands on the step it asks for and climbs the table.
    for (double speed : {0.5, 1.0, 2.0, 4.0, -0.5, -1.0, -2.0, -4.0})
        EXPECT_EQ(JogShuttleEngine::speedFor(JogShuttleEngine::displacementFor(speed)), speed);
    EXPECT_EQ(JogShuttleEngine::nextSpeed(1), 2);
    EXPECT_EQ(JogShuttleEngine::nextSpeed(-2), -4);
    EXPECT_EQ(JogShuttleEngine::nextSpeed(4), 4);
}

TEST(JogShuttle, BarReadsTheDrag)
{
    // A bar 30 points high has a travel of 1: one point reaches full speed.
    EXPECT_DOUBLE_EQ(JogBar::travel(30), 1);
    EXPECT_DOUBLE_EQ(JogBar::displacement(1, 30), 1);
    EXPECT_DOUBLE_EQ(JogBar::travel(232), 100);
    EXPECT_DOUBLE_EQ(JogBar::displacement(-50, 232), -0.5);
    EXPECT_DOUBLE_EQ(JogBar::displacement(400, 232), 1);
    EXPECT_EQ(JogBar::hint(true, 0.1), "Scrubbing");
    EXPECT_EQ(JogBar::hint(true, 0.05), "Drag");
    EXPECT_EQ(JogBar::hint(false, 0.9), "Drag");
    EXPECT_EQ(JogBar::knobText(true, 0.9), "4× ▼");
    EXPECT_EQ(JogBar::knobText(true, -0.4), "1× ▲");
    EXPECT_EQ(JogBar::knobText(true, 0.05), "▼");
    EXPECT_EQ(JogBar::knobText(false, 0.9), "");
}

TEST(ClipPrompts, ConfirmationsInTheProgramsWords)
{
    const auto named = ClipPrompts::deleteClip(clipOf(1, 2, "Ridge pass"));
    EXPECT_EQ(named.title, "Delete this clip?");
    EXPECT_EQ(named.message, "“Ridge pass” · this can’t be undone.");
    EXPECT_EQ(named.confirm, "Delete clip");
    EXPECT_EQ(named.cancel, "Cancel");
    EXPECT_EQ(ClipPrompts::deleteClip(clipOf(1, 2)).message, "This can’t be undone.");

    const auto toss = ClipPrompts::tossSuggestion(clipOf(1, 2, "Orbit", true));
    EXPECT_EQ(toss.title, "Toss this suggestion?");
    EXPECT_EQ(toss.message, "“Orbit” won’t be suggested again.");
    EXPECT_EQ(toss.confirm, "Toss");
    EXPECT_EQ(ClipPrompts::tossSuggestion(clipOf(1, 2, {}, true)).message, "“Untitled” won’t be suggested again.");
}

TEST(ClipPrompts, MenusOfSuggestionsAndOwnClips)
{
    const auto texts = [](const QList<ClipPrompts::MenuEntry> &entries) {
        QStringList out;
        for (const auto &e : entries)
            out << (e.submenu ? QStringLiteral("> ") : QString()) + e.text;
        return out;
    };
    EXPECT_EQ(texts(ClipPrompts::menu(clipOf(1, 2, {}, true), {})),
              QStringList({"Play clip", "Keep — make it your clip", "Toss suggestion"}));
    // auto false or absent: the pilot's own.
    EXPECT_EQ(texts(ClipPrompts::menu(clipOf(1, 2, {}, false), {})),
              QStringList({"Play clip", "> No stories yet", "Delete clip"}));
    ProjectSummary a{"p1", "Alps", 2, {}, {}, {}};
    ProjectSummary b{"p2", "Coast", 0, {}, {}, {}};
    const auto own = ClipPrompts::menu(clipOf(1, 2), {a, b});
    EXPECT_EQ(texts(own), QStringList({"Play clip", "> Alps", "> Coast", "Delete clip"}));
    EXPECT_EQ(own[2].reelId, "p2");
    EXPECT_EQ(own[2].action, ClipPrompts::Action::AddToStory);
}

namespace {
FlightMapCoordinator::Inputs at(double heading, std::optional<QPointF> coord = QPointF(8, 47))
{
    FlightMapCoordinator::Inputs in;
    in.coord = coord;
    in.heading = heading;
    in.darkBasemap = true;
    in.trackColor = 0xff46b8ff;
    in.puckColor = 0xffffa04d;
    return in;
}
} // namespace

TEST(FlightMap, PuckTurnsInTwoDegreeSteps)
{
    EXPECT_EQ(FlightMapCoordinator::headingBucket(1), 1);
    EXPECT_EQ(FlightMapCoordinator::headingBucket(-1), -1);
    EXPECT_EQ(FlightMapCoordinator::headingBucket(0.99), 0);
    EXPECT_EQ(FlightMapCoordinator::headingBucket(3), 2);
    EXPECT_EQ(FlightMapCoordinator::headingBucket(-3), -2);
    EXPECT_EQ(FlightMapCoordinator::headingBucket(NAN), 0);

    FlightMapCoordinator map;
    map.create(at(0));
    auto changes = map.update(at(1));
    EXPECT_TRUE(changes.puckImage);
    EXPECT_DOUBLE_EQ(changes.puckRotation, 2);
    EXPECT_DOUBLE_EQ(map.update(at(-1)).puckRotation, -2);
    // Playback at ten redraws a second: moving along a steady heading redraws no image.
    int images = 0;
    for (int i = 1; i <= 100; ++i) {
        auto in = at(41 + i * 0.009, QPointF(8 + i * 1e-5, 47));
        changes = map.update(in);
        EXPECT_TRUE(changes.marker);
        images += changes.puckImage;
    }
    EXPECT_EQ(images, 1);
}

TEST(FlightMap, RedrawsOnlyWhatChanged)
{
    FlightMapCoordinator map;
    const auto made = map.create(at(0));
    EXPECT_TRUE(made.tiles && made.track && made.marker);
    EXPECT_FALSE(map.update(at(0)).any());

    // The palette flips mid-playback: new tiles, nothing else.
    auto light = at(0);
    light.darkBasemap = false;
    auto changes = map.update(light);
    EXPECT_TRUE(changes.tiles);
    EXPECT_FALSE(changes.track || changes.highlight || changes.marker || changes.puckImage);

    // New colours redraw the path and the puck, drawn north first and turned again.
    auto recoloured = at(20);
    recoloured.darkBasemap = false;
    map.update(recoloured);
    recoloured.trackColor = 0xff0b72c4;
    changes = map.update(recoloured);
    EXPECT_TRUE(changes.track && changes.puckImage);
    EXPECT_DOUBLE_EQ(changes.puckRotation, 20);

    // The marked stretch is compared by its count alone.
    recoloured.highlightCount = 12;
    EXPECT_TRUE(map.update(recoloured).highlight);
    EXPECT_FALSE(map.update(recoloured).highlight) << "same count, maybe other points: not redrawn";
    recoloured.highlightCount = 13;
    EXPECT_TRUE(map.update(recoloured).highlight);
}

TEST(FlightMap, RecentreWithoutAPositionIsUsedUp)
{
    FlightMapCoordinator map;
    map.create(at(0, std::nullopt));
    auto lost = at(0, std::nullopt);
    lost.recenterToken = 1;
    EXPECT_FALSE(map.update(lost).recenter);
    auto found = at(0);
    found.recenterToken = 1;
    EXPECT_FALSE(map.update(found).recenter) << "the press came before there was a position";
    found.recenterToken = 2;
    EXPECT_TRUE(map.update(found).recenter);

    EXPECT_EQ(FlightMapCoordinator::scaleLabel(false), "500 ft");
    EXPECT_EQ(FlightMapCoordinator::scaleLabel(true), "150 m");
}
