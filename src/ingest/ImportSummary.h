#pragma once

#include <QString>

/// The words of the import window that depend on counts.
namespace ImportSummary {

/// "3 flights ready — nothing has been added yet."
[[nodiscard]] QString readyFooter(int ready);
/// The finished banner: "2 flights added to your library, 1 didn't make it — try again any time."
[[nodiscard]] QString finished(int added, int alreadyThere, int failed);

} // namespace ImportSummary
