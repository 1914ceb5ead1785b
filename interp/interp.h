// The interpreter: the statement walker over linked code, the evaluator of
// expressions on the one evaluation stack, calls and their frames, the
// statement keywords of list "a", and the printing of values.
//
// Code is walked as it was linked: an item whose first word is negative is a
// pair (kind, value), any other is a block (length, tag, ...), 0 ends a run.
// Values live on the evaluation stack (piles.eva_*), laid end to end, and
// never on the heap until a variable takes them.
#pragma once
#include <span>

#include "core/bloc.h"
#include "core/objet.h"
#include "lang/lang.h"

// ---- kinds of code items and of stack values ------------------------------
enum : mot {
  IT_OP = -1001,         // pair: operator or bracket
  IT_REEL = -1002,       // pair: scalar constant (float bits)
  IT_MOT = -1003,        // pair: keyword entry
  IT_LOCAL = -1004,      // pair: frame slot
  IT_STATIQUE = -1005,   // pair: static variable (Objet)
  IT_GLOBAL = -1006,     // pair: global variable (Objet)
  IT_FIN = -1009,        // end of a top-level block
  IT_LIGNE = -1014,      // line mark
  IT_ETIQUETTE = -1019,  // label definition
  IT_CODE = -1021,       // tag of a compiled code block
  IT_POUR3_BRUT = -1024, IT_POUR_BRUT = -1025,  // pour heads before link
  IT_POUR3 = -1027,      // linked three-part pour head
  IT_POUR = -1028,       // linked counting pour head
  IT_SAUT = -1031,       // jump by a signed distance in words
  IT_APPEL = -1032,      // call of a named function, not linked
  IT_FORMEL = -1042,     // call through a formal holding a function name
  IT_REF_GLOBAL = -1051, IT_REF_LOCAL = -1052, IT_REF_STATIQUE = -1054,  // @ forms
  IT_NIL = -22, IT_PI = -25, IT_ALLER = -12, IT_SORTIR = -29, IT_CAS = -31, IT_DEFAUT = -32,
  IT_AIDE_MOT = -65, IT_RC = -66,
  IT_NOM = -2,           // block: function name, stepped over
  IT_SI = -16,           // block: linked si or tantque head
  IT_SELON = -30,        // block: linked selon table
  IT_SI_BRUT = 16, IT_TANTQUE_BRUT = 18, IT_SELON_BRUT = 30,
  IT_AIDE = 2, IT_BRUT_ERR = 108,  // blocks carrying the raw text of a statement
  VAL_VUE = -1016,       // view of single elements ([ ] index)
  VAL_VUE3 = -1017,      // view of triples or of words ({ } index)
};

// Operator values of an IT_OP pair: the character itself, or these codes
// (the compiler's header names the others).
enum : mot {
  OP_EGAL = 1001, OP_DIFFERENT = 1002, OP_PUISSANCE_EGAL = 1008, OP_GAUCHE = 1009, OP_DROITE = 1010,
  OP_MOINS_EGAL = 1012, OP_FOIS_EGAL = 1013, OP_DIVISE_EGAL = 1014, OP_MODULO_EGAL = 1015,
  OP_GAUCHE_EGAL = 1016, OP_DROITE_EGAL = 1017, OP_ET_BITS_EGAL = 1018, OP_OU_BITS_EGAL = 1019,
  OP_VIRGULE_EGAL = 1021, OP_PLUS_EGAL = 10011,
};

// Ordinals of list "a" that the interpreter gives a meaning to. (A_FONC,
// A_VAR and A_NUM are the object table's, A_BIP and A_ERR the messages',
// A_AIDE, A_RETOUR, A_NIL, A_PI, A_IMPRIME, A_AIDE_MOT the compiler's; A_LIB,
// A_EDI, A_OPT, A_EXEC the catalogue's.)
constexpr int A_TEXTE = 1, A_PAS = 3, A_LISTE_ITEMS = 21, A_LIRE = 14, A_DEMANDE = 19, A_LIER = 23,
              A_SYSTEME = 35, A_COM = 63, A_MES = 80, A_CONT = 89, A_DEBUG = 92,
              A_SOR = 93, A_COD = 94, A_NODEBUG = 96, A_QUITTER = 104, A_HIS = 105,
              A_ALI = 107, A_VECTEUR = 109, A_REMPLIR = 110, A_AFFICHE = 113;
// Ordinals above this one always go to the command dispatch.
constexpr int A_DERNIER_INSTRUCTION = 118;

// Messages of env 0 printed by the interpreter.
constexpr int M_INTROUVABLE = 9, M_AFFECTATION = 6, M_LOCALES = 11, M_EVALUATION = 12,
              M_SANS_VALEUR = 35, M_DIVISION = 56,
              M_INDICE = 61, M_VALEUR = 66, M_TYPE = 81, M_CONDITION = 94, M_POUR_EXEC = 95,
              M_RAMPE = 96, M_DIFFERES = 98, M_NON_LIE = 99, M_FORMEL = 100;

// Kind of a frame record that refers to another variable (an @ argument).
constexpr std::int16_t CADRE_REFERENCE = OBJ_REF_LOCAL;
// Kind of the marker record pushed behind the slots of a frame.
constexpr std::int16_t CADRE_MARQUE = OBJ_MARQUE1;

// ---- state of the interpreter ----------------------------------------------
struct Interp {
  Objet* fonction = nullptr;  // the running function, null at top level; its
                              // frame is the object table's `cadre`
  Objet* source = nullptr;    // the line's object that the shell runs
  int ligne = 0;              // current line of the running code
  mot* resultat = nullptr;    // value of the last statement of the last executer
  int code = 0;               // failure code behind a null from evaluer_groupe
  int mode_impression = 0;    // 2: the shell carries on after a failed line
  // The machine stack: a run that nears its end fails with message 11
  // instead of overflowing it.
  char* pile_c_base = nullptr;
  long pile_c_budget = 0;
  // The direct ways for scalars and single elements; with ORVANE_LENT set in
  // the environment every statement takes the general way, so that tests
  // can compare the two on the same program.
  bool raccourcis = true;
  unsigned long passes = 0;  // statements and tests walked, by every run
  const mot* instruction = nullptr;  // the group that the statement walker runs
};
extern Interp interp;

// Failure code of a run already closed by message 108: callers stay silent.
constexpr int ECHEC_CLOS = -2;

// Binds the interpreter to the machine stack of the caller (the entry point
// calls it once; the check is off until then).
void interp_init();

// ---- engine -------------------------------------------------------------------
// Walks a linked code block; statement values go to `resultat`. 0, or -1.
int executer(mot* code, mot* resultat);
// Evaluates the group that opens at `item`; its value goes to `base`, and
// piles.eva_haut ends behind it. Returns the item behind the group, or null
// (interp.code tells why). `etat` becomes 2 when a retour ran.
mot* evaluer_groupe(mot* item, mot* base, int* etat);
// Builds the phrase of the keywords that start at `item` into a -1039 block
// at `base`; returns the item behind the phrase, or null.
mot* construire_phrase(mot* item, mot* base);
// Runs a phrase in place: <0 failure, 0 or 1 done, 2 after retour.
int executer_phrase(mot* bloc);
// Runs the call block at `appel`; its value replaces it when `copier`.
int appeler_fonction(mot* appel, bool copier);
// Makes the item at v a plain value in place: reads variables, runs phrases
// and calls, materialises views.
int evaluer_valeur(mot* v, const mot* limite);
// Evaluates a condition group: 1 true, 0 false, -1 failure.
int tester(mot* groupe, mot* haut);
// Compiles and runs a text as a line typed at the current level.
int executer_texte(const char* texte);

// The command dispatch of the phrases that list "a" does not handle here:
// one table per list gives each ordinal its handler (interp/commande.cpp);
// what no handler claims reads or writes an attribute. `valeur` is the value
// of an assignment `phrase = v`, null for a read.
int commande(mot* phrase, const mot* limite, mot* valeur);
// Folders above this one (the window's, ...) give their handlers at run
// time: a registered handler is asked before the table's own, and may hand
// the phrase on to it by returning COMMANDE_SUITE. A null handler removes.
using Gestionnaire_externe = int (*)(mot* bloc, mot* valeur, const mot* limite);
constexpr int COMMANDE_SUITE = 0x40000000;
void commande_enregistre(int env, int ordinal, Gestionnaire_externe g);
// The built-in functions: a one-element phrase, its value written in place.
// 0, -1, -12, or above 0 when the phrase is a command.
int fonction_interne(mot* bloc, const mot* limite);

// ---- evaluator ------------------------------------------------------------------
constexpr int MAX_DIFFERES = 10;
// Postfix ++ and -- wait for the end of their group.
struct Differe {
  mot op;
  Objet* variable;
};
struct Differes {
  int n = 0;
  Differe d[MAX_DIFFERES];
};
int reduire(mot* base, mot* haut, Differes* differes);
// What an operator sees of a value.
struct Valeur {
  mot type = 0;            // BLOC_REEL, BLOC_CHAINE, BLOC_NIL, BLOC_LISTE, VAL_VUE, VAL_VUE3
  long n = 0;              // elements (floats, bytes of a string, words of a list or view)
  mot* donnees = nullptr;  // floats, bytes, or the block itself for lists and views
  Objet* variable = nullptr;  // the variable it was read from, if any
};
// -1 after message 81 (or 35 for a variable without value when strict).
int decrire(mot* v, Valeur* d);
int operer(mot* gauche, mot op, mot* droit, int prefixe, Differes* differes);
int affecter(mot* cible, mot* valeur);
int indexer(mot* base, mot* rampe, mot* haut);
int rampe(mot* dest, mot* valeur, mot fermant);
// A -1016/-1017 view copied into a plain value at `dest`.
int materialiser(mot* dest, const mot* vue, const mot* limite);
// Resolves references onto the stack, in place: the value becomes plain.
int copie_valeur(mot* v, const mot* limite);
// Size in words of the stack item at v (2 for a pair).
inline mot taille_item(const mot* v) { return v[0] < 0 ? 2 : v[0]; }

// The variable that a stack item names (frame slot, static, global, or an @
// form), references followed; null if it names none.
Objet* variable_de(const mot* v);
// Stores a plain value in a variable, reusing its block when it has the size.
int stocke(Objet* var, const mot* valeur);
// The name of a variable for messages ("" if it has none).
const char* nom_variable(const Objet* var);
// The name of a function object: its name, or the first word of its text.
const char* nom_fonction(const Objet* f);

// ---- results of commands and built-ins ----------------------------------------
// A handler writes its value over the phrase it was given; these write one
// value block there, or give null (or -12) when it would pass the limit.
reel* resultat_reels(mot* bloc, const mot* limite, long n);
int resultat_chaine(mot* bloc, const mot* limite, const char* s, std::size_t lg);
void resultat_nil(mot* bloc);
int resultat_scalaire(mot* bloc, const mot* limite, float x);
// Floats in place of the phrase, nil when there are none; -12 past the limit.
int resultat_vecteur(mot* bloc, const mot* limite, std::span<const float> x);

// ---- printing and debug --------------------------------------------------------
void imprimer(mot* v, const char* format);
void afficher(mot* v, const reel* options, int n);
// A stored attribute's value block: rows numbered "%d: " from 1 when there
// are more than one, each on a line of its own; a text in quotes followed
// by the separator.
void imprimer_attribut(const mot* t, char separateur);
int imprimer_symboles(mot* phrase);
int option_debug(const char* texte, int sens, int env, int ordinal, int n, float a, float b, float c);

// The debug list: pairs (env, ordinal) switched on by the keys and keywords.
struct Debug {
  int drapeau = 0;  // the key deb, or the keyword; negative: cleared at the next pause
  int n = 0;
  mot paires[64][2];
  int nb_arrets = 0;  // breakpoints of the step mode, by line
  int arrets[64];
};
extern Debug debug;
bool debug_option(int env, int ordinal);
