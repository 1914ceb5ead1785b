// Sources far deeper than anyone types: chains of operators a million long
// compile without following their depth on the machine's stack, and
// nesting past the compiler's bound ends in a message, never in a crash.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "core/message.h"
#include "lang/lang.h"
#include "startup/startup.h"
#include "tests/lang/aide_lang.h"

namespace {
std::string chaine_de(int n, const std::string& terme, const std::string& op) {
  std::string s;
  s.reserve(static_cast<std::size_t>(n) * (terme.size() + op.size()));
  for (int i = 0; i < n; ++i) {
    if (i) s += op;
    s += terme;
  }
  return s;
}

struct Compte {
  long ouvrants = 0, fermants = 0, ops = 0;
};

Compte compte_items(const mot* code, mot op) {
  Compte c;
  std::vector<mot> m = mots_items(code);
  for (std::size_t i = 0; i + 1 < m.size(); i += m[i] < 0 ? 2 : static_cast<std::size_t>(m[i])) {
    if (m[i] != CEL_OP) continue;
    c.ouvrants += m[i + 1] == '(';
    c.fermants += m[i + 1] == ')';
    c.ops += m[i + 1] == op;
  }
  return c;
}
}  // namespace

TEST(Profondeur, MillionTermSumCompiles) {
  prepare_lang();
  // Small first: the chain groups to the left.
  Objet* f = fonction("f()\n{\n retour 1+2+3+4\n}");
  int r = 0;
  EXPECT_EQ(compile(f, &r), "");
  ASSERT_EQ(r, 1);
  EXPECT_EQ(texte_items(f->code), "fonc(f) #3 ( retour ( ( ( 1 + 2 ) + 3 ) + 4 ) ) ; #4 ( retour )");

  const int n = 1000000;
  f = fonction("gros()\n{\n retour " + chaine_de(n, "1", "+") + "\n}");
  EXPECT_EQ(compile(f, &r), "");
  ASSERT_EQ(r, 1);
  Compte c = compte_items(f->code, '+');
  EXPECT_EQ(c.ops, n - 1);
  EXPECT_EQ(c.ouvrants, c.fermants);
  // Every sum but the outermost is its own bracket, inside the statement's
  // and retour's.
  EXPECT_GE(c.ouvrants, n - 1);
}

TEST(Profondeur, LongChainsOfEveryLeftDeepForm) {
  prepare_lang();
  std::mt19937 g(977);
  int r = 0;
  // Mixed priorities, an odd length: the writer alternates between its
  // branches at random.
  const char* ops[] = {"+", "*", "-", "/", "<", "==", "&&", "^"};
  std::string s = "1";
  for (int i = 0; i < 333331; ++i) s += std::string(ops[g() % 8]) + std::to_string(g() % 97 + 1);
  Objet* l = ligne("x = " + s);
  EXPECT_EQ(compile(l, &r), "");
  EXPECT_EQ(r, 1);
  // Index groups one behind the other, and postfix operators behind them.
  l = ligne("y = x" + chaine_de(200003, "[1]", "") + "++");
  EXPECT_EQ(compile(l, &r), "");
  EXPECT_EQ(r, 1);
  Compte c = compte_items(l->code, OP_INCR);
  EXPECT_EQ(c.ops, 1);
  EXPECT_EQ(c.ouvrants, c.fermants);
}

TEST(Profondeur, NestingPastTheBoundIsAMessage) {
  prepare_lang();
  int r = 0;
  // Brackets typed inside each other, prefix operators one on another, a
  // million of each: message 2, and the next compilation is whole again.
  for (std::string t : {std::string(1000000, '(') + "1" + std::string(1000000, ')'),
                        std::string(1000000, '!') + "1", chaine_de(1000000, "-", "") + "1",
                        chaine_de(300000, "si (1) ", "") + "x = 1"}) {
    std::string sortie = compile(ligne(t), &r);
    EXPECT_EQ(r, -1);
    EXPECT_EQ(sortie.substr(0, 3), "M2\n") << sortie.substr(0, 80);
  }
  Objet* l = ligne("z = 2 + 3");
  EXPECT_EQ(compile(l, &r), "");
  EXPECT_EQ(texte_items(l->code), "#1 ( g:z = ( 2 + 3 ) ) ; FIN");
}
