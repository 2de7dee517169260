#pragma once

#include "DesktopHandoff.h"

#include <QDBusConnection>
#include <QVariantList>

#include <functional>

/// @brief The desktop's side of sharing on Linux, which has no share sheet of its own: the
/// screens offer the desktop's targets (e-mail, browser, file manager, player) and this hands
/// the link or file to each.
///
/// Each target goes first to the XDG desktop portal (`org.freedesktop.portal.Email`,
/// `org.freedesktop.portal.OpenURI`) on the session bus. The portal is what a sandboxed
/// program must use and what every desktop's own choices (its mail client, its file manager)
/// stand behind, and files reach it as open descriptors, so nothing depends on paths it can't
/// see. Where no portal answers: `xdg-email` for mail, `org.freedesktop.FileManager1` for the
/// file manager, and the desktop's default handlers (`QDesktopServices`) for the rest.
class DesktopShare : public DesktopHandoff
{
    Q_OBJECT
public:
    static inline const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
    static inline const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
    static inline const QString emailInterface = QStringLiteral("org.freedesktop.portal.Email");
    static inline const QString openUriInterface = QStringLiteral("org.freedesktop.portal.OpenURI");
    static inline const QString fileManagerService = QStringLiteral("org.freedesktop.FileManager1");
    static inline const QString fileManagerPath = QStringLiteral("/org/freedesktop/FileManager1");

    /// `portal` is the portal's bus name; tests give a name of their own, as the real portal may
    /// already own the usual one on the bus they share.
    explicit DesktopShare(QDBusConnection bus = QDBusConnection::sessionBus(), QString portal = portalService,
                          QObject *parent = nullptr);

    void copyText(const QString &text) override;
    void emailLink(const QUrl &link, const QString &subject) override;
    void openLink(const QUrl &link) override;
    void emailFile(const QString &path, const QString &subject) override;
    void showFile(const QString &path) override;
    void openFile(const QString &path) override;
    QString keepInVideos(const QString &path) override;

    /// Where `keepInVideos` puts files; tests point it elsewhere.
    void setVideosFolder(const QString &folder) { m_videos = folder; }
    /// `path`'s name in `folder`, or the first free "name (2).mp4", "name (3).mp4", …
    [[nodiscard]] static QString freeName(const QString &folder, const QString &fileName);

private:
    /// Calls the portal; `fallback` runs when it doesn't answer (no portal, no such interface).
    void callPortal(const QString &interface, const QString &method, const QVariantList &args,
                    std::function<void()> fallback);
    /// `xdg-email` with these arguments, detached: the mail client it starts outlives this program.
    static bool startMailer(const QStringList &args);

    QDBusConnection m_bus;
    QString m_portal;
    QString m_videos;
};
