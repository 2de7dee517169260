#include "Toast.h"

#include "Clock.h"

Toast::Toast(Clock *clock, QObject *parent) : QObject(parent), m_clock(clock) {}

void Toast::show(const QString &text)
{
    setText(text);
    Clock::orSystem(m_clock).after(standing, this, [this, text] {
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
