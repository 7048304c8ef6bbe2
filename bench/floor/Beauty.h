#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "bench/floor/FloorGL.h"

namespace zv::bench {
struct Frame;
}

namespace zv::bench::floor {

/// The whole beauty chain written by hand: skin smoothing, HSV, whitening, colour table, packing into I420,
/// and the delayed read of its bytes. The same shader files, sizes and values as the engine's chain, nothing
/// besides. Needs a core context current at all times.
class Beauty {
public:
    /// What the shader of a pass reads for each pixel of its target. Smoothing reads more around spots.
    struct Fetches {
        int linear;
        int nearest;  ///< the table's, and whole pixels
    };
    /// One pass, for those who time them one by one.
    struct Pass {
        std::string name;
        const Target* target;
        int y;
        int height;
        unsigned int program;
        unsigned int quad;
        unsigned int textures[3];
        Fetches fetches;
        double bytes;  ///< read and written: each texture once, each pixel of the target once
    };

    /// Needs "zv_res" in the folder `resources`.
    Beauty(const std::string& resources, const Frame& frame);
    Beauty(const Beauty&) = delete;
    Beauty& operator=(const Beauty&) = delete;

    /// Whether all programs and tables are there.
    bool isGood() const { return mGood; }
    void drawPass(std::size_t index) const;
    const std::vector<Pass>& passes() const { return mPasses; }
    /// How many of the passes are skin smoothing: the first ones.
    static constexpr std::size_t SMOOTHING_PASSES = 6;
    /// A frame: all passes, the wait that the engine puts behind them unless its host tells it otherwise, and
    /// the read.
    void drawFrame(bool finish);
    /// The I420 of the frame before the last one.
    const std::vector<unsigned char>& bytes() const { return mBytes; }

private:
    void makeSmoothing(const std::string& shaders);
    void makeColours(const std::string& shaders, const std::string& lookups);
    void makePacking(const std::string& shaders);
    void add(const char* name, const Target& target, unsigned int program, Fetches fetches, unsigned int quad,
             std::initializer_list<unsigned int> textures);
    unsigned int loadTable(const std::string& path);
    void read();

    bool mGood = true;
    int mWidth;
    int mHeight;
    unsigned int mInput;
    unsigned int mQuad;        ///< shows a target
    unsigned int mInputQuad;   ///< shows the input
    unsigned int mSecondQuad;  ///< a target in slot 0 and the input in slot 1
    Target mHalf[2];
    Target mMean;
    Target mFull[2];
    Target mPacked;
    std::vector<Pass> mPasses;
    unsigned int mBuffers[2] = {};
    int mNext = 0;
    std::vector<unsigned char> mBytes;
};

}  // namespace zv::bench::floor
