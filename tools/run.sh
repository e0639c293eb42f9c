# The reference host with the files given, or with a sample project; without a display the dialog is driven offscreen.
source tools/build.sh dev

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [ "${QT_QPA_PLATFORM:-}" != offscreen ]; then
    exec build/dev/bin/orvex-host "$@"
fi
mkdir -p build/pictures
export QT_QPA_PLATFORM=offscreen
exec build/dev/bin/orvex-host --drive --pictures build/pictures "$@"
