# The reference host of the Windows build, under Wine; without a display the dialog is driven offscreen and photographed.
source windows/build.sh
if [ -n "${DISPLAY:-}" ]; then
    exec windows/wine build/windows/bin/orvex-host.exe "$@"
fi
mkdir -p build/pictures/windows
drive() { windows/wine build/windows/bin/orvex-host.exe --drive --pictures build/pictures/windows "$@"; }
drive "$@"
for look in --dark '--scale 2' '--dark --scale 2'; do
    # shellcheck disable=SC2086  # the looks are words
    drive $look "$@" >/dev/null
done
echo "Pictures of the dialog and the host: build/pictures/windows/"
