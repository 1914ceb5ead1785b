// The running scene's own values in a real window, in process: the
// keywords that read and write a working record's value of the same name
// (its own fields, the eye's, or the volume's attribute it borrows), the
// limits, the pull force that each frame clears, live fog, the traces,
// the panels and the kept keywords; and the start's smoothing, scripted
// mouse and one-frame forms.
#include "anim/anim.h"
#include "outils.h"
#include "anim/interne.h"
#include "geom/geom.h"
#include "image/image.h"

namespace {
void demarre(const std::string& ligne) {
  monde_outils();
  static bool enregistre = false;
  if (!enregistre) interaction_enregistre(), enregistre = true;
  sortie_de([&] {
    interaction_fin();
    execute_ligne("vol(1) cube(40)");
    execute_ligne("vol(2) cube(25)");
    execute_ligne(ligne.c_str());
  });
}

int images(int n) {
  int k = 0;
  sortie_de([&] {
    // The frame that ends the scene counts.
    while (k < n)
      if (++k, interaction_image() < 0) break;
  });
  return k;
}

std::vector<float> attribut(int vol, int ord) {
  Objet* o = objet_trouve(B_VOL, 0, vol, nullptr);
  const mot k[2] = {1, ord};
  const mot* v = o ? vol_valeur(o, 1, k) : nullptr;
  if (!v || v[1] != BLOC_REEL) return {};
  return {reels(const_cast<mot*>(v) + 4), reels(const_cast<mot*>(v) + 4) + (v[0] - 4)};
}

void pres(const std::vector<float>& a, const std::vector<float>& b, float tol = 1e-4f) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) EXPECT_NEAR(a[i], b[i], tol) << i;
}
}  // namespace

TEST(SceneValeurs, ChampsDuRecordLusEtEcrits) {
  demarre("interaction cadence(0)");
  ASSERT_TRUE(interaction_en_cours());
  // The record's own: listed volumes written, the first one read.
  sortie_de([] { execute_ligne("interaction vol(2) dep(10.5, -2037, 30)"); });
  pres(lit("interaction vol(2) dep"), {10.5f, -2037, 30});
  pres(lit("interaction vol(1) dep"), {0, 0, 0});
  // Without vol: every record.
  sortie_de([] { execute_ligne("interaction rotx(-33.25)"); });
  pres(lit("interaction vol(1) rotx"), {-33.25f});
  pres(lit("interaction vol(2, 1) rotx"), {-33.25f});
  // The centre of gravity of a cube about the origin, then moved.
  EXPECT_EQ(lit("interaction vol(2) centre").size(), 3u);
  sortie_de([] { execute_ligne("interaction vol(2) centre(1, 2, 3)"); });
  pres(lit("interaction vol(2) centre"), {1, 2, 3});
  // The volume's attribute the record borrows: written through the scene,
  // seen in the object.
  sortie_de([] { execute_ligne("interaction vol(1, 2) coul(0.25, 0.5, 0.75)"); });
  pres(attribut(1, 17), {0.25f, 0.5f, 0.75f});
  pres(attribut(2, 17), {0.25f, 0.5f, 0.75f});
  pres(lit("interaction vol(2) coul"), {0.25f, 0.5f, 0.75f});
  sortie_de([] { execute_ligne("interaction vol(2) mas(71.5)"); });
  pres(lit("interaction vol(2) mas"), {71.5f});
  // The live vertices: 8 of a cube, the first one moved.
  std::vector<float> s = lit("interaction vol(1) som");
  ASSERT_EQ(s.size(), 24u);
  sortie_de([] { execute_ligne("interaction vol(1) som(777, 888, 999)"); });
  s = lit("interaction vol(1) som");
  pres({s[0], s[1], s[2]}, {777, 888, 999});
  // The eye's.
  sortie_de([] { execute_ligne("interaction foc(2.75)"); });
  pres(lit("interaction foc"), {2.75f});
  // Frames still run, the values stand.
  EXPECT_EQ(images(3), 3);
  pres(lit("interaction vol(2) dep"), {10.5f, -2037, 30});
  // A bad value: the message, nothing changed, the scene goes on.
  EXPECT_NE(sortie_de([] { execute_ligne("interaction vol(2) dep(\"x\")"); }), "");
  pres(lit("interaction vol(2) dep"), {10.5f, -2037, 30});
  EXPECT_TRUE(interaction_en_cours());
  // "quitter sans valider": the object's vertices as they were.
  sortie_de([] { inter_menu_choix(1); });
  EXPECT_FALSE(interaction_en_cours());
  std::vector<float> v1 = lit("vol(1) som(1)");
  ASSERT_EQ(v1.size(), 3u);
  EXPECT_NE(v1[0], 777);
}

TEST(SceneValeurs, LimitesForceFrameBrouillardPanneaux) {
  demarre("vol(1) cube(40)");
  Objet* o = objet_trouve(B_VOL, 0, 1, nullptr);
  ASSERT_TRUE(o);
  const float lim[2] = {-0.5f, 0.25f};
  ASSERT_TRUE(attribut_ecrit_2(o, 1, 34, 0, 41, lim, 2, 1));
  sortie_de([] { execute_ligne("interaction cadence(0)"); });
  ASSERT_TRUE(interaction_en_cours());
  sortie_de([] { execute_ligne("interaction rota(90)"); });
  pres(lit("interaction vol(1) rota"), {90});
  // The limits applied: volume 1's angle clipped to 0.25 rad, volume 2
  // (no limits) left alone.
  sortie_de([] { execute_ligne("interaction lim"); });
  pres(lit("interaction vol(1) rota"), {0.25f * 57.295776f}, 1e-3f);
  pres(lit("interaction vol(2) rota"), {90});
  sortie_de([] { execute_ligne("interaction vol(1) rota(-1000)"); });
  sortie_de([] { execute_ligne("interaction vol(1) lim"); });
  pres(lit("interaction vol(1) rota"), {-0.5f * 57.295776f}, 1e-3f);
  // The pull: made, read, and cleared by the next frame.
  sortie_de([] { execute_ligne("interaction vol(2) tire(1.5, -2, 3)"); });
  pres(lit("interaction vol(2) tire"), {1.5f, -2, 3});
  EXPECT_EQ(images(1), 1);
  pres(lit("interaction vol(2) tire"), {0, 0, 0});
  // Live fog on with its colour, then off.
  sortie_de([] { execute_ligne("interaction bro(0.2, 0.4, 0.6)"); });
  EXPECT_TRUE(glIsEnabled(GL_FOG));
  float c[4];
  glGetFloatv(GL_FOG_COLOR, c);
  EXPECT_NEAR(c[1], 0.4f, 1e-3);
  sortie_de([] { execute_ligne("interaction bro"); });
  EXPECT_FALSE(glIsEnabled(GL_FOG));
  // Panels and leaders.
  std::string p = sortie_de([] { execute_ligne("interaction vol(2) info"); });
  EXPECT_EQ(p.rfind("2: som 8 fac 6 ", 0), 0u) << p;
  EXPECT_EQ(sortie_de([] { execute_ligne("interaction vol(2, 1) lib"); }),
            "2 n'a pas de pere\n1 n'a pas de pere\n");
  // Kept keywords: nothing printed, the scene not started again.
  long n = interaction_num_image();
  EXPECT_EQ(sortie_de([] { execute_ligne("interaction vol(1) tra(3) anc(1) origine(2)"); }), "");
  EXPECT_EQ(interaction_num_image(), n);
  EXPECT_TRUE(interaction_en_cours());
  sortie_de([] { interaction_fin(); });
}

TEST(SceneValeurs, TracesLissageSourisUneImage) {
  demarre("interaction cadence(0) trace(3) ali(1) vol(1)");
  ASSERT_TRUE(interaction_en_cours());
  EXPECT_TRUE(glIsEnabled(GL_LINE_SMOOTH));
  EXPECT_TRUE(glIsEnabled(GL_POLYGON_SMOOTH));
  pres(attribut(1, 28), std::vector<float>(48, 1000.f));
  sortie_de([] { execute_ligne("interaction dep(7, -9, 11)"); });
  EXPECT_EQ(images(1), 1);
  std::vector<float> t = attribut(1, 28);
  ASSERT_EQ(t.size(), 48u);
  // The latest matrix first: its translation is the record's place.
  pres({t[12], t[13], t[14]}, {7, -9, 11});
  EXPECT_EQ(t[16 + 12], 1000.f);
  sortie_de([] { execute_ligne("interaction dep(1, 2, 3)"); });
  EXPECT_EQ(images(1), 1);
  t = attribut(1, 28);
  pres({t[12], t[16 + 12], t[32 + 12]}, {1, 7, 1000});
  sortie_de([] { interaction_fin(); });
  EXPECT_FALSE(glIsEnabled(GL_LINE_SMOOTH));
  EXPECT_FALSE(glIsEnabled(GL_POLYGON_SMOOTH));
  // Lines only.
  demarre("interaction cadence(0) ali");
  EXPECT_TRUE(glIsEnabled(GL_LINE_SMOOTH));
  EXPECT_FALSE(glIsEnabled(GL_POLYGON_SMOOTH));
  sortie_de([] { interaction_fin(); });

  // The scripted mouse: one frame per triple, the pointer where it says.
  demarre("interaction cadence(0) sou(11, 22, 0, 133, 144, 0, 55, 66, 1)");
  ASSERT_TRUE(interaction_en_cours());
  EXPECT_EQ(images(10), 3);
  EXPECT_FALSE(interaction_en_cours());
  EXPECT_EQ(fen.souris_x, 55);
  EXPECT_EQ(fen.souris_y, 66);
  // Not a multiple of 3: the message, nothing started.
  EXPECT_EQ(sortie_de([] { execute_ligne("interaction cadence(0) sou(1, 2)"); }).rfind("interaction souris\a\n", 0), 0u);
  EXPECT_FALSE(interaction_en_cours());
  // tem alone: one frame, drawn at the start too.
  demarre("interaction cadence(0) tem");
  ASSERT_TRUE(interaction_en_cours());
  EXPECT_EQ(images(5), 1);
  EXPECT_FALSE(interaction_en_cours());
}

// The background by the phrase: `ima(n)` at the start or while the scene
// runs, `ima(0)` for none; a missing image or a malformed value prints its
// message and leaves both the scene and the background as they were.
TEST(SceneValeurs, ImageDeFondParLaPhrase) {
  demarre("interaction cadence(0)");
  mot* b = ima_alloue(31, 17);
  ASSERT_NE(b, nullptr);
  ASSERT_EQ(ima_installe(5, b), 0);
  EXPECT_EQ(sortie_de([] { execute_ligne("interaction ima(5)"); }), "");
  EXPECT_EQ(inter.num_fond, 5);
  EXPECT_NE(sortie_de([] { execute_ligne("interaction ima(3311)"); }).find("3311: "), std::string::npos);
  EXPECT_FALSE(sortie_de([] { execute_ligne("interaction ima(5, 6)"); }).empty());
  EXPECT_FALSE(sortie_de([] { execute_ligne("interaction ima(-2)"); }).empty());
  EXPECT_EQ(inter.num_fond, 5);
  EXPECT_TRUE(interaction_en_cours());
  EXPECT_EQ(images(2), 2);
  sortie_de([] { execute_ligne("interaction ima(0)"); });
  EXPECT_EQ(inter.num_fond, 0);
  sortie_de([] { interaction_fin(); });
  // At the start: a missing image starts nothing.
  demarre("interaction cadence(0) ima(5)");
  EXPECT_TRUE(interaction_en_cours());
  EXPECT_EQ(inter.num_fond, 5);
  EXPECT_EQ(images(1), 1);
  sortie_de([] { interaction_fin(); });
  demarre("interaction cadence(0) ima(4444)");
  EXPECT_FALSE(interaction_en_cours());
  EXPECT_EQ(fen.mode_interactif, 0);
  objet_supprime(ima_objet(5));
}
