// Generators that the command generer reaches besides the derived data every
// display needs: boxes of groups of vertices and of the lines of a grid,
// weights of the vertices, and the surface stretched over lines.
//
// Box records are 6 floats: least x, y, z then greatest x, y, z. A box
// table is a BLOC_REEL of one row of 6 per group, in the order of the
// vertices. Weights are one float per vertex.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <vector>

#include "geom/commande_interne.h"

namespace {
constexpr int B_TRAIT = 76;  // the lines of a grid, as opposed to b77 its columns

// Box of the vertices premier, premier + pas, ... (k of them).
void boite_pas(const reel* s, int d, long premier, long pas, long k, float* b) {
  for (int a = 0; a < 3; ++a) b[a] = FLT_MAX, b[3 + a] = -FLT_MAX;
  for (long j = 0; j < k; ++j) {
    const reel* p = s + (premier + j * pas) * d;
    for (int a = 0; a < 3; ++a) b[a] = std::min(b[a], p[a]), b[3 + a] = std::max(b[3 + a], p[a]);
  }
}

reel* sommets(Objet* o, int* n, int* d) {
  reel* s = vol_som(o, n, d);
  if (!s || *n < 1) geom_erreur_valeur(o->numero, MES_NUL);
  return s && *n > 0 ? s : nullptr;
}
}  // namespace

mot* gen_boite_sommets(Objet* o, int precision) {
  int n, d;
  reel* s = sommets(o, &n, &d);
  if (!s) return nullptr;
  long p = std::max(precision, 1);
  long nb = (n + p - 1) / p;  // the last group may be shorter
  const mot cle[] = {1, B_BOITE, 1, B_SOMMET};
  return reels_generes(o, 2, cle, nb, 6, [&](reel* out) {
    for (long g = 0; g < nb; ++g) boite_pas(s, d, g * p, 1, std::min(p, n - g * p), out + g * 6);
  });
}

mot* gen_boite_lignes(Objet* o, bool colonnes) {
  int n, d;
  reel* s = sommets(o, &n, &d);
  if (!s) return nullptr;
  // A grid's row holds nx + 1 vertices (nx when closed); anything else is
  // one line. Vertices past the last whole row make a shorter last row.
  long lg = vol_nx(o) > 0 ? vol_nx(o) + (vol_ferme(o) ? 0 : 1) : n;
  lg = std::clamp(lg, 1L, static_cast<long>(n));
  long rangs = (n + lg - 1) / lg;
  const mot cle[] = {1, B_BOITE, 1, colonnes ? B_BORNES : B_TRAIT};
  long nb = colonnes ? lg : rangs;
  return reels_generes(o, 2, cle, nb, 6, [&](reel* out) {
    for (long g = 0; g < nb; ++g) {
      if (colonnes)  // column g: vertices g, g + lg, ... below n
        boite_pas(s, d, g, lg, (n - g + lg - 1) / lg, out + g * 6);
      else
        boite_pas(s, d, g * lg, 1, std::min(lg, n - g * lg), out + g * 6);
    }
  });
}

mot* gen_poids_sommets(Objet* o) {
  int n, d;
  reel* s = sommets(o, &n, &d);
  if (!s) return nullptr;
  mot* fac = vol_fac(o);
  if (fac && fac_verifie(fac, n)) return nullptr;
  // Each face shares its area equally among its vertices; a volume with no
  // faces is a cloud of points of weight 1.
  return reels_generes(o, 2, CLE_POIDS, n, 1, [&](reel* w) {
    std::fill(w, w + n, fac && fac[2] > 0 ? 0.f : 1.f);
    if (!fac) return;
    pour_faces(fac, [&](int, const mot* c, int k) {
      if (k < 3) return;
      double a[3] = {0, 0, 0};
      for (int j = 0; j < k; ++j) {
        const reel* p = s + static_cast<long>(c[j] - 1) * d;
        const reel* q = s + static_cast<long>(c[(j + 1) % k] - 1) * d;
        a[0] += static_cast<double>(p[1]) * q[2] - static_cast<double>(p[2]) * q[1];
        a[1] += static_cast<double>(p[2]) * q[0] - static_cast<double>(p[0]) * q[2];
        a[2] += static_cast<double>(p[0]) * q[1] - static_cast<double>(p[1]) * q[0];
      }
      double part = 0.5 * std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]) / k;
      for (int j = 0; j < k; ++j) w[c[j] - 1] += static_cast<float>(part);
    });
  });
}

int gen_nappe(Objet* o, std::span<Objet* const> lignes) {
  if (lignes.empty()) return geom_erreur_valeur(o->numero, MES_NUL);
  int n0 = -1;
  for (Objet* l : lignes) {
    int n, d;
    if (!sommets(l, &n, &d)) return -1;
    if (n0 >= 0 && n != n0) {
      std::printf("objet_incoherent\n");
      return -1;
    }
    n0 = n;
  }
  int nx = n0 - 1, ny = static_cast<int>(lignes.size()) - 1;
  if (nx > 32767 || ny > 32767) return geom_erreur_valeur(std::max(nx, ny), MES_DEBORDEMENT);
  if (3L * n0 * (ny + 1) + 10 > 0x7fffffffL) return geom_erreur_valeur(3L * n0 * (ny + 1), MES_DEBORDEMENT);
  std::vector<float> v;
  v.reserve(3 * static_cast<std::size_t>(n0) * lignes.size());
  for (Objet* l : lignes) {
    int n, d;
    reel* s = vol_som(l, &n, &d);
    for (int i = 0; i < n; ++i) v.insert(v.end(), s + static_cast<long>(i) * d, s + static_cast<long>(i) * d + 3);
  }
  mot* f = gen_fac_ouvert(nx, ny, 0);
  if (!f) return -1;
  vol_grille_fixe(o, B_GRILLE, nx, ny, 0, 0);
  int r = vol_som_ecrit(o, v.data(), n0 * (ny + 1), 3);
  if (r == 0) r = vol_fac_ecrit(o, f + 6);
  bloc_libere(f);
  return r;
}
