// The import's ffmpeg command lines, word for word: a changed bit rate, a lost +faststart (the
// proxy would not start playing before it has all arrived) or a stray argument shows here.
#include "IngestCommands.h"

#include <gtest/gtest.h>

TEST(IngestCommands, AVideoIsReencodedToAStreamableProxy)
{
    EXPECT_EQ(IngestCommands::proxy("/card/DJI_0001.MP4", true, H264Encoder::software(), true, "/w/proxy.mp4"),
              QStringList({"-v", "error", "-y", "-i", "/card/DJI_0001.MP4", "-map", "0:v:0", "-vf",
                           "scale=if(gt(iw\\,ih)\\,-2\\,720):if(gt(iw\\,ih)\\,720\\,-2)", "-c:v", "libx264", "-preset",
                           "veryfast", "-b:v", "4M", "-an", "-movflags", "+faststart", "-progress", "pipe:1", "-nostats",
                           "/w/proxy.mp4"}));

    // A hardware encoder opens its device before the input and uploads at the end of the filter.
    H264Encoder vaapi;
    vaapi.name = "h264_vaapi";
    vaapi.beforeInput = {"-vaapi_device", "/dev/dri/renderD128"};
    vaapi.filterSuffix = ",format=nv12,hwupload";
    vaapi.codecOptions = {"-c:v", "h264_vaapi"};
    EXPECT_EQ(IngestCommands::proxy("in.mov", true, vaapi, false, "out.mp4"),
              QStringList({"-v", "error", "-y", "-vaapi_device", "/dev/dri/renderD128", "-i", "in.mov", "-map", "0:v:0",
                           "-vf", "scale=if(gt(iw\\,ih)\\,-2\\,720):if(gt(iw\\,ih)\\,720\\,-2),format=nv12,hwupload",
                           "-c:v", "h264_vaapi", "-b:v", "4M", "-an", "-movflags", "+faststart", "out.mp4"}));
}

TEST(IngestCommands, ALowResolutionFileIsCopiedAndTheStillTakenAtTwoSeconds)
{
    EXPECT_EQ(IngestCommands::proxy("/card/DJI_0001.LRF", false, H264Encoder::software(), false, "/w/proxy.mp4"),
              QStringList({"-v", "error", "-y", "-i", "/card/DJI_0001.LRF", "-map", "0:0", "-c:v", "copy", "-an",
                           "-movflags", "+faststart", "/w/proxy.mp4"}));
    EXPECT_EQ(IngestCommands::thumbnail("/w/proxy.mp4", "/w/thumb.jpg"),
              QStringList({"-v", "error", "-y", "-ss", "2.0", "-i", "/w/proxy.mp4", "-frames:v", "1", "-vf",
                           "scale=480:-1", "/w/thumb.jpg"}));
}
