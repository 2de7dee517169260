#include "AppModel.h"
#include "AppTestSupport.h"
#include "CoroTest.h"
#include "MemoryCredentialStore.h"
#include "RecordingServer.h"

#include <gtest/gtest.h>

namespace {
QString authOf(const AppModel &app)
{
    return app.client()->authHeader().value_or(QStringLiteral("<none>"));
}
} // namespace

TEST(AppModelStart, SignedOutWithNothingStored)
{
    IsolatedPrefs p;
    MemoryCredentialStore creds;
    AppModel app(*p.prefs, creds, envWith({}));
    run(app.start());
    EXPECT_FALSE(app.loggedIn());
    EXPECT_EQ(app.client()->baseString(), AppModel::defaultBase);
    EXPECT_FALSE(app.client()->authHeader());
    EXPECT_FALSE(app.plan());
    EXPECT_FALSE(app.email());
}

TEST(AppModelStart, EnvironmentOverridesWinAndAreNotStored)
{
    RecordingServer server;
    replyClosing(server, 200, R"({"id":1,"email":"env@x.org","admin":false,"plan":"pro"})");
    IsolatedPrefs p;
    MemoryCredentialStore creds;
    (void)creds.write("token", QStringLiteral("stored-token"));
    p.prefs->setValue("base", "http://stored.invalid");

    {
        AppModel app(*p.prefs, creds, envWith({{"SPIKE_BASE", server.base()}, {"SPIKE_TOKEN", "t1"}, {"SPIKE_USER", "u"}}));
        QSignalSpy refreshed(&app, &AppModel::accountRefreshed);
        run(app.start());
        EXPECT_TRUE(app.loggedIn());
        EXPECT_EQ(authOf(app), "Bearer t1");
        ASSERT_TRUE(waitForRefresh(app, refreshed));
        EXPECT_EQ(app.plan(), std::optional<QString>("pro"));
        EXPECT_TRUE(app.isPro());
        EXPECT_EQ(app.email(), std::optional<QString>("env@x.org"));
        EXPECT_EQ(server.last().header("Authorization"), "Bearer t1");
    }
    {
        // User without password: Basic with an empty password.
        AppModel app(*p.prefs, creds, envWith({{"SPIKE_BASE", server.base()}, {"SPIKE_USER", "pilot"}}));
        run(app.start());
        EXPECT_EQ(authOf(app), "Basic " + QByteArray("pilot:").toBase64());
    }
    {
        // An empty user counts as none: no header at all, as for a local server.
        AppModel app(*p.prefs, creds, envWith({{"SPIKE_BASE", server.base()}, {"SPIKE_USER", ""}, {"SPIKE_PASS", "x"}}));
        run(app.start());
        EXPECT_TRUE(app.loggedIn());
        EXPECT_EQ(authOf(app), "<none>");
        // Sign-out ends the override session without touching what is stored for others.
        app.signOut();
        EXPECT_FALSE(app.loggedIn());
    }
    EXPECT_EQ(p.prefs->stringValue("user"), QString());
}

TEST(AppModelStart, StoredCredentialsPickTheirHeader)
{
    RecordingServer server;
    replyClosing(server, 401, "{}");
    IsolatedPrefs p;
    MemoryCredentialStore creds;
    p.prefs->setValue("base", server.base() + "/");

    {
        // Base alone: signed in without a header (a local server).
        AppModel app(*p.prefs, creds, envWith({}));
        run(app.start());
        EXPECT_TRUE(app.loggedIn());
        EXPECT_EQ(app.client()->baseString(), server.base());
        EXPECT_EQ(authOf(app), "<none>");
    }
    p.prefs->setValue("user", "  ann  ");
    {
        // A stored user whose password is missing gives Basic with an empty password; the
        // failing account refresh leaves the session signed in with the trimmed user as e-mail.
        AppModel app(*p.prefs, creds, envWith({}));
        QSignalSpy refreshed(&app, &AppModel::accountRefreshed);
        run(app.start());
        EXPECT_EQ(authOf(app), "Basic " + QByteArray("  ann  :").toBase64());
        ASSERT_TRUE(waitForRefresh(app, refreshed));
        EXPECT_TRUE(app.loggedIn());
        EXPECT_FALSE(app.plan());
        EXPECT_EQ(app.email(), std::optional<QString>("ann"));
    }
    (void)creds.write("token", QStringLiteral("tok"));
    {
        AppModel app(*p.prefs, creds, envWith({}));
        run(app.start());
        EXPECT_EQ(authOf(app), "Bearer tok");
    }
}

TEST(AppModelSession, SignInRemovesTheOtherKindOfSecret)
{
    RecordingServer server;
    replyClosing(server, 500, "down", "text/plain");
    IsolatedPrefs p;
    MemoryCredentialStore creds;
    AppModel app(*p.prefs, creds, envWith({}));
    run(app.start());
    QSignalSpy refreshed(&app, &AppModel::accountRefreshed);

    app.signIn(server.base(), "bob", "pw");
    EXPECT_TRUE(app.loggedIn());
    EXPECT_EQ(p.prefs->stringValue("user"), "bob");
    EXPECT_EQ(creds.peek("pass"), "pw");
    EXPECT_FALSE(creds.has("token"));
    ASSERT_TRUE(waitForRefresh(app, refreshed, 1));
    EXPECT_EQ(app.email(), std::optional<QString>("bob"));

    app.signIn(server.base() + "/", "tok");
    EXPECT_FALSE(p.prefs->contains("user"));
    EXPECT_FALSE(creds.has("pass"));
    EXPECT_EQ(creds.peek("token"), "tok");
    EXPECT_EQ(authOf(app), "Bearer tok");
    EXPECT_EQ(app.client()->baseString(), server.base());
    ASSERT_TRUE(waitForRefresh(app, refreshed, 2));
    // No user stored and the refresh failed: no e-mail at all.
    EXPECT_FALSE(app.email());

    // Password sign-in with an empty user: no header and no password kept.
    app.signIn(server.base(), "", "ignored");
    EXPECT_EQ(authOf(app), "<none>");
    EXPECT_FALSE(creds.has("pass"));
    EXPECT_FALSE(creds.has("token"));

    // The next start sees what was stored.
    auto again = p.reopen();
    AppModel next(*again, creds, envWith({}));
    run(next.start());
    EXPECT_TRUE(next.loggedIn());
    EXPECT_EQ(authOf(next), "<none>");
}

TEST(AppModelSession, SignOutForgetsEverythingButKeepsTheClient)
{
    RecordingServer server;
    replyClosing(server, 200, R"({"id":3,"email":"me@x.org","admin":false,"plan":"free"})");
    IsolatedPrefs p;
    MemoryCredentialStore creds;
    AppModel app(*p.prefs, creds, envWith({}));
    QSignalSpy refreshed(&app, &AppModel::accountRefreshed);
    app.signIn(server.base(), "tok");
    ASSERT_TRUE(waitForRefresh(app, refreshed));
    EXPECT_EQ(app.plan(), std::optional<QString>("free"));
    EXPECT_FALSE(app.isPro());
    const auto client = app.client();

    app.signOut();
    EXPECT_FALSE(app.loggedIn());
    EXPECT_FALSE(app.plan());
    EXPECT_FALSE(app.email());
    EXPECT_FALSE(p.prefs->contains("base"));
    EXPECT_FALSE(creds.has("token"));
    EXPECT_EQ(app.client(), client);
    EXPECT_EQ(authOf(app), "Bearer tok");

    auto again = p.reopen();
    AppModel next(*again, creds, envWith({}));
    run(next.start());
    EXPECT_FALSE(next.loggedIn());
}

TEST(AppModelBadInput, GarbageBaseAndNonJsonAccountStillStart)
{
    IsolatedPrefs p;
    MemoryCredentialStore creds;
    p.prefs->setValue("user", " x ");
    for (const QString &base : {QStringLiteral("not a url at all"), QStringLiteral("::://"), QStringLiteral(""),
                               QStringLiteral("http://[broken")}) {
        p.prefs->setValue("base", base);
        AppModel app(*p.prefs, creds, envWith({}));
        QSignalSpy refreshed(&app, &AppModel::accountRefreshed);
        run(app.start());
        EXPECT_TRUE(app.loggedIn()) << base.toStdString();
        ASSERT_TRUE(waitForRefresh(app, refreshed)) << base.toStdString();
        EXPECT_EQ(app.email(), std::optional<QString>("x"));
    }

    RecordingServer server;
    replyClosing(server, 200, "<html>captive portal</html>", "text/html");
    p.prefs->setValue("base", server.base());
    AppModel app(*p.prefs, creds, envWith({}));
    QSignalSpy refreshed(&app, &AppModel::accountRefreshed);
    run(app.start());
    ASSERT_TRUE(waitForRefresh(app, refreshed));
    EXPECT_TRUE(app.loggedIn());
    EXPECT_FALSE(app.plan());
    EXPECT_EQ(app.email(), std::optional<QString>("x"));
}
