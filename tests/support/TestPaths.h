#pragma once

#include <QString>

namespace TestPaths {
/// The source tree (for fixtures) and the build tree (for executables and screenshots).
QString sourceDir();
QString buildDir();
/// ../shared/realdata beside the checkout: real sidecars from many aircraft.
QString realData(const QString &relative = {});
}
