#include "H264Encoder.h"

#include "CancelToken.h"
#include "Notifier.h"
#include "ProcessRunner.h"

#include <QFileInfo>
#include <QTimer>

#include <optional>

namespace {

std::optional<H264Encoder> chosen;
bool testing = false;

Notifier &tested()
{
    static Notifier notifier;
    return notifier;
}

QList<H264Encoder> hardwareCandidates()
{
    QList<H264Encoder> out;
    if (QFileInfo::exists(QStringLiteral("/dev/dri/renderD128"))) {
        H264Encoder vaapi;
        vaapi.name = QStringLiteral("h264_vaapi");
        vaapi.beforeInput = {QStringLiteral("-vaapi_device"), QStringLiteral("/dev/dri/renderD128")};
        vaapi.filterSuffix = QStringLiteral(",format=nv12,hwupload");
        vaapi.codecOptions = {QStringLiteral("-c:v"), vaapi.name};
        out << vaapi;
    }
    for (const char *name : {"h264_nvenc", "h264_qsv"}) {
        H264Encoder e;
        e.name = QString::fromLatin1(name);
        e.codecOptions = {QStringLiteral("-c:v"), e.name};
        out << e;
    }
    return out;
}

} // namespace

H264Encoder H264Encoder::software()
{
    H264Encoder e;
    e.codecOptions = {QStringLiteral("-c:v"), e.name, QStringLiteral("-preset"), QStringLiteral("veryfast")};
    return e;
}

QString H264Encoder::filter(const QString &chain) const
{
    return chain + filterSuffix;
}

QCoro::Task<H264Encoder> H264Encoder::forMachine(QString ffmpeg)
{
    // Two flights start processing together: the second waits for the first one's test.
    while (testing && !chosen)
        co_await tested().wait(std::chrono::seconds(1));
    // A copy, never `*chosen` itself: QCoro's co_return moves from any lvalue it is handed.
    if (chosen)
        co_return H264Encoder(*chosen);
    testing = true;
    H264Encoder found = software();
    for (const H264Encoder &candidate : hardwareCandidates()) {
        QStringList args = {QStringLiteral("-v"), QStringLiteral("error")};
        args << candidate.beforeInput
             << QStringList{QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                            QStringLiteral("testsrc=size=256x256:duration=0.2"), QStringLiteral("-vf"),
                            candidate.filter(QStringLiteral("null"))}
             << candidate.codecOptions << QStringList{QStringLiteral("-f"), QStringLiteral("null"), QStringLiteral("-")};
        // A broken driver can hang the test; a candidate that takes this long is no use anyway.
        CancelToken limit;
        QTimer::singleShot(std::chrono::seconds(10), &limit, &CancelToken::cancel);
        const auto result = co_await ProcessRunner::run(ffmpeg, args, {}, &limit);
        if (result && result->status == 0) {
            found = candidate;
            break;
        }
    }
    chosen = found;
    testing = false;
    tested().notifyAll();
    co_return found;
}

void H264Encoder::prepare(QString ffmpeg)
{
    // Runs on by itself when the task is dropped; its answer stays for later calls.
    if (!chosen && !testing)
        (void)forMachine(std::move(ffmpeg));
}
