// A field's function (a101): the language gives the force at a point. The
// point is kept in `etat.point` and handed to the function as its one
// argument, a vector of 3; the function's value, at least 3 numbers, adds
// to the force. The call is built on the evaluation stack above what is
// there, and nothing is allocated for it.
//
// A function that cannot be found is said once a step and left out; a
// field function that steps the dynamics again does not call field
// functions from inside itself.
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "anim/dyn.h"
#include "core/message.h"
#include "geom/geom.h"
#include "interp/interp.h"
#include "lang/lang.h"

namespace dyn {
namespace {
bool dedans = false;
}

void champ_fonction(Objet* f, const float* p, float* F) {
  const mot* v = vol_valeur(f, 1, std::array<mot, 2>{0, A_FONCK}.data());
  if (!v || v[0] < 5 || v[1] != BLOC_CHAINE || dedans) return;
  const char* nom = reinterpret_cast<const char*>(v + 4);
  Objet* fn = fonction_trouve(nom);
  if (!fn) fn = fonction_cherche(nom);
  if (!fn) {
    if (!etat.fonc_avertie) {
      std::printf("%s: ", nom);
      message(0, MES_ABSENT);
      etat.fonc_avertie = true;
    }
    return;
  }
  mot* appel = piles.eva_haut;
  if (!appel || appel + 4 + 7 + 64 > piles.eva_limite) return;
  appel[0] = 4 + 7, appel[1] = BLOC_OBJET, appel[2] = ptr_vers_mot(fn), appel[3] = 1;
  mot* a = appel + 4;
  a[0] = 7, a[1] = BLOC_REEL, a[2] = 1, a[3] = 3;
  std::memcpy(a + 4, p, 3 * sizeof(float));
  for (int x = 0; x < 3; ++x) etat.point[x] = p[x];
  piles.eva_haut = appel + 11;
  dedans = true;
  const int r = appeler_fonction(appel, true);
  dedans = false;
  piles.eva_haut = appel;
  if (r < 0 || appel[0] < 7 || appel[1] != BLOC_REEL) return;
  const reel* x = reels(appel + 4);
  for (int k = 0; k < 3; ++k)
    if (std::isfinite(x[k])) F[k] += x[k];
}
}  // namespace dyn
