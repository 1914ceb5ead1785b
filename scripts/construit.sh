#!/usr/bin/env bash
# Release build in build/ (one build at a time: this machine has 2 cores).
set -e
cd "$(dirname "$0")/.."
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release "$@" >/dev/null
cmake --build build -j2
