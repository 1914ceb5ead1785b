// The live scene's frame in the test's own process, on a GLUT window under
// Xvfb: no allocation across 100 frames, a hook that turns a volume, the
// menu entries as the menu's callback gives them, and what "quitter en
// validant" and "quitter sans valider" leave in the objects.
#include <cstring>
#include <string>

#include "../display/gl_outils.h"
#include "anim/anim.h"
#include "anim/interne.h"
#include "lang/lang.h"

namespace {
// The window, the real vocabulary (the hooks' text names keywords) and
// `count` cubes of side 40 in a row.
void monde_scene(int count) {
  if (piles.dim_obj < 20000) {
    ASSERT_EQ(piles_alloue(100, 100000, 20000, 1000), 0);
  }
  monde();
  contexte(200, 200);
  vol_rt_tous_libere();
  ASSERT_GE(kom_charge("env/koma.h", 0), 0);
  ASSERT_GE(kom_charge("env/komb.h", 1), 0);
  ASSERT_GE(mes_charge("env/mesa.h", 0), 0);
  ASSERT_GE(mes_charge("env/mesb.h", 1), 0);
  for (int i = 1; i <= count; ++i) {
    Objet* o = volume(i);
    ASSERT_EQ(vol_cube(o, 40), 0);
    const float d[3] = {-60.f + 30.f * static_cast<float>(i % 5), 0, 0};
    Transfo t;
    t.op = B_DEP;
    std::memcpy(t.v, d, sizeof d);
    transformer_vol(o, &t, nullptr, false);
  }
  oeil_courant.projection = 13;
  oeil_courant.oeil[2] = -400;
}

Objet* fonction_de_texte(const char* nom, const std::string& texte) {
  fonctions_analyse(texte.data(), texte.size());
  return fonction_trouve(nom);
}

std::vector<float> som(int num) {
  int n = 0, d = 3;
  const reel* s = vol_som(objet_trouve(B_VOL, 0, num, nullptr), &n, &d);
  return std::vector<float>(s, s + static_cast<long>(n) * d);
}
}  // namespace

TEST(SceneGl, CentImagesSansAllocation) {
  monde_scene(7);
  Objet* f = fonction_de_texte("tourne_gl", "tourne_gl()\n{\n  vol(3) roty(5)\n  vol(4) dep(1, 0, 0)\n}\n");
  ASSERT_NE(f, nullptr);
  ArgsInter a;
  a.fonc[1] = f;
  a.cadence = 0;
  ASSERT_EQ(interaction_debut(a), 0);
  ASSERT_TRUE(interaction_en_cours());
  // One frame first: the hook's function is linked by its first call.
  ASSERT_EQ(interaction_image(), 0);
  std::vector<float> avant3 = som(3);
  long appels = memoire.appels, compteur = memoire.compteur;
  for (int k = 0; k < 100; ++k) ASSERT_EQ(interaction_image(), 0) << k;
  EXPECT_EQ(memoire.appels, appels);
  EXPECT_EQ(memoire.compteur, compteur);
  EXPECT_EQ(interaction_num_image(), 101);
  // The hook did turn volume 3, 100 times 5 degrees.
  EXPECT_NE(som(3), avant3);
  interaction_fin();
  EXPECT_FALSE(interaction_en_cours());
  EXPECT_EQ(fen.mode_interactif, 0);
}

TEST(SceneGl, ValiderOuRestaurer) {
  monde_scene(2);
  const std::vector<float> depart = som(1);
  ArgsInter a;
  a.cadence = 0;
  // "quitter en validant": the live placement goes into the vertices.
  ASSERT_EQ(interaction_debut(a), 0);
  Vol_inter* v = vol_inter_de(1);
  ASSERT_NE(v, nullptr);
  v->pos[0] = 17;
  testing::internal::CaptureStdout();
  interaction_menu(2);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "quitter en validant\n");
  EXPECT_FALSE(interaction_en_cours());
  std::vector<float> apres = som(1);
  ASSERT_EQ(apres.size(), depart.size());
  for (std::size_t k = 0; k < apres.size(); k += 3) EXPECT_FLOAT_EQ(apres[k], depart[k] + 17);
  // "quitter sans valider": vertices changed meanwhile come back.
  ASSERT_EQ(interaction_debut(a), 0);
  int n = 0, d = 3;
  reel* s = vol_som(objet_trouve(B_VOL, 0, 1, nullptr), &n, &d);
  s[0] = 999;
  ASSERT_EQ(interaction_image(), 0);
  testing::internal::CaptureStdout();
  interaction_menu(1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "quitter sans valider\n");
  EXPECT_EQ(som(1), apres);
}

TEST(SceneGl, EntreesDuMenu) {
  monde_scene(3);
  ArgsInter a;
  a.cadence = 0;
  ASSERT_EQ(interaction_debut(a), 0);
  struct {
    int entree;
    const char* ligne;
    int cmd;
  } cas[] = {{8, "tirer(vol)\n", 95},  {9, "dep(oeil)\n", 9},    {10, "rotxy(oeil)\n", 10}, {11, "rotxz(oeil)\n", 11},
             {12, "rota(vol)\n", 34},  {13, "rotx(vol)\n", 35},  {14, "roty(vol)\n", 36},   {15, "rotz(vol)\n", 37},
             {16, "dep(vol)\n", 31}};
  for (auto& c : cas) {
    testing::internal::CaptureStdout();
    interaction_menu(c.entree);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), c.ligne);
    EXPECT_EQ(inter.cmd_souris, c.cmd);
  }
  testing::internal::CaptureStdout();
  interaction_menu(7);
  interaction_menu(17);
  EXPECT_EQ(inter.projection, 13);
  interaction_menu(18);
  EXPECT_EQ(inter.projection, 63);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "rayon\npers\northo\n");
  EXPECT_EQ(inter.cmd_rayon, 68);
  // reset: the mouse forgets, the records go back to their start.
  vol_inter_de(2)->rotx = 45;
  testing::internal::CaptureStdout();
  interaction_menu(4);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "reset\n");
  EXPECT_EQ(inter.cmd_souris, 0);
  EXPECT_EQ(vol_inter_de(2)->rotx, 0);
  // A frame at ortho still draws; an entry past 18 does nothing.
  EXPECT_EQ(interaction_image(), 0);
  testing::internal::CaptureStdout();
  interaction_menu(19);
  interaction_menu(-3);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  interaction_fin();
}

TEST(SceneGl, GlissementDeLOeil) {
  monde_scene(2);
  ArgsInter a;
  a.cadence = 0;
  ASSERT_EQ(interaction_debut(a), 0);
  // A record far out of the window: the eye glides to it in 4 frames.
  Vol_inter* v = vol_inter_de(2);
  v->pos[0] = 5000;
  const Oeil depart = oeil_courant;
  ASSERT_EQ(inter_glide(2, 4), 0);
  ASSERT_EQ(interaction_image(), 0);
  EXPECT_GT(oeil_courant.vise[0], depart.vise[0]);
  EXPECT_LT(oeil_courant.vise[0], v->pos[0] + v->centre[0]);
  for (int k = 0; k < 5; ++k) ASSERT_EQ(interaction_image(), 0);
  EXPECT_NEAR(oeil_courant.vise[0], v->pos[0] + v->centre[0], 1e-2);
  EXPECT_NEAR(oeil_courant.oeil[2] - oeil_courant.vise[2], depart.oeil[2] - depart.vise[2], 1e-2);
  // One already in the window: no glide.
  const Oeil ici = oeil_courant;
  ASSERT_EQ(inter_glide(2, 4), 0);
  ASSERT_EQ(interaction_image(), 0);
  EXPECT_EQ(oeil_courant.vise[0], ici.vise[0]);
  testing::internal::CaptureStdout();
  EXPECT_EQ(inter_glide(99, 4), -1);
  EXPECT_NE(testing::internal::GetCapturedStdout().find("99: "), std::string::npos);
  interaction_fin();
}
