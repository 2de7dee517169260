// The small rules every request passes through: ids and names from paths, and byte ranges.
#include "ByteRange.h"
#include "FlightCheck.h"
#include "Names.h"

#include <gtest/gtest.h>

#include <vector>

using Kind = ByteRange::Kind;

TEST(ByteRange, ResolvesTheEndsOfAFile)
{
    const auto first = ByteRange::resolve("bytes=0-0", 1000);
    EXPECT_EQ(first.kind, Kind::Partial);
    EXPECT_EQ(first.first, 0u);
    EXPECT_EQ(first.length(), 1u);

    const auto last = ByteRange::resolve("bytes=999-999", 1000);
    EXPECT_EQ(last.kind, Kind::Partial);
    EXPECT_EQ(last.first, 999u);
    EXPECT_EQ(last.length(), 1u);

    // A range that runs past the end is cut at the end, not refused.
    const auto past = ByteRange::resolve("bytes=900-5000", 1000);
    EXPECT_EQ(past.kind, Kind::Partial);
    EXPECT_EQ(past.last, 999u);

    const auto open = ByteRange::resolve("bytes=100-", 1000);
    EXPECT_EQ(open.first, 100u);
    EXPECT_EQ(open.last, 999u);
}

TEST(ByteRange, SuffixRanges)
{
    const auto tail = ByteRange::resolve("bytes=-10", 1000);
    EXPECT_EQ(tail.kind, Kind::Partial);
    EXPECT_EQ(tail.first, 990u);
    EXPECT_EQ(tail.last, 999u);
    // Asking for more than there is gives all of it.
    const auto more = ByteRange::resolve("bytes=-5000", 1000);
    EXPECT_EQ(more.kind, Kind::Partial);
    EXPECT_EQ(more.first, 0u);
    EXPECT_EQ(ByteRange::resolve("bytes=-0", 1000).kind, Kind::Unsatisfiable);
}

TEST(ByteRange, StartAtOrPastTheEndIsUnsatisfiable)
{
    EXPECT_EQ(ByteRange::resolve("bytes=1000-", 1000).kind, Kind::Unsatisfiable);
    EXPECT_EQ(ByteRange::resolve("bytes=5000-6000", 1000).kind, Kind::Unsatisfiable);
    EXPECT_EQ(ByteRange::resolve("bytes=0-", 0).kind, Kind::Unsatisfiable);
}

TEST(ByteRange, MalformedOrMultipleRangesGiveTheWholeFile)
{
    for (const char *header : {"", "bytes=", "bytes=abc-", "bytes=5-2", "items=0-5", "bytes=0-1,5-6", "bytes=--3",
                               "bytes=99999999999999999999999-"}) {
        EXPECT_EQ(ByteRange::resolve(header, 1000).kind, Kind::Whole) << header;
    }
}

TEST(Names, IdsThatCouldLeaveTheLibraryAreRefused)
{
    for (const std::string &id : std::vector<std::string>{"", ".", "..", "../x", "a/b", "a\\b", ".hidden", std::string("a\0b", 3), "a\nb",
                                 std::string(129, 'x')}) {
        EXPECT_FALSE(Names::isSafeId(id)) << id;
    }
    for (const std::string &id : std::vector<std::string>{"20240102_030405_0007", "clip (1)", "copy of DJI_0001", std::string(128, 'x'),
                                 "a..b"}) {
        EXPECT_TRUE(Names::isSafeId(id)) << id;
    }
}

TEST(Names, OnlyTheFourFilesOfAFlightCanBeUploaded)
{
    EXPECT_TRUE(Names::isUploadName("proxy.mp4"));
    EXPECT_TRUE(Names::isUploadName("moments.json"));
    for (const char *name : {"clips.json", "proxy_480.mp4", "PROXY.MP4", "proxy.mp4.part", "../proxy.mp4", "x"})
        EXPECT_FALSE(Names::isUploadName(name)) << name;
}

TEST(Names, ClipThumbnailNamesCarryTheirTime)
{
    EXPECT_EQ(Names::clipThumbTenths("clipthumb_c1_123.jpg"), 123);
    EXPECT_EQ(Names::clipThumbTenths("clipthumb_a_b-c_0.jpg"), 0);
    EXPECT_EQ(Names::clipThumbTenths("clipthumb__12.jpg"), -1);
    EXPECT_EQ(Names::clipThumbTenths("clipthumb_c1_12.png"), -1);
    EXPECT_EQ(Names::clipThumbTenths("clipthumb_../x_12.jpg"), -1);
    EXPECT_TRUE(Names::isServedName("clips.json"));
    EXPECT_FALSE(Names::isServedName("library.db"));
}

TEST(Names, TracksAreSafeSegments)
{
    EXPECT_TRUE(Names::isSafeTrack("ambient/03.Slow Orbit.m4a"));
    EXPECT_FALSE(Names::isSafeTrack("../library.db"));
    EXPECT_FALSE(Names::isSafeTrack("ambient//x.m4a"));
    EXPECT_FALSE(Names::isSafeTrack("/etc/passwd"));
}

TEST(FlightEntry, DateComesFromTheIdOrTheCreationTime)
{
    EXPECT_EQ(FlightCheck::dateFromId("20240102_030405_0007"), "2024-01-02T03:04:05");
    EXPECT_FALSE(FlightCheck::dateFromId("clip"));
    EXPECT_FALSE(FlightCheck::dateFromId("00000000_000000_0000"));

    const auto meta = nlohmann::json::parse(
        R"({"model":"M","duration":1.5,"samples":0,"bounds":null,"centroid":null,"relAlt":null,"maxSpeed":0,
            "pathLength":0,"source":"/card/clip.MOV","created":"2024-03-04T05:06:07.000000Z"})");
    const auto entry = FlightCheck::manifestEntry("clip", meta, false);
    EXPECT_EQ(entry["date"], "2024-03-04T05:06:07");
    // Null parts of the meta are left out of the entry rather than sent as null.
    EXPECT_FALSE(entry.contains("centroid"));
    EXPECT_FALSE(entry.contains("relAlt"));
    EXPECT_FALSE(entry.contains("place"));
    EXPECT_EQ(FlightCheck::sourceStem(meta), "clip");
}
