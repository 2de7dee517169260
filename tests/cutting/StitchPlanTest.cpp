// The story stitch's arithmetic and texts, and the small readings of ffprobe's answers that
// decide sizes and bit rates: all of it checked without running a tool.
#include <SourceBitrate.h>
#include <StitchPlan.h>

#include <gtest/gtest.h>

using StitchPlan::Size;

TEST(StitchPlan, TheGraphOfTwoClipsWithABedReadsExactly)
{
    StitchPlan::Graph g;
    g.clips = 2;
    g.size = StitchPlan::outputSize(FlightVideo{1920, 1080, false}, false);
    g.rate = QStringLiteral("30");
    g.timing = StitchPlan::timing({10, 5}, 0.5, 0.75);
    g.fade = 0.75;
    g.bed = true;
    EXPECT_EQ(StitchPlan::filterGraph(g).toStdString(),
              "[0:v]scale=1920:1080:force_original_aspect_ratio=decrease,pad=1920:1080:(ow-iw)/2:(oh-ih)/2,fps=30,"
              "settb=AVTB,setsar=1,format=yuv420p[v0];[1:v]scale=1920:1080:force_original_aspect_ratio=decrease,"
              "pad=1920:1080:(ow-iw)/2:(oh-ih)/2,fps=30,settb=AVTB,setsar=1,format=yuv420p[v1];[v0][v1]xfade="
              "transition=fade:duration=0.500:offset=9.500[x1];[x1]fade=t=in:st=0:d=0.75,fade=t=out:st=13.750:"
              "d=0.75[vout];[2:a]atrim=0:14.500,asetpts=PTS-STARTPTS,afade=t=in:st=0:d=0.75,afade=t=out:st="
              "12.000:d=2.50[aout]");
}

TEST(StitchPlan, OneClipHasNoCrossfadeAndAVerticalCrop)
{
    StitchPlan::Graph g;
    g.clips = 1;
    g.size = StitchPlan::outputSize(FlightVideo{3840, 2160, false}, true);
    g.vertical = true;
    g.rate = QStringLiteral("30000/1001");
    g.timing = StitchPlan::timing({3}, 0.5, 0.75);
    g.fade = 0.75;
    EXPECT_EQ(g.timing.xfade, 0);
    EXPECT_EQ(g.timing.total, 3);
    EXPECT_DOUBLE_EQ(g.timing.audioFadeLength, 1.0);
    EXPECT_EQ(StitchPlan::filterGraph(g).toStdString(),
              "[0:v]scale=1214:2160:force_original_aspect_ratio=increase:flags=lanczos,crop=1214:2160,fps=30000/1001,"
              "settb=AVTB,setsar=1,format=yuv420p[v0];[v0]fade=t=in:st=0:d=0.75,fade=t=out:st=2.250:d=0.75[vout]");
}

TEST(StitchPlan, OffsetsAndFadesFollowTheClips)
{
    const auto three = StitchPlan::timing({10, 5, 8}, 0.5, 0.75);
    EXPECT_EQ(three.offsets, (QList<double>{9.5, 14.0}));
    EXPECT_DOUBLE_EQ(three.total, 22.0);
    EXPECT_DOUBLE_EQ(three.videoFadeOutStart, 21.25);
    EXPECT_DOUBLE_EQ(three.audioFadeLength, 2.5);
    EXPECT_DOUBLE_EQ(three.audioFadeOutStart, 19.5);

    // Shorter than the fade: the fade-out starts at once.
    EXPECT_EQ(StitchPlan::timing({0.5}, 0.5, 0.75).videoFadeOutStart, 0);
}

TEST(StitchPlan, TheSizeComesFromTheFirstClipAndStaysEven)
{
    EXPECT_EQ(StitchPlan::outputSize(FlightVideo{3840, 2160, false}, true), (Size{1214, 2160}));
    EXPECT_EQ(StitchPlan::outputSize(std::nullopt, true), (Size{606, 1080}));
    EXPECT_EQ(StitchPlan::outputSize(std::nullopt, false), (Size{1920, 1080}));
    // Already 9:16 or taller: kept as it is.
    EXPECT_EQ(StitchPlan::outputSize(FlightVideo{1080, 1920, true}, true), (Size{1080, 1920}));
    EXPECT_EQ(StitchPlan::outputSize(FlightVideo{721, 1281, true}, false), (Size{720, 1280}));
    EXPECT_EQ(StitchPlan::outputSize(FlightVideo{1, 0, false}, false), (Size{2, 2}));
}

TEST(StitchPlan, FfprobeAnswersReadOrFallBack)
{
    EXPECT_EQ(StitchPlan::frameRate("30000/1001\n"), QStringLiteral("30000/1001"));
    EXPECT_EQ(StitchPlan::frameRate("25/1,\n"), QStringLiteral("25/1"));
    EXPECT_EQ(StitchPlan::frameRate("0/0\n"), QStringLiteral("30"));
    EXPECT_EQ(StitchPlan::frameRate(""), QStringLiteral("30"));
    EXPECT_EQ(StitchPlan::frameRate("25"), QStringLiteral("30"));
    EXPECT_DOUBLE_EQ(StitchPlan::duration("12.480000\n"), 12.48);
    EXPECT_EQ(StitchPlan::duration("N/A"), 0);

    EXPECT_EQ(SourceBitrate::fromOutput("5000000\n"), QStringLiteral("8000000"));
    EXPECT_EQ(SourceBitrate::fromOutput("200000000"), QStringLiteral("120000000"));
    EXPECT_EQ(SourceBitrate::fromOutput("64123456.7"), QStringLiteral("64123456"));
    EXPECT_EQ(SourceBitrate::fromOutput("N/A"), QStringLiteral("50000000"));
    EXPECT_EQ(SourceBitrate::fromOutput("\xff\xfe"), QStringLiteral("50000000"));
}
