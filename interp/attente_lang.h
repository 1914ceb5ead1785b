// Stand-in for the compiler's header until it is merged: the names of it
// that the interpreter uses, with the same values.
#pragma once
#include "core/objet.h"

enum : mot {
  OP_INF_EGAL = 1003, OP_SUP_EGAL = 1004, OP_ET = 1005, OP_OU = 1006, OP_TILDE = 1007,
  OP_INCR = -1049, OP_DECR = -1050, OP_SINON = 17, OP_NOP = -1020, OP_DEBUT = -1022,
  OP_FIN = -1023, OP_BOUCLE = -1026,
};
constexpr int A_AIDE = 2, A_RETOUR = 11, A_NIL = 22, A_PI = 25, A_EDI = 36, A_IMPRIME = 62,
              A_AIDE_MOT = 65;
constexpr int M_OPERATEUR = 32, M_FONCTION = 41;

struct Lang {
  bool liste_passes = false;
  bool liste_lien = false;
  Objet* fonction_pas = nullptr;
  mot* (*executer)(Objet* ligne) = nullptr;
  unsigned long generation = 1;
  unsigned long generation_liee = 0;
};
extern Lang lang;

int compiler(Objet* o);
int compiler_noms(const mot* noms);
int lier(Objet* o);
int lier_tout();
Objet* fonction_appel(const char* nom);
void lister_item(const mot* code, const mot* item);
void lister_ligne(const Objet* o, int n);
