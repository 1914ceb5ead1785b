// Private to the language folder: the state of one compilation and the
// helpers that the passes share.
#pragma once
#include <cstring>
#include <string>
#include <vector>

#include "core/message.h"
#include "core/objet.h"
#include "lang/lang.h"
#include "startup/startup.h"

// Inner result codes: failures are reported where they are found (-1); an
// overflow of a work area (-18) restarts the compilation with more room.
constexpr int DEBORDE = CODE_COMPILE;
// Words kept free at the end of each half of the buffer.
constexpr long MARGE = 120;
// Ceilings: past them the workspace is exhausted, not doubled again.
constexpr long TAILLE_MAX_CODE = 1L << 25;
constexpr long TAILLE_MAX_SYMBOLES = 1L << 25;
// -0.0: the 0 that pass 2 puts ahead of a unary minus, so that pass 3 binds
// that minus to its operand alone.
constexpr mot ZERO_UNAIRE = static_cast<mot>(0x80000000u);
// Deepest nesting of brackets and bodies; past it message 2.
constexpr int IMBRICATION_MAX = 200;

// A node of an expression while pass 3 brackets its operators.
struct Noeud {
  enum Sorte : unsigned char { FEUILLE, BINAIRE, PREFIXE, POSTFIXE, INDEX, RESTE } sorte;
  int a, b;        // FEUILLE, RESTE: item range in the input; others: op position
  int g = -1, d = -1;  // children
};

// A step of the writer of a bracketed tree: the node, how many of its
// children are written, and whether it is the root (written bare).
struct Tache {
  int noeud;
  int etape;
  bool racine;
};

// The work areas of one nesting level; reused by the next compilation at
// that level.
struct Espace {
  std::vector<mot> code;
  std::vector<mot> sym;
  std::vector<Noeud> noeuds;
  std::vector<Tache> taches;
};

// Writes words into [p, fin); past fin nothing is written and the overflow
// flag is raised, which restarts the compilation once the stage is over.
struct Mots {
  mot* debut;
  mot* p;
  mot* fin;
  bool deborde = false;
};
inline bool mots_place(Mots& s, long n) {
  if (s.p + n > s.fin) {
    s.deborde = true;
    return false;
  }
  return true;
}
inline void met_paire(Mots& s, mot a, mot b) {
  if (!mots_place(s, 2)) return;
  s.p[0] = a;
  s.p[1] = b;
  s.p += 2;
}
inline void met_mots(Mots& s, const mot* m, long n) {
  if (!mots_place(s, n)) return;
  std::memcpy(s.p, m, sizeof(mot) * n);
  s.p += n;
}

// The same for bytes of text; one byte is kept for the closing NUL.
struct Octets {
  char* debut;
  char* p;
  char* fin;
  bool deborde = false;
};
inline void met(Octets& s, char c) {
  if (s.p >= s.fin) {
    s.deborde = true;
    return;
  }
  *s.p++ = c;
}
inline void met_n(Octets& s, const char* t, long n) {
  if (s.p + n > s.fin) {
    s.deborde = true;
    return;
  }
  std::memcpy(s.p, t, n);
  s.p += n;
}
inline void termine(Octets& s) { *s.p = 0; }

struct Compil {
  Objet* objet = nullptr;
  bool fonction = false;  // type a6: a head, locals, retour at the end
  int numero = 0;         // the function's number, which its statics bear
  int niveau = 0;         // nesting of compilations
  Espace* espace = nullptr;
  // The code buffer in two halves: the text of pass 1 and the sweeps of
  // pass 3 move between them.
  long moitie = 0;
  mot* A = nullptr;
  mot* B = nullptr;
  // Symbol run: word 0 of the area is kept for M, entries from word 1.
  long sym_haut = 1;
  int nb_locaux = 0, nb_statiques = 0, nb_globaux = 0, nb_appels = 0, nb_etiquettes = 0,
      nb_macros = 0;
  int nb_formels = 0;
  int ligne = 0;         // last line mark seen
  int imbrication = 0;   // recursion guard of the passes
  const char* source = nullptr;
  std::size_t source_lg = 0;
  long code_lg = 0;  // L, once pass 3 is over
  const mot* derniers = nullptr;  // the last complete run of words, for BUG
};

inline mot taille_item(const mot* p) { return p[0] < 0 ? 2 : p[0]; }
inline bool est_op(const mot* p, mot v) { return p[0] == CEL_OP && p[1] == v; }
inline bool est_ouvrant(const mot* p) {
  return p[0] == CEL_OP && (p[1] == '(' || p[1] == '[' || p[1] == '{');
}
inline bool est_fermant(const mot* p) {
  return p[0] == CEL_OP && (p[1] == ')' || p[1] == ']' || p[1] == '}');
}
inline mot fermant_de(mot o) { return o == '(' ? ')' : o == '[' ? ']' : '}'; }
inline bool est_variable(mot k) {
  return k == CEL_LOCAL || k == CEL_STATIQUE || k == CEL_GLOBAL || k == CEL_REF_LOCAL ||
         k == CEL_REF_STATIQUE || k == CEL_REF_GLOBAL;
}
inline bool est_appel(const mot* p) {
  return p[0] > 0 && (p[1] == BLOC_APPEL || p[1] == BLOC_APPEL_FORMEL);
}
// The item behind the group that opens at p, bounded by fin.
const mot* fin_groupe(const mot* p, const mot* fin);
int niveau_trace();

// ---- keywords (vocabulaire.cpp) --------------------------------------------
// The keyword a name spells: the statement keywords of list "a" first, so
// that a later ordinal of the same spelling does not hide them, then every
// name in the order of the tables.
MotCle* mot_lang(const char* nom, int lg);
// True when the name is one of the spellings of (0, ordinal).
bool nom_de_a(const char* nom, int lg, int ordinal);
int ordinal_a(const MotCle* m);  // the ordinal of a list "a" keyword, else -1
mot entree_mot(int env, int ordinal);  // arena word of the record, or 0

// ---- symbols (symboles.cpp) ---------------------------------------------------
// Offset of the entry of that kind and name in the run, or 0.
long sym_cherche(Compil& c, mot sorte, const char* nom);
long sym_cherche_index(Compil& c, mot sorte, mot index);
// The name the user wrote for a variable or call item of the code being
// compiled, or null for other items.
const char* sym_nom_item(Compil& c, const mot* p);
// Adds an entry, with one or two copies of a value block; its offset, or
// DEBORDE/-1.
long sym_ajoute(Compil& c, mot sorte, const char* nom, const mot* valeur, int copies);
// Gives the entry at off a new value: same kind, index and name.
long sym_remplace(Compil& c, long off, const mot* valeur, int copies);
inline mot* sym_entree(Compil& c, long off) { return c.espace->sym.data() + off; }
inline const char* sym_nom(const mot* e) { return reinterpret_cast<const char*>(e + 5); }
inline mot* sym_valeur(mot* e) { return e[0] > 4 + e[4] ? e + 4 + e[4] : nullptr; }

// ---- pass 1 -------------------------------------------------------------------
int passe1(Compil& c);
int etape_inclusion(Compil& c, const char* src, Octets& dst, int* inclus);
int etape_canonique(Compil& c, const char* src, Octets& dst);
int etape_macros(Compil& c, const char* src, Octets& dst);
// Reads "#define name text" at p (on the "#"); stores it in the function's
// run, or in the global table when c is null. The cursor moves to the end of
// the line.
int define_lit(Compil* c, const char** p);
// Text of the macro of that name, global ones first; null if none.
const char* macro_texte(Compil& c, const char* nom, int lg, int* n);
// Pieces of text, each helper standing on the piece's first byte. A string
// before the canonical stage keeps its backslash pairs (null: not closed);
// after it the next quote ends it.
const char* saute_chaine(const char* p);
const char* saute_chaine_norm(const char* p);
const char* saute_vecteur(const char* p);
const char* saute_champ(const char* p);
int long_nom_champ(const char* p);  // length of the name in the field at p
const char* saute_marque(const char* p);
const char* fin_nombre(const char* p);
bool debut_nombre(const char* p);
bool debut_de_mot(const char* debut, const char* p);
// Text of a name in the normalised text ends at these and at quotes.
inline bool fin_nom_lang(unsigned char c) { return est_fin_nom(c) || c == '~' || c == '"'; }

// ---- pass 2 -------------------------------------------------------------------
int passe2(Compil& c);
// A list of externe or statique declarations; *seul tells it was empty.
int lire_declarations(Compil& c, const char** p, mot sorte, bool* seul);
// A compiled and run declaration value: a new value block, or null.
mot* valeur_calculee(Compil& c, const char* debut, const char* fin);

// ---- pass 3 -------------------------------------------------------------------
int passe3(Compil& c);
int balayage_formes(Compil& c, const mot* in, const mot* fin, Mots& s);
int balayage_mots(Compil& c, const mot* in, const mot* fin, Mots& s);
int balayage_operateurs(Compil& c, const mot* in, const mot* fin, Mots& s);
int priorite(mot op);  // 0 when op is no binary operator

// ---- reports ------------------------------------------------------------------
// Context of a failure: the function's name, the line and its source text,
// then message 107.
void echec_contexte(const Objet* o, int ligne);
// Prints the items of a code run from word 4 (PASSE 2, PASSE 3, BUG, LINK).
void lister_mots(const mot* code);
const char* nom_objet(const Objet* o, char* tampon, int taille);
int decalage_lignes(const Objet* o);

// ---- link ----------------------------------------------------------------------
int lier_controle(Objet* o, mot* code);
