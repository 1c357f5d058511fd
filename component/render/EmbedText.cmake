# Turns a text file into a C++ header with one constant, as characters one by one: no compiler's limit on the
# length of a literal applies, and no escape has to be thought of.
# cmake -DINPUT=file -DOUTPUT=header -DNAME=constant -P EmbedText.cmake
file(READ "${INPUT}" bytes HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," characters "${bytes}")
string(REGEX REPLACE "(................................................................................................................)" "\\1\n    " characters "${characters}")
file(CONFIGURE OUTPUT "${OUTPUT}" CONTENT [[
#pragma once

#include <string_view>

inline constexpr char @NAME@Characters[] = {
    @characters@
};

inline constexpr std::string_view @NAME@(@NAME@Characters, sizeof(@NAME@Characters));
]] @ONLY NEWLINE_STYLE LF)
