// The eye from the language:
//   oeil                       where the eye is: x, y, z
//   oeil(0, 0, -500)           the eye moved (also oeil = 0, 0, -500)
//   oeil(0,0,-500) vise(0,0,0) foc(1.5)   several at once
//   vise, roul, foc, proche, loin, fui, proj(13) or proj(63)
//   oeil vue(2)                the eye of view 2 (its attributes oeil, vise,
//                              foc, roul, proj, proche, loin, fui)
// A phrase is applied as a whole or not at all: values that would break
// the matrices (foc <= 0, proche <= 0, loin <= proche, the eye on the
// point it looks at, anything not finite) print message 1:110 after the
// keyword, and the eye stays as it was.
#include <cmath>
#include <cstdio>
#include <vector>

#include "core/message.h"
#include "display/aff_interne.h"
#include "display/oeil.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
using namespace aff_b;

constexpr int ORDS[] = {OEIL, VISE, FOC, ROUL, PROJ, PROCHE, LOIN, FUI};

bool de_l_oeil(int ord) {
  for (int o : ORDS)
    if (o == ord) return true;
  return false;
}

// The floats of the eye that keyword `ord` names, and their count.
float* champ(Oeil& o, int ord, int* n) {
  *n = 1;
  switch (ord) {
    case OEIL: *n = 3; return o.oeil;
    case VISE: *n = 3; return o.vise;
    case FOC: return &o.foc;
    case ROUL: return &o.roul;
    case PROCHE: return &o.proche;
    case LOIN: return &o.loin;
    case FUI: return &o.fui;
  }
  return nullptr;
}

int refuse(int ord, int mes) {
  mot_imprime(1, ord);
  message(mes == M_OEIL_ILLEGAL ? 1 : 0, mes);
  return ECHEC;
}

// Writes the values of keyword `ord` into the eye; -1 after a message for
// a value that is not numbers or too short.
int pose(Oeil& o, int ord, const mot* v) {
  std::vector<float> x;
  if (!aff_nombres(v, x)) return refuse(ord, MES_VALEUR);
  if (ord == PROJ) {
    mot k;
    if (x.empty() || !reel_entier(x[0], &k)) return refuse(ord, MES_VALEUR);
    o.projection = k;
    return 0;
  }
  int n;
  float* c = champ(o, ord, &n);
  if (static_cast<int>(x.size()) < n) return refuse(ord, MES_VALEUR);
  for (int k = 0; k < n; ++k) c[k] = x[k];
  return 0;
}

// The eye of a view: the attributes it holds, the others kept.
int depuis_vue(Oeil& o, const mot* ids) {
  std::vector<float> x;
  mot n;
  if (!aff_nombres(ids, x) || x.empty() || !reel_entier(x[0], &n)) return refuse(VUE, MES_VALEUR);
  Objet* vue = objet_trouve(B_VUE, 0, n, nullptr);
  if (!vue) {
    std::printf("vue %d: ", n);
    message(0, MES_ABSENT);
    return ECHEC;
  }
  for (int ord : ORDS) {
    const mot* v = attribut_valeur_1(vue->donnees, 1, ord);
    if (v && pose(o, ord, v) < 0) return ECHEC;
  }
  return 0;
}

// The keyword whose value breaks the eye, or 0 when the eye is sound.
int defaut(const Oeil& o) {
  for (int k = 0; k < 3; ++k) {
    if (!std::isfinite(o.oeil[k])) return OEIL;
    if (!std::isfinite(o.vise[k])) return VISE;
  }
  if (!std::isfinite(o.roul)) return ROUL;
  if (!std::isfinite(o.fui)) return FUI;
  if (!(o.foc > 0) || !std::isfinite(o.foc)) return FOC;
  if (!(o.proche > 0) || !std::isfinite(o.proche)) return PROCHE;
  if (!(o.loin > o.proche) || !std::isfinite(o.loin)) return LOIN;
  // The line of sight needs a direction.
  double d = 0;
  for (int k = 0; k < 3; ++k) d += static_cast<double>(o.oeil[k] - o.vise[k]) * (o.oeil[k] - o.vise[k]);
  if (!(d > 1e-12)) return OEIL;
  return 0;
}

// The keyword values follow the eye, for the readers of the vocabulary.
void synchronise(const Oeil& o) {
  const int ords[] = {OEIL, VISE, FOC, ROUL};
  for (int ord : ords) {
    int nv = 0, n = 0;
    reel* v = mot_valeur(1, ord, &nv);
    Oeil copie = o;
    const float* c = champ(copie, ord, &n);
    for (int k = 0; v && k < nv && k < n; ++k) v[k] = c[k];
  }
}

int lecture(mot* bloc, const mot* limite, int ord) {
  Oeil o = oeil_courant;
  int n = 1;
  float proj = static_cast<float>(o.projection);
  const float* c = ord == PROJ ? &proj : champ(o, ord, &n);
  reel* r = resultat_reels(bloc, limite, n);
  if (!r) return PILE_PLEINE;
  for (int k = 0; k < n; ++k) r[k] = c[k];
  return 0;
}

int cmd_oeil(mot* bloc, mot* affecte, const mot* limite) {
  mot* e = bloc + 4;
  int premier = e[2];
  // A phrase with other keywords (a transformation of the eye...) is not
  // this command's.
  for (mot k = 0; k < bloc[2]; ++k, e += e[0])
    if (e[1] != 1 || !(de_l_oeil(e[2]) || (e[2] == VUE && e[0] > 3))) return COMMANDE_SUITE;
  e = bloc + 4;
  if (bloc[2] == 1 && e[0] <= 3 && !affecte) return lecture(bloc, limite, premier);
  Oeil o = oeil_courant;
  for (mot k = 0; k < bloc[2]; ++k, e += e[0]) {
    const mot* v = e[0] > 3 ? e + 3 : (k == 0 ? affecte : nullptr);
    if (!v) continue;
    int r = e[2] == VUE ? depuis_vue(o, v) : pose(o, e[2], v);
    if (r < 0) return r;
  }
  if (int faux = defaut(o)) return refuse(faux, M_OEIL_ILLEGAL);
  oeil_courant = o;
  synchronise(o);
  bloc[0] = 0;
  return 0;
}
}  // namespace

void oeil_commandes_enregistre() {
  for (int ord : ORDS) commande_enregistre(1, ord, cmd_oeil);
}
