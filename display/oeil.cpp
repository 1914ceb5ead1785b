// The eye's matrices, built as gluLookAt, gluPerspective and glOrtho build
// them, so that the software projection and OpenGL put a vertex on the
// same pixel. Sums in double, stored as float like the GL matrices.
#include <cmath>

#include "display/oeil.h"
#include "geom/geom.h"

Oeil oeil_courant;

namespace {
void identite(float* m) {
  for (int i = 0; i < 16; ++i) m[i] = (i % 5 == 0) ? 1.f : 0.f;
}

// gluLookAt: rows s, u, -f, then the translation by -eye.
void regarde(const double* oe, const double* vi, const double* haut, float* m) {
  double f[3] = {vi[0] - oe[0], vi[1] - oe[1], vi[2] - oe[2]};
  double lf = std::sqrt(f[0] * f[0] + f[1] * f[1] + f[2] * f[2]);
  if (lf > 0) for (double& x : f) x /= lf;
  double s[3] = {f[1] * haut[2] - f[2] * haut[1], f[2] * haut[0] - f[0] * haut[2], f[0] * haut[1] - f[1] * haut[0]};
  double ls = std::sqrt(s[0] * s[0] + s[1] * s[1] + s[2] * s[2]);
  if (ls > 0) for (double& x : s) x /= ls;
  double u[3] = {s[1] * f[2] - s[2] * f[1], s[2] * f[0] - s[0] * f[2], s[0] * f[1] - s[1] * f[0]};
  identite(m);
  for (int j = 0; j < 3; ++j) {
    m[4 * j + 0] = static_cast<float>(s[j]);
    m[4 * j + 1] = static_cast<float>(u[j]);
    m[4 * j + 2] = static_cast<float>(-f[j]);
  }
  m[12] = static_cast<float>(-(s[0] * oe[0] + s[1] * oe[1] + s[2] * oe[2]));
  m[13] = static_cast<float>(-(u[0] * oe[0] + u[1] * oe[1] + u[2] * oe[2]));
  m[14] = static_cast<float>(f[0] * oe[0] + f[1] * oe[1] + f[2] * oe[2]);
}
}  // namespace

void oeil_matrices(int dimx, int dimy, float vue[16], float proj[16]) {
  // Projections other than 13 and 63 keep the last matrices made.
  static float vue_der[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  static float proj_der[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  const Oeil& o = oeil_courant;
  if (dimx < 1) dimx = 1;
  if (dimy < 1) dimy = 1;
  double n = o.proche, l = o.loin;
  if (o.projection == 13) {
    double oe[3] = {o.oeil[0], o.oeil[1], o.oeil[2]}, vi[3] = {o.vise[0], o.vise[1], o.vise[2]};
    double haut[3] = {0, -1, 0};
    if (o.roul != 0.f) {
      float axe[3] = {o.vise[0] - o.oeil[0], o.vise[1] - o.oeil[1], o.vise[2] - o.oeil[2]};
      float piv[3] = {0, 0, 0}, m[16], h[3] = {0, -1, 0}, r[3];
      matrice_axe(piv, axe, std::cos(o.roul), std::sin(o.roul), m);
      matrice_applique(m, h, r);
      for (int i = 0; i < 3; ++i) haut[i] = r[i];
    }
    regarde(oe, vi, haut, vue_der);
    double fovy = static_cast<double>(o.foc) * 57.75;
    double f = 1.0 / std::tan(fovy * M_PI / 360.0);
    double asp = static_cast<double>(dimx) / dimy;
    for (float& x : proj_der) x = 0;
    proj_der[0] = static_cast<float>(f / asp);
    proj_der[5] = static_cast<float>(f);
    proj_der[10] = static_cast<float>((l + n) / (n - l));
    proj_der[11] = -1;
    proj_der[14] = static_cast<float>(2 * l * n / (n - l));
  } else if (o.projection == 63) {
    double oe[3] = {-dimx / 2.0, dimy / 2.0, -1000}, vi[3] = {-dimx / 2.0, dimy / 2.0, 0}, haut[3] = {0, -1, 0};
    regarde(oe, vi, haut, vue_der);
    double r = dimx - 1, t = dimy - 1;
    if (r <= 0) r = 1;
    if (t <= 0) t = 1;
    identite(proj_der);
    proj_der[0] = static_cast<float>(2 / r);
    proj_der[5] = static_cast<float>(2 / t);
    proj_der[10] = static_cast<float>(-2 / (l - n));
    proj_der[12] = -1;
    proj_der[13] = -1;
    proj_der[14] = static_cast<float>(-(l + n) / (l - n));
  }
  for (int i = 0; i < 16; ++i) {
    vue[i] = vue_der[i];
    proj[i] = proj_der[i];
  }
}
