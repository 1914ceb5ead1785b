#!/usr/bin/env python3
"""Images against PIL in the same run: a 1920 x 1080 picture read and written
as .bmp and .png, and reduced to 768 x 576. Ratios are PIL's time over
orvane's: above 1 means orvane is faster."""
import os, subprocess, sys, tempfile, time

from PIL import Image

binaire = sys.argv[1] if len(sys.argv) > 1 else "build/bench/bench_image"
FOIS = 5
TOURS = 3  # both sides in turn, the best of each kept: a busy machine weighs on both alike


def meilleur(f):
    m = 1e30
    for k in range(FOIS):
        t0 = time.perf_counter()
        f(k)
        m = min(m, (time.perf_counter() - t0) * 1000)
    return m


nous, pil = {}, {}
box = 1e30


def garde(t, k, v):
    t[k] = min(t.get(k, 1e30), v)


for tour in range(TOURS):
  with tempfile.TemporaryDirectory() as d:
    sortie = subprocess.run([binaire, d], check=True, capture_output=True, text=True).stdout
    for l in sortie.splitlines():
        garde(nous, l.split()[0], float(l.split()[1]))

    def lit(ext):
        return lambda k: Image.open(f"{d}/source.{ext}").load()

    im = Image.open(f"{d}/source.bmp")
    im.load()

    def ecrit(ext):
        def f(k):
            n = f"{d}/p{k}.{ext}"
            im.save(n)
            os.unlink(n)
        return f

    garde(pil, "lit_bmp", meilleur(lit("bmp")))
    garde(pil, "ecrit_bmp", meilleur(ecrit("bmp")))
    garde(pil, "lit_png", meilleur(lit("png")))
    garde(pil, "ecrit_png", meilleur(ecrit("png")))
    garde(pil, "reduit", meilleur(lambda k: im.resize((768, 576))))
    box = min(box, meilleur(lambda k: im.resize((768, 576), Image.BOX)))
    im.save(f"{d}/pil.png")
    tailles = (os.path.getsize(f"{d}/source.png"), os.path.getsize(f"{d}/pil.png"))

print("images 1920 x 1080          orvane ms    PIL ms   PIL/orvane")
for k, texte in [("lit_bmp", "read .bmp"), ("ecrit_bmp", "write .bmp"), ("lit_png", "read .png"),
                 ("ecrit_png", "write .png"), ("reduit", "reduce to 768 x 576")]:
    print(f"  {texte:24s} {nous[k]:9.2f} {pil[k]:9.2f} {pil[k] / nous[k]:9.2f}")
print(f"  (.png sizes: orvane {tailles[0]} bytes at zlib level 5, PIL {tailles[1]} at level 6)")
print(f"  (PIL's reduction with its box filter: {box:.2f} ms, ratio {box / nous['reduit']:.2f})")
