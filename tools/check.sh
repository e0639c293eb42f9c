# Format, clang-tidy and the rules of the tree. clang-tidy looks at what the last day's commits and the work tree changed.
source tools/build.sh dev

status=0
mapfile -t sources < <(git ls-files --cached --others --exclude-standard -- '*.cpp' '*.h')

echo "format: ${#sources[@]} files"
clang-format --dry-run -Werror "${sources[@]}" || status=1

if [ "${1:-}" = --all ]; then
    changed=("${sources[@]}")
else
    base=$(git rev-list -1 --before='24 hours ago' HEAD)
    if [ -n "$base" ]; then
        mapfile -t changed < <({ git diff --name-only "$base" -- '*.cpp'; git ls-files --others --exclude-standard -- '*.cpp'; } | sort -u)
    else
        changed=("${sources[@]}")
    fi
fi
units=()
for file in "${changed[@]}"; do
    case "$file" in *.cpp) [ -f "$file" ] && units+=("$file") ;; esac
done
echo "clang-tidy: ${#units[@]} files"
if [ ${#units[@]} -gt 0 ]; then
    printf '%s\0' "${units[@]}" |
        xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build/dev --quiet --warnings-as-errors='*' 2>/dev/null || status=1
fi

echo "rules:"
ctest --preset dev -R '^rules$' --output-on-failure || status=1
exit $status
