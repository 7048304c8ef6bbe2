#include <cmath>
#include <fstream>
#include <limits>
#include <random>

#include "BeautyTest.h"
#include "algorithm/AlgEngine.h"
#include "effects/FaceBuffingNode.h"
#include "effects/FaceShapeNode.h"
#include "support/AllocationCounter.h"
#include "support/SomeFace.h"

namespace zv::test {

using kel_algorithm::AlgFaceLandmarks;
using Faces = std::vector<AlgFaceLandmarks>;

class FaceNodesPicture : public BeautyTest {
protected:
    static constexpr int kSide = 256;  ///< the part of the portrait around the face, whose eyes are 44 apart
    static constexpr int kLeft = 95;

    void SetUp() override {
        BeautyTest::SetUp();
        portrait = Picture::load(ZV_TEST_DATA_DIR "/portrait.png").cropped(kLeft, 0, kSide, kSide);
        std::ifstream file(ZV_TEST_DATA_DIR "/portrait.points.txt");
        for (Vec2f& point : face.points) {
            ASSERT_TRUE(file >> point.x >> point.y);
            point = {point.x - kLeft, kSide - point.y};
        }
        face.confidence = 1.0F;
        detector = std::make_shared<ToldDetector>();
        media->getAlgEngine()->getKelNN()->setDetector(detector);
    }
    void startNodes(const Picture& picture) {
        start(makeSprite(picture), sizeOf(picture));
        buffing = FaceBuffingNode::create(sizeOf(picture), media->getFrameBuffer(), PXFORMAT_RGBA8888);
        shape = FaceShapeNode::create(sizeOf(picture), media->getFrameBuffer(), PXFORMAT_RGBA8888);
        chain->setFaceBuffingNode(buffing);
        chain->setFaceShape(shape);
        buffing->setFaceBuffing(0.0F);
    }
    void detect(const Faces& faces) {
        detector->told.landmarks.resize(faces.size());
        std::copy(faces.begin(), faces.end(), detector->told.landmarks.get(0));
    }
    Picture shown(const Faces& faces) {
        detect(faces);
        frame();
        return output();
    }
    /// One bit a type: 1 or -1.
    void setAll(unsigned bits) {
        for (int type = 0; type < FACE_SHAPE_COUNT; ++type)
            shape->updateFaceShape(type, (bits >> type & 1U) != 0 ? 1.0F : -1.0F);
    }
    /// The face scaled about its nose, turned, and its nose moved to a place.
    AlgFaceLandmarks placed(float x, float y, float degrees = 0, float wide = 1, float high = 1) const {
        AlgFaceLandmarks out = face;
        const float c = std::cos(degrees / 57.29578F), s = std::sin(degrees / 57.29578F);
        for (Vec2f& point : out.points) {
            const Vec2f a((point.x - face.points[46].x) * wide, (point.y - face.points[46].y) * high);
            point = {x + c * a.x - s * a.y, y + s * a.x + c * a.y};
        }
        return out;
    }
    Vec2f point(int index) const {
        const Vec2f brow = face.points[36];
        return index < 0 ? Vec2f(brow.x, brow.y + 34.0F) : face.points[index];
    }

    Picture portrait;
    AlgFaceLandmarks face;
    std::shared_ptr<ToldDetector> detector;
    FaceBuffingNode* buffing = nullptr;
    FaceShapeNode* shape = nullptr;
};

TEST_F(FaceNodesPicture, NoValueNoFaceOrAFaceThatIsNoneLeavesEveryByte) {
    const Picture picture = Picture::noise(253, 187, 3, false);
    AlgFaceLandmarks gone = face, broken = face, point = face, flipped = face;
    gone.confidence = 0.0F;
    broken.points[50].x = std::numeric_limits<float>::quiet_NaN();
    for (Vec2f& place : point.points)
        place = {90.0F, 90.0F};
    for (Vec2f& place : flipped.points)
        place.y = -place.y;
    for (const bool strong : {false, true}) {
        startNodes(picture);
        for (int type = -1; type <= FACE_SHAPE_COUNT; ++type)
            shape->updateFaceShape(type, strong ? 7.0F : std::numeric_limits<float>::quiet_NaN());
        buffing->setFaceBuffing(strong ? 7.0F : std::numeric_limits<float>::quiet_NaN());
        EXPECT_EQ(shape->getFaceShape(0) + buffing->getFaceBuffing(), strong ? 2.0F : 0.0F);
        expectSame(shown(strong ? Faces{gone, broken, point, flipped} : Faces{face}), picture, "face-none");
        expectSame(shown({}), picture, "face-empty");
        EXPECT_EQ(shown({face}) == picture, !strong) << "and a face at full strength shows";
    }
}

struct Reshape {
    const char* name;
    int from, to;       ///< points whose distance it changes; -1 is on the hairline
    float least, most;  ///< what becomes of it at 1
};

class FaceReshapePicture : public FaceNodesPicture, public testing::WithParamInterface<Reshape> {};

// Every pixel of the input tells its own place, so the output tells where each place went.
TEST_P(FaceReshapePicture, MovesItsPointsAndNothingOutsideTheRing) {
    const Reshape& row = GetParam();
    const auto level = [](int i) { return static_cast<std::uint8_t>(i); };
    startNodes(Picture::make(kSide, kSide, [&](int x, int y) { return Pixel{level(x), level(y), 9, 255}; }));
    const int type = FaceShapeNode::getTypeByName(row.name);
    ASSERT_STREQ(FaceShapeNode::getTypeName(type), row.name);
    const auto distanceAt = [&](float value) {
        shape->updateFaceShape(type, value);
        const Picture now = shown({face});
        const auto placeOf = [&](Vec2f place) {
            double sumX = 0, sumY = 0, weights = 0;
            for (int i = 0; i < kSide * kSide; ++i) {
                const Pixel here = now.at(i % kSide, i / kSide);
                const double x = place.x - 0.5 - here[0], y = kSide - place.y - 0.5 - here[1];
                const double weight = std::max(0.0, 2.5 - x * x - y * y);
                weights += weight;
                sumX += weight * (i % kSide + x);
                sumY += weight * (i / kSide + y);
            }
            return Vec2f(static_cast<float>(sumX / weights), static_cast<float>(sumY / weights));
        };
        const Vec2f a = placeOf(point(row.from)), b = placeOf(point(row.to));
        return std::hypot(a.x - b.x, a.y - b.y);
    };
    const float unmoved = distanceAt(0.0F);
    const float half = distanceAt(0.5F) / unmoved, whole = distanceAt(1.0F) / unmoved;
    const float less = distanceAt(-1.0F) / unmoved;
    EXPECT_TRUE(whole >= row.least && whole <= row.most) << whole;
    EXPECT_TRUE(std::abs(half - 1) > 0.02F && (half - 1) / (whole - 1) < 1.0F) << half << ", " << whole;
    EXPECT_TRUE((less - 1) * (whole - 1) < 0 && std::abs(less - 1) > 0.6F * std::abs(whole - 1)) << less;

    // The ring, in eye distances from between the eyes: half the face is 1.05, the chin at -1.7.
    const Picture picture = Picture::noise(kSide, kSide);
    const Picture now =
        (input->getTexture(0)->updateWithData(picture.rgba.data(), picture.rgba.size()), shown({face}));
    const Vec2f left = face.points[74], right = face.points[77];
    const float c = right.x - left.x, s = right.y - left.y, squared = c * c + s * s;
    int moved = 0;
    for (int i = 0; i < kSide * kSide; ++i) {
        const float x = static_cast<float>(i % kSide) + 0.5F - (left.x + right.x) / 2;
        const float y = kSide - static_cast<float>(i / kSide) - 0.5F - (left.y + right.y) / 2;
        const float across = (x * c + y * s) / squared, up = (y * c - x * s) / squared;
        const bool changed = now.at(i % kSide, i / kSide) != picture.at(i % kSide, i / kSide);
        moved += changed;
        ASSERT_TRUE(!changed || (std::abs(across) < 1.9F && up > -2.6F && up < 2.1F)) << across << ", " << up;
    }
    EXPECT_GT(moved, 300);
}

INSTANTIATE_TEST_SUITE_P(
    Types, FaceReshapePicture,
    testing::Values(Reshape{"eyes", 52, 55, 1.1F, 1.25F}, Reshape{"slim", 7, 25, 0.8F, 0.92F},
                    Reshape{"chin", 13, 19, 0.7F, 0.88F}, Reshape{"short", 43, 16, 0.85F, 0.95F},
                    Reshape{"nose", 82, 83, 0.7F, 0.88F}, Reshape{"mouth", 84, 90, 1.06F, 1.2F},
                    Reshape{"forehead", 36, -1, 1.1F, 1.4F}),
    [](const auto& row) { return row.param.name; });

// Every triangle of the mesh keeps its side in the picture, and the border stays where it is.
TEST_F(FaceNodesPicture, NothingFoldsAtAnyValuesOfAnyFaces) {
    std::mt19937 random(5);
    AlgFaceLandmarks wild = face;
    for (Vec2f& place : wild.points)
        place = {static_cast<float>(random() % 320), static_cast<float>(random() % 240)};
    wild.points[74] = {130, 150}, wild.points[77] = {180, 140}, wild.points[16] = {150, 60};
    const std::vector<Faces> scenes = {{placed(160, 110)},
                                       {placed(160, 120, 50), placed(190, 130, -20)},
                                       {placed(8, 20, 30)},
                                       {placed(160, 110, 0, 0.4F)},
                                       {placed(160, 110, -75, 3, 3)},
                                       {wild},
                                       {placed(40, 60), placed(280, 60), placed(160, 200),
                                        placed(60, 180, 10), placed(270, 190, 0, 0.4F, 0.4F)}};
    startNodes(Picture(320, 240, {50, 50, 50, 255}));
    for (std::size_t i = 0; i < scenes.size() * 10; ++i) {
        setAll(i % 10 == 0 ? ~0U : static_cast<unsigned>(i % 10 - 1) * 73U);
        shape->setClipEdge(i % 2 == 0 ? 30.0F : 0.0F);
        shown(scenes[i / 10]);
        const std::vector<V2F_T2F> mesh = shape->getMesh();
        float least = 1e9F;
        for (std::size_t v = 2; v < mesh.size(); ++v) {
            const auto area = [&](TVec<2, float> V2F_T2F::*field) {
                const Vec2f a = mesh[v - 2].*field, b = mesh[v - 1].*field, c = mesh[v].*field;
                return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
            };
            const float drawn = area(&V2F_T2F::vertices);
            least = drawn != 0.0F ? std::min(least, area(&V2F_T2F::texCoords) / drawn * 4) : least;
        }
        const float sign = shape->isFlipY() ? 1.0F : -1.0F;
        EXPECT_TRUE(least * sign > 0.02F && least < 1e8F)
            << "scene " << i / 10 << ", values " << i % 10 << ": " << least;
        for (std::size_t v = 0; v < mesh.size(); v += 37) {  // what lies over a face finds its places there
            Vec2f place(mesh[v].texCoords.x * 320.0F, mesh[v].texCoords.y * 240.0F);
            shape->movePlaces(&place, 1);
            EXPECT_NEAR(place.x, (mesh[v].vertices.x + 1.0F) * 160.0F, 0.5F) << i;
            EXPECT_NEAR(place.y, (mesh[v].vertices.y + 1.0F) * 120.0F, 0.5F) << i;
        }
        for (const V2F_T2F& vertex : mesh) {
            if (std::abs(vertex.vertices.x) == 1.0F || std::abs(vertex.vertices.y) == 1.0F) {
                EXPECT_NEAR(vertex.texCoords.x, vertex.vertices.x / 2 + 0.5F, 1e-6);
                EXPECT_NEAR(vertex.texCoords.y, vertex.vertices.y / 2 + 0.5F, 1e-6);
            }
        }
    }
}

// Fewer cells a face only, so nearly the same picture.
TEST_F(FaceNodesPicture, FiveFacesEachLookAsOneAlone) {
    startNodes(portrait);
    setAll(~0U);
    buffing->setFaceBuffing(1.0F);
    const Picture alone = shown({face});
    const auto five =
        Picture::make(5 * kSide, kSide, [&](int x, int y) { return portrait.at(x % kSide, y); });
    startNodes(five);
    setAll(~0U);
    buffing->setFaceBuffing(1.0F);
    Faces faces;
    for (int i = 0; i < 5; ++i)
        faces.push_back(placed(face.points[46].x + static_cast<float>(i * kSide), face.points[46].y));
    const Picture together = shown(faces);
    for (int i = 0; i < 5; ++i)
        expectNear(together.cropped(i * kSide, 0, kSide, kSide), alone, 40, 0.15, "face-five");
}

TEST_F(FaceNodesPicture, SmoothingSparesEyesBrowsLipsAndAllAround) {
    startNodes(portrait);
    buffing->setFaceBuffing(1.0F);
    const Picture smooth = shown({face});
    const auto detailIn = [](const Picture& picture, Vec2f at) {
        double sum = 0;
        for (int y = -4; y <= 4; ++y)
            for (int x = -4; x <= 4; ++x) {
                const int px = static_cast<int>(at.x) + x, py = kSide - static_cast<int>(at.y) + y;
                sum += std::abs(2 * picture.at(px, py)[1] - picture.at(px - 1, py)[1] -
                                picture.at(px + 1, py)[1]);
            }
        return sum;
    };
    const auto between = [&](int a, int b) {
        return Vec2f((point(a).x + point(b).x) / 2, (point(a).y + point(b).y) / 2);
    };
    for (const Vec2f cheek : {between(82, 4), between(83, 28)})
        EXPECT_LT(detailIn(smooth, cheek), 0.6 * detailIn(portrait, cheek));
    for (const int spared :
         {35, 36, 39, 40, 52, 55, 58, 61, 72, 73, 75, 76, 84, 87, 90, 93, 98, 102, 104, 105}) {
        const int x = static_cast<int>(point(spared).x), y = kSide - 1 - static_cast<int>(point(spared).y);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(smooth.at(x, y)[i], portrait.at(x, y)[i], 3) << "point " << spared;
    }
    for (int i = 0; i < kSide * kSide; ++i) {
        const float x = static_cast<float>(i % kSide), y = static_cast<float>(kSide - i / kSide);
        if (x < point(0).x - 4 || x > point(32).x + 4 || y < point(16).y - 2 || y > point(-1).y + 12) {
            ASSERT_EQ(smooth.at(i % kSide, i / kSide), portrait.at(i % kSide, i / kSide));
        }
    }
}

TEST_F(FaceNodesPicture, FollowsTheDetectorOnlyWhileWantedAndAFrameMakesNothing) {
    const auto wantAll = [&] {
        setAll(~0U);
        buffing->setFaceBuffing(1.0F);
    };
    startNodes(portrait);
    wantAll();
    const Picture here = shown({face});
    const int atOnce = detector->calls;
    startNodes(portrait);
    shown({face});
    EXPECT_EQ(detector->calls, atOnce) << "nobody wants faces";
    wantAll();
    EXPECT_EQ(shown({face}), here) << "filtered, as if it had never been drawn without faces";
    shown({placed(100, 128)});
    EXPECT_EQ(shown({face}), here);
    detect({placed(100, 128)});
    {
        GLCallRecorder recorder;
        const AllocationCounter allocated;
        frame();
        const std::size_t allocations = allocated.allocations();
        EXPECT_EQ(recorder.countDraws(), 5U) << "two for each mesh" << recorder.summary();
        EXPECT_EQ(recorder.countObjectCalls() + recorder.countPrefix("glUniform"), 0U) << recorder.summary();
        EXPECT_EQ(recorder.count("glBufferData"), 2U) << "both meshes follow the face";
        EXPECT_EQ(allocations, 0U);
        setAll(~0U);
        shape->setClipEdge(shape->getClipEdge());
        buffing->setFaceBuffing(1.0F);
        frame();
        EXPECT_EQ(recorder.count("glBufferData"), 2U) << "the same faces and values need no other mesh";
        EXPECT_FALSE(shape->getMesh().empty());
    }
    for (int type = 0; type < FACE_SHAPE_COUNT; ++type)
        shape->updateFaceShape(type, 0.0F);
    buffing->setFaceBuffing(0.0F);
    const int calls = detector->calls;
    EXPECT_EQ(shown({face}), portrait);
    EXPECT_TRUE(detector->calls == calls && shape->getMesh().empty());

    setAll(0);
    shape->retain();
    chain->setFaceShape(nullptr);
    frame();
    EXPECT_GT(detector->calls, calls);
    shape->release();
    const int after = detector->calls;
    frame();
    EXPECT_EQ(detector->calls, after) << "a node that is gone has unsubscribed";
    std::unique_ptr<FaceShapeNode> orphan = std::make_unique<FaceShapeNode>();
    orphan->updateFaceShape(FACE_SHAPE_EYES, 1.0F);
    engine.reset();
    orphan.reset();
}

}  // namespace zv::test
