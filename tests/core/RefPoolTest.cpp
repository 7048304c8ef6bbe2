#include "core/RefPool.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "core/Component.h"
#include "core/PoolMgr.h"
#include "core/Ref.h"
#include "core/RefCreate.h"

namespace {

using Ids = std::vector<int>;

zv::PoolMgr* sCurrent = nullptr;
Ids sDied;

/// Tells its id when it dies; then autoreleases its heir, when it has one.
struct Probe : zv::Component {
    explicit Probe(int number = 0, Ref* next = nullptr) : id(number), heir(next) {}
    ~Probe() override {
        sDied.push_back(id);
        if (heir != nullptr)
            heir->autorelease();
    }
    int id;
    Ref* heir;
};

zv::Ref* pooled(int id, zv::Ref* heir = nullptr) {
    return (new Probe(id, heir))->autorelease();
}

class ReleasePool : public testing::Test {
protected:
    ReleasePool() {
        sCurrent = &mManager;
        sDied.clear();
        zv::PoolMgr::setLookup([] { return sCurrent; });
    }
    ~ReleasePool() override { zv::PoolMgr::setLookup(nullptr); }
    void drain() { mManager.getCurPool()->clear(); }

    zv::PoolMgr mManager;
};

}  // namespace

TEST_F(ReleasePool, CopyTakesOverTheCount) {
    zv::Ref source, assigned;
    source.retain();
    const zv::Ref copy(source);
    assigned = source;
    EXPECT_TRUE(copy.getRefCount() == 2u && assigned.getRefCount() == 2u);
}

TEST_F(ReleasePool, DrainGivesUpOneReferenceForEachEntryInOrder) {
    zv::Ref* twice = new Probe(2);
    twice->retain();
    EXPECT_TRUE(twice->autorelease() == twice && twice->getRefCount() == 2u);
    zv::Ref* kept = pooled(1);
    kept->retain();
    pooled(3, new Probe(4));
    twice->autorelease();
    drain();
    EXPECT_EQ(sDied, (Ids{3, 2}));
    drain();
    EXPECT_EQ(sDied, (Ids{3, 2, 4})) << "autorelease in a destructor waits for the next drain";
    kept->release();
}

TEST_F(ReleasePool, OnlyClearReleases) {
    zv::Ref* object = new Probe(1);
    zv::RefPool taker("taker");
    {
        zv::RefPool pool("short-lived");
        pool.add(object);
        const zv::RefPool copy(pool);
        taker = std::move(pool);
        pool.clear();  // NOLINT(bugprone-use-after-move): a moved pool is an empty one
    }
    EXPECT_EQ(object->getRefCount(), 1u);
    taker.clear();
    EXPECT_EQ(sDied, Ids{1});
}

TEST_F(ReleasePool, ManagerDrainsFromTheTopDownToTheDefaultPool) {
    pooled(1);
    for (int id = 2; id <= 4; ++id) {
        mManager.push_back(new zv::RefPool("nested"));
        pooled(id);
    }
    mManager.pop();
    EXPECT_EQ(sDied, Ids{4});
    // The pool stays current while it drains, so this heir goes down with it, unreleased.
    zv::Ref* heir = new Probe(6);
    pooled(5, heir);
    mManager.clear();
    EXPECT_EQ(sDied, (Ids{4, 3, 5, 2, 1}));
    mManager.pop();
    mManager.clear();
    heir->release();
    {
        zv::PoolMgr other;
        sCurrent = &other;
        pooled(7);
    }
    EXPECT_EQ(sDied.back(), 7) << "a manager drains when it goes";
}

TEST_F(ReleasePool, CreateAnswersAnAutoreleasedObjectOrNull) {
    const auto create = [](int id, bool works) {
        return zv::createRef<Probe>([&](Probe& probe) { return (probe.id = id) != 0 && works; });
    };
    EXPECT_TRUE(create(1, false) == nullptr && sDied == Ids{1});
    EXPECT_EQ(create(2, true)->getRefCount(), 1u);
    drain();
    EXPECT_EQ(sDied, (Ids{1, 2}));
}
