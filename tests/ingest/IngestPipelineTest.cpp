// One clip to one processed folder, with real ffmpeg, ffprobe and ExifTool.
#include "IngestPipeline.h"

#include "CardFixture.h"
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
    CardFixture::Card card = CardFixture::makeCard(dir.filePath("card"));
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
    geo.cacheFile = f.dir.filePath("geocache.json");
    GeocodeClient geocoder(geo);

    QList<double> progress;
    IngestPipeline::Input in{f.card.withSrt[0], f.card.withSrt[0].chopped(4) + ".SRT", f.out("a"), &geocoder,
                             [&](double p) { progress << p; }};
    const auto result = run(IngestPipeline::run(in));
    ASSERT_TRUE(result.ok()) << result.errorText().toStdString();
    const FlightData &data = result->data;
    EXPECT_EQ(data.track.size(), 30u);
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
    for (const QString &clip : {f.card.plainVideo, f.card.noFixVideo}) {
        const QString srt = clip.chopped(4) + ".SRT";
        IngestPipeline::Input in{clip, QFileInfo::exists(srt) ? std::optional(srt) : std::nullopt,
                                 f.out(QFileInfo(clip).baseName()), nullptr, {}};
        const auto result = run(IngestPipeline::run(in));
        ASSERT_TRUE(result.ok()) << result.errorText().toStdString();
        EXPECT_TRUE(result->data.track.empty());
        EXPECT_EQ(result->data.meta.samples, 0);
        EXPECT_NEAR(result->data.meta.duration, 3.0, 0.2);
        EXPECT_FALSE(result->data.meta.place.has_value());
        EXPECT_TRUE(QFileInfo::exists(in.dir + "/proxy.mp4"));
    }
}

TEST(IngestPipeline, ALowResolutionFileWithoutTelemetryFailsWithTheTelemetryWords)
{
    auto &f = shared();
    const auto result = run(IngestPipeline::run({f.card.lrf, std::nullopt, f.out("lrf"), nullptr, {}}));
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.errorText(), QStringLiteral("telemetry: No GPS telemetry found in DJI_20240512103000_0005_D.LRF — is this a DJI clip?"));
}

TEST(IngestPipeline, CancellationStopsTheEncode)
{
    auto &f = shared();
    CancelToken token;
    token.cancel();
    const auto result = run(IngestPipeline::run({f.card.withSrt[1], f.card.withSrt[1].chopped(4) + ".SRT", f.out("c"), nullptr, {}}, &token));
    EXPECT_FALSE(result.ok());
}
