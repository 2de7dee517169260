#pragma once

/// Makes the playback types known to QML under "Aeroloom.Review": `MpvVideoItem` (see its
/// header for use), and `VideoPlayer` and `MpvPlayer`, which are made in C++ only.
void registerReviewTypes();
