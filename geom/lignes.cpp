// Reshaping of a line of points: the bend of a joint, thinning, even spreading.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "core/message.h"
#include "geom/interne.h"

int redresser_joint(reel* a, reel* b, reel* c, const int* liste, int nb_liste, int i, int n, int pas,
                    reel* points, float angle_max, int mode, int limite) {
  if (limite >= 1) return 0;
  float u[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
  float v[3] = {c[0] - b[0], c[1] - b[1], c[2] - b[2]};
  float x[3];
  produit_vectoriel(u, v, x);
  double w = angle(u, v);
  // The sign of the bend is that of the largest component of u x v.
  int k = 0;
  for (int j = 1; j < 3; ++j)
    if (std::fabs(x[j]) > std::fabs(x[k])) k = j;
  if (x[k] < 0) w = -w;
  if (mode >= 1 ? w < angle_max : std::fabs(w) < angle_max) return 0;
  if (liste && i != 0)
    for (int j = 0; j < nb_liste; ++j)
      if (liste[j] < 1 || liste[j] > n) return geom_erreur_valeur(liste[j], MES_INDICE);
  // About u x v a positive turn opens the bend; the bend measured about that
  // axis is |w| whatever its sign.
  double theta = angle_max - std::fabs(w);
  float m[16];
  matrice_axe(b, x, static_cast<float>(std::cos(theta)), static_cast<float>(std::sin(theta)), m);
  matrice_applique(m, c, c);
  if (i != 0) {
    if (liste) {
      for (int j = 0; j < nb_liste; ++j) {
        reel* p = points + static_cast<long>(liste[j] - 1) * pas;
        if (p != c) matrice_applique(m, p, p);
      }
    } else {
      for (reel *p = points + static_cast<long>(i + 2) * pas, *fin = points + static_cast<long>(n) * pas; p < fin;
           p += pas)
        matrice_applique(m, p, p);
    }
  }
  return 1;
}

namespace {
// Squared distance from k to the line through a along dir.
double dist2_ligne(const reel* k, const reel* a, const double* dir) {
  double x[3] = {static_cast<double>(k[0]) - a[0], static_cast<double>(k[1]) - a[1],
                 static_cast<double>(k[2]) - a[2]};
  double xx = x[0] * x[0] + x[1] * x[1] + x[2] * x[2];
  double dd = dir[0] * dir[0] + dir[1] * dir[1] + dir[2] * dir[2];
  if (dd <= 0) return xx;
  double xd = x[0] * dir[0] + x[1] * dir[1] + x[2] * dir[2];
  return std::max(0.0, xx - xd * xd / dd);
}
}  // namespace

int reduire_ligne(const reel* points, int n, float seuil, mot* sortie, const mot* limite) {
  if (sortie + 4 > limite) return PILE_PLEINE;
  entete(sortie, 4, BLOC_REEL, 0, 1);
  int gardes = 0;
  auto garde = [&](const reel* p) {
    mot* q = sortie + 4 + 3 * gardes;
    if (q + 3 > limite) return false;
    std::memcpy(q, p, 3 * sizeof(float));
    ++gardes;
    return true;
  };
  if (n < 1) return 0;
  double s2 = static_cast<double>(seuil) * seuil;
  // A point is kept when it lies near the chord from the anchor; the counter
  // i runs one ahead of the anchor after each kept point, and the tail of
  // the line is given by its last point alone.
  const reel* a = points;
  if (!garde(a)) return PILE_PLEINE;
  int i = 1;
  while (i < n - 1) {
    int j = i + 2;
    const reel* e = a + 6;
    bool pris = false;
    while (j <= n && !pris) {
      double dir[3] = {static_cast<double>(e[0]) - a[0], static_cast<double>(e[1]) - a[1],
                       static_cast<double>(e[2]) - a[2]};
      const reel* k = a + 3;
      for (int m = i + 1; m <= j; ++m, k += 3)
        if (dist2_ligne(k, a, dir) <= s2) {
          if (!garde(k)) return PILE_PLEINE;
          a = k;
          i = m + 1;
          pris = true;
          break;
        }
      if (!pris) {
        e = k;
        ++j;
      }
    }
    if (!pris) ++i;
  }
  if (n > 1 && !garde(points + 3L * (n - 1))) return PILE_PLEINE;
  sortie[0] = 4 + 3 * gardes;
  sortie[2] = 3 * gardes;
  return 0;
}

namespace {
int repartit(reel* points, int n, int pas, const int* indices, int nb, const ParamCourbe* prm, bool ferme);
}  // namespace

int repartir_ligne(reel* points, int n, int pas, const int* indices, int nb, const ParamCourbe* prm, bool ferme) {
  try {
    return repartit(points, n, pas, indices, nb, prm, ferme);
  } catch (const std::bad_alloc&) {
    erreur_memoire(nb, 12);
    return -1;
  }
}

namespace {
int repartit(reel* points, int n, int pas, const int* indices, int nb, const ParamCourbe* prm, bool ferme) {
  // Every index is checked before anything moves.
  for (int k = 0; k < nb; ++k)
    if (indices[k] < 1 || indices[k] > n) return geom_erreur_valeur(indices[k], MES_INDICE);
  if (nb < 2 || pas < 3) return 0;
  std::vector<float> poly;
  poly.reserve(3 * (nb + 1));
  for (int k = 0; k < nb; ++k) {
    const reel* p = points + static_cast<long>(indices[k] - 1) * pas;
    poly.insert(poly.end(), p, p + 3);
  }
  if (ferme) poly.insert(poly.end(), poly.begin(), poly.begin() + 3);
  int np = static_cast<int>(poly.size() / 3);
  int s = prm && prm->s > 0 ? prm->s : 0;
  if (prm) {
    int m = courbe_nb(np, s);
    if (m < 0) return geom_erreur_valeur(s, MES_DEBORDEMENT);
    std::vector<float> c(3 * static_cast<std::size_t>(m));
    if (courbe_points(prm, np, 3, 3, poly.data(), nullptr, c.data()) < 0) return -1;
    poly.swap(c);
    np = static_cast<int>(poly.size() / 3);
  }
  std::vector<double> cumul(np, 0.0);
  for (int j = 1; j < np; ++j) cumul[j] = cumul[j - 1] + std::sqrt(dist2(&poly[3 * (j - 1)], &poly[3 * j]));
  double pas_l = cumul[np - 1] / (np - 1);
  double cible = pas_l;
  int fin = ferme ? nb : nb - 1;  // a closed line's last point is its first
  for (int k = 1; k < fin; ++k, cible += pas_l * (s + 1)) {
    reel* p = points + static_cast<long>(indices[k] - 1) * pas;
    int j = static_cast<int>(std::lower_bound(cumul.begin(), cumul.end(), cible) - cumul.begin());
    if (j == 0) {
      std::memcpy(p, poly.data(), 3 * sizeof(float));
      continue;
    }
    if (j == np) j = np - 1;
    const float* q = &poly[3 * (j - 1)];
    float dir[3] = {poly[3 * j] - q[0], poly[3 * j + 1] - q[1], poly[3 * j + 2] - q[2]};
    normer(dir, dir);
    double reste = cible - cumul[j - 1];
    for (int c = 0; c < 3; ++c) p[c] = static_cast<float>(q[c] + dir[c] * reste);
  }
  return 0;
}
}  // namespace
