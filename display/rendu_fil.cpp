// Lines, point squares and vertex numbers of the software renderer, in one
// colour with no depth: the wire path and the point modes.
#include <algorithm>
#include <cmath>

#include "display/rendu_interne.h"

namespace {
inline void pixel(const Trace& t, int x, int y, const octet* c) {
  octet* r = ima_octets(t.ima) + 3L * t.l * y + x;
  r[0] = c[0];
  r[t.l] = c[1];
  r[2L * t.l] = c[2];
}

void niveaux(const float* coul, octet* c) {
  for (int k = 0; k < 3; ++k) c[k] = static_cast<octet>(std::min(255.f, std::max(0.f, coul[k] + 0.5f)));
}

// Digits 0-9 and '-' in 3 x 5 cells, one row of 3 bits per entry, top first.
constexpr unsigned char CHIFFRES[11][5] = {
    {7, 5, 5, 5, 7}, {2, 6, 2, 2, 7}, {7, 1, 7, 4, 7}, {7, 1, 7, 1, 7}, {5, 5, 7, 1, 1}, {7, 4, 7, 1, 7},
    {7, 4, 7, 5, 7}, {7, 1, 1, 1, 1}, {7, 5, 7, 5, 7}, {7, 5, 7, 1, 7}, {0, 0, 7, 0, 0}};
}  // namespace

void ligne(const Trace& t, float x0, float y0, float x1, float y1, const float* coul) {
  // Clip to the image's rectangle (Liang-Barsky), then one pixel per step
  // along the longer axis.
  if (!std::isfinite(x0 + y0 + x1 + y1)) return;
  float u0 = 0, u1 = 1, dx = x1 - x0, dy = y1 - y0;
  const float bords[4][2] = {{-dx, x0}, {dx, t.l - x0}, {-dy, y0}, {dy, t.h - y0}};
  for (auto& b : bords) {
    float p = b[0], q = b[1];
    if (p == 0) {
      if (q < 0) return;
    } else {
      float u = q / p;
      if (p < 0) u0 = std::max(u0, u);
      else u1 = std::min(u1, u);
    }
  }
  if (!(u0 <= u1)) return;
  float ax = x0 + u0 * dx, ay = y0 + u0 * dy, bx = x0 + u1 * dx, by = y0 + u1 * dy;
  octet c[3];
  niveaux(coul, c);
  float lx = bx - ax, ly = by - ay;
  int n = static_cast<int>(std::ceil(std::max(std::fabs(lx), std::fabs(ly))));
  if (n < 1) n = 1;
  float sx = lx / n, sy = ly / n;
  for (int k = 0; k <= n; ++k) {
    int x = std::clamp(static_cast<int>(ax + k * sx), 0, t.l - 1);
    int y = std::clamp(static_cast<int>(ay + k * sy), 0, t.h - 1);
    pixel(t, x, y, c);
  }
}

void carre(const Trace& t, float x, float y, int cote, const float* coul) {
  if (cote < 1) cote = 1;
  float fx = std::floor(x - cote * 0.5f + 0.5f), fy = std::floor(y - cote * 0.5f + 0.5f);
  if (!(fx > -cote && fx < t.l && fy > -cote && fy < t.h)) return;
  int x0 = static_cast<int>(fx), y0 = static_cast<int>(fy);
  octet c[3];
  niveaux(coul, c);
  for (int j = std::max(0, y0); j < std::min(t.h, y0 + cote); ++j)
    for (int i = std::max(0, x0); i < std::min(t.l, x0 + cote); ++i) pixel(t, i, j, c);
}

void numero(const Trace& t, int x, int y, long n, const float* coul) {
  char txt[24];
  int k = 0;
  bool neg = n < 0;
  unsigned long u = neg ? 0UL - static_cast<unsigned long>(n) : static_cast<unsigned long>(n);
  do txt[k++] = static_cast<char>(u % 10); while ((u /= 10) && k < 22);
  if (neg) txt[k++] = 10;
  octet c[3];
  niveaux(coul, c);
  // Left to right: the digits were made from the lowest.
  for (int i = k - 1, px = x; i >= 0; --i, px += 4)
    for (int r = 0; r < 5; ++r)
      for (int b = 0; b < 3; ++b) {
        int xx = px + b, yy = y + 4 - r;
        if (CHIFFRES[static_cast<int>(txt[i])][r] & (4 >> b) && xx >= 0 && xx < t.l && yy >= 0 && yy < t.h)
          pixel(t, xx, yy, c);
      }
}
