# Writes the one C++ block of README to OUTPUT.
file(READ "${README}" text)
# Semicolons and brackets mean something to CMake's lists; the text never becomes one.
string(FIND "${text}" "\n```cpp\n" begin)
if(begin EQUAL -1)
    message(FATAL_ERROR "README.md has no C++ block")
endif()
math(EXPR begin "${begin} + 8")
string(SUBSTRING "${text}" ${begin} -1 text)
string(FIND "${text}" "```" end)
string(SUBSTRING "${text}" 0 ${end} text)
file(WRITE "${OUTPUT}" "${text}")
