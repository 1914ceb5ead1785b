// The 19 pigment evaluators. Each turns a point of object space into a
// value of 0..1 looked up in the pigment's colour map (or, for the tiled
// ones, into a stop of the map). Before the pattern, the point is scaled by
// `frequence` (0 stands for 1, so that a short list still shows its
// pattern) and, when `turbulence` is not zero, moved by that much of
// turbulence_vec(omega, lambda, octaves). Sines come from the table, as the
// noise does, so no evaluator calls a transcendental function.
//
//  1 bozo      smooth blobs: the first noise component
//  2 marble    veins: a sine across x bent by the turbulence
//  3 wood      rings around the y axis, bent by the noise
//  4 granite   sharp grain: 4 octaves of the noise's magnitude
//  5 agate     layered bands: the turbulence in a sine, sharpened
//  6 spots     round spots: the noise cut at a threshold
//  7 gradient  a ramp along x, repeating every 1/frequence
//  8 checker   cubes of side champs[0] in the map's two end colours
//  9 leopard   a lattice of dark rosettes: the product of three sines
// 10 onion     shells around a centre: champs[0..2] when given, else
//              (1, -1, -2) after scaling, off the origin so that a body
//              centred there (a sphere) still cuts the shells into rings;
//              each shell a band of the map, its edge bent a little by noise
// 11 ripples   rings from champs[0] centres, summed
// 12 waves     like ripples, each wave fading with the distance
// 13 cells     each unit cube one flat colour from the hash
// 14 radial    arms around the y axis: an angle without atan
// 15 spiral    arms turning with the distance from the axis
// 16 bricks    rows of bricks in the map's middle colour, mortar in its first
// 17 hexagons  three colours of a hexagonal tiling of the x-z plane
// 18 mandel    the Mandelbrot set in x-y: the escape time
// 19 clouds    the turbulence's magnitude
#include <cmath>

#include "display/display.h"
#include "image/image.h"

namespace {
// Every cast to an integer below is of a value known to fit: a value
// past these bounds (or not a number) counts as 0.
inline double frac(double x) {
  if (!(x > -1e15 && x < 1e15)) return 0;
  double f = x - static_cast<double>(static_cast<long long>(x));
  return f < 0 ? f + 1 : f;
}
// sin(2 pi t) from the table.
inline double sinus(double t) {
  double f = frac(t) * BRUIT_SINUS;
  int i = static_cast<int>(f);
  return bruit.sinus[i < BRUIT_SINUS ? i : BRUIT_SINUS - 1];
}
inline int plancher(double x) {
  if (!(x > -2e9 && x < 2e9)) return 0;
  int i = static_cast<int>(x);
  return x < i ? i - 1 : i;
}
// Coordinates are brought within +-1e8 before any cast to an integer.
inline double borne(double x) {
  if (!(x > -1e8 && x < 1e8)) return std::isfinite(x) ? std::fmod(x, 4096.0) : 0;
  return x;
}
inline double clamp01(double x) { return x > 0 ? (x < 1 ? x : 1) : 0; }

void carte(const Carte_coul* c, double t, float* rgb) {
  if (!c || c->n == 0) {
    rgb[0] = rgb[1] = rgb[2] = static_cast<float>(clamp01(t));
    return;
  }
  t = clamp01(t);
  if (t <= c->pos[0]) {
    rgb[0] = c->rgb[0][0], rgb[1] = c->rgb[0][1], rgb[2] = c->rgb[0][2];
    return;
  }
  for (int k = 1; k < c->n; ++k) {
    if (t <= c->pos[k]) {
      double l = c->pos[k] - c->pos[k - 1];
      double u = l > 0 ? (t - c->pos[k - 1]) / l : 1;
      for (int j = 0; j < 3; ++j)
        rgb[j] = static_cast<float>(c->rgb[k - 1][j] + u * (c->rgb[k][j] - c->rgb[k - 1][j]));
      return;
    }
  }
  const float* e = c->rgb[c->n - 1];
  rgb[0] = e[0], rgb[1] = e[1], rgb[2] = e[2];
}
inline void arret(const Carte_coul* c, int k, float* rgb) {
  if (!c || c->n == 0) {
    rgb[0] = rgb[1] = rgb[2] = k ? 1.f : 0.f;
    return;
  }
  k = k < 0 ? 0 : (k >= c->n ? c->n - 1 : k);
  rgb[0] = c->rgb[k][0], rgb[1] = c->rgb[k][1], rgb[2] = c->rgb[k][2];
}
// The pseudo-angle of (x, z) in 0..1 for a turn: monotone in the angle,
// with no call to atan.
inline double angle(double x, double z) {
  double a = std::fabs(x) + std::fabs(z);
  if (a == 0) return 0;
  double d = x / a;  // -1..1
  double t = z >= 0 ? (1 - d) : (3 + d);  // 0..4
  return t * 0.25;
}
inline double longueur(double x, double y, double z) { return std::sqrt(x * x + y * y + z * z); }
}  // namespace

void pigment_couleur(const Pigment& g, const float* pt, float* rgb) {
  if (g.type == -2) {
    // The texture form: the nearest pixel, the image repeated beyond 0..1.
    if (g.rgb) {
      double u = frac(borne(pt[0])), v = frac(borne(pt[1]));
      int x = std::min(g.rgb_l - 1, static_cast<int>(u * g.rgb_l));
      int y = std::min(g.rgb_h - 1, static_cast<int>(v * g.rgb_h));
      const std::uint8_t* q = g.rgb + 3 * (static_cast<std::size_t>(y) * g.rgb_l + x);
      rgb[0] = q[0] / 255.f, rgb[1] = q[1] / 255.f, rgb[2] = q[2] / 255.f;
      return;
    }
    if (!g.ima) {
      rgb[0] = rgb[1] = rgb[2] = 1;
      return;
    }
    int w = ima_l(g.ima), h = ima_h(g.ima);
    double u = frac(borne(pt[0])), v = frac(borne(pt[1]));
    int x = std::min(w - 1, static_cast<int>(u * w)), y = std::min(h - 1, static_cast<int>(v * h));
    const octet* r = ima_rouge(g.ima, y);
    rgb[0] = r[x] / 255.f, rgb[1] = r[w + x] / 255.f, rgb[2] = r[2 * w + x] / 255.f;
    return;
  }
  if (g.type < 0) {  // the colour form
    rgb[0] = g.coul[0], rgb[1] = g.coul[1], rgb[2] = g.coul[2];
    return;
  }
  if (!bruit.pret) Initialize_Noise();
  const double f = g.frequence != 0 ? g.frequence : 1.0;
  const double omega = g.omega, lambda = g.lambda != 0 ? g.lambda : 2.0;
  const int oct = g.octaves;
  double x = borne(pt[0] * f), y = borne(pt[1] * f), z = borne(pt[2] * f);
  const double* tu = g.turbulence;
  double t3[3] = {0, 0, 0};
  const bool turb = tu[0] != 0 || tu[1] != 0 || tu[2] != 0;
  if (turb) {
    turbulence_vec(t3, x, y, z, omega, lambda, oct);
    x = borne(x + tu[0] * t3[0]), y = borne(y + tu[1] * t3[1]), z = borne(z + tu[2] * t3[2]);
  }
  const double ph = g.phase;
  double n[3], v = 0;
  switch (g.type) {
    default:
    case 1:  // bozo
      noise_vec(n, x, y, z);
      v = 0.5 + 0.5 * n[0];
      break;
    case 2: {  // marble
      turbulence_vec(n, x, y, z, omega != 0 ? omega : 0.5, lambda, oct > 0 ? oct : 6);
      v = 0.5 + 0.5 * sinus(0.25 * x + 0.6 * n[0] + ph);
      break;
    }
    case 3: {  // wood
      noise_vec(n, 0.3 * x, 0.3 * y, 0.3 * z);
      double r = std::sqrt(x * x + z * z) + 0.3 * n[0];
      v = frac(r * 2 + ph);
      v = v < 0.7 ? v / 0.7 : (1 - v) / 0.3;
      break;
    }
    case 4: {  // granite
      double s = 0, a = 1, k = 4;
      for (int i = 0; i < 4; ++i, a *= 0.5, k *= 2) {
        noise_vec(n, k * x, k * y, k * z);
        s += a * std::fabs(n[0]);
      }
      v = s * 0.9;
      break;
    }
    case 5: {  // agate
      turbulence_vec(n, 1.2 * x, 1.2 * y, 1.2 * z, omega != 0 ? omega : 0.6, lambda, oct > 0 ? oct : 6);
      double s = 0.5 + 0.5 * sinus(0.5 * z + 1.5 * n[1] + ph);
      v = s * s * (3 - 2 * s);
      break;
    }
    case 6: {  // spots
      noise_vec(n, 1.5 * x, 1.5 * y, 1.5 * z);
      v = n[1] > 0.25 ? 1 : (n[1] > 0.15 ? (n[1] - 0.15) * 10 : 0);
      break;
    }
    case 7:  // gradient
      v = frac(x + ph);
      break;
    case 8: {  // checker
      double c = g.champs[0] != 0 ? g.champs[0] : 1;
      int k = plancher(x / c) + plancher(y / c) + plancher(z / c);
      arret(g.carte, (k & 1) ? (g.carte ? g.carte->n - 1 : 1) : 0, rgb);
      return;
    }
    case 9: {  // leopard
      double s = sinus(x * 0.5) * sinus(y * 0.5) * sinus(z * 0.5);
      v = clamp01(s * s * 4);
      break;
    }
    case 10: {  // onion
      const double* c = g.champs;
      const bool donne = c[0] != 0 || c[1] != 0 || c[2] != 0;
      const double cx = donne ? c[0] : 1, cy = donne ? c[1] : -1, cz = donne ? c[2] : -2;
      noise_vec(n, x, y, z);
      double s = frac(2 * longueur(x - cx, y - cy, z - cz) + 0.15 * n[2] + ph);
      // Thin dark skins between thick layers.
      v = s < 0.85 ? s / 0.85 : (1 - s) / 0.15 * 0.3;
      break;
    }
    case 11:
    case 12: {  // ripples, waves
      int m = static_cast<int>(g.champs[0] > 0 && g.champs[0] < 10 ? g.champs[0] : 3);
      double s = 0;
      for (int i = 0; i < m; ++i) {
        const double* c = bruit.vecteurs[i];
        double d = longueur(x - 3 * c[0], y - 3 * c[1], z - 3 * c[2]);
        double w = sinus(d + ph);
        s += g.type == 12 ? w / (1 + 0.5 * d) : w;
      }
      v = 0.5 + 0.5 * s / m * (g.type == 12 ? 2 : 1);
      break;
    }
    case 13: {  // cells
      int a = plancher(x) & 0xfff, b = plancher(y) & 0xfff, c = plancher(z) & 0xfff;
      int h = bruit.hash[(bruit.hash[(bruit.hash[a] ^ b) & 0xfff] ^ c) & 0xfff];
      v = (h & 0xff) / 255.0;
      break;
    }
    case 14: {  // radial
      double bras = g.champs[0] != 0 ? g.champs[0] : 6;
      v = 0.5 + 0.5 * sinus(angle(x, z) * bras + ph);
      break;
    }
    case 15: {  // spiral
      double bras = g.champs[0] != 0 ? g.champs[0] : 6;
      v = frac(angle(x, z) * bras + std::sqrt(x * x + z * z) + ph);
      break;
    }
    case 16: {  // bricks: 2 x 1 x 1 with every other row shifted by half
      double m = g.champs[0] != 0 ? std::fabs(g.champs[0]) : 0.08;
      double ly = y;
      int row = plancher(ly);
      double bx = x * 0.5 + (row & 1 ? 0.5 : 0), bz = z * 0.5 + (row & 1 ? 0.5 : 0);
      double fy = frac(ly), fx = frac(bx), fz = frac(bz);
      bool joint = fy < m || fx < m * 0.5 || fz < m * 0.5;
      noise_vec(n, x * 3, y * 3, z * 3);
      if (joint) {
        arret(g.carte, 0, rgb);
      } else {
        carte(g.carte, 0.45 + 0.15 * n[0], rgb);
      }
      return;
    }
    case 17: {  // hexagons: axial coordinates of the cell
      double c = g.champs[0] != 0 ? std::fabs(g.champs[0]) : 1;
      double q = (x * 0.57735026919 - z / 3.0) / c, r = (z * 2.0 / 3.0) / c;
      double s = -q - r;
      double rq = std::round(q), rr = std::round(r), rs = std::round(s);
      double dq = std::fabs(rq - q), dr = std::fabs(rr - r), ds = std::fabs(rs - s);
      if (dq > dr && dq > ds) rq = -rr - rs;
      else if (dr > ds) rr = -rq - rs;
      long k = std::fabs(rq - rr) < 1e15 ? static_cast<long>(rq - rr) : 0;
      int i = static_cast<int>(((k % 3) + 3) % 3);
      int nm = g.carte ? g.carte->n : 2;
      arret(g.carte, nm >= 3 ? i * (nm - 1) / 2 : (i & 1), rgb);
      return;
    }
    case 18: {  // mandel
      int it = static_cast<int>(g.champs[0] > 0 && g.champs[0] < 1000 ? g.champs[0] : 48);
      double cr = x * 0.5 - 0.5, ci = y * 0.5, a = 0, b = 0;
      int i = 0;
      for (; i < it && a * a + b * b < 4; ++i) {
        double t = a * a - b * b + cr;
        b = 2 * a * b + ci;
        a = t;
      }
      v = i >= it ? 0 : static_cast<double>(i) / it;
      v = std::sqrt(v);
      break;
    }
    case 19: {  // clouds
      turbulence_vec(n, x, y, z, omega != 0 ? omega : 0.5, lambda, oct > 0 ? oct : 6);
      v = clamp01(longueur(n[0], n[1], n[2]) * 0.6);
      break;
    }
  }
  carte(g.carte, v, rgb);
}

void pigments_couleur(const Pigment* g, int n, const float* p, float* rgb) {
  rgb[0] = rgb[1] = rgb[2] = 1;
  for (int i = 0; i < n; ++i) {
    float c[3];
    pigment_couleur(g[i], p, c);
    if (i == 0) {
      rgb[0] = c[0], rgb[1] = c[1], rgb[2] = c[2];
      continue;
    }
    float a = static_cast<float>(clamp01(g[i].rapports[0]));
    for (int k = 0; k < 3; ++k) rgb[k] += a * (c[k] - rgb[k]);
  }
}
