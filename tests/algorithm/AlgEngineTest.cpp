#include "algorithm/AlgEngine.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
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
struct Scripted : AlgDetector<Results> {
    explicit Scripted(std::function<bool(Results&)> does) : script(std::move(does)) {}
    bool detect(Results& results) override { return script(results); }
    std::function<bool(Results&)> script;
};

/// A detector that always finds one thing.
template <class Results, class Fill>
auto finding(Fill fill) {
    return std::make_shared<Scripted<Results>>([fill](Results& results) {
        results.resize(1);
        fill(results[0]);
        return true;
    });
}

/// Two faces with one and two matrices, told apart by their m[12], and one set of landmarks.
bool twoFaces(AlgFaceResults& results) {
    const auto fit = [](auto& list, std::size_t count) {
        if (list.size() != count)
            list.resize(count);
    };
    fit(results.mats, 2);
    for (std::size_t face = 0; face < 2; ++face) {
        fit(results.mats[face], face + 1);
        for (std::size_t i = 0; i <= face; ++i)
            results.mats[face][i].m[12] = static_cast<float>(10 * face + i);
    }
    fit(results.landmarks, 1);
    results.landmarks[0].points[105] = {3.0F, 4.0F};
    return true;
}

std::string textOf(const AlgFaceMatsList& faces) {
    std::string text;
    for (std::size_t face = 0; face < faces.size(); ++face) {
        for (std::size_t i = 0; i < faces[face].size(); ++i)
            text += std::to_string(static_cast<int>(faces[face][i].m[12])) + " ";
        text += "| ";
    }
    return text;
}

const char* const kTwoFaces = "0 | 10 11 | ";

/// How many subscriptions each slot holds, as in "0..3."; a dot is an empty slot.
std::string slotsOf(const AlgEngine& engine) {
    std::string text;
    for (std::size_t slot = 0; slot < AlgEngine::kSlots; ++slot)
        text += engine.getBiz(slot) ? std::to_string(engine.getBiz(slot)->getFuncs().size()) : ".";
    return text;
}

int ownerA, ownerB, ownerC;

struct AlgEngineTest : testing::Test {
    using OnMats = std::function<void(AlgFaceMatsList&)>;

    /// Registers a consumer of the faces' matrices.
    static void listen(AlgEngine& engine, void* owner, OnMats onMats) {
        const Func func = subscription(owner, 2);
        func->onFaceMats = std::move(onMats);
        engine.registerAlgFunc(func);
    }
    AlgEngine engine;
    std::shared_ptr<Scripted<AlgFaceResults>> detector = std::make_shared<Scripted<AlgFaceResults>>(twoFaces);
    std::string log;
};

}  // namespace

TEST_F(AlgEngineTest, RegistrationMakesTheBusinessesThatTheTypeNeedsAndUsesTheFirst) {
    const std::pair<std::vector<int>, const char*> cases[] = {{{1}, "1...."},    {{1, 2, 3}, "3...."},
                                                              {{4}, "...1."},    {{0}, "1..0."},
                                                              {{3, 4}, "1..1."}, {{5, 8, -1}, "....."}};
    for (const auto& [types, slots] : cases) {
        AlgEngine fresh;
        fresh.registerAlgFunc(nullptr);
        for (int type : types)
            fresh.registerAlgFunc(subscription(&ownerA, type));
        EXPECT_EQ(slotsOf(fresh), slots) << "first type " << types[0];
    }
}

TEST_F(AlgEngineTest, HostFillsItsOwnSlotsOnly) {
    const auto goods = std::make_shared<AlgGoods>(&engine);
    for (std::size_t slot : {0U, 3U, 5U, 99U})
        EXPECT_FALSE(engine.setBiz(slot, goods)) << slot;
    EXPECT_EQ(slotsOf(engine), ".....");
    EXPECT_TRUE(!goods->isInit() && engine.getBiz(5) == nullptr);

    EXPECT_TRUE(engine.setBiz(4, goods) && goods->isInit());
    engine.registerAlgFunc(subscription(&ownerA, 4));
    EXPECT_EQ(slotsOf(engine), "...10") << "slot 4 stands behind the face 3D business";
    EXPECT_TRUE(engine.setBiz(1, std::make_shared<AlgDongTu>(&engine)));
    engine.registerAlgFunc(subscription(&ownerA, 4));
    EXPECT_EQ(slotsOf(engine), ".1.10") << "a lower slot takes the type";
    EXPECT_TRUE(engine.setBiz(1, nullptr));

    struct Broken : AlgGoods {
        using AlgGoods::AlgGoods;
        bool init() override { return false; }
    };
    EXPECT_FALSE(engine.setBiz(2, std::make_shared<Broken>(&engine)));
    EXPECT_EQ(slotsOf(engine), "...10");
}

TEST_F(AlgEngineTest, UnregisteringAnOwnerReachesEveryBusinessAndReleases) {
    engine.setBiz(4, std::make_shared<AlgGoods>(&engine));
    const Func dropped = subscription(&ownerA, 1), kept = subscription(&ownerB, 2);
    for (const Func& func : {dropped, kept, subscription(&ownerA, 2), subscription(&ownerA, 4)})
        engine.registerAlgFunc(func);
    engine.getBiz(4)->registerAlgFunc(subscription(&ownerA, 4));
    engine.getBiz(4)->registerAlgFunc(subscription(&ownerA, 1));
    EXPECT_EQ(slotsOf(engine), "3..11") << "a type that the business does not support is not taken";
    engine.unregisterFunc(&ownerC);
    EXPECT_EQ(slotsOf(engine), "3..11");
    engine.unregisterFunc(&ownerA);
    EXPECT_EQ(slotsOf(engine), "1..00");
    EXPECT_EQ(engine.getBiz(0)->getFuncs()[0], kept);
    EXPECT_EQ(dropped.use_count(), 1);
}

TEST_F(AlgEngineTest, ADetectorRunsOnlyWhileSomebodyListens) {
    const auto find = [&](std::size_t faces, bool answer) {
        detector->script = [this, faces, answer](AlgFaceResults& results) {
            results.mats.resize(faces);
            log += "run ";
            return answer;
        };
        engine.run();
    };
    engine.getKelNN()->setDetector(detector);
    find(2, true);
    listen(engine, &ownerA, [&](AlgFaceMatsList& mats) { log += std::to_string(mats.size()) + " "; });
    find(2, true);
    find(2, false);
    find(0, true);
    engine.getKelNN()->setDetector(nullptr);
    engine.run();
    EXPECT_EQ(log, "run 2 run run 0 ") << "no face is a result, too";
}

TEST_F(AlgEngineTest, EveryCallbackGetsItsOwnCopyOfWhatItsTypeAsksFor) {
    engine.getKelNN()->setDetector(detector);
    int type = 0;
    for (const char* name : {"d", "c", "a", "b"}) {
        const Func func = subscription(&ownerA, type++);
        func->onFaceMats = [this, name](AlgFaceMatsList& mats) {
            const AlgFaceMatsList mine = std::move(mats);
            log += name + textOf(mine);
        };
        func->onLandmarks = [this, name](AlgLandmarksList& faces) {
            const AlgLandmarksList mine = std::move(faces);
            log += name + std::to_string(static_cast<int>(mine[0].points[105].y));
        };
        engine.registerAlgFunc(func);
    }
    for (int frame = 0; frame < 3; ++frame) {
        log.clear();
        engine.run();
        EXPECT_EQ(log, std::string("c4b4a") + kTwoFaces + "b" + kTwoFaces) << frame;
    }
}

TEST_F(AlgEngineTest, OtherBusinessesDeliverThroughTheSameSeam) {
    engine.getFace3D()->setDetector(finding<AlgFaceMeshList>([](AlgFaceMesh& mesh) {
        mesh.faceId = 3;
        mesh.pose.m[13] = 5.0F;
        mesh.vertices.resize(2);
        mesh.vertices[1] = {1.0F, 2.0F, 4.0F};
        mesh.indices.resize(3);
        mesh.indices[2] = 1;
    }));
    const auto goods = std::make_shared<AlgGoods>(&engine);
    goods->setDetector(finding<AlgGoodsList>([](auto& item) { item.goodsId = 42; }));
    const auto cover = std::make_shared<AlgDongTu>(&engine);
    cover->setDetector(finding<AlgCoverScoreList>([](auto& found) { found.score = 0.5F; }));
    std::vector<float> seen;
    const Func func = subscription(&ownerA, 4);
    func->onFaceMeshes = [&](AlgFaceMeshList& list) {
        AlgFaceMesh mesh = std::move(list[0]);
        list.reset();
        seen.insert(seen.end(), {float(mesh.faceId), mesh.pose.m[13], mesh.vertices.getLast()->z});
        seen.push_back(static_cast<float>(*mesh.indices.getLast()));
    };
    func->onGoods = [&](AlgGoodsList& items) { seen.push_back(float(items[0].goodsId)); };
    func->onCoverScores = [&](AlgCoverScoreList& scores) { seen.push_back(scores[0].score); };
    engine.registerAlgFunc(func);
    engine.registerAlgFunc(func);
    // The businesses run in the order of their slots.
    ASSERT_TRUE(engine.setBiz(4, goods) && engine.setBiz(2, cover));
    goods->registerAlgFunc(func);
    cover->registerAlgFunc(func);
    engine.run();
    EXPECT_EQ(seen, (std::vector<float>{0.5F, 3, 5, 4, 1, 3, 5, 4, 1, 42}));
}

TEST_F(AlgEngineTest, RegistryMayChangeInsideACallback) {
    // What the first a does while it is called, and who is called in that run and the next.
    using Add = std::function<void(char, void*)>;
    struct Case {
        const char* name;
        std::function<void(AlgEngine&, const Add&)> duringA;
        const char* runs[2];
    };
    const Case cases[] = {
        {"drops itself", [](auto& e, auto&) { e.unregisterFunc(&ownerA); }, {"zabc", "zbc"}},
        {"drops the next", [](auto& e, auto&) { e.unregisterFunc(&ownerB); }, {"zaAc", "zaAc"}},
        {"drops around itself", [](auto& e, auto&) { e.unregisterFunc(&ownerC); }, {"zabA", "abA"}},
        {"adds", [](auto&, auto& add) { add('n', &ownerB); }, {"zabAc", "zabAcn"}},
        {"drops everybody and adds",
         [](auto& e, auto& add) {
             for (int* owner : {&ownerA, &ownerB, &ownerC})
                 e.unregisterFunc(owner);
             add('n', &ownerB);
         },
         {"za", "n"}},
        {"runs again", [](auto& e, auto&) { e.run(); }, {"zabAc", "zabAc"}}};
    for (const Case& row : cases) {
        AlgEngine busy;
        busy.getKelNN()->setDetector(detector);
        bool acted = false;
        const Add add = [&](char name, void* owner) {
            // The token is held by the callable alone, so that it dies with the subscription.
            listen(busy, owner, [&, token = std::make_shared<char>(name)](AlgFaceMatsList& mats) {
                EXPECT_EQ(textOf(mats), kTwoFaces);
                log += *token;
                if (*token == 'a' && !std::exchange(acted, true))
                    row.duringA(busy, add);
                EXPECT_NE(*token, 0) << "the callable that runs must stay alive";
            });
        };
        for (const auto& [name, owner] :
             {std::pair('z', &ownerC), {'a', &ownerA}, {'b', &ownerB}, {'A', &ownerA}, {'c', &ownerC}})
            add(name, owner);
        for (const char* expected : row.runs) {
            log.clear();
            busy.run();
            EXPECT_EQ(log, expected) << row.name;
        }
    }
}

TEST_F(AlgEngineTest, ARunInsideARunChangesNothing) {
    int detections = 0;
    engine.getKelNN()->setDetector(std::make_shared<Scripted<AlgFaceResults>>([&](AlgFaceResults& results) {
        ++detections;
        engine.run();
        results.mats = AlgFaceMatsList();  // other memory each time
        return twoFaces(results);
    }));
    // The only consumer holds the detector's own list.
    listen(engine, &ownerA, [&](AlgFaceMatsList& mats) {
        const zv::Mat4* before = mats[0].get(0);
        engine.run();
        EXPECT_EQ(mats[0].get(0), before);
        EXPECT_EQ(textOf(mats), kTwoFaces);
    });
    // Who comes while landmarks are handed out does not get the matrices of the same frame.
    int late = 0;
    const Func early = subscription(&ownerB, 1);
    early->onLandmarks = [&](AlgLandmarksList&) {
        const Func both = subscription(&ownerC, 3);
        both->onFaceMats = [&](AlgFaceMatsList&) { ++late; };
        engine.registerAlgFunc(both);
    };
    engine.registerAlgFunc(early);
    engine.run();
    EXPECT_EQ(detections, 1);
    EXPECT_EQ(late, 0);
    engine.unregisterFunc(&ownerB);
    engine.run();
    EXPECT_EQ(late, 1);
}

TEST_F(AlgEngineTest, AConsumerThatDiesWithItsSubscriptionMayUnregisterInTurn) {
    struct Consumer {
        AlgEngine& engine;
        ~Consumer() { engine.unregisterFunc(this); }
    };
    std::shared_ptr<Consumer> consumer(new Consumer{engine});
    engine.registerAlgFunc(subscription(consumer.get(), 2));
    listen(engine, &ownerA, [held = std::move(consumer)](AlgFaceMatsList&) {});
    engine.registerAlgFunc(subscription(&ownerA, 2));
    engine.registerAlgFunc(subscription(&ownerB, 2));
    engine.unregisterFunc(&ownerA);
    ASSERT_EQ(slotsOf(engine), "1....");
    EXPECT_EQ(engine.getBiz(0)->getFuncs()[0]->owner, &ownerB);
}

TEST_F(AlgEngineTest, ConsumersThatSwapCostNoAllocationAFrame) {
    engine.getKelNN()->setDetector(detector);
    AlgFaceMatsList held[2];
    for (AlgFaceMatsList& mine : held)
        listen(engine, &mine, [&mine](AlgFaceMatsList& mats) { std::swap(mine, mats); });
    for (int frame = 0; frame < 3; ++frame)
        engine.run();
    const zv::test::AllocationCounter counter;
    engine.run();
    EXPECT_EQ(counter.allocations(), 0U);
    EXPECT_EQ(textOf(held[0]) + textOf(held[1]), std::string(kTwoFaces) + kTwoFaces);
}

TEST_F(AlgEngineTest, FacesAreConvertedToViewPortPixels) {
    AlgDetectedFace face;
    face.points[1] = {100.0F, 50.0F};
    face.points[105] = {25.0F, 40.0F};
    face.confidence = 0.75F;
    face.faceId = 9;
    AlgFaceLandmarks out;
    ASSERT_TRUE(AlgKelNN::conventFaceInfo(face, {100, 50}, {200, 200}, out));
    EXPECT_EQ(out.points[0], zv::Vec2f(0.0F, 200.0F)) << "the picture's top left is the view port's top left";
    EXPECT_EQ(out.points[1], zv::Vec2f(200.0F, 0.0F));
    EXPECT_TRUE(out.confidence == 0.75F && out.faceId == 9);
    EXPECT_FALSE(AlgKelNN::conventFaceInfo(face, {0, 50}, {200, 200}, out));
    EXPECT_FALSE(AlgKelNN::conventFaceInfo(face, {100, 0}, {200, 200}, out));
    EXPECT_EQ(out.points[105], zv::Vec2f(50.0F, 40.0F));
}
