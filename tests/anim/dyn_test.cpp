// The dynamics' formulas on hand-computed cases: a body under a constant
// force, limits and windows, springs and torsion, fields, a force image, a
// collider, the marker decay and the random visit order; and bad values
// (NaN, 1e30, negative masses, unknown vertices and volumes, a cycle) that
// must give a message or a skip and never a crash.
#include <cmath>
#include <limits>

#include "outils.h"
#include "anim/dyn.h"
#include "image/image.h"

namespace {
using namespace dyn;


struct Dyn : Enregistrements {};

TEST_F(Dyn, CorpsSousForceConstanteLimitesEtFenetres) {
  // Mass 2, force (3.7, -1.3, 0.25), 10 steps: v = n F / 2, pos = 55 F / 2.
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {{1, 2, 3}});
  ecrit(o, {1, dyn::B_MAS}, {2});
  ecrit(o, {1, dyn::B_FOR}, {3.7f, -1.3f, 0.25f});
  Vol_inter* r = record(o);
  for (int k = 0; k < 10; ++k) pas_corps(nullptr, 1, 1);
  const float F[3] = {3.7f, -1.3f, 0.25f};
  auto v = lit(o, {1, dyn::B_VIT});
  ASSERT_EQ(v.size(), 3u);
  for (int x = 0; x < 3; ++x) {
    EXPECT_NEAR(v[x], 10 * F[x] / 2, 1e-5f);
    EXPECT_NEAR(r->pos[x], 55 * F[x] / 2, 1e-4f);
    EXPECT_NEAR(lit(o, {1, dyn::B_ACC})[x], F[x] / 2, 1e-7f);
  }
  // The default speed limit is 100: a huge force gives a speed of 100 in
  // its direction; a limit of 0 means none.
  ecrit(o, {1, dyn::B_FOR}, {3e5f, 4e5f, 0});
  ecrit(o, {1, dyn::B_VIT}, {0, 0, 0});
  pas_corps(nullptr, 1, 1);
  v = lit(o, {1, dyn::B_VIT});
  EXPECT_NEAR(v[0], 60, 1e-3f);
  EXPECT_NEAR(v[1], 80, 1e-3f);
  ecrit(o, {1, dyn::B_VIT, 0, dyn::A_LIMK}, {7.5f, 7.5f, 7.5f});
  pas_corps(nullptr, 1, 1);
  v = lit(o, {1, dyn::B_VIT});
  EXPECT_NEAR(std::hypot(v[0], v[1], v[2]), 7.5f, 1e-4f);
  EXPECT_NEAR(v[0] / v[1], 0.75f, 1e-4f);
  ecrit(o, {1, dyn::B_VIT, 0, dyn::A_LIMK}, {0, 0, 0});
  ecrit(o, {1, dyn::B_VIT}, {0, 0, 0});
  pas_corps(nullptr, 1, 1);
  EXPECT_NEAR(lit(o, {1, dyn::B_VIT})[1], 2e5f, 1);
  // n substeps: the force is divided by N = n^2.
  ecrit(o, {1, dyn::B_FOR}, {4, 0, 0});
  ecrit(o, {1, dyn::B_VIT}, {0, 0, 0});
  pas_corps(nullptr, 2, 4);
  EXPECT_NEAR(lit(o, {1, dyn::B_VIT})[0], 0.5f, 1e-6f);

  // The angle window bounces with w x -0.5; rotx is clamped with no bounce;
  // the box of pos clamps each coordinate.
  const reel fen[2] = {-0.1f, 0.2f}, fx[2] = {0, 0.5f}, boite[6] = {-1, -1, -1, 1, 1, 1};
  r->lim_rota = fen, r->lim_rotx = fx, r->lim_dep = boite;
  r->angle = 30, r->rotx = -4;
  r->pos[0] = 7, r->pos[1] = -0.5f, r->pos[2] = -1e30f;
  ecrit(o, {1, dyn::B_VIT, 1, dyn::B_ROTAK}, {3, 0, 0});
  EXPECT_EQ(fenetres(r), 4);
  EXPECT_NEAR(r->angle, 0.2f * 57.295776f, 1e-4f);
  EXPECT_FLOAT_EQ(lit(o, {1, dyn::B_VIT, 1, dyn::B_ROTAK})[0], -1.5f);
  EXPECT_FLOAT_EQ(r->rotx, 0);
  EXPECT_FLOAT_EQ(r->pos[0], 1);
  EXPECT_FLOAT_EQ(r->pos[1], -0.5f);
  EXPECT_FLOAT_EQ(r->pos[2], -1);
  r->angle = -30;
  fenetres(r);
  EXPECT_NEAR(r->angle, -0.1f * 57.295776f, 1e-4f);
  EXPECT_FLOAT_EQ(lit(o, {1, dyn::B_VIT, 1, dyn::B_ROTAK})[0], 0.75f);
}

TEST_F(Dyn, RotationLevierEtRessortDeJoint) {
  // Force at the tip along the axis: t = F . axe; kr = k / (m L), the mass
  // twice; A = t kr + c w. Then the joint spring's strong factor.
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {{1, 2, 3}});
  ecrit(o, {1, dyn::B_MAS}, {2});
  ecrit(o, {1, dyn::B_FOR, 1, dyn::B_ROTAK}, {0, 6, 0, 0.5f});
  Vol_inter* r = record(o);
  r->bras = 3;
  ecrit(o, {1, dyn::B_VIT, 1, dyn::B_ROTAK}, {1, 0, 0});
  pas_corps(nullptr, 1, 1);
  // k = 1/2, kr = 1/12, t = 6: A = 0.5 + 0.5 x 1 = 1, w = 2, angle = 2.
  EXPECT_FLOAT_EQ(lit(o, {1, dyn::B_ACC, 1, dyn::B_ROTAK})[0], 1);
  EXPECT_FLOAT_EQ(lit(o, {1, dyn::B_VIT, 1, dyn::B_ROTAK})[0], 2);
  EXPECT_FLOAT_EQ(r->angle, 2);
  // With (ressort, joi) = (0.01, 0): q = 0.005; A -= q x angle x 57.2957...
  ecrit(o, {1, dyn::B_RESSORT, 1, dyn::B_JOI}, {0.01f, 0});
  ecrit(o, {1, dyn::B_FOR, 1, dyn::B_ROTAK}, {0, 0, 0, 0});
  ecrit(o, {1, dyn::B_VIT, 1, dyn::B_ROTAK}, {0, 0, 0});
  pas_corps(nullptr, 1, 1);
  // Step 8: A = 0, w = 0. Step 9: A = -0.005 x 2 x 57.2957763671875.
  const float A = -0.005f * 2 * 57.2957763671875f;
  EXPECT_NEAR(lit(o, {1, dyn::B_ACC, 1, dyn::B_ROTAK})[0], A, 1e-5f);
  EXPECT_NEAR(r->angle, 2 + A, 1e-5f);
  // Limits on w and A.
  ecrit(o, {1, dyn::B_VIT, 1, dyn::B_ROTAK, 0, dyn::A_LIMK}, {0.25f});
  ecrit(o, {1, dyn::B_RESSORT, 1, dyn::B_JOI}, {0, 0});
  ecrit(o, {1, dyn::B_FOR, 1, dyn::B_ROTAK}, {0, 1e30f, 0, 0});
  pas_corps(nullptr, 1, 1);
  EXPECT_FLOAT_EQ(lit(o, {1, dyn::B_VIT, 1, dyn::B_ROTAK})[0], 0.25f);
}

TEST_F(Dyn, RessortEtTorsion) {
  // One spring of rest length 1 stretched to 2: k (d - L0) u on each end.
  const float p[3] = {0, 0, 0}, q[3] = {2, 0, 0}, v[3] = {0.5f, 0, 0};
  float F[3] = {0, 0, 0}, G[3] = {0, 0, 0};
  ressort(p, q, v, 3, 0, 1, F);
  ressort(q, p, v, 3, 0, 1, G);
  EXPECT_FLOAT_EQ(F[0], 3);
  EXPECT_FLOAT_EQ(G[0], -3);
  // A positive c adds c v: it accelerates.
  float H[3] = {0, 0, 0};
  ressort(p, q, v, 3, 2, 1, H);
  EXPECT_FLOAT_EQ(H[0], 4);
  // The same through a step: vertex 1 free, vertex 2 with no mass (record
  // shorter than 2) stays and is still the spring's end.
  Objet* o = volume_de({0, 0, 0, 2, 0, 0}, {{1, 2}});
  ecrit(o, {1, dyn::ORD_REPOS}, {0, 0, 0, 1, 0, 0});
  ecrit(o, {1, dyn::B_RESSORT}, {3, 0});
  ecrit(o, {1, dyn::B_MAS, 1, dyn::B_SOMK}, {2, 1.5f, 1, -2});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  auto s = sommets(o);
  EXPECT_FLOAT_EQ(s[0], 2);  // a = 3 / 1.5, v = 2, p = 2
  EXPECT_FLOAT_EQ(s[3], 2);
  // Torsion: p with neighbours (1,0,0) and (0,1,0) at rest (90 degrees);
  // the second moved to (1,1,0): 45 degrees. Both pairs give e = pi/4
  // towards the midpoint; divided by 2, plus c v.
  Objet* t = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {{1, 2, 3}}, 2);
  const float repos[9] = {0, 0, 0, 1, 0, 0, 0, 1, 0}, cour[9] = {0, 0, 0, 1, 0, 0, 1, 1, 0};
  voisins(t, repos, 3, 3, true);
  float T[3] = {0, 0, 0};
  const float w[3] = {0, 0, 1};
  torsion(0, cour, 3, w, 2, -0.5f, T);
  const float e = 3.14159265f / 4, n = std::sqrt(1.25f);
  EXPECT_NEAR(T[0], 2 * e / n, 1e-5f);
  EXPECT_NEAR(T[1], 2 * e * 0.5f / n, 1e-5f);
  EXPECT_NEAR(T[2], -0.5f, 1e-6f);
}

TEST_F(Dyn, ChampsPointTourbillonAxeEtImage) {
  Objet* o = volume_de({0, 0, 0, 1, 0, 0}, {});
  Objet* f = objet_cree(1, dyn::B_CHA, 0, nullptr, nullptr, 1);
  ecrit(f, {1, dyn::B_PTS}, {10, 0, 0});
  ecrit(f, {1, dyn::B_COE}, {2});
  const float p[3] = {0, 0, 0};
  float F[3] = {0, 0, 0};
  champ_un(f, o, p, F);
  EXPECT_FLOAT_EQ(F[0], 2);
  // Swirl about Z: u x Z = (0, -1, 0).
  f->sous_type = dyn::B_ROTZK;
  F[0] = 0;
  champ_un(f, o, p, F);
  EXPECT_FLOAT_EQ(F[0], 0);
  EXPECT_FLOAT_EQ(F[1], -2);
  // A vol list without this volume: no effect.
  ecrit(f, {1, dyn::B_VOLK}, {5, 7});
  F[1] = 0;
  champ_un(f, o, p, F);
  EXPECT_FLOAT_EQ(F[1], 0);
  // Axis field about z through the origin, at (1, 0, 0), with a curve
  // (0 -> 5, 2 -> 1): s = 3 at distance 1; direction u x unit(c - p).
  // The curve's ends hold before and past it.
  Objet* a = objet_cree(1, dyn::B_CHA, dyn::B_ROTAK, nullptr, nullptr, 2);
  ecrit(a, {1, dyn::B_PTS}, {0, 0, 0, 0, 0, 1});
  const std::vector<float> cb{0, 5, 0, 2, 1, 0};
  ecrit(a, {1, dyn::B_COURBE}, cb);
  const float p2[3] = {1, 0, 0.5f};
  float G[3] = {0, 0, 0};
  champ_un(a, o, p2, G);
  proche(G, {0, -3, 0});
  EXPECT_FLOAT_EQ(courbe(cb.data(), 6, -4), 5);
  EXPECT_FLOAT_EQ(courbe(cb.data(), 6, 1e30f), 1);
  // Without points: the coe vector.
  Objet* u = objet_cree(1, dyn::B_CHA, 0, nullptr, nullptr, 3);
  ecrit(u, {1, dyn::B_COE}, {0.5f, -9.81f, 0});
  float H[3] = {0, 0, 0};
  champ_un(u, o, p, H);
  EXPECT_FLOAT_EQ(H[1], -9.81f);

  // A force image of a known 3 x 3 image on a 3 x 3 grid: the centre
  // vertex's window is the whole image, the corner's the 2 x 2 corner.
  Objet* g = volume_de({0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0, 0, 2, 0, 1, 2, 0, 2, 2, 0}, {}, 9);
  vol_grille_fixe(g, 79, 3, 3, 0, 0);
  mot* im = ima_alloue(3, 3);
  ASSERT_NE(im, nullptr);
  int rouge[9] = {255, 0, 51, 102, 153, 204, 17, 34, 68};
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 3; ++x) {
      ima_rouge(im, y)[x] = static_cast<octet>(rouge[3 * y + x]);
      ima_rouge(im, y)[3 + x] = 90;  // green
    }
  ASSERT_EQ(ima_installe(4, im), 0);
  const reel ci[7] = {4, 1, 2, 0, 0, 10, 0};
  float K[3] = {7, 7, 7};
  const float s5 = image_force(g, ci, 7, 5, K);
  double somme = 0;
  for (int k = 0; k < 9; ++k) somme += rouge[k] + 2 * 90;
  EXPECT_NEAR(s5, somme / (3 * 255 * 9), 1e-6);
  EXPECT_FLOAT_EQ(K[0], 0);  // replaced, not added
  EXPECT_NEAR(K[1], 10 * s5, 1e-5f);
  const float s1 = image_force(g, ci, 7, 1, K);
  EXPECT_NEAR(s1, (255 + 0 + 102 + 153 + 4 * 180) / (3.0 * 255 * 4), 1e-6);
  // An unknown image number, or NaN: nothing.
  const reel cx[7] = {99, 1, 1, 1, 1, 1, 1}, cn[7] = {NAN, 1, 1, 1, 1, 1, 1};
  EXPECT_LT(image_force(g, cx, 7, 1, K), 0);
  EXPECT_LT(image_force(g, cn, 7, 1, K), 0);
}

TEST_F(Dyn, CollisionProjetteEtMarque) {
  // A collider quad in the plane y = 0, its normal +y, two vertices near
  // the origin and two far away. The vertex below the plane is projected
  // to the weighted contact point; z keeps the last contact's term alone.
  Objet* c = volume_de({0, 0, 0.6f, 0, 0, 40, 0.5f, 0, 40, 0.5f, 0, 0.2f}, {{1, 2, 3, 4}}, 2);
  Objet* o = volume_de({0.2f, -0.3f, 0.1f}, {}, 1);
  ecrit(o, {1, dyn::B_COL}, {77, 1, 1, 1, 2, 4, 0, 1.5f});  // unknown 77 first: skipped
  mot* nv = gen_normale_som(c, nullptr, 0);
  ASSERT_NE(nv, nullptr);
  const reel* n = reels(valeur_de(nv) + 4);
  ASSERT_GT(n[1], 0.99f);
  float p[3] = {0.2f, -0.3f, 0.1f};
  const float v[3] = {0, 0, 0};
  float F[3] = {0, 0, 0}, m[3] = {0, 0, 0};
  ASSERT_EQ(collision(o, p, v, F, false, m), 2);
  const float d1 = std::hypot(0.2f, 0.3f, 0.5f), d4 = std::hypot(0.3f, 0.3f, 0.1f);
  const float w1 = 1 / d1, w4 = 1 / d4, W = w1 + w4;
  proche(p, {(w4 * 0.5f) / W, 1.5f, (w4 * 0.2f) / W});  // e = r in no-force mode, along N
  EXPECT_FLOAT_EQ(m[0], 1);
  EXPECT_FLOAT_EQ(m[2], -1);
  EXPECT_FLOAT_EQ(F[1], 0);  // no force in this mode
  // The pressure in force mode: mean of (r - d) a / r along the normals.
  float q[3] = {0.2f, -0.3f, 0.1f}, G[3] = {0, 0, 0};
  collision(o, q, v, G, true, nullptr);
  EXPECT_NEAR(G[1], ((1.5f - d1) * 4 / 1.5f + (1.5f - d4) * 4 / 1.5f) / 2, 1e-5f);
  // A point far away: no contact, unchanged.
  float r[3] = {100, 100, 100};
  EXPECT_EQ(collision(o, r, v, G, true, nullptr), 0);
  EXPECT_FLOAT_EQ(r[0], 100);
  // A collider with no vertices is skipped.
  objet_cree(1, B_VOL, 0, nullptr, nullptr, 3);
  ecrit(o, {1, dyn::B_COL}, {3, 1, 1, 1});
  EXPECT_EQ(collision(o, r, v, G, true, nullptr), 0);
}

TEST_F(Dyn, MarqueurDecroitEtOrdreAleatoireReproductible) {
  Objet* o = volume_de({0, 0, 0, 1, 0, 0}, {{1, 2}});
  ecrit(o, {1, dyn::B_MAS}, {1});
  ecrit(o, {1, dyn::B_CHOC, 1, dyn::B_SOMK}, {0, 1, -1, 0, 0, 0});
  ecrit(o, {1, dyn::B_COE, 1, dyn::B_CHOC}, {0.4f});
  const float attendu[3][3] = {{1, 0.6f, 0.4f}, {0.6f, 0.2f, 0.4f}, {0.2f, 0, 0}};
  for (auto& a : attendu) {
    ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
    proche(lit(o, {1, dyn::B_CHOC, 1, dyn::B_SOMK}).data(), {a[0], a[1], a[2]}, 1e-6f);
  }
  // The random order: a permutation, the same for the same seed, and it
  // changes the result of a spring chain (vertices see moved neighbours).
  auto chaine = [&](int num, bool ale, std::uint64_t graine) {
    std::vector<float> s;
    std::vector<std::vector<int>> f;
    for (int i = 0; i < 40; ++i) s.insert(s.end(), {static_cast<float>(i), 0, 0});
    for (int i = 1; i < 40; ++i) f.push_back({i, i + 1});
    Objet* c = volume_de(s, f, num);
    ecrit(c, {1, dyn::B_MAS}, {1.7f});
    ecrit(c, {1, dyn::B_RESSORT}, {0.3f, -0.05f});
    ecrit(c, {1, dyn::B_FOR}, {0, -0.2f, 0});
    if (ale) ecrit(c, {1, dyn::B_DYN, 1, dyn::B_ALE}, {1});
    etat.graine = graine;
    for (int k = 0; k < 5; ++k) pas_sommets(c, 1, 1, false);
    return sommets(c);
  };
  auto a = chaine(10, true, 12345), b = chaine(11, true, 12345), c = chaine(12, true, 999), d = chaine(13, false, 1);
  EXPECT_EQ(a, b);
  EXPECT_NE(a, c);
  EXPECT_NE(a, d);
  std::vector<int> o2(etat.ordre.begin(), etat.ordre.begin() + 40);
  std::sort(o2.begin(), o2.end());
  for (int i = 0; i < 40; ++i) EXPECT_EQ(o2[static_cast<std::size_t>(i)], i);
}

TEST_F(Dyn, MauvaisesValeursSansPlantage) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {{1, 2, 3}});
  // Negative and NaN masses: nothing moves.
  for (float m : {-3.f, 0.f, nan, 1e-30f}) {
    ecrit(o, {1, dyn::B_MAS}, {m});
    ecrit(o, {1, dyn::B_FOR}, {1, 1, 1});
    ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
    EXPECT_EQ(sommets(o)[0], 0);
  }
  // NaN and 1e30 forces move to NaN or inf but never crash; then limits hold.
  ecrit(o, {1, dyn::B_MAS}, {1});
  ecrit(o, {1, dyn::B_FOR}, {1e30f, nan, -1e30f});
  ecrit(o, {1, dyn::B_ACC, 0, dyn::A_LIMK}, {2});
  EXPECT_EQ(pas_sommets(o, 1, 1, false), 0);
  // A local-frame force naming vertex 9 of 3: the step stops, negative.
  ecrit(o, {1, dyn::B_FOR, 1, dyn::B_AXEK}, {1, 0, 0, 1, 2, 9});
  EXPECT_LT(sortie_de([&] { EXPECT_LT(pas_sommets(o, 1, 1, false), 0); }).size(), 1000u);
  ecrit(o, {1, dyn::B_FOR, 1, dyn::B_AXEK}, {1, 0, 0, 1, 2, nan});
  EXPECT_LT(pas_sommets(o, 1, 1, false), 0);
  // Garbage per-vertex lists: lengths of NaN, huge, negative.
  Objet* g = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {{1, 2, 3}}, 2);
  ecrit(g, {1, dyn::B_MAS, 1, dyn::B_SOMK}, {nan, 5, -7, 1e9f, 2});
  ecrit(g, {1, dyn::B_FOR, 1, dyn::B_SOMK}, {-1e9f, 4, 1, 1, 1});
  ecrit(g, {1, dyn::B_RESSORT, 1, dyn::B_SOMK}, {3, 1, 0, 1e30f});
  ecrit(g, {1, dyn::B_RESSORT}, {0, 0});
  ecrit(g, {1, dyn::B_CHOC, 1, dyn::B_SOMK}, {1});  // too short: ignored
  ecrit(g, {1, dyn::B_COL}, {nan, 1, 1, 1, 1e30f, 1, 1, 1});
  ecrit(g, {1, dyn::B_CHA}, {nan, 1e30f, -4});
  EXPECT_EQ(pas_sommets(g, 1, 1, false), 0);
  // Zero-length springs: two vertices at one place.
  Objet* z = volume_de({5, 5, 5, 5, 5, 5}, {{1, 2}}, 3);
  ecrit(z, {1, dyn::B_MAS}, {1});
  ecrit(z, {1, dyn::B_RESSORT}, {10, 0});
  EXPECT_EQ(pas_sommets(z, 1, 1, false), 0);
  EXPECT_FLOAT_EQ(sommets(z)[0], 5);
  // A tree with a cycle: 1 leads 2 leads 1; the step ends with a message.
  Vol_inter* a = record(o);
  Vol_inter* b = record(g);
  a->suiv[0] = b, a->nb_suiv = 1;
  b->suiv[0] = a, b->nb_suiv = 1, b->lead = a;
  sortie_de([&] { pas_corps(a, 1, 1); });
  SUCCEED();
}

TEST_F(Dyn, ChampsParSommetEtChaineGlobale) {
  // Fields 1 (1, 0, 0) and 2 (0, 1, 0). Vertex 1 names field 1 only;
  // vertex 2's record is empty: the volume names fields, so the global
  // chain does not act on it, and it gets none.
  Objet* o = volume_de({0, 0, 0, 5, 0, 0, 9, 0, 0}, {});
  Objet* f1 = objet_cree(1, dyn::B_CHA, 0, nullptr, nullptr, 1);
  Objet* f2 = objet_cree(1, dyn::B_CHA, 0, nullptr, nullptr, 2);
  ecrit(f1, {1, dyn::B_COE}, {1, 0, 0});
  ecrit(f2, {1, dyn::B_COE}, {0, 1, 0});
  ecrit(o, {1, dyn::B_MAS}, {1});
  ecrit(o, {1, dyn::B_CHA, 1, dyn::B_SOMK}, {2, 1, 1, 3, 2, 77});
  ASSERT_EQ(pas_sommets(o, 1, 1, false), 0);
  // Vertex 3: field 2 and an unknown 77.
  EXPECT_EQ(lit(o, {1, dyn::B_VIT, 1, dyn::B_SOMK}), (std::vector<float>{1, 0, 0, 0, 0, 0, 0, 1, 0}));
  // The volume's own list replaces the global chain for every vertex.
  Objet* p = volume_de({0, 0, 0}, {}, 5);
  ecrit(p, {1, dyn::B_MAS}, {2});
  ecrit(p, {1, dyn::B_CHA}, {2});
  ASSERT_EQ(pas_sommets(p, 1, 1, false), 0);
  EXPECT_EQ(lit(p, {1, dyn::B_VIT, 1, dyn::B_SOMK}), (std::vector<float>{0, 0.5f, 0}));
}
}  // namespace
