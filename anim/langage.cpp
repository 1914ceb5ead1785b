// The language inside the frame: the hooks, the attached program lists and
// the lines typed after "!". Whatever the language ran, the records then
// take again what it may have moved of their volumes. A hook runs as a call built on the evaluation
// stack, the stacks reset first as the shell does at the top level: no
// text is compiled and nothing is allocated for it.
#include <cstring>

#include "anim/interne.h"
#include "interp/interp.h"

namespace {
void sommet() {
  if (!interp.fonction) {
    cadre = Cadre{};
    piles_reset();
  }
}
}  // namespace

int inter_lance(Objet* f) { return inter_lance_args(f, nullptr, 0); }

int inter_lance_args(Objet* f, const float* args, int n) {
  if (!f) return 0;
  if (n < 0 || n > 8) n = 0;
  sommet();
  mot* appel = piles.eva_haut;
  if (appel + 8 + 5 * n > piles.eva_limite) {
    message(0, MES_PILE);
    return -1;
  }
  appel[0] = 4 + 5 * n;
  appel[1] = BLOC_OBJET;
  appel[2] = ptr_vers_mot(f);
  appel[3] = n;
  // Each argument a vector of one number.
  for (int k = 0; k < n; ++k) {
    mot* a = appel + 4 + 5 * k;
    a[0] = 5, a[1] = BLOC_REEL, a[2] = 1, a[3] = 1, a[4] = reel_mot(args[k]);
  }
  piles.eva_haut = appel + appel[0];
  int r = appeler_fonction(appel, false);
  piles.eva_haut = appel;
  vols_inter_suivent();
  std::fflush(stdout);
  return r < 0 ? -1 : 0;
}

int interaction_lance(Objet* f) { return inter_lance(f); }

int inter_liste(int i) {
  for (Noeud_inter* n = inter.listes[i]; n; n = n->suivant) {
    if (!n->phrase) continue;
    sommet();
    mot* b = piles.eva_haut;
    if (b + n->phrase[0] + 1 > piles.eva_limite) {
      message(0, MES_PILE);
      return -1;
    }
    std::memcpy(b, n->phrase, sizeof(mot) * static_cast<std::size_t>(n->phrase[0]));
    b[n->phrase[0]] = 0;
    piles.eva_haut = b + n->phrase[0];
    int r = executer_phrase(b);
    piles.eva_haut = b;
    vols_inter_suivent();
    if (r < 0) return -1;
    if (!inter.en_cours) return 0;
  }
  return 0;
}

int inter_liste_ajoute(int i, Vol_inter* cible, const mot* phrase) {
  auto* n = new Noeud_inter;
  n->cible = cible;
  n->phrase = bloc_duplique(phrase);
  if (!n->phrase) {
    delete n;
    return -1;
  }
  Noeud_inter** p = &inter.listes[i];
  while (*p) p = &(*p)->suivant;
  *p = n;
  return 0;
}

void inter_listes_libere() {
  for (Noeud_inter*& l : inter.listes) {
    while (l) {
      Noeud_inter* s = l->suivant;
      bloc_libere(l->phrase);
      delete l;
      l = s;
    }
  }
}

int inter_ligne(const char* texte) {
  sommet();
  int r = executer_texte(texte);
  vols_inter_suivent();
  std::fflush(stdout);
  return r;
}

int interaction_liste_ajoute(int liste, int vol, const mot* phrase) {
  if (!inter.en_cours || liste < 0 || liste >= NB_LISTES || !phrase || phrase[1] != BLOC_PHRASE) return -1;
  return inter_liste_ajoute(liste, vol ? vol_inter_de(vol) : nullptr, phrase);
}
