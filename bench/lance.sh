#!/usr/bin/env bash
# Runs every benchmark on the release build, from the repository root.
set -e
cd "$(dirname "$0")/.."
bash scripts/construit.sh >/dev/null
python3 bench/demarrage.py build/orvane
build/bench/bench_bloc
build/bench/bench_objet
