// Every keyword of both lists, alone, on a volume and as a value, with
// arguments of every shape: no crash, no hang, and the prompt answers at the
// end. Handlers of later folders only say they are not implemented.
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "../outils/processus.h"

namespace {
// What loops or waits for ever, leaves, or changes the session's mode.
const std::vector<std::string> EXCLUS = {"tantque", "pour", "aller", "pas", "demande", "quitter",
                                         "systeme", "his", "sor", "exec", "lire", "ecrire",
                                         "aide", "debug", "interaction", "lecture", "pinceau"};

std::vector<std::string> noms_des_mots() {
  std::vector<std::string> noms;
  std::regex rec(R"(^\|\d+: (\S+))");
  for (const char* f : {"env/koma.h", "env/komb.h"}) {
    std::ifstream in(std::string(ORVANE_SOURCE) + "/" + f);
    std::string l;
    std::smatch m;
    while (std::getline(in, l))
      if (std::regex_search(l, m, rec) && m[1].str()[0] != '?' &&
          std::find(EXCLUS.begin(), EXCLUS.end(), m[1].str()) == EXCLUS.end())
        noms.push_back(m[1]);
  }
  return noms;
}
}  // namespace

TEST(MotsAuHasard, EveryKeywordWithEveryShapeOfArgument) {
  const std::vector<std::string> args = {"",        "()",      "(1)",      "(-1)",        "(0)",
                                         "(1,2,3)", "(\"a\")", "(NIL)",    "(1,\"x\")",   "(1e30)",
                                         "(-1e30)", "([1,50])", "(\"\")",  "(300, -5, 2)"};
  std::vector<std::string> noms = noms_des_mots();
  ASSERT_GT(noms.size(), 200u);
  std::string texte = "vol(1)\nvol(2) som = 0,0,0, 1,0,0, 0,1,0\nvol(2) fac = 1,2,3\nlum(1)\n";
  for (const auto& n : noms)
    for (const auto& a : args)
      texte += n + a + "\nvol(2) " + n + a + "\nx = " + n + a + "\nvol(2) " + n + a + " = 1,2\n";
  std::mt19937 g(11);
  std::uniform_int_distribution<std::size_t> un_nom(0, noms.size() - 1), un_arg(0, args.size() - 1);
  for (int i = 0; i < 3000; ++i) {
    for (int k = 1 + i % 3; k > 0; --k) texte += noms[un_nom(g)] + args[un_arg(g)] + " ";
    texte += "\n";
  }
  texte += "$ 12345 + 1\n";

  // emp=64: a small command stack, so the prompt's reminder stays short.
  Processus p = lance_orvane({"gra=0", "ID", "ini=env/initb.h", "emp=64"});
  ASSERT_GT(p.pid, 0);
  // The end of input ends the program.
  nourrit(p, texte, "\x01 jamais", 120000);
  EXPECT_NE(p.lu.find("12346.000000"), std::string::npos) << p.lu.substr(p.lu.size() > 2000 ? p.lu.size() - 2000 : 0);
  EXPECT_EQ(termine(p), 0);
}
