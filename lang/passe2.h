// Private to pass 2: the state of the cursor over the normalised text and
// the routines that read each kind of token.
#pragma once
#include "lang/interne.h"

namespace p2 {
constexpr mot BITS_PI = 0x40490FDB;

struct Etat {
  Compil& c;
  const char* p;
  Mots& s;
  int accolades = 0;
  char pile[IMBRICATION_MAX + 1] = {};  // open brackets, braces inside the body too
  int haut = 0;
  int parentheses = 0;
  int crochets = 0;
  bool tete_pour = false;
  // The bracket of a control keyword: behind its ")" a statement begins, so
  // a "-" there is a unary minus.
  bool tete_attendue = false;
  int tete_niveau = -1;
  bool ref = false;
  bool operande = true;  // an operand is expected
  long dernier = -1;     // offset of the previous item
  // The text of the previous token, which a misplaced "," names.
  const char* jeton = ";";
  long jeton_lg = 1;
};

inline mot* item(Etat& e, long off) { return e.s.debut + off; }
inline bool dernier_est(Etat& e, mot k) { return e.dernier >= 0 && item(e, e.dernier)[0] == k; }

void paire(Etat& e, mot a, mot b);
mot* bloc(Etat& e, long n, mot tag);  // n words, header filled, the rest zero
void op(Etat& e, mot code);
// Tokens: each moves the cursor behind what it read and writes its items.
int nombre(Etat& e);
int chaine(Etat& e);
int vecteur(Etat& e);
int cas(Etat& e);
void texte_brut(Etat& e, mot ord);
int nom(Etat& e);
int champ_nom(Etat& e);
int lire_tete_fonction(Etat& e);
}  // namespace p2
