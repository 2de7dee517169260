#include "ReelsToast.h"

#include <QTimer>

ReelsToast::ReelsToast(QObject *parent) : QObject(parent) {}

void ReelsToast::show(const QString &text)
{
    setText(text);
    // The timer's context is this object, so a toast that is gone is never touched.
    QTimer::singleShot(m_duration, Qt::PreciseTimer, this, [this, text] {
        if (m_text == text)
            setText(QString());
    });
}

void ReelsToast::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    Q_EMIT textChanged();
}
