// The 3D theater in the app, on real Qt WebEngine under the virtual display, against the real
// library server: the page loads with the session cookie and flies the flight with its video
// playing; a link in it and Esc leave; a redirect stays; a server that is gone or never answers
// gives the failure screen, whose "Close" is the only way on. Pictures in both palettes go to
// <build>/screenshots.
#include "APIClient.h"
#include "CoroTest.h"
#include "LoopbackTiles.h"
#include "Preferences.h"
#include "QuickShots.h"
#include "TheaterController.h"
#include "TheaterLibrary.h"
#include "TheaterTypes.h"
#include "TheaterWebEngine.h"
#include "Theme.h"
#include "ThemeManager.h"

#include <gtest/gtest.h>

#include <QJSEngine>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include <thread>

namespace {

// Qt WebEngine shares OpenGL with the windows: it is set up before the test's application is.
const bool webEngineReady = [] {
    initializeWebEngine();
    return true;
}();

const QString flightId = QString::fromLatin1(TheaterLibrary::flightId);

/// A loopback server that answers every page with a redirect to the same page of `target`.
class Redirector
{
public:
    explicit Redirector(std::string target)
    {
        m_server.Get(".*", [target](const httplib::Request &req, httplib::Response &res) {
            std::string query;
            for (const auto &[key, value] : req.params)
                query += (query.empty() ? "?" : "&") + key + "=" + value;
            res.set_redirect(target + req.path + query, 302);
        });
        m_port = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
        while (!m_server.is_running())
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    ~Redirector()
    {
        m_server.stop();
        m_thread.join();
    }
    [[nodiscard]] QString base() const { return QStringLiteral("http://127.0.0.1:%1").arg(m_port); }

private:
    httplib::Server m_server;
    std::thread m_thread;
    int m_port = 0;
};

class TheaterViewTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        registerTheaterTypes();
        library = new TheaterLibrary();
    }
    static void TearDownTestSuite()
    {
        delete library;
        library = nullptr;
    }

    void SetUp() override
    {
        qmlRegisterSingletonInstance("Aeroloom.Services", 1, 0, "Theme", &theme);
        themes.setPref(ThemeManager::ThemePref::cockpit);
    }

    /// `body` is the harness's content; `context` names what it may use.
    void show(const QByteArray &body, const QVariantMap &context)
    {
        for (auto it = context.begin(); it != context.end(); ++it)
            view.rootContext()->setContextProperty(it.key(), it.value());
        const QByteArray qml = "import QtQuick\nimport Aeroloom.Review\nimport Aeroloom.Services\nimport \"qrc:/aeroloom/review\"\n"
                               "Rectangle {\n    width: 1280; height: 760\n    color: Theme.background\n" + body + "\n}\n";
        ASSERT_EQ(QuickShots::load(view, dir, qml), "");
        view.show();
        view.requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    }

    QQuickItem *page() const { return QuickShots::findItem(view.rootObject(), "theaterPage"); }

    /// What `script` gives in the page, as text ("" while the page isn't there or says nothing).
    QString evaluate(const QString &script)
    {
        QQuickItem *web = page();
        if (!web)
            return {};
        QObject sink;
        QJSEngine *engine = qmlEngine(web);
        const QJSValue callback = engine->evaluate("(function (sink) { return function (r) { sink.objectName = "
                                                   "r === undefined || r === null ? '-' : String(r) } })")
                                      .call({engine->newQObject(&sink)});
        QMetaObject::invokeMethod(web, "runJavaScript", Q_ARG(QString, script), Q_ARG(QJSValue, callback));
        waitUntil([&] { return !sink.objectName().isEmpty(); }, 10000);
        return sink.objectName() == "-" ? QString() : sink.objectName();
    }

    /// Waits until the page has read the flight and says how many samples it holds.
    int waitForSamples(int timeoutMs = 60000)
    {
        int samples = 0;
        waitUntil([&] {
            samples = evaluate(QStringLiteral("document.documentElement?.dataset.samples")).toInt();
            return samples > 0;
        }, timeoutMs);
        return samples;
    }

    /// A real click of the mouse on the element `id` of the page.
    void click(const QString &id)
    {
        const QString rect = evaluate(QStringLiteral("(r => Math.round(r.x + r.width / 2) + ',' + Math.round(r.y + r.height / 2))"
                                                     "(document.getElementById('%1').getBoundingClientRect())").arg(id));
        const QStringList xy = rect.split(QLatin1Char(','));
        ASSERT_EQ(xy.size(), 2) << rect.toStdString();
        const QPointF at = page()->mapToScene(QPointF(xy[0].toDouble(), xy[1].toDouble()));
        QTest::mouseClick(&view, Qt::LeftButton, {}, at.toPoint());
    }

    void shoot(const QString &name)
    {
        QuickShots::save(view, name);
    }

    /// A theater on `client`; it outlives the window that shows it.
    TheaterController &makeTheater(std::shared_ptr<APIClient> client, TheaterController::Options options = {})
    {
        theater = std::make_unique<TheaterController>(std::move(client), std::move(options));
        return *theater;
    }

    static inline TheaterLibrary *library = nullptr;
    QTemporaryDir dir;
    Preferences prefs{dir.filePath("prefs.ini")};
    ThemeManager themes{prefs};
    Theme theme{themes};
    std::unique_ptr<TheaterController> theater;
    QQuickView view;
};

constexpr const char *theaterView = "    MacTheaterView { anchors.fill: parent; controller: theater }";

} // namespace

TEST_F(TheaterViewTest, FliesTheLibrarysPageWithItsSessionAndLeavesByALinkOrEsc)
{
    LoopbackTiles tiles;
    auto client = std::make_shared<APIClient>(QString::fromStdString(library->base()),
                                              QStringLiteral("Bearer ") + QString::fromStdString(library->token()));
    TheaterController &theater = makeTheater(client, [&] {
        return TheaterController::PageOptions{true, tiles.base() + QStringLiteral("/dark_all/{z}/{x}/{y}@2x.png")};
    });
    show(theaterView, {{"theater", QVariant::fromValue(&theater)}});
    theater.open(flightId);
    ASSERT_TRUE(waitUntil([&] { return theater.ready(); }, 20000));
    ASSERT_TRUE(theater.sessionCookie().has_value());

    // The page read the flight through the cookie: without it the page would ask to sign in.
    EXPECT_EQ(waitForSamples(), library->samples()) << evaluate("document.body.innerText").toStdString();
    EXPECT_EQ(evaluate("document.documentElement.dataset.state"), "ready");
    EXPECT_EQ(evaluate("document.getElementById('speedUnit').textContent"), "km/h");
    // Its video started by itself, and plays on.
    double before = 0;
    ASSERT_TRUE(waitUntil([&] {
        before = evaluate("document.getElementById('video').currentTime").toDouble();
        return before > 0.2;
    }, 20000));
    QTest::qWait(1500);
    EXPECT_GT(evaluate("document.getElementById('video').currentTime").toDouble(), before + 0.5);

    waitUntil([&] { return evaluate("document.documentElement.dataset.ground") == "tiles"; }, 15000);
    QTest::qWait(800);
    shoot("theater-app-cockpit");
    themes.setPref(ThemeManager::ThemePref::field);
    shoot("theater-app-field");
    // The page itself shows in the window: the middle of the scene is not one flat colour.
    const QImage picture = view.grabWindow();
    const QColor first = picture.pixelColor(picture.width() / 2, picture.height() / 3);
    bool varied = false;
    for (int y = picture.height() / 4; y < picture.height() * 3 / 4 && !varied; y += 9)
        for (int x = picture.width() / 4; x < picture.width() * 3 / 4 && !varied; x += 9)
            varied = picture.pixelColor(x, y) != first;
    EXPECT_TRUE(varied);

    // Esc leaves even while the page has the keyboard.
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(640, 300));
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_TRUE(waitUntil([&] { return !theater.active(); }, 15000));
    EXPECT_EQ(page(), nullptr);

    // The close button over the page leaves at any moment, even before the page has come.
    theater.open(flightId);
    QQuickItem *close = QuickShots::findItem(view.rootObject(), "theaterClose");
    ASSERT_NE(close, nullptr);
    ASSERT_TRUE(close->isVisible());
    QTest::mouseClick(&view, Qt::LeftButton, {}, close->mapToScene(QPointF(close->width() / 2, close->height() / 2)).toPoint());
    EXPECT_TRUE(waitUntil([&] { return !theater.active(); }, 3000));

    // The page's own link leaves too, wherever it points; the pilot never sees where.
    theater.open(flightId);
    ASSERT_EQ(waitForSamples(), library->samples());
    click(QStringLiteral("exit"));
    EXPECT_TRUE(waitUntil([&] { return !theater.active(); }, 5000));
    EXPECT_FALSE(theater.failed());
}

TEST_F(TheaterViewTest, ARedirectStaysInsideTheTheater)
{
    // The view alone, sent to an address that redirects to the library's page: the same cookie
    // serves both, since cookies don't tell ports apart.
    Redirector redirector(library->base());
    auto client = std::make_shared<APIClient>(QString::fromStdString(library->base()),
                                              QStringLiteral("Bearer ") + QString::fromStdString(library->token()));
    const auto cookie = run(client->webSessionCookie());
    ASSERT_TRUE(cookie.has_value());
    show("    property int exits: 0\n    property int failures: 0\n"
         "    TheaterWebView { anchors.fill: parent; url: pageUrl; cookie: sessionCookie;"
         " onExit: parent.exits++; onFailed: parent.failures++ }",
         {{"pageUrl", redirector.base() + QStringLiteral("/theater.html?id=") + flightId},
          {"sessionCookie", QVariant::fromValue(*cookie)}});
    EXPECT_EQ(waitForSamples(), library->samples());
    EXPECT_TRUE(evaluate("location.href").startsWith(QString::fromStdString(library->base())));
    EXPECT_EQ(view.rootObject()->property("exits").toInt(), 0);
    EXPECT_EQ(view.rootObject()->property("failures").toInt(), 0);

    // A link leaves, and goes nowhere: the page stays as it was behind the theater's back.
    click(QStringLiteral("exit"));
    EXPECT_TRUE(waitUntil([&] { return view.rootObject()->property("exits").toInt() == 1; }, 5000));
    QTest::qWait(300);
    EXPECT_TRUE(evaluate("location.pathname").endsWith("/theater.html"));
}

TEST_F(TheaterViewTest, AServerThatIsGoneShowsTheFailureWithItsCloseOnly)
{
    QString gone;
    {
        LoopbackTiles stopped;
        gone = stopped.base();
    }
    // A token, so the client asks for a cookie, gets none, and loads the page anyway.
    auto client = std::make_shared<APIClient>(gone, QStringLiteral("Bearer nobody"));
    TheaterController &theater = makeTheater(client);
    show(theaterView, {{"theater", QVariant::fromValue(&theater)}});
    theater.open(flightId);
    ASSERT_TRUE(waitUntil([&] { return theater.failed(); }, 30000));
    EXPECT_FALSE(theater.sessionCookie().has_value());
    QQuickItem *failure = QuickShots::findItem(view.rootObject(), "theaterFailure");
    ASSERT_NE(failure, nullptr);
    EXPECT_TRUE(failure->isVisible());
    EXPECT_EQ(failure->property("text").toString(), QStringLiteral("Couldn’t load the 3D theater."));
    EXPECT_EQ(page(), nullptr);
    EXPECT_FALSE(QuickShots::findItem(view.rootObject(), "theaterClose")->isVisible());
    shoot("theater-app-failed-cockpit");
    themes.setPref(ThemeManager::ThemePref::field);
    shoot("theater-app-failed-field");

    QQuickItem *close = QuickShots::findItem(view.rootObject(), "theaterFailureClose");
    ASSERT_NE(close, nullptr);
    QTest::mouseClick(&view, Qt::LeftButton, {}, close->mapToScene(QPointF(close->width() / 2, close->height() / 2)).toPoint());
    EXPECT_TRUE(waitUntil([&] { return !theater.active(); }, 3000));
}

TEST_F(TheaterViewTest, AServerThatNeverAnswersFailsAfterTheLoadTimeout)
{
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    QList<QTcpSocket *> held;
    QObject::connect(&silent, &QTcpServer::newConnection, [&] {
        while (QTcpSocket *socket = silent.nextPendingConnection())
            held.append(socket);
    });
    show("    property int failures: 0\n"
         "    TheaterWebView { anchors.fill: parent; url: pageUrl; loadTimeout: 1500; onFailed: parent.failures++ }",
         {{"pageUrl", QStringLiteral("http://127.0.0.1:%1/theater.html?id=%2").arg(silent.serverPort()).arg(flightId)}});
    EXPECT_TRUE(waitUntil([&] { return view.rootObject()->property("failures").toInt() == 1; }, 15000));
    EXPECT_FALSE(held.isEmpty());
}
