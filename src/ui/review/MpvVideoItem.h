#pragma once

#include "VideoPlayer.h"

#include <QPointer>
#include <QQuickItem>

#include <memory>

class MpvFrameSignal;
class MpvPlayer;

/// @brief Shows the video of an `MpvPlayer` (made with `Output::Render`), scaled to fit with
/// black bars, through mpv's render API: OpenGL where the window draws with OpenGL, mpv's
/// software renderer under the software scene graph (offscreen screenshots show real frames),
/// and a plain letterbox-coloured area elsewhere or when given any other `VideoPlayer`.
///
///   import Aeroloom.Review
///   MpvVideoItem { anchors.fill: parent; player: model.player }
///
/// One item draws a given player at a time (mpv allows one render context per player); a
/// second item shows the plain area until the first lets go. Holds no logic: playing,
/// seeking and time all stay with the player.
class MpvVideoItem : public QQuickItem
{
    Q_OBJECT
    Q_PROPERTY(VideoPlayer *player READ player WRITE setPlayer NOTIFY playerChanged FINAL)
public:
    explicit MpvVideoItem(QQuickItem *parent = nullptr);
    ~MpvVideoItem() override;

    [[nodiscard]] VideoPlayer *player() const { return m_player; }
    void setPlayer(VideoPlayer *player);

Q_SIGNALS:
    void playerChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *old, UpdatePaintNodeData *data) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void releaseResources() override;

private:
    QSGNode *makeNode();
    /// Tells the player this item no longer draws it.
    void letGo();

    QPointer<VideoPlayer> m_player;
    QMetaObject::Connection m_playerGone;
    QPointer<MpvPlayer> m_drawing;  ///< the player whose render context this item made
    bool m_playerChanged = false;
    int m_attemptsLeft = 0;
    std::shared_ptr<MpvFrameSignal> m_frames;
};
