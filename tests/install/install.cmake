# Installs BUILD into an empty PREFIX, then moves it: what was installed must not know where it lay.
file(REMOVE_RECURSE "${PREFIX}" "${PREFIX}.first")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${PREFIX}.first"
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME "${PREFIX}.first" "${PREFIX}")

# The installed program runs from there, with the library and the resources beside it.
execute_process(COMMAND "${PREFIX}/bin/zvfx" "${SAMPLE}" -o "${PREFIX}/sample.png" --quiet COMMAND_ERROR_IS_FATAL ANY)
