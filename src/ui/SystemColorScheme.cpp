#include "SystemColorScheme.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QStyleHints>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

bool paletteIsDark()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    if (const auto scheme = QGuiApplication::styleHints()->colorScheme(); scheme != Qt::ColorScheme::Unknown)
        return scheme == Qt::ColorScheme::Dark;
#endif
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

} // namespace

SystemColorScheme::SystemColorScheme(QObject *parent)
    : QObject(parent)
    , m_paletteDark(paletteIsDark())
{
    // The platform theme replaces the application palette when the desktop changes its scheme.
    qApp->installEventFilter(this);
    watchPortal();
}

std::optional<bool> SystemColorScheme::darkFromPortal(const QVariant &value)
{
    bool ok = false;
    const uint scheme = value.toUInt(&ok);
    if (!ok || (scheme != 1 && scheme != 2))
        return std::nullopt;
    return scheme == 1;
}

bool SystemColorScheme::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        update(m_portalDark, paletteIsDark());
    return QObject::eventFilter(watched, event);
}

void SystemColorScheme::update(std::optional<bool> portalDark, bool paletteDark)
{
    const bool before = dark();
    m_portalDark = portalDark;
    m_paletteDark = paletteDark;
    if (dark() != before)
        Q_EMIT darkChanged();
}

void SystemColorScheme::portalSettingChanged(const QDBusMessage &message)
{
    const QVariantList args = message.arguments();
    if (args.size() == 3 && args[0].toString() == appearance && args[1].toString() == colorScheme)
        update(darkFromPortal(args[2].value<QDBusVariant>().variant()), m_paletteDark);
}

void SystemColorScheme::watchPortal()
{
    // No session bus (a bare console, or a platform without one): the palette alone decides.
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    // Taken as the whole message: this QtDBus refuses a slot of (QString, QString, QDBusVariant).
    bus.connect(portalService, portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
                SLOT(portalSettingChanged(QDBusMessage)));
    // Asked without waiting: until the portal answers (or if it never does) the palette decides.
    QDBusMessage read = QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, QStringLiteral("Read"));
    read << appearance << colorScheme;
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(read), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isError())
            return;
        // `Read` wraps the value in one more variant than the signal does.
        QVariant value = reply.value().variant();
        if (value.canConvert<QDBusVariant>())
            value = value.value<QDBusVariant>().variant();
        update(darkFromPortal(value), m_paletteDark);
    });
}
