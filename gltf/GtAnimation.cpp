#include <algorithm>
#include <cmath>
#include <cstdint>

#include "gltf/GtModel.h"
#include "gltf/GtNumbers.h"

namespace zv::gltf {

namespace {

/// Null for a channel that has no sampler or no keys.
const GtAniSampler* samplerOf(const GtExtAnimation& animation, const GtChannel& channel) {
    if (channel.sampler < 0 || static_cast<std::uint64_t>(channel.sampler) >= animation.samplers.size())
        return nullptr;
    const GtAniSampler& sampler = animation.samplers[static_cast<std::size_t>(channel.sampler)];
    return sampler.times.size() != 0 ? &sampler : nullptr;
}

/// The moment within the animation's span.
double repeated(const GtExtAnimation& animation, float time) {
    if (!std::isfinite(time))
        return 0.0;
    double span = 0.0;
    for (std::size_t i = 0; i < animation.channels.size(); ++i) {
        const GtAniSampler* sampler = samplerOf(animation, animation.channels[i]);
        if (sampler == nullptr)
            continue;
        const double last =
            static_cast<double>(sampler->times[static_cast<std::size_t>(sampler->times.size() - 1)]);
        if (std::isfinite(last))
            span = std::max(span, last);
    }
    const double moment = static_cast<double>(time);
    return span > 0.0 && moment >= span ? std::fmod(moment, span) : moment;
}

/// The key in force. Written out, because the standard's searches may do anything with times that do not
/// rise.
std::size_t keyAt(const UniqueDataPtr<float>& times, double moment) {
    std::size_t first = 0;
    std::size_t end = static_cast<std::size_t>(times.size());
    while (end - first > 1) {
        const std::size_t middle = first + (end - first) / 2;
        if (static_cast<double>(times[middle]) <= moment)
            first = middle;
        else
            end = middle;
    }
    return first;
}

void apply(GtAniTargetPath path, double value, GtAniNode& node) {
    if (path == GT_PATH_BYTE_OFFSET)
        node.byteOffset = static_cast<std::int64_t>(value);
    else
        node.visible = value != 0.0 ? 1 : 0;
}

}  // namespace

bool GtModel::getExtAniChannal(float time, int animation, std::unordered_map<int, GtAniNode>& out) const {
    if (animation < 0 || static_cast<std::uint64_t>(animation) >= extAnimations.size())
        return false;
    const GtExtAnimation& played = extAnimations[static_cast<std::size_t>(animation)];
    const double moment = repeated(played, time);
    bool applied = false;
    for (std::size_t i = 0; i < played.channels.size(); ++i) {
        const GtChannel& channel = played.channels[i];
        const GtAniSampler* sampler = samplerOf(played, channel);
        if (sampler == nullptr || channel.node < 0 ||
            static_cast<std::uint64_t>(channel.node) >= nodes.size())
            continue;
        const GtNumbers values(*this, sampler->output);
        if (values.size() == 0)
            continue;
        const double value = values[std::min(keyAt(sampler->times, moment), values.size() - 1)];
        // In this form it leaves out what is no number as well.
        if (channel.path == GT_PATH_BYTE_OFFSET && !(value >= 0.0 && value <= 4294967295.0))
            continue;
        apply(channel.path, value, out[channel.node]);
        applied = true;
    }
    return applied;
}

}  // namespace zv::gltf
