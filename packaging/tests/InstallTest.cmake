# Installs a build below a prefix, builds hosts against it by CMake's and by pkg-config's files, moves the prefix, uses it there,
# and removes it again:
#   cmake -DBUILD=... -DWORK=... -DCXX=... -DPICTURE=... -DEXAMPLES=... -DDRIVER=... -P InstallTest.cmake
# EXAMPLES: folders of hosts that show the dialog and print which files were added. DRIVER: a library that works the dialog.
cmake_policy(VERSION 3.25)
set(first "${WORK}/first")
set(moved "${WORK}/moved to a name with blanks")
file(REMOVE_RECURSE "${WORK}")
# A prefix that somebody else uses as well.
file(MAKE_DIRECTORY "${first}/bin" "${first}/lib/cmake" "${first}/share/man")
file(WRITE "${first}/bin/somebody" "else's")

# run(COMMAND...): ends the test if it fails; its output is in `output`.
function(run)
    execute_process(COMMAND ${ARGV} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        list(JOIN ARGV " " command)
        message(FATAL_ERROR "${command}: ${result}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect text)
    string(FIND "${output}" "${text}" at)
    if(at EQUAL -1)
        message(FATAL_ERROR "no '${text}' in:\n${output}")
    endif()
endfunction()

# Sets `out` to the files and folders below `folder`, in order.
function(contents folder out)
    file(GLOB_RECURSE found LIST_DIRECTORIES true RELATIVE "${folder}" "${folder}/*")
    list(SORT found)
    set(${out} "${found}" PARENT_SCOPE)
endfunction()

function(build_by_cmake project folder prefix)
    run("${CMAKE_COMMAND}" -S "${project}" -B "${folder}" -G Ninja "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${CXX}")
    run("${CMAKE_COMMAND}" --build "${folder}")
endfunction()

function(build_by_pkg_config prefix program)
    set(ENV{PKG_CONFIG_PATH} "${prefix}/lib/pkgconfig")
    run(pkg-config --cflags --libs orvexcommon)
    separate_arguments(options UNIX_COMMAND "${output}")
    run("${CXX}" "${CMAKE_CURRENT_LIST_DIR}/consumer/main.cpp" -o "${program}" ${options})
endfunction()

contents("${first}" before)
foreach(time first second)
    # The second time is an update.
    run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${first}")
endforeach()
foreach(file lib/libOrvexCommon.so lib/libOrvexCommon.so.0 lib/liborvexstrings.so.0 include/orvexcommon/Version.h
        include/orvexcommon/TextIds.h share/orvexcommon/idl/OrvexHost.idl share/orvexcommon/idl/oaidl.idl
        share/doc/orvexcommon/LICENSE share/doc/orvexcommon/THIRD-PARTY.md)
    if(NOT EXISTS "${first}/${file}")
        message(FATAL_ERROR "'${file}' is not installed")
    endif()
endforeach()

build_by_cmake("${CMAKE_CURRENT_LIST_DIR}/consumer" "${WORK}/consumer" "${first}")
run("${WORK}/consumer/consumer")
expect("C++ ")
run("${WORK}/consumer/consumer-c")
build_by_pkg_config("${first}" "${WORK}/by-pkg-config")
run("${CMAKE_COMMAND}" -E env "LD_LIBRARY_PATH=${first}/lib" "${WORK}/by-pkg-config")
foreach(example IN LISTS EXAMPLES)
    cmake_path(GET example FILENAME name)
    build_by_cmake("${example}" "${WORK}/${name}" "${first}")
    foreach(order "${WORK}/${name}/files" cancel)
        run("${CMAKE_COMMAND}" -E env "LD_PRELOAD=${DRIVER}" "LD_LIBRARY_PATH=${first}/lib" "ORVEX_DRIVER=${order}"
            "XDG_CONFIG_HOME=${WORK}/${name}/config" "${WORK}/${name}/${name}")
        if(NOT order STREQUAL "cancel")
            expect("b.las")
        endif()
    endforeach()
endforeach()

file(RENAME "${first}" "${moved}")
run("${moved}/bin/orvex-inspect" --csv --as raster "${PICTURE}")
expect(",raster,true,")
build_by_cmake("${CMAKE_CURRENT_LIST_DIR}/consumer" "${WORK}/consumer-moved" "${moved}")
run("${WORK}/consumer-moved/consumer")
run("${CMAKE_COMMAND}" -E env "LD_LIBRARY_PATH=${moved}/lib" "${WORK}/by-pkg-config")

file(WRITE "${moved}/include/orvexcommon/of-the-user.h" "")
run("${CMAKE_COMMAND}" "-DPREFIX=${moved}" -P "${CMAKE_CURRENT_LIST_DIR}/../../cmake/Manifest.cmake")
file(REMOVE "${moved}/include/orvexcommon/of-the-user.h")
contents("${moved}" after)
list(REMOVE_ITEM after include include/orvexcommon)
if(NOT after STREQUAL before)
    message(FATAL_ERROR "before: ${before}\nafter: ${after}")
endif()
