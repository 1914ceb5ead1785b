// Views: an eye kept as the attributes of a b114 object, so that a file of
// views or a scene brings back where the scene was seen from.
#include <cstring>

#include "display/oeil.h"
#include "persist/interne.h"

namespace {
constexpr int B_OEIL = 9, B_VISE = 10, B_FOC = 11, B_ROUL = 12, B_PROJ = 13, B_PAS = 18;

// The floats of a one-pair attribute of b, at least n of them; null if not.
const reel* valeurs(const Objet* v, int ord, int n) {
  const mot* t = attribut_valeur_1(v->donnees, 1, ord);
  if (!t || t[1] != BLOC_REEL || t[0] - 4 < n) return nullptr;
  return reels(t + 4);
}
}  // namespace

Objet* vue_depuis_oeil(int numero) {
  Objet* v = objet_cree(1, B_VUE, 0, nullptr, nullptr, numero);
  if (!v) return nullptr;
  const Oeil& e = oeil_courant;
  float proj[2] = {static_cast<float>(e.projection), e.fui};
  float pas[2] = {e.proche, e.loin};
  if (!attribut_ecrit_1(v, 1, B_OEIL, e.oeil, 3, 1) || !attribut_ecrit_1(v, 1, B_VISE, e.vise, 3, 1) ||
      !attribut_ecrit_1(v, 1, B_FOC, &e.foc, 1, 1) || !attribut_ecrit_1(v, 1, B_ROUL, &e.roul, 1, 1) ||
      !attribut_ecrit_1(v, 1, B_PROJ, proj, 2, 1) || !attribut_ecrit_1(v, 1, B_PAS, pas, 2, 1)) {
    objet_supprime(v);
    return nullptr;
  }
  return v;
}

void vue_vers_oeil(const Objet* v) {
  Oeil e = oeil_courant;
  if (const reel* x = valeurs(v, B_OEIL, 3)) std::memcpy(e.oeil, x, sizeof e.oeil);
  if (const reel* x = valeurs(v, B_VISE, 3)) std::memcpy(e.vise, x, sizeof e.vise);
  if (const reel* x = valeurs(v, B_FOC, 1)) e.foc = x[0];
  if (const reel* x = valeurs(v, B_ROUL, 1)) e.roul = x[0];
  if (const reel* x = valeurs(v, B_PROJ, 2)) {
    mot p;
    if (reel_entier(x[0], &p)) e.projection = p;
    e.fui = x[1];
  }
  if (const reel* x = valeurs(v, B_PAS, 2)) e.proche = x[0], e.loin = x[1];
  // The eye's matrices stay finite: a view that breaks their invariant
  // keeps the current focal and planes.
  if (!(e.foc > 0.f) || !(e.proche > 0.f) || !(e.proche < e.loin)) {
    e.foc = oeil_courant.foc;
    e.proche = oeil_courant.proche;
    e.loin = oeil_courant.loin;
  }
  for (float c : e.oeil)
    if (!(c == c)) return;
  oeil_courant = e;
}
