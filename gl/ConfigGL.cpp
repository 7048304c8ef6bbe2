#include "gl/ConfigGL.h"

#include <GL/glew.h>

#include <limits>
#include <locale>
#include <sstream>

#include "gl/GLEnv.h"

namespace zv {

ConfigGL* ConfigGL::getInstance() {
    static ConfigGL* const instance = new ConfigGL;
    return instance;
}

ConfigGL::ConfigGL() {
    glEnvInit();
    setVersionGL(versionFromText(reinterpret_cast<const char*>(glGetString(GL_VERSION))));
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &mMaxTextureSize);
    if (mMaxTextureSize <= 0) {
        mMaxTextureSize = std::numeric_limits<unsigned short>::max();
    }
}

unsigned short ConfigGL::versionFromText(const char* text) {
    constexpr unsigned short FALLBACK = 200;
    if (text == nullptr)
        return FALLBACK;
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());  // Version texts have a point whatever the host's locale says.
    double number = 0.0;
    stream >> number;
    // The product is truncated and not rounded: 4.6 * 100.0 lies a little below 460.
    const double scaled = number * 100.0;
    if (scaled < 101.0 || scaled > std::numeric_limits<unsigned short>::max())
        return FALLBACK;
    return static_cast<unsigned short>(scaled);
}

void ConfigGL::setVersionGL(unsigned short version) {
    mVersionGL = version;
    mVersionShader = version < 300 ? 120 : 150;
}

}  // namespace zv
