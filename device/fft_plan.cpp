// The tables of the FFT, one plan per size, built on first use: the
// bit-reversal of the first stage, the twiddles of every later stage and
// those of the real transform, all computed in double and rounded once.
#include <bit>
#include <cmath>

#include "device/fft_interne.h"

namespace {
PlanFft plans[32];

std::uint32_t inverse_bits(std::uint32_t k, std::uint32_t nb) {
  std::uint32_t r = 0;
  for (std::uint32_t i = 0; i < nb; ++i, k >>= 1) r = (r << 1) | (k & 1);
  return r;
}

void construit(PlanFft& p, std::uint32_t n) {
  const std::uint32_t k = static_cast<std::uint32_t>(std::countr_zero(n));
  p.impair = k % 2 == 1;
  if (n >= 16) {
    p.inv.resize(n / 4);
    for (std::uint32_t t = 0; t < n / 4; ++t) p.inv[t] = 4 * inverse_bits(t, k - 2);
    for (std::uint32_t s = p.impair ? 8 : 4; s < n; s *= 4) {
      const std::uint32_t c = s < 8 ? s : 8;
      for (std::uint32_t j = 0; j < s; j += c)
        for (int m = 1; m <= 3; ++m) {
          for (std::uint32_t l = 0; l < c; ++l)
            p.tw.push_back(static_cast<float>(std::cos(2 * M_PI * m * (j + l) / (4.0 * s))));
          for (std::uint32_t l = 0; l < c; ++l)
            p.tw.push_back(static_cast<float>(-std::sin(2 * M_PI * m * (j + l) / (4.0 * s))));
        }
    }
  }
  p.reel.resize(n + 2);
  for (std::uint32_t j = 0; j <= n / 2; ++j) {
    p.reel[2 * j] = static_cast<float>(std::cos(M_PI * j / n));
    p.reel[2 * j + 1] = static_cast<float>(-std::sin(M_PI * j / n));
  }
  p.n = n;
}
}  // namespace

const PlanFft& plan_fft(std::uint32_t n) {
  PlanFft& p = plans[std::countr_zero(n) & 31];
  if (p.n != n) construit(p, n);
  return p;
}
