// Curves and the fitting of lines from the language. The points are the
// vertices of a volume, which the result replaces (a line: its faces become
// the segments from each point to the next), or the value of som, and then
// the points of the result are the phrase's value.
//   vol(1) courbe(4, 1)              4 points between control points, tension 1
//   vol(1) courbe(4) som(0,0,0, 1,1,0, 2,0,0)   the curve written into vol(1)
//   courbe(4) som(...) coe(1, 0.5)   a value; coe gives the tension span by span
//   vol(1) ajust(20)                 20 points at equal steps along the line
//   vol(1) ajust(20) courbe(4) acc   along its curve, steps by the law acc
//   vol(1) ajust rayon(0.1)          thinned to within 0.1
//   vol(1) ajust joi(1.5708)         no joint bent past 90 degrees (radians)
//   vol(1) ajust                     its vertices spread at equal steps
// A closed line (spe in the phrase, or a volume created with spe) comes
// back to its first point.
#include <cmath>
#include <cstring>

#include "core/message.h"
#include "geom/commande_interne.h"

namespace {
constexpr int SUBDIVISIONS = 4;  // courbe without a value

struct Lecture {
  Cibles cibles;
  mot* e = nullptr;         // courbe or ajust
  mot* points = nullptr;    // som or seq
  mot* tensions = nullptr;  // coe
  mot* courbe = nullptr;    // the curve of ajust
  mot* seuil = nullptr;     // rayon
  mot* joint = nullptr;     // joi
  int loi = 0;
  bool ferme = false;
};

Lecture lit(mot* bloc, int ord) {
  Lecture L;
  pour_elements(bloc, [&](mot* e) {
    if (cible_lit(L.cibles, e) || e[1] != 1) return;
    switch (e[2]) {
      case B_SOM: case B_SEQ: L.points = e; break;
      case B_COE: L.tensions = e; break;
      case B_RAYON: L.seuil = e; break;
      case B_JOINT: L.joint = e; break;
      case B_ACC: case B_DEC: case B_ACD: L.loi = e[2]; break;
      case B_F4: L.ferme = true; break;
      case B_COURBE:
        if (ord == B_COURBE) L.e = L.e ? L.e : e;
        else L.courbe = e;
        break;
      case B_AJUST:
        if (ord == B_AJUST && !L.e) L.e = e;
        break;
    }
  });
  return L;
}

// s, t, f of a curve; false after a report.
bool params(mot* e, ParamCourbe* p) {
  float v[3] = {SUBDIVISIONS, 1, 0};
  int n = e ? lit_params(e, v, 3) : 0;
  if (n < 0) return false;
  if (n > 3 || !(v[0] >= 0 && v[0] < 1e6f) || !std::isfinite(v[1])) return mauvais_argument(e, MES_INDICE), false;
  p->s = entier_sature(v[0]);
  p->t = v[1];
  p->f = 0;  // the smoothing pass is not made
  return true;
}

// The points of the som element; false after a report.
bool points_de(mot* e, Nombres* x) {
  if (!lit_nombres(el_valeur(e), x)) return mauvais_argument(e, MES_VALEUR), false;
  if (x->n % 3 || x->n / 3 > 0x0fffffff) return geom_erreur_valeur(x->n, MES_INDICE), false;
  return true;
}

const mot* bloc_reel(mot* e) {
  mot* v = e ? el_valeur(e) : nullptr;
  return v && v[0] >= 4 && v[1] == BLOC_REEL ? v : nullptr;
}

// The curve through n points of stride pas into out (3 floats a row).
int trace(const ParamCourbe& p, int n, int pas, const reel* pts, const mot* tensions, std::vector<float>& out) {
  int m = courbe_nb(n, p.s);
  if (m < 0) return geom_erreur_valeur(n, MES_DEBORDEMENT);
  try {
    out.resize(3L * m);
  } catch (const std::bad_alloc&) {
    erreur_memoire(m, 3);
    return -1;
  }
  return courbe_points(&p, n, pas, 3, pts, tensions, out.data()) < 0 ? -1 : m;
}

// The volumes named, made when missing: a curve given with its points
// builds a line volume.
template <class F>
int pour_volumes(const Cibles& c, bool cree, F f) {
  long trouves = 0;
  for (long i = 1, n = nb_ids(c.ids); i <= n; ++i) {
    Objet* o = cible(c, i);
    if (!o && cree) o = objet_cree_arg(1, B_VOL, c.ids, static_cast<int>(i));
    if (!o) continue;
    ++trouves;
    if (int r = f(o)) return r;
  }
  return trouves ? 0 : introuvable(c);
}

// ---- ajust ------------------------------------------------------------------------
// The line at w (a BLOC_REEL of rows of 3), fitted; the result is left at
// *res, or null when the request was too large (reported).
int ajuste(const Lecture& L, mot* w, const mot* limite, bool ferme, mot** res) {
  Ajust a;
  ParamCourbe p;
  if (L.courbe) {
    if (!params(L.courbe, &p)) return -1;
    a.params = &p;
  }
  a.loi = L.loi;
  a.ferme = ferme;
  mot vide[4] = {4, BLOC_REEL, 0, 1};
  mot* travail = w + w[0];
  if (travail + 4 > limite) return PILE_PLEINE;
  travail[0] = 0;
  *res = travail;
  if (L.joint) {
    const mot* o = bloc_reel(L.joint);
    if (el_valeur(L.joint) && !o) return mauvais_argument(L.joint, MES_VALEUR);
    // An angle and a mode: numbers a joint can be compared with.
    for (mot k = 4; o && k < o[0] && k < 6; ++k)
      if (!(std::fabs(lit_reel(o + k)) < 1e9f)) return mauvais_argument(L.joint, MES_INDICE);
    a.ligne = w;
    a.options = o ? o : vide;
    *res = w;
  } else if (L.seuil) {
    a.seuil = bloc_reel(L.seuil);
    if (!a.seuil || a.seuil[0] < 5) return mauvais_argument(L.seuil, MES_VALEUR);
    a.nombre = w;
  } else if (el_valeur(L.e)) {
    a.nombre = bloc_reel(L.e);
    if (!a.nombre) return mauvais_argument(L.e, MES_VALEUR);
    a.ligne = w;
  } else {
    a.nombre = w;
  }
  int r = ajust_1(nullptr, travail, limite, &a);
  if (r) return r;
  if ((*res)[0] < 4 || (*res)[1] != BLOC_REEL) *res = nullptr;
  return 0;
}

// The line of the phrase, at the top of the stack.
int ligne_sur_pile(const Nombres& x, mot* w, const mot* limite) {
  if (limite - w < 4 + x.n) return PILE_PLEINE;
  std::memmove(w + 4, x.x, x.n * sizeof(float));
  entete(w, static_cast<mot>(4 + x.n), BLOC_REEL, static_cast<mot>(x.n / 3), 3);
  return 0;
}
}  // namespace

int courbe_commande(mot* bloc, mot* valeur, const mot* limite) {
  Lecture L = lit(bloc, B_COURBE);
  if (!L.e || valeur || (!L.points && !L.cibles.donne) || L.cibles.genre != B_VOL) return POUR_ATTRIBUT;
  ParamCourbe p;
  if (!params(L.e, &p)) return -1;
  const mot* tensions = bloc_reel(L.tensions);
  std::vector<float> c;
  if (L.points) {
    Nombres x;
    if (!points_de(L.points, &x)) return -1;
    int m = trace(p, static_cast<int>(x.n / 3), 3, x.x, tensions, c);
    if (m < 0) return -1;
    if (!L.cibles.donne) return rend_reels(bloc, limite, c.data(), 3L * m);
    int r = pour_volumes(L.cibles, true, [&](Objet* o) { return vol_ligne_ecrit(o, c.data(), m); });
    return r ? r : rend_rien(bloc);
  }
  int r = pour_volumes(L.cibles, false, [&](Objet* o) {
    int n, d;
    reel* s = vol_som(o, &n, &d);
    if (!s) return geom_erreur_valeur(o->numero, MES_NUL);
    int m = trace(p, n, d, s, tensions, c);
    return m < 0 ? -1 : vol_ligne_ecrit(o, c.data(), m);
  });
  return r ? r : rend_rien(bloc);
}

int ajust_commande(mot* bloc, mot* valeur, const mot* limite) {
  Lecture L = lit(bloc, B_AJUST);
  if (!L.e || valeur || (!L.points && !L.cibles.donne) || L.cibles.genre != B_VOL) return POUR_ATTRIBUT;
  mot* w = bloc + bloc[0];
  mot* res;
  if (L.points) {
    Nombres x;
    if (!points_de(L.points, &x)) return -1;
    int r = ligne_sur_pile(x, w, limite);
    if (r == 0) r = ajuste(L, w, limite, L.ferme, &res);
    if (r) return r;
    if (!res) return rend_rien(bloc);
    return rend_reels(bloc, limite, reels(res + 4), res[0] - 4);
  }
  int r = pour_volumes(L.cibles, false, [&](Objet* o) {
    int n = sommets_sur_pile(o, w, limite);
    if (n < 0) return n;
    int e = ajuste(L, w, limite, L.ferme || vol_ferme(o), &res);
    if (e || !res) return e;
    int m = (res[0] - 4) / 3, nb, d;
    reel* s = vol_som(o, &nb, &d);
    if (m != nb) return vol_ligne_ecrit(o, reels(res + 4), m);
    // The same count: the vertices move and the faces stay.
    for (int i = 0; i < m; ++i) std::memcpy(s + static_cast<long>(i) * d, reels(res + 4) + 3 * i, 3 * sizeof(float));
    vol_som_change(o);
    return 0;
  });
  return r ? r : rend_rien(bloc);
}
