#include "effects/SkinWhitingNode.h"

#include "core/FileUtil.h"
#include "core/RefCreate.h"
#include "core/ZVLog.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"

namespace zv {

namespace {

constexpr const char* kLookup = "zv_res/lookups/kel_white.png";

}  // namespace

SkinWhitingNode* SkinWhitingNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                         PxFormat format) {
    return createRef<SkinWhitingNode>(
        [&](SkinWhitingNode& node) { return node.init(size, frameBuffer, format); });
}

bool SkinWhitingNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!ColorTableNode::init(size, frameBuffer, format)) {
        return false;
    }
    setTableProgram("ZvBeautyColorTableFilter.frag");
    if (!loadTable(kLookup)) {
        // The node is made all the same: a chain that was set up with it goes on, without whitening.
        FileUtil* files = FileUtil::getInstance();
        zvLog("skin whitening has no effect: cannot load %s",
              files != nullptr ? files->getFullFilePath(kLookup).c_str() : kLookup);
    }
    setSkinWhitening(mSkinWhitening);
    return true;
}

void SkinWhitingNode::setSkinWhitening(float strength) {
    mSkinWhitening = strength;
    if (Program* program = getProgram()) {
        program->setUniformValue("uniAlpha", strength);
    }
}

}  // namespace zv
