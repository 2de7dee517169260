#include "Me.h"

#include "APIError.h"
#include "Wire.h"

Result<Me> Me::fromJson(const QByteArray &body)
{
    const auto j = Wire::parse(body);
    if (!j)
        return APIError::decoding();
    Me me;
    // `ai` is read so that a wrong type still fails the reply, and then dropped.
    std::optional<bool> ai;
    const bool ok = Wire::ObjectReader(*j)
                        .req("id", me.id)
                        .req("email", me.email)
                        .req("admin", me.admin)
                        .opt("plan", me.plan)
                        .opt("ai", ai)
                        .ok();
    if (!ok)
        return APIError::decoding();
    me.ai = ai;
    return me;
}
