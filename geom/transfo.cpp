// The loop over vertices of every transformation. Each operation is a small
// record whose call moves one vertex; the loop is chosen once, outside, so
// that the walk over the vertices only follows the pointer.
#include <cmath>

#include "geom/interne.h"

namespace {
using Pivot = const float*;

// ---- operations: op(p, i) moves vertex i at p; attenue(p, i, w) does it
// with the weight w of the radius of influence (1 at the pivot, 0 at the
// radius).

struct Dep {
  double v[3];
  void operator()(reel* p, long) const {
    p[0] = static_cast<float>(p[0] + v[0]);
    p[1] = static_cast<float>(p[1] + v[1]);
    p[2] = static_cast<float>(p[2] + v[2]);
  }
  void attenue(reel* p, long, double w) const {
    for (int k = 0; k < 3; ++k) p[k] = static_cast<float>(p[k] + v[k] * w);
  }
};

struct DepPoids {
  double v[3];
  const reel* poids;
  void operator()(reel* p, long i) const { attenue(p, i, 1); }
  void attenue(reel* p, long i, double w) const {
    double q = poids[i] * w;
    for (int k = 0; k < 3; ++k) p[k] = static_cast<float>(p[k] + v[k] * q);
  }
};

// Rotation in the plane of coordinates A and B, about the pivot.
template <int A, int B>
struct Rot {
  double c, s, a;
  Pivot o;
  void operator()(reel* p, long) const { tourne(p, c, s); }
  void attenue(reel* p, long, double w) const { tourne(p, std::cos(a * w), std::sin(a * w)); }
  void tourne(reel* p, double c_, double s_) const {
    double x = static_cast<double>(p[A]) - o[A], y = static_cast<double>(p[B]) - o[B];
    p[A] = static_cast<float>(x * c_ - y * s_ + o[A]);
    p[B] = static_cast<float>(x * s_ + y * c_ + o[B]);
  }
};

struct Rota {
  float m[16];
  double a;
  Pivot o;
  const float* axe;
  void operator()(reel* p, long) const { matrice_applique(m, p, p); }
  void attenue(reel* p, long, double w) const {
    float mw[16];
    matrice_axe(o, axe, static_cast<float>(std::cos(a * w)), static_cast<float>(std::sin(a * w)), mw);
    matrice_applique(mw, p, p);
  }
};

// Scaling of the coordinates in the mask about the pivot.
template <int MASQUE>
struct Hom {
  double f[3];
  Pivot o;
  void operator()(reel* p, long) const {
    for (int k = 0; k < 3; ++k)
      if (MASQUE & (1 << k)) p[k] = static_cast<float>((static_cast<double>(p[k]) - o[k]) * f[k] + o[k]);
  }
  void attenue(reel* p, long, double w) const {
    for (int k = 0; k < 3; ++k)
      if (MASQUE & (1 << k))
        p[k] = static_cast<float>((static_cast<double>(p[k]) - o[k]) * (1 + (f[k] - 1) * w) + o[k]);
  }
};

// Scaling about the projection of the vertex on a line.
struct HomLigne {
  double o[3], u[3], f;
  void operator()(reel* p, long i) const { attenue(p, i, 1); }
  void attenue(reel* p, long, double w) const {
    double x[3] = {p[0] - o[0], p[1] - o[1], p[2] - o[2]};
    double t = x[0] * u[0] + x[1] * u[1] + x[2] * u[2];
    double g = 1 + (f - 1) * w;
    for (int k = 0; k < 3; ++k) {
      double q = o[k] + t * u[k];
      p[k] = static_cast<float>(q + (p[k] - q) * g);
    }
  }
};

// Random shake of the coordinates in the mask, drawn in the order x, y, z.
template <int MASQUE>
struct Sec {
  double f;
  void operator()(reel* p, long i) const { attenue(p, i, 1); }
  void attenue(reel* p, long, double w) const {
    for (int k = 0; k < 3; ++k)
      if (MASQUE & (1 << k)) p[k] = static_cast<float>(p[k] + (2.0 * alea_suivant() - 1) * f * w);
  }
};

template <int MASQUE>
struct Sym {
  Pivot o;
  void operator()(reel* p, long) const {
    for (int k = 0; k < 3; ++k)
      if (MASQUE & (1 << k)) p[k] = static_cast<float>(2.0 * o[k] - p[k]);
  }
  void attenue(reel* p, long, double w) const {
    for (int k = 0; k < 3; ++k)
      if (MASQUE & (1 << k)) p[k] = static_cast<float>(p[k] + w * 2.0 * (o[k] - p[k]));
  }
};

// Moves along the vertex's direction from the pivot: g > 0 swells, g < 0
// pinches.
struct Bosse {
  double g;
  Pivot o;
  void operator()(reel* p, long i) const { attenue(p, i, 1); }
  void attenue(reel* p, long, double w) const {
    for (int k = 0; k < 3; ++k) p[k] = static_cast<float>(p[k] + g * w * (static_cast<double>(p[k]) - o[k]));
  }
};

// Turns about the axis through the pivot by a per unit of length along it.
struct Tord {
  double u[3], a;
  Pivot o;
  void operator()(reel* p, long i) const { attenue(p, i, 1); }
  void attenue(reel* p, long, double w) const {
    double x[3] = {static_cast<double>(p[0]) - o[0], static_cast<double>(p[1]) - o[1],
                   static_cast<double>(p[2]) - o[2]};
    double t = x[0] * u[0] + x[1] * u[1] + x[2] * u[2];
    double c = std::cos(a * t * w), s = std::sin(a * t * w);
    double ux[3] = {u[1] * x[2] - u[2] * x[1], u[2] * x[0] - u[0] * x[2], u[0] * x[1] - u[1] * x[0]};
    for (int k = 0; k < 3; ++k) p[k] = static_cast<float>(o[k] + x[k] * c + ux[k] * s + u[k] * t * (1 - c));
  }
};

// Scales the distance to the axis by 1 + f t, t the position along it.
struct Effile {
  double u[3], f;
  Pivot o;
  void operator()(reel* p, long i) const { attenue(p, i, 1); }
  void attenue(reel* p, long, double w) const {
    double x[3] = {static_cast<double>(p[0]) - o[0], static_cast<double>(p[1]) - o[1],
                   static_cast<double>(p[2]) - o[2]};
    double t = x[0] * u[0] + x[1] * u[1] + x[2] * u[2];
    double g = 1 + f * t * w;
    for (int k = 0; k < 3; ++k) {
      double q = o[k] + t * u[k];
      p[k] = static_cast<float>(q + (o[k] + x[k] - q) * g);
    }
  }
};

struct Matrice {
  const float* m;
  void operator()(reel* p, long) const { matrice_applique(m, p, p); }
  void attenue(reel* p, long, double w) const {
    float q[3];
    matrice_applique(m, p, q);
    for (int k = 0; k < 3; ++k) p[k] = static_cast<float>(p[k] + w * (static_cast<double>(q[k]) - p[k]));
  }
};

// The unit axis of t, in double; a zero axis stays zero (no effect).
void unite(const Transfo* t, double* u) {
  float a[3];
  normer(t->axe, a);
  for (int k = 0; k < 3; ++k) u[k] = a[k];
}

// ---- the loops -----------------------------------------------------------------
template <class Op>
void applique(reel* som, long n, int d, const int* liste, int nb, const Transfo* t, const Op& op) {
  if (t->rayon < 0) {
    if (liste) {
      for (const int *q = liste, *fin = liste + nb; q < fin; ++q) op(som + static_cast<long>(*q - 1) * d, *q - 1);
    } else {
      long i = 0;
      for (reel *p = som, *fin = som + n * d; p < fin; p += d, ++i) op(p, i);
    }
    return;
  }
  double r = t->rayon, r2 = r * r;
  const float* c = t->pivot;
  auto un = [&](reel* p, long i) {
    double d2 = dist2(p, c);
    if (d2 > r2) return;
    // Linear fall from the pivot to the radius; a radius of 0 reaches only
    // a vertex standing on the pivot.
    op.attenue(p, i, r > 0 ? 1 - std::sqrt(d2) / r : 1.0);
  };
  if (liste) {
    for (const int *q = liste, *fin = liste + nb; q < fin; ++q) un(som + static_cast<long>(*q - 1) * d, *q - 1);
  } else {
    long i = 0;
    for (reel *p = som, *fin = som + n * d; p < fin; p += d, ++i) un(p, i);
  }
}

template <int A, int B>
Rot<A, B> rot(const Transfo* t) {
  return {std::cos(static_cast<double>(t->angle)), std::sin(static_cast<double>(t->angle)), t->angle, t->pivot};
}
}  // namespace

int transformer_sommets(reel* som, int n, int d, const Transfo* t, const int* liste, int nb,
                        const reel* poids) {
  if (!som || n < 0 || d < 3) return geom_erreur_valeur(d, MES_INDICE);
  if (liste)
    for (int k = 0; k < nb; ++k)
      if (liste[k] < 1 || liste[k] > n) return geom_erreur_valeur(liste[k], MES_INDICE);
  const float* o = t->pivot;
  double f = t->f;
  auto go = [&](const auto& op) { applique(som, n, d, liste, nb, t, op); };
  switch (t->op) {
    case B_DEP:
    case B_DEP2:
      if (poids)
        go(DepPoids{{t->v[0], t->v[1], t->v[2]}, poids});
      else
        go(Dep{{t->v[0], t->v[1], t->v[2]}});
      break;
    case B_ROTX: go(rot<1, 2>(t)); break;
    case B_ROTY: go(rot<0, 2>(t)); break;
    case B_ROTZ: go(rot<0, 1>(t)); break;
    case B_ROTA:
    case B_TIRER:
    case B_PLIE: {
      Rota r{{}, t->angle, o, t->axe};
      matrice_axe(o, t->axe, std::cos(t->angle), std::sin(t->angle), r.m);
      go(r);
      break;
    }
    case B_HOM:
      if (t->ligne_donnee) {
        HomLigne h{{t->ligne[0], t->ligne[1], t->ligne[2]}, {}, f};
        float u[3] = {t->ligne[3] - t->ligne[0], t->ligne[4] - t->ligne[1], t->ligne[5] - t->ligne[2]};
        normer(u, u);
        for (int k = 0; k < 3; ++k) h.u[k] = u[k];
        go(h);
      } else {
        go(Hom<7>{{t->v[0], t->v[1], t->v[2]}, o});
      }
      break;
    case B_HOMX: go(Hom<1>{{f, 1, 1}, o}); break;
    case B_HOMY: go(Hom<2>{{1, f, 1}, o}); break;
    case B_HOMZ: go(Hom<4>{{1, 1, f}, o}); break;
    case B_HOMO: go(Hom<7>{{f, f, f}, o}); break;
    case B_SECX: go(Sec<1>{f}); break;
    case B_SECY: go(Sec<2>{f}); break;
    case B_SECZ: go(Sec<4>{f}); break;
    case B_SEC: go(Sec<7>{f}); break;
    case B_SYMX: go(Sym<1>{o}); break;
    case B_SYMY: go(Sym<2>{o}); break;
    case B_SYMZ: go(Sym<4>{o}); break;
    case B_SYM: go(Sym<7>{o}); break;
    case B_BOSSE: go(Bosse{f, o}); break;
    case B_TORD: {
      Tord r{{}, t->angle, o};
      unite(t, r.u);
      go(r);
      break;
    }
    case B_EFFILE: {
      Effile e{{}, f, o};
      unite(t, e.u);
      go(e);
      break;
    }
    case OP_MATRICE: go(Matrice{t->m}); break;
    default:
      return geom_erreur_valeur(t->op, MES_INDICE);
  }
  return 0;
}

void transformer_point(const Transfo* t, const reel* in, reel* out) {
  float p[3] = {in[0], in[1], in[2]};
  if (transformer_sommets(p, 1, 3, t, nullptr, 0, nullptr) == 0) {
    out[0] = p[0];
    out[1] = p[1];
    out[2] = p[2];
  }
}
