// Transformations of a volume's vertices: each operation on a hand-computed
// case (pivots, axes, lines, radius of influence), selections, shakes from
// the random table, the matrix form, and the refusals that leave the volume
// as it was.
#include <algorithm>
#include <cmath>

#include "outils.h"

namespace {
std::vector<float> som(Objet* o) {
  int n, d;
  reel* s = vol_som(o, &n, &d);
  return std::vector<float>(s, s + n * d);
}

constexpr float DEMI_PI = 1.5707963f;
}  // namespace

TEST(Transfo, ChaqueOperationSurUnCasCalculeALaMain) {
  const float q = DEMI_PI / 2;
  const struct {
    const char* nom;
    std::vector<float> som;
    Transfo t;
    std::vector<float> attendu;
  } cas[] = {
      // x never changes; the vertex on the pivot's line stays.
      {"rotx pivot", {3, 1, 1, 7, 2, 1, -1, 1, 3},
       {.op = B_ROTX, .pivot = {0, 1, 1}, .pivot_donne = true, .angle = DEMI_PI}, {3, 1, 1, 7, 1, 2, -1, -1, 1}},
      // Without a pivot each volume turns about its centre: on the axis
      // through the centre nothing moves.
      {"rotz centre", {10, 0, 0, 12, 0, 0}, {.op = B_ROTZ, .angle = DEMI_PI}, {11, -1, 0, 11, 1, 0}},
      {"roty sur l'axe", {11, -1, 0, 11, 1, 0}, {.op = B_ROTY, .angle = DEMI_PI}, {11, -1, 0, 11, 1, 0}},
      // The axis's length does not matter; a zero axis is no rotation.
      {"rota", {1, 0, 0, 0, 1, 0}, {.op = B_ROTA, .pivot_donne = true, .angle = DEMI_PI, .axe = {0, 0, 2}},
       {0, 1, 0, -1, 0, 0}},
      {"rota axe nul", {1, 0, 0, 0, 1, 0}, {.op = B_ROTA, .pivot_donne = true, .angle = DEMI_PI, .axe = {0, 0, 0}},
       {1, 0, 0, 0, 1, 0}},
      {"symx", {0, 0, 0, 2, 0, 0, 0, 2, 0}, {.op = B_SYMX, .pivot = {0.5f, 0, 0}, .pivot_donne = true},
       {1, 0, 0, -1, 0, 0, 1, 2, 0}},
      // About a line: the distance to the line scales.
      {"hom ligne", {1, 2, 0, 5, 0, 4}, {.op = B_HOM, .f = 3, .ligne = {0, 0, 0, 1, 0, 0}, .ligne_donnee = true},
       {1, 6, 0, 5, 0, 12}},
      // Within the radius the move falls off linearly; a radius of 0
      // reaches only what stands on the pivot.
      {"dep rayon", {0, 0, 0, 1, 0, 0, 3, 0, 0}, {.op = B_DEP, .pivot_donne = true, .v = {0, 1, 0}, .rayon = 2},
       {0, 1, 0, 1, 0.5f, 0, 3, 0, 0}},
      {"dep rayon 0", {0, 0, 0, 1, 0, 0, 3, 0, 0},
       {.op = B_DEP, .pivot = {3, 0, 0}, .pivot_donne = true, .v = {0, 1, 0}, .rayon = 0}, {0, 0, 0, 1, 0, 0, 3, 1, 0}},
      {"rotz rayon", {0, 1, 0, 0, 2, 0}, {.op = B_ROTZ, .pivot_donne = true, .angle = DEMI_PI, .rayon = 2},
       {-std::sin(q), std::cos(q), 0, 0, 2, 0}},
      // Twisted about y through the origin: a vertex on the pivot's plane
      // stays, one a unit along turns by the whole angle.
      {"tord", {1, 0, 0, 1, 1, 0, 1, -0.5f, 0},
       {.op = B_TORD, .pivot_donne = true, .angle = DEMI_PI, .axe = {0, 2, 0}},
       {1, 0, 0, 0, 1, -1, std::cos(q), -0.5f, std::sin(q)}},
      {"effile", {1, 1, 0, 1, -0.5f, 0, 0, 3, 0}, {.op = B_EFFILE, .pivot_donne = true, .f = 1, .axe = {0, 1, 0}},
       {2, 1, 0, 0.5f, -0.5f, 0, 0, 3, 0}},
      {"bosse", {2, 0, 0, 0, 1, 0}, {.op = B_BOSSE, .pivot_donne = true, .f = 0.5f}, {3, 0, 0, 0, 1.5f, 0}},
      // A translation, in the fourth column.
      {"matrice", {3, 0, 0, 0, 1.5f, 0}, {.op = OP_MATRICE, .m = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 0, 1}},
       {4, 2, 0, 1, 3.5f, 0}},
  };
  int num = 0;
  for (const auto& c : cas) {
    monde();
    SCOPED_TRACE(c.nom);
    Objet* o = volume_de(c.som, {}, ++num);
    ASSERT_EQ(transformer_vol(o, &c.t, nullptr, false), 0);
    proche(som(o), c.attendu);
  }
}

TEST(Transfo, MiroirDeuxFoisEtEchelleNulle) {
  monde();
  Objet* o = volume_de({0, 0, 0, 2, 0, 0, 0, 2, 0}, {{1, 2, 3}});
  const Transfo s{.op = B_SYMX, .pivot = {0.5f, 0, 0}, .pivot_donne = true};
  auto avant = som(o);
  ASSERT_EQ(transformer_vol(o, &s, nullptr, false), 0);
  ASSERT_EQ(transformer_vol(o, &s, nullptr, false), 0);
  EXPECT_EQ(som(o), avant);  // twice is exactly the start
  // Collapsed on its centre: the face's normal is zero, not NaN.
  const Transfo h{.op = B_HOMO, .f = 0};
  ASSERT_EQ(transformer_vol(o, &h, nullptr, false), 0);
  const float c = 2.f / 3;
  proche(som(o), {c, c, 0, c, c, 0, c, c, 0});
  EXPECT_EQ(floats(valeur_de(gen_normale_fac(o, nullptr, 0, 1))), (std::vector<float>{0, 0, 0}));
}

TEST(Selection, ListedVerticesAndFacesMoveOnceBadNumbersNothing) {
  monde();
  Objet* o = volume();
  ASSERT_EQ(vol_cube(o, 2), 0);
  auto avant = som(o);
  const Transfo t{.op = B_DEP, .v = {0, 0, 10}};
  int fs[] = {1, 3};  // share vertices 1 and 2
  int vs[] = {8, 1};
  Selection sel{vs, 2, fs, 2};
  ASSERT_EQ(transformer_vol(o, &t, &sel, false), 0);
  auto apres = som(o);
  for (int v = 1; v <= 8; ++v) EXPECT_FLOAT_EQ(apres[3 * (v - 1) + 2], avant[3 * (v - 1) + 2] + (v == 7 ? 0 : 10)) << v;
  // A number out of range in either list, or an unknown operation: a
  // message and nothing moves.
  int mauvais_s[] = {2, 9}, mauvaise_f[] = {7};
  Selection ms{mauvais_s, 2}, mf{nullptr, 0, mauvaise_f, 1};
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(transformer_vol(o, &t, &ms, false), -1); }), "9: M66\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(transformer_vol(o, &t, &mf, false), -1); }), "7: M66\n");
  const Transfo x{.op = 999};
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(transformer_vol(o, &x, nullptr, false), -1); }), "999: M66\n");
  EXPECT_EQ(som(o), apres);
}

TEST(Secousses, DrawsFromTheStartUpTableInOrder) {
  monde();
  static float table[4];
  hasard_table_prevue(table, 4);
  int n;
  hasard_table(&n);  // filled with draws at its first use: these replace them
  const float valeurs[4] = {0, 1, 0.5f, 0.75f};
  std::copy(valeurs, valeurs + 4, table);
  Objet* o = volume_de({0, 0, 0, 0, 0, 0}, {});
  const Transfo t{.op = B_SEC, .f = 2}, y{.op = B_SECY, .f = 1};
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);
  proche(som(o), {-2, 2, 0, 1, -2, 2});
  ASSERT_EQ(transformer_vol(o, &y, nullptr, false), 0);
  proche(som(o), {-2, 2, 0, 1, -1.5f, 2});
  hasard_table_prevue(nullptr, 0);
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);  // no table: nothing moves
  proche(som(o), {-2, 2, 0, 1, -1.5f, 2});
}

TEST(Matrice, SameResultAsTheVertexLoop) {
  monde();
  float p[3] = {0.3f, -1.2f, 2.5f};
  auto compare = [&](const Transfo& t) {
    float m[16], q[3], r[3];
    matrice_identite(m);
    ASSERT_EQ(transformer_matrice(&t, m), 0) << t.op;
    matrice_applique(m, p, q);
    transformer_point(&t, p, r);
    proche(q, {r[0], r[1], r[2]});
  };
  for (int o : {B_DEP, B_ROTX, B_ROTY, B_ROTZ, B_ROTA, B_HOM, B_HOMX, B_HOMY, B_HOMZ, B_HOMO, B_SYMX, B_SYMY,
                B_SYMZ, B_SYM})
    compare({.op = o, .pivot = {1, 2, -3}, .v = {0.5f, 2, -1}, .angle = 0.7f, .f = 1.5f, .axe = {1, 1, 0}});
  compare({.op = B_HOM, .f = 3, .ligne = {1, 1, 0, 1, 1, 5}, .ligne_donnee = true});
  float m[16];
  const Transfo s{.op = B_SEC};
  EXPECT_EQ(transformer_matrice(&s, m), 1);  // a shake has no matrix
}

TEST(Matrice, DisplayedVerticesFollowTheVolumeMatrix) {
  monde();
  Objet* o = volume_de({1, 0, 0, 0, 1, 0}, {});
  const mot cle[] = {0, A_MATRICE};
  mot* a = attribut_prepare(o, 1, cle, 20);
  ASSERT_NE(a, nullptr);
  mot* v = valeur_de(a);
  v[0] = 20, v[1] = BLOC_REEL, v[2] = 16, v[3] = 1;
  matrice_identite(reels(v + 4));
  const Transfo t{.op = B_DEP, .v = {5, 0, 0}};
  ASSERT_EQ(transformer_matrice(&t, reels(v + 4)), 0);
  a[1] = BLOC_PHRASE;
  mot* s = gen_som_affiche(o, 0);
  ASSERT_NE(s, nullptr);
  proche(floats(valeur_de(s)), {6, 0, 0, 5, 1, 0});
  // Moving the vertices makes the displayed copy stale; it is remade.
  const Transfo y{.op = B_DEP, .v = {0, 1, 0}};
  ASSERT_EQ(transformer_vol(o, &y, nullptr, false), 0);
  EXPECT_EQ(s[1], 0);
  proche(floats(valeur_de(gen_som_affiche(o, 0))), {6, 1, 0, 5, 2, 0});
  // Moving the displayed copy leaves the vertices alone.
  ASSERT_EQ(transformer_vol(o, &y, nullptr, true), 0);
  proche(floats(valeur_de(gen_som_affiche(o, 0))), {6, 2, 0, 5, 3, 0});
  proche(som(o), {1, 1, 0, 0, 2, 0});
}

TEST(Pas, StepDividesAndTirerNeedsAGrid) {
  monde();
  Transfo t{.op = B_ROTX, .v = {3, 0, 0}, .angle = 1, .f = 2};
  transfo_pas(&t, 4);
  EXPECT_FLOAT_EQ(t.angle, 0.25f);
  EXPECT_FLOAT_EQ(t.f, 0.5f);
  EXPECT_FLOAT_EQ(t.v[0], 0.75f);
  Objet* g = volume(7);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(tirer_prepare(g, &t), -1); }), "7: M9\n");
  ASSERT_EQ(vol_grille(g, 2, 2, 0, 0, 1, 1, 0), 0);
  const mot cle[] = {1, B_BORNES};
  mot* a = attribut_prepare(g, 1, cle, 4 + 9);
  mot* b = valeur_de(a);
  b[0] = 13, b[1] = BLOC_REEL, b[2] = 9, b[3] = 1;
  float bornes[9] = {0, 0, 0, 9, 9, 9, 0, 4, 0};
  std::copy(bornes, bornes + 9, reels(b + 4));
  a[1] = BLOC_PHRASE;
  Transfo u{.angle = DEMI_PI};
  ASSERT_EQ(tirer_prepare(g, &u), 0);
  EXPECT_EQ(u.axe[1], 4.f);  // from bound 1 to bound ny + 1
  Objet* o = volume_de({1, 0, 0}, {});
  ASSERT_EQ(transformer_vol(o, &u, nullptr, false), 0);
  proche(som(o), {0, 0, -1});
}
