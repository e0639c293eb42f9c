# The inspection of the dialog without a window. Only its report goes to standard output.
source tools/build.sh dev orvex-inspect >&2
root=$PWD
cd "$called_from"
exec "$root/build/dev/bin/orvex-inspect" "$@"
