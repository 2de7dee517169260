// What `cmake --install` gives the desktop: installed into a scratch prefix, the file types must
// tell a card's files apart the way a file manager will, the entry must offer the program for
// them, and the icon must draw.
#include "TestPaths.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QMimeDatabase>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

int runTool(const QString &program, const QStringList &args, QString *output = nullptr)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, args);
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return -1;
    }
    if (output)
        *output = QString::fromUtf8(process.readAll());
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
}

/// The scratch prefix with the desktop files installed, shared by the tests of this file.
QString installed()
{
    static QTemporaryDir prefix;
    static const bool done = [] {
        QString output;
        const int code = runTool(QStringLiteral(AEROLOOM_CMAKE),
                                 {"--install", TestPaths::buildDir(), "--component", "desktop", "--prefix", prefix.path()},
                                 &output);
        EXPECT_EQ(code, 0) << output.toStdString();
        // The types are found through the data folders, read when the database is first used.
        qputenv("XDG_DATA_DIRS", (prefix.path() + "/share:/usr/local/share:/usr/share").toUtf8());
        return code == 0;
    }();
    EXPECT_TRUE(done);
    return prefix.path();
}

/// The keys of a desktop entry file (one group, no localised keys needed here).
QHash<QString, QString> readEntry(const QString &path)
{
    QHash<QString, QString> keys;
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    for (const QByteArray &line : file.readAll().split('\n')) {
        const int eq = line.indexOf('=');
        if (eq > 0 && !line.startsWith('#'))
            keys.insert(QString::fromUtf8(line.left(eq)).trimmed(), QString::fromUtf8(line.mid(eq + 1)).trimmed());
    }
    return keys;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

TEST(DesktopEntry, TheCardsFilesGetTheirTypesAndOrdinarySubtitlesKeepTheirs)
{
    const QString prefix = installed();
    ASSERT_TRUE(QFile::exists(prefix + "/share/mime/mime.cache")) << "update-mime-database ran at install";
    QMimeDatabase types;
    QTemporaryDir card;

    // Real sidecars from many aircraft, under the names the aircraft give them.
    int sidecars = 0;
    QDirIterator it(TestPaths::realData(), {"*.srt", "*.SRT"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        ++sidecars;
        const QString suffix = sidecars % 2 ? QStringLiteral("SRT") : QStringLiteral("srt");
        const QString named = card.filePath(QStringLiteral("DJI_%1.").arg(sidecars, 4, 10, QLatin1Char('0')) + suffix);
        ASSERT_TRUE(QFile::copy(source, named));
        EXPECT_EQ(types.mimeTypeForFile(named).name(), "application/x-dji-srt") << source.toStdString();
    }
    EXPECT_GE(sidecars, 20);
    EXPECT_TRUE(types.mimeTypeForName("application/x-dji-srt").inherits("application/x-subrip"));

    // A film's subtitles stay subtitles.
    writeFile(card.filePath("Film.en.srt"), "1\n00:00:01,000 --> 00:00:03,500\nWhere are we flying today?\n\n");
    EXPECT_EQ(types.mimeTypeForFile(card.filePath("Film.en.srt")).name(), "application/x-subrip");

    // The light copy, in either case; players that take any MP4 are offered it too.
    writeFile(card.filePath("DJI_0001.LRF"), QByteArray(64, '\0'));
    writeFile(card.filePath("dji_0002.lrf"), QByteArray(64, '\0'));
    EXPECT_EQ(types.mimeTypeForFile(card.filePath("DJI_0001.LRF")).name(), "video/x-dji-lrf");
    EXPECT_EQ(types.mimeTypeForFile(card.filePath("dji_0002.lrf")).name(), "video/x-dji-lrf");
    EXPECT_TRUE(types.mimeTypeForName("video/x-dji-lrf").inherits("video/mp4"));
}

TEST(DesktopEntry, TheEntryOpensEveryFileOfALaunchAndItsIconDraws)
{
    const QString prefix = installed();
    const auto entry = readEntry(prefix + "/share/applications/aeroloom.desktop");
    // %F: one launch gets all the files chosen together, and hands them over in one piece.
    EXPECT_TRUE(entry.value("Exec").endsWith(" %F"));
    const QStringList offered = entry.value("MimeType").split(';', Qt::SkipEmptyParts);
    EXPECT_EQ(offered, QStringList({"video/mp4", "video/x-dji-lrf", "application/x-dji-srt"}));
    const QString icon = prefix + "/share/icons/hicolor/scalable/apps/" + entry.value("Icon") + ".svg";
    ASSERT_TRUE(QFile::exists(icon));

    // Drawn by a browser's SVG renderer, as the desktop's own would: not empty, not one colour.
    QDir shots(TestPaths::buildDir());
    shots.mkpath("screenshots");
    const QString picture = shots.filePath("screenshots/app-icon.png");
    QFile::remove(picture);
    QString output;
    runTool("chromium", {"--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--window-size=256,256",
                         "--default-background-color=00000000", "--screenshot=" + picture, QUrl::fromLocalFile(icon).toString()},
            &output);
    const QImage image(picture);
    ASSERT_FALSE(image.isNull()) << output.toStdString();
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 8)
        for (int x = 0; x < image.width(); x += 8)
            colours.insert(image.pixel(x, y));
    EXPECT_GT(colours.size(), 20);
    EXPECT_EQ(qAlpha(image.pixel(1, 1)), 0) << "the rounded corner is clear";
    EXPECT_EQ(qAlpha(image.pixel(128, 128)), 255);
}
