// Face and vertex normals: the polygon, segment and point rules, the cap of
// 100 faces at a vertex, the grid generators against the general ones, and
// the cache that keeps its storage when it goes stale.
#include <cmath>

#include "outils.h"

namespace {
const mot CLE_NF[] = {1, B_NORMALE, 1, B_FAC};
const mot CLE_N[] = {1, B_NORMALE};

std::vector<float> normale_fac(Objet* o) {
  mot* a = gen_normale_fac(o, nullptr, 0, 1);
  EXPECT_NE(a, nullptr);
  return a ? floats(valeur_de(a)) : std::vector<float>{};
}

}  // namespace

TEST(NormaleFace, NewellOnANonPlanarQuad) {
  monde();
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 1, 1, 1, 0, 1, 0}, {{1, 2, 3, 4}});
  // Newell's sums give (-1, -1, 2), not the cross product of two edges.
  float r = std::sqrt(6.f);
  proche(normale_fac(o), {-1 / r, -1 / r, 2 / r});
}

TEST(NormaleFace, SegmentPointAndDegenerateFaces) {
  monde();
  Objet* o = volume_de({0, 0, 0,  0, 0, 2,  0, 2, 2,  2, 0, 2,  1, 1, 0,  0.00005f, 0, 0},
                       {{1, 2}, {2, 3}, {1, 4}, {1, 5}, {1, 6}, {3}, {1, 1, 1}});
  float h = std::sqrt(0.5f);
  proche(normale_fac(o), {
      0, 1, 0,    // along z only
      1, 0, 0,    // x inside the band: (1, -dx/dy, 0)
      -h, 0, h,   // x outside: (-dz/dx, 0, 1), normalised
      0, 0, 1,    // (1, 1, 0): the same scheme on z
      0, 0, 0,    // shorter than the band on every axis
      0, 0, 0,    // a point
      0, 0, 0});  // coinciding vertices keep the zero sum
}

TEST(NormaleFace, CompositeUsesOuterContourAndStrideSixGivesCentre) {
  monde();
  geom.pas_normale = 6;
  Objet* o = volume_de({0, 0, 0, 4, 0, 0, 4, 4, 0, 0, 4, 0, 1, 1, 0, 1, 2, 0, 2, 1, 0}, {});
  // Outer square then a hole turning the other way.
  std::vector<mot> f{0, BLOC_LISTE, 1, 0,
                     4 + 8 + 7, BLOC_LISTE, 2, 0,
                     8, BLOC_ENTIER, 1, 4, 1, 2, 3, 4,
                     7, BLOC_ENTIER, 1, 3, 5, 6, 7};
  f[0] = static_cast<mot>(f.size());
  ASSERT_EQ(vol_fac_ecrit(o, f.data()), 0);
  proche(normale_fac(o), {0, 0, 1, 2, 2, 0});
  // Every contour's vertices take the face's normal.
  mot* s = gen_normale_som(o, nullptr, 0);
  ASSERT_NE(s, nullptr);
  EXPECT_EQ(valeur_de(s)[3], 6);
  EXPECT_FLOAT_EQ(lit_reel(valeur_de(s) + 4 + 6 * 4 + 2), 1.f);
  EXPECT_FLOAT_EQ(lit_reel(valeur_de(s) + 4 + 6 * 4 + 3), 1.f);  // the vertex follows
}

TEST(NormaleSommet, PlainSumInFaceOrderAndCapOf100) {
  monde();
  // Vertex 1 is shared by 101 triangles: 100 in the x-y plane, the last in
  // the y-z plane.
  std::vector<float> s{0, 0, 0};
  std::vector<std::vector<int>> f;
  for (int k = 0; k < 101; ++k) {
    double a = 0.05 * k;
    if (k < 100)
      s.insert(s.end(), {float(std::cos(a)), float(std::sin(a)), 0, float(std::cos(a + 0.04)), float(std::sin(a + 0.04)), 0});
    else
      s.insert(s.end(), {0, 1, 0, 0, 0, 1});
    f.push_back({1, 2 + 2 * k, 3 + 2 * k});
  }
  Objet* o = volume_de(s, f);
  std::string dit = sortie_de([&] { EXPECT_NE(gen_normale_som(o, nullptr, 0), nullptr); });
  EXPECT_EQ(dit, "1 1 M105\n");  // the object, the vertex, the message, once
  const mot cle[] = {1, B_NORMALE, 1, B_SOMMET};
  mot* n = valeur_de(vol_attribut(o, 2, cle));
  auto v = floats(n);
  proche({v[0], v[1], v[2]}, {0, 0, 1});  // the 101st face is not in the sum
  // Vertex 2 is in one face only: its normal is that face's.
  EXPECT_FLOAT_EQ(lit_reel(n + 4 + 3 + 2), 1.f);
}

TEST(NormaleSommet, GridGeneratorsMatchTheGeneralOnes) {
  monde();
  float t[8];
  hasard_table_prevue(t, 8);  // any draws: the shake only has to leave the plane
  for (int ferme : {0, 1}) {
    Objet* g = volume(10 + ferme);
    ASSERT_EQ(vol_grille(g, 5, 3, 0, ferme, 1, 1, 0), 0);
    Transfo sec;
    sec.op = B_SECZ;
    sec.f = 0.3f;
    ASSERT_EQ(transformer_vol(g, &sec, nullptr, false), 0);  // not planar any more
    // The same vertices and faces as a plain polyhedron go the general way.
    int n, d;
    reel* s = vol_som(g, &n, &d);
    Objet* p = volume(20 + ferme);
    ASSERT_EQ(vol_som_ecrit(p, s, n, d), 0);
    ASSERT_EQ(vol_fac_ecrit(p, vol_fac(g)), 0);
    mot* a = gen_normale_som(g, nullptr, 0);
    mot* b = gen_normale_som(p, nullptr, 0);
    ASSERT_TRUE(a && b);
    EXPECT_EQ(floats(valeur_de(a)), floats(valeur_de(b))) << "ferme " << ferme;
    EXPECT_EQ(floats(valeur_de(vol_attribut(g, 2, CLE_NF))), floats(valeur_de(vol_attribut(p, 2, CLE_NF))));
  }
  hasard_table_prevue(nullptr, 0);
}

TEST(NormaleFace, GridPrecisionTakesOneVertexInP) {
  monde();
  Objet* g = volume();
  ASSERT_EQ(vol_grille(g, 5, 4, 0, 0, 1, 1, 0), 0);
  mot* a = gen_normale_fac(g, nullptr, 0, 2);
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(valeur_de(a)[2], 2 * 2);
  // Back to the full grid: the cached coarse normals do not fit, and are remade.
  EXPECT_EQ(valeur_de(gen_normale_fac(g, nullptr, 0, 1))[2], 5 * 4);
}

TEST(Cache, StaleAfterAMoveKeepsStorageAndIsRefilledInPlace) {
  monde();
  Objet* o = volume();
  ASSERT_EQ(vol_cube(o, 2), 0);
  mot* nf = gen_normale_fac(o, nullptr, 0, 1);
  mot* ns = gen_normale_som(o, nullptr, 0);
  ASSERT_TRUE(nf && ns);
  EXPECT_EQ(nf[1], 1);
  EXPECT_EQ(vol_attribut(o, 1, CLE_N), nullptr);  // (b63) alone is another key
  auto avant = floats(valeur_de(ns));
  Transfo r;
  r.op = B_ROTX;
  r.angle = 0.5f;
  ASSERT_EQ(transformer_vol(o, &r, nullptr, false), 0);
  EXPECT_EQ(vol_attribut(o, 2, CLE_NF), nf);
  EXPECT_EQ(nf[1], 0);
  EXPECT_EQ(ns[1], 0);
  EXPECT_EQ(gen_normale_som(o, nullptr, 0), ns);
  EXPECT_EQ(nf[1], 1);
  EXPECT_EQ(ns[1], 1);
  EXPECT_NE(floats(valeur_de(ns)), avant);
  // A user's value is used as it stands until it goes stale.
  ecrit_reel(valeur_de(nf) + 4, 42);
  nf[1] = BLOC_PHRASE;
  EXPECT_EQ(lit_reel(valeur_de(gen_normale_fac(o, nullptr, 0, 1)) + 4), 42.f);
  EXPECT_NE(lit_reel(valeur_de(gen_normale_fac(o, nullptr, 1, 1)) + 4), 42.f);  // unless forced
}

TEST(Cache, InvalidationTouchesOnlyDerivedData) {
  monde();
  Objet* o = volume();
  ASSERT_EQ(vol_cube(o, 2), 0);
  ASSERT_NE(gen_centre(o, 0), nullptr);
  ASSERT_NE(generer_segment_vol(o, 0, 1, 0), nullptr);
  ASSERT_NE(gen_voisin_fac_som(o, 0), nullptr);
  Objet* autre = volume(2);
  ASSERT_EQ(vol_cube(autre, 1), 0);
  ASSERT_NE(gen_centre(autre, 0), nullptr);
  invalider_vol(nullptr, 0);  // every volume
  const mot centre[] = {0, A_CENTRE}, seg[] = {1, B_SEGMENT}, vois[] = {1, B_VOISIN, 1, B_FAC, 1, B_SOMMET},
            som[] = {1, B_SOM};
  EXPECT_EQ(vol_attribut(o, 1, centre)[1], 0);
  EXPECT_EQ(vol_attribut(autre, 1, centre)[1], 0);
  EXPECT_EQ(vol_attribut(o, 1, seg)[1], 1);  // edges follow from the faces only
  EXPECT_EQ(vol_attribut(o, 3, vois)[1], 1);
  EXPECT_EQ(vol_attribut(o, 1, som)[1], BLOC_PHRASE);
  // A new face list deletes them.
  auto f = faces({{1, 2, 3}});
  ASSERT_EQ(vol_fac_ecrit(o, f.data()), 0);
  EXPECT_EQ(vol_attribut(o, 1, seg), nullptr);
  EXPECT_EQ(vol_attribut(o, 3, vois), nullptr);
}

TEST(Centre, PivotTriplesKeptAfterTheFirstComputation) {
  monde();
  Objet* o = volume_de({0, 0, 0, 2, 0, 0, 2, 4, 0, 0, 4, 0}, {{1, 2, 3, 4}});
  mot* c = gen_centre(o, 0);
  ASSERT_NE(c, nullptr);
  proche(floats(valeur_de(c)), {1, 2, 0, 1, 2, 0, 1, 2, 0});
  ecrit_reel(valeur_de(c) + 4 + 3, 9);
  Transfo t;
  t.op = B_DEP;
  t.v[0] = 1;
  ASSERT_EQ(transformer_vol(o, &t, nullptr, false), 0);
  EXPECT_EQ(gen_centre(o, 0), c);
  proche(floats(valeur_de(c)), {2, 2, 0, 9, 2, 0, 1, 2, 0});
}
