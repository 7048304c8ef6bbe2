# Packs BUILD as it is shipped and unpacks it as PREFIX: what is in the archive must not know where it lay.
file(REMOVE_RECURSE "${PREFIX}" "${PREFIX}.unpacked")
file(MAKE_DIRECTORY "${PREFIX}.unpacked")
execute_process(COMMAND "${CPACK}" -B "${BUILD}/package" WORKING_DIRECTORY "${BUILD}"
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(GLOB archive "${BUILD}/package/${PACKAGE}.zip" "${BUILD}/package/${PACKAGE}.tar.gz")
file(ARCHIVE_EXTRACT INPUT "${archive}" DESTINATION "${PREFIX}.unpacked")
file(RENAME "${PREFIX}.unpacked/${PACKAGE}" "${PREFIX}")
file(REMOVE_RECURSE "${PREFIX}.unpacked")
foreach(part include/zorvik/scene/ZVMediaEngine.h share/zv_res/shaders share/doc/zorvik/README.txt
        share/doc/zorvik/THIRD-PARTY-NOTICES.txt)
    if(NOT EXISTS "${PREFIX}/${part}")
        message(FATAL_ERROR "${archive} has no ${part}")
    endif()
endforeach()

# The program runs from there, with the library and the resources beside it.
file(GLOB program "${PREFIX}/bin/zvfx" "${PREFIX}/bin/zvfx.exe")
execute_process(COMMAND ${EMULATOR} "${program}" "${SAMPLE}" -o "${PREFIX}/sample.png" --quiet
    COMMAND_ERROR_IS_FATAL ANY)
