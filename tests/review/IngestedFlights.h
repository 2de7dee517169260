#pragma once

#include "ClipRecords.h"

#include <QString>
#include <QTemporaryDir>

#include <filesystem>

class TestServer;

/// A clip as the player's tests seed a library with: a suggestion (`suggested` true) comes with
/// a reason.
[[nodiscard]] Clip clipOf(QString id, double start, double end, QString label, std::optional<bool> suggested = {});

/// @brief Flights as a pilot's import makes them, from real-format card files: a DJI clip with
/// its embedded telemetry and a plain clip without any, each run through the import pipeline
/// (real exiftool and ffmpeg) once. `upload` sends one into a library as the import would.
class IngestedFlights
{
public:
    static constexpr double seconds = 8.0;
    static constexpr double frameRate = 30.0;
    static constexpr int samples = 80;
    static inline const QString withTelemetry = QStringLiteral("20240601_184512_0002");
    static inline const QString withoutTelemetry = QStringLiteral("20240714_071530_0003");

    IngestedFlights();

    /// The processed folder of a flight (flight.json, proxy.mp4, thumb.jpg).
    [[nodiscard]] QString folder(const QString &id) const { return m_dir.filePath(id); }
    /// Staged upload and commit through the import's own uploader; false when it failed.
    [[nodiscard]] bool upload(TestServer &server, const QString &id, const QString &authHeader) const;
    /// Puts these moments in place of what the library's analysis found (none: no file at all).
    static void setMoments(TestServer &server, const QString &id, const char *json);
    /// A climb the first own clip of the tests covers, and a turn no clip covers.
    static constexpr const char *twoMoments = R"({"moments":[{"id":"m1","in":1.0,"out":2.0,"score":0.8,"why":"Steady climb"},)"
                                              R"({"id":"m2","in":5.0,"out":6.5,"score":0.6,"why":"Sharp turn"}]})";

private:
    QTemporaryDir m_dir;
};
