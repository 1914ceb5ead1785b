// Pass 3, second sweep: keywords and calls are bound to their arguments.
// A call's bracket becomes one group per argument; a keyword whose argument
// has no bracket gets one around it.
#include "lang/interne.h"

namespace {
struct Liens {
  Compil& c;
  Mots& s;
};

inline void op(Liens& l, mot v) { met_paire(l.s, CEL_OP, v); }

bool est_affectation(const mot* p) { return p[0] == CEL_OP && priorite(p[1]) == 3; }

// What may begin the argument of a keyword written without brackets: an
// operand, or a prefix operator in front of one.
bool debut_argument(const mot* p) {
  if (p[0] > 0) return p[1] == BLOC_CHAINE || p[1] == BLOC_REEL || est_appel(p);
  return p[0] == CEL_REEL || p[0] == CEL_PI || p[0] == CEL_NIL || est_variable(p[0]) || est_op(p, '[') ||
         est_op(p, '!') || est_op(p, OP_TILDE) || est_op(p, OP_INCR) || est_op(p, OP_DECR);
}

// Such an argument runs to the next "=", ";", closing bracket or sinon.
const mot* fin_argument(const mot* p, const mot* b) {
  while (p < b) {
    if (est_ouvrant(p)) {
      p = fin_groupe(p, b);
      continue;
    }
    if (est_affectation(p) || est_op(p, ';') || est_fermant(p) || est_op(p, OP_SINON)) break;
    p += taille_item(p);
  }
  return p;
}

int groupe(Liens& l, const mot* a, const mot* b);

int entoure(Liens& l, const mot* a, const mot* b) {
  op(l, '(');
  if (int r_ = groupe(l, a, b); r_ < 0) return r_;
  op(l, ')');
  return 0;
}

// A bracket group: its opener, its inside bound, its own closer.
int sous_groupe(Liens& l, const mot*& p, const mot* b) {
  const mot* g = fin_groupe(p, b);
  met_mots(l.s, p, 2);
  const mot* fin = est_fermant(g - 2) && g - 2 > p ? g - 2 : g;
  if (int r_ = groupe(l, p + 2, fin); r_ < 0) return r_;
  if (fin < g) met_mots(l.s, fin, 2);
  p = g;
  return 0;
}

int appel(Liens& l, const mot*& p, const mot* b) {
  mot tete[4] = {p[0], p[1], p[2], 0};
  const mot* q = p + p[0];
  if (!(q < b && est_op(q, '('))) {
    met_mots(l.s, tete, 4);
    p = q;
    return 0;
  }
  const mot* g = fin_groupe(q, b);
  const mot* d = q + 2;
  const mot* e = est_fermant(g - 2) ? g - 2 : g;
  // The arguments, separated by the commas of the first level.
  const mot* bornes[256];
  int n = 0;
  bool rien = true;
  bornes[0] = d;
  for (const mot* r = d; r < e;) {
    if (est_ouvrant(r)) {
      r = fin_groupe(r, e);
      rien = false;
      continue;
    }
    if (est_op(r, ',')) {
      if (n >= 254) {
        message(0, M_LONG);
        return -1;
      }
      bornes[++n] = r + 2;
    } else if (r[0] != CEL_LIGNE) {
      rien = false;
    }
    r += taille_item(r);
  }
  bornes[++n] = e + 2;
  if (rien && n == 1) n = 0;
  tete[3] = n;
  met_mots(l.s, tete, 4);
  for (int i = 0; i < n; ++i)
    if (int r_ = entoure(l, bornes[i], bornes[i + 1] - 2); r_ < 0) return r_;
  p = g;
  return 0;
}

int groupe(Liens& l, const mot* a, const mot* b) {
  if (++l.c.imbrication > IMBRICATION_MAX * 4) {
    message(0, M_LONG);
    return -1;
  }
  for (const mot* p = a; p < b;) {
    if (l.s.deborde) return DEBORDE;
    if (est_appel(p)) {
      if (int r_ = appel(l, p, b); r_ < 0) return r_;
    } else if (p[0] == CEL_MOT) {
      met_mots(l.s, p, 2);
      p += 2;
      if (p >= b || est_op(p, '(')) continue;
      if (est_op(p, '-')) {
        const mot* e = fin_argument(p, b);
        op(l, '(');
        met_paire(l.s, CEL_REEL, 0);
        if (int r_ = groupe(l, p, e); r_ < 0) return r_;
        op(l, ')');
        p = e;
      } else if (debut_argument(p)) {
        const mot* e = fin_argument(p, b);
        if (int r_ = entoure(l, p, e); r_ < 0) return r_;
        p = e;
      }
    } else if (est_variable(p[0]) && p + 2 < b && est_ouvrant(p + 2)) {
      op(l, '(');
      met_mots(l.s, p, 2);
      p += 2;
      if (int r_ = sous_groupe(l, p, b); r_ < 0) return r_;
      op(l, ')');
    } else if (est_ouvrant(p)) {
      if (int r_ = sous_groupe(l, p, b); r_ < 0) return r_;
    } else {
      met_mots(l.s, p, taille_item(p));
      p += taille_item(p);
    }
  }
  --l.c.imbrication;
  return 0;
}
}  // namespace

// Walks the statement level: only its bracket groups hold expressions.
int balayage_mots(Compil& c, const mot* in, const mot* fin, Mots& s) {
  Liens l{c, s};
  c.imbrication = 0;
  for (const mot* p = in; p < fin && p[0] != 0;) {
    if (s.deborde) return DEBORDE;
    if (est_op(p, '(')) {
      if (int r_ = sous_groupe(l, p, fin); r_ < 0) return r_;
    } else {
      if (p[0] == CEL_LIGNE) c.ligne = p[1];
      met_mots(s, p, taille_item(p));
      p += taille_item(p);
    }
  }
  return s.deborde ? DEBORDE : 0;
}
