// Trajectories: keys sampled once into one row a frame, then played back
// into the record, a sample a frame, at frame step 9. Sampling allocates
// (it runs from a phrase); playback does not.
#include <cmath>
#include <cstring>
#include <vector>

#include "anim/dyn.h"
#include "anim/trajet.h"
#include "geom/geom.h"

namespace {
enum Chemin { ROT, ROTX, ROTY, ROTZ, POS, AXE, FORCE, SINUS, FORCE_ROT, FORCE_AXE, AUTRE };

Chemin chemin(const Trajet* t) {
  if (t->env1 == 0 && t->cle1 == A_SIN) return SINUS;
  if (t->env1 != 1) return AUTRE;
  if (t->cle1 == B_FOR_) {
    if (t->nb_cles >= 3 && t->cle3 == B_ROTA_ && t->cle2 == B_AXE_) return FORCE_AXE;
    if (t->nb_cles >= 2 && t->cle3 == B_ROTA_) return FORCE_ROT;
    return FORCE;
  }
  switch (t->cle1) {
    case B_ROTA_: return ROT;
    case B_ROTX_: return ROTX;
    case B_ROTY_: return ROTY;
    case B_ROTZ_: return ROTZ;
    case B_POS_: return POS;
    case B_AXE_: return AXE;
  }
  return AUTRE;
}

bool vivant(const Vol_inter* r) {
  const Objet* o = r->objet;
  return o && o->env == 1 && o->type == B_VOL && o->numero == r->num;
}

float* angle_de(Vol_inter* r, Chemin c) {
  switch (c) {
    case ROTX: return &r->rotx;
    case ROTY: return &r->roty;
    case ROTZ: return &r->rotz;
    default: return &r->angle;
  }
}

// The angular velocity (vit, rota) of a living record, made if absent.
reel* vit_rot(Vol_inter* r) {
  if (!vivant(r)) return nullptr;
  const mot k[4] = {1, dyn::B_VIT, 1, dyn::B_ROTAK};
  return dyn::bloc_zero(r->objet, 2, k, 1);
}

reel* force_tip(Vol_inter* r, bool cree) {
  if (!vivant(r)) return nullptr;
  const mot k[4] = {1, dyn::B_FOR, 1, dyn::B_ROTAK};
  return cree ? dyn::bloc_zero(r->objet, 2, k, 3) : dyn::val(r->objet, 2, k, 3);
}

int nb_force_tip(Vol_inter* r) {
  int n = 0;
  const mot k[4] = {1, dyn::B_FOR, 1, dyn::B_ROTAK};
  return vivant(r) && dyn::val(r->objet, 2, k, 3, &n) ? n : 0;
}

// Each component clamped to the axis limits (a41 of axe: one window for
// all, or minima then maxima), and the axis made unit again.
void fenetre_axe(Vol_inter* r) {
  int n = 0;
  const reel* l = vivant(r) ? dyn::val2(r->objet, 1, B_AXE_, 0, dyn::A_LIMK, 2, &n) : nullptr;
  if (l) {
    for (int x = 0; x < 3; ++x) {
      const float lo = n >= 6 ? l[x] : l[0], hi = n >= 6 ? l[3 + x] : l[1];
      r->axe[x] = std::fmin(std::fmax(r->axe[x], lo), hi);
    }
  }
  dyn::unit(r->axe);
}

void libere_noeud(Trajet* t) {
  bloc_libere(t->cles);
  bloc_libere(t->val);
  t->cles = t->val = nullptr;
}
}  // namespace

int trajet_echantillonne(Trajet* t, Vol_inter* r, int loi, const mot* table, bool brut) {
  const Chemin c = chemin(t);
  const reel* K = t->cles && t->cles[0] > 4 ? reels(t->cles + 4) : nullptr;
  const int nk = K ? t->cles[0] - 4 : 0;
  const int n = t->nb;
  bloc_libere(t->val);
  t->val = bloc_alloue(4 + 3 * (n > 0 ? n : 0));
  if (!t->val) return -1;
  t->val[1] = BLOC_REEL, t->val[2] = 3 * n, t->val[3] = 1;
  reel* out = reels(t->val + 4);
  t->indice = 0;
  if (n <= 0) return 0;
  if (c == SINUS) {
    // lo, hi, period, phase: the angle swings between lo and hi.
    const float lo = nk > 0 ? K[0] : 0, hi = nk > 1 ? K[1] : 0, per = nk > 2 ? K[2] : 0, ph = nk > 3 ? K[3] : 0;
    for (int j = 0; j < n; ++j) {
      const float a = n > 1 ? static_cast<float>(j) * per / static_cast<float>(n - 1) : 0.f;
      out[3 * j] = static_cast<float>(j), out[3 * j + 1] = 0;
      out[3 * j + 2] = (lo + hi + (hi - lo) * std::sin(a + ph)) * DEG_ * 0.5f;
    }
    t->nb_in = nk;
    return 0;
  }
  // The rows to fit: one a key.
  std::vector<mot> ligne;
  int m = 0;
  const bool rot = c == ROT || c == ROTX || c == ROTY || c == ROTZ;
  if (rot) {
    // Angles given in radians; the present angle comes first unless brut.
    m = nk > 0 ? nk : 1;
    ligne.assign(4 + 3 * static_cast<std::size_t>(m), 0);
    reel* p = reels(ligne.data() + 4);
    p[2] = brut && nk > 0 ? K[0] * DEG_ : *angle_de(r, c);
    for (int j = 1; j < m; ++j) p[3 * j] = static_cast<float>(j), p[3 * j + 2] = K[j] * DEG_;
    if (reel* w = vit_rot(r)) w[0] = 0;
  } else {
    // Rows of the key block's width, or threes.
    const int k = t->cles && t->cles[3] >= 3 ? t->cles[3] : 3;
    m = nk / k;
    if (m < 1) {
      t->nb = 0;
      t->val[2] = 0;
      return 0;
    }
    ligne.assign(4 + 3 * static_cast<std::size_t>(m), 0);
    reel* p = reels(ligne.data() + 4);
    for (int j = 0; j < m; ++j) std::memcpy(p + 3 * j, K + static_cast<long>(j) * k, 3 * sizeof(float));
    if (!brut && m >= 2 && (c == POS || c == AXE)) std::memcpy(p, c == POS ? r->pos : r->axe, 3 * sizeof(float));
  }
  t->nb_in = m;
  ligne[0] = static_cast<mot>(ligne.size()), ligne[1] = BLOC_REEL, ligne[2] = m, ligne[3] = 3;
  mot nombre[5] = {5, BLOC_REEL, 1, 1, 0};
  ecrit_reel(nombre + 4, static_cast<float>(n));
  Ajust a;
  a.nombre = nombre;
  a.ligne = ligne.data();
  a.loi = loi;
  a.table = table;
  if (ajust_1(t->val, t->val, t->val + t->val[0], &a) < 0) return -1;
  t->val[0] = 4 + 3 * n, t->val[2] = 3 * n, t->val[3] = 1;
  if (c == AXE)
    for (int j = 0; j < n; ++j) dyn::unit(out + 3 * j);
  return 0;
}

void trajet_joue(Trajet* t, Vol_inter* r) {
  if (t->indice >= t->nb) {
    if (!t->boucle || t->nb < 2) return;
    // Played to its end: the samples reversed, and again.
    t->indice = 0;
    reel* v = reels(t->val + 4);
    for (int a = 0, b = t->nb - 1; a < b; ++a, --b)
      for (int x = 0; x < 3; ++x) std::swap(v[3 * a + x], v[3 * b + x]);
  }
  const reel* s = reels(t->val + 4) + 3 * t->indice;
  const Chemin c = chemin(t);
  switch (c) {
    case ROT:
    case SINUS: {
      const float avant = r->angle;
      reel* ft = c == ROT && t->gain != 0 ? force_tip(r, false) : nullptr;
      if (ft) {
        // Driven by a torque towards the sample rather than set.
        float e = (s[2] - r->angle) * t->gain;
        e = std::fmin(std::fmax(e, -t->lim), t->lim);
        for (int x = 0; x < 3; ++x) ft[x] = e * r->axe[x];
        if (nb_force_tip(r) >= 4) ft[3] = e >= 0 ? t->friction + e * t->friction / 180 : t->friction - e * t->friction / 180;
      } else {
        r->angle = s[2];
        // The window's limits are the volume's: none once it is gone.
        if (vivant(r)) dyn::fenetre_angle(r);
      }
      if (reel* w = vit_rot(r)) w[0] = r->angle - avant;
      break;
    }
    case ROTX:
    case ROTY:
    case ROTZ:
      *angle_de(r, c) = s[2];
      break;
    case POS:
      for (int x = 0; x < 3; ++x) r->pos[x] = t->relatif ? r->pos[x] + s[x] : s[x];
      break;
    case AXE:
      std::memcpy(r->axe, s, 3 * sizeof(float));
      fenetre_axe(r);
      break;
    case FORCE:
    case FORCE_ROT:
      if (reel* ft = force_tip(r, true)) std::memcpy(ft, s, 3 * sizeof(float));
      break;
    case FORCE_AXE:
      if (reel* ft = force_tip(r, true)) std::memcpy(ft, s, 3 * sizeof(float));
      if (std::sqrt(s[0] * s[0] + s[1] * s[1] + s[2] * s[2]) >= 0.01f) {
        r->axe[0] = std::fabs(s[0]), r->axe[1] = std::fabs(s[1]), r->axe[2] = std::fabs(s[2]);
        dyn::unit(r->axe);
      }
      break;
    case AUTRE:
      break;
  }
  ++t->indice;
  // The matrix follows later in the frame, once for every node: from the
  // tree (step 13), the dynamics or the drawing.
}

void trajets_libere(Vol_inter* r) {
  for (Trajet* t = static_cast<Trajet*>(r->trajets); t;) {
    Trajet* s = t->suivant;
    libere_noeud(t);
    delete t;
    t = s;
  }
  r->trajets = nullptr;
}

void trajets_pas() {
  for (Vol_inter* r = inter.liste_inter; r; r = r->suivant)
    for (Trajet* t = static_cast<Trajet*>(r->trajets); t; t = t->suivant) trajet_joue(t, r);
}
