#pragma once

#include <cstdint>

#include "core/ZVExport.h"

namespace zv {

/// Which generation of GL and of its shading language the library writes for. Read once from the driver; the
/// rest of the library asks here and not the driver. Version 300 and above is the path with vertex arrays.
class ZV_API ConfigGL {
public:
    ConfigGL(const ConfigGL&) = delete;
    ConfigGL& operator=(const ConfigGL&) = delete;

    /// Made on the first call, which needs a current GL context; lives as long as the process.
    static ConfigGL* getInstance();

    /// The number that leads a GL version text, times 100 and truncated. The truncation shows: 4.6 gives 459,
    /// 4.1 gives 409. A null text, one without a number and versions up to 1.0 give 200.
    static unsigned short versionFromText(const char* text);

    /// GL version times 100.
    unsigned short getVersionGL() const { return mVersionGL; }
    /// 120 below GL 300, else 150.
    unsigned short getVersionShader() const { return mVersionShader; }
    /// For hosts that want another path than the driver's version selects; the shader version follows.
    void setVersionGL(unsigned short version);

    /// The most pixels that a texture may have along a side; uploads, targets and read-backs beyond it are
    /// refused. Without an answer from the driver, all that a size can say.
    int getMaxTextureSize() const { return mMaxTextureSize; }
    /// For hosts that want less than the driver takes. Reaches textures made afterwards.
    void setMaxTextureSize(int size) { mMaxTextureSize = size; }

    bool supportVAO() const { return mVersionGL >= 300; }
    /// Fixed answers: this build is for desktop GL alone.
    bool isSupportPBO() const { return true; }
    bool isGLES() const { return false; }
    bool supportsMapBuffer() const { return false; }

private:
    ConfigGL();

    std::uint16_t mVersionGL = 200;
    std::uint16_t mVersionShader = 120;
    std::int32_t mMaxTextureSize = 0;
};

}  // namespace zv
