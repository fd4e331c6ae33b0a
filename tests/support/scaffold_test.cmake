# Lets scripts/new-instrument write an instrument into a copy of the sources, builds it against the library, and lets a
# program show it. Takes SOURCE, BUILD, FOLDER and COMPILER.
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
file(COPY ${SOURCE}/tavro ${SOURCE}/scripts DESTINATION ${FOLDER})

function(run)
    execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${FOLDER} RESULT_VARIABLE status OUTPUT_VARIABLE text
        ERROR_VARIABLE text)
    if(NOT status EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${command}\nended with ${status}:\n${text}")
    endif()
endfunction()

run(${FOLDER}/scripts/new-instrument Manometer)
file(STRINGS ${FOLDER}/tavro/package/Package.cpp lines REGEX "Manometer")
list(LENGTH lines count)
if(NOT count EQUAL 2)
    message(FATAL_ERROR "the package does not name the new class, once included and once registered: ${lines}")
endif()
execute_process(COMMAND ${FOLDER}/scripts/new-instrument Manometer RESULT_VARIABLE again ERROR_QUIET)
if(again EQUAL 0)
    message(FATAL_ERROR "an instrument that is there already is written over")
endif()

file(WRITE ${FOLDER}/show.cpp [[
#include "tavro/Tavro.h"
#include "tavro/instruments/meters/Manometer.h"

#include <cstdio>

int main() {
    Vz::AddResourceFolder("tavro/resources");
    const auto meter = Vz::TVZManometer::Create();
    for (const auto& fault : Vz::CheckArtwork(*meter, Vz::GetResource("ManometerSVG")))
        return std::puts(fault.Text.c_str()), 1;
    Vz::THeadlessHost host(*meter);
    const auto barAt = [&](float value) {
        meter->SetValue(value);
        return host.Paint().GetPixels().Row(100)[100];
    };
    return barAt(0) == 0 && barAt(100) == 0xFF3465A4 && meter->GetFrameColor() == 0xFF888A85 ? 0 : 2;
}
]])
run(${COMPILER} -std=c++20 -Wall -Wextra -Wno-unused-parameter -Wno-missing-field-initializers -Werror -I${FOLDER}
    show.cpp tavro/instruments/meters/Manometer.cpp -o show ${BUILD}/libtavro.so -Wl,-rpath,${BUILD})
run(${FOLDER}/show)
