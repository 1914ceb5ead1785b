// Shapes in one phrase. Like `vol(1)` alone, a shape phrase creates the
// volume (or replaces the one of that number), then fills its vertices and
// faces; with no volume named it takes the next free number.
//   vol(1) grille(10, 4)           10 x 4 cells of side 1; with spe, rows closed
//   vol(1) grille(10, 4, 0, 2, 1)  nx, ny, nz, then the steps dx, dy, dz
//   vol(2) cube(2)                 side 2 about the origin
//   vol(3) sphere(1, 16, 8)        radius, meridians, parallels
//   vol(4) cylindre(1, 2, 24)      radius, height, sides, [caps 1 or 0]
//   vol(5) cone(1, 2, 24)          base radius, height, sides, [top radius]
//   vol(6) tore(2, 0.5, 24, 12)    radii of the ring and the tube, divisions
// The shape is built on a scratch volume first, so that bad sizes leave
// the volume of that number as it was.
#include <cmath>
#include <cstring>

#include "core/message.h"
#include "geom/commande_interne.h"

namespace {
constexpr int NUMERO_TRAVAIL = -12345;  // temporary volumes

struct Forme {
  mot* e = nullptr;  // the shape's element
  Cibles cibles;
  int ferme = 0;     // the clause spe (b48)
  float v[6];
  int n = 0;
};

bool est_forme(const mot* e) {
  if (e[1] != 1) return false;
  switch (e[2]) {
    case B_GRILLE: case B_CUBE: case B_SPHERE: case B_CYLINDRE: case B_CONE: case B_TORE:
      return true;
  }
  return false;
}

int valeurs_max(int ord) {
  switch (ord) {
    case B_GRILLE: return 6;
    case B_CUBE: return 1;
    case B_SPHERE: return 3;
  }
  return 4;
}

// A count from a float; false for what no count can be.
bool compte(float x, int* n) {
  if (!reel_entier(x, n, -999999999, 999999999)) return geom_erreur_valeur(0, MES_INDICE), false;
  return true;
}

float ou(const Forme& f, int k, float defaut) { return k < f.n ? f.v[k] : defaut; }

int construit(Objet* o, const Forme& f) {
  int a, b, c;
  switch (f.e[2]) {
    case B_GRILLE:
      if (!compte(ou(f, 0, 1), &a) || !compte(ou(f, 1, 1), &b) || !compte(ou(f, 2, 0), &c)) return -1;
      return vol_grille(o, a, b, c, f.ferme, ou(f, 3, 1), ou(f, 4, 1), ou(f, 5, 1));
    case B_CUBE:
      return vol_cube(o, ou(f, 0, 1));
    case B_SPHERE:
      if (!compte(ou(f, 1, 16), &a) || !compte(ou(f, 2, 8), &b)) return -1;
      return vol_sphere(o, a, b, ou(f, 0, 1));
    case B_CYLINDRE:
      if (!compte(ou(f, 2, 16), &a)) return -1;
      return vol_cylindre(o, a, ou(f, 0, 1), ou(f, 0, 1), ou(f, 1, 1), ou(f, 3, 1) != 0);
    case B_CONE:
      if (!compte(ou(f, 2, 16), &a)) return -1;
      return vol_cylindre(o, a, ou(f, 0, 1), ou(f, 3, 0), ou(f, 1, 1), true);
    case B_TORE:
      if (!compte(ou(f, 2, 16), &a) || !compte(ou(f, 3, 8), &b)) return -1;
      return vol_tore(o, a, b, ou(f, 0, 1), ou(f, 1, 0.25f));
  }
  return -1;
}

// The volume the phrase makes: through the generic creation when the
// phrase begins with vol or grille, else here.
Objet* cree(mot* bloc, const Forme& f, int* r) {
  *r = objet_cree_phrase(bloc);
  if (*r < 0) return nullptr;
  Objet* o;
  if (*r == POUR_ATTRIBUT) {
    o = f.cibles.ids ? objet_cree_arg(1, B_VOL, f.cibles.ids, 1)
                     : objet_cree(1, B_VOL, 0, nullptr, nullptr, numero_max(1, B_VOL) + 1);
    if (o) o->f4 = static_cast<std::uint16_t>(f.ferme);
  } else {
    o = f.cibles.ids ? objet_trouve_arg(1, B_VOL, f.cibles.ids, 1)
                     : objet_trouve(B_VOL, 0, numero_max(1, B_VOL), nullptr);
  }
  *r = o ? 0 : -1;
  return o;
}
}  // namespace

int forme_commande(mot* bloc, mot* valeur, const mot*) {
  Forme f;
  pour_elements(bloc, [&](mot* e) {
    if (cible_lit(f.cibles, e)) return;
    if (!f.e && est_forme(e)) f.e = e;
    if (e[1] == 1 && e[2] == B_F4) {
      float x = 1;
      lit_params(e, &x, 1);
      if (!reel_entier(x, &f.ferme, -999999999, 999999999)) f.ferme = 1;
    }
  });
  if (!f.e || valeur || f.cibles.genre != B_VOL) return POUR_ATTRIBUT;
  if (!el_valeur(f.e)) {
    // On a named volume a shape keyword with no sizes reads its attribute
    // (the sizes a grid was made with), and the volume stays as it is.
    // Alone, `grille` is the generic creation of a volume of that kind, and
    // another shape is made with its defaults.
    if (f.cibles.ids) return POUR_ATTRIBUT;
    if (f.e[2] == B_GRILLE) {
      int r = objet_cree_phrase(bloc);
      return r < 0 || r == POUR_ATTRIBUT ? r : rend_rien(bloc);
    }
  }
  f.n = lit_params(f.e, f.v, 6);
  if (f.n < 0) return -1;
  if (f.n > valeurs_max(f.e[2])) return mauvais_argument(f.e, MES_INDICE);
  // The scratch volume stays out of the object table: no search meets it,
  // and the next number of a volume is counted without it.
  Objet scratch{};
  scratch.env = 1;
  scratch.type = B_VOL;
  scratch.numero = NUMERO_TRAVAIL;
  Objet* t = &scratch;
  if (construit(t, f)) {
    objet_supprime(t);
    return -1;
  }
  int r;
  Objet* o = cree(bloc, f, &r);
  if (o) {
    // The shape moves over by exchanging the lists; the sizes of a grid that
    // the creation attached leave with the old list, and are attached again.
    std::swap(o->donnees, t->donnees);
    o->sous_type = t->sous_type;
    o->f1 = t->f1, o->f2 = t->f2, o->f3 = t->f3;
    if (f.e[2] == B_GRILLE) {
      mot* v = el_valeur(f.e);
      mot lg = v[0] > 0 ? v[0] : 2;
      mot* a = attribut_nouveau(o, 6 + lg);
      if (a) {
        phrase_1(a, 1, B_GRILLE);
        bloc_copie(a + 6, v);
      } else {
        r = -1;
      }
    }
  }
  objet_supprime(t);
  return r ? r : rend_rien(bloc);
}
