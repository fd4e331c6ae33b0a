# Embeds files of awkward bytes and compares what stands in the source with the files, byte for byte.
# cmake -DSCRIPT=.../EmbedResources.cmake -DFOLDER=... -P embed_resources_test.cmake
file(MAKE_DIRECTORY ${FOLDER})
string(ASCII 1 127 13 10 9 control)
set(texts
    "Odd|a(b) c \"d\" 'e' \\n \\\\ \${X} @Y@ \$ENV{Z} <svg/> )VZRES\" ü € 😀${control}"
    "Short|x"
    "Empty|")
string(REPEAT "0123456" 8 exact) # 56 bytes: one whole piece
string(REPEAT "0123456" 1000 long)
list(APPEND texts "Exact|${exact}" "Long|${long}")

set(files "")
foreach(text IN LISTS texts)
    string(REGEX MATCH "^([A-Za-z]+)\\|" ignored "${text}")
    set(name ${CMAKE_MATCH_1})
    string(REGEX REPLACE "^[A-Za-z]+\\|" "" content "${text}")
    file(WRITE ${FOLDER}/${name}.svg "${content}")
    list(APPEND files ${FOLDER}/${name}.svg)
endforeach()
# These two would not survive as items of a CMake list.
file(WRITE ${FOLDER}/Semicolons.svg "a;b;;c;\n;")
file(WRITE ${FOLDER}/Brackets.svg "[[]][=[ ]=] [[[ ]")
list(APPEND files ${FOLDER}/Semicolons.svg ${FOLDER}/Brackets.svg)

execute_process(
    COMMAND ${CMAKE_COMMAND} "-DFILES=${files}" -DOUTPUT=${FOLDER}/Table.cpp -P ${SCRIPT}
    COMMAND_ERROR_IS_FATAL ANY)
file(READ ${FOLDER}/Table.cpp table)

set(count 0)
foreach(file IN LISTS files)
    file(READ ${file} expected HEX)
    file(SIZE ${file} size)
    get_filename_component(name ${file} NAME_WE)
    string(REGEX MATCH "Data${count}\\[\\] =([^;]*);" ignored "${table}")
    string(REGEX REPLACE "[^0-9a-f]" "" found "${CMAKE_MATCH_1}")
    if(NOT found STREQUAL expected)
        message(FATAL_ERROR "${name}: ${found} instead of ${expected}")
    endif()
    if(NOT table MATCHES "{\"${name}\", {Data${count}, ${size}}},")
        message(FATAL_ERROR "${name}: no row with its name and ${size} bytes")
    endif()
    math(EXPR count "${count} + 1")
endforeach()
if(NOT table MATCHES "{Rows, ${count}}")
    message(FATAL_ERROR "the table does not have ${count} rows")
endif()
