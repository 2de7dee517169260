#include "MpvGlNode.h"

#include "MpvRenderContext.h"

#include <mpv/render.h>
#include <mpv/render_gl.h>

#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QQuickOpenGLUtils>
#include <QQuickWindow>
#include <QSGTexture>
#include <QtQuick/qsgtexture_platform.h>

namespace {
void *procAddress(void *, const char *name)
{
    QOpenGLContext *gl = QOpenGLContext::currentContext();
    return gl ? reinterpret_cast<void *>(gl->getProcAddress(name)) : nullptr;
}
} // namespace

MpvGlNode *MpvGlNode::create(QQuickWindow *window, mpv_handle *client, std::shared_ptr<MpvFrameSignal> frames)
{
    if (!QOpenGLContext::currentContext()) {
        if (client)
            mpv_destroy(client);
        return nullptr;
    }
    mpv_opengl_init_params gl{procAddress, nullptr};
    mpv_render_param params[] = {{MPV_RENDER_PARAM_API_TYPE, const_cast<char *>(MPV_RENDER_API_TYPE_OPENGL)},
                                 {MPV_RENDER_PARAM_OPENGL_INIT_PARAMS, &gl},
                                 {MPV_RENDER_PARAM_INVALID, nullptr}};
    auto context = MpvRenderContext::create(client, params, std::move(frames));
    return context ? new MpvGlNode(window, std::move(context)) : nullptr;
}

MpvGlNode::MpvGlNode(QQuickWindow *window, std::unique_ptr<MpvRenderContext> context)
    : MpvVideoNode(window, std::move(context))
{
    // Drawn outside the window's render pass, on the render thread, before the frame that shows it.
    m_beforeRendering = QObject::connect(window, &QQuickWindow::beforeRendering, [this] { render(); });
}

MpvGlNode::~MpvGlNode()
{
    QObject::disconnect(m_beforeRendering);
}

void MpvGlNode::sync(QSize pixels)
{
    pixels = pixels.expandedTo(QSize(1, 1));
    if (!m_fbo || m_fbo->size() != pixels) {
        auto fbo = std::make_unique<QOpenGLFramebufferObject>(pixels);
        show(std::unique_ptr<QSGTexture>(QNativeInterface::QSGOpenGLTexture::fromNative(fbo->texture(), window(), pixels)));
        m_fbo = std::move(fbo);
        m_renderPending = true;
    }
    if (context().takeNewFrame())
        m_renderPending = true;
}

void MpvGlNode::render()
{
    if (!m_renderPending || !m_fbo)
        return;
    m_renderPending = false;
    window()->beginExternalCommands();
    QQuickOpenGLUtils::resetOpenGLState();
    mpv_opengl_fbo target{int(m_fbo->handle()), m_fbo->width(), m_fbo->height(), 0};
    int flipY = 0;
    mpv_render_param params[] = {{MPV_RENDER_PARAM_OPENGL_FBO, &target},
                                 {MPV_RENDER_PARAM_FLIP_Y, &flipY},
                                 {MPV_RENDER_PARAM_INVALID, nullptr}};
    mpv_render_context_render(context().get(), params);
    QOpenGLFramebufferObject::bindDefault();
    window()->endExternalCommands();
    markDirty(QSGNode::DirtyMaterial);
}
