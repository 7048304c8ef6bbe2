#include "face/FaceCamera.h"

#include <algorithm>
#include <cmath>

#include "gl/BlendFunc.h"
#include "gl/Texture2D.h"
#include "scene/RenderTexture.h"
#include "scene/Scene.h"
#include "scene/Sprite.h"

namespace zv {

namespace {

constexpr unsigned short kLargeSide = 512;  // pixels: for detection
constexpr unsigned short kSmallSide = 256;  // pixels: for the mesh of a face
constexpr std::size_t kPixelBytes = 4;

std::size_t bytesOf(const Size16& size) {
    return kPixelBytes * size.x * size.y;
}

/// The part of the first texture that the input shows, as a sprite takes it, and whether it lies on its side.
struct Shown {
    explicit Shown(Sprite& input) {
        const T2F_Quad quad = input.getTexCoords();
        const Vec2f &leftTop = quad.texCoords[0], &leftBottom = quad.texCoords[1],
                    &rightTop = quad.texCoords[2];
        const Size16 size = input.getTexture(0)->getSize();
        const auto width = static_cast<float>(size.x), height = static_cast<float>(size.y);
        isTurned = leftTop.x != leftBottom.x;
        if (isTurned) {
            rect = {leftTop.x * width, rightTop.y * height, leftBottom.x * width, leftTop.y * height};
        } else {
            rect = {leftTop.x * width, leftTop.y * height, rightTop.x * width, leftBottom.y * height};
        }
    }

    TRect<float, float> rect;
    bool isTurned = false;
};

}  // namespace

bool FaceShots::view(const FaceArea& area, int, FaceImage& image) {
    const float x = (area.left + area.right) / 2.0F, y = (area.top + area.bottom) / 2.0F;
    const Shot* best = nullptr;
    for (const Shelf* shelf : {&mLarge, &mSmall}) {
        for (std::size_t i = 0; i < shelf->count; ++i) {
            const FaceArea& shown = shelf->shots[i].image.area;
            // What shows less than half of the area is of no use.
            const bool shows = x >= shown.left && x <= shown.right && y >= shown.top && y <= shown.bottom &&
                               shown.width() >= area.width() / 2.0F;
            if (shows && (best == nullptr || shown.width() < best->image.area.width())) {
                best = &shelf->shots[i];
            }
        }
    }
    if (best != nullptr) {
        image = best->image;
    }
    return best != nullptr;
}

FaceShots::FaceShots() {
    // What most frames need, so that nothing is allocated on the way.
    mLarge.shots.resize(2);
    mSmall.shots.resize(1);
    for (Shot& shot : mLarge.shots) {
        shot.bytes.resize(bytesOf({kLargeSide, kLargeSide}));
    }
    mSmall.shots[0].bytes.resize(bytesOf({kSmallSide, kSmallSide}));
}

FaceShots::Shelf& FaceShots::shelfOf(const Size16& size) {
    return std::max(size.x, size.y) > kSmallSide ? mLarge : mSmall;
}

UniqueDataPtr<unsigned char>& FaceShots::room(const Size16& size) {
    Shelf& shelf = shelfOf(size);
    if (shelf.count == shelf.shots.size()) {
        shelf.shots.emplace_back();
    }
    UniqueDataPtr<unsigned char>& bytes = shelf.shots[shelf.count].bytes;
    if (bytes.size() == 0) {
        const unsigned short side = &shelf == &mLarge ? kLargeSide : kSmallSide;
        bytes.resize(bytesOf({side, side}));
    }
    if (bytes.size() != 0) {
        bytes.reset(bytes.get(0), bytesOf(size));  // the memory stays, whatever the count
    }
    return bytes;
}

const FaceImage& FaceShots::add(const Size16& size, const FaceArea& area) {
    Shelf& shelf = shelfOf(size);
    Shot& shot = shelf.shots[shelf.count++];
    const std::size_t row = kPixelBytes * size.x;
    shot.image = {shot.bytes.get(row * (size.y - std::size_t{1})),
                  size.x,
                  size.y,
                  static_cast<int>(kPixelBytes),
                  -static_cast<std::ptrdiff_t>(row),
                  area};
    return shot.image;
}

FaceCamera::FaceCamera() = default;

FaceCamera::~FaceCamera() = default;

bool FaceCamera::aim(Sprite* input, const Size16& picture) {
    Texture2D* texture = input != nullptr ? input->getTexture(0) : nullptr;
    mPicture = picture;
    if (texture == nullptr || picture.x == 0 || picture.y == 0 || texture->getSize().x == 0 ||
        texture->getSize().y == 0) {
        return false;
    }
    const bool isOther = mSprite.get() == nullptr || texture->getTarget() != mTextureTarget ||
                         texture->getSize() != mTextureSize;
    return (!isOther || initSprite(*input)) && syncSprite(*input);
}

bool FaceCamera::initSprite(Sprite& input) {
    Texture2D* texture = input.getTexture(0);
    if (mSprite.get() == nullptr) {
        auto* sprite = new Sprite;
        sprite->autorelease();
        mSprite.set(sprite);
        mScene.set(Scene::create());
        mScene.get()->addChild(sprite);
        sprite->setBlendFunc(BlendFunc::DISABLE);
    }
    mTextureTarget = texture->getTarget();
    mTextureSize = texture->getSize();
    return mSprite.get()->init(texture, false);
}

/// Same textures, same part of them, as the input shows at the moment.
bool FaceCamera::syncSprite(Sprite& input) {
    Sprite& sprite = *mSprite.get();
    const Shown shown(input);
    if (input.getTexture(0) != sprite.getTexture(0)) {
        sprite.setTexture(input.getTexture(0), shown.rect);
    }
    sprite.setRect(shown.rect);
    sprite.setTextureRotationType(shown.isTurned ? Sprite::ROTATION_90 : Sprite::ROTATION_0);
    bool hasPlanes = false;
    for (unsigned char slot = 1; slot < 4; ++slot) {
        Texture2D* plane = input.getTexture(slot);
        hasPlanes = hasPlanes || plane != nullptr;
        if (plane != sprite.getTexture(slot)) {
            sprite.setTexture(plane, slot, nullptr);
        }
    }
    if (hasPlanes) {
        sprite.setProgram(input.getProgram());
    }
    sprite.setContentSize({1.0F, 1.0F});  // so that the scale alone says how large the quad is
    return sprite.getProgram() != nullptr;
}

bool FaceCamera::prepare(Plate& plate, unsigned short side) {
    if (plate.target.get() != nullptr) {
        return true;
    }
    RenderTexture* target = RenderTexture::create({side, side}, nullptr, PXFORMAT_RGBA8888);
    if (target == nullptr || target->getRenderTarget() == nullptr) {
        return false;
    }
    target->setScene(mScene.get());
    plate.target.set(target);
    // The first read decides how large the buffers behind it are.
    target->getOutData(mNothing);
    return true;
}

bool FaceCamera::draw(Plate& plate, const FaceArea& area, int pixels) {
    const auto width = static_cast<float>(mPicture.x), height = static_cast<float>(mPicture.y);
    const FaceArea inside{std::max(area.left, 0.0F), std::max(area.top, 0.0F), std::min(area.right, width),
                          std::min(area.bottom, height)};
    const bool isLarge = pixels > kSmallSide;
    plate.size = {0, 0};
    if (!(inside.width() >= 1.0F && inside.height() >= 1.0F) ||
        !prepare(plate, isLarge ? kLargeSide : kSmallSide)) {
        return false;
    }
    Size16 size{kSmallSide, kSmallSide};
    if (isLarge) {
        const float scale = kLargeSide / std::max(inside.width(), inside.height());
        size = {static_cast<unsigned short>(std::max(inside.width() * scale, 1.0F)),
                static_cast<unsigned short>(std::max(inside.height() * scale, 1.0F))};
    }
    // The quad is the whole picture, placed so that the area covers the view port; the rest is clipped.
    Sprite& sprite = *mSprite.get();
    const Vec2f scale(2.0F * width / inside.width(), 2.0F * height / inside.height());
    sprite.setScale(scale);
    sprite.setPosition(
        {-1.0F - inside.left / width * scale.x, -1.0F - (height - inside.bottom) / height * scale.y});
    sprite.setFillMode(true);  // positions are read again when this changes
    sprite.setFillMode(false);
    mScene.get()->setViewPort({0, 0, size.x, size.y});
    plate.target.get()->renderToTexture();
    plate.area = inside;
    plate.size = size;
    return true;
}

/// Starts to read what is drawn, and takes what the read before has got, as much as there is room for.
void FaceCamera::read(Plate& plate, UniqueDataPtr<unsigned char>& finished) {
    const Size16 started = plate.size.x != 0 ? plate.size : Size16{1, 1};
    plate.target.get()->getOutData(finished, started, PXFORMAT_RGBA8888);
}

bool FaceCamera::view(const FaceArea& area, int pixels, FaceImage& image) {
    Plate& plate = pixels > kSmallSide ? mLarge[0] : mSmall[0];
    if (mSprite.get() == nullptr || !draw(plate, area, pixels)) {
        return false;
    }
    mShot.clear();
    UniqueDataPtr<unsigned char>& room = mShot.room(plate.size);
    read(plate, mNothing);
    const Size16 drawn = plate.size;
    plate.size = {0, 0};  // the second read only fetches what the first one started
    read(plate, room);
    if (room.size() == 0) {
        return false;
    }
    image = mShot.add(drawn, plate.area);
    return true;
}

void FaceCamera::exchange(const std::vector<FaceTracker::Wish>& wishes, FaceShots& shots) {
    shots.clear();
    const auto turn = [&](Plate& plate, const FaceTracker::Wish* wish) {
        const FaceArea area = plate.area;
        const Size16 finished = plate.size;
        plate.size = {0, 0};
        const bool isDrawn = wish != nullptr && draw(plate, wish->area, wish->pixels);
        if (plate.target.get() == nullptr || (!isDrawn && finished.x == 0)) {
            return;
        }
        UniqueDataPtr<unsigned char>& room = finished.x != 0 ? shots.room(finished) : mNothing;
        read(plate, room);
        if (room.size() != 0) {
            shots.add(finished, area);
        }
    };
    std::size_t large = 0, small = 0;
    for (const FaceTracker::Wish& wish : wishes) {
        if (wish.pixels > kSmallSide && large < kLargePlates) {
            turn(mLarge[large++], &wish);
        } else if (wish.pixels <= kSmallSide && small < kSmallPlates) {
            turn(mSmall[small++], &wish);
        }
    }
    while (large < kLargePlates) {
        turn(mLarge[large++], nullptr);
    }
    while (small < kSmallPlates) {
        turn(mSmall[small++], nullptr);
    }
}

}  // namespace zv
