#include "algorithm/AlgEngine.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "algorithm/AlgBizBase.h"
#include "algorithm/AlgDongTu.h"
#include "algorithm/AlgFace3D.h"
#include "algorithm/AlgGoods.h"
#include "algorithm/AlgKelNN.h"
#include "support/AllocationCounter.h"

using namespace kel_algorithm;

namespace {

using Func = std::shared_ptr<AlgBizFunc>;

Func subscription(void* owner, int type) {
    auto func = std::make_shared<AlgBizFunc>();
    func->owner = owner;
    func->type = static_cast<AlgFuncType>(type);
    return func;
}

/// A detector that does what the test says.
template <class Results>
struct ScriptedDetector : AlgDetector<Results> {
    std::function<bool(Results&)> script;
    int runs = 0;

    bool detect(Results& results) override {
        ++runs;
        return script(results);
    }
};

template <class Results>
std::shared_ptr<ScriptedDetector<Results>> scripted(std::function<bool(Results&)> script) {
    auto detector = std::make_shared<ScriptedDetector<Results>>();
    detector->script = std::move(script);
    return detector;
}

/// Two faces with one and two matrices, told apart by their m[12], and one set of landmarks.
bool twoFaces(AlgFaceResults& results) {
    if (results.mats.size() != 2) {
        results.mats.resize(2);
    }
    for (std::size_t face = 0; face < 2; ++face) {
        if (results.mats[face].size() != face + 1) {
            results.mats[face].resize(face + 1);
        }
        for (std::size_t i = 0; i <= face; ++i) {
            results.mats[face][i] = zv::Mat4();
            results.mats[face][i].m[12] = static_cast<float>(10 * face + i);
        }
    }
    if (results.landmarks.size() != 1) {
        results.landmarks.resize(1);
    }
    results.landmarks[0] = AlgFaceLandmarks();
    results.landmarks[0].points[105] = {3.0F, 4.0F};
    results.landmarks[0].faceId = 7;
    return true;
}

std::string textOf(const AlgFaceMatsList& faces) {
    std::string text;
    for (std::size_t face = 0; face < faces.size(); ++face) {
        text += "[";
        for (std::size_t i = 0; i < faces[face].size(); ++i) {
            text += std::to_string(static_cast<int>(faces[face][i].m[12])) + " ";
        }
        text += "]";
    }
    return text;
}

const char* const kTwoFaces = "[0 ][10 11 ]";

/// Which slots are filled, as in "0..3.".
std::string slotsOf(const AlgEngine& engine) {
    std::string text;
    for (std::size_t slot = 0; slot < AlgEngine::kSlots; ++slot) {
        text += engine.getBiz(slot) ? std::to_string(slot) : ".";
    }
    return text;
}

std::size_t funcsOf(const AlgEngine& engine, std::size_t slot) {
    return engine.getBiz(slot) ? engine.getBiz(slot)->getFuncs().size() : 0;
}

int ownerA;
int ownerB;
int ownerC;

}  // namespace

struct RegistrationCase {
    const char* name;
    std::vector<int> types;
    const char* slots;
    std::size_t inFace, inFace3D;
};

class AlgRegistrationTest : public testing::TestWithParam<RegistrationCase> {};

TEST_P(AlgRegistrationTest, MakesTheBusinessesThatTheTypeNeedsAndUsesTheFirst) {
    AlgEngine engine;
    EXPECT_EQ(slotsOf(engine), ".....");
    for (int type : GetParam().types) {
        engine.registerAlgFunc(subscription(&ownerA, type));
    }
    EXPECT_EQ(slotsOf(engine), GetParam().slots);
    EXPECT_EQ(funcsOf(engine, 0), GetParam().inFace);
    EXPECT_EQ(funcsOf(engine, 3), GetParam().inFace3D);
    for (std::size_t slot : {0U, 3U}) {
        if (engine.getBiz(slot)) {
            EXPECT_TRUE(engine.getBiz(slot)->isInit());
            EXPECT_EQ(engine.getBiz(slot)->getEngine(), &engine);
            EXPECT_EQ(engine.getBiz(slot)->isNeedRun(), funcsOf(engine, slot) > 0);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Types, AlgRegistrationTest,
                         testing::Values(RegistrationCase{"Landmarks", {1}, "0....", 1, 0},
                                         RegistrationCase{"SameBusinessTwice", {1, 2, 3}, "0....", 3, 0},
                                         RegistrationCase{"Mesh", {4}, "...3.", 0, 1},
                                         RegistrationCase{"NothingInParticular", {0}, "0..3.", 1, 0},
                                         RegistrationCase{"Both", {3, 4}, "0..3.", 1, 1},
                                         RegistrationCase{"Unknown", {5, 8, -1}, ".....", 0, 0}),
                         [](const auto& row) { return row.param.name; });

TEST(AlgEngineTest, BusinessesSayWhatTheyAre) {
    EXPECT_EQ(AlgKelNN::bizType(), 0);
    EXPECT_EQ(AlgGoods::bizType(), 2);
    EXPECT_EQ(AlgDongTu::bizType(), 2);
    for (int t = -2; t < 10; ++t) {
        const auto type = static_cast<AlgFuncType>(t);
        EXPECT_EQ(AlgKelNN::supportFunc(type), t >= 0 && t <= 3) << t;
        for (bool supported : {AlgFace3D::supportFunc(type), AlgGoods::supportFunc(type),
                               AlgDongTu::supportFunc(type), AlgGoods(nullptr).isSupportFunc(type)}) {
            EXPECT_EQ(supported, t == 0 || t == 4) << t;
        }
    }
}

TEST(AlgEngineTest, HostFillsItsOwnSlotsOnly) {
    AlgEngine engine;
    engine.registerAlgFunc(nullptr);
    const auto goods = std::make_shared<AlgGoods>(&engine);
    EXPECT_FALSE(goods->isInit());
    for (std::size_t slot : {0U, 3U, 5U, 99U}) {
        EXPECT_FALSE(engine.setBiz(slot, goods)) << slot;
    }
    EXPECT_EQ(slotsOf(engine), ".....");
    EXPECT_EQ(engine.getBiz(5), nullptr);

    EXPECT_TRUE(engine.setBiz(4, goods));
    EXPECT_TRUE(goods->isInit());
    engine.registerAlgFunc(subscription(&ownerA, 4));
    EXPECT_EQ(slotsOf(engine), "...34");
    EXPECT_EQ(funcsOf(engine, 3), 1U) << "slot 4 stands behind the face 3D business";
    EXPECT_TRUE(engine.setBiz(1, std::make_shared<AlgDongTu>(&engine)));
    engine.registerAlgFunc(subscription(&ownerA, 4));
    EXPECT_EQ(funcsOf(engine, 1), 1U) << "a lower slot takes the type";
    EXPECT_TRUE(engine.setBiz(1, nullptr));
    EXPECT_EQ(slotsOf(engine), "...34");

    struct Broken : AlgGoods {
        using AlgGoods::AlgGoods;
        bool init() override { return false; }
    };
    EXPECT_FALSE(engine.setBiz(2, std::make_shared<Broken>(&engine)));
    EXPECT_EQ(slotsOf(engine), "...34");
}

TEST(AlgEngineTest, UnregisteringAnOwnerReachesEveryBusinessAndReleases) {
    AlgEngine engine;
    engine.setBiz(4, std::make_shared<AlgGoods>(&engine));
    const Func kept = subscription(&ownerB, 2);
    const Func goods = subscription(&ownerA, 4);
    std::vector<Func> dropped = {subscription(&ownerA, 1), subscription(&ownerA, 2),
                                 subscription(&ownerA, 4)};
    engine.registerAlgFunc(dropped[0]);
    engine.registerAlgFunc(kept);
    engine.registerAlgFunc(dropped[1]);
    engine.registerAlgFunc(dropped[2]);
    engine.getBiz(4)->registerAlgFunc(goods);
    engine.getBiz(4)->registerAlgFunc(subscription(&ownerA, 1));
    EXPECT_EQ(funcsOf(engine, 4), 1U) << "a type that the business does not support is not taken";
    EXPECT_EQ(kept.use_count(), 2);

    engine.unregisterFunc(&ownerC);
    EXPECT_EQ(funcsOf(engine, 0), 3U);
    engine.unregisterFunc(&ownerA);
    EXPECT_EQ(funcsOf(engine, 0), 1U);
    EXPECT_EQ(engine.getBiz(0)->getFuncs()[0], kept);
    for (const Func& func : dropped) {
        EXPECT_EQ(func.use_count(), 1);
    }
    EXPECT_FALSE(engine.getBiz(3)->isNeedRun());
    EXPECT_FALSE(engine.getBiz(4)->isNeedRun());
}

TEST(AlgEngineTest, ADetectorRunsOnlyWhileSomebodyListens) {
    AlgEngine engine;
    auto detector = scripted<AlgFaceResults>(twoFaces);
    engine.getKelNN()->setDetector(detector);
    engine.run();
    EXPECT_EQ(detector->runs, 0);

    int calls = 0;
    const Func func = subscription(&ownerA, 2);
    func->onFaceMats = [&](AlgFaceMatsList&) { ++calls; };
    engine.registerAlgFunc(func);
    engine.run();
    EXPECT_EQ(detector->runs, 1);
    EXPECT_EQ(calls, 1);

    detector->script = [](AlgFaceResults&) { return false; };
    engine.run();
    EXPECT_EQ(calls, 1) << "no result for this frame";
    detector->script = [](AlgFaceResults& results) {
        results.mats.reset();
        return true;
    };
    func->onFaceMats = [&](AlgFaceMatsList& mats) { calls += mats.size() == 0 ? 10 : 100; };
    engine.run();
    EXPECT_EQ(calls, 11) << "no face is a result, too";
    engine.getKelNN()->setDetector(nullptr);
    engine.run();
    EXPECT_EQ(calls, 11);
}

TEST(AlgEngineTest, EveryCallbackGetsItsOwnCopyOfWhatItsTypeAsksFor) {
    AlgEngine engine;
    engine.getKelNN()->setDetector(scripted<AlgFaceResults>(twoFaces));
    std::string log;
    const auto listen = [&](const char* name, int type) {
        const Func func = subscription(&ownerA, type);
        func->onFaceMats = [&log, name](AlgFaceMatsList& mats) {
            const AlgFaceMatsList mine = std::move(mats);
            log += std::string(name) + textOf(mine) + " ";
        };
        func->onLandmarks = [&log, name](AlgLandmarksList& faces) {
            const AlgLandmarksList mine = std::move(faces);
            log += std::string(name) + "#" + std::to_string(mine[0].faceId) + "@" +
                   std::to_string(static_cast<int>(mine[0].points[105].y)) + " ";
        };
        engine.registerAlgFunc(func);
    };
    listen("a", 2);
    listen("b", 3);
    listen("c", 1);
    listen("d", 0);
    listen("e", 2);
    const std::string faces = kTwoFaces;
    const std::string expected = "b#7@4 c#7@4 a" + faces + " b" + faces + " e" + faces + " ";
    for (int frame = 0; frame < 3; ++frame) {
        log.clear();
        engine.run();
        EXPECT_EQ(log, expected) << frame;
    }
}

TEST(AlgEngineTest, OtherBusinessesDeliverThroughTheSameSeam) {
    AlgEngine engine;
    engine.getFace3D()->setDetector(scripted<AlgFaceMeshList>([](AlgFaceMeshList& meshes) {
        meshes.resize(1);
        meshes[0].faceId = 3;
        meshes[0].pose.m[13] = 5.0F;
        meshes[0].vertices.resize(2);
        meshes[0].vertices[1] = {1.0F, 2.0F, 3.0F};
        meshes[0].indices.resize(3);
        meshes[0].indices[2] = 1;
        return true;
    }));
    const auto goods = std::make_shared<AlgGoods>(&engine);
    goods->setDetector(scripted<AlgGoodsList>([](AlgGoodsList& items) {
        items.resize(1);
        items[0].goodsId = 42;
        return true;
    }));
    const auto cover = std::make_shared<AlgDongTu>(&engine);
    cover->setDetector(scripted<AlgCoverScoreList>([](AlgCoverScoreList& scores) {
        scores.resize(1);
        scores[0].score = 0.5F;
        return true;
    }));
    int meshes = 0;
    for (int i = 0; i < 2; ++i) {
        const Func func = subscription(&ownerA, 4);
        func->onFaceMeshes = [&](AlgFaceMeshList& list) {
            ASSERT_EQ(list.size(), 1U);
            const AlgFaceMesh mesh = std::move(list[0]);
            list.reset();
            meshes += mesh.faceId == 3 && mesh.pose.m[13] == 5.0F && mesh.vertices.size() == 2 &&
                      mesh.vertices[1].z == 3.0F && mesh.indices.size() == 3 && mesh.indices[2] == 1;
        };
        engine.registerAlgFunc(func);
    }
    int found = 0;
    float score = 0.0F;
    const Func func = subscription(&ownerA, 4);
    func->onGoods = [&](AlgGoodsList& items) { found = items[0].goodsId; };
    func->onCoverScores = [&](AlgCoverScoreList& scores) { score = scores[0].score; };
    ASSERT_TRUE(engine.setBiz(4, goods));
    ASSERT_TRUE(engine.setBiz(2, cover));
    goods->registerAlgFunc(func);
    cover->registerAlgFunc(func);
    engine.run();
    EXPECT_EQ(meshes, 2);
    EXPECT_EQ(found, 42);
    EXPECT_EQ(score, 0.5F);
}

TEST(AlgEngineTest, BusinessesRunInTheOrderOfTheSlots) {
    AlgEngine engine;
    std::string order;
    struct Named : AlgGoods {
        Named(AlgEngine* owner, std::string& log, char letter) : AlgGoods(owner), mLog(log), mName(letter) {}
        void run() override { mLog += mName; }
        std::string& mLog;
        char mName;
    };
    for (std::size_t slot : {4U, 2U, 1U}) {
        const auto biz = std::make_shared<Named>(&engine, order, static_cast<char>('0' + slot));
        biz->registerAlgFunc(subscription(&ownerA, 4));
        engine.setBiz(slot, biz);
    }
    engine.run();
    EXPECT_EQ(order, "124");
}

/// What a callback does to the registry while it is called, and who is called in that run and the next.
struct ReentryCase {
    const char* name;
    std::function<void(AlgEngine&, const std::function<void(char, void*)>&)> duringA;
    const char* thisRun;
    const char* nextRun;
};

class AlgReentryTest : public testing::TestWithParam<ReentryCase> {};

TEST_P(AlgReentryTest, RegistryMayChangeInsideACallback) {
    AlgEngine engine;
    engine.getKelNN()->setDetector(scripted<AlgFaceResults>(twoFaces));
    std::string log;
    bool acted = false;
    std::function<void(char, void*)> add = [&](char name, void* owner) {
        const Func func = subscription(owner, 2);
        // Held by the callable alone, so that it dies with the subscription.
        const auto token = std::make_shared<char>(name);
        func->onFaceMats = [&, token](AlgFaceMatsList& mats) {
            EXPECT_EQ(textOf(mats), kTwoFaces);
            log += *token;
            if (*token == 'a' && !acted) {
                acted = true;
                GetParam().duringA(engine, add);
            }
            EXPECT_NE(*token, 0) << "the callable that runs must stay alive";
        };
        engine.registerAlgFunc(func);
    };
    add('z', &ownerC);
    add('a', &ownerA);
    add('b', &ownerB);
    add('A', &ownerA);
    add('c', &ownerC);
    engine.run();
    EXPECT_EQ(log, GetParam().thisRun);
    log.clear();
    engine.run();
    EXPECT_EQ(log, GetParam().nextRun);
}

INSTANTIATE_TEST_SUITE_P(
    Changes, AlgReentryTest,
    testing::Values(ReentryCase{"DropsItself", [](auto& engine, auto&) { engine.unregisterFunc(&ownerA); },
                                "zabc", "zbc"},
                    ReentryCase{"DropsTheNext", [](auto& engine, auto&) { engine.unregisterFunc(&ownerB); },
                                "zaAc", "zaAc"},
                    ReentryCase{"DropsAroundItself",
                                [](auto& engine, auto&) { engine.unregisterFunc(&ownerC); }, "zabA", "abA"},
                    ReentryCase{"Adds", [](auto&, auto& add) { add('n', &ownerB); }, "zabAc", "zabAcn"},
                    ReentryCase{"DropsEverybodyAndAdds",
                                [](auto& engine, auto& add) {
                                    for (int* owner : {&ownerA, &ownerB, &ownerC}) {
                                        engine.unregisterFunc(owner);
                                    }
                                    add('n', &ownerB);
                                },
                                "za", "n"},
                    ReentryCase{"RunsAgain", [](auto& engine, auto&) { engine.run(); }, "zabAc", "zabAc"}),
    [](const auto& row) { return row.param.name; });

TEST(AlgEngineTest, AConsumerThatDiesWithItsSubscriptionMayUnregisterInTurn) {
    AlgEngine engine;
    struct Consumer {
        AlgEngine& engine;
        explicit Consumer(AlgEngine& owner) : engine(owner) {}
        ~Consumer() { engine.unregisterFunc(this); }
    };
    auto consumer = std::make_shared<Consumer>(engine);
    void* key = consumer.get();
    Func holder = subscription(&ownerA, 2);
    holder->onFaceMats = [consumer](AlgFaceMatsList&) {};
    engine.registerAlgFunc(subscription(key, 2));
    engine.registerAlgFunc(holder);
    holder.reset();
    engine.registerAlgFunc(subscription(&ownerA, 2));
    engine.registerAlgFunc(subscription(&ownerB, 2));
    consumer.reset();
    engine.unregisterFunc(&ownerA);
    ASSERT_EQ(funcsOf(engine, 0), 1U);
    EXPECT_EQ(engine.getBiz(0)->getFuncs()[0]->owner, &ownerB);
}

TEST(AlgEngineTest, ConsumersThatSwapCostNoAllocationAFrame) {
    ZV_NEEDS_ALLOCATION_COUNTER();
    AlgEngine engine;
    engine.getKelNN()->setDetector(scripted<AlgFaceResults>(twoFaces));
    AlgFaceMatsList held[2];
    for (AlgFaceMatsList& mine : held) {
        const Func func = subscription(&mine, 2);
        func->onFaceMats = [&mine](AlgFaceMatsList& mats) { std::swap(mine, mats); };
        engine.registerAlgFunc(func);
    }
    for (int frame = 0; frame < 3; ++frame) {
        engine.run();
    }
    const zv::test::AllocationCounter counter;
    engine.run();
    EXPECT_EQ(counter.allocations(), 0U);
    EXPECT_EQ(textOf(held[0]) + textOf(held[1]), std::string(kTwoFaces) + kTwoFaces);
}

TEST(AlgEngineTest, FacesAreConvertedToViewPortPixels) {
    AlgDetectedFace face;
    face.points[0] = {0.0F, 0.0F};
    face.points[1] = {100.0F, 50.0F};
    face.points[105] = {25.0F, 40.0F};
    face.confidence = 0.75F;
    face.faceId = 9;
    AlgFaceLandmarks out;
    ASSERT_TRUE(AlgKelNN::conventFaceInfo(face, {100, 50}, {200, 200}, out));
    EXPECT_EQ(out.points[0], zv::Vec2f(0.0F, 200.0F)) << "the picture's top left is the view port's top left";
    EXPECT_EQ(out.points[1], zv::Vec2f(200.0F, 0.0F));
    EXPECT_EQ(out.points[105], zv::Vec2f(50.0F, 40.0F));
    EXPECT_EQ(out.confidence, 0.75F);
    EXPECT_EQ(out.faceId, 9);
    EXPECT_FALSE(AlgKelNN::conventFaceInfo(face, {0, 50}, {200, 200}, out));
    EXPECT_FALSE(AlgKelNN::conventFaceInfo(face, {100, 0}, {200, 200}, out));
    EXPECT_EQ(out.points[105], zv::Vec2f(50.0F, 40.0F));
}
