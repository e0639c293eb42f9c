# Functions for what changes the files below $prefix.
source tools/as_root.sh

# Runs a command, as root if the prefix (or the folder that it would be made in) cannot be written by this user.
at_prefix() {
    local folder=$prefix
    while [ ! -e "$folder" ]; do
        folder=$(dirname "$folder")
    done
    if [ -w "$folder" ]; then
        "$@"
    else
        as_root "$@"
    fi
}

# The loader finds libraries in these prefixes by a list that it keeps.
update_loader() {
    case "$prefix" in
        /usr | /usr/local) as_root ldconfig || true ;;
    esac
}
