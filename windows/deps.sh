# Installs what the Windows build needs: the Debian packages of windows/packages.txt, and the sysroot, that is the Windows
# builds of Qt (qt/) and of the geographic libraries (geo/). ORVEX_WINDOWS_PREFIX names the folder that holds these two.
# The sysroot is unpacked from the archive that ORVEX_WINDOWS_SYSROOT names; without one, and when there is none yet, it
# is built from Debian's source packages, which takes most of an hour. Says nothing when all is there.
source tools/deps.sh

# A path as it was meant where the command was called.
given_path() { (cd "${called_from:-.}" && realpath -m -- "$1"); }

ORVEX_WINDOWS_PREFIX=$(given_path "${ORVEX_WINDOWS_PREFIX:-${XDG_CACHE_HOME:-$HOME/.cache}/orvex/windows-sysroot}")
export ORVEX_WINDOWS_PREFIX

# What the sysroot in place was made from; empty when there is none.
sysroot_origin() { cat "$ORVEX_WINDOWS_PREFIX/.origin" 2>/dev/null || true; }

# Moves a complete sysroot from its temporary name to its place; the argument is what it was made from.
place_sysroot() {
    printf '%s\n' "$1" >"$ORVEX_WINDOWS_PREFIX.new/.origin"
    rm -rf "$ORVEX_WINDOWS_PREFIX.old"
    [ ! -d "$ORVEX_WINDOWS_PREFIX" ] || mv -T "$ORVEX_WINDOWS_PREFIX" "$ORVEX_WINDOWS_PREFIX.old"
    mv -T "$ORVEX_WINDOWS_PREFIX.new" "$ORVEX_WINDOWS_PREFIX"
    rm -rf "$ORVEX_WINDOWS_PREFIX.old"
}

unpack_sysroot() {
    local archive=$1 folder=$ORVEX_WINDOWS_PREFIX.new
    echo "orvex: unpacking the Windows sysroot" >&2
    rm -rf "$folder"
    mkdir "$folder"
    if ! tar -C "$folder" --strip-components=1 -xf "$archive" || [ ! -d "$folder/qt" ] || [ ! -d "$folder/geo" ]; then
        rm -rf "$folder"
        echo "orvex: ORVEX_WINDOWS_SYSROOT: '$archive' is damaged, or not the archive of a Windows sysroot" >&2
        return 1
    fi
}

# Size and time tell one archive from another without reading it.
install_sysroot_archive() {
    local archive origin
    archive=$(given_path "$1")
    if [ ! -f "$archive" ] || [ ! -r "$archive" ]; then
        echo "orvex: ORVEX_WINDOWS_SYSROOT: no file '$archive' can be read" >&2
        return 1
    fi
    origin="archive $(stat -L -c '%s %Y' "$archive")"
    if [ "$(sysroot_origin)" != "$origin" ]; then
        unpack_sysroot "$archive"
        place_sysroot "$origin"
    fi
}

# A sysroot from an archive will do. One that was built is brought up to date with its script; only what that changed is
# built again.
install_built_sysroot() {
    local origin
    origin="build $(cksum <windows/sysroot.sh)"
    case "$(sysroot_origin)" in "$origin" | archive*) return ;; esac
    bash windows/sysroot.sh "$ORVEX_WINDOWS_PREFIX-build"
    rm -rf "$ORVEX_WINDOWS_PREFIX.new"
    cp -a "$ORVEX_WINDOWS_PREFIX-build/windows-sysroot" "$ORVEX_WINDOWS_PREFIX.new"
    place_sysroot "$origin"
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
    else
        install_built_sysroot
    fi
)

install_missing windows/packages.txt
install_sysroot
