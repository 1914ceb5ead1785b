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

mot* geom_attribut_trouve(mot* liste, int n, const mot* paires) {
  if (!est_liste(liste)) return nullptr;
  for (mot i = 0; i < liste[2]; ++i) {
    mot* a = bloc_pointe(liste[4 + i]);
    if (a && meme_cle(a, n, paires)) return a;
  }
  return nullptr;
}

mot* geom_attribut_trouve_pos(Objet* o, int* pos, int n, const mot* paires) {
  mot* liste = o->donnees;
  if (!est_liste(liste)) return nullptr;
  for (mot i = 0; i < liste[2]; ++i) {
    mot* a = bloc_pointe(liste[4 + i]);
    if (a && meme_cle(a, n, paires)) {
      *pos = 4 + i;
      return a;
    }
  }
  return nullptr;
}

mot* geom_attribut_nouveau(Objet* o, mot n) {
  mot* ancienne = o->donnees;
  if (ancienne && !est_liste(ancienne)) {
    geom_erreur(o, MES_USAGE);
    return nullptr;
  }
  mot nb = ancienne ? ancienne[2] : 0;
  mot* b = bloc_alloue(n);
  if (!b) return nullptr;
  mot* liste = bloc_alloue(5 + nb);
  if (!liste) {
    bloc_libere(b);
    return nullptr;
  }
  entete(liste, 5 + nb, BLOC_BLOCS, nb + 1, 1);
  for (mot i = 0; i < nb; ++i) liste[4 + i] = ancienne[4 + i];
  liste[4 + nb] = ptr_vers_mot(b);
  // The old list only: its attributes now belong to the new one.
  bloc_libere(ancienne);
  o->donnees = liste;
  return b;
}

int geom_attribut_enleve(Objet* o, int n, const mot* paires) {
  int pos;
  mot* a = geom_attribut_trouve_pos(o, &pos, n, paires);
  if (!a) return 0;
  mot* ancienne = o->donnees;
  mot nb = ancienne[2];
  mot* liste = bloc_alloue(3 + nb);
  if (!liste) return -1;
  entete(liste, 3 + nb, BLOC_BLOCS, nb - 1, 1);
  for (mot i = 4, j = 4; i < 4 + nb; ++i)
    if (i != pos) liste[j++] = ancienne[i];
  bloc_libere(ancienne);
  o->donnees = liste;
  bloc_supprime(a);
  return 1;
}

int geom_phrase_paires(mot* b, int n, const mot* paires) {
  b[1] = BLOC_PHRASE;
  b[2] = 4 + 2 * n;
  b[3] = n;
  for (int k = 0; k < 2 * n; ++k) b[4 + k] = paires[k];
  return b[2];
}

void geom_objet_imprime(const Objet* o) {
  if (!o) return;
  if (mot_entree(o->env, o->type)) mot_imprime(o->env, o->type);
  if (o->nom)
    std::printf("%s ", o->nom);
  else
    std::printf("%d ", o->numero);
}

int geom_erreur(const Objet* o, int n) {
  geom_objet_imprime(o);
  message(0, n);
  return -1;
}

int geom_erreur_valeur(long v, int n) {
  std::printf("%ld: ", v);
  message(0, n);
  return -1;
}

mot* vol_attribut(Objet* o, int n, const mot* paires) {
  return o ? geom_attribut_trouve(o->donnees, n, paires) : nullptr;
}

mot* vol_valeur(Objet* o, int n, const mot* paires) { return valeur_de(vol_attribut(o, n, paires)); }

mot* attribut_prepare(Objet* o, int n, const mot* paires, mot lg) {
  mot h = 4 + 2 * n;
  int pos;
  mot* a = geom_attribut_trouve_pos(o, &pos, n, paires);
  if (a && a[0] >= h + lg) {
    // Still fits: refilled where it is, so that pointers to it stay good.
    a[0] = h + lg;
    a[1] = 0;
    return a;
  }
  if (a) {
    mot* b = bloc_alloue(h + lg);
    if (!b) return nullptr;
    geom_phrase_paires(b, n, paires);
    b[1] = 0;
    o->donnees[pos] = ptr_vers_mot(b);
    bloc_supprime(a);
    return b;
  }
  mot* b = geom_attribut_nouveau(o, h + lg);
  if (!b) return nullptr;
  geom_phrase_paires(b, n, paires);
  b[1] = 0;
  return b;
}

int attribut_supprime(Objet* o, int n, const mot* paires) { return geom_attribut_enleve(o, n, paires); }

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
