// Seeded random mutations of real inputs through the three readers that take outside data.
// The same seed gives the same run; a failure names the seed and the round to replay it.
#include "ExifToolReader.h"
#include "FlightFile.h"
#include "SrtReader.h"

#include <TestPaths.h>

#include <gtest/gtest.h>

#include <QFile>

#include <nlohmann/json.hpp>

#include <random>

namespace {

constexpr unsigned seed = 20240102;
constexpr int rounds = 4000;

QByteArray readFile(const QString &path, qsizetype limit = 24 * 1024)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(limit) : QByteArray();
}

/// Byte flips, cut and repeated ranges, and splices of tokens the readers look for.
class Mutator
{
public:
    explicit Mutator(unsigned s) : m_random(s) {}

    QByteArray mutate(QByteArray data)
    {
        const int steps = pick(1, 8);
        for (int i = 0; i < steps; ++i) {
            const qsizetype at = data.isEmpty() ? 0 : pick(0, static_cast<int>(data.size()) - 1);
            switch (pick(0, 5)) {
            case 0:
                if (!data.isEmpty())
                    data[at] = static_cast<char>(pick(0, 255));
                break;
            case 1:
                data.remove(at, pick(1, 64));
                break;
            case 2:
                data.insert(at, data.mid(pick(0, static_cast<int>(qMax<qsizetype>(0, data.size() - 1))), pick(1, 200)));
                break;
            case 3:
                data.insert(at, tokens[static_cast<std::size_t>(pick(0, static_cast<int>(std::size(tokens)) - 1))]);
                break;
            case 4:
                data.truncate(at);
                break;
            default:
                data.insert(at, QByteArray(pick(1, 16), static_cast<char>(pick(0, 255))));
                break;
            }
        }
        return data;
    }

private:
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, qMax(low, high))(m_random); }

    static constexpr const char *tokens[] = {
        "[latitude: ", "[longitude: -", "] ", "[rel_alt: 1.5 abs_alt: ", "[shutter: 1/0.0]", "00:00:01,000 --> ",
        "\r\n", "\n", "99999999999999999999", "1e999", "-0", "nan", "\"Doc7:GPSLatitude\":", "\"Doc0:SampleTime\":\"0:0:",
        "Unknown protocol x.proto", "{", "}", "[", "]", "null", "true", "\"", "\\u0000", "\xc3", "\xff\xfe",
        "\"speed\":", "\"track\":[", "\"shutter\":{}", "1.7976931348623157e308", ":", ","};
    std::mt19937 m_random;
};

/// Mutations of a JSON document's values, keys and shape, so that most inputs get past the parser.
class JsonMutator
{
public:
    explicit JsonMutator(unsigned s) : m_random(s) {}

    QByteArray mutate(const QByteArray &seed)
    {
        nlohmann::json doc = nlohmann::json::parse(seed.toStdString());
        const int steps = pick(1, 4);
        for (int i = 0; i < steps; ++i)
            mutateIn(doc, 0);
        return QByteArray::fromStdString(doc.dump());
    }

private:
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, qMax(low, high))(m_random); }

    nlohmann::json randomValue()
    {
        static const nlohmann::json pool = nlohmann::json::parse(R"([null, true, 0, -1, 1e308, -1e308, 2.5, 123456789012345,
            "", " ", "1/100", "nan", "inf", "51 deg 28' 40.08\" N", "0 deg 0' 0\" W", "0:00:01", "1:2:3:4",
            "12.5 s", "-3 m", "9 deg", [], {}, [1, 2], {"t": 1}, "Unknown protocol y.proto"])");
        return pool[static_cast<std::size_t>(pick(0, static_cast<int>(pool.size()) - 1))];
    }

    void mutateIn(nlohmann::json &node, int depth)
    {
        if (node.is_array() && !node.empty() && depth < 6) {
            auto &child = node[static_cast<std::size_t>(pick(0, static_cast<int>(node.size()) - 1))];
            if (pick(0, 3) == 0)
                node.push_back(child);
            else
                mutateIn(child, depth + 1);
            return;
        }
        if (!node.is_object() || node.empty() || depth >= 6) {
            node = randomValue();
            return;
        }
        auto it = node.begin();
        std::advance(it, pick(0, static_cast<int>(node.size()) - 1));
        const std::string key = it.key();
        switch (pick(0, 4)) {
        case 0:
            node.erase(key);
            break;
        case 1: {
            static const char *const names[] = {"Doc0:GPSLatitude", "Doc3:GPSLongitude", "Doc2:SampleTime", "Doc1:Model",
                                                "Main:Duration", "Doc007:ISO", "samples", "bounds", "relAlt", "video"};
            node[names[pick(0, 9)]] = randomValue();
            break;
        }
        case 2:
            node[key] = randomValue();
            break;
        default:
            mutateIn(node[key], depth + 1);
            break;
        }
    }

    std::mt19937 m_random;
};

/// What every successful reading must keep: a count that matches, and a file that can be written.
void expectWritable(const Result<FlightData> &data, int round)
{
    if (!data.ok()) {
        EXPECT_FALSE(data.errorText().isEmpty()) << "round " << round;
        return;
    }
    EXPECT_EQ(data->meta.samples, static_cast<std::int64_t>(data->track.size())) << "round " << round;
    const auto bytes = FlightFile::encode(*data);
    ASSERT_TRUE(bytes.ok()) << "round " << round << ": " << bytes.errorText().toStdString();
    const auto back = FlightFile::decode(*bytes);
    ASSERT_TRUE(back.ok()) << "round " << round;
    EXPECT_EQ(back->track.size(), data->track.size());
}

} // namespace

TEST(Fuzz, SidecarReader)
{
    const QByteArray seeds[] = {
        readFile(TestPaths::realData(QStringLiteral("DJI_SRT_Parser/MAVIC3.srt"))),
        readFile(TestPaths::realData(QStringLiteral("dji-drone-metadata-embedder/neo2__clip_nogps.SRT"))),
        readFile(TestPaths::realData(QStringLiteral("dji_srt2gpx/DJI_M300RTK.SRT"))),
        readFile(TestPaths::realData(QStringLiteral("DJI_SRT_Parser/mavic_pro.SRT"))),
    };
    Mutator mutator(seed);
    for (int round = 0; round < rounds; ++round) {
        const QByteArray input = mutator.mutate(seeds[round % std::size(seeds)]);
        expectWritable(TelemetryParser::parseSRT(QString::fromUtf8(input), std::nullopt, std::nullopt, QStringLiteral("f")),
                       round);
        if (testing::Test::HasFatalFailure())
            return;
    }
}

TEST(Fuzz, ExifToolJsonReader)
{
    const QByteArray flat =
        R"([{"SourceFile":"a.mp4","Main:Duration":"12.00 s","Main:Encoder":"DJI",)"
        R"("Doc1:SampleTime":"0 s","Doc1:GPSLatitude":"51 deg 28' 40.08\" N","Doc1:GPSLongitude":"0 deg 0' 5.04\" W",)"
        R"("Doc1:RelativeAltitude":"5.4 m","Doc1:ShutterSpeed":"1/100","Doc1:ISO":100,"Doc1:FNumber":1.7,)"
        R"("Doc2:SampleTime":"0.50 s","Doc2:GPSLatitude":51.4779,"Doc2:GPSLongitude":-0.0015,"Doc2:DroneYaw":"-12.5",)"
        R"("Doc10:SampleTime":"0:00:31","Doc10:GPSLatitude":"51.48","Doc10:GPSLongitude":"-0.0016 deg",)"
        R"("Main:Warning":"Unknown protocol dvtm_X.proto"}])";
    const QByteArray seeds[] = {flat, readFile(TestPaths::realData(QStringLiteral("dji-drone-metadata-embedder/air3s_g3j.json"))),
                                readFile(TestPaths::realData(QStringLiteral("dji-drone-metadata-embedder/neo2_undecoded_g3j.json")))};
    Mutator mutator(seed + 1);
    JsonMutator shaped(seed + 3);
    for (int round = 0; round < rounds; ++round) {
        const QByteArray &from = seeds[round % std::size(seeds)];
        const QByteArray input = round % 2 ? shaped.mutate(from) : mutator.mutate(from);
        expectWritable(TelemetryParser::parseExifTool(input, QStringLiteral("f")), round);
        if (testing::Test::HasFatalFailure())
            return;
    }
}

TEST(Fuzz, FlightFileReader)
{
    const auto real = TelemetryParser::parseSRTFile(TestPaths::realData(QStringLiteral("dji_srt2gpx/DJI_MAVIC_3T.SRT")),
                                                    QStringLiteral("Mavic 3T"), 12.0, QStringLiteral("DJI_0001.MP4"));
    ASSERT_TRUE(real.ok());
    FlightData withExtras = *real;
    withExtras.meta.place = QStringLiteral("Praha");
    withExtras.meta.video = FlightVideo{1280, 720, false};
    withExtras.track[0].shutter = RawJSON::number(0.01);
    const QByteArray seeds[] = {*FlightFile::encode(*real), *FlightFile::encode(withExtras)};
    Mutator mutator(seed + 2);
    JsonMutator shaped(seed + 4);
    int readable = 0;
    for (int round = 0; round < rounds; ++round) {
        const QByteArray &from = seeds[round % std::size(seeds)];
        const auto read = FlightFile::decode(round % 2 ? shaped.mutate(from) : mutator.mutate(from));
        readable += read.ok();
        if (!read.ok()) {
            EXPECT_FALSE(read.errorText().isEmpty());
            continue;
        }
        // Whatever reads must write and read back the same.
        const auto bytes = FlightFile::encode(*read);
        ASSERT_TRUE(bytes.ok()) << "round " << round << ": " << bytes.errorText().toStdString();
        const auto again = FlightFile::decode(*bytes);
        ASSERT_TRUE(again.ok()) << "round " << round;
        EXPECT_EQ(*again, *read) << "round " << round;
    }
    EXPECT_GT(readable, rounds / 20); // the mutations must reach past the parser
}
