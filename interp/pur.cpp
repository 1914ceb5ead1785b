// Translation and run of the functions that only compute on scalars (see
// pur.h).
#include "interp/pur.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace {
constexpr int MAX_SLOTS = 16;    // slots of a function: bits of a mask
constexpr int MAX_INSTR = 256;   // statements of one function
constexpr int MAX_NOEUDS = 4096;
constexpr int MAX_PROFONDEUR = 64;  // nested groups: the translation recurses

enum : std::uint8_t { N_CONST, N_FORMEL, N_LOCAL, N_BIN, N_APPEL, N_BIN2, N_MATHS };
enum : std::uint8_t { I_ABANDON, I_SI, I_RETOUR, I_AFFECTE, I_SAUT };
}  // namespace

namespace {
// ---- the flat form ----------------------------------------------------------
// A translated function runs as a flat list of operations on a frame of
// float registers: its slots (formals first), then the temporaries of its
// expressions. A call's arguments are computed into consecutive registers
// of the caller, which become the callee's first slots, so nothing is
// copied; the callee's value comes back in its first register. Calls do
// not recurse on the machine stack: a run keeps its own stack of returns.
constexpr int MAX_REGISTRES = 64;  // of one frame
constexpr int MAX_APPELS = 4096;   // calls under way in one run

// The ten operators, in the order of the operations' groups below.
#define POUR_OPERATEURS(X) \
  X(ADD, '+') X(SUB, '-') X(MUL, '*') X(DIV, '/') X(LT, '<') X(GT, '>') X(LE, OP_INF_EGAL) \
  X(GE, OP_SUP_EGAL) X(EQ, OP_EGAL) X(NE, OP_DIFFERENT)
#define POUR_COMPARAISONS(X) \
  X(LT, '<') X(GT, '>') X(LE, OP_INF_EGAL) X(GE, OP_SUP_EGAL) X(EQ, OP_EGAL) X(NE, OP_DIFFERENT)

// Operations: a b c registers, k a constant. O_x_RR: a = b x c; _RK: a = b x
// k; _KR: a = k x b. S_x_..: the same comparison of b and c (or k), then
// the next operation when it holds, else the one `saut` further.
enum : std::uint8_t {
#define X(N, C) O_##N##_RR, O_##N##_RK, O_##N##_KR,
  POUR_OPERATEURS(X)
#undef X
#define X(N, C) S_##N##_RR, S_##N##_RK, S_##N##_KR,
  POUR_COMPARAISONS(X)
#undef X
  S_R,        // b != 0, as above
  O_MOV,      // a = b
  O_CONST,    // a = k
  O_MATHS,    // a = built-in x of b
  O_VERIF,    // give up unless slot a has been written
  O_MARQUE,   // slot a has been written
  O_APPEL,    // a the first argument's register, f the callee, x its slots + 1
  O_RETOUR,   // the value of register a
  O_RETOUR_K, // the value k
  O_ALLER,    // on by `saut`
  O_SAUT,     // on by `saut`, where a loop turns: the interrupt is read
  O_ABANDON,
  O_NB
};

struct Op {
  std::uint8_t genre = O_ABANDON, a = 0, b = 0, c = 0;
  std::int32_t saut = 0;
  float k = 0;
  std::int32_t x = 0;
  const Pur* f = nullptr;
};
}  // namespace

// One node of an expression. N_BIN: a, b its operands; N_MATHS: the
// built-in of ordinal op on a; N_APPEL: a the
// first of its b arguments in `liens`, f the callee;
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
  // The flat form, made once the translation of the outermost is done;
  // `plat` false when it could not be (a frame too large).
  bool aplati = false, plat = false;
  std::vector<Op> ops;
  std::uint32_t masque = 0;  // the formals, written at entry
  // Every translation that a run of this one may enter, itself included:
  // checked once at the outermost call, since nothing a run does changes
  // the functions.
  std::vector<const Pur*> deps;
  bool deps_faits = false;
};

namespace {
// The translations of this generation of the function table, by the index
// of their object; the records stay until the generation changes, since
// calls name them.
struct EtatPur {
  unsigned long generation = 0;
  std::vector<Pur*> par_objet;
  std::vector<std::unique_ptr<Pur>> tous;
} etat_pur;

// The frames and returns of a run: runs do not nest, and a frame starts
// less than MAX_REGISTRES after its caller's.
float registres[(MAX_APPELS + 2) * MAX_REGISTRES];
struct Retour {
  const Op* o;
  float* r;
  Objet* haut;
  std::uint32_t masque;
};
Retour retours[MAX_APPELS];

// The run of p's flat form on its arguments in registres[0...]. `haut` is
// where the general way's frame records would end, checked against the
// same limit; `appels` is how many calls may be under way. False: given up.
bool course(const Pur& p, Objet* haut, int appels, float* valeur) {
  static const void* const table[O_NB] = {
#define X(N, C) &&L_O_##N##_RR, &&L_O_##N##_RK, &&L_O_##N##_KR,
      POUR_OPERATEURS(X)
#undef X
#define X(N, C) &&L_S_##N##_RR, &&L_S_##N##_RK, &&L_S_##N##_KR,
      POUR_COMPARAISONS(X)
#undef X
      &&L_S_R, &&L_MOV, &&L_CONST, &&L_MATHS, &&L_VERIF, &&L_MARQUE, &&L_APPEL, &&L_RETOUR, &&L_RETOUR_K,
      &&L_ALLER, &&L_SAUT, &&L_ABANDON};
  float* r = registres;
  Retour* pr = retours;
  Retour* const pr_fin = retours + appels;
  Objet* const fin_loc = piles.loc_fin;
  std::uint32_t masque = p.masque;
  const Op* o = p.ops.data();
  float v;
#define VA goto* table[o->genre]
#define SUITE \
  do {        \
    ++o;      \
    VA;       \
  } while (0)
  VA;
#define X(N, C)                                                    \
  L_O_##N##_RR:                                                    \
  if (!calcul_scalaire(C, r[o->b], r[o->c], &v)) return false;     \
  r[o->a] = v;                                                     \
  SUITE;                                                           \
  L_O_##N##_RK:                                                    \
  if (!calcul_scalaire(C, r[o->b], o->k, &v)) return false;        \
  r[o->a] = v;                                                     \
  SUITE;                                                           \
  L_O_##N##_KR:                                                    \
  if (!calcul_scalaire(C, o->k, r[o->b], &v)) return false;        \
  r[o->a] = v;                                                     \
  SUITE;
  POUR_OPERATEURS(X)
#undef X
#define X(N, C)                               \
  L_S_##N##_RR:                               \
  calcul_scalaire(C, r[o->b], r[o->c], &v);   \
  o += v != 0 ? 1 : o->saut;                  \
  VA;                                         \
  L_S_##N##_RK:                               \
  calcul_scalaire(C, r[o->b], o->k, &v);      \
  o += v != 0 ? 1 : o->saut;                  \
  VA;                                         \
  L_S_##N##_KR:                               \
  calcul_scalaire(C, o->k, r[o->b], &v);      \
  o += v != 0 ? 1 : o->saut;                  \
  VA;
  POUR_COMPARAISONS(X)
#undef X
L_S_R:
  o += r[o->b] != 0 ? 1 : o->saut;
  VA;
L_MOV:
  r[o->a] = r[o->b];
  SUITE;
L_CONST:
  r[o->a] = o->k;
  SUITE;
L_MATHS:
  if (!maths_scalaire(o->x, r[o->b], &v)) return false;
  r[o->a] = v;
  SUITE;
L_VERIF:
  if (!(masque >> o->a & 1u)) return false;
  SUITE;
L_MARQUE:
  masque |= 1u << o->a;
  SUITE;
L_APPEL: {
  // The frame the general way would take: the same records, the same limit.
  Objet* const h = haut + o->x;
  if ((interrompu | reprise_demandee) || h >= fin_loc || pr == pr_fin) return false;
  *pr++ = Retour{o + 1, r, haut, masque};
  r += o->a;
  haut = h;
  masque = o->f->masque;
  o = o->f->ops.data();
  VA;
}
L_RETOUR:
  v = r[o->a];
  goto retour;
L_RETOUR_K:
  v = o->k;
retour:
  if (pr == retours) {
    *valeur = v;
    return true;
  }
  r[0] = v;
  --pr;
  o = pr->o;
  r = pr->r;
  haut = pr->haut;
  masque = pr->masque;
  VA;
L_SAUT:
  // A loop turns here: Ctrl-C must reach it.
  if (interrompu | reprise_demandee) return false;
L_ALLER:
  o += o->saut;
  VA;
L_ABANDON:
  return false;
#undef VA
#undef SUITE
}

// ---- the flat form from the tree -------------------------------------------
struct Plat {
  Pur& p;
  int haut = 0;    // the first free register
  int taille = 0;  // registers used
  bool ok = true;
  std::vector<int> debut;                   // each statement's first operation
  std::vector<std::pair<int, int>> renvois;  // operation, statement it jumps to
};

// A leaf or a register: what an operation reads.
struct Source {
  bool constante = false;
  float k = 0;
  int r = 0;
};

int registre(Plat& t) {
  const int r = t.haut++;
  if (t.haut > t.taille) t.taille = t.haut;
  if (t.haut > MAX_REGISTRES) t.ok = false;
  return r;
}

int emet(Plat& t, Op o) {
  t.p.ops.push_back(o);
  return static_cast<int>(t.p.ops.size()) - 1;
}

Op op(std::uint8_t genre, int a = 0, int b = 0, int c = 0) {
  Op o;
  o.genre = genre;
  o.a = static_cast<std::uint8_t>(a);
  o.b = static_cast<std::uint8_t>(b);
  o.c = static_cast<std::uint8_t>(c);
  return o;
}

// A slot read: a local other than a formal must have been written.
Source lit_slot(Plat& t, int slot) {
  if (slot >= t.p.nformels) emet(t, op(O_VERIF, slot));
  return Source{false, 0, slot};
}

void dans(Plat& t, int n, int d);

// Node n as an operand: leaves as they are, others in a new register.
Source source(Plat& t, int n) {
  const Noeud& x = t.p.noeuds[static_cast<std::size_t>(n)];
  if (x.genre == N_CONST) return Source{true, x.k, 0};
  if (x.genre == N_FORMEL || x.genre == N_LOCAL) return lit_slot(t, x.slot);
  const int d = registre(t);
  dans(t, n, d);
  return Source{false, 0, d};
}

// The group of an operator: its rank in POUR_OPERATEURS, or -1.
int rang(mot o) {
  int i = 0;
#define X(N, C) \
  if (o == (C)) return i; \
  ++i;
  POUR_OPERATEURS(X)
#undef X
  return -1;
}

// Operands of an operation on two sources: a constant on the left with a
// register on the right takes the _KR form; two constants put the left one
// in register d first.
void deux(Plat& t, int base, int d, Source x, Source y, std::int32_t saut_ou_0) {
  if (x.constante && y.constante) {
    Op c = op(O_CONST, d);
    c.k = x.k;
    emet(t, c);
    x = Source{false, 0, d};
  }
  Op o;
  if (!x.constante && !y.constante) {
    o = op(static_cast<std::uint8_t>(base), d, x.r, y.r);
  } else if (!x.constante) {
    o = op(static_cast<std::uint8_t>(base + 1), d, x.r);
    o.k = y.k;
  } else {
    o = op(static_cast<std::uint8_t>(base + 2), d, y.r);
    o.k = x.k;
  }
  o.saut = saut_ou_0;
  emet(t, o);
}

// The two operands of a N_BIN or N_BIN2 node.
void operandes(Plat& t, const Noeud& x, Source* a, Source* b) {
  if (x.genre == N_BIN2) {
    *a = x.slot >= 0 ? lit_slot(t, x.slot) : Source{true, x.k, 0};
    *b = x.sb >= 0 ? lit_slot(t, x.sb) : Source{true, x.kb, 0};
  } else {
    *a = source(t, x.a);
    *b = source(t, x.b);
  }
}

// Node n computed into register d. Only the last operation writes d, so d
// may be a slot that the expression reads.
void dans(Plat& t, int n, int d) {
  const Noeud x = t.p.noeuds[static_cast<std::size_t>(n)];
  const int h = t.haut;
  switch (x.genre) {
    case N_CONST: {
      Op o = op(O_CONST, d);
      o.k = x.k;
      emet(t, o);
      break;
    }
    case N_FORMEL:
    case N_LOCAL:
      lit_slot(t, x.slot);
      emet(t, op(O_MOV, d, x.slot));
      break;
    case N_BIN:
    case N_BIN2: {
      Source a, b;
      operandes(t, x, &a, &b);
      const int g = rang(x.op);
      if (g < 0) {
        t.ok = false;
        break;
      }
      deux(t, O_ADD_RR + 3 * g, d, a, b, 0);
      break;
    }
    case N_MATHS: {
      Source a = source(t, x.a);
      if (a.constante) {
        Op c = op(O_CONST, d);
        c.k = a.k;
        emet(t, c);
        a = Source{false, 0, d};
      }
      Op o = op(O_MATHS, d, a.r);
      o.x = static_cast<std::int32_t>(x.op);
      emet(t, o);
      break;
    }
    case N_APPEL: {
      // The arguments go where the callee's frame starts: d itself when it
      // is the newest temporary, so that the value needs no move.
      const int base = d >= t.p.nslots && d + 1 == t.haut ? d : t.haut;
      const int* l = t.p.liens.data() + x.a;
      for (int k = 0; k < x.b; ++k) {
        t.haut = base + k;
        registre(t);
        dans(t, l[k], base + k);
      }
      if (base >= MAX_REGISTRES) t.ok = false;
      Op o = op(O_APPEL, base);
      o.f = x.f;
      o.x = x.f->nslots + 1;
      emet(t, o);
      if (d != base) emet(t, op(O_MOV, d, base));
      break;
    }
    default:
      t.ok = false;
  }
  t.haut = h;
}

// The jump of operation i to the first operation of statement s.
void renvoi(Plat& t, int i, int s) { t.renvois.emplace_back(i, s); }

void aplatit(Pur& p) {
  p.aplati = true;
  p.ops.clear();
  Plat t{p, 0, 0, true, {}, {}};
  t.haut = t.taille = p.nslots;
  const int n = static_cast<int>(p.instrs.size());
  t.debut.assign(static_cast<std::size_t>(n), 0);
  for (int i = 0; i < n; ++i) {
    const Instr in = p.instrs[static_cast<std::size_t>(i)];
    t.debut[static_cast<std::size_t>(i)] = static_cast<int>(p.ops.size());
    t.haut = p.nslots;
    auto suite = [&](int s) {
      if (s != i + 1) renvoi(t, emet(t, op(O_ALLER)), s);
    };
    switch (in.genre) {
      case I_SI: {
        const Noeud& x = p.noeuds[static_cast<std::size_t>(in.e)];
        const int g = (x.genre == N_BIN || x.genre == N_BIN2) ? rang(x.op) : -1;
        if (g >= 4) {
          // A comparison: tested and jumped on in one operation.
          Source a, b;
          operandes(t, x, &a, &b);
          const int d = registre(t);
          deux(t, S_LT_RR + 3 * (g - 4), d, a, b, 0);
          renvoi(t, static_cast<int>(p.ops.size()) - 1, in.faux);
        } else {
          Source a = source(t, in.e);
          if (a.constante) {
            const int d = registre(t);
            Op c = op(O_CONST, d);
            c.k = a.k;
            emet(t, c);
            a = Source{false, 0, d};
          }
          renvoi(t, emet(t, op(S_R, 0, a.r)), in.faux);
        }
        suite(in.vrai);
        break;
      }
      case I_AFFECTE:
        dans(t, in.e, in.slot);
        if (in.slot >= p.nformels) emet(t, op(O_MARQUE, in.slot));
        suite(in.vrai);
        break;
      case I_RETOUR: {
        Source a = source(t, in.e);
        Op o = op(a.constante ? O_RETOUR_K : O_RETOUR, a.r);
        o.k = a.k;
        emet(t, o);
        break;
      }
      case I_SAUT:
        renvoi(t, emet(t, op(O_SAUT)), in.vrai);
        break;
      default:
        emet(t, op(O_ABANDON));
    }
  }
  for (auto [o, s] : t.renvois) p.ops[static_cast<std::size_t>(o)].saut = t.debut[static_cast<std::size_t>(s)] - o;
  p.masque = p.nformels >= 32 ? ~0u : (1u << p.nformels) - 1u;
  p.plat = t.ok && t.taille <= MAX_REGISTRES && n > 0;
}

// The translations a run of p may enter.
void dependances(Pur& p) {
  p.deps_faits = true;
  std::vector<const Pur*> a_voir{&p};
  while (!a_voir.empty()) {
    const Pur* q = a_voir.back();
    a_voir.pop_back();
    if (std::find(p.deps.begin(), p.deps.end(), q) != p.deps.end()) continue;
    p.deps.push_back(q);
    for (const Op& o : q->ops)
      if (o.genre == O_APPEL) a_voir.push_back(o.f);
  }
}
}  // namespace

namespace {
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
  Pur* p = connu(f);
  if (!p) {
    if (f < piles.obj_base || f >= piles.obj_haut) return nullptr;
    p = traduit(f);
  }
  if (!p || !p->pret) return nullptr;
  if (!p->deps_faits) {
    // Every translation made by now is whole: the flat forms can name them.
    for (auto& q : etat_pur.tous)
      if (q->pret && !q->aplati) aplatit(*q);
    dependances(*p);
  }
  return p;
}

bool pur_appel(const Pur* p, const mot* appel, float* valeur) {
  if (appel[3] != p->nformels || pile_c_epuisee()) return false;
  for (const Pur* d : p->deps)
    if (!d->pret || !d->plat || d->objet->code != d->code || d->objet->type != A_FONC) return false;
  Objet* haut = piles.loc_haut + p->nslots + 1;
  if (haut >= piles.loc_fin) return false;
  const mot* a = appel + 4;
  for (int k = 0; k < p->nformels; ++k, a += 5) {
    if (a[0] != 5 || a[1] != BLOC_REEL) return false;
    registres[k] = lit_reel(a + 4);
  }
  // The machine stack a run may take, as calls: far less than the general
  // way needs for the same calls, so that a run that gives up for this
  // reason is one the general way makes or fails its own way.
  long appels = MAX_APPELS;
  if (interp.pile_c_base) {
    char ici;
    const long reste = (&ici - (interp.pile_c_base - interp.pile_c_budget / 16)) / 256;
    if (reste < appels) appels = reste;
  }
  if (appels <= 0) return false;
  return course(*p, haut, static_cast<int>(appels), valeur);
}
