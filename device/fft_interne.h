// The plan of the complex FFT of n = 2^k points, built on the first call of
// each size and kept for the life of the process, so that a transform
// allocates nothing. Invariants of a built plan (n != 0):
// - `inv` holds 4 * rev(t) for t < n / 4, rev reversing k - 2 bits: the
//   first stage reads the quarters t, t + n/4, t + n/2, t + 3n/4 of the input
//   and writes the four results of block rev(t) side by side.
// - `tw` holds the twiddles of the radix-4 stages of span s = 4 or 8 up to
//   n / 4, stage after stage; a stage takes 6 s floats, by chunks of
//   c = min(s, 8) values of k: cos and -sin of 2 pi k j / 4s for j = 1, 2, 3,
//   each as c reals then c imaginaries.
// - `reel` holds cos and -sin of 2 pi k / 2n for k <= n / 2, interleaved:
//   the twiddles that turn this plan's transform of n packed complex points
//   into the spectrum of 2n real ones.
#pragma once

#include <cstdint>
#include <vector>

struct PlanFft {
  std::uint32_t n = 0;
  bool impair = false;  // k odd: a radix-2 stage of span 4 follows the first
  std::vector<std::uint32_t> inv;
  std::vector<float> tw;
  std::vector<float> reel;
};

// The plan of n = 2^k points, 1 <= k <= 31.
const PlanFft& plan_fft(std::uint32_t n);
// Forward transform of the plan's n points: the input is (xr[i * pas],
// xi[i * pas]), pas 1 for separate arrays and 2 for interleaved pairs; the
// output goes to yr, yi, which must not overlap the input.
void fft_noyau(const PlanFft& p, const float* xr, const float* xi, int pas, float* yr, float* yi);
