// Off-line animation from the language: `cin(l) tra(t) ima(i, n)` gives the
// value of the keys of trajectory t (its `clef`) for image i of n under law
// l; `vol(v)` in place of `tra(t)` takes a volume's keys. A third value of
// `ima` gives the keys' row width (4 or more: the last column is the
// time); `coe(s)` scales the value; `rel` asks for the change since image
// i - 1. Without `ima` the phrase is the ordinary one of `cin`.
#include <cstdio>
#include <cstring>

#include "anim/trajet.h"
#include "geom/geom.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
const mot* valeur(const mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

int refuse(int ord) {
  mot_imprime(1, ord);
  message(0, MES_VALEUR);
  return -1;
}

bool loi_mot(const mot* e) {
  return e[1] == 1 && (e[2] == LOI_ACC || e[2] == LOI_DEC || e[2] == LOI_ACD || e[2] == LOI_TABLE);
}

// `cin(n) acc`: the law's kind is its object's sub-type, not an attribute.
// The law's keyword leaves the phrase; what else it holds goes on to the
// ordinary `cin` phrase.
int sorte(mot* bloc) {
  int loi = 0;
  float n = 0;
  bool avec_num = false;
  const mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
    if (loi_mot(e)) loi = e[2];
    if (e[1] == 1 && e[2] == B_CIN_ && i == 0) avec_num = bloc_nombres(valeur(e), &n, 1) == 1;
  }
  if (!loi) return COMMANDE_SUITE;
  if (!avec_num || !(n >= 1 && n < 1e9f)) return refuse(B_CIN_);
  Objet* o = objet_trouve(B_CIN_, 0, static_cast<int>(n), nullptr);
  if (!o) o = objet_cree(1, B_CIN_, 0, nullptr, nullptr, static_cast<int>(n));
  if (!o) return message(0, MES_TABLE_PLEINE), -1;
  o->sous_type = static_cast<std::uint16_t>(loi);
  mot* c = bloc + 4;
  for (int i = 0; i < bloc[2];) {
    if (!loi_mot(c)) {
      c += c[0], ++i;
      continue;
    }
    const mot l = c[0];
    std::memmove(c, c + l, sizeof(mot) * static_cast<std::size_t>(bloc + bloc[0] - (c + l)));
    bloc[0] -= l, --bloc[2];
  }
  if (bloc[2] > 1) return COMMANDE_SUITE;
  bloc[0] = 0;
  return 0;
}

int cin_commande(mot* bloc, mot* affecte, const mot* limite) {
  const mot* ima = nullptr;
  const mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0])
    if (e[1] == 1 && e[2] == B_IMA_) ima = e;
  if (!ima && !affecte) return sorte(bloc);
  if (!ima || affecte) return COMMANDE_SUITE;
  float x[3] = {0, 0, 0}, y = 0, s = 1;
  const int nx = bloc_nombres(valeur(ima), x, 3);
  if (nx < 2 || !(x[1] >= 1 && x[1] < 1e9f) || !(x[0] > -1e9f && x[0] < 1e9f)) return refuse(B_IMA_);
  int larg = nx > 2 ? static_cast<int>(x[2]) : 0;
  Objet* loi = nullptr;
  Objet* source = nullptr;
  bool increment = false;
  e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
    if (e[1] != 1) continue;
    const mot* v = valeur(e);
    switch (e[2]) {
      case B_CIN_:
      case B_TRA_:
      case B_VOL: {
        if (!v) break;
        if (bloc_nombres(v, &y, 1) != 1) return refuse(e[2]);
              Objet* o = objet_trouve(e[2], 0, static_cast<int>(y), nullptr);
        if (!o) {
          std::printf("%d ", static_cast<int>(y));
          message(0, MES_ABSENT);
          return -1;
        }
        (e[2] == B_CIN_ ? loi : source) = o;
        break;
      }
      case B_COEF_:
        if (bloc_nombres(v, &s, 1) != 1) return refuse(B_COEF_);
        break;
      case B_REL:
        increment = true;
        break;
    }
  }
  const mot k[2] = {1, B_CLEF};
  const mot* cles = source ? vol_valeur(source, 1, k) : nullptr;
  if (!cles || cles[1] != BLOC_REEL || cles[0] < 5) {
    mot_imprime(1, B_CLEF);
    message(0, MES_ABSENT);
    return -1;
  }
  // The row width asked for, over the block's own header.
  mot copie[4 + 4096];
  const mot* c = cles;
  if (larg >= 3 && cles[0] - 4 <= 4096) {
    std::memcpy(copie, cles, sizeof(mot) * static_cast<std::size_t>(cles[0]));
    copie[3] = larg, copie[2] = (cles[0] - 4) / larg;
    c = copie;
  }
  float out[3];
  if (anim_valeur(c, loi, static_cast<int>(x[0]), static_cast<int>(x[1]), s, increment, out) < 0) return refuse(B_CLEF);
  reel* r = resultat_reels(bloc, limite, 3);
  if (!r) return PILE_PLEINE;
  std::memcpy(r, out, sizeof out);
  return 0;
}
}  // namespace

void cin_enregistre() { commande_enregistre(1, B_CIN_, cin_commande); }
