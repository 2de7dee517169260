#include "BareMpv.h"

#include "MpvNode.h"
#include "MpvProperties.h"

#include <mpv/client.h>

#include <QElapsedTimer>

#include <algorithm>
#include <clocale>
#include <cmath>

BareMpv::BareMpv(const QStringList &headers)
{
    std::setlocale(LC_NUMERIC, "C");
    m_mpv = mpv_create();
    for (const auto &option : MpvProperties::common)
        mpv_set_option_string(m_mpv, option.name, option.value);
    for (const auto &option : MpvProperties::outputOptions(true))
        mpv_set_option_string(m_mpv, option.name, option.value);
    MpvNode::StringList headerNode(headers);
    mpv_set_option(m_mpv, MpvProperties::httpHeaderFields, MPV_FORMAT_NODE, headerNode.node());
    mpv_initialize(m_mpv);
}

BareMpv::~BareMpv()
{
    mpv_terminate_destroy(m_mpv);
}

double BareMpv::open(const QUrl &url)
{
    QElapsedTimer clock;
    clock.start();
    const QByteArray target = url.toString(QUrl::FullyEncoded).toUtf8();
    const char *load[] = {MpvProperties::loadfile, target.constData(), MpvProperties::loadReplace, nullptr};
    mpv_node reply{};
    if (mpv_command_ret(m_mpv, load, &reply) < 0)
        return -1;
    const std::int64_t entry = MpvNode::int64In(reply, MpvProperties::playlistEntryId, -1);
    mpv_free_node_contents(&reply);
    // The file it replaces ends first, and its events may still be queued.
    bool started = false;
    while (true) {
        const mpv_event *event = mpv_wait_event(m_mpv, 30);
        if (event->event_id == MPV_EVENT_START_FILE)
            started = static_cast<const mpv_event_start_file *>(event->data)->playlist_entry_id == entry;
        else if (event->event_id == MPV_EVENT_PLAYBACK_RESTART && started)
            return double(clock.nsecsElapsed()) / 1e6;
        else if (event->event_id == MPV_EVENT_NONE)
            return -1;
        else if (event->event_id == MPV_EVENT_END_FILE && started)
            return -1;
    }
}

bool BareMpv::sendSeek(double seconds, const char *flags)
{
    const QByteArray target = QByteArray::number(seconds, 'f', 6);
    const char *command[] = {MpvProperties::seek, target.constData(), flags, nullptr};
    return mpv_command_async(m_mpv, m_next++, command) >= 0;
}

bool BareMpv::waitForRestart()
{
    bool replied = false;
    while (true) {
        const mpv_event *event = mpv_wait_event(m_mpv, 30);
        if (event->event_id == MPV_EVENT_COMMAND_REPLY && event->reply_userdata == m_next - 1) {
            if (event->error < 0)
                return false;
            replied = true;
        } else if (event->event_id == MPV_EVENT_PLAYBACK_RESTART && replied) {
            return true;
        } else if (event->event_id == MPV_EVENT_NONE || event->event_id == MPV_EVENT_END_FILE) {
            return false;
        }
    }
}

double BareMpv::seek(double seconds, const char *flags)
{
    QElapsedTimer clock;
    clock.start();
    if (!sendSeek(seconds, flags) || !waitForRestart())
        return -1;
    return double(clock.nsecsElapsed()) / 1e6;
}

double BareMpv::time() const
{
    double seconds = NAN;
    mpv_get_property(m_mpv, MpvProperties::timePos, MPV_FORMAT_DOUBLE, &seconds);
    return seconds;
}

JogFigures BareMpv::jog(const JogPlan &plan, double start, double end, const char *flags)
{
    QElapsedTimer clock;
    clock.start();
    const auto now = [&] { return double(clock.nsecsElapsed()) / 1e9; };
    double target = start, asked = start, nextTick = plan.tickSeconds;
    bool inFlight = false, replied = false;
    int frames = 0;
    double missSum = 0, worst = 0;
    while (now() < plan.wallSeconds) {
        const mpv_event *event = mpv_wait_event(m_mpv, std::max(0.0, nextTick - now()));
        if (event->event_id == MPV_EVENT_COMMAND_REPLY && inFlight && event->reply_userdata == m_next - 1) {
            replied = event->error >= 0;
            inFlight = replied;
        } else if (event->event_id == MPV_EVENT_PLAYBACK_RESTART && inFlight && replied) {
            inFlight = false;
            ++frames;
            const double miss = std::abs(time() - asked);
            missSum += miss;
            worst = std::max(worst, miss);
        }
        if (now() < nextTick)
            continue;
        nextTick += plan.tickSeconds;
        target = std::clamp(target + plan.speed * plan.tickSeconds, 0.0, end);
        if (!inFlight) {
            asked = target;
            inFlight = sendSeek(target, flags);
            replied = false;
        }
    }
    // Let the last seek land so it doesn't spill into the next measurement.
    if (inFlight)
        waitForRestart();
    return {frames / plan.wallSeconds, frames ? missSum / frames : 0, worst};
}
