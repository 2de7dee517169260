#pragma once

/// Makes the stories' types known to QML under "Aeroloom.Stories": `ReelDetailModel`,
/// `AddClipsModel` and the models of the video screens and the share sheet are made by the
/// screens; the store, the hub, the navigator, the story, its players and the desktop's
/// hand-off are made in C++ only. The screens are in the resource folder
/// "qrc:/aeroloom/stories/" (import it as a directory; `StoriesSection` is the root).
void registerStoriesTypes();
