#pragma once

/// Makes the stories' types known to QML under "Aeroloom.Stories": `ReelDetailModel` and
/// `AddClipsModel` are made by the screens; the store, the hub, the navigator, the story and
/// its players are made in C++ only. The screens are in the resource folder
/// "qrc:/aeroloom/stories/" (import it as a directory; `StoriesSection` is the root).
void registerStoriesTypes();
