# Debian packages of the release build, in build/packages/deb/: package.sh [test]. With "test" they are also installed, used and
# removed in a clean root.
source tools/build.sh release orvex_installed
install_missing packaging/packages.txt

packages=$PWD/build/packages/deb
tree=$packages/tree
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/release/CMakeCache.txt)
maintainer=$(sed -n 's/^Maintainer: //p' packaging/debian/control)
rm -rf "$packages"
mkdir -p "$tree"
cp -r packaging/debian "$tree/debian"
printf 'orvexcommon (%s-1) unstable; urgency=medium\n\n  * Release %s; what is new is in the changelog of the component.\n\n -- %s  %s\n' \
    "$version" "$version" "$maintainer" "$(git log -1 --format=%aD 2>/dev/null || LC_ALL=C date -R)" >"$tree/debian/changelog"

build_packages() (
    cd "$tree"
    ORVEX_SOURCE=$1 ORVEX_BUILD=$1/build/release dpkg-buildpackage --build=binary --no-sign
)
quietly build_packages "$PWD"
rm -rf "$tree"
# The packages are not for Debian's archive, whose first uploads close a report.
lintian --allow-root --suppress-tags initial-upload-closes-no-bugs --fail-on error,warning "$packages"/*.changes
(cd "$packages" && du -h -- *.deb)
if [ "${1:-}" = test ]; then
    source packaging/test-deb.sh
fi
