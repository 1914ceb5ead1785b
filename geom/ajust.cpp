// Fitting of a line: joint correction, thinning, resampling to a number of
// points along a spacing law, or even spreading. The result is built at
// `travail` (the evaluation stack) and copied to `dest`.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "core/message.h"
#include "geom/interne.h"

namespace {
// Points of a line Bloc: rows of 3, or a flat vector of 3 n floats.
reel* points_de(const mot* b, int* n) {
  *n = 0;
  if (!b || b[1] != BLOC_REEL || b[0] < 4) return nullptr;
  long nb = b[3] == 3 ? b[2] : static_cast<long>(b[2]) * std::max<mot>(b[3], 1) / 3;
  nb = std::min<long>(nb, (b[0] - 4) / 3);
  *n = static_cast<int>(nb);
  return reels(const_cast<mot*>(b) + 4);
}

float premier(const mot* b, float defaut, int k = 0) {
  return b && b[1] == BLOC_REEL && b[0] > 4 + k ? lit_reel(b + 4 + k) : defaut;
}

int rend(mot* dest, mot* travail) {
  if (dest && dest != travail) bloc_copie(dest, travail);
  return 0;
}

int joints(mot* dest, const Ajust* a) {
  int n;
  reel* p = points_de(a->ligne, &n);
  if (n < 3) return geom_erreur_valeur(n, MES_INDICE);
  // Default angle: pi, the float of bits 0x40490FDB.
  float limite = premier(a->options, std::bit_cast<float>(0x40490FDB));
  int mode = entier_sature(premier(a->options, 0, 1));
  for (int b = 1; b <= n - 2; ++b)
    redresser_joint(p + 3 * (b - 1), p + 3 * b, p + 3 * (b + 1), nullptr, 0, b, n, 3, p, limite, mode, 0);
  if (a->ferme) redresser_joint(p + 3 * (n - 1), p, p + 3, nullptr, 0, 0, n, 3, p, limite, mode, 0);
  return rend(dest, a->ligne);
}

int reechantillonne(mot* dest, mot* travail, const mot* limite, const Ajust* a) {
  int n;
  reel* p = points_de(a->ligne, &n);
  float nv = premier(a->nombre, 0);
  mot m;
  if (n < 1 || !reel_entier(nv, &m, 1, 999999999))
    return geom_erreur_valeur(n < 1 ? n : (reel_entier(nv, &m) ? m : 0), MES_INDICE);
  long voulus = m;
  std::vector<float> ligne(p, p + 3L * n);
  if (a->ferme) {
    ++voulus;
    ligne.insert(ligne.end(), p, p + 3);
  }
  int loi = a->table ? LOI_CIN : a->loi;
  long taille = 3 * voulus + 4;
  if (limite - travail < taille) {
    if (taille < 1000001) return PILE_PLEINE;
    std::printf("ajust_1: %ld ", taille);
    message(0, MES_TROP);
    return 0;
  }
  if (a->params) {
    int m = courbe_nb(static_cast<int>(ligne.size() / 3), a->params->s);
    if (m < 0) return geom_erreur_valeur(a->params->s, MES_DEBORDEMENT);
    std::vector<float> c(3L * m);
    if (courbe_points(a->params, static_cast<int>(ligne.size() / 3), 3, 3, ligne.data(), nullptr, c.data()) < 0)
      return -1;
    ligne.swap(c);
  }
  long np = static_cast<long>(ligne.size() / 3);
  std::vector<double> cumul(np, 0.0);
  for (long j = 1; j < np; ++j) cumul[j] = cumul[j - 1] + std::sqrt(dist2(&ligne[3 * (j - 1)], &ligne[3 * j]));
  long nl = 3 * (a->ferme ? voulus - 1 : voulus);
  entete(travail, static_cast<mot>(4 + nl), BLOC_REEL, static_cast<mot>(nl), 1);
  reel* out = reels(travail + 4);
  std::memcpy(out, ligne.data(), 3 * sizeof(float));
  for (long k = 2; k < voulus; ++k) {
    double cible = loi_valeur(cumul[np - 1], loi, a->table, static_cast<int>(voulus), static_cast<int>(k), 1);
    long j = std::lower_bound(cumul.begin(), cumul.end(), cible) - cumul.begin();
    reel* q = out + 3 * (k - 1);
    if (j == 0 || j == np) {
      std::memcpy(q, &ligne[j == 0 ? 0 : 3 * (np - 1)], 3 * sizeof(float));
      continue;
    }
    double dc = cumul[j] - cumul[j - 1];
    double f = dc > -SEUIL_NORME && dc < SEUIL_NORME ? 0 : (cible - cumul[j - 1]) / dc;
    for (int c = 0; c < 3; ++c) q[c] = static_cast<float>(ligne[3 * (j - 1) + c] + f * (ligne[3 * j + c] - ligne[3 * (j - 1) + c]));
  }
  // The last point is the line's own, exactly; a closed line drops it.
  if (voulus >= 2 && !a->ferme) std::memcpy(out + 3 * (voulus - 1), &ligne[3 * (np - 1)], 3 * sizeof(float));
  return rend(dest, travail);
}
}  // namespace

int ajust_1(mot* dest, mot* travail, const mot* limite, const Ajust* a) {
  if (a->ligne && a->options) return joints(dest, a);
  if (!a->nombre) return geom_erreur_valeur(0, MES_INDICE);
  if (a->seuil) {
    int n;
    const reel* p = points_de(a->nombre, &n);
    int r = reduire_ligne(p, n, premier(a->seuil, 0), travail, limite);
    return r ? r : rend(dest, travail);
  }
  if (a->ligne) {
    try {
      return reechantillonne(dest, travail, limite, a);
    } catch (const std::bad_alloc&) {
      erreur_memoire(3, entier_sature(premier(a->nombre, 0)));
      return -1;
    }
  }
  int n;
  points_de(a->nombre, &n);
  if (n < 1) return geom_erreur_valeur(n, MES_INDICE);
  long lg = 4 + 3L * n;
  if (limite - travail < lg) return PILE_PLEINE;
  const mot* src = a->nombre;
  if (travail != src) std::memmove(travail + 4, src + 4, 3L * n * sizeof(mot));
  entete(travail, static_cast<mot>(lg), BLOC_REEL, 3 * n, 1);
  std::vector<int> indices;
  try {
    indices.resize(n);
  } catch (const std::bad_alloc&) {
    erreur_memoire(n, 4);
    return -1;
  }
  for (int k = 0; k < n; ++k) indices[k] = k + 1;
  int r = repartir_ligne(reels(travail + 4), n, 3, indices.data(), n, a->params, a->ferme);
  return r ? r : rend(dest, travail);
}
