// The decoding of a loop body's one assignment (see rapide.h).
#include "interp/rapide.h"

namespace {
// A variable item: the place of its block pointer. A local must be a slot
// of its own (not a reference), and own its value when it is written.
bool variable(Operande& o, const mot* it, bool ecrit) {
  Objet* ob;
  switch (it[0]) {
    case IT_LOCAL:
      if (!cadre.locaux) return false;
      ob = cadre.locaux + it[1];
      if (ob->type != OBJ_LOCAL || (ecrit && !ob->f1)) return false;
      break;
    case IT_GLOBAL:
    case IT_STATIQUE:
      ob = static_cast<Objet*>(mot_vers_ptr(it[1]));
      if (!ob) return false;
      break;
    default:
      return false;
  }
  o.bloc = &ob->donnees;
  return true;
}

// A scalar item of two words: a constant or a variable.
bool item(Operande& o, const mot* it) {
  if (it[0] != IT_REEL) return variable(o, it, false);
  ecrit_scalaire(o.k, std::bit_cast<float>(it[1]));
  o.kp = o.k;
  o.bloc = &o.kp;
  return true;
}

// A scalar item, or fn ( X ) with fn a built-in on one scalar: its length,
// or 0.
int terme(Operande& o, const mot* p) {
  if (p[0] == IT_MOT) {
    if (p[2] != IT_OP || p[3] != '(' || p[4] >= 0 || p[6] != IT_OP || p[7] != ')' || p[8] == IT_MOT ||
        p[8] == IT_AIDE_MOT || p[8] == IT_LIGNE || !maths_directe(p[1]))
      return 0;
    o.fn = static_cast<const MotCle*>(mot_vers_ptr(p[1]))->ordinal;
    return item(o, p + 4) ? 8 : 0;
  }
  return p[0] < 0 && item(o, p) ? 2 : 0;
}

// ( V [ I ] ), twelve words.
bool element(Operande& o, Operande& indice, const mot* g, bool ecrit) {
  if (!forme_element(g) || !variable(o, g + 2, ecrit) || !item(indice, g + 6)) return false;
  o.indice = indice.bloc;
  return true;
}

// An operand of E: its length in words, or 0.
int operande(Operande& o, Operande& indice, const mot* p) {
  if (p[0] == IT_OP) return element(o, indice, p, false) ? 12 : 0;
  return p[0] < 0 && item(o, p) ? 2 : 0;
}
}  // namespace

bool rapide_prepare(Rapide& r, const mot* s) {
  if (s[0] != IT_OP || s[1] != '(') return false;
  const mot* p = s + 2;
  if (p[0] == IT_LOCAL || p[0] == IT_GLOBAL || p[0] == IT_STATIQUE) {
    // ( V = ( A op B ) )
    if (!(p[2] == IT_OP && p[3] == '=' && p[4] == IT_OP && p[5] == '(')) return false;
    const int na = terme(r.a, p + 6);
    if (!na) return false;
    const mot* o = p + 6 + na;
    if (o[0] != IT_OP || ouvrant(o[1]) || fermant(o[1])) return false;
    const int nb = terme(r.b, o + 2);
    if (!nb) return false;
    const mot* f = o + 2 + nb;
    if (!(f[0] == IT_OP && f[1] == ')' && f[2] == IT_OP && f[3] == ')')) return false;
    r.element = false;
    r.op = o[1];
    return variable(r.cible, p, true);
  }
  // ( ( X [ I ] ) op ( E ) )
  if (!forme_element(p) || p[12] != IT_OP || fermant(p[13]) || p[14] != IT_OP || p[15] != '(') return false;
  mot op = p[13];
  r.compose = op == '=' ? 0 : operateur_compose(op);
  if (op != '=' && !r.compose) return false;
  r.element = true;
  if (!element(r.cible, r.ic, p, true)) return false;
  const mot* e = p + 16;
  const int na = operande(r.a, r.ia, e);
  if (!na) return false;
  const mot* o = e + na;
  if (o[0] != IT_OP) return false;
  if (o[1] == ')') {
    r.deux = false;
  } else {
    if (ouvrant(o[1]) || fermant(o[1])) return false;
    const int nb = operande(r.b, r.ib, o + 2);
    if (!nb) return false;
    r.deux = true;
    r.op = o[1];
    o += 2 + nb;
    if (o[0] != IT_OP || o[1] != ')') return false;
  }
  // The statement's own closing bracket follows E's.
  return o[2] == IT_OP && o[3] == ')';
}
