#include "ClipRecords.h"
#include "FlightRecords.h"
#include "GalleryEnums.h"
#include "RecordFormats.h"
#include "RenderRecords.h"
#include "StoryRecords.h"
#include "Units.h"

#include <QSet>

#include <gtest/gtest.h>

namespace {
template <typename T>
std::optional<T> decode(const char *json)
{
    return Wire::decode<T>(QByteArray(json));
}
std::string text(const Wire::OrderedJson &j)
{
    return j.dump();
}
} // namespace

TEST(Records, RequiredKeysFailTheWholeRecordOptionalsAndNullsReadAsAbsent)
{
    EXPECT_FALSE(decode<Clip>(R"({"id":"c","in":1,"out":2})"));  // no label
    EXPECT_FALSE(decode<Clip>(R"({"id":"c","in":1,"out":2,"label":null})"));  // null is not a value
    const auto kept = decode<Clip>(R"({"id":"c","in":1,"out":2.5,"label":"","auto":null,"extra":{"x":1}})");
    ASSERT_TRUE(kept);
    EXPECT_FALSE(kept->autoSuggested.has_value());
    EXPECT_EQ(kept->end, 2.5);

    EXPECT_FALSE(decode<ReelShare>(R"({"token":"t","url":"u","projectId":"p","renderId":"r","hearts":0})"));
    // One bad element sinks the list and so the record that holds it.
    EXPECT_FALSE(decode<Manifest>(R"({"flights":[{"id":"a"},{"id":7}]})"));
    EXPECT_FALSE(decode<Flight>(R"({"id":"a","centroid":{"lat":1}})"));
    EXPECT_FALSE(decode<Flight>(R"({"id":"a","duration":"12"})"));  // a present optional of the wrong type
    EXPECT_FALSE(decode<Flight>(R"(["id","a"])"));

    const auto f = decode<Flight>(R"({"id":"a","model":null,"relAlt":{},"video":{"w":1920,"h":1080.0}})");
    ASSERT_TRUE(f);
    EXPECT_FALSE(f->model);
    EXPECT_TRUE(f->relAlt && !f->relAlt->max);
    EXPECT_EQ(f->video->h, 1080);  // a whole number written with a fraction is still an Int
}

TEST(Records, IntegersMustBeWholeAndInRange)
{
    EXPECT_FALSE(decode<SamplesStatus>(R"({"count":1.5,"bytes":1,"restorable":0})"));
    EXPECT_FALSE(decode<SamplesStatus>(R"({"count":4294967296,"bytes":1,"restorable":0})"));
    EXPECT_FALSE(decode<SamplesStatus>(R"({"count":true,"bytes":1,"restorable":0})"));
    const auto s = decode<SamplesStatus>(R"({"count":3,"bytes":9007199254740993,"restorable":0})");
    ASSERT_TRUE(s);
    EXPECT_EQ(s->bytes, 9007199254740993LL);  // 64-bit sizes survive exactly
    EXPECT_FALSE(decode<SamplesStatus>(R"({"count":3,"bytes":18446744073709551615,"restorable":0})"));
}

TEST(Records, EncodingLeavesAbsentOptionalsOutAndUsesWireKeys)
{
    Clip c;
    c.id = "c1";
    c.start = 1.5;
    c.end = 4;
    c.label = "";
    EXPECT_EQ(text(c.toJson()), R"({"id":"c1","in":1.5,"out":4.0,"label":""})");
    c.autoSuggested = false;
    EXPECT_EQ(text(c.toJson()), R"({"id":"c1","in":1.5,"out":4.0,"label":"","auto":false})");

    Project p;
    p.id = "p";
    p.title = "T";
    EXPECT_EQ(text(p.toJson()), R"({"id":"p","title":"T","items":[]})");

    // Every record reads back what it wrote.
    const auto share = decode<ReelShare>(
        R"({"token":"t","url":"u","projectId":"p","renderId":"r","title":"é ✈","created":"2026-05-01T10:00:00","views":3,"hearts":0})");
    ASSERT_TRUE(share);
    EXPECT_EQ(Wire::decode<ReelShare>(QByteArray::fromStdString(text(share->toJson()))), share);
}

TEST(Records, ReelItemUidIsLocalAndFreshEveryTime)
{
    const char *json = R"({"flightId":"F","in":1,"out":2,"label":"x","uid":"ignored"})";
    const auto a = decode<ReelItem>(json);
    const auto b = decode<ReelItem>(json);
    ASSERT_TRUE(a && b);
    EXPECT_NE(a->uid, b->uid);
    EXPECT_NE(*a, *b);  // same clip twice in a story stays two rows
    const ReelItem copy = *a;
    EXPECT_EQ(copy, *a);
    EXPECT_EQ(text(a->toJson()), R"({"flightId":"F","in":1.0,"out":2.0,"label":"x"})");
    EXPECT_NE(ReelItem().uid, ReelItem().uid);
    EXPECT_EQ(QSet<ReelItem>({*a, *b, copy}).size(), 2);
}

TEST(Records, ListIdentities)
{
    auto m = decode<Moment>(R"({"in":12,"out":15.5})");
    ASSERT_TRUE(m);
    EXPECT_EQ(m->identity(), "12.0-15.5");
    EXPECT_EQ(decode<Moment>(R"({"in":12.0,"out":15.5,"score":1})")->identity(), m->identity());
    EXPECT_EQ(decode<Moment>(R"({"id":"m7","in":12,"out":15.5})")->identity(), "m7");

    auto pool = decode<PoolClip>(R"({"flightId":"F","in":0.1,"out":3,"label":"a"})");
    ASSERT_TRUE(pool);
    EXPECT_EQ(pool->identity(), "F--0.1");
    pool->clipId = "c";
    EXPECT_EQ(pool->identity(), "F-c-0.1");

    EXPECT_EQ(RecordFormats::doubleText(0.30000000000000004), "0.30000000000000004");
    EXPECT_EQ(RecordFormats::doubleText(1e-5), "1e-05");
    EXPECT_EQ(RecordFormats::doubleText(-2), "-2.0");
}

TEST(Records, FlightHelpers)
{
    Flight f;
    EXPECT_EQ(f.durationText(), "0:00");
    EXPECT_EQ(f.dateText(), "Unknown date");
    EXPECT_EQ(f.maxAltitudeDisplay(false), 0);
    f.duration = 4500.9;  // 75 minutes: no hours field
    EXPECT_EQ(f.durationText(), "75:00");
    f.relAlt = RelAlt{std::nullopt, 100.0};
    f.maxSpeed = 10;
    EXPECT_EQ(f.maxAltitudeDisplay(false), 328);
    EXPECT_EQ(f.maxAltitudeDisplay(true), 100);
    EXPECT_EQ(f.maxSpeedDisplay(false), 22);
    EXPECT_EQ(f.maxSpeedDisplay(true), 36);
    f.maxSpeed = 1e300;  // nonsense from a server must not overflow
    EXPECT_EQ(f.maxSpeedDisplay(true), std::numeric_limits<int>::max());

    f.date = "2026-05-01T18:30:00Z";  // not the form flights carry
    EXPECT_EQ(f.dateText(), "Unknown date");
    for (const char *bad : {"2026-02-30T10:00:00", "2026-05-01T24:00:00", "2026-05-01 18:30:00", " 2026-05-01T18:30:00",
                            "2026-5-01T18:30:00", "2026-05-01T18:30:0x", "+026-05-01T18:30:00"}) {
        f.date = bad;
        EXPECT_FALSE(f.parsedDate()) << bad;
    }
    f.date = "2026-05-01T18:30:00";
    ASSERT_TRUE(f.parsedDate());
    EXPECT_EQ(f.parsedDate()->time().hour(), 18);  // the flight's local clock, not shifted
    EXPECT_NE(f.dateText(), "Unknown date");
    EXPECT_TRUE(f.dateText().contains("2026"));
}

TEST(Records, StoryAndShareTexts)
{
    ProjectSummary s;
    s.count = 1;
    EXPECT_EQ(s.subtitle(), "1 clip");
    s.count = 2;
    s.updated = "yesterday";
    EXPECT_EQ(s.subtitle(), "2 clips");
    s.updated = "2026-05-01T10:00:00.250Z";  // fractions aren't in the internet form
    EXPECT_EQ(s.subtitle(), "2 clips");
    s.updated = "2026-05-01T12:00:00+00:00";
    EXPECT_EQ(s.subtitle(), "2 clips · " + RecordFormats::monthDay(*RecordFormats::parseISO8601(*s.updated)));
    EXPECT_TRUE(s.subtitle().startsWith("2 clips · May "));

    ReelShare share;
    EXPECT_EQ(share.createdText(), "");
    share.created = "last week";
    EXPECT_EQ(share.createdText(), "last week");
    share.created = "2026-05-03T23:59:59";
    EXPECT_EQ(share.createdText(), "May 3, 2026");
}

TEST(Units, TimeTexts)
{
    EXPECT_EQ(Units::wholeTime(-3), "0:00");
    EXPECT_EQ(Units::wholeTime(59.9), "0:59");
    EXPECT_EQ(Units::tenthsTime(59.9), "0:59.9");
    EXPECT_EQ(Units::wholeTime(3599), "59:59");
    EXPECT_EQ(Units::wholeTime(3600), "60:00");
    EXPECT_EQ(Units::tenthsTime(75.25), "1:15.2");
    EXPECT_EQ(Units::tenthsTime(-1), "0:00.0");
    EXPECT_EQ(Units::wholeTime(std::nan("")), "0:00");
}

TEST(GalleryEnums, RawTextsAreTheCaseNames)
{
    EXPECT_EQ(GalleryEnums::rawText(SortOrder::longestPath), "longestPath");
    EXPECT_EQ(GalleryEnums::fromRawText<SortOrder>("highestAltitude"), SortOrder::highestAltitude);
    EXPECT_EQ(GalleryEnums::fromRawText<GroupMode>("place"), GroupMode::place);
    EXPECT_EQ(GalleryEnums::fromRawText<TimeOfDayFilter>("golden"), TimeOfDayFilter::golden);
    EXPECT_EQ(GalleryEnums::fromRawText<GalleryLayout>("map"), GalleryLayout::map);
    EXPECT_FALSE(GalleryEnums::fromRawText<GroupMode>("Place"));
    EXPECT_FALSE(GalleryEnums::fromRawText<GroupMode>(""));
    EXPECT_FALSE(GalleryEnums::fromRawText<SortOrder>("3"));
}
