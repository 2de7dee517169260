#include "GalleryPrefs.h"

#include <QSettings>

namespace {
template <typename E>
E readEnum(const QSettings &settings, const char *key, E fallback)
{
    const QVariant stored = settings.value(QLatin1String(key));
    if (!stored.isValid())
        return fallback;
    return GalleryEnums::fromRawText<E>(stored.toString()).value_or(fallback);
}
} // namespace

GalleryControls GalleryPrefs::load() const
{
    GalleryControls c;
    if (!m_settings)
        return c;
    c.search = m_settings->value(QLatin1String(searchKey), QString()).toString();
    c.sort = readEnum(*m_settings, sortKey, c.sort);
    c.group = readEnum(*m_settings, groupKey, c.group);
    c.tod = readEnum(*m_settings, todKey, c.tod);
    c.modelFilter = m_settings->value(QLatin1String(modelKey), c.modelFilter).toString();
    c.clipsOnly = m_settings->value(QLatin1String(clipsOnlyKey), false).toBool();
    c.layout = readEnum(*m_settings, layoutKey, c.layout);
    return c;
}

void GalleryPrefs::store(const GalleryControls &before, const GalleryControls &after)
{
    if (!m_settings)
        return;
    auto put = [this](const char *key, const QVariant &value) { m_settings->setValue(QLatin1String(key), value); };
    if (before.search != after.search)
        put(searchKey, after.search);
    if (before.sort != after.sort)
        put(sortKey, GalleryEnums::rawText(after.sort));
    if (before.group != after.group)
        put(groupKey, GalleryEnums::rawText(after.group));
    if (before.tod != after.tod)
        put(todKey, GalleryEnums::rawText(after.tod));
    if (before.modelFilter != after.modelFilter)
        put(modelKey, after.modelFilter);
    if (before.clipsOnly != after.clipsOnly)
        put(clipsOnlyKey, after.clipsOnly);
    if (before.layout != after.layout)
        put(layoutKey, GalleryEnums::rawText(after.layout));
}
