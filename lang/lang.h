// The language front end: the scanner that every text reader shares, the
// compiler that turns source text into a linked code block, the listing of
// that code, and the store of functions read from files.
//
// A code block (tag CODE_BLOC) is
//   [L, CODE_BLOC, frame slots, formals, items..., 0] [M, symbols..., 0]
// where L counts the header and the items with their closing 0, and M the
// symbol run with its own length word and closing 0. An item whose first
// word is negative is a pair [kind, value]; otherwise the first word is the
// item's length and the second its tag. Walking code is stepping by 2 or by
// the first word; a first word of 0 ends the run.
#pragma once
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "core/bloc.h"
#include "core/catalogue.h"
#include "core/message.h"
#include "core/objet.h"

struct MotCle;

// ---- kinds of cells, blocks and symbols ------------------------------------
enum : mot {
  CODE_BLOC = -1021,

  // Pairs.
  CEL_OP = -1001,        // operator or bracket code
  CEL_REEL = -1002,      // float bits
  CEL_MOT = -1003,       // keyword entry
  CEL_LOCAL = -1004,     // 0 or minus the slot; the slot after link
  CEL_STATIQUE = -1005,  // symbol index; the Objet after link
  CEL_GLOBAL = -1006,    // symbol index; the Objet after link
  CEL_FIN = -1009,       // end of a top-level block
  CEL_LIGNE = -1014,     // line mark
  CEL_ETIQUETTE = -1019, // label definition, its number
  CEL_SAUT = -1031,      // jump by a signed distance in words (link only)
  CEL_REF_GLOBAL = -1051,
  CEL_REF_LOCAL = -1052,
  CEL_REF_STATIQUE = -1054,
  CEL_ALLER = -12,   // aller: label number
  CEL_NIL = -22,
  CEL_PI = -25,      // value 0x40490FDB
  CEL_SORTIR = -29,  // keyword entry
  CEL_CAS = -31,     // float bits, or the code of a quoted character
  CEL_DEFAUT = -32,
  CEL_AIDE = -65,    // keyword entry that follows, or 0
  CEL_RC = -66,      // keyword entry

  // Blocks: tag in word 1.
  BLOC_NOM_FONCTION = -2,  // NUL-ended name
  BLOC_TEXTE_AIDE = 2,     // a2 with the raw rest of its statement
  BLOC_TEXTE_ERR = 108,    // a108 with the raw rest of its statement
  BLOC_POUR = 10,          // before pass 3
  BLOC_SI = 16,
  BLOC_TANTQUE = 18,
  BLOC_SELON = 30,
  BLOC_POUR_TROIS = -1024,  // header of pour(init; condition; step)
  BLOC_POUR_COMPTE = -1025, // header of pour(i = start, limit [, step])
  BLOC_APPEL = -1032,       // [4, tag, symbol index, argument count]
  BLOC_APPEL_FORMEL = -1042,  // the same through a formal; its slot after link
  // Tags that link gives.
  BLOC_TEST = -16,            // si and tantque
  BLOC_SELON_LIE = -30,
  BLOC_POUR_TROIS_LIE = -1027,
  BLOC_POUR_COMPTE_LIE = -1028,
  // Link turns a call into BLOC_OBJET (-1037, the function's Objet) or into
  // BLOC_NOM (-1038, a pointer to the name in the symbol run).
};

// Values of a CEL_OP pair other than the character of a one-character token.
enum : mot {
  OP_EGAL_EGAL = 1001, OP_DIFF = 1002, OP_INF_EGAL = 1003, OP_SUP_EGAL = 1004,
  OP_ET = 1005, OP_OU = 1006, OP_TILDE = 1007, OP_PUIS_AFF = 1008,
  OP_DECAL_G = 1009, OP_DECAL_D = 1010, OP_MOINS_AFF = 1012, OP_MUL_AFF = 1013,
  OP_DIV_AFF = 1014, OP_MOD_AFF = 1015, OP_DECAL_G_AFF = 1016, OP_DECAL_D_AFF = 1017,
  OP_ET_AFF = 1018, OP_OU_AFF = 1019, OP_VIRG_AFF = 1021, OP_PLUS_AFF = 10011,
  OP_INCR = -1049, OP_DECR = -1050,
  OP_SINON = 17,
  OP_NOP = -1020,
  OP_DEBUT = -1022,   // begin of a controlled body
  OP_FIN = -1023,     // end of a controlled body
  OP_BOUCLE = -1026,  // entry of the counting pour, ahead of its header
};

// Kinds of symbol entries; entry: [length, kind, index, Objet, N, name...,
// value block when any], N = strlen(name) / 4 + 2. A static carries its value
// twice: the second copy is its Objet's. A macro's value is its text.
enum : mot {
  SYM_LOCAL = -1004,
  SYM_STATIQUE = -1005,
  SYM_GLOBAL = -1006,
  SYM_ETIQUETTE = -1019,
  SYM_APPEL = -1032,
  SYM_FORMEL_FONC = -1042,
  SYM_MACRO = -1047,
};

// Keyword ordinals of list "a" that the compiler gives a meaning to (a6
// fonc, a45 statique and a108 err are named in the core's headers).
constexpr int A_AIDE = 2, A_EXTERNE = 8, A_POUR = 10, A_RETOUR = 11, A_ALLER = 12, A_SI = 16,
              A_SINON = 17, A_TANTQUE = 18, A_NIL = 22, A_LIEN = 23, A_PI = 25, A_SORTIR = 29,
              A_SELON = 30, A_CAS = 31, A_DEFAUT = 32, A_IMPRIME = 62,
              A_AIDE_MOT = 65, A_RC = 66, A_VAR_LISTE = 97, A_ALIAS = 107;
// Type of a function Objet (the ordinal a6) and of the alias table.
constexpr int TYPE_FONCTION = A_FONC;
constexpr int TYPE_ALIAS = A_ALIAS;

// Messages of env 0 that the front end prints.
constexpr int M_LONG = 2, M_PARENTHESE = 3, M_INCONNU = 9, M_ESPACE = 13, M_TAILLE = 18,
              M_NUL = 22, M_ALLOCATION = 28, M_SYMBOLE = 31, M_OPERATEUR = 32, M_POUR = 33,
              M_ACCOLADES = 34, M_FICHIER = 36, M_FONCTION = 41, M_DEFINE = 43, M_TETE = 44,
              M_SI = 45, M_TANTQUE = 47, M_FERMANT = 51, M_SYMBOLES = 53, M_ETIQUETTE = 55,
              M_SORTIR = 57, M_SELON = 58, M_CAS = 59, M_SIGNE = 60, M_COMMENTAIRE = 64,
              M_VIRGULE = 66, M_DIRECTIVE = 68, M_GROUPE = 75, M_ARGUMENT = 80, M_CHAINE = 83,
              M_NOM_MOT = 89, M_ECHEC = 107;

// ---- state of the front end ------------------------------------------------
struct Lang {
  int statut = 0;  // compile status: -1 after a failed function
  int lie = 0;     // 1 after a successful link, -1 after a failed one
  long taille_code = 100000;  // words of the compile buffer; doubles on overflow
  // Debug listings, switched by the interpreter's debug options: a63 gives
  // PASSE 1, PASSE 2, PASSE 3 and BUG, a23 gives LINK.
  bool liste_passes = false;
  bool liste_lien = false;
  // While a step prompt runs inside a function, the lines typed there see
  // that function's locals and statics.
  Objet* fonction_pas = nullptr;
  // Runs the linked code of a line Objet and gives its value, or null after
  // a failure; the interpreter installs it. Declarations whose value is an
  // expression, and the function "doc" of a file, need it.
  mot* (*executer)(Objet* ligne) = nullptr;
  unsigned long generation = 1;  // state of the function table
  unsigned long generation_liee = 0;
  int resultat_lie = 0;
  unsigned long numero_fonction = 0;  // fresh numbers of compiled functions
  unsigned long lectures = 0;         // function files read: the file groups
  // The group of each file read: a file read again keeps its group, and
  // its functions replace their namesakes of that group alone.
  std::map<std::string, unsigned long> groupes;
};
extern Lang lang;

// ---- compiler ------------------------------------------------------------------
// 1 after success, the Objet's code block replaced; -1 after a failure,
// reported with its context and closed by message 107.
int compiler(Objet* o);
int compiler_tout();                // every function, in table order
int compiler_noms(const mot* noms); // the names of a string; null or nil: all
int lier(Objet* o);                 // 0 or -1; compiles first if needed
int lier_tout();                    // once per state of the function table
void fonctions_modifiees();         // a function was added, changed or deleted

// ---- listing -------------------------------------------------------------------
// Prints one item of a code block; the block is needed to count jump targets.
void lister_item(const mot* code, const mot* item);
void lister_code(const Objet* o, int ligne);  // ligne 0: the whole block
void lister_ligne(const Objet* o, int n);     // name, " %d: " and the source line
// The line of its file where line n of a function's text stands: a file
// holds several functions, and each text begins where the last one ended.
int ligne_fichier(const Objet* o, int n);
void lister_texte(const char* texte);         // normalised text of pass 1

// ---- function store ------------------------------------------------------------
// Reads the file nom.fon (current directory, user directory, environment
// directory) into functions; -1 if it can't be read.
int fonctions_lit(const char* nom, bool avec_lien);
// The functions of a text, as if read from the file `fichier` (null: a
// text of no file, a group of its own): how many were stored.
int fonctions_analyse(const char* texte, std::size_t n, const char* fichier = nullptr);
// A function by name, read from its file when no Objet bears it yet; null
// after "%s: " and message 41.
Objet* fonction_appel(const char* nom);
// The same without a message: null when no file holds it either.
Objet* fonction_cherche(const char* nom);
// Reads a file through the search path: the current directory, the user
// directory, then the environment directory; a name that begins with "."
// only in the current directory. ext, when not null, is added as ".ext"
// unless the name ends with it.
bool lire_fichier_recherche(const char* nom, const char* ext, std::string& texte,
                            std::string* chemin = nullptr);
// Text of a function Objet (word 4 of its data), null if none.
const char* fonction_texte(const Objet* o, std::size_t* n);

// ---- line editor ------------------------------------------------------------------
// Shows a recalled line and reads what becomes of it: 1 run it (changed or
// not), 0 drop it, -1 stop (a reply "-" or the end of the input). Replies:
// empty keeps, "0" drops, "-" stops, "s/old/new/" substitutes and asks
// again, anything else replaces the line.
int editer_ligne(std::string& ligne);

// ---- macros ---------------------------------------------------------------------
void macros_globales_vide();
// "#define name text" read at the cursor into the global table; 0 or -1.
int macro_globale(const char* ligne);

// ---- scanner ---------------------------------------------------------------------
constexpr int TAILLE_NOM = 256;
constexpr char MARQUE_LIGNE = 3;  // byte 3 and four digit bytes, each plus 1
constexpr char MARQUE_NOM = 2;    // byte 2, the name, byte 1 to the end of 80 bytes
constexpr int LONG_MARQUE = 5;
constexpr int LONG_CHAMP_NOM = 80;

bool est_blanc(unsigned char c);
bool est_fin_nom(unsigned char c);    // name terminator
bool est_separateur(unsigned char c); // word separator in data
const char* sauter_blancs(const char* p);
int lire_nom(char* dst, const char** p, int taille);
int lire_mot(char* dst, const char** p, int taille);
int lire_champ(char* dst, const char** p, int taille = TAILLE_NOM);
int comparer_noms(const char* a, const char* b);
const char* fin_nom(const char* p);
const char* sauter_commentaires(const char* p, int* ligne);
const char* sauter_entete(const char* p, int* ligne);
const char* lire_entier(int* n, const char* p);
const char* lire_flottants(int* n, std::vector<float>& dst, const char* p);
int entier_texte(char* dst, int n);
int flottant_texte(char* dst, float f);
int format_entier(char* dst, const char* fmt, int n);
int compter_mots(const char* s);
const char* mot_suivant(const char* p);
int nettoyer_texte(char* s, int* lignes);
int lire_ligne(char* dst, int limite);
// Writes a line mark at p and returns the end; a mark just ahead of p is
// rewritten in place when n is above 2.
char* marquer_ligne(char* p, const char* debut, int n);
int lire_marque(const char* p);
