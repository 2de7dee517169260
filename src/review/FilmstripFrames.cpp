#include "FilmstripFrames.h"

#include "CancelToken.h"
#include "ProcessRunner.h"
#include "ToolLocator.h"

#include <algorithm>

FilmstripFrames::FilmstripFrames(QObject *parent) : QObject(parent) {}

FilmstripFrames::~FilmstripFrames()
{
    cancel();
}

void FilmstripFrames::cancel()
{
    ++m_generation;
    m_running = false;
    if (m_token) {
        m_token->cancel();
        m_token->deleteLater();
        m_token = nullptr;
    }
}

void FilmstripFrames::start(const QUrl &source, const QString &ffmpegHeaders, const QList<double> &times, int maxHeight)
{
    cancel();
    const auto tool = ToolLocator::ffmpeg();
    if (!tool || times.isEmpty() || !source.isValid())
        return;
    // The token is no child of this object: a run whose owner is gone still needs it to stop ffmpeg.
    m_token = new CancelToken();
    m_running = true;
    run(m_generation, *tool, source, ffmpegHeaders, times, std::max(1, maxHeight), m_token);
}

QStringList FilmstripFrames::arguments(const QUrl &source, const QString &ffmpegHeaders, double time, int maxHeight)
{
    // Seek to the key frame at or before time + tolerance without decoding on to the exact time
    // (-noaccurate_seek), keep the file's own clock (-copyts), and take the first frame no
    // earlier than time - tolerance: a key frame within reach on either side costs one decode.
    const QString from = QString::number(std::max(0.0, time + tolerance), 'f', 3);
    const QString earliest = QString::number(time - tolerance, 'f', 3);
    QStringList args{QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error")};
    if (!ffmpegHeaders.isEmpty())
        args << QStringLiteral("-headers") << ffmpegHeaders;
    args << QStringLiteral("-noaccurate_seek") << QStringLiteral("-ss") << from << QStringLiteral("-copyts")
         << QStringLiteral("-i") << source.toString() << QStringLiteral("-map") << QStringLiteral("0:v:0")
         << QStringLiteral("-vf")
         << QStringLiteral("select='gte(t\\,%1)',scale=-2:'min(ih\\,%2)'").arg(earliest).arg(maxHeight)
         << QStringLiteral("-frames:v") << QStringLiteral("1") << QStringLiteral("-c:v") << QStringLiteral("mjpeg")
         << QStringLiteral("-q:v") << QStringLiteral("5") << QStringLiteral("-f") << QStringLiteral("image2pipe")
         << QStringLiteral("pipe:1");
    return args;
}

QCoro::Task<> FilmstripFrames::run(quint64 generation, QString tool, QUrl source, QString headers, QList<double> times,
                                   int maxHeight, QPointer<CancelToken> token)
{
    QPointer<FilmstripFrames> self(this);
    for (int i = 0; i < times.size(); ++i) {
        // The runner would start a child even for a token cancelled already.
        if (!token || token->isCancelled())
            co_return;
        const auto result = co_await ProcessRunner::run(tool, arguments(source, headers, times[i], maxHeight), {}, token);
        if (!self || generation != m_generation)
            co_return;
        if (result && result->status == 0 && !result->stdOut.isEmpty())
            Q_EMIT frameReady(i, result->stdOut);
    }
    if (self && generation == m_generation) {
        m_running = false;
        Q_EMIT finished();
    }
}
