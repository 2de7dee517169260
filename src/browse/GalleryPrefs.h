#pragma once

#include "GalleryQuery.h"

class QSettings;

/// @brief The gallery's controls as the pilot left them, under their preference keys.
///
/// A stored text that no longer names a case reads as that key's default. `showHidden` is never
/// stored: every start shows the ordinary list.
class GalleryPrefs
{
public:
    static constexpr const char *searchKey = "gallery.q";
    static constexpr const char *sortKey = "gallery.sort";
    static constexpr const char *groupKey = "gallery.group";
    static constexpr const char *todKey = "gallery.tod";
    static constexpr const char *modelKey = "gallery.model";
    static constexpr const char *clipsOnlyKey = "gallery.clipsOnly";
    static constexpr const char *layoutKey = "gallery.layout";

    /// `settings` stays owned by the caller and must outlive this object.
    explicit GalleryPrefs(QSettings *settings) : m_settings(settings) {}

    [[nodiscard]] GalleryControls load() const;
    /// Writes the keys whose value differs between `before` and `after`.
    void store(const GalleryControls &before, const GalleryControls &after);

private:
    QSettings *m_settings;
};
