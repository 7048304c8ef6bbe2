#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "core/Component.h"
#include "core/PoolMgr.h"
#include "core/Ref.h"
#include "core/RefCreate.h"
#include "core/RefPool.h"

namespace {

using Ids = std::vector<int>;

zv::PoolMgr* sCurrent = nullptr;

/// Writes its id into `died` when it dies; then autoreleases `heir`, when it has one.
class Probe : public zv::Component {
public:
    Probe(int id, Ids& died, Ref* heir = nullptr) : mId(id), mDied(died), mHeir(heir) {}
    ~Probe() override {
        mDied.push_back(mId);
        if (mHeir != nullptr)
            mHeir->autorelease();
    }

private:
    int mId;
    Ids& mDied;
    Ref* mHeir;
};

class ReleasePool : public testing::Test {
protected:
    ReleasePool() {
        sCurrent = &mManager;
        zv::PoolMgr::setLookup([] { return sCurrent; });
    }
    ~ReleasePool() override { zv::PoolMgr::setLookup(nullptr); }

    void drain() { mManager.getCurPool()->clear(); }

    zv::PoolMgr mManager;
    Ids mDied;
};

}  // namespace

TEST_F(ReleasePool, LastReleaseRunsTheMostDerivedDestructor) {
    zv::Ref* object = new Probe(1, mDied);
    EXPECT_EQ(object->getRefCount(), 1u);
    object->retain();
    object->release();
    EXPECT_EQ(object->getRefCount(), 1u);
    EXPECT_EQ(mDied, Ids{});
    object->release();
    EXPECT_EQ(mDied, Ids{1});
}

TEST_F(ReleasePool, CopyTakesOverTheCount) {
    zv::Ref source;
    source.retain();
    source.retain();
    const zv::Ref copy(source);
    zv::Ref assigned;
    assigned = source;
    EXPECT_EQ(copy.getRefCount(), 3u);
    EXPECT_EQ(assigned.getRefCount(), 3u);
}

TEST_F(ReleasePool, DrainGivesUpOneReferenceForEachEntryInOrder) {
    zv::Ref* kept = new Probe(1, mDied);
    zv::Ref* twice = new Probe(2, mDied);
    zv::Ref* once = new Probe(3, mDied);
    twice->retain();
    EXPECT_EQ(twice->autorelease(), twice);
    EXPECT_EQ(twice->getRefCount(), 2u);
    kept->autorelease();
    kept->retain();
    once->autorelease();
    twice->autorelease();
    drain();
    EXPECT_EQ(mDied, (Ids{3, 2}));
    EXPECT_EQ(kept->getRefCount(), 1u);
    drain();
    EXPECT_EQ(kept->getRefCount(), 1u);
    kept->release();
}

TEST_F(ReleasePool, AutoreleaseInADestructorWaitsForTheNextDrain) {
    zv::Ref* heir = new Probe(2, mDied);
    (new Probe(1, mDied, heir))->autorelease();
    drain();
    EXPECT_EQ(mDied, Ids{1});
    drain();
    EXPECT_EQ(mDied, (Ids{1, 2}));
}

TEST_F(ReleasePool, OnlyClearReleases) {
    zv::Ref* object = new Probe(1, mDied);
    {
        zv::RefPool pool("short-lived");
        pool.add(object);
        zv::RefPool copy(pool);
        zv::RefPool moved(std::move(pool));
    }
    EXPECT_EQ(object->getRefCount(), 1u);

    zv::RefPool source("source");
    source.add(object);
    zv::RefPool taker(std::move(source));
    source.clear();  // NOLINT(bugprone-use-after-move): a moved pool is an empty one
    EXPECT_EQ(mDied, Ids{});
    taker.clear();
    EXPECT_EQ(mDied, Ids{1});
}

TEST_F(ReleasePool, ManagerDrainsFromTheTopDownToTheDefaultPool) {
    (new Probe(1, mDied))->autorelease();
    for (int id = 2; id <= 4; ++id) {
        mManager.push_back(new zv::RefPool("nested"));
        (new Probe(id, mDied))->autorelease();
    }
    mManager.pop();
    EXPECT_EQ(mDied, Ids{4});
    // The pool stays current while it drains, so this heir goes down with it, unreleased.
    zv::Ref* heir = new Probe(6, mDied);
    (new Probe(5, mDied, heir))->autorelease();
    mManager.clear();
    EXPECT_EQ(mDied, (Ids{4, 3, 5, 2, 1}));
    mManager.pop();
    mManager.clear();
    heir->release();

    mManager.push_back(new zv::RefPool("fresh"));
    (new Probe(7, mDied))->autorelease();
    {
        zv::PoolMgr other;
        sCurrent = &other;
        (new Probe(8, mDied))->autorelease();
        EXPECT_EQ(zv::PoolMgr::getInstance(), &other);
    }
    EXPECT_EQ(mDied.back(), 8);
    sCurrent = &mManager;
    mManager.clear();
    EXPECT_EQ(mDied.back(), 7);
}

TEST_F(ReleasePool, WithoutALookUpThereIsNoManager) {
    zv::PoolMgr::setLookup(nullptr);
    EXPECT_EQ(zv::PoolMgr::getInstance(), nullptr);
}

namespace {

/// Initialised the way concrete classes are: its init() is out of reach but for its own create().
class Created : public zv::Ref {
public:
    static Created* create(bool works) {
        return zv::createRef<Created>([&](Created& object) { return object.init(works); });
    }
    static int sAlive;

    Created() { ++sAlive; }

protected:
    ~Created() override { --sAlive; }
    bool init(bool works) { return works; }
};

int Created::sAlive = 0;

}  // namespace

TEST_F(ReleasePool, CreateAnswersAnAutoreleasedObjectOrNull) {
    EXPECT_EQ(Created::create(false), nullptr);
    EXPECT_EQ(Created::sAlive, 0);
    Created* object = Created::create(true);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->getRefCount(), 1u);
    EXPECT_EQ(Created::sAlive, 1);
    drain();
    EXPECT_EQ(Created::sAlive, 0);
}
