// The FFT against a direct DFT in double, on random data of every size
// from 2 to 4096, against the bins of known sines, and its refusals.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <vector>

#include "device/device.h"

namespace {
using C = std::complex<double>;

std::vector<C> dft(const std::vector<float>& re, const std::vector<float>& im, int signe) {
  const std::size_t n = re.size();
  std::vector<C> r(n);
  for (std::size_t k = 0; k < n; ++k) {
    C s = 0;
    for (std::size_t t = 0; t < n; ++t)
      s += C(re[t], im[t]) * std::polar(1.0, signe * 2 * M_PI * static_cast<double>((k * t) % n) / n);
    r[k] = s;
  }
  return r;
}

// The largest error against the reference, over the largest value of it.
double ecart(const std::vector<C>& ref, const std::vector<float>& ro, const std::vector<float>& io) {
  double norme = 0, err = 0;
  for (std::size_t k = 0; k < ref.size(); ++k) {
    norme = std::max(norme, std::abs(ref[k]));
    err = std::max(err, std::abs(C(ro[k], io[k]) - ref[k]));
  }
  return err / norme;
}

// Both builds of the butterflies, the wide one where the processor has it.
struct Largeurs : testing::TestWithParam<bool> {
  bool avant = fft_avx;
  void SetUp() override {
    if (GetParam() && !avant) GTEST_SKIP() << "no AVX2 here";
    fft_avx = GetParam();
  }
  void TearDown() override { fft_avx = avant; }
};
INSTANTIATE_TEST_SUITE_P(Fft, Largeurs, testing::Values(false, true));

TEST_P(Largeurs, ContreLaDftDirecteAleatoire) {
  std::mt19937 g(20261123);
  for (std::uint32_t n = 2; n <= 4096; n *= 2) {
    // Values of all sizes, some large, with an offset.
    std::uniform_real_distribution<float> u(-3e4f, 3e4f);
    std::vector<float> re(n), im(n), ro(n), io(n);
    for (auto& x : re) x = u(g) + 1234.5f;
    for (auto& x : im) x = u(g);
    fft_float(n, 0, re.data(), im.data(), ro.data(), io.data());
    EXPECT_LT(ecart(dft(re, im, -1), ro, io), 2e-6 * std::log2(n)) << "n = " << n;
    // The inverse gives the input back.
    std::vector<float> r2(n), i2(n);
    fft_float(n, 1, ro.data(), io.data(), r2.data(), i2.data());
    for (std::uint32_t k = 0; k < n; ++k) {
      ASSERT_NEAR(r2[k], re[k], 2e-6 * 3e4 * std::log2(n)) << n << " " << k;
      ASSERT_NEAR(i2[k], im[k], 2e-6 * 3e4 * std::log2(n)) << n << " " << k;
    }
    // A real input alone (packed at half size) and its inverse.
    std::vector<float> zero(n, 0);
    fft_float(n, 0, re.data(), nullptr, ro.data(), io.data());
    EXPECT_LT(ecart(dft(re, zero, -1), ro, io), 2e-6 * std::log2(n)) << "real n = " << n;
    fft_float(n, 1, re.data(), nullptr, ro.data(), io.data());
    std::vector<C> inv = dft(re, zero, 1);
    for (auto& z : inv) z /= n;
    EXPECT_LT(ecart(inv, ro, io), 2e-6 * std::log2(n)) << "real inverse n = " << n;
  }
}

TEST_P(Largeurs, GrandesTaillesParRaiesTirees) {
  // Up to a million points, odd and even powers: 40 bins drawn at random
  // (and the first, the middle and the last) against their direct sums, the
  // same plans used again, and the real path against the complex one.
  std::mt19937 g(4099);
  std::normal_distribution<float> u(0, 5000);
  for (std::uint32_t n : {8192u, 32768u, 131072u, 1u << 20, 16384u, 8192u}) {
    std::vector<float> re(n), im(n), ro(n), io(n), rr(n), ir(n), zero(n, 0);
    for (auto& x : re) x = u(g) + 777.25f;
    for (auto& x : im) x = u(g);
    fft_float(n, 0, re.data(), im.data(), ro.data(), io.data());
    fft_float(n, 0, re.data(), nullptr, rr.data(), ir.data());
    std::vector<std::uint32_t> raies{0, n / 2, n - 1};
    for (int i = 0; i < 40; ++i) raies.push_back(g() % n);
    double norme = 0, err = 0, err_r = 0;
    for (std::uint32_t k : raies) {
      C s = 0, sr = 0;
      for (std::uint32_t t = 0; t < n; ++t) {
        const C w = std::polar(1.0, -2 * M_PI * static_cast<double>((static_cast<std::uint64_t>(k) * t) % n) / n);
        s += C(re[t], im[t]) * w;
        sr += static_cast<double>(re[t]) * w;
      }
      norme = std::max(norme, std::abs(s));
      err = std::max(err, std::abs(C(ro[k], io[k]) - s));
      err_r = std::max(err_r, std::abs(C(rr[k], ir[k]) - sr));
    }
    // Random data spread its power: the bins are about sqrt(n) times the
    // values, so the error is measured against that.
    const double echelle = 5000 * std::sqrt(static_cast<double>(n));
    EXPECT_LT(err / echelle, 2e-6 * std::log2(n)) << n;
    EXPECT_LT(err_r / echelle, 2e-6 * std::log2(n)) << n;
    EXPECT_GT(norme, echelle / 4) << n;
  }
}

TEST(Fft, SinusConnusEtEntreeReelleSeule) {
  // A sine at bin 37 and a cosine at bin 200 of 1024 points: the real input
  // alone (no imaginary array) gives -i A N / 2 and A N / 2 at those bins,
  // their mirrors conjugate, and nothing elsewhere.
  const std::uint32_t n = 1024;
  std::vector<float> re(n), ro(n), io(n);
  for (std::uint32_t t = 0; t < n; ++t)
    re[t] = static_cast<float>(100 * std::sin(2 * M_PI * 37 * t / n) + 7 * std::cos(2 * M_PI * 200 * t / n));
  fft_float(n, 0, re.data(), nullptr, ro.data(), io.data());
  EXPECT_NEAR(io[37], -100.0 * n / 2, 0.05);
  EXPECT_NEAR(io[n - 37], 100.0 * n / 2, 0.05);
  EXPECT_NEAR(ro[200], 7.0 * n / 2, 0.05);
  EXPECT_NEAR(ro[n - 200], 7.0 * n / 2, 0.05);
  for (std::uint32_t k = 0; k < n; ++k) {
    if (k == 37 || k == n - 37 || k == 200 || k == n - 200) continue;
    ASSERT_LT(std::hypot(ro[k], io[k]), 0.05) << k;
  }
  // The smallest size: a sum and a difference.
  std::vector<float> a{1, 0}, b(2), c(2);
  fft_float(2, 0, a.data(), nullptr, b.data(), c.data());
  EXPECT_EQ(b, (std::vector<float>{1, 1}));
}

// Sizes that are not powers of two and null arrays end the process with
// their line, as the sound command always did: in a child process.
TEST(FftDeathTest, TaillesEtTableauxRefuses) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  std::vector<float> a(1024), b(1024), c(1024);
  for (std::uint32_t n : {0u, 1u, 3u, 1000u, 1025u, 0x80000001u}) {
    EXPECT_FALSE(fft_taille_ok(n));
    EXPECT_EXIT(fft_float(n, 0, a.data(), nullptr, b.data(), c.data()), testing::ExitedWithCode(1),
                "")
        << n;
  }
  EXPECT_EXIT(fft_float(8, 0, nullptr, nullptr, b.data(), c.data()), testing::ExitedWithCode(1), "");
  EXPECT_EXIT(fft_float(8, 0, a.data(), nullptr, b.data(), nullptr), testing::ExitedWithCode(1), "");
  EXPECT_TRUE(fft_taille_ok(2));
  EXPECT_TRUE(fft_taille_ok(1u << 31));
}
}  // namespace
