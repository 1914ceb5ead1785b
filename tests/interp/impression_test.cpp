// Printing of the value forms that commands give back (integers, matrices),
// the display with rows, the debug traces, and a keyword whose argument is
// kept as code.
#include "code.h"
#include "tests/outils/sortie.h"

namespace {
class Impression : public testing::Test {
 protected:
  void SetUp() override { essai::environnement(); }
  static std::vector<mot> reels(std::initializer_list<float> v, mot colonnes = 1) {
    std::vector<mot> b{static_cast<mot>(4 + v.size()), BLOC_REEL, static_cast<mot>(v.size()), colonnes};
    for (float x : v) b.push_back(reel_mot(x));
    return b;
  }
};
}  // namespace

TEST_F(Impression, IntegersAndMatricesByRows) {
  std::vector<mot> e{10, BLOC_ENTIER, 2, 3, 1, 2, 3, 4, 5, 6};
  EXPECT_EQ(sortie_de([&] { imprimer(e.data(), nullptr); }), "1 2 3 \n4 5 6 \n");
  std::vector<mot> m = reels({1, 2, 3, 4}, 2);
  EXPECT_EQ(sortie_de([&] { imprimer(m.data(), nullptr); }), "1: 1.000000 2.000000 \n2: 3.000000 4.000000 \n");
  std::vector<mot> nil{4, BLOC_NIL, 0, 1};
  EXPECT_EQ(sortie_de([&] { imprimer(nil.data(), nullptr); }), "NIL ");
  std::vector<mot> v = reels({1.5, 2});
  EXPECT_EQ(sortie_de([&] { imprimer(v.data(), "%.1f,"); }), "1.5,2.0,");
}

TEST_F(Impression, DisplayWithRows) {
  std::vector<mot> v = reels({1, 2, 3, 4, 5});
  const reel deux[1] = {2}, zero[1] = {0}, dix[1] = {10};
  EXPECT_EQ(sortie_de([&] { afficher(v.data(), deux, 1); }),
            "0: 1.000000 2.000000 \n1: 3.000000 4.000000 \n2: 5.000000 \n");
  EXPECT_EQ(sortie_de([&] { afficher(v.data(), zero, 1); }), "1.000000 2.000000 3.000000 4.000000 5.000000 \n");
  EXPECT_EQ(sortie_de([&] { afficher(v.data(), dix, 1); }), "1.000000 2.000000 3.000000 4.000000 5.000000 \n");
  essai::lance("( s = \" un  deux\" ) ;");
  EXPECT_EQ(sortie_de([&] { afficher(essai::globale("s")->donnees, nullptr, 0); }), "0: un\n1: deux\n");
}

TEST_F(Impression, DebugTracesOnlyForListedOptions) {
  EXPECT_EQ(sortie_de([] { EXPECT_EQ(option_debug("x", 1, 0, A_PAS, 1, 2, 0, 0), 0); }), "");
  debug.drapeau = 1;
  debug.n = 1;
  debug.paires[0][0] = 0;
  debug.paires[0][1] = A_PAS;
  EXPECT_EQ(sortie_de([] { EXPECT_EQ(option_debug("x", 1, 0, A_PAS, 1, 2, 0, 0), 1); }), "x -> 2.000000\n");
  EXPECT_EQ(sortie_de([] { option_debug("y", -1, 0, A_PAS, 2, 1, 3, 0); }), "[y  1.000000 3.000000]\n");
  EXPECT_EQ(sortie_de([] { option_debug("z", 0, 0, A_PAS, 0, 0, 0, 0); }), "");
}

TEST_F(Impression, FlaggedKeywordKeepsItsGroupAsCode) {
  // A keyword whose entry is flagged takes its group unevaluated, as a list
  // of the group's words for its handler to run.
  MotCle* m = mot_cherche("rotx");
  ASSERT_NE(m, nullptr);
  m->e1 = -1;
  essai::Code c;
  c.t("kw:rotx ( jamais + 1 ) )");
  mot* code = c.fin();
  piles_reset();
  mot* b = piles.eva_base;
  mot* suite = construire_phrase(code + 4, b);
  ASSERT_NE(suite, nullptr);
  EXPECT_EQ(suite[0], IT_OP);
  EXPECT_EQ(suite[1], ')');
  EXPECT_EQ(b[1], BLOC_PHRASE);
  EXPECT_EQ(b[2], 1);
  mot* liste = b + 7;
  EXPECT_EQ(liste[1], BLOC_LISTE);
  EXPECT_EQ(liste[0], 4 + 10);  // ( jamais + 1 ) as five pairs
  EXPECT_EQ(liste[4], IT_OP);
  EXPECT_EQ(liste[5], '(');
  EXPECT_EQ(liste[12], IT_OP);
  EXPECT_EQ(liste[13], ')');
  m->e1 = 0;
}
