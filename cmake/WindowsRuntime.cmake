# Lays out beside the Windows programs what they load: Qt, GDAL and their company, the compiler's runtime, Qt's plugins.
set(runtime_root "${CMAKE_BINARY_DIR}/bin")
set(runtime_stamp "${CMAKE_BINARY_DIR}/windows-runtime.stamp")

set(qt_libraries)
foreach(module Core Gui Network Widgets)
    list(APPEND qt_libraries "${ORVEX_WINDOWS_PREFIX}/qt/bin/Qt6${module}.dll")
endforeach()
file(GLOB runtime_libraries "${ORVEX_WINDOWS_PREFIX}/geo/bin/*.dll")
# The prefix also holds what nothing here loads.
list(FILTER runtime_libraries EXCLUDE REGEX "laszip_api")
list(APPEND runtime_libraries ${qt_libraries})
foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll zlib1.dll)
    execute_process(COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${name}" OUTPUT_VARIABLE library
                    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    get_filename_component(library "${library}" REALPATH)
    list(APPEND runtime_libraries "${library}")
endforeach()
set(test_libraries "${ORVEX_WINDOWS_PREFIX}/qt/bin/Qt6Test.dll")
set(runtime_plugins platforms/qwindows.dll platforms/qoffscreen.dll styles/qwindowsvistastyle.dll
    imageformats/qjpeg.dll tls/qschannelbackend.dll)

set(copy_plugins)
foreach(plugin IN LISTS runtime_plugins)
    list(APPEND copy_plugins COMMAND ${CMAKE_COMMAND} -E copy "${ORVEX_WINDOWS_PREFIX}/qt/plugins/${plugin}"
                                     "${runtime_root}/plugins/${plugin}")
endforeach()

add_custom_command(
    OUTPUT "${runtime_stamp}"
    COMMAND ${CMAKE_COMMAND} -E make_directory "${runtime_root}/plugins/imageformats" "${runtime_root}/plugins/platforms"
            "${runtime_root}/plugins/styles" "${runtime_root}/plugins/tls"
    COMMAND ${CMAKE_COMMAND} -E copy ${runtime_libraries} ${test_libraries} "${runtime_root}"
    ${copy_plugins}
    COMMAND ${CMAKE_COMMAND} -E copy "${PROJECT_SOURCE_DIR}/windows/qt.conf" "${runtime_root}/qt.conf"
    COMMAND ${CMAKE_COMMAND} -E touch "${runtime_stamp}"
    DEPENDS ${runtime_libraries} ${test_libraries} "${PROJECT_SOURCE_DIR}/windows/qt.conf"
    COMMENT "Laying out the libraries that Windows programs load"
    VERBATIM)
add_custom_target(orvex_windows_runtime ALL DEPENDS "${runtime_stamp}")

install(FILES ${runtime_libraries} "${PROJECT_SOURCE_DIR}/windows/qt.conf" DESTINATION bin)
foreach(plugin IN LISTS runtime_plugins)
    get_filename_component(kind "${plugin}" DIRECTORY)
    install(FILES "${ORVEX_WINDOWS_PREFIX}/qt/plugins/${plugin}" DESTINATION "bin/plugins/${kind}")
endforeach()
