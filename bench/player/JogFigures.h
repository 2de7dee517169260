#pragma once

/// What a simulated jog showed: frames landed per second of wall time, and how far the landed
/// frames were from the time each seek asked for.
struct JogFigures {
    double framesPerSecond = 0;
    double meanMiss = 0;  ///< seconds between the asked time and the landed one
    double worstMiss = 0;
};

/// The jog of the bench: a 30 Hz tick moves a target on by `speed` / 30 s; at most one seek is
/// in flight, and the next free tick seeks to wherever the target then stands.
struct JogPlan {
    double speed = 4;
    double tickSeconds = 1.0 / 30.0;
    double wallSeconds = 8;
    double tolerance = 0.05;
};
