#!/usr/bin/env bash
# Frames per second of the live scene's whole frame (a running interaction
# at cadence 0) over 1, 100 and 1000 volumes of about 1000 vertices, against
# the bare drawing of the same records as bench/gl.sh draws them (clear,
# lights, projection, aff_rt, swap), in one process on one Xvfb window; the
# best of REPETE alternating runs of SECONDES each. In the frame a hook turns
# every volume at each frame, so each is placed by its own matrix. The share
# of the frame's own steps is 1 - frame rate / drawing rate; the goal is
# under 10%.
set -e
cd "$(dirname "$0")/.."
b=${BUILD:-build}/bench
echo "Interaction, 640 x 480, best of ${REPETE:-3} runs of ${SECONDES:-2} s:"
bash tests/display/sous_xvfb.sh "$b/bench_inter" ${TAILLES:-1 100 1000} | while read -r n ns d i; do
  awk -v n="$n" -v ns="$ns" -v d="$d" -v i="$i" \
    'BEGIN { printf "  %5d volumes de %d sommets: dessin %8.2f fps, image entiere %8.2f fps, rapport image/dessin %.3f, etapes propres %5.1f%% %s\n", n, ns, d, i, i / d, 100 * (1 - i / d), (1 - i / d < 0.10) ? "(< 10%)" : "(>= 10%)" }'
done
# Instructions per frame, which the machine's load does not change (the
# frame rates above do, a lot at one volume): callgrind over one volume
# turned by the hook, with the rasteriser in the calling thread. The
# frame's own steps (the hook among them) are the whole frame less its
# drawing (aff_rt) and its swap, set against the bare drawing's aff_rt and
# swap. COMPTE=0 skips it.
if [ "${COMPTE:-1}" != 0 ] && command -v valgrind >/dev/null && command -v callgrind_annotate >/dev/null; then
  sortie=$(mktemp)
  LP_NUM_THREADS=0 SECONDES=${SECONDES_COMPTE:-2} REPETE=1 bash tests/display/sous_xvfb.sh \
    valgrind --tool=callgrind --callgrind-out-file="$sortie" "$b/bench_inter" 1 >/dev/null 2>&1
  callgrind_annotate --inclusive=yes --tree=both "$sortie" 2>/dev/null | awk '
    function nombre(l) { sub(/^ +/, "", l); split(l, c, " "); gsub(",", "", c[1]); return c[1] + 0 }
    function fois(l) { if (match(l, /\(([0-9,]+)x\)/)) { x = substr(l, RSTART + 1, RLENGTH - 3); gsub(",", "", x); return x + 0 } return 0 }
    function bloc() {
      for (i = 1; i <= nl; ++i) if (L[i] ~ /  \*  /) quoi = L[i]
      for (i = 1; i <= nl; ++i) {
        if (L[i] !~ /  < /) continue
        if (quoi ~ /:interaction_image\(\) / && L[i] ~ /:main /) { im = nombre(quoi); nim = fois(L[i]) }
        if (quoi ~ /:aff_rt\(Vol_rt\*\) /) {
          if (L[i] ~ /dessine_scene/) ad = nombre(L[i]); else if (L[i] ~ /:main /) { am = nombre(L[i]); nam = fois(L[i]) }
        }
        if (quoi ~ /:glutSwapBuffers /) {
          if (L[i] ~ /:gl_echange/) ed = nombre(L[i]); else if (L[i] ~ /:main /) { em = nombre(L[i]); nem = fois(L[i]) }
        }
      }
      nl = 0; quoi = ""
    }
    /^$/ { bloc(); next }
    { L[++nl] = $0 }
    END {
      bloc()
      if (!nim || !nam || !nem) { print "  (compte d instructions illisible)"; exit }
      propre = (im - ad - ed) / nim; dessin = am / nam + em / nem
      printf "  1 volume tourne par le crochet, instructions par image: image entiere %.0f, dessin nu %.0f, etapes propres %.0f (%.2f%% du dessin)\n", im / nim, dessin, propre, 100 * propre / dessin
    }'
  rm -f "$sortie"
fi
