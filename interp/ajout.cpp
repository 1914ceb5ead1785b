// s = s, t as a statement, s a string that the variable owns and t a string:
// the text of t goes behind s in s's own block, which keeps spare room, so
// that a loop of appends is linear instead of copying s three times a turn.
//
// The block stays what a string block is, [long_chaine(n), BLOC_CHAINE, 1,
// 1, text, NUL], the general way's result word for word; only its
// allocation may be larger than its first word says, which no reader looks
// at. The length of s is known without strlen when the pass just before
// this one was the same append to the same block: nothing else can have
// written into the text in between. After any other pass it is measured.
// The statement's value is the variable, as after any store (laisse_variable):
// whoever reads it reads the string.
#include <cstring>

#include "interp/interne.h"

namespace {
struct Connu {
  const mot* bloc = nullptr;
  mot longueur_mots = 0;
  std::size_t lg = 0;
  unsigned long passe = 0;
};
Connu connu;

// The variable of a two-word item, when it owns its block (for writing) or
// has one (for reading). A static is left to the general way: its block is
// not always one of the allocator's own.
Objet* variable_item(const mot* it, bool ecriture) {
  Objet* o;
  switch (it[0]) {
    case IT_LOCAL:
      if (!cadre.locaux) return nullptr;
      o = cadre.locaux + it[1];
      if (o->type != OBJ_LOCAL || (ecriture && !o->f1)) return nullptr;
      return o;
    case IT_GLOBAL:
      return static_cast<Objet*>(mot_vers_ptr(it[1]));
    case IT_STATIQUE:
      return ecriture ? nullptr : static_cast<Objet*>(mot_vers_ptr(it[1]));
  }
  return nullptr;
}

inline bool chaine(const mot* b) { return b && b != bloc_nil && b[0] > 4 && b[1] == BLOC_CHAINE; }
}  // namespace

mot* ajout_en_place(mot* p, mot* resultat) {
  // ( V = ( V , S ) ), S a string constant or a variable, bare or in brackets.
  if (p[0] != IT_OP || p[1] != '(' || (p[2] != IT_LOCAL && p[2] != IT_GLOBAL) || !forme_ajout(p)) return nullptr;
  mot* s = p + 12;
  // The constant comes in brackets of its own: ( "b" ).
  bool entre = s[0] == IT_OP && s[1] == '(';
  if (entre) s += 2;
  const mot* sb;
  mot* suite;
  if (s[0] > 4 && s[1] == BLOC_CHAINE) {
    sb = s;
    suite = s + s[0];
  } else if (s[0] == IT_LOCAL || s[0] == IT_GLOBAL || s[0] == IT_STATIQUE) {
    Objet* so = variable_item(s, false);
    sb = so ? so->donnees : nullptr;
    suite = s + 2;
  } else {
    return nullptr;
  }
  if (entre) {
    if (suite[0] != IT_OP || suite[1] != ')') return nullptr;
    suite += 2;
  }
  if (suite[0] != IT_OP || suite[1] != ')' || suite[2] != IT_OP || suite[3] != ')') return nullptr;
  Objet* o = variable_item(p + 2, true);
  mot* b = o ? o->donnees : nullptr;
  if (!chaine(b) || !chaine(sb) || sb == b || place(resultat, 2) == false) return nullptr;

  const char* src = bloc_texte(const_cast<mot*>(sb));
  std::size_t ls = std::strlen(src);
  std::size_t lg = connu.bloc == b && connu.longueur_mots == b[0] && connu.passe + 1 == interp.passes
                       ? connu.lg
                       : std::strlen(bloc_texte(b));
  std::size_t n = lg + ls;
  mot lm = long_chaine(n);
  if (static_cast<std::size_t>(lm) * sizeof(mot) > tas::capacite(b)) {
    // Half as much again as needed: the appends that follow fit.
    mot* c = bloc_alloue(lm + lm / 2 + 4);
    if (!c) return nullptr;
    std::memcpy(c + 1, b + 1, 3 * sizeof(mot));
    std::memcpy(bloc_texte(c), bloc_texte(b), lg);
    bloc_libere(b);
    o->donnees = b = c;
  }
  std::memcpy(bloc_texte(b) + lg, src, ls + 1);
  b[0] = lm;
  b[1] = BLOC_CHAINE;
  b[2] = 1;
  b[3] = 1;
  connu = {b, lm, n, interp.passes};
  resultat[0] = IT_GLOBAL;
  resultat[1] = ptr_vers_mot(o);
  piles.eva_haut = resultat + 2;
  return suite + 4;
}
