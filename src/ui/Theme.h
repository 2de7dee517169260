#pragma once

#include <QColor>
#include <QObject>

class ThemeManager;

/// @brief The two palettes every window draws with: `cockpit` (dark) and `field` (light).
///
/// Follows the resolved scheme of `ThemeManager`; QML binds to the colours and never picks
/// a palette itself.
class Theme : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool dark READ dark NOTIFY changed FINAL)
    Q_PROPERTY(QString name READ name NOTIFY changed FINAL)
    Q_PROPERTY(QColor background READ background NOTIFY changed FINAL)
    Q_PROPERTY(QColor sidebar READ sidebar NOTIFY changed FINAL)
    Q_PROPERTY(QColor surface READ surface NOTIFY changed FINAL)
    Q_PROPERTY(QColor surfaceRaised READ surfaceRaised NOTIFY changed FINAL)
    Q_PROPERTY(QColor field READ field NOTIFY changed FINAL)
    Q_PROPERTY(QColor border READ border NOTIFY changed FINAL)
    Q_PROPERTY(QColor text READ text NOTIFY changed FINAL)
    Q_PROPERTY(QColor textMuted READ textMuted NOTIFY changed FINAL)
    Q_PROPERTY(QColor accent READ accent NOTIFY changed FINAL)
    Q_PROPERTY(QColor accentText READ accentText NOTIFY changed FINAL)
    Q_PROPERTY(QColor accentSoft READ accentSoft NOTIFY changed FINAL)
    Q_PROPERTY(QColor warm READ warm NOTIFY changed FINAL)
    Q_PROPERTY(QColor danger READ danger NOTIFY changed FINAL)
    Q_PROPERTY(QColor success READ success NOTIFY changed FINAL)
    Q_PROPERTY(QColor heroTop READ heroTop NOTIFY changed FINAL)
    Q_PROPERTY(QColor heroMiddle READ heroMiddle NOTIFY changed FINAL)
    Q_PROPERTY(QColor heroBottom READ heroBottom NOTIFY changed FINAL)
    Q_PROPERTY(QColor letterbox READ letterbox CONSTANT FINAL)
public:
    explicit Theme(ThemeManager &manager, QObject *parent = nullptr);

    [[nodiscard]] bool dark() const;
    [[nodiscard]] QString name() const { return dark() ? QStringLiteral("cockpit") : QStringLiteral("field"); }
    [[nodiscard]] QColor background() const { return pick("#0B1224", "#F3F5F9"); }
    [[nodiscard]] QColor sidebar() const { return pick("#0E1730", "#E9EDF4"); }
    [[nodiscard]] QColor surface() const { return pick("#131D38", "#FFFFFF"); }
    [[nodiscard]] QColor surfaceRaised() const { return pick("#1A2646", "#F6F8FB"); }
    [[nodiscard]] QColor field() const { return pick("#0F1830", "#FFFFFF"); }
    [[nodiscard]] QColor border() const { return pick("#27335A", "#D5DCE7"); }
    [[nodiscard]] QColor text() const { return pick("#E9EEF8", "#121A2B"); }
    [[nodiscard]] QColor textMuted() const { return pick("#8E9BB8", "#5A6479"); }
    [[nodiscard]] QColor accent() const { return pick("#46B8FF", "#0B72C4"); }
    [[nodiscard]] QColor accentText() const { return pick("#06101F", "#FFFFFF"); }
    [[nodiscard]] QColor accentSoft() const { return pick("#1B3557", "#DCEBF8"); }
    [[nodiscard]] QColor warm() const { return pick("#FFA04D", "#E0702B"); }
    [[nodiscard]] QColor danger() const { return pick("#FF7A7A", "#C93C3C"); }
    [[nodiscard]] QColor success() const { return pick("#3DD6A0", "#138A5B"); }
    [[nodiscard]] QColor heroTop() const { return pick("#0A1430", "#2D5B9A"); }
    [[nodiscard]] QColor heroMiddle() const { return pick("#2A3F78", "#7FA6D6"); }
    [[nodiscard]] QColor heroBottom() const { return pick("#E5895A", "#F6C79A"); }
    /// Backing of letterboxed images (11, 18, 36) in both palettes.
    [[nodiscard]] static QColor letterbox() { return QColor(11, 18, 36); }

Q_SIGNALS:
    void changed();

private:
    [[nodiscard]] QColor pick(const char *cockpit, const char *field) const
    {
        return QColor(QString::fromLatin1(dark() ? cockpit : field));
    }

    ThemeManager &m_manager;
};
