# Runs PROGRAM on PICTURE, the sample. It writes the picture without its colours as a binary pixmap; looks at OUTPUT.
execute_process(COMMAND "${PROGRAM}" "${PICTURE}" OUTPUT_FILE "${OUTPUT}" RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "the program ended with ${result}")
endif()
set(header 15) # "P6 512 512 255" and a newline
file(SIZE "${OUTPUT}" size)
if(NOT size EQUAL 786447)
    message(FATAL_ERROR "${OUTPUT} has ${size} bytes")
endif()

# Column, row and the largest of the sample's red, green and blue there: the picture is grey, complete and
# the right way up. One step is left for rounding.
foreach(point 264/8/211 8/104/72 200/200/12 8/392/204 264/344/250 456/488/0)
    string(REPLACE "/" ";" point "${point}")
    list(GET point 0 column)
    list(GET point 1 row)
    list(GET point 2 expected)
    math(EXPR offset "${header} + (${row} * 512 + ${column}) * 3")
    file(READ "${OUTPUT}" pixel OFFSET ${offset} LIMIT 3 HEX)
    string(REGEX MATCHALL ".." channels "${pixel}")
    foreach(channel IN LISTS channels)
        math(EXPR difference "0x${channel} - ${expected}")
        if(difference GREATER 1 OR difference LESS -1)
            message(FATAL_ERROR "pixel ${column}, ${row} is ${pixel}, expected three times ${expected}")
        endif()
    endforeach()
endforeach()
