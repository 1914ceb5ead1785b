// The body step over the tree of records: a volume as a whole moves under
// the force on its centre and turns about its axis under the force at the
// tip of its lever; children hang from their parent and follow after it.
// Angles and angular speeds are in degrees (per frame); windows are given
// in radians. The joint spring multiplies the angle, already in degrees,
// by 57.2957763671875 once more: a deliberately strong restoring factor.
// kr carries the mass twice, on purpose as well.
//
// Limits ride with the value they limit: (b111, a41) the speed limit, 100
// when absent and none at 0; (b111, b34, a41) and (b89, b34, a41) the
// angular ones; (b113, b34, a41) the size of the force at the tip; (b33,
// a41) the joint triples.
#include <array>
#include <cmath>

#include "anim/dyn.h"
#include "core/message.h"
#include "geom/geom.h"
#include "startup/startup.h"

namespace dyn {
namespace {
constexpr float DEG_FEN = 57.295776f;
bool avertie = false;

float borne(float x, const reel* l) {
  if (!l || l[0] == 0) return x;
  const float L = std::fabs(l[0]);
  return x > L ? L : (x < -L ? -L : x);
}

bool un_actif() {
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant)
    if (v->actif) return true;
  return false;
}

reel* vit_rota(Objet* o) { return bloc_zero(o, 2, std::array<mot, 4>{1, B_VIT, 1, B_ROTAK}.data(), 3); }

// The window [lo, hi] in degrees on the angle of r; w of `qui` scaled by f.
int borne_angle(Vol_inter* r, float lo, float hi, Vol_inter* qui, float f) {
  int n = 0;
  if (r->angle < lo) r->angle = lo, ++n;
  else if (r->angle > hi) r->angle = hi, ++n;
  if (n && qui)
    if (reel* w = vit_rota(qui->objet)) w[0] *= f;
  return n;
}

bool a_ressorts(Objet* o) {
  return val1(o, 1, B_RESSORT, 1) || val2(o, 1, B_RESSORT, 1, B_SOMK, 1) || val2(o, 1, B_RESSORT, 1, B_ROTAK, 1) ||
         val2(o, 1, B_RESSORT, 0, A_INI, 1);
}
}  // namespace

int nb_records() {
  int n = 0;
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) ++n;
  return n;
}

int fenetre_angle(Vol_inter* r) {
  if (!r->lim_rota) return 0;
  return borne_angle(r, r->lim_rota[0] * DEG_FEN, r->lim_rota[1] * DEG_FEN, r, -0.5f);
}

int fenetres(Vol_inter* r) {
  int n = fenetre_angle(r);
  const reel* l[3] = {r->lim_rotx, r->lim_roty, r->lim_rotz};
  float* a[3] = {&r->rotx, &r->roty, &r->rotz};
  for (int k = 0; k < 3; ++k) {
    if (!l[k]) continue;
    const float lo = l[k][0] * DEG_FEN, hi = l[k][1] * DEG_FEN;
    if (*a[k] < lo) *a[k] = lo, ++n;
    else if (*a[k] > hi) *a[k] = hi, ++n;
  }
  if (r->lim_dep)
    for (int x = 0; x < 3; ++x) {
      if (r->pos[x] < r->lim_dep[x]) r->pos[x] = r->lim_dep[x], ++n;
      else if (r->pos[x] > r->lim_dep[3 + x]) r->pos[x] = r->lim_dep[3 + x], ++n;
    }
  int nj = 0;
  if (const reel* j = val2(r->objet, 1, B_JOI, 0, A_LIMK, 3, &nj)) {
    for (int t = 0; t + 3 <= nj; t += 3) {
      const float lo = j[t + 1] * DEG_FEN, hi = j[t + 2] * DEG_FEN;
      mot num = 0;
      if (!reel_entier(j[t], &num)) continue;
      if (!r->lead || num == r->lead->num) {
        n += borne_angle(r, lo, hi, r, 0.25f);
        n += fenetre_angle(r);
      } else if (Vol_inter* autre = vol_inter_de(num)) {
        n += borne_angle(autre, -hi, -lo, r, 0.25f);
        n += fenetre_angle(autre);
      }
    }
  }
  return n;
}

void pas_corps(Vol_inter* r, int n, int N) {
  if (!r) {
    etat.profondeur = 0;
    for (Vol_inter* v = inter.liste_inter; v; v = v->suivant)
      if (!v->lead) pas_corps(v, n, N);
    return;
  }
  // A tree that leads back to itself would never end.
  if (++etat.profondeur > nb_records() + 1) {
    if (!avertie) message(1, MES_ARBRE), avertie = true;
    --etat.profondeur;
    return;
  }
  Objet* o = r->objet;
  if (r->actif || !un_actif()) {
    const reel* mas = val1(o, 1, B_MAS, 1);
    const float m = mas ? mas[0] : 0.f;
    if (mas && !(m > MASSE_MIN) && !avertie) message(1, MES_MASSE), avertie = true;
    if (r->type != 132 && m > MASSE_MIN && std::isfinite(m)) {
      const float k = 1.f / (static_cast<float>(N) * m);
      // 4. The centre.
      if (!r->lead) {
        const reel* f = val1(o, 1, B_FOR, 3);
        // A force that is no number is left out, as an absent one.
        if (f && !(std::isfinite(f[0]) && std::isfinite(f[1]) && std::isfinite(f[2]))) f = nullptr;
        reel* vit = bloc_zero(o, 1, std::array<mot, 2>{1, B_VIT}.data(), 3);
        reel* acc = bloc_zero(o, 1, std::array<mot, 2>{1, B_ACC}.data(), 3);
        if (vit && acc) {
          for (int x = 0; x < 3; ++x) acc[x] = f ? k * f[x] : 0.f, vit[x] += acc[x];
          const reel* vl = val2(o, 1, B_VIT, 0, A_LIMK, 1);
          const float L = vl ? vl[0] : 100.f;
          const float nv = norme(vit);
          if (L != 0 && nv > L)
            for (int x = 0; x < 3; ++x) vit[x] = L * vit[x] / nv;
          for (int x = 0; x < 3; ++x) r->pos[x] += vit[x];
        }
      }
      // 5-7. The lever and the force at its tip.
      const float L = r->bras < 0.0001f ? 1.f : r->bras;
      const float kr = k / (m * L);
      float F[3] = {0, 0, 0}, c = 0;
      int nfr = 0;
      if (reel* fr = val2(o, 1, B_FOR, 1, B_ROTAK, 3, &nfr)) {
        if (const reel* lf = val3(o, 1, B_FOR, 1, B_ROTAK, 0, A_LIMK, 1)) {
          const float nf = norme(fr);
          if (nf > lf[0] && nf > 0)
            for (int x = 0; x < 3; ++x) fr[x] *= lf[0] / nf;
        }
        for (int x = 0; x < 3; ++x) F[x] = fr[x];
        c = nfr > 3 ? fr[3] : 0.f;
      }
      int nt = 0;
      const reel* ft = val2(o, 1, B_FOR, 1, B_TIRE, 3, &nt);
      if (ft) {
        c = nt > 3 ? ft[3] : c;
        for (int x = 0; x < 3; ++x) F[x] += ft[x];
      }
      // The anchors' force of this frame, when it is a value of its own.
      if (r->force_frame && r->force_frame != ft)
        for (int x = 0; x < 3; ++x) F[x] += r->force_frame[x];
      // 8. The turn.
      reel* w = vit_rota(o);
      reel* A = bloc_zero(o, 2, std::array<mot, 4>{1, B_ACC, 1, B_ROTAK}.data(), 3);
      if (w && A) {
        const reel* wl = val3(o, 1, B_VIT, 1, B_ROTAK, 0, A_LIMK, 1);
        const reel* al = val3(o, 1, B_ACC, 1, B_ROTAK, 0, A_LIMK, 1);
        float t = dot(F, r->axe);
        if (!std::isfinite(t) || !std::isfinite(c)) t = 0, c = 0;
        w[0] = borne(w[0], wl);
        A[0] = borne(t * kr + c * w[0], al);
        w[0] = borne(w[0] + A[0], wl);
        r->angle += w[0];
        // 9. The joint spring.
        if (const reel* rj = val2(o, 1, B_RESSORT, 1, B_JOI, 2)) {
          const float q = k * rj[0];
          A[0] -= q * r->angle * DEG;
          if (rj[1] != 0) A[0] += rj[1] * w[0];
          w[0] = borne(w[0] + A[0], wl);
          r->angle += w[0];
          fenetre_angle(r);
        }
      }
    }
    // 10. The vertex cloud.
    if (a_ressorts(o)) pas_sommets(o, n, N, true);
    // 11. The per-vertex force list.
    if (m > MASSE_MIN && std::isfinite(m)) {
      int nb = 0, d = 3;
      reel* s = vol_som(o, &nb, &d);
      if (s && nb > 0 && liste_som(o, 2, std::array<mot, 4>{1, B_FOR, 1, B_SOMK}.data(), nb, etat.rec_for)) {
        reel* v = bloc_zero(o, 2, std::array<mot, 4>{1, B_VIT, 1, B_SOMK}.data(), 3 * nb);
        s = vol_som(o, &nb, &d);
        const float k = 1.f / (static_cast<float>(N) * m);
        for (int i = 0; v && s && i < nb; ++i) {
          const mot* rec = etat.rec_for[static_cast<std::size_t>(i)];
          if (!rec || rec_long(rec) < 3) continue;
          for (int x = 0; x < 3; ++x) {
            v[3 * i + x] += k * rec_val(rec)[x];
            s[static_cast<long>(i) * d + x] += v[3 * i + x];
          }
        }
        if (s) vol_som_change(o);
      }
    }
  }
  // 12-15. Windows.
  fenetres(r);
  // 16. The children.
  for (int j = 0; j < r->nb_suiv; ++j)
    if (r->suiv[j]) pas_corps(r->suiv[j], n, N);
  --etat.profondeur;
}

int pas_dynamique() {
  int nv = 0;
  const reel* v = mot_valeur(1, B_DYN, &nv);
  mot n = 0;
  if (!v || nv < 1 || !reel_entier(v[0], &n) || n < 1) return -1;
  if (n > 1000) n = 1000;
  for (int k = 0; k < n; ++k) pas_corps(nullptr, n, n * n);
  for (Vol_inter* r = inter.liste_inter; r; r = r->suivant) vol_inter_matrice(r);
  return 0;
}
}  // namespace dyn
