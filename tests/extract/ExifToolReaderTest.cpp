#include "ExifToolReader.h"
#include "TelemetryError.h"

#include "Printers.h"

#include <TestPaths.h>

#include <gtest/gtest.h>

#include <QFile>

#include <cmath>

using json = nlohmann::json;
using TelemetryParser::coordinateValue;
using TelemetryParser::numberValue;
using TelemetryParser::parseExifTool;
using TelemetryParser::timeValue;

namespace {

Result<FlightData> parse(const json &doc)
{
    const std::string text = doc.dump();
    return parseExifTool(QByteArray::fromStdString(text), QStringLiteral("DJI_0001.MP4"));
}

// exiftool's printed forms of a coordinate and a duration, as in its -G3 -j output.
std::string dms(double value, char positive, char negative)
{
    const double a = std::abs(value);
    const int d = static_cast<int>(a);
    const int m = static_cast<int>((a - d) * 60);
    const double s = ((a - d) * 60 - m) * 60;
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%d deg %d' %.2f\" %c", d, m, s, value < 0 ? negative : positive);
    return buffer;
}

std::string duration(double t)
{
    char buffer[32];
    if (t == 0)
        return "0 s";
    if (t < 30) {
        std::snprintf(buffer, sizeof buffer, "%.2f s", t);
    } else {
        const int whole = static_cast<int>(t + 0.5);
        std::snprintf(buffer, sizeof buffer, "%d:%02d:%02d", whole / 3600, whole / 60 % 60, whole % 60);
    }
    return buffer;
}

/// Turns the nested "-g3" sample file of real Air 3S telemetry into the flat "-G3" form this
/// program asks exiftool for, with exiftool's printed values.
json flattenRealSample()
{
    QFile file(TestPaths::realData(QStringLiteral("dji-drone-metadata-embedder/air3s_g3j.json")));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const json nested = json::parse(file.readAll().toStdString());
    json flat = json::object();
    flat["SourceFile"] = nested[0]["SourceFile"];
    flat["Main:Duration"] = "41.56 s";
    flat["Main:Encoder"] = "DJI Air3S";
    for (const auto &[group, tags] : nested[0].items()) {
        if (!tags.is_object())
            continue;
        for (const auto &[tag, value] : tags.items()) {
            json printed = value;
            if (tag == "GPSLatitude")
                printed = dms(value.get<double>(), 'N', 'S');
            else if (tag == "GPSLongitude")
                printed = dms(value.get<double>(), 'E', 'W');
            else if (tag == "SampleTime")
                printed = duration(value.get<double>());
            else if (tag == "AbsoluteAltitude" || tag == "RelativeAltitude")
                printed = std::to_string(value.get<double>()) + " m";
            flat[group + ":" + tag] = printed;
        }
    }
    return json::array({flat});
}

} // namespace

TEST(ExifToolValues, CoordinateNumberAndTimeRules)
{
    EXPECT_NEAR(*coordinateValue("37 deg 46' 29.64\" N"), 37.7749, 1e-9);
    EXPECT_NEAR(*coordinateValue("37 deg 46' 29.64\" S"), -37.7749, 1e-9);
    EXPECT_NEAR(*coordinateValue("122 deg 25'9.84\"W"), -122.4194, 1e-9);
    EXPECT_EQ(*coordinateValue("37.7749"), 37.7749);
    EXPECT_EQ(*coordinateValue(-1.5), -1.5);
    EXPECT_FALSE(coordinateValue("north").has_value());
    EXPECT_FALSE(coordinateValue(true).has_value());
    EXPECT_FALSE(coordinateValue(json::array()).has_value());

    EXPECT_EQ(*numberValue("123.4 m"), 123.4);
    EXPECT_EQ(*numberValue("123 deg"), 123);
    EXPECT_EQ(*numberValue("+5.40 m"), 5.4);
    EXPECT_EQ(*numberValue(7), 7);
    EXPECT_FALSE(numberValue("about 5").has_value());
    EXPECT_FALSE(numberValue("").has_value());
    EXPECT_FALSE(numberValue("nan").has_value());
    EXPECT_FALSE(numberValue(nullptr).has_value());

    EXPECT_EQ(*timeValue("1.50 s"), 1.5);
    EXPECT_EQ(*timeValue("0:00:01"), 1);
    EXPECT_EQ(*timeValue("0:01:30.5"), 90.5);
    EXPECT_EQ(*timeValue(2.25), 2.25);
    EXPECT_FALSE(timeValue("0:xx:01").has_value());
    EXPECT_FALSE(timeValue("1.5 seconds").has_value());
}

TEST(ExifToolReader, RealAir3SSamplesInFlatForm)
{
    const auto d = parse(flattenRealSample());
    ASSERT_TRUE(d.ok()) << d.errorText().toStdString();
    // Docs 3 and 4 (41.52 s and 41.54 s) both print as 0:00:42: the second is a repeated time.
    ASSERT_EQ(d->track.size(), 3u);
    EXPECT_EQ(d->meta.model, QStringLiteral("DJI Air3S"));
    EXPECT_EQ(d->meta.duration, 41.56);
    EXPECT_NEAR(d->track[0].lat, 51.4778, 1e-4);
    EXPECT_NEAR(d->track[0].lon, -0.0014, 1e-4);
    EXPECT_EQ(d->track[1].t, 0.02); // exiftool prints two decimals
    EXPECT_EQ(d->track[2].t, 42);   // and whole seconds from 30 s on
    EXPECT_EQ(d->track[2].relAlt, 5.4);
    EXPECT_EQ(d->track[2].gimbalPitch, -90);
    EXPECT_EQ(d->track[0].gimbalYaw, -7.1);
    EXPECT_FALSE(d->track[0].relAlt.has_value());
    EXPECT_FALSE(d->track[2].yaw.has_value()); // no heading is made up here
    EXPECT_EQ(d->meta.relAlt, (FlightRelAlt{5.4, 5.4}));
}

TEST(ExifToolReader, DocumentsSortNumericallyAndIncompleteOnesAreSkipped)
{
    json root = {{"SourceFile", "x.mp4"},
                 {"Doc10:GPSLatitude", 3.0},  {"Doc10:GPSLongitude", 3.0}, {"Doc10:SampleTime", "1.00 s"},
                 {"Doc2:GPSLatitude", 2.0},   {"Doc2:GPSLongitude", 2.0},  {"Doc2:SampleTime", "0.50 s"},
                 {"Doc1:GPSLatitude", 1.0},   {"Doc1:GPSLongitude", 1.0},  {"Doc1:SampleTime", "0 s"},
                 {"Doc1:Model", "  Mini 4 Pro\t"},
                 {"Doc3:GPSLatitude", 9.0},   {"Doc3:SampleTime", "0.70 s"}, // no longitude
                 {"Doc4:GPSLatitude", 0.0},   {"Doc4:GPSLongitude", 0.0},  {"Doc4:SampleTime", "0.80 s"},
                 {"Doc5:GPSLatitude", 5.0},   {"Doc5:GPSLongitude", 5.0},  {"Doc5:SampleTime", "0.90 s"},
                 {"Doc5:ShutterSpeed", "1/100"}, {"Doc5:ISO", 100}, {"Doc5:FNumber", "1.7"},
                 {"Doc5:DroneYaw", "-12.5"}, {"Doc5:DronePitch", 1}, {"Doc5:DroneRoll", "2 deg"},
                 {"Doc1:ShutterSpeed", 0.001},
                 {"Doc99999999999999999999:GPSLatitude", 1.0},
                 {"Main:Duration", "12.00 s"}, {"Main:Encoder", "Lavf"}};
    const auto d = parse(json::array({root}));
    ASSERT_TRUE(d.ok()) << d.errorText().toStdString();
    std::vector<double> lats;
    for (const auto &s : d->track)
        lats.push_back(s.lat);
    EXPECT_EQ(lats, (std::vector<double>{1, 2, 0, 5, 3})); // 0,0 is kept here
    EXPECT_EQ(d->meta.model, QStringLiteral("Mini 4 Pro"));
    EXPECT_EQ(d->meta.duration, 12);
    const TelemetrySample &five = d->track[3];
    EXPECT_EQ(five.shutter, RawJSON::text(QStringLiteral("1/100")));
    EXPECT_EQ(d->track[0].shutter, RawJSON::number(0.001));
    EXPECT_EQ(five.iso, 100);
    EXPECT_EQ(five.fnum, 1.7);
    EXPECT_EQ(five.yaw, -12.5);
    EXPECT_EQ(five.roll, 2);
}

TEST(ExifToolReader, ModelAndDurationFallBackInOrder)
{
    const json sample = {{"Doc1:GPSLatitude", 1}, {"Doc1:GPSLongitude", 1}};
    json root = sample;
    EXPECT_EQ(parse(json::array({root}))->meta.model, QStringLiteral("DJI"));
    root["Main:Model"] = "FC8482";
    EXPECT_EQ(parse(json::array({root}))->meta.model, QStringLiteral("FC8482"));
    root["Main:Encoder"] = "";
    EXPECT_EQ(parse(json::array({root}))->meta.model, QStringLiteral("FC8482"));
    root["Main:Encoder"] = 1234;
    EXPECT_EQ(parse(json::array({root}))->meta.model, QStringLiteral("1234"));
    // Without any duration key the last sample time is used; "Duration" counts without "Main:".
    EXPECT_EQ(parse(json::array({root}))->meta.duration, 0);
    root["Duration"] = "7.5 s";
    EXPECT_EQ(parse(json::array({root}))->meta.duration, 7.5);
    // Samples without times: all but the first vanish in the time filter.
    root["Doc2:GPSLatitude"] = 2;
    root["Doc2:GPSLongitude"] = 2;
    EXPECT_EQ(parse(json::array({root}))->track.size(), 1u);
}

TEST(ExifToolReader, SaysWhyThereIsNoTelemetry)
{
    EXPECT_EQ(parseExifTool("not json", QStringLiteral("a.MP4")).failure().code, TelemetryError::BadJSON);
    EXPECT_EQ(parse(json::object({{"Doc1:GPSLatitude", 1}})).failure().code, TelemetryError::BadJSON);
    EXPECT_EQ(parse(json::array()).failure().code, TelemetryError::BadJSON);
    EXPECT_EQ(parse(json::array({json::object(), 5})).failure().code, TelemetryError::BadJSON);
    EXPECT_EQ(parse(json::array({json::object()})).failure().code, TelemetryError::NoTelemetry);
    EXPECT_EQ(parse(json::array({json::object()})).errorText(),
              QStringLiteral("No GPS telemetry found in DJI_0001.MP4 — is this a DJI clip?"));

    // The real undecoded Neo 2 output: sample times only.
    QFile file(TestPaths::realData(QStringLiteral("dji-drone-metadata-embedder/neo2_undecoded_g3j.json")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(parseExifTool(file.readAll(), QStringLiteral("a.MP4")).failure().code, TelemetryError::NoTelemetry);

    const json root = {{"Doc1:SampleTime", "0 s"},
                       {"Main:Warning", "Unknown protocol dvtm_Neo2.proto (please submit sample for testing)"},
                       {"Doc1:Warning", "[minor] Unknown protocol dvtm_Neo2.proto; Unknown protocol dvtm_Air4.proto"},
                       {"Doc2:Note", 5}};
    const auto unknown = parse(json::array({root}));
    EXPECT_EQ(unknown.failure().code, TelemetryError::UnknownProtocol);
    EXPECT_EQ(unknown.errorText(), QStringLiteral("DJI_0001.MP4: telemetry format dvtm_Air4.proto, dvtm_Neo2.proto is not "
                                                  "decoded by exiftool yet (new DJI model?)"));
}
