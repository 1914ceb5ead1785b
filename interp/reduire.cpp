// The reduction at each closing bracket. The compiler has bracketed every
// operator, so a group holds one operand, a prefix operator and its operand,
// an operand and a postfix operator, or operand, operator, operand.
#include <cstdio>
#include <cstring>

#include "interp/interne.h"

namespace {
inline bool est_op(const mot* v) { return v[0] == IT_OP; }
inline bool est_incr(const mot* v) {
  return (v[0] == IT_OP && (v[1] == OP_INCR || v[1] == OP_DECR)) || v[0] == OP_INCR ||
         v[0] == OP_DECR;
}
inline mot op_incr(const mot* v) { return v[0] == IT_OP ? v[1] : v[0]; }
// A ramp that follows an operand indexes it.
inline bool est_rampe(const mot* v) {
  return v[0] > 0 && v[1] == BLOC_REEL && (v[3] == ']' || v[3] == '}');
}

int mauvais_operateur(mot op) {
  if (op > 0 && op < 128) std::printf("%c: ", static_cast<char>(op));
  message(0, M_OPERATEUR);
  return ECHEC;
}

// Moves the value at v to dest and sets the stack top behind it.
void descend(mot* dest, mot* v) {
  mot n = taille_item(v);
  if (dest != v) std::memmove(dest, v, static_cast<std::size_t>(n) * sizeof(mot));
  piles.eva_haut = dest + n;
}
}  // namespace

int reduire(mot* base, mot* haut, Differes* differes) {
  if (haut <= base) {
    if (!place(base, 4)) return PILE_PLEINE;
    ecrit_nil(base);
    piles.eva_haut = base + 4;
    return 0;
  }
  mot* i1 = base;
  mot* i2 = i1 + taille_item(i1);
  if (i2 >= haut) {
    int r = evaluer_valeur(base, piles.eva_limite);
    if (r < 0) return r;
    piles.eva_haut = base + taille_item(base);
    return r;
  }
  mot* i3 = i2 + taille_item(i2);
  if (i2[0] == IT_OP && i3 < haut && i3 + taille_item(i3) == haut) {
    float a, b, r;
    if (scalaire_item(i1, &a) && scalaire_item(i3, &b) && calcul_scalaire(i2[1], a, b, &r)) {
      ecrit_scalaire(base, r);
      piles.eva_haut = base + 5;
      return 0;
    }
  }
  // An index binds first: the operand and its ramp become one value, and
  // what follows them is reduced with it.
  if (!est_op(i1) && est_rampe(i2)) {
    int r = indexer(base, i2, haut);
    if (r < 0 || i3 >= haut) return r;
    mot reste = static_cast<mot>(haut - i3);
    mot* fin = piles.eva_haut;
    if (!place(fin, reste)) return PILE_PLEINE;
    std::memmove(fin, i3, static_cast<std::size_t>(reste) * sizeof(mot));
    return reduire(base, fin + reste, differes);
  }
  if (est_incr(i2) && i3 >= haut) return operer(i1, op_incr(i2), nullptr, 0, differes);
  if (est_op(i2)) {
    if (i3 >= haut) return mauvais_operateur(i2[1]);
    return operer(i1, i2[1], i3, 0, differes);
  }
  if (est_incr(i1)) {
    int r = operer(i2, op_incr(i1), nullptr, 1, differes);
    if (r < 0) return r;
    descend(base, i2);
    return r;
  }
  if (est_op(i1)) {
    mot op = i1[1];
    if (op == '!') {
      int r = operer(i2, '!', nullptr, 1, differes);
      if (r < 0) return r;
      descend(base, i2);
      return r;
    }
    if (op == '=' || op == ',') {
      int r = reduire(i2, haut, differes);
      if (r < 0) return r;
      descend(base, i2);
      return r;
    }
    return mauvais_operateur(op);
  }
  if (i1[0] > 0 && i1[1] == IT_APPEL) {
    message(0, M_NON_LIE);
    return ECHEC;
  }
  // Two operands and no operator: the first is the value.
  int r = evaluer_valeur(base, piles.eva_limite);
  if (r < 0) return r;
  piles.eva_haut = base + taille_item(base);
  return r;
}
