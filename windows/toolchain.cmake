# Cross-compiles for 64-bit Windows with Debian's mingw-w64 (posix threads, which std::thread needs). The libraries come
# from the prefix that windows/deps.sh lays out: qt/ and geo/.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)
set(ORVEX_WIDL ${triplet}-widl)
set(ORVEX_DLLTOOL ${triplet}-dlltool)

if(DEFINED ENV{ORVEX_WINDOWS_PREFIX})
    set(ORVEX_WINDOWS_PREFIX "$ENV{ORVEX_WINDOWS_PREFIX}" CACHE PATH "Folder of qt/ and geo/")
elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(ORVEX_WINDOWS_PREFIX "$ENV{XDG_CACHE_HOME}/orvex/windows-sysroot" CACHE PATH "Folder of qt/ and geo/")
else()
    set(ORVEX_WINDOWS_PREFIX "$ENV{HOME}/.cache/orvex/windows-sysroot" CACHE PATH "Folder of qt/ and geo/")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORVEX_WINDOWS_PREFIX)

set(CMAKE_FIND_ROOT_PATH "${ORVEX_WINDOWS_PREFIX}/qt" "${ORVEX_WINDOWS_PREFIX}/geo" /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# moc, rcc and the package files of Qt's tools are the build machine's.
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake)

set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/wine")
