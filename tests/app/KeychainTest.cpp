#include "AppTestSupport.h"
#include "CoroTest.h"
#include "KeychainCredentialStore.h"
#include "RecordingServer.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace {
/// The session's Secret Service, under a service name of this run's own.
struct KeychainFixture : ::testing::Test {
    KeychainCredentialStore store{QStringLiteral("AeroloomTest-%1").arg(QCoreApplication::applicationPid())};

    void SetUp() override
    {
        if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
            GTEST_SKIP() << "no D-Bus session: run through scripts/test.sh for a Secret Service";
        // Probe once: a session without a Secret Service can't prove anything here.
        (void)run(store.write("probe", QStringLiteral("x")));
        if (run(store.read("probe")) != std::optional<QString>("x"))
            GTEST_SKIP() << "the session has no unlocked Secret Service";
        (void)run(store.write("probe", std::nullopt));
    }
    void TearDown() override
    {
        for (const char *key : {"pass", "token", "probe"})
            run(store.write(key, std::nullopt));
    }
};
} // namespace

TEST_F(KeychainFixture, WriteReadDeleteRoundTrip)
{
    run(store.write("token", QStringLiteral("päss wörd ✈")));
    EXPECT_EQ(run(store.read("token")), std::optional<QString>("päss wörd ✈"));
    run(store.write("token", QStringLiteral("second")));
    EXPECT_EQ(run(store.read("token")), std::optional<QString>("second"));
    run(store.write("token", std::nullopt));
    EXPECT_EQ(run(store.read("token")), std::nullopt);
    // Deleting what isn't there is quiet.
    run(store.write("token", std::nullopt));
    EXPECT_EQ(run(store.read("pass")), std::nullopt);
}

TEST_F(KeychainFixture, SessionSurvivesARestart)
{
    RecordingServer server;
    server.replyWith(200, R"({"id":1,"email":"k@x.org","admin":false})");
    IsolatedPrefs p;
    {
        AppModel app(*p.prefs, store, envWith({}));
        app.signIn(server.base(), "ann", "hunter2");
        app.signIn(server.base(), "keytok");
        run(store.settle());
    }
    EXPECT_EQ(run(store.read("pass")), std::nullopt);
    auto prefs = p.reopen();
    {
        AppModel app(*prefs, store, envWith({}));
        run(app.start());
        EXPECT_TRUE(app.loggedIn());
        EXPECT_EQ(app.client()->authHeader(), std::optional<QString>("Bearer keytok"));
        app.signOut();
        run(store.settle());
    }
    EXPECT_EQ(run(store.read("token")), std::nullopt);
}
