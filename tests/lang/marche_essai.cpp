// A reduced walker of linked code for the tests: the statement walk of the
// engine (jumps, si and tantque tests, both pour forms, selon tables) with
// scalar floats and globals only. It checks that the offsets written by link
// lead where they must; it is no interpreter.
#include "tests/lang/marche_essai.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "lang/lang.h"

namespace {
struct Valeur {
  float x = 0;
  const Objet* var = nullptr;  // the global it came from, if any
};

struct Marche {
  std::map<const Objet*, float>& globaux;
  std::string& trace;
  std::map<const mot*, std::pair<const Objet*, float>> boucles;  // header: variable, step
  std::map<const mot*, float> limites;
};

float lit(Marche& m, const Valeur& v) { return v.var ? m.globaux[v.var] : v.x; }

Valeur groupe(Marche& m, const mot*& p);

Valeur element(Marche& m, const mot*& p, bool* op, mot* code_op) {
  *op = false;
  if (p[0] == CEL_OP && (p[1] == '(' || p[1] == '[')) return groupe(m, p);
  Valeur v;
  if (p[0] == CEL_OP) {
    *op = true;
    *code_op = p[1];
  } else if (p[0] == CEL_REEL) {
    v.x = lit_reel(p + 1);
  } else if (p[0] == CEL_GLOBAL) {
    v.var = static_cast<const Objet*>(mot_vers_ptr(p[1]));
  } else if (p[0] == CEL_MOT) {
    // "$" with its argument group: the value goes to the trace.
    p += 2;
    Valeur a = groupe(m, p);
    char t[32];
    std::snprintf(t, sizeof t, "%g ", static_cast<double>(lit(m, a)));
    m.trace += t;
    return a;
  }
  p += p[0] < 0 ? 2 : p[0];
  return v;
}

float calcule(Marche& m, const Valeur& a, mot op, const Valeur& b) {
  float x = lit(m, a), y = lit(m, b);
  switch (op) {
    case '=': m.globaux[a.var] = y; return y;
    case '+': return x + y;
    case '-': return x - y;
    case '*': return x * y;
    case '/': return x / y;
    case '<': return x < y;
    case '>': return x > y;
    case OP_INF_EGAL: return x <= y;
    case OP_SUP_EGAL: return x >= y;
    case OP_EGAL_EGAL: return x == y;
    case OP_DIFF: return x != y;
    case OP_ET: return x != 0 && y != 0;
    case OP_OU: return x != 0 || y != 0;
    case OP_PLUS_AFF: return m.globaux[a.var] = x + y;
  }
  ADD_FAILURE() << "operator " << op;
  return 0;
}

// A bracket group holds one operand, a prefix or postfix operator with its
// operand, or two operands around an operator.
Valeur groupe(Marche& m, const mot*& p) {
  p += 2;
  Valeur e[3];
  bool est_op[3] = {};
  mot ops[3] = {};
  int n = 0;
  while (!(p[0] == CEL_OP && (p[1] == ')' || p[1] == ']'))) {
    if (n == 3) {
      ADD_FAILURE() << "group of more than three elements";
      return {};
    }
    e[n] = element(m, p, &est_op[n], &ops[n]);
    ++n;
  }
  p += 2;
  Valeur r;
  if (n == 1) return e[0];
  if (n == 3 && est_op[1]) {
    r.x = calcule(m, e[0], ops[1], e[2]);
  } else if (n == 2 && est_op[1] && (ops[1] == OP_INCR || ops[1] == OP_DECR)) {
    r.x = lit(m, e[0]);
    m.globaux[e[0].var] += ops[1] == OP_INCR ? 1 : -1;
  } else if (n == 2 && est_op[0] && ops[0] == '!') {
    r.x = lit(m, e[1]) == 0;
  } else if (n != 0) {
    ADD_FAILURE() << "group of " << n << " elements";
  }
  return r;
}

float evalue(Marche& m, const mot* p) {
  Valeur v = groupe(m, p);
  return lit(m, v);
}

const mot* teste_boucle(Marche& m, const mot* h, bool increment) {
  auto& [var, pas] = m.boucles[h];
  float& x = m.globaux[var];
  if (increment) x += pas;
  float limite = m.limites[h];
  bool fini = (pas > 0 && x > limite) || (pas < 0 && x < limite);
  return h + (fini ? h[9] : h[8]);
}
}  // namespace

std::string marche(const mot* code, std::map<const Objet*, float>& globaux, int max_pas) {
  std::string trace;
  Marche m{globaux, trace, {}, {}};
  const mot* p = code + 4;
  for (int pas = 0; pas < max_pas; ++pas) {
    mot k = p[0];
    if (k == 0 || k == CEL_FIN) return trace;
    if (k == CEL_SAUT) {
      p += p[1];
      continue;
    }
    if (k == CEL_OP && p[1] == OP_BOUCLE) {
      const mot* h = p + 2;
      const mot* depart = h + h[2];
      evalue(m, depart);
      m.boucles[h] = {static_cast<const Objet*>(mot_vers_ptr(depart[3])),
                      h[6] ? evalue(m, h + h[6]) : lit_reel(h + 7)};
      m.limites[h] = evalue(m, h + h[4]);
      p = teste_boucle(m, h, false);
      continue;
    }
    if (k == CEL_OP && p[1] == '(') {
      groupe(m, p);
      continue;
    }
    if (k < 0) {  // marks, labels, ";", no-operations, cas and defaut
      p += 2;
      continue;
    }
    switch (p[1]) {
      case BLOC_POUR_COMPTE_LIE: p = teste_boucle(m, p, true); continue;
      case BLOC_TEST:
      case BLOC_POUR_TROIS_LIE: p += evalue(m, p + p[2]) != 0 ? p[3] : p[4]; continue;
      case BLOC_SELON_LIE: {
        float s = evalue(m, p + p[0]);
        const mot* cible = nullptr;
        for (mot i = 0; i + 1 < p[2] && !cible; ++i) {
          mot a = p[3 + 2 * i], b = p[4 + 2 * i];
          if (a < 1 && evalue(m, p + b) == s) cible = p - a;
          if (a >= 1 && lit_reel(&b) == s) cible = p + a;
        }
        p = cible ? cible : p + p[3 + 2 * (p[2] - 1)];
        continue;
      }
    }
    p += p[0];
  }
  ADD_FAILURE() << "the walk does not end";
  return trace;
}

float globale(const std::map<const Objet*, float>& g, const char* nom) {
  for (auto& [o, x] : g)
    if (o && o->nom && std::string(o->nom) == nom) return x;
  return -12345;
}
