# Benchmarks, from the release build: one line per figure, and the same as JSON in build/bench/.
source tools/build.sh release >&2

name=${1:-all}
mkdir -p build/bench
export QT_QPA_PLATFORM=offscreen
case "$name" in
    las | all) build/release/bin/orvex-bench-las --output build/bench/las.json ;;
    *)
        echo "orvex: no benchmark is called '$name' (there is: las)" >&2
        exit 2
        ;;
esac
