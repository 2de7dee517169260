#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QUrl>

#include <QCoroTask>

class CancelToken;

/// @brief Stills of a video for a filmstrip, made by ffmpeg one at a time, in order, each
/// handed on as it arrives. A still may come from up to `tolerance` seconds either side of its
/// time, so ffmpeg can take a nearby key frame instead of decoding up to the exact one.
///
/// A new `start` or `cancel` ends the run in progress (its ffmpeg is stopped) and nothing of
/// it is reported afterwards; so does destroying this object. A still that fails is skipped.
class FilmstripFrames : public QObject
{
    Q_OBJECT
public:
    static constexpr double tolerance = 0.3;

    explicit FilmstripFrames(QObject *parent = nullptr);
    ~FilmstripFrames() override;

    /// Makes one still per time of `times` from `source` (sending `ffmpegHeaders`), no taller
    /// than `maxHeight` pixels.
    void start(const QUrl &source, const QString &ffmpegHeaders, const QList<double> &times, int maxHeight);
    void cancel();
    [[nodiscard]] bool running() const { return m_running; }

    /// The ffmpeg command line for one still at `time`, written as JPEG to standard output.
    [[nodiscard]] static QStringList arguments(const QUrl &source, const QString &ffmpegHeaders, double time,
                                               int maxHeight);

Q_SIGNALS:
    /// The still for `times[index]`, as JPEG bytes.
    void frameReady(int index, const QByteArray &jpeg);
    /// The run ended with every still tried (not sent when cancelled).
    void finished();

private:
    QCoro::Task<> run(quint64 generation, QString tool, QUrl source, QString headers, QList<double> times,
                      int maxHeight, QPointer<CancelToken> token);

    quint64 m_generation = 0;
    QPointer<CancelToken> m_token;
    bool m_running = false;
};
