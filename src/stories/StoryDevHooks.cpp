#include "StoryDevHooks.h"

#include <utility>

StoryDevHooks::StoryDevHooks(const QProcessEnvironment &environment, QObject *parent) : QObject(parent)
{
    for (const char *aid : {"add", "preview", "trim", "render"}) {
        const QString name = QLatin1String(aid);
        if (environment.value(QStringLiteral("SPIKE_") + name.toUpper()) == QLatin1String("1"))
            m_pending.insert(name);
    }
    m_story = environment.value(QStringLiteral("SPIKE_STORY")).trimmed();
    m_renderDone = environment.value(QStringLiteral("SPIKE_RENDER_DONE")) == QLatin1String("1");
}

bool StoryDevHooks::take(const QString &aid)
{
    return m_pending.remove(aid);
}

QString StoryDevHooks::takeStory()
{
    return std::exchange(m_story, QString());
}
