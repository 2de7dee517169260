// Runs with a D-Bus address that leads nowhere: the keyring can't be reached at all.
#include "AppTestSupport.h"
#include "CoroTest.h"
#include "KeychainCredentialStore.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(KeyringAbsent, StartAndSignInNeitherHangNorCrash)
{
    KeychainCredentialStore store(QStringLiteral("AeroloomTest-absent"), 3s);
    IsolatedPrefs p;
    p.prefs->setValue("base", "http://127.0.0.1:9");
    p.prefs->setValue("user", "ann");

    const auto started = std::chrono::steady_clock::now();
    AppModel app(*p.prefs, store, envWith({}));
    run(app.start());
    // The stored base still signs in; the unreadable password counts as empty.
    EXPECT_TRUE(app.loggedIn());
    EXPECT_EQ(app.client()->authHeader(), std::optional<QString>("Basic " + QByteArray("ann:").toBase64()));

    app.signIn("http://127.0.0.1:9", "tok");
    EXPECT_TRUE(app.loggedIn());
    run(store.settle());
    app.signOut();
    run(store.settle());
    EXPECT_FALSE(app.loggedIn());
    EXPECT_LT(std::chrono::steady_clock::now() - started, 30s);
}
