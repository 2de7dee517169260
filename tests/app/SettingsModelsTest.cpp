// The settings rows against a real library server.
#include "AccountSettingsModel.h"
#include "StorageSettingsModel.h"

#include "AppEvents.h"
#include "AppModel.h"
#include "AppTestSupport.h"
#include "CoroTest.h"
#include "MemoryCredentialStore.h"
#include "StallingServer.h"
#include "TestServer.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

struct Session {
    IsolatedPrefs prefs;
    MemoryCredentialStore credentials;
    std::unique_ptr<AppModel> app;
    AppEvents events;
    explicit Session(const std::string &base)
    {
        app = std::make_unique<AppModel>(*prefs.prefs, credentials,
                                         envWith({{"SPIKE_BASE", QString::fromStdString(base)}}));
        run(app->start());
    }
};

void load(AccountSettingsModel &model)
{
    model.load();
    ASSERT_TRUE(waitUntil([&] { return model.email() != QStringLiteral("—") && model.hasLibrary(); }));
}

} // namespace

TEST(SettingsModels, AccountRowsSamplesAndTheConnectionTest)
{
    TestServer server([](ServerConfig &c) {
        c.samples = true;
        c.sampleSeconds = 3;
    });
    Session session(server.base());
    AccountSettingsModel model(*session.app, &session.events);
    load(model);
    ASSERT_TRUE(waitUntil([&] { return model.samplesCount() > 0; }, 20000));
    EXPECT_FALSE(model.showStorage()) << "no quota: no storage row";
    EXPECT_TRUE(model.libraryText().endsWith(" flights"));
    EXPECT_EQ(model.removeSamplesTitle(), QStringLiteral("Remove %1 Sample Flights").arg(model.samplesCount()));

    QSignalSpy samplesChanged(&session.events, &AppEvents::samplesChanged);
    model.removeSamples();
    ASSERT_TRUE(waitUntil([&] { return !model.samplesBusy() && samplesChanged.count() == 1; }, 20000));
    EXPECT_EQ(model.samplesCount(), 0);
    EXPECT_GE(model.samplesRestorable(), 1);
    EXPECT_EQ(model.libraryText(), QStringLiteral("0 flights"));

    model.restoreSamples();
    ASSERT_TRUE(waitUntil([&] { return !model.samplesBusy() && samplesChanged.count() == 2; }, 30000));
    EXPECT_GE(model.samplesCount(), 1);

    model.testConnection();
    ASSERT_TRUE(waitUntil([&] { return !model.checking() && !model.checkResult().isEmpty(); }));
    EXPECT_TRUE(model.checkResult().startsWith(QStringLiteral("OK — "))) << model.checkResult().toStdString();
}

TEST(SettingsModels, OneFlightReadsSingularInTheRowButNotInTheTestAndAFailedTestKeepsTheRow)
{
    QTemporaryDir work;
    TestServer roomy;
    ASSERT_EQ(uploadFlight(*roomy.client(), "ONE", makeFlightFolder(work.path().toStdString() + "/one"))->status, 200);

    Session session(roomy.base());
    AccountSettingsModel model(*session.app, &session.events);
    load(model);
    EXPECT_EQ(model.libraryText(), QStringLiteral("1 flight"));
    model.testConnection();
    ASSERT_TRUE(waitUntil([&] { return !model.checking() && !model.checkResult().isEmpty(); }));
    EXPECT_EQ(model.checkResult(), QStringLiteral("OK — 1 flights"));

    roomy.server().stop();
    model.testConnection();
    ASSERT_TRUE(waitUntil([&] { return !model.checking() && model.checkResult() != QStringLiteral("OK — 1 flights"); }));
    EXPECT_FALSE(model.checkResult().isEmpty());
    EXPECT_EQ(model.libraryText(), QStringLiteral("1 flight")) << "a failed test leaves the library row";
}

TEST(SettingsModels, TheAccountTabForgetsASessionAndStartsEveryLoadFromNothing)
{
    TestServer first;
    Session session(first.base());
    AccountSettingsModel model(*session.app, &session.events);
    load(model);
    model.testConnection();
    ASSERT_TRUE(waitUntil([&] { return !model.checking() && !model.checkResult().isEmpty(); }));

    session.app->signOut();
    EXPECT_EQ(model.email(), QStringLiteral("—"));
    EXPECT_FALSE(model.hasLibrary());
    EXPECT_TRUE(model.checkResult().isEmpty());
    model.load();  // the window shown while signed out asks nothing
    EXPECT_FALSE(model.hasLibrary());
    session.app->client()->network()->clearConnectionCache();  // the first library needn't wait it out

    // Another library whose every answer fails: the rows stay empty, not the first library's.
    RecordingServer broken;
    replyClosing(broken, 500, "{}");
    session.app->signIn(broken.base(), QString(), QString());
    model.load();
    // The account refresh of the sign-in, then the three steps of the load.
    ASSERT_TRUE(waitUntil([&] { return broken.count() >= 4; }));
    waitUntil([] { return false; }, 300);
    EXPECT_EQ(model.email(), QStringLiteral("—"));
    EXPECT_FALSE(model.hasLibrary());
    EXPECT_EQ(model.samplesCount(), 0);
}

TEST(SettingsModels, TheConnectionTestOfAStalledServerEndsInTime)
{
    using namespace std::chrono_literals;
    StallingServer stalled;
    IsolatedPrefs prefs;
    MemoryCredentialStore credentials;
    AppEvents events;
    AppModel app(*prefs.prefs, credentials, envWith({{"SPIKE_BASE", stalled.base()}}));
    app.setClientTimeout(200ms);
    run(app.start());
    AccountSettingsModel model(app, &events);
    model.testConnection();
    EXPECT_TRUE(model.checking());
    ASSERT_TRUE(waitUntil([&] { return !model.checking(); }, 5000)) << "still “Checking…”";
    EXPECT_EQ(model.checkResult(), QStringLiteral("The request timed out."));
}

TEST(SettingsModels, PendingUploadsAddUpAndClear)
{
    IsolatedPrefs prefs;
    QTemporaryDir dir;
    const QString pending = dir.filePath("Pending");
    QDir().mkpath(pending + "/A/deeper");
    for (const auto &[name, size] : {std::pair{"A/proxy.mp4", 1500}, std::pair{"A/deeper/x", 500}}) {
        QFile f(pending + "/" + name);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(QByteArray(size, 'x'));
    }
    StorageSettingsModel model(*prefs.prefs, pending);
    model.refreshPending();
    EXPECT_EQ(model.pendingBytes(), 2000);
    EXPECT_EQ(model.pendingText(), QStringLiteral("2.0 kB"));
    model.clearPending();
    EXPECT_EQ(model.pendingBytes(), 0);
    model.clearPending();  // an empty or missing folder stays at zero
    EXPECT_EQ(model.pendingBytes(), 0);

    EXPECT_EQ(model.outputName(), QStringLiteral("~/Videos/Aeroloom"));
    // An older build left only the plain path: it still names the folder.
    prefs.prefs->setValue("cut.outputRoot.path", dir.filePath("Old"));
    EXPECT_EQ(model.outputName(), QStringLiteral("Old"));
    model.setOutputFolder(QUrl::fromLocalFile(dir.filePath("Cuts")));
    EXPECT_EQ(model.outputName(), QStringLiteral("Cuts"));
    // The cut window reads the same key; the plain path of old goes so the two can't disagree.
    EXPECT_EQ(prefs.reopen()->stringValue("cut.outputRoot"), dir.filePath("Cuts"));
    EXPECT_FALSE(prefs.prefs->contains("cut.outputRoot.path"));
}
