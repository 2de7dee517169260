#pragma once

#include "MpvVideoNode.h"

#include <QMetaObject>

#include <memory>

class MpvFrameSignal;
class QOpenGLFramebufferObject;
struct mpv_handle;

/// @brief Draws an mpv core's video with OpenGL into a framebuffer of the item's size just
/// before the window renders, and shows that framebuffer.
class MpvGlNode : public MpvVideoNode
{
public:
    /// Needs the window's OpenGL context current (as it is while the scene graph syncs).
    /// Null when mpv refuses a render context (for instance, another item draws this core).
    static MpvGlNode *create(QQuickWindow *window, mpv_handle *client, std::shared_ptr<MpvFrameSignal> frames);
    ~MpvGlNode() override;

    void sync(QSize pixels) override;

private:
    MpvGlNode(QQuickWindow *window, std::unique_ptr<MpvRenderContext> context);
    void render();

    std::unique_ptr<QOpenGLFramebufferObject> m_fbo;
    QMetaObject::Connection m_beforeRendering;
    bool m_renderPending = false;
};
