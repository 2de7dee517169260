#include "FlightFile.h"

#include "Printers.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <limits>

namespace {

TelemetrySample sample(double t)
{
    TelemetrySample s;
    s.t = t;
    s.lat = 47.1 + t / 1000;
    s.lon = -8.25;
    s.speed = 1.5;
    s.climb = -0.25;
    return s;
}

FlightData flight()
{
    FlightData d;
    d.meta.model = QStringLiteral("Mini 4 Pro");
    d.meta.duration = 12.5;
    d.meta.samples = 2;
    d.meta.bounds = FlightBounds{47.1, 47.2, -8.25, -8.25};
    d.meta.centroid = FlightCentroid{47.15, -8.25};
    d.meta.maxSpeed = 1.5;
    d.meta.pathLength = 101.25;
    d.meta.source = QStringLiteral("DJI_0001.MP4");
    auto a = sample(0);
    a.relAlt = 10.5;
    a.shutter = RawJSON::text(QStringLiteral("1/100"));
    auto b = sample(0.5);
    b.shutter = RawJSON::number(0.01);
    b.iso = 100;
    d.track = {a, b};
    return d;
}

QByteArray encoded(const FlightData &d)
{
    auto bytes = FlightFile::encode(d);
    EXPECT_TRUE(bytes.ok()) << bytes.errorText().toStdString();
    return bytes.ok() ? *bytes : QByteArray();
}

} // namespace

TEST(FlightFile, WritesKeysInOrderWithNullsAndLeavesOutAbsentExtras)
{
    FlightData d = flight();
    d.track.resize(1);
    d.meta.samples = 1;
    d.meta.centroid.reset();
    EXPECT_EQ(encoded(d).toStdString(),
              R"({"meta":{"model":"Mini 4 Pro","duration":12.5,"samples":1,)"
              R"("bounds":{"minLat":47.1,"maxLat":47.2,"minLon":-8.25,"maxLon":-8.25},"centroid":null,"relAlt":null,)"
              R"("maxSpeed":1.5,"pathLength":101.25,"source":"DJI_0001.MP4"},)"
              R"("track":[{"t":0.0,"lat":47.1,"lon":-8.25,"relAlt":10.5,"absAlt":null,"yaw":null,"pitch":null,)"
              R"("roll":null,"gimbalYaw":null,"gimbalPitch":null,"iso":null,"shutter":"1/100","fnum":null,)"
              R"("speed":1.5,"climb":-0.25}]})");
}

TEST(FlightFile, OptionalMetaKeysFollowSourceWhenSet)
{
    FlightData d = flight();
    d.meta.created = QStringLiteral("2024-01-02T03:04:05.000000Z");
    d.meta.place = QStringLiteral("Zürich");
    d.meta.video = FlightVideo{720, 1280, true};
    const std::string text = encoded(d).toStdString();
    EXPECT_NE(text.find(R"("source":"DJI_0001.MP4","created":"2024-01-02T03:04:05.000000Z","place":"Zürich",)"
                        R"("video":{"w":720,"h":1280,"vertical":true}},"track")"),
              std::string::npos)
        << text;
}

TEST(FlightFile, RoundTripKeepsValuesAbsenceAndRawKinds)
{
    FlightData d = flight();
    d.meta.relAlt = FlightRelAlt{-2.5, 30};
    d.meta.video = FlightVideo{1920, 1080, false};
    d.track[1].yaw = -179.99999999999997;
    d.track[1].lat = 0.1 + 0.2; // full precision survives
    const auto back = FlightFile::decode(encoded(d));
    ASSERT_TRUE(back.ok()) << back.errorText().toStdString();
    EXPECT_EQ(*back, d);
    EXPECT_TRUE(back->track[0].shutter->isText());
    EXPECT_EQ(back->track[0].shutter->toText(), QStringLiteral("1/100"));
    EXPECT_TRUE(back->track[1].shutter->isNumber());
    EXPECT_DOUBLE_EQ(*back->track[1].shutter->toNumber(), 0.01);
    EXPECT_FALSE(back->track[0].absAlt.has_value());
    EXPECT_FALSE(back->meta.place.has_value());
}

TEST(FlightFile, ReadingToleratesMissingOptionalsAndUnknownKeys)
{
    const QByteArray minimal =
        R"({"extra":1,"meta":{"model":"DJI","duration":3,"samples":1,"maxSpeed":0,"pathLength":0,"source":"a.MP4",)"
        R"("future":{"x":1}},"track":[{"t":0,"lat":1,"lon":2,"speed":0,"climb":0,"shutter":null,"new":true}]})";
    const auto d = FlightFile::decode(minimal);
    ASSERT_TRUE(d.ok()) << d.errorText().toStdString();
    EXPECT_EQ(d->meta.samples, 1);
    EXPECT_FALSE(d->meta.bounds.has_value());
    EXPECT_FALSE(d->meta.relAlt.has_value());
    EXPECT_FALSE(d->track[0].shutter.has_value());
    EXPECT_FALSE(d->track[0].relAlt.has_value());
}

TEST(FlightFile, ReadingFailsWholeDocumentOnBrokenRules)
{
    const QByteArray good = encoded(flight());
    EXPECT_TRUE(FlightFile::decode(good).ok());
    const auto broken = [&](const std::string &from, const std::string &to) {
        std::string text = good.toStdString();
        const auto at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        text.replace(at, from.size(), to);
        return FlightFile::decode(QByteArray::fromStdString(text));
    };
    // A required sample key missing, null or of the wrong type.
    EXPECT_EQ(broken(R"(,"speed":1.5)", "").failure().code, FlightFile::BadShape);
    EXPECT_FALSE(broken(R"("climb":-0.25)", R"("climb":null)").ok());
    EXPECT_FALSE(broken(R"("lat":47.1,)", R"("lat":"47.1",)").ok());
    // Optional values must still have their type when present.
    EXPECT_FALSE(broken(R"("relAlt":10.5)", R"("relAlt":"high")").ok());
    // Shutter: text or number only.
    EXPECT_FALSE(broken(R"("shutter":"1/100")", R"("shutter":true)").ok());
    EXPECT_FALSE(broken(R"("shutter":"1/100")", R"("shutter":{"v":1})").ok());
    // Required meta keys.
    EXPECT_FALSE(broken(R"("source":"DJI_0001.MP4")", R"("sauce":"x")").ok());
    EXPECT_FALSE(broken(R"("samples":2)", R"("samples":2.5)").ok());
    EXPECT_FALSE(broken(R"("minLat":47.1,)", "").ok());
    // Not a document at all.
    EXPECT_EQ(FlightFile::decode("{\"meta\":").failure().code, FlightFile::NotJSON);
    EXPECT_FALSE(FlightFile::decode("[]").ok());
    EXPECT_FALSE(FlightFile::decode(R"({"meta":{},"track":{}})").ok());
    const auto words = broken(R"(,"speed":1.5)", "");
    EXPECT_TRUE(words.errorText().contains(QStringLiteral("track[0].speed"))) << words.errorText().toStdString();
}

TEST(FlightFile, NonFiniteNumbersFailTheEncoding)
{
    FlightData d = flight();
    d.track[1].climb = std::numeric_limits<double>::infinity();
    EXPECT_EQ(FlightFile::encode(d).failure().code, FlightFile::NotFinite);
    d = flight();
    d.meta.pathLength = std::nan("");
    EXPECT_FALSE(FlightFile::encode(d).ok());
    d = flight();
    d.track[0].shutter = RawJSON::number(std::nan(""));
    EXPECT_FALSE(FlightFile::encode(d).ok());
}

TEST(FlightFile, WriteIsAtomicAndReadsBack)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("flight.json"));
    ASSERT_TRUE(FlightFile::write(flight(), dir.path()).ok());
    const auto back = FlightFile::read(path);
    ASSERT_TRUE(back.ok());
    EXPECT_EQ(*back, flight());

    // A failed encoding leaves the old file as it was, and no stray temporary beside it.
    FlightData bad = flight();
    bad.meta.duration = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(FlightFile::write(bad, dir.path()).ok());
    EXPECT_EQ(*FlightFile::read(path), flight());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("flight.json")});

    // A folder that does not exist gets no file and a failure in words.
    const auto missing = FlightFile::write(flight(), dir.filePath(QStringLiteral("nope")));
    EXPECT_EQ(missing.failure().code, FlightFile::WriteFailed);
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("nope/flight.json"))));
    EXPECT_EQ(FlightFile::read(dir.filePath(QStringLiteral("absent.json"))).failure().code, FlightFile::ReadFailed);
}
