#include "PlaybackLibrary.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QRandomGenerator>

namespace fs = std::filesystem;

PlaybackLibrary::PlaybackLibrary()
    : m_server([](ServerConfig &c) { c.auth = AuthMode::Token; })
{
    const std::string token = m_server.server().createToken("pilot@example.org");
    m_client = std::make_unique<APIClient>(QString::fromStdString(m_server.base()),
                                           QStringLiteral("Bearer ") + QString::fromStdString(token));
    auto http = m_server.client();
    http->set_bearer_token_auth(token);

    const fs::path good = makeFlightFolder(m_server.sandbox() / "good", seconds);
    const std::string proxy = readFile(good / "proxy.mp4");
    // As the import makes them, the index first: half a file still opens, then runs out.
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"),
                  QString::fromStdString((good / "proxy.mp4").string()), QStringLiteral("-c"), QStringLiteral("copy"),
                  QStringLiteral("-movflags"), QStringLiteral("+faststart"), QStringLiteral("-y"),
                  QString::fromStdString((good / "faststart.mp4").string())});
    ffmpeg.waitForFinished(-1);
    EXPECT_EQ(ffmpeg.exitCode(), 0);
    const std::string indexFirst = readFile(good / "faststart.mp4");
    const auto put = [&](const char *id, const std::string &bytes) {
        const fs::path folder = m_server.sandbox() / id;
        fs::create_directories(folder);
        fs::copy_file(good / "flight.json", folder / "flight.json", fs::copy_options::overwrite_existing);
        writeFile(folder / "proxy.mp4", bytes);
        const auto commit = uploadFlight(*http, id, folder);
        ASSERT_TRUE(commit && commit->status == 200) << id << ": " << (commit ? commit->body : "no reply");
    };
    put("20240512_093000_0001", proxy);
    QByteArray noise(64 * 1024, Qt::Uninitialized);
    QRandomGenerator rng(7);
    for (char &c : noise)
        c = char(rng.bounded(256));
    put("20240512_093000_0002", noise.toStdString());
    put("20240512_093000_0003", indexFirst.substr(0, indexFirst.size() / 2));
}
