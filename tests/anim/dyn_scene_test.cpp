// What a running scene asks of the dynamics by phrase, typed at the console
// of orvane with its window under Xvfb: the windows applied with no forces
// and their count, the re-rooting of the tree, the pull, and a pull with a
// transformation that becomes a program of the frame.
#include <cmath>

#include "../display/outils_fenetre.h"

namespace {
TEST(DynScene, LimitesOrigineEtTireParPhrase) {
  Session s;
  ASSERT_TRUE(attend(s.p, "empilements"));
  tape(s.p, "vol(1) cube(60)");
  tape(s.p, "vol(2) cube(30)");
  // 1 leads 2, which hangs by its vertex 1 at vertex 1 of 1; 2's joint window is
  // [-0.1, 0.2] radians; 2 takes a pull at the tip.
  tape(s.p, "vol(1) suiv = 2");
  tape(s.p, "vol(2) lead = 1");
  tape(s.p, "vol(2) sommet lead = 1");
  tape(s.p, "vol(2) sommet suiv = 1");
  tape(s.p, "vol(2) joi lim = 1, -0.1, 0.2");
  tape(s.p, "vol(2) for tire = 0, 0, 0, 0");
  tape(s.p, "oui rig");  // the tree of leaders and followers is built
  tape(s.p, "interaction vol(1, 2) cadence(0)");
  auto m = attend_valeurs(s.p, "fen", [](const std::vector<float>& v) { return v.size() > 2 && v[2] == 85; });
  ASSERT_GT(m.size(), 2u);
  tape(s.p, "interaction rota(40) vol(2)");
  // The window of 2's joint with its leader 1: 40 degrees goes to 0.2 rad.
  auto n = valeurs(s.p, "interaction lim vol(1)");
  ASSERT_EQ(n.size(), 1u);
  EXPECT_EQ(n[0], 1);
  auto a = valeurs(s.p, "interaction rota vol(2)");
  ASSERT_EQ(a.size(), 1u);
  EXPECT_NEAR(a[0], 0.2f * 57.295776f, 1e-3f);
  EXPECT_EQ(valeurs(s.p, "interaction lim"), std::vector<float>{0});
  // The pull: the axis of 2 turns along the force at its tip.
  tape(s.p, "interaction tire vol(2, 1) sommet(5, 5) som(500, -300, 200) coe(0.5, 1)");
  auto x = attend_valeurs(s.p, "interaction axe vol(2)", [](const std::vector<float>& v) {
    return v.size() == 3 && std::fabs(v[1] - 1) > 1e-3f;
  });
  ASSERT_EQ(x.size(), 3u);
  EXPECT_NEAR(std::hypot(x[0], x[1], x[2]), 1, 1e-4f);
  EXPECT_GT(std::fabs(x[1] - 1), 1e-3f);
  // Bad pulls: a message and the loop goes on.
  tape(s.p, "interaction tire vol(77) som(1, 2, 3)");
  EXPECT_TRUE(attend(s.p, "77: Introuvable"));
  tape(s.p, "interaction tire vol(2) sommet(1, 1)");
  EXPECT_TRUE(attend(s.p, "tire Type de valeur illegal"));
  // A pull holding a transformation runs at every frame: volume 2's
  // vertices keep turning, and no pull force is written.
  const auto s0 = valeurs(s.p, "vol(2) som");
  ASSERT_EQ(s0.size(), 24u);
  tape(s.p, "interaction tire vol(2) rotx(5)");
  auto s1 = attend_valeurs(s.p, "vol(2) som", [&](const std::vector<float>& v) {
    if (v.size() != s0.size()) return false;
    float d = 0;
    for (std::size_t k = 0; k < v.size(); ++k) d += std::fabs(v[k] - s0[k]);
    return d > 1;
  });
  ASSERT_EQ(s1.size(), s0.size());
  EXPECT_NE(s1, s0);
  // Re-rooted at 2: 1 now hangs from 2 with minus 2's angle.
  tape(s.p, "interaction origine vol(2)");
  auto b = attend_valeurs(s.p, "interaction rota vol(1)", [](const std::vector<float>& v) {
    return v.size() == 1 && v[0] < -1;
  });
  ASSERT_EQ(b.size(), 1u);
  EXPECT_NEAR(b[0], -0.2f * 57.295776f, 1e-3f);
  EXPECT_EQ(valeurs(s.p, "fen").at(2), 85);
}
}  // namespace
