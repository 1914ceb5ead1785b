// Springs: the neighbours of every vertex in ring order, their rest lengths
// and rest angles, and the edge and torsion terms.
//
// The ring of a vertex is its neighbours sorted by angle about the vertex's
// rest normal (the sum of the cross products of its faces' two edges),
// starting from the first neighbour met in face order; with no normal the
// face order stays. The tables are kept while the faces, the vertex count
// and the volume stay the same.
#include <algorithm>
#include <cmath>

#include "anim/dyn.h"
#include "geom/geom.h"

namespace dyn {
namespace {
struct Cache {
  Objet* o = nullptr;
  const mot* fac = nullptr;
  mot fac_lg = 0;
  int nb = 0, d = 0;
  const float* repos = nullptr;
  bool angles = false;
} cache;
std::vector<std::int64_t> paires;
std::vector<float> nrm;
}  // namespace

void voisins(Objet* o, const float* repos, int nb, int d, bool angles) {
  const mot* fac = vol_fac(o);
  if (cache.o == o && cache.fac == fac && cache.fac_lg == (fac ? fac[0] : 0) && cache.nb == nb && cache.d == d &&
      cache.repos == repos && (cache.angles || !angles))
    return;
  cache = {o, fac, fac ? fac[0] : 0, nb, d, repos, angles};
  paires.clear();
  nrm.assign(static_cast<std::size_t>(3 * nb), 0.f);
  long ordre = 0;
  if (fac) {
    const mot* f = fac + 4;
    for (mot i = 0; i < fac[2]; ++i, f = face_suivante(f)) {
      int k = 0;
      const mot* c = face_contour(f, &k);
      if (!c || k < 2) continue;
      for (int j = 0; j < k; ++j) {
        const int p = c[j] - 1, s = c[(j + 1) % k] - 1, a = c[(j + k - 1) % k] - 1;
        if (p < 0 || p >= nb || s < 0 || s >= nb || a < 0 || a >= nb) continue;
        // (vertex, order met, neighbour) packed to sort by vertex then order.
        if (s != p) paires.push_back((static_cast<std::int64_t>(p) << 42) | (static_cast<std::int64_t>(ordre++ & 0xfffff) << 22) | s);
        if (a != p && k > 2) paires.push_back((static_cast<std::int64_t>(p) << 42) | (static_cast<std::int64_t>(ordre++ & 0xfffff) << 22) | a);
        if (k > 2) {
          float e1[3], e2[3], n[3];
          for (int x = 0; x < 3; ++x) {
            e1[x] = repos[static_cast<long>(s) * d + x] - repos[static_cast<long>(p) * d + x];
            e2[x] = repos[static_cast<long>(a) * d + x] - repos[static_cast<long>(p) * d + x];
          }
          croix(e1, e2, n);
          for (int x = 0; x < 3; ++x) nrm[static_cast<std::size_t>(3 * p + x)] += n[x];
        }
      }
    }
  }
  std::sort(paires.begin(), paires.end());
  etat.deb_voisin.assign(static_cast<std::size_t>(nb + 1), 0);
  etat.voisin.clear();
  std::size_t i = 0;
  for (int p = 0; p < nb; ++p) {
    etat.deb_voisin[static_cast<std::size_t>(p)] = static_cast<int>(etat.voisin.size());
    const std::size_t deb = etat.voisin.size();
    for (; i < paires.size() && (paires[i] >> 42) == p; ++i) {
      const int q = static_cast<int>(paires[i] & 0x3fffff);
      if (std::find(etat.voisin.begin() + static_cast<long>(deb), etat.voisin.end(), q) == etat.voisin.end())
        etat.voisin.push_back(q);
    }
    const std::size_t m = etat.voisin.size() - deb;
    float* n = &nrm[static_cast<std::size_t>(3 * p)];
    if (m > 2 && norme(n) > 1e-12f) {
      const float* P = repos + static_cast<long>(p) * d;
      float e1[3], e2[3];
      const float* q0 = repos + static_cast<long>(etat.voisin[deb]) * d;
      unit(n);
      for (int x = 0; x < 3; ++x) e1[x] = q0[x] - P[x];
      const float s = dot(e1, n);
      for (int x = 0; x < 3; ++x) e1[x] -= s * n[x];
      croix(n, e1, e2);
      auto cle = [&](int q) {
        const float* Q = repos + static_cast<long>(q) * d;
        const float r[3] = {Q[0] - P[0], Q[1] - P[1], Q[2] - P[2]};
        float a = std::atan2(dot(r, e2), dot(r, e1));
        return a < -1e-6f ? a + 6.2831853f : a;
      };
      std::stable_sort(etat.voisin.begin() + static_cast<long>(deb), etat.voisin.end(),
                       [&](int a, int b) { return cle(a) < cle(b); });
    }
  }
  etat.deb_voisin[static_cast<std::size_t>(nb)] = static_cast<int>(etat.voisin.size());
  // Rest lengths and angles, one per neighbour slot.
  etat.repos_long.assign(etat.voisin.size(), 0.f);
  etat.repos_ang.assign(etat.voisin.size(), 0.f);
  for (int p = 0; p < nb; ++p) {
    const int deb = etat.deb_voisin[static_cast<std::size_t>(p)], fin = etat.deb_voisin[static_cast<std::size_t>(p + 1)];
    const float* P = repos + static_cast<long>(p) * d;
    for (int j = deb; j < fin; ++j) {
      const float* Q = repos + static_cast<long>(etat.voisin[static_cast<std::size_t>(j)]) * d;
      const float r[3] = {Q[0] - P[0], Q[1] - P[1], Q[2] - P[2]};
      etat.repos_long[static_cast<std::size_t>(j)] = norme(r);
      if (fin - deb >= 2) {
        const int j2 = j + 1 < fin ? j + 1 : deb;
        const float* R = repos + static_cast<long>(etat.voisin[static_cast<std::size_t>(j2)]) * d;
        const float s[3] = {R[0] - P[0], R[1] - P[1], R[2] - P[2]};
        etat.repos_ang[static_cast<std::size_t>(j)] = static_cast<float>(angle(r, s));
      }
    }
  }
}

void ressort(const float* p, const float* q, const float* v, float k, float c, float l0, float* F) {
  float u[3] = {q[0] - p[0], q[1] - p[1], q[2] - p[2]};
  const float dd = norme(u);
  unit(u);
  const float f = k * (dd - l0);
  for (int x = 0; x < 3; ++x) F[x] += f * u[x] + c * v[x];
}

void torsion(int i, const float* som, int d, const float* v, float k, float c, float* F) {
  const int deb = etat.deb_voisin[static_cast<std::size_t>(i)], fin = etat.deb_voisin[static_cast<std::size_t>(i + 1)];
  const int m = fin - deb;
  if (m < 2) return;
  const float* P = som + static_cast<long>(i) * d;
  float T[3] = {0, 0, 0};
  for (int j = deb; j < fin; ++j) {
    const int j2 = j + 1 < fin ? j + 1 : deb;
    const float* Q = som + static_cast<long>(etat.voisin[static_cast<std::size_t>(j)]) * d;
    const float* R = som + static_cast<long>(etat.voisin[static_cast<std::size_t>(j2)]) * d;
    const float a[3] = {Q[0] - P[0], Q[1] - P[1], Q[2] - P[2]}, b[3] = {R[0] - P[0], R[1] - P[1], R[2] - P[2]};
    const float e = std::fabs(static_cast<float>(angle(a, b)) - etat.repos_ang[static_cast<std::size_t>(j)]);
    float u[3] = {(Q[0] + R[0]) * 0.5f - P[0], (Q[1] + R[1]) * 0.5f - P[1], (Q[2] + R[2]) * 0.5f - P[2]};
    unit(u);
    for (int x = 0; x < 3; ++x) T[x] += k * e * u[x];
  }
  for (int x = 0; x < 3; ++x) F[x] += T[x] / static_cast<float>(m) + c * v[x];
}
}  // namespace dyn
