// Points of the drawing orders placed as the software engine places
// vertices: through the eye's view matrix, then its projection and the
// viewport of the working image (oeil_matrices, the same matrices that the
// OpenGL projection builds).
// A divisor within +-1e-7 is taken as 1: a vertex in the eye's plane gives
// a far but finite point, never a division by zero.
#include <cmath>

#include "display/aff_interne.h"
#include "display/oeil.h"

namespace {
void applique(const float m[16], const float in[4], float out[4]) {
  for (int l = 0; l < 4; ++l)
    out[l] = m[l] * in[0] + m[4 + l] * in[1] + m[8 + l] * in[2] + m[12 + l] * in[3];
}
}  // namespace

void aff_projette(const float* som, int n, int d, int dimx, int dimy, float* sortie) {
  float vue[16], proj[16];
  oeil_matrices(dimx, dimy, vue, proj);
  for (int i = 0; i < n; ++i) {
    const float* s = som + static_cast<long>(i) * d;
    float p[4] = {s[0], s[1], s[2], 1.f};
    float t[4], c[4];
    applique(vue, p, t);
    applique(proj, t, c);
    float w = std::fabs(c[3]) <= 1e-7f ? 1.f : c[3];
    float* o = sortie + static_cast<long>(i) * PROJ_PAS;
    o[0] = t[0], o[1] = t[1], o[2] = t[2], o[3] = c[3];
    o[4] = (c[0] / w + 1.f) * 0.5f * static_cast<float>(dimx);
    o[5] = (c[1] / w + 1.f) * 0.5f * static_cast<float>(dimy);
    o[6] = (c[2] / w + 1.f) * 0.5f;
  }
}

bool aff_nombres(const mot* v, std::vector<float>& x) {
  x.clear();
  if (!v) return false;
  if (v[0] == BLOC_REEL) {
    x.push_back(lit_reel(v + 1));
    return true;
  }
  if (v[0] == BLOC_ENTIER) {
    x.push_back(static_cast<float>(v[1]));
    return true;
  }
  // Nothing given: no numbers.
  if (v[0] == BLOC_NIL || (v[0] >= 4 && v[1] == BLOC_NIL)) return true;
  if (v[0] < 4) return false;
  if (v[1] == BLOC_REEL) {
    x.assign(reels(v + 4), reels(v + 4) + (v[0] - 4));
    return true;
  }
  if (v[1] == BLOC_ENTIER) {
    for (const mot* p = v + 4; p < v + v[0]; ++p) x.push_back(static_cast<float>(*p));
    return true;
  }
  return false;
}
