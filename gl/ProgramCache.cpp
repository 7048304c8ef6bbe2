#include "gl/ProgramCache.h"

namespace zv {

bool ProgramCache::init() {
    loadDefaultPrograms();
    return true;
}

void ProgramCache::loadDefaultPrograms() {
    Program* program =
        Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderTexturePosition.frag");
    if (program != nullptr) {
        program->setPointwise(true);
    }
    add(Program::PROGRAM_POSITION_TEXTURE_NO_MVP, program);
}

}  // namespace zv
