// The image block, its row access and the copy and rescale rules.
#include <gtest/gtest.h>

#include <vector>

#include "tests/image/outils.h"

namespace {
struct ImageBloc : testing::Test {
  std::mt19937 g{20261123};
  void SetUp() override { monde_ima(); }
};

TEST_F(ImageBloc, PlanarRowsBottomFirstAndSizesChecked) {
  mot* b = ima_alloue(5, 3);
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(b[6], 45);  // the byte count, checked against the sizes
  EXPECT_TRUE(ima_valide(b));
  // Pixel (x, y): red at p + 3 w y + x, green w further, blue 2 w further.
  octet r[1] = {11}, gr[1] = {22}, bl[1] = {33};
  EXPECT_EQ(ecrire_ligne(3, 2, 1, r, gr, bl, b), 1);
  const octet* p = reinterpret_cast<const octet*>(b + 7);
  EXPECT_EQ(p[3 * 5 * 2 + 3], 11);
  EXPECT_EQ(p[3 * 5 * 2 + 3 + 5], 22);
  EXPECT_EQ(p[3 * 5 * 2 + 3 + 10], 33);
  EXPECT_EQ(p[3], 0);  // row 0 is the first in memory, untouched
  b[6] = 44;
  EXPECT_FALSE(ima_valide(b));
  bloc_libere_force(b);

  std::string s = sortie_de([] {
    EXPECT_EQ(ima_alloue(0, 5), nullptr);
    EXPECT_EQ(ima_alloue(7, -1), nullptr);
    EXPECT_EQ(ima_alloue(1L << 20, 1L << 20), nullptr);
  });
  EXPECT_NE(s.find("M1:122"), std::string::npos) << s;
}

TEST_F(ImageBloc, RowsClipAtEveryEdge) {
  mot* b = ima_hasard(13, 7, g);
  std::vector<octet> r(20, 99), gr(20, 99), bl(20, 99);
  // Three pixels hang off the left: they stay as they were in the arrays.
  EXPECT_EQ(lire_ligne(-3, 4, 10, r.data(), gr.data(), bl.data(), b), 7);
  EXPECT_EQ(r[2], 99);
  EXPECT_EQ(r[3], px(b, 0, 4, 0));
  EXPECT_EQ(bl[9], px(b, 6, 4, 2));
  EXPECT_EQ(lire_ligne(10, 6, 10, r.data(), gr.data(), bl.data(), b), 3);
  EXPECT_EQ(lire_ligne(0, 7, 5, r.data(), gr.data(), bl.data(), b), 0);
  EXPECT_EQ(lire_ligne(0, -1, 5, r.data(), gr.data(), bl.data(), b), 0);
  EXPECT_EQ(lire_ligne(2000000000, 0, 2000000000, r.data(), gr.data(), bl.data(), b), 0);
  // A write past the right edge stops there; the next row is untouched.
  octet n1 = px(b, 0, 3, 0);
  std::vector<octet> z(20, 0);
  EXPECT_EQ(ecrire_ligne(8, 2, 20, z.data(), z.data(), z.data(), b), 5);
  EXPECT_EQ(px(b, 12, 2, 2), 0);
  EXPECT_EQ(px(b, 0, 3, 0), n1);
  bloc_libere_force(b);
}

TEST_F(ImageBloc, WorkingImageHasTheWindowSizeAndIsRebuilt) {
  mot* e = ima_ecran();
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(ima_l(e), 64);
  EXPECT_EQ(ima_h(e), 48);
  EXPECT_EQ(ima_bloc(0), e);
  // A null image in the row routines means the working image.
  octet v[2] = {7, 8};
  EXPECT_EQ(ecrire_ligne(62, 47, 2, v, v, v, nullptr), 2);
  EXPECT_EQ(px(e, 63, 47, 1), 8);
  ASSERT_EQ(ima_ecran_retaille(333, 211), 0);
  EXPECT_EQ(ima_l(ima_ecran()), 333);
  EXPECT_EQ(ima_h(ima_bloc(0)), 211);
  std::string s = sortie_de([] { EXPECT_EQ(ima_ecran_retaille(0, 10), -1); });
  EXPECT_EQ(ima_l(ima_ecran()), 333);
}

TEST_F(ImageBloc, RectanglesSwapAndClip) {
  Rect r{50, 9, -4, 2};
  ASSERT_TRUE(rect_coupe(&r, 20, 5));
  EXPECT_TRUE(r.x1 == 0 && r.x2 == 19 && r.y1 == 2 && r.y2 == 4) << r.x1 << " " << r.x2 << " " << r.y1 << " " << r.y2;
  Rect dehors{30, 0, 40, 3};
  EXPECT_FALSE(rect_coupe(&dehors, 20, 5));
}

TEST_F(ImageBloc, OnePixelEnlargedStaysItsColour) {
  mot* s = ima_alloue(1, 1);
  ima_octets(s)[0] = 201, ima_octets(s)[1] = 7, ima_octets(s)[2] = 99;
  mot* d = ima_alloue(17, 9);
  ASSERT_EQ(ima_copie(s, Rect{0, 0, 0, 0}, d, Rect{0, 0, 16, 8}), 0);
  for (int y = 0; y < 9; ++y)
    for (int x = 0; x < 17; ++x) ASSERT_TRUE(px(d, x, y, 0) == 201 && px(d, x, y, 1) == 7 && px(d, x, y, 2) == 99) << x << "," << y;
  bloc_libere_force(s);
  bloc_libere_force(d);
}

TEST_F(ImageBloc, EnlargementWeighsNeighboursCrossed) {
  // 2 x 2 of red 0 | 200 on row 0 and 100 | 40 on row 1, onto 4 x 4:
  // the ratio is 1/4, and at position x + f the weights are f for x and
  // 1 - f for x + 1, so the left edge shows the right neighbour.
  mot* s = ima_alloue(2, 2);
  octet r0[2] = {0, 200}, r1[2] = {100, 40}, z[2] = {0, 0};
  ecrire_ligne(0, 0, 2, r0, z, z, s);
  ecrire_ligne(0, 1, 2, r1, z, z, s);
  mot* d = ima_alloue(4, 4);
  ASSERT_EQ(ima_copie(s, Rect{0, 0, 1, 1}, d, Rect{0, 0, 3, 3}), 0);
  const float f[4] = {0, 0.25f, 0.5f, 0.75f};
  for (int j = 0; j < 4; ++j)
    for (int i = 0; i < 4; ++i) {
      float bas = 0 * f[i] + 200 * (1 - f[i]);
      float haut = 100 * f[i] + 40 * (1 - f[i]);
      int attendu = static_cast<int>(bas * f[j] + haut * (1 - f[j]));
      EXPECT_EQ(px(d, i, j, 0), attendu) << i << "," << j;
    }
  // Row 0 takes row 1 whole (fy = 0 weighs y + 1), and its left end the
  // right neighbour: 40, where the usual weights would give 100.
  EXPECT_EQ(px(d, 0, 0, 0), 40);
  EXPECT_EQ(px(d, 3, 0, 0), 85);
  bloc_libere_force(s);
  bloc_libere_force(d);
}

TEST_F(ImageBloc, ReductionMeansCellsAndEqualWidthTakesOneColumn) {
  mot* s = ima_hasard(7, 10, g);
  mot* d = ima_alloue(7, 4);
  ASSERT_EQ(ima_copie(s, Rect{0, 0, 6, 9}, d, Rect{0, 0, 6, 3}), 0);
  // ry = 9 / 4: cells of 3 rows from rows 0, 2, 4, 6; rx = 6 / 7: 1 column.
  for (int j = 0; j < 4; ++j)
    for (int i = 0; i < 7; ++i)
      for (int c = 0; c < 3; ++c) {
        int x = static_cast<int>(i * 6.0 / 7), y = static_cast<int>(j * 9.0 / 4);
        int m = (px(s, x, y, c) + px(s, x, y + 1, c) + px(s, x, y + 2, c)) / 3;
        ASSERT_EQ(px(d, i, j, c), m) << i << "," << j;
      }
  // 1920 x 1080 to 768 x 576: cells of 2 rows by 3 columns, none past the edge.
  mot* grand = ima_hasard(1920, 1080, g);
  mot* petit = ima_alloue(768, 576);
  ASSERT_EQ(ima_copie(grand, Rect{0, 0, 1919, 1079}, petit, Rect{0, 0, 767, 575}), 0);
  int x = static_cast<int>(767 * (1919.0 / 768)), y = static_cast<int>(575 * (1079.0 / 576));
  int somme = 0;
  for (int a = 0; a < 2; ++a)
    for (int b = 0; b < 3; ++b) somme += px(grand, x + b, y + a, 1);
  EXPECT_EQ(px(petit, 767, 575, 1), somme / 6);
  for (mot* b : {s, d, grand, petit}) bloc_libere_force(b);
}

TEST_F(ImageBloc, MixedAxesSampleAndSameImageGoesThroughATemporary) {
  mot* s = ima_hasard(40, 5, g);
  mot* d = ima_alloue(10, 20);
  ASSERT_EQ(ima_copie(s, Rect{0, 0, 39, 4}, d, Rect{0, 0, 9, 19}), 0);
  for (int j = 0; j < 20; ++j)
    for (int i = 0; i < 10; ++i)
      ASSERT_EQ(px(d, i, j, 2), px(s, static_cast<int>(i * 3.9), static_cast<int>(j * 0.2), 2));
  // An overlapping copy within one image reads the source as it was.
  mot* m = ima_hasard(31, 29, g);
  mot* avant = bloc_duplique(m);
  ASSERT_EQ(ima_copie(m, Rect{0, 0, 19, 19}, m, Rect{5, 3, 24, 22}), 0);
  for (int y = 0; y < 20; ++y)
    for (int x = 0; x < 20; ++x) ASSERT_EQ(px(m, x + 5, y + 3, 0), px(avant, x, y, 0));
  EXPECT_EQ(px(m, 30, 28, 1), px(avant, 30, 28, 1));
  for (mot* b : {s, d, m, avant}) bloc_libere_force(b);
}
}  // namespace
