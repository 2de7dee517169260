// Preloaded into the desktop program by the main window's player test (LD_PRELOAD): once the
// main window shows the gallery, it walks through the flight player as a pilot would, with
// presses and keys on the real window, and prints one line per finding. The program leaves
// with 0 when every finding held, 1 otherwise. Pictures go to AEROLOOM_WALK_SHOTS.
#include "PictureSpread.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QJSValue>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

QString shotsDir;

bool waitUntil(const std::function<bool()> &done, int timeoutMs = 10000)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(2);
    }
    return true;
}

QQuickItem *findItem(QQuickItem *from, const std::function<bool(const QString &)> &matches)
{
    if (!from)
        return nullptr;
    if (matches(from->objectName()) && from->isVisible())
        return from;
    for (QQuickItem *child : from->childItems())
        if (QQuickItem *found = findItem(child, matches))
            return found;
    return nullptr;
}


class Walk
{
public:
    explicit Walk(QQuickWindow *window) : m_window(window) {}

    int run()
    {
        if (!reachSingletons())
            return 1;
        check(waitUntil([&] { return m_gallery->property("flightCount").toInt() > 0 && card(); }, 30000),
              "the gallery lists the library's flights");
        QQuickItem *first = card();
        if (!first)
            return 1;
        const QString id = first->objectName().mid(5);

        // A press on a card opens its flight over the whole window, playing.
        QPointer<QObject> video = openAndWatch(first, id);
        shoot(QStringLiteral("main-player-cockpit"), "cockpit");
        shoot(QStringLiteral("main-player-field"), "field");
        setTheme("cockpit");

        // The keys go to the player from the start: Space pauses.
        QPointer<QObject> model = player();
        QTest::keyClick(m_window, Qt::Key_Space);
        check(waitUntil([&] { return model && !model->property("playing").toBool(); }), "Space pauses the flight");

        // "3D" puts the theater of this flight over the window; Esc there closes only the
        // theater, and the player's keys work again afterwards.
        press(item("theaterButton"));
        check(m_theater->property("active").toBool(), "3D opens the theater");
        check(m_theater->property("flightId").toString() == id, "the theater shows the opened flight");
        check(waitUntil([&] { return item("theater") != nullptr; }), "the theater covers the main window");
        check(waitUntil([&] {
                  QQuickItem *page = item("theaterPage");
                  return page && page->property("loadProgress").toInt() == 100 && pictureSpread(pictureOf(page)) > 10;
              }, 30000),
              "the theater's page paints over the window");
        check(waitUntil([&] { return theaterVideoTime() > 0.5; }, 20000), "the theater's video plays");
        shoot(QStringLiteral("main-theater-cockpit"), "cockpit");
        QTest::keyClick(m_window, Qt::Key_Escape);
        check(waitUntil([&] { return !m_theater->property("active").toBool() && !item("theater"); }),
              "Esc closes the theater");
        check(player() == model && model, "the player stays open under a closed theater");
        QTest::keyClick(m_window, Qt::Key_Space);
        check(waitUntil([&] { return model && model->property("playing").toBool(); }),
              "Space plays again after the theater");

        // Esc leaves the player: back on the gallery, nothing playing.
        QTest::keyClick(m_window, Qt::Key_Escape);
        expectGallery(video, "Esc");

        // The back button does the same, for a flight opened again.
        video = openAndWatch(card(), id);
        press(item("backButton"));
        expectGallery(video, "‹ Flights");
        std::fprintf(stderr, "walk: done, %d failed\n", m_failures);
        return m_failures ? 1 : 0;
    }

private:
    void check(bool ok, const char *what)
    {
        std::fprintf(stderr, "walk: %s: %s\n", ok ? "ok" : "FAILED", what);
        if (!ok)
            ++m_failures;
    }

    bool reachSingletons()
    {
        QQmlEngine *engine = qmlEngine(m_window);
        if (!engine) {
            check(false, "the main window comes from the QML engine");
            return false;
        }
        QQmlComponent component(engine);
        component.setData(R"(import QtQml
import Aeroloom.Services
import Aeroloom.Browse
import Aeroloom.Review
QtObject {
    readonly property QtObject gallery: Gallery
    readonly property QtObject review: Review
    readonly property QtObject theater: Theater
    readonly property QtObject themes: Themes
})", QUrl::fromLocalFile(QDir(shotsDir).filePath(QStringLiteral("WalkSingletons.qml"))));
        // The engine may still be resolving imports for the program's own screens.
        waitUntil([&] { return !component.isLoading(); });
        m_singletons = component.create();
        if (!m_singletons) {
            std::fprintf(stderr, "walk: %s\n", qPrintable(component.errorString()));
            check(false, "the program's services are reachable");
            return false;
        }
        m_gallery = m_singletons->property("gallery").value<QObject *>();
        m_review = m_singletons->property("review").value<QObject *>();
        m_theater = m_singletons->property("theater").value<QObject *>();
        m_themes = m_singletons->property("themes").value<QObject *>();
        return m_gallery && m_review && m_theater && m_themes;
    }

    QQuickItem *item(const char *name) const
    {
        return findItem(m_window->contentItem(), [name](const QString &n) { return n == QLatin1String(name); });
    }
    QQuickItem *card() const
    {
        return findItem(m_window->contentItem(), [](const QString &n) { return n.startsWith(QLatin1String("card-")); });
    }
    QObject *player() const { return m_review->property("player").value<QObject *>(); }

    void press(QQuickItem *target)
    {
        if (!target)
            return check(false, "the item to press is on screen");
        const QPointF centre = target->mapToScene(QPointF(target->width() / 2, target->height() / 2));
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centre.toPoint());
        QCoreApplication::processEvents();
    }

    /// Where the theater page's video stands, read through the page's title (-1 before it answers).
    double theaterVideoTime()
    {
        QQuickItem *page = item("theaterPage");
        if (!page)
            return -1;
        QMetaObject::invokeMethod(page, "runJavaScript",
                                  Q_ARG(QString, QStringLiteral("document.title = 'video ' + document.getElementById('video').currentTime")),
                                  Q_ARG(QJSValue, QJSValue()));
        waitUntil([] { return false; }, 100);
        const QString title = page->property("title").toString();
        return title.startsWith(QLatin1String("video ")) ? title.mid(6).toDouble() : -1;
    }

    QImage pictureOf(QQuickItem *it) const
    {
        const QImage window = m_window->grabWindow();
        const qreal ratio = window.width() / qreal(m_window->width());
        const QRectF area = it->mapRectToScene(QRectF(0, 0, it->width(), it->height()));
        return window.copy(QRectF(area.topLeft() * ratio, area.size() * ratio).toRect());
    }

    /// Presses the card and follows the player that opens; returns its video player.
    QPointer<QObject> openAndWatch(QQuickItem *cardItem, const QString &id)
    {
        press(cardItem);
        check(waitUntil([&] { return player() != nullptr; }), "a press on a card opens the player");
        QObject *model = player();
        if (!model)
            return {};
        check(model->property("flightId").toString() == id, "the player shows the pressed flight");
        check(m_gallery->property("openedId").toString() == id, "the gallery knows the opened flight");
        check(waitUntil([&] {
                  QQuickItem *loader = item("playerLoader");
                  return loader && loader->property("item").value<QObject *>() != nullptr;
              }),
              "the player screen shows");
        check(waitUntil([&] { return model->property("playing").toBool() && model->property("current").toDouble() > 0.3; },
                        20000),
              "the flight plays");
        QQuickItem *videoItem = item("video");
        check(videoItem && waitUntil([&] { return pictureSpread(pictureOf(videoItem)) > 20; }, 15000),
              "the video area shows the flight");
        return model->property("player").value<QObject *>();
    }

    void expectGallery(const QPointer<QObject> &video, const char *how)
    {
        const QByteArray way(how);
        check(waitUntil([&] { return player() == nullptr; }), QByteArray(way + " closes the player").constData());
        check(m_gallery->property("openedId").toString().isEmpty(), QByteArray(way + " clears the opened flight").constData());
        check(waitUntil([&] { return video.isNull(); }), QByteArray(way + " stops and drops the video").constData());
        QQuickItem *loader = findItem(m_window->contentItem(), [](const QString &n) { return n == QLatin1String("playerLoader"); });
        check(loader && loader->property("item").value<QObject *>() == nullptr,
              QByteArray(way + " leaves no player screen").constData());
        check(card() != nullptr, QByteArray(way + " shows the gallery's cards again").constData());
    }

    void setTheme(const char *pref)
    {
        m_themes->setProperty("pref", QString::fromLatin1(pref));
    }

    void shoot(const QString &name, const char *pref)
    {
        setTheme(pref);
        waitUntil([] { return false; }, 400);  // the palette reaches every painted item
        const QImage picture = m_window->grabWindow();
        const bool saved = !picture.isNull() && QDir().mkpath(shotsDir) && picture.save(QDir(shotsDir).filePath(name + ".png"));
        check(saved, qPrintable(QStringLiteral("picture %1").arg(name)));
    }

    QQuickWindow *m_window;
    QObject *m_singletons = nullptr;
    QObject *m_gallery = nullptr;
    QObject *m_review = nullptr;
    QObject *m_theater = nullptr;
    QObject *m_themes = nullptr;
    int m_failures = 0;
};

QQuickWindow *mainWindow()
{
    for (QWindow *window : QGuiApplication::topLevelWindows())
        if (window->objectName() == QLatin1String("main") && window->isExposed())
            if (auto *quick = qobject_cast<QQuickWindow *>(window))
                return quick;
    return nullptr;
}

/// Waits for the main window without a loop of its own: the program may still be in one of its
/// start-up waits.
void startWhenShown()
{
    auto *poll = new QTimer(qApp);
    QObject::connect(poll, &QTimer::timeout, qApp, [poll] {
        QQuickWindow *window = mainWindow();
        if (!window)
            return;
        poll->stop();
        poll->deleteLater();
        QTimer::singleShot(0, qApp, [window] {
            window->requestActivate();
            if (!QTest::qWaitForWindowActive(window))
                std::fprintf(stderr, "walk: the main window never became active; keys may go astray\n");
            QCoreApplication::exit(Walk(window).run());
        });
    });
    poll->start(100);
}

// Children of the program (the web engine's processes, tools) must not walk too.
[[maybe_unused]] const bool registered = [] {
    shotsDir = qEnvironmentVariable("AEROLOOM_WALK_SHOTS");
    ::unsetenv("LD_PRELOAD");
    ::unsetenv("AEROLOOM_WALK_SHOTS");
    if (!shotsDir.isEmpty())
        qAddPreRoutine(startWhenShown);
    return true;
}();

} // namespace
