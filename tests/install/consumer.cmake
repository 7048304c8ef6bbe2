# Builds SOURCE against the installed PREFIX by WAY (package or pkgconfig), from nothing, and runs it.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${BUILD}")
file(MAKE_DIRECTORY "${BUILD}")
if(WAY STREQUAL "package")
    run("${CMAKE_COMMAND}" -S "${SOURCE}" -B "${BUILD}" -G "${GENERATOR}" "-DZorvik_DIR=${PREFIX}/${LIBDIR}/cmake/Zorvik"
        "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}"
        "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_FLAGS=${FLAGS}")
    run("${CMAKE_COMMAND}" --build "${BUILD}")
    file(GLOB program "${BUILD}/consumer" "${BUILD}/consumer.exe")
    run(${EMULATOR} "${program}" "${PREFIX}/share")
else()
    set(ENV{PKG_CONFIG_PATH} "${PREFIX}/${LIBDIR}/pkgconfig")
    run("${PKG_CONFIG}" --cflags --libs zorvik)
    separate_arguments(flags UNIX_COMMAND "${output} ${FLAGS}")
    run("${PKG_CONFIG}" --variable=resourcedir zorvik)
    string(STRIP "${output}" resources)
    run("${COMPILER}" -std=c++17 "${SOURCE}/main.cpp" -o "${BUILD}/consumer" ${flags}
        -lEGL -lGL "-Wl,-rpath,${PREFIX}/${LIBDIR}")
    run("${BUILD}/consumer" "${resources}")
endif()
