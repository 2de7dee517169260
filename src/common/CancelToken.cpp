#include "CancelToken.h"

#include "Notifier.h"

void CancelToken::cancel()
{
    if (m_cancelled)
        return;
    m_cancelled = true;
    Q_EMIT cancelled();
}

namespace {

struct SleepAwaiter {
    std::chrono::milliseconds duration;
    CancelToken *token;
    std::shared_ptr<detail::Resumer> state = std::make_shared<detail::Resumer>();

    bool await_ready() const noexcept { return token && token->isCancelled(); }
    void await_suspend(std::coroutine_handle<> handle)
    {
        state->handle = handle;
        if (token) {
            // The timer is the connection's context: the link dies with this sleep.
            QObject::connect(token, &CancelToken::cancelled, &state->timer,
                             [resumer = state.get()] { resumer->fire(false); });
        }
        state->startTimer(duration);
    }
    /// True when the whole time passed.
    bool await_resume() const noexcept { return state->fired ? state->byTimer : false; }
};

} // namespace

QCoro::Task<bool> sleepFor(std::chrono::milliseconds duration, CancelToken *token)
{
    // Named, not a temporary: GCC 12 destroys temporaries of a co_await operand twice.
    SleepAwaiter sleep{duration, token};
    const bool full = co_await sleep;
    co_return full;
}
