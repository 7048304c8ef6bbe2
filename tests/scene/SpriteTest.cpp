#include "scene/Sprite.h"

#include <GL/glew.h>

#include <string>
#include <vector>

#include "SpriteTarget.h"
#include "gl/ConfigGL.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/RenderState.h"
#include "scene/IFrameBuffer.h"
#include "scene/ZVEngine.h"
#include "support/AllocationCounter.h"
#include "support/EngineTest.h"
#include "support/GLCallRecorder.h"

namespace zv::test {
namespace {

using SpriteTest = EngineTest;
using Corners = std::vector<Vec2f>;  // top left, bottom left, top right, bottom right

Corners cornersOf(Sprite* sprite) {
    const T2F_Quad quad = sprite->getTexCoords();
    return Corners(quad.texCoords, quad.texCoords + 4);
}

bool hasVertexArrays() {
    return ConfigGL::getInstance()->supportVAO();
}

long long sizeOf(const GLCall& bufferData) {
    return bufferData.integer(1);
}

struct Mapping {
    const char* name;
    int rotation;
    bool flipX, flipY;
    Corners corners;
};

class SpriteMapping : public EngineTest, public ::testing::WithParamInterface<Mapping> {};

// The rectangle (2, 1, 6, 3) of 8 x 4 texels spans 0.25 to 0.75 either way: its last two values are far
// edges.
constexpr float kL = 0.25F, kR = 0.75F, kT = 0.25F, kB = 0.75F;

TEST_P(SpriteMapping, PutsTheRectangleOnTheQuad) {
    const Mapping& row = GetParam();
    Sprite* sprite = spriteOf(textureOf(8, 4));
    sprite->setRect({2, 1, 6, 3});
    sprite->setFlipX(row.flipX);
    sprite->setFlipY(row.flipY);
    sprite->setTextureRotationType(static_cast<Sprite::RotationType>(row.rotation));
    EXPECT_EQ(cornersOf(sprite), row.corners);
    EXPECT_FALSE(sprite->isDirtyTexCoords());
}

const Mapping kMappings[] = {
    {"Upright", 0, false, false, {{kL, kT}, {kL, kB}, {kR, kT}, {kR, kB}}},
    {"FlipX", 0, true, false, {{kR, kT}, {kR, kB}, {kL, kT}, {kL, kB}}},
    {"FlipY", 0, false, true, {{kL, kB}, {kL, kT}, {kR, kB}, {kR, kT}}},
    {"FlipBoth", 0, true, true, {{kR, kB}, {kR, kT}, {kL, kB}, {kL, kT}}},
    {"Rotation1", 1, false, false, {{kL, kB}, {kR, kB}, {kL, kT}, {kR, kT}}},
    {"Rotation1FlipX", 1, true, false, {{kR, kB}, {kL, kB}, {kR, kT}, {kL, kT}}},
    {"Rotation2", 2, false, false, {{kR, kB}, {kR, kT}, {kL, kB}, {kL, kT}}},
    {"Rotation3", 3, false, false, {{kR, kT}, {kL, kT}, {kR, kB}, {kL, kB}}},
    {"Rotation3FlipY", 3, false, true, {{kR, kB}, {kL, kB}, {kR, kT}, {kL, kT}}},
    {"UnknownKeepsWhatWas", 7, true, true, {{0, 0}, {0, 0}, {0, 0}, {0, 0}}},
};

std::string mappingName(const ::testing::TestParamInfo<Mapping>& row) {
    return row.param.name;
}

INSTANTIATE_TEST_SUITE_P(Table, SpriteMapping, ::testing::ValuesIn(kMappings), mappingName);

TEST_F(SpriteTest, ANewSpriteShowsItsWholeTexture) {
    Sprite* sprite = spriteOf(textureOf(640, 480));
    EXPECT_EQ(cornersOf(sprite), (Corners{{0, 0}, {0, 1}, {1, 0}, {1, 1}}));
    EXPECT_EQ(sprite->getContentSize(), (Vec2f{640, 480}));
    EXPECT_TRUE(sprite->isFillMode());
    EXPECT_EQ(sprite->getBlendFunc(), BlendFunc::DISABLE);
    sprite->setTextureRotationType(static_cast<Sprite::RotationType>(7));
    EXPECT_EQ(cornersOf(sprite), (Corners{{0, 0}, {0, 1}, {1, 0}, {1, 1}}))
        << "an unknown rotation keeps them";
    EXPECT_EQ(cornersOf(spriteOf(textureOf(2, 2), true))[0], (Vec2f{0, 1}));
}

TEST_F(SpriteTest, OnlyAChangeMakesTheCoordinatesDirty) {
    Sprite* sprite = spriteOf(textureOf(8, 4));
    EXPECT_TRUE(sprite->isDirtyTexCoords());
    sprite->updateQuad();
    sprite->setRect({0, 0, 8, 4});
    sprite->setFlipX(false);
    sprite->setFlipY(false);
    sprite->setTextureRotationType(Sprite::ROTATION_0);
    EXPECT_FALSE(sprite->isDirtyTexCoords());
    sprite->setRect({0, 0, 4, 2});
    EXPECT_TRUE(sprite->isDirtyTexCoords());
    EXPECT_EQ(sprite->getContentSize(), (Vec2f{4, 2}));
}

TEST_F(SpriteTest, WhatCannotBeShownIsRefusedOrHarmless) {
    Sprite* sprite = createRef<Sprite>([](Sprite& s) { return !s.init(nullptr, false); });
    ASSERT_NE(sprite, nullptr);
    EXPECT_FALSE(sprite->init(std::string("zv_res/no_such_picture.png")));
    EXPECT_EQ(cornersOf(sprite), Corners(4)) << "nothing to map yet";
    EXPECT_TRUE(sprite->isDirtyTexCoords());
    sprite->onDrawSelf(Mat4::IDENTITY);
    EXPECT_EQ(sprite->getTexture(4), nullptr);
    sprite->setTexture(textureOf(2, 2), 9, nullptr);
    sprite->setTexture(nullptr, 0, nullptr);
    EXPECT_EQ(sprite->getValidTextureCount(), 0);

    Texture2D* without = createRef<Texture2D>([](Texture2D& t) {
        return t.init(0U, {0, 0}, PXFORMAT_RGBA8888, false);
    });
    ASSERT_TRUE(sprite->init(without, {1, 1, 5, 5}, false));
    EXPECT_EQ(cornersOf(sprite), Corners(4)) << "a texture without extent has no coordinates but 0";

    Program* broken = Program::create("void main() { nonsense }", "void main() { nonsense }");
    PoisonedTarget target(4, 4);
    Sprite* shown = spriteOf(textureOf(4, 4));
    shown->setProgram(broken);
    EXPECT_EQ(target.draw(shown), Picture(4, 4, kPoison));
}

TEST_F(SpriteTest, ReplacingReleasesFirstAndTheLastHolderLosesTheTexture) {
    Texture2D* kept = textureOf(2, 2);
    Texture2D* next = textureOf(2, 2);
    Sprite* sprite = spriteOf(kept);
    sprite->setTexture(kept, 1, nullptr);
    EXPECT_EQ(kept->getRefCount(), 3U);
    sprite->setTexture(kept, {0, 0, 1, 1});
    sprite->setTexture(kept, 1, nullptr);
    EXPECT_EQ(kept->getRefCount(), 3U);
    EXPECT_EQ(sprite->getValidTextureCount(), 2);
    sprite->setTexture(next, 0, nullptr);
    EXPECT_EQ(kept->getRefCount(), 2U);
    EXPECT_EQ(sprite->getTexture(0), next);

    sprite->retain();
    sprite->setTexture(nullptr, 1, nullptr);
    drainPool();
    ASSERT_EQ(next->getRefCount(), 1U);
    sprite->setTexture(next, {0, 0, 1, 1});
    EXPECT_EQ(sprite->getTexture(0), nullptr) << "it died when it was released, before it could be retained";
    sprite->onDrawSelf(Mat4::IDENTITY);
    sprite->release();
}

TEST_F(SpriteTest, MixInsReplaceWhatTheyHoldOnlyWhenItDiffers) {
    struct Holder : IFrameBuffer {};
    FrameBuffer* first = FrameBuffer::create();
    FrameBuffer* second = FrameBuffer::create();
    {
        Holder holder;
        holder.setFrameBuffer(first);
        holder.setFrameBuffer(first);
        EXPECT_EQ(first->getRefCount(), 2U);
        {
            Holder copy(holder);
            EXPECT_EQ(copy.getFrameBuffer(), first);
            EXPECT_EQ(first->getRefCount(), 2U);
            copy.setFrameBuffer(second);
            EXPECT_EQ(first->getRefCount() + second->getRefCount(), 4U);
        }
        EXPECT_EQ(first->getRefCount() + second->getRefCount(), 3U);
        holder.setFrameBuffer(second);
        EXPECT_EQ(first->getRefCount(), 1U);
        Holder assigned;
        assigned.setFrameBuffer(first);
        assigned = holder;
        EXPECT_EQ(first->getRefCount(), 1U) << "an assignment gives up what the target owned";
    }
    EXPECT_EQ(second->getRefCount(), 1U);
}

TEST_F(SpriteTest, ACopyDrawsTheSameAndReleasesNothing) {
    PoisonedTarget target(6, 4);
    Texture2D* texture = textureOf(6, 4);
    Sprite* sprite = spriteOf(texture);
    const Picture shown = target.draw(sprite);
    Program* program = sprite->getProgram();
    const unsigned before = texture->getRefCount() + program->getRefCount();
    {
        Sprite copy(*sprite);
        copy.retain();  // the pool below may not be the last to let go
        EXPECT_EQ(target.draw(&copy), shown);
        copy.setFlipX(true);
        EXPECT_NE(target.draw(&copy), shown);
        EXPECT_EQ(target.draw(sprite), shown) << "a copy does not write into the buffers of the other";
        Sprite assigned;
        assigned = copy;
        assigned.setTexture(texture, 1, nullptr);
        EXPECT_EQ(texture->getRefCount() + program->getRefCount(), before + 1);
    }
    EXPECT_EQ(texture->getRefCount() + program->getRefCount(), before);
    EXPECT_EQ(target.draw(sprite), shown);
}

TEST_F(SpriteTest, TheSecondIdenticalFrameOnlyDraws) {
    ZV_NEEDS_RECORDER();
    PoisonedTarget target(4, 4);
    Scene* scene = Scene::create();
    scene->setViewPort({0, 0, 4, 4});
    scene->addChild(spriteOf(textureOf(4, 4)));
    scene->render();
    GLCallRecorder recorder;
    const AllocationCounter allocations;
    scene->render();
    EXPECT_EQ(allocations.allocations(), 0U);
    EXPECT_EQ(recorder.countDraws(), 1U);
    EXPECT_EQ(recorder.count("glUseProgram"), 1U);
    EXPECT_EQ(recorder.count("glBindTexture"), 1U);
    EXPECT_EQ(recorder.count("glBufferData") + recorder.countPrefix("glUniform") +
                  recorder.countObjectCalls() + recorder.count("glEnable") + recorder.count("glDisable") +
                  recorder.countPrefix("glGet"),
              0U)
        << recorder.summary();
    if (hasVertexArrays()) {
        EXPECT_EQ(recorder.countPrefix("glVertexAttribPointer"), 0U);
        EXPECT_EQ(recorder.count("glBindVertexArray"), 2U);
        EXPECT_LE(recorder.total(), 10U) << recorder.summary();
    } else {
        EXPECT_EQ(recorder.count("glVertexAttribPointer"), 2U) << "the layout is set anew";
        EXPECT_EQ(recorder.countPrefix("glBindVertexArray"), 0U);
    }
}

TEST_F(SpriteTest, LeavesNothingBoundBehind) {
    PoisonedTarget target(4, 4);
    Sprite* sprite = spriteOf(textureOf(4, 4));
    T2F_Quad coords;
    sprite->setTexture(textureOf(4, 4), 2, &coords);
    target.draw(sprite);
    RenderState* state = engine->getRenderState();
    EXPECT_EQ(state->getCurVao() + state->getCurVbo(), 0U);
    GLint bound = -1;
    for (const int binding : {GL_ARRAY_BUFFER_BINDING, GL_ELEMENT_ARRAY_BUFFER_BINDING}) {
        glGetIntegerv(static_cast<GLenum>(binding), &bound);
        EXPECT_EQ(bound, 0);
    }
    if (hasVertexArrays()) {
        glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &bound);
        EXPECT_EQ(bound, 0);
        return;
    }
    for (const GLuint attribute : {0U, 10U, 11U, 12U, 13U}) {
        glGetVertexAttribiv(attribute, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &bound);
        EXPECT_EQ(bound, 0) << attribute;
    }
}

TEST_F(SpriteTest, UploadsGrowWithTheCoordinateSetsAndArePaddedWithZeros) {
    ZV_NEEDS_RECORDER();
    PoisonedTarget target(4, 4);
    Sprite* sprite = spriteOf(textureOf(4, 4));
    T2F_Quad second{{{1, 2}, {3, 4}, {5, 6}, {7, 8}}};
    sprite->setTexture(textureOf(4, 4), 1, nullptr);
    sprite->setTexture(textureOf(4, 4), 2, &second);
    GLCallRecorder recorder;
    target.draw(sprite);
    auto uploads = recorder.callsOf("glBufferData");
    ASSERT_EQ(uploads.size(), 2U);
    EXPECT_EQ(sizeOf(uploads[0]), 64);
    EXPECT_EQ(sizeOf(uploads[1]), 32) << "only slot 2 has coordinates, so they lie first";
    const auto binds = recorder.callsOf("glBindBuffer");
    const auto vertexBuffer = static_cast<GLuint>(binds.at(0).integer(1));
    const auto coordBuffer = static_cast<GLuint>(binds.at(1).integer(1));

    recorder.clear();
    T2F_Quad third{{{9, 9}, {9, 9}, {9, 9}, {9, 9}}};
    sprite->setTexture(textureOf(4, 4), 3, &third);
    target.draw(sprite);
    uploads = recorder.callsOf("glBufferData");
    ASSERT_EQ(uploads.size(), 2U);
    EXPECT_EQ(sizeOf(uploads[0]), 128);
    EXPECT_EQ(sizeOf(uploads[1]), 64);
    float values[32];
    glBindBuffer(GL_ARRAY_BUFFER, vertexBuffer);
    glGetBufferSubData(GL_ARRAY_BUFFER, 0, sizeof(values), values);
    const float quad[16] = {-1, 1, 0, 0, -1, -1, 0, 1, 1, 1, 1, 0, 1, -1, 1, 1};
    for (int i = 0; i < 32; ++i) {
        EXPECT_EQ(values[i], i < 16 ? quad[i] : 0.0F) << i;
    }
    glBindBuffer(GL_ARRAY_BUFFER, coordBuffer);
    glGetBufferSubData(GL_ARRAY_BUFFER, 0, 64, values);
    EXPECT_EQ(values[0], 1.0F);
    EXPECT_EQ(values[7], 8.0F);
    EXPECT_EQ(values[8], 9.0F);
    glBindBuffer(GL_ARRAY_BUFFER, 0);

    // With one set less the buffer keeps its size: a recorded layout still points at the second set.
    sprite->setTexture(textureOf(4, 4), 3, nullptr);
    sprite->setFlipX(true);
    recorder.clear();
    target.draw(sprite);
    uploads = recorder.callsOf("glBufferData");
    ASSERT_EQ(uploads.size(), 2U);
    EXPECT_EQ(sizeOf(uploads[0]), 96);
    EXPECT_EQ(sizeOf(uploads[1]), 64);
}

TEST_F(SpriteTest, DeathDeletesTheBuffersAndLeavesTheVertexArrayForReuse) {
    ZV_NEEDS_RECORDER();
    PoisonedTarget target(4, 4);
    Texture2D* texture = textureOf(4, 4);
    T2F_Quad coords;
    GLCallRecorder recorder;
    for (int i = 0; i < 3; ++i) {
        Sprite* sprite = new Sprite;
        ASSERT_TRUE(sprite->init(texture, false));
        sprite->setTexture(texture, 3, &coords);
        target.draw(sprite);
        sprite->release();
    }
    EXPECT_EQ(recorder.count("glGenBuffers"), 6U);
    EXPECT_EQ(recorder.count("glDeleteBuffers"), 6U);
    EXPECT_EQ(recorder.count("glGenVertexArrays"), hasVertexArrays() ? 1U : 0U);
    EXPECT_EQ(recorder.count("glDeleteVertexArrays"), 0U);
    EXPECT_EQ(texture->getRefCount(), 1U);
    // What the dead sprites had enabled does not reach the next one's drawing.
    Sprite* plain = spriteOf(texture);
    EXPECT_EQ(target.draw(plain), Picture::noise(4, 4));
}

TEST_F(SpriteTest, BlendingChangesOnlyWithTheBlendFunction) {
    ZV_NEEDS_RECORDER();
    PoisonedTarget target(4, 4);
    Sprite* sprite = spriteOf(textureOf(4, 4));
    GLCallRecorder recorder;
    const auto drawn = [&](const BlendFunc& blend) {
        sprite->setBlendFunc(blend);
        recorder.clear();
        sprite->onDrawSelf(Mat4::IDENTITY);
        return recorder.callsOf("glEnable").size() * 100 + recorder.callsOf("glBlendFunc").size() * 10 +
               recorder.callsOf("glDisable").size();
    };
    EXPECT_EQ(drawn(BlendFunc::DISABLE), 0U);
    EXPECT_EQ(drawn(BlendFunc::ADDITIVE), 110U);
    EXPECT_EQ(drawn(BlendFunc::ADDITIVE), 0U);
    EXPECT_EQ(drawn(BlendFunc::ALPHA_PREMULTIPLIED), 10U);
    EXPECT_EQ(drawn(BlendFunc::DISABLE), 1U);
}

}  // namespace
}  // namespace zv::test
