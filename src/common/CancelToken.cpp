#include "CancelToken.h"

#include <QTimer>

#include <QCoroSignal>
#include <QCoroTimer>

void CancelToken::cancel()
{
    if (m_cancelled)
        return;
    m_cancelled = true;
    Q_EMIT cancelled();
}

QCoro::Task<bool> sleepFor(std::chrono::milliseconds duration, CancelToken *token)
{
    if (!token) {
        QTimer timer;
        timer.setSingleShot(true);
        timer.setTimerType(Qt::PreciseTimer);
        timer.start(duration);
        co_await timer;
        co_return true;
    }
    if (token->isCancelled())
        co_return false;
    // Waiting for the cancel signal with a timeout: no signal within the time means the
    // sleep ran its full length.
    const auto signalled = co_await qCoro(token, &CancelToken::cancelled, duration);
    co_return !signalled.has_value();
}
