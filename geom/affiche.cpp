// Displayed vertices (b60, b86): the vertices through the volume's own matrix
// (a112), for the volumes that keep a matrix instead of baking it.
#include <cstring>

#include "geom/interne.h"

mot* gen_som_affiche(Objet* o, int force) {
  int n, d;
  reel* s = som_requis(o, &n, &d);
  if (!s) return nullptr;
  mot* a = vol_attribut(o, 2, CLE_AFFICHE);
  mot* v = valeur_de(a);
  if (a && a[1] != 0 && !force && v[1] == BLOC_REEL && v[2] == n && v[3] == d) return a;
  float m[16];
  mot* mat = vol_valeur(o, 1, CLE_MATRICE);
  if (mat && mat[1] == BLOC_REEL && mat[0] >= 20)
    std::memcpy(m, mat + 4, sizeof m);
  else
    matrice_identite(m);
  mot lg = 4 + n * d;
  a = attribut_prepare(o, 2, CLE_AFFICHE, lg);
  if (!a) return nullptr;
  v = valeur_de(a);
  entete(v, lg, BLOC_REEL, n, d);
  std::memcpy(v + 4, s, static_cast<std::size_t>(n) * d * sizeof(float));
  for (reel *p = reels(v + 4), *fin = p + static_cast<long>(n) * d; p < fin; p += d) matrice_applique(m, p, p);
  a[1] = 1;
  return a;
}
