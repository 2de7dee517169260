#pragma once

#include "TestServer.h"

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

/// @brief What the cutting tests need around them: facts about the files ffmpeg made, read
/// with ffprobe, and a library server holding flights and stories to cut.
namespace CutTestKit {

/// The container's duration in seconds (0 when unreadable).
[[nodiscard]] double duration(const QString &file);
/// One stream's duration ("v:0", "a:0"); absent when there is no such stream.
[[nodiscard]] std::optional<double> streamDuration(const QString &file, const QString &stream);
[[nodiscard]] QSize displaySize(const QString &file);

struct Packet {
    double pts = 0;
    bool key = false;
};
[[nodiscard]] QList<Packet> videoPackets(const QString &file);

/// Frames `first` to `first + count - 1` of the first video stream, each as 8-bit grey bytes of
/// `size`, in decoding order as the file is played.
[[nodiscard]] QList<QByteArray> greyFrames(const QString &file, int first, int count, QSize size);
/// Mean absolute difference of two grey pictures of the same size.
[[nodiscard]] double difference(const QByteArray &a, const QByteArray &b);

/// A server with flights and stories for the cut window to find.
class StoryLibrary
{
public:
    StoryLibrary();

    [[nodiscard]] QString base() const { return QString::fromStdString(server.base()); }
    /// A flight whose original is called `sourceName` (its stem is what the cut list names).
    void addFlight(const std::string &id, const std::string &sourceName);
    /// A story of `items` ({"flightId", "in", "out", "label"}); its id.
    [[nodiscard]] std::string addStory(const std::string &title, const nlohmann::json &items);
    /// A music bed of the library, as the server offers it under `api/music`.
    void addTrack(const QString &relative, double seconds);

    TestServer server;

private:
    std::filesystem::path m_proxy;
};

} // namespace CutTestKit
