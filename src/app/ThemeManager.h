#pragma once

#include <QObject>
#include <QStringList>

class Preferences;

/// @brief The chosen appearance ("themePref"): follow the system, or force the dark
/// `cockpit` or the light `field` palette.
class ThemeManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(ThemePref pref READ pref WRITE setPref NOTIFY prefChanged FINAL)
    Q_PROPERTY(QStringList labels READ labels CONSTANT FINAL)
    /// Whether the system itself is dark; told by the screen layer, which can see it.
    Q_PROPERTY(bool systemDark READ systemDark WRITE setSystemDark NOTIFY darkChanged FINAL)
    /// The resolved scheme: dark for `cockpit`, light for `field`, the system's for `system`.
    Q_PROPERTY(bool dark READ dark NOTIFY darkChanged FINAL)
public:
    enum class ThemePref { system, cockpit, field };
    Q_ENUM(ThemePref)

    explicit ThemeManager(Preferences &prefs, QObject *parent = nullptr);

    [[nodiscard]] ThemePref pref() const { return m_pref; }
    void setPref(ThemePref value);
    [[nodiscard]] bool systemDark() const { return m_systemDark; }
    void setSystemDark(bool value);
    [[nodiscard]] bool dark() const;

    /// "System", "Dark", "Light", in the order of the cases.
    [[nodiscard]] static QStringList labels();
    [[nodiscard]] static QString rawValue(ThemePref pref);
    /// Unknown or absent text means `system`.
    [[nodiscard]] static ThemePref fromRaw(const QString &raw);

Q_SIGNALS:
    void prefChanged();
    void darkChanged();

private:
    Preferences &m_prefs;
    ThemePref m_pref = ThemePref::system;
    bool m_systemDark = true;
};
