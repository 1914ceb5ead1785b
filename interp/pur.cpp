// Translation and run of the functions that only compute on scalars (see
// pur.h).
#include "interp/pur.h"

#include <bit>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace {
constexpr int MAX_SLOTS = 16;    // a frame of floats on the machine stack
constexpr int MAX_INSTR = 256;   // statements of one function
constexpr int MAX_NOEUDS = 4096;
constexpr int MAX_PROFONDEUR = 64;  // nested groups: the translation recurses

enum : std::uint8_t { N_CONST, N_FORMEL, N_LOCAL, N_BIN, N_APPEL, N_BIN2, N_MATHS };
enum : std::uint8_t { I_ABANDON, I_SI, I_RETOUR, I_AFFECTE, I_SAUT };
}  // namespace

// One node of an expression. N_BIN: a, b its operands; N_MATHS: the
// built-in of ordinal op on a; N_APPEL: a the
// first of its b arguments in `liens`, f the callee, made from `code`;
// N_BIN2: two operands that are constants or locals, read without a call
// (slot and sb the locals' slots, -1 for the constants k and kb). `besoin`:
// the slots other than formals that the node reads, which must have been
// written.
struct Noeud {
  std::uint8_t genre = N_CONST;
  mot op = 0;
  int slot = 0, sb = -1;
  float k = 0, kb = 0;
  std::uint32_t besoin = 0;
  int a = 0, b = 0;
  Pur* f = nullptr;
  const Objet* objet = nullptr;
  const mot* code = nullptr;
};

// One statement: e its expression; the next statement is `vrai` (and
// `faux` for a test that fails).
struct Instr {
  std::uint8_t genre = I_ABANDON;
  int e = 0, slot = 0, vrai = 0, faux = 0;
};

struct Pur {
  const Objet* objet = nullptr;
  const mot* code = nullptr;
  int nslots = 0, nformels = 0;
  bool en_cours = false;  // being translated: a recursive call names it
  bool pret = false;
  std::vector<Noeud> noeuds;
  std::vector<int> liens;
  std::vector<Instr> instrs;
};

namespace {
struct CadrePur {
  float v[MAX_SLOTS];
  std::uint32_t ecrit;  // the slots that hold a value
};

// The translations of this generation of the function table, by the index
// of their object; the records stay until the generation changes, since
// calls name them.
struct EtatPur {
  unsigned long generation = 0;
  std::vector<Pur*> par_objet;
  std::vector<std::unique_ptr<Pur>> tous;
} etat_pur;

// The machine stack a run may take: far less than the general way needs
// for the same calls, so that a run that gives up for this reason is one
// the general way makes or fails its own way. Set at each outermost call.
const char* limite_c = nullptr;

bool evalue(const Pur& p, const Noeud* n, const CadrePur& c, Objet* loc, float* r);

// Constants, locals and operators on them, the most frequent nodes, without
// a call.
TOUJOURS_EN_LIGNE bool valeur(const Pur& p, const Noeud* n, const CadrePur& c, Objet* loc, float* r) {
  if (n->genre == N_FORMEL) {
    *r = c.v[n->slot];
    return true;
  }
  if (n->genre == N_CONST) {
    *r = n->k;
    return true;
  }
  if (n->genre == N_BIN2)
    return (c.ecrit & n->besoin) == n->besoin &&
           calcul_scalaire(n->op, n->slot >= 0 ? c.v[n->slot] : n->k, n->sb >= 0 ? c.v[n->sb] : n->kb, r);
  if (n->genre == N_LOCAL) {
    *r = c.v[n->slot];
    return (c.ecrit & n->besoin) == n->besoin;
  }
  return evalue(p, n, c, loc, r);
}

TOUJOURS_EN_LIGNE bool course(const Pur& p, CadrePur& c, Objet* loc, float* r) {
  const Instr* const s = p.instrs.data();
  const Noeud* const base = p.noeuds.data();
  const Instr* i = s;
  for (;;) {
    switch (i->genre) {
      case I_SI: {
        float x;
        if (!valeur(p, base + i->e, c, loc, &x)) return false;
        i = s + (x != 0 ? i->vrai : i->faux);
        continue;
      }
      case I_AFFECTE: {
        float x;
        if (!valeur(p, base + i->e, c, loc, &x)) return false;
        c.v[i->slot] = x;
        c.ecrit |= 1u << i->slot;
        i = s + i->vrai;
        continue;
      }
      case I_SAUT:
        // A loop turns here: Ctrl-C must reach it.
        if (interrompu | reprise_demandee) return false;
        i = s + i->vrai;
        continue;
      case I_RETOUR:
        return valeur(p, base + i->e, c, loc, r);
      default:
        return false;
    }
  }
}

[[gnu::noinline]] bool appel_pur(const Pur& p, const Noeud* n, const CadrePur& c, Objet* loc, float* r) {
  CadrePur d;
  const int* l = p.liens.data() + n->a;
  const Noeud* const base = p.noeuds.data();
  for (int k = 0; k < n->b; ++k)
    if (!valeur(p, base + l[k], c, loc, &d.v[k])) return false;
  d.ecrit = (1u << n->b) - 1u;
  const Pur& f = *n->f;
  // The frame the general way would take: the same records, the same limit.
  Objet* haut = loc + f.nslots + 1;
  char ici;
  if ((interrompu | reprise_demandee) || !f.pret || haut >= piles.loc_fin || n->objet->code != n->code ||
      &ici < limite_c)
    return false;
  return course(f, d, haut, r);
}

bool evalue(const Pur& p, const Noeud* n, const CadrePur& c, Objet* loc, float* r) {
  switch (n->genre) {
    case N_CONST:
      *r = n->k;
      return true;
    case N_FORMEL:
      *r = c.v[n->slot];
      return true;
    case N_LOCAL:
      return valeur(p, n, c, loc, r);
    case N_BIN: {
      float a, b;
      const Noeud* base = p.noeuds.data();
      return valeur(p, base + n->a, c, loc, &a) && valeur(p, base + n->b, c, loc, &b) &&
             calcul_scalaire(n->op, a, b, r);
    }
    case N_APPEL:
      return appel_pur(p, n, c, loc, r);
    case N_BIN2:
      return valeur(p, n, c, loc, r);
    case N_MATHS: {
      float x;
      return valeur(p, p.noeuds.data() + n->a, c, loc, &x) && maths_scalaire(n->op, x, r);
    }
  }
  return false;
}

// ---- translation ----------------------------------------------------------
Pur* traduit(Objet* f);

Pur* connu(const Objet* f) {
  if (f < piles.obj_base || f >= piles.obj_haut) return nullptr;
  std::size_t i = static_cast<std::size_t>(f - piles.obj_base);
  if (i >= etat_pur.par_objet.size()) return nullptr;
  Pur* p = etat_pur.par_objet[i];
  return p && p->objet == f && p->code == f->code ? p : nullptr;
}

struct Trad {
  Pur& p;
  const mot* code;
  std::unordered_map<long, int> vu;  // statement offsets already translated
  int profondeur = 0;
};

int noeud(Trad& t, const Noeud& n) {
  if (static_cast<int>(t.p.noeuds.size()) >= MAX_NOEUDS) return -1;
  t.p.noeuds.push_back(n);
  return static_cast<int>(t.p.noeuds.size()) - 1;
}

bool operateur_pur(mot op) {
  return op == '+' || op == '-' || op == '*' || op == '/' || op == '<' || op == '>' || op == OP_INF_EGAL ||
         op == OP_SUP_EGAL || op == OP_EGAL || op == OP_DIFFERENT;
}

int groupe(Trad& t, const mot* g, const mot** fin);

// An operand: a constant, a local, a group or a call; its node, or -1.
int operande(Trad& t, const mot* q, const mot** suite) {
  Noeud n;
  if (q[0] == IT_REEL) {
    n.k = std::bit_cast<float>(q[1]);
    *suite = q + 2;
    return noeud(t, n);
  }
  if (q[0] == IT_LOCAL) {
    if (q[1] < 0 || q[1] >= t.p.nslots) return -1;
    n.genre = q[1] < t.p.nformels ? N_FORMEL : N_LOCAL;
    n.slot = q[1];
    if (n.genre == N_LOCAL) n.besoin = 1u << n.slot;
    *suite = q + 2;
    return noeud(t, n);
  }
  if (q[0] == IT_OP && q[1] == '(') return groupe(t, q, suite);
  if (q[0] == IT_MOT) {
    // A built-in on one scalar, alone in its phrase.
    if (!maths_directe(q[1]) || q[2] != IT_OP || q[3] != '(') return -1;
    n.a = groupe(t, q + 2, suite);
    const mot* f = *suite;
    if (n.a < 0 || f[0] == IT_MOT || f[0] == IT_AIDE_MOT || f[0] == IT_LIGNE) return -1;
    n.genre = N_MATHS;
    n.op = static_cast<const MotCle*>(mot_vers_ptr(q[1]))->ordinal;
    return noeud(t, n);
  }
  if (q[0] <= 0 || q[1] != BLOC_OBJET) return -1;
  // A call of a linked function that is of the kind too, with its formals'
  // count of arguments.
  Objet* f = static_cast<Objet*>(mot_vers_ptr(q[2]));
  if (!f || f->type != A_FONC || !f->code || f->code[1] != IT_CODE) return -1;
  const mot argc = q[3];
  if (argc != f->code[3] || argc > MAX_SLOTS) return -1;
  Pur* c = connu(f);
  if (!c) c = traduit(f);
  else if (!c->pret && !c->en_cours) c = nullptr;
  if (!c) return -1;
  const mot* a = q + q[0];
  if (argc == 0 && a[0] == IT_OP && a[1] == '(' && a[2] == IT_OP && a[3] == ')') a += 4;
  std::vector<int> args;
  for (mot k = 0; k < argc; ++k) {
    if (a[0] != IT_OP || a[1] != '(') return -1;
    int e = groupe(t, a, &a);
    if (e < 0) return -1;
    args.push_back(e);
  }
  n.genre = N_APPEL;
  n.a = static_cast<int>(t.p.liens.size());
  n.b = argc;
  n.f = c;
  n.objet = f;
  n.code = f->code;
  t.p.liens.insert(t.p.liens.end(), args.begin(), args.end());
  *suite = a;
  return noeud(t, n);
}

// ( X ) or ( X op Y ): its node, and the item behind it; -1 for any other
// shape.
int groupe_(Trad& t, const mot* g, const mot** fin);
int groupe(Trad& t, const mot* g, const mot** fin) {
  if (g[0] != IT_OP || g[1] != '(' || t.profondeur >= MAX_PROFONDEUR) return -1;
  ++t.profondeur;
  const int r = groupe_(t, g, fin);
  --t.profondeur;
  return r;
}

int groupe_(Trad& t, const mot* g, const mot** fin) {
  const mot* q;
  const int a = operande(t, g + 2, &q);
  if (a < 0 || q[0] != IT_OP) return -1;
  if (q[1] == ')') {
    *fin = q + 2;
    return a;
  }
  Noeud n;
  n.genre = N_BIN;
  n.op = q[1];
  if (!operateur_pur(n.op)) return -1;
  n.a = a;
  n.b = operande(t, q + 2, &q);
  if (n.b < 0 || q[0] != IT_OP || q[1] != ')') return -1;
  *fin = q + 2;
  const Noeud &x = t.p.noeuds[static_cast<std::size_t>(a)], &y = t.p.noeuds[static_cast<std::size_t>(n.b)];
  auto feuille = [](const Noeud& f) { return f.genre == N_CONST || f.genre == N_FORMEL || f.genre == N_LOCAL; };
  if (feuille(x) && feuille(y)) {
    n.genre = N_BIN2;
    n.slot = x.genre == N_CONST ? -1 : x.slot;
    n.k = x.k;
    n.sb = y.genre == N_CONST ? -1 : y.slot;
    n.kb = y.k;
    n.besoin = x.besoin | y.besoin;
  }
  return noeud(t, n);
}

// What the walk passes over between statements.
const mot* separateurs(const mot* q) {
  for (;;) {
    if (q[0] == IT_LIGNE || q[0] == IT_ETIQUETTE) {
      q += 2;
      continue;
    }
    if (q[0] == IT_OP) {
      const mot op = q[1];
      if (op == ';' || op == OP_NOP || op == OP_DEBUT || op == OP_FIN || op == '{' || op == '}') {
        q += 2;
        continue;
      }
    }
    return q;
  }
}

// The statement at q and those it leads to: its index, or -1.
int instruction(Trad& t, const mot* q) {
  q = separateurs(q);
  const long off = q - t.code;
  if (auto v = t.vu.find(off); v != t.vu.end()) return v->second;
  if (static_cast<int>(t.p.instrs.size()) >= MAX_INSTR) return -1;
  const int ici = static_cast<int>(t.p.instrs.size());
  t.p.instrs.emplace_back();
  t.vu[off] = ici;
  Instr in;
  const mot* f;
  if (q[0] > 0 && q[1] == IT_SI) {
    in.genre = I_SI;
    if ((in.e = groupe(t, q + q[2], &f)) < 0) return -1;
    if ((in.vrai = instruction(t, q + q[3])) < 0 || (in.faux = instruction(t, q + q[4])) < 0) return -1;
  } else if (q[0] == IT_SAUT) {
    in.genre = I_SAUT;
    if ((in.vrai = instruction(t, q + q[1])) < 0) return -1;
  } else if (q[0] == IT_OP && q[1] == '(' && q[2] == IT_MOT && q[3] == mot_retour()) {
    if (q[4] == IT_OP && q[5] == ')') {
      in.genre = I_ABANDON;  // a retour without value: nil, the general way's
    } else {
      in.genre = I_RETOUR;
      if ((in.e = groupe(t, q + 4, &f)) < 0 || f[0] != IT_OP || f[1] != ')') return -1;
    }
  } else if (q[0] == IT_OP && q[1] == '(' && q[2] == IT_LOCAL && q[4] == IT_OP && q[5] == '=' &&
             q[6] == IT_OP && q[7] == '(') {
    in.genre = I_AFFECTE;
    in.slot = q[3];
    if (in.slot < 0 || in.slot >= t.p.nslots) return -1;
    if ((in.e = groupe(t, q + 6, &f)) < 0 || f[0] != IT_OP || f[1] != ')') return -1;
    if ((in.vrai = instruction(t, f + 2)) < 0) return -1;
  } else {
    return -1;
  }
  t.p.instrs[static_cast<std::size_t>(ici)] = in;
  return ici;
}

Pur* traduit(Objet* f) {
  const std::size_t i = static_cast<std::size_t>(f - piles.obj_base);
  if (etat_pur.par_objet.size() <= i) etat_pur.par_objet.resize(i + 1, nullptr);
  const std::size_t avant = etat_pur.tous.size();
  etat_pur.tous.push_back(std::make_unique<Pur>());
  Pur* p = etat_pur.tous.back().get();
  etat_pur.par_objet[i] = p;
  p->objet = f;
  p->code = f->code;
  const mot* code = f->code;
  if (!code || code[1] != IT_CODE || code[2] > MAX_SLOTS || code[3] > code[2] || code[3] < 0) return nullptr;
  p->nslots = code[2];
  p->nformels = code[3];
  p->en_cours = true;
  Trad t{*p, code, {}};
  const mot* debut = code + 4;
  if (debut[0] > 0 && debut[1] == IT_NOM) debut += debut[0];
  const bool ok = instruction(t, debut) == 0;
  p->en_cours = false;
  p->pret = ok;
  if (!ok) {
    // The translations made meanwhile may call this one: they are made
    // again when next asked for.
    for (std::size_t k = avant + 1; k < etat_pur.tous.size(); ++k) {
      Pur* x = etat_pur.tous[k].get();
      std::size_t j = static_cast<std::size_t>(x->objet - piles.obj_base);
      if (j < etat_pur.par_objet.size() && etat_pur.par_objet[j] == x) etat_pur.par_objet[j] = nullptr;
      x->pret = false;
    }
    return nullptr;
  }
  return p;
}
}  // namespace

Pur* pur_de(Objet* f) {
  if (!interp.raccourcis) return nullptr;
  if (etat_pur.generation != lang.generation) {
    // Translations made before are not freed during a run: none is under way here.
    etat_pur.par_objet.clear();
    etat_pur.tous.clear();
    etat_pur.generation = lang.generation;
  }
  if (Pur* p = connu(f)) return p->pret ? p : nullptr;
  if (f < piles.obj_base || f >= piles.obj_haut) return nullptr;
  return traduit(f);
}

bool pur_appel(const Pur* p, const mot* appel, float* valeur) {
  if (appel[3] != p->nformels || pile_c_epuisee()) return false;
  Objet* haut = piles.loc_haut + p->nslots + 1;
  if (haut >= piles.loc_fin) return false;
  CadrePur c;
  const mot* a = appel + 4;
  for (int k = 0; k < p->nformels; ++k, a += 5) {
    if (a[0] != 5 || a[1] != BLOC_REEL) return false;
    c.v[k] = lit_reel(a + 4);
  }
  c.ecrit = (1u << p->nformels) - 1u;
  limite_c = interp.pile_c_base ? interp.pile_c_base - interp.pile_c_budget / 16 : nullptr;
  return course(*p, c, haut, valeur);
}
