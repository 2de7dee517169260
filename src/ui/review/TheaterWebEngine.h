#pragma once

/// Sets Qt WebEngine up for the theater's web view. Call it once, before the QGuiApplication is
/// made: the web view shares OpenGL with the windows.
void initializeWebEngine();
