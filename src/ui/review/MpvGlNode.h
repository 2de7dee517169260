#pragma once

#include <QMetaObject>
#include <QSGSimpleTextureNode>
#include <QSize>

#include <memory>

class MpvFrameSignal;
class MpvRenderContext;
class QOpenGLFramebufferObject;
class QQuickWindow;
class QSGTexture;
struct mpv_handle;

/// @brief Draws an mpv core's video with OpenGL into a framebuffer of the item's size, just
/// before the window renders, and shows it as a texture. Lives on the render thread.
class MpvGlNode : public QSGSimpleTextureNode
{
public:
    /// Needs the window's OpenGL context current (as it is while the scene graph syncs).
    /// Null when mpv refuses a render context (for instance, another item draws this core).
    static MpvGlNode *create(QQuickWindow *window, mpv_handle *client, std::shared_ptr<MpvFrameSignal> frames);
    ~MpvGlNode() override;

    /// During the sync: the size in pixels, and whether mpv has something new to draw.
    void sync(QSize pixels);

private:
    MpvGlNode(QQuickWindow *window, std::unique_ptr<MpvRenderContext> context);
    void render();

    QQuickWindow *m_window;
    std::unique_ptr<MpvRenderContext> m_context;
    std::unique_ptr<QOpenGLFramebufferObject> m_fbo;
    std::unique_ptr<QSGTexture> m_texture;
    QMetaObject::Connection m_beforeRendering;
    bool m_renderPending = false;
};
