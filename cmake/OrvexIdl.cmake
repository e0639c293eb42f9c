# Compiles interface definitions with widl, for Windows.

# The system's own type library, to which a library's interfaces refer. Wine brings it.
find_file(ORVEX_STDOLE2 stdole2.tlb
          PATHS /usr/lib/${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu/wine/x86_64-windows /usr/lib/wine/x86_64-windows
                /usr/lib64/wine/x86_64-windows
          NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
get_filename_component(orvex_stdole2_folder "${ORVEX_STDOLE2}" DIRECTORY)
set(ORVEX_IDL_FOLDER "${CMAKE_BINARY_DIR}/idl" CACHE INTERNAL "Where compiled interface definitions are")
file(MAKE_DIRECTORY "${ORVEX_IDL_FOLDER}")
set(ORVEX_WIDL_COMMAND ${ORVEX_WIDL} -m64 "-I${PROJECT_SOURCE_DIR}/windows/idl" "-L${orvex_stdole2_folder}"
    CACHE INTERNAL "How interface definitions are compiled")

# Sets `out` to the file that is made of include/orvexcommon/NAME.idl: NAME.h with the option -h, NAME.tlb with -t. To be
# called in the folder whose target needs it.
function(orvex_compile_idl name option out)
    set(idl "${PROJECT_SOURCE_DIR}/include/orvexcommon/${name}.idl")
    if(option STREQUAL "-h")
        set(output "${ORVEX_IDL_FOLDER}/${name}.h")
    else()
        set(output "${ORVEX_IDL_FOLDER}/${name}.tlb")
    endif()
    add_custom_command(OUTPUT "${output}" COMMAND ${ORVEX_WIDL_COMMAND} ${option} -o "${output}" "${idl}"
                       DEPENDS "${idl}" "${PROJECT_SOURCE_DIR}/windows/idl/oaidl.idl" VERBATIM)
    set(${out} "${output}" PARENT_SCOPE)
endfunction()
