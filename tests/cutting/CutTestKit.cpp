#include "CutTestKit.h"

#include <CutOriginals.h>
#include <FlightFile.h>
#include <MediaProbe.h>
#include <ProcessRunner.h>
#include <SampleMaker.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QFileInfo>

#include <cstdlib>

namespace fs = std::filesystem;

namespace CutTestKit {

namespace {
QByteArray tool(const QString &name, const QStringList &args)
{
    const auto result = ProcessRunner::runBlocking(name, args);
    EXPECT_TRUE(result.ok() && result->status == 0) << name.toStdString() << ": " << args.join(' ').toStdString() << "\n"
                                                    << (result.ok() ? result->stdErr.toStdString() : "not started");
    return result.ok() ? result->stdOut : QByteArray();
}

std::optional<double> number(const QByteArray &text)
{
    bool ok = false;
    const double value = QString::fromUtf8(text).trimmed().remove(QLatin1Char(',')).toDouble(&ok);
    return ok ? std::optional(value) : std::nullopt;
}
} // namespace

double duration(const QString &file)
{
    return number(tool(QStringLiteral("ffprobe"), {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
                                                   QStringLiteral("format=duration"), QStringLiteral("-of"),
                                                   QStringLiteral("csv=p=0"), file}))
        .value_or(0);
}

std::optional<double> streamDuration(const QString &file, const QString &stream)
{
    const QByteArray out = tool(QStringLiteral("ffprobe"), {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                                                            stream, QStringLiteral("-show_entries"), QStringLiteral("stream=duration"),
                                                            QStringLiteral("-of"), QStringLiteral("csv=p=0"), file});
    return number(out);
}

QSize displaySize(const QString &file)
{
    const auto video = MediaProbe::probeVideoBlocking(QStringLiteral("ffprobe"), file);
    return video ? QSize(video->w, video->h) : QSize();
}

QList<Packet> videoPackets(const QString &file)
{
    const QByteArray out = tool(QStringLiteral("ffprobe"), {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                                                            QStringLiteral("v:0"), QStringLiteral("-show_entries"),
                                                            QStringLiteral("packet=pts_time,flags"), QStringLiteral("-of"),
                                                            QStringLiteral("csv=p=0"), file});
    QList<Packet> packets;
    for (const QByteArray &line : out.split('\n')) {
        const QList<QByteArray> fields = line.trimmed().split(',');
        if (fields.size() < 2)
            continue;
        packets.append({fields[0].toDouble(), fields[1].startsWith('K')});
    }
    return packets;
}

QList<QByteArray> greyFrames(const QString &file, int first, int count, QSize size)
{
    const QByteArray raw = tool(QStringLiteral("ffmpeg"),
                                {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), file,
                                 QStringLiteral("-vf"), QStringLiteral("select=between(n\\,%1\\,%2)").arg(first).arg(first + count - 1),
                                 QStringLiteral("-fps_mode"), QStringLiteral("passthrough"), QStringLiteral("-f"),
                                 QStringLiteral("rawvideo"), QStringLiteral("-pix_fmt"), QStringLiteral("gray"), QStringLiteral("-")});
    const qsizetype frameBytes = qsizetype(size.width()) * size.height();
    QList<QByteArray> frames;
    for (qsizetype at = 0; frameBytes > 0 && at + frameBytes <= raw.size(); at += frameBytes)
        frames.append(raw.mid(at, frameBytes));
    return frames;
}

double difference(const QByteArray &a, const QByteArray &b)
{
    if (a.size() != b.size() || a.isEmpty())
        return 1e9;
    double sum = 0;
    for (qsizetype i = 0; i < a.size(); ++i)
        sum += std::abs(int(uchar(a[i])) - int(uchar(b[i])));
    return sum / double(a.size());
}

namespace {
/// Files every library of the process may copy: made once, they cost nothing after.
QTemporaryDir &shared()
{
    static QTemporaryDir dir;
    return dir;
}
} // namespace

StoryLibrary::StoryLibrary()
{
    m_proxy = fs::path(shared().filePath("proxy").toStdString()) / "proxy.mp4";
    if (!fs::exists(m_proxy))
        makeFlightFolder(m_proxy.parent_path(), 1.0);
}

void StoryLibrary::addFlight(const std::string &id, const std::string &sourceName)
{
    const fs::path folder = server.sandbox() / "up" / id;
    fs::create_directories(folder);
    fs::copy_file(m_proxy, folder / "proxy.mp4", fs::copy_options::overwrite_existing);
    const FlightData flight = SampleMaker::flightFile(46.0, 7.0, 10.0, sourceName, "Test Ridge");
    ASSERT_TRUE(FlightFile::write(flight, QString::fromStdString(folder.string())));
    auto http = server.client();
    const auto commit = uploadFlight(*http, id, folder);
    ASSERT_TRUE(commit && commit->status == 200) << (commit ? commit->body : "no reply");
}

std::string StoryLibrary::addStory(const std::string &title, const nlohmann::json &items)
{
    auto http = server.client();
    const auto reply = http->Post("/api/projects", nlohmann::json{{"title", title}, {"items", items}}.dump(), "application/json");
    EXPECT_TRUE(reply && reply->status == 200) << (reply ? reply->body : "no reply");
    return jsonOf(reply).value("id", std::string());
}

void StoryLibrary::addTrack(const QString &relative, double seconds)
{
    const QString made = shared().filePath(QStringLiteral("bed-%1.m4a").arg(seconds));
    if (!QFileInfo::exists(made)) {
        ASSERT_TRUE(Fixtures::makeBed(made, seconds).ok());
    }
    const QString path = QString::fromStdString((server.library() / "music").string()) + QLatin1Char('/') + relative;
    QDir().mkpath(QFileInfo(path).absolutePath());
    ASSERT_TRUE(QFile::copy(made, path));
}

} // namespace CutTestKit
