// The theater's session and address against a real token-guarded library: the cookie it gets,
// the page address it builds, the development entry, and a close that beats a slow cookie.
#include "APIClient.h"
#include "CoroTest.h"
#include "ReviewSession.h"
#include "TestServer.h"
#include "TheaterController.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <QUrlQuery>

namespace {

std::shared_ptr<APIClient> bearer(const TestServer &server, const std::string &token)
{
    return std::make_shared<APIClient>(QString::fromStdString(server.base()),
                                       QStringLiteral("Bearer ") + QString::fromStdString(token));
}

/// Hangs up the client's kept-alive connections, which the server would otherwise wait out.
void hangUp(const std::shared_ptr<APIClient> &client)
{
    client->network()->clearConnectionCache();
    QCoreApplication::processEvents();
}

} // namespace

TEST(TheaterController, OpensWithTheSessionOfATokenAndWithoutOneForAPassword)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    const auto client = bearer(server, server.server().createToken("pilot@example.org"));
    TheaterController theater(client);
    theater.open(QStringLiteral("20240512_093000_0001"));
    EXPECT_TRUE(theater.active());
    EXPECT_FALSE(theater.ready());  // dark until the session is known
    ASSERT_TRUE(waitUntil([&] { return theater.ready(); }, 10000));
    ASSERT_TRUE(theater.sessionCookie().has_value());
    EXPECT_EQ(theater.sessionCookie()->name(), "aeroloom_session");
    EXPECT_EQ(theater.sessionCookie()->domain(), "127.0.0.1");
    EXPECT_TRUE(theater.sessionCookieValue().canConvert<QNetworkCookie>());

    // Basic credentials get no session: the page is loaded anyway and asks to sign in itself.
    theater.setClient(std::make_shared<APIClient>(QString::fromStdString(server.base()),
                                                  QStringLiteral("Basic cGlsb3Q6eA==")));
    theater.open(QStringLiteral("20240512_093000_0002"));
    ASSERT_TRUE(waitUntil([&] { return theater.ready(); }, 10000));
    EXPECT_FALSE(theater.sessionCookie().has_value());
    EXPECT_FALSE(theater.sessionCookieValue().isValid());
    EXPECT_EQ(theater.flightId(), "20240512_093000_0002");
    EXPECT_FALSE(theater.failed());
    hangUp(client);
}

TEST(TheaterController, AClosedTheaterStaysClosedWhenItsSessionArrivesLate)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    const auto client = bearer(server, server.server().createToken("pilot@example.org"));
    TheaterController theater(client);
    theater.open(QStringLiteral("20240512_093000_0001"));
    theater.close();
    QTest::qWait(500);
    EXPECT_FALSE(theater.active());
    EXPECT_FALSE(theater.ready());
    EXPECT_FALSE(theater.sessionCookie().has_value());

    // A second flight opened before the first one's session came shows the second only.
    theater.open(QStringLiteral("20240512_093000_0001"));
    theater.open(QStringLiteral("20240512_093000_0003"));
    ASSERT_TRUE(waitUntil([&] { return theater.ready(); }, 10000));
    EXPECT_TRUE(theater.url().toString().contains(QStringLiteral("id=20240512_093000_0003")));
    // A failure is the page's to report, and only while the theater shows.
    theater.fail();
    EXPECT_TRUE(theater.failed());
    theater.close();
    theater.fail();
    EXPECT_FALSE(theater.failed());
    hangUp(client);
}

TEST(TheaterController, ThePageAddressCarriesTheIdAsItIsThenUnitsTilesAndQuality)
{
    const APIClient client(QStringLiteral("http://127.0.0.1:8080/lib/"), std::nullopt);
    const QUrl plain = TheaterController::pageUrl(client, QStringLiteral("20240512_093000_0001"), {});
    EXPECT_EQ(plain.toString(), "http://127.0.0.1:8080/lib/theater.html?id=20240512_093000_0001");

    const QUrl full = TheaterController::pageUrl(
        client, QStringLiteral("DJI_0001"), {true, QStringLiteral("https://a.tiles.example/dark_all/{z}/{x}/{y}@2x.png?k=1&s=2"), true});
    const QUrlQuery query(full);
    EXPECT_EQ(query.queryItemValue("id"), "DJI_0001");
    EXPECT_EQ(query.queryItemValue("units"), "metric");
    EXPECT_EQ(query.queryItemValue("quality"), "hq");
    // The template survives whole, its own query included.
    EXPECT_EQ(query.queryItemValue("tiles", QUrl::FullyDecoded), "https://a.tiles.example/dark_all/{z}/{x}/{y}@2x.png?k=1&s=2");
}

TEST(TheaterController, TheDevelopmentEntryWantsTheaterExactlyOne)
{
    QProcessEnvironment env;
    env.insert(QStringLiteral("SPIKE_FLIGHT"), QStringLiteral("20240512_093000_0001"));
    EXPECT_FALSE(TheaterController::spikeFlight(env).has_value());
    for (const char *other : {"", "0", "true", "1 ", "yes"}) {
        env.insert(QStringLiteral("SPIKE_THEATER"), QString::fromLatin1(other));
        EXPECT_FALSE(TheaterController::spikeFlight(env).has_value()) << other;
    }
    env.insert(QStringLiteral("SPIKE_THEATER"), QStringLiteral("1"));
    EXPECT_EQ(TheaterController::spikeFlight(env).value_or(QString()), "20240512_093000_0001");
    env.insert(QStringLiteral("SPIKE_FLIGHT"), QString());
    EXPECT_FALSE(TheaterController::spikeFlight(env).has_value());
}

TEST(TheaterController, ThePlayersDevelopmentEntryLeavesTheFlightToTheTheaterOnlyForExactlyOne)
{
    QProcessEnvironment env;
    EXPECT_FALSE(ReviewSession::spikeFlight(env).has_value());
    env.insert(QStringLiteral("SPIKE_FLIGHT"), QStringLiteral("20240512_093000_0001"));
    for (const char *other : {"", "0", "true", "1 "}) {
        env.insert(QStringLiteral("SPIKE_THEATER"), QString::fromLatin1(other));
        EXPECT_EQ(ReviewSession::spikeFlight(env).value_or(QString()), "20240512_093000_0001") << other;
    }
    env.insert(QStringLiteral("SPIKE_THEATER"), QStringLiteral("1"));
    EXPECT_FALSE(ReviewSession::spikeFlight(env).has_value());

    EXPECT_FALSE(ReviewSession::spikeMarks(env));
    env.insert(QStringLiteral("SPIKE_MARK"), QStringLiteral("yes"));
    EXPECT_FALSE(ReviewSession::spikeMarks(env));
    env.insert(QStringLiteral("SPIKE_MARK"), QStringLiteral("1"));
    EXPECT_TRUE(ReviewSession::spikeMarks(env));
}
