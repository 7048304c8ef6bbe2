#pragma once

#include "gl/Program.h"
#include "gl/RefCache.h"

namespace zv {

/// The programs of one engine, by name. Effects mostly make and keep programs of their own.
class ZV_API ProgramCache : public RefCache<Program> {
public:
    /// Loads the default programs; answers true.
    bool init() override;

    /// Program::PROGRAM_POSITION_TEXTURE_NO_MVP: a texture at given positions.
    void loadDefaultPrograms();
};

}  // namespace zv
