// The keywords that act on the working records of a running scene, each on
// the volumes of the phrase's `vol` (all of the scene's without it): a value
// of the record is read (the first volume's) or written (every volume's).
// A value the record does not hold itself is the volume's attribute of the
// keyword's name, which the record borrows: the record's borrowed pointers
// are taken again after each write, since a write may move that attribute
// (and after anything else that moves or removes attributes, through
// vols_inter_suivent).
// What belongs to the trajectories, the dynamics and the anchors is read
// and kept; the panels print the records' values at the console.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "anim/dyn.h"
#include "anim/interne.h"
#include "display/moteurs.h"
#include "display/oeil.h"
#include "geom/geom.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {

constexpr int B_OEIL = 9, B_VISE = 10, B_FOC = 11, B_ROUL = 12, B_COUL_ = 17, B_TEX_SOM = 23, B_MOTIF = 27,
              B_MAPPE = 54, B_FORCE = 113, B_TIRE = 130, B_BRO = 120, B_TRACE_ = 28;
constexpr float DEG = 57.295776f;
constexpr int MAX_VOLS = 1000;

// The volume's attribute of that name, read or written.
constexpr int attributs_b[] = {14, 17, 22, 33, 38, 43, 51, 52, 53, 54, 63, 80, 84, 111, 112, 113, 129, 133, 148, 151};
// Read and kept: their behaviour comes with the trajectories (b49), the
// dynamics (b47) and the anchors (b61, b62, b153).
constexpr int gardes_b[] = {47, 49, 61, 62, 153};
constexpr int gardes_a[] = {14, 33, 68, 70, 81, 102};
// Panels of the records' values.
constexpr int panneaux_b[] = {8, 115, 121, 149};
constexpr int panneaux_a[] = {36};

template <std::size_t N>
bool parmi(const int (&t)[N], int o) {
  for (int x : t)
    if (x == o) return true;
  return false;
}

const mot* valeur(const mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

// The floats of a value: a pointer to them and their count; -1 when the
// value is no number (a BLOC_ENTIER value is refused too: it would need a
// copy).
int reels_de(const mot* v, const reel** x, reel* un) {
  if (!v) return 0;
  if (v[0] == BLOC_REEL) {
    *un = lit_reel(v + 1);
    *x = un;
    return 1;
  }
  if (v[0] < 4 || v[1] != BLOC_REEL) return v[0] >= 4 && v[1] == BLOC_NIL ? 0 : -1;
  *x = reels(v + 4);
  return v[0] - 4;
}

// The records of the phrase's `vol`, or all; their count.
int vols_de(mot* bloc, Vol_inter** l) {
  int n = 0;
  bool avec = false;
  mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
    if (e[1] != 1 || e[2] != B_VOL) continue;
    const reel* x = nullptr;
    reel un;
    int k = reels_de(valeur(e), &x, &un);
    if (k <= 0) continue;
    avec = true;
    for (int j = 0; j < k && n < MAX_VOLS; ++j)
      if (Vol_inter* r = vol_inter_de(static_cast<int>(x[j]))) l[n++] = r;
  }
  if (!avec)
    for (Vol_inter* r = inter.liste_inter; r && n < MAX_VOLS; r = r->suivant) l[n++] = r;
  return n;
}

int rien(mot* bloc) {
  bloc[0] = 0;
  return 0;
}

int refuse(const mot* e) {
  mot_imprime(e[1], e[2]);
  message(0, MES_VALEUR);
  return -1;
}

int rend(mot* bloc, const mot* limite, const float* x, int n) {
  reel* out = resultat_reels(bloc, limite, n);
  if (!out) return PILE_PLEINE;
  std::memcpy(out, x, sizeof(float) * static_cast<std::size_t>(n));
  return 0;
}

const reel* limite_de(Objet* o, int ord, int min) {
  const mot k[4] = {1, ord, 0, A_LIM};
  const mot* v = vol_valeur(o, 2, k);
  return v && v[1] == BLOC_REEL && v[0] - 4 >= min ? reels(v + 4) : nullptr;
}

// A record's own values of the same name: its pointer and width.
float* champ(Vol_inter* r, int env, int ord, int* n) {
  *n = 1;
  if (env == 0) {
    if (ord == A_CENTRE) return *n = 3, r->centre;
    return nullptr;
  }
  switch (ord) {
    case B_DEP:
    case B_DEP2: *n = 3; return r->pos;
    case B_ROTA: return &r->angle;
    case B_ROTX: return &r->rotx;
    case B_ROTY: return &r->roty;
    case B_ROTZ: return &r->rotz;
    case B_AXE: *n = 3; return r->axe;
  }
  return nullptr;
}

void panneau(Vol_inter* r) {
  std::printf("%d: som %d fac %d dep %g %g %g rota %g axe %g %g %g rotx %g roty %g rotz %g etat %d\n", r->num,
              r->nb_som, r->nb_fac, static_cast<double>(r->pos[0]), static_cast<double>(r->pos[1]),
              static_cast<double>(r->pos[2]), static_cast<double>(r->angle), static_cast<double>(r->axe[0]),
              static_cast<double>(r->axe[1]), static_cast<double>(r->axe[2]), static_cast<double>(r->rotx),
              static_cast<double>(r->roty), static_cast<double>(r->rotz), r->etat);
}

// The eye's values: b9 its place, b10 its aim, b11 its focal, b12 its roll.
float* oeil_champ(int ord, int* n) {
  *n = 1;
  switch (ord) {
    case B_OEIL: *n = 3; return oeil_courant.oeil;
    case B_VISE: *n = 3; return oeil_courant.vise;
    case B_FOC: return &oeil_courant.foc;
    case B_ROUL: return &oeil_courant.roul;
  }
  return nullptr;
}
}  // namespace

namespace {
// Its volume deleted, the record keeps its place, its number and its own
// values, and nothing of the volume: it is no longer drawn, picked,
// dragged or written back.
void perd(Vol_inter* r) {
  r->objet = nullptr;
  r->attr = nullptr;
  r->som = nullptr;
  r->nb_som = r->nb_fac = r->nb_seg = 0;
  r->fac = r->seg = r->voisin = r->normale_som = r->normale_fac = r->coe = r->tex_som = nullptr;
  r->mappe = nullptr;
  r->force_frame = r->trace = nullptr;
  r->lim_dep = r->lim_rayon = r->lim_anc = r->lim_rota = r->lim_rotx = r->lim_roty = r->lim_rotz = nullptr;
  r->actif = 0;
  vol_inter_adresses(r);
  vol_rt_libere(r->rt);
  r->rt = nullptr;
}
}  // namespace

void vol_inter_pointeurs(Vol_inter* r) {
  Objet* o = r->objet;
  if (!o) return;
  // The table entry may have been freed, or taken since by another object.
  if (o->env != 1 || o->type != B_VOL || o->numero != r->num) return perd(r);
  r->attr = o->donnees;
  // The vertices and faces: the addresses made of them follow when they
  // moved.
  int ns = 0, d = 3;
  reel* s = vol_som(o, &ns, &d);
  mot* fac = r->rendu < 0 ? nullptr : vol_fac(o);
  const bool bouge = s != r->som || ns != r->nb_som || d != r->stride || fac != r->fac;
  r->som = s, r->nb_som = s ? ns : 0, r->stride = d;
  r->fac = fac, r->nb_fac = fac ? fac[2] : 0;
  if (bouge) vol_inter_adresses(r);
  const mot knf[4] = {1, B_NORMALE, 1, B_FAC}, kns[4] = {1, B_NORMALE, 1, B_SOMMET}, kseg[2] = {1, B_SEGMENT},
            kv[6] = {1, B_VOISIN, 1, B_FAC, 1, B_SOMMET};
  if (r->normale_fac) r->normale_fac = vol_valeur(o, 2, knf);
  if (r->normale_som) r->normale_som = vol_valeur(o, 2, kns);
  if (r->voisin) r->voisin = vol_valeur(o, 3, kv);
  if (r->seg) {
    r->seg = vol_valeur(o, 1, kseg);
    r->nb_seg = r->seg ? r->seg[2] : 0;
  }
  const mot kc[2] = {1, B_COUL_}, kt[2] = {1, B_TEX_SOM}, km[2] = {1, B_MAPPE};
  r->coe = vol_valeur(o, 1, kc);
  r->tex_som = vol_valeur(o, 1, kt);
  r->mappe = vol_valeur(o, 1, km);
  const mot kf[4] = {1, B_FORCE, 1, B_TIRE};
  mot* f = vol_valeur(o, 2, kf);
  r->force_frame = f && f[1] == BLOC_REEL && f[0] - 4 >= 3 ? reels(f + 4) : nullptr;
  r->lim_dep = limite_de(o, B_DEP2, 6);
  r->lim_rayon = limite_de(o, B_RAYON, 1);
  r->lim_rota = limite_de(o, B_ROTA, 2);
  r->lim_rotx = limite_de(o, B_ROTX, 2);
  r->lim_roty = limite_de(o, B_ROTY, 2);
  r->lim_rotz = limite_de(o, B_ROTZ, 2);
  const mot ktr[2] = {1, B_TRACE_};
  const mot* t = inter.nb_traces > 0 ? vol_valeur(o, 1, ktr) : nullptr;
  r->trace = t && t[1] == BLOC_REEL && t[0] - 4 >= inter.nb_traces * 16 ? reels(const_cast<mot*>(t) + 4) : nullptr;
}

void vols_inter_suivent() {
  if (inter.epoque == table_objets.epoque) return;
  inter.epoque = table_objets.epoque;
  for (Vol_inter* r = inter.liste_inter; r; r = r->suivant) vol_inter_pointeurs(r);
  std::fflush(stdout);
}

int inter_option_vol(mot* bloc, const mot* e, const mot* limite_pile) {
  const int env = e[1], ord = e[2];
  if (env == 0 ? parmi(gardes_a, ord) : parmi(gardes_b, ord)) return rien(bloc);
  Vol_inter* l[MAX_VOLS];
  const reel* x = nullptr;
  reel un = 0;
  const int nv = reels_de(valeur(e), &x, &un);
  if (env == 0 ? parmi(panneaux_a, ord) : parmi(panneaux_b, ord)) {
    int n = vols_de(bloc, l);
    for (int i = 0; i < n; ++i) panneau(l[i]);
    std::fflush(stdout);
    return rien(bloc);
  }
  if (env == 0 && ord == A_LIB) {
    // The listed volumes leave their leaders.
    int n = vols_de(bloc, l);
    for (int i = 0; i < n; ++i) {
      Vol_inter* r = l[i];
      if (!r->lead) {
        std::printf("%d n'a pas de pere\n", r->num);
        continue;
      }
      Vol_inter* p = r->lead;
      for (int k = 0; k < p->nb_suiv; ++k)
        if (p->suiv[k] == r) {
          p->suiv[k] = p->suiv[--p->nb_suiv];
          break;
        }
      r->lead = nullptr;
      r->lead_num = 0;
    }
    std::fflush(stdout);
    return rien(bloc);
  }
  if (env == 0 && ord == A_LIM) {
    // Every window, with no forces, on the listed records and their
    // followers, or on all: the number of values it changed.
    bool avec = false;
    for (const mot* c = bloc + 4, *fin = bloc + bloc[0]; c < fin && c[0] >= 3; c += c[0]) avec = avec || (c[1] == 1 && c[2] == B_VOL);
    int n = avec ? vols_de(bloc, l) : 0, k = 0;
    for (int i = 0; i < n; ++i) k += dyn::limite_inter(l[i]);
    if (!avec) k = dyn::limite_inter(nullptr);
    const float f = static_cast<float>(k);
    return rend(bloc, limite_pile, &f, 1);
  }
  if (env == 1 && ord == dyn::B_ORIGINE) {
    int n = vols_de(bloc, l);
    if (n < 1) return refuse(e);
    if (dyn::origine(l[0]) < 0) return -1;
    return rien(bloc);
  }
  if (env == 1 && ord == B_TIRE && dyn::tire_forme(bloc)) return dyn::tire(bloc) < 0 ? -1 : rien(bloc);
  if (env == 1 && ord == B_BRO) {
    // Live fog: a colour turns it on, nothing else turns it off.
    if (nv < 0) return refuse(e);
    brouillard_etat.actif = nv >= 3;
    if (nv >= 3) std::memcpy(brouillard_etat.coul, x, 3 * sizeof(float)), brouillard_etat.coul[3] = 1;
    brouillard_applique();
    return rien(bloc);
  }
  int w = 0;
  if (env == 1 && oeil_champ(ord, &w)) {
    float* c = oeil_champ(ord, &w);
    if (nv < 0) return refuse(e);
    if (nv == 0) return rend(bloc, limite_pile, c, w);
    for (int k = 0; k < w && k < nv; ++k) c[k] = x[k];
    return rien(bloc);
  }
  const bool propre = env == 0 ? ord == A_CENTRE
                              : ord == B_DEP || ord == B_DEP2 || ord == B_ROTA || ord == B_ROTX || ord == B_ROTY ||
                                    ord == B_ROTZ || ord == B_AXE;
  const bool attribut = env == 1 && (parmi(attributs_b, ord) || ord == B_TIRE);
  if (!propre && !attribut && !(env == 1 && (ord == B_MOTIF || ord == B_SOM))) return 1;
  if (nv < 0) return refuse(e);
  int n = vols_de(bloc, l);
  if (nv == 0) {
    // Read: the first volume's.
    if (n == 0) {
      resultat_nil(bloc);
      return 0;
    }
    Vol_inter* r = l[0];
    if (float* c = champ(r, env, ord, &w)) return rend(bloc, limite_pile, c, w);
    if (ord == B_MOTIF) {
      float f = static_cast<float>(r->lien);
      return rend(bloc, limite_pile, &f, 1);
    }
    int ns = 0, d = 3;
    if (ord == B_SOM) {
      const reel* s = r->objet ? vol_som(r->objet, &ns, &d) : nullptr;
      if (!s) return resultat_nil(bloc), 0;
      return rend(bloc, limite_pile, s, ns * d);
    }
    const mot k2[4] = {1, B_FORCE, 1, B_TIRE}, k1[2] = {1, ord};
    const mot* v = ord == B_TIRE ? vol_valeur(r->objet, 2, k2) : vol_valeur(r->objet, 1, k1);
    if (!v || v[0] < 4 || v[1] != BLOC_REEL) return resultat_nil(bloc), 0;
    return rend(bloc, limite_pile, reels(v + 4), v[0] - 4);
  }
  for (int i = 0; i < n; ++i) {
    Vol_inter* r = l[i];
    if (float* c = champ(r, env, ord, &w)) {
      for (int k = 0; k < w && k < nv; ++k) c[k] = x[k];
      if (env == 1 && ord == B_AXE) normer(r->axe, r->axe);
      vol_inter_matrice(r);
      continue;
    }
    if (ord == B_MOTIF) {
      r->lien = static_cast<int>(x[0]);
      r->lien_vol = vol_inter_de(r->lien);
      continue;
    }
    if (ord == B_SOM) {
      int ns = 0, d = 3;
      reel* s = r->objet ? vol_som(r->objet, &ns, &d) : nullptr;
      if (!s) continue;
      std::memcpy(s, x, sizeof(float) * static_cast<std::size_t>(nv < ns * d ? nv : ns * d));
      vol_som_change(r->objet);
      continue;
    }
    if (!r->objet) continue;  // its volume was deleted
    mot* a = ord == B_TIRE ? attribut_ecrit_2(r->objet, 1, B_FORCE, 1, B_TIRE, x, nv, 1)
                           : attribut_ecrit_1(r->objet, 1, ord, x, nv, 1);
    if (!a) return -1;
    vol_inter_pointeurs(r);
  }
  return rien(bloc);
}
