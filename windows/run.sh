# The reference host of the Windows build, under Wine; without a display the dialog is driven offscreen and photographed.
source windows/build.sh
if [ -n "${DISPLAY:-}" ]; then
    exec windows/wine build/windows/bin/orvex-host.exe "$@"
fi
mkdir -p build/pictures/windows
windows/wine build/windows/bin/orvex-host.exe --drive --pictures build/pictures/windows "$@"
echo "Pictures of the dialog and the host: build/pictures/windows/"
