#!/usr/bin/env bash
# Saving and loading a volume of 1,000,000 vertices and 1,000,000 faces in
# the binary form, against the disk's sequential throughput that dd
# measures in the same run on the same directory: dd writes as many bytes
# with conv=fdatasync, then reads them back. Prints both and the ratios
# (the goal is 0.5 or more for each).
set -e
cd "$(dirname "$0")/.."
bin=${1:-build/bench/bench_fichiers}
dir=$(mktemp -d "${TMPDIR:-/tmp}/orvane-bench-fichiers-XXXXXX")
trap 'rm -rf "$dir"' EXIT
read -r octets t_ecr t_lec < <("$bin" "$dir")
mo=$(( (octets + 1048575) / 1048576 ))
mesure() {  # seconds of a dd run: the best of three
  local best=""
  for i in 1 2 3; do
    local t0 t1
    t0=$(date +%s.%N)
    "$@" 2>/dev/null
    t1=$(date +%s.%N)
    best=$(awk -v a="$t0" -v b="$t1" -v m="$best" 'BEGIN { d = b - a; if (m == "" || d < m) m = d; print m }')
  done
  echo "$best"
}
d_ecr=$(mesure dd if=/dev/zero of="$dir/dd.bin" bs=1M count="$mo" conv=fdatasync)
d_lec=$(mesure dd if="$dir/dd.bin" of=/dev/null bs=1M)
awk -v o="$octets" -v te="$t_ecr" -v tl="$t_lec" -v de="$d_ecr" -v dl="$d_lec" -v mo="$mo" 'BEGIN {
  printf "volume de 1000000 sommets et 1000000 faces, %d octets\n", o
  printf "ecriture: orvane %7.1f Mo/s   dd %7.1f Mo/s   rapport %.2f\n", o / te / 1048576, mo / de, (o / te / 1048576) / (mo / de)
  printf "lecture:  orvane %7.1f Mo/s   dd %7.1f Mo/s   rapport %.2f\n", o / tl / 1048576, mo / dl, (o / tl / 1048576) / (mo / dl)
}'
