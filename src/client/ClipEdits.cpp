#include "ClipEdits.h"

namespace ClipEdits {

namespace {

// "clips" as an array, made one (empty) when it is missing or of another type.
Wire::Json &clipsArray(Wire::Json &doc)
{
    Wire::Json &clips = doc["clips"];
    if (!clips.is_array())
        clips = Wire::Json::array();
    return clips;
}

template <typename Change>
void forEachMatch(Wire::Json &doc, const PoolClip &clip, Change change)
{
    for (auto &entry : clipsArray(doc)) {
        if (entry.is_object() && matches(entry, clip))
            change(entry);
    }
}

} // namespace

bool matches(const Wire::Json &entry, const PoolClip &clip)
{
    const auto id = entry.find("id");
    const bool hasStringId = id != entry.end() && id->is_string();
    if (!clip.clipId)
        return !hasStringId;
    return hasStringId && Wire::toQString(id->get_ref<const std::string &>()) == *clip.clipId;
}

void keep(Wire::Json &doc, const PoolClip &clip)
{
    forEachMatch(doc, clip, [](Wire::Json &entry) { entry.erase("auto"); });
}

void toss(Wire::Json &doc, const PoolClip &clip)
{
    Wire::Json &clips = clipsArray(doc);
    Wire::Json kept = Wire::Json::array();
    for (auto &entry : clips) {
        if (!(entry.is_object() && matches(entry, clip)))
            kept.push_back(std::move(entry));
    }
    clips = std::move(kept);

    Wire::Json &dismissed = doc["dismissed"];
    if (!dismissed.is_array())
        dismissed = Wire::Json::array();
    dismissed.push_back({{"in", clip.start}, {"out", clip.end}});
}

void retrim(Wire::Json &doc, const PoolClip &clip, double start, double end)
{
    forEachMatch(doc, clip, [&](Wire::Json &entry) {
        entry["in"] = start;
        entry["out"] = end;
        entry.erase("auto");
    });
}

} // namespace ClipEdits
