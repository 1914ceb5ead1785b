// Transformations of a volume's vertices: pivots, radius of influence,
// selections, shakes from the random table, the matrix form, and the
// refusals that leave the volume as it was.
#include <algorithm>
#include <cmath>

#include "outils.h"

namespace {
std::vector<float> som(Objet* o) {
  int n, d;
  reel* s = vol_som(o, &n, &d);
  return std::vector<float>(s, s + n * d);
}

void proche(const std::vector<float>& a, const std::vector<float>& b, float eps = 1e-5f) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t k = 0; k < a.size(); ++k) EXPECT_NEAR(a[k], b[k], eps) << "indice " << k;
}

Transfo op(int o, float angle = 0, float f = 1) {
  Transfo t;
  t.op = o;
  t.angle = angle;
  t.f = f;
  return t;
}

constexpr float DEMI_PI = 1.5707963f;
}  // namespace

TEST(Rotation, AboutAGivenPivot) {
  monde();
  Objet* o = volume_de({3, 1, 1, 7, 2, 1, -1, 1, 3}, {});
  Transfo t = op(B_ROTX, DEMI_PI);
  t.pivot[1] = t.pivot[2] = 1;
  t.pivot_donne = true;
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);
  // x never changes; the vertex on the pivot's line stays.
  proche(som(o), {3, 1, 1, 7, 1, 2, -1, -1, 1});
}

TEST(Rotation, WithoutPivotEachVolumeTurnsAboutItsCentre) {
  monde();
  Objet* o = volume_de({10, 0, 0, 12, 0, 0}, {});
  Transfo t = op(B_ROTZ, DEMI_PI);
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);
  proche(som(o), {11, -1, 0, 11, 1, 0});
  Transfo y = op(B_ROTY, DEMI_PI);
  ASSERT_EQ(transformer_vol(o, &y, nullptr, false), 0);
  proche(som(o), {11, -1, 0, 11, 1, 0});  // on the axis through the centre
}

TEST(Rotation, AxisRotationAndItsZeroAxis) {
  monde();
  Objet* o = volume_de({1, 0, 0, 0, 1, 0}, {});
  Transfo t = op(B_ROTA, DEMI_PI);
  t.pivot_donne = true;
  t.axe[0] = t.axe[1] = 0;
  t.axe[2] = 2;
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);
  proche(som(o), {0, 1, 0, -1, 0, 0});
  t.axe[2] = 0;
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);
  proche(som(o), {0, 1, 0, -1, 0, 0});
}

TEST(Echelles, CollapseMirrorAndLine) {
  monde();
  Objet* o = volume_de({0, 0, 0, 2, 0, 0, 0, 2, 0}, {{1, 2, 3}});
  Transfo s = op(B_SYMX);
  s.pivot[0] = 0.5f;
  s.pivot_donne = true;
  auto avant = som(o);
  ASSERT_EQ(transformer_vol(o, &s, nullptr, false), 0);
  proche(som(o), {1, 0, 0, -1, 0, 0, 1, 2, 0});
  ASSERT_EQ(transformer_vol(o, &s, nullptr, false), 0);
  EXPECT_EQ(som(o), avant);  // twice is exactly the start
  Transfo h = op(B_HOMO, 0, 0);
  ASSERT_EQ(transformer_vol(o, &h, nullptr, false), 0);
  float c = 2.f / 3;
  proche(som(o), {c, c, 0, c, c, 0, c, c, 0});
  EXPECT_EQ(floats(valeur_de(gen_normale_fac(o, nullptr, 0, 1))), (std::vector<float>{0, 0, 0}));
  // About a line: the distance to the line scales.
  Objet* l = volume_de({1, 2, 0, 5, 0, 4}, {}, 2);
  Transfo hl = op(B_HOM, 0, 3);
  hl.ligne_donnee = true;
  float ligne[6] = {0, 0, 0, 1, 0, 0};
  std::copy(ligne, ligne + 6, hl.ligne);
  ASSERT_EQ(transformer_vol(l, &hl, nullptr, false), 0);
  proche(som(l), {1, 6, 0, 5, 0, 12});
}

TEST(Rayon, LinearFallAndZeroRadius) {
  monde();
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 3, 0, 0}, {});
  Transfo t = op(B_DEP);
  t.v[1] = 1;
  t.pivot_donne = true;
  t.rayon = 2;
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);
  proche(som(o), {0, 1, 0, 1, 0.5f, 0, 3, 0, 0});
  t.rayon = 0;
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);
  proche(som(o), {0, 1, 0, 1, 0.5f, 0, 3, 0, 0});  // nothing stands on the pivot now
  t.pivot[0] = 3;
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);
  proche(som(o), {0, 1, 0, 1, 0.5f, 0, 3, 1, 0});
  // A rotation within the radius turns by the attenuated angle.
  Objet* r = volume_de({0, 1, 0, 0, 2, 0}, {}, 2);
  Transfo z = op(B_ROTZ, DEMI_PI);
  z.pivot_donne = true;
  z.rayon = 2;
  ASSERT_EQ(transformer_vol(r, &z, nullptr, false), 0);
  float a = DEMI_PI / 2;
  proche(som(r), {-std::sin(a), std::cos(a), 0, 0, 2, 0});
}

TEST(Selection, ListedVerticesAndFacesMoveOnce) {
  monde();
  Objet* o = volume();
  ASSERT_EQ(vol_cube(o, 2), 0);
  auto avant = som(o);
  Transfo t = op(B_DEP);
  t.v[2] = 10;
  int fs[] = {1, 3};  // share vertices 1 and 2
  int vs[] = {8, 1};
  Selection sel;
  sel.faces = fs;
  sel.nb_faces = 2;
  sel.sommets = vs;
  sel.nb_sommets = 2;
  ASSERT_EQ(transformer_vol(o, &t, &sel, false), 0);
  auto apres = som(o);
  for (int v = 1; v <= 8; ++v) {
    bool bouge = v == 1 || v == 2 || v == 3 || v == 4 || v == 5 || v == 6 || v == 8;
    EXPECT_FLOAT_EQ(apres[3 * (v - 1) + 2], avant[3 * (v - 1) + 2] + (bouge ? 10 : 0)) << v;
  }
}

TEST(Selection, BadNumbersMoveNothing) {
  monde();
  Objet* o = volume();
  ASSERT_EQ(vol_cube(o, 2), 0);
  auto avant = som(o);
  Transfo t = op(B_DEP);
  t.v[0] = 1;
  int vs[] = {2, 9};
  Selection sel;
  sel.sommets = vs;
  sel.nb_sommets = 2;
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(transformer_vol(o, &t, &sel, false), -1); }), "9: M66\n");
  int fs[] = {7};
  Selection sf;
  sf.faces = fs;
  sf.nb_faces = 1;
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(transformer_vol(o, &t, &sf, false), -1); }), "7: M66\n");
  EXPECT_EQ(som(o), avant);
  Transfo x = op(999);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(transformer_vol(o, &x, nullptr, false), -1); }), "999: M66\n");
  EXPECT_EQ(som(o), avant);
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
  Transfo t = op(B_SEC, 0, 2);
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);
  proche(som(o), {-2, 2, 0, 1, -2, 2});
  Transfo y = op(B_SECY, 0, 1);
  ASSERT_EQ(transformer_vol(o, &y, nullptr, false), 0);
  proche(som(o), {-2, 2, 0, 1, -1.5f, 2});
  hasard_table_prevue(nullptr, 0);
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);  // no table: nothing moves
  proche(som(o), {-2, 2, 0, 1, -1.5f, 2});
}

TEST(Matrice, SameResultAsTheVertexLoop) {
  monde();
  float p[3] = {0.3f, -1.2f, 2.5f};
  for (int o : {B_DEP, B_ROTX, B_ROTY, B_ROTZ, B_ROTA, B_HOM, B_HOMX, B_HOMY, B_HOMZ, B_HOMO, B_SYMX, B_SYMY,
                B_SYMZ, B_SYM}) {
    Transfo t = op(o, 0.7f, 1.5f);
    t.pivot[0] = 1, t.pivot[1] = 2, t.pivot[2] = -3;
    t.v[0] = 0.5f, t.v[1] = 2, t.v[2] = -1;
    t.axe[0] = 1, t.axe[1] = 1, t.axe[2] = 0;
    float m[16], q[3], r[3];
    matrice_identite(m);
    ASSERT_EQ(transformer_matrice(&t, m), 0) << o;
    matrice_applique(m, p, q);
    transformer_point(&t, p, r);
    proche({q[0], q[1], q[2]}, {r[0], r[1], r[2]});
  }
  Transfo h = op(B_HOM, 0, 3);
  h.ligne_donnee = true;
  float l[6] = {1, 1, 0, 1, 1, 5};
  std::copy(l, l + 6, h.ligne);
  float m[16], q[3], r[3];
  matrice_identite(m);
  ASSERT_EQ(transformer_matrice(&h, m), 0);
  matrice_applique(m, p, q);
  transformer_point(&h, p, r);
  proche({q[0], q[1], q[2]}, {r[0], r[1], r[2]});
  Transfo s = op(B_SEC);
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
  Transfo t = op(B_DEP);
  t.v[0] = 5;
  matrice_identite(reels(v + 4));
  ASSERT_EQ(transformer_matrice(&t, reels(v + 4)), 0);
  a[1] = BLOC_PHRASE;
  mot* s = gen_som_affiche(o, 0);
  ASSERT_NE(s, nullptr);
  proche(floats(valeur_de(s)), {6, 0, 0, 5, 1, 0});
  // Moving the vertices makes the displayed copy stale; it is remade.
  Transfo y = op(B_DEP);
  y.v[1] = 1;
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
  Transfo t = op(B_ROTX, 1, 2);
  t.v[0] = 3;
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
  Transfo u = op(0, DEMI_PI);
  ASSERT_EQ(tirer_prepare(g, &u), 0);
  EXPECT_EQ(u.axe[1], 4.f);  // from bound 1 to bound ny + 1
  Objet* o = volume_de({1, 0, 0}, {});
  ASSERT_EQ(transformer_vol(o, &u, nullptr, false), 0);
  proche(som(o), {0, 0, -1});
}

TEST(Formes, TwistTaperSwellAndMatrix) {
  monde();
  // About the y axis through the origin: a vertex on the pivot's plane
  // (t = 0) stays, one a unit along turns by the whole angle.
  Objet* o = volume_de({1, 0, 0, 1, 1, 0, 1, -0.5f, 0}, {});
  Transfo t = op(B_TORD, DEMI_PI);
  t.pivot_donne = true;
  t.axe[0] = t.axe[2] = 0;
  t.axe[1] = 2;  // normalised by the operation
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);
  proche(som(o), {1, 0, 0, 0, 1, -1, std::cos(DEMI_PI / 2), -0.5f, std::sin(DEMI_PI / 2)});
  Objet* e = volume_de({1, 1, 0, 1, -0.5f, 0, 0, 3, 0}, {}, 2);
  Transfo f = op(B_EFFILE, 0, 1);
  f.pivot_donne = true;
  f.axe[0] = f.axe[2] = 0;
  f.axe[1] = 1;
  ASSERT_EQ(transformer_vol(e, &f, nullptr, false), 0);
  proche(som(e), {2, 1, 0, 0.5f, -0.5f, 0, 0, 3, 0});
  Objet* b = volume_de({2, 0, 0, 0, 1, 0}, {}, 3);
  Transfo g = op(B_BOSSE, 0, 0.5f);
  g.pivot_donne = true;
  ASSERT_EQ(transformer_vol(b, &g, nullptr, false), 0);
  proche(som(b), {3, 0, 0, 0, 1.5f, 0});
  Transfo m = op(OP_MATRICE);
  m.m[12] = 1, m.m[13] = 2;  // a translation, in the fourth column
  ASSERT_EQ(transformer_vol(b, &m, nullptr, false), 0);
  proche(som(b), {4, 2, 0, 1, 3.5f, 0});
}
