#include "gl/ProgramCache.h"

namespace zv {

bool ProgramCache::init() {
    loadDefaultPrograms();
    return true;
}

void ProgramCache::loadDefaultPrograms() {
    add(Program::PROGRAM_POSITION_TEXTURE_NO_MVP,
        Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderTexturePosition.frag"));
}

}  // namespace zv
