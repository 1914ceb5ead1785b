// Private helpers of the interpreter folder.
#pragma once
#include <cstring>

#include "core/message.h"
#include "interp/interp.h"
#include "startup/startup.h"

// ---- stack ---------------------------------------------------------------------
// Room for n more words at p, tested against the one limit of the stack.
inline bool place(const mot* p, long n) { return p + n <= piles.eva_limite; }
inline bool sur_pile(const void* p) {
  auto* m = static_cast<const mot*>(p);
  return m >= piles.eva_base && m < piles.eva_base + 9 * piles.dim_eva;
}

// A scalar in the five-word form.
inline void ecrit_scalaire(mot* p, float x) {
  p[0] = 5;
  p[1] = BLOC_REEL;
  p[2] = 1;
  p[3] = 1;
  ecrit_reel(p + 4, x);
}
inline void ecrit_nil(mot* p) {
  p[0] = 4;
  p[1] = BLOC_NIL;
  p[2] = 0;
  p[3] = 1;
}
inline bool est_scalaire(const mot* b) { return b[0] == 5 && b[1] == BLOC_REEL; }

// The state integers of list "a", read at every statement.
inline mot etat_a(int ord) { return etats[0] ? etats[0][ord] : 0; }

// Frame slot records own their value only once the callee assigned it.
inline bool possede(const Objet* o) { return o->type != OBJ_LOCAL || o->f1 != 0; }

// x = (...) where x owns a float vector: the last operator of the right
// side may write its result straight into x's block instead of onto the
// stack, from where it would only be copied into that same block. Set by
// the assignment around its right side (the previous record kept, so that
// an assignment inside a call there has its own), raised by the walk only
// around the reduction at that side's closing bracket, taken by the float
// operator when everything still holds at that moment: x holds that block,
// owns it, its size is the result's, and no operand overlaps it other than
// x itself read element by element. Then `fait`, and the value left on the
// stack is the variable, as after an append in place.
struct Vers {
  const mot* fin = nullptr;  // the right side's closing bracket
  const mot* base = nullptr; // where the right side's value goes
  Objet* variable = nullptr;
  mot* bloc = nullptr;
  bool actif = false;
  bool fait = false;
};
extern Vers vers;

// Is the operator value a bracket?
inline bool ouvrant(mot op) { return op == '(' || op == '[' || op == '{'; }
inline bool fermant(mot op) { return op == ')' || op == ']' || op == '}'; }

// Reports a failure code once, at the statement level: -12 is message 12.
void signale(int code);

// Copies a value (block or pair) to dest if it fits; -12 otherwise.
inline int pose(mot* dest, const mot* v) {
  mot n = taille_item(v);
  if (!place(dest, n)) return PILE_PLEINE;
  if (dest != v) std::memmove(dest, v, static_cast<std::size_t>(n) * sizeof(mot));
  return 0;
}

// Runs the statement dispatch of list "a"; > 0 when not handled here.
int instruction(mot* bloc, int ordinal);
// Step mode: pause before a statement.
int pas_a_pas(const mot* code, mot* item);
// The machine stack is nearly used up (the check is off until interp_init).
inline bool pile_c_epuisee() {
  char ici;
  return interp.pile_c_base && interp.pile_c_base - &ici > interp.pile_c_budget;
}

// Name of the slot `i` of a function, found in its symbol run.
const char* nom_slot(const Objet* fonction, int i);

// Text of a string value, or null.
const char* texte_de(mot* v);

// The operator that a compound assignment applies (+ for +=); 0 for others.
mot operateur_compose(mot op);
inline bool est_vue(const mot* v) { return v[0] > 0 && (v[1] == VAL_VUE || v[1] == VAL_VUE3); }

// Runs the postfix increments that waited for the end of their group.
void differes_execute(Differes* differes);
// The blocks of raw text (aide, err) as values.
int evaluer_brut(mot* v, const mot* limite);
// Help on one keyword (null: the list of all).
void aide_mot(MotCle* m);
// The first item behind the group that opens at p.
mot* groupe_suivant(mot* p);

// ---- scalars without the stack -------------------------------------------------
#define TOUJOURS_EN_LIGNE inline __attribute__((always_inline))
// The scalar that an item stands for, when it is one: a constant, a variable
// holding one, or a five-word block.
TOUJOURS_EN_LIGNE bool scalaire_item(const mot* it, float* x) {
  const mot* b;
  switch (it[0]) {
    case IT_REEL:
      *x = std::bit_cast<float>(it[1]);
      return true;
    case IT_LOCAL: {
      if (!cadre.locaux) return false;
      const Objet* o = cadre.locaux + it[1];
      if (o->type != OBJ_LOCAL) return false;
      b = o->donnees;
      break;
    }
    case IT_GLOBAL:
    case IT_STATIQUE:
      b = static_cast<const Objet*>(mot_vers_ptr(it[1]))->donnees;
      break;
    default:
      if (it[0] != 5 || it[1] != BLOC_REEL) return false;
      *x = lit_reel(it + 4);
      return true;
  }
  if (!b || b[0] != 5 || b[1] != BLOC_REEL) return false;
  *x = lit_reel(b + 4);
  return true;
}

// The operators that cannot fail on two scalars; false for the others, and
// for a division that has to report.
TOUJOURS_EN_LIGNE bool calcul_scalaire(mot op, float a, float b, float* r) {
  switch (op) {
    case '+': *r = a + b; return true;
    case '-': *r = a - b; return true;
    case '*': *r = a * b; return true;
    case '/':
      if (b > -0.0001f && b < 0.0001f) return false;
      *r = a / b;
      return true;
    case '<': *r = a < b; return true;
    case '>': *r = a > b; return true;
    case OP_INF_EGAL: *r = a <= b; return true;
    case OP_SUP_EGAL: *r = a >= b; return true;
    case OP_EGAL: *r = a == b; return true;
    case OP_DIFFERENT: *r = a != b; return true;
  }
  return false;
}

// ---- one element of a float vector, without a view ---------------------------
// ( V [ A ] ), twelve words, where V holds a float block and A stands for a
// whole number within its floats: the element's address. The general
// way builds a ramp and a view of the one element, then reads or writes
// through the view; this reaches the same float. Anything else (a
// string, several indices, an index out of range or not whole, a local that
// does not own its block when writing) gives null and takes the general
// way, which says what is wrong. Like the general way, the index counts
// the floats of the block whatever its rows and columns.
//
// Reading the element at once is what the general way does too: a view
// that an operator only reads becomes its value as soon as its group
// closes, before the operand on its right runs. So `x[0] + (x[0] = 5)` adds
// the old x[0] and 5 on both ways, and the element is never read late.
// The words are read in order, each only once those before it showed that
// the group goes on that far: a code run may end right behind a group.
TOUJOURS_EN_LIGNE bool forme_element(const mot* g) {
  return g[0] == IT_OP && g[1] == '(' && (g[2] == IT_LOCAL || g[2] == IT_GLOBAL || g[2] == IT_STATIQUE) &&
         g[4] == IT_OP && g[5] == '[' &&
         (g[6] == IT_REEL || g[6] == IT_LOCAL || g[6] == IT_GLOBAL || g[6] == IT_STATIQUE) && g[8] == IT_OP &&
         g[9] == ']' && g[10] == IT_OP && g[11] == ')';
}
// The float of the float block b at the index that `indice` reads, or null
// when b is not a non-empty float block, or the index is not a scalar, or
// not a whole number within b: every such case takes the general way, which
// says what is wrong. The block is checked before the index is read.
template <class Indice>
TOUJOURS_EN_LIGNE reel* element_de(mot* b, Indice indice) {
  float i;
  if (!b || b[0] <= 4 || b[1] != BLOC_REEL || !indice(&i)) return nullptr;
  if (!(i >= 0.0f && i < static_cast<float>(b[0] - 4))) return nullptr;
  mot k = static_cast<mot>(i);
  if (static_cast<float>(k) != i) return nullptr;
  return reels(b + 4) + k;
}
TOUJOURS_EN_LIGNE reel* element_direct(const mot* g, bool ecriture) {
  if (!interp.raccourcis || !forme_element(g)) return nullptr;
  const Objet* o;
  switch (g[2]) {
    case IT_LOCAL:
      if (!cadre.locaux) return nullptr;
      o = cadre.locaux + g[3];
      if (o->type != OBJ_LOCAL || (ecriture && !o->f1)) return nullptr;
      break;
    case IT_GLOBAL:
    case IT_STATIQUE:
      o = static_cast<const Objet*>(mot_vers_ptr(g[3]));
      break;
    default:
      return nullptr;
  }
  return element_de(o->donnees, [g](float* i) { return scalaire_item(g + 6, i); });
}

// ---- built-ins on one scalar -------------------------------------------------
// The value of an element-wise built-in of list "a" (sin, cos, abs, ...) on
// one float; false for the others, which take their phrase.
bool maths_scalaire(int ord, float v, float* r);
// The handler of a0:ord is the built-ins' own, with none registered before it.
bool fonction_seule(int ord);
// The keyword entry at `m` (an IT_MOT word) is such a built-in.
inline bool maths_directe(mot m) {
  const MotCle* k = static_cast<const MotCle*>(mot_vers_ptr(m));
  float r;
  return k && k->env == 0 && k->e1 >= 0 && maths_scalaire(k->ordinal, 0.0f, &r) && fonction_seule(k->ordinal);
}
// fn ( A ) with fn such a built-in and A a scalar item: its value and the
// item behind, or null. A phrase goes on over the keywords and line marks
// that follow, and is then no longer a call of one built-in.
TOUJOURS_EN_LIGNE const mot* appel_maths(const mot* p, float* r) {
  float x;
  if (!interp.raccourcis || p[0] != IT_MOT || p[2] != IT_OP || p[3] != '(' || p[6] != IT_OP || p[7] != ')' || p[4] >= 0 ||
      p[8] == IT_MOT || p[8] == IT_AIDE_MOT || p[8] == IT_LIGNE || !scalaire_item(p + 4, &x) || !maths_directe(p[1]))
    return nullptr;
  const MotCle* k = static_cast<const MotCle*>(mot_vers_ptr(p[1]));
  return maths_scalaire(k->ordinal, x, r) ? p + 8 : nullptr;
}

// An operand of a scalar expression: a scalar item (two words), a built-in
// on one (eight) or an element group (twelve); its length, or 0.
TOUJOURS_EN_LIGNE int operande_scalaire(const mot* p, float* x) {
  if (p[0] == IT_MOT) return appel_maths(p, x) ? 8 : 0;
  if (p[0] == IT_OP) {
    const reel* e = element_direct(p, false);
    if (!e) return 0;
    *x = *e;
    return 12;
  }
  return p[0] < 0 && scalaire_item(p, x) ? 2 : 0;
}

// Words copied between places that may overlap; short runs without a call.
inline void copie_mots(mot* dst, const mot* src, mot n) {
  if (n <= 8 && (dst <= src || dst >= src + n)) {
    for (mot k = 0; k < n; ++k) dst[k] = src[k];
    return;
  }
  std::memmove(dst, src, static_cast<std::size_t>(n) * sizeof(mot));
}
// The compiler's listings follow the debug options a63 and a23.
void debug_applique();

// (a op b) with a and b the items of a group that holds nothing else: its
// truth or value without the stack. False when that is not the shape.
TOUJOURS_EN_LIGNE bool groupe_scalaire(const mot* groupe, float* r) {
  const mot* p = groupe + 2;
  float a, b;
  return groupe[1] == '(' && p[2] == IT_OP && p[6] == IT_OP && p[7] == ')' && scalaire_item(p, &a) &&
         scalaire_item(p + 4, &b) && calcul_scalaire(p[3], a, b, r);
}

// The rest of a group from p, with its items from base to haut already on
// the stack, up to the closing bracket `ferme`.
mot* evaluer_suite(mot* p, mot* base, mot* haut, mot ferme, int* etat);

// The word that a retour item holds: the address of its keyword's entry.
inline mot mot_retour() {
  static const MotCle* table = nullptr;
  static mot m = 0;
  if (table != vocab.tables[0].mots) {  // tables loaded again (tests do)
    table = vocab.tables[0].mots;
    m = ptr_vers_mot(mot_entree(0, A_RETOUR));
  }
  return m;
}

// (A) or (A op B), A and B operands as above: a group that reads and writes
// nothing else, its value, and the item behind it; null when it is not that
// shape or the operator has a failure to report. A lone element, ((V[A])),
// is a view on the general way; it is taken only where that view would be
// read at once (seul_element).
TOUJOURS_EN_LIGNE const mot* expression_scalaire(const mot* g, float* r, bool seul_element) {
  if (g[0] != IT_OP || g[1] != '(') return nullptr;
  // The shape first, from the items' kinds alone; then the values.
  auto forme = [](const mot* p) {
    if (p[0] == IT_REEL || p[0] == IT_LOCAL || p[0] == IT_GLOBAL || p[0] == IT_STATIQUE) return 2;
    if (p[0] == IT_MOT) return 8;  // its shape is checked with its value
    return forme_element(p) ? 12 : 0;
  };
  const mot* p = g + 2;
  const int na = forme(p);
  if (!na) return nullptr;
  const mot* o = p + na;
  if (o[0] != IT_OP) return nullptr;
  float a, b;
  if (o[1] == ')') {
    if (na != 2 && !seul_element) return nullptr;
    if (!operande_scalaire(p, &a)) return nullptr;
    *r = a;
    return o + 2;
  }
  if (ouvrant(o[1]) || fermant(o[1])) return nullptr;
  const int nb = forme(o + 2);
  if (!nb) return nullptr;
  const mot* f = o + 2 + nb;
  if (f[0] != IT_OP || f[1] != ')' || !operande_scalaire(p, &a) || !operande_scalaire(o + 2, &b) ||
      !calcul_scalaire(o[1], a, b, r))
    return nullptr;
  return f + 2;
}

// s = s, t as a statement on strings: t appended in s's own block; the next
// item, or null with nothing done when that is not the shape or the values.
mot* ajout_en_place(mot* p, mot* resultat);
TOUJOURS_EN_LIGNE bool forme_ajout(const mot* p) {
  return p[2] < 0 && p[4] == IT_OP && p[5] == '=' && p[6] == IT_OP && p[7] == '(' && p[8] == p[2] &&
         p[9] == p[3] && p[10] == IT_OP && p[11] == ',';
}
