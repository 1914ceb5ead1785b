// Private to the built-in functions: reading the argument of a one-element
// phrase and writing a value in place of the phrase.
#pragma once
#include <cstring>

#include "core/bloc.h"
#include "interp/interp.h"

// Ordinals of list "a" that the built-ins answer.
enum : int {
  F_CHEMIN = 0, F_TEXTE = 1, F_FONC = 6, F_ARRONDI = 7, F_LOG = 9, F_CHA = 13, F_RACINE = 20,
  F_VAR = 21, F_COS = 26, F_SIN = 27, F_TAN = 28, F_DATE = 37, F_MATRICE = 38, F_INV = 39,
  F_MODULE_C = 40, F_LIM = 41, F_CENTRE = 42, F_INDICE = 43, F_PLANCHER = 44, F_PLAFOND = 46,
  F_EXP = 47, F_SOMME = 48, F_MOY = 49, F_QUANTUM = 50, F_ETAPE = 51, F_ENT = 53, F_MAX = 54,
  F_MIN = 55, F_MODULE4 = 56, F_TAILLE = 59, F_CHERCHE = 67, F_GENERER = 68, F_NORME = 71,
  F_ACOS = 72, F_ASIN = 73, F_ATAN = 74, F_ABS = 75, F_SIGNE = 76, F_ARG = 77, F_FRAC = 78,
  F_PIC = 81, F_COSH = 83, F_SINH = 84, F_TANH = 85, F_ALEA = 86, F_GRAINE = 87, F_FACT = 88,
  F_BORNE = 89, F_MEMOIRE = 90, F_MODULE = 91, F_COD = 94, F_PULS = 95, F_SCAL = 99,
  F_VECTORIEL = 100, F_CHAMP = 101, F_TRANSPOSE = 103, F_TRI = 111, F_FOPEN = 114,
  F_FMOT = 115, F_FCLOSE = 116, F_FREAD = 117, F_FWRITE = 118,
};

// Messages of env 0 that the built-ins print.
constexpr int M_RACINE = 49, M_LOG = 69, M_DIV = 56, M_INDICE_F = 66, M_TYPE_F = 81, M_INTROUVABLE_F = 9;

// What the argument is: floats (copied out of the phrase when the result
// could overwrite them), a string, nil, or a list.
struct Argument {
  mot type = BLOC_NIL;
  long n = 0;                 // floats, or bytes of a string
  const reel* x = nullptr;    // floats
  const char* s = nullptr;    // string
  const mot* bloc = nullptr;  // the value block itself
};

// Reads the argument of the phrase's first element; false on a type that
// no built-in takes (the caller reports).
bool lit_argument(const mot* element, Argument* a);


int fonction_date(mot* bloc, const mot* limite);

// Families, each answering the ordinals it knows: >= 0 done, -1 failure,
// -12 stack full.
int fonction_maths(int ord, mot* bloc, const mot* limite, const Argument& a);
int fonction_fichier(int ord, mot* bloc, const mot* limite, const Argument& a);
int fonction_texte(int ord, mot* bloc, const mot* limite, const Argument& a);
int fonction_etendue(int ord, mot* bloc, const mot* limite, const Argument& a);
