# Installs the packages in $packages in a clean root of this machine's Debian release, uses them and removes them again; see
# use-packages.sh. Needs root, or a kernel that lets users have namespaces of their own.
release=$(machine_release)
if [ "$(id -u)" != 0 ] && ! unshare --user --map-root-user true 2>/dev/null; then
    echo 'orvex: skipped the test of the packages: it needs root or user namespaces' >&2
    exit 0
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
chmod 755 "$work"
cp "$packages"/*.deb "$work"
cp -r packaging/tests/consumer "$work/consumer"
if [ "$release" = bookworm ]; then
    laszip_source >"$work/laszip.sources"
    laszip_pin >"$work/laszip.pref"
fi
mmdebstrap --quiet --variant=apt --mode=auto --dpkgopt=force-unsafe-io \
    --customize-hook="packaging/use-packages.sh \"\$1\" '$work'" "$release" /dev/null "$(archive_address "$release")"
echo 'orvex: the packages were installed in a clean root, used and removed'
