#!/usr/bin/env bash
# Frames per second of a smooth-shaded mesh of 10,000, 100,000 and
# 1,000,000 vertices drawn by orvane's real-time path (aff_rt) against the
# least C++ program that draws it with glDrawElements from a vertex buffer,
# both on the same OpenGL (Mesa under an Xvfb of their own), in one run.
# Both draw the same scene (window, eye, projection, light, material,
# mesh): the last frame of each is read back and the two pictures are
# compared before the rates count. The two alternate REPETE times a size and
# the best rate of each counts, so that a busy machine slows both alike.
# The goal: a ratio of at least 0.8 at every size.
set -e
cd "$(dirname "$0")/.."
b=${BUILD:-build}/bench
tailles="${TAILLES:-10000 100000 1000000}"
repete=${REPETE:-3}
dossier=$(mktemp -d)
trap 'rm -rf "$dossier"' EXIT
# Share of pixels whose channels differ by more than 8, and the largest
# difference, between two binary PPM of one size.
compare() {
  python3 - "$1" "$2" <<'PY'
import sys
def lit(n):
    d = open(n, "rb").read()
    champs, i = [], 0
    while len(champs) < 4:
        while d[i:i+1].isspace(): i += 1
        j = i
        while not d[j:j+1].isspace(): j += 1
        champs.append(d[i:j]); i = j
    return int(champs[1]), int(champs[2]), d[i+1:]
la, ha, a = lit(sys.argv[1]); lb, hb, b = lit(sys.argv[2])
if (la, ha) != (lb, hb): print("1.0 255 0"); sys.exit()
n = la * ha; loin = 0; pire = 0; fond = 0
for k in range(n):
    e = max(abs(a[3*k] - b[3*k]), abs(a[3*k+1] - b[3*k+1]), abs(a[3*k+2] - b[3*k+2]))
    pire = max(pire, e)
    if e > 8: loin += 1
    if a[3*k] == a[3*k+1] == a[3*k+2] == 0: fond += 1
print("%.5f %d %.3f" % (loin / n, pire, 1 - fond / n))
PY
}
echo "OpenGL, smooth-shaded mesh, 640 x 480, best of $repete runs of ${SECONDES:-2} s:"
echec=0
for n in $tailles; do
  best_r=0 best_o=0 nv=0
  for _ in $(seq "$repete"); do
    read -r nv r < <(IMAGE="$dossier/ref" bash tests/display/sous_xvfb.sh "$b/gl_ref" "$n")
    read -r _ o < <(IMAGE="$dossier/orv" bash tests/display/sous_xvfb.sh "$b/bench_gl" "$n")
    best_r=$(awk -v a="$best_r" -v b="$r" 'BEGIN { print (b > a ? b : a) }')
    best_o=$(awk -v a="$best_o" -v b="$o" 'BEGIN { print (b > a ? b : a) }')
  done
  read -r part pire couvert < <(compare "$dossier/ref_$nv.ppm" "$dossier/orv_$nv.ppm")
  [ -n "$GARDE" ] && cp "$dossier/ref_$nv.ppm" "$dossier/orv_$nv.ppm" "$GARDE/"
  awk -v n="$nv" -v r="$best_r" -v o="$best_o" -v p="$part" -v e="$pire" -v c="$couvert" 'BEGIN {
    printf "  %8d vertices: glDrawElements %8.2f fps, aff_rt %8.2f fps, ratio %.2f (goal 0.80: %s);", n, r, o, o / r,
      (o / r >= 0.8 ? "met" : "MISSED")
    printf " pictures: %.1f%% of the window drawn, %.3f%% of pixels differ by more than 8 (largest %d)\n", 100 * c, 100 * p, e }'
  awk -v p="$part" 'BEGIN { exit !(p > 0.001) }' && { echo "  the two pictures differ: the ratio compares different scenes"; echec=1; }
done
exit $echec
