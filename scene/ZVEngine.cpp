#include "scene/ZVEngine.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <unordered_map>

#include "core/PoolMgr.h"
#include "core/RefPool.h"
#include "gl/ProgramCache.h"
#include "gl/RenderState.h"
#include "gl/TextureCache.h"
#include "scene/Scene.h"

namespace zv {

namespace {

/// Moves on whenever an engine dies. What a thread remembered under an older number is looked up anew, so a
/// dead engine is never touched to find out that it is dead.
std::atomic<std::uint64_t> sGeneration{1};

struct Remembered {
    ZVEngine* engine = nullptr;
    std::uint64_t generation = 0;
};

thread_local Remembered tRemembered;

/// Which engine is current on which thread. Reached only when a thread's remembered answer is out of date.
class Registry {
public:
    static Registry& instance() {
        static Registry registry;
        return registry;
    }

    ZVEngine* find() {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mEngines.find(std::this_thread::get_id());
        return remember(found == mEngines.end() ? nullptr : found->second);
    }

    void set(ZVEngine* engine) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mEngines[std::this_thread::get_id()] = remember(engine);
    }

    /// Takes out the entry of the engine's thread and every other one that answers the engine. Only an engine
    /// that is current on the very thread that destroys this one stays.
    void forget(const ZVEngine* engine, std::thread::id owner) {
        const std::lock_guard<std::mutex> lock(mMutex);
        const bool keepsOther = owner == std::this_thread::get_id();
        for (auto entry = mEngines.begin(); entry != mEngines.end();) {
            const bool goes = entry->second == engine || (entry->first == owner && !keepsOther);
            entry = goes ? mEngines.erase(entry) : std::next(entry);
        }
        sGeneration.fetch_add(1, std::memory_order_release);
    }

    /// The lower layers ask for what belongs to the current engine; this is where they are told how.
    void installLookups() {
        const std::lock_guard<std::mutex> lock(mMutex);
        PoolMgr::setLookup([]() -> PoolMgr* {
            ZVEngine* engine = ZVEngine::getCurrent();
            return engine ? engine->getPoolMgr() : nullptr;
        });
        RenderState::setLookup([]() -> RenderState* {
            ZVEngine* engine = ZVEngine::getCurrent();
            return engine ? engine->getRenderState() : nullptr;
        });
    }

private:
    ZVEngine* remember(ZVEngine* engine) {
        tRemembered = {engine, sGeneration.load(std::memory_order_acquire)};
        return engine;
    }

    std::mutex mMutex;
    std::unordered_map<std::thread::id, ZVEngine*> mEngines;
};

std::int64_t steadyNanoseconds() {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceStart).count();
}

double secondsBetween(std::int64_t from, std::int64_t to) {
    return static_cast<double>(to - from) / 1e9;
}

}  // namespace

ZVEngine::ZVEngine() : ZVEngine(nullptr) {}

ZVEngine::ZVEngine(const std::shared_ptr<GLContext>& context) : mAutoUpdate(true), mLogFps(false) {
    mPoolMgr = new PoolMgr;
    mThreadId = std::this_thread::get_id();
    Registry::instance().installLookups();
    setCurrent(this);
    if (context) {
        mGLContext = context;
        mGLContext->makeCurrent();
    }
    mRenderState = new RenderState;
}

ZVEngine::~ZVEngine() {
    setCurScene(nullptr);
    // What is released from here on still finds its engine: the registry forgets it last.
    delete mPoolMgr;
    mPoolMgr = nullptr;
    delete mTextureCache;
    mTextureCache = nullptr;
    delete mProgramCache;
    mProgramCache = nullptr;
    delete mRenderState;
    mRenderState = nullptr;
    mGLContext.reset();
    Registry::instance().forget(this, mThreadId);
}

ZVEngine* ZVEngine::getCurrent() {
    if (tRemembered.generation == sGeneration.load(std::memory_order_acquire)) {
        return tRemembered.engine;
    }
    return Registry::instance().find();
}

void ZVEngine::setCurrent(ZVEngine* engine) {
    Registry::instance().set(engine);
}

void ZVEngine::makeCurrent() {
    setCurrent(this);
    mGLContext->makeCurrent();
}

void ZVEngine::update(float dt) {
    if (PoolMgr* pools = PoolMgr::getInstance()) {
        pools->getCurPool()->clear();
    }
    if (mCurScene) {
        mCurScene->update(dt);
    }
}

void ZVEngine::render() {
    logFps();
    if (mAutoUpdate) {
        update(getDurationNow());
    }
    if (mCurScene) {
        mCurScene->render();
    }
}

void ZVEngine::setCurScene(Scene* scene) {
    if (scene == mCurScene) {
        return;
    }
    if (mCurScene) {
        mCurScene->release();
    }
    mCurScene = scene;
    if (!scene) {
        return;
    }
    scene->retain();
    using Rect = TRect<short, unsigned short>;
    if (scene->getViewPort() == Rect()) {
        scene->setViewPort(Rect(0, 0, mWinSize.x, mWinSize.y));
    }
}

ProgramCache* ZVEngine::getProgramCache() {
    if (!mProgramCache) {
        mProgramCache = new ProgramCache;
        mProgramCache->init();
    }
    return mProgramCache;
}

TextureCache* ZVEngine::getTextureCache() {
    if (!mTextureCache) {
        mTextureCache = new TextureCache;
        mTextureCache->init();
    }
    return mTextureCache;
}

float ZVEngine::getDurationNow() {
    const std::int64_t now = steadyNanoseconds();
    const std::int64_t previous = mLastFrameStamp;
    mLastFrameStamp = now;
    if (previous == 0) {
        return 0.0F;
    }
    const double elapsed = secondsBetween(previous, now);
    if (mMaxFps == 0) {
        return static_cast<float>(elapsed);
    }
    const double remaining = 1.0 / mMaxFps - elapsed;
    if (remaining > 1e-6) {
        // At most one second, so 32 bits hold it.
        std::this_thread::sleep_for(std::chrono::nanoseconds(static_cast<std::int32_t>(remaining * 1e9)));
    }
    // With a cap the step is the pacing delay alone, and the next interval is measured from its end: a host
    // that paces by the cap and animates by the step sees its animations run slow by what a frame works.
    const std::int64_t after = steadyNanoseconds();
    mLastFrameStamp = after;
    return static_cast<float>(secondsBetween(now, after));
}

void ZVEngine::logFps() {
    if (!mLogFps) {
        return;
    }
    const std::int64_t now = steadyNanoseconds();
    if (mFpsWindowStart == 0) {
        mFpsWindowStart = now;
        return;
    }
    ++mFramesCounted;
    if (secondsBetween(mFpsWindowStart, now) > 1.0) {
        mFpsWindowStart = now;
        mFramesCounted = 0;
    }
}

}  // namespace zv
