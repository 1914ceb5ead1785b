// The OpenGL engine under Xvfb and Mesa: pictures read back and checked by
// properties (silhouettes, colour ratios, depth, fog, projections), the
// lights' table and its bounds, and the runtime records against the same
// polygons given one at a time.
#include <random>

#include "gl_outils.h"

namespace {
constexpr float PI = 3.14159265f;

void monde_gl(int w = 200, int h = 200) {
  // Room for ten thousand lights.
  if (piles.dim_obj < 20000) {
    ASSERT_EQ(piles_alloue(100, 10000, 20000, 1000), 0);
  }
  monde();
  drapeaux();
  contexte(w, h);
  vol_rt_tous_libere();
}

// Columns where row y is drawn: first and last.
std::pair<int, int> etendue_x(const Image& im, int y) {
  int a = -1, b = -1;
  for (int x = 0; x < im.w; ++x)
    if (!im.fond(x, y)) {
      if (a < 0) a = x;
      b = x;
    }
  return {a, b};
}
std::pair<int, int> etendue_y(const Image& im, int x) {
  int a = -1, b = -1;
  for (int y = 0; y < im.h; ++y)
    if (!im.fond(x, y)) {
      if (a < 0) a = y;
      b = y;
    }
  return {a, b};
}

Image dessine_rt(Objet* o, const std::function<void(Vol_rt*)>& avant = nullptr) {
  Vol_rt* r = vol_rt_cree(o);
  EXPECT_NE(r, nullptr);
  if (avant) avant(r);
  Image im = scene([&] {
    if (r) aff_rt(r);
  });
  vol_rt_libere(r);
  return im;
}
}  // namespace

TEST(Gl, ProjectionsFocRollAndParallel) {
  monde_gl();
  oeil_courant.projection = 13;
  // Lit without lights: the ambient part alone, but every pixel drawn.
  Objet* o = carre(1, 100, 0, 0, 0);
  // foc 1: 57.75 degrees over the 200 rows, so a square of 200 at 1000
  // spans 200 x 200 / (2 x 1000 x tan(28.875 degrees)) rows.
  Image im = dessine_rt(o);
  double attendu = 200.0 * 200.0 / (2000.0 * std::tan(28.875 * PI / 180));
  auto [y0, y1] = etendue_y(im, 100);
  EXPECT_NEAR(y1 - y0 + 1, attendu, 2.0);
  // Half the focal factor, about twice the size.
  oeil_courant.foc = 0.5f;
  im = dessine_rt(o);
  auto [z0, z1] = etendue_y(im, 100);
  EXPECT_NEAR(z1 - z0 + 1, 200.0 * 200.0 / (2000.0 * std::tan(14.4375 * PI / 180)), 2.0);

  // World y points down the screen: a square below the origin is drawn
  // in the lower half; a roll of 90 degrees takes it to one side.
  auto centre = [](const Image& im) {
    double sx = 0, sy = 0, n = 0;
    for (int y = 0; y < im.h; ++y)
      for (int x = 0; x < im.w; ++x)
        if (!im.fond(x, y)) sx += x, sy += y, ++n;
    return std::pair{sx / n, sy / n};
  };
  Objet* bas = carre(2, 100, 0, 300, 0);
  oeil_courant = Oeil{};
  auto [bx, by] = centre(dessine_rt(bas));
  EXPECT_NEAR(bx, 99.5, 1);
  EXPECT_LT(by, 60);
  oeil_courant.roul = PI / 2;
  auto [rx, ry] = centre(dessine_rt(bas));
  EXPECT_NEAR(ry, 99.5, 1);
  EXPECT_NEAR(std::abs(rx - 99.5), std::abs(by - 99.5), 1.5);
  oeil_courant.roul = -PI / 2;
  EXPECT_NEAR(centre(dessine_rt(bas)).first - 99.5, -(rx - 99.5), 1);
  // Parallel: one world unit a pixel, the origin at the centre, y down.
  oeil_courant = Oeil{};
  oeil_courant.projection = 63;
  Objet* petit = carre(3, 20, 30, 60, 0);
  im = dessine_rt(petit);
  auto [p0, p1] = etendue_x(im, 40);
  EXPECT_NEAR(p1 - p0 + 1, 40, 1);
  EXPECT_NEAR((p0 + p1) / 2.0, 100 + 30, 1);
  auto [r0, r1] = etendue_y(im, 130);
  EXPECT_NEAR((r0 + r1) / 2.0, 100 - 60, 1);
  // Eyes no matrix can be made of leave the matrices alone: no GL error,
  // and the frame still draws.
  for (auto casse : {+[](Oeil& e) { e.foc = 0; }, +[](Oeil& e) { e.proche = 0; },
                     +[](Oeil& e) { e.loin = 0.5f; }, +[](Oeil& e) { e.vise[1] = NAN; }}) {
    oeil_courant = Oeil{};
    casse(oeil_courant);
    while (glGetError() != GL_NO_ERROR) {
    }
    projection_set(1);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  }
  oeil_courant = Oeil{};
  EXPECT_GT(dessine_rt(o).dessines(), 1000);
}

TEST(Gl, LightsTableAndState) {
  monde_gl();
  EXPECT_EQ(lum_id(3377), -1);
  EXPECT_EQ(lum_id(-1), -1);
  lumiere(1, {{86, {10, 20, 30}}, {42, {0.25f}}, {10, {0, 1, 0}}, {26, {0, 0.5f}}, {17, {1, 0.5f, 0.25f}}});
  lumiere(2, {{17, {0, 1, 0}}});  // no position
  // The last position GL held for the second light stays.
  const float avant[4] = {7, 8, 9, 1};
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  glLightfv(GL_LIGHT1, GL_POSITION, avant);
  oeil_courant.oeil[2] = -500;
  EXPECT_EQ(lum_gl(), 0);
  EXPECT_EQ(lum_nb(), 2);
  EXPECT_EQ(lum_table(1)[1], GL_LIGHT1);
  // In eye space with y and z turned; the one attenuation value in all
  // three terms; the cone in degrees.
  float p[4], a[3], d[3], c, dif[4];
  glGetLightfv(GL_LIGHT0, GL_POSITION, p);
  proche(p, {10, -20, -530, 1});
  glGetLightfv(GL_LIGHT0, GL_CONSTANT_ATTENUATION, a);
  glGetLightfv(GL_LIGHT0, GL_LINEAR_ATTENUATION, a + 1);
  glGetLightfv(GL_LIGHT0, GL_QUADRATIC_ATTENUATION, a + 2);
  proche(a, {0.25f, 0.25f, 0.25f});
  glGetLightfv(GL_LIGHT0, GL_SPOT_DIRECTION, d);
  EXPECT_FLOAT_EQ(d[1], -1);
  glGetLightfv(GL_LIGHT0, GL_SPOT_CUTOFF, &c);
  EXPECT_NEAR(c, 28.647888, 1e-4);
  glGetLightfv(GL_LIGHT0, GL_DIFFUSE, dif);
  EXPECT_FLOAT_EQ(dif[1], 0.5f);
  glGetLightfv(GL_LIGHT1, GL_POSITION, p);
  proche(p, {7, 8, 9});
  EXPECT_TRUE(glIsEnabled(GL_LIGHT1));
  EXPECT_FALSE(glIsEnabled(GL_LIGHT2));
  std::string s = sortie_de([] { lum_voir(); });
  EXPECT_NE(s.find("0: \tPOSITION"), std::string::npos) << s;
  EXPECT_NE(s.find("\tQUADRATIC_ATTENUATION 0.250000\n"), std::string::npos) << s;
  EXPECT_NE(s.find("2: off\n"), std::string::npos) << s;
  lum_eteindre();
  EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
  EXPECT_EQ(lum_nb(), 0);
}

TEST(Gl, TooManyLightsKeepTheFirstHundred) {
  monde_gl();
  for (int n : {101, 10000}) {
    objets_vide();
    for (int i = 1; i <= n; ++i) lumiere(i, {{86, {0, 0, static_cast<float>(-i)}}});
    int r = 0;
    std::string s = sortie_de([&] { r = lum_gl(); });
    EXPECT_EQ(r, -1);
    EXPECT_EQ(s, "Trop de lumieres\x07\n");
    EXPECT_EQ(lum_nb(), 100);
    EXPECT_EQ(lum_table(99)[0], 100);
    EXPECT_TRUE(glIsEnabled(GL_LIGHT7));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  }
  // The frame goes on: a lit square still draws.
  Objet* o = carre(1, 50, 0, 0, 0);
  Image im = dessine_rt(o);
  EXPECT_GT(im.dessines(), 1000);
}

// A square lit head-on against one turned by 60 degrees: the diffuse part
// halves (cos 60), in flat and in smooth shading, by both roads.
TEST(Gl, HeadOnAgainstSixtyDegrees) {
  monde_gl(300, 200);
  lumiere(1, {{86, {0, 0, -1e6f}}});
  Objet* face = carre(1, 50, -80, 0, 0);  // parallel: a unit a pixel
  const float c60 = 0.5f, s60 = 0.8660254f;
  std::vector<float> s;
  for (auto [x, y] : {std::pair{-50.f, -50.f}, {-50.f, 50.f}, {50.f, 50.f}, {50.f, -50.f}})
    s.insert(s.end(), {80 + x * c60, y, x * s60});
  Objet* tourne = volume_de(s, {{1, 2, 3, 4}}, 2);
  const float gris[3] = {0.5f, 0.5f, 0.5f};
  for (float type : {1.f, 2.f, -1.f, -2.f}) {
    for (Objet* o : {face, tourne}) {
      vol_coul_ecrit(o, gris);
      vol_illum_ecrit(o, std::vector<float>{type, 1, 0, 0, 0}.data(), 5);
    }
    Vol_rt* a = vol_rt_cree(face);
    Vol_rt* b = vol_rt_cree(tourne);
    Image im = scene([&] {
      lum_gl();
      aff_rt(nullptr);
    });
    // Ambient: light model 0.2 x material 0.2.
    double amb = 0.04 * 255;
    double tete = im.r(150 - 80, 100), biais = im.r(150 + 80, 100);
    EXPECT_NEAR((tete - amb) / (biais - amb), 2.0, 0.1) << "type " << type << ": " << tete << " " << biais;
    EXPECT_NEAR(tete, 0.54 * 255, 3);
    vol_rt_libere(a);
    vol_rt_libere(b);
  }
  vol_rt_tous_libere();
}

// Method 1 and the runtime record give the picture of the polygons sent one
// at a time, for a sphere in flat and smooth shading and for its edges.
TEST(Gl, RecordDrawsWhatPolygonsWould) {
  monde_gl();
  lumiere(1, {{86, {-300, -400, -900}}, {17, {1, 1, 1}}});
  Objet* o = volume(1);
  ASSERT_EQ(vol_sphere(o, 24, 12, 80), 0);
  const float c[3] = {0.9f, 0.6f, 0.3f};
  vol_coul_ecrit(o, c);
  for (float type : {1.f, 2.f, 0.f, -3.f}) {
    float il[5] = {type, 0.8f, 0.5f, 20, 0};
    vol_illum_ecrit(o, il, 5);
    int ns, d;
    const float* som = vol_som(o, &ns, &d);
    mot* nf = gen_normale_fac(o, nullptr, 1, 1);
    mot* nsm = gen_normale_som(o, nullptr, 1);
    Vol_aff v;
    v.mode = type == 0 ? 0 : 1;
    v.type = static_cast<int>(type);
    v.som = som, v.ns = ns, v.dim = d;
    v.fac = vol_fac(o), v.nf = v.fac[2];
    v.n_fac = reels(valeur_de(nf) + 4), v.n_som = reels(valeur_de(nsm) + 4), v.pas_n = valeur_de(nf)[3];
    v.coul = c, v.illum = il;
    Image un = scene([&] {
      lum_gl();
      aff_gl_vol(v);
    });
    Image rt = dessine_rt(o, [](Vol_rt*) { lum_gl(); });
    long diff = 0, dessines = un.dessines();
    for (std::size_t i = 0; i < un.p.size(); ++i) diff += std::abs(un.p[i] - rt.p[i]) > 3;
    EXPECT_GT(dessines, type == 0 ? 500 : 10000) << type;
    // Shared fan edges may round differently on a few pixels.
    EXPECT_LT(diff, dessines / 100 + 10) << "type " << type;
    EXPECT_TRUE(un.fond(5, 5) && rt.fond(5, 5));
  }
}

TEST(Gl, DepthTransparencyAndSides) {
  monde_gl();
  lumiere(1, {{86, {0, 0, -1e6f}}});
  Objet* loin = carre(1, 60, 0, 0, 100);
  Objet* pres = carre(2, 30, 0, 0, 0);
  const float rouge[3] = {1, 0, 0}, vert[3] = {0, 1, 0};
  vol_coul_ecrit(loin, rouge);
  vol_coul_ecrit(pres, vert);
  // Whichever is drawn last, the nearer square wins the depth test.
  Vol_rt* a = vol_rt_cree(loin);
  Vol_rt* b = vol_rt_cree(pres);
  for (int ordre = 0; ordre < 2; ++ordre) {
    const Vol_rt* l[2] = {ordre ? a : b, ordre ? b : a};
    vol_rt_selection(l, 2);
    Image im = scene([] {
      lum_gl();
      aff_rt(nullptr);
    });
    EXPECT_GT(im.at(100, 100)[1], 100);
    EXPECT_LT(im.at(100, 100)[0], 20);  // the ambient part
    EXPECT_GT(im.r(100, 100 + 40), 100);
    EXPECT_TRUE(im.fond(2, 2));
  }
  vol_rt_selection(nullptr, 0);
  // Transparency exactly 0 is opaque without blending; 0.0001 blends with
  // alpha 0.9999, so the picture barely moves.
  for (float t : {0.f, 0.0001f, 0.5f}) {
    vol_illum_ecrit(pres, std::vector<float>{1, 1, 0, 0, t}.data(), 5);
    vol_rt_libere(b);
    b = vol_rt_cree(pres);
    Image im = scene([&] {
      lum_gl();
      aff_rt(a);
      aff_rt(b);
      float m[4];
      glGetMaterialfv(GL_FRONT, GL_DIFFUSE, m);
      EXPECT_FLOAT_EQ(m[3], 1 - t);
      EXPECT_EQ(glIsEnabled(GL_BLEND), t != 0);
    });
    if (t < 0.01f) EXPECT_LT(im.r(100, 100), 20);
    else EXPECT_GT(im.r(100, 100), 80);
  }
  // A square seen from behind: type -1 lights its back with its colour,
  // type 1 leaves the back to GL's default grey material.
  Objet* dos = volume_de({-40, -40, 0, 40, -40, 0, 40, 40, 0, -40, 40, 0}, {{1, 2, 3, 4}}, 3);
  vol_coul_ecrit(dos, rouge);
  for (float type : {1.f, -1.f}) {
    vol_illum_ecrit(dos, std::vector<float>{type}.data(), 1);
    Image im = dessine_rt(dos, [](Vol_rt*) { lum_gl(); });
    const unsigned char* p = im.at(100, 100);
    if (type < 0) EXPECT_TRUE(p[0] > 200 && p[1] < 20) << int(p[0]) << " " << int(p[1]);
    else EXPECT_TRUE(p[0] > 150 && std::abs(p[0] - p[1]) < 5) << int(p[0]) << " " << int(p[1]);
  }
}

TEST(Gl, FogOnAndOff) {
  monde_gl();
  Objet* o = carre(1, 50, 0, 0, 0);
  vol_illum_ecrit(o, std::vector<float>{0}.data(), 1);
  auto centre = [&] { return dessine_rt(o, [](Vol_rt*) {}); };
  // Unlit wire square: its edges are white without fog.
  Image sans = centre();
  auto [x0, x1] = etendue_x(sans, 100);
  ASSERT_GE(x0, 0);
  EXPECT_EQ(sans.at(x0, 100)[1], 255);
  // Linear fog ending before the square at 1000: all fog colour.
  brouillard_etat.actif = true;
  brouillard_etat.coul[0] = 1, brouillard_etat.coul[1] = 0, brouillard_etat.coul[2] = 0;
  brouillard_etat.debut = 0, brouillard_etat.fin = 500;
  brouillard_applique();
  Image avec = centre();
  EXPECT_EQ(avec.at(x0, 100)[0], 255);
  EXPECT_EQ(avec.at(x0, 100)[1], 0);
  EXPECT_TRUE(avec.fond(2, 2));  // fog colours what is drawn, not the background
  // Exponential with a small density: in between.
  brouillard_etat.loi = 1, brouillard_etat.densite = 0.001f;
  brouillard_applique();
  Image exp = centre();
  int g = exp.at(x0, 100)[1];
  EXPECT_NEAR(g, 255 * std::exp(-1.0), 4);
  brouillard_etat.actif = false;
  brouillard_applique();
  EXPECT_EQ(centre().at(x0, 100)[1], 255);
}

TEST(Gl, RecordsMovePointsCloudsFollowersAndSurfaces) {
  monde_gl();
  Objet* o = carre(1, 20, 0, 0, 0);
  vol_illum_ecrit(o, std::vector<float>{0}.data(), 1);
  Vol_rt* r = vol_rt_cree(o);
  auto x_de = [&](Vol_rt* x) {
    Image im = scene([&] { aff_rt(x); });
    auto [a, b] = etendue_x(im, 100);
    return (a + b) / 2.0;
  };
  double x0 = x_de(r);
  EXPECT_NEAR(x0, 100, 1.5);
  // The loop rewrites the vertices and says so.
  for (int k = 0; k < 4; ++k) r->som[3 * k] += 50;
  vol_rt_som_change(r);
  EXPECT_NEAR(x_de(r), x0 + 50, 1.5);
  // Placing: the pivot moves it back.
  r->pivot[0] = -50;
  EXPECT_NEAR(x_de(r), x0, 1.5);
  // A follower carried by a skeleton is drawn under its carrier's matrix,
  // moved by its anchor: at -50 + 80 on the screen's x.
  Objet* p = carre(2, 5, 0, 0, 0);
  vol_illum_ecrit(p, std::vector<float>{0}.data(), 1);
  Vol_rt* f = vol_rt_cree(p);
  f->porte = true;
  f->pivot[0] = 1000;  // a carried volume turns about its pivot, and comes back
  f->ancre[0] = 80;
  ASSERT_EQ(vol_rt_suiveur(r, f), 0);
  Image im = scene([] { aff_rt(nullptr); });
  EXPECT_FALSE(im.fond(130, 105));
  EXPECT_TRUE(im.fond(130, 100));
  EXPECT_FALSE(im.fond(static_cast<int>(x0) - 20, 100));
  // A cycle of followers is cut, not followed for ever.
  vol_rt_suiveur(f, r);
  r->porte = false;
  scene([] { aff_rt(nullptr); });
  vol_rt_libere(f);
  EXPECT_EQ(r->suiv_nb, 0);
  // Points (b86) are never drawn.
  Objet* pts = carre(3, 40, 0, 0, 0);
  pts->sous_type = B_SOM;
  EXPECT_EQ(dessine_rt(pts).dessines(), 0);
  // A cloud draws its vertices as points.
  pts->sous_type = B_NUAGE;
  EXPECT_GE(dessine_rt(pts).dessines(), 4);
  // NaN and infinite vertices: drawn or dropped by GL, never a crash,
  // and the next frame draws.
  Objet* nan = volume_de({0, 0, 0, NAN, 1, 0, INFINITY, 5, 0, 1, -INFINITY, 0}, {{1, 2, 3, 4}}, 4);
  dessine_rt(nan, [](Vol_rt*) { lum_gl(); });
  EXPECT_GT(dessine_rt(o).dessines(), 10);
  // A NURBS surface of 4 x 5 control points in a plane facing the eye.
  std::vector<float> g;
  for (int j = 0; j < 5; ++j)
    for (int i = 0; i < 4; ++i) g.insert(g.end(), {-60.f + 40 * i, -60.f + 30 * j, 0});
  Objet* n = volume_de(g, {}, 5);
  Vol_rt* s = vol_rt_cree(n);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_rt_nurbs(s, 3, 5), -1); }), "3 x 5: M81\n");
  ASSERT_EQ(vol_rt_nurbs(s, 4, 5), 0);
  im = scene([&] {
    lum_gl();
    aff_rt(s);
  });
  EXPECT_FALSE(im.fond(100, 100));
  EXPECT_TRUE(im.fond(2, 2));
  // Faces naming missing vertices are refused with a message.
  Objet* faux = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {}, 6);
  auto fb = faces({{1, 2, 7}});
  mot* att = attribut_prepare(faux, 1, std::vector<mot>{1, B_FAC}.data(), fb[0]);
  std::copy(fb.begin(), fb.end(), valeur_de(att));
  att[1] = BLOC_PHRASE;
  std::string m = sortie_de([&] { EXPECT_EQ(vol_rt_cree(faux), nullptr); });
  EXPECT_NE(m, "");
  vol_rt_tous_libere();
}

// Random large meshes with odd values: a 1 x 1 window, faces of 257
// vertices, huge coordinates.
TEST(Gl, OddWindowsAndRandomMeshes) {
  monde_gl(1, 1);
  Objet* o = carre(1, 1e4f, 0, 0, 0);
  vol_illum_ecrit(o, std::vector<float>{2}.data(), 1);
  // Parallel needs two pixels a side: with one, the matrices stay.
  while (glGetError() != GL_NO_ERROR) {
  }
  dessine_rt(o, [](Vol_rt*) { lum_gl(); });
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  oeil_courant.projection = 13;
  Image im = dessine_rt(o, [](Vol_rt*) { lum_gl(); });
  EXPECT_FALSE(im.fond(0, 0));
  contexte();
  std::mt19937 gen(13);
  std::uniform_real_distribution<float> u(-3e3f, 3e3f);
  for (int essai = 0; essai < 5; ++essai) {
    int n = 257 + essai * 1000;
    std::vector<float> s;
    std::vector<int> f;
    for (int i = 0; i < n; ++i) {
      float t = 2 * PI * i / n;
      s.insert(s.end(), {80 * std::cos(t), 80 * std::sin(t), essai == 4 ? u(gen) * 1e30f : 0});
      f.push_back(n - i);
    }
    Objet* v = volume_de(s, {f}, 10 + essai);
    vol_illum_ecrit(v, std::vector<float>{static_cast<float>(essai % 3 + 1)}.data(), 1);
    Image p = dessine_rt(v, [](Vol_rt*) { lum_gl(); });
    if (essai < 4) {
      EXPECT_FALSE(p.fond(100, 100)) << n;
      EXPECT_TRUE(p.fond(100, 190)) << n;
    }
  }
}

// A surface of lines (b79) follows its sources through their placing of the
// frame, and its pins through another record's; a NURBS surface samples as
// asked, and refuses values that are not finite.
TEST(Gl, SurfaceOfLinesFollowsSourcesAndPinsNurbsSampling) {
  monde_gl();
  Objet* a = carre(1, 20, 0, 0, 0);
  Objet* b = carre(2, 10, 300, -70, 40);
  Objet* n = carre(3, 1, 0, 0, 0);
  std::vector<float> huit(24, 0.f);
  ASSERT_EQ(vol_som_ecrit(n, huit.data(), 8, 3), 0);
  n->sous_type = 79;
  Vol_rt* ra = vol_rt_cree(a);
  Vol_rt* rb = vol_rt_cree(b);
  Vol_rt* rn = vol_rt_cree(n);
  ASSERT_TRUE(ra && rb && rn);
  ra->pivot[0] = 41.5f, ra->pivot[1] = -17.25f;
  rb->rot[2] = 90;  // about z, in the order 312
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_rt_source(ra, rb), -1); }), "M81\n");
  ASSERT_EQ(vol_rt_source(rn, ra), 0);
  ASSERT_EQ(vol_rt_source(rn, rb), 0);
  const float p[3] = {5, 0, 0};
  EXPECT_NE(sortie_de([&] { EXPECT_EQ(vol_rt_epingle(rn, 9, rb, p), -1); }), "");
  ASSERT_EQ(vol_rt_epingle(rn, 8, rb, p), 0);
  scene([] {
    lum_gl();
    aff_rt(nullptr);
  });
  // The first four: a's corners moved by its pivot.
  for (int k = 0; k < 4; ++k) {
    EXPECT_NEAR(rn->som[3 * k], ra->som[3 * k] + 41.5f, 0.01f);
    EXPECT_NEAR(rn->som[3 * k + 1], ra->som[3 * k + 1] - 17.25f, 0.01f);
    EXPECT_NEAR(rn->som[3 * k + 2], ra->som[3 * k + 2], 0.01f);
  }
  // The next: b's corners turned a quarter about z (x, y) -> (-y, x).
  for (int k = 0; k < 3; ++k) {
    EXPECT_NEAR(rn->som[3 * (4 + k)], -rb->som[3 * k + 1], 0.02f);
    EXPECT_NEAR(rn->som[3 * (4 + k) + 1], rb->som[3 * k], 0.02f);
  }
  // The pin: (5, 0, 0) in b's frame is (0, 5, 0).
  EXPECT_NEAR(rn->som[21], 0, 0.02f);
  EXPECT_NEAR(rn->som[22], 5, 0.02f);
  // A source freed is forgotten by the surface.
  vol_rt_libere(rb);
  scene([] { aff_rt(nullptr); });
  // NURBS sampling: coarse and fine both draw the surface; NaN is refused.
  std::vector<float> g;
  for (int j = 0; j < 4; ++j)
    for (int i = 0; i < 4; ++i) g.insert(g.end(), {-60.f + 40 * i, -60.f + 40 * j, 0});
  Vol_rt* s = vol_rt_cree(volume_de(g, {}, 5));
  ASSERT_EQ(vol_rt_nurbs(s, 4, 4), 0);
  EXPECT_NE(sortie_de([&] { EXPECT_EQ(vol_rt_nurbs_pas(s, NAN, 1, 1), -1); }), "");
  EXPECT_NE(sortie_de([&] { EXPECT_EQ(vol_rt_nurbs_pas(ra, 1, 1, 1), -1); }), "");
  for (float u : {1.f, 37.f, 1e9f}) {
    ASSERT_EQ(vol_rt_nurbs_pas(s, u, u, 0), 0);
    Image im = scene([&] {
      lum_gl();
      aff_rt(s);
    });
    EXPECT_FALSE(im.fond(100, 100)) << u;
    EXPECT_TRUE(im.fond(2, 2)) << u;
  }
  ASSERT_EQ(vol_rt_nurbs_pas(s, 0, 0, 3.5f), 0);
  EXPECT_FALSE(scene([&] { aff_rt(s); }).fond(100, 100));
  vol_rt_tous_libere();
}
