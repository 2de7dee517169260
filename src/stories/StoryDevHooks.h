#pragma once

#include <QObject>
#include <QProcessEnvironment>
#include <QSet>
#include <QString>

/// @brief Development aids that open a stories screen by themselves, read once from the
/// environment: "SPIKE_STORY" opens a story as soon as the hub has its list ("1" the first one,
/// else the story with that id); "SPIKE_ADD", "SPIKE_PREVIEW", "SPIKE_TRIM" (first item) and
/// "SPIKE_RENDER" set to "1" open that sheet of the first story opened. Each fires once.
/// "SPIKE_RENDER_DONE" set to "1" makes every video screen act as if it had started the job
/// itself, so a finished video plays the way a fresh one does.
class StoryDevHooks : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool renderDone READ renderDone CONSTANT FINAL)
public:
    explicit StoryDevHooks(const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment(),
                           QObject *parent = nullptr);

    /// True the first time it is asked for an aid that is on ("add", "preview", "trim", "render").
    Q_INVOKABLE bool take(const QString &aid);
    /// The story to open: empty when off or already done; "1" means the first of the list.
    [[nodiscard]] QString takeStory();
    [[nodiscard]] bool renderDone() const { return m_renderDone; }

private:
    QSet<QString> m_pending;
    QString m_story;
    bool m_renderDone = false;
};
