#!/usr/bin/env bash
# Frames per second of a smooth-shaded mesh of 10,000, 100,000 and
# 1,000,000 vertices drawn by orvane's real-time path (aff_rt) against the
# least C++ program that draws it with glDrawElements from a vertex buffer,
# both on the same OpenGL (Mesa under an Xvfb of their own), in one run.
# The two alternate REPETE times a size and the best rate of each counts,
# so that a busy machine slows both alike. The goal: a ratio of at least
# 0.8 at every size.
set -e
cd "$(dirname "$0")/.."
b=${BUILD:-build}/bench
tailles="${TAILLES:-10000 100000 1000000}"
repete=${REPETE:-3}
echo "OpenGL, smooth-shaded mesh, 640 x 480, best of $repete runs of ${SECONDES:-2} s:"
for n in $tailles; do
  best_r=0 best_o=0 nv=0
  for _ in $(seq "$repete"); do
    read -r nv r < <(bash tests/display/sous_xvfb.sh "$b/gl_ref" "$n")
    read -r _ o < <(bash tests/display/sous_xvfb.sh "$b/bench_gl" "$n")
    best_r=$(awk -v a="$best_r" -v b="$r" 'BEGIN { print (b > a ? b : a) }')
    best_o=$(awk -v a="$best_o" -v b="$o" 'BEGIN { print (b > a ? b : a) }')
  done
  awk -v n="$nv" -v r="$best_r" -v o="$best_o" \
    'BEGIN { printf "  %8d vertices: glDrawElements %8.2f fps, aff_rt %8.2f fps, ratio %.2f\n", n, r, o, o / r }'
done
