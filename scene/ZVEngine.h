#pragma once

#include <cstdint>
#include <memory>
#include <thread>

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "gl/GLContext.h"

namespace zv {

class PoolMgr;
class ProgramCache;
class RenderState;
class Scene;
class TextureCache;

/// The root of the library for one GL context: owns the release pools, the render state, the caches and the
/// current scene, and runs one frame for each render().
/// Every thread has at most one current engine, which any code of ours reaches through getCurrent(). Engines
/// may be made, made current and destroyed on different threads at the same time; everything else of an
/// engine belongs to its thread, with its GL context current.
class ZV_API ZVEngine {
public:
    /// The engine is current on the constructing thread afterwards. The context, when there is one, is kept
    /// and made current. Without one, a GL context that the host made current must be there all the same:
    /// the render state reads from it.
    explicit ZVEngine(const std::shared_ptr<GLContext>& context);
    ZVEngine();
    ZVEngine(const ZVEngine&) = delete;
    ZVEngine& operator=(const ZVEngine&) = delete;

    /// To be called on the engine's thread with its GL context current. The engine is still answered there
    /// while its pools drain. Afterwards no thread is answered it, neither one that had it current nor a new
    /// one that got the id of its thread: they have no current engine until one is set. Another engine
    /// that is current on the destroying thread stays so.
    virtual ~ZVEngine();

    /// Releases what the current pool of the thread's current engine holds, then updates the scene.
    /// @param dt seconds
    virtual void update(float dt);

    /// One frame: counts it, updates by the measured time when auto update is on, draws the current scene.
    virtual void render();

    /// The engine that is current on the calling thread, or null. One comparison while nothing changed.
    static ZVEngine* getCurrent();

    /// Makes an engine, or none, current on the calling thread. Does not touch its GL context.
    static void setCurrent(ZVEngine* engine);

    /// Makes this engine current on the calling thread, and its GL context, which must be set, as well.
    void makeCurrent();

    /// Retains the scene and releases the one before; the same scene changes nothing. A view port that is all
    /// zero becomes the whole window.
    void setCurScene(Scene* scene);
    Scene* getCurScene() const { return mCurScene; }

    RenderState* getRenderState() const { return mRenderState; }
    /// Created, and its programs loaded, by the first call.
    ProgramCache* getProgramCache();
    /// Created by the first call.
    TextureCache* getTextureCache();
    PoolMgr* getPoolMgr() const { return mPoolMgr; }

    GLContext* getGLContent() const { return mGLContext.get(); }
    /// Replaces the context without making it current.
    void setGLContent(const std::shared_ptr<GLContext>& context) { mGLContext = context; }

    /// Counts frames in windows of one second. Nothing is written.
    void setLogFps(bool on) { mLogFps = on; }
    /// Most frames a second; 0 for no cap.
    void setMaxFps(unsigned short fps) { mMaxFps = fps; }
    unsigned short getMaxFps() const { return mMaxFps; }
    /// Off, the host calls update() itself, with a time step of its choosing.
    void setAutoUpdate(bool on) { mAutoUpdate = on; }
    bool getAutoUpdate() const { return mAutoUpdate; }

    TVec<2, unsigned short> getWinSize() const { return mWinSize; }
    std::thread::id getThreadId() const { return mThreadId; }

protected:
    /// Paces the frame and answers the time step in seconds, 0 at the first call. Without a cap that is the
    /// time since the last call. With a cap it is only what this call took: the sleep that fills the frame's
    /// budget, or nearly nothing when the frame overran it.
    float getDurationNow();

    /// Counts a frame when counting is on; the count starts anew at the first frame more than a second after
    /// the start of its window.
    void logFps();
    unsigned short getFramesCounted() const { return mFramesCounted; }

    void setWinSize(const TVec<2, unsigned short>& size) { mWinSize = size; }

private:
    bool mAutoUpdate : 1;
    bool mLogFps : 1;
    std::uint16_t mMaxFps = 0;
    std::uint16_t mFramesCounted = 0;
    std::int64_t mFpsWindowStart = 0;  ///< steady clock, nanoseconds; 0 before the first window
    std::int64_t mLastFrameStamp = 0;  ///< steady clock, nanoseconds; 0 before the first frame
    std::shared_ptr<GLContext> mGLContext;
    Scene* mCurScene = nullptr;
    TVec<2, unsigned short> mWinSize;
    std::thread::id mThreadId;
    RenderState* mRenderState = nullptr;
    ProgramCache* mProgramCache = nullptr;
    TextureCache* mTextureCache = nullptr;
    PoolMgr* mPoolMgr = nullptr;
};

}  // namespace zv
