#include "IngestCommands.h"

namespace IngestCommands {

QStringList proxy(const QString &source, bool isVideo, const H264Encoder &encoder, bool progress, const QString &output)
{
    QStringList args = {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")};
    if (isVideo) {
        // Full-resolution video is too heavy to stream: short side 720 whatever the orientation.
        args << encoder.beforeInput
             << QStringList{QStringLiteral("-i"), source, QStringLiteral("-map"), QStringLiteral("0:v:0"), QStringLiteral("-vf"),
                            encoder.filter(QStringLiteral("scale=if(gt(iw\\,ih)\\,-2\\,720):if(gt(iw\\,ih)\\,720\\,-2)"))}
             << encoder.codecOptions
             << QStringList{QStringLiteral("-b:v"), QStringLiteral("4M"), QStringLiteral("-an"), QStringLiteral("-movflags"),
                            QStringLiteral("+faststart")};
    } else {
        // The low-resolution file is already light: no decoding at all.
        args << QStringList{QStringLiteral("-i"), source,        QStringLiteral("-map"), QStringLiteral("0:0"),
                            QStringLiteral("-c:v"), QStringLiteral("copy"), QStringLiteral("-an"), QStringLiteral("-movflags"),
                            QStringLiteral("+faststart")};
    }
    if (progress)
        args << QStringLiteral("-progress") << QStringLiteral("pipe:1") << QStringLiteral("-nostats");
    args << output;
    return args;
}

QStringList thumbnail(const QString &proxy, const QString &output)
{
    // A proxy shorter than two seconds gives no still, and the flight simply has no thumbnail.
    return {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y"), QStringLiteral("-ss"),
            QStringLiteral("2.0"), QStringLiteral("-i"), proxy, QStringLiteral("-frames:v"), QStringLiteral("1"),
            QStringLiteral("-vf"), QStringLiteral("scale=480:-1"), output};
}

} // namespace IngestCommands
