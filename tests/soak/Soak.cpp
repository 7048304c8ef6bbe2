// zv_soak --res DIR [--frames N] [--minutes M] [--window N] [--curve FILE]: a long night in short.
// One engine is changed by chance with each frame, others are made and destroyed on threads beside it; at the
// end of each window of frames all is taken out and counted. Memory, GL objects and open files must be what
// they were after the first 1,000 frames. Prints a line a window; ends with 1 when something grew or went
// wrong.
#include <GL/glew.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <thread>

#include "core/FileUtil.h"
#include "core/RefCreate.h"
#include "core/ZVLog.h"
#include "effects/BeautyShapeChain.h"
#include "effects/HsvNode.h"
#include "gl/Texture2D.h"
#include "host/HeadlessContext.h"
#include "scene/RenderTexture.h"
#include "scene/Sprite.h"
#include "soak/BusyHost.h"
#include "soak/Census.h"

namespace {

using namespace zv;
using soak::Census;
using Context = host::HeadlessContext;

constexpr int kWindowsALife = 4;  // then the engine goes and another one comes
constexpr long kSettling = 1000;  // frames
constexpr int kThreads = 2;
constexpr int kSpareVertexArrays = 16;
constexpr long kSlackKib = 16 * 1024;  // what allocators keep back differs by this much from window to window

std::atomic<bool> sFine{true};

void complain(const std::string& wrong) {
    std::fprintf(stderr, "soak: %s\n", wrong.c_str());
    sFine = false;
}

std::string listed(const Census& census) {
    std::string text;
    for (std::size_t i = 0; i < Census::kKinds.size(); ++i) {
        text += (i > 0 ? ", " : "") + std::to_string(census.objects[i]) + " " + Census::kKinds[i];
    }
    return text;
}

/// An engine's whole life on a thread of its own; it must show its own colour and leave nothing behind.
void liveBeside(int colour) {
    const auto context = Context::create(Context::Kind::Core);
    if (context == nullptr) {
        return complain("a second thread gets no GL context");
    }
    {
        ZVMediaEngine engine(context);
        engine.setAutoUpdate(false);
        const Size16 size{9, 5};
        const std::vector<unsigned char> pixels(std::size_t{9} * 5 * 4, static_cast<unsigned char>(colour));
        auto* texture = createRef<Texture2D>(
            [&](Texture2D& t) { return t.init(pixels.data(), pixels.size(), PXFORMAT_RGBA8888, size); });
        auto* sprite = createRef<Sprite>([&](Sprite& s) { return s.init(texture, false); });
        engine.init(sprite, size, RenderTexture::create(size, nullptr, PXFORMAT_RGBA8888), false);
        BeautyShapeChain* chain = BeautyShapeChain::create(size, engine.getFrameBuffer());
        engine.setRenderChain(chain);
        chain->setHsv(HsvNode::create(size, nullptr, PXFORMAT_RGBA8888));
        for (int i = 0; i < 20; ++i) {
            engine.update(0.04F);
            engine.render();
            const UniqueDataPtr<unsigned char> out = engine.getLastRenderTexture()->getOutData();
            if (i > 0 && std::abs(*out.get(80) - colour) > 1) {
                complain("an engine shows another one's picture");
            }
        }
    }
    if (const Census left = Census::take(); left.objectCount() != 0) {
        complain("an engine on a thread of its own left behind " + listed(left));
    }
    context->doneCurrent();
}

/// What grew from one census to the other, or nothing.
std::string growth(const Census& first, const Census& now) {
    if (now.openFiles > first.openFiles) {
        return "open files: " + std::to_string(now.openFiles);
    }
    for (std::size_t i = 0; i < Census::kKinds.size(); ++i) {
        // Vertex arrays of dead drawables are kept for reuse: as many as ever lived at one time.
        const int spare = i + 1 == Census::kKinds.size() ? kSpareVertexArrays : 0;
        if (now.objects[i] > first.objects[i] + spare) {
            return std::string(Census::kKinds[i]) + ": " + std::to_string(now.objects[i]);
        }
    }
    return now.residentKib > first.residentKib + kSlackKib
               ? "memory: " + std::to_string(now.residentKib) + " KiB"
               : std::string();
}

class Soak {
public:
    Soak(std::string resources, std::FILE* curve) : mResources(std::move(resources)), mCurve(curve) {}

    /// @return false when something went wrong
    bool run(long frames, double minutes, int window) {
        mContext = Context::create(Context::Kind::Core);
        if (mContext == nullptr) {
            std::fprintf(stderr, "soak: no GL context\n");
            return false;
        }
        FileUtil::getInstance()->setZvRoot(mResources);
        const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(minutes * 60);
        for (int number = 0; sFine && mFrames < frames && std::chrono::steady_clock::now() < end; ++number) {
            if (number % kWindowsALife == 0) {
                endLife();
                mHost = std::make_unique<soak::BusyHost>(mContext, mResources,
                                                         static_cast<std::uint32_t>(number));
            }
            runWindow(window);
            compare();
        }
        endLife();
        return sFine;
    }

private:
    void runWindow(int window) {
        std::thread threads[kThreads];
        for (int i = 0; i < kThreads; ++i) {
            threads[i] = std::thread(liveBeside, 60 + 70 * i);
        }
        std::string wrong;
        for (int i = 0; i < window && wrong.empty(); ++i, ++mFrames) {
            wrong = mHost->frame();
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        if (wrong.empty()) {
            wrong = mHost->rest();
        }
        if (!wrong.empty()) {
            complain("frame " + std::to_string(mFrames) + ": " + wrong);
        }
    }

    void compare() {
        const Census now = Census::take();
        std::fprintf(mCurve, "%ld frames, %ld KiB, %d files, %d objects: %s\n", mFrames, now.residentKib,
                     now.openFiles, now.objectCount(), listed(now).c_str());
        std::fflush(mCurve);
        if (mFrames <= kSettling) {
            mSettled = now;
        } else if (const std::string grown = growth(mSettled, now); !grown.empty()) {
            complain("grew to " + grown);
        }
    }

    void endLife() {
        if (mHost == nullptr) {
            return;
        }
        mHost.reset();
        if (const Census left = Census::take(); left.objectCount() != 0) {
            complain("an engine left behind " + listed(left));
        }
    }

    std::string mResources;
    std::FILE* mCurve;
    std::shared_ptr<Context> mContext;
    std::unique_ptr<soak::BusyHost> mHost;
    Census mSettled;
    long mFrames = 0;
};

}  // namespace

int main(int argc, char** argv) {
    std::map<std::string, std::string> options = {{"--res", "res"},
                                                  {"--frames", "1000000000"},
                                                  {"--minutes", "1000000"},
                                                  {"--window", "500"},
                                                  {"--curve", ""}};
    for (int i = 1; i < argc; i += 2) {
        const auto option = options.find(argv[i]);
        if (option == options.end() || i + 1 == argc) {
            std::fprintf(stderr,
                         "usage: %s --res DIR [--frames N] [--minutes M] [--window N] [--curve FILE]\n",
                         argv[0]);
            return 2;
        }
        option->second = argv[i + 1];
    }
    // What the engine says about odd requests, by the thousand, is not what this is about.
    zv::setLogStream(std::fopen("/dev/null", "w"));
    std::FILE* curve = options["--curve"].empty() ? stdout : std::fopen(options["--curve"].c_str(), "w");
    if (curve == nullptr) {
        std::perror("soak: the curve's file");
        return 1;
    }
    Soak soak(options["--res"], curve);
    return soak.run(std::atol(options["--frames"].c_str()), std::atof(options["--minutes"].c_str()),
                    std::max(1, std::atoi(options["--window"].c_str())))
               ? 0
               : 1;
}
