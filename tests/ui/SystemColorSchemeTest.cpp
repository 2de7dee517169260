// The "System" appearance follows the desktop while the program runs: through the desktop
// portal's colour scheme where one answers (a stand-in portal on the test's private bus here),
// else through the application palette.
#include "SystemColorScheme.h"

#include "CoroTest.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

/// The part of the desktop portal that publishes the appearance settings.
class StandInPortal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")
public:
    uint scheme = 1;

    void change(const QString &group, const QString &key, uint value)
    {
        scheme = value;
        Q_EMIT SettingChanged(group, key, QDBusVariant(value));
    }

public Q_SLOTS:
    QDBusVariant Read(const QString &group, const QString &key)
    {
        if (group != QLatin1String("org.freedesktop.appearance") || key != QLatin1String("color-scheme"))
            return QDBusVariant(QVariant::fromValue(QDBusVariant(QString())));
        // The portal's Read wraps the value in a second variant.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(scheme)));
    }

Q_SIGNALS:
    void SettingChanged(const QString &group, const QString &key, const QDBusVariant &value);
};

QPalette paletteWithWindow(const QColor &window)
{
    QPalette palette = QGuiApplication::palette();
    palette.setColor(QPalette::Window, window);
    return palette;
}

} // namespace

TEST(SystemColorScheme, FollowsTheApplicationPaletteWithoutAPortal)
{
    const QPalette original = QGuiApplication::palette();
    QGuiApplication::setPalette(paletteWithWindow(Qt::white));
    SystemColorScheme scheme;
    QSignalSpy changed(&scheme, &SystemColorScheme::darkChanged);
    EXPECT_FALSE(scheme.dark());

    QGuiApplication::setPalette(paletteWithWindow(QColor(30, 30, 34)));
    EXPECT_TRUE(scheme.dark());
    QGuiApplication::setPalette(paletteWithWindow(QColor(40, 40, 40)));
    EXPECT_EQ(changed.count(), 1) << "dark to dark is no change";
    QGuiApplication::setPalette(paletteWithWindow(QColor(240, 240, 240)));
    EXPECT_FALSE(scheme.dark());
    EXPECT_EQ(changed.count(), 2);
    QGuiApplication::setPalette(original);
}

TEST(SystemColorScheme, ThePortalsSchemeWinsAndIsFollowedWhenItChanges)
{
    if (!QDBusConnection::sessionBus().isConnected())
        GTEST_SKIP() << "no session bus (scripts/test.sh provides one)";
    const QPalette original = QGuiApplication::palette();
    QGuiApplication::setPalette(paletteWithWindow(Qt::white));

    StandInPortal portal;
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("stand-in-portal"));
    ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal,
                                   QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));

    // Prefers dark at start, though the palette is light.
    SystemColorScheme scheme;
    ASSERT_TRUE(waitUntil([&] { return scheme.dark(); }));

    portal.change(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), 2);
    ASSERT_TRUE(waitUntil([&] { return !scheme.dark(); }));
    // Other settings are none of its business.
    portal.change(QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("color-scheme"), 1);
    portal.change(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("accent-color"), 1);
    waitUntil([] { return false; }, 200);
    EXPECT_FALSE(scheme.dark());

    // "No preference" hands the decision back to the palette.
    portal.change(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), 1);
    ASSERT_TRUE(waitUntil([&] { return scheme.dark(); }));
    portal.change(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), 0);
    ASSERT_TRUE(waitUntil([&] { return !scheme.dark(); }));
    QGuiApplication::setPalette(paletteWithWindow(Qt::black));
    EXPECT_TRUE(scheme.dark());

    bus.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"));
    QDBusConnection::disconnectFromBus(QStringLiteral("stand-in-portal"));
    QGuiApplication::setPalette(original);
}

#include "SystemColorSchemeTest.moc"
