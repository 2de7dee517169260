#include "IngestedFlights.h"

#include "APIClient.h"
#include "CoroTest.h"
#include "DjiTelemetry.h"
#include "FlightUploader.h"
#include "IngestPipeline.h"
#include "TestServer.h"

#include <gtest/gtest.h>

#include <QDir>

#include <cmath>

namespace {
/// Three quarters of an orbit of 60 m around a point in the Alps, climbing with a wobble, so the
/// path and the altitude curve have a shape.
std::vector<Fixtures::Cue> orbit()
{
    std::vector<Fixtures::Cue> cues;
    const double metresPerDegree = 111320.0;
    for (int i = 0; i < IngestedFlights::samples; ++i) {
        const double angle = 1.5 * M_PI * i / IngestedFlights::samples;
        Fixtures::Cue cue;
        cue.t = i * IngestedFlights::seconds / IngestedFlights::samples;
        cue.lat = 46.5593 + 60 * std::sin(angle) / metresPerDegree;
        cue.lon = 8.0031 + 60 * std::cos(angle) / (metresPerDegree * std::cos(46.5593 * M_PI / 180));
        cue.relAlt = 20 + 45.0 * i / IngestedFlights::samples + 8 * std::sin(3 * angle);
        cue.absAlt = 1400 + cue.relAlt;
        cues.push_back(cue);
    }
    return cues;
}
} // namespace

IngestedFlights::IngestedFlights()
{
    Fixtures::ClipOptions options;
    options.seconds = seconds;
    options.width = 640;
    options.height = 360;
    options.rate = int(frameRate);
    const QString dji = m_dir.filePath(QStringLiteral("card/DJI_20240601184512_0002_D.MP4"));
    const QString plain = m_dir.filePath(QStringLiteral("card/DJI_20240714071530_0003_D.MP4"));
    QDir().mkpath(m_dir.filePath(QStringLiteral("card")));
    const auto made = Fixtures::makeDjiClip(dji, orbit(), options);
    EXPECT_TRUE(made) << made.errorText().toStdString();
    const auto madePlain = Fixtures::makeClip(plain, options);
    EXPECT_TRUE(madePlain) << madePlain.errorText().toStdString();

    for (const auto &[id, source] : {std::pair{withTelemetry, dji}, std::pair{withoutTelemetry, plain}}) {
        IngestPipeline::Input input;
        input.source = source;
        input.dir = folder(id);
        QDir().mkpath(input.dir);
        const auto out = run(IngestPipeline::run(input));
        EXPECT_TRUE(out) << id.toStdString() << ": " << out.errorText().toStdString();
    }
}

void IngestedFlights::setMoments(TestServer &server, const QString &id, const char *json)
{
    const auto file = server.library() / "flights" / id.toStdString() / "moments.json";
    if (json)
        writeFile(file, json);
    else
        std::filesystem::remove(file);
}

Clip clipOf(QString id, double start, double end, QString label, std::optional<bool> suggested)
{
    Clip clip;
    clip.id = std::move(id);
    clip.start = start;
    clip.end = end;
    clip.label = std::move(label);
    clip.autoSuggested = suggested;
    if (suggested)
        clip.why = QStringLiteral("Smooth pan");
    return clip;
}

bool IngestedFlights::upload(TestServer &server, const QString &id, const QString &authHeader) const
{
    auto client = std::make_shared<APIClient>(QString::fromStdString(server.base()), authHeader);
    FlightUploader uploader(client);
    const auto sent = run(uploader.upload(id, folder(id), {}));
    EXPECT_TRUE(sent) << sent.errorText().toStdString();
    return sent.ok();
}
