#include "ClipFilmstrip.h"

#include "LightboxEngine.h"

#include <algorithm>
#include <cmath>

ClipFilmstrip::ClipFilmstrip(LightboxEngine *engine, double minClip, QObject *parent)
    : QObject(parent), m_engine(engine), m_minClip(minClip)
{
    // The range ends at the video's end once its length is known.
    connect(engine, &LightboxEngine::assetDurationChanged, this, &ClipFilmstrip::rangeChanged);
}

void ClipFilmstrip::setClip(const QUrl &source, const QString &ffmpegHeaders, double start, double end)
{
    const Span saved{start, end};
    const bool changed = source != m_source || saved != m_saved || ffmpegHeaders != m_headers;
    m_source = source;
    m_headers = ffmpegHeaders;
    m_saved = saved;
    clearDraft();
    if (changed) {
        Q_EMIT clipChanged();
        Q_EMIT rangeChanged();
    }
}

void ClipFilmstrip::clearDraft()
{
    if (!m_draft)
        return;
    m_draft.reset();
    Q_EMIT draftChanged();
}

void ClipFilmstrip::setDraft(Span span)
{
    if (m_draft == span)
        return;
    m_draft = span;
    Q_EMIT draftChanged();
}

ClipFilmstrip::Span ClipFilmstrip::range() const
{
    const double pad = std::max(2.0, (m_saved.end - m_saved.start) * 0.5);
    Span span{std::max(0.0, m_saved.start - pad), m_saved.end + pad};
    // A clip that runs to the video's last frame (a suggestion often does) leaves no room after
    // it: nothing past the end has frames to show.
    if (const double length = m_engine->assetDuration(); std::isfinite(length))
        span.end = std::min(span.end, std::max(length, m_saved.end));
    return span;
}

void ClipFilmstrip::setWidth(double width)
{
    if (width == m_width)
        return;
    m_width = width;
    Q_EMIT widthChanged();
}

double ClipFilmstrip::timeAt(double x) const
{
    const Span span = range();
    if (m_width <= 0)
        return span.start;
    const double t = span.start + x / m_width * (span.end - span.start);
    return std::clamp(t, span.start, span.end);
}

double ClipFilmstrip::xOf(double time) const
{
    const Span span = range();
    if (span.end <= span.start)
        return 0;
    return (time - span.start) / (span.end - span.start) * m_width;
}

int ClipFilmstrip::frameCount(double width, double height)
{
    if (width <= 0 || height <= 0)
        return 0;
    return std::max(int(std::ceil(width / (height * 16 / 9))), minFrames);
}

QList<double> ClipFilmstrip::frameTimes(double width, double height) const
{
    const Span span = range();
    const double length = span.end - span.start;
    const int count = frameCount(width, height);
    QList<double> times;
    if (length <= 0)
        return times;
    for (int i = 0; i < count; ++i)
        times.append(span.start + (i + 0.5) * length / count);
    return times;
}

void ClipFilmstrip::dragChanged(double startX, double x)
{
    if (!m_dragMode) {
        const Span span = current();
        const double toIn = std::abs(startX - xOf(span.start));
        const double toOut = std::abs(startX - xOf(span.end));
        if (std::min(toIn, toOut) <= handleReach)
            m_dragMode = DragMode{true, toOut < toIn ? TrimPoint::outPoint : TrimPoint::inPoint};
        else
            m_dragMode = DragMode{false, TrimPoint::inPoint};
        Q_EMIT dragModeChanged();
        m_engine->setScrubbing(true);
        m_engine->pause();
    }

    const double t = timeAt(x);
    const Span span = current();
    if (!m_dragMode->handle) {
        m_engine->seekIfFree(std::clamp(t, span.start, std::max(span.start, span.end - scrubEndGap)));
        return;
    }
    if (m_dragMode->point == TrimPoint::inPoint) {
        const double start = std::max(0.0, std::min(t, span.end - m_minClip));
        setDraft({start, span.end});
        m_engine->seekIfFree(start);
    } else {
        const double end = std::max(t, span.start + m_minClip);
        setDraft({span.start, end});
        m_engine->seekIfFree(end);
    }
}

void ClipFilmstrip::dragEnded()
{
    if (!m_dragMode)
        return;
    if (m_dragMode->handle && m_draft) {
        m_engine->setBounds(m_draft->start, m_draft->end);
        m_engine->seekIfFree(m_draft->start);
        Q_EMIT handleCommitted(m_draft->start, m_draft->end);
    }
    m_dragMode.reset();
    Q_EMIT dragModeChanged();
    m_engine->setScrubbing(false);
    m_engine->play();
}

QString ClipFilmstrip::dragModeName() const
{
    if (!m_dragMode)
        return {};
    if (!m_dragMode->handle)
        return QStringLiteral("scrub");
    return m_dragMode->point == TrimPoint::inPoint ? QStringLiteral("in") : QStringLiteral("out");
}
