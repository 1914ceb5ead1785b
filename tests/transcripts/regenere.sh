#!/usr/bin/env bash
# Rewrites the expected output of the named transcripts (or all) from the
# current build; read the diff before committing it.
set -e
cd "$(dirname "$0")/../.."
bin=${ORVANE:-build/orvane}
noms=("$@")
[ ${#noms[@]} -gt 0 ] || noms=($(ls tests/transcripts/*.in | xargs -n1 basename | sed 's/\.in$//'))
for n in "${noms[@]}"; do
  cmake -DORVANE="$(realpath "$bin")" -DENTREE="$PWD/tests/transcripts/$n.in" -DREGENERE=1 -P tests/transcripts/compare.cmake
done
