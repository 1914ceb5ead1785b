// Vector routines shared by the whole program. Sums in double, results in
// float; a vector is normalised only above a squared length of 0.0001, so a
// short vector comes back as it was.
#include <algorithm>
#include <cmath>

#include "geom/geom.h"
#include "geom/newell.h"

void normer(const float* in, float* out) {
  const double v[3] = {in[0], in[1], in[2]};
  normer_d(v, out);
}

double dist2(const float* a, const float* b) {
  double x = static_cast<double>(a[0]) - b[0], y = static_cast<double>(a[1]) - b[1],
         z = static_cast<double>(a[2]) - b[2];
  return x * x + y * y + z * z;
}

double module(const float* v) {
  double x = v[0], y = v[1], z = v[2];
  return std::sqrt(x * x + y * y + z * z);
}

double produit_scalaire(const float* a, const float* b) {
  return static_cast<double>(a[0]) * b[0] + static_cast<double>(a[1]) * b[1] +
         static_cast<double>(a[2]) * b[2];
}

void produit_vectoriel(const float* a, const float* b, float* out) {
  double x = static_cast<double>(a[1]) * b[2] - static_cast<double>(a[2]) * b[1];
  double y = static_cast<double>(a[2]) * b[0] - static_cast<double>(a[0]) * b[2];
  double z = static_cast<double>(a[0]) * b[1] - static_cast<double>(a[1]) * b[0];
  out[0] = static_cast<float>(x);
  out[1] = static_cast<float>(y);
  out[2] = static_cast<float>(z);
}

double angle(const float* a, const float* b) {
  double l = module(a) * module(b);
  // Too short to have a direction: taken as square.
  double c = l < SEUIL_NORME ? 0 : produit_scalaire(a, b) / l;
  return std::acos(std::clamp(c, -1.0, 1.0));
}
