// The per-frame tasks of the tree: a record carried by a vertex of another
// volume, and barycentric points, vertices of a record that follow a
// triangle of another volume with fixed weights (a skin over its bones).
//
// `liste_bary` is filled by the language only, never during a frame; its
// records are the interaction's and it goes with them. A point whose
// record or source lost its volume is left as it was.
#include <cstdio>
#include <vector>

#include "anim/trajet.h"
#include "geom/geom.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
constexpr int MES_SOM_HORS_ = 137;
std::vector<Bary> liste_bary;

reel* som_vif(Vol_inter* r, int s) {
  const Objet* o = r ? r->objet : nullptr;
  if (!o || o->type != B_VOL || o->numero != r->num || !r->som || r->stride < 3) return nullptr;
  if (s < 1 || s > r->nb_som) return nullptr;
  return r->som + static_cast<long>(s - 1) * r->stride;
}

int hors(int s) {
  std::printf("%d: ", s);
  message(1, MES_SOM_HORS_);
  return -1;
}
}  // namespace

int tache_som(Vol_inter* r, int num, int s) {
  if (num == 0) {
    r->taches[0] &= ~TACHE_SOM;
    r->taches[1] = r->taches[2] = 0;
    return 0;
  }
  Vol_inter* c = vol_inter_de(num);
  if (!c) return std::printf("%d ", num), message(0, MES_ABSENT), -1;
  if (!som_vif(c, s)) return hors(s);
  // A record carried by itself, or by one of its own followers, would
  // chase its own vertex from frame to frame.
  int n = 0;
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) ++n;
  Vol_inter* p = c;
  for (int k = 0; p && k <= n; ++k, p = p->lead)
    if (p == r) return std::printf("%d: ", num), message(1, 140), -1;
  r->taches[0] |= TACHE_SOM;
  r->taches[1] = num, r->taches[2] = s;
  return 0;
}

bool tache_point(const Vol_inter* r, float* w) {
  if (!(r->taches[0] & TACHE_SOM)) return false;
  Vol_inter* c = vol_inter_de(r->taches[1]);
  return c && c != r && som_monde(c, r->taches[2], w);
}

int tache_bary(Vol_inter* r, int som, Vol_inter* source, const int* tri, const float* poids) {
  if (!som_vif(r, som)) return hors(som);
  for (int k = 0; k < 3; ++k)
    if (!som_vif(source, tri[k])) return hors(tri[k]);
  for (int k = 0; k < 3; ++k)
    if (!(poids[k] > -1e6f && poids[k] < 1e6f)) return mot_imprime(1, B_SOM_), message(0, MES_VALEUR), -1;
  // A vertex that already follows a triangle takes the new one.
  for (Bary& b : liste_bary)
    if (b.dest == r && b.som == som) {
      b.source = source;
      for (int k = 0; k < 3; ++k) b.tri[k] = tri[k], b.poids[k] = poids[k];
      return 0;
    }
  Bary b;
  b.dest = r, b.som = som, b.source = source;
  for (int k = 0; k < 3; ++k) b.tri[k] = tri[k], b.poids[k] = poids[k];
  liste_bary.push_back(b);
  r->taches[0] |= TACHE_BARY;
  ++r->taches[3];
  return 0;
}

void taches_pas() {
  for (const Bary& b : liste_bary) {
    reel* d = som_vif(b.dest, b.som);
    if (!d || !som_vif(b.source, b.tri[0])) continue;
    float w[3] = {0, 0, 0}, p[3];
    for (int k = 0; k < 3; ++k) {
      if (!som_monde(b.source, b.tri[k], p)) break;
      for (int x = 0; x < 3; ++x) w[x] += b.poids[k] * p[x];
    }
    // The point is in the world; the vertex is in its record's frame. A
    // record's matrix is a turn and a shift, so its inverse is the turn
    // transposed after the shift taken back.
    const float* m = b.dest->mat;
    const float e[3] = {w[0] - m[12], w[1] - m[13], w[2] - m[14]};
    for (int i = 0; i < 3; ++i) d[i] = m[4 * i] * e[0] + m[4 * i + 1] * e[1] + m[4 * i + 2] * e[2];
  }
}

// The records may be gone already: only the table goes.
void taches_libere() {
  liste_bary.clear();
  liste_bary.shrink_to_fit();
}
