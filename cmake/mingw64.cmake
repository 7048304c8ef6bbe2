# Cross-compiles for Windows on x86-64 with Debian's MinGW (the variant with POSIX threads).
# ZV_WINDOWS_DEPS (cache or environment) names the folder that tools/windows-deps.sh prints.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(zv_triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${zv_triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${zv_triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${zv_triplet}-windres)

if(NOT ZV_WINDOWS_DEPS)
    set(ZV_WINDOWS_DEPS "$ENV{ZV_WINDOWS_DEPS}")
endif()
set(ZV_WINDOWS_DEPS "${ZV_WINDOWS_DEPS}" CACHE PATH "Static libraries and headers for Windows")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZV_WINDOWS_DEPS)

# Nothing of the machine that compiles may be found: its headers are for another system.
set(CMAKE_FIND_ROOT_PATH /usr/${zv_triplet} ${ZV_WINDOWS_DEPS})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Without it libpng pulls in zlib1.dll, which nobody would ship.
set(ZLIB_USE_STATIC_LIBS ON)

# No runtime DLL has to lie beside what is linked.
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")

# What is built is run under Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../tools/wine-run.sh")
