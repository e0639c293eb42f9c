# The reference host with the files given, or with a sample project; without a display the dialog is driven offscreen
# and photographed in light and dark, and at twice the size.
source tools/build.sh dev

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [[ ${QT_QPA_PLATFORM:-} != offscreen* ]]; then
    exec build/dev/bin/orvex-host "$@"
fi
mkdir -p build/pictures
# The platform's own screen is smaller than the dialog.
export QT_QPA_PLATFORM="offscreen:configfile=$PWD/tools/offscreen-screen.json"
drive() {
    build/dev/bin/orvex-host --drive --pictures build/pictures "$@" 2> >(grep -v -e XDG_RUNTIME_DIR -e propagateSizeHints >&2)
}
drive -- "$@"
for look in --dark '--scale 2' '--dark --scale 2'; do
    # shellcheck disable=SC2086  # the looks are words
    drive $look -- "$@" >/dev/null
done
echo "Pictures of the dialog and the host: build/pictures/"
