#include "bench/Groups.h"

#include <GL/glew.h>

#include <cstdio>

#include "bench/Race.h"
#include "bench/floor/Prices.h"
#include "host/HeadlessContext.h"

namespace zv::bench {

FloorRig::FloorRig() : mContext(host::HeadlessContext::create(host::HeadlessContext::Kind::Core)) {}

FloorRig::~FloorRig() = default;

void FloorRig::makeCurrent() {
    mContext->makeCurrent();
}

std::size_t addCopy(Race& race, FloorRig& rig, const Frame& frame) {
    rig.makeCurrent();
    const auto prices = floor::makePrices(frame);
    return race.add(
        prices[0].name, [&rig] { rig.makeCurrent(); }, [copy = prices[0]] { copy.frame(); });
}

std::size_t addRig(Race& race, const std::string& name, EngineRig& rig) {
    return race.add(
        name, [&rig] { rig.makeCurrent(); }, [&rig] { rig.frame(); }, [] { glFinish(); });
}

std::string rendererName() {
    const auto* name = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return name != nullptr ? name : "no GL";
}

bool isSoftware() {
    const std::string name = rendererName();
    return name.find("llvmpipe") != std::string::npos || name.find("softpipe") != std::string::npos ||
           name.find("SwiftShader") != std::string::npos;
}

std::string sizeName(const Frame& frame) {
    return std::to_string(frame.width) + "x" + std::to_string(frame.height);
}

bool complain(const std::string& what) {
    std::fprintf(stderr, "zv_bench: %s\n", what.c_str());
    return false;
}

}  // namespace zv::bench
