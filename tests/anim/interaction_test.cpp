// The live scene in a real window under Xvfb: hooks, the frame count,
// Escape, pause, single steps, key bindings, typed lines, a drag and the
// window's menu, driven by xdotool from a second process.
#include <cmath>

#include "../display/outils_fenetre.h"

namespace {
struct Scene : Session {
  Scene() : Session({"uti=tests/anim/fixtures"}) {}
  // The common start: the prompt seen, volume 1 a cube of that side, then
  // the phrase typed and, unless `mode` is NaN, that mode waited for.
  ::testing::AssertionResult depart(int cote, const std::string& phrase, float m = 85) {
    if (!attend(p, "empilements")) return ::testing::AssertionFailure() << "no prompt";
    tape(p, "vol(1) cube(" + std::to_string(cote) + ")");
    if (!phrase.empty()) tape(p, phrase);
    if (m == m && !attend_mode(m, 20000)) return ::testing::AssertionFailure() << "mode " << mode() << " not " << m;
    return ::testing::AssertionSuccess();
  }
  // Waits until the counter satisfies the test; its last value.
  template <class F>
  float attend_compteur(const std::string& nom, F test, int ms = 10000) {
    float v = -1;
    for (int t = 0; t < ms; t += 50) {
      if (test(v = compteur(nom))) break;
      dort(50);
    }
    return v;
  }
};

TEST(Interaction, PhraseAttacheePausePasUniqueEtEchappement) {
  Scene s;
  ASSERT_TRUE(s.depart(60, "interaction fonc(\"compte\") cadence(0)"));
  const std::vector<float> v0 = valeurs(s.p, "vol(1) som(1)");
  // The phrase behind anim runs at every frame: the cube turns. An option
  // with nothing behind it is refused; the loop goes on.
  tape(s.p, "interaction anim vol(1) roty(3)");
  float i = s.compteur("images");
  s.attend_compteur("images", [&](float v) { return v > i + 5; });
  const std::vector<float> v1 = valeurs(s.p, "vol(1) som(1)");
  ASSERT_EQ(v1.size(), 3u);
  EXPECT_NE(v0, v1);
  tape(s.p, "interaction anim");
  EXPECT_TRUE(attend(s.p, "anim Type de valeur illegal"));
  // "[" pauses: no frame runs; "]" goes on.
  s.touches("[");
  ASSERT_TRUE(s.attend_mode(-85));
  float a = s.compteur("images");
  dort(300);
  EXPECT_EQ(s.compteur("images"), a);
  s.touches("]");
  ASSERT_TRUE(s.attend_mode(85));
  EXPECT_GT(s.attend_compteur("images", [&](float v) { return v > a; }), a);
  // pas(3) arms the latch: one frame, not three, then nothing.
  tape(s.p, "interaction pas(3)");
  dort(300);
  float b = s.compteur("images");
  dort(300);
  EXPECT_EQ(s.compteur("images"), b);
  tape(s.p, "interaction pas(-1)");
  EXPECT_EQ(s.attend_compteur("images", [&](float v) { return v > b; }), b + 1);
  dort(300);
  EXPECT_EQ(s.compteur("images"), b + 1);
  tape(s.p, "interaction pas(0)");
  EXPECT_GT(s.attend_compteur("images", [&](float v) { return v > b + 3; }), b + 3);
  // Escape allowed (the default) ends the loop.
  s.touche("Escape");
  ASSERT_TRUE(s.attend_mode(0));
  b = s.compteur("images");
  dort(300);
  EXPECT_EQ(s.compteur("images"), b);
  // 40 frames at 25 a second, Escape not allowed: the frames go on to
  // their count.
  tape(s.p, "images = 0");
  tape(s.p, "interaction fonc(\"compte\") tem(40, 0, 0) cadence(25)");
  ASSERT_TRUE(s.attend_mode(85));
  s.touche("Escape");
  dort(300);
  EXPECT_EQ(s.mode(), 85);
  ASSERT_TRUE(s.attend_mode(0));
  EXPECT_EQ(s.compteur("images"), 40);
}

TEST(Interaction, ToucheLieeLigneTapeeEtTableDesTouches) {
  Scene s;
  ASSERT_TRUE(s.depart(50, "interaction cadence(50)"));
  tape(s.p, "interaction cle(\"touche t\")");
  tape(s.p, "interaction cle(\"touche encore\")");
  dort(100);
  s.touches("t");
  EXPECT_EQ(s.attend_compteur("touches", [](float v) { return v >= 1; }), 1);
  s.touches("<encore");
  s.touche("Return");
  EXPECT_EQ(s.attend_compteur("touches", [](float v) { return v >= 2; }), 2);
  // A line typed after "!" runs inside the loop.
  s.touches("!x = 4321");
  s.touche("Return");
  EXPECT_EQ(s.attend_compteur("x", [](float v) { return v == 4321; }), 4321);
  EXPECT_EQ(s.mode(), 85);
  // The table holds 100 names: the 101st is refused once; a name of 21
  // characters is too long.
  for (int k = 3; k <= 101; ++k) tape(s.p, "interaction cle(\"touche k" + std::to_string(k) + "\")");
  EXPECT_TRUE(attend(s.p, "TROP D'ASCII"));
  tape(s.p, "interaction cle(\"touche abcdefghijklmnopqrstu\")");
  EXPECT_TRUE(attend(s.p, "Depassement de taille"));
  EXPECT_EQ(compte(s.p.lu, "TROP D'ASCII"), 1u);
  EXPECT_EQ(s.mode(), 85);
}

TEST(Interaction, GlisserTourneLeVolumeChoisi) {
  Scene s;
  ASSERT_TRUE(s.depart(150, "interaction cadence(50)"));
  tape(s.p, "interaction sou(35)");
  dort(200);
  xdo("mousemove --window " + s.fenetre + " 160 120");
  dort(100);
  xdo("mousedown 1");
  dort(100);
  for (int x = 170; x <= 240; x += 10) {
    xdo("mousemove --window " + s.fenetre + " " + std::to_string(x) + " 120");
    dort(30);
  }
  xdo("mouseup 1");
  dort(200);
  // 80 pixels to the right of 320: -90 degrees about x.
  auto r = valeurs(s.p, "interaction vol(1) rotx");
  ASSERT_EQ(r.size(), 1u);
  EXPECT_NEAR(r[0], -90, 1);
  // A press outside every volume picks nothing: no turn.
  xdo("mousemove --window " + s.fenetre + " 10 10");
  xdo("mousedown 1");
  xdo("mousemove --window " + s.fenetre + " 60 10");
  xdo("mouseup 1");
  dort(200);
  EXPECT_NEAR(valeurs(s.p, "interaction vol(1) rotx").at(0), -90, 1);
}

TEST(Interaction, MauvaisesEntrees) {
  Scene s;
  ASSERT_TRUE(s.depart(50, "", NAN));
  // An unknown hook: a message, nothing starts.
  tape(s.p, "interaction fonc(\"pas_de_telle_fonction\")");
  EXPECT_TRUE(attend(s.p, "pas_de_telle_fonction: Introuvable"));
  EXPECT_EQ(s.mode(), 0);
  // A scripted mouse that is not triples.
  tape(s.p, "interaction seq(1, 2, 3, 4)");
  EXPECT_TRUE(attend(s.p, "interaction souris"));
  EXPECT_EQ(s.mode(), 0);
  // A hook failing at every frame ends the loop at its first frame; the
  // prompt comes back with the objects as they were.
  const std::vector<float> avant = valeurs(s.p, "vol(1) som");
  ASSERT_EQ(avant.size(), 24u);
  tape(s.p, "interaction fonc(\"echoue\") fin(\"fini\")");
  ASSERT_TRUE(s.attend_mode(0));
  EXPECT_EQ(s.compteur("finis"), 1);
  EXPECT_EQ(valeurs(s.p, "vol(1) som"), avant);
  // A background image that does not exist: its message, nothing starts.
  tape(s.p, "interaction ima(8642) cadence(0)");
  EXPECT_TRUE(attend(s.p, "8642: Introuvable"));
  EXPECT_EQ(s.mode(), 0);
  EXPECT_EQ(valeurs(s.p, "vol(1) som"), avant);
  // An unknown volume in the list is skipped.
  tape(s.p, "interaction vol(1, 4711) fonc(\"compte\") tem(5) cadence(0)");
  ASSERT_TRUE(s.attend_mode(0));
  EXPECT_EQ(s.compteur("images"), 5);
  EXPECT_EQ(valeurs(s.p, "vol(1) som(2)").size(), 3u);
}

TEST(Interaction, SansFenetre) {
  Processus p = lance_orvane({"gra=0", "ID", "ini=env/initb.h"});
  tape(p, "vol(1) cube(50)");
  tape(p, "interaction tem(10)");
  tape(p, "$ vol(1) som(1)");
  EXPECT_TRUE(attend(p, "Pas de fenetre graphique\n"));
  EXPECT_TRUE(attend(p, "-25.000000 -25.000000 -25.000000"));
  EXPECT_EQ(termine(p), 0);
}
}  // namespace

namespace {
// Chooses row `rang` (from 0: "exec", "menu", then entries 1, 2...) of the
// scene's pop-up menu: a right click at (x, y) of the window opens it below
// the pointer, rows of 25 pixels, then a left click on the row.
bool choisit_au_menu(Scene& s, int rang, int x = 100, int y = 60) {
  xdo("mousemove --window " + s.fenetre + " " + std::to_string(x) + " " + std::to_string(y));
  dort(100);
  xdo("click 3");
  bool ouvert = false;
  for (int t = 0; t < 10000 && !ouvert; t += 50) {
    ouvert = !xdo("search --onlyvisible --name 'freeglut menu'").empty();
    if (!ouvert) dort(50);
  }
  if (!ouvert) return false;
  dort(200);
  xdo("mousemove --window " + s.fenetre + " " + std::to_string(x + 10) + " " + std::to_string(y + 12 + 25 * rang));
  dort(200);
  xdo("click 1");
  return true;
}
}  // namespace

// Started from the console with a frame count that is never reached, ended
// through the window's own pop-up menu: "quitter en validant" leaves the
// object as the scene left it, "quitter sans valider" puts it back as it
// was; a scene that reaches its count leaves it as it stands.
TEST(Interaction, QuitterParLeMenuEnValidantOuSansValider) {
  Scene s;
  ASSERT_TRUE(s.depart(100, "", NAN));
  const std::vector<float> v0 = valeurs(s.p, "vol(1) som(2)");
  ASSERT_EQ(v0.size(), 3u);
  auto sommet = [&] { return valeurs(s.p, "vol(1) som(2)"); };
  // The live value turns the record a quarter about x; the object stays.
  tape(s.p, "interaction tem(100000) cadence(25)");
  ASSERT_TRUE(s.attend_mode(85, 20000));
  tape(s.p, "interaction vol(1) rotx(90)");
  ASSERT_NEAR(attend_valeurs(s.p, "interaction vol(1) rotx", [](auto& r) { return r.size() == 1 && r[0] == 90; }).at(0), 90, 1e-3);
  EXPECT_EQ(sommet(), v0);
  ASSERT_TRUE(choisit_au_menu(s, 3));
  ASSERT_TRUE(s.attend_mode(0, 20000));
  EXPECT_TRUE(attend(s.p, "quitter en validant\n", 5000));
  const std::vector<float> v1 = sommet();
  ASSERT_EQ(v1.size(), 3u);
  // About the cube's centre (0, 0, 0): x kept, y and z exchanged.
  EXPECT_NEAR(v1[0], v0[0], 1e-3);
  EXPECT_NEAR(std::fabs(v1[1]), std::fabs(v0[2]), 1e-3);
  EXPECT_NEAR(std::fabs(v1[2]), std::fabs(v0[1]), 1e-3);
  EXPECT_NE(v1, v0);

  // The hook turns the object itself at every frame; without validating,
  // the object is as it was at the start.
  tape(s.p, "interaction fonc(\"tourne\") tem(100000) cadence(25)");
  ASSERT_TRUE(s.attend_mode(85, 20000));
  s.attend_compteur("tours", [](float n) { return n >= 3; });
  EXPECT_NE(sommet(), v1);
  ASSERT_TRUE(choisit_au_menu(s, 2));
  ASSERT_TRUE(s.attend_mode(0, 20000));
  EXPECT_TRUE(attend(s.p, "quitter sans valider\n", 5000));
  EXPECT_EQ(sommet(), v1);

  // Reaching its count, the scene leaves the hook's turns in the object.
  const float tours = s.compteur("tours");
  tape(s.p, "interaction fonc(\"tourne\") tem(4) cadence(0)");
  ASSERT_TRUE(s.attend_mode(0, 20000));
  EXPECT_EQ(s.compteur("tours"), tours + 4);
  const std::vector<float> v2 = sommet();
  ASSERT_EQ(v2.size(), 3u);
  EXPECT_NE(v2, v1);
  EXPECT_NEAR(v2[1], v1[1], 1e-3);  // about y: y kept
}
