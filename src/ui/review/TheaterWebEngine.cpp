#include "TheaterWebEngine.h"

#include <QByteArray>
#include <QtWebEngineQuick/qtwebenginequickglobal.h>

void initializeWebEngine()
{
    // The theater's page is WebGL and nothing else. Chromium refuses WebGL on the OpenGL drivers
    // of its blocklist (software Mesa among them), but the web view draws through the very
    // driver that the windows and the flight's video already draw with, so the list has
    // nothing to protect here.
    QByteArray flags = qgetenv("QTWEBENGINE_CHROMIUM_FLAGS");
    if (!flags.contains("--ignore-gpu-blocklist"))
        qputenv("QTWEBENGINE_CHROMIUM_FLAGS", (flags + " --ignore-gpu-blocklist").trimmed());
    QtWebEngineQuick::initialize();
}
