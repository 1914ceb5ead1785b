// The dynamics' terms that reach outside a vertex's own mesh (springs to
// fixed points and to other volumes, the first collider pass, moving
// obstacles), the velocity scale, the follower check, and what a running
// interaction asks by phrase: the windows with no forces, the pull and the
// re-rooting of the tree. Hand-computed values; bad values never crash.
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <string>

#include "outils.h"
#include "anim/dyn.h"
#include "display/display.h"
#include "display/oeil.h"
#include "lang/lang.h"

namespace {
using namespace dyn;


// A phrase of clauses (env, ordinal, numbers).
struct Phrase {
  std::vector<mot> m{4, BLOC_PHRASE, 0, 0};
  Phrase& c(int env, int ord, std::vector<float> x) {
    const int n = static_cast<int>(x.size());
    m.insert(m.end(), {7 + n, env, ord, 4 + n, BLOC_REEL, 1, n});
    for (float f : x) {
      mot w;
      std::memcpy(&w, &f, 4);
      m.push_back(w);
    }
    m[0] = static_cast<mot>(m.size()), ++m[2];
    return *this;
  }
};

struct DynSuite : Enregistrements {
  // The words and messages, for what names keywords and for fields by name.
  void vocabulaire() {
    if (piles.dim_obj < 20000) {
      ASSERT_EQ(piles_alloue(100, 100000, 20000, 1000), 0);
    }
    monde();
    ASSERT_GE(kom_charge("env/koma.h", 0), 0);
    ASSERT_GE(kom_charge("env/komb.h", 1), 0);
    ASSERT_GE(mes_charge("env/mesa.h", 0), 0);
    ASSERT_GE(mes_charge("env/mesb.h", 1), 0);
  }
};

// The collider of the collision tests: a quad in y = 0, normal +y; a vertex
// at (0.2, -0.3, 0.1) meets its corners 1 and 4 at d1 and d4 (weights 1 / d).
Objet* collisionneur() {
  Objet* c = volume_de({0, 0, 0.6f, 0, 0, 40, 0.5f, 0, 40, 0.5f, 0, 0.2f}, {{1, 2, 3, 4}}, 2);
  EXPECT_NE(gen_normale_som(c, nullptr, 0), nullptr);
  return c;
}
const float d1 = std::hypot(0.2f, 0.3f, 0.5f), d4 = std::hypot(0.3f, 0.3f, 0.1f);
const float w1 = 1 / d1, w4 = 1 / d4, W = w1 + w4;

TEST_F(DynSuite, RessortsVersDesPointsEtDAutresVolumes) {
  // Vertex at the origin, mass 2. A spring (k 2) to the fixed point
  // (3, 4, 0), rest length 0: F = 2 x 5 x (0.6, 0.8, 0) = (6, 8, 0). A
  // spring (k 0.5) to vertex 1 of volume 2, whose rest copy is at (0, 10, 0)
  // and which stands at (0, 30, 0): rest length 10, F = 0.5 x 20 (0, 1, 0).
  Objet* o = volume_de({0, 0, 0}, {}, 1);
  Objet* b = volume_de({0, 30, 0}, {}, 2);
  ecrit(b, {1, dyn::ORD_REPOS}, {0, 10, 0});
  ecrit(o, {1, dyn::B_MAS}, {2});
  ecrit(o, {1, dyn::B_PRE, 1, dyn::B_RESSORT, 1, dyn::B_PTS, 1, dyn::B_SOMK}, {6, 2, 0, 3, 4, 0});
  // Groups naming volume 99 and vertex 7 of volume 2 are skipped.
  ecrit(o, {1, dyn::B_PRE, 1, dyn::B_RESSORT, 1, dyn::B_VOLK, 1, dyn::B_SOMK},
        {13, 0.5f, 0, 2, 1, 9, 0, 99, 1, 9, 0, 2, 7});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  proche(lit(o, {1, dyn::B_ACC, 1, dyn::B_SOMK}), {3, 9, 0});
  EXPECT_NEAR(sommets(o)[1], 9, 1e-5f);
  // A damping c = -0.25 on both: F += 2 c v with v = (3, 9, 0); the points
  // are now nearer. Second step checked against the formula.
  ecrit(o, {1, dyn::B_PRE, 1, dyn::B_RESSORT, 1, dyn::B_PTS, 1, dyn::B_SOMK}, {6, 2, -0.25f, 3, 4, 0});
  ecrit(o, {1, dyn::B_PRE, 1, dyn::B_RESSORT, 1, dyn::B_VOLK, 1, dyn::B_SOMK}, {5, 0.5f, -0.25f, 2, 1});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  const float p[3] = {3, 9, 0}, v[3] = {3, 9, 0};
  float F[3] = {0, 0, 0};
  {
    const float e[3] = {3 - p[0], 4 - p[1], 0}, d = std::hypot(e[0], e[1]);
    for (int x = 0; x < 3; ++x) F[x] += 2 * d * e[x] / d - 0.25f * v[x];
    const float g = 30 - p[1], L = std::hypot(p[0], g);
    const float u[3] = {-p[0] / L, g / L, 0};
    for (int x = 0; x < 3; ++x) F[x] += 0.5f * (L - 10) * u[x] - 0.25f * v[x];
  }
  proche(lit(o, {1, dyn::B_ACC, 1, dyn::B_SOMK}), {F[0] / 2, F[1] / 2, F[2] / 2}, 1e-4f);
}

TEST_F(DynSuite, SuiveurSansSommetsDuLeaderEtEchelleDeVitesse) {
  Objet* o = volume_de({0, 0, 0, 5, 0, 0}, {}, 1);
  ecrit(o, {1, dyn::B_MAS}, {1});
  ecrit(o, {1, dyn::B_FOR}, {2, 0, 0});
  // (som, suiv) without the leader-side vertices (b60, b86): nothing moves.
  ecrit(o, {1, dyn::B_SOMK, 1, dyn::B_SUIVK}, {1});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  EXPECT_FLOAT_EQ(sommets(o)[0], 0);
  ecrit(o, {1, dyn::B_RIGIDE, 1, dyn::B_PTS}, {0, 0, 0});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  EXPECT_FLOAT_EQ(sommets(o)[0], 2);
  // (coe, vit) = 0.5: v = (v + a) x 0.5. From v = 2: v = (2 + 2) / 2 = 2.
  ecrit(o, {1, dyn::B_COE, 1, dyn::B_VIT}, {0.5f, 0.1f});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  EXPECT_FLOAT_EQ(lit(o, {1, dyn::B_VIT, 1, dyn::B_SOMK})[0], 2);
  EXPECT_FLOAT_EQ(sommets(o)[0], 4);
  // A marked vertex takes the second factor as well: (2 + 2) x 0.5 x 0.1.
  ecrit(o, {1, dyn::B_CHOC, 1, dyn::B_SOMK}, {0, 1, 0.5f, 0, 0, 0});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  auto v = lit(o, {1, dyn::B_VIT, 1, dyn::B_SOMK});
  EXPECT_FLOAT_EQ(v[0], 0.2f);
  EXPECT_FLOAT_EQ(v[3], 2);
}

TEST_F(DynSuite, CollisionneursPremierePasseEtForce) {
  collisionneur();
  // Vertex 1 has no mass: only the first pass moves it, when selected by
  // number or by range (bad numbers beside), to the weighted contact point
  // plus r along the normal. Vertex 2 is far from everything.
  Objet* o = volume_de({0.2f, -0.3f, 0.1f, 100, 100, 100}, {}, 1);
  ecrit(o, {1, dyn::B_MAS, 1, dyn::B_SOMK}, {1, 2, 1});
  ecrit(o, {1, dyn::B_COL}, {2, 4, 0, 1.5f});
  // Not selected: it stays.
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  EXPECT_FLOAT_EQ(sommets(o)[1], -0.3f);
  for (auto cle : {dyn::B_SOMK, dyn::B_BORNES}) {
    vol_som_ecrit(o, std::vector<float>{0.2f, -0.3f, 0.1f, 100, 100, 100}.data(), 2, 3);
    if (cle == dyn::B_SOMK) ecrit(o, {1, dyn::B_COL, 1, dyn::B_SOMK}, {1, 9, std::nanf(""), -3});
    else ecrit(o, {1, dyn::B_COL, 1, dyn::B_BORNES}, {-5, 1, 7, 1e9f});
    ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
    auto s = sommets(o);
    proche(s.data(), {(w4 * 0.5f) / W, 1.5f, (w4 * 0.2f) / W, 100});
    ecrit(o, {1, dyn::B_COL, 1, cle}, {0});
  }
  // With a mass and pressure 4: selected, it is first put 1.5 in front,
  // then pushed by its two contacts once (not again among the collisions
  // of every vertex): F = ((1.5 - e1) + (1.5 - e4)) 4 / 1.5 / 2 along +y.
  // Not selected, it meets them from behind, then lies on the surface.
  for (bool choisi : {true, false}) {
    Objet* m = volume_de({0.2f, -0.3f, 0.1f, 100, 100, 100}, {}, choisi ? 3 : 4);
    ecrit(m, {1, dyn::B_MAS}, {1});
    ecrit(m, {1, dyn::B_COL}, {2, 4, 0, 1.5f});
    if (choisi) ecrit(m, {1, dyn::B_COL, 1, dyn::B_SOMK}, {1});
    ASSERT_EQ(pas_sommets(m, 1, 1, false), 0);
    auto s = sommets(m);
    auto v = lit(m, {1, dyn::B_VIT, 1, dyn::B_SOMK});
    const float p[3] = {(w4 * 0.5f) / W, 1.5f, (w4 * 0.2f) / W};
    const float e1 = choisi ? std::hypot(p[0], p[1], p[2] - 0.6f) : d1;
    const float e4 = choisi ? std::hypot(p[0] - 0.5f, p[1], p[2] - 0.2f) : d4;
    const float F = ((1.5f - e1) + (1.5f - e4)) * 4 / 1.5f / 2;
    EXPECT_NEAR(v[1], F, 1e-4f) << choisi;
    EXPECT_NEAR(s[0], p[0], 1e-5f) << choisi;
    if (choisi) {
      EXPECT_NEAR(s[1], 1.5f + F, 1e-4f);
    }
    EXPECT_FLOAT_EQ(s[3], 100);
  }
}

TEST_F(DynSuite, ObstacleMobilePousseEtDonneSaVitesse) {
  // A triangle of centre (1, 1, 0), normal along z, radius sqrt(5), moving
  // at (0, 2, 0). With b1 = 4, b2 = 1, a vertex still at (1.2, 1.1, 0.5):
  // reach t = sqrt(5); e n = (0, 0, 0.5) whatever the normal's sign;
  // F = 0.5 x 4 x (t - sqrt(0.3)) / t along z. The velocity takes the
  // face's, y going to z as well.
  Objet* b = volume_de({0, 0, 0, 3, 0, 0, 0, 3, 0}, {{1, 2, 3}}, 2);
  ecrit(b, {1, dyn::B_VIT, 1, dyn::B_SOMK}, {0, 2, 0, 0, 2, 0, 0, 2, 0});
  Objet* o = volume_de({1.2f, 1.1f, 0.5f, 50, 50, 50}, {}, 1);
  ecrit(o, {1, dyn::B_MAS}, {1});
  ecrit(o, {1, dyn::B_CHA, 1, dyn::B_VOLK}, {77, 1, 1, 2, 4, 1, std::nanf(""), 1, 1});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  const float t = std::sqrt(5.f), f = 0.5f * 4 * (t - std::sqrt(0.3f)) / t;
  // The far vertex is outside the grown box: untouched.
  proche(lit(o, {1, dyn::B_VIT, 1, dyn::B_SOMK}), {0, 2, 2 + f, 0, 0, 0});
  EXPECT_NEAR(lit(o, {1, dyn::B_ACC, 1, dyn::B_SOMK})[2], f, 1e-5f);
  EXPECT_NEAR(sommets(o)[2], 0.5f + 2 + f, 1e-5f);
  // A fast vertex reaches further: |v| = 10, t2 = min(100, 4 x 5) = 20;
  // at (1, 1, 2), e n = (0, 0, 2).
  vol_som_ecrit(o, std::vector<float>{1, 1, 2, 50, 50, 50}.data(), 2, 3);
  ecrit(o, {1, dyn::B_VIT, 1, dyn::B_SOMK}, {0, 0, -10, 0, 0, 0});
  ecrit(b, {1, dyn::B_VIT, 1, dyn::B_SOMK}, {0, 0, 0, 0, 0, 0, 0, 0, 0});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  const float t2 = std::sqrt(20.f), g = 2 * 4 * (t2 - 2) / t2;
  EXPECT_NEAR(lit(o, {1, dyn::B_ACC, 1, dyn::B_SOMK})[2], g, 1e-4f);
}

TEST_F(DynSuite, LimitesSansForceSurUnEnregistrementEtSesSuiveurs) {
  Objet* o1 = volume_de({0, 0, 0}, {}, 1);
  Objet* o2 = volume_de({0, 0, 0}, {}, 2);
  Objet* o3 = volume_de({0, 0, 0}, {}, 3);
  Vol_inter* a = record(o1);
  Vol_inter* b = record(o2);
  Vol_inter* c = record(o3);
  lie(a, b, 1, 1);
  const float fen[2] = {-0.1f, 0.1f}, boite[6] = {-1, -1, -1, 1, 1, 1};
  a->lim_rota = fen, b->lim_rotx = fen, c->lim_dep = boite;
  a->angle = 30, b->rotx = -40, c->pos[0] = 7, c->pos[2] = -9;
  ecrit(o1, {1, dyn::B_VIT, 1, dyn::B_ROTAK}, {4, 0, 0});
  // a and its follower b: the bounce on a (w x -0.5), the clamp on b; c
  // is left alone.
  EXPECT_EQ(limite_inter(a), 2);
  EXPECT_NEAR(a->angle, 0.1f * 57.295776f, 1e-4f);
  EXPECT_FLOAT_EQ(lit(o1, {1, dyn::B_VIT, 1, dyn::B_ROTAK})[0], -2);
  EXPECT_NEAR(b->rotx, -0.1f * 57.295776f, 1e-4f);
  EXPECT_FLOAT_EQ(c->pos[0], 7);
  // All: only c's box remains, two values.
  EXPECT_EQ(limite_inter(nullptr), 2);
  EXPECT_FLOAT_EQ(c->pos[0], 1);
  EXPECT_FLOAT_EQ(c->pos[2], -1);
  EXPECT_FLOAT_EQ(c->mat[12], 1);
  EXPECT_EQ(limite_inter(nullptr), 0);
  // A cycle ends.
  lie(b, a, 1, 1);
  limite_inter(a);
  SUCCEED();
}

TEST_F(DynSuite, OrigineReenracineLArbre) {
  // 1 leads 2 leads 3; angles 10, 20, 30 about z; re-rooted at 3.
  Objet* o1 = volume_de({0, 0, 0, 2, 0, 0}, {}, 1);
  Objet* o2 = volume_de({2, 0, 0, 4, 0, 0}, {}, 2);
  Objet* o3 = volume_de({4, 0, 0, 9, 0, 0}, {}, 3);
  Vol_inter* r1 = record(o1);
  Vol_inter* r2 = record(o2);
  Vol_inter* r3 = record(o3);
  lie(r1, r2, 2, 1);
  lie(r2, r3, 2, 1);
  const float c[3][3] = {{1, 0, 0}, {3, 0, 0}, {6.5f, 0, 0}};
  Vol_inter* r[3] = {r1, r2, r3};
  for (int i = 0; i < 3; ++i) {
    for (int x = 0; x < 3; ++x) r[i]->centre[x] = c[i][x], r[i]->axe[x] = x == 2 ? 1.f : 0.f;
    r[i]->angle = 10.f * static_cast<float>(i + 1);
  }
  r1->axe[2] = -1;  // the former root's axis goes to the new root
  r1->pos[0] = 5, r2->pos[1] = 7, r3->pos[2] = 3;
  for (Vol_inter* v : r) vol_inter_matrice(v);
  const float monde[3] = {r3->mat[12], r3->mat[13], r3->mat[14]};
  ASSERT_EQ(origine(r3), 0);
  EXPECT_EQ(r3->lead, nullptr);
  EXPECT_EQ(r1->lead, r2);
  EXPECT_EQ(r1->lead_num, 2);
  ASSERT_EQ(r2->nb_suiv, 1);
  EXPECT_EQ(r2->suiv[0], r1);
  EXPECT_EQ(r1->nb_suiv, 0);
  EXPECT_FLOAT_EQ(r3->angle, 60);
  EXPECT_FLOAT_EQ(r2->angle, -30);
  EXPECT_FLOAT_EQ(r1->angle, -20);
  EXPECT_FLOAT_EQ(r3->axe[2], -1);
  // The anchors swap: 2 now hangs by its vertex 2 at vertex 1 of 3.
  EXPECT_EQ(r2->som_suiv, 2);
  EXPECT_EQ(r2->som_lead, 1);
  EXPECT_EQ(r3->som_lead, 0);
  // Non-roots lose their place; levers from the new anchors.
  EXPECT_FLOAT_EQ(r1->pos[0], 0);
  EXPECT_FLOAT_EQ(r2->bras, 1);
  for (int x = 0; x < 3; ++x) EXPECT_NEAR(r3->mat[12 + x], monde[x], 1e-4f);
  // A root, or no record: nothing to do.
  EXPECT_EQ(origine(r3), 0);
  EXPECT_EQ(origine(nullptr), 0);
  // A cycle through the leaders: a message, the tree left as it is.
  r3->lead = r1;
  sortie_de([&] { EXPECT_LT(origine(r2), 0); });
  EXPECT_EQ(r2->lead, r3);
}

// The pull: record 1 hangs by its vertex 1 at the origin, centre (0, 3, 0),
// led by 2; its vertex 2 at (0, 4, 0) is dragged.
struct Tire : DynSuite {
  Objet* o1 = nullptr;
  Objet* o2 = nullptr;
  Vol_inter* r1 = nullptr;
  void prepare() {
    o1 = volume_de({0, 0, 0, 0, 4, 0, 1, 4, 0}, {}, 1);
    o2 = volume_de({0, 0, 0}, {}, 2);
    r1 = record(o1);
    Vol_inter* r2 = record(o2);
    lie(r2, r1, 1, 1);
    r1->centre[1] = 3;
    for (Vol_inter* v : {r1, r2}) vol_inter_matrice(v);
    remet();
  }
  void remet() { ecrit(o1, {1, dyn::B_FOR, 1, dyn::B_TIRE}, {0, 0, 0, 0}); }
  std::vector<float> force() { return lit(o1, {1, dyn::B_FOR, 1, dyn::B_TIRE}); }
};

TEST_F(Tire, TireLesSommetsVersUneCible) {
  prepare();
  ecrit(o2, {1, dyn::B_FOR, 1, dyn::B_TIRE}, {0, 0, 0, 0});
  // To (3, 4, 0): direction +x, distance 3; u = (0, 1, 0); axis = u x dir
  // = (0, 0, -1); (k, e) = (2, 1): s = (2 x 3)^1 = 6; the force at the tip
  // (0, 0, -6), the axis along it.
  Phrase p;
  p.c(1, dyn::B_TIRE, {}).c(1, dyn::B_VOLK, {1, 2}).c(1, dyn::B_SOMK, {2, 2}).c(1, dyn::B_COE, {2, 1, 5, -1}).c(1, dyn::B_PTS, {3, 4, 0});
  ASSERT_EQ(tire(p.m.data()), 0);
  auto f = force();
  EXPECT_NEAR(f[0], 0, 1e-6f);
  EXPECT_NEAR(f[2], -6, 1e-5f);
  proche(r1->axe, {0, 0, -1}, 1e-6f);
  // 2 stops the chain: its force is untouched.
  EXPECT_FLOAT_EQ(lit(o2, {1, dyn::B_FOR, 1, dyn::B_TIRE})[2], 0);
  // Exponent below 0: the strength alone. a59 = 0.5, a47 = -1; twice the
  // range of vertex 2: the same mean point. The pull adds to the force.
  Phrase q;
  q.c(1, dyn::B_VOLK, {1}).c(1, dyn::B_VOLK, {2}).c(1, dyn::B_BORNES, {2, 2, 2, 2}).c(0, 59, {0.5f}).c(0, 47, {-1}).c(1, dyn::B_PTS, {3, 4, 0});
  ASSERT_EQ(tire(q.m.data()), 0);
  EXPECT_NEAR(force()[2], -6.5f, 1e-5f);
  // Bad: an unknown volume, no target, vertex numbers out of range.
  Phrase m1, m2, m3;
  m1.c(1, dyn::B_VOLK, {42}).c(1, dyn::B_PTS, {1, 1, 1});
  m2.c(1, dyn::B_VOLK, {1}).c(1, dyn::B_SOMK, {1, 1});
  m3.c(1, dyn::B_VOLK, {1, 2}).c(1, dyn::B_SOMK, {-4, 99, std::nanf(""), 1e9f}).c(1, dyn::B_PTS, {1e30f, -1e30f, std::nanf("")});
  for (Phrase* m : {&m1, &m2, &m3}) EXPECT_NE(sortie_de([&] { EXPECT_LT(tire(m->m.data()), 0); }), "");
  EXPECT_TRUE(tire_forme(p.m.data()));
  Phrase seule;
  seule.c(1, dyn::B_TIRE, {1, 2, 3}).c(1, dyn::B_VOLK, {1});
  EXPECT_FALSE(tire_forme(seule.m.data()));
}

TEST_F(DynSuite, CorpsMalFormesSansPlantage) {
  // Bodies with a mass of 0, below 0, NaN or tiny; NaN and huge forces; the
  // frame goes on and every other body still moves by the formula.
  const float nan = std::numeric_limits<float>::quiet_NaN();
  std::vector<Vol_inter*> r;
  const float masses[] = {0, -5, nan, 1e-30f, 3, 3};
  for (int i = 0; i < 6; ++i) {
    Objet* o = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {{1, 2, 3}}, i + 1);
    ecrit(o, {1, dyn::B_MAS}, {masses[i]});
    if (i == 4) ecrit(o, {1, dyn::B_FOR}, {0, 0, -7});
    else ecrit(o, {1, dyn::B_FOR}, {1e30f, nan, -7});
    ecrit(o, {1, dyn::B_FOR, 1, dyn::B_ROTAK}, {nan, 1e30f, 0, nan});
    r.push_back(record(o));
  }
  Objet* bon = volume_de({0, 0, 0}, {}, 9);
  ecrit(bon, {1, dyn::B_MAS}, {4});
  ecrit(bon, {1, dyn::B_FOR}, {2, -6, 0.5f});
  Vol_inter* b = record(bon);
  const std::string sortie = sortie_de([&] {
    for (int k = 0; k < 3; ++k) pas_corps(nullptr, 1, 1);
  });
  for (int i = 0; i < 4; ++i) {
    EXPECT_FLOAT_EQ(r[static_cast<std::size_t>(i)]->pos[2], 0) << i;
    EXPECT_FLOAT_EQ(r[static_cast<std::size_t>(i)]->angle, 0) << i;
  }
  // The body of mass 3: pos z = (1 + 2 + 3) x -7 / 3, its force at the tip
  // being no number left out; with a force that is no number it stays.
  EXPECT_NEAR(r[4]->pos[2], -14, 1e-4f);
  EXPECT_FLOAT_EQ(r[4]->angle, 0);
  for (int x = 0; x < 3; ++x) EXPECT_FLOAT_EQ(r[5]->pos[x], 0);
  EXPECT_NEAR(b->pos[0], 6 * 0.5f, 1e-5f);
  EXPECT_NEAR(b->pos[1], 6 * -1.5f, 1e-5f);
  // The anchors' force of the frame, when it is a value of its own, adds
  // at the tip: kr = 1 / (4 x 4 x 1), t = 8: A = 0.5.
  float frame[3] = {0, 8, 0};
  b->force_frame = frame;
  pas_corps(nullptr, 1, 1);
  EXPECT_FLOAT_EQ(lit(bon, {1, dyn::B_ACC, 1, dyn::B_ROTAK})[0], 0.5f);
}

// A text attribute at a path, as the language stores one.
void chaine(Objet* o, std::vector<mot> paires, const char* t) {
  const int n = static_cast<int>(paires.size() / 2);
  attribut_enleve(o, false, n, paires.data());
  const mot lg = static_cast<mot>(std::strlen(t));
  const mot l = 4 + (lg + 4) / 4, h = 4 + 2 * n;
  mot* a = bloc_alloue(h + l);
  ASSERT_NE(a, nullptr);
  a[0] = h + l;
  phrase_paires(a, n, paires.data());
  mot* v = a + h;
  std::memset(v, 0, sizeof(mot) * static_cast<std::size_t>(l));
  v[0] = l, v[1] = BLOC_CHAINE, v[2] = 1, v[3] = lg;
  std::memcpy(v + 4, t, static_cast<std::size_t>(lg));
  ASSERT_GE(liste_ajoute(o, a), 0);
}

TEST_F(DynSuite, ChampParFonctionDuLangageEtParNom) {
  vocabulaire();
  const std::string t = "force_champ(p)\n{\n  retour p * 2\n}\n";
  ASSERT_GT(fonctions_analyse(t.data(), t.size()), 0);
  // Field 1: (1, 0, 0) everywhere, plus twice the point from its function.
  Objet* f = objet_cree(1, dyn::B_CHA, 0, nullptr, nullptr, 1);
  ecrit(f, {1, dyn::B_COE}, {1, 0, 0});
  chaine(f, {0, dyn::A_FONCK}, "force_champ");
  Objet* o = volume_de({1.5f, -2, 0.25f, 40, -7, 1e3f}, {}, 2);
  ecrit(o, {1, dyn::B_MAS}, {1});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  auto v = lit(o, {1, dyn::B_VIT, 1, dyn::B_SOMK});
  EXPECT_EQ(v, (std::vector<float>{1 + 3, -4, 0.5f, 1 + 80, -14, 2e3f}));
  EXPECT_FLOAT_EQ(etat.point[2], 1e3f);
  // A function that does not exist: said once for the step, the field's
  // own term stays.
  chaine(f, {0, dyn::A_FONCK}, "pas_de_telle_fonction");
  const std::string s = sortie_de([&] { ASSERT_EQ(pas_sommets(o, 1, 1, false), 0); });
  EXPECT_NE(s.find("pas_de_telle_fonction"), std::string::npos);
  EXPECT_EQ(s.find("pas_de_telle_fonction"), s.rfind("pas_de_telle_fonction"));
  v = lit(o, {1, dyn::B_VIT, 1, dyn::B_SOMK});
  EXPECT_FLOAT_EQ(v[0], 5);
  // (cha, som) as a name: the field of that name acts on every vertex, and
  // no other.
  Objet* g = objet_cree(1, dyn::B_CHA, 0, nullptr, "vent", 3);
  ecrit(g, {1, dyn::B_COE}, {0, 0, -2});
  Objet* p = volume_de({0, 0, 0, 1, 1, 1}, {}, 4);
  ecrit(p, {1, dyn::B_MAS}, {2});
  chaine(p, {1, dyn::B_CHA, 1, dyn::B_SOMK}, "vent");
  ASSERT_EQ(pas_sommets(p, 1, 1, false), 0);
  EXPECT_EQ(lit(p, {1, dyn::B_VIT, 1, dyn::B_SOMK}), (std::vector<float>{0, 0, -1, 0, 0, -1}));
  // A record of 0 names every field: field 1 (with its function missing)
  // and the wind.
  Objet* q = volume_de({0, 0, 0}, {}, 5);
  ecrit(q, {1, dyn::B_MAS}, {1});
  ecrit(q, {1, dyn::B_CHA, 1, dyn::B_SOMK}, {2, 0});
  sortie_de([&] { ASSERT_EQ(pas_sommets(q, 1, 1, false), 0); });
  EXPECT_EQ(lit(q, {1, dyn::B_VIT, 1, dyn::B_SOMK}), (std::vector<float>{1, 0, -2}));
}

TEST_F(DynSuite, NuageRigideTourneDUnBloc) {
  ASSERT_GE(kom_charge("env/komb.h", 1), 0);
  ASSERT_GT(nb_etats[1], dyn::B_RIGIDE);
  etats[1][dyn::B_RIGIDE] = 1;
  // Anchor at the centre (0.5, 0, 0): the lever's force (0, 0, 1) and an
  // inertia of 2: A = 0.5 about z, then w = 0.5 and the turn 0.5 radian.
  Objet* o = volume_de({0, 0, 0, 1, 0, 0}, {}, 1);
  ecrit(o, {1, dyn::B_MAS}, {2});
  ecrit(o, {1, dyn::B_LEADK}, {7});
  ecrit(o, {1, dyn::B_FOR, 1, dyn::B_ROTAK}, {0, 0, 1, 0});
  ecrit(o, {1, dyn::B_COE, 1, dyn::B_FOR, 1, dyn::B_ROTAK}, {2});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  auto s = sommets(o);
  EXPECT_NEAR(s[0], 0.5f - 0.5f * std::cos(0.5f), 1e-6f);
  EXPECT_NEAR(s[1], -0.5f * std::sin(0.5f), 1e-6f);
  EXPECT_NEAR(s[3], 0.5f + 0.5f * std::cos(0.5f), 1e-6f);
  EXPECT_FLOAT_EQ(lit(o, {1, dyn::B_ACC, 1, dyn::B_ROTAK})[2], 0.5f);
  // Second step: w = 1, the turn 1.5; the shape is kept.
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  s = sommets(o);
  EXPECT_NEAR(lit(o, {1, dyn::B_JOI, 1, dyn::B_ROTAK})[2], 1.5f, 1e-6f);
  EXPECT_NEAR(s[1], -0.5f * std::sin(1.5f), 1e-6f);
  EXPECT_NEAR(std::hypot(s[3] - s[0], s[4] - s[1], s[5] - s[2]), 1, 1e-5f);
  // A speed limit of 0.25 on w.
  ecrit(o, {1, dyn::B_VIT, 1, dyn::B_ROTAK, 0, dyn::A_LIMK}, {0.25f});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  EXPECT_NEAR(lit(o, {1, dyn::B_VIT, 1, dyn::B_ROTAK})[2], 0.25f, 1e-6f);
  // With b60 off the cloud is an ordinary one: the force moves each vertex.
  etats[1][dyn::B_RIGIDE] = 0;
  ecrit(o, {1, dyn::B_MAS}, {1});
  ecrit(o, {1, dyn::B_FOR}, {0, 0, 4});
  const float z = sommets(o)[5];
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  EXPECT_NEAR(sommets(o)[5], z + 4, 1e-5f);
}

TEST_F(DynSuite, NuageRigideEtChampsDeLaListeJoi) {
  vocabulaire();
  etats[1][dyn::B_RIGIDE] = 1;
  // Anchored at rest vertex 1, centre (1, 0, 0): a force (0, 3, 0) at the
  // centre, or field 9 giving (0, 1.5, 0) there with k = 2, makes the
  // torque (0, 0, 3), the inertia 3: one radian about the anchor. The
  // volume names field 55, which does not exist, so no field reaches it
  // but through its b33 list. A force that is no number, or no mass: the
  // cloud stays.
  Objet* f = objet_cree(1, dyn::B_CHA, 0, nullptr, nullptr, 9);
  ASSERT_NE(f, nullptr);
  ecrit(f, {1, dyn::B_COE}, {0, 1.5f, 0});
  const float nan = std::nanf("");
  const struct {
    std::vector<float> joi, force;
    float masse, angle;
  } cas[] = {{{2, 9, 0}, {}, 5, 1},
             {{-2, 9, 0}, {}, 5, -1},
             {{1, 9, 0, 1, 9, 0, 7, 1e30f, 0}, {}, 5, 1},  // two halves, an unknown field
             {{2, 9}, {}, 5, 0},                           // no whole triple
             {{nan, 9, 0}, {}, 5, 0},                      // left out
             {{}, {0, 3, 0}, 5, 1},
             {{}, {nan, 0, 0}, 5, 0},
             {{}, {0, 3, 0}, 0, 0}};
  int num = 20;
  for (const auto& c : cas) {
    Objet* p = volume_de({0, 0, 0, 2, 0, 0}, {}, ++num);
    ecrit(p, {1, dyn::B_MAS}, {c.masse});
    ecrit(p, {1, dyn::B_LEADK}, {7});
    ecrit(p, {1, dyn::B_SOMK, 1, dyn::B_SUIVK}, {1});
    ecrit(p, {1, dyn::B_RIGIDE, 1, dyn::B_PTS}, {0, 0, 0});
    ecrit(p, {1, dyn::B_CHA}, {55});
    ecrit(p, {1, dyn::B_COE, 1, dyn::B_FOR, 1, dyn::B_ROTAK}, {3});
    if (!c.joi.empty()) ecrit(p, {1, dyn::B_JOI}, c.joi);
    if (!c.force.empty()) ecrit(p, {1, dyn::B_FOR}, c.force);
    ASSERT_EQ(pas_sommets(p, 1, 1, false), 0);
    proche(sommets(p).data(), {0, 0, 0, 2 * std::cos(c.angle), 2 * std::sin(c.angle)}) ;
  }
  etats[1][dyn::B_RIGIDE] = 0;
}

TEST_F(DynSuite, OrdreAleatoireEtForceDuCasRigide) {
  // (for, pre) = (0, -2, 0, 2): in random order vertex 2 takes (0, -2, 0)
  // on top of its own force; in index order nobody does. 2.5 truncates to
  // 2, as every vertex number; numbers out of range name no vertex.
  const struct {
    float sommet;
    bool ale;
    float y2;
  } cas[] = {{2, true, -3}, {2, false, -1}, {99, true, -1}, {2.5f, true, -3}, {std::nanf(""), true, -1}, {-1e30f, true, -1}};
  int num = 30;
  for (const auto& c : cas) {
    Objet* o = volume_de({0, 0, 0, 10, 0, 0, 20, 0, 0, 30, 0, 0, 40, 0, 0}, {}, ++num);
    ecrit(o, {1, dyn::B_MAS}, {1});
    ecrit(o, {1, dyn::B_FOR}, {0, -1, 0});
    ecrit(o, {1, dyn::B_FOR, 1, dyn::B_PRE}, {0, -2, 0, c.sommet});
    if (c.ale) ecrit(o, {1, dyn::B_DYN, 1, dyn::B_ALE}, {1});
    ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
    auto s = sommets(o);
    for (int i = 0; i < 5; ++i) EXPECT_FLOAT_EQ(s[3 * i + 1], i == 1 ? c.y2 : -1) << c.sommet << " " << i;
  }
}

TEST_F(DynSuite, AttributsAuHasardSansPlantage) {
  // Every attribute of the steps, written again and again with random
  // lengths and random values (NaN, infinities, 1e30, odd numbers, vertex
  // and volume numbers in and out of range), a step after each write: the
  // steps end, never crash, and say what they refuse.
  std::vector<float> s;
  std::vector<std::vector<int>> f;
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 5; ++x) s.insert(s.end(), {7.5f * x, 3.25f * y, 0.5f * x * y});
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 4; ++x) f.push_back({5 * y + x + 1, 5 * y + x + 2, 5 * y + x + 7, 5 * y + x + 6});
  Objet* o = volume_de(s, f, 1);
  Objet* c = volume_de(s, f, 2);
  ecrit(c, {1, dyn::B_VIT, 1, dyn::B_SOMK}, std::vector<float>(75, 0.5f));
  Objet* ch = objet_cree(1, dyn::B_CHA, 0, nullptr, nullptr, 1);
  ecrit(ch, {1, dyn::B_COE}, {1, 2, 3});
  Vol_inter* r1 = record(o);
  Vol_inter* r2 = record(c);
  lie(r1, r2, 3, 1);
  const std::vector<std::vector<int>> chemins = {
      {1, dyn::B_MAS}, {1, dyn::B_MAS, 1, dyn::B_SOMK}, {1, dyn::B_FOR}, {1, dyn::B_FOR, 1, dyn::B_SOMK}, {1, dyn::B_FOR, 1, dyn::B_VIT},
      {1, dyn::B_FOR, 1, dyn::B_ORTHO}, {1, dyn::B_FOR, 1, dyn::B_AXEK}, {1, dyn::B_FOR, 1, dyn::B_ROTAK}, {1, dyn::B_FOR, 1, dyn::B_PRE},
      {1, dyn::B_FOR, 1, dyn::B_TIRE}, {1, dyn::B_COE, 1, dyn::B_VIT}, {1, dyn::B_RESSORT}, {1, dyn::B_RESSORT, 1, dyn::B_SOMK},
      {1, dyn::B_RESSORT, 1, dyn::B_ROTAK}, {1, dyn::B_RESSORT, 1, dyn::B_ROTAK, 1, dyn::B_SOMK}, {1, dyn::B_RESSORT, 0, dyn::A_INI},
      {1, dyn::B_RESSORT, 0, dyn::A_INI, 1, dyn::B_SOMK}, {1, dyn::B_RESSORT, 1, dyn::B_JOI}, {1, dyn::B_PRE, 1, dyn::B_RESSORT, 1, dyn::B_PTS, 1, dyn::B_SOMK},
      {1, dyn::B_PRE, 1, dyn::B_RESSORT, 1, dyn::B_VOLK, 1, dyn::B_SOMK}, {0, dyn::A_TEM}, {0, dyn::A_TEM, 1, dyn::B_SOMK}, {1, dyn::B_DYN, 1, dyn::B_ALE},
      {1, dyn::B_CHOC, 1, dyn::B_SOMK}, {1, dyn::B_COE, 1, dyn::B_CHOC}, {1, dyn::B_COL}, {1, dyn::B_COL, 1, dyn::B_SOMK}, {1, dyn::B_COL, 1, dyn::B_BORNES},
      {1, dyn::B_CHA}, {1, dyn::B_CHA, 1, dyn::B_SOMK}, {1, dyn::B_CHA, 1, dyn::B_VOLK}, {1, dyn::B_CHA, 1, dyn::B_IMA}, {1, dyn::B_ACC, 0, dyn::A_LIMK},
      {1, dyn::B_VIT, 0, dyn::A_LIMK}, {1, dyn::B_BOITE, 0, dyn::A_LIMK}, {1, dyn::B_VIT, 1, dyn::B_SOMK}, {1, dyn::B_ACC, 1, dyn::B_SOMK},
      {1, dyn::B_VIT, 1, dyn::B_ROTAK}, {1, dyn::B_VIT, 1, dyn::B_ROTAK, 0, dyn::A_LIMK}, {1, dyn::B_JOI, 0, dyn::A_LIMK},
      {1, dyn::B_COE, 1, dyn::B_FOR, 1, dyn::B_ROTAK}};
  const float rares[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity(), 0, -0.f, 1e30f, -1e30f, 1e-30f, 2, 3, 25, 26, -1};
  std::mt19937 g(20261123);
  std::uniform_real_distribution<float> reel(-1000, 1000);
  int pas = 0;
  const std::string sortie = sortie_de([&] {
    for (int k = 0; k < 600; ++k) {
      const auto& ch_k = chemins[g() % chemins.size()];
      std::vector<float> v(g() % 14);
      for (float& x : v) x = g() % 3 ? reel(g) : rares[g() % std::size(rares)];
      Objet* cible = g() % 4 ? o : c;
      std::vector<mot> cle(ch_k.begin(), ch_k.end());
      if (v.empty()) attribut_enleve(cible, false, static_cast<int>(cle.size() / 2), cle.data());
      else attribut_ecrit(cible, static_cast<int>(cle.size() / 2), cle.data(), v.data(), static_cast<int>(v.size()), 1);
      const int n = 1 + static_cast<int>(g() % 3);
      EXPECT_GE(pas_sommets(cible, n, n * n, g() % 2 == 0), -1);
      pas_corps(nullptr, 1, 1);
      limite_inter(nullptr);
      ++pas;
    }
  });
  EXPECT_GT(pas, 500);
  EXPECT_LT(sortie.size(), 200000u);
}

TEST_F(Tire, LesAnglesTournentLaForceAutourDuLevier) {
  prepare();
  // Without angle the force is 6 (0, 0, -1) (see the test above); u = (0, 1,
  // 0) and u x (0, 0, -1) = (-1, 0, 0): 90 degrees give (-6, 0, 0), 30
  // degrees 6 (-sin 30, 0, -cos 30); 450 is 90 again; a NaN angle none.
  const float cas[][3] = {{90, -6, 0}, {30, -3, -6 * std::cos(0.5235988f)}, {450, -6, 0}, {std::nanf(""), 0, -6}};
  for (const auto& c : cas) {
    remet();
    Phrase p;
    p.c(1, dyn::B_VOLK, {1, 2}).c(1, dyn::B_SOMK, {2, 2}).c(1, dyn::B_COE, {2, 1}).c(1, dyn::B_JOI, {c[0], 5, 7, 9}).c(1, dyn::B_PTS, {3, 4, 0});
    ASSERT_EQ(tire(p.m.data()), 0);
    auto f = force();
    EXPECT_NEAR(f[0], c[1], 1e-4f) << c[0];
    EXPECT_NEAR(f[1], 0, 1e-5f) << c[0];
    EXPECT_NEAR(f[2], c[2], 1e-4f) << c[0];
    // The axis follows the turned force.
    EXPECT_NEAR(r1->axe[0] * 6, c[1], 1e-4f) << c[0];
  }
  // Random angles and targets: the force keeps its size and stays across
  // the lever.
  std::mt19937 g(1234);
  std::uniform_real_distribution<float> a(-2000, 2000), t(-50, 50);
  for (int k = 0; k < 200; ++k) {
    remet();
    const float ang = a(g), x = t(g), z = t(g);
    Phrase p;
    p.c(1, dyn::B_VOLK, {1, 2}).c(1, dyn::B_SOMK, {2, 2}).c(1, dyn::B_COE, {1, -1}).c(1, dyn::B_JOI, {ang}).c(1, dyn::B_PTS, {x, 4, z});
    ASSERT_EQ(tire(p.m.data()), 0);
    auto f = force();
    // Strength 1 (exponent below 0), |u x dir| = 1 with dir across u.
    EXPECT_NEAR(std::hypot(f[0], f[1], f[2]), 1, 1e-4f);
    EXPECT_NEAR(f[1], 0, 1e-5f);
  }
  // A transformation, view, parts or skeleton keyword in the phrase makes it
  // a program of the frame; the pull's own arguments do not.
  Phrase simple, rotx, vue, squelette;
  simple.c(1, dyn::B_TIRE, {}).c(1, dyn::B_VOLK, {1}).c(1, dyn::B_JOI, {10}).c(1, dyn::B_PTS, {1, 2, 3});
  rotx.c(1, dyn::B_TIRE, {}).c(1, dyn::B_VOLK, {1}).c(1, dyn::B_ROTXK, {5});
  vue.c(1, dyn::B_TIRE, {}).c(1, 114, {1});
  squelette.c(1, dyn::B_TIRE, {}).c(0, 67, {1});
  EXPECT_FALSE(tire_attache(simple.m.data()));
  EXPECT_TRUE(tire_attache(rotx.m.data()));
  EXPECT_TRUE(tire_attache(vue.m.data()));
  EXPECT_TRUE(tire_attache(squelette.m.data()));
}

TEST_F(Tire, LePointeurEstUnPixelRameneDansLeMonde) {
  fen.dimx = 768, fen.dimy = 576;
  oeil_courant = Oeil{};  // at (0, 0, -1000) towards the origin, y down the screen
  // At the depth of the origin the window's half height, 288 pixels, spans
  // 1000 tan(57.75 / 2 degrees) in the world; x to the right, y down.
  const float demi = 1000 * std::tan(57.75f / 2 * 3.14159265f / 180);
  const float o[3] = {0, 0, 0};
  float w[3];
  ASSERT_TRUE(pixel_monde(384, 288, o, w));
  for (float c : w) EXPECT_NEAR(c, 0, 1e-3f);
  ASSERT_TRUE(pixel_monde(484, 188, o, w));
  EXPECT_NEAR(w[0], 100 * demi / 288, 1e-2f);
  EXPECT_NEAR(w[1], -100 * demi / 288, 1e-2f);
  EXPECT_NEAR(w[2], 0, 1e-2f);
  // Random points and pixels, odd eyes too: projected back, the result lands
  // on its pixel at the depth of its point.
  std::mt19937 g(77);
  std::uniform_real_distribution<float> u(-300, 300), px(0, 767), py(0, 575);
  for (int k = 0; k < 100; ++k) {
    oeil_courant.oeil[0] = u(g), oeil_courant.oeil[1] = u(g), oeil_courant.oeil[2] = -1500 + u(g);
    oeil_courant.vise[0] = u(g), oeil_courant.vise[1] = u(g), oeil_courant.vise[2] = u(g);
    const float t[3] = {u(g) / 3, u(g) / 3, u(g) / 3}, x = px(g), y = py(g);
    ASSERT_TRUE(pixel_monde(x, y, t, w));
    float vue[16], proj[16], a[4] = {0, 0, 0, 0}, b[4] = {0, 0, 0, 0}, at[4] = {0, 0, 0, 0};
    oeil_matrices(768, 576, vue, proj);
    for (int r = 0; r < 4; ++r) {
      a[r] = vue[12 + r], at[r] = vue[12 + r];
      for (int c = 0; c < 3; ++c) a[r] += vue[4 * c + r] * w[c], at[r] += vue[4 * c + r] * t[c];
    }
    EXPECT_NEAR(a[2], at[2], 0.05f);  // the same depth
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) b[r] += proj[4 * c + r] * a[c];
    EXPECT_NEAR((b[0] / b[3] + 1) * 384, x, 0.05f);
    EXPECT_NEAR(576 - (b[1] / b[3] + 1) * 288, y, 0.05f);
  }
  // No depth to go back to: a point that is no number.
  const float nan3[3] = {std::nanf(""), 0, 0};
  EXPECT_FALSE(pixel_monde(10, 10, nan3, w));
  // The pull by the pointer goes where the same pixel lands: as a pull to
  // that world point given by numbers.
  oeil_courant = Oeil{};
  prepare();
  fen.souris_x = 431, fen.souris_y = 97, fen.clic_x = 5, fen.clic_y = 570;
  const float dedans[3] = {0, 4, 0};
  float cible[3];
  ASSERT_TRUE(pixel_monde(431, 97, dedans, cible));
  Phrase par_souris, par_nombres;
  par_souris.c(1, dyn::B_VOLK, {1, 2}).c(1, dyn::B_SOMK, {2, 2}).c(1, dyn::B_COE, {0.5f, 1}).c(1, dyn::B_SOU, {1});
  par_nombres.c(1, dyn::B_VOLK, {1, 2}).c(1, dyn::B_SOMK, {2, 2}).c(1, dyn::B_COE, {0.5f, 1}).c(1, dyn::B_PTS, {cible[0], cible[1], cible[2]});
  ASSERT_EQ(tire(par_souris.m.data()), 0);
  const auto f1 = force();
  remet();
  ASSERT_EQ(tire(par_nombres.m.data()), 0);
  const auto f2 = force();
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(f1[c], f2[c], 1e-3f * (1 + std::fabs(f2[c])));
  EXPECT_GT(std::hypot(f1[0], f1[1], f1[2]), 1);
  fen.dimx = fen.dimy = 0;
}
}  // namespace
