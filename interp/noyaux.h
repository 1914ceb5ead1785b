// The per-operator inner loops over float vectors. Each operator gets its own
// instance of every length case, so no test stands inside a loop over
// elements: equal lengths, a scalar on either side, and the cycling of the
// shorter operand (q whole rounds, then r elements).
#pragma once
#include <cmath>
#include <cstdint>

#include "core/bloc.h"

namespace noyau {

template <class F>
inline void applique(reel* r, const reel* a, long na, const reel* b, long nb, F f) {
  if (na == nb) {
    for (long k = 0; k < na; ++k) r[k] = f(a[k], b[k]);
  } else if (nb == 1) {
    const float y = b[0];
    for (long k = 0; k < na; ++k) r[k] = f(a[k], y);
  } else if (na == 1) {
    const float x = a[0];
    for (long k = 0; k < nb; ++k) r[k] = f(x, b[k]);
  } else if (na > nb) {
    long q = na / nb, reste = na % nb;
    for (long t = 0; t < q; ++t, r += nb, a += nb)
      for (long k = 0; k < nb; ++k) r[k] = f(a[k], b[k]);
    for (long k = 0; k < reste; ++k) r[k] = f(a[k], b[k]);
  } else {
    long q = nb / na, reste = nb % na;
    for (long t = 0; t < q; ++t, r += na, b += na)
      for (long k = 0; k < na; ++k) r[k] = f(a[k], b[k]);
    for (long k = 0; k < reste; ++k) r[k] = f(a[k], b[k]);
  }
}

// Power keeps the form it always had on unlike lengths: no guard for a <= 0,
// the first part of the cycle taking one element per round with the cycled
// operand restarting at its first element, then the remainder. Elements
// past that are not computed.
inline float puissance_brute(double a, double b) {
  double x = std::log(a) * b;
  if (x < -11350.0) x = -11350.0;
  if (x > 43.0) x = 43.0;
  return static_cast<float>(std::exp(x));
}
inline float puissance(float a, float b) { return a <= 0 ? 0.0f : puissance_brute(a, b); }

inline void puissance_cyclique(reel* r, const reel* a, long na, const reel* b, long nb) {
  if (na > nb) {
    long q = na / nb, reste = na % nb;
    for (long i = 0; i < q; ++i) r[i] = puissance_brute(a[i], b[0]);
    for (long j = 0; j < reste; ++j) r[q + j] = puissance_brute(a[q + j], b[j]);
  } else {
    long q = nb / na, reste = nb % na;
    for (long i = 0; i < q; ++i) r[i] = puissance_brute(a[0], b[i]);
    for (long j = 0; j < reste; ++j) r[q + j] = puissance_brute(a[j], b[q + j]);
  }
}

// && and ||: the right cursor moves only when the left element let the
// right one count, so that on vectors elements pair up by the number of
// true (or false) elements seen so far.
template <bool ET>
inline void logique(reel* r, const reel* a, long na, const reel* b, long nb) {
  long n = na > nb ? na : nb;
  long i = 0, j = 0;
  for (long k = 0; k < n; ++k) {
    bool x = entier_sature(a[i]) != 0;
    bool y = entier_sature(b[j]) != 0;
    r[k] = ET ? (x && y) : (x || y);
    if (ET ? x : !x) j = j + 1 == nb ? 0 : j + 1;
    i = i + 1 == na ? 0 : i + 1;
  }
}
}  // namespace noyau
