// The vertex step: a volume with spring attributes is a cloud of point
// masses. Each vertex gathers its force (fields, obstacles, colliders, its
// own force, viscosity, springs), and moves by v += F / (N m), p += v.
#include <array>
#include <cmath>
#include <cstring>

#include "anim/dyn.h"
#include "core/message.h"
#include "geom/geom.h"
#include "startup/startup.h"

namespace dyn {
namespace {
constexpr float SANS_LIMITE = 1000000.f;

// The visit order of the random mode: each index tries a random slot, and
// on a taken one takes the first free slot from a rising cursor.
void permutation(int nb) {
  etat.ordre.assign(static_cast<std::size_t>(nb), -1);
  int curseur = 0;
  for (int i = 0; i < nb; ++i) {
    etat.graine ^= etat.graine << 13, etat.graine ^= etat.graine >> 7, etat.graine ^= etat.graine << 17;
    int s = static_cast<int>(etat.graine % static_cast<std::uint64_t>(nb));
    if (etat.ordre[static_cast<std::size_t>(s)] >= 0) {
      while (etat.ordre[static_cast<std::size_t>(curseur)] >= 0) ++curseur;
      s = curseur;
    }
    etat.ordre[static_cast<std::size_t>(s)] = i;
  }
}

bool dans_fenetre(const reel* t, int nt) { return !t || nt < 3 || (t[0] <= t[2] && t[2] <= t[1]); }
}  // namespace

int pas_sommets(Objet* o, int n, int N, bool en_inter) {
  if (!o || n < 1 || N < 1) return -1;
  // 1-2. The vertices and the window of the whole step.
  int nb = 0, d = 3;
  reel* som = vol_som(o, &nb, &d);
  if (!som || nb < 1 || d < 3) return 0;
  // A follower cloud (som, suiv) needs its leader-side vertices (b60, b86).
  if (val2(o, 1, B_SOMK, 1, B_SUIVK, 1) && !vol_valeur(o, 2, std::array<mot, 4>{1, B_RIGIDE, 1, B_PTS}.data())) return 0;
  int nt = 0;
  const reel* tem = val1(o, 0, A_TEM, 3, &nt);
  if (!dans_fenetre(tem, nt)) return 0;
  // 3. Velocities and accelerations, made at zero when absent.
  reel* vit = bloc_zero(o, 2, std::array<mot, 4>{1, B_VIT, 1, B_SOMK}.data(), 3 * nb);
  reel* acc = bloc_zero(o, 2, std::array<mot, 4>{1, B_ACC, 1, B_SOMK}.data(), 3 * nb);
  if (!vit || !acc) return -1;
  const reel* f_uni = val1(o, 1, B_FOR, 3);
  // 4. A force in the local frame of a triangle.
  float f_loc[3] = {0, 0, 0};
  bool a_loc = false;
  if (const reel* fa = val2(o, 1, B_FOR, 1, B_AXEK, 6)) {
    int idx[3];
    for (int k = 0; k < 3; ++k) {
      mot e = 0;
      if (!reel_entier(fa[3 + k], &e, 1, nb)) {
        message(1, MES_SOM_HORS);
        return -1;
      }
      idx[k] = e - 1;
    }
    const float* pi = som + static_cast<long>(idx[0]) * d;
    const float* pj = som + static_cast<long>(idx[1]) * d;
    const float* pk = som + static_cast<long>(idx[2]) * d;
    float u[3] = {pj[0] - pi[0], pj[1] - pi[1], pj[2] - pi[2]}, w[3] = {pk[0] - pi[0], pk[1] - pi[1], pk[2] - pi[2]}, t[3];
    unit(u), unit(w);
    croix(u, w, t);
    for (int x = 0; x < 3; ++x) f_loc[x] = fa[0] * u[x] + fa[1] * w[x] + fa[2] * t[x];
    a_loc = true;
  }
  // 5. Springs: rest copy, neighbours, rest lengths and angles.
  const reel* res = val1(o, 1, B_RESSORT, 2);
  const bool l_res = liste_som(o, 2, std::array<mot, 4>{1, B_RESSORT, 1, B_SOMK}.data(), nb, etat.rec_res);
  const reel* tor = val2(o, 1, B_RESSORT, 1, B_ROTAK, 2);
  const bool l_tor = liste_som(o, 3, std::array<mot, 6>{1, B_RESSORT, 1, B_ROTAK, 1, B_SOMK}.data(), nb, etat.rec_tor);
  const reel* ini = val2(o, 1, B_RESSORT, 0, A_INI, 2);
  const bool l_ini = liste_som(o, 3, std::array<mot, 6>{1, B_RESSORT, 0, A_INI, 1, B_SOMK}.data(), nb, etat.rec_ini);
  const bool l_pts = liste_som(o, 4, std::array<mot, 8>{1, B_PRE, 1, B_RESSORT, 1, B_PTS, 1, B_SOMK}.data(), nb, etat.rec_pts);
  const bool l_pvol = liste_som(o, 4, std::array<mot, 8>{1, B_PRE, 1, B_RESSORT, 1, B_VOLK, 1, B_SOMK}.data(), nb, etat.rec_pvol);
  const bool aleat = val2(o, 1, B_DYN, 1, B_ALE, 1) != nullptr;
  const bool a_ressort = res || l_res || tor || l_tor || ini || l_ini || l_pts || l_pvol;
  // 9 (read here): a cloud with a leader while b60 is on turns as a whole.
  const bool rigide = etat_ou(1, B_RIGIDE, 0) > 0 && vol_valeur(o, 1, std::array<mot, 2>{1, B_LEADK}.data());
  const reel* repos = nullptr;
  if (a_ressort || rigide) {
    const mot kr[2] = {1, ORD_REPOS};
    repos = val(o, 1, kr, 3 * nb);
    if (!repos) {
      if (!attribut_ecrit(o, 1, kr, som, 3 * nb, 1)) return -1;
      // The attribute may have moved the vertices' own block: read again.
      som = vol_som(o, &nb, &d);
      vit = val2(o, 1, B_VIT, 1, B_SOMK, 3 * nb);
      acc = val2(o, 1, B_ACC, 1, B_SOMK, 3 * nb);
      repos = val(o, 1, kr, 3 * nb);
      if (!som || !vit || !acc || !repos) return -1;
      if (d != 3) {  // the rest copy holds 3 floats a vertex
        reel* r = const_cast<reel*>(repos);
        for (int i = 0; i < nb; ++i)
          for (int x = 0; x < 3; ++x) r[3 * i + x] = som[static_cast<long>(i) * d + x];
      }
    }
    if (a_ressort) voisins(o, repos, nb, 3, tor || l_tor);
  }
  // 6. Masses.
  const reel* mas = val1(o, 1, B_MAS, 1);
  const bool l_mas = liste_som(o, 2, std::array<mot, 4>{1, B_MAS, 1, B_SOMK}.data(), nb, etat.rec_mas);
  if (!mas && !l_mas) {
    int nv = 0;
    const reel* dv = val1(o, 1, B_DYN, 1, &nv);
    if (dv && dv[0] != 0)
      for (int i = 0; i < nb; ++i)
        for (int x = 0; x < 3; ++x) som[static_cast<long>(i) * d + x] += vit[3 * i + x];
    return 0;
  }
  // 7-8. Marker decay.
  reel* choc = val2(o, 1, B_CHOC, 1, B_SOMK, 3 * nb);
  if (choc) {
    const reel* cc = val2(o, 1, B_COE, 1, B_CHOC, 1);
    float taux = 1;
    if (cc && std::fabs(cc[0]) > 0.0001f) taux = cc[0];
    for (int i = 0; i < nb; ++i) {
      reel* m = choc + 3 * i;
      m[0] = m[1];
      if (m[2] < 0) m[2] = taux;
      m[1] -= m[2];
      if (m[1] < 0) m[1] = 0, m[2] = 0;
    }
  }
  etat.cha_de = o;
  etat.l_cha = liste_som(o, 2, std::array<mot, 4>{1, B_CHA, 1, B_SOMK}.data(), nb, etat.rec_cha);
  etat.cha_nom = champ_nomme(o);
  etat.fonc_avertie = false;
  etat.l_ima = liste_som(o, 3, std::array<mot, 6>{1, B_CHA, 1, B_IMA, 1, B_SOMK}.data(), nb, etat.rec_ima);
  if (rigide) {
    const int r = pas_rigide(o, N, som, d, nb, repos);
    etat.cha_de = nullptr;
    return r;
  }
  // 10. The first collider pass, without force: the selected vertices are
  // only put back in front of the colliders.
  const bool a_col = val1(o, 1, B_COL, 4) != nullptr;
  const bool col_choix = a_col && col_selection(o, nb);
  if (col_choix) col_premiere(o, som, d, vit, nb, choc);
  const bool l_for = liste_som(o, 2, std::array<mot, 4>{1, B_FOR, 1, B_SOMK}.data(), nb, etat.rec_for);
  const bool l_tem = liste_som(o, 2, std::array<mot, 4>{0, A_TEM, 1, B_SOMK}.data(), nb, etat.rec_tem);
  const bool l_alim = liste_som(o, 3, std::array<mot, 6>{1, B_ACC, 0, A_LIMK, 1, B_SOMK}.data(), nb, etat.rec_alim);
  const bool l_vlim = liste_som(o, 3, std::array<mot, 6>{1, B_VIT, 0, A_LIMK, 1, B_SOMK}.data(), nb, etat.rec_vlim);
  const reel* alim = val2(o, 1, B_ACC, 0, A_LIMK, 1);
  const reel* vlim = val2(o, 1, B_VIT, 0, A_LIMK, 1);
  const float acc_lim = alim ? alim[0] : SANS_LIMITE, vit_lim = vlim ? vlim[0] : SANS_LIMITE;
  const reel* visc = val2(o, 1, B_FOR, 1, B_VIT, 1);
  int nvisc = 0;
  val2(o, 1, B_FOR, 1, B_VIT, 1, &nvisc);
  float a_visc = visc ? visc[0] : 0;
  const reel* ortho = val2(o, 1, B_FOR, 1, B_ORTHO, 1);
  const mot* nrm_b = vol_valeur(o, 2, std::array<mot, 4>{1, B_NORMALE, 1, B_SOMK}.data());
  const reel* nrm = nrm_b && nrm_b[1] == BLOC_REEL ? reels(nrm_b + 4) : nullptr;
  const int nb_nrm = nrm ? (nrm_b[0] - 4) / 3 : 0;
  const reel* cvit = val2(o, 1, B_COE, 1, B_VIT, 1);
  int ncvit = 0;
  val2(o, 1, B_COE, 1, B_VIT, 1, &ncvit);
  const bool a_obs = obstacles(o);
  // In random order a vertex also takes the rigid case's force at a vertex,
  // (for, pre) = (x, y, z, vertex).
  const reel* f_pre = aleat ? val2(o, 1, B_FOR, 1, B_PRE, 4) : nullptr;
  mot i_pre = 0;
  if (f_pre && !reel_entier(f_pre[3], &i_pre, 1, nb)) f_pre = nullptr;
  const bool a_cha = etat.l_cha || etat.cha_nom || etat.l_ima || val1(o, 1, B_CHA, 1) || val2(o, 1, B_CHA, 1, B_IMA, 7) || champs_globaux();
  // 12. The visit.
  if (aleat) permutation(nb);
  const float fN = static_cast<float>(N), fn = static_cast<float>(n);
  for (int t = 0; t < nb; ++t) {
    const int i = aleat ? etat.ordre[static_cast<std::size_t>(t)] : t;
    if (l_tem) {
      const mot* r = etat.rec_tem[static_cast<std::size_t>(i)];
      if (r && rec_long(r) >= 3 && !dans_fenetre(rec_val(r), 3)) continue;
    }
    float m;
    if (l_mas) {
      const mot* r = etat.rec_mas[static_cast<std::size_t>(i)];
      if (!r || rec_long(r) < 1) continue;
      m = rec_val(r)[0];
    } else {
      m = mas[0];
    }
    if (!(m >= MASSE_MIN)) continue;  // NaN too
    const float k = 1.f / (fN * m);
    float* p = som + static_cast<long>(i) * d;
    float* v = vit + 3 * i;
    float F[3] = {0, 0, 0};
    if (a_obs) obstacle_force(p, v, F);
    if (a_cha) champs(o, i + 1, p, F);
    // 12.4: the colliders' force on a selected vertex, before its own terms.
    int contact = 0;
    const bool choisi = col_choix && etat.col_choisi[static_cast<std::size_t>(i)];
    if (choisi) contact = collision(o, p, v, F, true, choc ? choc + 3 * i : nullptr);
    if (f_uni)
      for (int x = 0; x < 3; ++x) F[x] += f_uni[x];
    if (a_loc)
      for (int x = 0; x < 3; ++x) F[x] += f_loc[x];
    if (f_pre && i == i_pre - 1)
      for (int x = 0; x < 3; ++x) F[x] += f_pre[x];
    if (l_for) {
      const mot* r = etat.rec_for[static_cast<std::size_t>(i)];
      if (r && rec_long(r) >= 3)
        for (int x = 0; x < 3; ++x) F[x] += rec_val(r)[x];
    }
    if (choc && nvisc > 1 && choc[3 * i] != 0) a_visc += visc[1];
    if (a_visc != 0)
      for (int x = 0; x < 3; ++x) F[x] += a_visc * v[x];
    if (ortho && ortho[0] != 0 && i < nb_nrm) {
      const float* nn = nrm + 3 * i;
      const float s = -dot(v, nn) * ortho[0];
      for (int x = 0; x < 3; ++x) F[x] += s * nn[x];
    }
    // 12.9: every other vertex meets the colliders here.
    if (a_col && !choisi) contact = collision(o, p, v, F, true, choc ? choc + 3 * i : nullptr);
    if (a_ressort && contact == 0) {
      const mot* rr = l_res ? etat.rec_res[static_cast<std::size_t>(i)] : nullptr;
      const reel* kc = res ? res : (rr && rec_long(rr) >= 2 ? rec_val(rr) : nullptr);
      if (kc) {
        const int deb = etat.deb_voisin[static_cast<std::size_t>(i)], fin = etat.deb_voisin[static_cast<std::size_t>(i + 1)];
        for (int j = deb; j < fin; ++j)
          ressort(p, som + static_cast<long>(etat.voisin[static_cast<std::size_t>(j)]) * d, v, kc[0], kc[1],
                  etat.repos_long[static_cast<std::size_t>(j)], F);
      }
      if (l_pvol) ressorts_vol(o, etat.rec_pvol[static_cast<std::size_t>(i)], p, repos + 3 * i, v, F);
      if (ini) ressort(p, repos + 3 * i, v, ini[0], ini[1], 0, F);
      if (l_pts) {
        // [k, c, then points], each at rest length 0.
        const mot* r = etat.rec_pts[static_cast<std::size_t>(i)];
        const int lg = rec_long(r);
        for (int j = 2; j + 3 <= lg; j += 3) ressort(p, rec_val(r) + j, v, rec_val(r)[0], rec_val(r)[1], 0, F);
      }
      if (l_ini) {
        const mot* r = etat.rec_ini[static_cast<std::size_t>(i)];
        if (r && rec_long(r) >= 2) ressort(p, repos + 3 * i, v, rec_val(r)[0], rec_val(r)[1], 0, F);
      }
      const mot* rt = l_tor ? etat.rec_tor[static_cast<std::size_t>(i)] : nullptr;
      const reel* kt = tor ? tor : (rt && rec_long(rt) >= 2 ? rec_val(rt) : nullptr);
      if (kt) torsion(i, som, d, v, kt[0], kt[1], F);
    }
    // 11. Acceleration, with its limit.
    float* a = acc + 3 * i;
    for (int x = 0; x < 3; ++x) a[x] = k * F[x];
    float L = acc_lim;
    if (l_alim) {
      const mot* r = etat.rec_alim[static_cast<std::size_t>(aleat ? 0 : i)];
      if (r && rec_long(r) >= 1) L = rec_val(r)[0] / fn;
    }
    const float a2 = dot(a, a);
    if (a2 > L * L) {
      const float s = L / std::sqrt(a2);
      for (int x = 0; x < 3; ++x) a[x] *= s;
    }
    // 12. Velocity, its limit, and the move.
    for (int x = 0; x < 3; ++x) v[x] += a[x];
    if (cvit) {
      // (coe, vit): the velocity's scale, and a second one for a marked vertex.
      float e = cvit[0];
      if (ncvit > 1 && choc && choc[3 * i] != 0) e *= cvit[1];
      for (int x = 0; x < 3; ++x) v[x] *= e;
    }
    float Lv = vit_lim;
    if (l_vlim) {
      const mot* r = etat.rec_vlim[static_cast<std::size_t>(i)];
      if (r && rec_long(r) >= 1) Lv = rec_val(r)[0] / fn;
    }
    const bool limite = Lv < SANS_LIMITE;
    const float nv = norme(v);
    if (!aleat) {
      if (limite && nv > Lv) {
        const float s = Lv / nv;
        for (int x = 0; x < 3; ++x) v[x] *= s;
      }
      for (int x = 0; x < 3; ++x) p[x] += v[x];
    } else {
      for (int x = 0; x < 3; ++x) p[x] += v[x];
      if (limite && nv > Lv) {
        for (int x = 0; x < 3; ++x) {
          const float u = v[x] / nv;
          p[x] += (Lv - nv) * u;
          v[x] = Lv * u;
        }
      }
    }
  }
  // 14. The box of the centre of gravity.
  if (en_inter) {
    if (const reel* b = val2(o, 1, B_BOITE, 0, A_LIMK, 6)) {
      double c[3] = {0, 0, 0};
      for (int i = 0; i < nb; ++i)
        for (int x = 0; x < 3; ++x) c[x] += som[static_cast<long>(i) * d + x];
      for (int x = 0; x < 3; ++x) {
        const float g = static_cast<float>(c[x] / nb);
        float t = 0;
        if (g < b[x]) t = b[x] - g;
        else if (g > b[3 + x]) t = b[3 + x] - g;
        if (t != 0)
          for (int i = 0; i < nb; ++i) som[static_cast<long>(i) * d + x] += t;
      }
    }
  }
  etat.cha_de = nullptr;
  vol_som_change(o);
  ++etat.pas_faits;
  return 0;
}
}  // namespace dyn
