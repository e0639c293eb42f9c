# The inspection of the dialog without a window; builds quietly first.
source tools/build.sh dev >&2
root=$PWD
cd "$called_from"
exec "$root/build/dev/bin/orvex-inspect" "$@"
