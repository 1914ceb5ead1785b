// Working grids of the live scene: the faces, edges, neighbours and normals
// of an nx by ny grid of its own, and the finer grid sampled from a smooth
// surface's net.
//
// A `Grille_inter` owns all its blocks. Its vertices are 3 floats each,
// row after row: a row holds nx + 1 vertices (nx when closed) and there are
// ny + 1 rows. Faces, edges and neighbours are those of that grid, numbered
// from 1, and never change; the normals follow the vertices. A sampled grid
// keeps the basis weights of its sample columns and rows, made once, and a
// copy of the net it was last sampled from.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

#include "anim/interne.h"
#include "geom/geom.h"

namespace {
void bloc_reel(mot* b, mot lg, int nl, int nc) {
  b[0] = lg, b[1] = BLOC_REEL, b[2] = nl, b[3] = nc;
}

// Cubic (or lower when the net is short) B-spline basis over clamped
// uniform knots, at u in 0..1: n values into b.
void base_bspline(int n, float u, double* b) {
  const int ordre = std::min(4, n);
  std::vector<double> k(static_cast<std::size_t>(n) + ordre);
  const int spans = n - ordre + 1;
  for (int i = 0; i < n + ordre; ++i)
    k[i] = i < ordre ? 0.0 : (i >= n ? 1.0 : static_cast<double>(i - ordre + 1) / spans);
  // Degree 0: the span that holds u (the last one for u = 1).
  std::vector<double> N(static_cast<std::size_t>(n) + ordre, 0.0);
  int s = ordre - 1;
  while (s < n - 1 && !(u >= k[s] && u < k[s + 1])) ++s;
  N[s] = 1;
  for (int p = 1; p < ordre; ++p)
    for (int i = 0; i + p < n + ordre - 1; ++i) {
      double a = 0, c = 0;
      if (k[i + p] > k[i]) a = (u - k[i]) / (k[i + p] - k[i]) * N[i];
      if (k[i + p + 1] > k[i + 1]) c = (k[i + p + 1] - u) / (k[i + p + 1] - k[i + 1]) * N[i + 1];
      N[i] = a + c;
    }
  for (int i = 0; i < n; ++i) b[i] = N[i];
}
}  // namespace

Grille_inter* grille_inter_cree(int nx, int ny, int ferme) {
  auto* g = new (std::nothrow) Grille_inter;
  if (!g) return nullptr;
  g->nx = nx, g->ny = ny, g->ferme = ferme;
  const long ligne = ferme ? nx : nx + 1;
  const long ns = ligne * (ny + 1);
  if (nx < 1 || ny < 0 || 4 + 3 * ns > 0x7fffffffL) {
    std::printf("objet_incoherent\n");
    delete g;
    return nullptr;
  }
  g->ns = static_cast<int>(ns);
  g->som = bloc_alloue(static_cast<mot>(4 + 3 * ns));
  if (g->som) bloc_reel(g->som, static_cast<mot>(4 + 3 * ns), g->ns, 3), std::memset(g->som + 4, 0, 12 * ns);
  g->seg = generer_segment(nx, ny, 0, ferme);
  g->fac_attr = ferme ? gen_fac_fermer(nx, ny) : gen_fac_ouvert(nx, ny, 0);
  const char* rate = !g->som ? "som" : !g->seg ? "generer_segment" : !g->fac_attr ? (ferme ? "gen_fac_fermer" : "gen_fac_ouvert") : nullptr;
  if (!rate) {
    g->fac = g->fac_attr + 6;
    g->nf = g->fac[2];
    g->fac_poi = ad_poi_facette(g->fac, reels(g->som + 4), 3, g->ns);
    if (!g->fac_poi) rate = "ad_poi_facette";
  }
  if (!rate) {
    g->nfac = bloc_alloue(4 + 3 * std::max(g->nf, 1));
    g->nsom = bloc_alloue(static_cast<mot>(4 + 3 * ns));
    if (!g->nfac || !g->nsom) rate = "normales";
    else bloc_reel(g->nfac, 4 + 3 * g->nf, g->nf, 3), bloc_reel(g->nsom, static_cast<mot>(4 + 3 * ns), g->ns, 3);
  }
  if (!rate) {
    g->voisin = gen_voisin_grille(nx, ny, ferme);
    if (!g->voisin) rate = ferme ? "interaction_gen_voisin_fac_som_fermer" : "interaction_gen_voisin_fac_som_ouvert";
  }
  if (rate) {
    std::printf("%s\n", rate);
    grille_inter_libere(g);
    return nullptr;
  }
  grille_inter_normales(g);
  return g;
}

void grille_inter_libere(Grille_inter* g) {
  if (!g) return;
  for (mot* b : {g->som, g->seg, g->fac_attr, g->fac_poi, g->nfac, g->nsom, g->voisin, g->base_u, g->base_v, g->filet})
    bloc_libere(b);
  delete g;
}

void grille_inter_normales(Grille_inter* g) {
  const reel* s = reels(g->som + 4);
  reel* nf = reels(g->nfac + 4);
  const mot* f = g->fac + 4;
  for (int i = 0; i < g->nf; ++i, f = face_suivante(f)) {
    float c[3];
    normale_face(f, s, 3, nf + 3 * i, c);
  }
  // A vertex: the normalised sum of the faces around it.
  reel* ns = reels(g->nsom + 4);
  const mot* v = g->voisin + 4;
  for (int k = 0; k < g->ns; ++k, v += v[0]) {
    float t[3] = {0, 0, 0};
    for (int j = 1; j < v[0]; ++j) {
      const reel* n = nf + 3 * (v[j] - 1);
      t[0] += n[0], t[1] += n[1], t[2] += n[2];
    }
    normer(t, ns + 3 * k);
  }
}

int grille_fine_cree(Vol_inter* v) {
  // The net holds (nx + 1) x (ny + 1) control points, row after row; the
  // samples are nu + 1 by nv + 1, evenly spread over both parameters.
  const int cx = v->nx + 1, cy = v->ny + 1;
  if (!v->som || cx * cy > v->nb_som || v->nu < 1 || v->nv < 1) {
    std::printf("objet_incoherent\n");
    return -1;
  }
  Grille_inter* g = grille_inter_cree(v->nu, v->nv, 0);
  if (!g) return -1;
  v->fine = g;
  const long nu = v->nu + 1, nv = v->nv + 1, net = static_cast<long>(cx) * cy * v->stride;
  g->base_u = bloc_alloue(static_cast<mot>(4 + nu * cx));
  g->base_v = bloc_alloue(static_cast<mot>(4 + nv * cy));
  g->filet = bloc_alloue(static_cast<mot>(4 + net));
  if (!g->base_u || !g->base_v || !g->filet) {
    std::printf("grille_fine\n");
    return -1;
  }
  bloc_reel(g->base_u, static_cast<mot>(4 + nu * cx), static_cast<int>(nu), cx);
  bloc_reel(g->base_v, static_cast<mot>(4 + nv * cy), static_cast<int>(nv), cy);
  bloc_reel(g->filet, static_cast<mot>(4 + net), cx * cy, v->stride);
  std::vector<double> b(static_cast<std::size_t>(std::max(cx, cy)));
  for (long i = 0; i < nu; ++i) {
    base_bspline(cx, static_cast<float>(i) / static_cast<float>(v->nu), b.data());
    for (int a = 0; a < cx; ++a) reels(g->base_u + 4)[i * cx + a] = static_cast<float>(b[a]);
  }
  for (long j = 0; j < nv; ++j) {
    base_bspline(cy, static_cast<float>(j) / static_cast<float>(v->nv), b.data());
    for (int a = 0; a < cy; ++a) reels(g->base_v + 4)[j * cy + a] = static_cast<float>(b[a]);
  }
  // Unlike any net, so that the first sampling is made.
  std::memcpy(g->filet + 4, v->som, sizeof(float) * static_cast<std::size_t>(net));
  reels(g->filet + 4)[0] = std::nanf("");
  grille_fine_suit(v);
  return 0;
}

void grille_fine_suit(Vol_inter* v) {
  Grille_inter* g = v->fine;
  if (!g || !g->filet || !v->som) return;
  const int cx = v->nx + 1, cy = v->ny + 1, d = v->stride;
  const std::size_t octets = sizeof(float) * static_cast<std::size_t>(cx) * cy * d;
  if (std::memcmp(g->filet + 4, v->som, octets) == 0) return;
  std::memcpy(g->filet + 4, v->som, octets);
  const reel* bu = reels(g->base_u + 4);
  const reel* bv = reels(g->base_v + 4);
  reel* out = reels(g->som + 4);
  for (int j = 0; j <= v->nv; ++j) {
    const reel* wv = bv + static_cast<long>(j) * cy;
    for (int i = 0; i <= v->nu; ++i) {
      const reel* wu = bu + static_cast<long>(i) * cx;
      double p[3] = {0, 0, 0};
      for (int b = 0; b < cy; ++b) {
        if (wv[b] == 0) continue;
        for (int a = 0; a < cx; ++a) {
          if (wu[a] == 0) continue;
          const double w = static_cast<double>(wu[a]) * wv[b];
          const reel* c = v->som + static_cast<long>(b * cx + a) * d;
          for (int q = 0; q < 3 && q < d; ++q) p[q] += w * c[q];
        }
      }
      reel* o = out + 3 * (static_cast<long>(j) * (v->nu + 1) + i);
      for (int q = 0; q < 3; ++q) o[q] = static_cast<float>(p[q]);
    }
  }
  grille_inter_normales(g);
}
