#include "scene/ZVEngine.h"

#include <chrono>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "core/PoolMgr.h"
#include "core/RefCreate.h"
#include "gl/Program.h"
#include "gl/ProgramCache.h"
#include "gl/RenderState.h"
#include "gl/TextureCache.h"
#include "host/HeadlessContext.h"
#include "scene/Scene.h"
#include "support/EngineTest.h"
#include "support/GLCallRecorder.h"

namespace zv::test {
namespace {

using ZVEngineTest = EngineTest;
using Seconds = std::chrono::duration<double>;

Seconds now() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

/// Shows what is protected, and keeps what update() was given.
class WatchedEngine : public ZVEngine {
public:
    WatchedEngine() = default;
    using ZVEngine::getDurationNow;
    using ZVEngine::getFramesCounted;
    using ZVEngine::setWinSize;
    void update(float dt) override {
        steps.push_back(dt);
        ZVEngine::update(dt);
    }
    std::vector<float> steps;
};

/// Does something when it goes.
class Farewell : public Ref {
public:
    explicit Farewell(std::function<void()> onGone) : mOnGone(std::move(onGone)) {}
    ~Farewell() override { mOnGone(); }

private:
    std::function<void()> mOnGone;
};

/// Tells when it is updated and drawn.
class Hook : public Node {
public:
    void onUpdateSelf(float dt) override {
        if (onUpdated) {
            onUpdated(dt);
        }
    }
    void onDrawSelf(const Mat4&) override {
        if (onDrawn) {
            onDrawn();
        }
    }
    std::function<void(float)> onUpdated;
    std::function<void()> onDrawn;
};

Hook* addHook(Node* parent) {
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
    EXPECT_EQ(ZVEngine::getCurrent(), engine.get());
    EXPECT_EQ(PoolMgr::getInstance(), engine->getPoolMgr());
    EXPECT_EQ(RenderState::getCurrent(), engine->getRenderState());
    EXPECT_EQ(engine->getThreadId(), std::this_thread::get_id());
    onOtherThread([&] {
        EXPECT_EQ(ZVEngine::getCurrent(), nullptr);
        ZVEngine other;
        EXPECT_EQ(ZVEngine::getCurrent(), &other);
        std::thread([&] { EXPECT_EQ(ZVEngine::getCurrent(), nullptr); }).join();
        ZVEngine::setCurrent(nullptr);
        EXPECT_EQ(ZVEngine::getCurrent(), nullptr);
        EXPECT_EQ(PoolMgr::getInstance(), nullptr);
        ZVEngine::setCurrent(&other);
        EXPECT_EQ(ZVEngine::getCurrent(), &other);
    });
    EXPECT_EQ(ZVEngine::getCurrent(), engine.get()) << "an engine that died elsewhere changes nothing here";
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

TEST_F(ZVEngineTest, AnotherEngineThatIsCurrentSurvivesADestruction) {
    ZVEngine second;
    EXPECT_EQ(ZVEngine::getCurrent(), &second);
    engine.reset();
    EXPECT_EQ(ZVEngine::getCurrent(), &second);
    onOtherThread([] { const ZVEngine passing; });
    EXPECT_EQ(ZVEngine::getCurrent(), &second) << "and for good";
}

TEST_F(ZVEngineTest, TheEngineIsStillAnsweredWhileItsPoolsDrain) {
    int seen = 0;
    ZVEngine* dying = engine.release();
    (new Farewell([&] {
        onOtherThread([] { const ZVEngine passing; });  // an engine that dies meanwhile does not disturb it
        EXPECT_EQ(ZVEngine::getCurrent(), dying);
        EXPECT_NE(RenderState::getCurrent(), nullptr);
        ++seen;
    }))->autorelease();
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
    engine.reset();
    {
        ZVEngine made(context);
        EXPECT_EQ(context->made, 1);
        EXPECT_EQ(made.getGLContent(), context.get());
        EXPECT_EQ(context.use_count(), 2);
        const auto next = std::make_shared<CountingContext>();
        made.setGLContent(next);
        ZVEngine::setCurrent(nullptr);
        EXPECT_EQ(next->made, 0);
        made.makeCurrent();
        EXPECT_EQ(next->made, 1);
        EXPECT_EQ(ZVEngine::getCurrent(), &made);
    }
    EXPECT_EQ(context.use_count(), 1);
}

TEST_F(ZVEngineTest, CachesAppearOnceAndTheDefaultProgramIsLoaded) {
    ProgramCache* programs = engine->getProgramCache();
    EXPECT_EQ(engine->getProgramCache(), programs);
    EXPECT_NE(programs->get(Program::PROGRAM_POSITION_TEXTURE_NO_MVP), nullptr);
    TextureCache* textures = engine->getTextureCache();
    ASSERT_NE(textures, nullptr);
    EXPECT_EQ(engine->getTextureCache(), textures);
}

TEST_F(ZVEngineTest, UpdateDrainsBeforeTheSceneIsUpdated) {
    std::string order;
    engine->setCurScene(Scene::create());
    Hook* hook = addHook(engine->getCurScene());
    hook->onUpdated = [&](float dt) { order += dt == 0.5F ? "update " : "wrong step "; };
    (new Farewell([&] { order += "drain "; }))->autorelease();
    engine->update(0.5F);
    EXPECT_EQ(order, "drain update ");
    engine->update(0.5F);
    EXPECT_EQ(order, "drain update update ");
    EXPECT_EQ(engine->getCurScene()->getRefCount() + hook->getRefCount(), 2U);
}

TEST_F(ZVEngineTest, RenderUpdatesByItselfUnlessTold) {
    engine.reset();
    WatchedEngine watched;
    watched.render();
    EXPECT_EQ(watched.steps, std::vector<float>{0.0F}) << "there is no time before the first frame";
    int draws = 0;
    watched.setCurScene(Scene::create());
    addHook(watched.getCurScene())->onDrawn = [&] { ++draws; };
    watched.render();
    ASSERT_EQ(watched.steps.size(), 2U);
    EXPECT_GT(watched.steps[1], 0.0F);
    watched.setAutoUpdate(false);
    watched.render();
    EXPECT_EQ(watched.steps.size(), 2U);
    EXPECT_EQ(draws, 2);
}

TEST_F(ZVEngineTest, WithoutACapTheStepIsTheFrame) {
    engine.reset();
    WatchedEngine watched;
    const Seconds before = now();
    watched.getDurationNow();
    const Seconds between = now();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const Seconds after = now();
    const double step = watched.getDurationNow();
    EXPECT_GE(step, (after - between).count() - 1e-6);
    EXPECT_LE(step, (now() - before).count() + 1e-6);
}

TEST_F(ZVEngineTest, WithACapTheStepIsThePacingDelayAlone) {
    engine.reset();
    WatchedEngine watched;
    watched.setMaxFps(20);  // a budget of 50 ms
    const Seconds before = now();
    EXPECT_EQ(watched.getDurationNow(), 0.0F);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const Seconds called = now();
    const double step = watched.getDurationNow();
    EXPECT_GE((now() - before).count(), 0.0499) << "the frame fills its budget";
    EXPECT_NEAR(step, (now() - called).count(), 0.010) << "20 ms of work are not part of the step";

    EXPECT_GT(watched.getDurationNow(), 0.040F) << "the next interval starts when the sleep ends";

    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    EXPECT_LT(watched.getDurationNow(), 0.030F) << "a frame over its budget is not delayed further";
}

TEST_F(ZVEngineTest, FramesAreCountedInWindowsOfASecond) {
    engine.reset();
    WatchedEngine watched;
    watched.render();
    watched.render();
    EXPECT_EQ(watched.getFramesCounted(), 0) << "counting is off at first";
    watched.setLogFps(true);
    watched.render();
    EXPECT_EQ(watched.getFramesCounted(), 0) << "this frame starts the window";
    watched.render();
    watched.render();
    EXPECT_EQ(watched.getFramesCounted(), 2);
    std::this_thread::sleep_for(std::chrono::milliseconds(1010));
    watched.render();
    EXPECT_EQ(watched.getFramesCounted(), 0);
    watched.render();
    EXPECT_EQ(watched.getFramesCounted(), 1);
}

TEST_F(ZVEngineTest, ASceneIsHeldAndAnUnsetViewPortBecomesTheWindow) {
    engine.reset();
    WatchedEngine watched;
    watched.setWinSize({320, 240});
    Scene* whole = Scene::create();
    Scene* part = Scene::create();
    part->setViewPort({0, 0, 100, 50});
    watched.setCurScene(whole);
    watched.setCurScene(whole);
    EXPECT_EQ(whole->getRefCount(), 2U);
    EXPECT_EQ(whole->getViewPort(), (ViewPort{0, 0, 320, 240}));
    watched.setCurScene(part);
    EXPECT_EQ(whole->getRefCount(), 1U);
    EXPECT_EQ(part->getViewPort(), (ViewPort{0, 0, 100, 50}));
    watched.setCurScene(nullptr);
    EXPECT_EQ(part->getRefCount(), 1U);
    EXPECT_EQ(watched.getCurScene(), nullptr);
}

TEST_F(ZVEngineTest, ANestedSceneRestoresTheOuterViewPortOnlyWhenItDiffers) {
    ZV_NEEDS_RECORDER();
    Scene* outer = Scene::create();
    Scene* inner = Scene::create();
    outer->setViewPort({1, 2, 30, 40});
    addHook(outer)->onDrawn = [&] { inner->render(); };
    inner->setViewPort({1, 2, 30, 40});
    {
        GLCallRecorder recorder;
        outer->render();
        EXPECT_EQ(recorder.count("glViewport"), 1U) << recorder.summary();
    }
    inner->setViewPort({0, 0, 5, 6});
    GLCallRecorder recorder;
    outer->render();
    const auto calls = recorder.callsOf("glViewport");
    ASSERT_EQ(calls.size(), 3U);
    EXPECT_EQ(calls[1].integer(2), 5);
    EXPECT_EQ(calls[2].args, calls[0].args);
}

}  // namespace
}  // namespace zv::test
