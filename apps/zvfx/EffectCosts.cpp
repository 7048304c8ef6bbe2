#include "zvfx/EffectCosts.h"

#include <algorithm>
#include <array>

#include "host/GLCallLog.h"
#include "scene/RenderTextureChain.h"
#include "zvfx/Stats.h"

namespace zvfx {

namespace {

constexpr std::array kNames = {"smooth", "hsv", "whiten", "lut", "face-smooth", "shape", "effect"};
constexpr int kRounds = 5;

/// Counts the calls of one frame, then times the next one.
struct Frame {
    explicit Frame(const std::function<void()>& draw) {
        // The first frame of another wiring still sets things up.
        draw();
        {
            zv::host::GLCallLog log;
            draw();
            calls = static_cast<long long>(log.total());
        }
        StopWatch watch;
        draw();
        seconds = watch.lap();
    }
    long long calls;
    double seconds;
};

double median(std::array<double, kRounds> values) {
    std::nth_element(values.begin(), values.begin() + kRounds / 2, values.end());
    return values[kRounds / 2];
}

}  // namespace

std::vector<EffectCost> measureEffects(zv::RenderTextureChain* chain, const std::function<void()>& frame) {
    std::vector<EffectCost> costs;
    for (const char* name : kNames) {
        if (chain == nullptr || !chain->isRenderTextureEnable(name)) {
            continue;
        }
        EffectCost cost{name};
        // By turns, so that what else the machine does falls on both.
        std::array<double, kRounds> seconds{};
        for (double& difference : seconds) {
            const Frame with(frame);
            chain->setRenderTextureEnable(name, false, false);
            chain->relinkAll();
            const Frame without(frame);
            chain->setRenderTextureEnable(name, true, false);
            chain->relinkAll();
            difference = with.seconds - without.seconds;
            cost.calls = with.calls - without.calls;
        }
        cost.seconds = median(seconds);
        costs.push_back(cost);
    }
    return costs;
}

}  // namespace zvfx
