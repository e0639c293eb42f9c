# How this project's targets are made: one function per kind of target, so that the layers stay what their names say.
include("${CMAKE_CURRENT_LIST_DIR}/CoreTargets.cmake")
include("${CMAKE_CURRENT_LIST_DIR}/PrecompiledHeaders.cmake")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
# Holds orvexcommon/TextIds.h, which the target orvex_text_ids makes.
set(ORVEX_GENERATED_INCLUDE "${CMAKE_BINARY_DIR}/include")
# A moved build folder still finds its own libraries.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
include("${CMAKE_CURRENT_LIST_DIR}/OrvexInstall.cmake")

set(ORVEX_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize=")
option(ORVEX_FUZZ "Build the fuzzers" OFF)

find_program(ORVEX_CCACHE ccache)
if(ORVEX_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # What ccache has to overlook so that it serves sources with precompiled headers.
    set(sloppiness pch_defines,time_macros,include_file_mtime,include_file_ctime)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=${sloppiness} "${ORVEX_CCACHE}")
    # GCC's own way to tell ccache which precompiled header a source uses.
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
endif()

find_program(ORVEX_LLD ld.lld)
if(ORVEX_LLD AND NOT WIN32)
    # Links several times faster than the linker that is usual.
    add_link_options(-fuse-ld=lld)
endif()

if(NOT WIN32)
    # What a release loads cannot be written over once it is loaded.
    add_link_options($<$<CONFIG:Release>:LINKER:-z,relro,-z,now>)
    # Programs as well as libraries, so that they share precompiled headers.
    add_compile_options(-fPIC)
endif()

if(ORVEX_SANITIZE)
    add_compile_options(-fsanitize=${ORVEX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=${ORVEX_SANITIZE})
endif()

function(orvex_common_options target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wconversion -Werror)
    # GCC 12 reports overlaps and overruns in correct uses of std::string once they are inlined (its bug 105651), more so
    # with precompiled headers.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND (CMAKE_BUILD_TYPE STREQUAL "Release" OR ORVEX_SANITIZE))
        target_compile_options(${target} PRIVATE -Wno-restrict -Wno-array-bounds -Wno-stringop-overread
                               -Wno-stringop-overflow)
    endif()
    target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/include" "${ORVEX_GENERATED_INCLUDE}")
    add_dependencies(${target} orvex_text_ids)
    if(WIN32)
        target_compile_definitions(${target} PRIVATE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
    endif()
    set_target_properties(${target} PROPERTIES AUTOMOC OFF)
    set_property(GLOBAL APPEND PROPERTY ORVEX_TARGETS ${target})
endfunction()

# A static library without Qt: inspection, validation, text, result assembly.
function(orvex_core_library target)
    add_library(${target} STATIC ${ARGN})
    orvex_common_options(${target})
    orvex_declare_core_target(${target})
endfunction()

# A static library with Qt: models, pages, dialogs.
function(orvex_qt_library target)
    add_library(${target} STATIC ${ARGN})
    orvex_common_options(${target})
    target_link_libraries(${target} PUBLIC Qt6::Core Qt6::Gui Qt6::Widgets)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
endfunction()

# A library of the host's own: shared; the component sees only its header in include/orvexcommon.
function(orvex_host_library target)
    add_library(${target} SHARED ${ARGN})
    orvex_common_options(${target})
    string(TOUPPER "${target}_BUILD" build_macro)
    target_compile_definitions(${target} PRIVATE ${build_macro})
    orvex_install_library(${target})
    set_property(GLOBAL APPEND PROPERTY ORVEX_HOST_LIBRARIES ${target})
endfunction()

# A program in bin/.
function(orvex_program target)
    add_executable(${target} ${ARGN})
    orvex_common_options(${target})
endfunction()

# A program that is installed. It says its version.
function(orvex_installed_program target)
    orvex_program(${target} ${ARGN})
    add_dependencies(orvex_installed ${target})
    install(TARGETS ${target} RUNTIME DESTINATION "${ORVEX_INSTALL_PROGRAMS}" COMPONENT tools)
    add_test(NAME ${target}_version COMMAND ${target} --version)
    string(REPLACE . "\\." version "${PROJECT_VERSION}")
    set_tests_properties(${target}_version PROPERTIES PASS_REGULAR_EXPRESSION "^${target} ${version}\r?\n$")
endfunction()

# The test programs that are worth running under the thread sanitizer.
add_custom_target(orvex_thread_tests)

# orvex_screen(VARIABLE WIDTHxHEIGHT) sets VARIABLE to the environment of tests that see a screen of this size in pixels;
# Qt's own offscreen screen is of 800x800.
function(orvex_screen variable size)
    string(REPLACE x ";" sides ${size})
    list(GET sides 0 width)
    list(GET sides 1 height)
    set(file "${CMAKE_BINARY_DIR}/tests/screen-${size}.json")
    file(CONFIGURE OUTPUT "${file}" CONTENT [[{"screens": [{"name": "offscreen", "x": 0, "y": 0, "width": @width@,
"height": @height@, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]}]] @ONLY)
    # A drive's colon would end the parameter.
    file(RELATIVE_PATH file "${CMAKE_CURRENT_BINARY_DIR}" "${file}")
    # Wine keeps Qt's variables from programs; the tests' main() sets them from its own.
    set(platform offscreen:configfile=${file})
    set(${variable} "QT_QPA_PLATFORM=${platform};ORVEX_TEST_PLATFORM=${platform}" PARENT_SCOPE)
endfunction()

# orvex_screen_tests(TARGET FILTER) runs some of a test program's tests on the screens that users have as well.
function(orvex_screen_tests target filter)
    foreach(screen 1024x600@1 1366x768@1.25 1366x768@1.5 3840x2160@2)
        string(REGEX REPLACE "@.*" "" size ${screen})
        string(REGEX REPLACE ".*@" "" scale ${screen})
        orvex_screen(environment ${size})
        add_test(NAME ${target}_${screen} COMMAND ${target} --gtest_filter=${filter})
        set_tests_properties(${target}_${screen} PROPERTIES ENVIRONMENT "${environment};ORVEX_TEST_SCALE=${scale}")
    endforeach()
endfunction()

# orvex_test(TARGET [QT] [THREADS] SOURCES source... LIBS library...): a GoogleTest program, which is one CTest. QT: its
# main() makes a QApplication. THREADS: what it tests uses several threads; it gets the CTest label "threads".
function(orvex_test target)
    cmake_parse_arguments(ARG "QT;THREADS" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${target} ${ARG_SOURCES})
    orvex_common_options(${target})
    if(ARG_QT)
        target_link_libraries(${target} PRIVATE ${ARG_LIBS} orvex_testing_qt GTest::gmock Qt6::Test)
    else()
        target_link_libraries(${target} PRIVATE ${ARG_LIBS} orvex_testing GTest::gmock GTest::gtest_main)
    endif()
    # A Windows program finds its libraries beside itself.
    if(NOT WIN32)
        set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
    endif()
    add_test(NAME ${target} COMMAND ${target})
    orvex_screen(screen 1920x1080)
    set_tests_properties(${target} PROPERTIES ENVIRONMENT "${screen}")
    if(ARG_THREADS)
        set_tests_properties(${target} PROPERTIES LABELS threads)
        add_dependencies(orvex_thread_tests ${target})
    endif()
endfunction()
