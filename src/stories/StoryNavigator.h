#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class ReelsStore;

/// @brief Which section the main window shows, and which story is open in the stories section.
///
/// Whoever makes a story elsewhere (the gallery's auto-story, the clips browser) lands the pilot
/// on it with `openStory(id)`.
class StoryNavigator : public QObject
{
    Q_OBJECT
    /// "flights", "clips" or "reels".
    Q_PROPERTY(QString section READ section WRITE setSection NOTIFY sectionChanged FINAL)
    /// The story open in the stories section; empty shows the hub.
    Q_PROPERTY(QString openedStoryId READ openedStoryId NOTIFY openedStoryChanged FINAL)
public:
    /// `store` (optional) is reloaded when a story it doesn't list yet is opened.
    explicit StoryNavigator(ReelsStore *store = nullptr, QObject *parent = nullptr);

    [[nodiscard]] QString section() const { return m_section; }
    void setSection(const QString &section);
    [[nodiscard]] QString openedStoryId() const { return m_opened; }

public Q_SLOTS:
    /// Shows the stories section with this story open.
    void openStory(const QString &id);
    /// Back to the hub.
    void closeStory();

Q_SIGNALS:
    void sectionChanged();
    void openedStoryChanged();

private:
    QPointer<ReelsStore> m_store;
    QString m_section = QStringLiteral("flights");
    QString m_opened;
};
