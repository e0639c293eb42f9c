# Exactly the functions meant for hosts are exported:
#  cmake -DLIBRARY=... -DNM=... -DOBJDUMP=... -P CheckExports.cmake
set(names)
# What orvex.h declares, as it declares it.
file(STRINGS "${CMAKE_CURRENT_LIST_DIR}/../../include/orvexcommon/orvex.h" c_functions REGEX "^ORVEX_API ")
list(TRANSFORM c_functions REPLACE "^.*(orvex_[a-z_]+)\\(.*$" "\\1")
list(SORT c_functions)
if(LIBRARY MATCHES "\\.dll$")
    execute_process(COMMAND "${OBJDUMP}" -p "${LIBRARY}" OUTPUT_VARIABLE listing RESULT_VARIABLE result)
    string(REGEX REPLACE "^.*\\[Ordinal/Name Pointer\\] Table" "" listing "${listing}")
    string(REGEX REPLACE "\n\n.*$" "" listing "${listing}")
    string(REGEX MATCHALL "[^\n]+" lines "${listing}")
    foreach(line IN LISTS lines)
        if(line MATCHES "\\[ *[0-9]+\\] (.*)$")
            list(APPEND names "${CMAKE_MATCH_1}")
        endif()
    endforeach()
    set(wanted
        "?GetAddingLidarChoice@@YA?AW4AddLidarChoice@@_N@Z"
        "?GetLasCompanions@@YAPEBVLasCompanions@orvex@@XZ"
        "?MessageRegardingAddingLidar@@YAXPEAUHWND__@@AEBV?$basic_string@_WU?$char_traits@_W@std@@V?$allocator@_W@2@@std@@_N222222AEA_N@Z"
        "?ShowAddFilesDialog@@YA_NPEAVAddFilesParams@@@Z"
        DllCanUnloadNow DllGetClassObject DllInstall DllRegisterServer DllUnregisterServer ${c_functions})
else()
    # Symbols of local binding, whose letter is small, are seen by nobody.
    execute_process(COMMAND "${NM}" -D --defined-only -C "${LIBRARY}" OUTPUT_VARIABLE listing RESULT_VARIABLE result)
    string(REGEX MATCHALL "[^\n]+" lines "${listing}")
    foreach(line IN LISTS lines)
        if(line MATCHES "^[0-9a-f]+ [A-Zu] ([A-Za-z_0-9:]+)")
            list(APPEND names "${CMAKE_MATCH_1}")
        endif()
    endforeach()
    set(wanted GetAddingLidarChoice GetLasCompanions MessageRegardingAddingLidar ShowAddFilesDialog ${c_functions})
endif()
if(NOT result EQUAL 0)
    message(FATAL_ERROR "the exports of ${LIBRARY} could not be read")
endif()
list(SORT names)
if(NOT "${names}" STREQUAL "${wanted}")
    message(FATAL_ERROR "exported: ${names}\nwanted: ${wanted}")
endif()
