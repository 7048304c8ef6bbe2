#include "effects/ColorTableNode.h"

#include <GL/glew.h>

#include "core/RefCreate.h"
#include "gl/Program.h"
#include "gl/Texture2D.h"

namespace zv {

ColorTableNode::ColorTableNode() = default;

ColorTableNode::~ColorTableNode() = default;

bool ColorTableNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!RenderTexture::init(size, frameBuffer, format)) {
        return false;
    }
    mPlainProgram.set(getProgram());  // every sprite begins with it
    return true;
}

void ColorTableNode::onDrawSelf(const Mat4& matrix) {
    if (getTexture(1) != nullptr) {
        RenderTexture::onDrawSelf(matrix);
        return;
    }
    RefHolder<Program> own;
    own.set(getProgram());
    setProgram(mPlainProgram.get());
    RenderTexture::onDrawSelf(matrix);
    setProgram(own.get());
}

void ColorTableNode::setTableProgram(const char* fragmentFile) {
    Program* program = Program::createWithFile("ZvShaderTexturePosition.vert", fragmentFile);
    if (program != nullptr) {
        program->setPointwise(true);
    }
    setProgram(program);
}

bool ColorTableNode::loadTable(const std::string& path) {
    Texture2D* table = createRef<Texture2D>([&](Texture2D& texture) { return texture.init(path); });
    if (table == nullptr) {
        return false;
    }
    // The shaders read single texels; nearest filtering is what that costs least with.
    table->setTexParameters({GL_NEAREST, GL_NEAREST, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_EDGE}, true);
    setTexture(table, 1, nullptr);
    return true;
}

}  // namespace zv
