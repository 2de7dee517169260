#include "ColourFlights.h"

#include "FlightFile.h"
#include "SampleMaker.h"
#include "TestServer.h"

#include <gtest/gtest.h>

#include <QProcess>

namespace fs = std::filesystem;

namespace ColourFlights {

namespace {
QByteArray runTool(const QString &tool, const QStringList &args)
{
    QProcess process;
    process.start(tool, args);
    process.closeWriteChannel();
    process.waitForFinished(-1);
    EXPECT_EQ(process.exitCode(), 0) << tool.toStdString() << ": " << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput();
}
} // namespace

httplib::Result upload(httplib::Client &client, const std::string &id, const QString &colour, double seconds,
                       const fs::path &scratch)
{
    const fs::path folder = scratch / id;
    fs::create_directories(folder);
    const QString proxy = QString::fromStdString((folder / "proxy.mp4").string());
    runTool(QStringLiteral("ffmpeg"),
            {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
             QStringLiteral("lavfi"), QStringLiteral("-i"),
             QStringLiteral("color=c=%1:size=320x180:rate=25:duration=%2").arg(colour).arg(seconds),
             QStringLiteral("-c:v"), QStringLiteral("libx264"), QStringLiteral("-preset"), QStringLiteral("ultrafast"),
             QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"), QStringLiteral("-y"), proxy});
    runTool(QStringLiteral("ffmpeg"), {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                                       QStringLiteral("-i"), proxy, QStringLiteral("-frames:v"), QStringLiteral("1"),
                                       QStringLiteral("-y"), QString::fromStdString((folder / "thumb.jpg").string())});
    const auto flight = SampleMaker::flightFile(46.0, 7.0, seconds, "DJI_" + id + ".MP4", "Test Field");
    EXPECT_TRUE(FlightFile::write(flight, QString::fromStdString(folder.string())).ok());
    return uploadFlight(client, id, folder);
}

std::string story(httplib::Client &client, const std::string &title, const nlohmann::json &items)
{
    const auto reply = client.Post("/api/projects", nlohmann::json{{"title", title}, {"items", items}}.dump(),
                                   "application/json");
    EXPECT_TRUE(reply && reply->status == 200) << (reply ? reply->body : "no reply");
    return jsonOf(reply).value("id", "");
}

std::vector<Frame> frames(const fs::path &video)
{
    const QByteArray raw = runTool(QStringLiteral("ffmpeg"),
                                   {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                                    QStringLiteral("-i"), QString::fromStdString(video.string()), QStringLiteral("-vf"),
                                    QStringLiteral("scale=4:4:flags=area"), QStringLiteral("-f"),
                                    QStringLiteral("rawvideo"), QStringLiteral("-pix_fmt"), QStringLiteral("rgb24"),
                                    QStringLiteral("-")});
    constexpr int pixels = 16;
    std::vector<Frame> out;
    for (qsizetype at = 0; at + pixels * 3 <= raw.size(); at += pixels * 3) {
        Frame f;
        for (int p = 0; p < pixels; ++p) {
            f.r += quint8(raw[at + p * 3]) / double(pixels);
            f.g += quint8(raw[at + p * 3 + 1]) / double(pixels);
            f.b += quint8(raw[at + p * 3 + 2]) / double(pixels);
        }
        out.push_back(f);
    }
    return out;
}

QByteArray frameAt(const fs::path &video, double seconds, int &width, int &height)
{
    const auto info = probe(video);
    width = info["streams"][0].value("width", 0);
    height = info["streams"][0].value("height", 0);
    return runTool(QStringLiteral("ffmpeg"),
                   {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-ss"),
                    QString::number(seconds), QStringLiteral("-i"), QString::fromStdString(video.string()),
                    QStringLiteral("-frames:v"), QStringLiteral("1"), QStringLiteral("-f"), QStringLiteral("rawvideo"),
                    QStringLiteral("-pix_fmt"), QStringLiteral("rgb24"), QStringLiteral("-")});
}

nlohmann::json probe(const fs::path &video)
{
    const QByteArray out = runTool(QStringLiteral("ffprobe"),
                                   {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
                                    QStringLiteral("stream=codec_type,width,height,duration:format=duration"),
                                    QStringLiteral("-of"), QStringLiteral("json"), QString::fromStdString(video.string())});
    return nlohmann::json::parse(out.toStdString(), nullptr, false);
}

} // namespace ColourFlights
