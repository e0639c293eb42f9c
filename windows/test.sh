# Every test of the Windows build, under Wine, in a prefix of its own that is gone afterwards.
source windows/build.sh

prefix=$(mktemp -d)
export WINEPREFIX=$prefix/wine
end_prefix() {
    wineserver --kill >/dev/null 2>&1 || true
    wineserver --wait >/dev/null 2>&1 || true
    rm -rf "$prefix"
}
trap end_prefix EXIT

# The prefix is made once, and its server stays between the programs, so that each starts in a fraction of a second.
windows/wine wineboot --init
wineserver --persistent
ctest --preset windows "$@"
