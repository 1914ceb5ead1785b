#!/usr/bin/env bash
# The noise's speed on one core (at least 20 M points/s), and the proof
# that noise_vec and turbulence_vec call no transcendental function: their
# machine code names no sin, cos, exp, log, pow or atan. Run from the
# repository root after a release build.
set -e
cd "$(dirname "$0")/.."
lib=build/liborvane_lib.a
code=$(objdump -d --no-show-raw-insn -C "$lib" 2>/dev/null |
  awk '/^[0-9a-f]+ <(noise_vec|turbulence_vec)\(/{f=1; next} /^[0-9a-f]+ </{f=0} f')
[ -n "$code" ] || { echo "noise_vec not found in $lib"; exit 1; }
if echo "$code" | grep -E 'call.*<(sin|cos|tan|exp|log|pow|atan|sqrt|floor)'; then
  echo "a library call inside the noise"; exit 1
fi
echo "noise_vec, turbulence_vec: no library call"
taskset -c 0 build/bench/bench_bruit
