# The reference host with the given files, or with a sample project. Without a display the dialog is driven offscreen, and
# pictures of it are left in build/pictures/: light and dark, at normal and at double scale.
source tools/build.sh dev orvex-host
root=$PWD
cd "$called_from"

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [[ ${QT_QPA_PLATFORM:-} != offscreen* ]]; then
    exec "$root/build/dev/bin/orvex-host" "$@"
fi
mkdir -p "$root/build/pictures"
# Qt's own offscreen screen is smaller than the dialog at double scale.
export QT_QPA_PLATFORM="offscreen:configfile=$root/tools/offscreen-screen.json"
drive() {
    "$root/build/dev/bin/orvex-host" --drive --pictures "$root/build/pictures" "$@" 2> >(grep -v -e XDG_RUNTIME_DIR -e propagateSizeHints >&2)
}
drive -- "$@"
for look in --dark '--scale 2' '--dark --scale 2'; do
    # shellcheck disable=SC2086  # the looks are words
    drive $look -- "$@" >/dev/null
done
echo "Pictures of the dialog and the host: build/pictures/"
