// Transformations applied to a volume: choice of the vertices, pivot,
// weights, and the stale marks afterwards; the matrix form of an operation;
// steps of an animation; the random draws of the shakes.
#include <cmath>
#include <cstring>
#include <vector>

#include "core/message.h"
#include "geom/interne.h"
#include "startup/startup.h"

float alea_suivant() {
  // Without the table of start-up a draw is the middle: a shake moves nothing.
  int n;
  const float* t = hasard_table(&n);
  if (!t || n <= 0) return 0.5f;
  if (geom.alea < 0 || geom.alea >= n) geom.alea = 0;
  return t[geom.alea++];
}

void transfo_pas(Transfo* t, int nb) {
  if (nb < 1) return;
  t->angle /= nb;
  t->f /= nb;
  for (int k = 0; k < 3; ++k) t->v[k] /= nb;
}

namespace {
// Vertex numbers of the selection, each once, checked against n; false
// after a report.
bool choisis(Objet* o, const Selection* sel, int n, std::vector<int>& liste) {
  std::vector<char> pris(n, 0);
  auto prend = [&](int v) {
    if (!pris[v - 1]) pris[v - 1] = 1, liste.push_back(v);
  };
  for (int k = 0; k < sel->nb_sommets; ++k) {
    int v = sel->sommets[k];
    if (v < 1 || v > n) return geom_erreur_valeur(v, MES_INDICE), false;
    prend(v);
  }
  if (sel->nb_faces <= 0) return true;
  mot* fac = vol_fac(o);
  if (!fac) return geom_erreur_valeur(o->numero, MES_NUL), false;
  if (fac_verifie(fac, n)) return false;
  // Face starts, so that a listed face is reached without a walk.
  std::vector<const mot*> debut(fac[2]);
  const mot* p = fac + 4;
  for (int i = 0; i < fac[2]; ++i, p = face_suivante(p)) debut[i] = p;
  for (int k = 0; k < sel->nb_faces; ++k) {
    int f = sel->faces[k];
    if (f < 1 || f > fac[2]) return geom_erreur_valeur(f, MES_INDICE), false;
    const mot* q = debut[f - 1];
    if (q[3] != 0) {
      for (int j = 0; j < q[3]; ++j) prend(q[4 + j]);
      continue;
    }
    const mot* c = q + 4;
    for (int j = 0; j < q[2]; ++j, c += c[0])
      for (int m = 0; m < c[3]; ++m) prend(c[4 + m]);
  }
  return true;
}
}  // namespace

int transformer_vol(Objet* o, const Transfo* t, const Selection* sel, bool affiches) {
  if (!est_volume(o)) return geom_erreur(o, MES_USAGE);
  int n, d;
  reel* som;
  if (affiches) {
    mot* a = gen_som_affiche(o, 0);
    if (!a) return -1;
    som = reels(valeur_de(a) + 4);
    n = valeur_de(a)[2];
    d = valeur_de(a)[3];
  } else {
    som = vol_som(o, &n, &d);
    if (!som) return geom_erreur_valeur(o->numero, MES_NUL);
  }
  std::vector<int> liste;
  bool choix = sel && (sel->nb_sommets > 0 || sel->nb_faces > 0);
  try {
    if (choix && !choisis(o, sel, n, liste)) return -1;
  } catch (const std::bad_alloc&) {
    erreur_memoire(n, 1);
    return -1;
  }
  Transfo u = *t;
  // Each target turns about its own centre unless a pivot is given.
  if (!u.pivot_donne) centre_sommets(som, n, d, u.pivot);
  const reel* poids = nullptr;
  if (mot* w = vol_valeur(o, 2, CLE_POIDS); w && w[1] == BLOC_REEL && w[0] >= 4 + n) poids = reels(w + 4);
  int r = transformer_sommets(som, n, d, &u, choix ? liste.data() : nullptr, static_cast<int>(liste.size()),
                              poids);
  if (r) return r;
  invalider_vol(o, 0);
  if (!affiches)
    if (mot* c = vol_attribut(o, 2, CLE_AFFICHE)) c[1] = 0;
  return 0;
}

namespace {
// Scaling by f about the pivot on the axes of the mask, as a matrix.
void echelle(const float* o, const double* f, float* m) {
  matrice_identite(m);
  for (int k = 0; k < 3; ++k) {
    m[5 * k] = static_cast<float>(f[k]);
    m[12 + k] = static_cast<float>(o[k] - f[k] * o[k]);
  }
}
}  // namespace

int transformer_matrice(const Transfo* t, float* m) {
  if (t->rayon >= 0) return 1;  // a fading effect has no matrix
  float op[16];
  const float* o = t->pivot;
  double f = t->f, c = std::cos(static_cast<double>(t->angle)), s = std::sin(static_cast<double>(t->angle));
  auto plan = [&](int a, int b) {
    matrice_identite(op);
    op[5 * a] = static_cast<float>(c);
    op[4 * b + a] = static_cast<float>(-s);
    op[4 * a + b] = static_cast<float>(s);
    op[5 * b] = static_cast<float>(c);
    op[12 + a] = static_cast<float>(o[a] - c * o[a] + s * o[b]);
    op[12 + b] = static_cast<float>(o[b] - s * o[a] - c * o[b]);
  };
  switch (t->op) {
    case B_DEP:
    case B_DEP2:
      matrice_translation(t->v, op);
      break;
    case B_ROTX: plan(1, 2); break;
    case B_ROTY: plan(0, 2); break;
    case B_ROTZ: plan(0, 1); break;
    case B_ROTA:
    case B_TIRER:
    case B_PLIE:
      matrice_axe(o, t->axe, static_cast<float>(c), static_cast<float>(s), op);
      break;
    case OP_MATRICE:
      std::memcpy(op, t->m, sizeof op);
      break;
    case B_HOM:
      if (t->ligne_donnee) {
        // f x + (1 - f) q, q the projection on the line: linear part
        // f I + (1 - f) u u', fixed points on the line.
        float u[3] = {t->ligne[3] - t->ligne[0], t->ligne[4] - t->ligne[1], t->ligne[5] - t->ligne[2]};
        normer(u, u);
        matrice_identite(op);
        for (int i = 0; i < 3; ++i)
          for (int j = 0; j < 3; ++j) op[4 * j + i] = static_cast<float>((i == j ? f : 0) + (1 - f) * u[i] * u[j]);
        for (int i = 0; i < 3; ++i) {
          double a = t->ligne[i];
          for (int j = 0; j < 3; ++j) a -= op[4 * j + i] * t->ligne[j];
          op[12 + i] = static_cast<float>(a);
        }
      } else {
        double v[3] = {t->v[0], t->v[1], t->v[2]};
        echelle(o, v, op);
      }
      break;
    case B_HOMX: case B_HOMY: case B_HOMZ: case B_HOMO: case B_SYMX: case B_SYMY: case B_SYMZ:
    case B_SYM: {
      int masque = t->op == B_HOMX || t->op == B_SYMX ? 1 : t->op == B_HOMY || t->op == B_SYMY ? 2
                 : t->op == B_HOMZ || t->op == B_SYMZ ? 4 : 7;
      double g = t->op >= B_SYMX ? -1 : f;
      double v[3];
      for (int k = 0; k < 3; ++k) v[k] = masque & (1 << k) ? g : 1;
      echelle(o, v, op);
      break;
    }
    default:
      return 1;
  }
  matrice_produit(op, m, m);
  return 0;
}

int tirer_prepare(Objet* grille, Transfo* t) {
  // The line between the first and the last bound of the grid's columns.
  int ny = grille ? vol_ny(grille) : 0;
  mot* b = vol_valeur(grille, 1, CLE_BORNES);
  if (!est_volume(grille) || vol_nx(grille) <= 0 || ny <= 0 || !b || b[1] != BLOC_REEL ||
      b[0] < 4 + 3 * (ny + 1))
    return geom_erreur_valeur(grille ? grille->numero : 0, MES_ABSENT);
  const reel* p = reels(b + 4);
  const reel* q = p + 3 * ny;
  t->op = B_TIRER;
  std::memcpy(t->pivot, p, 3 * sizeof(float));
  t->pivot_donne = true;
  for (int k = 0; k < 3; ++k) t->axe[k] = q[k] - p[k];
  return 0;
}
