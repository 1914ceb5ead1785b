// The evaluator on bracketed code: broadcasting by cycling, the deliberate
// traits of power and of && and ||, concatenation, strings and nil, views
// and the failures that must leave the next statement running.
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

TEST_F(Evaluateur, UnlikeLengthsCycleTheShorterOperand) {
  EXPECT_EQ(imprime("( 1 , ( 2 , 3 ) ) + 1"), "2.000000 3.000000 4.000000 \n");
  EXPECT_EQ(imprime("( 1 , ( 2 , ( 3 , 4 ) ) ) * ( 1 , 2 )"), "1.000000 4.000000 3.000000 8.000000 \n");
  EXPECT_EQ(imprime("( 1 , 2 ) * ( 1 , ( 2 , 3 ) )"), "1.000000 4.000000 3.000000 \n");
  // two whole rounds, then the remainder
  EXPECT_EQ(imprime("( 1 , ( 2 , ( 3 , ( 4 , 5 ) ) ) ) + ( 10 , 20 )"),
            "11.000000 22.000000 13.000000 24.000000 15.000000 \n");
  EXPECT_EQ(imprime("1 - ( 1 , ( 2 , 3 ) )"), "0.000000 -1.000000 -2.000000 \n");
  EXPECT_EQ(imprime("( 1 , ( 2 , 3 ) ) == ( 1 , ( 5 , 3 ) )"), "1.000000 0.000000 1.000000 \n");
}

TEST_F(Evaluateur, ArithmeticEdges) {
  EXPECT_EQ(imprime("5 % 3.7"), "2.000000 \n");  // operands truncate
  EXPECT_EQ(imprime("2 ^ 0.5"), "1.414214 \n");
  EXPECT_EQ(imprime("0 ^ 2"), "0.000000 \n");
  EXPECT_EQ(imprime("( 0 - 2 ) ^ 2"), "0.000000 \n");
  EXPECT_EQ(imprime("2 ^ 100"), "4727839526297272320.000000 \n");  // exp(43) at most
  EXPECT_EQ(imprime("1 << 33"), "2.000000 \n");                    // shift modulo 32
  EXPECT_EQ(imprime("( 0 - 8 ) >> 1"), "-4.000000 \n");
  EXPECT_EQ(imprime("6 & 3"), "2.000000 \n");
  EXPECT_EQ(imprime("6 | 3"), "7.000000 \n");
  EXPECT_EQ(imprime("1 ~ 1.005"), "1.000000 \n");  // within the tolerance of opt
  EXPECT_EQ(imprime("1 ~ 1.05"), "0.000000 \n");
  EXPECT_EQ(imprime("! ( 1 , ( 0 , 2 ) )"), "0.000000 1.000000 0.000000 \n");
  EXPECT_EQ(imprime("3e9 % 2"), "0.000000 \n");  // past every int32, still exact
  EXPECT_EQ(imprime("3e9 % 7"), "4.000000 \n");
  EXPECT_EQ(imprime("( 0 - 1e30 ) % 1e29"), "0.000000 \n");
  EXPECT_EQ(imprime("( 0 - 7.9 ) % 3"), "-1.000000 \n");
}

TEST_F(Evaluateur, PowerOnUnlikeLengthsKeepsItsOwnCycle) {
  // q single elements with the cycled side at its first element, then r.
  EXPECT_EQ(imprime("( 2 , ( 3 , ( 4 , ( 5 , 6 ) ) ) ) ^ ( 2 , 3 )"),
            "4.000000 9.000000 16.000000 0.000000 0.000000 \n");
  EXPECT_EQ(imprime("( 2 , 3 ) ^ ( 1 , ( 2 , 3 ) )"), "2.000000 4.000000 0.000000 \n");
}

TEST_F(Evaluateur, AndOrMoveTheRightCursorOnlyWhenItCounts) {
  EXPECT_EQ(imprime("( 1 , ( 0 , ( 1 , 1 ) ) ) && ( 1 , 0 )"),
            "1.000000 0.000000 0.000000 1.000000 \n");
  EXPECT_EQ(imprime("( 0 , ( 1 , 0 ) ) || ( 1 , 0 )"), "1.000000 1.000000 0.000000 \n");
}

TEST_F(Evaluateur, StringsNilAndLists) {
  EXPECT_EQ(imprime("\"a\" == \"a\""), "1.000000 \n");
  EXPECT_EQ(imprime("\"a\" == 1"), "0.000000 \n");
  EXPECT_EQ(imprime("\"a\" != \"b\""), "1.000000 \n");
  EXPECT_EQ(imprime("NIL == NIL"), "1.000000 \n");
  EXPECT_EQ(imprime("\"a\" , \"b\""), "ab \n");
  EXPECT_EQ(imprime("NIL , 1"), "1.000000 \n");
  EXPECT_EQ(imprime("1 , NIL"), "1.000000 \n");
  // a list; its neighbours of one type merge
  EXPECT_EQ(imprime("( \"a\" , 1 ) , ( 2 , \"b\" )"), "a 1.000000 2.000000 b \n");
  EXPECT_EQ(imprime("( \"%d\" , 3 )"), "3\n");
  EXPECT_EQ(imprime("\"%5.1f,%d\" , ( 2.25 , 7 )"), "  2.2,7\n");
  EXPECT_EQ(imprime("\"%s%n%d\" , ( 1 , \"x\" )"), "1.000000 x \n");  // no unsafe conversion
  std::string s = imprime("\"a\" + 1");
  EXPECT_NE(s.find("a 1.000000 +: Operateur non applicable"), std::string::npos) << s;
  EXPECT_NE(s.find("Execution abandonnee"), std::string::npos);
}

TEST_F(Evaluateur, RampsAndIndices) {
  EXPECT_EQ(imprime("[ 1 , 4 ]"), "1.000000 2.000000 3.000000 4.000000 \n");
  EXPECT_EQ(imprime("[ 4 , 1 ]"), "4.000000 3.000000 2.000000 1.000000 \n");
  EXPECT_EQ(imprime("[ 0 , ( 1 , 0.25 ) ]"), "0.000000 0.250000 0.500000 0.750000 1.000000 \n");
  EXPECT_EQ(imprime("[ 3 ]"), "3.000000 \n");
  EXPECT_EQ(imprime("[ 1 , ( 2 , 0 ) ]"), "1.000000 2.000000 \n");  // step 0 is 1
  lance("( x = ( 1 , ( 2 , 3 ) ) ) ; ( ( x [ 1 ] ) = 9 ) ;");
  EXPECT_EQ(essai::reels_de("x"), (std::vector<float>{1, 9, 3}));
  EXPECT_EQ(imprime("x [ 0 , 1 ]"), "1.000000 9.000000 \n");  // a ramp of indices
  EXPECT_EQ(imprime("x [ 0 , ( 2 , 2 ) ]"), "1.000000 3.000000 \n");
  lance("( y = ( 1 , ( 2 , ( 3 , ( 4 , ( 5 , 6 ) ) ) ) ) ) ; ( ( y { 1 } ) = ( 7 , ( 8 , 9 ) ) ) ;");
  EXPECT_EQ(essai::reels_de("y"), (std::vector<float>{1, 2, 3, 7, 8, 9}));
  EXPECT_EQ(imprime("y { 0 }"), "1.000000 2.000000 3.000000 \n");
  std::string s = imprime("x [ 5 ]");
  EXPECT_EQ(s, "5: Indice hors limites\a\nExecution abandonnee\a\n");
  EXPECT_EQ(essai::reels_de("x"), (std::vector<float>{1, 9, 3}));
}

TEST_F(Evaluateur, StringViews) {
  lance("( s = \"abc\" ) ; ( ( s [ 0 ] ) = \"X\" ) ;");
  EXPECT_EQ(essai::texte_de_variable("s"), "Xbc");
  EXPECT_EQ(imprime("s [ 1 , 2 ]"), "bc \n");
  lance("( t = \"un,deux trois\" ) ;");
  EXPECT_EQ(imprime("t { 1 }"), "deux \n");
  EXPECT_EQ(imprime("t { 2 , 0 }"), "trois deux un \n");
  lance("( l = ( \"a\" , 1 ) ) ;");
  EXPECT_EQ(imprime("l [ 1 ]"), "1.000000 \n");
}

TEST_F(Evaluateur, AssignmentsCompoundAndIncrements) {
  lance("( x = 5 ) ; ( x += 2 ) ; ( v ,= 4 ) ; ( v ,= 5 ) ;");
  EXPECT_EQ(essai::reels_de("x"), (std::vector<float>{7}));
  EXPECT_EQ(essai::reels_de("v"), (std::vector<float>{4, 5}));
  lance("( a = ( kw:remplir ( 3 , 7 ) ) ) ; ( b = ( kw:vecteur ( 2 ) ) ) ;");
  EXPECT_EQ(essai::reels_de("a"), (std::vector<float>{7, 7, 7}));
  EXPECT_EQ(essai::reels_de("b"), (std::vector<float>{0, 0}));
  // postfix: the old value now, the increment when its group is left
  lance("( i = 0 ) ; ( z = ( 10 , ( 20 , 30 ) ) ) ; ( r = ( z [ ( i ++ ) ] ) ) ; ( q = ( z [ i ] ) ) ;");
  EXPECT_EQ(essai::reels_de("r"), (std::vector<float>{10}));
  EXPECT_EQ(essai::reels_de("q"), (std::vector<float>{20}));
  EXPECT_EQ(essai::reels_de("i"), (std::vector<float>{1}));
  lance("( j = ( ++ i ) ) ;");
  EXPECT_EQ(essai::reels_de("j"), (std::vector<float>{2}));
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
