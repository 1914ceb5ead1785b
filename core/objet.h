// The object table: every named thing of the language is an Objet, whose
// type is a keyword ordinal (or a negative kind) and whose attributes are
// Blocs keyed by keyword pairs.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "core/bloc.h"

struct Objet {
  std::int32_t numero;
  char* nom;
  mot* donnees;
  mot* code;
  std::int16_t env;
  std::int16_t type;  // 0: free entry
  std::uint16_t sous_type;
  std::uint16_t f1, f2, f3, f4;
  std::uint32_t marque;
};

// Negative kinds of objects.
enum : std::int16_t {
  OBJ_LOCAL = -1004,
  OBJ_STATIQUE = -1005,
  OBJ_GLOBAL = -1006,
  OBJ_ALIAS = -1008,
  OBJ_TRANSITOIRE = -1012,
  OBJ_LIGNE = -1015,
  OBJ_MARQUE1 = -1027,
  OBJ_MARQUE2 = -1039,
  OBJ_REF_LOCAL = -1056,
};

// The type number that means "the object the interpreter has selected".
constexpr int TYPE_COURANT = 101;
extern Objet* objet_courant;

// ---- creation and finding ----------------------------------------------
Objet* objet_cree(int env, int type, int sous_type, const mot* donnees, const char* nom, int numero);
Objet* objet_cree_arg(int env, int type, mot* args, int i);
Objet* objet_duplique(const Objet* o);
Objet* objet_trouve(int type, int sous_type, int numero, const char* nom);
Objet* objet_trouve_arg(int env, int type, mot* args, int i);
Objet* objet_trouve2(int type, int sous_type, mot* args, int i);
Objet* fonction_trouve(const char* nom);
Objet* objet_resout(Objet* o);
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

// ---- attributes: form A phrases keyed by 1 to 6 keyword pairs ------------
// A key is given as n pairs (env, ordinal) laid end to end in `paires`.
mot* attribut_trouve(mot* liste, int n, const mot* paires);
mot* attribut_trouve_pos(Objet* o, int* pos, int n, const mot* paires);
mot* attribut_valeur(mot* liste, int n, const mot* paires);
mot* attribut_ecrit(Objet* o, int n, const mot* paires, const reel* v, int nv, int mode);
mot* attribut_nouveau(Objet* o, mot n);
int attribut_enleve(Objet* o, bool affiche, int n, const mot* paires);
mot* attribut_restaure(Objet* o, int e, int ord);
bool attributs_egaux(const mot* a, const mot* b);
bool attribut_oppose(const mot* a, const mot* b);
int liste_ajoute(Objet* o, mot* ptr);
mot* liste_cree(Objet* o, int n);
// Fills the form A header of b (tag, H, n, pairs); returns H.
int phrase_paires(mot* b, int n, const mot* paires);

// Generic creation from a sentence beginning with the type keyword:
// 0, -1, -16, or an env number above 1 when the phrase is not for it.
int objet_cree_phrase(mot* phrase);

// ---- reports that print an object ----------------------------------------
void objet_imprime(const Objet* o);
void erreur_objet(const Objet* o, int n, const char* s, mot* bloc, int i, int env, int num);
void erreur_nom(const Objet* o, int env, int num, const char* texte);
void erreur_nul(const Objet* o);
void erreur_usage(const Objet* o);
void erreur_element(mot* bloc, int i);

// ---- the user's message tables ---------------------------------------------
int messages_utilisateur(mot* phrase);  // the command: print, load or look up
int message_utilisateur_charge(const char* nom, std::string_view texte);
// Text of message n of the named table, field k (< 0: whole text) into dst.
int message_utilisateur(const char* nom, int n, int k, std::string& dst);
