// 4 x 4 matrices in column-major order (m[4 * colonne + ligne]), as the
// display library takes them, and the rotation about an axis.
#include <cmath>
#include <cstring>

#include "geom/geom.h"

void matrice_identite(float* m) {
  std::memset(m, 0, 16 * sizeof(float));
  m[0] = m[5] = m[10] = m[15] = 1;
}

void matrice_produit(const float* a, const float* b, float* out) {
  float r[16];  // out may be a or b
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      double s = 0;
      for (int k = 0; k < 4; ++k) s += static_cast<double>(a[4 * k + j]) * b[4 * i + k];
      r[4 * i + j] = static_cast<float>(s);
    }
  std::memcpy(out, r, sizeof r);
}

void matrice_applique(const float* m, const float* in, float* out) {
  float r[3];  // out may be in
  for (int i = 0; i < 3; ++i) {
    double s = static_cast<double>(m[i]) * in[0] + static_cast<double>(m[4 + i]) * in[1] +
               static_cast<double>(m[8 + i]) * in[2];
    r[i] = static_cast<float>(s + m[12 + i]);
  }
  out[0] = r[0];
  out[1] = r[1];
  out[2] = r[2];
}

void matrice_translation(const float* t, float* m) {
  matrice_identite(m);
  m[12] = t[0];
  m[13] = t[1];
  m[14] = t[2];
}

void matrice_axe(const float* pivot, const float* axe, float c, float s, float* m) {
  double l2 = produit_scalaire(axe, axe);
  // An axis that cannot be normalised has no direction to turn about.
  if (l2 <= SEUIL_NORME) {
    matrice_identite(m);
    return;
  }
  float n[3];
  normer(axe, n);
  // A frame (u, w, n): u is square to the axis in the x-z plane, w = n x u.
  float u[3] = {n[2], 0, -n[0]};
  double lu = std::sqrt(static_cast<double>(u[0]) * u[0] + static_cast<double>(u[2]) * u[2]);
  if (lu == 0) {
    u[0] = std::signbit(n[2]) ? -1.f : 1.f;
    u[2] = 0;
  } else {
    u[0] = static_cast<float>(u[0] / lu);
    u[2] = static_cast<float>(u[2] / lu);
  }
  float w[3];
  produit_vectoriel(n, u, w);
  float r[16], rt[16], rot[16], t[16];
  matrice_identite(r);
  for (int k = 0; k < 3; ++k) {
    r[k] = u[k];
    r[4 + k] = w[k];
    r[8 + k] = n[k];
  }
  matrice_identite(rt);  // the frame is orthonormal: its inverse is its transpose
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) rt[4 * j + i] = r[4 * i + j];
  // Turn about the frame's third axis, which is the given one.
  matrice_identite(rot);
  rot[0] = c;
  rot[1] = s;
  rot[4] = -s;
  rot[5] = c;
  float moins[3] = {-pivot[0], -pivot[1], -pivot[2]};
  matrice_translation(pivot, m);
  matrice_produit(m, r, m);
  matrice_produit(m, rot, m);
  matrice_produit(m, rt, m);
  matrice_translation(moins, t);
  matrice_produit(m, t, m);
}
