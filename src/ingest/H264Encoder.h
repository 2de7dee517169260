#pragma once

#include <QString>
#include <QStringList>

#include <QCoroTask>

/// @brief The H.264 encoder this machine uses for proxies and cuts: the first hardware encoder
/// that passes a tiny test encode (VA-API, NVENC, Quick Sync), else libx264 at a fast preset.
/// Every choice encodes at the bit rate the caller asks for.
struct H264Encoder {
    QString name = QStringLiteral("libx264");
    QStringList beforeInput;    ///< device options placed before "-i"
    QString filterSuffix;       ///< appended to the video filter chain (upload to the device)
    QStringList codecOptions;   ///< "-c:v", name and its options

    /// Tested once per process; later calls answer at once.
    static QCoro::Task<H264Encoder> forMachine(QString ffmpeg);
    /// Starts the test in the background, so the first encode doesn't wait for it.
    static void prepare(QString ffmpeg);
    static H264Encoder software();
    /// `-vf` value with this encoder's suffix.
    [[nodiscard]] QString filter(const QString &chain) const;
};
