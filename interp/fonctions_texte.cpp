// The text family of the built-ins: paths, function text, strings given
// back, conversions between strings and character codes, lengths.
#include <cstdio>
#include <cstring>
#include <string>

#include "core/message.h"
#include "core/objet.h"
#include "interp/fonctions_interne.h"
#include "lang/lang.h"
#include "startup/startup.h"

namespace {
int chemin(mot* bloc, const mot* limite, const Argument& a) {
  if (a.type != BLOC_CHAINE || a.n < 3) return -1;
  const char* p = nullptr;
  if (std::strncmp(a.s, "ini", 3) == 0) p = dem.chemin_init;
  else if (std::strncmp(a.s, "env", 3) == 0) p = dem.chemin_env;
  else if (std::strncmp(a.s, "uti", 3) == 0) p = dem.chemin_uti;
  else return -1;
  return resultat_chaine(bloc, limite, p, std::strlen(p));
}

// The source text of a function; a name without a function comes back.
int texte_fonction(mot* bloc, const mot* limite, const Argument& a) {
  if (a.type != BLOC_CHAINE) return -1;
  // The function is read from its file if it has not been yet.
  Objet* f = *a.s ? fonction_cherche(a.s) : nullptr;
  if (!f || !f->donnees || f->donnees[0] < 5) return resultat_chaine(bloc, limite, a.s, a.n);
  const char* t = reinterpret_cast<const char*>(f->donnees + 4);
  return resultat_chaine(bloc, limite, t, strnlen(t, (f->donnees[0] - 4) * sizeof(mot)));
}

// Numbers as the console shows them, separated by blanks.
int en_texte(mot* bloc, const mot* limite, const Argument& a) {
  if (a.type == BLOC_CHAINE) return resultat_chaine(bloc, limite, a.s, a.n);
  std::string s;
  char tampon[32];
  for (long i = 0; i < a.n; ++i) {
    std::snprintf(tampon, sizeof tampon, i ? " %g" : "%g", static_cast<double>(a.x[i]));
    s += tampon;
  }
  return resultat_chaine(bloc, limite, s.data(), s.size());
}

// A string gives its character codes; floats give the string of those codes.
int codes(mot* bloc, const mot* limite, const Argument& a) {
  if (a.type == BLOC_CHAINE) {
    const unsigned char* s = reinterpret_cast<const unsigned char*>(a.s);
    long n = a.n;
    if (bloc + 4 + n >= limite) return PILE_PLEINE;
    // A code takes a word where a byte took a quarter: read from a copy.
    std::string copie(a.s, n);
    s = reinterpret_cast<const unsigned char*>(copie.data());
    reel* r = resultat_reels(bloc, limite, n);
    for (long i = 0; i < n; ++i) r[i] = s[i];
    return 0;
  }
  std::string s;
  for (long i = 0; i < a.n; ++i) {
    mot c;
    if (entier_de(a.x[i], &c) < 0) return -1;
    s.push_back(static_cast<char>(c));
  }
  return resultat_chaine(bloc, limite, s.data(), s.size());
}
}  // namespace

int fonction_texte(int ord, mot* bloc, const mot* limite, const Argument& a) {
  switch (ord) {
    case F_CHEMIN:
      return chemin(bloc, limite, a);
    case F_FONC:
      return texte_fonction(bloc, limite, a);
    case F_CHA:
      if (a.type == BLOC_CHAINE) return resultat_chaine(bloc, limite, a.s, a.n);
      // A number is no text: said here, where it is known.
      mot_imprime(0, F_CHA);
      message(0, MES_VALEUR);
      return -1;
    case F_TAILLE:
      return resultat_scalaire(bloc, limite, static_cast<float>(a.type == BLOC_NIL ? 0 : a.n));
  }
  if (a.type == BLOC_NIL) {
    resultat_nil(bloc);
    return 0;
  }
  if (a.type != BLOC_CHAINE && a.type != BLOC_REEL) return -1;
  return ord == F_TEXTE ? en_texte(bloc, limite, a) : codes(bloc, limite, a);
}
