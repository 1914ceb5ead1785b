// The FFT's butterflies built for AVX2 and FMA, eight lanes in the wide
// stages; called only where the processor has both (fft_noyau.cpp). The
// headers come before the target switch so that nothing shared with other
// files is built for the wider processor.
#include <cstdint>
#include <cstring>

#pragma GCC target("avx2,fma")
#include "device/fft_etages.h"

void fft_noyau_avx(std::uint32_t n, bool impair, const std::uint32_t* inv, const float* tw, const float* xr,
                   const float* xi, int pas, float* yr, float* yi) {
  if (pas == 2) noyau<2, 8>(n, impair, inv, tw, xr, xi, yr, yi);
  else noyau<1, 8>(n, impair, inv, tw, xr, xi, yr, yi);
}
