// Curves through points and the fitting of lines: control points kept bit
// for bit, closed curves, resampling, joint correction, thinning and even
// spreading, with their odd but required behaviours.
#include <cmath>

#include "outils.h"

namespace {
std::vector<float> rangs(const mot* c) { return floats(c + 6); }


std::vector<mot> ligne(const std::vector<float>& v) {
  std::vector<mot> b{static_cast<mot>(4 + v.size()), BLOC_REEL, static_cast<mot>(v.size()), 1};
  for (float x : v) b.push_back(reel_mot(x));
  return b;
}

// A work area standing for the evaluation stack.
struct Travail {
  std::vector<mot> zone = std::vector<mot>(4000);
  mot* debut() { return zone.data(); }
  const mot* fin() { return zone.data() + zone.size(); }
};
}  // namespace

TEST(Courbe, KeepsControlPointsExactly) {
  monde();
  std::vector<float> p{0.1f, 0.2f, 0.3f, 1.7f, -2.9f, 0.33f, 4.1f, 1.3f, -0.7f, 5.5f, 5.5f, 5.5f};
  ParamCourbe s0;
  mot* c = courbe(nullptr, &s0, 4, 3, 3, p.data(), nullptr);
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(rangs(c), p);
  EXPECT_EQ(c[3], 1);
  EXPECT_EQ(c[5], B_SOM);
  bloc_libere(c);
  ParamCourbe s3;
  s3.s = 3;
  s3.t = 0.7f;
  std::vector<float> out(4 * 13, -1);
  ASSERT_EQ(courbe_points(&s3, 4, 3, 4, p.data(), nullptr, out.data()), 13);
  for (int i = 0; i < 4; ++i)
    for (int k = 0; k < 3; ++k) EXPECT_EQ(out[4 * (4 * i) + k], p[3 * i + k]) << i;
  EXPECT_EQ(out[3], 0.f);  // columns beyond the point are cleared
}

TEST(Courbe, ClosedLineEndsOnItsFirstPoint) {
  monde();
  std::vector<float> p{0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 0};
  ParamCourbe s1;
  s1.s = 1;
  mot* c = courbe(nullptr, &s1, 5, 3, 3, p.data(), nullptr);
  auto r = rangs(c);
  ASSERT_EQ(r.size(), 3u * (2 * 5 - 1));
  EXPECT_EQ(std::vector<float>(r.end() - 3, r.end()), std::vector<float>(r.begin(), r.begin() + 3));
  // Closed: the tangent at the first point follows the last-but-one and the
  // second, so the first span bulges out of the square symmetrically.
  EXPECT_LT(r[3 + 1], 0);
  EXPECT_NEAR(r[3 + 1], r[3 * 7 + 0], 1e-6);
  bloc_libere(c);
}

TEST(Courbe, StraightLineStaysStraightAndEven) {
  monde();
  std::vector<float> p{0, 0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0};
  ParamCourbe s;
  s.s = 1;
  mot* c = courbe(nullptr, &s, 4, 3, 3, p.data(), nullptr);
  proche(rangs(c), {0, 0, 0, 0.5f, 0, 0, 1, 0, 0, 1.5f, 0, 0, 2, 0, 0, 2.5f, 0, 0, 3, 0, 0});
  bloc_libere(c);
  // Two points: equal steps; one point: copies.
  std::vector<float> two{0, 0, 0, 3, 6, 9}, out(3 * 4);
  s.s = 2;
  ASSERT_EQ(courbe_points(&s, 2, 3, 3, two.data(), nullptr, out.data()), 4);
  proche(out, {0, 0, 0, 1, 2, 3, 2, 4, 6, 3, 6, 9});
  EXPECT_EQ(courbe_points(&s, 0, 3, 3, nullptr, nullptr, nullptr), 0);
}

TEST(Courbe, TensionPerSpan) {
  monde();
  std::vector<float> p{0, 0, 0, 1, 1, 0, 2, 0, 0};
  ParamCourbe s;
  s.s = 1;
  std::vector<float> a(15), b(15);
  // Rows: a hole of 2 words, then a row whose value is 0 for span 2.
  std::vector<mot> t{4 + 2 + 2, BLOC_REEL, 2, 0, -2, 0, 2, reel_mot(0)};
  courbe_points(&s, 3, 3, 3, p.data(), nullptr, a.data());
  courbe_points(&s, 3, 3, 3, p.data(), t.data(), b.data());
  EXPECT_EQ(std::vector<float>(a.begin(), a.begin() + 9), std::vector<float>(b.begin(), b.begin() + 9));
  EXPECT_NE(a[9], b[9]);
}

TEST(Loi, EndsAreExactAndLawsShapeTheMiddle) {
  for (int loi : {0, LOI_CIN, LOI_ACC, LOI_DEC, LOI_ACD}) {
    EXPECT_EQ(loi_valeur(7.3, loi, nullptr, 5, 1, 1), 0.0) << loi;
    EXPECT_EQ(loi_valeur(7.3, loi, nullptr, 5, 5, 1), 7.3) << loi;
  }
  EXPECT_NEAR(loi_valeur(2, 0, nullptr, 3, 2, 1), 1, 1e-12);
  EXPECT_LT(loi_valeur(2, LOI_ACC, nullptr, 3, 2, 1), 1);
  EXPECT_GT(loi_valeur(2, LOI_DEC, nullptr, 3, 2, 1), 1);
  // A table of (x, y): the last row gives the totals.
  std::vector<mot> t{4 + 6, BLOC_REEL, 3, 2, reel_mot(0), reel_mot(0), reel_mot(1), reel_mot(3), reel_mot(2), reel_mot(4)};
  EXPECT_NEAR(loi_valeur(8, LOI_CIN, t.data(), 3, 2, 1), 6, 1e-6);
}

TEST(Ajust, ResampleStraightLineToEqualSteps) {
  monde();
  auto l = ligne({0, 0, 0, 10, 0, 0});
  auto n = ligne({5});
  Travail w;
  Ajust a;
  a.ligne = l.data();
  a.nombre = n.data();
  ASSERT_EQ(ajust_1(nullptr, w.debut(), w.fin(), &a), 0);
  EXPECT_EQ(w.zone[2], 15);
  proche(floats(w.debut()), {0, 0, 0, 2.5f, 0, 0, 5, 0, 0, 7.5f, 0, 0, 10, 0, 0});
  // Closed: one more point on the way back, and the repeat dropped.
  auto c = ligne({0, 0, 0, 4, 0, 0});
  a.ligne = c.data();
  a.ferme = true;
  auto n4 = ligne({4});
  a.nombre = n4.data();
  std::vector<mot> dest(100);
  ASSERT_EQ(ajust_1(dest.data(), w.debut(), w.fin(), &a), 0);
  proche(floats(dest.data()), {0, 0, 0, 2, 0, 0, 4, 0, 0, 2, 0, 0});
}

TEST(Ajust, HugeRequestReportsAndShortStackSaysSo) {
  monde();
  auto l = ligne({0, 0, 0, 1, 0, 0});
  auto n = ligne({666666});
  Travail w;
  Ajust a;
  a.ligne = l.data();
  a.nombre = n.data();
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(ajust_1(nullptr, w.debut(), w.fin(), &a), 0); }), "ajust_1: 2000002 M105\n");
  auto petit = ligne({2000});
  a.nombre = petit.data();
  EXPECT_EQ(ajust_1(nullptr, w.debut(), w.fin(), &a), PILE_PLEINE);
  auto nan = ligne({std::nanf("")});
  a.nombre = nan.data();
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(ajust_1(nullptr, w.debut(), w.fin(), &a), -1); }), "0: M66\n");
  a.nombre = nullptr;
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(ajust_1(nullptr, w.debut(), w.fin(), &a), -1); }), "0: M66\n");
}

TEST(Ajust, JointOf120CorrectedTo90AndTheRestFollows) {
  monde();
  float c = std::cos(2.0943951f), s = std::sin(2.0943951f);
  auto l = ligne({0, 0, 0, 1, 0, 0, 1 + c, s, 0, 1 + 2 * c, 2 * s, 0});
  auto opt = ligne({1.5707963f});
  Ajust a;
  a.ligne = l.data();
  a.options = opt.data();
  Travail w;
  ASSERT_EQ(ajust_1(nullptr, w.debut(), w.fin(), &a), 0);
  proche(floats(l.data()), {0, 0, 0, 1, 0, 0, 1, 1, 0, 1, 2, 0});
  auto court = ligne({0, 0, 0, 1, 0, 0});
  a.ligne = court.data();
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(ajust_1(nullptr, w.debut(), w.fin(), &a), -1); }), "2: M66\n");
}

TEST(Joint, SignedBendAndModes) {
  monde();
  // A bend of -120 (about -z): mode 0 corrects it, mode 1 only positive ones.
  float c = std::cos(2.0943951f), s = std::sin(2.0943951f);
  std::vector<float> p{0, 0, 0, 1, 0, 0, 1 + c, -s, 0};
  EXPECT_EQ(redresser_joint(&p[0], &p[3], &p[6], nullptr, 0, 0, 3, 3, p.data(), 1.5707963f, 1, 0), 0);
  EXPECT_EQ(redresser_joint(&p[0], &p[3], &p[6], nullptr, 0, 0, 3, 3, p.data(), 1.5707963f, 0, 1), 0);
  EXPECT_EQ(redresser_joint(&p[0], &p[3], &p[6], nullptr, 0, 0, 3, 3, p.data(), 1.5707963f, 0, 0), 1);
  proche({p[6], p[7], p[8]}, {1, -1, 0});
}

TEST(Reduire, ReversedTestKeepsNearPointsAndDropsTheTail) {
  monde();
  Travail w;
  std::vector<float> trois{0, 0, 0, 1, 0, 0, 2, 0, 0};
  ASSERT_EQ(reduire_ligne(trois.data(), 3, 0.1f, w.debut(), w.fin()), 0);
  EXPECT_EQ(floats(w.debut()), trois);
  std::vector<float> cinq{0, 0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0, 4, 0, 0};
  ASSERT_EQ(reduire_ligne(cinq.data(), 5, 0.1f, w.debut(), w.fin()), 0);
  EXPECT_EQ(floats(w.debut()), (std::vector<float>{0, 0, 0, 1, 0, 0, 2, 0, 0, 4, 0, 0}));
  // A zigzag: the far point is skipped, the chord's end (at distance 0) kept.
  std::vector<float> zz{0, 0, 0, 1, 5, 0, 2, -5, 0, 3, 5, 0, 4, 0, 0};
  ASSERT_EQ(reduire_ligne(zz.data(), 5, 0.1f, w.debut(), w.fin()), 0);
  EXPECT_EQ(floats(w.debut()), (std::vector<float>{0, 0, 0, 2, -5, 0, 4, 0, 0}));
  EXPECT_EQ(reduire_ligne(cinq.data(), 5, 0.1f, w.debut(), w.debut() + 9), PILE_PLEINE);
}

TEST(Repartir, EvenStepsAndRefusalBeforeAnyMove) {
  monde();
  std::vector<float> p{0, 0, 0, 1, 0, 0, 5, 0, 0, 10, 0, 0};
  int idx[] = {1, 2, 3, 4};
  ASSERT_EQ(repartir_ligne(p.data(), 4, 3, idx, 4, nullptr, false), 0);
  proche(p, {0, 0, 0, 10.f / 3, 0, 0, 20.f / 3, 0, 0, 10, 0, 0});
  int mauvais[] = {1, 3, 7};
  auto avant = p;
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(repartir_ligne(p.data(), 4, 3, mauvais, 3, nullptr, false), -1); }),
            "7: M66\n");
  EXPECT_EQ(p, avant);
  // Through ajust_1: the line given as `nombre` alone.
  auto l = ligne({0, 0, 0, 0, 1, 0, 0, 8, 0});
  Ajust a;
  a.nombre = l.data();
  Travail w;
  ASSERT_EQ(ajust_1(nullptr, w.debut(), w.fin(), &a), 0);
  proche(floats(w.debut()), {0, 0, 0, 0, 4, 0, 0, 8, 0});
}
