// Private helpers of the interpreter folder.
#pragma once
#include <cstring>

#include "core/message.h"
#include "interp/interp.h"
#include "interp/attente_lang.h"
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
int pas_a_pas(mot* item);
// The machine stack is nearly used up.
bool pile_c_epuisee();

// Name of the slot `i` of a function, found in its symbol run.
const char* nom_slot(const Objet* fonction, int i);

// Text of a string value, or null.
const char* texte_de(mot* v);

// Runs the postfix increments that waited for the end of their group.
void differes_execute(Differes* differes);
// The blocks of raw text (aide, err) as values.
int evaluer_brut(mot* v, const mot* limite);
// Help on one keyword (null: the list of all).
void aide_mot(MotCle* m);
// The first item behind the group that opens at p.
mot* groupe_suivant(mot* p);
