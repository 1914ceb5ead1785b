// Centre of gravity of a volume (a42) and of its displayed copy (a42, a46):
// 9 floats, the centre then two triples that start at the centre and are the
// user's pivot data afterwards.
#include <cstring>

#include "geom/interne.h"

void centre_sommets(const reel* som, int n, int d, float* c) {
  double s[3] = {0, 0, 0};
  for (const reel *p = som, *fin = som + static_cast<long>(n) * d; p < fin; p += d) {
    s[0] += p[0];
    s[1] += p[1];
    s[2] += p[2];
  }
  for (int k = 0; k < 3; ++k) c[k] = n ? static_cast<float>(s[k] / n) : 0.f;
}

namespace {
mot* centre(Objet* o, int paires, const mot* cle, const reel* som, int n, int d, int force) {
  mot* a = vol_attribut(o, paires, cle);
  mot* v = valeur_de(a);
  bool forme = v && v[1] == BLOC_REEL && v[0] >= 13;
  if (forme && a[1] != 0 && !force) return a;
  float c[3];
  centre_sommets(som, n, d, c);
  if (forme) {
    std::memcpy(v + 4, c, sizeof c);
    a[1] = 1;
    return a;
  }
  a = attribut_prepare(o, paires, cle, 13);
  if (!a) return nullptr;
  v = valeur_de(a);
  entete(v, 13, BLOC_REEL, 9, 1);
  for (int k = 0; k < 3; ++k) std::memcpy(v + 4 + 3 * k, c, sizeof c);
  a[1] = 1;
  return a;
}
}  // namespace

mot* gen_centre(Objet* o, int force) {
  int n, d;
  reel* s = som_requis(o, &n, &d);
  if (!s) return nullptr;
  return centre(o, 1, CLE_CENTRE, s, n, d, force);
}

mot* gen_centre_copie(Objet* o, int force) {
  mot* a = gen_som_affiche(o, 0);
  if (!a) return nullptr;
  mot* v = valeur_de(a);
  return centre(o, 2, CLE_CENTRE_COPIE, reels(v + 4), v[2], v[3], force);
}
