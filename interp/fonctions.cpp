// The built-in functions: a keyword phrase of one element whose argument is
// already evaluated; the value is written in place of the phrase.
#include <cstdio>

#include "core/message.h"
#include "interp/fonctions_interne.h"
#include "startup/startup.h"

bool lit_argument(const mot* element, Argument* a) {
  *a = Argument{};
  if (element[0] <= 3) return true;  // no argument: nil
  const mot* v = element + 3;
  a->bloc = v;
  if (v[0] < 0) {
    // A scalar can stand as a pair (kind, bits).
    if (v[0] != BLOC_REEL) return v[0] == BLOC_NIL;
    a->type = BLOC_REEL;
    a->n = 1;
    a->x = reels(v + 1);
    return true;
  }
  switch (v[1]) {
    case BLOC_REEL:
      a->type = BLOC_REEL;
      a->n = v[0] - 4;
      a->x = reels(v + 4);
      return true;
    case BLOC_CHAINE:
      a->type = BLOC_CHAINE;
      a->s = reinterpret_cast<const char*>(v + 4);
      a->n = static_cast<long>(std::strlen(a->s));
      return true;
    case BLOC_NIL:
      return true;
    case BLOC_LISTE:
      a->type = BLOC_LISTE;
      a->n = v[2];
      return true;
  }
  return false;
}

reel* resultat_reels(mot* bloc, const mot* limite, long n) {
  if (bloc + 4 + n >= limite) return nullptr;
  bloc[0] = static_cast<mot>(4 + n);
  bloc[1] = BLOC_REEL;
  bloc[2] = static_cast<mot>(n);
  bloc[3] = 1;
  return reels(bloc + 4);
}

int resultat_chaine(mot* bloc, const mot* limite, const char* s, std::size_t lg) {
  mot l = long_chaine(lg);
  if (bloc + l >= limite) return PILE_PLEINE;
  // The text may lie inside the phrase: move it before the header is written.
  std::memmove(bloc + 4, s, lg);
  reinterpret_cast<char*>(bloc + 4)[lg] = 0;
  bloc[0] = l;
  bloc[1] = BLOC_CHAINE;
  bloc[2] = 1;
  bloc[3] = static_cast<mot>(lg ? lg : 1);
  return 0;
}

void resultat_nil(mot* bloc) {
  bloc[0] = 4;
  bloc[1] = BLOC_NIL;
  bloc[2] = 0;
  bloc[3] = 1;
}

int resultat_scalaire(mot* bloc, const mot* limite, float x) {
  reel* r = resultat_reels(bloc, limite, 1);
  if (!r) return PILE_PLEINE;
  r[0] = x;
  return 0;
}

int resultat_vecteur(mot* bloc, const mot* limite, std::span<const float> x) {
  if (x.empty()) {
    resultat_nil(bloc);
    return 0;
  }
  reel* r = resultat_reels(bloc, limite, static_cast<long>(x.size()));
  if (!r) return PILE_PLEINE;
  std::memmove(r, x.data(), x.size() * sizeof(float));
  return 0;
}

int fonction_interne(mot* bloc, const mot* limite) {
  mot* element = bloc + 4;
  int ord = element[2];
  if (bloc[2] > 1) {
    const mot* second = element + element[0];
    // A second keyword of another list makes it a command.
    if (second[1] >= 1) return second[1];
    if (ord >= F_LIM && ord <= F_INDICE && second[2] == F_CHAMP) return 1;
  }
  Argument a;
  if (!lit_argument(element, &a)) {
    mot_imprime(0, ord);
    message(0, M_TYPE_F);
    return -1;
  }
  switch (ord) {
    case F_FOPEN: case F_FMOT: case F_FCLOSE: case F_FREAD: case F_FWRITE:
      return fonction_fichier(ord, bloc, limite, a);
    case F_CHEMIN: case F_TEXTE: case F_FONC: case F_CHA: case F_COD: case F_TAILLE:
      return fonction_texte(ord, bloc, limite, a);
    case F_LIM: case F_CENTRE: case F_INDICE:
      return fonction_etendue(ord, bloc, limite, a);
    case F_DATE:
      return fonction_date(bloc, limite);
    case F_MEMOIRE:
      return resultat_scalaire(bloc, limite, static_cast<float>(memoire.compteur));
  }
  if (a.type == BLOC_NIL || (a.type == BLOC_REEL && a.n == 0)) {
    resultat_nil(bloc);
    return 0;
  }
  if (a.type != BLOC_REEL) {
    mot_imprime(0, ord);
    message(0, M_TYPE_F);
    return -1;
  }
  return fonction_maths(ord, bloc, limite, a);
}
