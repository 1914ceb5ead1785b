// Kinematic laws: the time shape of key-frame animation, and the value of a
// key block for image i of n, computed on request (off-line animation).
#include <cmath>
#include <cstring>

#include "anim/trajet.h"
#include "geom/geom.h"

namespace {
constexpr float PAS_NUL = 0.0001f;
constexpr int TABLE_MAX = 4096;
// A law's kind: its sub-type, or failing one an attribute of that name.
constexpr int LOIS[] = {LOI_ACC, LOI_DEC, LOI_ACD, LOI_TABLE};

struct Cles {
  const reel* v = nullptr;
  int r = 0, k = 3;
  float temps(int j) const { return k >= 4 ? v[static_cast<long>(j) * k + k - 1] : static_cast<float>(j); }
  const reel* rang(int j) const { return v + static_cast<long>(j) * k; }
};

// Rows of k floats; a block without a row width is rows of 3.
bool cles_lit(const mot* b, Cles* c) {
  if (!b || b[0] < 5 || b[1] != BLOC_REEL) return false;
  const long n = b[0] - 4;
  c->v = reels(const_cast<mot*>(b) + 4);
  // A flat vector (one row) is rows of 3.
  c->k = b[2] > 1 && b[3] >= 3 ? b[3] : 3;
  c->r = static_cast<int>(n / c->k);
  return c->r >= 1;
}

void interpole(const Cles& c, int j, float f, float echelle, float* s) {
  const reel* a = c.rang(j - 1);
  const reel* b = c.rang(j);
  for (int x = 0; x < 3; ++x) s[x] = (a[x] + f * (b[x] - a[x])) * echelle;
}

void valeur_image(const Cles& c, Objet* loi, int i, int n, float echelle, float* s) {
  if (c.r == 1) {
    for (int x = 0; x < 3; ++x) s[x] = c.v[x] * echelle;
    return;
  }
  if (loi && cin_loi(loi) == LOI_TABLE) {
    // The table gives a row position: its whole part the row, the rest the
    // fraction towards the next; b45 stretches what lies past the first row.
    const mot* t = cin_table(loi);
    double ty = 1;
    if (t && t[0] >= 6 && t[1] == BLOC_REEL) {
      const long nb = t[0] - 4;
      ty = lit_reel(t + 4 + nb - 1);
    }
    double u = cin_valeur(loi, ty, i, n, 1);
    const mot k45[2] = {1, B_ETAGE};
    const mot* e = vol_valeur(loi, 1, k45);
    if (e && e[0] >= 5 && e[1] == BLOC_REEL && u > 1) u += (u - 1) * lit_reel(e + 4);
    long j = static_cast<long>(u);
    if (j < 1) j = 1;
    if (j > c.r - 1) j = c.r - 1;
    interpole(c, static_cast<int>(j), static_cast<float>(u - static_cast<double>(j)), echelle, s);
    return;
  }
  const float total = c.temps(c.r - 1);
  const double u = loi ? cin_valeur(loi, total, i, n, 1) : loi_valeur(total, 0, nullptr, n, i, 1);
  int j = 0;
  while (j < c.r && !(c.temps(j) > u)) ++j;
  if (j == 0 || j >= c.r) {
    // Before the first key or past the last: that key.
    for (int x = 0; x < 3; ++x) s[x] = c.rang(j == 0 ? 0 : c.r - 1)[x] * echelle;
    return;
  }
  const float d = c.temps(j) - c.temps(j - 1);
  float f = d > -PAS_NUL && d < PAS_NUL ? 0.f : static_cast<float>((u - c.temps(j - 1)) / d);
  if (f < 0) f = 0;
  interpole(c, j, f, echelle, s);
}
}  // namespace

int cin_loi(Objet* loi) {
  if (!loi) return LOI_CIN;
  for (int l : LOIS)
    if (loi->sous_type == l) return l;
  for (int l : LOIS) {
    const mot k[2] = {1, l};
    if (vol_valeur(loi, 1, k)) return l;
  }
  return LOI_CIN;
}

const mot* cin_table(Objet* loi) {
  if (!loi) return nullptr;
  const mot k[2] = {1, B_CLEF};
  const mot* t = vol_valeur(loi, 1, k);
  return t && t[1] == BLOC_REEL && t[0] >= 6 ? t : nullptr;
}

double cin_valeur(Objet* loi, double v, int i, int n, int d) {
  const mot* t = cin_table(loi);
  if (t && t[2] <= 1 && t[0] - 4 <= TABLE_MAX) {
    // A flat vector: pairs (x, y) end to end.
    mot copie[4 + TABLE_MAX];
    std::memcpy(copie, t, sizeof(mot) * static_cast<std::size_t>(t[0]));
    copie[2] = (t[0] - 4) / 2, copie[3] = 2;
    return loi_valeur(v, cin_loi(loi), copie, n, i, d);
  }
  return loi_valeur(v, cin_loi(loi), t, n, i, d);
}

int anim_valeur(const mot* cles, Objet* loi, int i, int n, float echelle, bool increment, float* sortie) {
  Cles c;
  if (!cles_lit(cles, &c) || n < 1) return -1;
  valeur_image(c, loi, i, n, echelle, sortie);
  if (increment) {
    float avant[3];
    valeur_image(c, loi, i - 1, n, echelle, avant);
    for (int x = 0; x < 3; ++x) sortie[x] -= avant[x];
  }
  return 0;
}
