#pragma once

class AppModel;
class FileOpenRouter;
class ImageCache;
class PlaybackQuality;
class Preferences;
class Theme;
class ThemeManager;
class UnitsPref;

/// @brief What the composition root hands to the screens. Everything here lives as long as
/// the QML engine; nothing is reached through a global.
struct UiServices {
    AppModel &app;
    Preferences &prefs;
    ThemeManager &themeManager;
    Theme &theme;
    UnitsPref &units;
    PlaybackQuality &playback;
    FileOpenRouter &router;
    ImageCache &images;
};

/// Makes the services and the view types known to QML under the import "Aeroloom.Services".
void registerUiServices(const UiServices &services);
