// The complex FFT of the sound's spectrum: radix 2, decimation in time,
// bit-reversal first, and per block size one sine and cosine with the
// butterflies' twiddles from the recurrence cos(a - 2d), cos(a - d) ->
// cos(a), carried in double so that 4096 points keep float accuracy.
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "device/device.h"

namespace {
[[noreturn]] void nul(const char* nom) {
  std::printf("Error in fft_float():  %s == NULL\n", nom);
  std::fflush(stdout);
  std::exit(1);
}

std::uint32_t bits_necessaires(std::uint32_t n) {
  if (n < 2) {
    std::printf(">>> Error in fftmisc.c: argument %u to NumberOfBitsNeeded is too small.\n", n);
    std::fflush(stdout);
    std::exit(1);
  }
  for (std::uint32_t i = 0;; ++i)
    if (n & (1u << i)) return i;
}

std::uint32_t inverse_bits(std::uint32_t k, std::uint32_t nb) {
  std::uint32_t r = 0;
  for (std::uint32_t i = 0; i < nb; ++i, k >>= 1) r = (r << 1) | (k & 1);
  return r;
}
}  // namespace

bool fft_taille_ok(std::uint32_t n) { return n >= 2 && (n & (n - 1)) == 0; }

void fft_float(std::uint32_t n, int inverse, const float* re_in, const float* im_in, float* re_out,
               float* im_out) {
  if (!fft_taille_ok(n)) {
    std::printf("Error in fft():  NumSamples=%u is not power of two\n", n);
    std::fflush(stdout);
    std::exit(1);
  }
  if (!re_in) nul("RealIn");
  if (!re_out) nul("RealOut");
  if (!im_out) nul("ImagOut");
  // Forward is e^(-2 pi i k n / N), as the spectrum of a sine is read.
  const double angle = inverse ? 2.0 * M_PI : -2.0 * M_PI;
  const std::uint32_t nb = bits_necessaires(n);
  for (std::uint32_t i = 0; i < n; ++i) {
    std::uint32_t j = inverse_bits(i, nb);
    re_out[j] = re_in[i];
    im_out[j] = im_in ? im_in[i] : 0.0f;
  }
  for (std::uint32_t bloc = 2, fin = 1; bloc <= n; fin = bloc, bloc <<= 1) {
    const double d = angle / bloc;
    const double sm2 = std::sin(-2 * d), sm1 = std::sin(-d);
    const double cm2 = std::cos(-2 * d), cm1 = std::cos(-d);
    const double w = 2 * cm1;
    for (std::uint32_t i = 0; i < n; i += bloc) {
      double ar2 = cm2, ar1 = cm1, ai2 = sm2, ai1 = sm1;
      for (std::uint32_t j = i, k = 0; k < fin; ++j, ++k) {
        const double ar0 = w * ar1 - ar2, ai0 = w * ai1 - ai2;
        ar2 = ar1;
        ar1 = ar0;
        ai2 = ai1;
        ai1 = ai0;
        const std::uint32_t m = j + fin;
        const float tr = static_cast<float>(ar0 * re_out[m] - ai0 * im_out[m]);
        const float ti = static_cast<float>(ar0 * im_out[m] + ai0 * re_out[m]);
        re_out[m] = re_out[j] - tr;
        im_out[m] = im_out[j] - ti;
        re_out[j] += tr;
        im_out[j] += ti;
      }
    }
  }
  if (inverse) {
    const float f = 1.0f / static_cast<float>(n);
    for (std::uint32_t i = 0; i < n; ++i) {
      re_out[i] *= f;
      im_out[i] *= f;
    }
  }
}
