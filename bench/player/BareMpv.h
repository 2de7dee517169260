#pragma once

#include "JogFigures.h"

#include <QByteArray>
#include <QStringList>
#include <QUrl>

struct mpv_handle;

/// @brief The baseline: libmpv driven directly with the same options as `MpvPlayer`, waiting
/// on its event queue without any event loop in between.
class BareMpv
{
public:
    explicit BareMpv(const QStringList &headers);
    ~BareMpv();
    BareMpv(const BareMpv &) = delete;
    BareMpv &operator=(const BareMpv &) = delete;

    /// Milliseconds from loadfile to the first decoded frame; negative on failure.
    double open(const QUrl &url);
    /// Milliseconds from the seek command to the restart after it; negative on failure.
    double seek(double seconds, const char *flags);
    [[nodiscard]] double time() const;
    JogFigures jog(const JogPlan &plan, double start, double end, const char *flags);

private:
    bool sendSeek(double seconds, const char *flags);
    /// Waits until the seek just sent has landed (true) or failed.
    bool waitForRestart();

    mpv_handle *m_mpv = nullptr;
    std::uint64_t m_next = 1;
};
