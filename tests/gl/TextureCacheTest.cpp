#include "gl/TextureCache.h"

#include <GL/glew.h>

#include "gl/PictureFiles.h"
#include "support/GLTest.h"
#include "support/TempDir.h"

namespace zv::test {

namespace {

struct Counted : Ref {
    explicit Counted(int& livingCount) : living(livingCount) { ++living; }
    ~Counted() override {
        --living;
        if (cache != nullptr)
            cache->remove("other");
    }
    int& living;
    RefCache<Counted>* cache = nullptr;
};

class RefCacheTest : public ::testing::Test {
protected:
    /// Kept by the cache alone.
    Counted* addNew(const char* key) {
        auto* object = new Counted(living);
        cache.add(key, object);
        object->release();
        return object;
    }
    int living = 0;
    RefCache<Counted> cache;
};

TEST_F(RefCacheTest, HoldsOneReferenceUntilTheObjectIsReplacedOrRemoved) {
    Counted* first = addNew("a");
    cache.add("a", first);
    EXPECT_EQ(cache.get("a"), first);
    EXPECT_EQ(first->getRefCount(), 1u) << "neither the same object again nor a look-up retains";
    EXPECT_EQ(cache.get("b"), nullptr);
    Counted* second = addNew("a");
    EXPECT_TRUE(living == 1 && cache.get("a") == second);
    cache.remove("a");
    cache.remove("a");
    EXPECT_TRUE(living == 0 && cache.get("a") == nullptr);
}

TEST_F(RefCacheTest, RemoveUnusedKeepsWhatOthersHold) {
    Counted* held = addNew("held");
    held->retain();
    addNew("unused");
    cache.add("null", nullptr);
    cache.removeUnused();
    EXPECT_TRUE(living == 1 && cache.get("held") == held);
    held->release();
    {
        RefCache<Counted> other;
        other.add("a", held);
        other.add("null", nullptr);
        cache.clear();
        EXPECT_TRUE(held->getRefCount() == 1u && cache.get("held") == nullptr);
    }
    EXPECT_EQ(living, 0);
}

TEST_F(RefCacheTest, ADyingObjectMayUseTheCache) {
    for (const int way : {0, 1, 2, 3}) {
        addNew("one")->cache = &cache;
        addNew("other");
        if (way == 0)
            cache.removeUnused();
        else if (way == 1)
            cache.remove("one");
        else if (way == 2)
            addNew("one");
        cache.clear();
        EXPECT_EQ(living, 0) << "way " << way;
    }
}

using TextureCacheTest = GLTest;

TEST_F(TextureCacheTest, DecodesAPathOnceAndKeepsTheTexture) {
    const TempDir dir;
    const std::string path = dir.write("a.png", pngFile({1, 1, 8, 2, {1, 2, 3}}));
    TextureCache cache;
    Texture2D* texture = cache.createWithFile(path);
    ASSERT_NE(texture, nullptr);
    dir.write("a.png", pngFile({2, 2, 8, 0, {1, 2, 3, 4}}));
    EXPECT_EQ(cache.createWithFile(path), texture);
    EXPECT_EQ(texture->getRefCount(), 2u) << "the cache and the release pool";
    drainPool();
    const unsigned int name = texture->getName();
    cache.removeUnused();
    EXPECT_EQ(cache.get(path), nullptr);
    EXPECT_FALSE(glIsTexture(name));
}

TEST_F(TextureCacheTest, WhatDoesNotDecodeAnswersNullAndIsNotKept) {
    const TempDir dir;
    TextureCache cache;
    const std::string path = dir.file("late.png");
    EXPECT_EQ(cache.createWithFile(path), nullptr);
    EXPECT_EQ(cache.createWithFile("abc"), nullptr) << "a path without room for an extension";
    const std::string grey = dir.write("grey.png", pngFile({1, 1, 8, 0, {1}}));
    EXPECT_EQ(cache.createWithFile(grey), nullptr) << "decodes, but no texture takes it";
    dir.write("late.png", pngFile({1, 1, 8, 2, {1, 2, 3}}));
    EXPECT_NE(cache.createWithFile(path), nullptr);
}

}  // namespace

}  // namespace zv::test
