// One clip to one processed folder, with real ffmpeg, ffprobe and ExifTool.
#include "IngestPipeline.h"

#include "DjiTelemetry.h"
#include "Fixtures.h"
#include "CoroTest.h"
#include "FlightFile.h"
#include "GeocodeClient.h"
#include "RecordingServer.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct Fixture {
    QTemporaryDir dir;
    Fixtures::Card card = *Fixtures::makeCard(dir.filePath("card"));
    QString out(const QString &name) const { return dir.filePath("Pending/" + name); }
};

Fixture &shared()
{
    static Fixture fixture;  // one card for the whole suite: the clips take a while to make
    return fixture;
}

} // namespace

TEST(IngestPipeline, AClipWithASidecarBecomesAFlightWithPathPlaceProxyAndThumbnail)
{
    auto &f = shared();
    RecordingServer nominatim;
    nominatim.replyWith(200, R"({"address":{"town":"Bend","state":"Oregon"}})");
    GeocodeClient::Options geo;
    geo.server = QUrl(nominatim.base());
    geo.contact = QStringLiteral("ops@example.org");
    geo.cacheFile = f.dir.filePath("geocache.json");
    GeocodeClient geocoder(geo);

    // Three seconds: long enough for the still taken at two.
    QDir().mkpath(f.dir.filePath("long"));
    const QString clip = f.dir.filePath("long/DJI_20240102050000_0010_D.MP4");
    Fixtures::ClipOptions options;
    options.seconds = 3;
    ASSERT_TRUE(Fixtures::makeClip(clip, options).ok());
    ASSERT_TRUE(Fixtures::writeFile(f.dir.filePath("long/DJI_20240102050000_0010_D.SRT"),
                                    Fixtures::srtText(Fixtures::straightPath(20))).ok());
    QList<double> progress;
    IngestPipeline::Input in{clip, f.dir.filePath("long/DJI_20240102050000_0010_D.SRT"), f.out("a"), &geocoder,
                             [&](double p) { progress << p; }};
    const auto result = run(IngestPipeline::run(in));
    ASSERT_TRUE(result.ok()) << result.errorText().toStdString();
    const FlightData &data = result->data;
    EXPECT_EQ(data.track.size(), 20u);
    EXPECT_EQ(data.meta.place, QStringLiteral("Bend, Oregon"));
    EXPECT_FALSE(data.meta.created.has_value()) << "only flights without telemetry carry `created`";
    ASSERT_TRUE(data.meta.video.has_value());
    EXPECT_EQ(data.meta.video->h, 720) << "the short side of the proxy is 720";
    EXPECT_FALSE(data.meta.video->vertical);
    EXPECT_FALSE(progress.isEmpty());

    const auto reread = FlightFile::read(f.out("a") + "/flight.json");
    ASSERT_TRUE(reread.ok()) << reread.errorText().toStdString();
    EXPECT_EQ(reread->meta.place, data.meta.place);
    EXPECT_TRUE(QFileInfo(f.out("a") + "/thumb.jpg").size() > 0);
    EXPECT_EQ(nominatim.count(), 1);
}

TEST(IngestPipeline, VideosWithoutTelemetryStillBecomeFlights)
{
    auto &f = shared();
    for (const QString &clip : {f.card.plain, f.card.noFix}) {
        const QString srt = clip.chopped(4) + ".SRT";
        IngestPipeline::Input in{clip, QFileInfo::exists(srt) ? std::optional(srt) : std::nullopt,
                                 f.out(QFileInfo(clip).baseName()), nullptr, {}};
        const auto result = run(IngestPipeline::run(in));
        ASSERT_TRUE(result.ok()) << result.errorText().toStdString();
        EXPECT_TRUE(result->data.track.empty());
        EXPECT_EQ(result->data.meta.samples, 0);
        EXPECT_NEAR(result->data.meta.duration, 2.0, 0.2);
        EXPECT_FALSE(result->data.meta.place.has_value());
        EXPECT_TRUE(QFileInfo::exists(in.dir + "/proxy.mp4"));
        EXPECT_FALSE(QFileInfo::exists(in.dir + "/thumb.jpg")) << "a two-second proxy has no still at 2.0 s";
    }
}

TEST(IngestPipeline, ALowResolutionFileIsCopiedWithItsEmbeddedTelemetryOrFails)
{
    auto &f = shared();
    const auto copied = run(IngestPipeline::run({f.card.lowRes, std::nullopt, f.out("lrf"), nullptr, {}}));
    ASSERT_TRUE(copied.ok()) << copied.errorText().toStdString();
    EXPECT_EQ(copied->data.track.size(), 20u);
    EXPECT_EQ(copied->data.meta.model, QStringLiteral("DJI Mini 4 Pro"));
    ASSERT_TRUE(copied->data.meta.video.has_value());
    EXPECT_EQ(copied->data.meta.video->w, 320) << "a stream copy keeps the low-resolution size";

    const QString bare = f.dir.filePath("DJI_20240102040000_0009_D.LRF");
    ASSERT_TRUE(Fixtures::makeClip(bare).ok());
    const auto failed = run(IngestPipeline::run({bare, std::nullopt, f.out("bare"), nullptr, {}}));
    ASSERT_FALSE(failed.ok());
    EXPECT_EQ(failed.errorText(), QStringLiteral("telemetry: No GPS telemetry found in DJI_20240102040000_0009_D.LRF — is this a DJI clip?"));
}

TEST(IngestPipeline, CancellationStopsTheEncode)
{
    auto &f = shared();
    CancelToken token;
    token.cancel();
    const auto result = run(IngestPipeline::run({f.card.withSidecar, f.card.sidecar, f.out("c"), nullptr, {}}, &token));
    EXPECT_FALSE(result.ok());
}
