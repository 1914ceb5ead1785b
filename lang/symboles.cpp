// The symbol run of a compilation: entries laid end to end in an area that
// doubles when it is full, and searched linearly.
//   [length, kind, index, Objet, N, name..., value block(s)]
#include <cstdio>
#include <string>

#include "lang/interne.h"

namespace {
int* compteur(Compil& c, mot sorte) {
  switch (sorte) {
    case SYM_LOCAL:
    case SYM_FORMEL_FONC: return &c.nb_locaux;  // both are frame slots
    case SYM_STATIQUE: return &c.nb_statiques;
    case SYM_GLOBAL: return &c.nb_globaux;
    case SYM_APPEL: return &c.nb_appels;
    case SYM_ETIQUETTE: return &c.nb_etiquettes;
    default: return &c.nb_macros;
  }
}

int agrandit(Compil& c, long besoin, mot sorte) {
  std::vector<mot>& v = c.espace->sym;
  long n = static_cast<long>(v.size());
  while (n < besoin) n *= 2;
  if (n > TAILLE_MAX_SYMBOLES) {
    message(0, M_SYMBOLES);
    return -1;
  }
  v.resize(n, 0);
  dem.compile = n;
  if (niveau_trace() > (sorte == SYM_MACRO ? 0 : 1)) {
    message(0, M_TAILLE);
    std::printf(": %ld\n", n);
  }
  return 0;
}
}  // namespace

long sym_cherche(Compil& c, mot sorte, const char* nom) {
  const mot* s = c.espace->sym.data();
  for (long i = 1; i < c.sym_haut; i += s[i]) {
    const mot* e = s + i;
    if (e[1] == sorte && sym_nom(e)[0] == nom[0] && std::strcmp(sym_nom(e), nom) == 0) return i;
  }
  return 0;
}

long sym_cherche_index(Compil& c, mot sorte, mot index) {
  const mot* s = c.espace->sym.data();
  for (long i = 1; i < c.sym_haut; i += s[i])
    if (s[i + 1] == sorte && s[i + 2] == index) return i;
  return 0;
}

const char* sym_nom_item(Compil& c, const mot* p) {
  mot sortes[2] = {0, 0};
  mot index = p[0] < 0 ? p[1] : p[0] >= 3 ? p[2] : 0;
  if (p[0] < 0) {
    switch (p[0]) {
      case CEL_GLOBAL: case CEL_REF_GLOBAL: sortes[0] = SYM_GLOBAL; break;
      case CEL_STATIQUE: case CEL_REF_STATIQUE: sortes[0] = SYM_STATIQUE; break;
      case CEL_LOCAL: case CEL_REF_LOCAL: sortes[0] = SYM_LOCAL, sortes[1] = SYM_FORMEL_FONC; break;
      default: return nullptr;
    }
  } else if (p[0] >= 3 && p[1] == BLOC_APPEL) {
    sortes[0] = SYM_APPEL;
  } else if (p[0] >= 3 && p[1] == BLOC_APPEL_FORMEL) {
    sortes[0] = SYM_FORMEL_FONC;
  } else {
    return nullptr;
  }
  for (mot sorte : sortes) {
    if (!sorte) continue;
    long i = sym_cherche_index(c, sorte, index);
    if (!i && index < 0) i = sym_cherche_index(c, sorte, -index);
    if (i) return sym_nom(sym_entree(c, i));
  }
  return nullptr;
}

long sym_ajoute(Compil& c, mot sorte, const char* nom, const mot* valeur, int copies) {
  long lg = static_cast<long>(std::strlen(nom));
  mot n_nom = static_cast<mot>(lg / 4 + 2);
  long tv = valeur ? taille_item(valeur) : 0;
  long taille = 4 + n_nom + copies * tv;
  if (c.sym_haut + taille + 1 > static_cast<long>(c.espace->sym.size()) &&
      agrandit(c, c.sym_haut + taille + 1, sorte) < 0)
    return -1;
  int* k = compteur(c, sorte);
  mot* e = c.espace->sym.data() + c.sym_haut;
  e[0] = static_cast<mot>(taille);
  e[1] = sorte;
  e[2] = -*k;
  e[3] = 0;
  e[4] = n_nom;
  std::memset(e + 5, 0, sizeof(mot) * (n_nom - 1));
  std::memcpy(e + 5, nom, lg);
  for (int i = 0; i < copies; ++i) std::memcpy(e + 4 + n_nom + i * tv, valeur, sizeof(mot) * tv);
  ++*k;
  long off = c.sym_haut;
  c.sym_haut += taille;
  c.espace->sym[c.sym_haut] = 0;
  return off;
}

long sym_remplace(Compil& c, long off, const mot* valeur, int copies) {
  std::vector<mot>& v = c.espace->sym;
  mot* e = v.data() + off;
  mot sorte = e[1], index = e[2];
  std::string nom(sym_nom(e));
  long lg = e[0];
  // The entry leaves its place; the others close up behind it.
  std::memmove(v.data() + off, v.data() + off + lg, sizeof(mot) * (c.sym_haut + 1 - off - lg));
  c.sym_haut -= lg;
  int* k = compteur(c, sorte);
  int garde = *k;
  *k = -index;
  long n = sym_ajoute(c, sorte, nom.c_str(), valeur, copies);
  *k = garde;
  return n;
}
