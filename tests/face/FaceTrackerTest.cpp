#include "face/FaceTracker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "algorithm/AlgTypes.h"
#include "core/FileUtil.h"
#include "face/FaceLandmarks106.h"
#include "face/FacePictures.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace zv::test {

class FaceTrackerTest : public ::testing::Test {
protected:
    void SetUp() override {
        FileUtil::getInstance()->setZvRoot(ZV_TEST_RES_DIR);
        portrait = Picture::load(ZV_TEST_DATA_DIR "/portrait.png");
        ASSERT_TRUE(tracker.load());
    }

    void track(const Picture& frame) {
        WholeFaceView view(imageOf(frame));
        tracker.track(view, sizeOf(frame), 0.04F);
    }
    const Vec2f* landmarks(const TrackedFace& face) {
        toLandmarks106(face.mesh, mLandmarks);
        return mLandmarks;
    }
    Picture frameOf(const Placing& placing, int width, int height) const {
        Picture frame(width, height);
        drawPortrait(portrait, placing, frame, 0, width);
        return frame;
    }

    Picture portrait;
    FaceTracker tracker;
    Vec2f mLandmarks[kel_algorithm::kFacePoints];
};

struct Variant {
    const char* name;
    int width, height;
    float faceWidth;
    float degrees = 0.0F;
    float gain = 1.0F;
    float noise = 0.0F;
    bool mirror = false;
    int copies = 1;
    float shift = 0.0F;  // of the face from the frame's middle, parts of the width
};

class FaceVariants : public FaceTrackerTest, public ::testing::WithParamInterface<Variant> {};

TEST_P(FaceVariants, PointsLieWhereTheyWereMarked) {
    const Variant& v = GetParam();
    Picture frame(v.width, v.height);
    std::vector<Placing> placings;
    for (int i = 0; i < v.copies; ++i) {
        const float column = static_cast<float>(v.width) / static_cast<float>(v.copies);
        const auto part = static_cast<float>(i);
        placings.push_back({{(part + 0.5F) * column + v.shift * static_cast<float>(v.width),
                             static_cast<float>(v.height) / 2.0F},
                            v.faceWidth / kFaceWidth,
                            v.degrees,
                            v.mirror});
        drawPortrait(portrait, placings.back(), frame, static_cast<int>(part * column),
                     static_cast<int>((part + 1.0F) * column));
    }
    spoil(frame, v.gain, v.noise, 7);
    track(frame);
    ASSERT_EQ(tracker.faces().size(), placings.size());
    for (const Placing& placing : placings) {
        float best = 1e9F;
        float roll = 0.0F;
        for (const TrackedFace& face : tracker.faces()) {
            const float worst = worstOf(landmarks(face), placing, v.width, v.height);
            roll = worst < best ? face.pose.roll : roll;
            best = std::min(best, worst);
        }
        RecordProperty("worst", std::to_string(best) + " of " + std::to_string(allowed(placing)));
        EXPECT_LE(best, allowed(placing));
        EXPECT_NEAR(roll, (v.mirror ? -3.5F : 3.5F) + v.degrees, 2.5F);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Portrait, FaceVariants,
    ::testing::Values(Variant{"plain", 512, 512, 94}, Variant{"turned15", 640, 480, 120, 15},
                      Variant{"turned30", 640, 480, 120, 30}, Variant{"turned45", 640, 480, 120, 45},
                      Variant{"turned60", 640, 480, 120, 60}, Variant{"turnedBack15", 640, 480, 120, -15},
                      Variant{"turnedBack30", 640, 480, 120, -30},
                      Variant{"turnedBack45", 640, 480, 120, -45},
                      Variant{"turnedBack60", 640, 480, 120, -60}, Variant{"small640", 640, 480, 60},
                      Variant{"small1920", 1920, 1080, 60}, Variant{"middle1280", 1280, 720, 250},
                      Variant{"large1920", 1920, 1080, 700}, Variant{"largest1920", 1920, 1080, 1000},
                      Variant{"dim", 640, 480, 120, 0, 0.25F}, Variant{"noisy", 640, 480, 120, 0, 1, 12},
                      Variant{"mirrored", 640, 480, 120, 0, 1, 0, true},
                      Variant{"two", 1280, 720, 150, 0, 1, 0, false, 2},
                      Variant{"four", 1920, 1080, 150, 0, 1, 0, false, 4},
                      Variant{"cut", 640, 480, 150, 0, 1, 0, false, 1, -0.45F}),
    [](const auto& row) { return std::string(row.param.name); });

// The same square by the way for upright ones, and by the way for turned ones.
TEST_F(FaceTrackerTest, UprightSquaresAreSampledAsTurnedOnesAre) {
    constexpr int kSize = 96;
    std::vector<float> upright(3 * kSize * kSize), turned(upright.size());
    FaceImage image = imageOf(portrait);
    image.area = {100.0F, 50.0F, 1380.0F, 770.0F};
    for (const FaceBorder border : {FaceBorder::Black, FaceBorder::Repeated}) {
        for (const float side : {60.0F, 300.0F, 1500.0F, 9000.0F}) {
            const FaceRegion square{{500.0F, 300.0F}, side, 0.0F};
            sampleRegion(image, square, kSize, border, 1.0F, 3.0F, upright.data());
            sampleRegion(image, {square.centre, side, 1e-9F}, kSize, border, 1.0F, 3.0F, turned.data());
            float worst = 0.0F;
            for (std::size_t i = 0; i < turned.size(); ++i) {
                worst = std::max(worst, std::abs(turned[i] - upright[i]));
            }
            EXPECT_LE(worst, 0.05F) << side;
            EXPECT_GT(*std::max_element(turned.begin(), turned.end()), 30.0F) << side;
        }
    }
}

TEST_F(FaceTrackerTest, FindsNoFaceWhereThereIsNone) {
    std::mt19937 random(3);
    const auto grey = [](int value) {
        const auto byte = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
        return Pixel{byte, byte, byte, 255};
    };
    // Five by seven dots a letter, as a screen of text has them.
    const auto text = [&](int, int) { return grey((random() & 3U) == 0 ? 20 : 235); };
    const Picture letters = Picture::make(160, 120, text);
    const Picture pictures[] = {
        Picture::make(640, 480, [&](int x, int) { return grey(x * 255 / 640); }),
        Picture::make(
            640, 480,
            [&](int x, int y) { return grey(255 - std::abs(x - 320) / 2 - std::abs(y - 240) / 2); }),
        Picture::noise(640, 480, 5),
        Picture::make(640, 480,
                      [&](int x, int y) {
                          return grey(128 + static_cast<int>(60 * std::sin(x * 0.05) * std::cos(y * 0.04)));
                      }),
        Picture::make(640, 480, [&](int x, int y) { return grey(((x / 40 + y / 40) & 1) * 255); }),
        Picture::make(640, 480, [&](int x, int y) { return grey(((x / 8 + y / 8) & 1) * 255); }),
        Picture::make(
            640, 480,
            [&](int x, int y) { return x % 24 < 20 && y % 36 < 28 ? letters.at(x / 4, y / 4) : grey(235); }),
        portrait.cropped(40, 280, 200, 200),   // cloth
        portrait.cropped(300, 350, 200, 150),  // a helmet
        Picture(640, 480, {0, 0, 0, 255}),
    };
    int number = 0;
    for (const Picture& picture : pictures) {
        tracker.reset();
        track(picture);
        track(picture);
        EXPECT_TRUE(tracker.faces().empty()) << "picture " << number;
        ++number;
    }
}

TEST_F(FaceTrackerTest, IsSteadyAtRestAndQuickInMotion) {
    const Placing rest{{320, 240}, 1.3F};
    const Picture still = frameOf(rest, 640, 480);
    constexpr int kFrames = 40, kSettled = 10;
    double sums[std::size(kMarks)] = {}, squares[std::size(kMarks)] = {}, jitter = 0.0;
    for (unsigned i = 0; i < kFrames; ++i) {
        Picture noisy = still;
        spoil(noisy, 1.0F, 12.0F, i);
        track(noisy);
        ASSERT_EQ(tracker.faces().size(), 1U);
        landmarks(tracker.faces()[0]);
        for (std::size_t mark = 0; i >= kSettled && mark < std::size(kMarks); ++mark) {
            const double x = mLandmarks[kMarks[mark].landmark].x - rest.place(kMarks[mark].place).x;
            sums[mark] += x / (kFrames - kSettled);
            squares[mark] += x * x / (kFrames - kSettled);
        }
    }
    for (std::size_t mark = 0; mark < std::size(kMarks); ++mark) {
        jitter = std::max(jitter, std::sqrt(squares[mark] - sums[mark] * sums[mark]));
    }
    RecordProperty("jitter", std::to_string(jitter));
    EXPECT_LE(jitter, 0.15);
    const std::int32_t first = tracker.faces()[0].id;
    tracker.reset();
    constexpr float kStep = 10.0F;  // pixels a frame
    float lag = 0.0F;
    for (int i = 0; i < 20; ++i) {
        const Placing now{{250.0F + kStep * static_cast<float>(i), 200.0F}, 1.3F};
        track(frameOf(now, 640, 480));
        ASSERT_EQ(tracker.faces().size(), 1U) << "frame " << i;
        EXPECT_EQ(tracker.faces()[0].id, first + 1) << "frame " << i;
        float behind = 0.0F;
        for (const Mark& mark : kMarks) {
            behind += (now.place(mark.place).x - landmarks(tracker.faces()[0])[mark.landmark].x) /
                      std::size(kMarks);
        }
        lag = std::max(lag, behind);
    }
    RecordProperty("lag", std::to_string(lag));
    EXPECT_LE(lag, kStep);
}

TEST_F(FaceTrackerTest, KeepsIdsThroughGapsAndFadesWhoLeaves) {
    Picture both(1280, 480);
    drawPortrait(portrait, {{320, 240}, 1.3F}, both, 0, 640);
    drawPortrait(portrait, {{960, 240}, 1.3F}, both, 640, 1280);
    const Picture blank(640, 480, {90, 90, 90, 255});
    Picture left = both;
    for (int y = 0; y < 480; ++y) {
        std::copy_n(&blank.rgba[0], 640 * 4, &left.rgba[(static_cast<std::size_t>(y) * 1280 + 640) * 4]);
    }
    track(both);
    ASSERT_EQ(tracker.faces().size(), 2U);
    const bool isFirstLeft = landmarks(tracker.faces()[0])[46].x < 640.0F;
    const std::int32_t stays = tracker.faces()[isFirstLeft ? 0 : 1].id;
    const std::int32_t leaves = tracker.faces()[isFirstLeft ? 1 : 0].id;
    const auto presenceOf = [&](std::int32_t id) {
        for (const TrackedFace& face : tracker.faces()) {
            if (face.id == id) {
                return face.presence;
            }
        }
        return 0.0F;
    };
    track(left);  // covered for two frames
    track(left);
    EXPECT_EQ(presenceOf(leaves), 1.0F);
    track(both);
    track(both);
    EXPECT_EQ(presenceOf(leaves), 1.0F);
    EXPECT_EQ(tracker.faces().size(), 2U) << "the same two, not a third";
    float before = 1.0F;
    int frames = 0;
    for (; before > 0.0F && frames < 30; ++frames) {
        track(left);
        EXPECT_LE(presenceOf(leaves), before);
        before = presenceOf(leaves);
        EXPECT_EQ(presenceOf(stays), 1.0F);
    }
    EXPECT_GE(frames, 5);
    EXPECT_LE(frames, 12);
    for (int i = 0; i < 17; ++i) {  // as long as the detector takes to look for more faces
        track(both);
    }
    EXPECT_EQ(tracker.faces().size(), 2U);
    EXPECT_EQ(presenceOf(leaves), 0.0F) << "one who comes back after that is somebody new";
}

TEST_F(FaceTrackerTest, ModelsThatAreNoneGiveALineAndNoFaces) {
    const std::string good = ZV_TEST_RES_DIR "/zv_res/models/";
    const std::string mesh = readFile(good + "facemesh.onnx"), far = readFile(good + "blazeface_back_1.onnx"),
                      rest = readFile(good + "blazeface_back_2.onnx"),
                      near = readFile(good + "blazeface_front.onnx");
    struct Row {
        const char *what, *says;
        std::string mesh, far;
    };
    for (const Row& row : {Row{"missing", "facemesh.onnx cannot be read", "", far},
                           Row{"cut short", "facemesh.onnx: ", mesh.substr(0, mesh.size() / 2), far},
                           Row{"no network", "blazeface_back_1.onnx: ", mesh, std::string(5000, 'x')},
                           Row{"of another shape", "\"input\" has another shape", mesh, near},
                           Row{"with other outputs", "\"input\" has another shape", far, far}}) {
        SCOPED_TRACE(row.what);
        const TempDir folder;
        if (!row.mesh.empty()) {
            folder.write("zv_res/models/facemesh.onnx", row.mesh);
        }
        folder.write("zv_res/models/blazeface_back_1.onnx", row.far);
        folder.write("zv_res/models/blazeface_back_2.onnx", rest);
        folder.write("zv_res/models/blazeface_front.onnx", near);
        FileUtil::getInstance()->setZvRoot(folder.path());
        const LogCapture log;
        FaceTracker broken;
        EXPECT_FALSE(broken.load());
        WholeFaceView view(imageOf(portrait));
        broken.track(view, {512, 512}, 0.04F);
        EXPECT_TRUE(broken.faces().empty());
        const std::string text = log.text();
        EXPECT_NE(text.find(row.says), std::string::npos) << text;
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    }
}

}  // namespace zv::test
