#pragma once

#include <memory>

struct mpv_handle;
struct mpv_render_context;
struct mpv_render_param;
class MpvFrameSignal;

/// @brief One mpv render context and the client handle that keeps its core alive, made and
/// freed on the render thread. mpv allows one per core: `create` fails while another exists.
class MpvRenderContext
{
public:
    /// Takes `client` (from `MpvPlayer::createRenderClient`) in every case; null on failure.
    static std::unique_ptr<MpvRenderContext> create(mpv_handle *client, mpv_render_param *params,
                                                    std::shared_ptr<MpvFrameSignal> frames);
    ~MpvRenderContext();
    MpvRenderContext(const MpvRenderContext &) = delete;
    MpvRenderContext &operator=(const MpvRenderContext &) = delete;

    [[nodiscard]] mpv_render_context *get() const { return m_context; }
    /// Whether mpv has a frame not drawn yet; asks mpv, so call once per scene-graph sync.
    [[nodiscard]] bool takeNewFrame();

private:
    MpvRenderContext(mpv_handle *client, mpv_render_context *context, std::shared_ptr<MpvFrameSignal> frames);

    mpv_handle *m_client;
    mpv_render_context *m_context;
    std::shared_ptr<MpvFrameSignal> m_frames;
};
