#include "ByteRange.h"
#include "Names.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"
#include "ToolRun.h"

#include <httplib.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <mutex>

namespace fs = std::filesystem;

namespace {
constexpr std::size_t chunk = 256 * 1024;

/// Makes a clip's thumbnail from the flight's proxy the first time it is asked for.
bool makeClipThumb(const ServerContext &ctx, const std::string &id, const std::string &name, long long tenths)
{
    const fs::path target = ctx.library.flight(id) / name;
    std::error_code ec;
    if (fs::exists(target, ec))
        return true;
    const fs::path proxy = ctx.library.flight(id) / "proxy.mp4";
    if (!fs::exists(proxy, ec))
        return false;
    const fs::path part = ctx.library.tmpName(".jpg");
    const auto made = ToolRun::run(ToolRun::ffmpeg(),
                                   {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                                    QStringLiteral("-ss"), QString::number(double(tenths) / 10.0, 'f', 1),
                                    QStringLiteral("-i"), QString::fromStdString(proxy.string()),
                                    QStringLiteral("-frames:v"), QStringLiteral("1"), QStringLiteral("-vf"),
                                    QStringLiteral("scale=480:-2"), QStringLiteral("-q:v"), QStringLiteral("4"),
                                    QStringLiteral("-y"), QString::fromStdString(part.string())},
                                   std::chrono::seconds(30));
    if (!made || !fs::exists(part, ec) || fs::file_size(part, ec) == 0) {
        fs::remove(part, ec);
        return false;
    }
    // Two requests for one thumbnail may both make it; the rename makes either result whole.
    fs::rename(part, target, ec);
    if (ec)
        fs::remove(part, ec);
    return fs::exists(target, ec);
}
} // namespace

namespace Routes {

void serveFile(const httplib::Request &req, httplib::Response &res, const fs::path &file)
{
    const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat st {};
    if (fd < 0 || ::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        if (fd >= 0)
            ::close(fd);
        return Reply::error(res, 404, "Not found");
    }
    const auto size = static_cast<std::uint64_t>(st.st_size);
    const ByteRange range = ByteRange::resolve(req.get_header_value("Range"), size);
    // httplib would apply the Range header a second time, and gets the ends wrong: the range is
    // resolved above, so take it away from the library before the reply is written.
    const_cast<httplib::Request &>(req).ranges.clear();

    res.set_header("Accept-Ranges", "bytes");
    if (range.kind == ByteRange::Kind::Unsatisfiable) {
        ::close(fd);
        res.set_header("Content-Range", "bytes */" + std::to_string(size));
        return Reply::error(res, 416, "The requested range lies outside the file");
    }
    if (size == 0) {
        ::close(fd);
        res.status = 200;
        res.set_content(std::string(), Names::contentType(file.filename().string()));
        return;
    }
    std::uint64_t first = 0;
    std::uint64_t length = size;
    if (range.kind == ByteRange::Kind::Partial) {
        first = range.first;
        length = range.length();
        res.status = 206;
        res.set_header("Content-Range", "bytes " + std::to_string(range.first) + "-" + std::to_string(range.last) + "/"
                                            + std::to_string(size));
    } else {
        res.status = 200;
    }
    auto buffer = std::make_shared<std::vector<char>>(chunk);
    res.set_content_provider(
        length, Names::contentType(file.filename().string()),
        [fd, first, buffer](std::size_t offset, std::size_t want, httplib::DataSink &sink) {
            const std::size_t n = std::min(want, buffer->size());
            const ssize_t got = ::pread(fd, buffer->data(), n, static_cast<off_t>(first + offset));
            if (got <= 0)
                return false;
            return sink.write(buffer->data(), static_cast<std::size_t>(got));
        },
        [fd](bool) { ::close(fd); });
}

void addFiles(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/flights/([^/]+)/([^/]+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto id = Reply::id(req, res);
        if (!id)
            return;
        const std::string name = req.matches[2].str();
        if (!Names::isServedName(name))
            return Reply::error(res, 404, "Not found");
        if (const auto tenths = Names::clipThumbTenths(name); tenths >= 0) {
            if (!makeClipThumb(ctx, *id, name, tenths))
                return Reply::error(res, 404, "Not found");
        }
        serveFile(req, res, ctx.library.flight(*id) / name);
    });
}

} // namespace Routes
