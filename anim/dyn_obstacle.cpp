// Moving obstacles (cha, vol): triples (volume, b1, b2). Each face of an
// obstacle pushes the vertices that come within b2 times its radius of its
// centre, along its normal, by b1 times the depth; and the vertex takes the
// face's velocity, with the sign of whether both go the same way along the
// normal. The test distance grows with the vertex's own speed, up to twice
// the face's reach, so that a fast vertex does not pass through.
//
// Two oddities stay as they are, they give the obstacles their feel: the
// cheap distance of the collisions is compared with a squared reach, and
// the y sum of the face velocities goes to z as well.
//
// The table holds, per obstacle, 12 floats [b1, b2, R, box lo, box hi,
// first face, face count] and, per face, 10 floats [centre, normal,
// velocity, radius]; it is gathered once per step of the volume and its
// storage is reused from step to step.
#include <array>
#include <cmath>

#include "anim/dyn.h"
#include "geom/geom.h"

namespace dyn {
namespace {
constexpr int OBS = 12, FAC = 10;
}

bool obstacles(Objet* o) {
  etat.obs.clear();
  etat.obs_fac.clear();
  int nl = 0;
  const reel* l = val2(o, 1, B_CHA, 1, B_VOLK, 3, &nl);
  for (int t = 0; l && t + 3 <= nl; t += 3) {
    mot num = 0;
    if (!reel_entier(l[t], &num)) continue;
    Objet* c = objet_trouve(B_VOLK, 0, num, nullptr);
    if (!c || c == o) continue;
    int nb = 0, d = 3;
    const reel* s = vol_som(c, &nb, &d);
    const mot* fac = vol_fac(c);
    if (!s || nb < 1 || d < 3 || !fac) continue;  // no vertices or faces: skipped
    const reel* vel = val2(c, 1, B_VIT, 1, B_SOMK, 3 * nb);
    const float prem = static_cast<float>(etat.obs_fac.size() / FAC);
    float R = 0, lo[3] = {1e30f, 1e30f, 1e30f}, hi[3] = {-1e30f, -1e30f, -1e30f};
    for (int i = 0; i < nb; ++i)
      for (int x = 0; x < 3; ++x) {
        const float z = s[static_cast<long>(i) * d + x];
        lo[x] = std::fmin(lo[x], z), hi[x] = std::fmax(hi[x], z);
      }
    const mot* f = fac + 4;
    int nf = 0;
    for (mot i = 0; i < fac[2]; ++i, f = face_suivante(f)) {
      int k = 0;
      const mot* ct = face_contour(f, &k);
      if (!ct || k < 3) continue;
      bool bon = true;
      for (int j = 0; j < k; ++j) bon = bon && ct[j] >= 1 && ct[j] <= nb;
      if (!bon) continue;
      float e[FAC] = {};
      normale_face(f, s, d, e + 3, e);
      unit(e + 3);
      for (int j = 0; j < k; ++j) {
        const float* q = s + static_cast<long>(ct[j] - 1) * d;
        const float r[3] = {q[0] - e[0], q[1] - e[1], q[2] - e[2]};
        e[9] = std::fmax(e[9], norme(r));
        if (vel)
          for (int x = 0; x < 3; ++x) e[6 + x] += vel[3 * (ct[j] - 1) + x] / static_cast<float>(k);
      }
      R = std::fmax(R, e[9]);
      etat.obs_fac.insert(etat.obs_fac.end(), e, e + FAC);
      ++nf;
    }
    if (nf == 0) continue;
    const float h[OBS] = {l[t + 1], l[t + 2], R, lo[0], lo[1], lo[2], hi[0], hi[1], hi[2], prem, static_cast<float>(nf), 0};
    etat.obs.insert(etat.obs.end(), h, h + OBS);
  }
  return !etat.obs.empty();
}

void obstacle_force(const float* p, float* v, float* F) {
  float S[3] = {0, 0, 0}, P[3] = {0, 0, 0};
  int n = 0;
  const float v2 = dot(v, v);
  for (std::size_t b = 0; b + OBS <= etat.obs.size(); b += OBS) {
    const float* h = &etat.obs[b];
    const float b1 = h[0], b2 = h[1], s = b2 * h[2];
    bool dedans = true;
    for (int x = 0; x < 3; ++x) dedans = dedans && p[x] >= h[3 + x] - s && p[x] <= h[6 + x] + s;
    if (!dedans) continue;
    const int prem = static_cast<int>(h[9]), nf = static_cast<int>(h[10]);
    for (int j = prem; j < prem + nf; ++j) {
      const float* e = &etat.obs_fac[static_cast<std::size_t>(j) * FAC];
      const float t = b2 * e[9];
      float t2 = t * t;
      const float propre = t2;
      const float w = std::fmin(b2 * b2 * v2, 4 * t2);
      t2 = std::fmax(t2, w);
      const float r[3] = {p[0] - e[0], p[1] - e[1], p[2] - e[2]};
      const float d2 = dot(r, r);
      if (!(dist_rapide(p, e) < t2 && d2 < t2)) continue;
      const float ep = dot(r, e + 3), g = dot(v, e + 3), hv = dot(v, e + 6);
      const float sg = (g >= 0 && hv >= 0) || (g < 0 && hv < 0) ? 1.f : -1.f;
      for (int x = 0; x < 3; ++x) S[x] += sg * e[6 + x];
      const float dd = std::sqrt(d2);
      const float tp = t2 > propre ? std::sqrt(t2) : t;
      const float f = tp != 0 ? ep * b1 * (tp - dd) / tp : 0.f;
      for (int x = 0; x < 3; ++x) P[x] += f * e[3 + x];
      ++n;
    }
  }
  if (n == 0) return;
  const float c = static_cast<float>(n);
  v[0] += S[0] / c, v[1] += S[1] / c, v[2] += S[1] / c;
  for (int x = 0; x < 3; ++x) F[x] += P[x] / c;
}
}  // namespace dyn
