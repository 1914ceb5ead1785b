// Vector and matrix routines: the normalisation threshold, products in the
// order the display library expects, and the rotation about an axis.
#include <cmath>

#include "outils.h"

namespace {
constexpr float PI_F = 3.14159265f;
}  // namespace

TEST(Vecteurs, NormaliseOnlyAboveSquaredThreshold) {
  float a[3] = {0.009f, 0, 0}, b[3] = {0.011f, 0, 0}, c[3] = {0, 3, 4};
  normer(a, a);
  normer(b, b);
  normer(c, c);
  EXPECT_EQ(a[0], 0.009f);  // 0.009^2 < 0.0001: left as it was
  proche(b, {1, 0, 0});
  proche(c, {0, 0.6f, 0.8f});
}

TEST(Vecteurs, ProductsAndAngle) {
  float x[3] = {1, 0, 0}, y[3] = {0, 2, 0}, z[3];
  produit_vectoriel(x, y, z);
  proche(z, {0, 0, 2});
  produit_vectoriel(x, x, x);  // out may be an input
  proche(x, {0, 0, 0});
  float a[3] = {1, 1, 0}, b[3] = {-1, 0, 0}, nul[3] = {0, 0, 0};
  EXPECT_NEAR(angle(a, b), 3 * PI_F / 4, 1e-6);
  EXPECT_NEAR(angle(a, nul), PI_F / 2, 1e-6);  // no direction: taken as square
  EXPECT_DOUBLE_EQ(dist2(a, b), 5.0);
  EXPECT_DOUBLE_EQ(module(z), 2.0);
}

TEST(Matrices, ProductAppliesRightOperandFirst) {
  float t[16], s[16], m[16];
  float v[3] = {1, 2, 3};
  matrice_translation(v, t);
  matrice_identite(s);
  s[0] = s[5] = s[10] = 2;
  matrice_produit(t, s, m);  // scale, then translate
  float p[3] = {1, 1, 1};
  matrice_applique(m, p, p);
  proche(p, {3, 4, 5});
  matrice_produit(s, t, s);  // out may be an input: translate, then scale
  float q[3] = {1, 1, 1};
  matrice_applique(s, q, q);
  proche(q, {4, 6, 8});
}

TEST(Matrices, AxisRotationIsRightHandedAboutThePivot) {
  float m[16], pivot[3] = {1, 2, 3};
  float c = std::cos(PI_F / 2), s = std::sin(PI_F / 2);
  float z[3] = {0, 0, 5};  // the length of the axis does not matter
  matrice_axe(pivot, z, c, s, m);
  float p[3] = {2, 2, 3};
  matrice_applique(m, p, p);
  proche(p, {1, 3, 3});
  float q[3] = {1, 2, 3};
  matrice_applique(m, q, q);
  proche(q, {1, 2, 3});  // the pivot stays
  // About x it agrees with rotx: y' = y c - z s, z' = y s + z c.
  float x[3] = {1, 0, 0}, o[3] = {0, 0, 0};
  matrice_axe(o, x, std::cos(0.3f), std::sin(0.3f), m);
  float r[3] = {5, 1, 2};
  matrice_applique(m, r, r);
  proche(r, {5, std::cos(0.3f) - 2 * std::sin(0.3f), std::sin(0.3f) + 2 * std::cos(0.3f)});
  // Along y the frame's first axis falls back to x.
  float y[3] = {0, -1, 0};
  matrice_axe(o, y, c, s, m);
  float w[3] = {1, 0, 0};
  matrice_applique(m, w, w);
  proche(w, {0, 0, 1});
}

TEST(Matrices, AxisTooShortGivesIdentity) {
  float m[16], id[16], o[3] = {4, 5, 6};
  matrice_identite(id);
  for (float l : {0.f, 0.005f}) {
    float a[3] = {l, 0, 0};
    matrice_axe(o, a, 0, 1, m);
    for (int k = 0; k < 16; ++k) EXPECT_EQ(m[k], id[k]);
  }
}
