// The object table: every named thing of the language is an Objet, whose
// type is a keyword ordinal (or a negative kind) and whose attributes are
// Blocs keyed by keyword pairs.
#pragma once
#include <cstdint>

#include "core/bloc.h"

struct Objet {
  std::int32_t numero;  // number among its type; position of a local
  char* nom;            // bare characters, no Bloc header; null if none
  mot* donnees;         // attribute list, envelope or value
  mot* code;            // compiled code, alpha image, ...
  std::int16_t env;
  std::int16_t type;  // 0: free entry
  std::uint16_t sous_type;
  std::uint16_t f1, f2, f3, f4;  // owned by the type's folder
  std::uint32_t marque;          // transient, cleared on creation and deletion
};

// Negative kinds of objects.
enum : std::int16_t {
  OBJ_LOCAL = -1004,
  OBJ_STATIQUE = -1005,  // sous_type 0, numero = its function's number
  OBJ_GLOBAL = -1006,
  OBJ_ALIAS = -1008,  // donnees is the Objet meant
  OBJ_TRANSITOIRE = -1012,
  OBJ_LIGNE = -1015,
  OBJ_MARQUE1 = -1027,
  OBJ_REFERENCE = -1037,  // donnees is the Objet held
  OBJ_MARQUE2 = -1039,
  OBJ_REF_LOCAL = -1056,  // donnees is the Objet bound
};

// Keyword ordinals the object table gives a meaning to.
constexpr int A_FONC = 6;        // function type
constexpr int A_VAR = 21;        // printed before a global's name
constexpr int A_STATIQUE = 45;   // printed before a static's name
constexpr int A_NUM = 57;        // number clause of a phrase
constexpr int A_NOM = 82;        // name clause of a phrase
constexpr int B_VOL = 4;
constexpr int B_LUM = 24;
constexpr int B_TRA = 49;
constexpr int B_CIN = 88;
constexpr int B_VUE = 114;
constexpr int B_CHA = 122;
constexpr int B_RES = 161;
// Clauses that name a kind of volume (and so select a volume).
constexpr int B_SORTE_14 = 14, B_SORTE_117 = 117, B_SORTE_118 = 118, B_SORTE_133 = 133;
constexpr int B_F4 = 48;  // clause setting f4 at generic creation

// The type number that means "the object the interpreter has selected":
// every search answers it at once with objet_courant.
constexpr int TYPE_COURANT = 101;
extern Objet* objet_courant;

// The running call's frame, kept by the engine at each call and return.
// `locaux` is the first slot record and `nb` the slot count (null and 0 at
// top level); a local Objet resolves to the slot of the same number, counted
// from the first slot's. `nom_local` gives a slot's name from the running
// function's symbol table, or null.
struct Cadre {
  Objet* locaux = nullptr;
  int nb = 0;
  const char* (*nom_local)(int numero) = nullptr;
};
extern Cadre cadre;

// Entries below this index are all taken; deletion lowers it, so creation
// keeps first-fit order without rescanning the taken run. Entries are freed
// only through objet_supprime and objets_vide.
//
// `epoque` moves on whenever an object is deleted, or one of its attributes
// or its attribute list is released or moved: whoever keeps pointers into
// attributes compares it with the one they were taken at, and takes them
// again when it has moved.
struct TableObjets {
  long libre = 0;
  long codes_retenus = 0;  // code blocks kept aside while frames run them
  std::uint32_t epoque = 0;
};
extern TableObjets table_objets;
inline void attributs_bougent() { ++table_objets.epoque; }

// ---- code blocks that are running ---------------------------------------
// The engine walks a function's code block in place, and a call's frame
// marker (a record of kind OBJ_MARQUE1 on the frame stack) holds the block
// it runs in `code`. A block that a compile or a deletion replaces while
// some frame still runs it is kept aside, not released: the run goes on in
// the text it began with, and the block goes when no frame runs it.
bool code_en_cours(const mot* code);
void code_libere(mot* code);
// Releases the blocks kept aside that no frame runs any more; the engine
// calls it on return from a call while table_objets.codes_retenus is not 0.
void codes_retenus_libere();

// ---- creation and finding ----------------------------------------------
// Object numbers from the language lie within +-NUMERO_MAX, so that the
// highest + 1 is a number too; another float names no object (a search
// finds nothing, a creation says message 0:81).
constexpr int NUMERO_MAX = 999999999;
// Creation gives null after printing message 0:15 (table full) or 0:28.
Objet* objet_cree(int env, int type, int sous_type, const mot* donnees, const char* nom, int numero);
Objet* objet_cree_arg(int env, int type, mot* args, int i);
Objet* objet_duplique(const Objet* o);
// Searches print nothing and give null when nothing matches.
Objet* objet_trouve(int type, int sous_type, int numero, const char* nom);
Objet* objet_trouve_arg(int env, int type, mot* args, int i);
Objet* objet_trouve2(int type, int sous_type, mot* args, int i);
Objet* fonction_trouve(const char* nom);
Objet* objet_resout(Objet* o);  // message 0:81 and null for what is no variable
const char* objet_nom(const Objet* o);
int numero_max(int env, int type);
int numero_min(int env, int type);

// ---- deletion ------------------------------------------------------------
void objet_supprime(Objet* o);
void objet_supprime_type(int env, int type);
void objet_supprime_num(int type, int numero);
void objet_supprime_ss(int type, int sous_type, int numero);
void objet_supprime_sel(int env, int type, int numero, const char* nom);
void objets_vide();  // every entry deleted, the mark back at the start

// ---- attributes ------------------------------------------------------------
// An attribute is a form A phrase [len, BLOC_PHRASE, H, n, pairs, tail] with
// H = 4 + 2n; its key is the n pairs (env, ordinal), compared with word 3 and
// in order, so that keys of different lengths never match. An object's
// attributes are a BLOC_BLOCS of pointers to them, in order of addition.
//
// Dispatchers by count: n pairs laid end to end in `paires`; n outside 1..4
// is ignored (null or 0).
mot* attribut_trouve(mot* liste, int n, const mot* paires);
mot* attribut_trouve_pos(Objet* o, int* pos, int n, const mot* paires);  // pos: word from 4
mot* attribut_valeur(mot* liste, int n, const mot* paires);              // the tail
// Finds or adds an attribute with a BLOC_REEL tail of nv floats. An existing
// one is left alone with mode 0 and has its first nv floats overwritten
// otherwise (rebuilt larger if its tail is shorter than nv).
mot* attribut_ecrit(Objet* o, int n, const mot* paires, const reel* v, int nv, int mode);
// 1 removed, 0 absent, -1 no memory (the attribute is then taken out in
// place). With `affiche`, prints the keywords and a newline.
int attribut_enleve(Objet* o, bool affiche, int n, const mot* paires);

// Dispatchers by chain: the keys are those of the first n clauses
// [length, env, ordinal, value...] of a sentence, from `clauses`; n 1..6.
mot* attribut_trouve_chaine(mot* liste, int n, const mot* clauses);
mot* attribut_trouve_pos_chaine(Objet* o, int* pos, int n, const mot* clauses);
mot* attribut_valeur_chaine(mot* liste, int n, const mot* clauses);
mot* attribut_ecrit_chaine(Objet* o, int n, const mot* clauses, const reel* v, int nv, int mode);
int attribut_enleve_chaine(Objet* o, bool affiche, int n, const mot* clauses);  // prints "-" first

// One routine per count, with the pairs as arguments.
mot* attribut_trouve_1(mot* l, int e1, int o1);
mot* attribut_trouve_2(mot* l, int e1, int o1, int e2, int o2);
mot* attribut_trouve_3(mot* l, int e1, int o1, int e2, int o2, int e3, int o3);
mot* attribut_trouve_4(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4);
mot* attribut_trouve_5(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                       int e5, int o5);
mot* attribut_trouve_6(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                       int e5, int o5, int e6, int o6);
mot* attribut_trouve_pos_1(Objet* o, int* pos, int e1, int o1);
mot* attribut_trouve_pos_2(Objet* o, int* pos, int e1, int o1, int e2, int o2);
mot* attribut_trouve_pos_3(Objet* o, int* pos, int e1, int o1, int e2, int o2, int e3, int o3);
mot* attribut_trouve_pos_4(Objet* o, int* pos, int e1, int o1, int e2, int o2, int e3, int o3,
                           int e4, int o4);
mot* attribut_trouve_pos_5(Objet* o, int* pos, int e1, int o1, int e2, int o2, int e3, int o3,
                           int e4, int o4, int e5, int o5);
mot* attribut_trouve_pos_6(Objet* o, int* pos, int e1, int o1, int e2, int o2, int e3, int o3,
                           int e4, int o4, int e5, int o5, int e6, int o6);
mot* attribut_valeur_1(mot* l, int e1, int o1);
mot* attribut_valeur_2(mot* l, int e1, int o1, int e2, int o2);
mot* attribut_valeur_3(mot* l, int e1, int o1, int e2, int o2, int e3, int o3);
mot* attribut_valeur_4(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4);
mot* attribut_valeur_5(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                       int e5, int o5);
mot* attribut_valeur_6(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                       int e5, int o5, int e6, int o6);
mot* attribut_ecrit_1(Objet* o, int e1, int o1, const reel* v, int nv, int mode);
mot* attribut_ecrit_2(Objet* o, int e1, int o1, int e2, int o2, const reel* v, int nv, int mode);
mot* attribut_ecrit_3(Objet* o, int e1, int o1, int e2, int o2, int e3, int o3, const reel* v,
                      int nv, int mode);
mot* attribut_ecrit_4(Objet* o, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                      const reel* v, int nv, int mode);
mot* attribut_ecrit_5(Objet* o, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                      int e5, int o5, const reel* v, int nv, int mode);
mot* attribut_ecrit_6(Objet* o, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                      int e5, int o5, int e6, int o6, const reel* v, int nv, int mode);
int attribut_enleve_1(Objet* o, bool affiche, int e1, int o1);
int attribut_enleve_2(Objet* o, bool affiche, int e1, int o1, int e2, int o2);
int attribut_enleve_3(Objet* o, bool affiche, int e1, int o1, int e2, int o2, int e3, int o3);
int attribut_enleve_4(Objet* o, bool affiche, int e1, int o1, int e2, int o2, int e3, int o3,
                      int e4, int o4);
int attribut_enleve_5(Objet* o, bool affiche, int e1, int o1, int e2, int o2, int e3, int o3,
                      int e4, int o4, int e5, int o5);
int attribut_enleve_6(Objet* o, bool affiche, int e1, int o1, int e2, int o2, int e3, int o3,
                      int e4, int o4, int e5, int o5, int e6, int o6);

// Allocates an attribute of n words (unfilled) and appends it to the
// object's list, making the list if there is none. Null on failure.
mot* attribut_nouveau(Objet* o, mot n);
// Copies the saved attribute (e, -ord) over (e, ord); both must exist and
// have the same length, else null.
mot* attribut_restaure(Objet* o, int e, int ord);
bool attributs_egaux(const mot* a, const mot* b);
bool attribut_oppose(const mot* a, const mot* b);  // first ordinal negated, rest equal
// Appends a pointer to the object's list: its word position, or -1.
int liste_ajoute(Objet* o, mot* ptr);
// A zeroed list of n pointers set as the object's data. The previous data,
// if any, is the caller's to release.
mot* liste_cree(Objet* o, int n);

// Pair builders: fill the form A header of b (tag, H, n, pairs); give H.
int phrase_paires(mot* b, int n, const mot* paires);
int phrase_chaine(mot* b, int n, const mot* clauses);
int phrase_1(mot* b, int e1, int o1);
int phrase_2(mot* b, int e1, int o1, int e2, int o2);
int phrase_3(mot* b, int e1, int o1, int e2, int o2, int e3, int o3);
int phrase_4(mot* b, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4);
int phrase_5(mot* b, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4, int e5,
             int o5);
int phrase_6(mot* b, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4, int e5,
             int o5, int e6, int o6);

// ---- generic creation ------------------------------------------------------
// From a sentence beginning with the type keyword: creates the object and
// pushes the phrase on the command stack. 0 done; -1 failure (reported);
// -16 command stack full (dropped); 1 when the phrase is for the attribute
// routine; an env number above 1 when it belongs to an application list.
constexpr int POUR_ATTRIBUT = 1;
int objet_cree_phrase(mot* phrase);

// ---- reports that print an object ----------------------------------------
void objet_imprime(const Objet* o);
void erreur_objet(const Objet* o, int n, const char* s, mot* bloc, int i, int env, int num);
void erreur_nom(const Objet* o, int env, int num, const char* texte);
void erreur_nul(const Objet* o);
void erreur_usage(const Objet* o);
void erreur_element(mot* bloc, int i);
