#include "GeocodeClient.h"

#include "CoroTest.h"
#include "RecordingServer.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QUrlQuery>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

using namespace std::chrono_literals;

namespace {

// A Nominatim stand-in: answers by the cell asked for, the way the real service shapes replies.
RecordingServer::Reply nominatim(const RecordingServer::Request &request)
{
    const QUrlQuery query(QUrl(QString::fromUtf8(request.target)).query());
    const QString lat = query.queryItemValue(QStringLiteral("lat"));
    RecordingServer::Reply reply;
    if (lat.startsWith(QLatin1String("44.05")))
        reply.body = R"({"place_id":1,"address":{"town":"Bend","county":"Deschutes County","state":"Oregon","country":"United States"}})";
    else if (lat.startsWith(QLatin1String("47.")))
        reply.body = R"({"address":{"county":"Okanogan County","state":"Washington"}})";
    else if (lat.startsWith(QLatin1String("0.")))
        reply.body = R"({"error":"Unable to geocode"})";
    else
        reply.body = R"({"address":{"state":"Nevada"}})";
    return reply;
}

struct Fixture {
    RecordingServer server;
    QTemporaryDir dir;
    GeocodeClient::Options options()
    {
        GeocodeClient::Options o;
        o.server = QUrl(server.base());
        o.contact = QStringLiteral("ops@example.org");
        o.cacheFile = dir.filePath(QStringLiteral("Aeroloom/geocache.json"));
        o.interval = 150ms;
        return o;
    }
    Fixture() { server.setHandler(nominatim); }
};

} // namespace

TEST(GeocodeClient, NamesPlacesFromTheMostSpecificAddressPart)
{
    EXPECT_EQ(GeocodeClient::nameFromReply(R"({"address":{"town":"Bend","county":"X","state":"Oregon"}})"),
              QStringLiteral("Bend, Oregon"));
    EXPECT_EQ(GeocodeClient::nameFromReply(R"({"address":{"county":"Okanogan County"}})"), QStringLiteral("Okanogan County"));
    EXPECT_EQ(GeocodeClient::nameFromReply(R"({"address":{"state":"Nevada"}})"), QStringLiteral("Nevada"));
    // An empty city is passed over for the next key that has text.
    EXPECT_EQ(GeocodeClient::nameFromReply(R"({"address":{"city":"","beach":"Cannon Beach"}})"), QStringLiteral("Cannon Beach"));
    EXPECT_EQ(GeocodeClient::nameFromReply(R"({"error":"Unable to geocode"})"), std::nullopt);
    EXPECT_EQ(GeocodeClient::nameFromReply(R"({"address":{"city":5,"state":null}})"), std::nullopt);
    EXPECT_EQ(GeocodeClient::nameFromReply("<html>busy</html>"), std::nullopt);
}

TEST(GeocodeClient, OneRequestPerCellWithTheExpectedQueryAndAgent)
{
    Fixture f;
    GeocodeClient client(f.options());
    EXPECT_EQ(run(client.placeName(44.0512, -121.3153)), QStringLiteral("Bend, Oregon"));
    // Same cell to two decimals: answered from the cache.
    EXPECT_EQ(run(client.placeName(44.0549, -121.3189)), QStringLiteral("Bend, Oregon"));
    ASSERT_EQ(f.server.count(), 1);
    const auto request = f.server.last();
    EXPECT_EQ(request.target, "/reverse?lat=44.0512&lon=-121.3153&format=jsonv2&zoom=16&addressdetails=1");
    EXPECT_EQ(request.header("User-Agent"), "Aeroloom-Mac/0.1 (DJI flight library; ops@example.org)");
    EXPECT_EQ(GeocodeClient::cacheKey(-0.004, 179.999), QStringLiteral("-0.00,180.00"));
}

TEST(GeocodeClient, WithoutAContactAddressNothingIsAskedAndNothingRemembered)
{
    Fixture f;
    auto options = f.options();
    options.contact = QStringLiteral("   ");
    GeocodeClient client(options);
    EXPECT_EQ(run(client.placeName(44.0512, -121.3153)), std::nullopt);
    EXPECT_EQ(f.server.count(), 0);
    EXPECT_FALSE(QFile::exists(options.cacheFile));

    // Given an address later, the same place is asked for and named.
    client.setContact(QStringLiteral(" ops@example.org "));
    EXPECT_EQ(run(client.placeName(44.0512, -121.3153)), QStringLiteral("Bend, Oregon"));
    EXPECT_EQ(f.server.last().header("User-Agent"), "Aeroloom-Mac/0.1 (DJI flight library; ops@example.org)");

    // A cached name needs no request, so it is still given without an address.
    client.setContact(QString());
    EXPECT_EQ(run(client.placeName(44.0549, -121.3189)), QStringLiteral("Bend, Oregon"));
    EXPECT_EQ(run(client.placeName(47.5, -119.9)), std::nullopt);
    EXPECT_EQ(f.server.count(), 1);
}

TEST(GeocodeClient, RemembersMissesOnDiskAndAcrossInstances)
{
    Fixture f;
    {
        GeocodeClient client(f.options());
        EXPECT_EQ(run(client.placeName(0.5, -30.25)), std::nullopt);  // open sea
        EXPECT_EQ(run(client.placeName(47.5, -119.9)), QStringLiteral("Okanogan County, Washington"));
    }
    QFile file(f.options().cacheFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto doc = nlohmann::json::parse(file.readAll().toStdString());
    EXPECT_TRUE(doc.at("0.50,-30.25").is_null());
    EXPECT_EQ(doc.at("47.50,-119.90"), "Okanogan County, Washington");

    GeocodeClient again(f.options());
    EXPECT_EQ(run(again.placeName(0.5, -30.25)), std::nullopt);
    EXPECT_EQ(f.server.count(), 2) << "a remembered miss must not be asked again";
}

TEST(GeocodeClient, OfflineIsARememberedMissAndACorruptCacheIsIgnored)
{
    Fixture f;
    QDir().mkpath(QFileInfo(f.options().cacheFile).absolutePath());
    QFile corrupt(f.options().cacheFile);
    ASSERT_TRUE(corrupt.open(QIODevice::WriteOnly));
    corrupt.write("{\"44.05,-121.32\": ");
    corrupt.close();

    auto options = f.options();
    options.server = QUrl(QStringLiteral("http://127.0.0.1:1"));  // nothing listens there
    GeocodeClient client(options);
    EXPECT_EQ(run(client.placeName(44.05, -121.32)), std::nullopt);
    EXPECT_EQ(run(client.placeName(44.05, -121.32)), std::nullopt);
}

TEST(GeocodeClient, SpacesRequestsEvenWhenCallsOverlap)
{
    Fixture f;
    GeocodeClient client(f.options());
    QList<qint64> times;
    QElapsedTimer clock;
    clock.start();
    f.server.setHandler([&](const RecordingServer::Request &r) {
        times << clock.elapsed();
        return nominatim(r);
    });
    // Three different cells asked at once, as parallel ingest does.
    auto a = client.placeName(44.05, -121.3);
    auto b = client.placeName(47.1, -119.9);
    auto c = client.placeName(39.1, -119.7);
    EXPECT_EQ(run(std::move(a)), QStringLiteral("Bend, Oregon"));
    EXPECT_EQ(run(std::move(b)), QStringLiteral("Okanogan County, Washington"));
    EXPECT_EQ(run(std::move(c)), QStringLiteral("Nevada"));
    ASSERT_EQ(times.size(), 3);
    // Timers may fire a little early; allow 10 %.
    EXPECT_GE(times[1] - times[0], 135);
    EXPECT_GE(times[2] - times[1], 135);
}
