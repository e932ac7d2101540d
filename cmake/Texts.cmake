# Makes C++ of the table of texts:
#   cmake -D TABLE=texts.tsv -D FOLDER=... -P Texts.cmake
# Texts.h has the numbers by their names, in the order of the table, Texts.inc the rows
# by rising number. A row that is not whole is an error with its line. Files whose content stays are
# not written.

file(READ "${TABLE}" table)
# What would part or join the entries of a list of CMake.
string(ASCII 1 open)
string(ASCII 2 close)
string(ASCII 3 semicolon)
string(REPLACE "[" "${open}" table "${table}")
string(REPLACE "]" "${close}" table "${table}")
string(REPLACE ";" "${semicolon}" table "${table}")
string(REPLACE "\"" "\\\"" table "${table}")
string(REPLACE "\n" ";" lines "${table}")

set(names "")
set(rows "")
set(number_of_line 0)
foreach(line IN LISTS lines)
    math(EXPR number_of_line "${number_of_line} + 1")
    if(line MATCHES "^# (.*)$" AND number_of_line GREATER 5)
        string(APPEND names "\n// ${CMAKE_MATCH_1}\n")
    elseif(line MATCHES "^([0-9]+)\t(k[A-Za-z0-9]+)\t([^\t]+)\t([^\t]*)(\t([^\t]+))?$")
        set(note "")
        if(CMAKE_MATCH_6)
            set(note " ///< ${CMAKE_MATCH_6}")
        endif()
        string(APPEND names "inline constexpr int ${CMAKE_MATCH_2} = ${CMAKE_MATCH_1};${note}\n")
        list(APPEND rows "{${CMAKE_MATCH_1}, {L\"${CMAKE_MATCH_3}\", L\"${CMAKE_MATCH_4}\"}},")
    elseif(NOT line STREQUAL "" AND NOT line MATCHES "^#")
        message(FATAL_ERROR "${TABLE}:${number_of_line}: a text is a number, a name, Japanese and "
            "English, one tab apart:\n${line}")
    endif()
endforeach()
list(SORT rows)
list(JOIN rows "\n" rows)

function(write file content)
    string(REPLACE "${open}" "[" content "${content}")
    string(REPLACE "${close}" "]" content "${content}")
    string(REPLACE "${semicolon}" ";" content "${content}")
    file(CONFIGURE OUTPUT "${file}" CONTENT "${content}" @ONLY)
endfunction()

write("${FOLDER}/Texts.h" "#pragma once\n\nnamespace fieldcore::text {\n${names}\n} // namespace fieldcore::text\n")
write("${FOLDER}/Texts.inc" "${rows}\n")
