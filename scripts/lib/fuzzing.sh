# Building and running the fuzz targets; sourced after common.sh.
ci_fuzz=build/ci-fuzz
fuzz_targets=(property_list json storage)

build_fuzzers() {
  step "Building the fuzz targets"
  cmake --preset fuzz -B "$ci_fuzz" --log-level=WARNING -DVELWHITEBOARD_WERROR=ON
  cmake --build "$ci_fuzz" --target "${fuzz_targets[@]/%/_fuzzer}"
}

# fuzz_all SECONDS [PROCESSES]: every target for that long. What is learnt stays in the build folder for
# the next time; an input that breaks something is kept there too and belongs into fuzz/regressions.
fuzz_all() {
  local target
  for target in "${fuzz_targets[@]}"; do
    step "Fuzzing: $target, $1 s"
    fuzz "$target" "$1" "${2:-1}"
  done
}

fuzz() {
  local target=$1 seconds=$2 processes=$3
  local learnt=$ci_fuzz/learnt/$target found=$ci_fuzz/found/$target
  local options=(-max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -print_final_stats=1
    -artifact_prefix="$found/")
  [[ ! -f fuzz/dictionaries/$target.dict ]] || options+=(-dict="fuzz/dictionaries/$target.dict")
  [[ $processes -eq 1 ]] || options+=(-fork="$processes")
  local inputs=("$learnt" "fuzz/corpus/$target")
  [[ ! -d fuzz/regressions/$target ]] || inputs+=("fuzz/regressions/$target")
  mkdir -p "$learnt" "$found"
  "$ci_fuzz/fuzz/${target}_fuzzer" "${options[@]}" "${inputs[@]}" 2>"$found/log" ||
    { tail -n 50 "$found/log" >&2
      fail "$target: the input is in $found; keep it in fuzz/regressions/$target"; }
  grep -E '^(Done|stat::number_of_executed_units|stat::average_exec)|^#[0-9]+: cov' "$found/log" |
    tail -n 3
}
