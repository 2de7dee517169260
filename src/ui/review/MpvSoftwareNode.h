#pragma once

#include "MpvVideoNode.h"

#include <QImage>

#include <memory>

class MpvFrameSignal;
struct mpv_handle;

/// @brief Draws an mpv core's video on the CPU into an image, for windows without OpenGL
/// (the software scene graph of offscreen screenshots). Slow at large sizes, but real frames.
class MpvSoftwareNode : public MpvVideoNode
{
public:
    /// Null when mpv refuses a render context.
    static MpvSoftwareNode *create(QQuickWindow *window, mpv_handle *client, std::shared_ptr<MpvFrameSignal> frames);

    void sync(QSize pixels) override;

private:
    using MpvVideoNode::MpvVideoNode;

    QImage m_image;
};
