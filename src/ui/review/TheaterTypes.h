#pragma once

/// Makes the theater's types known to QML under "Aeroloom.Review": TheaterWebSession (see its
/// header) and TheaterController (made in C++ only). Its screen is in the resource folder
/// "qrc:/aeroloom/review/" (import it as a directory): MacTheaterView { controller: … } fills the
/// window it is put in.
void registerTheaterTypes();
