// Faces around each vertex (b46, b15, b32). They follow from the faces alone,
// so moving vertices keeps them; a new face list deletes them.
#include <vector>

#include "core/message.h"
#include "geom/interne.h"

namespace {
// For each vertex the faces that hold it, in face order, each face once.
mot* voisins_recherche(const mot* fac, int nb) {
  std::vector<int> compte(nb, 0), derniere(nb, 0);
  if (fac)
    pour_contours(fac, [&](int i, const mot* c, int k) {
      for (int j = 0; j < k; ++j) {
        int v = c[j] - 1;
        if (derniere[v] != i) derniere[v] = i, ++compte[v];
      }
    });
  long lg = 4 + nb;
  for (int v = 0; v < nb; ++v) lg += compte[v];
  if (lg > 0x7fffffff) {
    geom_erreur_valeur(nb, MES_TROP);
    return nullptr;
  }
  mot* b = bloc_alloue(static_cast<mot>(lg));
  if (!b) return nullptr;
  entete(b, static_cast<mot>(lg), BLOC_ENTIER, nb, 0);
  // Each vertex's row starts with its length; the rows are then filled by a
  // second walk in the same order.
  std::vector<long> pos(nb);
  long p = 4;
  for (int v = 0; v < nb; ++v) {
    b[p] = compte[v] + 1;
    pos[v] = p + 1;
    p += compte[v] + 1;
    derniere[v] = 0;
  }
  if (fac)
    pour_contours(fac, [&](int i, const mot* c, int k) {
      for (int j = 0; j < k; ++j) {
        int v = c[j] - 1;
        if (derniere[v] != i) derniere[v] = i, b[pos[v]++] = i;
      }
    });
  return b;
}
}  // namespace

mot* gen_voisin_fac_som(Objet* o, int force) {
  int nb, d;
  if (!som_requis(o, &nb, &d)) return nullptr;
  mot* a = vol_attribut(o, 3, CLE_VOISIN);
  mot* v = valeur_de(a);
  if (a && a[1] != 0 && force == 0 && v[1] == BLOC_ENTIER && v[2] == nb) return v;
  mot* t = force != 2 && grille_utilisable(o, nb) && vol_nz(o) == 0
               ? gen_voisin_grille(vol_nx(o), vol_ny(o), vol_ferme(o))
               : table_des_faces(o, nb, [&](mot* fac) { return voisins_recherche(fac, nb); });
  a = garde_table(o, 3, CLE_VOISIN, t);
  return valeur_de(a);
}
