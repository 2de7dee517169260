#include "JogBarView.h"

#include "JogBar.h"

#include <QMouseEvent>
#include <QPainter>

#include <cmath>

namespace {
// A damped spring (response 0.25 s, damping fraction 0.7) as an easing curve over its settling time.
constexpr double springResponse = 0.25;
constexpr double springDamping = 0.7;
constexpr int springMs = 450;

double springProgress(double progress)
{
    const double t = progress * springMs / 1000.0;
    const double omega = 2 * M_PI / springResponse;
    const double decay = springDamping * omega;
    const double damped = omega * std::sqrt(1 - springDamping * springDamping);
    return 1 - std::exp(-decay * t) * (std::cos(damped * t) + decay / damped * std::sin(damped * t));
}
} // namespace

JogBarView::JogBarView(QQuickItem *parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    setAcceptedMouseButtons(Qt::LeftButton);
    QEasingCurve spring;
    spring.setCustomType(springProgress);
    m_spring.setEasingCurve(spring);
    m_spring.setDuration(springMs);
    m_spring.setEndValue(0.0);
    connect(&m_spring, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &value) { setDisplacement(value.toDouble()); });
    connect(this, &JogBarView::styleChanged, this, [this] { update(); });
}

QString JogBarView::hint() const
{
    return JogBar::hint(m_dragging, m_displacement);
}

void JogBarView::setDisplacement(double value)
{
    if (value == m_displacement)
        return;
    m_displacement = value;
    Q_EMIT displacementChanged();
    update();
}

void JogBarView::setDragging(bool on)
{
    if (on == m_dragging)
        return;
    m_dragging = on;
    Q_EMIT draggingChanged();
    Q_EMIT displacementChanged();
    update();
}

void JogBarView::mousePressEvent(QMouseEvent *event)
{
    m_pressed = true;
    m_pressY = event->position().y();
    event->accept();
}

void JogBarView::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressed)
        return;
    const double translation = event->position().y() - m_pressY;
    if (!m_dragging) {
        if (translation == 0)
            return;
        m_spring.stop();
        setDragging(true);
        Q_EMIT jogBegan();
    }
    setDisplacement(JogBar::displacement(translation, height()));
    Q_EMIT jogged(m_displacement);
    event->accept();
}

void JogBarView::mouseReleaseEvent(QMouseEvent *event)
{
    m_pressed = false;
    event->accept();
    if (!m_dragging)
        return;
    setDragging(false);
    // The spring runs on its own; the jog ends now, not when the knob comes to rest.
    m_spring.stop();
    m_spring.setStartValue(m_displacement);
    m_spring.start();
    Q_EMIT jogEnded();
}

void JogBarView::paint(QPainter *painter)
{
    painter->setRenderHint(QPainter::Antialiasing, true);
    const double w = width();
    const double h = height();
    const QRectF bar(w / 2 - 13, 0, 26, h);
    painter->setPen(Qt::NoPen);
    painter->setBrush(m_barColor);
    painter->drawRoundedRect(bar, 13, 13);

    QFont font = painter->font();
    font.setPixelSize(9);
    font.setBold(true);
    painter->setFont(font);
    painter->setPen(m_labelColor);
    painter->drawText(QRectF(0, 3, w, 12), Qt::AlignCenter, QStringLiteral("▲"));
    painter->drawText(QRectF(0, 14, w, 12), Qt::AlignCenter, QStringLiteral("REW"));
    painter->drawText(QRectF(0, h - 26, w, 12), Qt::AlignCenter, QStringLiteral("FWD"));
    painter->drawText(QRectF(0, h - 15, w, 12), Qt::AlignCenter, QStringLiteral("▼"));

    const double centre = h / 2 + m_displacement * JogBar::travel(h);
    const double side = JogBar::knobSize;
    const QRectF knob(w / 2 - side / 2, centre - side / 2, side, side);
    QColor rim = m_textColor;
    rim.setAlphaF(0.85f);
    painter->setPen(QPen(rim, 2));
    painter->setBrush(m_knobColor);
    painter->drawEllipse(knob.adjusted(1, 1, -1, -1));
    const QString text = JogBar::knobText(m_dragging, m_displacement);
    painter->setPen(Qt::white);
    font.setPixelSize(text.size() > 2 ? 9 : 12);
    painter->setFont(font);
    painter->drawText(knob, Qt::AlignCenter, text.isEmpty() ? QStringLiteral("≡") : text);
}
