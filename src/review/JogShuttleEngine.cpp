#include "JogShuttleEngine.h"

#include "Clock.h"
#include "VideoPlayer.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {
struct Step {
    double from;  ///< smallest absolute displacement of the step
    double speed;
    const char *label;
};
// Discrete steps, no smoothing between them.
constexpr std::array<Step, 4> steps{{{0.1, 0.5, "½×"}, {0.35, 1, "1×"}, {0.6, 2, "2×"}, {0.85, 4, "4×"}}};

const Step *stepFor(double displacement)
{
    const double a = std::fabs(displacement);
    const Step *found = nullptr;
    for (const Step &step : steps) {
        if (a >= step.from)
            found = &step;
    }
    return found;
}
} // namespace

double JogShuttleEngine::speedFor(double displacement)
{
    const Step *step = stepFor(displacement);
    if (!step)
        return 0;
    return displacement < 0 ? -step->speed : step->speed;
}

QString JogShuttleEngine::labelFor(double displacement)
{
    const Step *step = stepFor(displacement);
    return step ? QString::fromUtf8(step->label) : QString();
}

double JogShuttleEngine::displacementFor(double speed)
{
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (std::fabs(speed) == steps[i].speed) {
            // The middle of the step's band, so no rounding takes it into a neighbour.
            const double upper = i + 1 < steps.size() ? steps[i + 1].from : 1.0;
            const double d = (steps[i].from + upper) / 2;
            return speed < 0 ? -d : d;
        }
    }
    return 0;
}

double JogShuttleEngine::nextSpeed(double speed)
{
    const double a = std::fabs(speed);
    for (const Step &step : steps) {
        if (step.speed > a)
            return speed < 0 ? -step.speed : step.speed;
    }
    return speed;
}

JogShuttleEngine::JogShuttleEngine(Clock *clock, QObject *parent)
    : QObject(parent), m_timer(Clock::orSystem(clock).makeTicker(this))
{
    connect(m_timer, &Ticker::timeout, this, &JogShuttleEngine::tick);
}

void JogShuttleEngine::start(VideoPlayer *player, double startTime, double duration, Tick onTick)
{
    stop();
    m_player = player;
    m_onTick = std::move(onTick);
    m_duration = std::max(duration, 0.0);
    m_jogTime = std::clamp(startTime, 0.0, m_duration);
    m_seekInFlight = false;
    m_timer->start(tickInterval, true);
}

void JogShuttleEngine::setDisplacement(double displacement)
{
    m_speed = speedFor(displacement);
}

void JogShuttleEngine::stop()
{
    m_timer->stop();
    m_speed = 0;
}

bool JogShuttleEngine::isRunning() const
{
    return m_timer->isActive();
}

void JogShuttleEngine::tick()
{
    if (m_speed == 0)
        return;
    // By the nominal rate, not the measured interval: a late tick just runs the playhead slower.
    m_jogTime = std::clamp(m_jogTime + m_speed / rate, 0.0, m_duration);
    if (m_onTick)
        m_onTick(m_jogTime);
    if (m_seekInFlight || !m_player)
        return;
    m_seekInFlight = true;
    // A completion from before a restart must not free the seek issued after it.
    const quint64 issued = ++m_seekGeneration;
    QPointer<JogShuttleEngine> self(this);
    m_player->seek(m_jogTime, seekTolerance, seekTolerance, [self, issued](bool) {
        if (self && self->m_seekGeneration == issued)
            self->m_seekInFlight = false;
    });
}
