#pragma once

#include <QObject>
#include <QString>

#include <chrono>

/// @brief The stories' short message, which stands for a while.
///
/// Each message clears itself after `duration`, but only if it is still the message shown:
/// a newer one keeps its full time. Nothing fires after the toast is destroyed.
class ReelsToast : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text NOTIFY textChanged FINAL)
public:
    static constexpr std::chrono::milliseconds standardDuration{1600};

    explicit ReelsToast(QObject *parent = nullptr);

    [[nodiscard]] QString text() const { return m_text; }
    [[nodiscard]] std::chrono::milliseconds duration() const { return m_duration; }
    /// Tests shorten the wait; a message already shown keeps the time it started with.
    void setDuration(std::chrono::milliseconds duration) { m_duration = duration; }

public Q_SLOTS:
    void show(const QString &text);

Q_SIGNALS:
    void textChanged();

private:
    void setText(const QString &text);

    QString m_text;
    std::chrono::milliseconds m_duration = standardDuration;
};
