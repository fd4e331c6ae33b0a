# Helpers of the build: one object library a floor, their sum as the library, and embedded resources.

# tavro_floor(NAME [LINK FLOOR...] [PRIVATE LIBRARY...])
# The object library tavro_NAME of all sources in the folder tavro/NAME, over the floors that it may include.
function(tavro_floor name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINK;PRIVATE")
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS tavro/${name}/*.cpp)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS tavro/${name}/*.h)
    list(FILTER headers EXCLUDE REGEX "Internal\\.h$")
    set(target tavro_${name})
    if(NOT sources)
        file(WRITE ${CMAKE_BINARY_DIR}/${name}_empty.cpp "")
        set(sources ${CMAKE_BINARY_DIR}/${name}_empty.cpp)
    endif()
    add_library(${target} OBJECT ${sources})
    if(headers)
        target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${headers})
    endif()
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
    target_compile_features(${target} PUBLIC cxx_std_20)
    tavro_warnings(${target})
    # Calls from one function of the library to another are not looked up at run time. Sums of products are
    # rounded alike wherever they stand, so that pixels do not depend on what was inlined.
    target_compile_options(${target} PRIVATE
        $<$<CXX_COMPILER_ID:GNU,Clang>:-fno-semantic-interposition -ffp-contract=off>)
    foreach(floor IN LISTS arg_LINK)
        target_link_libraries(${target} PUBLIC tavro_${floor})
    endforeach()
    target_link_libraries(${target} PRIVATE ${arg_PRIVATE})
    set_property(GLOBAL PROPERTY TAVRO_PRIVATE_${name} "${arg_PRIVATE}")
endfunction()

# The warnings that every source of the project is compiled with.
function(tavro_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wno-unused-parameter
        -Wno-missing-field-initializers $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
    if(TAVRO_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# tavro_library(TARGET FLOOR...): the one library of all floors that programs link.
function(tavro_library target)
    add_library(${target})
    foreach(floor IN LISTS ARGN)
        get_property(private GLOBAL PROPERTY TAVRO_PRIVATE_${floor})
        target_sources(${target} PRIVATE $<TARGET_OBJECTS:tavro_${floor}>)
        target_link_libraries(${target} PRIVATE ${private})
    endforeach()
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:include>)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_link_options(${target} PRIVATE $<$<PLATFORM_ID:Linux>:LINKER:-Bsymbolic-functions>)
    set_target_properties(${target} PROPERTIES EXPORT_NAME Core LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION} SOVERSION 0)
    add_library(Tavro::Core ALIAS ${target})
endfunction()

# tavro_resources(FLOOR PATTERN): embeds each file as one string literal, found at run time by its name
# without the ending (tavro/resources/SpeedometerSVG.svg is "SpeedometerSVG").
function(tavro_resources floor pattern)
    file(GLOB files CONFIGURE_DEPENDS ${pattern})
    set(table ${CMAKE_BINARY_DIR}/resources/ResourceTable.cpp)
    add_custom_command(
        OUTPUT ${table}
        COMMAND ${CMAKE_COMMAND} "-DFILES=${files}" -DOUTPUT=${table} -P ${PROJECT_SOURCE_DIR}/cmake/EmbedResources.cmake
        DEPENDS ${files} ${PROJECT_SOURCE_DIR}/cmake/EmbedResources.cmake
        VERBATIM)
    target_sources(tavro_${floor} PRIVATE ${table})
endfunction()
