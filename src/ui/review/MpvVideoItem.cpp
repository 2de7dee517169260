#include "MpvVideoItem.h"

#include "MpvFrameSignal.h"
#include "MpvGlNode.h"
#include "MpvPlayer.h"
#include "MpvSoftwareNode.h"

#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QSGSimpleRectNode>

namespace {
/// Scene-graph frames in which a refused render context is asked for again: the item that
/// held the player before may free its context a frame or two later.
constexpr int renderAttempts = 30;

/// What stands where no video can be drawn: the letterbox colour of both palettes.
class PlainNode : public QSGSimpleRectNode
{
public:
    PlainNode() { setColor(QColor(11, 18, 36)); }
};
} // namespace

MpvVideoItem::MpvVideoItem(QQuickItem *parent)
    : QQuickItem(parent)
    , m_frames(std::make_shared<MpvFrameSignal>(this))
{
    setFlag(ItemHasContents, true);
}

MpvVideoItem::~MpvVideoItem()
{
    m_frames->detach();
    letGo();
}

void MpvVideoItem::letGo()
{
    if (MpvPlayer *mpv = m_drawing.data())
        mpv->detachRenderer();
    m_drawing = nullptr;
}

void MpvVideoItem::releaseResources()
{
    // The scene graph drops this item's node, and the render context with it.
    letGo();
    m_attemptsLeft = renderAttempts;
    QQuickItem::releaseResources();
}

void MpvVideoItem::setPlayer(VideoPlayer *player)
{
    if (player == m_player)
        return;
    letGo();
    disconnect(m_playerGone);
    m_player = player;
    // A player that goes first takes its picture along: the render context must not keep its
    // core alive for as long as the item stands.
    if (player)
        m_playerGone = connect(player, &QObject::destroyed, this, [this] {
            m_playerChanged = true;
            update();
            Q_EMIT playerChanged();
        });
    m_playerChanged = true;
    m_attemptsLeft = renderAttempts;
    update();
    Q_EMIT playerChanged();
}

void MpvVideoItem::geometryChange(const QRectF &now, const QRectF &before)
{
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size())
        update();
}

// Runs on the render thread while the GUI thread waits, so the item and its player may be read.
QSGNode *MpvVideoItem::updatePaintNode(QSGNode *old, UpdatePaintNodeData *)
{
    if (m_playerChanged) {
        delete old;
        old = nullptr;
        m_playerChanged = false;
    }
    if (dynamic_cast<PlainNode *>(old) && m_attemptsLeft > 0) {
        delete old;
        old = nullptr;
    }
    QSGNode *node = old ? old : makeNode();
    const QRectF area = boundingRect();
    const QSize pixels = (area.size() * window()->effectiveDevicePixelRatio()).toSize();
    if (auto *video = dynamic_cast<MpvVideoNode *>(node)) {
        video->setRect(area);
        video->sync(pixels);
    } else if (auto *plain = dynamic_cast<PlainNode *>(node)) {
        plain->setRect(area);
    }
    return node;
}

QSGNode *MpvVideoItem::makeNode()
{
    auto *mpv = qobject_cast<MpvPlayer *>(m_player.data());
    if (!mpv || mpv->output() != MpvPlayer::Output::Render) {
        m_attemptsLeft = 0;
        return new PlainNode;
    }
    QSGNode *node = nullptr;
    switch (window()->rendererInterface()->graphicsApi()) {
    case QSGRendererInterface::OpenGL:
        node = MpvGlNode::create(window(), mpv->createRenderClient(), m_frames);
        break;
    case QSGRendererInterface::Software:
        node = MpvSoftwareNode::create(window(), mpv->createRenderClient(), m_frames);
        break;
    default:
        m_attemptsLeft = 0;
        return new PlainNode;
    }
    if (!node) {
        --m_attemptsLeft;
        QMetaObject::invokeMethod(this, "update", Qt::QueuedConnection);
        return new PlainNode;
    }
    m_attemptsLeft = 0;
    m_drawing = mpv;
    QMetaObject::invokeMethod(mpv, [mpv] { mpv->attachRenderer(); }, Qt::QueuedConnection);
    return node;
}
