# What is installed, and how others find it: `find_package(Tavro COMPONENTS Core Qt6)`, tavro.pc and tavro-qt6.pc.
# Headers stand below include/tavro as they stand in tavro/.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(headers ${CMAKE_INSTALL_INCLUDEDIR}/tavro)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/Tavro)

# tavro_reached_headers(VARIABLE DOOR): the door and every header that it brings along, from the project's folder.
function(tavro_reached_headers variable door)
    set(reached ${door})
    set(pending ${door})
    while(pending)
        list(POP_FRONT pending header)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${header})
        file(STRINGS ${PROJECT_SOURCE_DIR}/${header} lines REGEX "^#include \"tavro/")
        list(TRANSFORM lines REPLACE ".*\"(.*)\".*" "\\1")
        list(REMOVE_ITEM lines ${reached})
        list(APPEND pending ${lines})
        list(APPEND reached ${lines})
    endwhile()
    set(${variable} ${reached} PARENT_SCOPE)
endfunction()

# Of the library, the doors and what they need.
tavro_reached_headers(public_headers tavro/Tavro.h)
foreach(header IN LISTS public_headers)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder} COMPONENT Core)
endforeach()
install(TARGETS tavro EXPORT TavroCore
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Core
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Core)
install(EXPORT TavroCore NAMESPACE Tavro:: FILE TavroCore.cmake DESTINATION ${package} COMPONENT Core)
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT Core)
# What is installed finds the library beside it, wherever the tree lies.
file(RELATIVE_PATH bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
if(TAVRO_TOOLS)
    set_target_properties(tavro_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
    install(TARGETS tavro_tool COMPONENT Core)
endif()

# tavro_pkg_config(NAME REQUIRES): NAME.pc. It finds its prefix from its own place, so that the tree can be moved.
function(tavro_pkg_config name description requires libs cflags)
    file(RELATIVE_PATH to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
    configure_file(cmake/tavro.pc.in ${name}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
set(static_requires "cairo pangoft2 harfbuzz fontconfig freetype2 libagg expat")
tavro_pkg_config(tavro "${PROJECT_DESCRIPTION}" "" "-ltavro" "")

if(TAVRO_QT)
    install(FILES hosts/qt/VzWidget.h hosts/qt/VzFileWidget.h hosts/qt/VzInstrumentWidget.h hosts/qt/VzPictureWidget.h
        hosts/qt/WidgetList.h DESTINATION ${headers}/qt COMPONENT Qt6)
    # What tavro_add_widgets makes widgets of, and Designer's plugin with them.
    install(FILES cmake/TavroWidgets.cmake DESTINATION ${package} COMPONENT Qt6)
    install(FILES hosts/qt/WidgetList.cpp.in DESTINATION ${package}/widgets COMPONENT Qt6)
    install(FILES hosts/qt/generate/main.cpp DESTINATION ${package}/widgets/generate COMPONENT Qt6)
    foreach(part Icon Plugin PropertySheet)
        install(FILES hosts/qt/designer/${part}.cpp hosts/qt/designer/${part}.h
            DESTINATION ${package}/widgets/designer COMPONENT Qt6)
    endforeach()
    foreach(widget IN LISTS TAVRO_QT_WIDGETS)
        install(FILES ${CMAKE_BINARY_DIR}/hosts/qt/widgets/${widget}.h DESTINATION ${headers}/qt COMPONENT Qt6)
    endforeach()
    set_target_properties(tavro_qt6 PROPERTIES INSTALL_RPATH $ORIGIN)
    install(TARGETS tavro_qt6 EXPORT TavroQt6
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Qt6
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Qt6)
    install(EXPORT TavroQt6 NAMESPACE Tavro:: FILE TavroQt6.cmake DESTINATION ${package} COMPONENT Qt6)
    tavro_pkg_config(tavro-qt6 "Tavro's widgets for Qt 6" "tavro Qt6Widgets" "-ltavro_qt6" "-I\${includedir}/tavro/qt")
    # Designer looks for plugins where the distribution has Qt's.
    if(TARGET tavro_designer)
        set(TAVRO_DESIGNER_FOLDER ${QT6_INSTALL_PLUGINS}/designer CACHE STRING "Folder for the Designer plugin, below the prefix")
        file(RELATIVE_PATH plugin_to_lib ${CMAKE_INSTALL_PREFIX}/${TAVRO_DESIGNER_FOLDER} ${CMAKE_INSTALL_FULL_LIBDIR})
        set_target_properties(tavro_designer PROPERTIES INSTALL_RPATH "$ORIGIN/${plugin_to_lib}")
        install(TARGETS tavro_designer LIBRARY DESTINATION ${TAVRO_DESIGNER_FOLDER} COMPONENT Qt6)
    endif()
    if(TARGET tavro_gallery)
        set_target_properties(tavro_gallery PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
        install(TARGETS tavro_gallery COMPONENT Qt6)
    endif()
endif()

configure_package_config_file(cmake/TavroConfig.cmake.in TavroConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(TavroConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/TavroConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/TavroConfigVersion.cmake
    DESTINATION ${package} COMPONENT Core)
