#include "APIError.h"
#include "ClipEdits.h"
#include "CoroTest.h"
#include "SampleBodies.h"
#include "WireFixture.h"

namespace {
QByteArray nested(int depth, const QByteArray &open = "[", const QByteArray &close = "]", const QByteArray &leaf = "")
{
    return open.repeated(depth) + leaf + close.repeated(depth);
}
} // namespace

TEST(HostileReplies, EverySampleDecodesAndReadsBackWhatItWrites)
{
    for (const auto &sample : SampleBodies::all()) {
        bool broke = false;
        EXPECT_TRUE(sample.decode(sample.body, broke)) << sample.name;
        EXPECT_FALSE(broke) << sample.name;
    }
}

TEST(HostileReplies, WrongTypesAndMissingKeysFailCleanly)
{
    // Each sample's top-level shape replaced by every other JSON type.
    for (const auto &sample : SampleBodies::all()) {
        for (const QByteArray &other : {QByteArray("null"), QByteArray("[]"), QByteArray("\"x\""), QByteArray("1"),
                                        QByteArray("true"), QByteArray(""), QByteArray("{}")}) {
            bool broke = false;
            EXPECT_FALSE(sample.decode(other, broke)) << sample.name << " " << other.constData();
        }
    }
    EXPECT_FALSE(Wire::decode<Flight>(R"({"id":["a"]})"));
    EXPECT_FALSE(Wire::decode<Flight>(R"({"id":"a","relAlt":[1,2]})"));
    EXPECT_FALSE(Wire::decode<Flight>(R"({"id":"a","samples":-1e30})"));
    EXPECT_FALSE(Wire::decode<EDL>(R"({"id":"p","title":"t","count":1,"items":{"seq":1}})"));
    EXPECT_FALSE(Wire::decode<ReelShare>(R"({"token":"t","url":"u","projectId":"p","renderId":"r","views":"1","hearts":0})"));
    // Numbers out of the double range aren't JSON a decoder should guess at.
    EXPECT_FALSE(Wire::decode<Flight>(R"({"id":"a","duration":1e999})"));
}

TEST(HostileReplies, InvalidTextIsRefused)
{
    EXPECT_FALSE(Wire::decode<Flight>(QByteArray("{\"id\":\"a\xff\"}")));
    EXPECT_FALSE(Wire::decode<Flight>(QByteArray("{\"id\":\"\xc0\x80\"}")));  // overlong NUL
    EXPECT_FALSE(Wire::decode<Flight>(QByteArray("{\"id\":\"\xed\xa0\x80\"}")));  // encoded surrogate
    EXPECT_FALSE(Wire::decode<Flight>(R"({"id":"\ud800"})"));  // lone surrogate escape
    EXPECT_FALSE(Wire::decode<Flight>(QByteArray("{\"id\":\"a\"}\0trailing", 19)));
    const auto nul = Wire::decode<Flight>(R"({"id":"a\u0000b","place":"Z\u00fcrich \ud83d\ude81"})");
    ASSERT_TRUE(nul);
    EXPECT_EQ(nul->id.size(), 3);
    EXPECT_EQ(*nul->place, QStringLiteral("Zürich 🚁"));
}

TEST(HostileReplies, DeepNestingIsRefusedWithoutRecursing)
{
    EXPECT_FALSE(Wire::parse(nested(1'000'000)));
    EXPECT_FALSE(Wire::parse(QByteArray(R"({"id":"a","x":)") + nested(100'000, R"({"a":)", "}", "1") + "}"));
    // Brackets inside strings don't count, escaped quotes don't end a string.
    EXPECT_TRUE(Wire::parse(QByteArray(R"({"id":"[[[[\"[[[[)") + QByteArray(1000, '[') + "\"}"));
    // Depth that a real document might carry in a key the client doesn't know passes.
    const auto fine = Wire::decode<Flight>(QByteArray(R"({"id":"a","x":)") + nested(200) + "}");
    ASSERT_TRUE(fine);
    // An unclosed document deep enough is refused by the scan, short of it by the parser.
    EXPECT_FALSE(Wire::parse(QByteArray(300, '[')));
    EXPECT_FALSE(Wire::parse(QByteArray(100, '[')));
}

TEST(HostileReplies, HugeArraysDecodeOrFailWithoutTrouble)
{
    QByteArray body = R"({"flights":[)";
    for (int i = 0; i < 200'000; ++i)
        body += R"({"id":"F)" + QByteArray::number(i) + R"("},)";
    body += R"({"id":"last"}]})";
    const auto manifest = Wire::decode<Manifest>(body);
    ASSERT_TRUE(manifest);
    EXPECT_EQ(manifest->flights.size(), 200'001);

    body.chop(2);  // one bad element at the very end sinks it all
    body += R"(,{"id":1}]})";
    EXPECT_FALSE(Wire::decode<Manifest>(body));
}

TEST_F(WireTest, HostileRepliesThroughTheCalls)
{
    server.replyWith(200, nested(500'000));
    EXPECT_EQ(run(client.fetchManifest()).failure().domain, APIError::decodeDomain);
    EXPECT_TRUE(run(client.fetchClips("F"))->isEmpty());
    EXPECT_TRUE(run(client.fetchTrack("F"))->isEmpty());
    EXPECT_FALSE(run(client.keepClip(PoolClip{})));
    EXPECT_EQ(run(client.fetchEDL("p")).failure().domain, APIError::decodeDomain);

    server.replyWith(200, QByteArray("{\"flights\":[{\"id\":\"\xff\"}]}"));
    EXPECT_EQ(run(client.fetchManifest()).failure().domain, APIError::decodeDomain);

    // An unknown key with deep (but bounded) content passes an edit untouched.
    const QByteArray deep = QByteArray(R"({"clips":[{"id":"a","in":1,"out":2,"label":"","auto":true}],"extra":)")
        + nested(200, R"({"k":)", "}", "1.5") + "}";
    QByteArray written;
    server.setHandler([&](const RecordingServer::Request &r) {
        RecordingServer::Reply reply;
        reply.body = r.method == "GET" ? deep : QByteArray("{}");
        if (r.method == "POST")
            written = r.body;
        return reply;
    });
    PoolClip a;
    a.flightId = "F";
    a.clipId = "a";
    ASSERT_TRUE(run(client.keepClip(a)));
    auto expected = Wire::Json::parse(deep.toStdString());
    expected["clips"][0].erase("auto");
    EXPECT_EQ(Wire::Json::parse(written.toStdString()), expected);
}
