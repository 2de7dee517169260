#pragma once

#include "TestServer.h"

#include <string>

/// @brief A token-guarded library with one flight to fly in 3D, under two ids: an orbit, a pass and a climb
/// drawn at 30 Hz, with a proxy video as long as the flight. For the tests of the 3D page, in a
/// browser and in the app.
class TheaterLibrary
{
public:
    static constexpr const char *flightId = "20240512_093000_0001";
    /// The same flight again, for which the library has made its light video.
    static constexpr const char *lightFlightId = "20240512_093000_0002";
    /// The same flight once more, whose light video is not a video at all.
    static constexpr const char *brokenLightFlightId = "20240512_093000_0003";
    static constexpr double seconds = 12.0;

    TheaterLibrary();

    [[nodiscard]] std::string base() const { return m_server.base(); }
    [[nodiscard]] const std::string &token() const { return m_token; }
    /// The samples of the flight's track.
    [[nodiscard]] int samples() const { return m_samples; }
    /// A fresh web session for the token, as "name=value".
    [[nodiscard]] std::string cookie() const;
    [[nodiscard]] TestServer &server() { return m_server; }

private:
    TestServer m_server;
    std::string m_token;
    int m_samples = 0;
};
