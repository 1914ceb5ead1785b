#!/usr/bin/env bash
# The dynamics against numpy, from one run: the vertex step of a 100 x 100
# spring grid (goal: 10x faster than numpy), the body step of 100 bodies in
# a tree (goal: under 0.1 ms) and the Bloc allocations of the timed steps.
set -e
cd "$(dirname "$0")/.."
py=python3
$py -c 'import numpy' 2>/dev/null || py=/usr/bin/python3
$py bench/dynamique_numpy.py "${BUILD:-build}/bench/bench_dyn"
