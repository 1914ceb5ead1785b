// Collisions of a vertex against the colliders of its volume: the `col`
// list of quadruples (volume, a, b, c). c >= 0 is the radius of the test,
// c < 0 scales each collider vertex's own radius (its (b68, b32) value, 1
// without one). a is the pressure, b the push of a moving collider. The
// distance test is the cheap one of dist_rapide, on purpose; and the z of
// the weighted contact point keeps the last contact's term alone, on
// purpose too: both give the collisions their known feel.
#include <array>
#include <cmath>

#include "anim/dyn.h"
#include "geom/geom.h"

namespace dyn {
namespace {
constexpr int B_RAYON_ = 68;
}

int collision(Objet* o, float* p, const float* v, float* F, bool force, float* marque) {
  int nl = 0;
  const reel* col = val1(o, 1, B_COL, 4, &nl);
  if (!col) return 0;
  int contacts = 0;
  float Fs[3] = {0, 0, 0}, Q[3] = {0, 0, 0}, N[3] = {0, 0, 0}, U[3] = {0, 0, 0};
  float W = 0, r = 0, b = 0;
  int derriere = 0;
  const float pv[3] = {p[0] - v[0], p[1] - v[1], p[2] - v[2]};
  for (int e = 0; e + 4 <= nl && contacts == 0; e += 4) {
    mot num = 0;
    if (!reel_entier(col[e], &num)) continue;
    Objet* c = objet_trouve(B_VOLK, 0, num, nullptr);
    if (!c || c == o) continue;
    int nb = 0, d = 3;
    const reel* s = vol_som(c, &nb, &d);
    if (!s || nb < 1 || d < 3) continue;  // a collider with no vertices is skipped
    const float a = col[e + 1];
    b = col[e + 2];
    const float cc = col[e + 3];
    const mot* nv = vol_valeur(c, 2, std::array<mot, 4>{1, B_NORMALE, 1, B_SOMK}.data());
    if (!nv || nv[1] != BLOC_REEL || nv[0] - 4 < 3 * nb) {
      mot* g = gen_normale_som(c, nullptr, 0);
      nv = g ? valeur_de(g) : nullptr;
      if (!nv || nv[1] != BLOC_REEL || nv[0] - 4 < 3 * nb) continue;
    }
    const reel* nrm = reels(nv + 4);
    const reel* ray = cc < 0 ? val2(c, 1, B_RAYON_, 1, B_SOMK, nb) : nullptr;
    const reel* vel = val2(c, 1, B_VIT, 1, B_SOMK, 3 * nb);
    const int nx = vol_nx(c);
    const int pas_rang = nx > 0 ? nx : nb;
    for (int deb = 0; deb < nb; deb += pas_rang) {
      const int fin = deb + pas_rang < nb ? deb + pas_rang : nb;
      if (nx > 0) {
        // The row's box grown by 10 must hold the last position.
        float lo[3] = {1e30f, 1e30f, 1e30f}, hi[3] = {-1e30f, -1e30f, -1e30f};
        for (int q = deb; q < fin; ++q)
          for (int x = 0; x < 3; ++x) {
            const float z = s[static_cast<long>(q) * d + x];
            lo[x] = z < lo[x] ? z : lo[x];
            hi[x] = z > hi[x] ? z : hi[x];
          }
        bool dedans = true;
        for (int x = 0; x < 3; ++x) dedans = dedans && pv[x] >= lo[x] - 10 && pv[x] <= hi[x] + 10;
        if (!dedans) continue;
      }
      for (int q = deb; q < fin; ++q) {
        const float* Qp = s + static_cast<long>(q) * d;
        r = cc >= 0 ? cc : -cc * (ray ? ray[q] : 1.f);
        if (dist_rapide(p, Qp) > r) continue;
        ++contacts;
        const float dq[3] = {p[0] - Qp[0], p[1] - Qp[1], p[2] - Qp[2]};
        const float dd = norme(dq);
        const float* n = nrm + 3 * q;
        const float f = r != 0 ? (r - dd) * a / r : 0.f;
        for (int x = 0; x < 3; ++x) Fs[x] += f * n[x];
        if (dot(dq, n) < 0) {
          const float w = dd <= 0.0001f ? 10000.f : 1.f / dd;
          W += w;
          Q[0] += w * Qp[0], Q[1] += w * Qp[1], Q[2] = w * Qp[2];
          for (int x = 0; x < 3; ++x) N[x] += n[x];
          if (vel)
            for (int x = 0; x < 3; ++x) U[x] += w * vel[3 * q + x];
          ++derriere;
        }
      }
    }
  }
  if (contacts == 0) return 0;
  if (marque) marque[0] = 1, marque[1] = 1, marque[2] = -1;
  if (contacts > 1)
    for (float& x : Fs) x /= static_cast<float>(contacts);
  if (force && F)
    for (int x = 0; x < 3; ++x) F[x] += Fs[x];
  if (derriere > 0 && W > 0) {
    unit(N);
    const float e = force ? b * r * norme(U) : r;
    for (int x = 0; x < 3; ++x) p[x] = Q[x] / W + e * N[x];
  }
  return contacts;
}
}  // namespace dyn
