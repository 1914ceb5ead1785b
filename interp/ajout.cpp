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
//
// The general way builds s, t on the evaluation stack before storing it, so
// a string too long for the stack fails there with its message. The append
// in place takes only results that the stack would hold, with room to
// spare, and leaves the others to that way, so that both fail alike.
#include "interp/ajout.h"

#include <algorithm>

namespace {
struct Connu {
  const mot* bloc = nullptr;
  mot longueur_mots = 0;
  std::size_t lg = 0;
  unsigned long passe = 0;
};
Connu connu;

// Words that the general way needs on the stack besides the result: the two
// operands' items and a few words of its own.
constexpr mot MARGE = 16;

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

// ( V = ( V , S ) ), S a string constant or a variable, bare or in
// brackets: the variable, where t's block pointer lives (a constant's own
// pointer in *k) and the item after the statement; null when not the shape.
Objet* forme(mot* p, const mot** k, mot* const** ps, mot** suite) {
  if (p[0] != IT_OP || p[1] != '(' || (p[2] != IT_LOCAL && p[2] != IT_GLOBAL) || !forme_ajout(p)) return nullptr;
  mot* s = p + 12;
  // The constant comes in brackets of its own: ( "b" ).
  bool entre = s[0] == IT_OP && s[1] == '(';
  if (entre) s += 2;
  if (s[0] > 4 && s[1] == BLOC_CHAINE) {
    *k = s;
    *ps = nullptr;
    *suite = s + s[0];
  } else if (s[0] == IT_LOCAL || s[0] == IT_GLOBAL || s[0] == IT_STATIQUE) {
    Objet* so = variable_item(s, false);
    if (!so) return nullptr;
    *k = so->donnees;
    *ps = &so->donnees;
    *suite = s + 2;
  } else {
    return nullptr;
  }
  mot* f = *suite;
  if (entre) {
    if (f[0] != IT_OP || f[1] != ')') return nullptr;
    f += 2;
  }
  if (f[0] != IT_OP || f[1] != ')' || f[2] != IT_OP || f[3] != ')') return nullptr;
  *suite = f + 4;
  return variable_item(p + 2, true);
}
}  // namespace

bool ajouts_prepare(Ajouts& a, mot* s, mot* resultat) {
  const mot* sb;
  mot* const* ps;
  mot* suite;
  Objet* o = forme(s, &sb, &ps, &suite);
  mot* b = o ? o->donnees : nullptr;
  if (!chaine(b) || !chaine(sb) || sb == b) return false;
  a.o = o;
  a.b = b;
  a.lg = connu.bloc == b && connu.longueur_mots == b[0] && connu.passe + 1 == interp.passes
             ? connu.lg
             : std::strlen(bloc_texte(b));
  a.cap = tas::capacite(b);
  a.src = bloc_texte(const_cast<mot*>(sb));
  a.ls = std::strlen(a.src);
  a.psrc = ps;
  a.sb = sb;
  a.suite = suite;
  const long reste = piles.eva_limite - resultat - long_chaine(a.ls) - MARGE;
  a.place = static_cast<mot>(std::clamp<long>(reste, 0, INT32_MAX));
  return place(resultat, 2);
}

bool ajouts_agrandit(Ajouts& a, mot n) {
  // Half as much again as needed, so that the appends that follow fit; the
  // bare need when that much is refused. Quietly: when neither is given,
  // the general way asks again and says so.
  mot* c = bloc_essaie(n + n / 2 + 4);
  if (!c) c = bloc_essaie(n);
  if (!c) return false;
  tas::prefaute(c);  // the text grows into it next
  std::memcpy(c + 1, a.b + 1, 3 * sizeof(mot));
  std::memcpy(bloc_texte(c), bloc_texte(a.b), a.lg + 1);
  c[0] = a.b[0];
  bloc_libere(a.b);
  a.o->donnees = a.b = c;
  a.cap = tas::capacite(c);
  return true;
}

void ajouts_fin(const Ajouts& a, mot* resultat) {
  a.b[1] = BLOC_CHAINE;
  a.b[2] = 1;
  a.b[3] = 1;
  connu = {a.b, a.b[0], a.lg, interp.passes};
  resultat[0] = IT_GLOBAL;
  resultat[1] = ptr_vers_mot(a.o);
  piles.eva_haut = resultat + 2;
}

mot* ajout_en_place(mot* p, mot* resultat) {
  Ajouts a;
  if (!ajouts_prepare(a, p, resultat) || !ajouts_tour(a)) return nullptr;
  ajouts_fin(a, resultat);
  return a.suite;
}
