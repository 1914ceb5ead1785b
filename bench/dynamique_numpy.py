#!/usr/bin/env python3
"""The vertex step of a 100 x 100 spring grid (edge springs and torsion on,
10,000 vertices) in vectorised numpy, against bench_dyn in the same run:
the same terms (uniform force, springs k (d - L0) u + c v on every edge,
torsion towards the midpoints of the ring pairs), one step, median of 21."""
import statistics
import subprocess
import sys
import time

import numpy as np

binaire = sys.argv[1] if len(sys.argv) > 1 else "build/bench/bench_dyn"
N = 100
i, j = np.meshgrid(np.arange(N), np.arange(N))
som = np.stack([i.ravel(), np.zeros(N * N), j.ravel()], 1).astype(np.float32)
nb = len(som)
idx = (j * N + i)
e = np.concatenate([np.stack([idx[:, :-1].ravel(), idx[:, 1:].ravel()], 1),
                    np.stack([idx[:-1, :].ravel(), idx[1:, :].ravel()], 1)])
src = np.concatenate([e[:, 0], e[:, 1]])
dst = np.concatenate([e[:, 1], e[:, 0]])
L0 = np.linalg.norm(som[dst] - som[src], axis=1).astype(np.float32)
# Ring pairs: for each vertex, consecutive neighbours in angle order.
ordre = np.lexsort((np.arctan2(som[dst, 2] - som[src, 2], som[dst, 0] - som[src, 0]), src))
s_src, s_dst = src[ordre], dst[ordre]
deb = np.searchsorted(s_src, np.arange(nb))
fin = np.searchsorted(s_src, np.arange(nb), side="right")
m = (fin - deb).astype(np.float32)
suivant = np.arange(len(s_src)) + 1
suivant[fin - 1] = deb
Pq, Qq, Rq = s_src, s_dst, s_dst[suivant]


def angle(a, b):
    c = np.einsum("ij,ij->i", a, b) / (np.linalg.norm(a, axis=1) * np.linalg.norm(b, axis=1))
    return np.arccos(np.clip(c, -1, 1))


A0 = angle(som[Qq] - som[Pq], som[Rq] - som[Pq]).astype(np.float32)
vit = np.zeros_like(som)
F0 = np.array([0, -0.01, 0], np.float32)
k, c, kt, ct = np.float32(0.2), np.float32(-0.05), np.float32(0.01), np.float32(0)


def unit(u):
    n = np.linalg.norm(u, axis=1, keepdims=True)
    return np.where(n >= 0.0001, u / np.maximum(n, 1e-30), u)


def pas():
    global som, vit
    u = som[dst] - som[src]
    d = np.linalg.norm(u, axis=1)
    f = (k * (d - L0))[:, None] * unit(u) + c * vit[src]
    F = np.tile(F0, (nb, 1))
    for x in range(3):
        F[:, x] += np.bincount(src, f[:, x], minlength=nb)
    P = som[Pq]
    a = angle(som[Qq] - P, som[Rq] - P)
    t = (kt * np.abs(a - A0))[:, None] * unit((som[Qq] + som[Rq]) * 0.5 - P)
    for x in range(3):
        F[:, x] += np.bincount(Pq, t[:, x], minlength=nb) / m + ct * vit[:, x]
    vit = vit + F
    som = som + vit


t = []
for _ in range(21):
    t0 = time.perf_counter()
    pas()
    t.append((time.perf_counter() - t0) * 1000)
py = statistics.median(t)
sortie = subprocess.run([binaire], capture_output=True, text=True, check=True).stdout
v = dict(l.split() for l in sortie.splitlines())
g, cu, al = float(v["grille_ms"]), float(v["corps_us"]), int(v["allocations"])
print(f"Pas des sommets, grille 100 x 100 ({len(src) // 2} ressorts, torsion): orvane {g:.3f} ms, numpy {py:.3f} ms, "
      f"rapport {py / g:.1f}x")
print(f"Pas des corps, 100 corps en arbre: {cu:.1f} us (objectif < 100 us)")
print(f"Allocations de Blocs pendant les pas mesures: {al}")
