#include "ClipPrompts.h"

namespace ClipPrompts {

Confirmation deleteClip(const Clip &clip)
{
    const QString message = clip.label.isEmpty() ? QStringLiteral("This can’t be undone.")
                                                 : QStringLiteral("“%1” · this can’t be undone.").arg(clip.label);
    return {QStringLiteral("Delete this clip?"), message, QStringLiteral("Delete clip"), QStringLiteral("Cancel")};
}

Confirmation tossSuggestion(const Clip &clip)
{
    const QString name = clip.label.isEmpty() ? QStringLiteral("Untitled") : clip.label;
    return {QStringLiteral("Toss this suggestion?"), QStringLiteral("“%1” won’t be suggested again.").arg(name),
            QStringLiteral("Toss"), QStringLiteral("Cancel")};
}

QList<MenuEntry> menu(const Clip &clip, const QList<ProjectSummary> &reels)
{
    QList<MenuEntry> entries{{Action::Play, QStringLiteral("Play clip"), {}, false}};
    if (isSuggestion(clip)) {
        entries.append({Action::Keep, QStringLiteral("Keep — make it your clip"), {}, false});
        entries.append({Action::Toss, QStringLiteral("Toss suggestion"), {}, false});
        return entries;
    }
    if (reels.isEmpty())
        entries.append({Action::NoStories, QStringLiteral("No stories yet"), {}, true});
    for (const ProjectSummary &reel : reels)
        entries.append({Action::AddToStory, reel.title, reel.id, true});
    entries.append({Action::Delete, QStringLiteral("Delete clip"), {}, false});
    return entries;
}

} // namespace ClipPrompts
