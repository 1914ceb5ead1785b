// Making and freeing the runtime records of the real-time frame, and their
// normals. Everything a frame needs is made here once, so that a frame
// follows arrays and allocates nothing.
#define GL_GLEXT_PROTOTYPES 1
#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "core/message.h"
#include "core/objet.h"
#include "display/aff_rt.h"
#include "display/moteurs.h"
#include "geom/geom.h"
#include "image/image.h"

namespace {
constexpr int B_NURBS = 45, B_LIGNES_RT = 79;

// Every record in its order of making, and the selection of aff_rt(null).
std::vector<Vol_rt*> tous;
std::vector<Vol_rt*> choisis;

void normer(double* s, float* out) {
  double l2 = s[0] * s[0] + s[1] * s[1] + s[2] * s[2];
  if (l2 > SEUIL_NORME) {
    double l = std::sqrt(l2);
    s[0] /= l, s[1] /= l, s[2] /= l;
  }
  out[0] = static_cast<float>(s[0]);
  out[1] = static_cast<float>(s[1]);
  out[2] = static_cast<float>(s[2]);
}

// Clamped uniform knots of a cubic with n control points.
void noeuds(int n, std::vector<float>& k) {
  k.resize(static_cast<std::size_t>(n) + 4);
  int m = n - 3;  // spans
  for (int i = 0; i < n + 4; ++i)
    k[i] = i < 4 ? 0.f : (i >= n ? 1.f : static_cast<float>(i - 3) / static_cast<float>(m));
}

int sans_memoire(long n) {
  std::printf("%ld: ", n);
  message(0, MES_ALLOCATION);
  return -1;
}

// Faces, corners, fans and edges of the volume's face list.
void faces_lit(Vol_rt* r, Vol_rt_gl& g, const mot* fac) {
  const mot* f = fac + 4;
  g.fac_deb.push_back(0);
  g.tri_deb.push_back(0);
  for (int i = 0; i < r->nf; ++i, f = face_suivante(f)) {
    int k;
    const mot* c = face_contour(f, &k);
    auto d = static_cast<std::uint32_t>(g.coins.size());
    for (int j = 0; j < k; ++j) g.coins.push_back(static_cast<std::uint32_t>(c[j] - 1));
    for (int j = 1; j + 1 < k; ++j) {
      g.tri.insert(g.tri.end(), {g.coins[d], g.coins[d + j], g.coins[d + j + 1]});
      g.tri_c.insert(g.tri_c.end(), {d, d + j, d + j + 1});
    }
    g.fac_deb.push_back(static_cast<std::uint32_t>(g.coins.size()));
    g.tri_deb.push_back(static_cast<std::uint32_t>(g.tri_c.size()));
  }
}

// The edges `v` when given, else each contour's sides once.
void aretes_lit(Vol_rt* r, Vol_rt_gl& g, const mot* v) {
  if (v && v[1] == BLOC_ENTIER && v[3] == 2 && v[0] >= 4 + 2L * v[2]) {
    for (int i = 0; i < v[2]; ++i) {
      int s = v[4 + 2 * i], t = v[5 + 2 * i];
      if (s < 1 || t < 1 || s > r->ns || t > r->ns) continue;
      g.lig.push_back(static_cast<std::uint32_t>(s - 1));
      g.lig.push_back(static_cast<std::uint32_t>(t - 1));
    }
  } else {
    std::vector<std::uint64_t> paires;
    for (int i = 0; i < r->nf; ++i) {
      std::uint32_t d = g.fac_deb[i], k = g.fac_deb[i + 1] - d;
      if (k < 2) continue;
      for (std::uint32_t j = 0; j < (k == 2 ? 1u : k); ++j) {
        std::uint64_t s = g.coins[d + j], t = g.coins[d + (j + 1) % k];
        if (s > t) std::swap(s, t);
        paires.push_back(s << 32 | t);
      }
    }
    std::sort(paires.begin(), paires.end());
    paires.erase(std::unique(paires.begin(), paires.end()), paires.end());
    for (std::uint64_t p : paires) {
      g.lig.push_back(static_cast<std::uint32_t>(p >> 32));
      g.lig.push_back(static_cast<std::uint32_t>(p));
    }
  }
  r->ne = static_cast<int>(g.lig.size() / 2);
}

void couleurs_lit(Vol_rt* r, Vol_rt_gl& g, Objet* o) {
  const mot cle_f[4] = {1, B_COUL, 1, B_FAC}, cle_s[4] = {1, B_COUL, 1, B_SOMMET};
  if (const mot* v = vol_valeur(o, 2, cle_f); v && r->nf > 0) {
    g.c_fac.assign(3 * static_cast<std::size_t>(r->nf), NAN);
    for (int i = 1; i <= r->nf; ++i)
      if (const float* c = coul_element(v, i)) std::copy(c, c + 3, &g.c_fac[3 * (i - 1)]);
  }
  if (const mot* v = vol_valeur(o, 2, cle_s)) {
    g.c_som.resize(3 * static_cast<std::size_t>(r->ns));
    for (int i = 1; i <= r->ns; ++i) {
      const float* c = coul_element(v, i);
      std::copy(c ? c : r->coul, (c ? c : r->coul) + 3, &g.c_som[3 * (i - 1)]);
    }
  }
}
}  // namespace

Tampon_gl::~Tampon_gl() {
  if (id) glDeleteBuffers(1, &id);
}
GLuint Tampon_gl::pret() {
  if (!id) glGenBuffers(1, &id);
  return id;
}

Vol_rt_gl::~Vol_rt_gl() {
  if (nurbs) gluDeleteNurbsRenderer(nurbs);
}

Vol_rt* vol_rt_cree(Objet* o) {
  if (!est_volume(o)) {
    message(0, MES_VALEUR);
    return nullptr;
  }
  int ns = 0, d = 3;
  const reel* s = vol_som(o, &ns, &d);
  const mot cle[2] = {1, B_SEGMENT};
  mot* a = vol_attribut(o, 1, cle);
  return vol_rt_cree_de(o, s, s ? ns : 0, d, vol_fac(o), attribut_valide(a) ? valeur_de(a) : nullptr);
}

Vol_rt* vol_rt_cree_de(Objet* o, const reel* s, int ns, int d, const mot* fac, const mot* aretes) {
  if (!est_volume(o)) {
    message(0, MES_VALEUR);
    return nullptr;
  }
  if (fac && s && fac_verifie(fac, ns)) return nullptr;
  Vol_rt* r = nullptr;
  try {
    r = new Vol_rt;
    r->gl = new Vol_rt_gl;
    Vol_rt_gl& g = *r->gl;
    r->numero = o->numero;
    r->type = vol_forme(o);
    r->affiche = r->type == B_SOM ? -1 : 1;
    r->ns = r->ns_affiche = s ? ns : 0;
    r->dim = d;
    r->som = new float[static_cast<std::size_t>(r->ns) * d + 1];
    if (s) std::memcpy(r->som, s, sizeof(float) * r->ns * d);
    std::memcpy(r->coul, vol_coul(o), sizeof r->coul);
    std::memcpy(r->illum, vol_illum(o), sizeof r->illum);
    r->nf = fac && s ? fac[2] : 0;
    if (r->nf) faces_lit(r, g, fac);
    else g.fac_deb.push_back(0);
    aretes_lit(r, g, aretes);
    couleurs_lit(r, g, o);
    // The texture lists: the corners' coordinates.
    int ima = 0;
    if (vol_mappe(o, g.mappe, &ima) != 0 || g.mappe.size() != 2 * g.coins.size()) g.mappe.clear();
    g.n_fac.resize(3 * static_cast<std::size_t>(r->nf));
    g.n_som.resize(3 * static_cast<std::size_t>(r->ns));
    g.eclate.reserve(g.coins.size() * 12);
    tous.push_back(r);
  } catch (const std::bad_alloc&) {
    vol_rt_libere(r);
    sans_memoire(ns);
    return nullptr;
  }
  rt_normales(r);
  // An image of the lists that does not exist, or a face's 101st texture,
  // abandons the volume; every image they name is made a texture.
  static std::vector<int> toutes;
  if (vol_textures(o, r->nf, r->gl->tex_ima, &toutes) < 0) {
    vol_rt_libere(r);
    return nullptr;
  }
  if (r->gl->mappe.empty()) r->gl->tex_ima.clear();
  r->gl->tex_fac.assign(r->gl->tex_ima.size(), -1);
  for (int n : toutes)
    if (textures_creer(n) < 0) {
      vol_rt_libere(r);
      return nullptr;
    }
  if (!r->gl->tex_ima.empty()) {
    Vol_rt_gl& g = *r->gl;
    for (std::size_t i = 0; i < g.tex_ima.size(); ++i) {
      g.tex_fac[i] = g.tex_ima[i] ? texture_nom(g.tex_ima[i]) : -1;
      if (!r->tex_ima && g.tex_ima[i]) r->tex_ima = g.tex_ima[i], r->tex = g.tex_fac[i];
    }
  }
  // (b45) = nu, nv: the vertices are the control points of a surface.
  const mot cle[2] = {1, B_NURBS};
  // (b45) = nu, nv, u, v, pas: with its sampling.
  if (const mot* v = vol_valeur(o, 1, cle); v && v[1] == BLOC_REEL && v[0] >= 6) {
    float x[5] = {0, 0, 0, 0, 0};
    for (int k = 0; k < 5 && 4 + k < v[0]; ++k) x[k] = lit_reel(v + 4 + k);
    bool fini = std::isfinite(x[0]) && std::isfinite(x[1]) && std::fabs(x[0]) < 1e9f && std::fabs(x[1]) < 1e9f;
    if (vol_rt_nurbs(r, fini ? static_cast<int>(x[0]) : 0, fini ? static_cast<int>(x[1]) : 0) == 0 && v[0] >= 8)
      vol_rt_nurbs_pas(r, x[2], x[3], x[4]);
  }
  return r;
}

void vol_rt_libere(Vol_rt* r) {
  if (!r) return;
  std::erase(tous, r);
  std::erase(choisis, r);
  for (Vol_rt* x : tous) {
    std::erase(x->gl->sources, r);
    std::erase_if(x->gl->epingles, [r](const Vol_rt_gl::Epingle& e) { return e.autre == r; });
    if (x->lead == r) x->lead = nullptr;
    if (x->instance == r) x->instance = nullptr;
    Vol_rt** fin = std::remove(x->suiv, x->suiv + x->suiv_nb, r);
    x->suiv_nb = static_cast<int>(fin - x->suiv);
  }
  delete r->gl;
  delete[] r->som;
  delete[] r->suiv;
  delete r;
}

void vol_rt_texture(int image, int nom) {
  for (Vol_rt* x : tous) {
    if (x->tex_ima == image) x->tex = nom;
    if (!x->gl) continue;
    for (std::size_t i = 0; i < x->gl->tex_ima.size() && i < x->gl->tex_fac.size(); ++i)
      if (x->gl->tex_ima[i] == image) x->gl->tex_fac[i] = nom;
  }
}

void vol_rt_tous_libere() {
  while (!tous.empty()) vol_rt_libere(tous.back());
}

void vol_rt_som_change(Vol_rt* r) {
  if (r && r->gl) r->gl->modifie = true;
}

int vol_rt_suiveur(Vol_rt* chef, Vol_rt* suiv) {
  if (!chef || !suiv || chef == suiv) return -1;
  auto** t = new (std::nothrow) Vol_rt*[chef->suiv_nb + 1];
  if (!t) return sans_memoire(chef->suiv_nb + 1);
  std::copy(chef->suiv, chef->suiv + chef->suiv_nb, t);
  t[chef->suiv_nb] = suiv;
  delete[] chef->suiv;
  chef->suiv = t;
  ++chef->suiv_nb;
  return 0;
}

int vol_rt_nurbs(Vol_rt* r, int nu, int nv) {
  if (!r || nu < 4 || nv < 4 || static_cast<long>(nu) * nv != r->ns) {
    std::printf("%d x %d: ", nu, nv);
    message(0, MES_VALEUR);
    return -1;
  }
  Vol_rt_gl& g = *r->gl;
  g.nu = nu, g.nv = nv;
  // The u direction walks a row of nu vertices (stride dim), the v
  // direction from row to row (stride dim x nu).
  noeuds(nu, g.ku);
  noeuds(nv, g.kv);
  return 0;
}

int vol_rt_nurbs_pas(Vol_rt* r, float u, float v, float pas) {
  if (!r || !r->gl || r->gl->nu < 1 || !std::isfinite(u) || !std::isfinite(v) || !std::isfinite(pas)) {
    std::printf("%g %g %g: ", u, v, pas);
    message(0, MES_VALEUR);
    return -1;
  }
  // The parameters run over 0..1: 256 samples each way already make more
  // quads than pixels; more would freeze the frame, not refine it.
  constexpr float BORNE = 256;
  r->gl->u = std::clamp(u, 0.f, BORNE);
  r->gl->v = std::clamp(v, 0.f, BORNE);
  r->gl->pas = std::clamp(pas, 0.f, BORNE);
  return 0;
}

int vol_rt_source(Vol_rt* nappe, Vol_rt* source) {
  if (!nappe || !source || nappe == source || nappe->type != B_LIGNES_RT || !nappe->gl) {
    message(0, MES_VALEUR);
    return -1;
  }
  try {
    nappe->gl->sources.push_back(source);
  } catch (const std::bad_alloc&) {
    return sans_memoire(static_cast<long>(nappe->gl->sources.size()) + 1);
  }
  source->garde_matrice = true;
  return 0;
}

int vol_rt_epingle(Vol_rt* nappe, int som, Vol_rt* autre, const float* p) {
  if (!nappe || !autre || !p || nappe == autre || nappe->type != B_LIGNES_RT || !nappe->gl || som < 1 ||
      som > nappe->ns || !std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) {
    std::printf("%d: ", som);
    message(0, MES_VALEUR);
    return -1;
  }
  try {
    nappe->gl->epingles.push_back({som - 1, autre, {p[0], p[1], p[2]}});
  } catch (const std::bad_alloc&) {
    return sans_memoire(static_cast<long>(nappe->gl->epingles.size()) + 1);
  }
  autre->garde_matrice = true;
  return 0;
}

void vol_rt_selection(const Vol_rt* const* liste, int n) {
  choisis.clear();
  for (int i = 0; i < n; ++i) choisis.push_back(const_cast<Vol_rt*>(liste[i]));
}

const std::vector<Vol_rt*>& rt_a_dessiner() { return choisis.empty() ? tous : choisis; }

void rt_normales(Vol_rt* r) {
  Vol_rt_gl& g = *r->gl;
  const float* s = r->som;
  const long d = r->dim;
  std::fill(g.n_som.begin(), g.n_som.end(), 0.f);
  for (int i = 0; i < r->nf; ++i) {
    std::uint32_t a = g.fac_deb[i], k = g.fac_deb[i + 1] - a;
    double n[3] = {0, 0, 0};
    for (std::uint32_t j = 0; j < k && k > 2; ++j) {
      const float* p = s + g.coins[a + j] * d;
      const float* q = s + g.coins[a + (j + 1 < k ? j + 1 : 0)] * d;
      n[0] += (static_cast<double>(p[1]) - q[1]) * (static_cast<double>(p[2]) + q[2]);
      n[1] += (static_cast<double>(p[2]) - q[2]) * (static_cast<double>(p[0]) + q[0]);
      n[2] += (static_cast<double>(p[0]) - q[0]) * (static_cast<double>(p[1]) + q[1]);
    }
    float* nf = &g.n_fac[3 * static_cast<std::size_t>(i)];
    normer(n, nf);
    for (std::uint32_t j = 0; j < k; ++j) {
      float* ns = &g.n_som[3 * static_cast<std::size_t>(g.coins[a + j])];
      ns[0] += nf[0], ns[1] += nf[1], ns[2] += nf[2];
    }
  }
  for (int v = 0; v < r->ns; ++v) {
    float* ns = &g.n_som[3 * static_cast<std::size_t>(v)];
    double x[3] = {ns[0], ns[1], ns[2]};
    normer(x, ns);
  }
  g.modifie = false;
  g.som_envoye = false;
  g.eclate_pret = false;
}
