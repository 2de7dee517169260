#include "StoryNavigator.h"

#include "ReelsStore.h"

StoryNavigator::StoryNavigator(ReelsStore *store, QObject *parent) : QObject(parent), m_store(store) {}

void StoryNavigator::setSection(const QString &section)
{
    if (section == m_section)
        return;
    m_section = section;
    Q_EMIT sectionChanged();
}

void StoryNavigator::openStory(const QString &id)
{
    if (id.isEmpty())
        return;
    setSection(QStringLiteral("reels"));
    // A story made elsewhere isn't in the hub's list yet: the list behind it is brought up to date.
    if (m_store && !m_store->summary(id))
        m_store->load();
    if (id == m_opened)
        return;
    m_opened = id;
    Q_EMIT openedStoryChanged();
}

void StoryNavigator::closeStory()
{
    if (m_opened.isEmpty())
        return;
    m_opened.clear();
    Q_EMIT openedStoryChanged();
}
