// The lattice noise under the pigments: the tables, noise_vec and
// turbulence_vec.
//
// Invariants: once `bruit.pret` is true, `hash` is a permutation of
// 0..4095, every `rtable` entry lies in -1..1, `sinus[i]` is the sine of
// i thousandths of a turn and `vecteurs` holds ten unit vectors. The tables
// are fixed arrays of the global record: building them cannot fail, so the
// allocation messages of the noise are never needed. Seed 0 makes the same
// tables at every run, hence a fixed look for every pigment.
#include <cmath>
#include <cstdint>
#include <cstring>

#include "display/display.h"

Bruit bruit;

namespace {
// The system's own random generator: a linear congruence on 32 bits whose
// 15 high bits are the draw; the seed is its state.
std::uint32_t graine = 0;
int aleat() {
  graine = graine * 1103515245u + 12345u;
  return static_cast<int>((graine >> 16) & 0x7fff);
}

std::uint16_t crc16(const unsigned char* p, int n) {
  std::uint16_t crc = 0;
  for (int i = 0; i < n; ++i) {
    crc ^= p[i];
    for (int b = 0; b < 8; ++b) crc = (crc & 1) ? (crc >> 1) ^ 0xA001 : crc >> 1;
  }
  return crc;
}

// The point is shifted so that usual coordinates lie far from zero, where
// the cells are all alike; beyond the range where an int holds the cell,
// the point is brought back by whole periods of the lattice (4096 cells),
// which keeps its value.
constexpr double DECALE = 10000.0;
constexpr double BORNE = 1.0e9;
inline double ramene(double v) {
  if (!(v > -BORNE && v < BORNE)) {
    if (std::isnan(v) || std::isinf(v)) return 0;
    v -= std::floor(v / 4096.0) * 4096.0;
  }
  return v;
}
// The integer below, with no call to the library.
inline int plancher(double v) {
  int i = static_cast<int>(v);
  return v < i ? i - 1 : i;
}
inline double courbe(double t) { return t * t * (3.0 - 2.0 * t); }
}  // namespace

void InitTextureTable() {
  graine = 0;
  for (int i = 0; i < BRUIT_HASH; ++i) bruit.hash[i] = static_cast<std::uint16_t>(i);
  for (int i = BRUIT_HASH - 1; i >= 0; --i) {
    int j = aleat() & 0xfff;
    std::uint16_t t = bruit.hash[i];
    bruit.hash[i] = bruit.hash[j];
    bruit.hash[j] = t;
  }
}

void InitRTable() {
  InitTextureTable();
  for (int i = 0; i < BRUIT_RTABLE; ++i) {
    double v[3] = {i * 0.12345, 0 * 0.12345, 0 * 0.12345};
    unsigned char o[sizeof v];
    std::memcpy(o, v, sizeof v);
    bruit.rtable[i] = crc16(o, sizeof o) * 3.0518043793392844e-5 - 1.0;
  }
}

void Initialize_Noise() {
  InitRTable();
  for (int i = 0; i < BRUIT_SINUS; ++i) bruit.sinus[i] = std::sin(i / 1000.0 * 6.28318530718);
  bruit.pret = true;
  for (int i = 0; i < 10; ++i) {
    double* v = bruit.vecteurs[i];
    noise_vec(v, i, 0, 0);
    double l = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    v[0] /= l, v[1] /= l, v[2] /= l;
  }
}

void Free_Noise_Tables() { bruit.pret = false; }

// Each corner of the cell gets an index by chaining `hash` over its three
// integer coordinates; the low 8 bits of it choose 12 consecutive entries
// of `rtable`, 4 per output component: a constant and the weights of the
// three offsets from that corner. The eight corner values are blended with
// the smooth curve 3t^2 - 2t^3 of the fractions, which makes the noise
// continuous with a continuous slope across cell faces.
void noise_vec(double* out, double x, double y, double z) {
  x = ramene(x) + DECALE, y = ramene(y) + DECALE, z = ramene(z) + DECALE;
  int ix = plancher(x), iy = plancher(y), iz = plancher(z);
  double fx = x - ix, fy = y - iy, fz = z - iz;
  double sx = courbe(fx), sy = courbe(fy), sz = courbe(fz);
  const std::uint16_t* h = bruit.hash;
  const double* r = bruit.rtable;
  // One corner's three values, from its entries and its offsets.
  auto coin = [r](int k, double ox, double oy, double oz, double* v) {
    const double* e = r + (k & 0xff);
    v[0] = e[0] + e[1] * ox + e[2] * oy + e[3] * oz;
    v[1] = e[4] + e[5] * ox + e[6] * oy + e[7] * oz;
    v[2] = e[8] + e[9] * ox + e[10] * oy + e[11] * oz;
  };
  int h0 = h[ix & 0xfff], h1 = h[(ix + 1) & 0xfff];
  int h00 = h[(h0 ^ iy) & 0xfff], h01 = h[(h0 ^ (iy + 1)) & 0xfff];
  int h10 = h[(h1 ^ iy) & 0xfff], h11 = h[(h1 ^ (iy + 1)) & 0xfff];
  double gx = fx - 1, gy = fy - 1, gz = fz - 1;
  double c000[3], c001[3], c010[3], c011[3], c100[3], c101[3], c110[3], c111[3];
  coin(h[(h00 ^ iz) & 0xfff], fx, fy, fz, c000);
  coin(h[(h00 ^ (iz + 1)) & 0xfff], fx, fy, gz, c001);
  coin(h[(h01 ^ iz) & 0xfff], fx, gy, fz, c010);
  coin(h[(h01 ^ (iz + 1)) & 0xfff], fx, gy, gz, c011);
  coin(h[(h10 ^ iz) & 0xfff], gx, fy, fz, c100);
  coin(h[(h10 ^ (iz + 1)) & 0xfff], gx, fy, gz, c101);
  coin(h[(h11 ^ iz) & 0xfff], gx, gy, fz, c110);
  coin(h[(h11 ^ (iz + 1)) & 0xfff], gx, gy, gz, c111);
  for (int c = 0; c < 3; ++c) {
    double a00 = c000[c] + sz * (c001[c] - c000[c]);
    double a01 = c010[c] + sz * (c011[c] - c010[c]);
    double a10 = c100[c] + sz * (c101[c] - c100[c]);
    double a11 = c110[c] + sz * (c111[c] - c110[c]);
    double a0 = a00 + sy * (a01 - a00), a1 = a10 + sy * (a11 - a10);
    out[c] = a0 + sx * (a1 - a0);
  }
}

void turbulence_vec(double* out, double x, double y, double z, double omega, double lambda, int octaves) {
  noise_vec(out, x, y, z);
  double f = lambda, a = omega, t[3];
  for (int i = 2; i <= octaves; ++i) {
    noise_vec(t, f * x, f * y, f * z);
    out[0] += a * t[0], out[1] += a * t[1], out[2] += a * t[2];
    if (i < octaves) f *= lambda, a *= omega;
  }
}
