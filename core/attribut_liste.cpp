// The attribute list itself: appending, making, restoring, comparing keys,
// and the form A header.
#include <cstring>

#include "core/interne.h"

int liste_ajoute(Objet* o, mot* ptr) {
  if (!o) return -1;
  mot* l = o->donnees;
  if (!l) {
    l = bloc_alloue(5);
    if (!l) return -1;
    l[1] = BLOC_BLOCS;
    l[2] = 1;
    l[3] = 1;
    l[4] = ptr_vers_mot(ptr);
    o->donnees = l;
    return 4;
  }
  if (l[0] < 4 || l[1] != BLOC_BLOCS) {
    erreur_usage(o);
    return -1;
  }
  // The list is replaced by one a word longer: lists are short and grow
  // once per new kind of attribute.
  mot lg = l[0];
  mot* m = bloc_alloue(lg + 1);
  if (!m) return -1;
  std::memcpy(m, l, sizeof(mot) * lg);
  m[0] = lg + 1;
  ++m[2];
  m[lg] = ptr_vers_mot(ptr);
  o->donnees = m;
  bloc_libere(l);
  attributs_bougent();
  return lg;
}

mot* liste_cree(Objet* o, int n) {
  if (!o || n < 0) return nullptr;
  mot* l = bloc_alloue(4 + n);
  if (!l) return nullptr;
  l[1] = BLOC_BLOCS;
  l[2] = n;
  l[3] = 1;
  std::memset(l + 4, 0, sizeof(mot) * n);
  o->donnees = l;
  attributs_bougent();
  return l;
}

mot* attribut_nouveau(Objet* o, mot n) {
  mot* a = bloc_alloue(n);
  if (!a) return nullptr;
  if (liste_ajoute(o, a) < 0) {
    bloc_libere_force(a);
    return nullptr;
  }
  return a;
}

mot* attribut_restaure(Objet* o, int e, int ord) {
  if (!o) return nullptr;
  mot* d = attribut_trouve_1(o->donnees, e, ord);
  mot* s = attribut_trouve_1(o->donnees, e, -ord);
  if (!d || !s || d[0] != s[0]) return nullptr;
  bloc_copie(d, s);
  d[5] = ord;  // the copy brought the saved key along
  return d;
}

bool attributs_egaux(const mot* a, const mot* b) {
  if (a[3] != b[3]) return false;
  for (mot j = 0; j < 2 * a[3]; ++j)
    if (a[4 + j] != b[4 + j]) return false;
  return true;
}

bool attribut_oppose(const mot* a, const mot* b) {
  if (a[3] != b[3] || a[3] < 1 || a[4] != b[4] || a[5] != -b[5]) return false;
  for (mot j = 2; j < 2 * a[3]; ++j)
    if (a[4 + j] != b[4 + j]) return false;
  return true;
}

int phrase_paires(mot* b, int n, const mot* paires) {
  b[1] = BLOC_PHRASE;
  b[2] = 4 + 2 * n;
  b[3] = n;
  std::memcpy(b + 4, paires, sizeof(mot) * 2 * n);
  return b[2];
}

int phrase_chaine(mot* b, int n, const mot* clauses) {
  if (n < 1 || n > PAIRES_MAX) return 0;
  mot cle[2 * PAIRES_MAX];
  cle_de_chaine(clauses, n, cle);
  return phrase_paires(b, n, cle);
}
