// Private to the geometry's command handlers: the walk over a phrase's
// elements, their arguments read as numbers, the objects a phrase names and
// the values written in place of the phrase.
#pragma once
#include <span>
#include <vector>

#include "geom/interne.h"

// Elements of a phrase: [length, env, ordinal, value...].
inline mot* el_premier(mot* bloc) { return bloc + 4; }
inline mot* el_suivant(mot* e) { return e + e[0]; }
inline mot* el_valeur(mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

// Calls f(e) for each element of the phrase.
template <class F>
void pour_elements(mot* bloc, F f) {
  mot* e = el_premier(bloc);
  for (mot k = 0; k < bloc[2]; ++k, e = el_suivant(e)) f(e);
}

// The numbers of a value: a float Bloc, a scalar pair [tag, value] or an
// integer Bloc. Floats are seen where they stand; integers are copied.
struct Nombres {
  const reel* x = nullptr;
  long n = 0;
  std::vector<float> copie;
  float operator[](long k) const { return x[k]; }
};
// False for any other value (a string, a list, nil): the caller reports.
bool lit_nombres(const mot* v, Nombres* r);
// Up to `max` floats into dst; the count read, or -1 for a value that is
// not numbers (reported with the keyword of element e: message 0:81).
int lit_params(mot* e, float* dst, int max);
// A list of numbers from 1 (vertices, faces, objects); -1 after a report:
// message 0:81 for a value that is not numbers, 0:66 for a non-integer.
int lit_numeros(mot* e, std::vector<int>& out);

// What a phrase names: a kind of object and its numbers or names.
struct Cibles {
  int genre = B_VOL;
  mot* ids = nullptr;
  bool donne = false;  // a kind or a list stood in the phrase
};
// Takes the element when it names a kind or lists objects; kinds of
// volume count as volumes.
bool cible_lit(Cibles& c, mot* e);
long nb_ids(const mot* ids);
Objet* cible(const Cibles& c, long i);
// The first object named, with message 0:9; gives -1.
int introuvable(const Cibles& c);

// Results in place of the phrase. -12 when the value would pass the limit.
int rend_reels(mot* bloc, const mot* limite, const float* x, long n);
void rend_nil(mot* bloc);
inline int rend_rien(mot* bloc) {
  bloc[0] = 0;
  return 0;
}
// The assigned value left in place of the phrase.
int rend_valeur(mot* bloc, const mot* limite, const mot* valeur);

// A route of a command that this system does not have: the keyword, the
// words "non implemente" and the bell. The phrase leaves no value.
int route_absente(mot* bloc, int env, int ord);
// The keyword of element e, then message 0:66 or 0:81; gives -1.
int mauvais_argument(const mot* e, int n);

// A volume's vertices as a BLOC_REEL of n rows of 3 at dst (4 + 3n words),
// or -12 when they pass the limit.
int sommets_sur_pile(Objet* o, mot* dst, const mot* limite);
// Replaces the vertices with n points and makes the faces the segments of
// the polyline through them.
int vol_ligne_ecrit(Objet* o, const reel* p, int n);

// Generators reached only through generer; null or -1 after a report.
// Boxes (b141, b32) of groups of `precision` vertices.
mot* gen_boite_sommets(Objet* o, int precision);
// Boxes of the grid's rows (b141, b76) or columns (b141, b77); a volume that
// is no grid is one row.
mot* gen_boite_lignes(Objet* o, bool colonnes);
// Weights (b81, b32): each face's area shared among its vertices.
mot* gen_poids_sommets(Objet* o);
// Vertices and faces of o from lines of equal vertex counts, one row each;
// unequal counts print "objet_incoherent".
int gen_nappe(Objet* o, std::span<Objet* const> lignes);
