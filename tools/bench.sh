# Runs the benchmarks of the release build: one line per figure, and the same as JSON in build/bench/.
benchmarks=(las list companion laz grid dem raster feature photo cloud)
# Further arguments go to the one benchmark: ./orvex bench companion --points 100000000
name=${1:-all}
if [ "$name" != all ]; then
    if [[ " ${benchmarks[*]} " != *" $name "* ]]; then
        echo "orvex: no benchmark is called '$name' (there are: ${benchmarks[*]})" >&2
        exit 2
    fi
    benchmarks=("$name")
fi
source tools/build.sh release "${benchmarks[@]/#/orvex-bench-}" >&2

mkdir -p build/bench
export QT_QPA_PLATFORM=offscreen
for benchmark in "${benchmarks[@]}"; do
    "build/release/bin/orvex-bench-$benchmark" --output "build/bench/$benchmark.json" "${@:2}" \
        2> >(grep -v -e XDG_RUNTIME_DIR -e propagateSizeHints >&2)
done
