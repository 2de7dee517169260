#include "MpvVideoNode.h"

#include "MpvRenderContext.h"

#include <QSGTexture>

MpvVideoNode::MpvVideoNode(QQuickWindow *window, std::unique_ptr<MpvRenderContext> context)
    : m_window(window)
    , m_context(std::move(context))
{
    setFiltering(QSGTexture::Linear);
}

MpvVideoNode::~MpvVideoNode()
{
    // mpv's own objects go before the texture that showed their picture.
    m_context.reset();
    m_texture.reset();
}

void MpvVideoNode::show(std::unique_ptr<QSGTexture> texture)
{
    setTexture(texture.get());
    m_texture = std::move(texture);
}
