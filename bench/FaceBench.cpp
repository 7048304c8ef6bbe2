// face_bench PICTURE RES: what the face finder costs a frame of 1280 x 720 that shows one face, which moves,
// and what memory its runtime and models take, each beside its limit. Times are those of the processor, so
// that other work on the machine hardly shows. Exit status 1 when a limit is exceeded by more than what a
// busy machine excuses.
#include <GL/glew.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include "algorithm/AlgEngine.h"
#include "core/FileUtil.h"
#include "face/FaceFinder.h"
#include "gl/Texture2D.h"
#include "host/HeadlessContext.h"
#include "scene/Sprite.h"
#include "scene/ZVMediaEngine.h"

namespace {

using zv::FaceFinder;

constexpr zv::Size16 kFrame{1280, 720};
constexpr float kWindow = 400.0F;      // pixels of the picture that fill the frame's width
constexpr int kRound = 15;             // frames in which the detector comes round once
constexpr int kRounds = 16;            // that are measured
constexpr int kWarm = 2 * kRound;      // frames, the first of which find the face
constexpr double kStepLimit = 10.0;    // milliseconds of one core
constexpr double kLiveLimit = 0.5;     // milliseconds of the thread that draws
constexpr double kMemoryLimit = 80.0;  // megabytes
constexpr double kPatience = 1.5;      // shared caches and a low clock stretch processor times as well

double millisecondsOf(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return 1000.0 * static_cast<double>(now.tv_sec) + 1e-6 * static_cast<double>(now.tv_nsec);
}

double residentMegabytes() {
    double kilobytes = 0.0;
    if (std::FILE* file = std::fopen("/proc/self/status", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, file) != nullptr) {
            std::sscanf(line, "VmRSS: %lf", &kilobytes);
        }
        std::fclose(file);
    }
    return kilobytes / 1024.0;
}

/// An engine whose input is a window of the picture that swings, and one who asks for the landmarks.
class Stage {
public:
    Stage(const std::shared_ptr<zv::host::HeadlessContext>& context, const char* picture) : mEngine(context) {
        auto* texture = new zv::Texture2D;
        texture->autorelease();
        mInput = new zv::Sprite;
        mInput->autorelease();
        mReady = texture->init(std::string(picture)) && mInput->init(texture, false);
        mEngine.setAutoUpdate(false);
        mReady = mReady && mEngine.init(mInput, kFrame, nullptr, false);
        mSubscription->owner = this;
        mSubscription->type = kel_algorithm::ALG_FUNC_FACE_ALL;
        mSubscription->onLandmarks = [this](kel_algorithm::AlgLandmarksList& faces) {
            mFaces = faces.size();
        };
        mSubscription->onFaceMats = [](kel_algorithm::AlgFaceMatsList&) {};
        mEngine.getAlgEngine()->registerAlgFunc(mSubscription);
    }

    bool attach(FaceFinder::Mode mode) { return mReady && FaceFinder::attach(mEngine, {mode}); }

    /// Processor time of the next frame's faces, by that clock.
    double frame(clockid_t clock) {
        const float left = 50.0F + 30.0F * std::sin(0.15F * static_cast<float>(mNumber++));
        const float height = kWindow * kFrame.y / kFrame.x;
        mInput->setRect({left, 10.0F, left + kWindow, 10.0F + height});
        mEngine.update(0.04F);
        glFinish();
        const double start = millisecondsOf(clock);
        mEngine.getAlgEngine()->run();
        return millisecondsOf(clock) - start;
    }
    std::size_t faces() const { return static_cast<std::size_t>(mFaces); }

private:
    zv::ZVMediaEngine mEngine;
    std::shared_ptr<kel_algorithm::AlgBizFunc> mSubscription = std::make_shared<kel_algorithm::AlgBizFunc>();
    zv::Sprite* mInput = nullptr;
    bool mReady = false;
    std::uint64_t mFaces = 0;
    int mNumber = 0;
};

double medianOf(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

/// What frames took. Rounds are alike, so the same frame of all of them has a median of its own; the largest
/// of those is what the dearest frame costs, whatever the machine did beside.
struct Times {
    double first = 0.0;
    std::vector<double> all;
    std::vector<double> inRound[kRound];
    bool isFollowed = true;

    double dearest() const {
        double most = 0.0;
        for (const std::vector<double>& values : inRound) {
            most = std::max(most, medianOf(values));
        }
        return most;
    }
};

Times measure(Stage& stage, clockid_t clock, std::chrono::milliseconds pause) {
    Times times;
    for (int i = 0; i < kWarm + kRounds * kRound; ++i) {
        const double took = stage.frame(clock);
        times.first = i == 0 ? took : times.first;
        if (i >= kWarm) {
            times.all.push_back(took);
            times.inRound[i % kRound].push_back(took);
            times.isFollowed = times.isFollowed && stage.faces() == 1;
        }
        std::this_thread::sleep_for(pause);
    }
    return times;
}

bool report(const char* what, const Times& times, double limit) {
    std::printf("%-36s median %6.2f  dearest %6.2f  longest %6.2f  limit %5.1f ms%s\n", what,
                medianOf(times.all), times.dearest(), *std::max_element(times.all.begin(), times.all.end()),
                limit, times.isFollowed ? "" : "  THE FACE WAS LOST");
    return times.isFollowed && times.dearest() <= kPatience * limit;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "face_bench: give a picture with one face and the folder of zv_res\n");
        return 2;
    }
    const std::string picture = std::filesystem::absolute(argv[1]).string();
    zv::FileUtil::getInstance()->setZvRoot(std::filesystem::absolute(argv[2]).string());
    const auto context = zv::host::HeadlessContext::create(zv::host::HeadlessContext::Kind::Core);
    if (context == nullptr) {
        std::fprintf(stderr, "face_bench: no GL context\n");
        return 1;
    }
    bool isGood = true;
    {
        Stage stage(context, picture.c_str());
        stage.frame(CLOCK_PROCESS_CPUTIME_ID);
        const double before = residentMegabytes();
        if (!stage.attach(FaceFinder::Mode::InStep)) {
            std::fprintf(stderr, "face_bench: no faces without the picture, the runtime and the models\n");
            return 1;
        }
        const Times times = measure(stage, CLOCK_PROCESS_CPUTIME_ID, std::chrono::milliseconds(0));
        const double memory = residentMegabytes() - before;
        isGood = report("in step, one face, all threads", times, kStepLimit) && isGood;
        std::printf("%-36s %6.2f ms\n", "  the first frame, which finds it", times.first);
        std::printf("%-36s %6.1f  limit %5.1f MB\n", "memory of the runtime and the models", memory,
                    kMemoryLimit);
        isGood = memory <= kMemoryLimit && isGood;
    }
    Stage stage(context, picture.c_str());
    isGood = stage.attach(FaceFinder::Mode::Live) && isGood;
    const Times times = measure(stage, CLOCK_THREAD_CPUTIME_ID, std::chrono::milliseconds(20));
    return report("live, one face, the thread that draws", times, kLiveLimit) && isGood ? 0 : 1;
}
