// A surface of lines (type b79) in the live scene: its rows are vertices of
// other volumes, and its working grid (anim/grille.cpp) is made again at
// every frame from where those volumes stand.
//
// A `Nappe_inter` names for each vertex of the grid a source volume and one
// of its vertices (from 0), row after row; its pins then put vertices on
// vertices of other volumes. The records of the sources are found once,
// after every record of the interaction is made; a source that takes no
// part is read from its object as it stands.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

#include "anim/interne.h"
#include "core/message.h"
#include "geom/geom.h"
#include "startup/startup.h"

namespace {
constexpr int B_NAPPE = 79, B_EPINGLE = 30;

// The numbers of a value: a flat list of floats or integers, or a list of
// such blocks, whose entries become groups.
bool groupes(const mot* v, std::vector<std::vector<long>>& g, bool coupe_a_zero) {
  auto nombre = [](const mot* b, long i, long* x) {
    if (b[1] == BLOC_ENTIER) {
      *x = b[4 + i];
      return true;
    }
    if (b[1] != BLOC_REEL) return false;
    float f = lit_reel(b + 4 + i);
    if (!std::isfinite(f) || std::fabs(f) > 1e9f || f != std::floor(f)) return false;
    *x = static_cast<long>(f);
    return true;
  };
  g.clear();
  if (!v) return false;
  if (v[1] == BLOC_LISTE) {
    const mot* e = v + 4;
    for (int i = 0; i < v[2]; ++i, e += e[0]) {
      if (e[0] < 4 || e + e[0] > v + v[0]) return false;
      g.emplace_back();
      for (long j = 0; j < e[0] - 4; ++j) {
        long x;
        if (!nombre(e, j, &x)) return false;
        g.back().push_back(x);
      }
    }
    return true;
  }
  if (v[1] != BLOC_REEL && v[1] != BLOC_ENTIER) return false;
  g.emplace_back();
  for (long j = 0; j < v[0] - 4; ++j) {
    long x;
    if (!nombre(v, j, &x)) return false;
    if (coupe_a_zero && x == 0) {
      if (!g.back().empty()) g.emplace_back();
      continue;
    }
    g.back().push_back(x);
  }
  if (g.back().empty()) g.pop_back();
  return true;
}

// The vertices of a source: the record's live ones through its placing
// when it takes part, else the object's as they stand.
const reel* source_som(Objet* o, int num, Vol_inter* r, int* ns, int* d, const float** mat) {
  *mat = nullptr;
  if (r && r->som && r->objet == o) {
    if (!r->mat_arbre) vol_inter_matrice(r);
    *mat = r->mat;
    *ns = r->nb_som, *d = r->stride;
    return r->som;
  }
  if (!o || o->type != B_VOL || o->numero != num) return nullptr;
  return vol_som(o, ns, d);
}

void point(const reel* s, int d, const float* mat, float* out) {
  float p[3] = {s[0], d > 1 ? s[1] : 0.f, d > 2 ? s[2] : 0.f};
  if (mat) matrice_applique(mat, p, out);
  else std::memcpy(out, p, sizeof p);
}

}  // namespace

int nappe_cree(Vol_inter* v) {
  Objet* o = v->objet;
  const mot k[2] = {1, B_NAPPE};
  std::vector<std::vector<long>> rangs;
  const mot* val = vol_valeur(o, 1, k);
  if (!val) return 0;  // no lines: nothing to follow
  if (!groupes(val, rangs, true)) {
    mot_imprime(1, B_NAPPE);
    std::printf(": ");
    message(0, MES_VALEUR);
    return -1;
  }
  if (rangs.empty()) return 0;
  // Each row: a volume, then its vertices (all of them when none is named).
  auto* n = new (std::nothrow) Nappe_inter;
  if (!n) return -1;
  v->nappe = n;
  long lg = -1;
  for (const auto& r : rangs) {
    Objet* s = objet_trouve(B_VOL, 0, static_cast<int>(r[0]), nullptr);
    int ns = 0, d = 3;
    if (!s || s->env != 1 || s == o || !vol_som(s, &ns, &d)) {
      std::printf("%ld: ", r[0]);
      message(0, 9);
      return -1;
    }
    const long l = r.size() > 1 ? static_cast<long>(r.size()) - 1 : ns;
    if (lg >= 0 && l != lg) {
      std::printf("objet_incoherent\n");
      return -1;
    }
    lg = l;
    for (long j = 0; j < l; ++j) {
      const long x = r.size() > 1 ? r[j + 1] : j + 1;
      if (x < 1 || x > ns) {
        std::printf("%ld: ", x);
        message(0, MES_VALEUR);
        return -1;
      }
      n->sources.push_back({s, static_cast<int>(r[0]), nullptr, static_cast<int>(x - 1)});
    }
  }
  const int ferme = v->fermer ? 1 : 0;
  const long nx = ferme ? lg : lg - 1, ny = static_cast<long>(rangs.size()) - 1;
  if (nx < 1 || nx > 32767 || ny > 32767) {
    std::printf("objet_incoherent\n");
    return -1;
  }
  n->grille = grille_inter_cree(static_cast<int>(nx), static_cast<int>(ny), ferme);
  if (!n->grille) return -1;
  // (b79, b30): triples vertex of the surface, volume, vertex of it.
  const mot ke[4] = {1, B_NAPPE, 1, B_EPINGLE};
  std::vector<std::vector<long>> e;
  if (groupes(vol_valeur(o, 2, ke), e, false) && !e.empty()) {
    const auto& t = e.size() == 1 ? e[0] : std::vector<long>{};
    if (t.size() % 3 != 0) {
      std::printf("%zu: ", t.size());
      message(0, MES_VALEUR);
      return -1;
    }
    for (std::size_t i = 0; i < t.size(); i += 3) {
      Objet* s = objet_trouve(B_VOL, 0, static_cast<int>(t[i + 1]), nullptr);
      int ns = 0, d = 3;
      if (!s || s->env != 1 || !vol_som(s, &ns, &d)) {
        std::printf("%ld: ", t[i + 1]);
        message(0, 9);
        return -1;
      }
      if (t[i] < 1 || t[i] > n->grille->ns || t[i + 2] < 1 || t[i + 2] > ns) {
        std::printf("%ld: ", t[i] < 1 || t[i] > n->grille->ns ? t[i] : t[i + 2]);
        message(0, MES_VALEUR);
        return -1;
      }
      n->epingles.push_back({static_cast<int>(t[i] - 1), {s, static_cast<int>(t[i + 1]), nullptr, static_cast<int>(t[i + 2] - 1)}});
    }
  }
  nappe_suit(v);
  return 0;
}

void nappe_libere(Nappe_inter* n) {
  if (!n) return;
  grille_inter_libere(n->grille);
  delete n;
}

void nappes_resout() {
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) {
    if (!v->nappe) continue;
    for (Source_inter& s : v->nappe->sources) s.rec = vol_inter_de(s.num);
    for (auto& e : v->nappe->epingles) e.src.rec = vol_inter_de(e.src.num);
  }
}

void nappe_suit(Vol_inter* v) {
  Nappe_inter* n = v->nappe;
  if (!n || !n->grille) return;
  Grille_inter* g = n->grille;
  reel* out = reels(g->som + 4);
  auto pose = [](const Source_inter& s, reel* dest) {
    int ns = 0, d = 3;
    const float* mat;
    const reel* som = source_som(s.objet, s.num, s.rec, &ns, &d, &mat);
    if (som && s.som < ns) point(som + static_cast<long>(s.som) * d, d, mat, dest);
  };
  const long total = std::min<long>(static_cast<long>(n->sources.size()), g->ns);
  for (long k = 0; k < total; ++k) pose(n->sources[k], out + 3 * k);
  for (const auto& e : n->epingles) pose(e.src, out + 3L * e.som);
  grille_inter_normales(g);
  if (Vol_rt* r = v->rt; r && r->ns == g->ns && r->dim == 3) {
    std::memcpy(r->som, out, sizeof(float) * 3 * static_cast<std::size_t>(g->ns));
    vol_rt_som_change(r);
  }
}

void nappes_pas() {
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) {
    if (v->nappe) nappe_suit(v);
    if (v->fine) grille_fine_suit(v);
  }
}

