#pragma once

#include <algorithm>

#include "StickerFiles.h"
#include "algorithm/AlgEngine.h"
#include "core/Mat4.h"
#include "gltf/GtSticker.h"
#include "support/GLCallRecorder.h"
#include "support/LogCapture.h"
#include "support/MediaTest.h"
#include "support/PictureCompare.h"
#include "support/SomeFace.h"

namespace zv::test {

using gltf::GtSticker;

/// A media engine over a grey input, with stickers on top.
class StickerTest : public MediaTest {
protected:
    static constexpr Pixel kGrey{100, 100, 100, 255};
    using Faces = std::vector<std::vector<Mat4>>;

    void SetUp() override {
        MediaTest::SetUp();
        start(Picture(kWidth, kHeight, kGrey));
    }
    void start(const Picture& input) { media->init(makeSprite(input), sizeOf(input), nullptr, false); }
    GtSticker* show(const std::string& folder) {
        GtSticker* sticker = GtSticker::create(folder);
        EXPECT_NE(sticker, nullptr);
        media->addSticker(sticker);
        return sticker;
    }
    void detect(const Faces& faces) {
        detector->told.mats.resize(faces.size());
        for (std::size_t i = 0; i < faces.size(); ++i) {
            detector->told.mats[i].resize(faces[i].size());
            std::copy(faces[i].begin(), faces[i].end(), detector->told.mats[i].get(0));
        }
        media->getAlgEngine()->getKelNN()->setDetector(detector);
    }
    static Mat4 place(float scale, float x, float y) {
        Mat4 matrix;
        matrix.set(scale, 0, 0, x, 0, scale, 0, y, 0, 0, scale, 0, 0, 0, 0, 1);
        return matrix;
    }
    /// The grey input with rectangles in it: left, top, width, height in pixels from the top left.
    struct Box {
        int x, y, w, h;
        Pixel colour;
    };
    static Picture expected(const std::vector<Box>& boxes) {
        return Picture::make(kWidth, kHeight, [&](int x, int y) {
            Pixel pixel = kGrey;
            for (const Box& box : boxes)
                if (x >= box.x && x < box.x + box.w && y >= box.y && y < box.y + box.h)
                    pixel = box.colour;
            return pixel;
        });
    }

    std::shared_ptr<ToldDetector> detector = std::make_shared<ToldDetector>();
};

}  // namespace zv::test
