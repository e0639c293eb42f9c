# Installs what the Windows build needs: the Debian packages of windows/packages.txt, and the sysroot, that is the Windows
# builds of Qt (qt/) and of the geographic libraries (geo/). ORVEX_WINDOWS_PREFIX names the folder that holds these two.
# The sysroot is unpacked from the archive that ORVEX_WINDOWS_SYSROOT names; without one, it is built from Debian's
# source packages, which takes most of an hour. Says nothing when all is there.
source tools/deps.sh

export ORVEX_WINDOWS_PREFIX=${ORVEX_WINDOWS_PREFIX:-${XDG_CACHE_HOME:-$HOME/.cache}/orvex/windows-sysroot}

# What the sysroot in place was made from; empty when there is none.
sysroot_origin() { cat "$ORVEX_WINDOWS_PREFIX/.origin" 2>/dev/null || true; }

# Moves a complete sysroot, which lies beside its place, there; the second argument is what it was made from.
place_sysroot() {
    local made=$1 origin=$2
    printf '%s\n' "$origin" >"$made/.origin"
    rm -rf "$ORVEX_WINDOWS_PREFIX"
    mv -T "$made" "$ORVEX_WINDOWS_PREFIX"
}

unpack_sysroot() {
    local archive=$1 origin=$2 folder=$ORVEX_WINDOWS_PREFIX.new
    echo "orvex: unpacking the Windows sysroot" >&2
    rm -rf "$folder"
    mkdir "$folder"
    if ! tar -C "$folder" --strip-components=1 -xf "$archive" || [ ! -d "$folder/qt" ] || [ ! -d "$folder/geo" ]; then
        rm -rf "$folder"
        echo "orvex: ORVEX_WINDOWS_SYSROOT: '$archive' is damaged, or not the archive of a Windows sysroot" >&2
        return 1
    fi
    place_sysroot "$folder" "$origin"
}

# Size and time tell one archive from another without reading it.
install_sysroot_archive() {
    local archive origin
    archive=$(cd "${called_from:-.}" && realpath -m -- "$1")
    if [ ! -r "$archive" ]; then
        echo "orvex: ORVEX_WINDOWS_SYSROOT: no file '$archive' can be read" >&2
        return 1
    fi
    origin="archive $(stat -L -c '%s %Y' "$archive")"
    [ "$(sysroot_origin)" = "$origin" ] || unpack_sysroot "$archive" "$origin"
}

# One at a time, since working copies share a sysroot. A folder that was not made here is used, but never replaced.
install_sysroot() (
    if [ -d "$ORVEX_WINDOWS_PREFIX" ] && [ -z "$(sysroot_origin)" ]; then
        [ -d "$ORVEX_WINDOWS_PREFIX/qt" ] && [ -d "$ORVEX_WINDOWS_PREFIX/geo" ] && return
        echo "orvex: ORVEX_WINDOWS_PREFIX: '$ORVEX_WINDOWS_PREFIX' holds something else than a Windows sysroot" >&2
        return 1
    fi
    mkdir -p "$(dirname "$ORVEX_WINDOWS_PREFIX")"
    exec 9>"$ORVEX_WINDOWS_PREFIX.lock"
    flock 9
    if [ -n "${ORVEX_WINDOWS_SYSROOT:-}" ]; then
        install_sysroot_archive "$ORVEX_WINDOWS_SYSROOT"
    elif [ -z "$(sysroot_origin)" ]; then
        echo "orvex: ORVEX_WINDOWS_SYSROOT names no archive" >&2
        return 1
    fi
)

install_missing windows/packages.txt
install_sysroot
