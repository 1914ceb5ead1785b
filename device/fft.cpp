// The FFT of the sound's spectrum: forward or inverse, complex or real
// input, on the plans of fft_plan.cpp. A real input of n points is packed as
// n / 2 complex ones (even samples real, odd imaginary), transformed, and
// split into the even and odd halves' spectra, which one more turn of
// twiddles joins; the upper half is the conjugate mirror. The inverse is
// the forward transform with real and imaginary parts swapped on both sides.
#include <cstdio>
#include <cstdlib>

#include "device/device.h"
#include "device/fft_interne.h"

namespace {
[[noreturn]] void nul(const char* nom) {
  std::printf("Error in fft_float():  %s == NULL\n", nom);
  std::fflush(stdout);
  std::exit(1);
}

void bits_necessaires(std::uint32_t n) {
  if (n < 2) {
    std::printf(">>> Error in fftmisc.c: argument %u to NumberOfBitsNeeded is too small.\n", n);
    std::fflush(stdout);
    std::exit(1);
  }
}

// The spectrum of n real values x into yr, yi (n >= 2).
void fft_reelle(std::uint32_t n, const float* x, float* yr, float* yi) {
  const std::uint32_t h = n / 2;
  const PlanFft& p = plan_fft(h);
  fft_noyau(p, x, x + 1, 2, yr, yi);
  const float* w = p.reel.data();
  // With A = Z[k] and B = Z[h - k]: the even part E = (A + conj B) / 2,
  // the odd part O = (A - conj B) / 2i; X[k] = E + w^k O and
  // X[h - k] = conj(E - w^k O).
  const float z0r = yr[0], z0i = yi[0];
  yr[0] = z0r + z0i;
  yi[0] = 0;
  yr[h] = z0r - z0i;
  yi[h] = 0;
  for (std::uint32_t k = 1; k <= h / 2; ++k) {
    const std::uint32_t j = h - k;
    const float ar = yr[k], ai = yi[k], br = yr[j], bi = yi[j];
    const float er = 0.5f * (ar + br), ei = 0.5f * (ai - bi);
    const float or_ = 0.5f * (ai + bi), oi = -0.5f * (ar - br);
    const float wr = w[2 * k], wi = w[2 * k + 1];
    const float tr = wr * or_ - wi * oi, ti = wr * oi + wi * or_;
    yr[k] = er + tr;
    yi[k] = ei + ti;
    yr[j] = er - tr;
    yi[j] = ti - ei;
  }
  for (std::uint32_t k = 1; k < h; ++k) {
    yr[n - k] = yr[k];
    yi[n - k] = -yi[k];
  }
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
  bits_necessaires(n);
  // Forward is e^(-2 pi i k t / n), as the spectrum of a sine is read.
  if (!im_in) {
    fft_reelle(n, re_in, re_out, im_out);
    if (!inverse) return;
    // The inverse of a real input is the conjugate of its forward transform.
    const float f = 1.0f / static_cast<float>(n);
    for (std::uint32_t i = 0; i < n; ++i) {
      re_out[i] *= f;
      im_out[i] *= -f;
    }
    return;
  }
  if (!inverse) {
    fft_noyau(plan_fft(n), re_in, im_in, 1, re_out, im_out);
    return;
  }
  fft_noyau(plan_fft(n), im_in, re_in, 1, im_out, re_out);
  const float f = 1.0f / static_cast<float>(n);
  for (std::uint32_t i = 0; i < n; ++i) {
    re_out[i] *= f;
    im_out[i] *= f;
  }
}
