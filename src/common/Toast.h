#pragma once

#include <QObject>
#include <QString>

#include <chrono>

class Clock;

/// @brief A short message on a screen. It stands for 1.6 seconds and is then cleared, but only
/// when it still holds the same words: a later message keeps its full time.
class Toast : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text NOTIFY textChanged FINAL)
public:
    static constexpr std::chrono::milliseconds standing{1600};

    /// `clock` null: the event loop's.
    explicit Toast(Clock *clock = nullptr, QObject *parent = nullptr);

    /// Empty while nothing is shown.
    [[nodiscard]] QString text() const { return m_text; }
    void show(const QString &text);

Q_SIGNALS:
    void textChanged();

private:
    void setText(const QString &text);

    Clock *m_clock;
    QString m_text;
};
