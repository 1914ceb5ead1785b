// Stand-in for the compiler's header until it is merged: the declarations
// the interpreter needs, with the word format of the compiled code.
#pragma once
#include "core/objet.h"

int compiler(Objet* objet);      // 1 after success, -1 after failure
int lier(Objet* objet);          // 0 or -1
int lier_tout();                 // the global link status
int compiler_noms(mot* bloc);    // names of a string, or all
// A function by name: from the table, or read from its file; null if none.
Objet* fonction_charge(const char* nom);
