// The training on screen under Xvfb: a colour map learns in mode 161, its
// menu picked with real clicks, frames saved by the language while it
// learns, the space bar stepping by hand, the hooks of the phrase run at
// each idle event.
#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <random>

#include "../display/outils_fenetre.h"

namespace {
std::string contenu(const std::string& f) {
  std::ifstream e(f, std::ios::binary);
  return {std::istreambuf_iterator<char>(e), std::istreambuf_iterator<char>()};
}

// Picks entry k (1-based) of the menu of the right button: press in the
// window, find the menu's window, release over the entry.
bool menu(Session& s, int k) {
  xdo("mousemove --window " + s.fenetre + " 40 30");
  xdo("mousedown 3");
  std::string m;
  for (int i = 0; i < 100 && m.empty(); ++i) {
    m = xdo("search --onlyvisible --name '^freeglut menu$'");
    if (m.empty()) dort(30);
  }
  if (auto n = m.find('\n'); n != std::string::npos) m.resize(n);
  if (m.empty()) {
    xdo("mouseup 3");
    return false;
  }
  std::istringstream g(xdo("getwindowgeometry --shell " + m));
  int x = 0, y = 0, h = 0;
  for (std::string l; g >> l;) {
    if (l.rfind("X=", 0) == 0) x = std::stoi(l.substr(2));
    if (l.rfind("Y=", 0) == 0) y = std::stoi(l.substr(2));
    if (l.rfind("HEIGHT=", 0) == 0) h = std::stoi(l.substr(7));
  }
  const int e = y + h * (2 * k - 1) / 18;
  xdo("mousemove " + std::to_string(x + 10) + " " + std::to_string(e));
  dort(100);
  xdo("mouseup 3");
  return true;
}

float mode(Session& s) {
  auto v = valeurs(s.p, "fen");
  return v.size() > 2 ? v[2] : -1;
}

TEST(Ecran, UneCarteApprendSousLesYeux) {
  Session s({"uti=tests/anim/fixtures"});
  ASSERT_FALSE(s.fenetre.empty());
  ASSERT_TRUE(attend(s.p, "empilements"));
  char modele[] = "/tmp/orvane-ecran-XXXXXX";
  ASSERT_NE(mkdtemp(modele), nullptr);
  const std::string dir = modele;
  // 37 random colours, a 10 x 10 map over them.
  std::mt19937 g(90211);
  std::uniform_real_distribution<float> u(0.f, 1.f);
  // A line has a bound: the colours go by 30 values.
  std::vector<std::string> c{"c = NIL"};
  for (int k = 0; k < 37 * 3; k += 30) {
    std::string l = k ? "c = c," : "c = ";
    for (int i = k; i < std::min(k + 30, 37 * 3); ++i) l += (i > k ? "," : "") + std::to_string(u(g)).substr(0, 5);
    c.push_back(l);
  }
  std::string f = "res(2) fac = 1,2,3, 0";
  for (int k = 4; k <= 103; ++k) f += "," + std::to_string(k);
  tape(s.p, "res(2) tex");
  tape(s.p, f);
  for (const std::string& l : c) tape(s.p, l);
  tape(s.p, "res(2) motif = c");
  // A network that does not exist, then one with no patterns: refused,
  // the shell goes on.
  tape(s.p, "res(3) fac = 1,2, 0, 3");
  tape(s.p, "interaction res(3) nb(10)");
  tape(s.p, "interaction res(77) nb(10)");
  EXPECT_EQ(valeurs(s.p, "7 * 6"), std::vector<float>{42});
  // A hook that is no function is refused before anything starts.
  tape(s.p, "interaction res(2) nb(10) fonc(\"pas_de_telle\")");
  EXPECT_TRUE(attend(s.p, "pas_de_telle: Introuvable"));
  EXPECT_EQ(mode(s), 0);
  tape(s.p, "interaction res(2) nb(100000) coe(0.5, 0.02) cont(0.001) ale(5) mas(0, 1) fonc(2, \"compte\")");
  const std::vector<float> depart = valeurs(s.p, "res(2) poids");
  ASSERT_EQ(depart.size(), 103u * 103u);
  // Waiting for the menu: nothing learns, but fonc_2 runs at each event.
  const auto lu = attend_valeurs(s.p, "images", [](const std::vector<float>& v) { return !v.empty(); });
  ASSERT_FALSE(lu.empty());
  const float avant = lu[0];
  dort(300);
  EXPECT_EQ(valeurs(s.p, "res(2) poids"), depart);
  EXPECT_GT(valeurs(s.p, "images").at(0), avant);
  EXPECT_EQ(mode(s), 161);
  tape(s.p, "ecrire(\"" + dir + "/0.png\") ima");
  ASSERT_TRUE(menu(s, 5));
  ASSERT_TRUE(attend(s.p, "go_init\n"));
  std::vector<std::string> images;
  for (int k = 1; k <= 3; ++k) {
    dort(400);
    tape(s.p, "ecrire(\"" + dir + "/" + std::to_string(k) + ".png\") ima");
  }
  const std::vector<float> appris = valeurs(s.p, "res(2) poids");
  ASSERT_EQ(appris.size(), depart.size());
  EXPECT_NE(appris, depart);
  for (int k = 0; k <= 3; ++k) {
    images.push_back(contenu(dir + "/" + std::to_string(k) + ".png"));
    EXPECT_GT(images.back().size(), 100u) << k;
  }
  // The weights move, and the lines with them: every frame differs from
  // the one before.
  for (int k = 1; k <= 3; ++k) EXPECT_NE(images[k], images[k - 1]) << k;
  // By hand: the start weights again, and a step only at each space.
  ASSERT_TRUE(menu(s, 7));
  ASSERT_TRUE(attend(s.p, "pas a pas\n"));
  dort(300);
  EXPECT_EQ(valeurs(s.p, "res(2) poids"), depart);
  s.touche("space");
  ASSERT_TRUE(attend(s.p, "Pas 1\n"));
  dort(300);
  const std::vector<float> un = valeurs(s.p, "res(2) poids");
  EXPECT_NE(un, depart);
  dort(300);
  EXPECT_EQ(valeurs(s.p, "res(2) poids"), un);
  s.touche("space");
  ASSERT_TRUE(attend(s.p, "Pas 2\n"));
  // The help entry prints its lines; escape gives the events back.
  ASSERT_TRUE(menu(s, 1));
  EXPECT_TRUE(attend(s.p, "vitesse: Lire la vitesse (entre 0 et 1)\n"));
  s.touche("Escape");
  dort(200);
  EXPECT_EQ(valeurs(s.p, "3 + 4"), std::vector<float>{7});
  // A failing fonc_1 gives the events back to the shell at once, the
  // network as it was.
  const std::vector<float> garde = valeurs(s.p, "res(2) poids");
  tape(s.p, "interaction res(2) nb(10) fonc(1, \"echoue\")");
  for (int t = 0; t < 100 && mode(s) != 0; ++t) dort(50);
  EXPECT_EQ(mode(s), 0);
  EXPECT_EQ(valeurs(s.p, "res(2) poids"), garde);
  for (int k = 0; k <= 3; ++k) std::remove((dir + "/" + std::to_string(k) + ".png").c_str());
  rmdir(dir.c_str());
}
}  // namespace
