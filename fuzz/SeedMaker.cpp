// fuzz_seeds OUT REALDATA: the starting inputs of every harness, written to OUT/<harness>/:
// the real sidecars and ExifTool output of REALDATA, what the fixture generator makes (a sidecar,
// a clip with DJI telemetry read by the bundled ExifTool), the flight.json the readers make of
// them, the replies of a real library server with its sample flights, and the requests the app
// sends. Made at run time into the build tree: no corpus is kept in the repository.
#include "DjiTelemetry.h"
#include "ExifToolReader.h"
#include "FlightFile.h"
#include "Fixtures.h"
#include "LibraryServer.h"
#include "SrtReader.h"
#include "ToolLocator.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <QCoro/QCoroTask>

#include <cstdio>

namespace {
QString out;

/// Writes one seed; the name is its digest, so the same seed is written once.
void seed(const QString &harness, const QByteArray &bytes, char prefix = 0, bool prefixed = false)
{
    const QByteArray input = prefixed ? QByteArray(1, prefix) + bytes : bytes;
    QDir().mkpath(out + QLatin1Char('/') + harness);
    QFile file(out + QLatin1Char('/') + harness + QLatin1Char('/')
               + QString::fromLatin1(QCryptographicHash::hash(input, QCryptographicHash::Sha1).toHex()));
    if (file.open(QIODevice::WriteOnly))
        file.write(input);
}

QCoro::Task<> exifToolInto(ToolLocator::ExifTool tool, QString clip, std::optional<Result<QByteArray>> &out)
{
    out.emplace(co_await TelemetryParser::runExifTool(tool, clip));
}

QByteArray readAll(const QString &path, qsizetype limit = 32 * 1024)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(limit) : QByteArray();
}

/// Sidecars (both ways the probe may have gone), ExifTool JSON, and the flight.json of each.
void fromFiles(const QString &realdata, const QString &work)
{
    QStringList sidecars;
    QStringList exifJson;
    for (QDirIterator it(realdata, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString path = it.next();
        if (path.endsWith(QLatin1String(".srt"), Qt::CaseInsensitive))
            sidecars << path;
        else if (path.endsWith(QLatin1String(".json")))
            exifJson << path;
    }
    const QString made = work + QStringLiteral("/fixture.SRT");
    if (Fixtures::writeFile(made, Fixtures::srtText(Fixtures::straightPath(200))).ok())
        sidecars << made;
    // A clip with DJI telemetry as the fixtures make it, read by the bundled ExifTool.
    const QString clip = work + QStringLiteral("/DJI_0001.LRF");
    if (const auto tool = ToolLocator::findExifTool(); tool && Fixtures::makeDjiClip(clip, Fixtures::straightPath(40)).ok()) {
        std::optional<Result<QByteArray>> json;
        QCoro::waitFor(exifToolInto(*tool, clip, json));
        if (json && json->ok()) {
            QFile file(work + QStringLiteral("/fixture.json"));
            if (file.open(QIODevice::WriteOnly) && file.write(**json) > 0)
                exifJson << file.fileName();
        }
    } else {
        std::fprintf(stderr, "fuzz_seeds: no ExifTool or ffmpeg; the clip's ExifTool seed is left out\n");
    }

    for (const QString &path : sidecars) {
        // A few dozen cues show every shape a file has; longer seeds only make each run slower.
        QByteArray text = readAll(path, 6 * 1024);
        if (const auto cut = text.lastIndexOf("\n\n"); cut > 0 && text.size() == 6 * 1024)
            text.truncate(cut + 2);
        seed(QStringLiteral("srt"), text, 0, true);
        seed(QStringLiteral("srt"), text, 1, true);
        const auto read = TelemetryParser::parseSRT(QString::fromUtf8(text), QStringLiteral("Mavic 3"), 30.0,
                                                    QStringLiteral("DJI_0001.MP4"));
        if (read.ok())
            seed(QStringLiteral("flight_file"), *FlightFile::encode(*read));
    }
    for (const QString &path : exifJson) {
        const QByteArray json = readAll(path, 256 * 1024);
        seed(QStringLiteral("exiftool_json"), json);
        const auto read = TelemetryParser::parseExifTool(json, QStringLiteral("DJI_0001.LRF"));
        if (read.ok())
            seed(QStringLiteral("flight_file"), *FlightFile::encode(*read));
    }
}

/// The replies of a real library with its sample flights, a story and a token, each under the
/// first byte that picks its reader in fuzz_client_records.
void fromServer(const QString &work)
{
    ServerConfig config;
    config.library = (work + QStringLiteral("/library")).toStdString();
    config.port = 0;
    config.log = false;
    config.sampleSeconds = 4;
    LibraryServer server(config);
    if (!server.start().ok()) {
        std::fprintf(stderr, "fuzz_seeds: the library server didn't start; its replies are left out\n");
        return;
    }
    httplib::Client client(server.baseUrl());
    const auto body = [&](const std::string &path) {
        const auto reply = client.Get(path.c_str());
        return reply ? QByteArray::fromStdString(reply->body) : QByteArray();
    };
    const auto record = [](char picks, const QByteArray &bytes) { seed(QStringLiteral("client_records"), bytes, picks, true); };
    const QByteArray manifest = body("/manifest.json");
    const auto flights = nlohmann::json::parse(manifest.toStdString(), nullptr, false);
    const std::string id = flights.is_object() && !flights["flights"].empty()
        ? flights["flights"][0]["id"].get<std::string>()
        : std::string("x");
    const QByteArray clips = body("/flights/" + id + "/clips.json");
    record(0, manifest);
    record(1, body("/api/clips"));
    record(2, body("/api/clips"));
    record(3, R"({"moments":[{"id":"m1","in":2.5,"out":6,"score":0.8,"why":"Fast pass"},{"in":9,"out":11.5}]})");
    record(4, clips);
    record(5, body("/flights/" + id + "/flight.json"));
    record(6, R"({"ids":[")" + QByteArray::fromStdString(id) + R"("]})");
    record(7, body("/api/samples"));
    const auto created = client.Post("/api/projects",
                                     R"({"title":"Coast","items":[{"flightId":")" + id
                                         + R"(","clipId":"sample-orbit","in":3,"out":8,"label":"Orbit"}]})",
                                     "application/json");
    const auto project = created ? nlohmann::json::parse(created->body, nullptr, false) : nlohmann::json();
    const std::string story = project.is_object() ? project.value("id", std::string("x")) : std::string("x");
    record(8, body("/api/projects"));
    record(9, body("/api/projects/" + story));
    record(10, body("/api/projects/" + story + "/edl"));
    record(11, R"({"status":"done","id":"r1","progress":1,"url":"renders/r1.mp4","rendered":"2024-01-02T03:04:05",)"
               R"("duration":42.5,"stale":false,"aspect":"vertical","settings":{"track":"ambient/03.Slow Orbit.m4a",)"
               R"("beatSync":"bars","xfade":0.2,"hud":true}})");
    record(12, R"({"renders":[{"id":"r1","url":"renders/r1.mp4","size":1048576,"projectId":"p1","projectTitle":"Coast"}]})");
    record(13, R"({"token":"t1","url":"http://x/s/t1","projectId":"p1","renderId":"r1","title":"Coast",)"
               R"("created":"2024-01-02T03:04:05","views":3,"hearts":1})");
    record(14, R"({"suggestions":[{"title":"Blue hour","description":"Low over the lake"},{"title":"Coast"}]})");
    record(15, body("/api/me"));
    record(16, R"({"cookie":"aeroloom_session","token":"0123abcd","maxAge":43200})");
    record(17, clips);
}

/// Requests as the app and a browser send them, for both libraries of fuzz_server_requests
/// (first byte 0: open to all; 3: takes tokens, with the token).
void requests()
{
    const std::string id = "20240102_030405_0007";
    const auto req = [](const std::string &head, const std::string &body = {}) {
        return head + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    };
    const std::string host = "Host: 127.0.0.1:8484\r\nAccept-Encoding: identity\r\n";
    const std::vector<std::string> all = {
        "GET /manifest.json HTTP/1.1\r\n" + host + "\r\n",
        "GET /api/me HTTP/1.1\r\n" + host + "\r\nGET /api/flights HTTP/1.1\r\n" + host + "\r\n",
        "GET /flights/" + id + "/flight.json HTTP/1.1\r\n" + host + "Range: bytes=0-15\r\n\r\n",
        "GET /flights/" + id + "/proxy.mp4 HTTP/1.1\r\n" + host + "Range: bytes=-2\r\n\r\n",
        "GET /flights/" + id + "/clipthumb_c1_15.jpg HTTP/1.1\r\n" + host + "\r\n",
        "GET /flights/" + id + "/clips.json HTTP/1.1\r\n" + host + "\r\n",
        req("PUT /api/flights/" + id + "/files/thumb.jpg HTTP/1.1\r\n" + host
                + "Content-Type: application/octet-stream\r\n",
            "\xff\xd8\xff\xd9"),
        "PUT /api/flights/" + id + "/files/moments.json HTTP/1.1\r\n" + host
            + "Transfer-Encoding: chunked\r\n\r\n5\r\n{\"a\":\r\n2\r\n1}\r\n0\r\n\r\n",
        req("POST /api/flights/" + id + "/commit HTTP/1.1\r\n" + host),
        "DELETE /api/flights/" + id + "/staging HTTP/1.1\r\n" + host + "\r\n",
        req("POST /api/clips/" + id + " HTTP/1.1\r\n" + host + "Content-Type: application/json\r\n",
            R"({"flightId":")" + id + R"(","clips":[{"id":"c2_1500","in":1.5,"out":3,"label":"Pass"}]})"),
        req("POST /api/clips/" + id + " HTTP/1.1\r\n" + host + "Content-Type: application/json\r\n",
            R"({"clips":[{"id":"c1","in":1.5,"out":4.25,"label":"Orbit"}],"dismissed":[{"in":6,"out":9}]})"),
        req("POST /api/hidden/" + id + " HTTP/1.1\r\n" + host + "Content-Type: application/json\r\n", R"({"hidden":true})"),
        req("POST /api/projects HTTP/1.1\r\n" + host + "Content-Type: application/json\r\n",
            R"({"title":"Dawn","items":[{"flightId":")" + id + R"(","in":1,"out":2,"label":""}]})"),
        "GET /api/projects HTTP/1.1\r\n" + host + "\r\n",
        req("POST /api/samples/remove HTTP/1.1\r\n" + host),
        req("POST /api/auth/device/request HTTP/1.1\r\n" + host + "Content-Type: application/json\r\n",
            R"({"email":"pilot@example.org","name":"Desk"})"),
        req("POST /api/auth/device/poll HTTP/1.1\r\n" + host + "Content-Type: application/json\r\n",
            R"({"secret":"00"})"),
        req("POST /api/auth/web/token HTTP/1.1\r\n" + host + "Content-Type: application/json\r\n", R"({"token":"x"})"),
        req("POST /api/tokens HTTP/1.1\r\n" + host + "Content-Type: application/json\r\n", R"({"name":"Laptop"})"),
        "GET /api/tokens HTTP/1.1\r\n" + host + "Cookie: theme=dark; aeroloom_session=00\r\n\r\n",
        "GET /settings.html HTTP/1.1\r\n" + host + "\r\n",
        "GET /pages/account.js HTTP/1.1\r\n" + host + "Connection: close\r\n\r\n",
        "GET /music/ambient/03.Slow%20Orbit.m4a HTTP/1.1\r\n" + host + "Range: bytes=100-\r\n\r\n",
    };
    for (const auto &bytes : all) {
        seed(QStringLiteral("server_requests"), QByteArray::fromStdString(bytes), 0, true);
        seed(QStringLiteral("server_requests"), QByteArray::fromStdString(bytes), 3, true);
    }
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: fuzz_seeds OUT REALDATA\n");
        return 2;
    }
    out = QString::fromLocal8Bit(argv[1]);
    QTemporaryDir work;
    fromFiles(QString::fromLocal8Bit(argv[2]), work.path());
    fromServer(work.path());
    requests();
    return 0;
}
