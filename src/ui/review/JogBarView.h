#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QVariantAnimation>

/// @brief The spring-loaded shuttle bar: a knob pulled down runs the playhead forwards, pulled
/// up backwards, faster the further it goes; let go, it springs back to rest.
///
/// A jog starts with the first movement of a drag, not at the press, so a touch that doesn't
/// move changes nothing.
class JogBarView : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(double displacement READ displacement NOTIFY displacementChanged FINAL)
    Q_PROPERTY(bool dragging READ dragging NOTIFY draggingChanged FINAL)
    Q_PROPERTY(QString hint READ hint NOTIFY displacementChanged FINAL)
    Q_PROPERTY(QColor barColor MEMBER m_barColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor knobColor MEMBER m_knobColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor textColor MEMBER m_textColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor labelColor MEMBER m_labelColor NOTIFY styleChanged FINAL)
public:
    explicit JogBarView(QQuickItem *parent = nullptr);

    [[nodiscard]] double displacement() const { return m_displacement; }
    [[nodiscard]] bool dragging() const { return m_dragging; }
    [[nodiscard]] QString hint() const;

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void displacementChanged();
    void draggingChanged();
    void styleChanged();
    void jogBegan();
    void jogged(double displacement);
    void jogEnded();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void setDisplacement(double value);
    void setDragging(bool on);

    double m_displacement = 0;
    bool m_dragging = false;
    bool m_pressed = false;
    double m_pressY = 0;
    QVariantAnimation m_spring;
    QColor m_barColor{QStringLiteral("#1A2646")};
    QColor m_knobColor{QStringLiteral("#46B8FF")};
    QColor m_textColor{QStringLiteral("#E9EEF8")};
    QColor m_labelColor{QStringLiteral("#8E9BB8")};
};
