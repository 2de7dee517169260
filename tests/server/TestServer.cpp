#include "TestServer.h"

#include "FlightFile.h"
#include "SampleMaker.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

TestServer::TestServer(const Adjust &adjust)
{
    m_library = fs::path(m_dir.path().toStdString()) / "library";
    ServerConfig config;
    config.library = m_library;
    config.port = 0;
    config.samples = false;
    config.log = false;
    config.lightProxies = false;
    if (adjust)
        adjust(config);
    m_server = std::make_unique<LibraryServer>(config);
    const auto port = m_server->start();
    if (!port)
        ADD_FAILURE() << "the server didn't start: " << port.errorText().toStdString();
}

TestServer::~TestServer()
{
    m_server->stop();
}

std::unique_ptr<httplib::Client> TestServer::client() const
{
    auto client = std::make_unique<httplib::Client>(base());
    client->set_url_encode(false);
    client->set_read_timeout(std::chrono::seconds(60));
    return client;
}

std::string readFile(const fs::path &file)
{
    std::ifstream in(file, std::ios::binary);
    std::stringstream out;
    out << in.rdbuf();
    return out.str();
}

void writeFile(const fs::path &file, const std::string &bytes)
{
    std::ofstream out(file, std::ios::binary);
    out << bytes;
}

fs::path makeFlightFolder(const fs::path &where, double seconds)
{
    fs::create_directories(where);
    const QString proxy = QString::fromStdString((where / "proxy.mp4").string());
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
                  QStringLiteral("lavfi"), QStringLiteral("-i"),
                  QStringLiteral("testsrc=size=320x180:rate=25:duration=%1").arg(seconds), QStringLiteral("-c:v"),
                  QStringLiteral("libx264"), QStringLiteral("-preset"), QStringLiteral("ultrafast"),
                  QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"), QStringLiteral("-y"), proxy});
    ffmpeg.waitForFinished(-1);
    EXPECT_EQ(ffmpeg.exitCode(), 0);
    ffmpeg.start(QStringLiteral("ffmpeg"), {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                                            QStringLiteral("-i"), proxy, QStringLiteral("-frames:v"), QStringLiteral("1"),
                                            QStringLiteral("-y"),
                                            QString::fromStdString((where / "thumb.jpg").string())});
    ffmpeg.waitForFinished(-1);
    EXPECT_EQ(ffmpeg.exitCode(), 0);
    const auto flight = SampleMaker::flightFile(46.0, 7.0, seconds, "DJI_20240102030405_0007_D.MP4", "Test Field");
    EXPECT_TRUE(FlightFile::write(flight, QString::fromStdString(where.string())));
    return where;
}

httplib::Result uploadFlight(httplib::Client &client, const std::string &id, const fs::path &folder)
{
    for (const char *name : {"flight.json", "thumb.jpg", "moments.json", "proxy.mp4"}) {
        if (!fs::exists(folder / name))
            continue;
        const auto put = client.Put(("/api/flights/" + id + "/files/" + name).c_str(), readFile(folder / name),
                                    "application/octet-stream");
        EXPECT_TRUE(put && put->status == 200) << name << ": " << (put ? put->body : "no reply");
    }
    return client.Post(("/api/flights/" + id + "/commit").c_str());
}

nlohmann::json jsonOf(const httplib::Result &reply)
{
    if (!reply)
        return nullptr;
    auto doc = nlohmann::json::parse(reply->body, nullptr, false);
    return doc.is_discarded() ? nlohmann::json() : doc;
}
