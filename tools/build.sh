# Configures (once) and builds a preset; the first argument names it, dev when absent. Says nothing when all is up to date.
source tools/deps.sh

# Runs a command; its output is shown only when it fails, without ninja's progress lines.
quietly() {
    local log
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1; then
        grep -v '^\[' "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}

build_preset() {
    local preset=$1
    if [ ! -f "build/$preset/build.ninja" ]; then
        echo "orvex: configuring $preset" >&2
        quietly cmake --preset "$preset"
    fi
    if [ -t 2 ]; then
        # On a terminal ninja keeps one line up to date.
        cmake --build --preset "$preset" >&2
    elif ! ninja -C "build/$preset" -n | grep -q 'no work to do'; then
        echo "orvex: building $preset" >&2
        quietly cmake --build --preset "$preset"
    fi
}

build_preset "${1:-dev}"
