// The engine on linked code built by hand, for what source text cannot
// reach: a call given more arguments than the function has formals, and a
// call block that was never linked. Control flow, frames, references and
// runaway recursion run through the compiler in the console transcripts.
#include "code.h"

using essai::Code;
using essai::lance;

namespace {
class Moteur : public testing::Test {
 protected:
  void SetUp() override { essai::environnement(); }
};
}  // namespace

TEST_F(Moteur, ExtraArgumentsAndUnlinkedCalls) {
  // deux(a, b) gives b; a third argument is ignored, a missing one is nil.
  Code d;
  d.t("( kw:retour ( #1 ) ) ;");
  essai::fonction("deux", d, 2, 2);
  EXPECT_EQ(lance("( kw:$ ( f:deux/1 ( 1 ) ) ) ;"), "NIL \n");
  EXPECT_EQ(lance("( kw:$ ( f:deux/3 ( 1 ) ( 2 ) ( 3 ) ) ) ;"), "2.000000 \n");
  EXPECT_EQ(piles.loc_haut, piles.loc_base);
  EXPECT_EQ(lance("( n:inconnue/1 ( 1 ) ) ;"), "inconnue: Fonction introuvable\a\nExecution abandonnee\a\n");
  Code s;
  s.t("(");
  s.bloc({4, IT_APPEL, 0, 0}).t(") ;");
  EXPECT_EQ(lance(s.fin()), "Appel non lie\a\nExecution abandonnee\a\n");
}
