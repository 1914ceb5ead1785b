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
