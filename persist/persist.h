// Object files: objects of the table saved and loaded in three forms (the
// binary memory image of their attributes, a keyword text that can be read
// and written by hand, and an "exec" program that rebuilds them), function
// files, scenes and views; the search of a file by name and the question
// before a file is overwritten.
//
// A load never leaves the table half changed: every object of a file is
// read into a side table first, and only a file read to its end without a
// fault replaces what the table holds.
#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "core/bloc.h"
#include "core/objet.h"

// ---- forms and options -------------------------------------------------------
// The form is the ordinal of its keyword in env 0: a1 `texte` (ASCII), a69
// `exec`; 0 is the binary form.
constexpr int FORME_BINAIRE = 0, FORME_ASCII = 1, FORME_EXEC = 69;
// Types that only files know: a scene gathers b4, b24 and b114.
constexpr int B_SCENE = 8;
constexpr int B_ZBU = 25, B_IMA_TYPE = 28, B_ALE = 59, B_EXEC_TYPE = 69, B_BRO_TYPE = 120, B_MEM_TYPE = 148,
              B_ALP_TYPE = 152;

// Which attributes a save leaves out (see filtre.cpp): 1 geometry only,
// -1 also the dynamic state, 2 everything.
constexpr int FILTRE_NORMAL = 0, FILTRE_GEOMETRIE = 1, FILTRE_NEGATIF = -1, FILTRE_TOUT = 2;

struct OptionsFichier {
  int forme = FORME_BINAIRE;
  bool compresse = false;  // "Z": a gzip stream
  bool court = false;      // "short": vertices and faces as 16-bit integers
  int filtre = FILTRE_NORMAL;
  int demande = 0;         // search and overwrite mode of ouvre
  bool remplace = true;    // a load deletes the type's objects first
  bool seul = false;       // a load replaces the vertices of existing objects only
  int decalage = 0;        // added to the numbers read
};

// ---- names and search ----------------------------------------------------------
// The extension of a type's file in a form: "vol", "ascii.vol", "exec.vol";
// a type outside the table gives the prefix alone ("ascii", "exec", "").
std::string extension_type(int type, int forme);
// The plain text reader's extension by env 0 keyword: 1 "h", 6 "fon",
// 21 "var", 63 "com", 105 "his", 106 "typ", 107 "ali", 22 none; any other
// ordinal takes the type table with no prefix.
std::string extension_texte(int ordinal);

// Where `ouvre` looks, by `demande`:
//   -3        the name as given, once;
//   -2, -1    the environment directory only;
//   2         current, user, environment directory, silent on failure;
//   33        the same search, testing existence only (no file opened);
//   0, other  current, user, environment directory.
// A name that begins with "." is taken in the current directory only.
// Writing looks in the current directory (or as given), and with demande 0
// an existing file is overwritten only after the console says so: the
// path, message 0:38, a line read; a reply that begins with a newline,
// "0" or "n" prints 0:8 and gives 0. 1: the path of the file in *chemin
// (opened, or found with 33); 0 refused; -1 not found (message 0:36 unless
// demande is 2 or 33).
int ouvre(std::string_view ext, std::string_view nom, bool ecriture, int demande, std::string* chemin);

// ---- objects ----------------------------------------------------------------------
// Saves the objects of a type (all, or those whose numbers are given) to
// nom + "." + its extension. The bytes written, 0 when the question
// refused, -1 after a message.
int objets_ecrit(int type, std::string_view nom, std::span<const int> numeros, const OptionsFichier& opt);
// Loads a file of a type; the number of objects read, or -1 after a
// message with the table as it was.
int objets_lit(int type, std::string_view nom, const OptionsFichier& opt);

// The same on a path already found, for the readers of every form.
int objets_lit_chemin(int type, const std::string& chemin, const OptionsFichier& opt);

// ---- views --------------------------------------------------------------------------
// A view (b114) holds an eye in its attributes: b9 oeil, b10 vise, b11
// foc, b12 roul, b13 projection and fui, b18 near and far planes.
Objet* vue_depuis_oeil(int numero);  // a new view of the current eye
void vue_vers_oeil(const Objet* vue);  // the current eye from a view

// ---- functions -----------------------------------------------------------------------
// Writes the texts of the functions (all, or those named in `noms`,
// blank-separated) to nom.fon, or with `bloc` to nom.sta: byte 1, then the
// texts as one string Bloc. Bytes written, 0 refused, -1 after a message.
int fonctions_ecrit(std::string_view nom, std::string_view noms, bool bloc, int demande);
// Reads nom.sta (or nom.fon) into functions, as the function store does:
// macros emptied, link when asked, "doc" run. Functions read, or -1.
int fonctions_lit_fichier(std::string_view nom, bool avec_lien);

// ---- the language ------------------------------------------------------------------------
// Registers the handlers of `lire` (a14) and `ecrire` (a33) in the command
// dispatch. Image files (b28) stay with their own folder, except the text
// and exec forms of image objects (`ima texte`, `ima exec`).
void persist_enregistre();
// The handler itself, for the tests: a phrase on the evaluation stack.
int persist_commande(mot* bloc, mot* valeur, const mot* limite);
