#include "Toast.h"

#include "Clock.h"

Toast::Toast(std::chrono::milliseconds stand, QObject *parent) : QObject(parent), m_stand(stand) {}

Toast::Toast(Clock *clock, QObject *parent) : QObject(parent), m_clock(clock) {}

void Toast::show(const QString &text)
{
    setText(text);
    // Each message has its own timer; only the one whose text still stands clears it.
    Clock::orSystem(m_clock).after(m_stand, this, [this, text] {
        if (m_text == text)
            setText(QString());
    });
}

void Toast::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    Q_EMIT textChanged();
}
