#!/usr/bin/env bash
# Builds the fuzz harnesses (preset "fuzz": clang, AddressSanitizer,
# UndefinedBehaviorSanitizer, contract checks on) and runs each for the given
# number of seconds, starting from the seed corpus in fuzz/corpus/. New inputs
# go to a scratch folder, so the repository is not changed. Fails on the first
# crash, sanitizer report, contract breach or hang.
#
#   fuzz/run.sh [SECONDS] [HARNESS...]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
shift || true
harnesses=("$@")
if [ ${#harnesses[@]} -eq 0 ]; then
  harnesses=(matrix functions linalg geometry fitting estimators)
  [ -d tools/quadrel-fit ] && harnesses+=(reader reader_ply reader_pcd reader_las)
fi

cmake --preset fuzz > /dev/null
cmake --build --preset fuzz

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
for harness in "${harnesses[@]}"; do
  mkdir -p "$scratch/$harness"
  cp fuzz/corpus/"$harness"/* "$scratch/$harness"/ 2>/dev/null || true
  echo "fuzz: $harness for ${seconds}s"
  if ! build-fuzz/bin/fuzz_"$harness" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=4096 \
      -print_final_stats=1 -artifact_prefix="$scratch/" "$scratch/$harness" \
      > "$scratch/$harness.log" 2>&1; then
    tail -n 40 "$scratch/$harness.log"
    echo "fuzz: $harness failed; the input is in the lines above" >&2
    exit 1
  fi
  grep -E "stat::number_of_executed_units|Done" "$scratch/$harness.log" | tr '\n' ' '
  echo
done
