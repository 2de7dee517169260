// The composition root: builds the services once and hands them to the screens.
#include "AccountSettingsModel.h"
#include "AppEvents.h"
#include "AppModel.h"
#include "BrowseTypes.h"
#include "ClipLightboxModel.h"
#include "ClipsBrowserModel.h"
#include "ClipsBrowserStore.h"
#include "CutFlowFactory.h"
#include "CuttingTypes.h"
#include "DesktopShare.h"
#include "FileOpenRouter.h"
#include "GalleryStore.h"
#include "GeocodeClient.h"
#include "ImageCache.h"
#include "ImportWindowModel.h"
#include "IngestPipeline.h"
#include "IngestQueue.h"
#include "KeychainCredentialStore.h"
#include "LightboxTypes.h"
#include "MountWatcher.h"
#include "MpvPlayer.h"
#include "PlaybackQuality.h"
#include "Preferences.h"
#include "ReelsHubModel.h"
#include "ReelsStore.h"
#include "ReviewSession.h"
#include "ReviewTypes.h"
#include "SingleInstance.h"
#include "StoriesTypes.h"
#include "StoryDevHooks.h"
#include "StoryNavigator.h"
#include "SystemColorScheme.h"
#include "Theme.h"
#include "StorageSettingsModel.h"
#include "TheaterController.h"
#include "TheaterTypes.h"
#include "TheaterWebEngine.h"
#include "TileMath.h"
#include "ThemeManager.h"
#include "TrimSheetModel.h"
#include "UiServices.h"
#include "UnitsPref.h"
#include "WindowShots.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QStandardPaths>

#include <QCoroTask>

#include <cstdio>

int main(int argc, char *argv[])
{
    const qint64 startedMs = QDateTime::currentMSecsSinceEpoch();
    // The theater's web view shares OpenGL with the windows: set up before the application.
    initializeWebEngine();
    QGuiApplication app(argc, argv);
    QGuiApplication::setOrganizationName(QStringLiteral("Aeroloom"));
    QGuiApplication::setApplicationName(QStringLiteral("Aeroloom"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Ornivale"));
    // Lets the desktop match the windows to the installed entry and its icon.
    QGuiApplication::setDesktopFileName(QStringLiteral("aeroloom"));

    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption screenshots(QStringLiteral("screenshots"),
                                         QStringLiteral("Save a picture of every window into <dir> and quit."),
                                         QStringLiteral("dir"));
    const QCommandLineOption prefix(QStringLiteral("shot-prefix"), QStringLiteral("Prefix of the picture names."),
                                    QStringLiteral("prefix"), QStringLiteral("aeroloom"));
    const QCommandLineOption firstFrame(QStringLiteral("first-frame-exit"),
                                        QStringLiteral("Print the time to the main window's first frame and quit."));
    parser.addOptions({screenshots, prefix, firstFrame});
    parser.addPositionalArgument(QStringLiteral("files"), QStringLiteral("Flight files to import."), QStringLiteral("[files...]"));
    parser.process(app);

    // One program per work folder: a second launch hands its files to the running one and leaves.
    const QString workRoot = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Aeroloom");
    const QList<QUrl> opened = FileOpenRouter::urlsOf(parser.positionalArguments());
    SingleInstance instance(workRoot);
    if (!instance.claim(opened)) {
        if (instance.handedOver())
            return 0;
        std::fprintf(stderr, "Aeroloom is already running but did not answer. Try again in a moment.\n");
        return 1;
    }
    FileOpenRouter router;
    router.open(opened);
    QObject::connect(&instance, &SingleInstance::launched, &router, &FileOpenRouter::open);

    // The offscreen platform has no GPU: draw in software so pictures come out the same everywhere.
    // Elsewhere OpenGL, which mpv draws video with.
    if (QGuiApplication::platformName() == QLatin1String("offscreen"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    else
        QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    QQuickStyle::setStyle(QStringLiteral("Basic"));

    Preferences prefs;
    prefs.registerAppDefaults();
    KeychainCredentialStore credentials;
    AppModel appModel(prefs, credentials);
    ThemeManager themeManager(prefs);
    SystemColorScheme systemScheme;
    themeManager.setSystemDark(systemScheme.dark());
    QObject::connect(&systemScheme, &SystemColorScheme::darkChanged, &themeManager,
                     [&] { themeManager.setSystemDark(systemScheme.dark()); });
    Theme theme(themeManager);
    UnitsPref units(prefs);
    PlaybackQuality playback(prefs);
    ImageCache images;

    // The session is decided before the first window shows, so no window flashes the wrong
    // screen; a keyring that doesn't answer gives up after its timeout.
    QCoro::waitFor(appModel.start());
    router.follow(&appModel);

    // Import: one queue for the life of the program, so closing its window never stops it.
    // Place names only once the pilot has given OpenStreetMap a contact address (Settings, Import).
    const QString contactKey = QStringLiteral("ingest.geocodeContact");
    GeocodeClient::Options places;
    places.contact = prefs.stringValue(contactKey);
    GeocodeClient geocoder(places);
    QObject::connect(&prefs, &Preferences::changed, &geocoder, [&](const QString &key) {
        if (key == contactKey)
            geocoder.setContact(prefs.stringValue(key));
    });
    IngestQueue::Services ingest;
    ingest.client = appModel.client();
    ingest.process = IngestPipeline::asQueueStep(&geocoder);
    ingest.workRoot = workRoot;
    ingest.geocode = [&prefs] { return prefs.boolValue(QStringLiteral("ingest.geocode")); };
    ingest.keepProcessed = [&prefs] { return prefs.boolValue(QStringLiteral("ingest.keepProcessed")); };
    IngestQueue queue(ingest);
    AppEvents events;
    QObject::connect(&queue, &IngestQueue::flightImported, &events, &AppEvents::flightImported);
    QObject::connect(&appModel, &AppModel::clientChanged, &queue, [&] { queue.setClient(appModel.client()); });
    MountWatcher mounts;
    ImportWindowModel importWindow(&queue, &mounts);
    importWindow.refresh();
    // Files handed to the program go to the queue as soon as somebody is signed in; the main
    // window opens the import window on the same signal.
    QObject::connect(&router, &FileOpenRouter::importWanted, &importWindow, [&] { importWindow.addUrls(router.take()); });

    AccountSettingsModel accountSettings(appModel, &events);
    StorageSettingsModel storageSettings(prefs, queue.pendingDir());

    registerUiServices({appModel, prefs, themeManager, theme, units, playback, router, images, importWindow,
                        accountSettings, storageSettings});

    // The flights section: follows the session's client and the units, reloads on app events.
    QSettings gallerySettings(prefs.fileName(), QSettings::IniFormat);
    GalleryStore gallery(appModel.client(), &gallerySettings, &events);
    gallery.setMetric(units.metric());
    QObject::connect(&units, &UnitsPref::metricChanged, &gallery, [&] { gallery.setMetric(units.metric()); });
    QObject::connect(&appModel, &AppModel::clientChanged, &gallery, [&] {
        gallery.setClient(appModel.client());
        if (appModel.loggedIn())
            gallery.load();
    });
    QObject::connect(&gallery, &GalleryStore::logOutRequested, &appModel, [&] { appModel.signOut(); });
    registerBrowseTypes();
    qmlRegisterSingletonInstance("Aeroloom.Browse", 1, 0, "Gallery", &gallery);

    // The clips section and its lightbox, and the trim sheet a story opens on one of its items.
    // Each makes its player the first time it shows a video. A story made from picked clips
    // opens in the stories section.
    const auto makePlayer = [] { return std::make_unique<MpvPlayer>(); };
    ClipsBrowserStore clipsStore(appModel.client());
    ClipsBrowserModel clips(&clipsStore, &gallerySettings);
    ClipLightboxModel lightbox(&clips, makePlayer);
    TrimSheetModel trimSheet(appModel.client(), makePlayer);
    const auto followPrefs = [&] {
        lightbox.setMetric(units.metric());
        lightbox.setHq(playback.hq());
        trimSheet.setHq(playback.hq());
    };
    followPrefs();
    QObject::connect(&units, &UnitsPref::metricChanged, &lightbox, followPrefs);
    QObject::connect(&playback, &PlaybackQuality::hqChanged, &lightbox, followPrefs);
    QObject::connect(&appModel, &AppModel::clientChanged, &clipsStore, [&] {
        clipsStore.setClient(appModel.client());
        trimSheet.setClient(appModel.client());
    });
    registerLightboxTypes();
    qmlRegisterSingletonInstance("Aeroloom.Browse", 1, 0, "Clips", &clips);
    qmlRegisterSingletonInstance("Aeroloom.Review", 1, 0, "ClipLightbox", &lightbox);
    qmlRegisterSingletonInstance("Aeroloom.Review", 1, 0, "TrimSheet", &trimSheet);

    // The stories section, and the way to a story from wherever one is made.
    ReelsStore reels(appModel.client());
    reels.setPlayerFactory([] { return new MpvPlayer(); });
    reels.setHqPlayback(playback.hq());
    QObject::connect(&playback, &PlaybackQuality::hqChanged, &reels, [&] { reels.setHqPlayback(playback.hq()); });
    QObject::connect(&appModel, &AppModel::clientChanged, &reels, [&] { reels.setClient(appModel.client()); });
    StoryNavigator navigator(&reels);
    StoryDevHooks storyHooks;
    ReelsHubModel storiesHub(&reels, &gallerySettings, &navigator, &storyHooks);
    QObject::connect(&gallery, &GalleryStore::storyCreated, &navigator, &StoryNavigator::openStory);
    QObject::connect(&clips, &ClipsBrowserModel::storyCreated, &navigator, &StoryNavigator::openStory);
    registerReviewTypes();
    registerStoriesTypes();
    qmlRegisterSingletonInstance("Aeroloom.Stories", 1, 0, "Reels", &storiesHub);
    qmlRegisterSingletonInstance("Aeroloom.Stories", 1, 0, "Navigator", &navigator);
    // Made videos and their links leave for the desktop's mail, browser and file manager here.
    DesktopShare desktop;
    qmlRegisterSingletonInstance("Aeroloom.Stories", 1, 0, "Desktop", &desktop);

    // The cut window makes its own model each time it opens, from the session of the moment.
    CutFlowFactory cutFlows(appModel, prefs);
    registerCuttingTypes(cutFlows);

    // The 3D theater of a flight, over the main window: `theater.open(flightId)` shows it (the
    // player's "3D" button), and so does the development entry SPIKE_FLIGHT with SPIKE_THEATER=1.
    TheaterController theater(appModel.client(), [&] {
        return TheaterController::PageOptions{units.metric(), TileMath::baseMapTemplate(gallery.tileHost(), theme.dark()),
                                              playback.hq()};
    });
    QObject::connect(&appModel, &AppModel::clientChanged, &theater, [&] { theater.setClient(appModel.client()); });
    // Signed out, the sign-in view shows and no theater over it; signing in brings the
    // development entry's flight back.
    const auto spikeFlight = TheaterController::spikeFlight(appModel.environment());
    QObject::connect(&appModel, &AppModel::loggedInChanged, &theater, [&] {
        if (!appModel.loggedIn())
            theater.close();
        else if (spikeFlight)
            theater.open(*spikeFlight);
    });
    if (spikeFlight && appModel.loggedIn())
        theater.open(*spikeFlight);
    registerTheaterTypes();
    qmlRegisterSingletonInstance("Aeroloom.Review", 1, 0, "Theater", &theater);
    // The flight player: one open flight at a time, from the gallery or the development entry.
    // Preferences are read as each player opens.
    ReviewSession review(appModel.client(), [] { return new MpvPlayer(); }, [&] {
        PlayerModel::Setup setup;
        setup.hq = playback.hq();
        setup.metric = units.metric();
        setup.spikeMarks = ReviewSession::spikeMarks(appModel.environment());
        return setup;
    });
    QObject::connect(&appModel, &AppModel::clientChanged, &review, [&] { review.setClient(appModel.client()); });
    QObject::connect(&units, &UnitsPref::metricChanged, &review, [&] { review.setMetric(units.metric()); });
    QObject::connect(&gallery, &GalleryStore::flightOpened, &review, [&] {
        if (gallery.opened())
            review.open(*gallery.opened());
    });
    QObject::connect(&review, &ReviewSession::theaterRequested, &theater, &TheaterController::open);
    // SPIKE_FLIGHT alone opens the player; with SPIKE_THEATER=1 the theater took it above.
    const auto spikePlayerFlight = ReviewSession::spikeFlight(appModel.environment());
    if (spikePlayerFlight && appModel.loggedIn()) {
        review.setDebugFlightId(*spikePlayerFlight);
        review.openById(*spikePlayerFlight);
    }
    qmlRegisterSingletonInstance("Aeroloom.Review", 1, 0, "Review", &review);

    QQmlApplicationEngine engine;
    QObject::connect(&engine, &QQmlApplicationEngine::objectCreationFailed, &app,
                     [] { QCoreApplication::exit(1); }, Qt::QueuedConnection);
    engine.load(QUrl(QStringLiteral("qrc:/Aeroloom/qml/Main.qml")));
    if (engine.rootObjects().isEmpty())
        return 1;
    // A launch that found the program running brings its main window forward.
    QObject::connect(&instance, &SingleInstance::launched, engine.rootObjects().first(),
                     [main = engine.rootObjects().first()] { QMetaObject::invokeMethod(main, "open"); });

    WindowShots shots(engine);
    if (parser.isSet(screenshots))
        shots.captureAllInto(QDir(parser.value(screenshots)), parser.value(prefix));
    else if (parser.isSet(firstFrame))
        shots.exitOnFirstFrame(startedMs);
    return app.exec();
}
