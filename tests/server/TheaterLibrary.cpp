#include "TheaterLibrary.h"

#include "FlightPath.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

TheaterLibrary::TheaterLibrary() : m_server([](ServerConfig &c) { c.auth = AuthMode::Token; })
{
    m_token = m_server.server().createToken("pilot@example.org");
    Fixtures::FlightPath path(30, 43.52, 4.19, 25);
    path.hover(1);
    path.orbit(5, 200, 30);
    path.straight(3, 12);
    path.climb(3, 4);
    const FlightData flight = path.data(QStringLiteral("Saltmarsh Lagoon"));
    m_samples = static_cast<int>(flight.track.size());

    QTemporaryDir dir;
    const auto folder = makeFlightFolder(std::filesystem::path(dir.path().toStdString()) / "flight", seconds);
    const auto written = path.write(QString::fromStdString(folder.string()), QStringLiteral("Saltmarsh Lagoon"));
    EXPECT_TRUE(written.ok()) << written.errorText().toStdString();
    const auto client = m_server.client();
    client->set_default_headers({{"Authorization", "Bearer " + m_token}});
    for (const char *id : {flightId, lightFlightId, brokenLightFlightId}) {
        const auto committed = uploadFlight(*client, id, folder);
        EXPECT_TRUE(committed && committed->status == 200) << (committed ? committed->body : "no reply");
    }
    // The proxy is already smaller than the light size, so the light video is the same picture.
    std::filesystem::copy_file(folder / "proxy.mp4", m_server.library() / "flights" / lightFlightId / "proxy_480.mp4");
    writeFile(m_server.library() / "flights" / brokenLightFlightId / "proxy_480.mp4", std::string(4096, 'x'));
}

std::string TheaterLibrary::cookie() const
{
    const auto reply = m_server.client()->Post("/api/auth/session", httplib::Headers{{"Authorization", "Bearer " + m_token}});
    const auto session = jsonOf(reply);
    if (!session.is_object() || !session["token"].is_string())
        return {};
    return session["cookie"].get<std::string>() + "=" + session["token"].get<std::string>();
}
