# Turns the table of operator messages into the rows of a C++ array. A row of the table holds, with tabs between
# them, the identifier, the number of arguments and the text; "%s" in the text stands for the next argument.

file(READ "${TABLE}" rest)
set(rows "")
while(NOT rest STREQUAL "")
    string(FIND "${rest}" "\n" end)
    if(end EQUAL -1)
        message(FATAL_ERROR "${TABLE}: the last line has no line feed")
    endif()
    string(SUBSTRING "${rest}" 0 ${end} line)
    math(EXPR next "${end} + 1")
    string(SUBSTRING "${rest}" ${next} -1 rest)

    if(NOT line MATCHES "^([A-Z0-9_]+)\t([0-9]+)\t([^\t]+)$")
        message(FATAL_ERROR "${TABLE}: not a row of the table: ${line}")
    endif()
    set(id "${CMAKE_MATCH_1}")
    set(count "${CMAKE_MATCH_2}")
    set(text "${CMAKE_MATCH_3}")

    string(REGEX MATCHALL "%s" places "${text}")
    list(LENGTH places place_count)
    string(REPLACE "%s" "" plain "${text}")
    if(NOT place_count EQUAL count OR plain MATCHES "%")
        message(FATAL_ERROR "${TABLE}: ${id} takes ${count} arguments, which its text doesn't use")
    endif()

    string(REPLACE "\\" "\\\\" text "${text}")
    string(REPLACE "\"" "\\\"" text "${text}")
    string(APPEND rows "{\"${id}\", ${count}, \"${text}\"},\n")
endwhile()
file(WRITE "${ROWS}" "${rows}")
