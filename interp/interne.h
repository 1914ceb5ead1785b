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
