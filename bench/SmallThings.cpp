// zv_bench_small: the small things that a frame does often, by Google Benchmark.
// Takes its options, for example --benchmark_format=csv. Finds zv_res in the folder ZV_BENCH_RES, or else in
// res.
#include <GL/glew.h>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>

#include "core/FileUtil.h"
#include "core/HashString.h"
#include "core/Mat4.h"
#include "gl/Program.h"
#include "gltf/GtModel.h"
#include "host/HeadlessContext.h"
#include "scene/Node.h"
#include "scene/Scene.h"
#include "scene/ZVEngine.h"

namespace {

std::shared_ptr<zv::host::HeadlessContext> gContext;

void matrixProduct(benchmark::State& state) {
    zv::Mat4 a;
    zv::Mat4 b;
    b.m[1] = 0.1F;
    for ([[maybe_unused]] auto step : state) {
        a.multiply(b);
        benchmark::DoNotOptimize(a);
    }
}
BENCHMARK(matrixProduct);

void hashOfName(benchmark::State& state) {
    const std::string name(static_cast<std::size_t>(state.range(0)), 'n');
    for ([[maybe_unused]] auto step : state) {
        zv::HashString hash(name);
        benchmark::DoNotOptimize(hash);
    }
}
BENCHMARK(hashOfName)->Arg(8)->Arg(64);

void hashComparison(benchmark::State& state) {
    const zv::HashString a("u_hsv_adjust");
    const zv::HashString b("u_hsv_adjust");
    for ([[maybe_unused]] auto step : state) {
        benchmark::DoNotOptimize(a == b);
    }
}
BENCHMARK(hashComparison);

/// Update and draw of so many plain nodes, ten to a parent.
void nodePass(benchmark::State& state) {
    zv::ZVEngine engine(gContext);
    auto* scene = new zv::Scene;
    scene->init();
    zv::Node* parent = scene;
    for (int i = 0; i < state.range(0); ++i) {
        auto* node = new zv::Node;
        node->init();
        (i % 10 == 0 ? scene : parent)->addChild(node);
        parent = i % 10 == 0 ? node : parent;
        node->release();
    }
    engine.setCurScene(scene);
    scene->release();
    engine.setAutoUpdate(false);
    for ([[maybe_unused]] auto step : state) {
        engine.update(0.04F);
        engine.render();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(nodePass)->Arg(100)->Arg(10000)->Unit(benchmark::kMicrosecond);

/// Setting a uniform to the value that it has: nothing goes to GL.
void uniformCacheHit(benchmark::State& state) {
    zv::ZVEngine engine(gContext);
    zv::Program* program = zv::Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderHSV.frag");
    const float values[3] = {1, 1, 1};
    program->use();
    for ([[maybe_unused]] auto step : state) {
        program->setUniform3fv("u_hsv_adjust", values, 1);
    }
}
BENCHMARK(uniformCacheHit);

/// Keys of a thousandth of a second each that show and hide a node.
zv::gltf::GtModel makeAnimation(int keys) {
    zv::gltf::GtModel model;
    const auto count = static_cast<std::size_t>(keys);
    model.nodes = zv::UniqueDataPtr<zv::gltf::GtNode>(1);
    model.buffers = zv::UniqueDataPtr<zv::UniqueDataPtr<unsigned char>>(1);
    model.buffers[0] = zv::UniqueDataPtr<unsigned char>(count);
    model.bufferViews = zv::UniqueDataPtr<zv::gltf::GtBufferView>(1);
    model.bufferViews[0].byteLength = static_cast<unsigned>(keys);
    model.accessors = zv::UniqueDataPtr<zv::gltf::GtAccessor>(1);
    model.accessors[0].componentType = GL_UNSIGNED_BYTE;
    model.accessors[0].count = keys;
    model.accessors[0].type = zv::gltf::GtAccessor::SCALAR;
    model.extAnimations = zv::UniqueDataPtr<zv::gltf::GtExtAnimation>(1);
    zv::gltf::GtExtAnimation& animation = model.extAnimations[0];
    animation.channels = zv::UniqueDataPtr<zv::gltf::GtChannel>(1);
    animation.channels[0].path = zv::gltf::GT_PATH_VISIBILITY;
    animation.samplers = zv::UniqueDataPtr<zv::gltf::GtAniSampler>(1);
    animation.samplers[0].times = zv::UniqueDataPtr<float>(count);
    for (std::size_t i = 0; i < count; ++i) {
        model.buffers[0][i] = i % 2;
        animation.samplers[0].times[i] = 0.001F * static_cast<float>(i);
    }
    return model;
}

/// What an animation says at a moment that jumps about.
void keyFrameSearch(benchmark::State& state) {
    const auto keys = static_cast<int>(state.range(0));
    const zv::gltf::GtModel model = makeAnimation(keys);
    std::unordered_map<int, zv::gltf::GtAniNode> nodes;
    int at = 0;
    bool applied = true;
    for ([[maybe_unused]] auto step : state) {
        at = (at + 7919) % keys;
        applied = model.getExtAniChannal(0.001F * static_cast<float>(at), 0, nodes) && applied;
    }
    if (!applied) {
        state.SkipWithError("the animation does not apply");
    }
}
BENCHMARK(keyFrameSearch)->Arg(16)->Arg(1024)->Arg(65536);

}  // namespace

int main(int argc, char** argv) {
    const char* resources = std::getenv("ZV_BENCH_RES");
    zv::FileUtil::getInstance()->setZvRoot(
        std::filesystem::absolute(resources != nullptr ? resources : "res").string());
    gContext = zv::host::HeadlessContext::create(zv::host::HeadlessContext::Kind::Core);
    if (gContext == nullptr) {
        std::fprintf(stderr, "zv_bench_small: no GL context\n");
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    gContext.reset();
    return 0;
}
