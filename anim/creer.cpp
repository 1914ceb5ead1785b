// The working record of a volume, built once when the interaction starts
// so that a frame only follows pointers; and the records' release, their
// placement matrix, and the writing back of their live values.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

#include "anim/interne.h"
#include "display/display.h"
#include "geom/geom.h"
#include "startup/startup.h"

namespace {
constexpr int B_NURBS = 45, B_LEAD = 61, B_SUIV = 62, B_FORCE = 113, B_TIRE = 130, B_MOTIF = 27,
              B_TEX_SOM = 23, B_GRILLE_79 = 79, B_INTER = 85, B_TRACE = 28;

int echec(Vol_inter* v, const char* etape, int num) {
  // A step that printed its own reason gives an empty name.
  if (*etape) std::printf("%s\n", etape);
  std::printf("interaction_creer_1(%d)\n", num);
  std::fflush(stdout);
  vol_inter_libere(v);
  return -1;
}

const reel* valeur_reels(Objet* o, int n, const mot* cle, int min) {
  const mot* v = vol_valeur(o, n, cle);
  if (!v || v[1] != BLOC_REEL || v[0] - 4 < min) return nullptr;
  return reels(v + 4);
}

float premier_reel(Objet* o, int n, const mot* cle, float defaut) {
  const reel* r = valeur_reels(o, n, cle, 1);
  return r ? r[0] : defaut;
}
}  // namespace

Vol_inter* interaction_creer_1(Objet* o, int option) {
  (void)option;  // a50 is handed over, and has no use here
  const int num = o->numero;
  auto* v = new (std::nothrow) Vol_inter;
  if (!v) {
    echec(nullptr, "new", num);
    return nullptr;
  }
  // 1. The vertices, and the centre of gravity.
  int ns = 0, d = 3;
  reel* s = vol_som(o, &ns, &d);
  if (s && ns > 0) centre_sommets(s, ns, d, v->centre);
  // 2. The object's identity and grid.
  v->objet = o;
  v->num = num;
  v->attr = o->donnees;
  v->type = vol_forme(o);
  v->nx = vol_nx(o), v->ny = vol_ny(o), v->fermer = vol_ferme(o);
  v->rendu = v->type == B_SOM ? -1 : 1;
  // 3. The live vertices and their two working copies.
  v->nb_som = s ? ns : 0;
  v->stride = d;
  v->som = s;
  if (v->nb_som > 0) {
    const mot n = static_cast<mot>(v->nb_som * d);
    v->som_trav = bloc_alloue(4 + n);
    v->som_orig = bloc_alloue(4 + n);
    if (!v->som_trav || !v->som_orig || vol_inter_adresses(v) < 0) {
      echec(v, "som", num);
      return nullptr;
    }
    for (mot* c : {v->som_trav, v->som_orig}) {
      c[1] = BLOC_REEL, c[2] = v->nb_som, c[3] = d;
      std::memcpy(c + 4, s, sizeof(float) * static_cast<std::size_t>(n));
    }
  }
  // 4. A cloud of points stops here.
  if (v->rendu < 0) return v;
  // 5. Faces and what follows from them.
  v->fac = vol_fac(o);
  v->nb_fac = v->fac ? v->fac[2] : 0;
  if (v->nb_som > 0 && v->nb_fac > 0) {
    mot* nf = gen_normale_fac(o, nullptr, 0, 1);
    if (!nf) return echec(v, "gen_normale_fac", num), nullptr;
    v->normale_fac = valeur_de(nf);
    mot* ns_ = gen_normale_som(o, nullptr, 0);
    if (!ns_) return echec(v, "gen_normale_som", num), nullptr;
    v->normale_som = valeur_de(ns_);
    mot* seg = generer_segment_vol(o, 0, 1, 0);
    if (!seg) return echec(v, "generer_segment_vol", num), nullptr;
    v->seg = valeur_de(seg);
    v->nb_seg = v->seg ? v->seg[2] : 0;
    // The faces as vertex addresses: a loop over them follows pointers.
    v->fac_poi = ad_poi_facette(v->fac, v->som, v->stride, v->nb_som);
    if (!v->fac_poi) return echec(v, "ad_poi_facette", num), nullptr;
    mot* vs = gen_voisin_fac_som(o, 0);
    if (!vs) return echec(v, "gen_voisin_fac_som", num), nullptr;
    v->voisin = valeur_de(vs);
  }
  // 6. Colours and texture coordinates.
  {
    const mot k1[2] = {1, B_COUL};
    v->coe = vol_valeur(o, 1, k1);
    const mot k2[2] = {1, B_TEX_SOM};
    v->tex_som = vol_valeur(o, 1, k2);
    const mot k3[2] = {1, B_MOTIF};
    const reel* l = valeur_reels(o, 1, k3, 1);
    v->lien = l ? static_cast<int>(l[0]) : 0;
  }
  // 7. A surface of lines: its rows are vertices of other volumes, all of
  // one length, and make a grid of its own.
  if (v->type == B_GRILLE_79 && nappe_cree(v) < 0) return echec(v, "", num), nullptr;
  // 8. A surface: its grid is the control net, sampled (s + 1) times
  // finer than the net in each direction.
  bool nurbs = false;
  if (etat_ou(1, B_NURBS, 0) > 0) {
    const mot k[2] = {1, B_NURBS};
    if (const reel* r = valeur_reels(o, 1, k, 1)) {
      const float s_ = r[0];
      if (v->nx < 1 || v->ny < 1 || static_cast<long>(v->nx + 1) * (v->ny + 1) != v->nb_som) {
        return echec(v, "objet_incoherent", num), nullptr;
      }
      v->sub_nurbs = s_ >= 0 && s_ < 64 ? static_cast<int>(s_) : 0;
      v->nu = v->nx * (v->sub_nurbs + 1);
      v->nv = v->ny * (v->sub_nurbs + 1);
      nurbs = true;
      if (grille_fine_cree(v) < 0) return echec(v, "", num), nullptr;
    }
  }
  // 9. Links to a leader and anchor vertices.
  {
    const mot k1[2] = {1, B_LEAD}, k2[4] = {1, B_SOMMET, 1, B_LEAD}, k3[4] = {1, B_SOMMET, 1, B_SUIV};
    v->lead_num = static_cast<int>(premier_reel(o, 1, k1, 0));
    v->som_lead = static_cast<int>(premier_reel(o, 2, k2, 0));
    v->som_suiv = static_cast<int>(premier_reel(o, 2, k3, 0));
  }
  // 10-11. The dynamics' values live with the dynamics; the per-frame
  // force, when present, is zeroed by each frame.
  {
    const mot k[4] = {1, B_FORCE, 1, B_TIRE};
    mot* f = vol_valeur(o, 2, k);
    if (f && f[1] == BLOC_REEL) v->force_frame = reels(f + 4);
  }
  // 12. Optional limits.
  {
    const mot kd[4] = {1, B_DEP2, 0, A_LIM}, kr[4] = {1, B_RAYON, 0, A_LIM};
    v->lim_dep = valeur_reels(o, 2, kd, 6);
    v->lim_rayon = valeur_reels(o, 2, kr, 1);
    const mot ka[4] = {1, B_ROTA, 0, A_LIM}, kx[4] = {1, B_ROTX, 0, A_LIM}, ky[4] = {1, B_ROTY, 0, A_LIM},
              kz[4] = {1, B_ROTZ, 0, A_LIM};
    v->lim_rota = valeur_reels(o, 2, ka, 2);
    v->lim_rotx = valeur_reels(o, 2, kx, 2);
    v->lim_roty = valeur_reels(o, 2, ky, 2);
    v->lim_rotz = valeur_reels(o, 2, kz, 2);
  }
  // 13. The view axis, by default (0, 1, 0).
  {
    const mot k[4] = {1, B_AXE, 1, B_INTER};
    if (const reel* a = valeur_reels(o, 2, k, 3)) {
      std::memcpy(v->axe_vue, a, sizeof v->axe_vue);
      std::memcpy(v->axe, a, sizeof v->axe);
    }
  }
  // 14. The mapping coefficients.
  {
    const mot k[2] = {1, 54};
    v->mappe = vol_valeur(o, 1, k);
  }
  // 16. The trace: nb_traces x 16 floats, all 1000.
  if (inter.nb_traces > 0) {
    std::vector<float> t(static_cast<std::size_t>(inter.nb_traces) * 16, 1000.f);
    const mot k[2] = {1, B_TRACE};
    attribut_supprime(o, 1, k);
    if (!attribut_ecrit_1(o, 1, B_TRACE, t.data(), static_cast<int>(t.size()), 1))
      return echec(v, "trace", num), nullptr;
    const mot* tv = vol_valeur(o, 1, k);
    if (tv && tv[1] == BLOC_REEL && tv[0] - 4 >= inter.nb_traces * 16) v->trace = reels(const_cast<mot*>(tv) + 4);
  }
  // 17. The drawing record of the frame.
  if (v->nappe && v->nappe->grille) {
    const Grille_inter* g = v->nappe->grille;
    v->rt = vol_rt_cree_de(o, reels(g->som + 4), g->ns, 3, g->fac, g->seg);
    if (!v->rt) return echec(v, "vol_rt_cree", num), nullptr;
    nappe_suit(v);
  } else if (v->nb_som > 0) {
    v->rt = vol_rt_cree(o);
    if (!v->rt) return echec(v, "vol_rt_cree", num), nullptr;
  }
  // 15. The surface's renderer belongs to the drawing record, so it comes
  // once the record is made: cubic in both directions over the net of
  // (nx + 1) x (ny + 1) vertices; with (b45, b85) the sampling tolerance is
  // the window's width over that value, in pixels.
  if (nurbs && v->rt) {
    if (vol_rt_nurbs(v->rt, v->nx + 1, v->ny + 1) < 0) return echec(v, "set_knots x", num), nullptr;
    const mot k[4] = {1, B_NURBS, 1, B_INTER};
    if (const reel* t = valeur_reels(o, 2, k, 1)) {
      const float val = std::isfinite(t[0]) && t[0] >= 1e-5f ? t[0] : 1e-5f;
      v->tol_nurbs = static_cast<float>(fen.dimx) / val;
      if (vol_rt_nurbs_pas(v->rt, 0, 0, v->tol_nurbs) < 0) return echec(v, "set_knots y", num), nullptr;
    }
  }
  vol_inter_matrice(v);
  return v;
}

int vol_inter_adresses(Vol_inter* v) {
  bloc_libere(v->som_poi);
  bloc_libere(v->fac_poi);
  v->som_poi = v->fac_poi = nullptr;
  if (!v->som || v->nb_som < 1) return 0;
  const int d = v->stride;
  v->som_poi = bloc_alloue(4 + 3 * v->nb_som);
  if (!v->som_poi) return -1;
  v->som_poi[1] = BLOC_ENTIER, v->som_poi[2] = v->nb_som, v->som_poi[3] = 3;
  for (int k = 0; k < v->nb_som; ++k)
    for (int j = 0; j < 3; ++j)
      v->som_poi[4 + 3 * k + j] = ptr_vers_mot(v->som + static_cast<long>(k) * d + (j < d ? j : 0));
  // Faces that name a vertex the volume no longer has get no addresses.
  if (v->fac && v->nb_fac > 0) v->fac_poi = ad_poi_facette(v->fac, v->som, d, v->nb_som);
  return 0;
}

void vol_inter_libere(Vol_inter* v) {
  if (!v) return;
  bloc_libere(v->som_trav);
  bloc_libere(v->som_orig);
  bloc_libere(v->som_poi);
  bloc_libere(v->fac_poi);
  vol_rt_libere(v->rt);
  nappe_libere(v->nappe);
  grille_inter_libere(v->fine);
  delete v;
}

Vol_inter* vol_inter_de(int num) {
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant)
    if (v->num == num) return v;
  return nullptr;
}

void vol_inter_matrice(Vol_inter* v) {
  // T(pos) T(centre) Rx Ry Rz R(angle, axe) T(-centre)
  constexpr float RAD = 0.017453292f;
  const float zero[3] = {0, 0, 0};
  float m[16], r[16], t[16];
  const float tp[3] = {v->pos[0] + v->centre[0], v->pos[1] + v->centre[1], v->pos[2] + v->centre[2]};
  matrice_translation(tp, m);
  const float ax[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  const float an[4] = {v->rotx, v->roty, v->rotz, v->angle};
  for (int k = 0; k < 4; ++k) {
    if (an[k] == 0) continue;
    matrice_axe(zero, k < 3 ? ax[k] : v->axe, std::cos(an[k] * RAD), std::sin(an[k] * RAD), r);
    matrice_produit(m, r, t);
    std::memcpy(m, t, sizeof m);
  }
  const float tc[3] = {-v->centre[0], -v->centre[1], -v->centre[2]};
  matrice_translation(tc, r);
  matrice_produit(m, r, v->mat);
}

void vol_inter_valide(Vol_inter* v) {
  if (!v->som || v->nb_som < 1) return;
  vol_inter_matrice(v);
  int ns = 0, d = 3;
  reel* s = vol_som(v->objet, &ns, &d);
  if (!s || ns != v->nb_som) return;
  for (int k = 0; k < ns; ++k) {
    reel* p = s + static_cast<long>(k) * d;
    float in[3] = {p[0], d > 1 ? p[1] : 0.f, d > 2 ? p[2] : 0.f}, out[3];
    matrice_applique(v->mat, in, out);
    for (int j = 0; j < 3 && j < d; ++j) p[j] = out[j];
  }
  vol_som_change(v->objet);
  // The live values are now the object's: the placement starts again.
  std::memset(v->pos, 0, sizeof v->pos);
  v->angle = v->rotx = v->roty = v->rotz = 0;
  centre_sommets(s, ns, d, v->centre);
  vol_inter_matrice(v);
}

void vol_inter_restaure(Vol_inter* v) {
  if (!v->som_orig) return;
  int ns = 0, d = 3;
  reel* s = vol_som(v->objet, &ns, &d);
  // The start's copy goes back only over vertices of its own shape.
  if (s && ns == v->som_orig[2] && d == v->som_orig[3]) {
    std::memcpy(s, v->som_orig + 4, sizeof(float) * static_cast<std::size_t>(ns) * d);
    vol_som_change(v->objet);
  }
  std::memset(v->pos, 0, sizeof v->pos);
  v->angle = v->rotx = v->roty = v->rotz = 0;
  vol_inter_matrice(v);
}

int interaction_anc() {
  if (etat_ou(1, 60, 0) <= 0) return 0;
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) {
    const mot k[2] = {1, 62};
    const mot* l = vol_valeur(v->objet, 1, k);
    v->nb_suiv = 0;
    if (!l || l[1] != BLOC_REEL) continue;
    int n = l[0] - 4;
    if (n > MAX_SUIV) {
      mot_imprime(1, 62);
      std::printf(": %d > %d ", n, MAX_SUIV);
      message(0, MES_DEBORDEMENT);
      return -1;
    }
    for (int i = 0; i < n; ++i) {
      int s = static_cast<int>(lit_reel(l + 4 + i));
      if (s == 0) continue;
      Vol_inter* f = vol_inter_de(s);
      if (!f) {
        std::printf("%d: ", s);
        message(0, 9);
        continue;
      }
      v->suiv[v->nb_suiv++] = f;
    }
  }
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) {
    if (v->lead && v->som_suiv >= 1 && v->som_suiv <= v->nb_som) {
      const reel* p = v->som + static_cast<long>(v->som_suiv - 1) * v->stride;
      v->bras = static_cast<float>(std::sqrt(dist2(p, v->centre)));
    } else {
      const float o[3] = {0, 0, 0};
      v->bras = static_cast<float>(std::sqrt(dist2(o, v->centre)));
    }
  }
  return 0;
}
