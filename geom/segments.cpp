// Edges of a volume (b51): each edge once, in the direction it was first met.
#include <cstdio>
#include <unordered_set>

#include "core/message.h"
#include "geom/interne.h"
#include "startup/startup.h"

namespace {
bool forme_segments_grille(int forme) {
  return forme == B_GRILLE || forme == B_GRILLE20 || forme == B_GRILLE21 || forme == B_GRILLE117 ||
         forme == B_GRILLE119;
}

mot* segments_faces(const mot* fac, int ferme) {
  long max = 0;
  if (fac) pour_contours(fac, [&](int, const mot*, int k) { max += k; });
  if (4 + 2 * max > 0x7fffffff) {
    geom_erreur_valeur(max, MES_TROP);
    return nullptr;
  }
  mot* b = bloc_alloue(static_cast<mot>(4 + 2 * max));
  if (!b) return nullptr;
  // Edges are kept by their unordered pair, so that a shared edge met the
  // other way round is not added twice.
  std::unordered_set<std::uint64_t> vus;
  if (ferme >= 0) vus.reserve(static_cast<std::size_t>(max));
  long e = 0;
  auto ajoute = [&](mot a, mot c) {
    if (ferme >= 0) {
      std::uint64_t lo = static_cast<std::uint32_t>(a < c ? a : c), hi = static_cast<std::uint32_t>(a < c ? c : a);
      if (!vus.insert(hi << 32 | lo).second) return;
    }
    b[4 + 2 * e] = a;
    b[5 + 2 * e] = c;
    ++e;
  };
  if (fac)
    pour_contours(fac, [&](int, const mot* c, int k) {
      for (int j = 0; j + 1 < k; ++j) ajoute(c[j], c[j + 1]);
      if ((ferme > 0 && k >= 3) || (ferme < 0 && k >= 2)) ajoute(c[k - 1], c[0]);
    });
  entete(b, static_cast<mot>(4 + 2 * e), BLOC_ENTIER, static_cast<mot>(e), 2);
  return b;
}
}  // namespace

mot* generer_segment_vol(Objet* o, int imprimer, int ferme, int force) {
  int nb, d;
  if (!som_requis(o, &nb, &d)) return nullptr;
  mot* a = vol_attribut(o, 1, CLE_SEGMENT);
  mot* v = valeur_de(a);
  if (a && a[1] != 0 && !force && v[1] == BLOC_ENTIER && v[3] == 2) return v;
  mot* t = force != 2 && forme_segments_grille(vol_forme(o)) && grille_utilisable(o, nb)
               ? generer_segment(vol_nx(o), vol_ny(o), vol_nz(o), vol_ferme(o))
               : table_des_faces(o, nb, [&](mot* fac) { return segments_faces(fac, ferme); });
  a = garde_table(o, 1, CLE_SEGMENT, t);
  if (!a) return nullptr;
  if (imprimer) {
    std::putchar('+');
    if (mot_entree(1, B_SEGMENT)) mot_imprime(1, B_SEGMENT);
    if (mot_entree(o->env, o->type)) mot_imprime(o->env, o->type);
    std::putchar('\n');
  }
  return valeur_de(a);
}
