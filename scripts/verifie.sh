#!/usr/bin/env bash
# The checked build in build-asan/ (AddressSanitizer, UndefinedBehaviorSanitizer
# and red zones inside the arena), then every test on it.
set -e
cd "$(dirname "$0")/.."
cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Release -DORVANE_SANITIZE=ON >/dev/null
cmake --build build-asan -j2
cd build-asan
ctest --output-on-failure --timeout 600 -j2 "$@"
