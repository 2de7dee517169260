#pragma once

#include "ClipRecords.h"
#include "StoryRecords.h"

#include <QList>
#include <QString>

/// @brief The words of the clip list's confirmations and menus. A clip whose `auto` is true is
/// a suggestion of the server; any other clip is the pilot's own.
namespace ClipPrompts {

[[nodiscard]] inline bool isSuggestion(const Clip &clip) { return clip.autoSuggested.value_or(false); }

/// @brief A question asked before something is destroyed.
struct Confirmation {
    QString title;
    QString message;
    QString confirm;
    QString cancel;
};
[[nodiscard]] Confirmation deleteClip(const Clip &clip);
[[nodiscard]] Confirmation tossSuggestion(const Clip &clip);

/// What a menu entry does.
enum class Action { Play, Keep, Toss, AddToStory, NoStories, Delete };

/// @brief One line of a clip's menu; `AddToStory` lines carry their story, `NoStories` is an
/// inert line standing for an empty submenu.
struct MenuEntry {
    Action action;
    QString text;
    QString reelId;
    bool submenu = false;  ///< a line of the "Add to story" submenu
};
/// "Play clip"; a suggestion adds keep and toss; the pilot's own clip adds "Add to story" with
/// one line per story (or "No stories yet") and "Delete clip".
[[nodiscard]] QList<MenuEntry> menu(const Clip &clip, const QList<ProjectSummary> &reels);

} // namespace ClipPrompts
