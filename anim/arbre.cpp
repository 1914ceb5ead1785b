// The tree of leaders and followers: links, the matrices of followers that
// hang at their leader's anchor vertex, and the re-rooting of a figure.
//
// A root is placed as every record is (`vol_inter_matrice`); a follower's
// matrix is its leader's times the translation to the leader's anchor
// vertex plus `pos`, the Euler turns, the turn by `angle` about `axe`, and
// the translation by minus its own anchor vertex, so that its anchor
// vertex sits on its leader's. Such a matrix is marked `mat_arbre`: the
// frame draws it as it stands. A root carried by a vertex of another
// volume (a task of its `taches`) stands on that vertex, turned, and is
// placed after the roots that are not carried, so that its carrier's
// matrix is this frame's; its followers start from the world.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "anim/trajet.h"
#include "geom/geom.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
constexpr int MES_CYCLE = 140, MES_SOM_HORS_ = 137;
constexpr float RAD = 0.017453292f;
int profondeur = 0, nb_recs = 0;

// A record whose volume was deleted under it keeps its place but has no
// vertices any more.
const float* som_local(const Vol_inter* r, int s) {
  const Objet* o = r->objet;
  if (!o || o->type != B_VOL || o->numero != r->num) return nullptr;
  if (!r->som || s < 1 || s > r->nb_som) return nullptr;
  return r->som + static_cast<long>(s - 1) * r->stride;
}

void local3(const Vol_inter* r, int s, float* p) {
  const float* q = som_local(r, s);
  for (int x = 0; x < 3; ++x) p[x] = q && (x < r->stride) ? q[x] : 0.f;
}

void tourne(float* m, const float* axe, float deg) {
  if (deg == 0) return;
  const float zero[3] = {0, 0, 0};
  float r[16], t[16];
  matrice_axe(zero, axe, std::cos(deg * RAD), std::sin(deg * RAD), r);
  matrice_produit(m, r, t);
  std::memcpy(m, t, sizeof t);
}

void deplace(float* m, const float* d) {
  float r[16], t[16];
  matrice_translation(d, r);
  matrice_produit(m, r, t);
  std::memcpy(m, t, sizeof t);
}

constexpr float IDENTITE[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

void evalue(Vol_inter* r, const float* parent) {
  if (++profondeur > nb_recs + 1) {
    --profondeur;
    return;
  }
  const float* depart = r->mat;  // where the followers start
  float w[3];
  if ((!parent || !r->lead) && tache_point(r, w)) {
    float m[16];
    std::memcpy(m, IDENTITE, sizeof m);
    deplace(m, w);
    tourne_euler(m, ordre_rot_inv, r, 1);
    tourne(m, r->axe, r->angle);
    std::memcpy(r->mat, m, sizeof m);
    r->mat_arbre = 1;
    depart = IDENTITE;
  } else if (!parent || !r->lead) {
    vol_inter_matrice(r);
    r->mat_arbre = 0;
  } else {
    float m[16], a[3];
    std::memcpy(m, parent, sizeof m);
    local3(r->lead, r->som_lead, a);
    for (int x = 0; x < 3; ++x) a[x] += r->pos[x];
    deplace(m, a);
    tourne_euler(m, ordre_rot_inv, r, 1);
    tourne(m, r->axe, r->angle);
    local3(r, r->som_suiv, a);
    for (float& x : a) x = -x;
    deplace(m, a);
    std::memcpy(r->mat, m, sizeof m);
    r->mat_arbre = 1;
  }
  for (int k = 0; k < r->nb_suiv; ++k)
    if (r->suiv[k] && r->suiv[k]->lead == r) evalue(r->suiv[k], depart);
  --profondeur;
}

void retire(Vol_inter* p, Vol_inter* r) {
  if (!p) return;
  for (int k = 0; k < p->nb_suiv; ++k)
    if (p->suiv[k] == r) {
      std::memmove(p->suiv + k, p->suiv + k + 1, sizeof(Vol_inter*) * static_cast<std::size_t>(p->nb_suiv - k - 1));
      --p->nb_suiv;
      return;
    }
}

int ajoute(Vol_inter* p, Vol_inter* r) {
  for (int k = 0; k < p->nb_suiv; ++k)
    if (p->suiv[k] == r) return 0;
  if (p->nb_suiv >= MAX_SUIV) {
    std::printf("TROP DE SUIVEURS %d\x07\n", p->num);
    return -1;
  }
  p->suiv[p->nb_suiv++] = r;
  return 0;
}

void bras(Vol_inter* r) {
  float a[3] = {0, 0, 0};
  if (r->lead) local3(r, r->som_suiv, a);
  r->bras = static_cast<float>(std::sqrt(dist2(a, r->centre)));
}

int som_hors(int s) {
  std::printf("%d: ", s);
  message(1, MES_SOM_HORS_);
  return -1;
}
}  // namespace

bool som_monde(const Vol_inter* r, int s, float* w) {
  const float* q = som_local(r, s);
  if (!q) return false;
  const float p[3] = {q[0], r->stride > 1 ? q[1] : 0.f, r->stride > 2 ? q[2] : 0.f};
  matrice_applique(r->mat, p, w);
  return true;
}

Vol_inter* arbre_racine(Vol_inter* r) {
  int n = 0;
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) ++n;
  for (int k = 0; r && r->lead && k <= n; ++k) r = r->lead;
  return r;
}

int arbre_lie(Vol_inter* r, Vol_inter* lead, int som_lead, int som_suiv) {
  if (lead) {
    if (!som_local(lead, som_lead)) return som_hors(som_lead);
    if (som_suiv && !som_local(r, som_suiv)) return som_hors(som_suiv);
    // A leader that hangs, however far up, from r would close a loop.
    int n = 0;
    for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) ++n;
    Vol_inter* p = lead;
    for (int k = 0; p && k <= n; ++k, p = p->lead)
      if (p == r) {
        std::printf("%d: ", lead->num);
        message(1, MES_CYCLE);
        return -1;
      }
    if (p) {
      std::printf("%d: ", lead->num);
      message(1, MES_CYCLE);
      return -1;
    }
  }
  if (r->lead && r->lead != lead) retire(r->lead, r);
  r->lead = lead;
  r->lead_num = lead ? lead->num : 0;
  if (!lead) {
    r->mat_arbre = 0;
    vol_inter_matrice(r);
    return 0;
  }
  r->som_lead = som_lead;
  if (som_suiv) r->som_suiv = som_suiv;
  bras(r);
  return ajoute(lead, r);
}

void arbre_evalue() {
  nb_recs = 0;
  bool arbre = false, taches = false;
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant)
    ++nb_recs, arbre = arbre || v->lead, taches = taches || v->taches[0];
  if (!arbre && !taches) return;
  // A leader set at the start from the volume's attributes lists its
  // follower here too, so that the walk from the roots reaches it.
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant)
    if (v->lead && v->lead != v) ajoute(v->lead, v);
  profondeur = 0;
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant)
    if (!v->lead && !(v->taches[0] & TACHE_SOM)) evalue(v, nullptr);
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant)
    if (!v->lead && (v->taches[0] & TACHE_SOM)) evalue(v, nullptr);
  if (taches) taches_pas();
}

int ordre_rot = 213, ordre_rot_inv = 312;

int arbre_ordre(int n) {
  if (n < 123 || n > 321) {
    std::printf("%d: ", n);
    message(0, MES_INDICE);
    return -1;
  }
  ordre_rot = n;
  ordre_rot_inv = (n % 10) * 100 + (n / 10 % 10) * 10 + n / 100;
  return 0;
}

void tourne_euler(float* m, int ordre, const Vol_inter* r, float signe) {
  // Only the six orders of 1, 2 and 3 turn.
  const int c[3] = {ordre / 100, ordre / 10 % 10, ordre % 10};
  if (ordre < 123 || ordre > 321 || c[0] + c[1] + c[2] != 6 || c[0] * c[1] * c[2] != 6) return;
  const float ax[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  const float an[3] = {r->rotx, r->roty, r->rotz};
  for (int k : c) tourne(m, ax[k - 1], signe * an[k - 1]);
}

void arbre_liste(Vol_inter* const* vols, int n) {
  std::printf("%s%s%s%s%s", "   num ", "  lead ", "     xl yl zl       ", "     xs ys zs       ", "  suiv\n");
  auto ligne = [](Vol_inter* r) {
    std::printf("%d ", r->num);
    if (r->lead) {
      float l[3], w[3] = {0, 0, 0};
      std::printf("lead = %d ", r->lead->num);
      local3(r->lead, r->som_lead, l);
      som_monde(r->lead, r->som_lead, w);
      std::printf("\n(sl = %f %f %f)", static_cast<double>(l[0]), static_cast<double>(l[1]), static_cast<double>(l[2]));
      std::printf(" (%d %f %f %f)", r->som_lead, static_cast<double>(w[0]), static_cast<double>(w[1]),
                  static_cast<double>(w[2]));
      w[0] = w[1] = w[2] = 0;
      local3(r, r->som_suiv, l);
      som_monde(r, r->som_suiv, w);
      std::printf("\n(ss = %f %f %f)", static_cast<double>(l[0]), static_cast<double>(l[1]), static_cast<double>(l[2]));
      std::printf(" (%d %f %f %f)", r->som_suiv, static_cast<double>(w[0]), static_cast<double>(w[1]),
                  static_cast<double>(w[2]));
    } else {
      std::printf("    *       ");
    }
    for (int k = 0; k < r->nb_suiv; ++k)
      if (r->suiv[k]) std::printf("suiv = %d ", r->suiv[k]->num);
    std::printf("\n");
  };
  if (vols) {
    for (int k = 0; k < n; ++k) ligne(vols[k]);
  } else {
    for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) ligne(v);
  }
}

int arbre_origine(Vol_inter* r) {
  if (!r->lead) return 0;
  // 1. The world angle and place of r.
  std::vector<Vol_inter*> ch{r};
  float somme = r->angle;
  for (Vol_inter* p = r->lead; p; p = p->lead) {
    if (std::find(ch.begin(), ch.end(), p) != ch.end()) {
      std::printf("%d: ", p->num);
      message(1, MES_CYCLE);
      return -1;
    }
    ch.push_back(p);
    somme += p->angle;
  }
  arbre_evalue();
  float centre[3];
  matrice_applique(r->mat, r->centre, centre);
  Vol_inter* ancienne = ch.back();
  float axe[3];
  std::memcpy(axe, ancienne->axe, sizeof axe);
  // 2-3. Each link of the chain turned over: the anchor vertices swap.
  std::vector<int> sl(ch.size()), ss(ch.size());
  std::vector<float> an(ch.size());
  for (std::size_t i = 0; i < ch.size(); ++i) sl[i] = ch[i]->som_lead, ss[i] = ch[i]->som_suiv, an[i] = ch[i]->angle;
  for (std::size_t i = 0; i + 1 < ch.size(); ++i) {
    Vol_inter *c = ch[i], *p = ch[i + 1];
    retire(p, c);
    p->lead = c;
    p->lead_num = c->num;
    p->som_lead = ss[i];
    p->som_suiv = sl[i];
    ajoute(c, p);
    // 4. A former ancestor turns back by its former child's angle.
    p->angle = -an[i];
  }
  r->lead = nullptr;
  r->lead_num = 0;
  // 5-6. Only the root keeps a place: the one it had in the world.
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant)
    if (v->lead) std::memset(v->pos, 0, sizeof v->pos);
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) bras(v);
  r->angle = somme;
  std::memcpy(r->axe, axe, sizeof axe);
  r->rotx = r->roty = r->rotz = 0;
  for (int x = 0; x < 3; ++x) r->pos[x] = centre[x] - r->centre[x];
  arbre_evalue();
  return 0;
}
