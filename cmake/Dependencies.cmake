# The libraries of the README's table, as targets of the same names on both platforms.
find_package(Threads REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Network Widgets Test)
find_package(SQLite3 REQUIRED)
find_package(GDAL 3.6 CONFIG REQUIRED)
find_package(PROJ REQUIRED)
find_package(LASzip REQUIRED)
# Exiv2's package file names Expat's target without finding it.
find_package(EXPAT REQUIRED)
find_package(exiv2 CONFIG REQUIRED)

# For tests. The system's own Python has the packages of tools/packages.txt; another one on the PATH may not.
find_program(ORVEX_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)

if(NOT WIN32)
    find_package(fmt REQUIRED)
    find_package(nlohmann_json 3.11 REQUIRED)
    find_package(spdlog REQUIRED)
    find_package(GTest REQUIRED)
    find_package(OpenSSL REQUIRED)
    # Debian's header holds declarations only; the code is in a shared library, which was built with OpenSSL.
    find_library(ORVEX_HTTPLIB cpp-httplib REQUIRED)
    add_library(orvex_httplib INTERFACE)
    add_library(httplib::httplib ALIAS orvex_httplib)
    target_compile_definitions(orvex_httplib INTERFACE CPPHTTPLIB_OPENSSL_SUPPORT)
    target_link_libraries(orvex_httplib INTERFACE "${ORVEX_HTTPLIB}" OpenSSL::SSL OpenSSL::Crypto Threads::Threads)
    return()
endif()

# Headers alone, and the test framework's sources, serve every platform: they are taken from the build machine's own
# packages. A folder of links offers these and nothing else of its include folder.
set(headers "${CMAKE_BINARY_DIR}/include")
file(MAKE_DIRECTORY "${headers}")
foreach(library fmt nlohmann spdlog)
    file(CREATE_LINK "/usr/include/${library}" "${headers}/${library}" SYMBOLIC)
    set(target orvex_${library}_headers)
    add_library(${target} INTERFACE)
    target_include_directories(${target} SYSTEM INTERFACE "${headers}")
endforeach()
add_library(nlohmann_json::nlohmann_json ALIAS orvex_nlohmann_headers)
add_library(fmt::fmt ALIAS orvex_fmt_headers)
target_compile_definitions(orvex_fmt_headers INTERFACE FMT_HEADER_ONLY)
add_library(spdlog::spdlog ALIAS orvex_spdlog_headers)
# File names are UTF-16 here, so that a user's name with an umlaut makes no difference.
target_compile_definitions(orvex_spdlog_headers INTERFACE SPDLOG_FMT_EXTERNAL SPDLOG_WCHAR_FILENAMES)
target_link_libraries(orvex_spdlog_headers INTERFACE fmt::fmt)

# Every target has this folder in its include path.
file(CREATE_LINK "/usr/include/boost" "${headers}/boost" SYMBOLIC)

set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
