// The gallery's controls and the query result as QML reads them.
#include "GalleryStore.h"

#include "APIClient.h"
#include "AppEvents.h"

#include <QSettings>

namespace {
template <typename E>
QVariantList choices(QString (*label)(E), std::initializer_list<E> cases)
{
    QVariantList list;
    for (const E value : cases)
        list.append(QVariantMap{{QStringLiteral("value"), GalleryEnums::rawText(value)},
                                {QStringLiteral("label"), label(value)}});
    return list;
}
} // namespace

GalleryStore::GalleryStore(std::shared_ptr<APIClient> client, QSettings *settings, AppEvents *events,
                           QObject *parent)
    : QObject(parent), m_client(std::move(client)), m_prefs(settings), m_rows(new GalleryRowsModel(this))
{
    m_controls = m_prefs.load();
    m_tileHost = QString::fromLatin1(TileMath::defaultTileHost);
    if (settings) {
        m_metric = settings->value(QStringLiteral("metricUnits"), false).toBool();
        m_tileHost = settings->value(QStringLiteral("map.tileHost"), m_tileHost).toString();
    }
    if (events) {
        connect(events, &AppEvents::samplesChanged, this, &GalleryStore::load);
        connect(events, &AppEvents::flightImported, this, &GalleryStore::load);
    }
    recompute();
}

GalleryStore::~GalleryStore() = default;

void GalleryStore::setClient(std::shared_ptr<APIClient> client)
{
    m_client = std::move(client);
}

void GalleryStore::changeControls(const std::function<void(GalleryControls &)> &change)
{
    GalleryControls next = m_controls;
    change(next);
    if (next == m_controls)
        return;
    m_prefs.store(m_controls, next);
    m_controls = std::move(next);
    Q_EMIT controlsChanged();
    recompute();
}

void GalleryStore::setSearch(const QString &text)
{
    changeControls([&](GalleryControls &c) { c.search = text; });
}

QString GalleryStore::sort() const { return GalleryEnums::rawText(m_controls.sort); }
QString GalleryStore::group() const { return GalleryEnums::rawText(m_controls.group); }
QString GalleryStore::tod() const { return GalleryEnums::rawText(m_controls.tod); }
QString GalleryStore::layout() const { return GalleryEnums::rawText(m_controls.layout); }

void GalleryStore::setSort(const QString &raw)
{
    if (const auto value = GalleryEnums::fromRawText<SortOrder>(raw))
        changeControls([&](GalleryControls &c) { c.sort = *value; });
}

void GalleryStore::setGroup(const QString &raw)
{
    if (const auto value = GalleryEnums::fromRawText<GroupMode>(raw))
        changeControls([&](GalleryControls &c) { c.group = *value; });
}

void GalleryStore::setTod(const QString &raw)
{
    if (const auto value = GalleryEnums::fromRawText<TimeOfDayFilter>(raw))
        changeControls([&](GalleryControls &c) { c.tod = *value; });
}

void GalleryStore::setLayout(const QString &raw)
{
    if (const auto value = GalleryEnums::fromRawText<GalleryLayout>(raw))
        changeControls([&](GalleryControls &c) { c.layout = *value; });
}

void GalleryStore::setModelFilter(const QString &model)
{
    changeControls([&](GalleryControls &c) { c.modelFilter = model.isEmpty() ? QStringLiteral("all") : model; });
}

void GalleryStore::setClipsOnly(bool on)
{
    changeControls([&](GalleryControls &c) { c.clipsOnly = on; });
}

void GalleryStore::setShowHidden(bool on)
{
    changeControls([&](GalleryControls &c) { c.showHidden = on; });
}

void GalleryStore::removeChip(const QString &key)
{
    changeControls([&](GalleryControls &c) { GalleryQuery::removeChip(c, key); });
}

void GalleryStore::clearAllFilters()
{
    changeControls([](GalleryControls &c) { GalleryQuery::clearAll(c); });
}

void GalleryStore::setMetric(bool metric)
{
    if (metric == m_metric)
        return;
    m_metric = metric;
    Q_EMIT metricChanged();
    Q_EMIT resultChanged();  // the distance tile changes its unit
    refreshCards();
}

QVariantList GalleryStore::sortChoices() const
{
    return choices(&GalleryQuery::sortLabel, {SortOrder::newest, SortOrder::oldest, SortOrder::longestPath,
                                              SortOrder::highestAltitude, SortOrder::longestDuration});
}

QVariantList GalleryStore::groupChoices() const
{
    return choices(&GalleryQuery::groupLabel, {GroupMode::day, GroupMode::month, GroupMode::place, GroupMode::flat});
}

QVariantList GalleryStore::todChoices() const
{
    return choices(&GalleryQuery::todLabel, {TimeOfDayFilter::all, TimeOfDayFilter::day, TimeOfDayFilter::golden,
                                             TimeOfDayFilter::night});
}

bool GalleryStore::openFiltersOnStart() const
{
    // A development aid: the filter popover opens by itself.
    return qEnvironmentVariable("SPIKE_FILTERS") == QLatin1String("1");
}

QString GalleryStore::mapAttribution() const
{
    return QString::fromUtf8(TileMath::baseMapAttribution);
}

QString GalleryStore::baseMapTemplate(bool dark) const
{
    return TileMath::baseMapTemplate(m_tileHost, dark);
}

void GalleryStore::recompute()
{
    m_filtered = GalleryQuery::filtered(m_library, m_controls);
    m_groups = GalleryQuery::groups(m_library, m_filtered, m_controls.group, m_controls.sort);
    m_rows->setGroups(m_groups, cardContext());

    // The map is drawn again only when the list of ids changes, order included, so a filter
    // that keeps the same flights leaves the camera where the pilot put it.
    QStringList ids;
    ids.reserve(m_filtered.size());
    for (const int row : std::as_const(m_filtered))
        ids.append(m_library.flights[row].id);
    if (ids != m_lastPinIds) {
        m_lastPinIds = std::move(ids);
        m_pins.clear();
        for (const int row : std::as_const(m_filtered)) {
            const Flight &flight = m_library.flights[row];
            if (flight.centroid)
                m_pins.append(MapPin{flight.id, {flight.centroid->lat, flight.centroid->lon},
                                     flight.place.value_or(m_library.facts[row].dateLabel)});
        }
        Q_EMIT mapPinsChanged();
    }
    Q_EMIT resultChanged();
}

void GalleryStore::refreshCards()
{
    m_rows->refreshCards(cardContext());
}

GalleryRowsModel::CardContext GalleryStore::cardContext() const
{
    std::weak_ptr<APIClient> client = m_client;
    return {&m_library, &m_selected, m_metric, [client](const QString &id) {
                const auto c = client.lock();
                return c ? c->flightThumbURL(id) : QUrl();
            }};
}

QString GalleryStore::title() const
{
    return m_controls.showHidden ? QStringLiteral("Hidden Flights") : QStringLiteral("Flights");
}

bool GalleryStore::filtersActive() const
{
    return GalleryQuery::filtersActive(m_controls);
}

int GalleryStore::activeFilterCount() const
{
    return GalleryQuery::activeFilterCount(m_controls);
}

QVariantList GalleryStore::chips() const
{
    QVariantList list;
    for (const FilterChip &chip : GalleryQuery::activeChips(m_controls, int(m_library.hiddenIDs.size())))
        list.append(QVariantMap{{QStringLiteral("key"), chip.key}, {QStringLiteral("label"), chip.label}});
    return list;
}

QVariantMap GalleryStore::stats() const
{
    const GalleryStats s = GalleryQuery::stats(m_library, m_filtered, filtersActive(), m_metric);
    return {{QStringLiteral("count"), s.count},       {QStringLiteral("airtime"), s.airtime},
            {QStringLiteral("distance"), s.distance}, {QStringLiteral("distanceCaption"), s.distanceCaption},
            {QStringLiteral("dateSpan"), s.dateSpan}};
}

QString GalleryStore::footerText() const
{
    return QStringLiteral("%1 of %2 flights").arg(m_filtered.size()).arg(m_library.flights.size());
}

QString GalleryStore::activeNote() const
{
    return QStringLiteral("%1 active").arg(activeFilterCount());
}

QString GalleryStore::hiddenSwitchText() const
{
    return QStringLiteral("Show hidden flights only (%1)").arg(m_library.hiddenIDs.size());
}

QVariantList GalleryStore::mapPins() const
{
    QVariantList list;
    for (const MapPin &pin : m_pins)
        list.append(QVariantMap{{QStringLiteral("id"), pin.id},
                                {QStringLiteral("lat"), pin.at.lat},
                                {QStringLiteral("lon"), pin.at.lon},
                                {QStringLiteral("title"), pin.title}});
    return list;
}

QString GalleryStore::screen() const
{
    return m_screen;
}

void GalleryStore::setLoading(bool loading, std::optional<QString> error)
{
    if (loading != m_loading || error != m_error) {
        m_loading = loading;
        m_error = std::move(error);
        Q_EMIT loadingChanged();
    }
    QString screen = QStringLiteral("content");
    if (m_error && m_library.flights.isEmpty())
        screen = QStringLiteral("error");
    else if (m_loading && m_library.flights.isEmpty())
        screen = QStringLiteral("loading");
    if (screen != m_screen) {
        m_screen = screen;
        Q_EMIT screenChanged();
    }
}
