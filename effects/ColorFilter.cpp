#include "effects/ColorFilter.h"

#include "core/RefCreate.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/Texture2D.h"

namespace zv {

namespace {

constexpr unsigned short kLargeWidth = 512;

/// The filter's own picture, whatever the stages before it carry.
constexpr PxFormat kFormat = PXFORMAT_RGB888;

}  // namespace

ColorFilter* ColorFilter::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                 const std::string& imagePath) {
    return createRef<ColorFilter>([&](ColorFilter& node) { return node.init(size, frameBuffer, imagePath); });
}

ColorFilter* ColorFilter::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                 FilterType type) {
    return createRef<ColorFilter>([&](ColorFilter& node) { return node.init(size, frameBuffer, type); });
}

bool ColorFilter::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                       const std::string& imagePath) {
    if (!ColorTableNode::init(size, frameBuffer, kFormat) || !loadTable(imagePath)) {
        return false;
    }
    useLayout(getTexture(1)->getSize().x == kLargeWidth);
    return true;
}

bool ColorFilter::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, FilterType type) {
    if (!ColorTableNode::init(size, frameBuffer, kFormat)) {
        return false;
    }
    useLayout(type == FILTER_TYPE_512);
    return true;
}

void ColorFilter::useLayout(bool large) {
    setTableProgram(large ? "ZvColorTable512Filter.frag" : "ZvColorTable64Filter.frag");
    setIntensity(mIntensity);
}

void ColorFilter::setFilterImage(const std::string& path) {
    loadTable(path);
}

void ColorFilter::setIntensity(float intensity) {
    mIntensity = intensity;
    if (Program* program = getProgram()) {
        program->setUniformValue("intensity", intensity);
    }
}

void ColorFilter::setImageDirection(bool bottomRowFirst) {
    if (Program* program = getProgram()) {
        // Straight to GL, not with the next draw. The program remembers the value and sends only a new one.
        program->use();
        program->setUniform("image_direction", bottomRowFirst ? 1 : 0);
    }
}

}  // namespace zv
