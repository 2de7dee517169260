#include "Theme.h"

#include "ThemeManager.h"

Theme::Theme(ThemeManager &manager, QObject *parent)
    : QObject(parent)
    , m_manager(manager)
{
    connect(&manager, &ThemeManager::darkChanged, this, &Theme::changed);
}

bool Theme::dark() const
{
    return m_manager.dark();
}
