# Runs every fuzzer for a number of seconds (60 by default), each from its seeds and what it found before, which is kept in
# build/fuzz/corpus/. An input that fails is left in build/fuzz/, and its name is printed.
seconds=${1:-60}
if ! [[ $seconds =~ ^[1-9][0-9]*$ ]]; then
    echo "orvex: fuzz: '$seconds' is not a number of seconds" >&2
    exit 2
fi
source tools/build.sh fuzz orvex_fuzzers

fuzz_one() {
    local program=build/fuzz/bin/$1_fuzz corpus=build/fuzz/corpus/$1 log=build/fuzz/$1.log
    "${program}_seeds" "$corpus"
    if ! "$program" -max_total_time="$seconds" -artifact_prefix="build/fuzz/$1-" "$corpus" >"$log" 2>&1; then
        tail -n 50 "$log" >&2
        echo "orvex: fuzzer '$1' found a fault (build/fuzz/$1-*)" >&2
        return 1
    fi
    echo "$1: $(grep -c . < <(ls "$corpus")) inputs, $(sed -n 's/^Done \([0-9]*\) runs.*/\1/p' "$log") runs, no fault"
}

# All at once: a fuzzer uses one core.
runs=()
status=0
for program in build/fuzz/bin/*_fuzz; do
    name=${program##*/}
    fuzz_one "${name%_fuzz}" &
    runs+=($!)
done
for run in "${runs[@]}"; do
    wait "$run" || status=1
done
exit $status
