// The phrase `dyn pas(k) vol(n)`: k vertex steps of volume n outside the
// interaction, one substep each; `ale(g)` first sets the seed of the random
// visit order, so that a run is reproducible. Any other phrase of `dyn`
// goes on to its ordinary meaning (its value, or an attribute).
#include <cmath>
#include <cstdio>

#include "anim/dyn.h"
#include "core/message.h"
#include "geom/geom.h"
#include "interp/interp.h"

namespace dyn {
namespace {
// The first number of a clause's value, or false.
bool nombre(const mot* e, float* x) {
  if (e[0] <= 3) return false;
  const mot* v = e + 3;
  if (v[0] == BLOC_REEL) return *x = lit_reel(v + 1), true;
  if (v[0] >= 5 && v[1] == BLOC_REEL) return *x = lit_reel(v + 4), true;
  if (v[0] >= 5 && v[1] == BLOC_ENTIER) return *x = static_cast<float>(v[4]), true;
  return false;
}
}  // namespace

int dyn_commande(mot* bloc, mot* valeur, const mot* limite) {
  (void)limite;
  float pas = -1, num = 0, graine = 0;
  bool a_pas = false, a_vol = false, a_ale = false;
  const mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
    if (e[1] == 0 && e[2] == A_PASK) a_pas = nombre(e, &pas) || true;
    else if (e[1] == 1 && e[2] == B_VOLK) a_vol = nombre(e, &num);
    else if (e[1] == 1 && e[2] == B_ALE) a_ale = nombre(e, &graine);
  }
  if (!a_pas || valeur) return COMMANDE_SUITE;
  mot k = 0, n = 0;
  if (!a_vol || !reel_entier(num, &n) || !reel_entier(pas, &k, 0, 100000000)) {
    message(1, MES_DYN_VOL);
    return -1;
  }
  Objet* o = objet_trouve(B_VOLK, 0, n, nullptr);
  if (!o) {
    message(1, MES_DYN_VOL);
    return -1;
  }
  if (a_ale) {
    etat.graine = 0x9e3779b97f4a7c15ull ^ static_cast<std::uint64_t>(static_cast<std::int64_t>(graine));
    if (etat.graine == 0) etat.graine = 1;
  }
  for (mot j = 0; j < k; ++j)
    if (pas_sommets(o, 1, 1, false) < 0) return -1;
  bloc[0] = 0;
  return 0;
}
}  // namespace dyn

void dynamique_enregistre() { commande_enregistre(1, dyn::B_DYN, dyn::dyn_commande); }
