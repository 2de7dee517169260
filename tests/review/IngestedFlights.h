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

    /// The processed folder of a flight (flight.json, proxy.mp4, thumb.jpg; moments.json for the
    /// one with telemetry).
    [[nodiscard]] QString folder(const QString &id) const { return m_dir.filePath(id); }
    /// Staged upload and commit through the import's own uploader; false when it failed.
    [[nodiscard]] bool upload(TestServer &server, const QString &id, const QString &authHeader) const;

private:
    QTemporaryDir m_dir;
};
