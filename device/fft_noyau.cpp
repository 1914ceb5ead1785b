// The entry of the complex FFT's butterflies: the AVX2 build of them where
// the processor has it, the SSE2 build otherwise.
#include "device/device.h"
#include "device/fft_interne.h"
#include "device/fft_etages.h"

void fft_noyau_avx(std::uint32_t n, bool impair, const std::uint32_t* inv, const float* tw, const float* xr,
                   const float* xi, int pas, float* yr, float* yi);

bool fft_avx = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");

void fft_noyau(const PlanFft& p, const float* xr, const float* xi, int pas, float* yr, float* yi) {
  const std::uint32_t* inv = p.inv.data();
  const float* tw = p.tw.data();
  if (fft_avx) fft_noyau_avx(p.n, p.impair, inv, tw, xr, xi, pas, yr, yi);
  else if (pas == 2) noyau<2, 4>(p.n, p.impair, inv, tw, xr, xi, yr, yi);
  else noyau<1, 4>(p.n, p.impair, inv, tw, xr, xi, yr, yi);
}
