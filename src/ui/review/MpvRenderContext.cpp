#include "MpvRenderContext.h"

#include "MpvFrameSignal.h"

#include <mpv/client.h>
#include <mpv/render.h>

std::unique_ptr<MpvRenderContext> MpvRenderContext::create(mpv_handle *client, mpv_render_param *params,
                                                           std::shared_ptr<MpvFrameSignal> frames)
{
    if (!client)
        return nullptr;
    // Its events are nobody's business: the player's own handle reads the core's.
    for (int id = MPV_EVENT_NONE + 1; id <= MPV_EVENT_HOOK; ++id)
        mpv_request_event(client, mpv_event_id(id), 0);
    mpv_render_context *context = nullptr;
    if (mpv_render_context_create(&context, client, params) < 0) {
        mpv_destroy(client);
        return nullptr;
    }
    return std::unique_ptr<MpvRenderContext>(new MpvRenderContext(client, context, std::move(frames)));
}

MpvRenderContext::MpvRenderContext(mpv_handle *client, mpv_render_context *context, std::shared_ptr<MpvFrameSignal> frames)
    : m_client(client)
    , m_context(context)
    , m_frames(std::move(frames))
{
    mpv_render_context_set_update_callback(
        m_context, [](void *signal) { static_cast<MpvFrameSignal *>(signal)->notify(); }, m_frames.get());
}

MpvRenderContext::~MpvRenderContext()
{
    // No update callback runs once this returns; the last handle then takes the core down.
    mpv_render_context_free(m_context);
    mpv_destroy(m_client);
}

bool MpvRenderContext::takeNewFrame()
{
    return (mpv_render_context_update(m_context) & MPV_RENDER_UPDATE_FRAME) != 0;
}
