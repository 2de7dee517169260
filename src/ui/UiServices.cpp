#include "UiServices.h"

#include "AppModel.h"
#include "AuthedImageItem.h"
#include "FileOpenRouter.h"
#include "ImageCache.h"
#include "LoginViewModel.h"
#include "PlaybackQuality.h"
#include "Preferences.h"
#include "Theme.h"
#include "ThemeManager.h"
#include "UnitsPref.h"

#include <QQmlEngine>

void registerUiServices(const UiServices &s)
{
    const char *uri = "Aeroloom.Services";
    qmlRegisterSingletonInstance(uri, 1, 0, "App", &s.app);
    qmlRegisterSingletonInstance(uri, 1, 0, "Prefs", &s.prefs);
    qmlRegisterSingletonInstance(uri, 1, 0, "Themes", &s.themeManager);
    qmlRegisterSingletonInstance(uri, 1, 0, "Theme", &s.theme);
    qmlRegisterSingletonInstance(uri, 1, 0, "Units", &s.units);
    qmlRegisterSingletonInstance(uri, 1, 0, "Playback", &s.playback);
    qmlRegisterSingletonInstance(uri, 1, 0, "FileRouter", &s.router);
    qmlRegisterSingletonInstance(uri, 1, 0, "Images", &s.images);
    qmlRegisterType<LoginViewModel>(uri, 1, 0, "LoginViewModel");
    qmlRegisterType<AuthedImageItem>(uri, 1, 0, "AuthedImageItem");
}
