// The transformation command: one handler for the whole group. It reads the
// phrase to its end, collecting the operations, their parameters and the
// targets, then applies the operations to each target in the order written.
//   vol(1) rotx(30)                  about the volume's own centre
//   vol(1,2) roty(90) som(0,0,0)     about a given pivot
//   dep(1,0,0) vol(1) sommet(1,2)    listed vertices only
//   vol(1) homo(2) max(3)            within a radius, fading to it
// Angles written with the operation are degrees; joi gives radians.
#include <cmath>
#include <cstring>

#include "core/message.h"
#include "geom/commande_interne.h"
#include "startup/startup.h"

namespace {
constexpr double DEGRES = 57.295776;
constexpr int PAS_POSITIF = 10001;  // element put by the animation loop
constexpr int MAX_OPS = 8;
constexpr mot CLE_SOM_SAUVE[] = {1, -B_SOM};

struct Operation {
  mot* e;         // its element, for reports
  int ord;        // ordinal, OP_MATRICE for a38
  float v[16];
  int n;
};

struct Lecture {
  Transfo base;   // parameters shared by the operations
  Operation ops[MAX_OPS];
  int nb_ops = 0;
  Cibles cibles;
  std::vector<int> sommets, faces;
  mot* globales = nullptr;
  bool affiches = false, sur_matrice = false, axe_donne = false, bornes = false;
  float pivot_axe[3] = {0, 0, 0};
  bool pivot_axe_donne = false;
  int attribut = 0;  // b9 or b10: that attribute moves instead of the vertices
  Nombres points;    // b26: the operation repeated about each point
  bool avec_points = false;
  int pas = 0;       // > 0 one step of an animation, < 0 back to the origin
  int grille = 0;    // number of the control grid of tirer
  mot* rotv = nullptr;  // a rotation given as a vector (a100)
  float angle_rotv = 0;  // its angle, degrees
  mot* absente = nullptr;  // an element that hands over to a route we lack
};

bool est_operation(const mot* e) {
  if (e[1] == 0) return e[2] == A_MATRICE_CMD;
  if (e[1] != 1) return false;
  switch (e[2]) {
    case B_DEP: case B_DEP2: case B_ROTA: case B_ROTX: case B_ROTY: case B_ROTZ: case B_HOM: case B_HOMX:
    case B_HOMY: case B_HOMZ: case B_HOMO: case B_SECX: case B_SECY: case B_SECZ: case B_SEC: case B_SYMX:
    case B_SYMY: case B_SYMZ: case B_SYM: case B_BOSSE: case B_TORD: case B_PLIE: case B_EFFILE:
    case B_TIRER:
      return true;
  }
  return false;
}

// How many values each operation takes at most.
int valeurs_max(int ord) {
  switch (ord) {
    case OP_MATRICE: return 16;
    case B_DEP: case B_DEP2: case B_HOM: return 3;
    case B_ROTA: return 4;
    case B_TIRER: return 2;
    case B_SYMX: case B_SYMY: case B_SYMZ: case B_SYM: return 0;
  }
  return 1;
}

int lit_operation(Lecture& L, mot* e) {
  if (L.nb_ops == MAX_OPS) return mauvais_argument(e, MES_DEBORDEMENT);
  Operation& o = L.ops[L.nb_ops];
  o.e = e;
  o.ord = e[1] == 0 ? OP_MATRICE : e[2];
  o.n = lit_params(e, o.v, 16);
  if (o.n < 0) return -1;
  // Wrong shapes: a matrix of other than 16 values, rota with an axis of
  // fewer than 3, tirer without its grid, or more values than taken.
  int max = valeurs_max(o.ord);
  if (o.n > max || (o.ord == OP_MATRICE && o.n != 16) || (o.ord == B_ROTA && o.n > 1 && o.n < 4) ||
      (o.ord == B_TIRER && o.n < 1))
    return mauvais_argument(e, MES_INDICE);
  if (o.ord == B_TIRER) {
    if (!reel_entier(o.v[0], &L.grille, -999999999, 999999999)) return mauvais_argument(e, MES_INDICE);
  }
  ++L.nb_ops;
  return 0;
}

// Up to 3 floats into dst; false after a report.
bool triple(mot* e, float* dst, int* n = nullptr) {
  float v[3];
  int k = lit_params(e, v, 3);
  if (k < 0) return false;
  if (k > 3) return mauvais_argument(e, MES_INDICE), false;
  std::memcpy(dst, v, sizeof(float) * k);
  if (n) *n = k;
  return true;
}

// A line of up to 6 floats: missing ones of the second point are the
// negation of the first point's, so that the line passes through the origin.
bool ligne(Lecture& L, mot* e) {
  float v[6];
  int k = lit_params(e, v, 6);
  if (k < 0) return false;
  if (k > 6) return mauvais_argument(e, MES_INDICE), false;
  float* l = L.base.ligne;
  for (int j = 0; j < 3; ++j) l[j] = j < k ? v[j] : 0;
  for (int j = 3; j < 6; ++j) l[j] = j < k ? v[j] : -l[j - 3];
  L.base.ligne_donnee = true;
  return true;
}

int lit_a(Lecture& L, mot* e) {
  mot* v = el_valeur(e);
  float x[3] = {0, 0, 0};
  switch (e[2]) {
    case A_VAR:
      if (!v) {
        message(0, MES_VAR);
        return -1;
      }
      if (v[0] < 4 || (v[1] != BLOC_CHAINE && v[1] != BLOC_LISTE)) return mauvais_argument(e, MES_VALEUR);
      L.globales = v;
      return 0;
    case A_TOP: L.affiches = true; return 0;
    case A_MAX: {
      int k = lit_params(e, x, 1);
      if (k < 0) return -1;
      if (k > 0) L.base.rayon = x[0];
      return 0;
    }
    case A_TAILLE: return lit_numeros(e, L.sommets) < 0 ? -1 : 0;
    case A_PULS: L.sur_matrice = true; return 0;
    case A_ROTV: {
      // The length, clamped to 1, is the sine of the angle; the direction
      // is the axis.
      int k = lit_params(e, x, 3);
      if (k < 0) return -1;
      if (k != 3) return mauvais_argument(e, MES_INDICE);
      double l = std::min(1.0, module(x));
      std::memcpy(L.base.axe, x, sizeof x);
      L.axe_donne = true;
      L.rotv = e;
      L.angle_rotv = static_cast<float>(std::asin(l) * DEGRES);
      return 0;
    }
    case A_CHERCHE: case A_FONC_CHAMP:
      L.absente = e;
      return 0;
  }
  return 0;  // a69 and the others: nothing to read
}

int lit_b(Lecture& L, mot* e) {
  Transfo& t = L.base;
  float x[6] = {0, 0, 0, 0, 0, 0};
  int k;
  switch (e[2]) {
    case B_MASSE: case B_BOITE: case B_ATTR: case B_GL: case B_VIT: case B_TRANSP: case B_MEM: case B_TABLEAU:
      L.absente = e;
      return 0;
    case B_OEIL: case B_VISE: L.attribut = e[2]; return 0;
    case B_FAC: return lit_numeros(e, L.faces) < 0 ? -1 : 0;
    case B_SOMMET: return lit_numeros(e, L.sommets) < 0 ? -1 : 0;
    case B_SEQ: return ligne(L, e) ? 0 : -1;
    case B_BORNES:
      if (el_valeur(e)) return ligne(L, e) ? 0 : -1;
      L.bornes = true;
      return 0;
    case B_SORTIE:
      if (!el_valeur(e)) return 0;
      if (!lit_nombres(el_valeur(e), &L.points)) return mauvais_argument(e, MES_VALEUR);
      if (L.points.n % 3) return mauvais_argument(e, MES_INDICE);
      L.avec_points = true;
      return 0;
    case B_JOINT:
      k = lit_params(e, x, 1);
      if (k < 0) return -1;
      if (k > 0) t.angle = x[0];
      return 0;
    case B_COE: return triple(e, t.v) ? 0 : -1;
    case B_SEGMENT:
      // An axis by two points; the first is the pivot unless one is given.
      k = lit_params(e, x, 6);
      if (k < 0) return -1;
      if (k != 6) return mauvais_argument(e, MES_INDICE);
      for (int j = 0; j < 3; ++j) t.axe[j] = x[3 + j] - x[j];
      normer(t.axe, t.axe);
      std::memcpy(L.pivot_axe, x, 3 * sizeof(float));
      L.pivot_axe_donne = L.axe_donne = true;
      return 0;
    case B_SOM:
      if (!el_valeur(e)) return 0;
      if (!triple(e, t.pivot)) return -1;
      t.pivot_donne = true;
      return 0;
    case B_AXE:
      if (!el_valeur(e)) return 0;
      if (!triple(e, t.axe, &k)) return -1;
      normer(t.axe, t.axe);
      L.axe_donne = true;
      return 0;
    case B_PROPAGE: L.pas = -1; return 0;
  }
  return 0;  // image axes and the rest: not for vertices
}

int lit(Lecture& L, mot* bloc) {
  int r = 0;
  pour_elements(bloc, [&](mot* e) {
    if (r < 0) return;
    if (e[2] == PAS_POSITIF) {
      if (L.pas == 0) L.pas = 1;
    } else if (est_operation(e)) {
      r = lit_operation(L, e);
    } else if (cible_lit(L.cibles, e)) {
    } else if (e[1] == 0) {
      r = lit_a(L, e);
    } else if (e[1] == 1) {
      r = lit_b(L, e);
    }
  });
  // The vector alone makes a rota; a rota without an angle takes its angle.
  if (r == 0 && L.rotv) {
    if (L.nb_ops == 0) L.ops[L.nb_ops++] = Operation{L.rotv, B_ROTA, {}, 0};
    for (int i = 0; i < L.nb_ops; ++i)
      if (L.ops[i].ord == B_ROTA && L.ops[i].n == 0) L.ops[i].v[0] = L.angle_rotv, L.ops[i].n = 1;
  }
  return r;
}

// The values of an operation over the shared parameters: the components of
// dep it does not give stay those already held.
void valeurs(Transfo& t, const Operation& o) {
  const float* v = o.v;
  int n = o.n;
  t.op = o.ord;
  switch (o.ord) {
    case OP_MATRICE: std::memcpy(t.m, v, sizeof t.m); break;
    case B_DEP: case B_DEP2:
      for (int k = 0; k < n; ++k) t.v[k] = v[k];
      break;
    case B_ROTA:
      if (n >= 1) t.angle = static_cast<float>(v[0] / DEGRES);
      if (n == 4) std::memcpy(t.axe, v + 1, 3 * sizeof(float));
      break;
    case B_ROTX: case B_ROTY: case B_ROTZ: case B_TORD: case B_PLIE:
      if (n >= 1) t.angle = static_cast<float>(v[0] / DEGRES);
      break;
    case B_TIRER:
      if (n >= 2) t.angle = static_cast<float>(v[1] / DEGRES);
      break;
    case B_HOM:
      for (int k = 0; k < 3; ++k) t.v[k] = n == 1 ? v[0] : (k < n ? v[k] : 1);
      t.f = n ? v[0] : 1;
      break;
    case B_HOMX: case B_HOMY: case B_HOMZ: case B_HOMO: case B_BOSSE:
      t.f = n ? v[0] : 1;
      break;
    default:  // shakes and effile: nothing without an amplitude
      t.f = n ? v[0] : 0;
  }
}

bool avec_axe(int op) { return op == B_ROTA || op == B_TORD || op == B_PLIE || op == B_EFFILE; }

// The operations as ready records, in the order written. A rotation about
// an axis takes it from the phrase, else from a line of the phrase, else
// from the current value of axe.
int prepare(Lecture& L, Transfo* t) {
  Transfo& b = L.base;
  if (!b.pivot_donne && L.pivot_axe_donne) {
    std::memcpy(b.pivot, L.pivot_axe, sizeof b.pivot);
    b.pivot_donne = true;
  }
  int nb = 1;
  if (L.pas > 0) {
    int n;
    reel* v = mot_valeur(1, B_NB, &n);
    if (mot m; v && n > 0 && reel_entier(v[0], &m, 1, 999999999)) nb = m;
  }
  Objet* grille = nullptr;
  if (L.grille) grille = objet_trouve(B_VOL, 0, L.grille, nullptr);
  for (int i = 0; i < L.nb_ops; ++i) {
    t[i] = b;
    valeurs(t[i], L.ops[i]);
    bool rota_axe = L.ops[i].ord == B_ROTA && L.ops[i].n == 4;
    if (avec_axe(t[i].op) && !L.axe_donne && !rota_axe) {
      if (b.ligne_donnee) {
        for (int k = 0; k < 3; ++k) t[i].axe[k] = b.ligne[3 + k] - b.ligne[k];
        if (!b.pivot_donne) std::memcpy(t[i].pivot, b.ligne, sizeof b.pivot);
        t[i].pivot_donne = true;
      } else {
        int n;
        reel* a = mot_valeur(1, B_AXE, &n);
        if (a && n >= 3) std::memcpy(t[i].axe, a, 3 * sizeof(float));
      }
    }
    if (t[i].op == B_TIRER) {
      float angle = t[i].angle;
      if (tirer_prepare(grille, &t[i])) return -1;
      t[i].angle = angle;
    }
    if (L.pas > 0) transfo_pas(&t[i], nb);
  }
  return 0;
}

// ---- per target ---------------------------------------------------------------------
// One step of an animation keeps the vertices of its start, once.
int sauve(Objet* o) {
  if (vol_attribut(o, 1, CLE_SOM_SAUVE)) return 0;
  mot* a = vol_attribut(o, 1, CLE_SOM);
  if (!a) return 0;
  mot* b = attribut_nouveau(o, a[0]);
  if (!b) return -1;
  std::memcpy(b, a, sizeof(mot) * a[0]);
  b[5] = -B_SOM;
  return 0;
}

int retour_origine(Objet* o) {
  if (attribut_restaure(o, 1, B_SOM)) vol_som_change(o);
  return 0;
}

// Into the volume's matrix (a112) instead of its vertices; the displayed
// copy follows when next needed.
int dans_matrice(Objet* o, Transfo u, const mot* e) {
  int n, d;
  reel* s = vol_som(o, &n, &d);
  if (!s) return geom_erreur_valeur(o->numero, MES_NUL);
  if (!u.pivot_donne) centre_sommets(s, n, d, u.pivot);
  float m[16];
  mot* v = vol_valeur(o, 1, CLE_MATRICE);
  if (v && v[1] == BLOC_REEL && v[0] >= 20)
    std::memcpy(m, v + 4, sizeof m);
  else
    matrice_identite(m);
  // Shakes and fading effects have no matrix.
  if (transformer_matrice(&u, m)) return mauvais_argument(e, MES_USAGE);
  mot* a = attribut_prepare(o, 1, CLE_MATRICE, 20);
  if (!a) return -1;
  entete(valeur_de(a), 20, BLOC_REEL, 16, 1);
  std::memcpy(valeur_de(a) + 4, m, sizeof m);
  a[1] = BLOC_PHRASE;
  if (mot* c = vol_attribut(o, 2, CLE_AFFICHE)) c[1] = 0;
  return 0;
}

// The points of a float vector: of a global, or of an attribute b9, b10.
int sur_points(mot* v, Transfo u, const Lecture& L) {
  if (!v || v[0] < 4 || v[1] != BLOC_REEL || (v[0] - 4) % 3) return 0;
  int n = (v[0] - 4) / 3;
  reel* p = reels(v + 4);
  if (!u.pivot_donne) centre_sommets(p, n, 3, u.pivot);
  const int* liste = L.sommets.empty() ? nullptr : L.sommets.data();
  return transformer_sommets(p, n, 3, &u, liste, static_cast<int>(L.sommets.size()), nullptr);
}

int volume(Lecture& L, Objet* o, Transfo u, const Selection& sel, const mot* e) {
  if (L.sur_matrice) return dans_matrice(o, u, e);
  if (L.attribut) {
    const mot cle[] = {1, L.attribut};
    return sur_points(vol_valeur(o, 1, cle), u, L);
  }
  if (L.bornes) {
    mot* b = vol_valeur(o, 1, CLE_BORNES);
    if (!b || b[1] != BLOC_REEL || b[0] < 10) return geom_erreur_valeur(o->numero, MES_NUL);
    std::memcpy(u.ligne, b + 4, 3 * sizeof(float));
    std::memcpy(u.ligne + 3, b + b[0] - 3, 3 * sizeof(float));
    u.ligne_donnee = true;
  }
  if (!L.avec_points) return transformer_vol(o, &u, &sel, L.affiches);
  for (long k = 0; k + 2 < L.points.n; k += 3) {
    std::memcpy(u.pivot, L.points.x + k, 3 * sizeof(float));
    u.pivot_donne = true;
    if (transformer_vol(o, &u, &sel, L.affiches)) return -1;
  }
  return 0;
}

int globales(Lecture& L, const Transfo* t) {
  auto une = [&](const char* nom) {
    Objet* g = objet_trouve(OBJ_GLOBAL, 0, 0, nom);
    if (!g) return 0;  // a name not found is passed over
    for (int i = 0; i < L.nb_ops; ++i)
      if (sur_points(g->donnees, t[i], L)) return -1;
    return 0;
  };
  mot* v = L.globales;
  if (v[1] == BLOC_CHAINE) return une(bloc_texte(v));
  mot* c = v + 4;
  for (mot k = 0; k < v[2] && c < v + v[0]; ++k, c += c[0] > 0 ? c[0] : 2)
    if (c[0] > 4 && c[1] == BLOC_CHAINE && une(bloc_texte(c))) return -1;
  return 0;
}
}  // namespace

int transformer(mot* bloc, mot*, const mot*) {
  Lecture L;
  if (lit(L, bloc)) return -1;
  if (L.absente) return route_absente(bloc, L.absente[1], L.absente[2]);
  if (L.nb_ops == 0 && L.pas >= 0) return route_absente(bloc, bloc[5], bloc[6]);
  Transfo t[MAX_OPS];
  if (prepare(L, t)) return -1;
  if (L.globales && globales(L, t)) return -1;
  Cibles& c = L.cibles;
  if (c.genre != B_VOL && !L.attribut) return route_absente(bloc, 1, c.genre);
  Selection sel;
  sel.sommets = L.sommets.data();
  sel.nb_sommets = static_cast<int>(L.sommets.size());
  sel.faces = L.faces.data();
  sel.nb_faces = static_cast<int>(L.faces.size());
  mot* e = L.nb_ops ? L.ops[0].e : el_premier(bloc);
  auto une = [&](Objet* o) {
    if (L.pas < 0) return retour_origine(o);
    if (L.pas > 0 && sauve(o)) return -1;
    for (int i = 0; i < L.nb_ops; ++i)
      if (volume(L, o, t[i], sel, L.ops[i].e)) return -1;
    if (est_volume(o)) {
      geom.dernier = o->numero;
      geom.dernier_vu = true;
    }
    return 0;
  };
  if (!c.donne) {
    if (L.globales) return rend_rien(bloc);
    // No target named: the current object in an animation step, else the
    // volume the last transformation moved.
    Objet* o = L.pas != 0 ? objet_courant : nullptr;
    if (!o && geom.dernier_vu) o = objet_trouve(B_VOL, 0, geom.dernier, nullptr);
    if (!o) return mauvais_argument(e, MES_ABSENT);
    return une(o) ? -1 : rend_rien(bloc);
  }
  long n = nb_ids(c.ids), trouves = 0;
  for (long i = 1; i <= n; ++i) {
    Objet* o = cible(c, i);
    if (!o) continue;  // a missing target is passed over
    ++trouves;
    if (une(o)) return -1;
  }
  if (trouves == 0) return introuvable(c);
  return rend_rien(bloc);
}
