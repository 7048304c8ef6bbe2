#include "scene/ZVEngine.h"

#include <chrono>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "core/PoolMgr.h"
#include "core/RefCreate.h"
#include "gl/RenderState.h"
#include "host/HeadlessContext.h"
#include "scene/Scene.h"
#include "support/EngineTest.h"

namespace zv::test {
namespace {

using std::chrono::milliseconds;
using std::this_thread::sleep_for;

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Shows what is protected, and keeps what update() was given.
class WatchedEngine : public ZVEngine {
public:
    WatchedEngine() = default;
    using ZVEngine::getDurationNow;
    using ZVEngine::setWinSize;
    void update(float dt) override {
        steps.push_back(dt);
        ZVEngine::update(dt);
    }
    std::vector<float> steps;
};

class ZVEngineTest : public EngineTest {
protected:
    /// In the place of the plain engine.
    WatchedEngine& watch() {
        engine.reset();
        auto* watched = new WatchedEngine;
        engine.reset(watched);
        return *watched;
    }
};

/// Tells when it is updated and drawn and when it goes.
class Hook : public Node {
public:
    ~Hook() override { onGone(); }
    void onUpdateSelf(float dt) override { onUpdated(dt); }
    void onDrawSelf(const Mat4&) override { onDrawn(); }
    std::function<void(float)> onUpdated = [](float) {};
    std::function<void()> onDrawn = [] {};
    std::function<void()> onGone = [] {};
};

Hook* hookIn(Node* parent) {
    Hook* hook = createRef<Hook>([](Hook&) { return true; });
    parent->addChild(hook);
    return hook;
}

/// Runs on a thread of its own, with a GL context of its own.
void onOtherThread(const std::function<void()>& work) {
    std::thread([&work] {
        std::string error;
        const auto context = host::HeadlessContext::create(GLTest::kind(), &error);
        ASSERT_TRUE(context) << error;
        work();
        context->doneCurrent();
    }).join();
}

TEST_F(ZVEngineTest, EachThreadIsAnsweredItsOwnEngine) {
    EXPECT_EQ(PoolMgr::getInstance(), engine->getPoolMgr());
    EXPECT_EQ(RenderState::getCurrent(), engine->getRenderState());
    onOtherThread([] {
        EXPECT_EQ(ZVEngine::getCurrent(), nullptr);
        ZVEngine other;
        EXPECT_EQ(ZVEngine::getCurrent(), &other);
        ZVEngine::setCurrent(nullptr);
        EXPECT_EQ(ZVEngine::getCurrent(), nullptr);
        EXPECT_EQ(PoolMgr::getInstance(), nullptr);
        ZVEngine::setCurrent(&other);
        EXPECT_EQ(ZVEngine::getCurrent(), &other);
    });
    EXPECT_EQ(ZVEngine::getCurrent(), engine.get()) << "an engine that died elsewhere changes nothing here";
    const ZVEngine second;
    engine.reset();
    EXPECT_EQ(ZVEngine::getCurrent(), &second) << "nor does one that is not current";
}

TEST_F(ZVEngineTest, ADestroyedEngineIsAnsweredToNoThread) {
    // A guest thread has the engine current too, beside the thread that made it.
    std::promise<void> isCurrent, isGone;
    std::thread guest([&] {
        ZVEngine::setCurrent(engine.get());
        EXPECT_EQ(ZVEngine::getCurrent(), engine.get());
        isCurrent.set_value();
        isGone.get_future().wait();
        EXPECT_EQ(ZVEngine::getCurrent(), nullptr);
    });
    isCurrent.get_future().wait();
    engine.reset();
    isGone.set_value();
    guest.join();
    EXPECT_EQ(ZVEngine::getCurrent(), nullptr);

    // An engine that outlives its thread, and new threads that likely get that thread's id again.
    for (int i = 0; i < 4; ++i) {
        ZVEngine* orphan = nullptr;
        onOtherThread([&] { orphan = new ZVEngine; });
        delete orphan;
        std::thread([] { EXPECT_EQ(ZVEngine::getCurrent(), nullptr); }).join();
    }
}

TEST_F(ZVEngineTest, TheEngineIsStillAnsweredWhileItsPoolsDrain) {
    int seen = 0;
    ZVEngine* dying = engine.release();
    hookIn(Node::create())->onGone = [&] {
        onOtherThread([] { const ZVEngine passing; });  // an engine that dies meanwhile does not disturb it
        EXPECT_EQ(ZVEngine::getCurrent(), dying);
        EXPECT_NE(RenderState::getCurrent(), nullptr);
        ++seen;
    };
    delete dying;
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(ZVEngine::getCurrent(), nullptr);
}

TEST_F(ZVEngineTest, OnlyMakeCurrentTouchesTheContext) {
    struct CountingContext : GLContext {
        void makeCurrent() override { ++made; }
        int made = 0;
    };
    const auto context = std::make_shared<CountingContext>();
    engine = std::make_unique<ZVEngine>(context);
    EXPECT_EQ(context->made, 1);
    engine->setGLContent(context);
    ZVEngine::setCurrent(nullptr);
    EXPECT_EQ(context->made, 1);
    engine->makeCurrent();
    EXPECT_EQ(context->made, 2);
    EXPECT_EQ(ZVEngine::getCurrent(), engine.get());
    engine.reset();
    EXPECT_EQ(context.use_count(), 1);
}

TEST_F(ZVEngineTest, RenderUpdatesByItselfUnlessToldAndDrainsFirst) {
    WatchedEngine& watched = watch();
    watched.render();
    EXPECT_EQ(watched.steps, std::vector<float>{0.0F}) << "there is no time before the first frame";
    std::string order;
    watched.setCurScene(Scene::create());
    Hook* hook = hookIn(watched.getCurScene());
    hook->onUpdated = [&](float dt) { order += dt > 0 && dt == watched.steps.back() ? "update " : "wrong "; };
    hook->onDrawn = [&] { order += "draw "; };
    hookIn(Node::create())->onGone = [&] { order += "drain "; };
    watched.render();
    EXPECT_EQ(order, "drain update draw ");
    watched.setAutoUpdate(false);
    watched.render();
    EXPECT_EQ(order, "drain update draw draw ");
}

TEST_F(ZVEngineTest, TheStepIsTheFrameOrWithACapThePacingDelayAlone) {
    WatchedEngine& uncapped = watch();
    uncapped.getDurationNow();
    sleep_for(milliseconds(20));
    double called = now();
    EXPECT_GE(uncapped.getDurationNow(), 0.0199F);
    EXPECT_LE(uncapped.getDurationNow(), now() - called + 1e-6) << "since the call before, not the first";

    WatchedEngine& watched = watch();
    watched.setMaxFps(20);  // a budget of 50 ms
    const double before = now();
    EXPECT_EQ(watched.getDurationNow(), 0.0F);
    sleep_for(milliseconds(20));
    called = now();
    const double step = watched.getDurationNow();
    EXPECT_GE(now() - before, 0.049) << "the frame fills its budget";
    EXPECT_NEAR(step, now() - called, 0.010) << "20 ms of work are not part of the step";
    EXPECT_GT(watched.getDurationNow(), 0.040F) << "the next interval starts when the sleep ends";
    sleep_for(milliseconds(60));
    EXPECT_LT(watched.getDurationNow(), 0.030F) << "a frame over its budget is not delayed further";
}

TEST_F(ZVEngineTest, ASceneIsHeldAndAnUnsetViewPortBecomesTheWindow) {
    WatchedEngine& watched = watch();
    watched.setWinSize({320, 240});
    Scene* whole = Scene::create();
    Scene* part = Scene::create();
    part->setViewPort({0, 0, 100, 50});
    for (Scene* scene : {whole, whole, part}) {
        watched.setCurScene(scene);
        EXPECT_EQ(scene->getRefCount(), 2U);
    }
    EXPECT_EQ(whole->getRefCount(), 1U);
    EXPECT_EQ(whole->getViewPort(), (ViewPort{0, 0, 320, 240}));
    EXPECT_EQ(part->getViewPort(), (ViewPort{0, 0, 100, 50}));
    watched.setCurScene(nullptr);
    EXPECT_EQ(part->getRefCount(), 1U);
}

}  // namespace
}  // namespace zv::test
