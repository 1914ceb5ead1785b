// Generic creation of an object from a sentence: `vol(3) ...`, `lum nom("a")`.
#include <cstdio>

#include "core/interne.h"
#include "core/message.h"

namespace {
bool est_type(int ord) {
  switch (ord) {
    case B_VOL: case B_LUM: case B_TRA: case B_CIN: case B_VUE: case B_CHA: case B_RES:
      return true;
  }
  return false;
}

bool est_sorte_volume(int ord) {
  return ord == B_SORTE_14 || ord == B_SORTE_117 || ord == B_SORTE_118 || ord == B_SORTE_133;
}

// Clauses of at least 3 words that tile the phrase exactly.
bool phrase_saine(const mot* p) {
  if (p[0] < 4 || p[1] != BLOC_PHRASE || p[3] != 0 || p[2] < 0) return false;
  const mot* c = p + 4;
  const mot* fin = p + p[0];
  for (mot k = 0; k < p[2]; ++k) {
    if (c + 3 > fin || c[0] < 3 || c + c[0] > fin) return false;
    c += c[0];
  }
  return true;
}

inline const mot* valeur(const mot* c) { return c[0] > 3 ? c + 3 : nullptr; }

// The first value truncated into *n (1 when there is none); -1 after a
// message when it is no integer.
int premiere_valeur(const mot* v, int* n) {
  *n = 1;
  if (!v || v[0] < 5) return 0;
  if (v[1] == BLOC_REEL) return entier_de(lit_reel(v + 4), n);
  if (v[1] == BLOC_ENTIER) *n = v[4];
  return 0;
}

// The attribute (1, sorte) holding a copy of the clause's value.
bool attache_sorte(Objet* o, int sorte, const mot* v) {
  mot lg = v[0] > 0 ? v[0] : 2;
  mot* a = attribut_nouveau(o, 6 + lg);
  if (!a) return false;
  phrase_1(a, 1, sorte);
  bloc_copie(a + 6, v);
  return true;
}
}  // namespace

int objet_cree_phrase(mot* phrase) {
  if (!phrase || !phrase_saine(phrase)) {
    message(0, MES_ENTETE);
    return -1;
  }
  int type = 0, sous_type = 0, f4 = 0;
  const mot* arg = nullptr;
  const mot* clause_sorte = nullptr;
  const mot* c = phrase + 4;
  for (mot k = 0; k < phrase[2]; c += c[0], ++k) {
    int env = c[1], ord = c[2];
    const mot* v = valeur(c);
    if (env == 0) {
      if ((ord == A_NUM || ord == A_NOM) && v) arg = v;
      continue;
    }
    // Clauses of an application list, or of a stored attribute: not ours.
    if (env > 1) return env;
    if (env < 0) return POUR_ATTRIBUT;
    if (est_type(ord)) {
      if (k > 0) return POUR_ATTRIBUT;
      type = ord;
      if (v) arg = v;
    } else if (est_sorte_volume(ord)) {
      sous_type = ord;
      type = B_VOL;
      if (v) clause_sorte = c;
    } else if (ord == B_F4) {
      if (premiere_valeur(v, &f4) < 0) return -1;
    } else {
      sous_type = ord;
    }
  }
  if (type == 0) return POUR_ATTRIBUT;
  if (arg && arg[1] != BLOC_REEL && arg[1] != BLOC_CHAINE) {
    message(0, MES_PAS_VARIABLE);  // only a number or a name names an object
    return -1;
  }

  Objet* o;
  if (arg) {
    o = objet_cree_arg(1, type, const_cast<mot*>(arg), 1);
    if (!o) return -1;
    o->sous_type = static_cast<std::uint16_t>(sous_type);
  } else {
    o = objet_cree(1, type, sous_type, nullptr, nullptr, numero_max(1, type) + 1);
    if (!o) return -1;
  }

  if (!piles.emp || piles.emp_haut + phrase[0] > piles.emp_fin) {
    // Dropped down to the very start, header included: the caller reports
    // the overflow and the run stops there, before anything pushes again.
    if (piles.emp) {
      piles.emp[2] = 0;
      piles.emp_haut = piles.emp;
    }
    return -16;
  }
  if (clause_sorte && (sous_type == B_SORTE_14 || sous_type == B_SORTE_118) &&
      !attache_sorte(o, sous_type, clause_sorte + 3)) {
    objet_supprime(o);
    return -1;
  }
  o->f4 = static_cast<std::uint16_t>(f4);
  emp_empile(phrase);
  return 0;
}
