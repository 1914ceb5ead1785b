// One assignment of scalars, decoded once for the turns of a counting pour.
//
// The shapes are those that the group walk already takes without the stack:
//   ( V = ( A op B ) )                  V a variable, A and B scalar items or
//                                       built-ins on one, fn ( X )
//   ( ( X [ I ] ) op ( E ) )            op = or a compound assignment, E one
//                                       operand or two around an operator,
//                                       an operand a scalar item or an element
// Invariants: an operand holds the address of the place where its block
// pointer lives (an object's `donnees`, or the record's own constant block),
// so the objects are found once; the block itself is checked at every turn,
// since the statement may replace it. A turn writes only after every check
// passed: false means nothing was done, and the walk then runs the statement
// its own way, with its own messages. The record must not move once
// prepared (operands point into it).
#pragma once
#include "interp/interne.h"

struct Operande {
  mot* const* bloc = nullptr;    // where the block pointer lives
  mot* const* indice = nullptr;  // the index's, for an element; null otherwise
  mot k[5];                      // a constant's block
  mot* kp = nullptr;
  int fn = -1;  // the built-in applied to a scalar item's value, or -1
};

struct Rapide {
  bool element = false;  // ( ( X [ I ] ) op ( E ) ) rather than ( V = ( A op B ) )
  bool deux = false;     // E has two operands
  mot op = 0;            // A op B, or E's operator
  mot compose = 0;       // the compound's operator; 0 for =
  Operande a, b, cible;
  Operande ia, ib, ic;  // the indices of a, b and cible when they are elements
};

// False when the statement at s is not one of the shapes, or names an
// object that the walk would not take directly (a reference slot, a local
// that does not own its value as a target).
bool rapide_prepare(Rapide& r, const mot* s);

namespace rapide_detail {
TOUJOURS_EN_LIGNE bool scalaire(const mot* b, float* x) {
  if (!b || b[0] != 5 || b[1] != BLOC_REEL) return false;
  *x = lit_reel(b + 4);
  return true;
}
// The float an element operand stands for, as the walk finds it.
TOUJOURS_EN_LIGNE reel* element(const Operande& o) {
  return element_de(*o.bloc, [&o](float* i) { return scalaire(*o.indice, i); });
}
TOUJOURS_EN_LIGNE bool lit(const Operande& o, float* x) {
  if (!o.indice) return scalaire(*o.bloc, x);
  const reel* e = element(o);
  if (!e) return false;
  *x = *e;
  return true;
}
}  // namespace rapide_detail

// One turn: the value the statement leaves, or false with nothing done.
// ELEMENT is r.element, fixed for the loop so that its turns test nothing
// else than values.
template <bool ELEMENT>
TOUJOURS_EN_LIGNE bool rapide_tour(const Rapide& r, float* valeur) {
  using namespace rapide_detail;
  float a, b, v;
  if constexpr (!ELEMENT) {
    mot* c = *r.cible.bloc;
    if (!lit(r.a, &a) || !lit(r.b, &b)) return false;
    if ((r.a.fn >= 0 && !maths_scalaire(r.a.fn, a, &a)) || (r.b.fn >= 0 && !maths_scalaire(r.b.fn, b, &b)))
      return false;
    if (!calcul_scalaire(r.op, a, b, &v)) return false;
    if (!c || c == bloc_nil || c[0] != 5 || c[1] != BLOC_REEL) return false;
    ecrit_reel(c + 4, v);
    *valeur = v;
    return true;
  } else {
  // The right side first, then the target, as the walk does.
  if (!lit(r.a, &a)) return false;
  if (r.deux) {
    if (!lit(r.b, &b) || !calcul_scalaire(r.op, a, b, &v)) return false;
  } else {
    v = a;
  }
  reel* e = element(r.cible);
  if (!e) return false;
  if (r.compose && !calcul_scalaire(r.compose, *e, v, &v)) return false;
  *e = v;
  *valeur = v;
  return true;
  }
}
