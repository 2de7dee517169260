// The words beside a made video, the order of a story's videos, and the address a new video is
// played from: pure rules, no server.
#include "APIClient.h"
#include "RenderHistoryModel.h"
#include "RenderPlayback.h"
#include "RenderTags.h"
#include "TrackNames.h"

#include <gtest/gtest.h>

namespace {

RenderEntry entry(const char *id, std::optional<QString> rendered)
{
    RenderEntry e;
    e.id = QString::fromLatin1(id);
    e.rendered = std::move(rendered);
    return e;
}

} // namespace

TEST(TrackNames, DropNumberAndExtensionAndPutFoldersAfterADot)
{
    EXPECT_EQ(TrackNames::displayName("rock/03.Highway Run.mp3"), "Highway Run  ·  rock");
    EXPECT_EQ(TrackNames::displayName("12.Intro.wav"), "Intro");
    // Only the last extension goes, and only a number with its dot at the very start.
    EXPECT_EQ(TrackNames::displayName("Night.Drive.mp3"), "Night.Drive");
    EXPECT_EQ(TrackNames::displayName("Track 03.Dawn.ogg"), "Track 03.Dawn");
    EXPECT_EQ(TrackNames::displayName("//beds//calm/01.Glide.m4a"), "Glide  ·  beds/calm");
    EXPECT_EQ(TrackNames::displayName("Drone"), "Drone");
}

TEST(RenderTags, KnownFactsInTheirOrderAndOnlyThose)
{
    RenderTags::Facts all;
    all.settings = RenderSettings{QStringLiteral("rock/03.Highway Run.mp3"), QStringLiteral("bar"), 0.2, true};
    all.aspect = QStringLiteral("vertical");
    all.duration = 42.9;
    all.size = 12'999'999;
    all.stale = true;
    EXPECT_EQ(RenderTags::tags(all), (QStringList{"bar-sync", "HUD", "▯ vertical", "0:42", "12MB", "⚠ stale"}));
    EXPECT_EQ(RenderTags::music(all.settings), "Highway Run  ·  rock");

    // Settings without a sync or a HUD, a widescreen video of unknown length and size.
    RenderTags::Facts few;
    few.settings = RenderSettings{QStringLiteral("none"), std::nullopt, 0.2, false};
    few.aspect = QStringLiteral("landscape");
    EXPECT_TRUE(RenderTags::tags(few).isEmpty());
    EXPECT_EQ(RenderTags::music(few.settings), "no music");
    EXPECT_EQ(RenderTags::music(std::nullopt), "no music");
}

TEST(RenderTags, MadeTimeReadsShortOrAsAQuestionMark)
{
    EXPECT_EQ(RenderTags::dateText(QStringLiteral("2024-05-12T21:05:00")), "May 12, 9:05 PM");
    EXPECT_EQ(RenderTags::dateText(QStringLiteral("yesterday")), "?");
    EXPECT_EQ(RenderTags::dateText(std::nullopt), "?");
}

TEST(RenderHistory, NewestFirstWithUndatedVideosLast)
{
    const auto sorted = RenderHistoryModel::newestFirst({entry("old", "2024-05-02T10:00:00"), entry("undated", std::nullopt),
                                                         entry("new", "2024-06-01T08:00:00"),
                                                         entry("sameTime", "2024-05-02T10:00:00")});
    QStringList ids;
    for (const RenderEntry &e : sorted)
        ids.append(e.id);
    EXPECT_EQ(ids, (QStringList{"new", "old", "sameTime", "undated"}));
}

TEST(RenderPlayback, EveryMadeTimeGetsItsOwnAddress)
{
    const APIClient client(QStringLiteral("http://127.0.0.1:9/lib/"), std::nullopt);
    // A zone's "+" and any "&" must not reach the server as a blank or a new parameter.
    EXPECT_EQ(RenderPlayback::stampedUrl(client, "renders/r1.mp4", "2024-05-12T09:30:00+02:00 & b").toString(QUrl::FullyEncoded),
              "http://127.0.0.1:9/lib/renders/r1.mp4?t=2024-05-12T09%3A30%3A00%2B02%3A00%20%26%20b");
    EXPECT_EQ(RenderPlayback::stampedUrl(client, "renders/r1.mp4", "").toString(QUrl::FullyEncoded),
              "http://127.0.0.1:9/lib/renders/r1.mp4?t=");
    EXPECT_NE(RenderPlayback::stampedUrl(client, "renders/r1.mp4", "2024-05-12T09:30:00"),
              RenderPlayback::stampedUrl(client, "renders/r1.mp4", "2024-05-12T09:31:00"));
}
