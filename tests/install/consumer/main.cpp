#include <cstdio>
#include <string>

#include "core/FileUtil.h"
#include "scene/Node.h"
#include "scene/ZVMediaEngine.h"

/// What the library's package promises without a GL context: headers with their folders, exported symbols and
/// the resource tree, whose parent folder is the one argument.
int main(int argc, char** argv) {
    if (argc != 2 || zv::ZVMediaEngine::getCurrent() != nullptr)
        return 2;
    auto* node = new zv::Node;
    node->setName("consumer");
    const bool named = node->getName() == "consumer";
    node->release();

    zv::FileUtil* files = zv::FileUtil::getInstance();
    files->setZvRoot(argv[1]);
    const std::string path = files->getFullFilePath("zv_res/shaders/ZvShaderTexturePosition.vert");
    const std::string shader = files->getTextFromFile(path);
    std::printf("%s: %zu bytes\n", path.c_str(), shader.size());
    return named && shader.find("a_position") != std::string::npos ? 0 : 1;
}
