// A smooth curve through control points: cubic Hermite spans whose tangents
// come from the neighbours of each point, scaled by the chord before it.
// Control points come out bit for bit.
#include <cmath>
#include <cstring>
#include <vector>

#include "core/message.h"
#include "geom/interne.h"

int courbe_nb(int n, int s) {
  if (n < 1) return 0;
  long m = n + (n - 1L) * (s < 0 ? 0 : s);
  // Rows of up to 8 floats must still fit the words of a Bloc.
  return m > 0x0fffffff ? -1 : static_cast<int>(m);
}

namespace {
// Tension of each span: t, or the first value of row i of the tension Bloc
// when that row is present (a hole keeps its place and the default).
std::vector<double> tensions_spans(const mot* b, int spans, double t) {
  std::vector<double> r(spans, t);
  if (!b || b[1] != BLOC_REEL) return r;
  const mot* fin = b + b[0];
  if (b[3] > 0) {
    for (int i = 0; i < spans && i < b[2] && b + 4 + static_cast<long>(i) * b[3] < fin; ++i)
      r[i] = lit_reel(b + 4 + static_cast<long>(i) * b[3]);
    return r;
  }
  const mot* p = b + 4;
  for (int i = 0; i < spans && i < b[2] && p < fin; ++i) {
    mot l = p[0];
    if (l > 1 && p + 1 < fin) r[i] = lit_reel(p + 1);
    p += l > 0 ? l : (l < 0 ? -l : 1);
  }
  return r;
}

struct V {
  double x, y, z;
};
inline V operator-(V a, V b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline V operator+(V a, V b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline V operator*(V a, double k) { return {a.x * k, a.y * k, a.z * k}; }
inline double longueur(V a) { return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z); }
inline V unite(V a) {
  double l2 = a.x * a.x + a.y * a.y + a.z * a.z;
  return l2 > SEUIL_NORME ? a * (1 / std::sqrt(l2)) : a;
}

// Middle rule: along the line of the two neighbours.
inline V milieu(V a, V c, double l) { return unite(c - a) * l; }
// End rule: toward the next point, bent away from the one after by t / 10.
inline V bout(V e, V g, V h, double t, double l) { return unite((g - e) - (h - e) * (t * 0.1)) * l; }
}  // namespace

int courbe_points(const ParamCourbe* prm, int n, int pas_e, int pas_s, const reel* points,
                  const mot* tensions, reel* sortie) {
  if (n < 0 || pas_e < 3 || pas_s < 3 || (n > 0 && (!points || !sortie)))
    return geom_erreur_valeur(n < 0 ? n : (pas_e < 3 ? pas_e : pas_s), MES_INDICE);
  int s = prm && prm->s > 0 ? prm->s : 0;
  double t = prm ? prm->t : 1;
  int m = courbe_nb(n, s);
  if (m < 0) return geom_erreur_valeur(n, MES_DEBORDEMENT);
  auto P = [&](int i) {
    const reel* p = points + static_cast<long>(i) * pas_e;
    return V{p[0], p[1], p[2]};
  };
  auto ligne = [&](long r) {
    reel* q = sortie + r * pas_s;
    for (int k = 3; k < pas_s; ++k) q[k] = 0;
    return q;
  };
  auto copie = [&](long r, int i) { std::memcpy(ligne(r), points + static_cast<long>(i) * pas_e, 3 * sizeof(float)); };
  auto ecrit = [&](long r, V v) {
    reel* q = ligne(r);
    q[0] = static_cast<float>(v.x), q[1] = static_cast<float>(v.y), q[2] = static_cast<float>(v.z);
  };
  if (n == 0) return 0;
  if (n == 1) {
    for (long r = 0; r < m; ++r) copie(r, 0);
    return m;
  }
  if (n == 2) {
    V a = P(0), pas = (P(1) - a) * (1.0 / (m - 1));
    copie(0, 0);
    for (long r = 1; r + 1 < m; ++r) ecrit(r, a + pas * static_cast<double>(r));
    copie(m - 1, 1);
    return m;
  }
  std::vector<double> tn = tensions_spans(tensions, n - 1, t);
  const reel *p0 = points, *pn = points + static_cast<long>(n - 1) * pas_e;
  bool ferme = std::fabs(p0[0] - pn[0]) < SEUIL_NORME && std::fabs(p0[1] - pn[1]) < SEUIL_NORME &&
               std::fabs(p0[2] - pn[2]) < SEUIL_NORME;
  std::vector<V> arrivee(n), depart(n);
  auto corde = [&](int i) { return longueur(P(i + 1) - P(i)); };
  double l0 = tn[0] * corde(0);
  depart[0] = ferme ? milieu(P(n - 2), P(1), l0) : bout(P(0), P(1), P(2), tn[0], l0);
  arrivee[1] = milieu(P(0), P(2), l0);
  for (int i = 2; i <= n - 2; ++i) {
    depart[i - 1] = arrivee[i - 1];
    arrivee[i] = milieu(P(i - 1), P(i + 1), tn[i - 1] * corde(i - 1));
  }
  depart[n - 2] = arrivee[n - 2];
  // The end rule looks back from the last point; the curve arrives going
  // forward, hence the change of sign.
  arrivee[n - 1] = ferme ? depart[0]
                         : bout(P(n - 1), P(n - 2), P(n - 3), tn[n - 2], tn[n - 2] * corde(n - 2)) * -1.0;
  for (int i = 0; i + 1 < n; ++i) {
    V a = P(i), b = P(i + 1), t0 = depart[i], t1 = arrivee[i + 1];
    V c3 = (a - b) * 2.0 + t0 + t1;
    V c2 = (b - a) * 3.0 - t0 * 2.0 - t1;
    long r = static_cast<long>(i) * (s + 1);
    copie(r, i);
    for (int k = 1; k <= s; ++k) {
      double u = static_cast<double>(k) / (s + 1);
      ecrit(r + k, c3 * (u * u * u) + c2 * (u * u) + t0 * u + a);
    }
    copie(r + s + 1, i + 1);
  }
  return m;
}

mot* courbe(mot* dest, const ParamCourbe* prm, int n, int pas_e, int pas_s, const reel* points,
            const mot* tensions) {
  if (n < 0 || pas_s < 3) {
    geom_erreur_valeur(n < 0 ? n : pas_s, MES_INDICE);
    return nullptr;
  }
  long m = courbe_nb(n, prm ? prm->s : 0);
  long lg = 6 + 4 + m * pas_s;
  if (m < 0 || lg > 0x7fffffff) {
    geom_erreur_valeur(m, MES_TROP);
    return nullptr;
  }
  mot* b = dest;
  if (dest && dest[0] < lg) {
    geom_erreur_valeur(lg, MES_DEBORDEMENT);
    return nullptr;
  }
  if (!b) b = bloc_alloue(static_cast<mot>(lg));
  if (!b) return nullptr;
  if (courbe_points(prm, n, pas_e, pas_s, points, tensions, reels(b + 10)) < 0) {
    if (b != dest) bloc_libere(b);
    return nullptr;
  }
  b[0] = static_cast<mot>(lg);
  phrase_paires(b, 1, CLE_SOM);
  entete(b + 6, static_cast<mot>(4 + m * pas_s), BLOC_REEL, static_cast<mot>(m), pas_s);
  return b;
}
