# Typed Qt widgets of component classes, written from the classes' property tables.
#
#   tavro_add_widgets(TARGET INSTRUMENTS LIBRARY CLASSES CLASS HEADER [CLASS HEADER...]
#                     [DESIGNER PLUGIN [PAGE NAME]])
#
# TARGET becomes a library of one widget a class: VzBoiler.h and VzBoiler for `Plant::TBoiler` (a T or TVZ in front is
# dropped); it links LIBRARY, the target with the instruments, and Tavro::Qt6. A CLASS is written with its namespace,
# Vz where it names none; a HEADER as a source of LIBRARY's users includes it.
# PLUGIN becomes Qt Designer's plugin with these widgets, on the page NAME of its widget box (default: PLUGIN). Designer
# finds it in the folder `designer` of Qt's plugins or of one that QT_PLUGIN_PATH names.

set(TAVRO_WIDGET_SOURCES ${CMAKE_CURRENT_LIST_DIR}/widgets)
if(NOT EXISTS ${TAVRO_WIDGET_SOURCES})
    cmake_path(SET TAVRO_WIDGET_SOURCES NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../hosts/qt)
endif()
set_property(GLOBAL PROPERTY TAVRO_WIDGET_SOURCES ${TAVRO_WIDGET_SOURCES})

# tavro_widget_name(VARIABLE CLASS): VzBoiler of Plant::TBoiler.
function(tavro_widget_name variable class)
    string(REGEX REPLACE "^.*::" "" name ${class})
    string(REGEX REPLACE "^(TVZ|T)(.*)$" "\\2" name ${name}) # the whole name, or a second T would go, too
    set(${variable} Vz${name} PARENT_SCOPE)
endfunction()

# tavro_write_widget(TARGET GENERATOR CLASS HEADER FOLDER): adds the class's widget, written into FOLDER, to TARGET.
function(tavro_write_widget target generator class header folder)
    tavro_widget_name(widget ${class})
    file(MAKE_DIRECTORY ${folder})
    add_custom_command(
        OUTPUT ${folder}/${widget}.h ${folder}/${widget}.cpp
        COMMAND ${generator} ${class} ${header} ${folder}
        DEPENDS ${generator}
        COMMENT "Writing ${widget}" VERBATIM)
    qt6_generate_moc(${folder}/${widget}.h ${folder}/moc_${widget}.cpp TARGET ${target})
    set_source_files_properties(${folder}/${widget}.cpp PROPERTIES
        SKIP_AUTOMOC ON OBJECT_DEPENDS ${folder}/moc_${widget}.cpp)
    set_source_files_properties(${folder}/moc_${widget}.cpp PROPERTIES HEADER_FILE_ONLY ON)
    target_sources(${target} PRIVATE ${folder}/${widget}.cpp ${folder}/moc_${widget}.cpp)
endfunction()

# tavro_write_widget_list(FILE FUNCTION ROW...): a source with the table of widgets that FUNCTION gives. A ROW is
# `WIDGET|HEADER|FOLDER`, see TVzWidgetClass.
function(tavro_write_widget_list file list_function)
    foreach(row IN LISTS ARGN)
        string(REPLACE "|" ";" row "${row}")
        list(GET row 0 widget)
        list(GET row 1 header)
        list(GET row 2 folder)
        string(APPEND widget_includes "#include \"${widget}.h\"\n")
        string(APPEND widget_rows "    {\"${widget}\", \"${header}\", \"${folder}\", create<${widget}>},\n")
    endforeach()
    get_property(sources GLOBAL PROPERTY TAVRO_WIDGET_SOURCES)
    configure_file(${sources}/WidgetList.cpp.in ${file} @ONLY)
    set_source_files_properties(${file} PROPERTIES SKIP_AUTOMOC ON)
endfunction()

# tavro_designer_plugin(TARGET LIST): Designer's plugin with the widgets of designerWidgetClasses in the source LIST.
function(tavro_designer_plugin target list)
    find_package(Qt6 6.2 QUIET COMPONENTS Designer UiPlugin)
    if(NOT TARGET Qt6::Designer)
        message(FATAL_ERROR "${target}: Qt Designer's development files are missing (Debian: qt6-tools-dev "
            "libqt6opengl6-dev); Tavro itself builds without its plugin with -DTAVRO_DESIGNER=OFF")
    endif()
    get_property(sources GLOBAL PROPERTY TAVRO_WIDGET_SOURCES)
    foreach(name Icon Plugin PropertySheet)
        list(APPEND files ${sources}/designer/${name}.cpp ${sources}/designer/${name}.h)
    endforeach()
    add_library(${target} MODULE ${files} ${list})
    set_target_properties(${target} PROPERTIES AUTOMOC ON PREFIX "" CXX_VISIBILITY_PRESET hidden)
    target_link_libraries(${target} PRIVATE Tavro::Qt6 Qt6::Designer Qt6::UiPlugin)
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS)
endfunction()

function(tavro_add_widgets target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "INSTRUMENTS;DESIGNER;PAGE" "CLASSES")
    list(LENGTH arg_CLASSES count)
    math(EXPR odd "${count} % 2")
    if(NOT arg_INSTRUMENTS OR count EQUAL 0 OR odd OR arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "tavro_add_widgets(${target}): INSTRUMENTS takes a library, CLASSES pairs of class and header")
    endif()
    if(NOT TARGET Tavro::Qt6)
        message(FATAL_ERROR "tavro_add_widgets(${target}) needs Tavro::Qt6: find_package(Tavro COMPONENTS Core Qt6), or "
            "TAVRO_QT set to ON before add_subdirectory")
    endif()
    find_package(Qt6 6.2 QUIET REQUIRED COMPONENTS Widgets)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target}_widgets)
    set(page ${arg_PAGE})
    if(NOT page)
        set(page "${arg_DESIGNER}")
    endif()

    # The generator is a program that has the classes.
    add_library(${target})
    set(includes "")
    set(lines "")
    while(arg_CLASSES)
        list(POP_FRONT arg_CLASSES class header)
        tavro_write_widget(${target} ${target}_generator ${class} ${header} ${folder})
        tavro_widget_name(widget ${class})
        list(APPEND rows "${widget}|${header}|${page}")
        string(APPEND includes "#include <${header}>\n")
        string(APPEND lines "    RegisterClass<${class}>();\n")
    endwhile()
    file(CONFIGURE OUTPUT ${folder}/RegisterWidgetClasses.cpp @ONLY CONTENT
"#include <tavro/runtime/ClassRegistry.h>
@includes@
void RegisterWidgetClasses() {
    using namespace Vz;
@lines@}
")
    get_property(sources GLOBAL PROPERTY TAVRO_WIDGET_SOURCES)
    add_executable(${target}_generator ${sources}/generate/main.cpp ${folder}/RegisterWidgetClasses.cpp)
    target_link_libraries(${target}_generator PRIVATE ${arg_INSTRUMENTS} Tavro::Core)

    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_include_directories(${target} PUBLIC ${folder})
    target_link_libraries(${target} PUBLIC ${arg_INSTRUMENTS} Tavro::Qt6)
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS)
    if(arg_DESIGNER)
        set_target_properties(${arg_INSTRUMENTS} PROPERTIES POSITION_INDEPENDENT_CODE ON)
        tavro_write_widget_list(${folder}/WidgetList.cpp designerWidgetClasses ${rows})
        tavro_designer_plugin(${arg_DESIGNER} ${folder}/WidgetList.cpp)
        target_link_libraries(${arg_DESIGNER} PRIVATE ${target})
    endif()
endfunction()
