#pragma once

/// Makes the player's types known to QML under "Aeroloom.Review": the view items TimelinePlot,
/// JogBarView and FlightMapView, and PlayerModel, ClipRowsModel and ReviewSession (made in C++
/// only). The screens are in the resource folder "qrc:/aeroloom/review/" (import it as a
/// directory; FlightPlayerView is the root).
void registerReviewTypes();
