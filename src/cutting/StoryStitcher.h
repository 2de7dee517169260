#pragma once

#include <CancelToken.h>
#include <Result.h>

#include <QCoroTask>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/// @brief One ffmpeg run that joins a story's cut clips into a finished video: every clip brought
/// to the first one's size and frame rate, neighbours crossfaded, the whole faded in and out,
/// and a music bed under it when there is one (the clips' own sound is never used).
namespace StoryStitcher {

/// Fails with a process failure: tools not found, no clips, a clip without a readable duration
/// (before ffmpeg starts), or ffmpeg's own exit status and words. `progress` gets the fraction
/// done from ffmpeg's reports, on the calling thread.
QCoro::Task<Result<void>> stitchStory(QStringList clips, std::optional<QString> bed, QString output, bool vertical,
                                      double xfade, double fade, std::function<void(double)> progress,
                                      std::shared_ptr<CancelToken> token);

} // namespace StoryStitcher
