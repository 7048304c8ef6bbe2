#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/GLCallLog.h"
#include "host/GLInterpose.h"
#include "support/AllocationCounter.h"

namespace {

/// Mesa reads its override when it loads, so a 2.1 context has to be asked for before the first GL call. What
/// the caller set already stays.
void askForVersion21() {
#if defined(_WIN32)
    if (std::getenv("MESA_GL_VERSION_OVERRIDE") == nullptr) {
        _putenv("MESA_GL_VERSION_OVERRIDE=2.1");
    }
#else
    setenv("MESA_GL_VERSION_OVERRIDE", "2.1", 0);
#endif
}

}  // namespace

int main(int argc, char** argv) {
    zv::host::linkGLInterpose();
    zv::test::AllocationCounter::watchLibrary();
    // What the driver and the recorder allocate is not the library's doing.
    zv::host::GLCallLog::setHooks(zv::test::AllocationCounter::pause, zv::test::AllocationCounter::resume);
    const char* given = std::getenv("ZV_TEST_GL");
    const std::string kind = given != nullptr ? given : "core";
    if (kind == "legacy") {
        askForVersion21();
    } else if (kind != "core" && kind != "compat") {
        std::fprintf(stderr, "ZV_TEST_GL is \"%s\"; it may be core, compat or legacy\n", given);
        return 2;
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
