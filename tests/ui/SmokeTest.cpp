// Starts the desktop program headless in each state a person meets first and keeps a picture
// of every window under <build>/screenshots.
#include "AppLaunch.h"
#include "DjiTelemetry.h"
#include "RecordingServer.h"
#include "TestServer.h"
#include "TestPaths.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct Launch {
    QString prefix;
    QString theme;
    QMap<QString, QString> env;
    QStringList storedSettings;  ///< extra lines of the settings file
    QStringList files = {};      ///< handed to the program as if opened with it
    bool pendingFlight = false;  ///< a processed flight left from an earlier run
};

QDir shotsDir()
{
    QDir dir(TestPaths::buildDir());
    dir.mkpath(QStringLiteral("screenshots"));
    dir.cd(QStringLiteral("screenshots"));
    return dir;
}

/// Runs the program once with a settings file of its own; returns its exit code.
int launch(const Launch &l, QString *output)
{
    QTemporaryDir home;
    AppLaunch::writeSettings(home.path(), l.theme, l.storedSettings);
    if (l.pendingFlight)
        makeFlightFolder(home.filePath(QStringLiteral(".local/share/Aeroloom/Pending/20240102_030405_0007")).toStdString());
    const QProcessEnvironment env = AppLaunch::environment(home.path(), l.env);

    QProcess process;
    process.setProcessEnvironment(env);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(AEROLOOM_APP_BINARY),
                  QStringList{QStringLiteral("--screenshots"), shotsDir().path(), QStringLiteral("--shot-prefix"), l.prefix}
                      + l.files);
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return -1;
    }
    *output = QString::fromUtf8(process.readAll());
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
}

void expectPictures(const QString &prefix)
{
    for (const char *window : {"main", "import", "cut", "settings"}) {
        const QString path = shotsDir().filePath(prefix + "-" + window + ".png");
        const QImage image(path);
        ASSERT_FALSE(image.isNull()) << path.toStdString();
        EXPECT_GE(image.width(), 500) << path.toStdString();
        // Something was drawn: a blank window is one colour.
        const QColor corner = image.pixelColor(0, image.height() - 1);
        bool varied = false;
        for (int y = 0; y < image.height() && !varied; y += 7)
            for (int x = 0; x < image.width() && !varied; x += 7)
                varied = image.pixelColor(x, y) != corner;
        EXPECT_TRUE(varied) << path.toStdString();
    }
}

} // namespace

TEST(Smoke, EveryWindowInEveryFirstState)
{
    // A real library with its sample flights, so the signed-in pictures show what a pilot meets.
    TestServer library([](ServerConfig &c) {
        c.samples = true;
        c.sampleSeconds = 4;
    });
    const QString base = QString::fromStdString(library.base());

    const QList<Launch> launches = {
        {"signedout-cockpit", "cockpit", {}, {}},
        {"signedout-field", "field", {}, {}},
        // A stored user opens the sign-in screen on its advanced password form.
        {"signin-advanced-cockpit", "cockpit", {}, {"user=ann"}},
        {"signin-advanced-field", "field", {}, {"user=ann"}},
        {"signedin-cockpit", "cockpit", {{"SPIKE_BASE", base}}, {}},
        {"signedin-field", "field", {{"SPIKE_BASE", base}}, {}},
        {"stories-cockpit", "cockpit", {{"SPIKE_BASE", base}, {"SPIKE_SCREEN", "reels"}}, {}},
    };
    for (const Launch &l : launches) {
        QString output;
        EXPECT_EQ(launch(l, &output), 0) << l.prefix.toStdString() << "\n" << output.toStdString();
        expectPictures(l.prefix);
    }
}

TEST(Smoke, TheImportWindowWithFlightsWaiting)
{
    // A card opened with the program, and a flight processed by an earlier run that never got
    // sent: the window lists both, ready to start.
    TestServer library;
    const QString base = QString::fromStdString(library.base());
    QTemporaryDir dir;
    const auto card = Fixtures::makeCard(dir.filePath("card"));
    ASSERT_TRUE(card.ok()) << card.errorText().toStdString();
    for (const QString theme : {"cockpit", "field"}) {
        const Launch l{"import-ready-" + theme, theme, {{"SPIKE_BASE", base}}, {}, {card->root}, true};
        QString output;
        EXPECT_EQ(launch(l, &output), 0) << output.toStdString();
        expectPictures(l.prefix);
    }
}

TEST(Smoke, BadStoredStateStillStarts)
{
    RecordingServer captive;
    captive.replyWith(200, "<html>captive portal</html>", "text/html");
    // A garbage base, and an account reply that is no JSON: both start signed in, no crash.
    // The keyring may be missing altogether here; that too must only cost the secrets.
    const QList<Launch> launches = {
        {"garbage-base", "system", {}, {"base=\"::not a url\"", "user=\" ann \""}},
        {"captive-portal", "system", {}, {"base=" + captive.base()}},
    };
    for (const Launch &l : launches) {
        QString output;
        EXPECT_EQ(launch(l, &output), 0) << l.prefix.toStdString() << "\n" << output.toStdString();
        expectPictures(l.prefix);
    }
}
