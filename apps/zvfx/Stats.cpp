#include "zvfx/Stats.h"

#include <nlohmann/json.hpp>

namespace zvfx {

std::vector<std::uint8_t> Stats::toJson() const {
    nlohmann::ordered_json json;
    json["frames"] = frames;
    json["width"] = width;
    json["height"] = height;
    json["seconds"] = seconds;
    json["stages"] = {
        {"decode", decode}, {"setup", setup}, {"render", render}, {"read", read}, {"encode", encode}};
    json["frames_per_second"] = loop > 0 ? static_cast<double>(frames) / loop : 0;
    if (callsPerFrame) {
        json["gl_calls_per_frame"] = *callsPerFrame;
    } else {
        json["gl_calls_per_frame"] = nullptr;
    }
    json["effects"] = nlohmann::ordered_json::array();
    for (const EffectCost& effect : effects) {
        json["effects"].push_back(
            {{"name", effect.name}, {"seconds_per_frame", effect.seconds}, {"gl_calls", effect.calls}});
    }
    json["renderer"] = renderer;
    json["gl_version"] = version;
    // A driver may put anything into its texts; what is no UTF-8 is replaced.
    const std::string text = json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    return {text.begin(), text.end()};
}

}  // namespace zvfx
