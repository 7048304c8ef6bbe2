#include "scene/Sprite.h"

#include <GL/glew.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#include "core/RefCreate.h"
#include "gl/AttribIndex.h"
#include "gl/ConfigGL.h"
#include "gl/DebugLabel.h"
#include "gl/Program.h"
#include "gl/ProgramCache.h"
#include "gl/RenderState.h"
#include "gl/Texture2D.h"
#include "scene/ZVEngine.h"

namespace zv {

namespace {

constexpr unsigned kVerticesNeedUpload = 1U << 0;
constexpr unsigned kFlipX = 1U << 1;
constexpr unsigned kFlipY = 1U << 2;
constexpr unsigned kTexCoordsDirty = 1U << 3;
constexpr unsigned kPositionsDirty = 1U << 4;
constexpr unsigned kFillMode = 1U << 5;

constexpr std::size_t kCoordSetBytes = sizeof(T2F_Quad);

bool hasVertexArrays() {
    return ConfigGL::getInstance()->getVersionGL() >= 300;
}

/// GL takes an offset into the bound buffer where it took a pointer once.
const void* bufferOffset(std::size_t bytes) {
    return reinterpret_cast<const void*>(bytes);  // NOLINT(performance-no-int-to-ptr)
}

AttribIndex::Enum texCoordAttrib(unsigned slot) {
    return static_cast<AttribIndex::Enum>(AttribIndex::TEXCOORD0 + slot);
}

TRect<float, float> wholeOf(const Texture2D* texture) {
    return texture ? texture->getRect() : TRect<float, float>();
}

/// A coordinate in texels as a part of the extent; 0 in a texture without extent.
float partOf(float texels, unsigned short extent) {
    return extent == 0 ? 0.0F : texels / static_cast<float>(extent);
}

/// Uploads into the buffer, which is made at the first time.
void fillBuffer(RenderState& state, unsigned int& buffer, std::size_t bytes, const void* data,
                const char* label) {
    const auto length = static_cast<std::int64_t>(bytes);
    if (buffer == 0) {
        buffer = state.genVbo(GL_ARRAY_BUFFER, length, data, GL_STATIC_DRAW);
        setDebugLabel(GL_BUFFER, buffer, label);
    } else {
        state.bufferData(buffer, GL_ARRAY_BUFFER, length, data, GL_STATIC_DRAW);
    }
}

}  // namespace

Sprite::Sprite() : mFlags(kTexCoordsDirty | kPositionsDirty | kFillMode) {}

Sprite::Sprite(const Sprite& other) : IBlend(other), IProgram(other), Node(other) {
    copyFields(other);
}

Sprite& Sprite::operator=(const Sprite& other) {
    if (this != &other) {
        IBlend::operator=(other);
        IProgram::operator=(other);
        copyFields(other);
        Node::operator=(other);
    }
    return *this;
}

void Sprite::copyFields(const Sprite& other) {
    mSlots = other.mSlots;
    mQuad = other.mQuad;
    mRect = other.mRect;
    mRotationType = other.mRotationType;
    mFlags = other.mFlags;
    setFlag(kVerticesNeedUpload, true);
}

Sprite::~Sprite() {
    for (TextureSlot& slot : mSlots) {
        slot.texture.set(nullptr);
    }
    for (const unsigned int buffer : {mVertexBuffer, mCoordBuffer}) {
        if (buffer != 0) {
            glDeleteBuffers(1, &buffer);
        }
    }
    if (mVertexArray != 0) {
        if (RenderState* state = RenderState::getCurrent()) {
            state->collectVao(mVertexArray);
        }
    }
}

bool Sprite::init() {
    ZVEngine* engine = ZVEngine::getCurrent();
    if (!engine) {
        return false;
    }
    setProgram(engine->getProgramCache()->get(Program::PROGRAM_POSITION_TEXTURE_NO_MVP));
    return true;
}

bool Sprite::init(Texture2D* texture, bool flipY) {
    return init(texture, wholeOf(texture), flipY);
}

bool Sprite::init(Texture2D* texture, const TRect<float, float>& rect, bool flipY) {
    if (!texture || !init()) {
        return false;
    }
    setFlipY(flipY);
    setTexture(texture, rect);
    checkTextureRectangle();
    return true;
}

bool Sprite::init(const std::string& file) {
    return init(createRef<Texture2D>([&](Texture2D& texture) { return texture.init(file); }), false);
}

Texture2D* Sprite::getTexture(unsigned char index) {
    return index < kSlots ? mSlots[index].texture.get() : nullptr;
}

void Sprite::setTexture(Texture2D* texture, const TRect<float, float>& rect) {
    mSlots[0].texture.replace(texture);
    setRect(rect);
}

void Sprite::setTexture(Texture2D* texture, unsigned char index, T2F_Quad* coords) {
    if (index == 0) {
        setTexture(texture, wholeOf(texture));
        return;
    }
    if (index >= kSlots) {
        return;
    }
    TextureSlot& slot = mSlots[index];
    slot.texture.replace(texture);
    slot.hasCoords = coords != nullptr;
    if (coords) {
        slot.coords = *coords;
        setFlag(kVerticesNeedUpload, true);
    }
}

unsigned char Sprite::getValidTextureCount() const {
    const auto filled = [](const TextureSlot& slot) { return slot.texture.get() != nullptr; };
    return static_cast<unsigned char>(std::count_if(mSlots.begin(), mSlots.end(), filled));
}

void Sprite::setRect(const TRect<float, float>& rect) {
    if (rect != mRect) {
        setFlag(kTexCoordsDirty, true);
        mRect = rect;
        setContentSize(rect.size);
    }
}

void Sprite::setFlag(unsigned mask, bool on) {
    mFlags = static_cast<std::uint16_t>(on ? mFlags | mask : mFlags & ~mask);
}

void Sprite::changeFlag(unsigned mask, bool on, unsigned dirty) {
    if (isOn(mask) != on) {
        setFlag(mask, on);
        setFlag(dirty, true);
    }
}

void Sprite::setFlipX(bool flip) {
    changeFlag(kFlipX, flip, kTexCoordsDirty);
}

bool Sprite::isFlipX() const {
    return isOn(kFlipX);
}

void Sprite::setFlipY(bool flip) {
    changeFlag(kFlipY, flip, kTexCoordsDirty);
}

bool Sprite::isFlipY() const {
    return isOn(kFlipY);
}

void Sprite::setTextureRotationType(RotationType type) {
    if (type != mRotationType) {
        mRotationType = type;
        setFlag(kTexCoordsDirty, true);
    }
}

void Sprite::setFillMode(bool fill) {
    changeFlag(kFillMode, fill, kPositionsDirty);
}

bool Sprite::isFillMode() const {
    return isOn(kFillMode);
}

bool Sprite::isDirtyTexCoords() const {
    return isOn(kTexCoordsDirty);
}

void Sprite::updateQuad() {
    if (isOn(kTexCoordsDirty)) {
        updateTexCoords();
    }
    if (isOn(kPositionsDirty)) {
        updatePositions();
    }
}

void Sprite::updateTexCoords() {
    Texture2D* texture = getTexture(0);
    if (!texture) {
        return;
    }
    const TVec<2, unsigned short> size = texture->getSize();
    float left = partOf(mRect.origin.x, size.x);
    float right = partOf(mRect.size.x, size.x);  // a far edge, not a width: see setRect()
    float top = partOf(mRect.origin.y, size.y);
    float bottom = partOf(mRect.size.y, size.y);
    if (isOn(kFlipX)) {
        std::swap(left, right);
    }
    if (isOn(kFlipY)) {
        std::swap(top, bottom);
    }
    const auto assign = [this](TVec<2, float> v0, TVec<2, float> v1, TVec<2, float> v2, TVec<2, float> v3) {
        mQuad.vertices[0].texCoords = v0;
        mQuad.vertices[1].texCoords = v1;
        mQuad.vertices[2].texCoords = v2;
        mQuad.vertices[3].texCoords = v3;
    };
    const TVec<2, float> leftTop(left, top), leftBottom(left, bottom);
    const TVec<2, float> rightTop(right, top), rightBottom(right, bottom);
    switch (mRotationType) {
        case ROTATION_0:
            assign(leftTop, leftBottom, rightTop, rightBottom);
            break;
        case ROTATION_90:
            assign(leftBottom, rightBottom, leftTop, rightTop);
            break;
        case ROTATION_180:
            assign(rightBottom, rightTop, leftBottom, leftTop);
            break;
        case ROTATION_270:
            assign(rightTop, leftTop, rightBottom, leftBottom);
            break;
        default:
            break;
    }
    setFlag(kTexCoordsDirty, false);
    setFlag(kVerticesNeedUpload, true);
}

void Sprite::updatePositions() {
    const TVec<2, float> scale = getScale();
    TVec<2, float> origin(-1.0F, -1.0F);
    TVec<2, float> size(2.0F * scale.x, 2.0F * scale.y);
    if (!isOn(kFillMode)) {
        origin = getPosition();
        size = {scale.x * getContentSize().x, scale.y * getContentSize().y};
    }
    mQuad.vertices[0].vertices = {origin.x, origin.y + size.y};
    mQuad.vertices[1].vertices = origin;
    mQuad.vertices[2].vertices = {origin.x + size.x, origin.y + size.y};
    mQuad.vertices[3].vertices = {origin.x + size.x, origin.y};
    setFlag(kPositionsDirty, false);
    setFlag(kVerticesNeedUpload, true);
}

T2F_Quad Sprite::getTexCoords() {
    updateQuad();
    T2F_Quad coords;
    for (unsigned i = 0; i < 4; ++i) {
        coords.texCoords[i] = mQuad.vertices[i].texCoords;
    }
    return coords;
}

void Sprite::checkTextureRectangle() {
    const Texture2D* texture = mSlots[0].texture.get();
    if (!texture || texture->getTarget() != GL_TEXTURE_RECTANGLE) {
        return;
    }
    Program* program =
        Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderTextureRectPosition.frag");
    RenderState* state = RenderState::getCurrent();
    if (!program || !state) {
        return;
    }
    setProgram(program);
    state->useProgram(program);
    const float size[2] = {static_cast<float>(texture->getSize().x),
                           static_cast<float>(texture->getSize().y)};
    program->setUniform2fv("texSize", size, 1);
}

bool Sprite::isPixelForPixel() {
    const Texture2D* texture = getTexture(0);
    const RenderState* state = RenderState::getCurrent();
    if (!texture || !texture->isOwner() || !state || !state->hasViewPort() ||
        state->getCurViewPort().size != texture->getSize()) {
        return false;
    }
    updateQuad();
    const auto& corners = mQuad.vertices;
    const TVec<2, float> first = corners[0].texCoords, last = corners[3].texCoords;
    const auto isEnd = [](float coordinate) { return coordinate == 0.0F || coordinate == 1.0F; };
    // Turned by a quarter, rows become columns: that keeps the size of a square only, which need not be told
    // apart.
    const bool isUpright = mRotationType == ROTATION_0 || mRotationType == ROTATION_180;
    return isUpright && corners[0].vertices == TVec<2, float>(-1.0F, 1.0F) &&
           corners[3].vertices == TVec<2, float>(1.0F, -1.0F) && isEnd(first.x) && isEnd(first.y) &&
           isEnd(last.x) && isEnd(last.y) && first.x != last.x && first.y != last.y;
}

void Sprite::onDrawSelf(const Mat4&) {
    Program* program = getProgram();
    RenderState* state = RenderState::getCurrent();
    if (!getTexture(0) || !state || !program || program->getName() == 0) {
        return;  // drawing with program 0 would leave it to GL what appears
    }
    updateQuad();
    state->useProgram(program);
    program->setUniformsForBuiltins();
    if (isOn(kVerticesNeedUpload)) {
        upload(*state);
    }
    bindLayout(*state);
    for (unsigned i = 0; i < kSlots; ++i) {
        if (Texture2D* texture = mSlots[i].texture.get()) {
            texture->active(i);
        }
    }
    state->setBlend(getBlendFunc());
    if (program->isPointwise() && isPixelForPixel()) {
        state->drawArraysUnfiltered(GL_TRIANGLE_STRIP, 0, 4);  // at half the price of a filtered fetch
    } else {
        state->drawArrays(GL_TRIANGLE_STRIP, 0, 4);
    }
    unbind(*state);
}

void Sprite::upload(RenderState& state) {
    T2F_Quad packed[kSlots];
    unsigned count = 0;
    for (const TextureSlot& slot : mSlots) {
        if (usesOwnCoords(slot)) {
            packed[count++] = slot.coords;
        }
    }
    // The buffer grows with the coordinate sets although the quad always has 64 bytes; the rest is zero.
    unsigned char vertices[(kSlots + 2) * kCoordSetBytes] = {};
    std::memcpy(vertices, &mQuad, sizeof(mQuad));
    const std::size_t bytes = mVertexBuffer == 0 ? sizeof(mQuad) : (count + 2) * kCoordSetBytes;
    fillBuffer(state, mVertexBuffer, bytes, vertices, "sprite quad");
    if (count > 0) {
        // Never smaller than before: a recorded layout may still point at sets that have gone.
        mPackedSets = std::max(mPackedSets, static_cast<std::uint8_t>(count));
        fillBuffer(state, mCoordBuffer, mPackedSets * kCoordSetBytes, packed, "sprite coordinates");
    }
    setFlag(kVerticesNeedUpload, false);
}

void Sprite::bindLayout(RenderState& state) {
    if (mVertexArray != 0) {
        state.bindVao(mVertexArray);
        return;
    }
    mVertexArray = state.genAndBindVao();  // stays 0 below 3.0: there the layout is set at every draw
    state.bindVbo(GL_ARRAY_BUFFER, mVertexBuffer);
    constexpr int stride = sizeof(V2F_T2F);
    state.vertexAttribPointer(AttribIndex::POSITION, 2, GL_FLOAT, GL_FALSE, stride,
                              bufferOffset(offsetof(V2F_T2F, vertices)));
    state.vertexAttribPointer(AttribIndex::TEXCOORD0, 2, GL_FLOAT, GL_FALSE, stride,
                              bufferOffset(offsetof(V2F_T2F, texCoords)));
    if (mCoordBuffer == 0) {
        return;
    }
    state.bindVbo(GL_ARRAY_BUFFER, mCoordBuffer);
    std::size_t place = 0;
    for (unsigned i = 0; i < kSlots; ++i) {
        if (usesOwnCoords(mSlots[i])) {
            state.vertexAttribPointer(texCoordAttrib(i), 2, GL_FLOAT, GL_FALSE, sizeof(TVec<2, float>),
                                      bufferOffset(kCoordSetBytes * place++));
        }
    }
}

void Sprite::unbind(RenderState& state) {
    if (!hasVertexArrays()) {
        // Left enabled, they would point into this sprite's buffers after it is gone.
        glDisableVertexAttribArray(AttribIndex::POSITION);
        glDisableVertexAttribArray(AttribIndex::TEXCOORD0);
        for (unsigned i = 1; i < kSlots; ++i) {
            if (usesOwnCoords(mSlots[i])) {
                glDisableVertexAttribArray(static_cast<unsigned>(texCoordAttrib(i)));
            }
        }
    }
    state.unBindVaoVbo();
    state.bindVbo(GL_ELEMENT_ARRAY_BUFFER, 0);
}

}  // namespace zv
