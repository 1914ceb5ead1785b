// What a running interaction asks of the dynamics by phrase: the windows
// applied with no forces (`lim`), the pull (`tire`) and the re-rooting of
// the tree at another volume (`origine`).
//
// The pull writes the force at the tip of each record's lever in (for,
// tire), which the frame zeroes at its end: a pull lasts while the phrase
// runs at every frame. It goes up the leaders from the volume whose
// vertices are dragged, and stops before the stop volume or at the root.
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>
#include <utility>

#include "anim/dyn.h"
#include "core/message.h"
#include "display/display.h"
#include "display/oeil.h"
#include "geom/geom.h"
#include "startup/startup.h"

namespace dyn {
namespace {
constexpr int A_EXPOSANT = 47, A_FORCE = 59, A_SQUELETTE = 67, B_PARTIES = 119, B_VUE = 114;

int limite_rec(Vol_inter* r, int prof) {
  if (prof > nb_records() + 1) return 0;  // a tree that leads back to itself
  int n = fenetres(r);
  vol_inter_matrice(r);
  for (int j = 0; j < r->nb_suiv; ++j)
    if (r->suiv[j]) n += limite_rec(r->suiv[j], prof + 1);
  return n;
}

// The world position of vertex s (from 1) of a record, or its centre.
void monde_som(const Vol_inter* r, int s, float* out) {
  const float* p = r->centre;
  int nb = 0, d = 3;
  const reel* som = r->objet ? vol_som(r->objet, &nb, &d) : nullptr;
  if (som && s >= 1 && s <= nb && d >= 3) p = som + static_cast<long>(s - 1) * d;
  const float in[3] = {p[0], p[1], p[2]};
  matrice_applique(r->mat, in, out);
}

const reel* nombres(const mot* e, int* n) {
  *n = 0;
  if (e[0] <= 3) return nullptr;
  const mot* v = e + 3;
  if (v[0] == BLOC_REEL) return *n = 1, reinterpret_cast<const reel*>(v + 1);
  if (v[0] >= 5 && v[1] == BLOC_REEL) return *n = v[0] - 4, reels(const_cast<mot*>(v) + 4);
  return nullptr;
}
}  // namespace

bool pixel_monde(float px, float py, const float* t, float* out) {
  float vue[16], proj[16];
  const int dx = fen.dimx > 0 ? fen.dimx : 1, dy = fen.dimy > 0 ? fen.dimy : 1;
  oeil_matrices(dx, dy, vue, proj);
  // M = proj vue, column-major as GL's; the clip depth of t is kept.
  double m[16], g[4][8];
  for (int c = 0; c < 4; ++c)
    for (int r = 0; r < 4; ++r) {
      double x = 0;
      for (int k = 0; k < 4; ++k) x += static_cast<double>(proj[4 * k + r]) * vue[4 * c + k];
      m[4 * c + r] = x;
    }
  double w = m[15], z = m[14];
  for (int k = 0; k < 3; ++k) w += m[4 * k + 3] * t[k], z += m[4 * k + 2] * t[k];
  if (!(std::fabs(w) > 1e-12)) return false;
  // Mouse rows count from the top of the window, GL's from the bottom.
  const double v[4] = {2.0 * px / dx - 1.0, 2.0 * (dy - py) / dy - 1.0, z / w, 1.0};
  // Gauss-Jordan with partial pivoting on [M | I].
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 8; ++c) g[r][c] = c < 4 ? m[4 * c + r] : (c - 4 == r ? 1.0 : 0.0);
  for (int c = 0; c < 4; ++c) {
    int piv = c;
    for (int r = c + 1; r < 4; ++r)
      if (std::fabs(g[r][c]) > std::fabs(g[piv][c])) piv = r;
    if (!(std::fabs(g[piv][c]) > 1e-30)) return false;
    for (int k = 0; k < 8; ++k) std::swap(g[c][k], g[piv][k]);
    const double d = g[c][c];
    for (double& x : g[c]) x /= d;
    for (int r = 0; r < 4; ++r)
      if (r != c) {
        const double f = g[r][c];
        for (int k = 0; k < 8; ++k) g[r][k] -= f * g[c][k];
      }
  }
  double q[4];
  for (int r = 0; r < 4; ++r) q[r] = g[r][4] * v[0] + g[r][5] * v[1] + g[r][6] * v[2] + g[r][7] * v[3];
  if (!(std::fabs(q[3]) > 1e-30)) return false;
  for (int k = 0; k < 3; ++k) out[k] = static_cast<float>(q[k] / q[3]);
  return std::isfinite(out[0]) && std::isfinite(out[1]) && std::isfinite(out[2]);
}

int limite_inter(Vol_inter* r) {
  if (r) return limite_rec(r, 0);
  int n = 0;
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant)
    if (!v->lead) n += limite_rec(v, 0);
  return n;
}

bool tire_attache(const mot* bloc) {
  const mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0])
    if ((e[1] == 1 && (e[2] == B_BOITE || (e[2] >= B_ROTAK && e[2] <= B_ROTZK) || e[2] == B_AXEK ||
                       e[2] == B_COURBE || e[2] == B_PARTIES || e[2] == B_VUE)) ||
        (e[1] == 0 && e[2] == A_SQUELETTE))
      return true;
  return false;
}

bool tire_forme(const mot* bloc) {
  const mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0])
    if ((e[1] == 1 && (e[2] == B_SOMK || e[2] == B_TRAIT || e[2] == B_BORNES || e[2] == B_PTS || e[2] == B_SOU ||
                       e[2] == B_COE)) ||
        (e[1] == 0 && (e[2] == A_EXPOSANT || e[2] == A_FORCE)))
      return true;
  return false;
}

int tire(mot* bloc) {
  int vols[2] = {0, 0}, nv = 0;
  const reel* coe = nullptr;
  int ncoe = 0, nsom = 0;
  float cible[3] = {0, 0, 0}, k1 = 1, e1 = 0;
  bool a_cible = false, ecran = false;
  const reel* listes[8] = {};
  int nl[8] = {};
  float angles[3] = {0, 0, 0};
  int nang = 0;
  const mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
    int n = 0;
    const reel* x = nombres(e, &n);
    if (e[1] == 1 && e[2] == B_VOLK) {
      for (int j = 0; j < n && nv < 2; ++j) {
        mot num = 0;
        vols[nv++] = reel_entier(x[j], &num) ? num : 0;
      }
    } else if (e[1] == 1 && (e[2] == B_SOMK || e[2] == B_TRAIT || e[2] == B_BORNES)) {
      if (x && nsom < 8) listes[nsom] = x, nl[nsom] = n, ++nsom;
    } else if (e[1] == 1 && e[2] == B_COE) {
      coe = x, ncoe = n;
    } else if (e[1] == 0 && e[2] == A_EXPOSANT && n > 0) {
      e1 = x[0];
    } else if (e[1] == 0 && e[2] == A_FORCE && n > 0) {
      k1 = x[0];
    } else if (e[1] == 1 && e[2] == B_JOI && n > 0) {
      for (nang = 0; nang < n && nang < 3; ++nang) angles[nang] = std::isfinite(x[nang]) ? x[nang] : 0.f;
    } else if (e[1] == 1 && e[2] == B_PTS && n >= 3) {
      cible[0] = x[0], cible[1] = x[1], cible[2] = x[2], a_cible = true;
    } else if (e[1] == 1 && e[2] == B_SOU && n > 0) {
      const bool mouv = x[0] != 0;
      cible[0] = static_cast<float>(mouv ? fen.souris_x : fen.clic_x);
      cible[1] = static_cast<float>(mouv ? fen.souris_y : fen.clic_y);
      cible[2] = 0, a_cible = true, ecran = true;
    }
  }
  Vol_inter* b = nv > 0 ? vol_inter_de(vols[0]) : nullptr;
  Vol_inter* a = nv > 1 ? vol_inter_de(vols[1]) : nullptr;
  if (!b) {
    std::printf("%d: ", vols[0]);
    message(0, 9);
    return -1;
  }
  if (!a_cible || !std::isfinite(cible[0]) || !std::isfinite(cible[1]) || !std::isfinite(cible[2])) {
    mot_imprime(1, B_TIRE);
    message(0, MES_VALEUR);
    return -1;
  }
  // The dragged point: the mean of the listed vertices in the world.
  float t[3] = {0, 0, 0};
  int nt = 0;
  for (int l = 0; l < nsom; ++l)
    for (int j = 0; j + 2 <= nl[l]; j += 2) {
      const reel* x = listes[l];
      mot s0 = 0, s1 = 0;
      if (!reel_entier(x[j], &s0, 1, b->nb_som) || !reel_entier(x[j + 1], &s1, 1, b->nb_som)) continue;
      for (mot s = s0; s <= s1; ++s) {
        float w[3];
        monde_som(b, s, w);
        for (int c = 0; c < 3; ++c) t[c] += w[c];
        ++nt;
      }
    }
  if (nt == 0) monde_som(b, 0, t), nt = 1;
  for (float& c : t) c /= static_cast<float>(nt);
  // The pointer's pixel, at the depth of the dragged point, in the world.
  if (ecran && !pixel_monde(cible[0], cible[1], t, cible)) {
    mot_imprime(1, B_TIRE);
    message(0, MES_VALEUR);
    return -1;
  }
  float dir[3] = {cible[0] - t[0], cible[1] - t[1], cible[2] - t[2]};
  const float dist = norme(dir);
  unit(dir);
  int paire = 0, pas = 0, vus = 0;
  for (Vol_inter* r = b; r && r != a && pas <= nb_records(); r = r->lead, ++pas) {
    reel* f = val2(r->objet, 1, B_FOR, 1, B_TIRE, 3);
    if (!f) continue;
    float anc[3], cen[3], u[3], ax[3];
    monde_som(r, r->lead ? r->som_suiv : 0, anc);
    matrice_applique(r->mat, r->centre, cen);
    for (int c = 0; c < 3; ++c) u[c] = cen[c] - anc[c];
    unit(u);
    croix(u, dir, ax);
    float k = k1, ex = e1;
    if (coe && paire + 2 <= ncoe) k = coe[paire], ex = coe[paire + 1], paire += 2;
    const float s = ex >= 0 ? static_cast<float>(puissance(static_cast<double>(k) * dist, ex)) : k;
    // The j-th record pulled takes the j-th angle, in degrees: its force
    // turns about the lever, still across it.
    if (vus < nang && angles[vus] != 0) {
      const float a = angles[vus] / DEG, ca = std::cos(a), sa = std::sin(a);
      float ux[3];
      croix(u, ax, ux);
      for (int c = 0; c < 3; ++c) ax[c] = ca * ax[c] + sa * ux[c];
    }
    ++vus;
    for (int c = 0; c < 3; ++c) f[c] += s * ax[c];
    float g[3] = {f[0], f[1], f[2]};
    if (norme(g) >= 0.0001f) {
      unit(g);
      const float sg = dot(r->axe, f) < 0 ? -1.f : 1.f;
      for (int c = 0; c < 3; ++c) r->axe[c] = sg * g[c];
    }
    vol_inter_matrice(r);
  }
  return 0;
}

int origine(Vol_inter* r) {
  if (!r || !r->lead) return 0;
  const int nr = nb_records();
  // 1. The world angle and place of r.
  std::vector<Vol_inter*> ch{r};
  float somme = r->angle;
  while (ch.back()->lead && static_cast<int>(ch.size()) <= nr) {
    ch.push_back(ch.back()->lead);
    somme += ch.back()->angle;
  }
  if (ch.back()->lead) {  // a cycle: leave the tree as it is
    message(1, MES_ARBRE);
    return -1;
  }
  const float monde[3] = {r->mat[12], r->mat[13], r->mat[14]};
  const float axe[3] = {ch.back()->axe[0], ch.back()->axe[1], ch.back()->axe[2]};
  // 2. The former links and angles.
  const std::size_t n = ch.size();
  std::vector<int> sl(n), ss(n);
  std::vector<float> an(n);
  for (std::size_t i = 0; i < n; ++i) sl[i] = ch[i]->som_lead, ss[i] = ch[i]->som_suiv, an[i] = ch[i]->angle;
  // 3-4. Each former parent becomes the child of its former child, with the
  // anchor vertices swapped and minus the former child's angle.
  for (std::size_t i = 0; i + 1 < n; ++i) {
    Vol_inter* c = ch[i];
    Vol_inter* p = ch[i + 1];
    for (int j = 0; j < p->nb_suiv; ++j)
      if (p->suiv[j] == c) {
        p->suiv[j] = p->suiv[--p->nb_suiv];
        p->suiv[p->nb_suiv] = nullptr;
        break;
      }
    if (c->nb_suiv < MAX_SUIV) c->suiv[c->nb_suiv++] = p;
    p->lead = c, p->lead_num = c->num;
    p->som_suiv = sl[i], p->som_lead = ss[i];
    p->angle = -an[i];
  }
  r->lead = nullptr, r->lead_num = 0, r->som_lead = r->som_suiv = 0;
  // 5. Only the root keeps a place; levers from the new anchors.
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) {
    if (v->lead) v->pos[0] = v->pos[1] = v->pos[2] = 0;
    const reel* cf = val3(v->objet, 1, B_COE, 1, B_FOR, 1, B_ROTAK, 1);
    int nb = 0, d = 3;
    const reel* s = v->objet ? vol_som(v->objet, &nb, &d) : nullptr;
    if (cf) {
      v->bras = cf[0];
    } else if (v->lead && s && v->som_suiv >= 1 && v->som_suiv <= nb) {
      const float* p = s + static_cast<long>(v->som_suiv - 1) * d;
      const float e[3] = {p[0] - v->centre[0], p[1] - v->centre[1], p[2] - v->centre[2]};
      v->bras = norme(e);
    } else {
      v->bras = norme(v->centre);
    }
  }
  // 6. r keeps its place in the world, turns by the whole chain's angle
  // about the former root's axis.
  r->angle = somme;
  for (int c = 0; c < 3; ++c) r->axe[c] = axe[c];
  vol_inter_matrice(r);
  for (int c = 0; c < 3; ++c) r->pos[c] += monde[c] - r->mat[12 + c];
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) vol_inter_matrice(v);
  return 0;
}
}  // namespace dyn
