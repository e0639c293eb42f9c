# Formats every source with clang-format; with --check, lists what differs and changes nothing.
mapfile -t sources < <(git ls-files --cached --others --exclude-standard -- '*.cpp' '*.h')
if [ ${#sources[@]} = 0 ]; then
    echo "orvex: git lists no sources here" >&2
    return 1
fi
if [ "${1:-}" = --check ]; then
    echo "format: ${#sources[@]} files"
    clang-format --dry-run -Werror "${sources[@]}"
else
    clang-format -i "${sources[@]}"
fi
