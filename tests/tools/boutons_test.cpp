// Command buttons in a real window: drawn red under the real pointer and
// in their own colour elsewhere, their commands run at every frame the
// pointer stays over them, the picture's state given back; the `puls`
// table's bound. The phrase's bad forms are refused at the console in the
// transcripts.
#include "outils.h"

namespace {
// Draws one frame of buttons over black, with depth, lights and fog as
// the scene left them.
Pixels trame(bool etats_scene) {
  glClearColor(0, 0, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  if (etats_scene) {
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glEnable(GL_FOG);
  } else {
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_FOG);
  }
  dessine_puls();
  return lit_pixels();
}
}  // namespace

TEST(Boutons, RougeSousLePointeurTireAChaqueTrame) {
  monde_outils();
  puls_vide();
  execute_ligne("compte = 0");
  execute_ligne("autre = 0");
  // x from the centre, y down: the first at the left, the second low right.
  ASSERT_EQ(puls_cree("compte = compte + 1", 0, -40, 0), 0);
  ASSERT_EQ(puls_cree("autre = autre + 1", 20, 60, 0), 1);
  boutons[1].coul[0] = 0, boutons[1].coul[1] = 0, boutons[1].coul[2] = 1;
  // Rectangles: 19 characters, x from -114 to 114, y from -55 to -25.
  int cx = LARGEUR / 2, cy = HAUTEUR / 2;
  ASSERT_TRUE(pointe(cx - 100, cy - 40 - 12));
  float proj[16], proj2[16];
  glGetFloatv(GL_PROJECTION_MATRIX, proj);
  for (int k = 0; k < 3; ++k) {
    Pixels im = trame(k % 2 == 0);
    // Under the pointer's box, away from the text: red; the other button
    // its own blue; white text inside the red one.
    EXPECT_TRUE(im.rouge(cx + 100, cy - 40 - 13)) << k;
    EXPECT_TRUE(im.rouge(cx - 110, cy - 40 + 14)) << k;
    auto b = im.at(cx + 20, cy + 60 - 12);
    EXPECT_EQ(b[0], 0);
    EXPECT_EQ(b[2], 255);
    int blancs = 0;
    for (int y = cy - 55; y <= cy - 25; ++y)
      for (int x = cx - 114; x <= cx + 114; ++x) blancs += im.blanc(x, y);
    EXPECT_GT(blancs, 20);
    // Outside both: the background.
    EXPECT_EQ(im.at(cx, cy + 100)[0], 0);
    EXPECT_EQ(glIsEnabled(GL_DEPTH_TEST), k % 2 == 0);
    EXPECT_EQ(glIsEnabled(GL_LIGHTING), k % 2 == 0);
    EXPECT_EQ(glIsEnabled(GL_FOG), k % 2 == 0);
  }
  glDisable(GL_LIGHTING);
  glDisable(GL_FOG);
  glGetFloatv(GL_PROJECTION_MATRIX, proj2);
  EXPECT_EQ(std::memcmp(proj, proj2, sizeof proj), 0);
  EXPECT_EQ(lit("compte"), std::vector<float>{3});
  EXPECT_EQ(lit("autre"), std::vector<float>{0});

  // The pointer on the second: the first is its own colour again and stops.
  ASSERT_TRUE(pointe(cx + 20 + 50, cy + 60 + 14));
  Pixels im = trame(false);
  EXPECT_FALSE(im.rouge(cx + 100, cy - 40 - 13));
  EXPECT_TRUE(im.rouge(cx + 20 - 40, cy + 60 - 14));
  EXPECT_EQ(lit("compte"), std::vector<float>{3});
  EXPECT_EQ(lit("autre"), std::vector<float>{1});
  // On the edge of the box (x + 6n, y + 15) it still fires; one past, not.
  ASSERT_TRUE(pointe(cx + 20 + 6 * 17, cy + 60 + 15));
  trame(false);
  ASSERT_TRUE(pointe(cx + 20 + 6 * 17 + 1, cy + 60));
  trame(false);
  EXPECT_EQ(lit("autre"), std::vector<float>{2});
  puls_vide();
}

TEST(Boutons, HasardDeBoutonsEtDePointeurs) {
  monde_outils();
  std::mt19937 g(918273);
  for (int tour = 0; tour < 6; ++tour) {
    puls_vide();
    struct B {
      float x, y;
      int n;
    };
    std::vector<B> bs;
    int nb = 5 + static_cast<int>(g() % 40);
    for (int k = 0; k < nb; ++k) {
      std::string t = "h" + std::to_string(k) + " = h" + std::to_string(k) + " + 1";
      t.resize(t.size() + g() % (LONG_NOM_PULS + 1 - t.size()), ' ');
      float x = static_cast<float>(static_cast<int>(g() % 301) - 150) + 0.37f;
      float y = static_cast<float>(static_cast<int>(g() % 221) - 110) - 0.61f;
      ASSERT_EQ(puls_cree(t, x, y, 0), k);
      bs.push_back({x, y, static_cast<int>(t.size())});
      execute_ligne(("h" + std::to_string(k) + " = 0").c_str());
    }
    int px = static_cast<int>(g() % LARGEUR), py = static_cast<int>(g() % HAUTEUR);
    ASSERT_TRUE(pointe(px, py));
    int attendus = 0;
    std::vector<float> dans;
    for (const B& b : bs) {
      float x = static_cast<float>(px - LARGEUR / 2), y = static_cast<float>(py - HAUTEUR / 2);
      bool d = x >= b.x - 6 * b.n && x <= b.x + 6 * b.n && y >= b.y - 15 && y <= b.y + 15;
      dans.push_back(d ? 1.f : 0.f);
      attendus += d;
    }
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(dessine_puls(), attendus) << tour;
    std::string noms;
    for (int k = 0; k < nb; ++k) noms += (k ? ", h" : "h") + std::to_string(k);
    EXPECT_EQ(lit(noms), dans) << tour;
  }
  puls_vide();
}

TEST(Boutons, CentPulsPuisTropEtFormesFausses) {
  monde_outils();
  puls_vide();
  // Through the language, as a hook or the console would.
  std::string s = sortie_de([] {
    for (int k = 1; k <= 200; ++k) {
      std::string l = "puls(" + std::to_string(k * 7919 % 311 - 155) + ", " + std::to_string(-k) + ", 0.25) nom(\"b" +
                      std::to_string(k) + "\")";
      execute_ligne(l.c_str());
    }
  });
  EXPECT_EQ(compte(s, "TROP DE PULS\a\n"), 100u);
  int pleins = 0;
  for (const Puls& p : puls_table) pleins += p.nom[0] != 0;
  EXPECT_EQ(pleins, NB_PULS);
  EXPECT_STREQ(puls_table[99].nom, "b100");
  EXPECT_EQ(boutons[99].n, 4);
  EXPECT_FLOAT_EQ(boutons[99].x, static_cast<float>(100 * 7919 % 311 - 155));
  EXPECT_FLOAT_EQ(puls_table[99].pas, 0.25f);
  // A full table still finds its names, and moves them.
  sortie_de([] { execute_ligne("v = puls(-3.5, 77) nom(\"b42\")"); });
  EXPECT_EQ(lit("v"), (std::vector<float>{-3.5f, 77}));
  EXPECT_FLOAT_EQ(boutons[41].y, 77);
  puls_vide();
}

TEST(Boutons, PulsationLeLongDeSonAxe) {
  monde_outils();
  puls_vide();
  execute_ligne("puls(40, -20, 0.5) nom(\"$ 1\") acd(30)");
  execute_ligne("puls(-40, 20, 0.5) nom(\"$ 2\") acc(10)");
  ASSERT_TRUE(pointe(0, 0));
  for (int k = 1; k <= 7; ++k) {
    glClear(GL_COLOR_BUFFER_BIT);
    sortie_de([] { dessine_puls(); });
    float s = std::sin(0.5f * static_cast<float>(k));
    EXPECT_NEAR(boutons[0].x, 40 + 30 * s, 1e-3);
    EXPECT_NEAR(boutons[0].y, -20 + 30 * s, 1e-3);
    EXPECT_NEAR(boutons[1].x, -40 + 10 * s, 1e-3);
    EXPECT_FLOAT_EQ(boutons[1].y, 20);
  }
  puls_vide();
}
