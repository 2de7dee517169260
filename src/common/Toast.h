#pragma once

#include <QObject>
#include <QString>

#include <chrono>

class Clock;

/// @brief A short message on a screen: it stands for a while and then clears itself, but only
/// if it still holds the same text, so a later message keeps its full time.
///
/// The standing time, or the clock it is measured on, is given at construction so tests can
/// prove the rule in milliseconds.
class Toast : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text NOTIFY textChanged FINAL)
public:
    static constexpr std::chrono::milliseconds standTime{1600};

    explicit Toast(std::chrono::milliseconds stand = standTime, QObject *parent = nullptr);
    /// Stands the usual time, measured on `clock` (null: the event loop's).
    explicit Toast(Clock *clock, QObject *parent = nullptr);

    /// Empty while nothing is shown.
    [[nodiscard]] QString text() const { return m_text; }
    [[nodiscard]] std::chrono::milliseconds stand() const { return m_stand; }
    /// Tests shorten the wait; a message already shown keeps the time it started with.
    void setStand(std::chrono::milliseconds stand) { m_stand = stand; }

public Q_SLOTS:
    void show(const QString &text);

Q_SIGNALS:
    void textChanged();

private:
    void setText(const QString &text);

    std::chrono::milliseconds m_stand = standTime;
    Clock *m_clock = nullptr;
    QString m_text;
};
