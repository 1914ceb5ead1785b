// Messages: the statement failure rule, the report formats, and the user's
// message tables with their fields and their bad files.
#include <cstdio>
#include <fstream>

#include "tests/core/outils.h"

using namespace outils;

TEST(Echec, StatementFailureSetsA108AndReports) {
  environnement();
  int n = 0;
  int r = 0;
  EXPECT_EQ(sortie_de([&] { r = echec_instruction(); }), "[108]");
  EXPECT_EQ(r, -1);
  EXPECT_EQ(mot_valeur(0, A_ERR, &n)[0], -1.f);
}

TEST(Rapport, ObjectThenContextThenMessage) {
  environnement();
  Objet* v = objet_cree(1, B_VOL, B_SORTE_14, nullptr, nullptr, 3);
  auto r = reels_({1.5f, 2});
  EXPECT_EQ(sortie_de([&] { erreur_objet(v, 7, "ctx", r.data(), 2, 0, 61); }),
            "b4 3 7: ctx: 2.000000 [61]");
  EXPECT_EQ(sortie_de([&] { erreur_objet(v, 0, nullptr, r.data(), 0, 0, 61); }),
            "b4 3 1.500000 2.000000 [61]");
  EXPECT_EQ(sortie_de([&] { erreur_objet(nullptr, 0, nullptr, r.data(), 5, 0, 61); }),
            "5: [66][61]");
  auto l = liste_({chaine_("mot"), std::vector<mot>{6, BLOC_ENTIER, 2, 1, 4, -5}});
  EXPECT_EQ(sortie_de([&] { erreur_objet(nullptr, 0, nullptr, l.data(), 0, 0, 61); }),
            "mot 4 -5 [61]");
  EXPECT_EQ(sortie_de([&] { erreur_nom(v, 0, 9, "!\n"); }), "b4 3  B4 B14 [9]!\n");
  Objet* g = objet_cree(0, OBJ_GLOBAL, 0, nullptr, "gx", 0);
  EXPECT_EQ(sortie_de([&] { erreur_nul(g); }), "a21 gx [22]");
  Objet* s = objet_cree(0, OBJ_STATIQUE, 0, nullptr, "sx", 1);
  EXPECT_EQ(sortie_de([&] { erreur_usage(s); }), "a45 sx [14]");
  Objet local{};
  local.type = OBJ_LOCAL;
  local.numero = -2;
  EXPECT_EQ(sortie_de([&] { erreur_usage(&local); }), "LOC2 [14]");
  auto c = chaine_("absent");
  EXPECT_EQ(sortie_de([&] { erreur_element(c.data(), 1); }), "absent [9]");
  EXPECT_EQ(sortie_de([] { erreur_interne("x"); }), "[104]x\a\n");
}

TEST(Utilisateur, FieldsAndMessagesBetweenSemicolons) {
  environnement();
  ASSERT_EQ(message_utilisateur_charge("t", ";a|b;;c;"), 0);
  std::string s;
  EXPECT_EQ(message_utilisateur("t", 0, 1, s), 0);
  EXPECT_EQ(s, "b");
  EXPECT_EQ(message_utilisateur("t", 1, TEXTE_ENTIER, s), 0);
  EXPECT_EQ(s, "c");
  EXPECT_EQ(message_utilisateur("t", 0, TEXTE_ENTIER, s), 0);
  EXPECT_EQ(s, "a|b");
  EXPECT_EQ(message_utilisateur("t", 0, 5, s), 0);  // past the last field: the first
  EXPECT_EQ(s, "a");
  EXPECT_EQ(message_utilisateur("t", 0, -3, s), 0);
  EXPECT_EQ(s, "a");
  int r = 0;
  EXPECT_EQ(sortie_de([&] { r = message_utilisateur("t", 2, 0, s); }), "2 2\a\n");
  EXPECT_EQ(r, -1);
  EXPECT_EQ(sortie_de([&] { r = message_utilisateur("u", 0, 0, s); }), "u: [9]");
  EXPECT_EQ(r, -1);
}

TEST(Utilisateur, UnterminatedFileKeepsThePreviousText) {
  environnement();
  std::string s;
  int r = 0;
  EXPECT_EQ(sortie_de([&] { r = message_utilisateur("t", 0, 0, s); }), "[109]");
  EXPECT_EQ(r, -1);
  ASSERT_EQ(message_utilisateur_charge("t", ";un;"), 0);
  ASSERT_EQ(message_utilisateur_charge("v", ";autre;"), 0);
  EXPECT_EQ(sortie_de([&] { r = message_utilisateur_charge("t", ";deux; ;trois"); }), "t: [103]");
  EXPECT_EQ(r, -1);
  EXPECT_EQ(message_utilisateur("t", 0, TEXTE_ENTIER, s), 0);
  EXPECT_EQ(s, "un");
  ASSERT_EQ(message_utilisateur_charge("t", "\n;deux;\n;trois;\n"), 0);  // replaced
  EXPECT_EQ(message_utilisateur("t", 1, TEXTE_ENTIER, s), 0);
  EXPECT_EQ(s, "trois");
  EXPECT_EQ(message_utilisateur("v", 0, TEXTE_ENTIER, s), 0);
  EXPECT_EQ(s, "autre");
}

TEST(Utilisateur, TheCommandPrintsLoadsAndLooksUp) {
  environnement();
  std::string chemin = testing::TempDir() + "orvane_mes_utilisateur.txt";
  {
    std::ofstream f(chemin);
    f << "/* entete; sans message */\n;bonjour|salut;\n/* ; */;au revoir;\n";
  }
  std::vector<mot> pile(64, 0);
  auto pose = [&](Phrase p) { std::copy(p.m.begin(), p.m.end(), pile.begin()); };
  const mot* limite = pile.data() + pile.size();

  pose(Phrase().clause(0, 110));  // no value: nothing
  EXPECT_EQ(messages_utilisateur(pile.data(), limite), 0);
  pose(Phrase().clause(0, 110, reels_({0, 15})));
  EXPECT_EQ(sortie_de([&] { messages_utilisateur(pile.data(), limite); }), "[15]");
  pose(Phrase().clause(0, 110, chaine_(chemin)));
  ASSERT_EQ(messages_utilisateur(pile.data(), limite), 0);

  pose(Phrase().clause(0, 110, liste_({chaine_(chemin), reels_({0}), reels_({1})})));
  ASSERT_EQ(messages_utilisateur(pile.data(), limite), 0);
  EXPECT_EQ(pile[1], BLOC_CHAINE);
  EXPECT_STREQ(bloc_texte(pile.data()), "salut");
  pose(Phrase().clause(0, 110, liste_({chaine_(chemin), reels_({1})})));
  ASSERT_EQ(messages_utilisateur(pile.data(), limite), 0);
  EXPECT_STREQ(bloc_texte(pile.data()), "au revoir");
  // No room for the result, and a number that is no float.
  pose(Phrase().clause(0, 110, liste_({chaine_(chemin), reels_({1})})));
  EXPECT_EQ(messages_utilisateur(pile.data(), pile.data() + 6), -12);
  pose(Phrase().clause(0, 110, liste_({chaine_(chemin), chaine_("1")})));
  EXPECT_EQ(messages_utilisateur(pile.data(), limite), -1);

  std::string absent = testing::TempDir() + "orvane_absent_xyz";
  pose(Phrase().clause(0, 110, chaine_(absent)));
  int r = 0;
  EXPECT_EQ(sortie_de([&] { r = messages_utilisateur(pile.data(), limite); }), absent + ": [36]");
  EXPECT_EQ(r, -1);
  std::remove(chemin.c_str());
}
