#pragma once

#include <QDBusMessage>
#include <QObject>

#include <optional>

/// @brief Whether the desktop is dark right now, followed while the program runs, for the
/// "System" appearance.
///
/// The desktop portal's `color-scheme` setting says it where a portal answers (GNOME, KDE and
/// others publish it there, and change it there when the pilot flips the desktop's switch);
/// without a portal, or while it states no preference, the lightness of the application
/// palette, which the platform theme replaces on a change, decides.
class SystemColorScheme : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool dark READ dark NOTIFY darkChanged FINAL)
public:
    explicit SystemColorScheme(QObject *parent = nullptr);

    [[nodiscard]] bool dark() const { return m_portalDark.value_or(m_paletteDark); }

    /// The portal's `color-scheme`: 1 prefers dark, 2 prefers light, anything else says nothing.
    [[nodiscard]] static std::optional<bool> darkFromPortal(const QVariant &value);

Q_SIGNALS:
    void darkChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private Q_SLOTS:
    void portalSettingChanged(const QDBusMessage &message);

private:
    void watchPortal();
    void update(std::optional<bool> portalDark, bool paletteDark);

    std::optional<bool> m_portalDark;
    bool m_paletteDark = false;
};
