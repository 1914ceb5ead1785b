// Reading the dynamics' attributes and the small vector helpers they share.
#include <cmath>
#include <cstring>

#include "anim/dyn.h"
#include "geom/geom.h"

namespace dyn {
Etat etat;

reel* val(Objet* o, int n, const mot* cle, int min, int* nb) {
  if (nb) *nb = 0;
  if (!o) return nullptr;
  mot* v = vol_valeur(o, n, cle);
  if (!v || v[1] != BLOC_REEL || v[0] - 4 < min) return nullptr;
  if (nb) *nb = v[0] - 4;
  return reels(v + 4);
}
reel* val1(Objet* o, int e1, int o1, int min, int* nb) {
  const mot k[2] = {e1, o1};
  return val(o, 1, k, min, nb);
}
reel* val2(Objet* o, int e1, int o1, int e2, int o2, int min, int* nb) {
  const mot k[4] = {e1, o1, e2, o2};
  return val(o, 2, k, min, nb);
}
reel* val3(Objet* o, int e1, int o1, int e2, int o2, int e3, int o3, int min, int* nb) {
  const mot k[6] = {e1, o1, e2, o2, e3, o3};
  return val(o, 3, k, min, nb);
}

reel* bloc_zero(Objet* o, int n, const mot* cle, int nv) {
  if (reel* r = val(o, n, cle, nv)) return r;
  if (static_cast<int>(etat.zeros.size()) < nv) etat.zeros.assign(static_cast<std::size_t>(nv), 0.f);
  if (!attribut_ecrit(o, n, cle, etat.zeros.data(), nv, 1)) return nullptr;
  reel* r = val(o, n, cle, nv);
  if (r) std::memset(r, 0, sizeof(float) * static_cast<std::size_t>(nv));
  return r;
}

bool liste_som(Objet* o, int n, const mot* cle, int nb_som, std::vector<const mot*>& rec) {
  int nb = 0;
  const reel* l = val(o, n, cle, 1, &nb);
  if (static_cast<int>(rec.size()) < nb_som) rec.resize(static_cast<std::size_t>(nb_som));
  std::fill(rec.begin(), rec.begin() + nb_som, nullptr);
  if (!l) return false;
  const mot* m = reinterpret_cast<const mot*>(l);
  int k = 0, i = 0;
  while (k < nb && i < nb_som) {
    float lf = l[k];
    if (!(std::fabs(lf) < 1e6f)) break;  // NaN or absurd: the rest is unread
    int lg = static_cast<int>(lf);
    if (lg < 1) {
      k += lg < 0 ? -lg : 1;
    } else {
      if (k + lg > nb) break;
      rec[static_cast<std::size_t>(i)] = m + k;
      k += lg;
    }
    ++i;
  }
  return true;
}

void unit(float* v) {
  float n = norme(v);
  if (!(n >= 0.0001f)) return;
  v[0] /= n, v[1] /= n, v[2] /= n;
}

void croix(const float* a, const float* b, float* r) {
  const float x = a[1] * b[2] - a[2] * b[1], y = a[2] * b[0] - a[0] * b[2], z = a[0] * b[1] - a[1] * b[0];
  r[0] = x, r[1] = y, r[2] = z;
}

float dist_rapide(const float* a, const float* b) {
  float s = 0;
  for (int k = 0; k < 3; ++k) s += std::fabs(std::trunc(a[k] - b[k]));
  return s * 0.57735f;
}

double puissance(double b, double e) {
  if (std::fabs(b) < 0.0001 || std::fabs(e) < 0.0001) return b;
  double x = e * std::log(std::fabs(b));
  if (x < -11350) x = -11350;
  if (x > 43) x = 43;
  return std::exp(x);
}
}  // namespace dyn
