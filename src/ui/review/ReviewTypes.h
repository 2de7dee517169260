#pragma once

/// Makes the review types known to QML under "Aeroloom.Review": `MpvVideoItem` (see its header
/// for use), the view items TimelinePlot, JogBarView and FlightMapView, and `VideoPlayer`,
/// `MpvPlayer`, PlayerModel, PlayerClipRows and ReviewSession, which are made in C++ only. The
/// player's screens are in the resource folder "qrc:/aeroloom/review/" (import it as a
/// directory; FlightPlayerView is the root).
void registerReviewTypes();
