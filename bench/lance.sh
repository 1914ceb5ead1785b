#!/usr/bin/env bash
# Runs every benchmark on the release build, from the repository root.
set -e
cd "$(dirname "$0")/.."
bash scripts/construit.sh >/dev/null
python3 bench/demarrage.py build/orvane
build/bench/bench_bloc
build/bench/bench_objet
build/bench/bench_compile
build/bench/bench_res
# numpy may live only with the system's python.
py=python3
$py -c 'import numpy' 2>/dev/null || py=/usr/bin/python3
$py bench/geom_numpy.py build/bench/bench_geom
bash bench/langage.sh
bash bench/attributs.sh
# PIL may live only with the system's python too.
py=python3
$py -c 'import PIL' 2>/dev/null || py=/usr/bin/python3
$py bench/images.py build/bench/bench_image
bash bench/fichiers.sh
# The window's idle step and a key's way to the buffer, on an X server of
# its own.
bash tests/display/sous_xvfb.sh python3 bench/fenetre.py build/orvane
bash bench/gl.sh
bash bench/interaction.sh
bash bench/brosse.sh
bash bench/rendu.sh
bash bench/bruit.sh
bash bench/periph.sh
build/bench/bench_fft
bash bench/dynamique.sh
