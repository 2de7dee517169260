// The clips section's controls, sections and picks as QML reads them.
#include "ClipsBrowserModel.h"

#include "APIClient.h"
#include "RecordFormats.h"

#include <QSettings>

namespace {
template <typename E>
E stored(const QSettings *settings, const char *key, E fallback)
{
    if (!settings)
        return fallback;
    return GalleryEnums::fromRawText<E>(settings->value(QLatin1String(key)).toString()).value_or(fallback);
}

QVariantMap choice(const QString &value, const QString &label)
{
    return {{QStringLiteral("value"), value}, {QStringLiteral("label"), label}};
}

QString dateText(const std::optional<QString> &date)
{
    if (!date)
        return {};
    if (const auto when = RecordFormats::parseLocal(*date))
        return RecordFormats::monthDayYear(*when);
    if (const auto when = RecordFormats::parseISO8601(*date))
        return RecordFormats::monthDayYear(*when);
    return *date;
}
} // namespace

ClipsBrowserModel::ClipsBrowserModel(ClipsBrowserStore *store, QSettings *settings, QObject *parent)
    : QObject(parent), m_store(store), m_settings(settings),
      m_rows(new ClipRowsModel([this](const PoolClip &clip) { return card(clip); }, this))
{
    m_filter = stored(settings, filterKey, m_filter);
    m_group = stored(settings, groupKey, m_group);
    connect(store, &ClipsBrowserStore::clipsChanged, this, &ClipsBrowserModel::recompute);
    connect(store, &ClipsBrowserStore::loadingChanged, this, &ClipsBrowserModel::onLoadingChanged);
    recompute();
}

QString ClipsBrowserModel::filter() const { return GalleryEnums::rawText(m_filter); }
QString ClipsBrowserModel::group() const { return GalleryEnums::rawText(m_group); }

void ClipsBrowserModel::setFilter(const QString &raw)
{
    const auto value = GalleryEnums::fromRawText<ClipsFilter>(raw);
    if (!value || *value == m_filter)
        return;
    m_filter = *value;
    if (m_settings)
        m_settings->setValue(QLatin1String(filterKey), raw);
    Q_EMIT controlsChanged();
    recompute();
}

void ClipsBrowserModel::setGroup(const QString &raw)
{
    const auto value = GalleryEnums::fromRawText<ClipsGroupMode>(raw);
    if (!value || *value == m_group)
        return;
    m_group = *value;
    if (m_settings)
        m_settings->setValue(QLatin1String(groupKey), raw);
    Q_EMIT controlsChanged();
    recompute();
}

QVariantList ClipsBrowserModel::filterChoices() const
{
    return {choice(QStringLiteral("all"), QStringLiteral("All")), choice(QStringLiteral("mine"), QStringLiteral("Yours")),
            choice(QStringLiteral("suggested"), QStringLiteral("Suggested"))};
}

QVariantList ClipsBrowserModel::groupChoices() const
{
    return {choice(QStringLiteral("place"), QStringLiteral("Place")), choice(QStringLiteral("month"), QStringLiteral("Month")),
            choice(QStringLiteral("flat"), QStringLiteral("None"))};
}

void ClipsBrowserModel::recompute()
{
    m_visible = ClipPool::visible(m_store->all(), m_filter);
    m_visibleIndex.clear();
    for (int i = 0; i < m_visible.size(); ++i)
        m_visibleIndex.insert(m_visible[i].identity(), i);
    m_groups = ClipPool::groups(m_visible, m_group);
    m_rows->setGroups(m_groups);
    Q_EMIT resultChanged();
    Q_EMIT selectionChanged();  // picks start from what is visible
    onLoadingChanged();
}

void ClipsBrowserModel::onLoadingChanged()
{
    QString screen;
    if (m_store->loading() && m_store->all().isEmpty())
        screen = QStringLiteral("loading");
    else if (m_store->loadFailed())
        screen = QStringLiteral("error");
    else if (m_visible.isEmpty())
        screen = QStringLiteral("empty");
    else
        screen = QStringLiteral("content");
    if (screen != m_screen) {
        m_screen = screen;
        Q_EMIT screenChanged();
    }

    // A development aid: the first clip opens by itself once the first load has ended.
    if (!m_firstLoadSeen && !m_store->loading()) {
        m_firstLoadSeen = true;
        if (qEnvironmentVariable("SPIKE_CLIP") == QLatin1String("1") && !m_visible.isEmpty())
            openLightbox(0, false);
    }
}

QString ClipsBrowserModel::screen() const
{
    return m_screen;
}

QString ClipsBrowserModel::placeLine() const
{
    return m_group == ClipsGroupMode::place ? ClipPool::placeCount(int(m_groups.size())) : QString();
}

QList<PoolClip> ClipsBrowserModel::picks() const
{
    QList<PoolClip> found;
    for (const PoolClip &clip : m_visible)
        if (m_picked.contains(clip.identity()))
            found.append(clip);
    return found;
}

QString ClipsBrowserModel::selectedText() const
{
    return QStringLiteral("%1 selected").arg(pickCount());
}

bool ClipsBrowserModel::canMakeStory() const
{
    if (m_makingStory)
        return false;
    const QList<PoolClip> chosen = picks();
    return !chosen.isEmpty() && !ClipPool::mixedAspect(chosen);
}

QVariantMap ClipsBrowserModel::card(const PoolClip &clip) const
{
    const QString key = clip.identity();
    const auto &client = m_store->client();
    return {
        {QStringLiteral("key"), key},
        {QStringLiteral("title"), clip.label.isEmpty() ? QStringLiteral("Untitled") : clip.label},
        {QStringLiteral("lengthText"), QString::asprintf("%.1f s", std::max(0.0, clip.end - clip.start))},
        {QStringLiteral("placeText"), clip.place.value_or(QStringLiteral("Unknown place"))},
        {QStringLiteral("dateText"), dateText(clip.date)},
        {QStringLiteral("suggested"), ClipPool::isSuggestion(clip)},
        {QStringLiteral("why"), clip.why.value_or(QString())},
        {QStringLiteral("vertical"), clip.vertical.value_or(false)},
        {QStringLiteral("picked"), m_picked.contains(key)},
        {QStringLiteral("thumbUrl"), client ? client->poolClipThumbURL(clip) : QUrl()},
    };
}
