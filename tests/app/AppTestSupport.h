#pragma once

#include "AppModel.h"
#include "Preferences.h"
#include "RecordingServer.h"

#include <QProcessEnvironment>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <memory>

/// A settings file of the test's own, deleted with the fixture.
struct IsolatedPrefs {
    QTemporaryDir dir;
    std::unique_ptr<Preferences> prefs = std::make_unique<Preferences>(dir.filePath("settings.ini"));

    /// A second store over the same file, as the next start of the program sees it.
    [[nodiscard]] std::unique_ptr<Preferences> reopen()
    {
        prefs->sync();
        return std::make_unique<Preferences>(dir.filePath("settings.ini"));
    }
};

/// An environment without any of the development overrides, plus the given ones.
inline QProcessEnvironment envWith(std::initializer_list<std::pair<QString, QString>> vars)
{
    QProcessEnvironment env;
    for (const auto &[k, v] : vars)
        env.insert(k, v);
    return env;
}

/// Waits for the background `api/me` refresh that sign-in and start-up kick off.
inline bool waitForRefresh(AppModel &app, QSignalSpy &spy, int count = 1)
{
    while (spy.count() < count) {
        if (!spy.wait(5000))
            return false;
    }
    (void)app;
    return true;
}

/// The same reply to every request, closing the connection after it: the program keeps its
/// connections open, and the server would otherwise wait out their keep-alive when it stops.
inline void replyClosing(RecordingServer &server, int status, QByteArray body,
                         QByteArray contentType = "application/json")
{
    server.setHandler([=](const RecordingServer::Request &) {
        RecordingServer::Reply reply;
        reply.status = status;
        reply.body = body;
        reply.contentType = contentType;
        reply.headers.insert("Connection", "close");
        return reply;
    });
}
