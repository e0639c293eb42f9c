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

windows/wine wineboot --init >/dev/null 2>&1

# One idle program keeps Wine's services running until the end. They would else be started anew by whichever test finds
# none, keep its output open, and let CTest wait for the end of it; and every program would start slowly.
coproc keeper { exec windows/wine cmd >/dev/null 2>&1; }
windows/wine wineboot >/dev/null 2>&1
