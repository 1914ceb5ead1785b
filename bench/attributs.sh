#!/usr/bin/env bash
# An attribute written then read back, from the language: time per
# statement (two statements a turn), the loop's own cost included.
set -e
cd "$(dirname "$0")/.."
orvane=${ORVANE:-build/orvane}
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
ln -s "$PWD/env" "$tmp/env"
cat >"$tmp/attributs.ova" <<'F'
vol(1)
t0 = num systeme
pour (i = 1, 200000) { vol(1) coul(i, 0, 0); x = vol(1) coul }
t1 = num systeme
$ t1 - t0
F
racine=$PWD
s=$(cd "$tmp" && "$racine/$orvane" gra=0 ID ini=env/initb.h <attributs.ova | grep -oE '[0-9]+\.[0-9]+' | tail -1)
awk -v s="$s" 'BEGIN { printf "attribute write + read from the language: %.3f us per statement (goal < 1)\n", s * 1e6 / 400000 }'
