#!/usr/bin/env bash
# The brush and the playback, on an X server of their own:
#  1. a dab of radius 50 in a 768 x 576 window (goal: under 1 ms);
#  2. playback of 100 frames of 768 x 576 from .png files at 25 per second
#     in orvane's window: the frames shown out of 100 (goal: all of them)
#     and the time it took (goal: 4 s).
set -e
cd "$(dirname "$0")/.."
[ -x build/bench/bench_brosse ] || bash scripts/construit.sh >/dev/null
bash tests/display/sous_xvfb.sh build/bench/bench_brosse "${DABS:-2000}"
d=$(mktemp -d)
trap 'rm -rf "$d"' EXIT
py=python3
$py -c 'import PIL' 2>/dev/null || py=/usr/bin/python3
$py - "$d" <<'PY'
import sys, random
from PIL import Image
random.seed(3)
for k in range(1, 101):
    im = Image.new("RGB", (768, 576), (k * 2, 40, 255 - k * 2))
    # Texture, so the files are not trivially small.
    px = im.load()
    for y in range(0, 576, 3):
        for x in range(0, 768, 3):
            px[x, y] = (random.randrange(256), random.randrange(256), random.randrange(256))
    im.save(f"{sys.argv[1]}/f{k:04d}.png")
PY
echo "images: $(du -sh "$d" | cut -f1) pour 100 fichiers png 768x576"
lecture() {
  {
    echo "lecture(\"$d/f.png\", 1, 100) cadence(25)"
    sleep 6
    echo '$ "montrees"'
    echo '$ lecture'
  } | build/orvane ID ini=env/initb.h x=768 y=576 2>&1 | tr -c '0-9.\n a-z' ' ' \
    | awk '/montrees/ {m = 1; next} m {for (i = 1; i <= NF; i++) if ($i ~ /^[0-9.]+$/) n++} END {print "lecture 25/s: " n " images montrees sur 100"}' 
}
bash tests/display/sous_xvfb.sh bash -c "$(declare -f lecture); d='$d'; lecture"
