// The software renderer: one volume projected by the eye's matrices,
// clipped against the view volume, lit per face, vertex or pixel, and
// scan converted into the working image 0, which the window then shows.
//
// Workspaces (projected vertices, colours per vertex, the polygon in work,
// the order of faces) are kept from call to call and only grow, so that a
// frame allocates nothing once the scene's sizes were seen.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <new>

#include "core/message.h"
#include "display/moteurs.h"
#include "display/oeil.h"
#include "display/rendu_interne.h"
#include "geom/geom.h"
#include "startup/startup.h"

namespace {
constexpr int B_ZBU = 25, B_RAYON = 68, B_AMB = 87;
constexpr int NP_LISSE_MAX = 256;  // vertices of a face under smooth shading
constexpr int POLY_DEPART = 100;   // records of the polygon in work at first
constexpr float BLANC[3] = {1, 1, 1};
constexpr float ILLUM_DEFAUT[5] = {1, 1, 0, 0, 0};

struct Travail {
  std::unique_ptr<SomP[]> som;
  long n_som = 0;
  std::unique_ptr<float[]> coul;       // per vertex, front then back: 6 floats
  std::unique_ptr<unsigned[]> marque;  // per vertex, front then back: the pass that made it
  long n_coul = 0;
  unsigned passe = 0;
  std::unique_ptr<Pt[]> poly;  // two buffers of n_poly records
  long n_poly = 0;
  std::unique_ptr<int[]> ordre;
  std::unique_ptr<float[]> cle;
  long n_ordre = 0;
  std::unique_ptr<const mot*[]> adr;  // faces by number, for an order
  long n_adr = 0;
};
Travail tr;
LumP lums[LUM_MAX];

template <class T>
bool grandit(std::unique_ptr<T[]>& p, long n) {
  p.reset(new (std::nothrow) T[n]);
  if (p) return true;
  message(0, MES_ALLOCATION);
  return false;
}

bool som_pret(long n) {
  if (n <= tr.n_som) return true;
  tr.n_som = 0;
  if (!grandit(tr.som, n)) return false;
  tr.n_som = n;
  return true;
}

bool coul_pret(long n) {
  if (n <= tr.n_coul) return true;
  tr.n_coul = 0;
  if (!grandit(tr.coul, 6 * n) || !grandit(tr.marque, 2 * n)) return false;
  std::fill(tr.marque.get(), tr.marque.get() + 2 * n, 0u);
  tr.n_coul = n;
  return true;
}

// The polygon in work: two buffers of records, doubled with a message until
// a face of np vertices and its clipping fit.
bool poly_pret(long np) {
  long besoin = np + 8, n = tr.n_poly ? tr.n_poly : POLY_DEPART;
  if (besoin <= tr.n_poly) return true;
  while (n < besoin) {
    if (tr.n_poly) {
      message(0, MES_DOUBLE);
      std::printf(": %ld\n", 2 * n);
    }
    n *= 2;
  }
  tr.n_poly = 0;
  if (!grandit(tr.poly, 2 * n)) return false;
  tr.n_poly = n;
  return true;
}

bool ordre_pret(long n) {
  if (n <= tr.n_ordre) return true;
  tr.n_ordre = 0;
  if (!grandit(tr.ordre, n) || !grandit(tr.cle, n)) return false;
  tr.n_ordre = n;
  return true;
}

int code_de(const float* c) {
  if (!std::isfinite(c[0] + c[1] + c[2] + c[3])) return SOM_NAN;
  int k = 0;
  if (c[0] < -c[3]) k |= 1;
  if (c[0] > c[3]) k |= 2;
  if (c[1] < -c[3]) k |= 4;
  if (c[1] > c[3]) k |= 8;
  if (c[2] < -c[3]) k |= 16;
  if (c[2] > c[3]) k |= 32;
  return k;
}

// Window coordinates of clip coordinates; a divisor within 1e-7 of 0 is 1.
inline void fenetre(const float* c, float l, float h, float* s) {
  float w = c[3];
  if (w > -1e-7f && w < 1e-7f) w = 1;
  float iw = 1 / w;
  s[0] = (c[0] * iw + 1) * 0.5f * l;
  s[1] = (c[1] * iw + 1) * 0.5f * h;
  s[2] = (c[2] * iw + 1) * 0.5f;
}

void projeter(const Vol_aff& v, const float* m, const float* p, float l, float h) {
  for (int i = 0; i < v.ns; ++i) {
    const float* x = v.som + static_cast<long>(i) * v.dim;
    SomP& s = tr.som[i];
    for (int k = 0; k < 3; ++k) s.e[k] = m[k] * x[0] + m[4 + k] * x[1] + m[8 + k] * x[2] + m[12 + k];
    for (int k = 0; k < 4; ++k) s.c[k] = p[k] * s.e[0] + p[4 + k] * s.e[1] + p[8 + k] * s.e[2] + p[12 + k];
    s.code = code_de(s.c);
    fenetre(s.c, l, h, s.s);
    if (v.proj) {
      float* o = v.proj + 7L * i;
      o[0] = s.e[0], o[1] = s.e[1], o[2] = s.e[2], o[3] = s.c[3];
      o[4] = s.s[0], o[5] = s.s[1], o[6] = s.s[2];
    }
  }
}

// Sutherland-Hodgman against the sides named by `code`, from `a` (n
// records) into `b`; the records end in `a`. The count left.
int decoupe(Pt*& a, Pt*& b, int n, int code) {
  for (int cote = 0; cote < 6 && n > 0; ++cote) {
    if (!(code & (1 << cote))) continue;
    const int axe = cote >> 1;
    const float sg = (cote & 1) ? -1.f : 1.f;
    int m = 0;
    for (int i = 0; i < n; ++i) {
      const Pt& p = a[i];
      const Pt& q = a[(i + 1) % n];
      float dp = p.c[3] + sg * p.c[axe], dq = q.c[3] + sg * q.c[axe];
      if (dp >= 0) b[m++] = p;
      if ((dp >= 0) != (dq >= 0)) {
        // In double, and the cut coordinate put on the plane exactly: with
        // vertices far outside, the interpolation alone loses the plane.
        double u = static_cast<double>(dp) / (static_cast<double>(dp) - dq);
        const float* fp = reinterpret_cast<const float*>(&p);
        const float* fq = reinterpret_cast<const float*>(&q);
        Pt& r = b[m++];
        float* fr = reinterpret_cast<float*>(&r);
        for (int k = 0; k < 24; ++k) fr[k] = static_cast<float>(fp[k] + u * (static_cast<double>(fq[k]) - fp[k]));
        r.c[axe] = -sg * r.c[3];
      }
    }
    std::swap(a, b);
    n = m;
  }
  return n;
}

void tourne(const float* m, const float* n, float* o) {
  for (int k = 0; k < 3; ++k) o[k] = m[k] * n[0] + m[4 + k] * n[1] + m[8 + k] * n[2];
}

void unite(float* n) {
  float m2 = n[0] * n[0] + n[1] * n[1] + n[2] * n[2];
  if (m2 > 0) {
    float im = 1 / std::sqrt(m2);
    n[0] *= im, n[1] *= im, n[2] *= im;
  }
}

// Everything a face of the shaded path reads.
struct Scene {
  const Vol_aff* v;
  float vue[16];
  bool parallele;
  int type;  // 1, 2 or 3
  bool deux_cotes;
  // Both sides are lit, as OpenGL's two-sided model does: a negative type
  // gives its material to both; a positive one only to the front, and the
  // back of its faces takes OpenGL's default material (diffuse 0.8, no
  // specular, opaque) with the normal turned.
  float kd[3];  // coefficient x colour
  float coef;
  Eclairage ecl, ecl_dos;
  Trace t, t_dos;
  FnTri remplir[TRI_SORTES], remplir_dos[TRI_SORTES];
};

// Newell's normal of the contour in eye space (not unit).
void newell(const mot* c, int np, float* n) {
  n[0] = n[1] = n[2] = 0;
  for (int i = 0; i < np; ++i) {
    const float* a = tr.som[c[i] - 1].e;
    const float* b = tr.som[c[(i + 1) % np] - 1].e;
    n[0] += (a[1] - b[1]) * (a[2] + b[2]);
    n[1] += (a[2] - b[2]) * (a[0] + b[0]);
    n[2] += (a[0] - b[0]) * (a[1] + b[1]);
  }
}

// Lit colour of a vertex under smooth shading, kept for the pass.
const float* coul_sommet(const Scene& sc, const Eclairage& ecl, int i, bool dos, const float* kd) {
  unsigned& mq = tr.marque[2L * i + dos];
  float* c = tr.coul.get() + 6L * i + 3 * dos;
  if (mq == tr.passe) return c;
  const Vol_aff& v = *sc.v;
  float n[3];
  tourne(sc.vue, v.n_som + static_cast<long>(i) * v.pas_n, n);
  if (dos) n[0] = -n[0], n[1] = -n[1], n[2] = -n[2];
  eclaire(tr.som[i].e, n, kd, ecl, c);
  mq = tr.passe;
  return c;
}

void kd_de(const Scene& sc, const mot* cv, int i, float* kd) {
  const reel* c = cv ? coul_element(cv, i) : nullptr;
  if (!c) {
    kd[0] = sc.kd[0], kd[1] = sc.kd[1], kd[2] = sc.kd[2];
    return;
  }
  for (int k = 0; k < 3; ++k) kd[k] = sc.coef * c[k];
}

void np_trop(int np) {
  std::printf("np = %d\n", np);
  message(0, MES_ENTETE);
}

// One face (number f from 0) of the shaded path. 0, or -1 on a failure.
int face_ombree(Scene& sc, int f, const mot* face) {
  const Vol_aff& v = *sc.v;
  int np;
  const mot* c = face_contour(face, &np);
  if (np < 3) return 0;
  const bool lisse = sc.type >= 2;
  if (lisse && np > NP_LISSE_MAX) {
    np_trop(np);
    return 0;
  }
  int ou = 0, et = 0x7f;
  for (int i = 0; i < np; ++i) {
    if (c[i] < 1 || c[i] > v.ns) return 0;
    int k = tr.som[c[i] - 1].code;
    ou |= k, et &= k;
  }
  if (et || (ou & SOM_NAN)) return 0;
  if (!poly_pret(np)) return -1;
  // The face's normal in eye space, and the side the eye sees.
  // Smooth shading with vertex normals needs no face normal.
  float nf[3] = {0, 0, 1}, ng[3];
  bool newell_fait = false;
  if (lisse && v.n_som) {
    // the vertices' normals serve
  } else if (v.n_fac) {
    tourne(sc.vue, v.n_fac + static_cast<long>(f) * v.pas_n, nf);
  } else {
    newell(c, np, ng);
    newell_fait = true;
    nf[0] = ng[0], nf[1] = ng[1], nf[2] = ng[2];
    unite(nf);
  }
  if (!newell_fait) newell(c, np, ng);
  const float* p0 = tr.som[c[0] - 1].e;
  const float vu = sc.parallele ? ng[2] : -(ng[0] * p0[0] + ng[1] * p0[1] + ng[2] * p0[2]);
  const bool dos = vu < 0;
  if (dos) nf[0] = -nf[0], nf[1] = -nf[1], nf[2] = -nf[2];
  const bool defaut = dos && !sc.deux_cotes;
  const Eclairage& ecl = defaut ? sc.ecl_dos : sc.ecl;
  Trace& trace = defaut ? sc.t_dos : sc.t;
  float kd[3] = {0.8f, 0.8f, 0.8f};
  if (!defaut) kd_de(sc, v.c_fac, f + 1, kd);
  const bool coul_face = !defaut && v.c_fac && coul_element(v.c_fac, f + 1);
  const bool coul_som = !defaut && v.c_som && !coul_face;
  Pt* a = tr.poly.get();
  Pt* b = a + tr.n_poly;
  int sorte = TRI_PLAT;
  // Pigments colour the front of the face, pixel by pixel.
  const Pig_liste* pig = nullptr;
  if (!defaut) {
    if (v.pig_fac && v.pig_fac[f].n > 0) pig = &v.pig_fac[f];
    else if (v.pig && v.pig->n > 0) pig = v.pig;
  }
  // A texture takes the place of the pigments; its coordinates ride in
  // the slot of the point.
  const bool tex = !defaut && v.tex && v.tex[f].n > 0 && v.mappe && v.mappe_deb;
  if (tex) pig = &v.tex[f];
  if (pig) {
    sorte = TRI_PIGMENT;
    trace.pig = pig->p, trace.n_pig = pig->n;
  } else if (sc.type == 1 && !coul_som) {
    float ctr[3] = {0, 0, 0};
    for (int i = 0; i < np; ++i)
      for (int k = 0; k < 3; ++k) ctr[k] += tr.som[c[i] - 1].e[k];
    for (float& x : ctr) x /= np;
    eclaire(ctr, nf, kd, ecl, trace.coul);
  } else {
    sorte = sc.type == 3 ? TRI_PIXEL : TRI_GOURAUD;
  }
  for (int i = 0; i < np; ++i) {
    const int s = c[i] - 1;
    const SomP& q = tr.som[s];
    Pt& p = a[i];
    for (int k = 0; k < 4; ++k) p.c[k] = q.c[k];
    for (int k = 0; k < 3; ++k) p.s[k] = q.s[k], p.e[k] = q.e[k];
    if (sorte == TRI_PLAT) continue;
    float kv[3];
    if (coul_som) kd_de(sc, v.c_som, s + 1, kv);
    else kv[0] = kd[0], kv[1] = kd[1], kv[2] = kd[2];
    float n[3] = {nf[0], nf[1], nf[2]};
    if (lisse && v.n_som) {
      tourne(sc.vue, v.n_som + static_cast<long>(s) * v.pas_n, n);
      if (dos) n[0] = -n[0], n[1] = -n[1], n[2] = -n[2];
    }
    if (sorte == TRI_PIGMENT) {
      const float* o = tex ? v.mappe + 2L * (v.mappe_deb[f] + i) : v.som + static_cast<long>(s) * v.dim;
      for (int k = 0; k < 3; ++k) p.n[k] = n[k], p.k[k] = sc.coef, p.pad[k] = k < 2 || !tex ? o[k] : 0.f;
    } else if (sorte == TRI_PIXEL) {
      for (int k = 0; k < 3; ++k) p.n[k] = n[k], p.k[k] = kv[k];
    } else if (lisse && v.n_som && !coul_face) {
      const float* cs = coul_sommet(sc, ecl, s, dos, kv);
      p.k[0] = cs[0], p.k[1] = cs[1], p.k[2] = cs[2];
    } else {
      eclaire(q.e, n, kv, ecl, p.k);
    }
  }
  if (ou) {
    np = decoupe(a, b, np, ou);
    if (np < 3) return 0;
    if (lisse && np > NP_LISSE_MAX) {
      np_trop(np);
      return 0;
    }
    const float l = static_cast<float>(sc.t.l), h = static_cast<float>(sc.t.h);
    for (int i = 0; i < np; ++i) fenetre(a[i].c, l, h, a[i].s);
  }
  FnTri fn = (defaut ? sc.remplir_dos : sc.remplir)[sorte];
  for (int i = 1; i + 1 < np; ++i) fn(a[0], a[i], a[i + 1], trace);
  return 0;
}

// Farthest first: an in-place quicksort of the two parallel arrays, the
// pivot the key at the middle.
void trier_faces(int* index, float* cle, long n) {
  while (n > 1) {
    float piv = cle[n / 2];
    long i = 0, j = n - 1;
    while (i <= j) {
      while (cle[i] > piv) ++i;
      while (cle[j] < piv) --j;
      if (i <= j) {
        std::swap(cle[i], cle[j]);
        std::swap(index[i], index[j]);
        ++i, --j;
      }
    }
    // The smaller part recursively, the larger by the loop: a bounded depth.
    if (j + 1 < n - i) {
      trier_faces(index, cle, j + 1);
      index += i, cle += i, n -= i;
    } else {
      trier_faces(index + i, cle + i, n - i);
      n = j + 1;
    }
  }
}

int ombre(const Vol_aff& v, Trace& t, const float* vue, const float* pr) {
  if (!v.fac || v.nf <= 0 || v.fac[1] != BLOC_LISTE) return 0;
  Scene sc;
  sc.v = &v;
  std::copy(vue, vue + 16, sc.vue);
  sc.parallele = pr[15] != 0;
  sc.type = std::clamp(std::abs(v.type), 1, 3);
  sc.deux_cotes = v.type < 0;
  const float* il = v.illum ? v.illum : ILLUM_DEFAUT;
  const float* co = v.coul ? v.coul : BLANC;
  sc.coef = il[1];
  for (int k = 0; k < 3; ++k) sc.kd[k] = il[1] * co[k];
  sc.ecl.specu = il[2];
  sc.ecl.brillance = il[3];
  const float transp = il[4];
  t.alpha = transp != 0 ? 1 - transp : 1.f;
  if (!(t.alpha > 0)) t.alpha = 0;  // fully transparent (or NaN): drawn, not seen
  sc.ecl.n = lum_preparer(v.lum, v.nlum, lums);
  sc.ecl.lum = lums;
  // Ambient: the scene's (b87) with flag [87] on, times the default
  // material ambient of OpenGL, 0.2.
  if (etat_ou(1, B_AMB, 1) > 0) {
    int n = 0;
    const reel* a = mot_valeurs(B_AMB, &n);
    for (int k = 0; k < 3; ++k) sc.ecl.amb[k] = 0.2f * (a && n > k ? a[k] : 0.2f);
  }
  t.ecl = &sc.ecl;
  int zm = v.zbu >= 0 ? v.zbu : (etat_ou(1, B_ZBU, 1) > 0 ? zbuf_mode() : 0);
  t.zmode = std::clamp(zm, 0, 2);
  if (t.zmode && zbuf_pret(t.zmode, t.l, t.h) < 0) return -1;
  sc.t = t;
  sc.ecl_dos = sc.ecl;
  sc.ecl_dos.specu = sc.ecl_dos.brillance = 0;
  sc.t_dos = t;
  sc.t_dos.alpha = 1;
  sc.t_dos.ecl = &sc.ecl_dos;
  for (int s = 0; s < TRI_SORTES; ++s) {
    sc.remplir[s] = triangle_choisi(s, sc.t);
    sc.remplir_dos[s] = triangle_choisi(s, sc.t_dos);
  }
  if (sc.type >= 2 && v.n_som && !coul_pret(v.ns)) return -1;
  if (++tr.passe == 0) {
    std::fill(tr.marque.get(), tr.marque.get() + 2 * tr.n_coul, 0u);
    tr.passe = 1;
  }
  // Faces by pointer in the list's order.
  const bool trier = transp != 0 && v.tri && !v.liste_fac;
  if (!v.liste_fac && !trier) {
    const mot* p = v.fac + 4;
    for (int f = 0; f < v.nf && f < v.fac[2]; ++f, p = face_suivante(p))
      if (face_ombree(sc, f, p) < 0) return -1;
    return 0;
  }
  // An order: the caller's list, or the faces sorted farthest first.
  long nf = std::min<long>(v.nf, v.fac[2]);
  if (!ordre_pret(std::max<long>(nf, v.n_liste)) || !poly_pret(1)) return -1;
  if (nf > tr.n_adr) {
    tr.n_adr = 0;
    if (!grandit(tr.adr, nf)) return -1;
    tr.n_adr = nf;
  }
  const mot** adr = tr.adr.get();
  const mot* p = v.fac + 4;
  for (long f = 0; f < nf; ++f, p = face_suivante(p)) adr[f] = p;
  long n = 0;
  if (v.liste_fac) {
    for (int i = 0; i < v.n_liste; ++i)
      if (v.liste_fac[i] >= 1 && v.liste_fac[i] <= nf) tr.ordre[n++] = v.liste_fac[i] - 1;
  } else {
    for (long f = 0; f < nf; ++f) {
      int k;
      const mot* c = face_contour(adr[f], &k);
      double d[3] = {0, 0, 0};
      int m = 0;
      for (int i = 0; i < k; ++i) {
        if (c[i] < 1 || c[i] > v.ns) continue;
        for (int j = 0; j < 3; ++j) d[j] += tr.som[c[i] - 1].e[j];
        ++m;
      }
      float cle = m ? static_cast<float>((d[0] * d[0] + d[1] * d[1] + d[2] * d[2]) / (static_cast<double>(m) * m)) : 0;
      tr.ordre[n] = static_cast<int>(f);
      tr.cle[n++] = std::isfinite(cle) ? cle : 0;
    }
    trier_faces(tr.ordre.get(), tr.cle.get(), n);
  }
  for (long i = 0; i < n; ++i)
    if (face_ombree(sc, tr.ordre[i], adr[tr.ordre[i]]) < 0) return -1;
  return 0;
}

// The segment between two projected vertices, clipped in clip space.
void segment(const Trace& t, const SomP& a, const SomP& b, const float* coul) {
  if ((a.code | b.code) & SOM_NAN || (a.code & b.code)) return;
  float u0 = 0, u1 = 1;
  int ou = a.code | b.code;
  for (int cote = 0; cote < 6; ++cote) {
    if (!(ou & (1 << cote))) continue;
    int axe = cote >> 1;
    float sg = (cote & 1) ? -1.f : 1.f;
    float da = a.c[3] + sg * a.c[axe], db = b.c[3] + sg * b.c[axe];
    if (da < 0 && db < 0) return;
    if (da < 0) u0 = std::max(u0, da / (da - db));
    else if (db < 0) u1 = std::min(u1, da / (da - db));
  }
  if (u0 > u1) return;
  float ca[4], cb[4], sa[3], sb[3];
  for (int k = 0; k < 4; ++k) {
    ca[k] = a.c[k] + u0 * (b.c[k] - a.c[k]);
    cb[k] = a.c[k] + u1 * (b.c[k] - a.c[k]);
  }
  fenetre(ca, static_cast<float>(t.l), static_cast<float>(t.h), sa);
  fenetre(cb, static_cast<float>(t.l), static_cast<float>(t.h), sb);
  ligne(t, sa[0], sa[1], sb[0], sb[1], coul);
}

void fil(const Vol_aff& v, const Trace& t, const float* coul) {
  if (v.aretes && v.ne > 0) {
    const mot* a = v.aretes[1] == BLOC_ENTIER ? v.aretes + 4 : v.aretes;
    long ne = v.aretes[1] == BLOC_ENTIER ? std::min<long>(v.ne, (v.aretes[0] - 4) / 2) : v.ne;
    for (long e = 0; e < ne; ++e) {
      int i = a[2 * e], j = a[2 * e + 1];
      if (i >= 1 && i <= v.ns && j >= 1 && j <= v.ns) segment(t, tr.som[i - 1], tr.som[j - 1], coul);
    }
    return;
  }
  if (!v.fac || v.fac[1] != BLOC_LISTE) return;
  const mot* p = v.fac + 4;
  for (int f = 0; f < v.nf && f < v.fac[2]; ++f, p = face_suivante(p)) {
    int np;
    const mot* c = face_contour(p, &np);
    for (int i = 0; i < np; ++i) {
      int a = c[i], b = c[(i + 1) % np];
      if (a >= 1 && a <= v.ns && b >= 1 && b <= v.ns) segment(t, tr.som[a - 1], tr.som[b - 1], coul);
    }
  }
}

void points(const Vol_aff& v, const Trace& t, const float* coul) {
  int n = 0;
  const reel* r = mot_defauts(B_RAYON, &n);
  float cote = r && n >= 1 ? r[0] : 2.f;
  int ic = cote >= 1 && cote < 1000 ? static_cast<int>(cote) : 2;
  for (int i = 0; i < v.ns; ++i) {
    const SomP& s = tr.som[i];
    if (s.code) continue;
    carre(t, s.s[0], s.s[1], ic, coul);
    if (v.mode == -10)
      numero(t, static_cast<int>(s.s[0]) + ic / 2 + 2, static_cast<int>(s.s[1]), i + 1, coul);
  }
}
}  // namespace

int rendu_vol(const Vol_aff& v) {
  if (!v.som || v.ns <= 0 || v.dim < 3) return 0;
  mot* im = ima_ecran();
  if (!im) return -1;
  Trace t;
  t.ima = im;
  t.l = ima_l(im);
  t.h = ima_h(im);
  float vue[16], pr[16];
  oeil_matrices(t.l, t.h, vue, pr);
  zbuf_echelle(oeil_courant.proche, oeil_courant.loin, t);
  if (!som_pret(v.ns)) return -1;
  projeter(v, vue, pr, static_cast<float>(t.l), static_cast<float>(t.h));
  if (v.mode == -68) return 0;
  const float* co = v.coul ? v.coul : BLANC;
  float niv[3] = {co[0] * 255, co[1] * 255, co[2] * 255};
  int r = 0;
  if (v.mode == -9 || v.mode == -10) points(v, t, niv);
  else if (v.mode == 0 || v.type == 0) fil(v, t, niv);
  else r = ombre(v, t, vue, pr);
  if (ima_fenetre.apres_ecriture) ima_fenetre.apres_ecriture();
  return r;
}
