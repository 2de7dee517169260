#include "RenderOrder.h"

using nlohmann::ordered_json;

std::optional<RenderOrder> RenderOrder::parse(const ordered_json &body, std::string &why)
{
    RenderOrder order;
    if (!body.contains("track") || !body["track"].is_string() || body["track"].get<std::string>().empty()) {
        why = "\"track\" must name a music track, \"random\" or \"none\"";
        return std::nullopt;
    }
    order.track = body["track"];

    const ordered_json sync = body.value("beatSync", ordered_json());
    if (!sync.is_null() && !sync.is_string()) {
        why = "\"beatSync\" must be \"bar\" or \"beat\"";
        return std::nullopt;
    }
    const std::string syncText = sync.is_string() ? sync.get<std::string>() : std::string();
    if (syncText == "bar")
        order.sync = Sync::Bar;
    else if (syncText == "beat")
        order.sync = Sync::Beat;
    else if (!syncText.empty()) {
        why = "\"beatSync\" must be \"bar\" or \"beat\"";
        return std::nullopt;
    }

    const ordered_json hud = body.value("hud", ordered_json(false));
    if (!hud.is_boolean()) {
        why = "\"hud\" must be true or false";
        return std::nullopt;
    }
    order.hud = hud.get<bool>();

    const ordered_json xfade = body.value("xfade", ordered_json(0.2));
    if (!xfade.is_number() || xfade.get<double>() < 0 || xfade.get<double>() > longestXfade) {
        why = "\"xfade\" must be a number of seconds from 0 to 2";
        return std::nullopt;
    }
    order.xfade = xfade.get<double>();

    const ordered_json aspect = body.value("aspect", ordered_json("landscape"));
    const std::string aspectText = aspect.is_string() ? aspect.get<std::string>() : std::string();
    if (aspectText == "landscape")
        order.aspect = Aspect::Landscape;
    else if (aspectText == "vertical")
        order.aspect = Aspect::Vertical;
    else if (aspectText == "both")
        order.aspect = Aspect::Both;
    else {
        why = "\"aspect\" must be \"landscape\", \"vertical\" or \"both\"";
        return std::nullopt;
    }
    return order;
}

std::string RenderOrder::syncName() const
{
    switch (sync) {
    case Sync::Bar: return "bar";
    case Sync::Beat: return "beat";
    case Sync::Off: break;
    }
    return {};
}
