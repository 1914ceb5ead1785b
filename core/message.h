// Numbered messages: the code knows a message only as (env, number); its
// text comes from the environment's message file.
#pragma once
#include <cstdio>

#include "core/bloc.h"

// Result codes shared by every routine that can fail.
enum : int {
  ECHEC = -1,           // failure, already reported
  PILE_PLEINE = -12,    // no room on the evaluation stack
  EMPILE_PLEIN = -16,   // command stack full
  CODE_COMPILE = -18,   // a code of the compiler
};

struct TableMessages {
  int nb = 0;
  char** textes = nullptr;
};

struct Messages {
  TableMessages tables[8];
  int nb_env = 0;
  bool charges = false;  // set once the key file of env 0 is read
};
extern Messages messages;

int message(int env, int n);
const char* message_texte(int env, int n);
void cloche();

// Report routines that need no object; those that print one are with the
// object table.
int erreur_pile();
void erreur_memoire(long a, long b);
void erreur_fichier(const char* nom);
void erreur_ecriture(const char* nom);
void erreur_disque();
void erreur_interne(const char* texte);
