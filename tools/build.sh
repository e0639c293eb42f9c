# Configures (once) and builds a preset; the first argument names it, dev when absent. Says nothing when all is up to date.
source tools/deps.sh

preset=${1:-dev}
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if [ ! -f "build/$preset/build.ninja" ]; then
    echo "orvex: configuring $preset" >&2
    cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" >&2; rm -rf "build/$preset/CMakeCache.txt"; exit 1; }
fi
if [ -t 2 ]; then
    # On a terminal ninja keeps one line up to date; what it printed is wiped when all went well.
    cmake --build --preset "$preset" >&2 || exit 1
elif ninja -C "build/$preset" -n | grep -q 'no work to do'; then
    :
else
    echo "orvex: building $preset" >&2
    cmake --build --preset "$preset" >"$log" 2>&1 || { grep -v '^\[' "$log" >&2; exit 1; }
fi
