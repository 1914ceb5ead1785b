// The software renderer on pictures made in the working image with no
// window: coverage, lighting against OpenGL's sums, the depth test in its
// three modes, clipping and the bad inputs that must leave the next frame
// drawable.
#include <algorithm>
#include <array>
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
  // A colour per face.
  void couleurs(const std::vector<std::array<float, 3>>& c) {
    cfac = {static_cast<mot>(4 + 4 * c.size()), BLOC_REEL, static_cast<mot>(c.size()), 1};
    for (const auto& x : c) cfac.insert(cfac.end(), {3, reel_mot(x[0]), reel_mot(x[1]), reel_mot(x[2])});
  }
  // The quad and its one face, the only face of the volume.
  void plaque(float x0, float y0, float x1, float y1, float z) {
    int b = carre(x0, y0, x1, y1, z);
    faces({{b, b + 1, b + 2, b + 3}});
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
  void efface() { std::fill(ima_octets(im), ima_octets(im) + 3L * ima_l(im) * ima_h(im), octet{7}); }
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
  a.plaque(mx(10, 64), my(5, 48), mx(30, 64), my(25, 48), 0);
  a.v.zbu = 0;
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  // Window x 10..30 and y 5..25: the pixels whose centres are inside.
  EXPECT_EQ(m.couverts(), 20 * 20);
  EXPECT_NE(m.p(10, 5), 7);
  EXPECT_NE(m.p(29, 24), 7);
  // A face 0.7 pixel wide over one centre: one pixel per row.
  Monde m2(64, 48);
  Vol f;
  f.plaque(mx(40.2f, 64), my(10, 48), mx(40.9f, 64), my(13, 48), 0);
  ASSERT_EQ(rendu_vol(f.pret()), 0);
  EXPECT_EQ(m2.couverts(), 3);
  for (int y = 10; y < 13; ++y) EXPECT_NE(m2.p(40, y), 7);
  // The last column and the top row of the window are reached.
  Monde m3(17, 9);
  Vol g;
  g.plaque(mx(-5, 17), my(-5, 9), mx(40, 17), my(40, 9), 0);
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
  // Both sides lit, as OpenGL's two-sided model: seen from behind, the
  // face's normal is turned toward the eye; type -1 keeps its material,
  // type 1 takes OpenGL's default back material, diffuse 0.8.
  Vol d;
  b = d.carre(mx(5, 80), my(5, 40), mx(35, 80), my(35, 40), 0);
  d.faces({{b + 3, b + 2, b + 1, b}});
  d.nf = {0, 0, 1};
  d.v.zbu = 0;
  ASSERT_EQ(rendu_vol(d.pret(1)), 0);
  EXPECT_NEAR(m.p(20, 20), amb + 0.8 * 255, 1.0);
  ASSERT_EQ(rendu_vol(d.pret(-1)), 0);
  EXPECT_NEAR(m.p(20, 20), 255, 1.0);
  // Attenuation: the one value in all three terms, 1 / (a (1 + d + d^2)).
  Monde m2(40, 40);
  Objet* l = lumiere(1, {0, 0, -1});
  float att = 0.01f;
  attribut_ecrit_1(l, 1, 42, &att, 1, 1);
  Vol e;
  e.plaque(mx(10, 40), my(10, 40), mx(30, 40), my(30, 40), 0);
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
      a.couleurs({{1, 0, 0}, {0, 0, 1}});
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
    std::vector<std::array<float, 3>> c(300);
    for (auto& x : c)
      for (float& k : x) k = static_cast<float>(g() % 256) / 255;
    a.couleurs(c);
    a.illum[1] = 1;
    ASSERT_EQ(rendu_vol(a.pret(-1)), 0);
    std::vector<octet> avant(ima_octets(m.im), ima_octets(m.im) + 3 * 130 * 90);
    // The same faces reversed, with their colours.
    a.faces(std::vector<std::vector<int>>(ff.rbegin(), ff.rend()));
    a.couleurs(std::vector<std::array<float, 3>>(c.rbegin(), c.rend()));
    m.efface();
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

// Faces that must draw nothing, and the frame after them that must draw.
TEST(Rendu, EntreesInvalidesEtTamponRetaille) {
  Monde m(64, 48);
  const float nan = std::nanf(""), inf = INFINITY;
  Vol a;
  int b = a.carre(mx(2, 64), my(2, 48), mx(10, 64), my(10, 48), 0);
  a.som[3] = nan;
  int c = a.carre(mx(12, 64), my(2, 48), mx(20, 64), my(10, 48), 0);
  a.som[3 * c + 1] = inf;
  int d = a.carre(mx(22, 64), my(2, 48), mx(30, 64), my(10, 48), 0);
  int e = a.carre(mx(40, 64), my(20, 48), mx(50, 64), my(30, 48), 0);
  // A zero-area face, faces naming missing vertices, and one good face.
  a.faces({{b, b + 1, b + 2, b + 3}, {c, c + 1, c + 2, c + 3}, {d, d + 1, d + 1, d}, {d, 0, d + 2}, {d, d + 2, 99},
           {e, e + 1, e + 2, e + 3}});
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  EXPECT_EQ(m.couverts(), 100);
  EXPECT_EQ(rendu_vol(a.pret(2)), 0);
  EXPECT_EQ(rendu_vol(a.pret(0)), 0);
  // Huge and crossing vertices in perspective: clipped, the window filled.
  Monde p(50, 40, 13);
  Vol g;
  g.plaque(-1e30f, -1e30f, 1e30f, 1e30f, 10);
  ASSERT_EQ(rendu_vol(g.pret()), 0);
  EXPECT_EQ(p.couverts(), 50 * 40);
  // A face through the eye's plane: only what is before the near plane.
  Monde q(50, 40, 13);
  Vol h;
  h.som = {-300, 0, -2000, 300, 0, -2000, 0, 100, 500};
  h.faces({{1, 2, 3}});
  ASSERT_EQ(rendu_vol(h.pret(2)), 0);
  int n = q.couverts();
  EXPECT_GT(n, 0);
  EXPECT_LT(n, 50 * 40);
  // A resize between two frames: the buffer follows the window.
  zb.mode = 1;
  ASSERT_EQ(init_zbuf(1), 0);
  EXPECT_EQ(zb.l, 50);
  ASSERT_EQ(ima_ecran_retaille(81, 61), 0);
  Monde r(81, 61, 63);
  ASSERT_EQ(ima_ecran_retaille(83, 67), 0);
  mot* im = ima_ecran();
  std::fill(ima_octets(im), ima_octets(im) + 3 * 83 * 67, octet{7});
  Vol k;
  k.plaque(mx(1, 83), my(1, 67), mx(82, 83), my(66, 67), 5);
  ASSERT_EQ(rendu_vol(k.pret()), 0);
  EXPECT_EQ(zb.l, 83);
  EXPECT_EQ(zb.h, 67);
  EXPECT_NE(px(im, 81, 65, 0), 7);
  EXPECT_EQ(px(im, 82, 65, 0), 7);
}

std::vector<std::vector<int>> cercle(Vol& a, int n, float cx, float cy, float r) {
  std::vector<int> f;
  int b = static_cast<int>(a.som.size() / 3) + 1;
  for (int i = 0; i < n; ++i) {
    double t = 2 * M_PI * i / n;
    a.som.insert(a.som.end(), {static_cast<float>(cx + r * std::cos(t)), static_cast<float>(cy + r * std::sin(t)), 0});
    a.nsom.insert(a.nsom.end(), {0, 0, -1});
    f.push_back(b + i);
  }
  return {f};
}

TEST(Rendu, GrandesFacesLissesEtZoneDoublee) {
  Monde m(64, 64);
  Vol a;
  a.faces(cercle(a, 257, 0, 0, 20));
  std::string s = sortie_de([&] { EXPECT_EQ(rendu_vol(a.pret(2)), 0); });
  EXPECT_EQ(s, "np = 257\nM0:105\n");
  EXPECT_EQ(m.couverts(), 0);
  // 256 vertices are drawn smooth, and 257 flat.
  Vol b;
  b.faces(cercle(b, 256, 0, 0, 20));
  ASSERT_EQ(rendu_vol(b.pret(2)), 0);
  int n = m.couverts();
  EXPECT_NEAR(n, M_PI * 400, 60);
  zb.mode = 0;
  m.efface();
  ASSERT_EQ(rendu_vol(a.pret(-1)), 0);
  EXPECT_EQ(m.couverts(), n);
  // 3001 vertices: the workspace doubles, saying so, up to 3200 records.
  Vol c;
  c.faces(cercle(c, 3001, 0, 0, 25));
  s = sortie_de([&] { EXPECT_EQ(rendu_vol(c.pret(1)), 0); });
  EXPECT_NE(s.find("M0:18\n: 3200\n"), std::string::npos) << s;
  EXPECT_GT(m.couverts(), n);
}

TEST(Rendu, FilEtPointsNumerotes) {
  Monde m(64, 48);
  Vol a;
  a.plaque(mx(10.5f, 64), my(10.5f, 48), mx(40.5f, 64), my(30.5f, 48), 0);
  a.coul[0] = 0;
  a.v.mode = 0;
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  // The four sides, not the inside, in the volume's colour.
  EXPECT_EQ(m.p(25, 10, 0), 0);
  EXPECT_EQ(m.p(25, 10, 1), 255);
  EXPECT_EQ(m.p(10, 20, 1), 255);
  EXPECT_EQ(m.p(25, 20, 1), 7);
  int n = m.couverts();
  EXPECT_NEAR(n, 2 * (30 + 20), 6);
  // Edges given: only those.
  m.efface();
  std::vector<mot> ar = {6, BLOC_ENTIER, 1, 2, 1, 3};  // the diagonal
  a.v.aretes = ar.data();
  a.v.ne = 1;
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  EXPECT_NEAR(m.couverts(), 31, 2);
  // Points: a square of the default side 2 at each vertex; with numbers,
  // more pixels beside them.
  m.efface();
  a.v.mode = -9;
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  EXPECT_EQ(m.couverts(), 4 * 4);
  a.v.mode = -10;
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  EXPECT_GT(m.couverts(), 4 * 4 + 4 * 5);
  // The test pass draws nothing and gives the projected vertices.
  m.efface();
  std::vector<float> proj(7 * 4, -1);
  a.v.mode = -68;
  a.v.proj = proj.data();
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  EXPECT_EQ(m.couverts(), 0);
  EXPECT_NEAR(proj[4], 10.5, 1e-3);
  EXPECT_NEAR(proj[5], 10.5, 1e-3);
  EXPECT_NEAR(proj[7 * 2 + 4], 40.5, 1e-3);
}

TEST(Rendu, TransparenceEtOrdreDesFaces) {
  Monde m(40, 30);
  lumiere(1, {0, 0, -1e7f});
  Vol rouge;
  rouge.plaque(mx(5, 40), my(5, 30), mx(25, 40), my(25, 30), 50);
  rouge.coul[1] = rouge.coul[2] = 0;
  rouge.nf = {0, 0, -1};
  Vol bleu;
  bleu.plaque(mx(15, 40), my(10, 30), mx(35, 40), my(20, 30), -50);
  bleu.coul[0] = bleu.coul[1] = 0;
  bleu.nf = {0, 0, -1};
  float amb = 0.04f * 255;
  for (float t : {0.f, 0.0001f, 0.5f}) {
    init_zbuf(1);
    ASSERT_EQ(rendu_vol(rouge.pret()), 0);
    bleu.illum[4] = t;
    ASSERT_EQ(rendu_vol(bleu.pret()), 0);
    EXPECT_NEAR(m.p(20, 15, 2), (1 - t) * 255 + t * amb, 1.0) << t;
    EXPECT_NEAR(m.p(20, 15, 0), (1 - t) * amb + t * 255, 1.0) << t;
  }
  // Two transparent faces, the near one listed first: sorted, the far one
  // shows through; unsorted, the buffer hides it.
  for (bool tri : {true, false}) {
    Monde m2(40, 30);
    lumiere(1, {0, 0, -1e7f});
    Vol d;
    int p = d.carre(mx(5, 40), my(5, 30), mx(25, 40), my(25, 30), -50);
    int q = d.carre(mx(15, 40), my(10, 30), mx(35, 40), my(20, 30), 50);
    d.faces({{p, p + 1, p + 2, p + 3}, {q, q + 1, q + 2, q + 3}});
    d.couleurs({{1, 0, 0}, {0, 0, 1}});
    d.nf = {0, 0, -1, 0, 0, -1};
    d.illum[4] = 0.5f;
    d.v.tri = tri;
    d.v.zbu = 1;
    ASSERT_EQ(rendu_vol(d.pret()), 0);
    EXPECT_EQ(m2.p(20, 15, 2) > 60, tri) << tri;
    EXPECT_GT(m2.p(20, 15, 0), 60);
  }
}

TEST(Rendu, OeilPerspectiveRoulisParallele) {
  Monde m(120, 80, 13);
  float h = std::tan(57.75 / 2 * M_PI / 180) * 1000;
  Vol a;
  a.som = {0, -h, 0, 0, 0, 0, 100, 0, 0, 0, 0, -1500};
  std::vector<float> proj(7 * 4);
  a.v.proj = proj.data();
  a.v.mode = -68;
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  // foc 1: 57.75 degrees from the bottom to the top of the window; y down.
  EXPECT_NEAR(proj[1], h, 1e-3);
  EXPECT_NEAR(proj[5], 80, 1e-2);
  EXPECT_NEAR(proj[7 + 4], 60, 1e-3);
  EXPECT_NEAR(proj[7 + 5], 40, 1e-3);
  EXPECT_NEAR(proj[14 + 4], 60 + 100 / h * 40, 1e-2);
  EXPECT_NEAR(proj[14 + 6], (1 - 1.0 / 1000 * (100000 + 1) / (100000 - 1) + 1) / 2 + 0, 0.01);
  // Behind the eye: w negative, stored as it is.
  EXPECT_LT(proj[21 + 3], 0);
  // A roll of 90 degrees turns the right of the picture upward or down.
  oeil_courant.roul = static_cast<float>(M_PI / 2);
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  EXPECT_NEAR(proj[14 + 4], 60, 1e-2);
  EXPECT_NEAR(std::fabs(proj[14 + 5] - 40), 100 / h * 40, 1e-2);
  // Parallel: a pixel per unit about the centre, y down.
  oeil_courant = Oeil{};
  oeil_courant.projection = 63;
  ASSERT_EQ(rendu_vol(a.pret()), 0);
  EXPECT_NEAR(proj[7 + 4], 60 * 120 / 119.f, 1e-3);
  EXPECT_NEAR(proj[14 + 4] - proj[7 + 4], 100 * 120 / 119.f, 1e-3);
  EXPECT_GT(proj[5], 80);
}

TEST(Rendu, ParPixelEtSpot) {
  // A light close to a large quad: per pixel, the highlight between the
  // vertices shows; per vertex it is lost.
  int pic[2];
  for (int k = 0; k < 2; ++k) {
    Monde m(60, 60, 13);
    lumiere(1, {0, 0, -200});
    Vol a;
    a.plaque(-400, 400, 400, -400, 0);
    a.nsom.assign(12, 0);
    for (int i = 0; i < 4; ++i) a.nsom[3 * i + 2] = -1;
    a.illum[1] = 0.1f;
    a.illum[2] = 1;
    a.illum[3] = 50;
    ASSERT_EQ(rendu_vol(a.pret(k ? 3 : 2)), 0);
    pic[k] = m.p(30, 30);
  }
  EXPECT_LT(pic[0], 60);
  EXPECT_GT(pic[1], 250);
  // A spot of 10 degrees toward the centre: a lit disc, dark around it.
  // The direction goes to OpenGL negated on all three axes, so +z here
  // aims away from the eye.
  Monde m(60, 60, 13);
  Objet* l = lumiere(1, {0, 0, -900});
  float dir[3] = {0, 0, 1}, cone[2] = {0, static_cast<float>(10 * M_PI / 180)};
  attribut_ecrit_1(l, 1, 10, dir, 3, 1);
  attribut_ecrit_1(l, 1, 26, cone, 2, 1);
  Vol a;
  a.plaque(-400, 400, 400, -400, 0);
  a.nf = {0, 0, -1};
  ASSERT_EQ(rendu_vol(a.pret(3)), 0);
  EXPECT_GT(m.p(30, 30), 200);
  EXPECT_LT(m.p(2, 2), 20);
}
}  // namespace

// Closed solids far from the eye and close to it: the 16-bit depth keeps
// the faces behind hidden as the float depth does, at every scale, and a
// solid past its range is still drawn.
TEST(Rendu, TamponCourtAChaqueEchelle) {
  struct Cas {
    float proche, loin, oeil_z, taille, z_min, z_max;
  };
  const Cas cas[] = {{1, 100000, -1000, 300, -200, 30000},
                     {0.01f, 100, -5, 0.8f, -2, 60},
                     {10, 32000, -2000, 900, 0, 90000}};
  std::mt19937 g(987654321);
  std::uniform_real_distribution<float> u(-1, 1);
  for (const Cas& k : cas) {
    SCOPED_TRACE(testing::Message() << "proche " << k.proche << " loin " << k.loin);
    Vol a;
    std::vector<std::vector<int>> ff;
    const int n = 40;
    for (int i = 0; i < n; ++i) {
      // A cube of random size and turn, on the line of sight's cone.
      float z = k.z_min + (k.z_max - k.z_min) * (u(g) + 1) / 2;
      float d = z - k.oeil_z;
      float c[3] = {u(g) * d * 0.4f, u(g) * d * 0.3f, z};
      float t = k.taille * (1.5f + u(g)) * d / (k.z_min - k.oeil_z + k.taille * 2);
      float ax = u(g) * 3, ay = u(g) * 3;
      int b = static_cast<int>(a.som.size() / 3) + 1;
      for (int s = 0; s < 8; ++s) {
        float p[3] = {(s & 1 ? t : -t) / 2, (s & 2 ? t : -t) / 2, (s & 4 ? t : -t) / 2};
        float y1 = p[1] * std::cos(ax) - p[2] * std::sin(ax), z1 = p[1] * std::sin(ax) + p[2] * std::cos(ax);
        float x2 = p[0] * std::cos(ay) + z1 * std::sin(ay), z2 = -p[0] * std::sin(ay) + z1 * std::cos(ay);
        a.som.insert(a.som.end(), {c[0] + x2, c[1] + y1, c[2] + z2});
      }
      for (auto f : {std::vector<int>{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}}) {
        for (int& x : f) x += b;
        ff.push_back(f);
      }
    }
    a.faces(ff);
    std::vector<std::array<float, 3>> c(ff.size());
    for (auto& x : c)
      for (float& j : x) j = static_cast<float>(g() % 200 + 55) / 255;
    a.couleurs(c);
    std::vector<octet> image[3];
    int couverts = 0;
    for (int mode : {1, 2}) {
      Monde m(257, 161, 13);
      oeil_courant.oeil[2] = k.oeil_z;
      oeil_courant.proche = k.proche;
      oeil_courant.loin = k.loin;
      lumiere(1, {-3 * k.loin, -2 * k.loin, -4 * k.loin});
      a.v.zbu = mode;
      ASSERT_EQ(rendu_vol(a.pret(-1)), 0);
      image[mode].assign(ima_octets(m.im), ima_octets(m.im) + 3 * 257 * 161);
      couverts = m.couverts();
    }
    int diff = 0;
    for (std::size_t i = 0; i < image[1].size(); i += 3)
      diff += image[1][i] != image[2][i] || image[1][i + 1] != image[2][i + 1] || image[1][i + 2] != image[2][i + 2];
    EXPECT_GT(couverts, 257 * 161 / 10);
    // Where two faces meet at a shared edge their depths may tie on single
    // pixels (with the window depth in 16 bits, whole bands of back faces
    // showed through: a sixth of the picture).
    EXPECT_LT(diff, couverts / 50) << "covered " << couverts;
  }
}
