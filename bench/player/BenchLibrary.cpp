#include "BenchLibrary.h"

#include "FlightFile.h"
#include "SampleMaker.h"

#include <httplib.h>

#include <QDir>
#include <QFile>
#include <QProcess>

BenchLibrary::BenchLibrary()
{
    ServerConfig config;
    config.library = (m_dir.path() + QStringLiteral("/library")).toStdString();
    config.port = 0;
    config.samples = false;
    config.log = false;
    config.auth = AuthMode::Token;
    m_server = std::make_unique<LibraryServer>(config);
    if (const auto port = m_server->start(); !port) {
        m_error = port.errorText();
        return;
    }
    m_token = QString::fromStdString(m_server->createToken("bench@localhost"));
    if (!addFlight("20240601_120000_0001", {}))
        return;
    addFlight("20240601_120000_0002", {QStringLiteral("-g"), QStringLiteral("30")});
}

QUrl BenchLibrary::url(const char *id) const
{
    return QUrl(QString::fromStdString(m_server->baseUrl()) + QStringLiteral("/flights/") + QLatin1String(id) +
                QStringLiteral("/proxy.mp4"));
}

bool BenchLibrary::addFlight(const char *id, const QStringList &encoderOptions)
{
    const QString folder = m_dir.path() + QLatin1Char('/') + QLatin1String(id);
    const QString proxy = folder + QStringLiteral("/proxy.mp4");
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 QStringList{QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
                             QStringLiteral("lavfi"), QStringLiteral("-i"),
                             QStringLiteral("testsrc2=size=1280x720:rate=30:duration=%1").arg(seconds),
                             QStringLiteral("-c:v"), QStringLiteral("libx264"), QStringLiteral("-preset"), QStringLiteral("veryfast"),
                             QStringLiteral("-b:v"), QStringLiteral("4M"), QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p")}
                     + encoderOptions
                     + QStringList{QStringLiteral("-an"), QStringLiteral("-movflags"), QStringLiteral("+faststart"),
                                   QStringLiteral("-y"), proxy});
    if (!QDir().mkpath(folder) || !ffmpeg.waitForFinished(-1) || ffmpeg.exitCode() != 0) {
        m_error = QStringLiteral("ffmpeg could not make the proxy: ") + QString::fromUtf8(ffmpeg.readAllStandardError());
        return false;
    }
    if (!FlightFile::write(SampleMaker::flightFile(46.0, 7.0, seconds, std::string("DJI_") + id + ".MP4", "Bench Field"), folder)) {
        m_error = QStringLiteral("could not write flight.json");
        return false;
    }
    httplib::Client client(m_server->baseUrl());
    client.set_bearer_token_auth(m_token.toStdString());
    for (const char *name : {"flight.json", "proxy.mp4"}) {
        QFile file(folder + QLatin1Char('/') + QLatin1String(name));
        if (!file.open(QIODevice::ReadOnly))
            return false;
        const QByteArray bytes = file.readAll();
        const auto put = client.Put((std::string("/api/flights/") + id + "/files/" + name).c_str(),
                                    bytes.constData(), std::size_t(bytes.size()), "application/octet-stream");
        if (!put || put->status != 200) {
            m_error = QStringLiteral("upload of %1 failed").arg(QLatin1String(name));
            return false;
        }
    }
    const auto commit = client.Post((std::string("/api/flights/") + id + "/commit").c_str());
    if (!commit || commit->status != 200) {
        m_error = QStringLiteral("commit failed");
        return false;
    }
    return true;
}
