// The noise tables against their rules of making, worked out here again
// from those rules, and the properties the pigments lean on: continuity,
// bounds, fixed values from run to run, any input accepted.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "display/display.h"

namespace {
// The C library's classic sample generator, seeded with 0.
struct Lcg {
  unsigned s = 0;
  int tire() {
    s = s * 1103515245u + 12345u;
    return (s >> 16) & 0x7fff;
  }
};

TEST(Bruit, TablesSuiventLeursRegles) {
  Initialize_Noise();
  // hash: the identity, then from 4095 down to 0 a swap with a 12-bit draw.
  static unsigned short h[4096];
  for (int i = 0; i < 4096; ++i) h[i] = i;
  Lcg g;
  for (int i = 4095; i >= 0; --i) std::swap(h[i], h[g.tire() & 4095]);
  for (int i = 0; i < 4096; ++i) ASSERT_EQ(bruit.hash[i], h[i]) << i;
  // rtable: CRC-16 (0xA001, reflected, from 0) of the bytes of (0.12345 i, 0, 0).
  for (int i = 0; i < 267; ++i) {
    double v[3] = {i * 0.12345, 0, 0};
    unsigned char b[24];
    std::memcpy(b, v, 24);
    unsigned crc = 0;
    for (unsigned char c : b) {
      crc ^= c;
      for (int k = 0; k < 8; ++k) crc = (crc & 1) ? (crc >> 1) ^ 0xA001 : crc >> 1;
    }
    ASSERT_DOUBLE_EQ(bruit.rtable[i], crc * 3.0518043793392844e-5 - 1) << i;
  }
  for (auto& v : bruit.vecteurs) EXPECT_NEAR(v[0] * v[0] + v[1] * v[1] + v[2] * v[2], 1.0, 1e-12);
  // A second making gives the same tables: seed 0 again.
  double r[267];
  std::memcpy(r, bruit.rtable, sizeof r);
  unsigned short h2[10];
  std::memcpy(h2, bruit.hash, sizeof h2);
  Initialize_Noise();
  EXPECT_EQ(std::memcmp(r, bruit.rtable, sizeof r), 0);
  EXPECT_EQ(std::memcmp(h2, bruit.hash, sizeof h2), 0);
}

TEST(Bruit, ContinuBorneEtVarie) {
  Initialize_Noise();
  std::mt19937 g(21);
  std::uniform_real_distribution<double> u(-3000, 3000);
  double maxi = 0, somme = 0, somme2 = 0;
  constexpr int N = 20000;
  for (int k = 0; k < N; ++k) {
    double x = u(g), y = u(g), z = u(g);
    // Half of the points sit on a face of a cell, where the corners change.
    if (k & 1) x = std::round(x) - 5e-5;
    double a[3], b[3];
    noise_vec(a, x, y, z);
    noise_vec(b, x + 1e-4, y, z);
    for (int c = 0; c < 3; ++c) {
      ASSERT_LT(std::fabs(a[c] - b[c]), 3e-3) << x << " " << y << " " << z;
      ASSERT_LE(std::fabs(a[c]), 4.0);
      maxi = std::max(maxi, std::fabs(a[c]));
    }
    somme += a[0], somme2 += a[0] * a[0];
  }
  // Not flat: the values spread.
  double moy = somme / N, var = somme2 / N - moy * moy;
  EXPECT_GT(var, 0.01);
  EXPECT_GT(maxi, 0.3);
}

TEST(Bruit, EntreesExtremes) {
  Initialize_Noise();
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  double z[3], v[3];
  noise_vec(z, 0, 0, 0);
  for (double x : {nan, inf, -inf}) {
    noise_vec(v, x, 0, 0);
    for (int c = 0; c < 3; ++c) EXPECT_EQ(v[c], z[c]);
  }
  // Far points are finite and bounded; the lattice repeats every 4096 cells
  // so a far point keeps the value of the one it is brought back to.
  for (double x : {1e9, -1e9, 3.7e12, -8.1e15, 1e300, -1e300, 2147483647.5, -2147483648.5}) {
    noise_vec(v, x, x * 0.5, -x);
    for (int c = 0; c < 3; ++c) {
      EXPECT_TRUE(std::isfinite(v[c])) << x;
      EXPECT_LE(std::fabs(v[c]), 4.0);
    }
  }
  double a[3], b[3];
  noise_vec(a, 4096.0 * 1e6 + 0.25, 3.5, 7.75);
  noise_vec(b, 0.25, 3.5, 7.75);
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(a[c], b[c], 1e-6);
}

TEST(Bruit, Turbulence) {
  Initialize_Noise();
  std::mt19937 g(7);
  std::uniform_real_distribution<double> u(-500, 500);
  for (int k = 0; k < 200; ++k) {
    double x = u(g), y = u(g), z = u(g), n[3], t[3];
    noise_vec(n, x, y, z);
    turbulence_vec(t, x, y, z, 0.5, 2.0, 0);  // no octave: still the noise
    for (int c = 0; c < 3; ++c) ASSERT_EQ(t[c], n[c]);
    // Three octaves: n(p) + w n(l p) + w^2 n(l^2 p).
    double w = 0.37, l = 2.9, n2[3], n3[3];
    noise_vec(n2, l * x, l * y, l * z);
    noise_vec(n3, l * l * x, l * l * y, l * l * z);
    turbulence_vec(t, x, y, z, w, l, 3);
    for (int c = 0; c < 3; ++c) ASSERT_NEAR(t[c], n[c] + w * n2[c] + w * w * n3[c], 1e-12);
  }
  // Many octaves with a growing frequency stay finite.
  double t[3];
  turbulence_vec(t, 1.5, 2.5, 3.5, 0.5, 2.0, 200);
  for (double v : t) EXPECT_TRUE(std::isfinite(v));
}
}  // namespace
