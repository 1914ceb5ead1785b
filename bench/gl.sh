#!/usr/bin/env bash
# Frames per second of a smooth-shaded mesh of 10,000, 100,000 and
# 1,000,000 vertices drawn by orvane's real-time path (aff_rt) against the
# least C++ program that draws it with glDrawElements from a vertex buffer,
# both on the same OpenGL (Mesa under an Xvfb of their own), in one run.
# The goal is a ratio of at least 0.8 at every size.
set -e
cd "$(dirname "$0")/.."
b=${BUILD:-build}/bench
tailles="${TAILLES:-10000 100000 1000000}"
run() { bash tests/display/sous_xvfb.sh "$@"; }
ref=$(run "$b/gl_ref" $tailles)
orv=$(run "$b/bench_gl" $tailles)
echo "OpenGL, smooth-shaded mesh, 640 x 480 (${SECONDES:-2} s a size):"
paste <(echo "$ref") <(echo "$orv") | while read -r n f1 _ f2; do
  awk -v n="$n" -v r="$f1" -v o="$f2" \
    'BEGIN { printf "  %8d vertices: glDrawElements %8.2f fps, aff_rt %8.2f fps, ratio %.2f\n", n, r, o, o / r }'
done
