#!/usr/bin/env bash
# The software renderer against Mesa's OpenGL on a 100,352-triangle sphere
# at 768 x 576, under a private Xvfb; run from the repository root after a
# release build (bench/lance.sh builds first).
set -e
cd "$(dirname "$0")/.."
LIBGL_ALWAYS_SOFTWARE=1 xvfb-run -a -s "-screen 0 1024x768x24" build/bench/bench_rendu "$@"
