#include "MpvSoftwareNode.h"

#include "MpvRenderContext.h"

#include <mpv/render.h>

#include <QQuickWindow>
#include <QSGTexture>

MpvSoftwareNode *MpvSoftwareNode::create(QQuickWindow *window, mpv_handle *client, std::shared_ptr<MpvFrameSignal> frames)
{
    mpv_render_param params[] = {{MPV_RENDER_PARAM_API_TYPE, const_cast<char *>(MPV_RENDER_API_TYPE_SW)},
                                 {MPV_RENDER_PARAM_INVALID, nullptr}};
    auto context = MpvRenderContext::create(client, params, std::move(frames));
    return context ? new MpvSoftwareNode(window, std::move(context)) : nullptr;
}

void MpvSoftwareNode::sync(QSize pixels)
{
    pixels = pixels.expandedTo(QSize(1, 1));
    const bool resized = m_image.size() != pixels;
    if (!context().takeNewFrame() && !resized && showsAnything())
        return;
    if (resized)
        m_image = QImage(pixels, QImage::Format_RGBX8888);
    int size[2] = {pixels.width(), pixels.height()};
    std::size_t stride = std::size_t(m_image.bytesPerLine());
    char format[] = "rgb0";
    mpv_render_param params[] = {{MPV_RENDER_PARAM_SW_SIZE, size},
                                 {MPV_RENDER_PARAM_SW_FORMAT, format},
                                 {MPV_RENDER_PARAM_SW_STRIDE, &stride},
                                 {MPV_RENDER_PARAM_SW_POINTER, m_image.bits()},
                                 {MPV_RENDER_PARAM_INVALID, nullptr}};
    if (mpv_render_context_render(context().get(), params) < 0)
        m_image.fill(Qt::black);
    show(std::unique_ptr<QSGTexture>(window()->createTextureFromImage(m_image)));
}
