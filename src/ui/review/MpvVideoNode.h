#pragma once

#include <QSGSimpleTextureNode>
#include <QSize>

#include <memory>

class MpvRenderContext;
class QQuickWindow;
class QSGTexture;

/// @brief A scene-graph node showing the video of one mpv render context as a texture. The
/// ways of drawing (OpenGL, software) derive from it; it lives on the render thread.
class MpvVideoNode : public QSGSimpleTextureNode
{
public:
    ~MpvVideoNode() override;

    /// During the scene graph's sync: the item's size in pixels; draws when needed.
    virtual void sync(QSize pixels) = 0;

protected:
    MpvVideoNode(QQuickWindow *window, std::unique_ptr<MpvRenderContext> context);

    [[nodiscard]] QQuickWindow *window() const { return m_window; }
    [[nodiscard]] MpvRenderContext &context() const { return *m_context; }
    /// Shows `texture` from now on, and keeps it as long as it is shown.
    void show(std::unique_ptr<QSGTexture> texture);
    [[nodiscard]] bool showsAnything() const { return m_texture != nullptr; }

private:
    QQuickWindow *m_window;
    std::unique_ptr<MpvRenderContext> m_context;
    std::unique_ptr<QSGTexture> m_texture;
};
