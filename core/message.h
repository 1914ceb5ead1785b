// Numbered messages: the code knows a message only as (env, number); its
// text comes from the environment's message file.
#pragma once
#include <climits>
#include <cstdio>
#include <string>
#include <string_view>

#include "core/bloc.h"

// Result codes shared by every routine that can fail.
enum : int {
  ECHEC = -1,           // failure, already reported
  PILE_PLEINE = -12,    // no room on the evaluation stack
  EMPILE_PLEIN = -16,   // command stack full
  CODE_COMPILE = -18,   // a code of the compiler
};

// Messages of env 0 that the core prints.
constexpr int MES_INVITE = 0;
constexpr int MES_LIGNE = 1;
constexpr int MES_DEBORDEMENT = 2;
constexpr int MES_ABSENT = 9;
constexpr int MES_LOCAUX_PLEINS = 11;
constexpr int MES_PILE = 12;
constexpr int MES_USAGE = 14;
constexpr int MES_TABLE_PLEINE = 15;
constexpr int MES_NUL = 22;
constexpr int MES_ALLOCATION = 28;
constexpr int MES_FICHIER = 36;
constexpr int MES_ECRITURE = 37;
constexpr int MES_PAIRE = 60;
constexpr int MES_COMMENTAIRE = 64;
constexpr int MES_INDICE = 66;
constexpr int MES_DISQUE = 67;
constexpr int MES_PAS_VARIABLE = 81;
constexpr int MES_VALEUR = 81;  // the same number: a value of bad type or range
constexpr int MES_CONVERSION = 98;
constexpr int MES_NON_TERMINE = 103;
constexpr int MES_INTERNE = 104;
constexpr int MES_ENTETE = 105;
constexpr int MES_ECHEC = 108;
constexpr int MES_SANS_TABLE = 109;
constexpr int A_BIP = 52;  // bell state of keyword a52
constexpr int A_ERR = 108;  // first value -1 after a failed statement

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

// The statement level's answer to any negative result: a108 gets -1 so that
// the language can test it, message 0:108 is printed; gives -1.
int echec_instruction();

// A float from the language that becomes a count, an index or a number:
// 0 with its truncation in *n when x is finite and truncates into
// [min, max]; otherwise "%g: " with the value, message 0:81, and -1.
int entier_de(float x, mot* n, mot min = INT32_MIN, mot max = INT32_MAX);

// Report routines that need no object; those that print one are with the
// object table.
int erreur_pile();
void erreur_memoire(long a, long b);
void erreur_fichier(const char* nom);
void erreur_ecriture(const char* nom);
void erreur_disque();
void erreur_interne(const char* texte);

// ---- the user's message tables ---------------------------------------------
// Named texts of messages, each between an opening and a closing ";", with
// fields separated by "|". Loading a name already known replaces its text.
int message_utilisateur_charge(const char* nom, std::string_view texte);
void messages_utilisateur_vide();
// Text of message n of the named table into dst: the whole text, or field k
// (negative counts as 0; past the last field gives the first). 0, or -1
// after a message.
constexpr int TEXTE_ENTIER = INT_MIN;
int message_utilisateur(const char* nom, int n, int k, std::string& dst);
// The command: the first clause's value prints a message (numbers), loads
// a file (string) or looks a text up (list: name, number [, field]), whose
// string then replaces the phrase. 0, -1, or -12 when it doesn't fit below
// `limite`.
int messages_utilisateur(mot* phrase, const mot* limite);
