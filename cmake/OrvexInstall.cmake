# Where things are installed, below the prefix. On Windows a program loads what lies beside it, so that libraries and data go
# to bin/; elsewhere each goes where the system has files of its kind.
# Components: library and data (what a host runs with), development, tools, terms, manifest.
if(WIN32)
    set(ORVEX_INSTALL_PROGRAMS bin)
    set(ORVEX_INSTALL_LIBRARIES bin)
    set(ORVEX_INSTALL_ARCHIVES lib)
    set(ORVEX_INSTALL_HEADERS include)
    set(ORVEX_INSTALL_DATA bin)
    set(ORVEX_INSTALL_IDL include/orvexcommon)
else()
    include(GNUInstallDirs)
    set(ORVEX_INSTALL_PROGRAMS "${CMAKE_INSTALL_BINDIR}")
    set(ORVEX_INSTALL_LIBRARIES "${CMAKE_INSTALL_LIBDIR}")
    set(ORVEX_INSTALL_ARCHIVES "${CMAKE_INSTALL_LIBDIR}")
    set(ORVEX_INSTALL_HEADERS "${CMAKE_INSTALL_INCLUDEDIR}")
    set(ORVEX_INSTALL_DATA "${CMAKE_INSTALL_DATADIR}/orvexcommon")
    set(ORVEX_INSTALL_IDL "${ORVEX_INSTALL_DATA}/idl")
    set(ORVEX_INSTALL_MANUALS "${CMAKE_INSTALL_MANDIR}/man1")
    set(ORVEX_INSTALL_COMPLETIONS "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
    set(ORVEX_INSTALL_CMAKE "${CMAKE_INSTALL_LIBDIR}/cmake/OrvexCommon")
    set(ORVEX_INSTALL_PKGCONFIG "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
    set(ORVEX_INSTALL_DOCUMENTS "${CMAKE_INSTALL_DATADIR}/doc/orvexcommon")
    # An installed prefix that is moved still finds its own libraries.
    file(RELATIVE_PATH orvex_from_programs "/${ORVEX_INSTALL_PROGRAMS}" "/${ORVEX_INSTALL_LIBRARIES}")
    set(CMAKE_INSTALL_RPATH "$ORIGIN" "$ORIGIN/${orvex_from_programs}")
endif()

# Everything that is installed, and nothing else.
add_custom_target(orvex_installed)

# orvex_install_library(TARGET): a shared library that hosts link.
function(orvex_install_library target)
    if(NOT WIN32)
        set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
                                                   INSTALL_RPATH "$ORIGIN")
    endif()
    add_dependencies(orvex_installed ${target})
    install(TARGETS ${target}
        RUNTIME DESTINATION "${ORVEX_INSTALL_PROGRAMS}" COMPONENT library
        LIBRARY DESTINATION "${ORVEX_INSTALL_LIBRARIES}" COMPONENT library NAMELINK_COMPONENT development
        ARCHIVE DESTINATION "${ORVEX_INSTALL_ARCHIVES}" COMPONENT development)
endfunction()

# Around all rules of installation; see Manifest.cmake. Whoever makes a package of it has a list of their own.
macro(orvex_begin_installation)
    set(folders "${ORVEX_INSTALL_PROGRAMS}" "${ORVEX_INSTALL_LIBRARIES}" "${ORVEX_INSTALL_HEADERS}" "${ORVEX_INSTALL_IDL}"
        "${ORVEX_INSTALL_MANUALS}" "${ORVEX_INSTALL_COMPLETIONS}" "${ORVEX_INSTALL_CMAKE}" "${ORVEX_INSTALL_PKGCONFIG}"
        "${ORVEX_INSTALL_DOCUMENTS}")
    install(CODE "if(NOT DEFINED ENV{DESTDIR})
        include(\"${PROJECT_SOURCE_DIR}/cmake/Manifest.cmake\")
        orvex_note_folders(\"\${CMAKE_INSTALL_PREFIX}\" \"${folders}\")\nendif()" COMPONENT manifest)
endmacro()

macro(orvex_end_installation)
    install(CODE "if(NOT DEFINED ENV{DESTDIR})
        orvex_write_manifest(\"\${CMAKE_INSTALL_PREFIX}\" \"\${CMAKE_INSTALL_MANIFEST_FILES}\")\nendif()" COMPONENT manifest)
endmacro()

# orvex_manual_page(TARGET BRIEF): a page for man, made from what the program says with --help.
function(orvex_manual_page target brief)
    if(NOT WIN32)
        set(page "${CMAKE_CURRENT_BINARY_DIR}/${target}.1")
        set(script "${PROJECT_SOURCE_DIR}/cmake/ManualPage.cmake")
        add_custom_command(OUTPUT "${page}"
            COMMAND ${CMAKE_COMMAND} "-DPROGRAM=$<TARGET_FILE:${target}>" "-DBRIEF=${brief}" "-DVERSION=${PROJECT_VERSION}"
                    "-DOUTPUT=${page}" -P "${script}"
            DEPENDS ${target} "${script}" VERBATIM)
        add_custom_target(${target}_manual ALL DEPENDS "${page}")
        add_dependencies(orvex_installed ${target}_manual)
        install(FILES "${page}" DESTINATION "${ORVEX_INSTALL_MANUALS}" COMPONENT tools)
    endif()
endfunction()
