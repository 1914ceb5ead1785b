// Extents of a vector of triples: minima and maxima, centre, size; also of
// a global variable named behind the keyword.
#include <algorithm>
#include <cstdio>

#include "core/message.h"
#include "core/objet.h"
#include "interp/fonctions_interne.h"
#include "startup/startup.h"

int fonction_etendue(int ord, mot* bloc, const mot* limite, const Argument& arg) {
  Argument a = arg;
  // "lim var nom": the extent of the global variable of that name.
  const mot* second = bloc[2] > 1 ? bloc + 4 + bloc[4] : nullptr;
  if (second && second[1] == 0 && second[2] == F_VAR) {
    Argument nom;
    lit_argument(second, &nom);
    Objet* o = nom.type == BLOC_CHAINE ? objet_trouve(OBJ_GLOBAL, 0, 0, nom.s) : nullptr;
    if (!o || !o->donnees) {
      if (nom.s) std::printf("%s: ", nom.s);
      message(0, M_INTROUVABLE_F);
      return -1;
    }
    a = Argument{};
    a.type = o->donnees[1];
    a.n = o->donnees[0] - 4;
    a.x = reels(o->donnees + 4);
  }
  if (a.type != BLOC_REEL || a.n < 3) {
    std::printf("%s expr\a\n", mot_nom(0, F_LIM));
    return -1;
  }
  float mn[3] = {1e6f, 1e6f, 1e6f}, mx[3] = {-1e6f, -1e6f, -1e6f};
  long t = a.n / 3;
  for (long i = 0; i < t; ++i)
    for (int k = 0; k < 3; ++k) {
      mn[k] = std::min<float>(mn[k], a.x[3 * i + k]);
      mx[k] = std::max<float>(mx[k], a.x[3 * i + k]);
    }
  long n = ord == F_LIM ? 6 : 3;
  reel* r = resultat_reels(bloc, limite, n);
  if (!r) return PILE_PLEINE;
  for (int k = 0; k < 3; ++k) {
    if (ord == F_LIM) {
      r[k] = mn[k];
      r[3 + k] = mx[k];
    } else {
      r[k] = ord == F_CENTRE ? (mn[k] + mx[k]) / 2 : mx[k] - mn[k];
    }
  }
  return 0;
}
