// Helpers shared by the core's own files.
#pragma once
#include "core/objet.h"

// What the i-th element of an argument names: a number or a name. `ok` is
// false for an element of another tag or i outside the rows; a list child
// counts as its own first element.
struct Designation {
  bool ok = false;
  bool liste = false;  // came from a BLOC_LISTE child
  mot tag = 0;         // tag of the element's own Bloc
  int numero = 0;
  float reel = 0;      // the float that gave numero, or that no number can be
  const char* nom = nullptr;
};
Designation designation(mot* args, int i);

// Notes that entry o became free, so that creation finds it first.
void entree_liberee(const Objet* o);

// Entries in use, from the base to the high-water mark.
inline Objet* objets_debut() { return piles.obj_base; }
inline Objet* objets_fin() { return piles.obj_haut; }

// Attributes by a key of n pairs (1 to 6) laid end to end; the routines
// behind every dispatcher and per-count form.
mot* cle_trouve(mot* liste, int n, const mot* cle, int* pos);
mot* cle_ecrit(Objet* o, int n, const mot* cle, const reel* v, int nv, int mode);
int cle_enleve(Objet* o, bool affiche, int n, const mot* cle, const char* avant);
// The keys of the first n clauses of a chain into cle (room for 12 words).
void cle_de_chaine(const mot* clauses, int n, mot* cle);
constexpr int PAIRES_MAX = 6;
