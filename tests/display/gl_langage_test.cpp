// The language's side of lights and fog in a running window: the reading
// of the lights, the fog command and its refusals, and exp still a
// function under the same word.
#include "outils_fenetre.h"

TEST(GlLangage, LightsReadingAndFogCommand) {
  Session s;
  ASSERT_TRUE(attend(s.p, "empilements"));
  tape(s.p, "lum");
  EXPECT_TRUE(attend(s.p, "7: off\n"));
  tape(s.p, "$ brou(1)");
  EXPECT_TRUE(attend(s.p, "2.718282"));
  std::size_t avant = compte(s.p.lu, "abandonnee");
  for (const char* faux : {"brou(7) bro(1,0,0)", "brou bro(1,2)", "brou coe(-1)", "brou zbu(5,5)", "brou bro(-1)",
                           "brou zbu(0, 1/0)"})
    tape(s.p, faux);
  tape(s.p, "brou(2) bro(0.5, 0.5, 1) zbu(10, 900) coe(0.002) lum");
  tape(s.p, "brou bro(0)");
  tape(s.p, "$ \"fin\"");
  ASSERT_TRUE(attend(s.p, "fin"));
  EXPECT_EQ(compte(s.p.lu, "abandonnee") - avant, 6u) << s.p.lu;
}
