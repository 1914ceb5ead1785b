#!/usr/bin/env python3
"""Reference of the vertex step in numpy, for the test that sets orvane's
`dyn pas(k) vol(n)` against it, and for bench/dynamique.sh.

Scene on stdin, as JSON: {"som": [x, y, z, ...], "fac": [[i, j, ...], ...]
(from 1), "mas": m or null, "mas_som": [m or null per vertex] or null,
"for": [fx, fy, fz], "ressort": [k, c] or null, "torsion": [k, c] or null,
"pas": [1, 10, 100]}. Prints one line of positions after each listed step.
Index order; one substep. The arithmetic is in float32 as orvane's.
"""
import json
import math
import sys

import numpy as np

f32 = np.float32


def unit(v):
    n = float(np.sqrt(np.dot(v, v)))
    return v / f32(n) if n >= 0.0001 else v


def voisins(som, fac):
    nb = len(som)
    met = [[] for _ in range(nb)]
    nrm = np.zeros((nb, 3), np.float32)
    for c in fac:
        c = [i - 1 for i in c]
        k = len(c)
        if k < 2:
            continue
        for j in range(k):
            p, s, a = c[j], c[(j + 1) % k], c[(j - 1) % k]
            if s != p:
                met[p].append(s)
            if a != p and k > 2:
                met[p].append(a)
            if k > 2:
                nrm[p] += np.cross(som[s] - som[p], som[a] - som[p])
    ring = []
    for p in range(nb):
        seen = []
        for q in met[p]:
            if q not in seen:
                seen.append(q)
        n = nrm[p]
        if len(seen) > 2 and float(np.linalg.norm(n)) > 1e-6:
            n = unit(n)
            e1 = som[seen[0]] - som[p]
            e1 = e1 - np.dot(e1, n) * n
            e2 = np.cross(n, e1)

            def cle(q):
                r = som[q] - som[p]
                a = math.atan2(float(np.dot(r, e2)), float(np.dot(r, e1)))
                return a + 2 * math.pi if a < -1e-6 else a

            seen = sorted(seen, key=cle)
        ring.append(seen)
    return ring


def angle(a, b):
    l = float(np.linalg.norm(a.astype(np.float64))) * float(np.linalg.norm(b.astype(np.float64)))
    c = 0.0 if l < 0.0001 else float(np.dot(a.astype(np.float64), b.astype(np.float64))) / l
    return math.acos(max(-1.0, min(1.0, c)))


def main():
    s = json.load(sys.stdin)
    som = np.array(s["som"], np.float32).reshape(-1, 3)
    nb = len(som)
    repos = som.copy()
    ring = voisins(repos, s["fac"])
    L0 = [[float(np.linalg.norm(repos[q] - repos[p])) for q in ring[p]] for p in range(nb)]
    A0 = [[angle(repos[ring[p][j]] - repos[p], repos[ring[p][(j + 1) % len(ring[p])]] - repos[p])
           for j in range(len(ring[p]))] for p in range(nb)]
    vit = np.zeros((nb, 3), np.float32)
    F0 = np.array(s.get("for") or [0, 0, 0], np.float32)
    res, tor = s.get("ressort"), s.get("torsion")
    mas = [s["mas"]] * nb if s.get("mas_som") is None else s["mas_som"]
    pas = set(s["pas"])
    for t in range(1, max(pas) + 1):
        for i in range(nb):
            m = mas[i]
            if m is None or m < 0.0001:
                continue
            k = f32(1) / f32(m)
            p, v = som[i], vit[i]
            F = F0.copy()
            if res:
                for j, q in enumerate(ring[i]):
                    u = som[q] - p
                    d = f32(np.sqrt(np.dot(u, u)))
                    F += f32(res[0]) * (d - f32(L0[i][j])) * unit(u) + f32(res[1]) * v
            if tor and len(ring[i]) >= 2:
                m_ = len(ring[i])
                T = np.zeros(3, np.float32)
                for j in range(m_):
                    q, r = som[ring[i][j]], som[ring[i][(j + 1) % m_]]
                    e = f32(abs(angle(q - p, r - p) - A0[i][j]))
                    T += f32(tor[0]) * e * unit((q + r) * f32(0.5) - p)
                F += T / f32(m_) + f32(tor[1]) * v
            a = k * F
            vit[i] = v + a
            som[i] = p + vit[i]
        if t in pas:
            print(" ".join("%.6f" % x for x in som.reshape(-1)))


if __name__ == "__main__":
    main()
