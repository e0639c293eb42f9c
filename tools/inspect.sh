# The inspection of the dialog without a window; builds quietly first.
source tools/build.sh dev >&2
exec build/dev/bin/orvex-inspect "$@"
