# as_root COMMAND...: runs a command as root, by sudo if need be.
as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "orvex: this step needs root: $*" >&2
        return 1
    fi
}
