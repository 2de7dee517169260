#include "Toast.h"

#include <QTimer>

Toast::Toast(std::chrono::milliseconds stand, QObject *parent) : QObject(parent), m_stand(stand) {}

void Toast::show(const QString &text)
{
    setText(text);
    // Each message has its own timer; only the one whose text still stands clears it.
    QTimer::singleShot(m_stand, Qt::PreciseTimer, this, [this, text] {
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
