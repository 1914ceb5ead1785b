// The butterflies of the forward complex FFT on separate real and imaginary
// rows, as templates over the lanes of a vector, compiled once for plain
// SSE2 (fft_noyau.cpp) and once for AVX2 (fft_noyau_avx.cpp). Everything
// here has internal linkage, so the wider code never stands in for the
// narrower one at link time.
//
// Decimation in time: the first stage reads the input in natural order by
// quarters, does the 4-point transforms and stores each block at its
// bit-reversed place (a 4 x 4 transpose); a radix-2 stage of span 4 follows
// when log2 n is odd; then radix-4 stages of span s = 4 or 8, 16 or 32, ...
// up to n / 4, with the plan's twiddles. Below 16 points a direct sum does it.
#pragma once

#include <cstdint>
#include <cstring>

namespace {
template <int L>
struct Vec {
  typedef float t __attribute__((vector_size(4 * L)));
};
using v4 = Vec<4>::t;
using v4i = std::int32_t __attribute__((vector_size(16)));

template <int L>
inline __attribute__((always_inline)) typename Vec<L>::t lit(const float* p) {
  typename Vec<L>::t v;
  std::memcpy(&v, p, sizeof v);
  return v;
}
template <int L>
inline __attribute__((always_inline)) void ecrit(float* p, typename Vec<L>::t v) {
  std::memcpy(p, &v, sizeof v);
}

// Four complex values of the input from index i: pas 2 takes the even and
// odd floats of eight as the real and imaginary parts.
template <int PAS>
inline __attribute__((always_inline)) void charge(const float* xr, const float* xi, std::uint32_t i, v4& r,
                                                  v4& m) {
  if constexpr (PAS == 1) {
    r = lit<4>(xr + i);
    m = lit<4>(xi + i);
  } else {
    const v4 a = lit<4>(xr + 2 * i), b = lit<4>(xr + 2 * i + 4);
    r = __builtin_shuffle(a, b, v4i{0, 2, 4, 6});
    m = __builtin_shuffle(a, b, v4i{1, 3, 5, 7});
  }
}

// The rows of c0..c3 become columns: lane l of each, side by side.
inline __attribute__((always_inline)) void transpose(v4& c0, v4& c1, v4& c2, v4& c3) {
  const v4 t0 = __builtin_shuffle(c0, c1, v4i{0, 4, 1, 5}), t1 = __builtin_shuffle(c0, c1, v4i{2, 6, 3, 7});
  const v4 t2 = __builtin_shuffle(c2, c3, v4i{0, 4, 1, 5}), t3 = __builtin_shuffle(c2, c3, v4i{2, 6, 3, 7});
  c0 = __builtin_shuffle(t0, t2, v4i{0, 1, 4, 5});
  c1 = __builtin_shuffle(t0, t2, v4i{2, 3, 6, 7});
  c2 = __builtin_shuffle(t1, t3, v4i{0, 1, 4, 5});
  c3 = __builtin_shuffle(t1, t3, v4i{2, 3, 6, 7});
}

// cos and -sin of 2 pi j / 8, j < 8: the few twiddles of small sizes.
constexpr float R = 0.70710678118654752f;
constexpr float COS8[8] = {1, R, 0, -R, -1, -R, 0, R};
constexpr float MSIN8[8] = {0, -R, -1, -R, 0, R, 1, R};

template <int PAS>
inline __attribute__((always_inline)) void petit(std::uint32_t n, const float* xr, const float* xi, float* yr,
                                                 float* yi) {
  const std::uint32_t f = 8 / n;
  for (std::uint32_t k = 0; k < n; ++k) {
    float sr = 0, si = 0;
    for (std::uint32_t t = 0; t < n; ++t) {
      const std::uint32_t j = (k * t) % n * f;
      const float a = xr[t * PAS], b = xi[t * PAS];
      sr += a * COS8[j] - b * MSIN8[j];
      si += a * MSIN8[j] + b * COS8[j];
    }
    yr[k] = sr;
    yi[k] = si;
  }
}

template <int PAS>
inline __attribute__((always_inline)) void premier_etage(std::uint32_t n, const std::uint32_t* inv,
                                                         const float* xr, const float* xi, float* yr,
                                                         float* yi) {
  const std::uint32_t q = n / 4;
  for (std::uint32_t t = 0; t < q; t += 4) {
    v4 a0r, a0i, a1r, a1i, a2r, a2i, a3r, a3i;
    // Block rev(t) takes t, t + n/2, t + n/4, t + 3n/4 in this order.
    charge<PAS>(xr, xi, t, a0r, a0i);
    charge<PAS>(xr, xi, t + 2 * q, a1r, a1i);
    charge<PAS>(xr, xi, t + q, a2r, a2i);
    charge<PAS>(xr, xi, t + 3 * q, a3r, a3i);
    const v4 b0r = a0r + a1r, b0i = a0i + a1i, b1r = a0r - a1r, b1i = a0i - a1i;
    const v4 sr = a2r + a3r, si = a2i + a3i, dr = a2r - a3r, di = a2i - a3i;
    v4 c0r = b0r + sr, c0i = b0i + si, c2r = b0r - sr, c2i = b0i - si;
    v4 c1r = b1r + di, c1i = b1i - dr, c3r = b1r - di, c3i = b1i + dr;
    transpose(c0r, c1r, c2r, c3r);
    transpose(c0i, c1i, c2i, c3i);
    const std::uint32_t* o = inv + t;
    ecrit<4>(yr + o[0], c0r);
    ecrit<4>(yi + o[0], c0i);
    ecrit<4>(yr + o[1], c1r);
    ecrit<4>(yi + o[1], c1i);
    ecrit<4>(yr + o[2], c2r);
    ecrit<4>(yi + o[2], c2i);
    ecrit<4>(yr + o[3], c3r);
    ecrit<4>(yi + o[3], c3i);
  }
}

inline __attribute__((always_inline)) void etage2(std::uint32_t n, float* yr, float* yi) {
  const v4 wr{1, R, 0, -R}, wi{0, -R, -1, -R};
  for (std::uint32_t b = 0; b < n; b += 8) {
    const v4 ar = lit<4>(yr + b), ai = lit<4>(yi + b), br = lit<4>(yr + b + 4), bi = lit<4>(yi + b + 4);
    const v4 tr = wr * br - wi * bi, ti = wr * bi + wi * br;
    ecrit<4>(yr + b, ar + tr);
    ecrit<4>(yi + b, ai + ti);
    ecrit<4>(yr + b + 4, ar - tr);
    ecrit<4>(yi + b + 4, ai - ti);
  }
}

// A radix-4 stage of span s, L lanes at a time (L <= s); the twiddles come
// by chunks of C = min(s, 8) values of k, as six rows of C floats.
template <int L>
inline __attribute__((always_inline)) void etage4(std::uint32_t n, std::uint32_t s, const float* tw, float* yr,
                                                  float* yi) {
  using V = typename Vec<L>::t;
  const std::uint32_t c = s < 8 ? s : 8;
  for (std::uint32_t b = 0; b < n; b += 4 * s) {
    float *r0 = yr + b, *i0 = yi + b;
    for (std::uint32_t k = 0; k < s; k += L) {
      const float* w = tw + k / c * 6 * c + k % c;
      const std::uint32_t k1 = k + s, k2 = k + 2 * s, k3 = k + 3 * s;
      const V w1r = lit<L>(w), w1i = lit<L>(w + c), w2r = lit<L>(w + 2 * c), w2i = lit<L>(w + 3 * c),
              w3r = lit<L>(w + 4 * c), w3i = lit<L>(w + 5 * c);
      const V a0r = lit<L>(r0 + k), a0i = lit<L>(i0 + k), a1r = lit<L>(r0 + k1), a1i = lit<L>(i0 + k1);
      const V a2r = lit<L>(r0 + k2), a2i = lit<L>(i0 + k2), a3r = lit<L>(r0 + k3), a3i = lit<L>(i0 + k3);
      // a1 turns by w^2k, a2 by w^k, a3 by w^3k: two radix-2 stages in one.
      const V t1r = w2r * a1r - w2i * a1i, t1i = w2r * a1i + w2i * a1r;
      const V t2r = w1r * a2r - w1i * a2i, t2i = w1r * a2i + w1i * a2r;
      const V t3r = w3r * a3r - w3i * a3i, t3i = w3r * a3i + w3i * a3r;
      const V b0r = a0r + t1r, b0i = a0i + t1i, b1r = a0r - t1r, b1i = a0i - t1i;
      const V sr = t2r + t3r, si = t2i + t3i, dr = t2r - t3r, di = t2i - t3i;
      ecrit<L>(r0 + k, b0r + sr);
      ecrit<L>(i0 + k, b0i + si);
      ecrit<L>(r0 + k2, b0r - sr);
      ecrit<L>(i0 + k2, b0i - si);
      // -i d, added to b1 and taken from it.
      ecrit<L>(r0 + k1, b1r + di);
      ecrit<L>(i0 + k1, b1i - dr);
      ecrit<L>(r0 + k3, b1r - di);
      ecrit<L>(i0 + k3, b1i + dr);
    }
  }
}

// The whole transform, with L lanes in the radix-4 stages of span 8 and up.
template <int PAS, int L>
inline __attribute__((always_inline)) void noyau(std::uint32_t n, bool impair, const std::uint32_t* inv,
                                                 const float* tw, const float* xr, const float* xi, float* yr,
                                                 float* yi) {
  if (n < 16) {
    petit<PAS>(n, xr, xi, yr, yi);
    return;
  }
  premier_etage<PAS>(n, inv, xr, xi, yr, yi);
  std::uint32_t s = 4;
  if (impair) {
    etage2(n, yr, yi);
    s = 8;
  }
  for (; s < n; tw += 6 * s, s *= 4) {
    if (s < 8) etage4<4>(n, s, tw, yr, yi);
    else etage4<L>(n, s, tw, yr, yi);
  }
}
}  // namespace
