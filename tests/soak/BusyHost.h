#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "core/TVec.h"
#include "core/UniqueDataPtr.h"
#include "scene/RefHolder.h"
#include "scene/ZVMediaEngine.h"
#include "support/HostScreen.h"

namespace zv {
class BeautyShapeChain;
class RenderTexture;
class Sprite;
class Texture2D;
}  // namespace zv

namespace zv::host {
class HeadlessContext;
}

namespace zv::soak {

/// A host that cannot make up its mind: with each frame it changes something of its engine, by chance.
class BusyHost {
public:
    /// Makes an engine on the context and switches on all that there is. @param resources holds zv_res
    BusyHost(const std::shared_ptr<host::HeadlessContext>& context, std::string resources,
             std::uint32_t seed);
    ~BusyHost();
    BusyHost(const BusyHost&) = delete;
    BusyHost& operator=(const BusyHost&) = delete;

    /// One deed and one frame, which is read back.
    /// @return what went wrong, or nothing
    std::string frame();
    /// Takes everything out again and shows a picture through the bare engine.
    /// @return what went wrong, or nothing
    std::string rest();

private:
    int any(int most) { return static_cast<int>(mRandom() % static_cast<std::uint32_t>(most + 1)); }
    float anyAmount();
    Size16 anySize();
    const std::string& anyLook();

    void everything();
    void deed();
    void otherInput();
    void otherOutput();
    void otherSize();
    void otherChain();
    // These need a chain.
    void otherStage();
    void otherEffect();
    void otherTable();
    void otherFlags();
    void otherStrengths();
    void moreStickers();
    void fewerStickers();
    void otherFaces();
    void otherSwitches();

    Texture2D* makePlane(const Size16& size, int channels);
    void refreshInput();
    void readBack();
    std::string drawFrame();

    std::mt19937 mRandom;
    std::string mResources;
    std::vector<std::string> mLooks;
    std::vector<std::string> mStickers;
    Size16 mSize{64, 48};
    test::HostScreen mScreen{mSize.x, mSize.y};
    std::unique_ptr<ZVMediaEngine> mEngine;
    RefHolder<Sprite> mInput;
    RefHolder<RenderTexture> mOutput;
    RefHolder<BeautyShapeChain> mChain;
    UniqueDataPtr<unsigned char> mBytes;
};

}  // namespace zv::soak
