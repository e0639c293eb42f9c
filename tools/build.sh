# Configures (once) and builds a preset; the first argument names it, dev when absent.
source tools/deps.sh

preset=${1:-dev}
if [ ! -f "build/$preset/build.ninja" ]; then
    cmake --preset "$preset" >"build-$preset.log" 2>&1 || { cat "build-$preset.log" >&2; rm -f "build-$preset.log"; exit 1; }
    rm -f "build-$preset.log"
fi
ninja_status=$(mktemp)
if ! cmake --build --preset "$preset" >"$ninja_status" 2>&1; then
    grep -v '^\[' "$ninja_status" >&2 || cat "$ninja_status" >&2
    rm -f "$ninja_status"
    exit 1
fi
rm -f "$ninja_status"
