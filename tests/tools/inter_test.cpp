// The tools inside a running scene, in a real window: a button that fires
// at each frame while the real pointer is over it and at none once it has
// left, `puls` through the scene's phrase and attached to its lists, the
// scene's mode menu with its entries and "memoire" submenu, chosen through
// the handler the menu calls, with the lines they print.
#include <fcntl.h>
#include <unistd.h>

#include "anim/anim.h"
#include "outils.h"

namespace {
// The scene's command registered, volume 1 and 2 made, the tables empty.
void scene() {
  monde_outils();
  static bool enregistre = false;
  if (!enregistre) interaction_enregistre(), enregistre = true;
  interaction_fin();
  puls_vide();
  sortie_de([] {
    execute_ligne("menu(0)");
    execute_ligne("vol(1) cube(40)");
    execute_ligne("vol(2) cube(25)");
  });
}

// Runs n frames of the scene; the frames it ran before it ended.
int images(int n) {
  int k = 0;
  sortie_de([&] {
    for (; k < n; ++k)
      if (interaction_image() < 0) break;
  });
  return k;
}

// The console's standard input, for the time of a piece of code, reads
// the text given.
template <class F>
std::string avec_entree(const std::string& texte, F f) {
  int p[2];
  EXPECT_EQ(pipe(p), 0);
  EXPECT_EQ(write(p[1], texte.data(), texte.size()), static_cast<ssize_t>(texte.size()));
  close(p[1]);
  int garde = dup(0);
  dup2(p[0], 0);
  close(p[0]);
  std::string s = sortie_de(f);
  dup2(garde, 0);
  close(garde);
  return s;
}

std::vector<std::string> textes_de(int id) {
  std::vector<std::string> v;
  for (int n = 1; n <= menu_nb_entrees(id); ++n) v.push_back(menu_entree(id, n));
  return v;
}
}  // namespace

TEST(ScenePuls, BoutonTireSousLePointeurPendantLaScene) {
  scene();
  sortie_de([] { execute_ligne("tirs = 0"); });
  ArgsInter a;
  a.cadence = 0;
  ASSERT_EQ(sortie_de([&] { EXPECT_EQ(interaction_debut(a), 0); }), "");
  ASSERT_TRUE(interaction_en_cours());
  // Made through the running scene's phrase: the result is its place.
  EXPECT_EQ(lit("interaction puls(-37, -41, 0) nom(\"tirs = tirs + 1\")"), (std::vector<float>{-37, -41}));
  int cx = LARGEUR / 2, cy = HAUTEUR / 2;
  ASSERT_TRUE(pointe(cx - 37 + 50, cy - 41 + 9));
  EXPECT_EQ(images(7), 7);
  EXPECT_EQ(lit("tirs"), std::vector<float>{7});
  // The pointer leaves: no more firing, the frames go on.
  ASSERT_TRUE(pointe(cx + 100, cy + 100));
  EXPECT_EQ(images(5), 5);
  EXPECT_EQ(lit("tirs"), std::vector<float>{7});
  EXPECT_EQ(interaction_num_image(), 12);
  // With a volume the phrase joins liste_2: each frame makes the button
  // again, as emptying the table shows.
  EXPECT_EQ(sortie_de([] { execute_ligne("puls(63, 17, 0) nom(\"suivi = 1\") vol(2)"); }), "");
  EXPECT_EQ(puls_table[1].nom[0], 0);
  puls_vide();
  EXPECT_EQ(images(1), 1);
  EXPECT_STREQ(puls_table[0].nom, "suivi = 1");
  EXPECT_EQ(boutons[0].x, 63);
  EXPECT_EQ(boutons[0].y, 17);
  // A bad puls inside the scene: its message, the scene goes on.
  EXPECT_EQ(sortie_de([] { execute_ligne("interaction puls(1, 2, 0)"); }), "puls nom\a\n");
  EXPECT_TRUE(interaction_en_cours());
  sortie_de([] { interaction_fin(); });
  // Without a scene, the phrase with a volume adds nothing anywhere.
  puls_vide();
  EXPECT_EQ(sortie_de([] { execute_ligne("puls(1, 2, 0) nom(\"x = 1\") vol(1)"); }), "");
  EXPECT_EQ(puls_table[0].nom[0], 0);
}

TEST(ScenePuls, MenuDuModeEtSesEntrees) {
  scene();
  // The start's exec and nom fill the two submenus before the menu is made.
  std::string s = sortie_de([] {
    execute_ligne("interaction exec(\"e85 = 851\") cadence(0) mem(2, 1, 9)");
  });
  ASSERT_TRUE(interaction_en_cours());
  int slot = fen.menus[slot_mode(85)];
  ASSERT_GT(slot, 0);
  std::vector<std::string> t = textes_de(slot);
  ASSERT_EQ(t.size(), 19u);
  EXPECT_EQ(t[0], "exec");
  EXPECT_EQ(t[1], "menu");
  EXPECT_EQ(t[2], "quitter sans valider");
  EXPECT_EQ(t[10], "dep(oeily)");
  EXPECT_EQ(t[17], "dep");
  EXPECT_EQ(t[18], "memoire");
  EXPECT_EQ(textes_de(fen.racines[0]), std::vector<std::string>{"e85 = 851"});
  menu_choisi(0, 1);
  EXPECT_EQ(lit("e85"), std::vector<float>{851});

  // Entries print their lines; 8 to 16 not the menu's texts.
  EXPECT_EQ(sortie_de([] { inter_menu_choix(9); }), "dep(oeil)\n");
  EXPECT_EQ(sortie_de([] { inter_menu_choix(13); inter_menu_choix(15); }), "rotx(vol)\nrotz(vol)\n");
  EXPECT_EQ(sortie_de([] { inter_menu_choix(17); inter_menu_choix(18); }), "pers\northo\n");
  // 3 reads one line from the console and runs it.
  EXPECT_EQ(avec_entree("lu3 = 3 * 11\n", [] { inter_menu_choix(3); }), "interpreteur\nCommande> ");
  EXPECT_EQ(lit("lu3"), std::vector<float>{33});
  // 6 reads a volume's number: unknown, the message; known, no message.
  EXPECT_EQ(avec_entree("77\n", [] { inter_menu_choix(6); }), "designer = 77: Introuvable\a\n");
  EXPECT_EQ(avec_entree("2\n", [] { inter_menu_choix(6); }), "designer = ");

  // memoire: the angle in radians (entries 1 to 3), or the axis and the
  // angle (4), into each listed volume's memory; volume 9 is not in the
  // scene and is passed over.
  sortie_de([] {
    execute_ligne("interaction vol(2) rota(57.5)");
    execute_ligne("interaction vol(2) axe(0, 0, 3)");
  });
  sortie_de([] { execute_ligne("interaction vol(1) rota(-200)"); });
  EXPECT_EQ(sortie_de([] { inter_menu_choix(102); }), "");
  std::vector<float> m2 = lit("vol(2) mem"), m1 = lit("vol(1) mem");
  ASSERT_EQ(m2.size(), 1u);
  EXPECT_NEAR(m2[0], 57.5f * 0.017453f, 1e-5);
  ASSERT_EQ(m1.size(), 1u);
  EXPECT_NEAR(m1[0], -200 * 0.017453f, 1e-5);
  inter_menu_choix(104);
  m2 = lit("vol(2) mem");
  ASSERT_EQ(m2.size(), 4u);
  EXPECT_NEAR(m2[2], 1, 1e-6);
  EXPECT_NEAR(m2[3], 57.5f * 0.017453f, 1e-5);
  EXPECT_TRUE(lit("vol(9) mem").empty());
  // 2 keeps the live values and ends; the shell's menu is back.
  EXPECT_EQ(sortie_de([] { inter_menu_choix(2); }), "quitter en validant\n");
  EXPECT_FALSE(interaction_en_cours());
  EXPECT_EQ(textes_de(fen.menus[slot_mode(0)]).back(), "clavier");
  // Chosen with no scene: nothing.
  EXPECT_EQ(sortie_de([] { inter_menu_choix(13); inter_menu_choix(101); }), "");
}
