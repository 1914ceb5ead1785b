// Texture coordinates of a volume's faces, two floats per corner in the
// walk of the face list (the first contour of each face, as drawn).
//
// A grid takes its coordinates from each vertex's place in the grid, so
// that one image covers the whole grid; any other form maps each face on
// its own, from the rectangle that bounds it in its plane, so that every
// face shows the whole image. A (b54) that holds, after the image number,
// two floats for each vertex gives the coordinates itself.
#include <cmath>
#include <vector>

#include "display/display.h"
#include "geom/geom.h"

namespace {
constexpr int B_TEX = 54;

// The corners' coordinates from per-vertex ones.
int par_sommet(Objet* o, const std::vector<float>& uv, int ns, std::vector<float>& out) {
  const mot* fac = vol_fac(o);
  if (!fac) return -1;
  const mot* f = fac + 4;
  for (int i = 0; i < fac[2]; ++i, f = face_suivante(f)) {
    int k;
    const mot* c = face_contour(f, &k);
    for (int j = 0; j < k; ++j) {
      int s = c[j] - 1;
      bool ok = s >= 0 && s < ns;
      out.push_back(ok ? uv[2 * s] : 0);
      out.push_back(ok ? uv[2 * s + 1] : 0);
    }
  }
  return 0;
}
}  // namespace

int gen_mappe_som_vol(Objet* o, int nx, int ny, std::vector<float>& out) {
  int ns, d;
  if (!vol_som(o, &ns, &d) || nx < 1 || ny < 1) return -1;
  std::vector<float> uv(2 * static_cast<std::size_t>(ns));
  for (int i = 0; i < ns; ++i) {
    int a = i % nx, b = (i / nx) % ny;
    uv[2 * i] = nx > 1 ? static_cast<float>(a) / static_cast<float>(nx - 1) : 0.f;
    uv[2 * i + 1] = ny > 1 ? static_cast<float>(b) / static_cast<float>(ny - 1) : 0.f;
  }
  return par_sommet(o, uv, ns, out);
}

int det_mappe_som_vol(Objet* o, int mode, std::vector<float>& out) {
  int ns, d;
  const float* s = vol_som(o, &ns, &d);
  const mot* fac = vol_fac(o);
  if (!s || !fac || mode != 1) return -1;
  const mot* f = fac + 4;
  for (int i = 0; i < fac[2]; ++i, f = face_suivante(f)) {
    int k;
    const mot* c = face_contour(f, &k);
    auto p = [&](int j) {
      int v = c[j] - 1;
      return (v >= 0 && v < ns) ? s + static_cast<std::ptrdiff_t>(v) * d : s;
    };
    // The face's plane: Newell's normal, the first side as the u axis.
    double n[3] = {0, 0, 0};
    for (int j = 0; j < k; ++j) {
      const float *a = p(j), *b = p((j + 1) % k);
      n[0] += (a[1] - b[1]) * (a[2] + b[2]);
      n[1] += (a[2] - b[2]) * (a[0] + b[0]);
      n[2] += (a[0] - b[0]) * (a[1] + b[1]);
    }
    double u[3] = {0, 0, 0};
    for (int j = 1; j < k && u[0] * u[0] + u[1] * u[1] + u[2] * u[2] <= SEUIL_NORME; ++j)
      for (int m = 0; m < 3; ++m) u[m] = p(j)[m] - p(0)[m];
    double lu = std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
    double ln = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (lu * lu > SEUIL_NORME) u[0] /= lu, u[1] /= lu, u[2] /= lu;
    if (ln * ln > SEUIL_NORME) n[0] /= ln, n[1] /= ln, n[2] /= ln;
    double v[3] = {n[1] * u[2] - n[2] * u[1], n[2] * u[0] - n[0] * u[2], n[0] * u[1] - n[1] * u[0]};
    std::size_t debut = out.size();
    double mini[2] = {1e300, 1e300}, maxi[2] = {-1e300, -1e300};
    for (int j = 0; j < k; ++j) {
      const float* q = p(j);
      double e[3] = {q[0] - p(0)[0], q[1] - p(0)[1], q[2] - p(0)[2]};
      double a = e[0] * u[0] + e[1] * u[1] + e[2] * u[2], b = e[0] * v[0] + e[1] * v[1] + e[2] * v[2];
      out.push_back(static_cast<float>(a));
      out.push_back(static_cast<float>(b));
      mini[0] = std::min(mini[0], a), maxi[0] = std::max(maxi[0], a);
      mini[1] = std::min(mini[1], b), maxi[1] = std::max(maxi[1], b);
    }
    for (std::size_t j = debut; j < out.size(); ++j) {
      int m = (j - debut) & 1;
      double l = maxi[m] - mini[m];
      double t = l > 1e-30 ? (out[j] - mini[m]) / l : 0;
      out[j] = std::isfinite(t) ? static_cast<float>(t) : 0.f;
    }
  }
  return 0;
}

int vol_mappe(Objet* o, std::vector<float>& out, int* image) {
  const mot cle[2] = {1, B_TEX}, k2[4] = {1, B_TEX, 1, B_FAC}, k3[4] = {1, B_FAC, 1, B_TEX};
  const mot* v = vol_valeur(o, 1, cle);
  out.clear();
  *image = 0;
  // A list by face alone needs the coordinates as much as the volume's.
  if (!v && !vol_valeur(o, 2, k2) && !vol_valeur(o, 2, k3)) return 1;
  bool reel = v && v[1] == BLOC_REEL && v[0] >= 5;
  if (reel) {
    float x = lit_reel(v + 4);
    *image = std::isfinite(x) && std::fabs(x) < 1e9f ? static_cast<int>(x) : 0;
  }
  int ns, d;
  vol_som(o, &ns, &d);
  long n = reel ? v[0] - 5 : 0;
  if (ns > 0 && n == 2L * ns) {
    std::vector<float> uv(static_cast<std::size_t>(n));
    for (long i = 0; i < n; ++i) uv[i] = lit_reel(v + 5 + i);
    return par_sommet(o, uv, ns, out);
  }
  if (forme_grille(vol_forme(o)) && vol_nx(o) > 0 && vol_ny(o) > 0)
    return gen_mappe_som_vol(o, vol_nx(o), vol_ny(o), out);
  return det_mappe_som_vol(o, 1, out);
}
