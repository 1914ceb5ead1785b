// The rigid vertex cloud: a volume with a leader while b60 is on keeps its
// shape and turns as a whole about an anchor, under the fields at the
// anchor, its force and the force at its lever (for, rota).
//
// The turn is a vector: (b33, rota) the accumulated rotation, (vit, rota)
// its speed w and (acc, rota) its acceleration, 3 floats each. Each step
// the vertices are the rest copy turned by the accumulated rotation (its
// direction the axis, its length the angle in radians) about the anchor,
// which stays where it stands.
//
// Anchor and axis: (som, suiv) = (i) takes rest vertex i as the anchor and
// the line to the centre as the axis; (i, j) with j not 0 takes the axis
// from rest vertex i to j. Without it the anchor is the centre and the
// axis is w. The b33 list adds listed fields at the anchor, each scaled.
#include <array>
#include <cmath>

#include "anim/dyn.h"
#include "geom/geom.h"

namespace dyn {
namespace {
void limite(float* v, const reel* l) {
  if (!l || !(l[0] > 0)) return;
  const float n = norme(v);
  if (n > l[0])
    for (int x = 0; x < 3; ++x) v[x] *= l[0] / n;
}

// v turned by the angle |R| about unit(R) (Rodrigues).
void tourne(const float* R, const float* v, float* out) {
  const float a = norme(R);
  if (!(a > 1e-12f)) {
    for (int x = 0; x < 3; ++x) out[x] = v[x];
    return;
  }
  const float k[3] = {R[0] / a, R[1] / a, R[2] / a};
  float kv[3];
  croix(k, v, kv);
  const float c = std::cos(a), s = std::sin(a), d = dot(k, v) * (1 - c);
  for (int x = 0; x < 3; ++x) out[x] = v[x] * c + kv[x] * s + k[x] * d;
}
}  // namespace

int pas_rigide(Objet* o, int N, float* som, int d, int nb, const reel* repos) {
  // 1. The mass.
  float m = 0;
  if (const reel* ms = val1(o, 1, B_MAS, 1)) m = ms[0];
  if (!(m > MASSE_MIN) && liste_som(o, 2, std::array<mot, 4>{1, B_MAS, 1, B_SOMK}.data(), nb, etat.rec_mas)) {
    double s = 0;
    int k = 0;
    for (int i = 0; i < nb; ++i)
      if (const mot* r = etat.rec_mas[static_cast<std::size_t>(i)]; r && rec_long(r) >= 1) s += rec_val(r)[0], ++k;
    m = k ? static_cast<float>(s / k) : 0.f;
  }
  if (!(m > MASSE_MIN) || !std::isfinite(m)) return 0;
  // 2. Centre, rotation, speed, acceleration.
  float c[3] = {0, 0, 0};
  for (int i = 0; i < nb; ++i)
    for (int x = 0; x < 3; ++x) c[x] += som[static_cast<long>(i) * d + x] / static_cast<float>(nb);
  reel* R = bloc_zero(o, 2, std::array<mot, 4>{1, B_JOI, 1, B_ROTAK}.data(), 3);
  reel* w = bloc_zero(o, 2, std::array<mot, 4>{1, B_VIT, 1, B_ROTAK}.data(), 3);
  reel* A = bloc_zero(o, 2, std::array<mot, 4>{1, B_ACC, 1, B_ROTAK}.data(), 3);
  if (!R || !w || !A) return -1;
  som = vol_som(o, &nb, &d);  // the blocks made may have moved the vertices
  if (!som) return -1;
  // 3. Anchor (current and rest) and axis.
  int ancre = 0;  // rest vertex from 1, or 0 for the centre
  float axe[3] = {w[0], w[1], w[2]};
  bool axe_donne = false;
  int ns = 0;
  if (const reel* s = val2(o, 1, B_SOMK, 1, B_SUIVK, 1, &ns)) {
    mot i = 0, j = 0;
    if (reel_entier(s[0], &i, 1, nb)) ancre = i;
    if (ancre && ns > 1 && reel_entier(s[1], &j, 1, nb) && j != ancre) {
      for (int x = 0; x < 3; ++x) axe[x] = repos[3 * (j - 1) + x] - repos[3 * (ancre - 1) + x];
      axe_donne = true;
    }
  }
  // 5. The lever's force and the force at a vertex.
  float G[3] = {0, 0, 0};
  const reel* fr = val2(o, 1, B_FOR, 1, B_ROTAK, 4);
  if (fr)
    for (int x = 0; x < 3; ++x) G[x] = fr[x] + fr[3] * w[x];
  if (const reel* fp = val2(o, 1, B_FOR, 1, B_PRE, 4)) {
    for (int x = 0; x < 3; ++x) G[x] += fp[x];
    mot i = 0;
    if (reel_entier(fp[3], &i, 1, nb)) ancre = i;
  }
  float p0[3], r0[3];
  for (int x = 0; x < 3; ++x) {
    p0[x] = ancre ? som[static_cast<long>(ancre - 1) * d + x] : c[x];
    float rc = 0;
    for (int i = 0; i < nb; ++i) rc += repos[3 * i + x] / static_cast<float>(nb);
    r0[x] = ancre ? repos[3 * (ancre - 1) + x] : rc;
  }
  if (ancre && !axe_donne)
    for (int x = 0; x < 3; ++x) axe[x] = c[x] - p0[x];
  // 4. The fields at the anchor and the force: their torque about it.
  float F[3] = {0, 0, 0};
  champs(o, ancre ? ancre : 1, p0, F);
  if (const reel* f = val1(o, 1, B_FOR, 3))
    for (int x = 0; x < 3; ++x) F[x] += f[x];
  float r[3] = {c[0] - p0[0], c[1] - p0[1], c[2] - p0[2]};
  if (dot(r, r) < 1e-7f && fr && norme(fr) >= 1e-7f)
    for (int x = 0; x < 3; ++x) r[x] = fr[x];
  if (dot(r, r) < 1e-7f)
    for (int x = 0; x < 3; ++x) r[x] = w[x];
  float T[3];
  croix(r, F, T);
  for (int x = 0; x < 3; ++x) G[x] += T[x];
  // 6. The inertia: given, or m times the distance of the centre to the axis.
  float I = 0;
  if (const reel* ci = val3(o, 1, B_COE, 1, B_FOR, 1, B_ROTAK, 1)) {
    I = ci[0];
  } else {
    float u[3] = {axe[0], axe[1], axe[2]};
    unit(u);
    const float e[3] = {c[0] - p0[0], c[1] - p0[1], c[2] - p0[2]};
    const float t = dot(e, u);
    const float h[3] = {e[0] - t * u[0], e[1] - t * u[1], e[2] - t * u[2]};
    I = m * norme(h);
  }
  if (!(std::fabs(I) > 1e-7f) || !std::isfinite(I)) I = m;
  // 7. The b33 list, triples (k, field, spare): that field's force at the
  // anchor, k times, turns the cloud through the same lever.
  int nj = 0;
  if (const reel* jl = val1(o, 1, B_JOI, 3, &nj))
    for (int t = 0; t + 3 <= nj; t += 3)
      if (Objet* f = champ_de(jl[t + 1])) {
        float Fk[3] = {0, 0, 0}, Tk[3];
        champ_un(f, o, p0, Fk);
        croix(r, Fk, Tk);
        for (int x = 0; x < 3; ++x) G[x] += jl[t] * Tk[x];
      }
  // 8. The turn; a force that is no number leaves the step out.
  if (!(std::isfinite(G[0]) && std::isfinite(G[1]) && std::isfinite(G[2]))) return 0;
  for (int x = 0; x < 3; ++x) A[x] = G[x] / (static_cast<float>(N) * I);
  limite(A, val3(o, 1, B_ACC, 1, B_ROTAK, 0, A_LIMK, 1));
  for (int x = 0; x < 3; ++x) w[x] += A[x];
  limite(w, val3(o, 1, B_VIT, 1, B_ROTAK, 0, A_LIMK, 1));
  for (int x = 0; x < 3; ++x) R[x] += w[x];
  if (!(std::isfinite(R[0]) && std::isfinite(R[1]) && std::isfinite(R[2]))) {
    R[0] = R[1] = R[2] = 0;
    return 0;
  }
  for (int i = 0; i < nb; ++i) {
    const float e[3] = {repos[3 * i] - r0[0], repos[3 * i + 1] - r0[1], repos[3 * i + 2] - r0[2]};
    float q[3];
    tourne(R, e, q);
    for (int x = 0; x < 3; ++x) som[static_cast<long>(i) * d + x] = p0[x] + q[x];
  }
  vol_som_change(o);
  return 0;
}
}  // namespace dyn
