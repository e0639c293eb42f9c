# Builds the component for release and installs it: install.sh [PREFIX]; /usr/local if none is given. Asks for root only if
# the prefix belongs to somebody else.
prefix=$(cd "$called_from" && realpath -m -- "${1:-/usr/local}")
# A package may have been made of the same build, and lies elsewhere.
if [ -f build/release/CMakeCache.txt ]; then
    cmake --preset release -U CMAKE_INSTALL_LIBDIR -D CMAKE_SKIP_INSTALL_RPATH=OFF >/dev/null
fi
source tools/build.sh release orvex_installed
source tools/prefix.sh

at_prefix cmake --install build/release --prefix "$prefix" >/dev/null
# Root's would be in the way of the next one who installs.
rm -f build/release/install_manifest.txt
update_loader
echo "orvex: installed in $prefix; './orvex uninstall $prefix' removes it"
