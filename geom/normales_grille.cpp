// Normals of grid forms, found by the position in the grid instead of the
// face list and the per-vertex table. They give the same floats as the
// general generators on the grid's faces: same contour order, same sums in
// the same order.
#include <algorithm>

#include "geom/interne.h"
#include "geom/newell.h"

void normales_fac_grille(const reel* som, int d, int nx, int ny, int ferme, int p, reel* out) {
  int cx = nx <= 0 ? 0 : std::max(1, nx / p);
  int cy = ny <= 0 ? 0 : std::max(1, ny / p);
  if (ferme && cx < 2) return;  // one column closed on itself has no face
  long ligne = ferme ? nx : nx + 1;  // fine vertices a row
  float centre[3];
  for (int j = 0; j < cy; ++j) {
    const reel* r0 = som + static_cast<long>(j) * p * ligne * d;
    const reel* r1 = r0 + static_cast<long>(p) * ligne * d;
    for (int i = 0; i < cx; ++i) {
      long a = static_cast<long>(i) * p * d;
      long b = (i + 1 == cx && ferme) ? 0 : a + static_cast<long>(p) * d;
      const reel* v[4] = {r0 + a, r0 + b, r1 + b, r1 + a};
      newell(4, [&](int k) { return v[k]; }, out, centre);
      out += 3;
    }
  }
}

namespace {
inline void ajoute(double* s, const reel* n) {
  s[0] += n[0];
  s[1] += n[1];
  s[2] += n[2];
}
}  // namespace

void normales_som_grille(const reel* nf, int nx, int ny, int ferme, reel* out, int pas) {
  int ligne = ferme ? nx : nx + 1;
  int colonnes = ferme ? (nx < 2 ? 0 : nx) : nx;  // faces a row
  for (int j = 0; j <= ny; ++j) {
    // The faces above the row come before those below it in face order.
    const reel* haut = j > 0 ? nf + 3L * (j - 1) * colonnes : nullptr;
    const reel* bas = j < ny ? nf + 3L * j * colonnes : nullptr;
    for (int i = 0; i < ligne; ++i, out += pas) {
      // Columns of the faces left and right of the vertex, in face order.
      int c[2], n = 0;
      if (colonnes == 0) {
      } else if (ferme) {
        int g = i == 0 ? colonnes - 1 : i - 1;
        c[0] = std::min(g, i);
        c[1] = std::max(g, i);
        n = 2;
      } else {
        if (i > 0) c[n++] = i - 1;
        if (i < nx) c[n++] = i;
      }
      double s[3] = {0, 0, 0};
      if (haut)
        for (int k = 0; k < n; ++k) ajoute(s, haut + 3 * c[k]);
      if (bas)
        for (int k = 0; k < n; ++k) ajoute(s, bas + 3 * c[k]);
      normer_d(s, out);
    }
  }
}
