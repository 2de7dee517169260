#include "ExifToolCommand.h"
#include "TestTools.h"
#include "ToolLocator.h"

#include <CoroTest.h>
#include <TestPaths.h>

#include "Printers.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>


TEST(ToolLocator, FindsTheSystemToolsAndOurOwnExifTool)
{
    ASSERT_TRUE(ToolLocator::ffmpeg().has_value());
    EXPECT_TRUE(ToolLocator::ffmpeg()->endsWith(QStringLiteral("/ffmpeg")));
    ASSERT_TRUE(ToolLocator::ffprobe().has_value());

    const auto exif = ToolLocator::findExifTool();
    ASSERT_TRUE(exif.has_value());
    EXPECT_EQ(exif->script, TestPaths::sourceDir() + QStringLiteral("/third_party/exiftool/exiftool"));
    EXPECT_EQ(exif->libDir, TestPaths::sourceDir() + QStringLiteral("/third_party/exiftool/lib"));

    const auto command = exifToolCommand(*exif, QStringList{QStringLiteral("-j"), QStringLiteral("-i.mp4")});
    EXPECT_EQ(command.program, QStringLiteral("/usr/bin/perl"));
    EXPECT_EQ(command.arguments, (QStringList{"-I", *exif->libDir, exif->script, "-j", "-i.mp4"}));

    const auto version = run(exifToolVersion(*exif));
    ASSERT_TRUE(version.ok()) << version.errorText().toStdString();
    EXPECT_EQ(*version, QStringLiteral("13.59"));
    EXPECT_TRUE(run(ToolLocator::preflight()).isEmpty());
}

TEST(ToolLocator, EnvironmentWinsUncheckedAndPreflightSaysWhatFails)
{
    QTemporaryDir dir;
    const QString missing = dir.filePath(QStringLiteral("no-ffmpeg"));
    const QString brokenExif = writeScript(dir.filePath(QStringLiteral("exiftool")), "echo \"Can't locate Image/ExifTool.pm\" >&2; exit 2\n");
    ScopedEnv ffmpeg(ToolLocator::ffmpegEnv, missing);
    ScopedEnv exif(ToolLocator::exiftoolEnv, brokenExif);

    EXPECT_EQ(ToolLocator::find(QStringLiteral("ffmpeg"), ToolLocator::ffmpegEnv), missing);
    const auto tool = ToolLocator::findExifTool();
    ASSERT_TRUE(tool.has_value());
    EXPECT_EQ(tool->script, brokenExif);
    EXPECT_FALSE(tool->libDir.has_value());
    // Not our copy: run as it stands, not through perl.
    const auto command = exifToolCommand(*tool, QStringList{QStringLiteral("-ver")});
    EXPECT_EQ(command.program, brokenExif);
    EXPECT_EQ(command.arguments, QStringList{"-ver"});

    const auto version = run(exifToolVersion(*tool));
    ASSERT_FALSE(version.ok());
    EXPECT_EQ(version.errorText(), QStringLiteral("exiftool exited 2:\nCan't locate Image/ExifTool.pm"));

    EXPECT_EQ(run(ToolLocator::preflight()),
              (QStringList{QStringLiteral("ffmpeg at ") + missing + QStringLiteral(" failed to run"),
                           QStringLiteral("exiftool at ") + brokenExif +
                               QStringLiteral(" failed to run (is /usr/bin/perl present?)")}));
}

TEST(ToolLocator, VersionIsTrimmedAndEmptyWhenNotUtf8)
{
    QTemporaryDir dir;
    const QString good = writeScript(dir.filePath(QStringLiteral("good")), "printf ' 12.57\\r\\n\\n'\n");
    EXPECT_EQ(*run(exifToolVersion(ToolLocator::ExifTool{good, std::nullopt})), QStringLiteral("12.57"));
    const QString garbled = writeScript(dir.filePath(QStringLiteral("garbled")), "printf '\\377\\376'\n");
    const auto v = run(exifToolVersion(ToolLocator::ExifTool{garbled, std::nullopt}));
    ASSERT_TRUE(v.ok());
    EXPECT_TRUE(v->isEmpty());
}
