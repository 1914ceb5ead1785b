// The Bloc: a self-describing run of 32-bit words, the arena that holds every
// Bloc, and the four pools sized at start-up.
//
//   word 0  length in words, header included (negative: two-word cell or
//           protected Bloc; 0: empty slot or end of a chain)
//   word 1  tag
//   word 2  rows (nl)      word 3  columns (nc)      body from word 4
#pragma once
#include <bit>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

using mot = std::int32_t;

// Tags. One number space serves Bloc tags, object types and code cells.
enum : mot {
  BLOC_NIL = -22,
  BLOC_CHAINE = -1000,
  BLOC_REEL = -1002,
  BLOC_LISTE = -1007,
  BLOC_BLOCS = -1013,
  BLOC_LIGNE = -1015,
  BLOC_OBJET = -1037,
  BLOC_NOM = -1038,
  BLOC_PHRASE = -1039,
  BLOC_OBJETS = -1043,
  BLOC_ENTIER = -1048,
  CELLULE_OBJET = -1051,  // two-word cell [kind, object pointer]
  BLOC_MATRICE = -1053,
  BLOC_COURT = -1055,
  BLOC_FONCTION = 6,  // text of a function (the ordinal a6 used as a tag)
  BLOC_IMAGE = 28,    // image (the ordinal b28 used as a tag)
};

// Floats live in words; they cross through bit_cast so that no pointer cast
// breaks aliasing.
inline float lit_reel(const mot* p) { return std::bit_cast<float>(*p); }
inline void ecrit_reel(mot* p, float x) { *p = std::bit_cast<mot>(x); }
inline mot reel_mot(float x) { return std::bit_cast<mot>(x); }
// A view of words as floats for the loops over vectors: the type may alias
// the words, so the same memory can be read both ways.
typedef float reel __attribute__((may_alias));
inline reel* reels(mot* p) { return reinterpret_cast<reel*>(p); }
inline const reel* reels(const mot* p) { return reinterpret_cast<const reel*>(p); }

// ---- floats that become integers ---------------------------------------
// Language values are floats; a count, an index or a number is their
// truncation toward zero. Converting a float outside the int32 range is
// undefined in C++, so no code casts one directly: the checked form
// (entier_de, with the core's messages) refuses what does not fit, and the
// clamped form serves element-wise data (bit operators, bytes) that must
// give some integer for every float.
constexpr float REEL_ENTIER_MIN = -2147483648.0f;  // -2^31, exact
constexpr float REEL_ENTIER_FIN = 2147483648.0f;   // 2^31: first float past int32
// True, with the truncation in *n, when x is finite and truncates into
// [min, max].
inline bool reel_entier(float x, mot* n, mot min = INT32_MIN, mot max = INT32_MAX) {
  if (!(x >= REEL_ENTIER_MIN && x < REEL_ENTIER_FIN)) return false;  // NaN fails too
  mot t = static_cast<mot>(x);
  if (t < min || t > max) return false;
  *n = t;
  return true;
}
// Clamped into int32; NaN gives INT32_MIN.
inline mot entier_sature(float x) {
  if (!(x >= REEL_ENTIER_MIN)) return INT32_MIN;
  return x < REEL_ENTIER_FIN ? static_cast<mot>(x) : INT32_MAX;
}

// ---- random numbers --------------------------------------------------
// One stream for the whole language (the C library's generator). The table
// of n floats in [0, 1) holds its first n draws after start; every other
// draw comes after them, whatever the order of the first uses.
void hasard_table_prevue(float* table, int n);  // at start; filled at first use
const float* hasard_table(int* n);               // null, *n = 0 when there is none
int hasard();                                    // as std::rand()
void hasard_graine(unsigned graine);

// ---- arena -----------------------------------------------------------
// Every Bloc, pool and table whose address may end up in a word lives in
// one 4 GiB reservation; a word holds the offset from its base, 0 = null.
namespace tas {
extern char* base;
bool init();  // idempotent; false if the reservation failed
void* alloue(std::size_t octets);
void libere(void* p);
// Bytes that an allocation can hold, at least those asked for: a block may
// grow in place up to them (a string appended to, say).
std::size_t capacite(const void* p);
// Faults in at once the whole pages of a block of at least 8 KiB: fresh
// memory that is about to be filled costs one call instead of one fault per
// page (some 20 us each on a virtual machine). Smaller blocks: nothing.
void prefaute(void* p);
}  // namespace tas

inline void* mot_vers_ptr(mot w) {
  return w ? tas::base + static_cast<std::uint32_t>(w) : nullptr;
}
inline mot ptr_vers_mot(const void* p) {
  return p ? static_cast<mot>(static_cast<std::uint32_t>(static_cast<const char*>(p) - tas::base))
           : 0;
}
inline mot* bloc_pointe(mot w) { return static_cast<mot*>(mot_vers_ptr(w)); }

// State integers of each environment's keywords, filled by the keyword
// loader, with their counts; the core reads a34 (release switch) and a52
// (bell) through it.
extern mot* etats[8];
extern int nb_etats[8];
// The state of (env, ord), or `defaut` while no table holds it.
inline mot etat_ou(int env, int ord, mot defaut) {
  return ord < nb_etats[env] ? etats[env][ord] : defaut;
}

// ---- allocation --------------------------------------------------------
struct Memoire {
  long compteur = 0;             // allocations less releases
  long appels = 0;               // calls of bloc_alloue, ever
  void** mal = nullptr;          // debug table of live Blocs (key mal)
  long mal_dim = 0, mal_haut = 0;
};
extern Memoire memoire;

mot* bloc_alloue(mot n);
// The same without a word when memory is refused: for a faster way that
// then hands the work to the general one, which says it.
mot* bloc_essaie(mot n);
void bloc_libere(mot* b);
void bloc_libere_force(mot* b);
int bloc_supprime(mot* b);
bool mal_init(long dim);  // the debug table; false on allocation failure

// ---- copy and transform ----------------------------------------------
mot* bloc_copie(mot* dst, const mot* src);
mot* bloc_duplique(const mot* b);
mot* bloc_agrandit(mot* b, mot n);
mot* bloc_retaille(mot* b, mot ancien, mot nouveau);
int bloc_convertit(mot* dst, const mot* src);
int bloc_ajoute(mot* acc, const mot* limite, const mot* src, int i);
int bloc_compare_cle(const mot* a, const mot* b);
// The shared NIL value that unassigned locals point at.
extern mot* bloc_nil;

// ---- element access (1-based) ------------------------------------------
mot* bloc_element(mot* b, int i, mot* tag, mot* nc);
mot* bloc_ligne(mot* b, int i, int* n);
mot* bloc_vecteur(mot* b, int* n);
int vecteur_cherche(const mot* v, float x);
// Up to `max` numbers of a value (a float or integer scalar pair, or a float
// or integer Bloc) into x: how many; 0 for no value or NIL; -1 for anything
// else. A scalar counts 1 even when max is 0, so that callers can ask.
int bloc_nombres(const mot* v, float* x, int max);

// Length of a string Bloc holding s: header + (strlen / 4) + 1 words.
inline mot long_chaine(std::size_t lg) { return 4 + static_cast<mot>(lg / 4) + 1; }
inline char* bloc_texte(mot* b) { return reinterpret_cast<char*>(b + 4); }

// ---- pools ---------------------------------------------------------------
struct Objet;

struct Piles {
  Objet *loc_base = nullptr, *loc_haut = nullptr, *loc_fin = nullptr;
  mot *eva_base = nullptr, *eva_haut = nullptr, *eva_limite = nullptr;
  Objet *obj_base = nullptr, *obj_haut = nullptr, *obj_fin = nullptr;
  mot *emp = nullptr, *emp_haut = nullptr, *emp_fin = nullptr;
  long dim_loc = 0, dim_eva = 0, dim_obj = 0, dim_emp = 0;
};
extern Piles piles;

// Allocates the four areas in start-up order; returns 0, or 1 to 4 naming
// the first area that failed (locals, evaluation, objects, commands).
int piles_alloue(long loc, long eva, long obj, long emp);
void piles_reset();  // tops back to the bases

int emp_empile(const mot* phrase);  // 0, or -16 after dropping everything
int emp_reserve(mot n);             // room for n more words; -1 on failure
void emp_vide();
