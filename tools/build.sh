# Configures a preset (once) and builds it: build.sh [PRESET [TARGET...]]; dev if no preset is given, everything if no target
# is. Prints how far it is every half minute, the compiler's output if it fails, and nothing if all is up to date.
source tools/deps.sh

# Runs a command; its output is shown only if it fails, without ninja's progress lines.
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

# Passes ninja's output on and prints a line to the terminal at the first step and every half minute.
show_progress() {
    local preset=$1 next=$SECONDS line
    while IFS= read -r line; do
        printf '%s\n' "$line"
        if ((SECONDS >= next)) && [[ $line =~ ^\[([0-9]+)/([0-9]+)\] && $line != *'Re-running CMake'* ]]; then
            echo "orvex: building $preset: ${BASH_REMATCH[1]} of ${BASH_REMATCH[2]}" >&3
            next=$((SECONDS + 30))
        fi
    done
}

compile() {
    local preset=$1
    shift
    NINJA_STATUS='[%f/%t] ' cmake --build --preset "$preset" ${1:+--target "$@"} 2>&1 | show_progress "$preset"
}

build_preset() {
    local preset=$1
    if [ ! -f "build/$preset/build.ninja" ]; then
        echo "orvex: configuring $preset" >&2
        quietly cmake --preset "$preset"
    fi
    quietly compile "$@" 3>&2
}

build_preset "${@:-dev}"
