# Format, clang-tidy and the rules of the source tree. clang-tidy looks at the sources changed in the last HOURS (24), whether
# committed or not; at every source, and more thoroughly, with --all. Usage: check.sh [--all | HOURS]
if ! [[ ${1:-24} =~ ^(--all|[1-9][0-9]*)$ ]]; then
    echo "orvex: check: '$1' is neither --all nor a number of hours" >&2
    exit 2
fi
source tools/build.sh dev

status=0
mapfile -t sources < <(git ls-files --cached --others --exclude-standard -- '*.cpp' '*.h')

(source tools/format.sh --check) || status=1

if [ "${1:-}" = --all ]; then
    changed=("${sources[@]}")
else
    base=$(git rev-list -1 --before="${1:-24} hours ago" HEAD)
    if [ -n "$base" ]; then
        mapfile -t changed < <({ git diff --name-only "$base" -- '*.cpp'; git ls-files --others --exclude-standard -- '*.cpp'; } | sort -u)
    else
        changed=("${sources[@]}")
    fi
fi
units=()
test_units=()
windows_units=()
for file in "${changed[@]}"; do
    [ -f "$file" ] || continue
    case "$file" in
        packaging/tests/consumer/*) ;;  # built against an installed component only
        *_win.cpp | *WinTest.cpp) windows_units+=("$file") ;;
        */tests/*.cpp) test_units+=("$file") ;;
        *.cpp) units+=("$file") ;;
    esac
done

# tidy BUILD_FOLDER [CLANG_TIDY_ARGUMENT...] <NUL-SEPARATED_FILES
# clang cannot read GCC's precompiled headers and does not know all of its options: it gets the commands without them.
tidy() {
    local folder=$1/tidy
    mkdir -p "$folder"
    sed -E 's/ -W(no-error=)?invalid-pch| -fpch-preprocess| -fno-keep-inline-dllexport| -include [^ ]*cmake_pch\.hxx//g' \
        "$1/compile_commands.json" >"$folder/compile_commands.json"
    shift
    xargs -0 -r -n 1 -P "$(nproc)" clang-tidy -p "$folder" --quiet --warnings-as-errors='*' "$@" 2>/dev/null || status=1
}

# The analyzer more than doubles the time. It looks at everything with --all, but never at tests: all of their paths are run
# under the sanitizers.
quick='--checks=-clang-analyzer-*'
product_checks=("$quick")
[ "${1:-}" != --all ] || product_checks=()
echo "clang-tidy: $((${#units[@]} + ${#test_units[@]})) files"
[ ${#units[@]} = 0 ] || tidy build/dev "${product_checks[@]}" < <(printf '%s\0' "${units[@]}")
[ ${#test_units[@]} = 0 ] || tidy build/dev "$quick" < <(printf '%s\0' "${test_units[@]}")

# Sources of the Windows build alone are checked with the headers and the target of mingw-w64.
if [ ${#windows_units[@]} -gt 0 ] && [ -f build/windows/compile_commands.json ]; then
    echo "clang-tidy for Windows: ${#windows_units[@]} files"
    headers=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name=include)")/include/c++
    tidy build/windows "${product_checks[@]}" --extra-arg=--target=x86_64-w64-mingw32 "--extra-arg=-isystem$headers" \
        "--extra-arg=-isystem$headers/x86_64-w64-mingw32" --extra-arg=-Wno-unknown-warning-option \
        --extra-arg=-Wno-unused-command-line-argument < <(printf '%s\0' "${windows_units[@]}")
elif [ ${#windows_units[@]} -gt 0 ]; then
    echo "clang-tidy: ${#windows_units[@]} Windows files skipped; run ./orvex windows build first"
fi

echo "rules:"
ctest --preset dev -R '^rules$' --output-on-failure || status=1
exit $status
