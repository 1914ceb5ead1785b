// The normal of one contour, shared by the general and the grid generators
// so that both give the same floats.
#pragma once
#include <cmath>

#include "geom/geom.h"

// Normalises a double vector into floats, with the usual threshold.
inline void normer_d(const double* v, float* out) {
  double x = v[0], y = v[1], z = v[2];
  double l2 = x * x + y * y + z * z;
  if (l2 > SEUIL_NORME) {
    double l = std::sqrt(l2);
    x /= l;
    y /= l;
    z /= l;
  }
  out[0] = static_cast<float>(x);
  out[1] = static_cast<float>(y);
  out[2] = static_cast<float>(z);
}

// Normal and centre of a contour of k vertices; som(j) gives vertex j.
// Polygons use Newell's sums, which suit faces that are not quite planar; a
// segment takes a normal square to it; a point has none.
template <class F>
void newell(int k, F som, float* n, float* centre) {
  double c[3] = {0, 0, 0};
  for (int j = 0; j < k; ++j) {
    const float* p = som(j);
    c[0] += p[0];
    c[1] += p[1];
    c[2] += p[2];
  }
  for (int i = 0; i < 3; ++i) centre[i] = k ? static_cast<float>(c[i] / k) : 0.f;
  if (k < 2) {
    n[0] = n[1] = n[2] = 0;
    return;
  }
  if (k == 2) {
    const float *p = som(0), *q = som(1);
    double dx = static_cast<double>(q[0]) - p[0], dy = static_cast<double>(q[1]) - p[1],
           dz = static_cast<double>(q[2]) - p[2];
    auto petit = [](double x) { return x > -SEUIL_NORME && x < SEUIL_NORME; };
    double v[3];
    if (petit(dx) && petit(dy) && petit(dz)) {
      n[0] = n[1] = n[2] = 0;
      return;
    }
    if (petit(dx) && petit(dy)) {
      v[0] = 0, v[1] = 1, v[2] = -dy / dz;
    } else if (petit(dx)) {
      v[0] = 1, v[1] = -dx / dy, v[2] = 0;
    } else {
      v[0] = -dz / dx, v[1] = 0, v[2] = 1;
    }
    normer_d(v, n);
    return;
  }
  double s[3] = {0, 0, 0};
  for (int j = 0; j < k; ++j) {
    const float *p = som(j), *q = som(j + 1 < k ? j + 1 : 0);
    s[0] += (static_cast<double>(p[1]) - q[1]) * (static_cast<double>(p[2]) + q[2]);
    s[1] += (static_cast<double>(p[2]) - q[2]) * (static_cast<double>(p[0]) + q[0]);
    s[2] += (static_cast<double>(p[0]) - q[0]) * (static_cast<double>(p[1]) + q[1]);
  }
  normer_d(s, n);
}
