# Removes what install.sh has put below a prefix, and nothing else: uninstall.sh [PREFIX]; /usr/local if none is given.
prefix=$(cd "$called_from" && realpath -m -- "${1:-/usr/local}")
source tools/prefix.sh

at_prefix cmake -DPREFIX="$prefix" -P cmake/Manifest.cmake
update_loader
