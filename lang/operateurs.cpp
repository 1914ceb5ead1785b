// Pass 3, third sweep: the brackets of the operators. Each group is read by
// priority into a small tree and written back fully bracketed, so that the
// evaluator only reduces at each closing bracket: every group then holds one
// operand, a prefix operator and its operand, an operand and its postfix
// operator, two operands around an operator, or a keyword phrase.
#include <cstdio>

#include "lang/interne.h"

int priorite(mot o) {
  switch (o) {
    case '*': case '/': case '%': return 13;
    case '+': case '-': case ',': return 12;
    case OP_DECAL_G: case OP_DECAL_D: return 11;
    case '<': case '>': case OP_INF_EGAL: case OP_SUP_EGAL: return 10;
    case OP_EGAL_EGAL: case OP_DIFF: case OP_TILDE: return 9;
    case '&': return 8;
    case '^': return 7;
    case '|': return 6;
    case OP_ET: return 5;
    case OP_OU: return 4;
    case '=': case OP_PLUS_AFF: case OP_MOINS_AFF: case OP_MUL_AFF: case OP_DIV_AFF:
    case OP_MOD_AFF: case OP_PUIS_AFF: case OP_DECAL_G_AFF: case OP_DECAL_D_AFF:
    case OP_ET_AFF: case OP_OU_AFF: case OP_VIRG_AFF:
      return 3;
  }
  return 0;
}

namespace {
constexpr int PROFONDEUR_MAX = 4000;

struct Ops {
  Compil& c;
  Mots& s;
  std::vector<Noeud>& n;
  const mot* base;  // positions are offsets from here
  const mot* b;     // end of the group being read
  int profondeur = 0;
  int* gen;         // recursion guard shared by nested groups
};

inline int pos(Ops& o, const mot* p) { return static_cast<int>(p - o.base); }
inline const mot* at(Ops& o, int i) { return o.base + i; }

int noeud(Ops& o, Noeud::Sorte s, int a, int b, int g = -1, int d = -1) {
  o.n.push_back(Noeud{s, a, b, g, d});
  return static_cast<int>(o.n.size()) - 1;
}

// Items that take no part in the operators: they stay where they are.
bool transparent(const mot* p) {
  return p[0] == CEL_RC || p[0] == CEL_AIDE || p[0] == CEL_LIGNE || est_op(p, OP_NOP);
}

bool binaire(const mot* p) { return p[0] == CEL_OP && priorite(p[1]) > 0; }
bool prefixe(const mot* p) {
  return p[0] == CEL_OP && (p[1] == '!' || p[1] == OP_INCR || p[1] == OP_DECR || p[1] == OP_TILDE);
}

int mauvais(Ops& o, const mot* p, const mot* code) {
  // A variable or a call is shown by the word that was typed, not by the
  // slot the compiler gave it.
  if (const char* nom = sym_nom_item(o.c, p)) std::printf("%s ", nom);
  else lister_item(code, p);
  message(0, M_OPERATEUR);
  return -1;
}

int expression(Ops& o, const mot*& p, int min);
int unaire(Ops& o, const mot*& p);

int unaire_interne(Ops& o, const mot*& p) {
  const mot* d = p;
  while (p < o.b && transparent(p)) p += 2;
  if (p >= o.b) return noeud(o, Noeud::FEUILLE, pos(o, d), pos(o, p));
  int x;
  if (prefixe(p)) {
    const mot* op = p;
    p += 2;
    int y = unaire(o, p);
    if (y < 0) return -1;
    x = noeud(o, Noeud::PREFIXE, pos(o, op), 0, y);
  } else if (p[0] == CEL_REEL && p[1] == ZERO_UNAIRE && p + 2 < o.b && est_op(p + 2, '-')) {
    // Unary minus: 0 - x, binding as tightly as a prefix operator.
    int z = noeud(o, Noeud::FEUILLE, pos(o, p), pos(o, p + 2));
    const mot* op = p + 2;
    p += 4;
    int y = unaire(o, p);
    if (y < 0) return -1;
    x = noeud(o, Noeud::BINAIRE, pos(o, op), 0, z, y);
  } else {
    if (binaire(p) || est_fermant(p) || p[0] == 0) return mauvais(o, p, nullptr);
    if (est_ouvrant(p)) {
      p = fin_groupe(p, o.b);
    } else if (p[0] == CEL_MOT) {
      // A keyword phrase: keywords, each with its bracket.
      while (p < o.b && p[0] == CEL_MOT) {
        p += 2;
        if (p < o.b && est_op(p, '(')) p = fin_groupe(p, o.b);
      }
    } else if (est_appel(p)) {
      int n = p[3];
      p += p[0];
      for (int i = 0; i < n && p < o.b && est_op(p, '('); ++i) p = fin_groupe(p, o.b);
    } else {
      p += taille_item(p);
    }
    x = noeud(o, Noeud::FEUILLE, pos(o, d), pos(o, p));
  }
  // Postfix operators and index groups.
  while (p < o.b) {
    if (est_op(p, OP_INCR) || est_op(p, OP_DECR)) {
      x = noeud(o, Noeud::POSTFIXE, pos(o, p), 0, x);
      p += 2;
    } else if (est_op(p, '[') || est_op(p, '{')) {
      const mot* g = fin_groupe(p, o.b);
      int y = noeud(o, Noeud::FEUILLE, pos(o, p), pos(o, g));
      x = noeud(o, Noeud::INDEX, 0, 0, x, y);
      p = g;
    } else {
      break;
    }
  }
  return x;
}

int unaire(Ops& o, const mot*& p) {
  if (++*o.gen > PROFONDEUR_MAX) {
    message(0, M_LONG);
    return -1;
  }
  int x = unaire_interne(o, p);
  --*o.gen;
  return x;
}

int expression(Ops& o, const mot*& p, int min) {
  int g = unaire(o, p);
  if (g < 0) return -1;
  while (p < o.b) {
    const mot* q = p;
    while (q < o.b && transparent(q)) q += 2;
    if (q >= o.b) break;  // only items that stay where they are remain
    if (!binaire(q)) return mauvais(o, q, nullptr);
    int pr = priorite(q[1]);
    if (pr < min) break;
    p = q + 2;
    int d;
    if (pr == 3 || q[1] == ',') {
      // Assignments and "," take the whole right side as one group.
      d = noeud(o, Noeud::RESTE, pos(o, p), pos(o, o.b));
      p = o.b;
    } else {
      d = expression(o, p, pr + 1);
      if (d < 0) return -1;
    }
    g = noeud(o, Noeud::BINAIRE, pos(o, q), 0, g, d);
  }
  return g;
}

int groupe(Compil& c, Mots& s, const mot* a, const mot* b, int* gen);

// Items of a leaf, with the groups inside them bracketed in turn.
int plage(Ops& o, const mot* a, const mot* b) {
  for (const mot* p = a; p < b;) {
    if (est_ouvrant(p)) {
      const mot* g = fin_groupe(p, b);
      met_mots(o.s, p, 2);
      const mot* f = est_fermant(g - 2) && g - 2 > p ? g - 2 : g;
      if (int r_ = groupe(o.c, o.s, p + 2, f, o.gen); r_ < 0) return r_;
      if (f < g) met_mots(o.s, f, 2);
      p = g;
    } else if (p[0] == CEL_REEL && p[1] == ZERO_UNAIRE) {
      met_paire(o.s, CEL_REEL, 0);
      p += 2;
    } else {
      met_mots(o.s, p, taille_item(p));
      p += taille_item(p);
    }
  }
  return 0;
}

// Writes the tree below node i, bracketed. The walk keeps its own stack:
// a chain of left-associative operators (1+1+...+1) is as deep as it is
// long, and the machine's stack must not follow it.
int ecrit(Ops& o, int i, bool racine) {
  std::vector<Tache>& t = o.c.espace->taches;
  const std::size_t base = t.size();
  t.push_back(Tache{i, 0, racine});
  int r = 0;
  while (t.size() > base && r >= 0) {
    const std::size_t k = t.size() - 1;
    const Tache tk = t[k];
    const Noeud n = o.n[tk.noeud];
    auto ouvre = [&] {
      if (!tk.racine) met_paire(o.s, CEL_OP, '(');
    };
    auto ferme = [&] {
      if (!tk.racine) met_paire(o.s, CEL_OP, ')');
    };
    auto descend = [&](int fils) {
      ++t[k].etape;
      t.push_back(Tache{fils, 0, false});
    };
    switch (n.sorte) {
      case Noeud::FEUILLE:
        t.pop_back();
        r = plage(o, at(o, n.a), at(o, n.b));
        break;
      case Noeud::RESTE:
        t.pop_back();
        met_paire(o.s, CEL_OP, '(');
        r = groupe(o.c, o.s, at(o, n.a), at(o, n.b), o.gen);
        met_paire(o.s, CEL_OP, ')');
        break;
      case Noeud::BINAIRE:
        if (tk.etape == 0) {
          ouvre();
          descend(n.g);
        } else if (tk.etape == 1) {
          met_mots(o.s, at(o, n.a), 2);
          descend(n.d);
        } else {
          ferme();
          t.pop_back();
        }
        break;
      case Noeud::PREFIXE:
        if (tk.etape == 0) {
          ouvre();
          met_mots(o.s, at(o, n.a), 2);
          descend(n.g);
        } else {
          ferme();
          t.pop_back();
        }
        break;
      case Noeud::POSTFIXE:
        if (tk.etape == 0) {
          ouvre();
          descend(n.g);
        } else {
          met_mots(o.s, at(o, n.a), 2);
          ferme();
          t.pop_back();
        }
        break;
      case Noeud::INDEX:
        if (tk.etape == 0) {
          ouvre();
          descend(n.g);
        } else if (tk.etape == 1) {
          descend(n.d);
        } else {
          ferme();
          t.pop_back();
        }
        break;
    }
    // A full output buffer restarts the compilation: no use writing on.
    if (r >= 0 && o.s.deborde) r = DEBORDE;
  }
  t.resize(base);
  return r;
}

// Brackets the inside of one group, [a, b). A group whose root assigns or
// concatenates continues with its right side in this same loop, so that a
// long vector written out does not deepen the recursion.
int groupe(Compil& c, Mots& s, const mot* a, const mot* b, int* gen) {
  if (++*gen > PROFONDEUR_MAX) {
    message(0, M_LONG);
    return -1;
  }
  std::vector<Noeud>& noeuds = c.espace->noeuds;
  std::size_t base = noeuds.size();
  int fermer = 0;
  int r = 0;
  for (;;) {
    if (s.deborde) {
      r = DEBORDE;
      break;
    }
    Ops o{c, s, noeuds, a, b, 0, gen};
    const mot* p = a;
    while (p < b && transparent(p)) p += 2;
    if (p >= b) {
      met_mots(s, a, b - a);
      break;
    }
    // A group that begins with "=" or ",": the rest in one bracket.
    if (p[0] == CEL_OP && (priorite(p[1]) == 3 || p[1] == ',')) {
      met_mots(s, a, p + 2 - a);
      met_paire(s, CEL_OP, '(');
      ++fermer;
      a = p + 2;
      continue;
    }
    p = a;
    int racine = expression(o, p, 0);
    if (racine < 0) {
      r = -1;
      break;
    }
    Noeud n = noeuds[racine];
    if (n.sorte == Noeud::BINAIRE && noeuds[n.d].sorte == Noeud::RESTE) {
      if (int e = ecrit(o, n.g, false); e < 0) {
        r = e;
        break;
      }
      met_mots(s, at(o, n.a), 2);
      met_paire(s, CEL_OP, '(');
      ++fermer;
      const mot* suite = at(o, noeuds[n.d].a);
      noeuds.resize(base);
      a = suite;
      continue;
    }
    if (int e = ecrit(o, racine, true); e < 0) {
      r = e;
      break;
    }
    met_mots(s, p, b - p);  // items that stay at the end of the group
    break;
  }
  for (int i = 0; i < fermer; ++i) met_paire(s, CEL_OP, ')');
  noeuds.resize(base);
  --*gen;
  return r;
}
}  // namespace

int balayage_operateurs(Compil& c, const mot* in, const mot* fin, Mots& s) {
  int gen = 0;
  for (const mot* p = in; p < fin && p[0] != 0;) {
    if (s.deborde) return DEBORDE;
    if (est_op(p, '(')) {
      const mot* g = fin_groupe(p, fin);
      met_mots(s, p, 2);
      const mot* f = est_fermant(g - 2) && g - 2 > p ? g - 2 : g;
      if (int r = groupe(c, s, p + 2, f, &gen); r < 0) return r;
      if (f < g) met_mots(s, f, 2);
      p = g;
    } else {
      if (p[0] == CEL_LIGNE) c.ligne = p[1];
      met_mots(s, p, taille_item(p));
      p += taille_item(p);
    }
  }
  return s.deborde ? DEBORDE : 0;
}
