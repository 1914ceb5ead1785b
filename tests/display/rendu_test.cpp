// The software renderer on pictures made in the working image with no
// window: coverage, lighting against OpenGL's sums, the depth test in its
// three modes, clipping and the bad inputs that must leave the next frame
// drawable.
#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "display/moteurs.h"
#include "display/oeil.h"
#include "display/rendu_interne.h"
#include "geom/geom.h"
#include "tests/image/outils.h"

namespace {
struct Vol {
  std::vector<float> som, nf, nsom;
  std::vector<mot> fac;
  std::vector<mot> cfac;
  float coul[3] = {1, 1, 1};
  float illum[5] = {1, 1, 0, 0, 0};
  Vol_aff v;

  void faces(const std::vector<std::vector<int>>& ff) {
    fac = {0, BLOC_LISTE, static_cast<mot>(ff.size()), 0};
    for (auto& f : ff) {
      fac.push_back(4 + static_cast<mot>(f.size()));
      fac.push_back(BLOC_ENTIER);
      fac.push_back(1);
      fac.push_back(static_cast<mot>(f.size()));
      for (int i : f) fac.push_back(i);
    }
    fac[0] = static_cast<mot>(fac.size());
  }
  // A quad in the plane z, window-sized in parallel projection.
  int carre(float x0, float y0, float x1, float y1, float z) {
    int b = static_cast<int>(som.size() / 3) + 1;
    for (float p : {x0, y0, z, x1, y0, z, x1, y1, z, x0, y1, z}) som.push_back(p);
    return b;
  }
  const Vol_aff& pret(int type = 1) {
    v.som = som.data();
    v.ns = static_cast<int>(som.size() / 3);
    v.fac = fac.empty() ? nullptr : fac.data();
    v.nf = fac.empty() ? 0 : fac[2];
    v.n_fac = nf.empty() ? nullptr : nf.data();
    v.n_som = nsom.empty() ? nullptr : nsom.data();
    v.coul = coul;
    v.illum = illum;
    v.type = type;
    v.c_fac = cfac.empty() ? nullptr : cfac.data();
    return v;
  }
};

struct Monde {
  mot* im = nullptr;
  explicit Monde(int l = 64, int h = 48, int proj = 63) {
    monde_ima();
    ecran.largeur = l;
    ecran.hauteur = h;
    EXPECT_EQ(ima_ecran_retaille(l, h), 0);
    im = ima_ecran();
    std::fill(ima_octets(im), ima_octets(im) + 3L * l * h, octet{7});
    oeil_courant = Oeil{};
    oeil_courant.projection = proj;
    zb.mode = 1;
    init_zbuf(1);
  }
  octet p(int x, int y, int c = 0) const { return px(im, x, y, c); }
  int couverts() const {
    int n = 0;
    for (int y = 0; y < ima_h(im); ++y)
      for (int x = 0; x < ima_l(im); ++x) n += p(x, y) != 7 || p(x, y, 1) != 7 || p(x, y, 2) != 7;
    return n;
  }
};

// The world x that lands on window x `xw` in parallel projection.
float mx(float xw, int l) { return xw * (l - 1) / l - l / 2.f; }
float my(float yw, int h) { return h / 2.f - yw * (h - 1) / h; }

Objet* lumiere(int n, std::initializer_list<float> pos) {
  Objet* o = objet_cree(1, B_LUM, 0, nullptr, nullptr, n);
  std::vector<float> p(pos);
  if (!p.empty()) attribut_ecrit_1(o, 1, 86, p.data(), 3, 1);
  return o;
}

TEST(Rendu, SilhouetteFondEtSpanDUnPixel) {
  Monde m(64, 48);
  Vol a;
  int b = a.carre(mx(10, 64), my(5, 48), mx(30, 64), my(25, 48), 0);
  a.faces({{b, b + 1, b + 2, b + 3}});
  a.v.zbu = 0;
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  // Window x 10..30 and y 5..25: the pixels whose centres are inside.
  EXPECT_EQ(m.couverts(), 20 * 20);
  EXPECT_NE(m.p(10, 5), 7);
  EXPECT_NE(m.p(29, 24), 7);
  EXPECT_EQ(m.p(30, 24), 7);
  EXPECT_EQ(m.p(9, 5), 7);
  EXPECT_EQ(m.p(10, 4), 7);
  // A face 0.7 pixel wide over one centre: one pixel per row.
  Monde m2(64, 48);
  Vol f;
  b = f.carre(mx(40.2f, 64), my(10, 48), mx(40.9f, 64), my(13, 48), 0);
  f.faces({{b, b + 1, b + 2, b + 3}});
  ASSERT_EQ(rendu_vol(f.pret()), 0);
  EXPECT_EQ(m2.couverts(), 3);
  for (int y = 10; y < 13; ++y) EXPECT_NE(m2.p(40, y), 7);
  // The last column and the top row of the window are reached.
  Monde m3(17, 9);
  Vol g;
  b = g.carre(mx(-5, 17), my(-5, 9), mx(40, 17), my(40, 9), 0);
  g.faces({{b, b + 1, b + 2, b + 3}});
  ASSERT_EQ(rendu_vol(g.pret()), 0);
  EXPECT_EQ(m3.couverts(), 17 * 9);
  // A window of 1 x 1.
  Monde m4(1, 1);
  ASSERT_EQ(rendu_vol(g.pret()), 0);
  EXPECT_EQ(m4.couverts(), 1);
}

TEST(Rendu, LumiereDeFaceEtA60Degres) {
  Monde m(80, 40);
  lumiere(1, {0, 0, -1e7f});
  Vol a;
  a.coul[0] = a.coul[1] = a.coul[2] = 0.7f;
  int b = a.carre(mx(5, 80), my(5, 40), mx(35, 80), my(35, 40), 0);
  int c = a.carre(mx(45, 80), my(5, 40), mx(75, 80), my(35, 40), 0);
  a.faces({{b, b + 1, b + 2, b + 3}, {c, c + 1, c + 2, c + 3}});
  float s = std::sqrt(3.f) / 2;
  a.nf = {0, 0, -1, s, 0, -0.5f};
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  // OpenGL's sums: ambient 0.2 x 0.2, then 0.7 x cos of the angle.
  float amb = 0.04f * 255;
  EXPECT_NEAR(m.p(20, 20), amb + 0.7f * 255, 1.0);
  EXPECT_NEAR((m.p(60, 20) - amb) / (m.p(20, 20) - amb), 0.5, 0.01);
  // Both sides: the face turned away is black under type 1 but lit
  // under type -1, as its normal is turned toward the eye.
  Vol d;
  b = d.carre(mx(5, 80), my(5, 40), mx(35, 80), my(35, 40), 0);
  d.faces({{b + 3, b + 2, b + 1, b}});
  d.nf = {0, 0, 1};
  d.v.zbu = 0;
  ASSERT_EQ(rendu_vol(d.pret(1)), 0);
  EXPECT_NEAR(m.p(20, 20), amb, 1.0);
  ASSERT_EQ(rendu_vol(d.pret(-1)), 0);
  EXPECT_NEAR(m.p(20, 20), 255, 1.0);
  // Attenuation: the one value in all three terms, 1 / (a (1 + d + d^2)).
  Monde m2(40, 40);
  Objet* l = lumiere(1, {0, 0, -1});
  float att = 0.01f;
  attribut_ecrit_1(l, 1, 42, &att, 1, 1);
  Vol e;
  b = e.carre(mx(10, 40), my(10, 40), mx(30, 40), my(30, 40), 0);
  e.faces({{b, b + 1, b + 2, b + 3}});
  e.nf = {0, 0, -1};
  ASSERT_EQ(rendu_vol(e.pret()), 0);
  float dist = 1001;  // eye at -1000, light at 1 before the eye
  EXPECT_NEAR(m2.p(20, 20), std::min(255.f, amb + 255 / (att * (1 + dist + dist * dist))), 1.0);
}

TEST(Rendu, ProfondeurDansLesTroisModes) {
  for (int mode : {0, 1, 2}) {
    for (int ordre : {0, 1}) {
      Monde m(40, 30);
      SCOPED_TRACE(testing::Message() << "mode " << mode << " ordre " << ordre);
      // A red face then a blue one; the blue is the near one (z -50) in
      // the second order.
      Vol a;
      int b = a.carre(mx(5, 40), my(5, 30), mx(25, 40), my(25, 30), ordre ? 50.f : -50.f);
      int c = a.carre(mx(15, 40), my(10, 30), mx(35, 40), my(20, 30), ordre ? -50.f : 50.f);
      a.faces({{b, b + 1, b + 2, b + 3}, {c, c + 1, c + 2, c + 3}});
      a.v.zbu = mode;
      a.cfac.assign({12, BLOC_REEL, 2, 1, 3, 0, 0, 0, 3, 0, 0, 0});
      a.cfac[5] = reel_mot(1.f);
      a.cfac[11] = reel_mot(1.f);
      lumiere(1, {0, 0, -1e7f});
      a.nf = {0, 0, -1, 0, 0, -1};
      ASSERT_EQ(rendu_vol(a.pret()), 0);
      float zr = ordre ? -50.f : 50.f;  // z of the second face
      bool bleu_devant = mode == 0 || zr < 0;
      EXPECT_EQ(m.p(20, 15, 2) > 100, bleu_devant);
      EXPECT_EQ(m.p(20, 15, 0) > 100, !bleu_devant);
      // Where they do not overlap each face shows; elsewhere the background.
      EXPECT_GT(m.p(8, 8, 0), 100);
      EXPECT_GT(m.p(32, 15, 2), 100);
      EXPECT_EQ(m.p(38, 28, 0), 7);
    }
  }
}

// Random triangles with depths: with a buffer the picture does not depend on
// the order of the faces.
TEST(Rendu, OrdreIndifferentAvecTampon) {
  std::mt19937 g(1234);
  std::uniform_real_distribution<float> u(-1, 1);
  for (int mode : {1, 2}) {
    Vol a;
    std::vector<std::vector<int>> ff;
    for (int i = 0; i < 300; ++i) {
      float cx = u(g) * 60, cy = u(g) * 40, z = u(g) * 400;
      for (int k = 0; k < 3; ++k) {
        a.som.push_back(cx + u(g) * 30);
        a.som.push_back(cy + u(g) * 30);
        a.som.push_back(z + u(g) * 20);
      }
      ff.push_back({3 * i + 1, 3 * i + 2, 3 * i + 3});
    }
    a.faces(ff);
    a.v.zbu = mode;
    Monde m(130, 90, 13);
    oeil_courant.oeil[2] = -150;
    a.cfac.assign(4 + 4 * 300, 0);
    a.cfac[0] = static_cast<mot>(a.cfac.size());
    a.cfac[1] = BLOC_REEL;
    a.cfac[2] = 300;
    for (int i = 0; i < 300; ++i) {
      a.cfac[4 + 4 * i] = 3;
      for (int k = 0; k < 3; ++k) a.cfac[5 + 4 * i + k] = reel_mot(static_cast<float>(g() % 256) / 255);
    }
    a.illum[1] = 1;
    ASSERT_EQ(rendu_vol(a.pret(-1)), 0);
    std::vector<octet> avant(ima_octets(m.im), ima_octets(m.im) + 3 * 130 * 90);
    // The same faces reversed, with their colours.
    std::vector<std::vector<int>> rf(ff.rbegin(), ff.rend());
    std::vector<mot> rc = a.cfac;
    for (int i = 0; i < 300; ++i)
      for (int k = 0; k < 4; ++k) rc[4 + 4 * i + k] = a.cfac[4 + 4 * (299 - i) + k];
    a.cfac = rc;
    a.faces(rf);
    std::fill(ima_octets(m.im), ima_octets(m.im) + 3 * 130 * 90, octet{7});
    init_zbuf(1);
    ASSERT_EQ(rendu_vol(a.pret(-1)), 0);
    std::vector<octet> apres(ima_octets(m.im), ima_octets(m.im) + 3 * 130 * 90);
    int diff = 0;
    for (std::size_t i = 0; i < avant.size(); ++i) diff += avant[i] != apres[i];
    // Ties of the 16-bit depth may go either way on a few pixels.
    EXPECT_LT(diff, mode == 2 ? 3 : 60) << "mode " << mode;
    EXPECT_GT(m.couverts(), 3000);
  }
}
}  // namespace
