#pragma once

#include "GalleryPrefs.h"
#include "GalleryQuery.h"
#include "GalleryRowsModel.h"
#include "PinClusters.h"

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <QCoroTask>

#include <memory>
#include <optional>

class APIClient;
class AppEvents;
class QSettings;

/// @brief The flights section: the library from the server, the pilot's controls over it, and
/// what the pilot does to flights (open, select for an auto-story, hide, delete).
///
/// The query is recomputed from its inputs on every change; only the per-flight facts and the
/// time-of-day table are kept from one load to the next. Controls are stored under their
/// preference keys the moment they change. `load()` runs when the screen opens, on Refresh and
/// Retry, and by itself on the application events "samples changed" and "flight imported".
/// Enumerated controls travel to QML as their stored names ("newest", "place", "golden", "map").
class GalleryStore : public QObject
{
    Q_OBJECT
    // Controls
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY controlsChanged FINAL)
    Q_PROPERTY(QString sort READ sort WRITE setSort NOTIFY controlsChanged FINAL)
    Q_PROPERTY(QString group READ group WRITE setGroup NOTIFY controlsChanged FINAL)
    Q_PROPERTY(QString tod READ tod WRITE setTod NOTIFY controlsChanged FINAL)
    Q_PROPERTY(QString modelFilter READ modelFilter WRITE setModelFilter NOTIFY controlsChanged FINAL)
    Q_PROPERTY(bool clipsOnly READ clipsOnly WRITE setClipsOnly NOTIFY controlsChanged FINAL)
    Q_PROPERTY(QString layout READ layout WRITE setLayout NOTIFY controlsChanged FINAL)
    Q_PROPERTY(bool showHidden READ showHidden WRITE setShowHidden NOTIFY controlsChanged FINAL)
    Q_PROPERTY(bool metric READ metric WRITE setMetric NOTIFY metricChanged FINAL)
    Q_PROPERTY(QVariantList sortChoices READ sortChoices CONSTANT FINAL)
    Q_PROPERTY(QVariantList groupChoices READ groupChoices CONSTANT FINAL)
    Q_PROPERTY(QVariantList todChoices READ todChoices CONSTANT FINAL)
    Q_PROPERTY(bool openFiltersOnStart READ openFiltersOnStart CONSTANT FINAL)
    Q_PROPERTY(QString tileHost READ tileHost CONSTANT FINAL)
    Q_PROPERTY(QString mapAttribution READ mapAttribution CONSTANT FINAL)
    // Result of the query
    Q_PROPERTY(GalleryRowsModel *rows READ rows CONSTANT FINAL)
    Q_PROPERTY(QString title READ title NOTIFY resultChanged FINAL)
    Q_PROPERTY(int flightCount READ flightCount NOTIFY resultChanged FINAL)
    Q_PROPERTY(int filteredCount READ filteredCount NOTIFY resultChanged FINAL)
    Q_PROPERTY(bool filtersActive READ filtersActive NOTIFY resultChanged FINAL)
    Q_PROPERTY(int activeFilterCount READ activeFilterCount NOTIFY resultChanged FINAL)
    Q_PROPERTY(QStringList models READ models NOTIFY resultChanged FINAL)
    Q_PROPERTY(QVariantList chips READ chips NOTIFY resultChanged FINAL)
    Q_PROPERTY(QVariantMap stats READ stats NOTIFY resultChanged FINAL)
    Q_PROPERTY(QString footerText READ footerText NOTIFY resultChanged FINAL)
    Q_PROPERTY(QString activeNote READ activeNote NOTIFY resultChanged FINAL)
    Q_PROPERTY(QString hiddenSwitchText READ hiddenSwitchText NOTIFY resultChanged FINAL)
    Q_PROPERTY(QVariantList mapPins READ mapPins NOTIFY mapPinsChanged FINAL)
    // Screen state and actions
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged FINAL)
    Q_PROPERTY(QString error READ error NOTIFY loadingChanged FINAL)
    Q_PROPERTY(QString screen READ screen NOTIFY screenChanged FINAL)
    Q_PROPERTY(QString openedId READ openedId NOTIFY openedChanged FINAL)
    Q_PROPERTY(bool selecting READ selecting WRITE setSelecting NOTIFY selectionChanged FINAL)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged FINAL)
    Q_PROPERTY(QString selectedText READ selectedText NOTIFY selectionChanged FINAL)
    Q_PROPERTY(bool canCreateAutoStory READ canCreateAutoStory NOTIFY selectionChanged FINAL)
    Q_PROPERTY(bool askReelLength READ askReelLength NOTIFY storyChanged FINAL)
    Q_PROPERTY(QString reelLengthNote READ reelLengthNote NOTIFY controlsChanged FINAL)
    Q_PROPERTY(bool directing READ directing NOTIFY storyChanged FINAL)
    Q_PROPERTY(QString directError READ directError NOTIFY storyChanged FINAL)
    Q_PROPERTY(QString autoOpenId READ autoOpenId NOTIFY storyChanged FINAL)
    Q_PROPERTY(QString deletingId READ deletingId NOTIFY deleteChanged FINAL)
    Q_PROPERTY(QString deleteMessage READ deleteMessage NOTIFY deleteChanged FINAL)
    Q_PROPERTY(QString deleteError READ deleteError NOTIFY deleteChanged FINAL)

public:
    /// `settings` (the controls' store) and `events` stay owned by the caller; either may be null.
    GalleryStore(std::shared_ptr<APIClient> client, QSettings *settings, AppEvents *events,
                 QObject *parent = nullptr);
    ~GalleryStore() override;

    /// Signing in makes a new client; the next load uses it.
    void setClient(std::shared_ptr<APIClient> client);

    [[nodiscard]] QString search() const { return m_controls.search; }
    void setSearch(const QString &text);
    [[nodiscard]] QString sort() const;
    void setSort(const QString &raw);
    [[nodiscard]] QString group() const;
    void setGroup(const QString &raw);
    [[nodiscard]] QString tod() const;
    void setTod(const QString &raw);
    [[nodiscard]] QString modelFilter() const { return m_controls.modelFilter; }
    void setModelFilter(const QString &model);
    [[nodiscard]] bool clipsOnly() const { return m_controls.clipsOnly; }
    void setClipsOnly(bool on);
    [[nodiscard]] QString layout() const;
    void setLayout(const QString &raw);
    [[nodiscard]] bool showHidden() const { return m_controls.showHidden; }
    void setShowHidden(bool on);
    [[nodiscard]] bool metric() const { return m_metric; }
    void setMetric(bool metric);
    [[nodiscard]] QVariantList sortChoices() const;
    [[nodiscard]] QVariantList groupChoices() const;
    [[nodiscard]] QVariantList todChoices() const;
    [[nodiscard]] bool openFiltersOnStart() const;
    /// Where the base map comes from: the setting "map.tileHost", else the public CARTO host.
    [[nodiscard]] QString tileHost() const { return m_tileHost; }
    [[nodiscard]] QString mapAttribution() const;
    /// The tile URL template of the dark or light base map.
    [[nodiscard]] Q_INVOKABLE QString baseMapTemplate(bool dark) const;

    [[nodiscard]] GalleryRowsModel *rows() const { return m_rows; }
    [[nodiscard]] QString title() const;
    [[nodiscard]] int flightCount() const { return int(m_library.flights.size()); }
    [[nodiscard]] int filteredCount() const { return int(m_filtered.size()); }
    [[nodiscard]] bool filtersActive() const;
    [[nodiscard]] int activeFilterCount() const;
    [[nodiscard]] QStringList models() const { return m_library.models; }
    [[nodiscard]] QVariantList chips() const;
    [[nodiscard]] QVariantMap stats() const;
    [[nodiscard]] QString footerText() const;
    [[nodiscard]] QString activeNote() const;
    [[nodiscard]] QString hiddenSwitchText() const;
    [[nodiscard]] QVariantList mapPins() const;

    [[nodiscard]] bool loading() const { return m_loading; }
    [[nodiscard]] QString error() const { return m_error.value_or(QString()); }
    /// "error", "loading" or "content": what the section shows.
    [[nodiscard]] QString screen() const;
    [[nodiscard]] QString openedId() const { return m_opened ? m_opened->id : QString(); }
    /// The flight last opened, for the player.
    [[nodiscard]] const std::optional<Flight> &opened() const { return m_opened; }
    [[nodiscard]] bool selecting() const { return m_selecting; }
    void setSelecting(bool on);
    [[nodiscard]] int selectedCount() const { return int(m_selected.size()); }
    [[nodiscard]] QString selectedText() const;
    [[nodiscard]] bool canCreateAutoStory() const { return !m_selected.isEmpty() && !m_directing; }
    [[nodiscard]] bool askReelLength() const { return m_askReelLength; }
    [[nodiscard]] QString reelLengthNote() const;
    [[nodiscard]] bool directing() const { return m_directing; }
    [[nodiscard]] QString directError() const { return m_directError.value_or(QString()); }
    [[nodiscard]] QString autoOpenId() const { return m_autoOpen.value_or(QString()); }
    [[nodiscard]] QString deletingId() const { return m_deleting ? m_deleting->id : QString(); }
    [[nodiscard]] QString deleteMessage() const;
    [[nodiscard]] QString deleteError() const { return m_deleteError.value_or(QString()); }

    // For tests and the benchmark: the inputs and result as values.
    [[nodiscard]] const GalleryLibrary &library() const { return m_library; }
    [[nodiscard]] const GalleryControls &controls() const { return m_controls; }
    [[nodiscard]] const QList<int> &filteredRows() const { return m_filtered; }
    [[nodiscard]] const QList<FlightGroup> &groups() const { return m_groups; }
    [[nodiscard]] const QStringList &selectedIds() const { return m_selected; }
    [[nodiscard]] const QList<MapPin> &pins() const { return m_pins; }

    /// The whole load; awaitable by tests, fire-and-forget from `load()`.
    QCoro::Task<> reload();
    /// Optimistic hide or unhide; awaitable by tests.
    QCoro::Task<> changeHidden(QString flightId, bool hidden);
    QCoro::Task<> runDelete();
    QCoro::Task<> runAutoStory(double target);

public Q_SLOTS:
    void load();
    /// A press on a card: opens the flight, or toggles it while selecting.
    void press(const QString &flightId);
    /// A press on a map pin: opens the flight with that id, if there is one.
    void openPin(const QString &flightId);
    void closeOpened();
    void toggleSelecting();
    void clearSelection();
    void finishSelecting();
    void hideFlight(const QString &flightId);
    void unhideFlight(const QString &flightId);
    void askDelete(const QString &flightId);
    void confirmDelete();
    void cancelDelete();
    void dismissDeleteError();
    void askAutoStory();
    /// One of the lengths of the dialog, in seconds (30, 60, 120).
    void chooseReelLength(int seconds);
    void cancelReelLength();
    void dismissDirectError();
    void removeChip(const QString &key);
    void clearAllFilters();
    void logOut();

Q_SIGNALS:
    void controlsChanged();
    void metricChanged();
    void resultChanged();
    void mapPinsChanged();
    void loadingChanged();
    void screenChanged();
    void openedChanged();
    void selectionChanged();
    void storyChanged();
    void deleteChanged();
    /// A flight was pressed; the player takes it from here.
    void flightOpened(const QString &flightId);
    /// The server drafted a story from the selection: the stories hub opens it and refreshes.
    void storyCreated(const QString &projectId);
    void logOutRequested();

private:
    void changeControls(const std::function<void(GalleryControls &)> &change);
    void recompute();
    void refreshCards();
    void setLoading(bool loading, std::optional<QString> error);
    [[nodiscard]] GalleryRowsModel::CardContext cardContext() const;
    [[nodiscard]] std::optional<Flight> flightWithId(const QString &id) const;

    std::shared_ptr<APIClient> m_client;
    GalleryPrefs m_prefs;
    GalleryControls m_controls;
    GalleryLibrary m_library;
    bool m_metric = false;
    QString m_tileHost;

    QList<int> m_filtered;
    QList<FlightGroup> m_groups;
    QStringList m_lastPinIds;
    QList<MapPin> m_pins;
    GalleryRowsModel *m_rows;

    bool m_loading = false;
    std::optional<QString> m_error;
    QString m_screen = QStringLiteral("content");
    std::optional<Flight> m_opened;
    bool m_selecting = false;
    QStringList m_selected;  ///< in the order picked
    bool m_askReelLength = false;
    bool m_directing = false;
    std::optional<QString> m_directError;
    std::optional<QString> m_autoOpen;
    std::optional<Flight> m_deleting;
    std::optional<QString> m_deleteError;
};
