#!/usr/bin/env bash
# run.sh RUNS [TARGET...]: builds preset fuzz and gives each fuzzer, or the named ones, so many runs. What they
# learn stays in build/fuzz/corpus. A finding is a file build/fuzz/TARGET-..., and ends the script.
set -euo pipefail
cd "$(dirname "$0")/../../.."
targets=("${@:2}")
[ ${#targets[@]} -gt 0 ] || targets=(route console database switch bus check)
cmake --preset fuzz
cmake --build --preset fuzz --target "${targets[@]/#/fuzz_}"
export TMPDIR=/dev/shm ASAN_OPTIONS=quarantine_size_mb=4:allocator_release_to_os_interval_ms=-1
fixed=()  # the sanitizers want their memory where address randomisation may have put something else
! setarch -R true 2>/dev/null || fixed=(setarch -R)
for target in "${targets[@]}"; do
    mkdir -p "build/fuzz/corpus/$target"
    dictionary=$(find tests/campaigns/fuzz -name "$target.dict")
    "${fixed[@]}" "build/fuzz/bin/fuzz_$target" -runs="$1" -max_len="$([[ "$target" = route || "$target" = check ]] && echo 4096 || echo 256)" \
        -timeout=5 -rss_limit_mb=1024 -malloc_limit_mb=256 -print_final_stats=1 ${dictionary:+-dict="$dictionary"} \
        -artifact_prefix="build/fuzz/$target-" "build/fuzz/corpus/$target" "tests/campaigns/fuzz/corpus/$target"
done
