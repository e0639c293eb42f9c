# Builds the Windows sysroot from Debian's source packages, as an ordinary user: qt/ (Qt base) and geo/ (GDAL and what it
# stands on, Exiv2, LASzip) in the folder FOLDER/windows-sysroot. Takes most of an hour on two cores. A step is one
# function and one library; FOLDER remembers the steps that are done, so that a build that was interrupted goes on, and a
# step that was changed is done again. Usage: bash windows/sysroot.sh FOLDER
set -euo pipefail
source tools/deps.sh

readonly work=$1
readonly made=$work/windows-sysroot
readonly target=x86_64-w64-mingw32
step=

# apt with lists of its own, so that the machine's package sources stay as they are.
private_apt() {
    apt-get -qq -o Dir::Etc::sourcelist="$work/apt/source.sources" -o Dir::Etc::sourceparts=/dev/null \
        -o Dir::State::lists="$work/apt/lists" -o Dir::Cache="$work/apt/cache" -o APT::Sandbox::User="$(id -un)" "$@"
}

# LASzip's sources are those of the next Debian release, since this one has none.
offer_sources() {
    release=$(machine_release)
    next=$(next_release)
    mkdir -p "$work"/apt/{lists,cache}/partial
    printf 'Types: deb-src\nURIs: %s\nSuites: %s\nComponents: main\nSigned-By: %s\n' \
        "$(archive_address "$release")" "$release $next" "$debian_keyring" >"$work/apt/source.sources"
    private_apt update
}

# Makes the step's folder, with the unchanged sources of a package in source/. The tarball is enough: Debian's patches
# are for Debian.
unpack() {
    local package=$1 from=${2:-$release}
    rm -rf "${work:?}/$step"
    mkdir -p "$work/$step/source"
    cd "$work/$step"
    private_apt source --download-only --tar-only "$package/$from"
    tar -C source --strip-components=1 -xf "$package"_*.orig.tar.*
}

# The tree's own toolchain with what is built so far as its prefix, but no program for Windows runs here.
write_toolchain() {
    printf 'include("%s/windows/toolchain.cmake")\nunset(CMAKE_CROSSCOMPILING_EMULATOR)\n' "$PWD" >"$work/toolchain.cmake"
    export ORVEX_WINDOWS_PREFIX=$made
}

# Configures, builds and installs source/ (or the folder below it that is given) into qt/ or geo/. What is installed
# believes to lie in /windows-sysroot, so that nothing in it depends on the place where it was built.
cmake_library() {
    local tree=$1 source=$2
    shift 2
    cmake -S "$source" -B build -G Ninja -DCMAKE_TOOLCHAIN_FILE="$work/toolchain.cmake" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="/windows-sysroot/$tree" "$@"
    cmake --build build
    DESTDIR=$work cmake --install build --strip
}

# The one file of all sources is made here and compiled by hand: a cross configure would run tools that it built for
# Windows.
build_sqlite() {
    unpack sqlite3
    (cd source && ./configure --disable-tcl && make sqlite3.c)
    mkdir -p "$made"/geo/{bin,lib,include}
    $target-gcc-posix -O2 -DNDEBUG -DSQLITE_ENABLE_COLUMN_METADATA -DSQLITE_ENABLE_RTREE \
        '-DSQLITE_API=__declspec(dllexport)' -shared -s -static-libgcc source/sqlite3.c \
        -o "$made/geo/bin/libsqlite3-0.dll" -Wl,--out-implib,"$made/geo/lib/libsqlite3.dll.a"
    cp source/sqlite3.h source/src/sqlite3ext.h "$made/geo/include/"
}

build_expat() {
    unpack expat
    cmake_library geo source/expat -DEXPAT_BUILD_TOOLS=OFF -DEXPAT_BUILD_EXAMPLES=OFF -DEXPAT_BUILD_TESTS=OFF \
        -DEXPAT_BUILD_DOCS=OFF
}

build_openjpeg() {
    unpack openjpeg2
    cmake_library geo source -DBUILD_CODEC=OFF -DBUILD_STATIC_LIBS=OFF
}

build_zstd() {
    unpack libzstd
    cmake_library geo source/build/cmake -DZSTD_BUILD_PROGRAMS=OFF -DZSTD_BUILD_TESTS=OFF -DZSTD_BUILD_STATIC=OFF \
        -DZSTD_MULTITHREAD_SUPPORT=OFF
}

# GDAL needs the codec alone; the libraries beside it would only be shipped.
build_webp() {
    local options=() program
    unpack libwebp
    for program in ANIM_UTILS CWEBP DWEBP GIF2WEBP IMG2WEBP VWEBP WEBPINFO WEBPMUX EXTRAS; do
        options+=("-DWEBP_BUILD_$program=OFF")
    done
    cmake_library geo source -DBUILD_SHARED_LIBS=ON "${options[@]}"
    rm -f "$made"/geo/{bin,lib}/libwebp{decoder,demux,mux}.dll*
}

build_laszip() {
    unpack laszip "$next"
    cmake_library geo source
}

build_exiv2() {
    unpack exiv2
    cmake_library geo source -DEXIV2_BUILD_SAMPLES=OFF -DEXIV2_BUILD_EXIV2_COMMAND=OFF -DEXIV2_ENABLE_NLS=OFF
}

build_proj() {
    unpack proj
    cmake_library geo source -DENABLE_TIFF=OFF -DENABLE_CURL=OFF -DBUILD_APPS=OFF -DBUILD_PROJSYNC=OFF \
        -DBUILD_TESTING=OFF -DEXE_SQLITE3=/usr/bin/sqlite3
}

# All raster drivers that need nothing else (of the vector drivers, AVC is what AIGRID needs). Two of the data files that
# are installed are not free enough for Debian's tarball; they may be empty. HDF5 and ODBC would be the build machine's.
build_gdal() {
    local options=() driver
    unpack gdal
    touch source/data/{cubewerx_extra,ecw_cs}.wkt
    for driver in SHAPE DXF DGN S57 CAD KML GEOJSON AVC; do options+=("-DOGR_ENABLE_DRIVER_$driver=ON"); done
    cmake_library geo source -DGDAL_USE_INTERNAL_LIBS=ON -DGDAL_USE_ZSTD=ON -DGDAL_USE_WEBP=ON -DGDAL_USE_HDF5=OFF \
        -DGDAL_USE_ODBC=OFF -DGDAL_BUILD_OPTIONAL_DRIVERS=ON \
        -DOGR_BUILD_OPTIONAL_DRIVERS=OFF -DBUILD_APPS=OFF -DBUILD_TESTING=OFF -DBUILD_PYTHON_BINDINGS=OFF \
        -DBUILD_JAVA_BINDINGS=OFF -DBUILD_CSHARP_BINDINGS=OFF "${options[@]}"
}

# Without OpenGL, one function of the Windows plugin still names it; the header of tablet events is not in the tarball.
build_qt() {
    local options=() feature
    unpack qt6-base
    sed -i '/^static inline bool isSoftwareGl()/,/^}/s/^#if QT_CONFIG(dynamicgl)$/& \&\& !defined(QT_NO_OPENGL)/' \
        source/src/plugins/platforms/windows/qwindowswindow.cpp
    for feature in sql dbus opengl vulkan printsupport xml icu openssl direct2d directwrite3 pkg_config tabletevent \
        system_zlib system_pcre2 system_harfbuzz system_freetype system_png system_jpeg; do
        options+=("-DFEATURE_$feature=OFF")
    done
    cmake_library qt source -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF "${options[@]}"
}

# What a step does, to tell whether it was changed since it was done.
step_text() { declare -f "build_$1" cmake_library | cksum; }

run_step() {
    local name=$2 position=$3
    step=$1
    log=$work/logs/$step.log
    [ "$(cat "$work/done/$step" 2>/dev/null)" = "$(step_text "$step")" ] && return
    [ -n "${release:-}" ] || offer_sources
    echo "orvex: building $name for Windows ($position)..." >&2
    (cd "$work" && "build_$step") >"$log" 2>&1
    rm -rf "${work:?}/$step"
    step_text "$step" >"$work/done/$step"
}

report_failure() {
    if [ $? != 0 ] && [ -n "$step" ]; then
        tail -n 40 "$log" >&2
        echo "orvex: building $step for Windows failed; the whole log is $log" >&2
    fi
}

build_sysroot() {
    install_missing windows/sysroot-packages.txt
    mkdir -p "$work"/{logs,done}
    write_toolchain
    trap report_failure EXIT
    run_step sqlite SQLite '1 of 10'
    run_step expat Expat '2 of 10'
    run_step openjpeg OpenJPEG '3 of 10'
    run_step zstd zstd '4 of 10'
    run_step webp WebP '5 of 10'
    run_step laszip LASzip '6 of 10'
    run_step exiv2 Exiv2 '7 of 10'
    run_step proj PROJ '8 of 10'
    run_step gdal GDAL '9 of 10'
    run_step qt Qt '10 of 10'
}

build_sysroot
