# Builds, checks and draws QVR companions without a window. Only the program's lines go to standard output.
source tools/build.sh release orvex-companion >&2
root=$PWD
cd "$called_from"
exec "$root/build/release/bin/orvex-companion" "$@"
