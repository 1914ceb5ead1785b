// Mathematics of the built-ins: element-wise functions, reductions, and the
// few that regroup elements. Each loop over elements is free of tests; the
// guards (square root, logarithm, division) scan before they compute.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "core/message.h"
#include "interp/fonctions_interne.h"
#include "startup/startup.h"

namespace {
// n! for the whole n from 0 to 34, each rounded once from the exact integer
// (34! is the last below the largest float, and still fits 128 bits): the
// float gamma function is already off in the last place at 5!.
constexpr auto FACTORIELLES = [] {
  std::array<float, 35> t{};
  unsigned __int128 f = 1;
  for (int n = 0; n < 35; ++n) {
    if (n > 1) f *= static_cast<unsigned>(n);
    t[n] = static_cast<float>(f);
  }
  return t;
}();

float factorielle(float v) {
  if (v >= 0 && v <= 34 && v == std::trunc(v)) return FACTORIELLES[entier_sature(v)];
  return static_cast<float>(std::tgamma(static_cast<double>(v) + 1));
}

// The result lies at or before the argument in the phrase, so a forward
// element-wise loop never reads what it has overwritten.
template <class F>
int applique(mot* bloc, const mot* limite, const Argument& a, F f) {
  const reel* x = a.x;
  long n = a.n;
  reel* r = resultat_reels(bloc, limite, n);
  if (!r) return PILE_PLEINE;
  for (long i = 0; i < n; ++i) r[i] = f(x[i]);
  return 0;
}

// Groups of k elements, a short last group padded with zeros, each giving
// one value through f(group, count).
template <class F>
int par_groupes(mot* bloc, const mot* limite, const Argument& a, long k, F f) {
  long m = (a.n + k - 1) / k;
  float tampon[4];
  reel* r = resultat_reels(bloc, limite, m);
  if (!r) return PILE_PLEINE;
  const reel* x = a.x;
  long n = a.n;
  for (long g = 0; g < m; ++g) {
    for (long j = 0; j < k; ++j) tampon[j] = g * k + j < n ? x[g * k + j] : 0.f;
    r[g] = f(tampon);
  }
  return 0;
}

bool un_negatif(const Argument& a) {
  float m = a.x[0];
  for (long i = 1; i < a.n; ++i) m = std::min<float>(m, a.x[i]);
  return m < 0;
}

int erreur(int ord, int mes) {
  mot_imprime(0, ord);
  message(0, mes);
  return -1;
}

double somme(const Argument& a) {
  double s = 0;
  for (long i = 0; i < a.n; ++i) s += a.x[i];
  return s;
}
}  // namespace

bool maths_scalaire(int ord, float v, float* r) {
  // The same expressions as the element-wise loops below, one element.
  switch (ord) {
    case F_ARRONDI: *r = std::round(v); return true;
    case F_COS: *r = std::cos(v); return true;
    case F_SIN: *r = std::sin(v); return true;
    case F_TAN: *r = std::tan(v); return true;
    case F_EXP: *r = std::exp(v); return true;
    case F_ATAN: *r = std::atan(v); return true;
    case F_COSH: *r = std::cosh(v); return true;
    case F_SINH: *r = std::sinh(v); return true;
    case F_TANH: *r = std::tanh(v); return true;
    case F_ABS: *r = std::fabs(v); return true;
    case F_SIGNE: *r = static_cast<float>((v > 0) - (v < 0)); return true;
    case F_PLANCHER: *r = std::floor(v); return true;
    case F_PLAFOND: *r = std::ceil(v); return true;
    case F_ENT: *r = std::trunc(v); return true;
    case F_FRAC: *r = v - std::trunc(v); return true;
  }
  return false;
}

int fonction_maths(int ord, mot* bloc, const mot* limite, const Argument& a) {
  switch (ord) {
    case F_ARRONDI: return applique(bloc, limite, a, [](float v) { return std::round(v); });
    case F_LOG:
      if (un_negatif(a)) return erreur(ord, M_LOG);
      return applique(bloc, limite, a, [](float v) { return std::log(v); });
    case F_RACINE:
      if (un_negatif(a)) return erreur(ord, M_RACINE);
      return applique(bloc, limite, a, [](float v) { return std::sqrt(v); });
    case F_COS: return applique(bloc, limite, a, [](float v) { return std::cos(v); });
    case F_SIN: return applique(bloc, limite, a, [](float v) { return std::sin(v); });
    case F_TAN: return applique(bloc, limite, a, [](float v) { return std::tan(v); });
    case F_EXP: return applique(bloc, limite, a, [](float v) { return std::exp(v); });
    case F_ACOS:
      return applique(bloc, limite, a, [](float v) { return std::acos(std::clamp(v, -1.f, 1.f)); });
    case F_ASIN:
      return applique(bloc, limite, a, [](float v) { return std::asin(std::clamp(v, -1.f, 1.f)); });
    case F_ATAN: return applique(bloc, limite, a, [](float v) { return std::atan(v); });
    case F_COSH: return applique(bloc, limite, a, [](float v) { return std::cosh(v); });
    case F_SINH: return applique(bloc, limite, a, [](float v) { return std::sinh(v); });
    case F_TANH: return applique(bloc, limite, a, [](float v) { return std::tanh(v); });
    case F_ABS: return applique(bloc, limite, a, [](float v) { return std::fabs(v); });
    case F_SIGNE:
      return applique(bloc, limite, a, [](float v) { return static_cast<float>((v > 0) - (v < 0)); });
    case F_PLANCHER: return applique(bloc, limite, a, [](float v) { return std::floor(v); });
    case F_PLAFOND: return applique(bloc, limite, a, [](float v) { return std::ceil(v); });
    case F_ENT: return applique(bloc, limite, a, [](float v) { return std::trunc(v); });
    case F_FRAC: return applique(bloc, limite, a, [](float v) { return v - std::trunc(v); });
    case F_ETAPE: return applique(bloc, limite, a, [](float v) { return v >= 0 ? 1.f : 0.f; });
    case F_BORNE: return applique(bloc, limite, a, [](float v) { return std::clamp(v, 0.f, 1.f); });
    case F_FACT: return applique(bloc, limite, a, factorielle);
    case F_INV: {
      for (long i = 0; i < a.n; ++i)
        if (std::fabs(a.x[i]) < 0.0001f) return erreur(ord, M_DIV);
      return applique(bloc, limite, a, [](float v) { return 1 / v; });
    }
    case F_QUANTUM: {
      // To the grid of the tolerance that ~ uses.
      int nv;
      reel* t = mot_valeur(0, F_QUANTUM, &nv);
      float q = t && nv > 0 && t[0] > 0 ? t[0] : 1.f;
      return applique(bloc, limite, a, [q](float v) { return std::round(v / q) * q; });
    }
    case F_ALEA:
      return applique(bloc, limite, a, [](float v) {
        return v * static_cast<float>(hasard() % 32767) / 32767.f;
      });
    case F_GRAINE:
      mot g;
      if (entier_de(a.x[0], &g) < 0) return -1;
      hasard_graine(static_cast<unsigned>(g));  // a negative seed wraps, as a seed may
      return applique(bloc, limite, a, [](float v) { return v; });

    case F_SOMME: return resultat_scalaire(bloc, limite, static_cast<float>(somme(a)));
    case F_MOY: return resultat_scalaire(bloc, limite, static_cast<float>(somme(a) / a.n));
    case F_MAX: return resultat_scalaire(bloc, limite, *std::max_element(a.x, a.x + a.n));
    case F_MIN: return resultat_scalaire(bloc, limite, *std::min_element(a.x, a.x + a.n));
    case F_PIC:
      return resultat_scalaire(bloc, limite, static_cast<float>(std::max_element(a.x, a.x + a.n) - a.x + 1));
    case F_PULS:
      return resultat_scalaire(bloc, limite, static_cast<float>(a.n - std::count(a.x, a.x + a.n, 0.f)));
    case F_CHERCHE: {
      // The last element is looked for among the others: its position, or 0.
      long p = std::find(a.x, a.x + a.n - 1, a.x[a.n - 1]) - a.x;
      return resultat_scalaire(bloc, limite, p < a.n - 1 ? static_cast<float>(p + 1) : 0.f);
    }
    case F_SCAL: {
      long h = a.n / 2;
      double s = 0;
      for (long i = 0; i < h; ++i) s += static_cast<double>(a.x[i]) * a.x[h + i];
      return resultat_scalaire(bloc, limite, static_cast<float>(s));
    }
    case F_NORME: {
      double s = 0;
      for (long i = 0; i < a.n; ++i) s += static_cast<double>(a.x[i]) * a.x[i];
      float d = s < 1e-7 ? 1.f : static_cast<float>(std::sqrt(s));
      return applique(bloc, limite, a, [d](float v) { return v / d; });
    }
    case F_MODULE:
      return par_groupes(bloc, limite, a, 3, [](const float* g) {
        return std::sqrt(g[0] * g[0] + g[1] * g[1] + g[2] * g[2]);
      });
    case F_MODULE4:
      return par_groupes(bloc, limite, a, 4, [](const float* g) {
        return std::sqrt(g[0] * g[0] + g[1] * g[1] + g[2] * g[2] + g[3] * g[3]);
      });
    case F_MODULE_C:
      return par_groupes(bloc, limite, a, 2, [](const float* g) { return std::hypot(g[0], g[1]); });
    case F_ARG:
      return par_groupes(bloc, limite, a, 2, [](const float* g) { return std::atan2(g[1], g[0]); });
    case F_VECTORIEL: {
      float u[6] = {};
      for (long i = 0; i < 6 && i < a.n; ++i) u[i] = a.x[i];
      reel* r = resultat_reels(bloc, limite, 3);
      if (!r) return PILE_PLEINE;
      r[0] = u[1] * u[5] - u[2] * u[4];
      r[1] = u[2] * u[3] - u[0] * u[5];
      r[2] = u[0] * u[4] - u[1] * u[3];
      return 0;
    }
    case F_GENERER: {
      // Every k-th element of what follows the first element k.
      mot k;
      if (entier_de(a.x[0], &k) < 0) return -1;
      if (k < 1) return erreur(ord, M_INDICE_F);
      long m = (a.n - 1 + k - 1) / k;
      const reel* x = a.x + 1;
      reel* r = resultat_reels(bloc, limite, m);
      if (!r) return PILE_PLEINE;
      for (long i = 0; i < m; ++i) r[i] = x[i * k];
      return 0;
    }
    case F_TRI: {
      const reel* x = a.x;
      long n = a.n;
      reel* r = resultat_reels(bloc, limite, n);
      if (!r) return PILE_PLEINE;
      std::memmove(r, x, sizeof(float) * n);
      std::sort(r, r + n);
      return 0;
    }
    case F_MATRICE: {
      // The identity matrix of that order.
      mot m;
      if (entier_de(a.x[0], &m) < 0) return -1;
      if (m < 1 || m > 4096) return erreur(ord, M_INDICE_F);
      reel* r = resultat_reels(bloc, limite, m * m);
      if (!r) return PILE_PLEINE;
      std::fill(r, r + m * m, 0.f);
      for (long i = 0; i < m; ++i) r[i * m + i] = 1;
      bloc[3] = static_cast<mot>(m);
      return 0;
    }
    case F_TRANSPOSE: {
      // Rows of the length that word 3 gives; a plain vector is one column.
      long c = a.bloc && a.bloc[0] > 0 && a.bloc[3] > 1 ? a.bloc[3] : 1;
      long l = a.n / c;
      if (l * c != a.n) return erreur(ord, M_INDICE_F);
      if (bloc + 4 + 2 * a.n + 8 >= limite) return PILE_PLEINE;
      reel* r = resultat_reels(bloc, limite, a.n);
      // Through the free room behind the result, since rows cross each other.
      reel* tampon = r + a.n + 8;
      std::memmove(tampon, a.x, sizeof(float) * a.n);
      for (long i = 0; i < l; ++i)
        for (long j = 0; j < c; ++j) r[j * l + i] = tampon[i * c + j];
      bloc[3] = static_cast<mot>(l);
      return 0;
    }
  }
  mot_imprime(0, ord);
  message(0, M_TYPE_F);
  return -1;
}
