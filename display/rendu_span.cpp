// Scan conversion of one triangle into the working image: rows and pixels
// whose centres fall inside, left edges in and right edges out, as OpenGL
// fills, so that both engines cover the same pixels. Every interpolated
// value is a plane over the window: its start at the first pixel of a span
// and one step per pixel. The span loops are built per depth mode, kind of
// shading and blending, so that a pixel costs its depth test and its write
// and nothing else.
#include <algorithm>
#include <bit>
#include <cmath>

#include "display/rendu_interne.h"

namespace {
// A pixel index from a float bound, 0..max; NaN gives 0.
inline int borne(float x, int max) { return x > 0 ? (x < static_cast<float>(max) ? static_cast<int>(x) : max) : 0; }

// The 16-bit depth of an eye distance: the float's bits above the first
// `z_dec`, from those of the near plane; everything nearer is 0 and
// everything past the range just short of the far value, so that it is
// still drawn.
inline std::int16_t zbuf_court(float d, const Trace& t) {
  const std::uint32_t b = std::bit_cast<std::uint32_t>(d > t.z_proche ? d : t.z_proche);
  const std::uint32_t q = (b - std::bit_cast<std::uint32_t>(t.z_proche)) >> t.z_dec;
  return static_cast<std::int16_t>(q < ZB_COURT_LOIN - 1u ? q : ZB_COURT_LOIN - 1u);
}

inline octet niveau(float x) { return static_cast<octet>(std::min(255.f, std::max(0.f, x))); }

inline void melange(octet* p, float c, float a) { *p = niveau(*p + (c - *p) * a + 0.5f); }

// Number of interpolated values besides depth: per-pixel lighting carries
// the eye position, the normal and the diffuse colour.
template <int SH> constexpr int NA = SH == TRI_PLAT ? 0 : SH == TRI_GOURAUD ? 3 : SH == TRI_PIXEL ? 9 : 12;

template <int SH>
void valeurs(const Pt& p, float* a) {
  if constexpr (SH == TRI_GOURAUD) {
    a[0] = p.k[0], a[1] = p.k[1], a[2] = p.k[2];
  } else if constexpr (SH == TRI_PIXEL) {
    for (int i = 0; i < 3; ++i) a[i] = p.e[i], a[3 + i] = p.n[i], a[6 + i] = p.k[i];
  } else if constexpr (SH == TRI_PIGMENT) {
    for (int i = 0; i < 3; ++i) a[i] = p.e[i], a[3 + i] = p.n[i], a[6 + i] = p.k[i], a[9 + i] = p.pad[i];
  }
}

template <int ZM, int SH, bool BL>
void tri(const Pt& pa, const Pt& pb, const Pt& pc, const Trace& t) {
  // Depth first. The 16-bit buffer holds the eye distance on a scale of
  // equal ratios (see zbuf_echelle): the window depth of a perspective
  // crowds a scene at a thousand units into its last few thousandths,
  // where 16 bits cannot tell a face from the one behind it. The distance
  // is interpolated with the perspective, as d/w and 1/w (the last value).
  constexpr int N = NA<SH> + (ZM == 1 ? 2 : 1);
  const Pt* v[3] = {&pa, &pb, &pc};
  if (v[1]->s[1] < v[0]->s[1]) std::swap(v[0], v[1]);
  if (v[2]->s[1] < v[1]->s[1]) std::swap(v[1], v[2]);
  if (v[1]->s[1] < v[0]->s[1]) std::swap(v[0], v[1]);
  const float x0 = v[0]->s[0], y0 = v[0]->s[1], x1 = v[1]->s[0], y1 = v[1]->s[1], x2 = v[2]->s[0], y2 = v[2]->s[1];
  const float aire = (x1 - x0) * (y2 - y0) - (x2 - x0) * (y1 - y0);
  if (!(std::fabs(aire) > 1e-12f) || !std::isfinite(aire)) return;  // no area: nothing is covered
  const float inv = 1 / aire;
  float a[3][N], dx[N], dy[N];
  for (int k = 0; k < 3; ++k) {
    if constexpr (ZM == 1) {
      const float iw = 1 / std::max(v[k]->c[3], 1e-7f);
      a[k][0] = -v[k]->e[2] * iw;
      a[k][N - 1] = iw;
    } else {
      a[k][0] = v[k]->s[2];
    }
    valeurs<SH>(*v[k], a[k] + 1);
  }
  for (int j = 0; j < N; ++j) {
    float d1 = a[1][j] - a[0][j], d2 = a[2][j] - a[0][j];
    dx[j] = (d1 * (y2 - y0) - d2 * (y1 - y0)) * inv;
    dy[j] = (d2 * (x1 - x0) - d1 * (x2 - x0)) * inv;
  }
  const int ys = borne(std::ceil(y0 - 0.5f), t.h);
  const int ye = borne(std::ceil(y2 - 0.5f), t.h);
  const float pl = y2 > y0 ? (x2 - x0) / (y2 - y0) : 0;
  const float p01 = y1 > y0 ? (x1 - x0) / (y1 - y0) : 0;
  const float p12 = y2 > y1 ? (x2 - x1) / (y2 - y1) : 0;
  const long l = t.l;
  octet* const base = ima_octets(t.ima);
  float col[3] = {t.coul[0] + 0.5f, t.coul[1] + 0.5f, t.coul[2] + 0.5f};
  for (int y = ys; y < ye; ++y) {
    const float yc = y + 0.5f;
    float xa = x0 + (yc - y0) * pl;
    float xb = yc < y1 ? x0 + (yc - y0) * p01 : x1 + (yc - y1) * p12;
    if (xb < xa) std::swap(xa, xb);
    const int xs = borne(std::ceil(xa - 0.5f), t.l);
    const int xe = borne(std::ceil(xb - 0.5f), t.l);
    if (xs >= xe) continue;
    float c[N];
    const float ox = xs + 0.5f - x0, oy = yc - y0;
    for (int j = 0; j < N; ++j) c[j] = a[0][j] + dx[j] * ox + dy[j] * oy;
    octet* r = base + 3 * l * y;
    octet* g = r + l;
    octet* b = g + l;
    std::int16_t* zc = ZM == 1 ? zb.court.get() + l * y : nullptr;
    float* zf = ZM == 2 ? zb.flot.get() + l * y : nullptr;
    for (int x = xs; x < xe; ++x) {
      bool ecrire = true;
      if constexpr (ZM == 1) {
        std::int16_t z = zbuf_court(c[0] / c[N - 1], t);
        ecrire = z < zc[x];
        if (ecrire) zc[x] = z;
      } else if constexpr (ZM == 2) {
        ecrire = c[0] < zf[x];
        if (ecrire) zf[x] = c[0];
      }
      if (ecrire) {
        if constexpr (SH == TRI_GOURAUD) {
          col[0] = c[1] + 0.5f, col[1] = c[2] + 0.5f, col[2] = c[3] + 0.5f;
        } else if constexpr (SH == TRI_PIXEL || SH == TRI_PIGMENT) {
          float n[3] = {c[4], c[5], c[6]};
          float m2 = n[0] * n[0] + n[1] * n[1] + n[2] * n[2];
          if (m2 > 0.0001f) {
            float im = 1 / std::sqrt(m2);
            n[0] *= im, n[1] *= im, n[2] *= im;
          }
          if constexpr (SH == TRI_PIGMENT) {
            // The depth interpolates linearly on the screen, so the point
            // of object space is the plane's value there, as the colours.
            float kd[3];
            pigments_couleur(t.pig, t.n_pig, c + 10, kd);
            kd[0] *= c[7], kd[1] *= c[8], kd[2] *= c[9];
            eclaire(c + 1, n, kd, *t.ecl, col);
          } else {
            eclaire(c + 1, n, c + 7, *t.ecl, col);
          }
          col[0] += 0.5f, col[1] += 0.5f, col[2] += 0.5f;
        }
        if constexpr (BL) {
          melange(r + x, col[0] - 0.5f, t.alpha), melange(g + x, col[1] - 0.5f, t.alpha);
          melange(b + x, col[2] - 0.5f, t.alpha);
        } else {
          r[x] = niveau(col[0]), g[x] = niveau(col[1]), b[x] = niveau(col[2]);
        }
      }
      for (int j = 0; j < N; ++j) c[j] += dx[j];
    }
  }
}

template <int ZM, int SH>
constexpr FnTri choix(bool bl) { return bl ? tri<ZM, SH, true> : tri<ZM, SH, false>; }
template <int ZM>
constexpr FnTri choix(int sh, bool bl) {
  return sh == TRI_PLAT      ? choix<ZM, TRI_PLAT>(bl)
         : sh == TRI_GOURAUD ? choix<ZM, TRI_GOURAUD>(bl)
         : sh == TRI_PIXEL   ? choix<ZM, TRI_PIXEL>(bl)
                             : choix<ZM, TRI_PIGMENT>(bl);
}
}  // namespace

FnTri triangle_choisi(int sorte, const Trace& t) {
  bool bl = t.alpha < 1.f;
  return t.zmode == 1 ? choix<1>(sorte, bl) : t.zmode == 2 ? choix<2>(sorte, bl) : choix<0>(sorte, bl);
}
