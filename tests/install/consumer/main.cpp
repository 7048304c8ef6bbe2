#include <cstdio>
#include <memory>

#include "HostContext.h"
#include "core/FileUtil.h"
#include "gl/Texture2D.h"
#include "scene/RenderTexture.h"
#include "scene/Sprite.h"
#include "scene/ZVMediaEngine.h"

/// What the package promises to a host: it links, the library calls the host's own GLContext, finds the
/// resources (their parent folder is the one argument), and a row of four pixels comes back as it went in.
int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    zv::FileUtil::getInstance()->setZvRoot(argv[1]);
    const auto context = std::make_shared<HostContext>();
    zv::ZVMediaEngine engine(context);
    const unsigned char pixels[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 40, 80, 120};
    const zv::Size16 size(4, 1);
    auto* texture = new zv::Texture2D;
    texture->autorelease();
    auto* camera = new zv::Sprite;
    camera->autorelease();
    if (!texture->init(pixels, sizeof(pixels), zv::PXFORMAT_RGB888, size) || !camera->init(texture, false))
        return 3;
    engine.init(camera, size, nullptr, false);
    engine.render();
    engine.getLastRenderTexture()->getOutData();
    const auto frame = engine.getLastRenderTexture()->getOutData();
    int different = 0;
    for (std::size_t i = 0; i < sizeof(pixels); ++i)
        different += frame.size() != sizeof(pixels) || *frame.get(i) != pixels[i] ? 1 : 0;
    std::printf("makeCurrent ran %d times, %d of %d bytes differ\n", context->calls, different,
                static_cast<int>(sizeof(pixels)));
    return context->calls > 0 && different == 0 ? 0 : 1;
}
