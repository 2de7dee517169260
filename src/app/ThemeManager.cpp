#include "ThemeManager.h"

#include "Preferences.h"

namespace {
const QString key = QStringLiteral("themePref");
}

ThemeManager::ThemeManager(Preferences &prefs, QObject *parent)
    : QObject(parent)
    , m_prefs(prefs)
    , m_pref(fromRaw(prefs.stringValue(key)))
{
}

void ThemeManager::setPref(ThemePref value)
{
    if (m_pref == value)
        return;
    const bool wasDark = dark();
    m_pref = value;
    m_prefs.setValue(key, rawValue(value));
    Q_EMIT prefChanged();
    if (dark() != wasDark)
        Q_EMIT darkChanged();
}

void ThemeManager::setSystemDark(bool value)
{
    if (m_systemDark == value)
        return;
    const bool wasDark = dark();
    m_systemDark = value;
    if (dark() != wasDark || m_pref == ThemePref::system)
        Q_EMIT darkChanged();
}

bool ThemeManager::dark() const
{
    switch (m_pref) {
    case ThemePref::cockpit:
        return true;
    case ThemePref::field:
        return false;
    case ThemePref::system:
        break;
    }
    return m_systemDark;
}

QStringList ThemeManager::labels()
{
    return {QStringLiteral("System"), QStringLiteral("Dark"), QStringLiteral("Light")};
}

QString ThemeManager::rawValue(ThemePref pref)
{
    switch (pref) {
    case ThemePref::cockpit:
        return QStringLiteral("cockpit");
    case ThemePref::field:
        return QStringLiteral("field");
    case ThemePref::system:
        break;
    }
    return QStringLiteral("system");
}

ThemeManager::ThemePref ThemeManager::fromRaw(const QString &raw)
{
    if (raw == QLatin1String("cockpit"))
        return ThemePref::cockpit;
    if (raw == QLatin1String("field"))
        return ThemePref::field;
    return ThemePref::system;
}
