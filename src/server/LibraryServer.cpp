#include "LibraryServer.h"

#include "Authenticator.h"
#include "ConnectionFront.h"
#include "Database.h"
#include "DeviceSignIn.h"
#include "FlightAnalyst.h"
#include "FlightIndex.h"
#include "Library.h"
#include "MusicMaker.h"
#include "Proxy480Maker.h"
#include "RenderQueue.h"
#include "Reply.h"
#include "RoutedServer.h"
#include "Routes.h"
#include "SampleMaker.h"
#include "ServerContext.h"
#include "StagingArea.h"
#include "TokenStore.h"

#include <httplib.h>

#include <QString>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <regex>
#include <charconv>
#include <cstdio>
#include <cstring>

struct LibraryServer::Impl {
    ServerConfig config;
    std::optional<Library> library;
    std::unique_ptr<Database> db;
    std::unique_ptr<FlightIndex> flights;
    std::unique_ptr<StagingArea> staging;
    std::unique_ptr<TokenStore> tokens;
    std::unique_ptr<Authenticator> auth;
    std::unique_ptr<DeviceSignIn> device;
    std::unique_ptr<MusicMaker> music;
    std::unique_ptr<FlightAnalyst> analyst;
    std::unique_ptr<Proxy480Maker> proxies;
    std::unique_ptr<RenderQueue> renders;
    std::unique_ptr<ServerContext> context;
    RoutedServer http;
    std::unique_ptr<ConnectionFront> front;
    bool installed = false;
    int port = 0;
    int lockFd = -1;  ///< held while this server owns the library

    void unlock()
    {
        if (lockFd >= 0)
            ::close(lockFd);
        lockFd = -1;
    }

    void install();
    void routes();
    void guard();
    void refuse(httplib::Response &res) const;
};

namespace {
/// Where a refused request with a body is sent to have its body read before the 401.
constexpr const char *refusalPath = "/.refused";
/// Where a PUT to a path that takes no upload is sent, to have its body dropped before the 404.
constexpr const char *nowherePath = "/.nowhere";
const std::regex uploadPath(R"(/api/flights/[^/]+/files/[^/]+)");
constexpr std::uint64_t maxJsonBody = 16 * 1024 * 1024;

bool withinJsonLimit(const httplib::Request &req)
{
    if (!req.has_header("Content-Length"))
        return false;
    const std::string text = req.get_header_value("Content-Length");
    std::uint64_t length = 0;
    const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), length);
    return ec == std::errc() && ptr == text.data() + text.size() && length <= maxJsonBody;
}

/// Paths in the log lose anything after the sign-in link's prefix: the code is a credential.
std::string loggedPath(const std::string &path)
{
    return path.rfind("/auth/device/", 0) == 0 ? std::string("/auth/device/…") : path;
}
} // namespace

void LibraryServer::Impl::refuse(httplib::Response &res) const
{
    if (config.auth == AuthMode::Basic)
        res.set_header("WWW-Authenticate", "Basic realm=\"Aeroloom library\"");
    Reply::error(res, 401, "Sign in to use this library");
}

void LibraryServer::Impl::guard()
{
    http.set_pre_routing_handler([this](const httplib::Request &req, httplib::Response &res) {
        // A request with neither Content-Length nor Transfer-Encoding has no body, as HTTP says
        // and as the desktop client sends its bodiless POSTs and DELETEs; httplib would instead
        // wait for a body until the client hangs up.
        if (!req.has_header("Content-Length") && !req.has_header("Transfer-Encoding"))
            const_cast<httplib::Request &>(req).headers.emplace("Content-Length", "0");
        // httplib reads the body of every request except an upload into memory: such bodies
        // are small JSON, and one that isn't is refused before it is read.
        if (req.method != "PUT" && Reply::hasBody(req) && !withinJsonLimit(req)) {
            Reply::error(res, 413, "The request body is too large");
            Reply::closeAfter(req);
            return httplib::Server::HandlerResponse::Handled;
        }
        // httplib would read the body of a PUT to any other path into memory before its 404.
        if (req.method == "PUT" && !std::regex_match(req.path, uploadPath)) {
            const_cast<httplib::Request &>(req).path = nowherePath;
            return httplib::Server::HandlerResponse::Unhandled;
        }
        if (Routes::isPublic(req) || auth->identify(req))
            return httplib::Server::HandlerResponse::Unhandled;
        if (!Reply::hasBody(req)) {
            refuse(res);
            return httplib::Server::HandlerResponse::Handled;
        }
        // A refused request's body is read (and dropped) before the answer, so the client hears
        // the 401 rather than a reset while it is still sending: send it to the refusal route.
        const_cast<httplib::Request &>(req).path = refusalPath;
        return httplib::Server::HandlerResponse::Unhandled;
    });
    const auto refuseWithBody = [this](const httplib::Request &, httplib::Response &res) { refuse(res); };
    http.Get(refusalPath, refuseWithBody);
    http.Post(refusalPath, refuseWithBody);
    http.Delete(refusalPath, refuseWithBody);
    http.Patch(refusalPath, refuseWithBody);
    http.Put(refusalPath, [this](const httplib::Request &, httplib::Response &res, const httplib::ContentReader &reader) {
        reader([](const char *, std::size_t) { return true; });
        refuse(res);
    });
    http.Put(nowherePath, [](const httplib::Request &, httplib::Response &res, const httplib::ContentReader &reader) {
        reader([](const char *, std::size_t) { return true; });
        Reply::error(res, 404, "Not found");
    });
    // Routes answer their own failures with a detail; this fills in those httplib makes itself.
    http.set_error_handler([](const httplib::Request &, httplib::Response &res) {
        if (res.body.empty() && !res.has_header("Content-Range"))
            Reply::error(res, res.status, res.status == 404 ? "Not found" : "The request was not understood");
    });
    http.set_exception_handler([](const httplib::Request &, httplib::Response &res, std::exception_ptr) {
        Reply::error(res, 500, "The server failed on this request");
    });
    if (config.log) {
        http.set_logger([](const httplib::Request &req, const httplib::Response &res) {
            std::fprintf(stderr, "%s %s %d\n", req.method.c_str(), loggedPath(req.path).c_str(), res.status);
        });
    }
}

void LibraryServer::Impl::install()
{
    if (installed)
        return;
    installed = true;
    guard();
    routes();
    http.setServing(true);
}

void LibraryServer::Impl::routes()
{
    Routes::addAuth(http, *context);
    Routes::addFlights(http, *context);
    Routes::addUpload(http, *context);
    Routes::addFiles(http, *context);
    Routes::addClips(http, *context);
    Routes::addStories(http, *context);
    Routes::addAutoreel(http, *context);
    Routes::addSamples(http, *context);
    Routes::addMusic(http, *context);
    Routes::addTheater(http, *context);
    Routes::addAccount(http, *context);
    Routes::addRenders(http, *context);
    Routes::addShares(http, *context);
    Routes::addSuggest(http, *context);
    Routes::addSharePage(http, *context);
}

LibraryServer::LibraryServer(ServerConfig config) : d(std::make_unique<Impl>())
{
    d->config = std::move(config);
}

LibraryServer::~LibraryServer()
{
    stop();
}

Result<void> LibraryServer::open()
{
    auto library = Library::open(d->config.library);
    if (!library)
        return library.failure();
    d->library.emplace(std::move(library).value());
    // Two servers on one library would race over its folders: the second one stops here.
    d->lockFd = ::open((d->library->root() / ".server.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (d->lockFd < 0 || ::flock(d->lockFd, LOCK_EX | LOCK_NB) != 0) {
        d->unlock();
        return Failure{QStringLiteral("server"), 5,
                       QStringLiteral("The library %1 is already served by another aeroloom-server.")
                           .arg(QString::fromStdString(d->library->root().string()))};
    }
    d->library->tidy();
    const bool fresh = !std::filesystem::exists(d->library->database());
    auto db = Database::open(d->library->database());
    if (!db)
        return db.failure();
    d->db = std::move(db).value();
    d->flights = std::make_unique<FlightIndex>(*d->db);
    d->staging = std::make_unique<StagingArea>(*d->library, *d->flights, d->config.quota);
    d->staging->recover();
    d->tokens = std::make_unique<TokenStore>(*d->db);
    d->auth = std::make_unique<Authenticator>(d->config, *d->tokens);
    d->device = std::make_unique<DeviceSignIn>(d->config, *d->library, *d->tokens);
    d->music = std::make_unique<MusicMaker>(*d->library);
    d->analyst =
        std::make_unique<FlightAnalyst>(*d->library, *d->flights, d->staging->folderLock(), d->config.log);
    d->proxies = std::make_unique<Proxy480Maker>(*d->library, *d->flights, d->staging->folderLock(), d->config.log);
    d->renders = std::make_unique<RenderQueue>(d->config, *d->library, *d->db, *d->music);
    d->context.reset(new ServerContext{d->config, *d->library, *d->db, *d->flights, *d->staging, *d->tokens,
                                       *d->auth, *d->device, *d->music, *d->analyst, *d->proxies, *d->renders});
    // Samples are made once, for a new library; a pilot who deleted them doesn't get them back.
    // Without them (no ffmpeg, say) the library still serves: that is said, not fatal.
    if (fresh && d->config.samples) {
        const auto made = SampleMaker::make(*d->library, *d->flights, d->staging->folderLock(),
                                             d->config.sampleSeconds);
        if (made) {
            d->music->ensure();
            d->db->setSetting("samplesMade", std::to_string(made.value()));
        } else {
            std::fprintf(stderr, "aeroloom-server: the sample flights could not be made: %s\n",
                         qPrintable(made.errorText()));
        }
    }
    return {};
}

Result<int> LibraryServer::start()
{
    if (!d->context) {
        if (auto opened = open(); !opened)
            return opened.failure();
    }
    d->install();
    // Uploads over a slow link may pause; a minute of silence is the sign of a client gone.
    ConnectionFront::Limits limits;
    limits.readTimeout = limits.writeTimeout = std::chrono::seconds(60);
    limits.headDeadline = d->config.headDeadline;
    d->http.set_keep_alive_timeout(std::chrono::duration_cast<std::chrono::seconds>(limits.idle).count());
    d->http.set_keep_alive_max_count(limits.maxRequests);
    d->front = std::make_unique<ConnectionFront>(
        [this](httplib::Stream &stream) { return d->http.serveOne(stream); }, limits);
    d->http.setServing(true);
    errno = 0;
    d->port = d->front->listen(d->config.host, d->config.port);
    if (d->port <= 0) {
        const int error = errno;
        const QString where = QStringLiteral("%1:%2").arg(QString::fromStdString(d->config.host)).arg(d->config.port);
        if (error == EADDRINUSE)
            return Failure{QStringLiteral("server"), 4,
                           QStringLiteral("Port %1 is already in use — pick another with --listen HOST:PORT.").arg(where)};
        return Failure{QStringLiteral("server"), 4,
                       QStringLiteral("The server can't listen on %1: %2.")
                           .arg(where, QString::fromUtf8(error ? std::strerror(error) : "the address is not usable"))};
    }
    if (d->config.lightProxies)
        d->proxies->start();
    // Flights not yet analysed by this version are done behind the server's back, not before it.
    d->analyst->startSweep();
    return d->port;
}

void LibraryServer::stop()
{
    if (d->analyst)
        d->analyst->stop();
    if (d->renders)
        d->renders->stop();
    if (d->front) {
        d->http.setServing(false);
        d->front->stop();
        d->front.reset();
    }
    if (d->proxies)
        d->proxies->stop();
    d->unlock();
}

bool LibraryServer::serve(httplib::Stream &stream)
{
    if (!d->context && !open())
        return false;
    d->install();
    return d->http.serveOne(stream);
}

int LibraryServer::port() const
{
    return d->port;
}

std::string LibraryServer::baseUrl() const
{
    return "http://" + d->config.host + ":" + std::to_string(d->port);
}

const ServerConfig &LibraryServer::config() const
{
    return d->config;
}

std::string LibraryServer::createToken(const std::string &email)
{
    return d->tokens->create(email, "command line");
}

Result<std::string> LibraryServer::createToken(const ServerConfig &config, const std::string &email)
{
    // A library that doesn't exist yet is made as serving it would make it, samples and all, so
    // both ways of starting a library give the same library. If a server is starting on it at
    // this moment, that server makes it, and the token only needs the database.
    if (!std::filesystem::exists(config.library / "library.db")) {
        LibraryServer maker(config);
        if (maker.open())
            return maker.createToken(email);
    }
    auto opened = Library::open(config.library);
    if (!opened)
        return opened.failure();
    auto db = Database::open(opened->database());
    if (!db)
        return db.failure();
    return TokenStore(*db.value()).create(email, "command line");
}
