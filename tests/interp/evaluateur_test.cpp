// The evaluator on bracketed code: the arithmetic edges that the console
// transcripts leave out, and the failures that must leave the next
// statement running, with and without cont.
#include "code.h"

using essai::lance;

namespace {
class Evaluateur : public testing::Test {
 protected:
  void SetUp() override { essai::environnement(); }
  // The output of $ on an expression given in its bracketed form.
  static std::string imprime(const std::string& expr) {
    return lance(("( kw:$ ( " + expr + " ) ) ;").c_str());
  }
};
}  // namespace

TEST_F(Evaluateur, EdgesOfTheArithmetic) {
  // The common operators, broadcasting, strings and ramps run at the
  // console in the transcripts; these are the edges they do not reach.
  constexpr std::pair<const char*, const char*> cas[] = {
      {"1 - ( 1 , ( 2 , 3 ) )", "0.000000 -1.000000 -2.000000 "},  // a scalar on the left cycles too
      {"2 ^ 100", "4727839526297272320.000000 "},                 // exp(43) at most
      {"3e9 % 7", "4.000000 "},                                   // past every int32, still exact
      {"( 0 - 1e30 ) % 1e29", "0.000000 "},
      {"( 0 - 7.9 ) % 3", "-1.000000 "},                          // operands truncate toward 0
  };
  for (auto [expr, attendu] : cas) EXPECT_EQ(imprime(expr), std::string(attendu) + "\n") << expr;
}

TEST_F(Evaluateur, FailuresReportAndTheNextLineRuns) {
  std::string s = lance("( a = ( 1 / 0.00001 ) ) ;");
  EXPECT_EQ(s, "Division par zero\a\nExecution abandonnee\a\n");
  int n;
  EXPECT_EQ(mot_valeur(0, A_ERR, &n)[0], -1.0f);
  EXPECT_EQ(imprime("jamais"), "jamais: variable sans valeur\a\nExecution abandonnee\a\n");
  EXPECT_EQ(imprime("jamais + 1"), "jamais: variable sans valeur\a\nExecution abandonnee\a\n");
  EXPECT_EQ(imprime("2 + 2"), "4.000000 \n");
  // with cont off a failing statement does not stop the text, and so does
  // not say that it stopped: its own message and a108 tell the failure
  etats[0][A_CONT] = 0;
  mot_valeur(0, A_ERR, &n)[0] = 0;
  s = lance("( a = ( 1 / 0 ) ) ; ( kw:$ ( 5 ) ) ;");
  EXPECT_EQ(s, "Division par zero\a\n5.000000 \n");
  EXPECT_EQ(mot_valeur(0, A_ERR, &n)[0], -1.0f);
}

TEST_F(Evaluateur, StackLimitIsReportedAsMessage12) {
  // A ramp longer than the stack.
  std::string s = imprime("[ 1 , 1e9 ]");
  EXPECT_EQ(s, "Pile d'evaluation pleine\a\nExecution abandonnee\a\n");
}
