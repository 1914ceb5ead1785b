// A run of appends s = s, t to one string, for the turns of a counting pour
// whose body is that statement alone.
//
// Invariants: `b` is the variable's block and holds `lg` characters and
// their NUL in `cap` bytes of allocation; `b[0]` is long_chaine(lg). The
// text appended is `src`, `ls` characters, read once: inside the turns
// only the loop's variable and s change, and neither can be t (t is a
// string other than s's block, the loop's variable a number). A turn
// writes only when the result would also fit on the evaluation stack, as
// the general way builds it there: a longer string is left to that way,
// which then says "Pile d'evaluation pleine" as it always does.
#pragma once
#include <cstring>

#include "interp/interne.h"

struct Ajouts {
  Objet* o = nullptr;
  mot* b = nullptr;
  std::size_t lg = 0, cap = 0;
  const char* src = nullptr;
  std::size_t ls = 0;
  mot* const* psrc = nullptr;  // t's variable's block pointer; null for a constant
  const mot* sb = nullptr;     // t's block, as read when prepared
  mot place = 0;               // the most words the result may have
  mot* suite = nullptr;        // the item after the statement
};

// False when the statement at s is not the append of a string to a string
// variable that owns its block, or there is no room to start.
bool ajouts_prepare(Ajouts& a, mot* s, mot* resultat);
// A block of n words at least, the text kept; false with nothing changed.
bool ajouts_agrandit(Ajouts& a, mot n);
// After the turns: the statement's value, as the general way leaves it.
void ajouts_fin(const Ajouts& a, mot* resultat);

// One turn, or false with nothing done.
TOUJOURS_EN_LIGNE bool ajouts_tour(Ajouts& a) {
  if (a.o->donnees != a.b || (a.psrc && *a.psrc != a.sb)) return false;
  const std::size_t n = a.lg + a.ls;
  const mot lm = long_chaine(n);
  if (lm > a.place) return false;
  if (static_cast<std::size_t>(lm) * sizeof(mot) > a.cap && !ajouts_agrandit(a, lm)) return false;
  char* t = bloc_texte(a.b) + a.lg;
  if (a.ls == 1) {
    t[0] = a.src[0];
    t[1] = 0;
  } else {
    std::memcpy(t, a.src, a.ls + 1);
  }
  a.b[0] = lm;
  a.lg = n;
  return true;
}
