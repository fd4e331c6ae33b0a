# Installs the build BUILD into FOLDER, and builds and runs programs against it.
# Takes SOURCE (the project), QT and DESIGNER (whether the host and its plugin are built) and COMPILER.

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE text ERROR_VARIABLE text)
    if(NOT status EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${command}\nended with ${status}:\n${text}")
    endif()
    set(output "${text}" PARENT_SCOPE)
endfunction()

# expect_picture(FILE [BYTES]): with at least so many bytes.
function(expect_picture file)
    if(NOT EXISTS ${file})
        message(FATAL_ERROR "${file} was not written")
    endif()
    file(SIZE ${file} size)
    set(least ${ARGN} 5000)
    list(GET least 0 least)
    if(size LESS least)
        message(FATAL_ERROR "${file} has only ${size} bytes")
    endif()
endfunction()

set(ENV{QT_QPA_PLATFORM} offscreen)
set(prefix ${FOLDER}/prefix)
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

# Nothing that was installed includes what was not.
file(GLOB_RECURSE headers RELATIVE ${prefix}/include ${prefix}/include/*.h)
list(LENGTH headers count)
if(count LESS 60)
    message(FATAL_ERROR "only ${count} headers were installed")
endif()
foreach(header IN LISTS headers)
    file(STRINGS ${prefix}/include/${header} includes REGEX "^ *# *include *\"")
    foreach(line IN LISTS includes)
        string(REGEX REPLACE ".*\"(.*)\".*" "\\1" name "${line}")
        if(NOT EXISTS ${prefix}/include/${name})
            message(FATAL_ERROR "${header} includes \"${name}\", which is not installed")
        endif()
    endforeach()
endforeach()

# The Designer plugin finds the library from its own place.
if(DESIGNER)
    file(GLOB_RECURSE plugin ${prefix}/*/tavro_designer.so)
    if(NOT plugin MATCHES "plugins/designer/tavro_designer.so$")
        message(FATAL_ERROR "the Designer plugin is not among Qt's plugins, but: '${plugin}'")
    endif()
    run(ldd ${plugin})
    if(output MATCHES "not found" OR NOT output MATCHES "${prefix}/[^\n]*libtavro_qt6")
        message(FATAL_ERROR "the Designer plugin does not find the library:\n${output}")
    endif()
endif()

# find_package.
run(${CMAKE_COMMAND} -G Ninja -S ${SOURCE}/tests/install/consumer -B ${FOLDER}/found -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DWITH_QT=${QT} -DWITH_DESIGNER=${DESIGNER})
run(${CMAKE_COMMAND} --build ${FOLDER}/found)
run(${FOLDER}/found/picture ${FOLDER}/picture.png)
expect_picture(${FOLDER}/picture.png)
if(QT)
    run(${FOLDER}/found/window ${FOLDER}/window.png)
    expect_picture(${FOLDER}/window.png)
    run(${FOLDER}/found/boiler_window ${FOLDER}/boiler.png ${FOLDER}/found/plant_designer.so)
    expect_picture(${FOLDER}/boiler.png 1000)
endif()

# What the pages show as CMake.
run(${PYTHON} ${SOURCE}/tests/support/snippets.py ${SOURCE} ${FOLDER}/snippets --cmake)
file(GLOB snippets ${FOLDER}/snippets/*)
if(NOT snippets)
    message(FATAL_ERROR "no page shows a CMake snippet")
endif()
if(QT)
    foreach(snippet IN LISTS snippets)
        run(${CMAKE_COMMAND} -G Ninja -S ${snippet} -B ${snippet}/build -DCMAKE_PREFIX_PATH=${prefix}
            -DCMAKE_CXX_COMPILER=${COMPILER})
        run(${CMAKE_COMMAND} --build ${snippet}/build)
    endforeach()
endif()

run(${CMAKE_COMMAND} -G Ninja -S ${SOURCE}/examples -B ${FOLDER}/examples -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DTAVRO_QT=${QT})
run(${CMAKE_COMMAND} --build ${FOLDER}/examples)
run(${FOLDER}/examples/bin/headless ${FOLDER}/headless.png)
expect_picture(${FOLDER}/headless.png)
if(QT)
    foreach(example one-widget form machine)
        run(${FOLDER}/examples/bin/${example} --seconds 0.1 --screenshot ${FOLDER}/${example}.png)
        expect_picture(${FOLDER}/${example}.png)
    endforeach()
endif()

# pkg-config.
file(GLOB_RECURSE pc ${prefix}/*/tavro.pc)
get_filename_component(pc_folder ${pc} DIRECTORY)
get_filename_component(library_folder ${pc_folder} DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_folder})
run(pkg-config --cflags --libs tavro)
separate_arguments(flags UNIX_COMMAND "${output}")
run(${COMPILER} -std=c++20 ${SOURCE}/tests/install/consumer/picture.cpp -o ${FOLDER}/by-pkg-config ${flags})
set(ENV{LD_LIBRARY_PATH} ${library_folder})
run(${FOLDER}/by-pkg-config ${FOLDER}/by-pkg-config.png)
expect_picture(${FOLDER}/by-pkg-config.png)
if(QT)
    run(pkg-config --cflags --libs tavro-qt6)
endif()
unset(ENV{LD_LIBRARY_PATH})

# The tool from its new place.
run(${prefix}/bin/tavro classes)

# As a folder of another project: the program compiles; the library itself is not built once more. Where there is Qt,
# the widgets are there without a word, and are built only for what links them.
run(${CMAKE_COMMAND} -G Ninja -S ${SOURCE}/tests/install/consumer -B ${FOLDER}/inside -DTAVRO_FOLDER=${SOURCE}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DWITH_QT=${QT})
run(${CMAKE_COMMAND} --build ${FOLDER}/inside --target picture_source)
if(QT)
    find_program(NINJA ninja REQUIRED)
    run(${NINJA} -C ${FOLDER}/inside -t inputs boiler_window)
    if(NOT output MATCHES "libtavro_qt6")
        message(FATAL_ERROR "a program that links Tavro::Qt6 does not build it:\n${output}")
    endif()
    run(${NINJA} -C ${FOLDER}/inside -t inputs picture)
    if(output MATCHES "tavro_qt6")
        message(FATAL_ERROR "a program without widgets builds them:\n${output}")
    endif()
endif()
# Without Qt, one line says what there is not.
run(${CMAKE_COMMAND} -G Ninja -S ${SOURCE}/tests/install/consumer -B ${FOLDER}/without-qt -DTAVRO_FOLDER=${SOURCE}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON)
if(NOT output MATCHES "Qt 6 is not found, so there is no Tavro::Qt6")
    message(FATAL_ERROR "nothing says that the widgets are not there:\n${output}")
endif()
