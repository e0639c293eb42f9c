# Lays out GDAL's and PROJ's data beside the component's library, where it looks for them: bin/gdal-data (with pcs.csv,
# made from PROJ's database), bin/gdalplugins and bin/proj; installed, they lie where
# OrvexInstall.cmake says. A second build does nothing.
find_program(ORVEX_GDAL_CONFIG gdal-config)
if(ORVEX_GDAL_CONFIG AND NOT CMAKE_CROSSCOMPILING)
    execute_process(COMMAND "${ORVEX_GDAL_CONFIG}" --datadir OUTPUT_VARIABLE gdal_config_data
                    OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
find_path(ORVEX_GDAL_DATA gdalvrt.xsd HINTS "${gdal_config_data}" "${ORVEX_WINDOWS_PREFIX}/geo" PATH_SUFFIXES share/gdal share/gdal/data REQUIRED)
find_path(ORVEX_PROJ_DATA proj.db HINTS "${ORVEX_WINDOWS_PREFIX}/geo" PATH_SUFFIXES share/proj REQUIRED)
find_program(ORVEX_SQLITE sqlite3 REQUIRED)

set(data_root "${CMAKE_BINARY_DIR}/bin")
set(data_stamp "${CMAKE_CURRENT_BINARY_DIR}/gdal-data.stamp")
set(pcs_csv "${data_root}/gdal-data/pcs.csv")
set(pcs_query "${CMAKE_CURRENT_SOURCE_DIR}/pcs.sql")

add_custom_command(
    OUTPUT "${data_stamp}"
    COMMAND ${CMAKE_COMMAND} -E copy_directory "${ORVEX_GDAL_DATA}" "${data_root}/gdal-data"
    COMMAND ${CMAKE_COMMAND} -E make_directory "${data_root}/gdalplugins" "${data_root}/proj"
    COMMAND ${CMAKE_COMMAND} -E copy "${CMAKE_CURRENT_SOURCE_DIR}/gdalplugins.txt"
            "${data_root}/gdalplugins/README.txt"
    # The grids of datum shifts are ten times the rest and no CRS text needs them; the system's are found as well.
    COMMAND ${CMAKE_COMMAND} -E copy "${ORVEX_PROJ_DATA}/proj.db" "${ORVEX_PROJ_DATA}/proj.ini" "${data_root}/proj"
    COMMAND ${CMAKE_COMMAND} -E touch "${data_stamp}"
    DEPENDS "${ORVEX_GDAL_DATA}/gdalvrt.xsd" "${ORVEX_PROJ_DATA}/proj.db" "${CMAKE_CURRENT_SOURCE_DIR}/gdalplugins.txt"
    COMMENT "Laying out GDAL's and PROJ's data"
    VERBATIM)

add_custom_command(
    OUTPUT "${pcs_csv}"
    COMMAND "${ORVEX_SQLITE}" -batch -csv -header "${data_root}/proj/proj.db" ".output '${pcs_csv}.tmp'"
            ".read '${pcs_query}'"
    COMMAND ${CMAKE_COMMAND} -E rename "${pcs_csv}.tmp" "${pcs_csv}"
    DEPENDS "${data_stamp}" "${pcs_query}"
    COMMENT "Making pcs.csv from PROJ's database"
    VERBATIM)

add_custom_target(orvex_gdal_data ALL DEPENDS "${data_stamp}" "${pcs_csv}")
add_dependencies(orvex_installed orvex_gdal_data)

# Tests that set GDAL up from their own folder find the same data; on Windows they lie in bin/ themselves.
if(NOT WIN32)
    file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
    foreach(folder gdal-data gdalplugins proj)
        file(CREATE_LINK "../bin/${folder}" "${CMAKE_BINARY_DIR}/tests/${folder}" SYMBOLIC)
    endforeach()
endif()

# GDAL's data suit one release of GDAL, as its library's name does. PROJ's database has to suit the library to the letter, and
# a system's PROJ brings its own.
set(installed_data "${data_root}/gdal-data" "${data_root}/gdalplugins")
if(WIN32)
    list(APPEND installed_data "${data_root}/proj")
endif()
install(DIRECTORY ${installed_data} DESTINATION "${ORVEX_INSTALL_DATA}" COMPONENT data)
