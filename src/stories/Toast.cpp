#include "Toast.h"

#include <QTimer>

Toast::Toast(QObject *parent) : QObject(parent) {}

void Toast::show(const QString &text)
{
    setText(text);
    // The timer's context is this object, so a toast that is gone is never touched.
    QTimer::singleShot(m_duration, Qt::PreciseTimer, this, [this, text] {
        if (m_text == text)
            setText(QString());
    });
}

void Toast::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    Q_EMIT textChanged();
}
