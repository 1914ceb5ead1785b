#!/usr/bin/env python3
"""rotx of a million vertices with numpy, against bench_geom in the same run."""
import statistics, subprocess, sys, time

import numpy as np

binaire = sys.argv[1] if len(sys.argv) > 1 else "build/bench/bench_geom"
N = 1_000_000
rng = np.random.default_rng(1)
v = rng.uniform(-100, 100, (N, 3)).astype(np.float32)
a, py, pz = 0.01, 1.0, -2.0
c, s = np.float32(np.cos(a)), np.float32(np.sin(a))
rot = np.array([[1, 0, 0], [0, c, s], [0, -s, c]], dtype=np.float32)  # v @ rot is rotx
pivot = np.array([0, py, pz], dtype=np.float32)


def par_colonnes():
    y = v[:, 1] - py
    z = v[:, 2] - pz
    v[:, 1] = y * c - z * s + py
    v[:, 2] = y * s + z * c + pz


def par_produit():
    v[:] = (v - pivot) @ rot + pivot


def mediane(f, fois=21):
    t = []
    for _ in range(fois):
        d = time.perf_counter()
        f()
        t.append((time.perf_counter() - d) * 1000)
    return statistics.median(t)


numpy_ms = min(mediane(par_colonnes), mediane(par_produit))
sortie = subprocess.run([binaire], capture_output=True, text=True, check=True).stdout
print(sortie, end="")
res = dict(m.split("=") for m in sortie.split("RESULTATS")[1].split())
rotx_ms, normales_ms = float(res["rotx_ms"]), float(res["normales_ms"])
print(f"numpy rotx of {N} vertices: {numpy_ms:.2f} ms (best of two ways, median of 21)")
print(f"ratio numpy / orvane for rotx: {numpy_ms / rotx_ms:.2f} (goal >= 1)")
print(f"ratio gen_normale_som / 100 ms: {normales_ms / 100:.2f} (goal < 1)")
if "commande_ms" in res:
    print(f"ratio commande / kernel for rotx: {float(res['commande_ms']) / rotx_ms:.2f} (goal about 1)")
