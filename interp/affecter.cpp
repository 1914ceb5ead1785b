// Assignment: to a variable, through a view into a variable's block, or to
// a keyword phrase, which hands the value to the command dispatch.
#include <cstdio>
#include <cstring>

#include "interp/interne.h"
#include "interp/noyaux.h"

namespace {
bool est_variable(const mot* v) {
  switch (v[0]) {
    case IT_LOCAL: case IT_STATIQUE: case IT_GLOBAL:
    case IT_REF_GLOBAL: case IT_REF_LOCAL: case IT_REF_STATIQUE:
      return true;
  }
  return false;
}

// After a store the variable itself stands for the value, so a long vector
// is not copied once more; whoever reads the value reads the variable.
void laisse_variable(mot* cible, Objet* o) {
  cible[0] = IT_GLOBAL;
  cible[1] = ptr_vers_mot(o);
  piles.eva_haut = cible + 2;
}

// x = vecteur(n): n elements, left as they are when the block is reused;
// x = remplir(n, v): n elements equal to v (0 by default).
int dimensionne(mot* cible, mot* phrase) {
  mot* e = phrase + 4;
  bool remplir = e[2] == A_REMPLIR;
  Valeur arg;
  if (e[0] <= 3 || decrire(e + 3, &arg) < 0 || arg.type != BLOC_REEL || arg.n < 1) {
    mot_imprime(0, e[2]);
    message(0, M_VALEUR);
    return ECHEC;
  }
  const reel* x = reels(arg.donnees);
  mot n;
  float v = remplir && arg.n > 1 ? x[1] : 0.0f;
  if (!reel_entier(x[0], &n, 1, 0x3fffffff)) {
    std::printf("%g: ", static_cast<double>(x[0]));
    message(0, M_VALEUR);
    return ECHEC;
  }
  Objet* o = variable_de(cible);
  if (!o) return ECHEC;
  mot* b = o->donnees;
  bool propre = b && b != bloc_nil && possede(o);
  if (!propre || b[0] != 4 + n || b[1] != BLOC_REEL) {
    mot* c = bloc_alloue(static_cast<mot>(4 + n));
    if (!c) return ECHEC;
    std::memset(c + 4, 0, static_cast<std::size_t>(n) * sizeof(mot));
    if (propre) bloc_libere(b);
    o->donnees = b = c;
    if (o->type == OBJ_LOCAL) o->f1 = 1;
  }
  b[0] = static_cast<mot>(4 + n);
  b[1] = BLOC_REEL;
  b[2] = static_cast<mot>(n);
  b[3] = 1;
  if (remplir) {
    reel* y = reels(b + 4);
    for (long k = 0; k < n; ++k) y[k] = v;
  }
  laisse_variable(cible, o);
  return 0;
}

// The k-th blank-separated word of a text, or null past the last.
const char* mot_numero(const char* t, long k, long* lg) {
  for (long i = 0;; ++i) {
    while (*t == ' ') ++t;
    if (!*t) return nullptr;
    const char* f = t;
    while (*f && *f != ' ') ++f;
    if (i == k) {
      *lg = f - t;
      return t;
    }
    t = f;
  }
}

int ecrit_vue(mot* vue, mot* valeur) {
  Valeur v;
  if (decrire(valeur, &v) < 0) return ECHEC;
  long n = vue[2];
  bool chaine = vue[3] == BLOC_CHAINE;
  const mot* adr = vue + 4;
  if (!chaine) {
    if (v.type != BLOC_REEL) {
      message(0, M_TYPE);
      return ECHEC;
    }
    const reel* x = reels(v.donnees);
    if (vue[1] == VAL_VUE) {
      long m = n < v.n ? n : v.n;
      for (long k = 0; k < m; ++k) *reels(bloc_pointe(adr[k])) = x[k];
    } else {
      for (long k = 0, i = 0; k < n && i < v.n; ++k)
        for (int c = 0; c < 3 && i < v.n; ++c, ++i) reels(bloc_pointe(adr[k]))[c] = x[i];
    }
    return 0;
  }
  if (vue[1] == VAL_VUE) {
    long m = n < v.n ? n : v.n;
    for (long k = 0; k < m; ++k) {
      char* c = static_cast<char*>(mot_vers_ptr(adr[k]));
      if (v.type == BLOC_CHAINE) *c = reinterpret_cast<const char*>(v.donnees)[k];
      else if (v.type == BLOC_REEL) *c = static_cast<char>(entier_sature(reels(v.donnees)[k]));
    }
    return 0;
  }
  if (v.type != BLOC_CHAINE) {
    message(0, M_TYPE);
    return ECHEC;
  }
  // Each word of the view takes the value's next word and a blank, within
  // the text that is already there.
  const char* src = reinterpret_cast<const char*>(v.donnees);
  for (long k = 0; k < n; ++k) {
    long lg;
    const char* w = mot_numero(src, k, &lg);
    if (!w) break;
    char* c = static_cast<char*>(mot_vers_ptr(adr[k]));
    long place_texte = static_cast<long>(std::strlen(c));
    long m = 0;
    for (; m < lg && m < place_texte; ++m) c[m] = w[m];
    if (m < place_texte) c[m] = ' ';
  }
  return 0;
}

void remonte(mot* cible, mot* valeur) {
  mot n = taille_item(valeur);
  if (cible != valeur) std::memmove(cible, valeur, static_cast<std::size_t>(n) * sizeof(mot));
  piles.eva_haut = cible + n;
}
}  // namespace

int affecter(mot* cible, mot* valeur) {
  bool variable = est_variable(cible);
  if (variable && valeur[0] > 0 && valeur[1] == BLOC_PHRASE && valeur[2] >= 1 && valeur[5] == 0 &&
      (valeur[6] == A_VECTEUR || valeur[6] == A_REMPLIR))
    return dimensionne(cible, valeur);
  int r = copie_valeur(valeur, piles.eva_limite);
  if (r < 0) return r;
  if (variable) {
    Objet* o = variable_de(cible);
    if (!o) return ECHEC;
    if (stocke(o, valeur) < 0) return ECHEC;
    laisse_variable(cible, o);
    return 0;
  }
  if (cible[0] > 0 && (cible[1] == VAL_VUE || cible[1] == VAL_VUE3)) {
    if (ecrit_vue(cible, valeur) < 0) return ECHEC;
    remonte(cible, valeur);
    return 0;
  }
  if (cible[0] > 0 && cible[1] == BLOC_PHRASE) {
    piles.eva_haut = valeur + taille_item(valeur);
    r = commande(cible, piles.eva_limite, valeur);
    if (r < 0) return r;
    // A handler that took the value leaves it (or its own result) in place
    // of the phrase, and may have written over the value's old place while
    // doing so: only a phrase left unhandled, or a handler that left
    // nothing, still has the value intact behind it.
    if (r > 0 || cible[0] == 0) remonte(cible, valeur);
    else piles.eva_haut = cible + taille_item(cible);
    return 0;
  }
  message(0, M_AFFECTATION);
  return ECHEC;
}
