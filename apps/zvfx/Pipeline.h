#pragma once

#include <memory>
#include <string>

#include "core/UniqueDataPtr.h"
#include "zvfx/Options.h"
#include "zvfx/PictureFile.h"

namespace zv {
class RenderTexture;
class ZVMediaEngine;
namespace host {
class HeadlessContext;
}
}  // namespace zv

namespace zvfx {

/// The engine with one picture as its input and the effects that were asked for, driven as any host drives
/// it.
class Pipeline {
public:
    Pipeline();
    ~Pipeline();
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;

    /// Makes context, engine, input and effects.
    /// @param resources folder that holds zv_res
    /// @return what went wrong, or nothing
    std::string open(const Options& options, const std::string& resources, const Picture& input);

    /// Updates by `seconds` and renders one frame.
    void frame(float seconds);

    /// Starts to read the present frame and takes the one that was started by the call before; what the first
    /// call takes is no frame yet.
    void read();

    /// Waits for the frame whose read() came last.
    /// @return the picture, its bottom row first
    Picture finish();

    std::string renderer() const;
    std::string version() const;

private:
    std::string openContext(bool core);
    std::string openInput(const Picture& input);
    std::string openEffects(const Options& options, const std::string& resources);

    std::shared_ptr<zv::host::HeadlessContext> mContext;
    std::unique_ptr<zv::ZVMediaEngine> mEngine;
    zv::RenderTexture* mOutput = nullptr;  // the engine holds it
    zv::UniqueDataPtr<unsigned char> mPixels;
    int mWidth = 0;
    int mHeight = 0;
    int mChannels = 3;
};

/// Finds the folder that holds zv_res: the one given, else one beside the program, the installed one or the
/// source tree's. @return what is wrong, or nothing
std::string findResources(const std::string& given, std::string& folder);

}  // namespace zvfx
