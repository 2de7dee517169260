#pragma once

#include <QImage>
#include <QSGSimpleTextureNode>

#include <memory>

class MpvFrameSignal;
class MpvRenderContext;
class QQuickWindow;
class QSGTexture;
struct mpv_handle;

/// @brief Draws an mpv core's video on the CPU into an image, for windows without OpenGL
/// (the software scene graph of offscreen screenshots). Slow at large sizes, but real frames.
class MpvSoftwareNode : public QSGSimpleTextureNode
{
public:
    /// Null when mpv refuses a render context.
    static MpvSoftwareNode *create(QQuickWindow *window, mpv_handle *client, std::shared_ptr<MpvFrameSignal> frames);
    ~MpvSoftwareNode() override;

    /// During the sync: draws the current frame when it or the size changed.
    void sync(QSize pixels);

private:
    MpvSoftwareNode(QQuickWindow *window, std::unique_ptr<MpvRenderContext> context);

    QQuickWindow *m_window;
    std::unique_ptr<MpvRenderContext> m_context;
    std::unique_ptr<QSGTexture> m_texture;
    QImage m_image;
};
