# What a host gets: the library, its headers below include/zorvik (so that "scene/ZVMediaEngine.h" keeps its
# path), the resource tree share/zv_res, zvfx, a CMake package and a pkg-config file. The whole prefix can be moved.
# "cpack" makes one archive of it.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(ZV_INSTALL_RESOURCES "${CMAKE_INSTALL_DATADIR}")
set(ZV_INSTALL_PACKAGE "${CMAKE_INSTALL_LIBDIR}/cmake/Zorvik")

target_include_directories(zorvik PUBLIC "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/zorvik>")
install(TARGETS zorvik EXPORT ZorvikTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")

foreach(header IN LISTS ZV_HEADERS)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES "${PROJECT_SOURCE_DIR}/${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zorvik/${folder}")
endforeach()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/res/zv_res" DESTINATION "${ZV_INSTALL_RESOURCES}")

if(TARGET zorvik-face)
    target_include_directories(zorvik-face PUBLIC "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/zorvik>")
    install(TARGETS zorvik-face EXPORT ZorvikTargets
        RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
    foreach(header IN LISTS ZV_FACE_HEADERS)
        install(FILES "${PROJECT_SOURCE_DIR}/${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zorvik/face")
    endforeach()
    # The runtime beside the library, which looks there first, and what its licences ask for.
    if(WIN32)
        install(PROGRAMS "${ONNXRUNTIME_LIBRARY}" DESTINATION "${CMAKE_INSTALL_BINDIR}")
    else()
        install(PROGRAMS "${ONNXRUNTIME_LIBRARY}" DESTINATION "${CMAKE_INSTALL_LIBDIR}")
    endif()
    install(FILES ${ONNXRUNTIME_NOTICES} DESTINATION "${ZV_INSTALL_RESOURCES}/zv_res/models")
endif()

if(TARGET zvfx)
    # The program finds the library beside which it was installed, wherever that is.
    set_target_properties(zvfx PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    install(TARGETS zvfx RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()

install(EXPORT ZorvikTargets NAMESPACE Zorvik:: DESTINATION "${ZV_INSTALL_PACKAGE}")
configure_package_config_file(cmake/ZorvikConfig.cmake.in "${PROJECT_BINARY_DIR}/package/ZorvikConfig.cmake"
    INSTALL_DESTINATION "${ZV_INSTALL_PACKAGE}" PATH_VARS ZV_INSTALL_RESOURCES)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/ZorvikConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/package/ZorvikConfig.cmake"
    "${PROJECT_BINARY_DIR}/package/ZorvikConfigVersion.cmake" DESTINATION "${ZV_INSTALL_PACKAGE}")

# The prefix as seen from the file's own place: lib/pkgconfig, or lib/<triplet>/pkgconfig.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
    BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig" OUTPUT_VARIABLE ZV_PC_UP)
set(ZV_PC_PREFIX "\${pcfiledir}/${ZV_PC_UP}")
configure_file(cmake/zorvik.pc.in "${PROJECT_BINARY_DIR}/package/zorvik.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/package/zorvik.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

if(WIN32)
    set(ZV_PACKAGE_SYSTEM windows)
    set(CPACK_GENERATOR ZIP)
else()
    set(ZV_PACKAGE_SYSTEM linux)
    set(CPACK_GENERATOR TGZ)
endif()
# A C++ class interface binds a library to the compiler family that made it: the package says so first.
configure_file(cmake/package-readme-${ZV_PACKAGE_SYSTEM}.txt.in "${PROJECT_BINARY_DIR}/package/README.txt" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/package/README.txt" "${PROJECT_SOURCE_DIR}/THIRD-PARTY-NOTICES.txt"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/zorvik")
set(CPACK_PACKAGE_NAME zorvik)
set(ZV_PACKAGE_NAME "zorvik-${PROJECT_VERSION}-${ZV_PACKAGE_SYSTEM}-x64")
set(CPACK_PACKAGE_FILE_NAME "${ZV_PACKAGE_NAME}")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
include(CPack)
