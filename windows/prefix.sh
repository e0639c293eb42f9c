# A Wine prefix for this run alone; it and its server are gone when the run ends.
exit_commands=()
at_exit() { exit_commands+=("$(printf '%q ' "$@")"); }
run_exit_commands() {
    local command
    for command in "${exit_commands[@]}"; do
        eval "$command" >/dev/null 2>&1 || true
    done
}
trap run_exit_commands EXIT

WINEPREFIX=$(mktemp -d)/wine
export WINEPREFIX
at_exit wineserver --kill
at_exit wineserver --wait
at_exit rm -rf "${WINEPREFIX%/wine}"

# Made once. Its server, started anew, stays between the programs, so that each starts in a fraction of a second.
windows/wine wineboot --init
wineserver --wait
wineserver --persistent
