// Attributes of a volume: lookup by key, the refill-in-place rule and the
// invalidation of derived data.
#include <cstdio>

#include "core/message.h"
#include "geom/interne.h"
#include "startup/startup.h"

namespace {
bool meme_cle(const mot* a, int n, const mot* paires) {
  if (a[3] != n) return false;
  for (int k = 0; k < 2 * n; ++k)
    if (a[4 + k] != paires[k]) return false;
  return true;
}

inline bool est_liste(const mot* l) { return l && l[0] >= 4 && l[1] == BLOC_BLOCS; }
}  // namespace

int geom_erreur(const Objet* o, int n) {
  objet_imprime(o);
  message(0, n);
  return -1;
}

int geom_erreur_valeur(long v, int n) {
  std::printf("%ld: ", v);
  message(0, n);
  return -1;
}

mot* vol_attribut(Objet* o, int n, const mot* paires) {
  return o ? attribut_trouve(o->donnees, n, paires) : nullptr;
}

mot* vol_valeur(Objet* o, int n, const mot* paires) { return valeur_de(vol_attribut(o, n, paires)); }

mot* attribut_prepare(Objet* o, int n, const mot* paires, mot lg) {
  mot h = 4 + 2 * n;
  int pos;
  mot* a = attribut_trouve_pos(o, &pos, n, paires);
  if (a && a[0] >= h + lg) {
    // Still fits: refilled where it is, so that pointers to it stay good.
    a[0] = h + lg;
    a[1] = 0;
    return a;
  }
  if (a) {
    mot* b = bloc_alloue(h + lg);
    if (!b) return nullptr;
    phrase_paires(b, n, paires);
    b[1] = 0;
    o->donnees[pos] = ptr_vers_mot(b);
    bloc_supprime(a);
    attributs_bougent();
    return b;
  }
  mot* b = attribut_nouveau(o, h + lg);
  if (!b) return nullptr;
  phrase_paires(b, n, paires);
  b[1] = 0;
  return b;
}

int attribut_supprime(Objet* o, int n, const mot* paires) { return attribut_enleve(o, false, n, paires); }

namespace {
// Everything that follows from the positions of the vertices.
constexpr mot INVALIDES[][7] = {
    {1, 0, A_LIM},
    {1, 0, A_CENTRE},
    {1, 1, B_AXE},
    {1, 1, B_BOITE},
    {2, 0, A_CENTRE, 0, A_TOP},
    {2, 0, A_CENTRE, 1, B_FAC},
    {2, 1, B_BOITE, 1, B_FAC},
    {2, 1, B_BOITE, 1, B_GRILLE21},
    {2, 1, B_BOITE, 1, B_SOMMET},
    {2, 1, B_BOITE, 1, 76},
    {2, 1, B_BOITE, 1, B_BORNES},
    {2, 1, B_NORMALE, 1, B_FAC},
    {2, 1, B_NORMALE, 1, B_SOMMET},
    {3, 1, B_VOISIN, 1, B_AFFICHE, 1, B_SOMMET},
    {3, 1, B_RAYON, 1, B_VOISIN, 1, B_SOMMET},
};

void invalide(Objet* o, mot valeur) {
  mot* liste = o->donnees;
  if (!est_liste(liste)) return;
  for (mot i = 0; i < liste[2]; ++i) {
    mot* a = bloc_pointe(liste[4 + i]);
    if (!a) continue;
    for (const auto& c : INVALIDES)
      if (meme_cle(a, c[0], c + 1)) {
        a[1] = valeur;
        break;
      }
  }
}
}  // namespace

void invalider_vol(Objet* o, mot valeur) {
  if (o) {
    invalide(o, valeur);
    return;
  }
  for (Objet* v = piles.obj_base; v && v < piles.obj_haut; ++v)
    if (est_volume(v)) invalide(v, valeur);
}
