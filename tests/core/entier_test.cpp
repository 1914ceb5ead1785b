// Floats that become integers: the edges of the int32 range, the floats
// that are no number at all, and the report of the checked form.
#include <cmath>
#include <limits>
#include <random>

#include "tests/core/outils.h"

using namespace outils;

TEST(Entier, EdgesOfTheRangeAndNonNumbers) {
  const float inf = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  mot n = 12345;
  // The last float below 2^31 fits, 2^31 itself does not; -2^31 fits.
  EXPECT_TRUE(reel_entier(2147483520.0f, &n));
  EXPECT_EQ(n, 2147483520);
  EXPECT_FALSE(reel_entier(2147483648.0f, &n));
  EXPECT_TRUE(reel_entier(-2147483648.0f, &n));
  EXPECT_EQ(n, INT32_MIN);
  EXPECT_FALSE(reel_entier(std::nextafter(-2147483648.0f, -inf), &n));
  n = 12345;
  for (float x : {inf, -inf, nan, -nan, 1e30f, -1e30f, 4294967296.0f}) {
    EXPECT_FALSE(reel_entier(x, &n)) << x;
    EXPECT_EQ(n, 12345) << "a refused float leaves the integer alone";
  }
  // Truncation toward zero, and the bounds taken inclusive.
  EXPECT_TRUE(reel_entier(-7.99f, &n));
  EXPECT_EQ(n, -7);
  EXPECT_TRUE(reel_entier(0.999f, &n, 0, 0));
  EXPECT_EQ(n, 0);
  EXPECT_TRUE(reel_entier(255.5f, &n, 0, 255));
  EXPECT_FALSE(reel_entier(256.0f, &n, 0, 255));
  EXPECT_FALSE(reel_entier(-1.0f, &n, 0, 255));
  // The clamped form gives an integer for every float, NaN the bottom.
  EXPECT_EQ(entier_sature(1e30f), INT32_MAX);
  EXPECT_EQ(entier_sature(2147483520.0f), 2147483520);
  EXPECT_EQ(entier_sature(-inf), INT32_MIN);
  EXPECT_EQ(entier_sature(nan), INT32_MIN);
  EXPECT_EQ(entier_sature(-123456.75f), -123456);
}

TEST(Entier, RandomFloatsAgreeWithTheWideTruncation) {
  std::mt19937 g(0x5eed1234);
  std::uniform_int_distribution<std::uint32_t> bits;
  for (int i = 0; i < 200000; ++i) {
    float x = std::bit_cast<float>(bits(g));
    mot n = 0;
    bool ok = reel_entier(x, &n);
    double t = std::trunc(static_cast<double>(x));
    bool attendu = std::isfinite(x) && t >= INT32_MIN && t <= INT32_MAX;
    ASSERT_EQ(ok, attendu) << x;
    if (ok) {
      ASSERT_EQ(n, static_cast<long long>(t)) << x;
    }
    double s = std::isnan(x) ? INT32_MIN : std::clamp(t, -2147483648.0, 2147483647.0);
    ASSERT_EQ(entier_sature(x), static_cast<long long>(s)) << x;
  }
}

TEST(Entier, CheckedFormReportsTheValue) {
  environnement();
  mot n = 0;
  int r = 0;
  EXPECT_EQ(sortie_de([&] { r = entier_de(1e10f, &n); }), "1e+10: [81]");
  EXPECT_EQ(r, -1);
  EXPECT_EQ(sortie_de([&] { r = entier_de(-9.5f, &n, -10, 10); }), "");
  EXPECT_EQ(r, 0);
  EXPECT_EQ(n, -9);
  EXPECT_EQ(sortie_de([&] { r = entier_de(11.f, &n, -10, 10); }), "11: [81]");
  EXPECT_EQ(r, -1);
}
