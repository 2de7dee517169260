#pragma once

#include <filesystem>
#include <string>

namespace httplib {
class Server;
struct Request;
struct Response;
}
struct ServerContext;

/// The routes of the server, by area. Paths are those the desktop client asks for.
namespace Routes {
/// Sign-in: api/me, device sign-in and its link, web session.
void addAuth(httplib::Server &server, ServerContext &ctx);
/// api/flights, manifest.json, hidden flights, deleting a flight.
void addFlights(httplib::Server &server, ServerContext &ctx);
/// The staged upload: file PUT, commit, discard.
void addUpload(httplib::Server &server, ServerContext &ctx);
/// flights/<id>/<file>, with byte ranges and clip thumbnails made on demand.
void addFiles(httplib::Server &server, ServerContext &ctx);
/// api/clips: the pool and saving a flight's clips.
void addClips(httplib::Server &server, ServerContext &ctx);
/// api/projects: stories and their cut lists.
void addStories(httplib::Server &server, ServerContext &ctx);
/// api/autoreel: a story drafted from the library's clips and moments.
void addAutoreel(httplib::Server &server, ServerContext &ctx);
/// api/samples: the sample flights, their removal and restoring.
void addSamples(httplib::Server &server, ServerContext &ctx);
/// api/music and music/<track>.
void addMusic(httplib::Server &server, ServerContext &ctx);
/// Story videos: api/projects/<id>/render and /renders, api/renders, the files under renders/.
void addRenders(httplib::Server &server, ServerContext &ctx);
/// Share links: api/shares, api/projects/<id>/shares.
void addShares(httplib::Server &server, ServerContext &ctx);
/// The public page of a share link and its media, under /s/<token>, without sign-in.
void addSharePage(httplib::Server &server, ServerContext &ctx);
/// api/projects/<id>/suggest: words proposed for a share's page.
void addSuggest(httplib::Server &server, ServerContext &ctx);
/// Removes the videos and links of a story (stopping a video of it being made); no lock of the
/// database may be held.
void forgetStoryVideos(ServerContext &ctx, const std::string &projectId);
/// Paths of the public share pages.
[[nodiscard]] bool isSharePage(const httplib::Request &req);
/// theater.html, the 3D page of a flight, and web/<file>, the scripts and styles of the pages.
void addTheater(httplib::Server &server, ServerContext &ctx);
/// settings.html, the account page, with its API tokens and its sign-in; and the page files.
void addAccount(httplib::Server &server, ServerContext &ctx);

/// Streams a file, honouring one byte range (206) and refusing one past the end (416).
void serveFile(const httplib::Request &req, httplib::Response &res, const std::filesystem::path &file);
/// Paths that answer without credentials: the sign-in of a device and its link, and the web
/// pages (which ask a visitor without a session to sign in themselves).
[[nodiscard]] bool isPublic(const httplib::Request &req);
/// The 3D page and its scripts.
[[nodiscard]] bool isWebPage(const httplib::Request &req);
/// The account page and its files, which hold no data and sign the visitor in.
[[nodiscard]] bool isAccountPage(const httplib::Request &req);
}
