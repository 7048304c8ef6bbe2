#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "scene/IFrameBuffer.h"
#include "scene/RefHolder.h"
#include "scene/ZVEngine.h"

namespace kel_algorithm {
class AlgEngine;
}

namespace zv {

class HostState;
class Node;
class Ref;
class RenderTarget;
class RenderTexture;
class RenderTextureChain;
class Sprite;

/// What a host drives: an engine with a fixed pipeline. An input sprite (the camera frame) goes through an
/// optional chain of effects into the last render texture, with the stickers on top, and from there to the
/// screen if that is asked for. Algorithms run once a frame, before anything is drawn. Most of this class
/// keeps the links between those nodes right when one of them changes.
///
/// A frame of a host: refresh the input sprite's texture, update(dt) unless auto update is on, render(), read
/// the result. All on the engine's GL thread. No operation reports an error; operations on what is not there
/// do nothing.
class ZV_API ZVMediaEngine : public ZVEngine, public IFrameBuffer {
public:
    explicit ZVMediaEngine(const std::shared_ptr<GLContext>& context);
    /// Needs the GL context current. What the host retained and outlives the engine is detached from it.
    ~ZVMediaEngine() override;

    /// The calling thread's current engine, which must be a media engine; null when there is none.
    static ZVMediaEngine* getCurrent();

    /// Sets the pipeline up. A second call drops the first one's input, scene and output; chain and stickers
    /// stay. Retains what it is given.
    /// @param input the host's frames; a frame is drawn only while it has a texture in slot 0
    /// @param size window size, and size of the output unless that has its own
    /// @param output where the picture goes. A RenderTexture becomes the last render texture, and its frame
    ///   buffer the engine's. A Texture2D is drawn into. Null or anything else: with renderToScreen the input
    ///   is shown directly, without it the engine makes a render texture of RGB without alpha, as it does
    ///   around a Texture2D.
    /// @param renderToScreen whether render() also draws to the frame buffer that the host has bound
    /// @return true, always
    bool init(Sprite* input, const TVec<2, unsigned short>& size, Ref* output, bool renderToScreen);

    Sprite* getInputSprite() const { return mInput.get(); }

    /// Takes the place of the chain before; null as removeRenderChain().
    void setRenderChain(RenderTextureChain* chain);
    RenderTextureChain* getRenderChain() const { return mChain.get(); }
    /// The input leaves the chain, as it does while no member is enabled.
    void removeRenderChain();
    /// Whether there is a chain with at least one enabled member.
    bool isRenderChainValid() const;

    /// The same render texture again changes nothing, whatever `enable` says: see setLastEnable().
    /// @param enable whether it is the output of the pipeline
    void setLastRenderTexture(RenderTexture* renderTexture, bool enable);
    RenderTexture* getLastRenderTexture() const { return mLast.get(); }
    /// Whether the last render texture exists and is used.
    bool isLastEnable() const;
    /// Moves stickers, and with a valid chain its output and the input, to where they are drawn now. Without
    /// a valid chain the input stays where it was: call relink() to move it as well.
    void setLastEnable(bool enable);

    /// When turned on, one node is added to the current scene, unless the last render texture or that node is
    /// there already: the chain's output, or the input without a valid chain. It is then drawn there beside
    /// its place in the pipeline, and so without stickers. With the last render texture disabled it is that
    /// one instead, which shows its last picture, or nothing when there is none. Pass `true` to init() to
    /// have the complete picture on the screen.
    void setRenderToScreen(bool on);
    bool isRenderToScreen() const { return mRenderToScreen; }

    /// Links input, chain output and stickers anew.
    void relink();

    /// A new output size: for the window, the chain with all its members, and the last render texture, with
    /// the view ports of their scenes. A view port that the host gave the current scene stays.
    void resetSize(const TVec<2, unsigned short>& size);

    /// Retains the sticker. Stickers are drawn above everything else of the output.
    void addSticker(Node* sticker);
    /// The first one of that name, or null.
    Node* getStickerByName(const std::string& name) const;
    void removeStickerByName(const std::string& name);
    void removeAllSticker();
    std::vector<Node*> getAllSticker() const;

    /// Made by the first call; owned by the engine.
    kel_algorithm::AlgEngine* getAlgEngine();

    /// Drains the top release pool, links the pipeline anew when the chain became valid or invalid, and
    /// updates every node of the pipeline once.
    /// @param dt seconds
    void update(float dt) override;

    /// renderToLast(), then renderToScreen() when render to screen is on. Without an input texture nothing is
    /// drawn, neither here nor there.
    void render() override;
    /// One frame of the pipeline, into the last render texture. Without an input texture nothing happens.
    void renderToLast();
    /// Draws the current scene to the bound frame buffer.
    void renderToScreen();

    /// Whether glFinish() follows the last render texture, so that the host can read it at once. Default on;
    /// off saves the wait where the host uses the texture in the same context only.
    void setFinishAfterRender(bool on) { mFinishAfterRender = on; }
    bool isFinishAfterRender() const { return mFinishAfterRender; }

    /// Whether the render operations put the host's GL state back and shield the picture from it; what that
    /// covers, HostState says. Default off: the engine then expects GL's defaults (no scissor, no tests, ...)
    /// and leaves its own state behind. Everything outside the render operations works on the host's state as
    /// it is, read-back and loading included.
    void setKeepHostState(bool on);
    bool isKeepHostState() const { return mKeepHostState; }

protected:
    /// Stored only.
    void setSplitScreen(bool on) { mSplitScreen = on; }
    /// Hands the target to the last render texture, if there is one.
    void setLastRenderTarget(RenderTarget* target);

private:
    class HostStateScope;

    void dropPipeline();
    bool makeLast(Ref* output, const TVec<2, unsigned short>& size);
    void linkInput();
    void linkChainOutput();
    void unlinkChain();
    void reSetupSticker();
    void detach(Node* node);
    void addToScene(Node* node);
    Node* chooseScreenNode() const;
    void showScreenNode();
    void removeScreenNode();
    void syncScreenNode();
    bool isInScene(const Node* node) const;
    void updateTree(float dt);
    bool drawToLast();
    void drawToScreen();

    bool mLastEnable = false;
    RefHolder<Sprite> mInput;
    RefHolder<Node> mStickerRoot;
    bool mRenderToScreen = false;
    RefHolder<RenderTexture> mLast;
    RefHolder<RenderTextureChain> mChain;
    bool mSplitScreen = false;
    std::string mText0;  ///< reserved
    std::string mText1;  ///< reserved
    std::unique_ptr<kel_algorithm::AlgEngine> mAlgEngine;
    bool mFinishAfterRender = true;
    bool mChainValid = false;     ///< whether the pipeline was last linked through the chain
    RefHolder<Node> mScreenNode;  ///< what setRenderToScreen() added beside its place in the pipeline
    std::unique_ptr<HostState> mHostState;
    bool mKeepHostState = false;
};

}  // namespace zv
