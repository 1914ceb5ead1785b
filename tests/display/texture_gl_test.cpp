// Textures through OpenGL under Xvfb and Mesa: a checker image on the face
// of a cube read back at known places, the table's one name per image,
// textures read from files replacing the old one only once they exist, and
// the bad inputs (unknown extension, capitals, no file, not an image, an
// image that does not exist) ending in a message with the old state kept.
#include <filesystem>
#include <fstream>
#include <random>

#include "gl_outils.h"
#include "display/aff_rt.h"
#include "image/image.h"

namespace {
// The four quadrants of the checker: red, green, blue, white.
constexpr octet QUART[4][3] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};

// A w x h image of four quadrants, turned by `tour` places.
mot* damier(int w, int h, int tour = 0) {
  mot* b = ima_alloue(w, h);
  for (int y = 0; y < h; ++y) {
    octet* r = ima_rouge(b, y);
    for (int x = 0; x < w; ++x) {
      int q = ((x >= w / 2) + 2 * (y >= h / 2) + tour) % 4;
      for (int c = 0; c < 3; ++c) r[x + c * w] = QUART[q][c];
    }
  }
  return b;
}

// A cube of side 2a centred at the origin.
Objet* cube(int numero, float a) {
  return volume_de({-a, -a, -a, a, -a, -a, a, a, -a, -a, a, -a, -a, -a, a, a, -a, a, a, a, a, -a, a, a},
                   {{1, 4, 3, 2}, {5, 6, 7, 8}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 4, 8, 7}, {4, 1, 5, 8}}, numero);
}

void monde_tex() {
  if (piles.dim_obj < 20000) {
    ASSERT_EQ(piles_alloue(100, 10000, 20000, 1000), 0);
  }
  monde();
  drapeaux();
  etats[1][54] = 1;
  contexte(200, 200);
  vol_rt_tous_libere();
  textures_libere();
}

// The quadrant whose colour a pixel shows, or -1.
int quart(const Image& im, int x, int y) {
  const unsigned char* p = im.at(x, y);
  for (int q = 0; q < 4; ++q) {
    bool ok = true;
    for (int c = 0; c < 3; ++c) ok = ok && (QUART[q][c] ? p[c] > 60 : p[c] < 30);
    if (ok) return q;
  }
  return -1;
}

// Unlit, so that the texture's own colours show: type 0 draws edges, so a
// lit type with a head-on light of full strength and no ambient part.
Image dessine(Vol_rt* r) {
  return scene([&] {
    lum_gl();
    aff_rt(r);
  });
}

TEST(TextureGl, DamierSurUnCube) {
  monde_tex();
  lumiere(1, {{86, {0, 0, -1000}}, {17, {1, 1, 1}}});
  ASSERT_EQ(ima_installe(3, damier(64, 64)), 0);
  Objet* o = cube(1, 50);
  const float il[5] = {1, 1, 0, 0, 0};
  vol_illum_ecrit(o, il, 5);
  const float t[1] = {3};
  attribut_ecrit_1(o, 1, 54, t, 1, 1);
  Vol_rt* r = vol_rt_cree(o);
  ASSERT_NE(r, nullptr);
  EXPECT_EQ(textures_nb(), 1);
  EXPECT_GE(r->tex, 0);
  EXPECT_EQ(r->tex, texture_nom(3));
  Image im = dessine(r);
  // The face towards the eye covers 100 x 100 pixels at the centre; each of
  // its quarters shows one quadrant, all four different.
  // Opposite quarters show opposite quadrants of the image (no mirror
  // breaks the square).
  int q[4] = {quart(im, 75, 75), quart(im, 125, 75), quart(im, 75, 125), quart(im, 125, 125)};
  for (int k = 0; k < 4; ++k) ASSERT_GE(q[k], 0) << k;
  EXPECT_NE(q[0], q[1]);
  EXPECT_EQ(q[0] ^ q[3], 3);
  EXPECT_EQ(q[1] ^ q[2], 3);
  EXPECT_TRUE(im.fond(20, 20) && im.fond(180, 180));
  // A second making of the same image makes no new GL name.
  long faits = textures_noms_faits();
  EXPECT_EQ(textures_creer(3), 0);
  EXPECT_EQ(textures_creer(0), 0);
  EXPECT_EQ(textures_noms_faits(), faits);
  // With flag [54] off nothing is drawn textured: the face is plain.
  etats[1][54] = 0;
  Image plain = dessine(r);
  EXPECT_EQ(quart(plain, 75, 75), 3);
  etats[1][54] = 1;

  // A texture from a file replaces the image's: turned quadrants.
  std::filesystem::path d = std::filesystem::temp_directory_path() / ("orvane-tex-" + std::to_string(getpid()));
  std::filesystem::create_directories(d);
  std::string base = (d / "tour").string();
  mot* b = damier(32, 32, 1);
  ASSERT_EQ(ima_ecrit_bmp(b, (base + ".bmp").c_str()), 0);
  ASSERT_EQ(ima_ecrit_png(b, (base + ".png").c_str()), 0);
  bloc_libere(b);
  int ancien = r->tex;
  // Bad inputs first: each leaves the old texture in use.
  for (const char* e : {"BMP", "gif"})
    EXPECT_EQ(sortie_de([&] { EXPECT_EQ(charger_texture(base.c_str(), e, 3), -1); }), std::string("M104\n") + e + "\n");
  {
    std::ofstream f(d / "texte.jpg");
    f << "ceci n'est pas une image\n";
    std::ofstream g(d / "vide.bmp", std::ios::binary);
    // A header of width 0.
    unsigned char h[54] = {'B', 'M', 54, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 1, 0, 24, 0};
    g.write(reinterpret_cast<char*>(h), sizeof h);
    std::ofstream k(d / "court.raw", std::ios::binary);
    k << "xyz";
  }
  for (auto [n, e] : {std::pair{"texte", "jpg"}, {"vide", "bmp"}, {"court", "raw"}, {"absent", "bmp"}})
    EXPECT_NE(sortie_de([&] { EXPECT_EQ(charger_texture((d / n).c_str(), e, 3), -1); }), "") << n;
  EXPECT_EQ(texture_nom(3), ancien);
  Image encore = dessine(r);
  EXPECT_EQ(quart(encore, 75, 75), q[0]);
  // Without a selector the file is only read.
  EXPECT_EQ(charger_texture(base.c_str(), "png", 0), 0);
  EXPECT_EQ(r->tex, ancien);
  // Now the real one: a new name, the record follows, the quarters turn.
  EXPECT_EQ(charger_texture(base.c_str(), "bmp", 3), 0);
  EXPECT_NE(r->tex, ancien);
  EXPECT_EQ(r->tex, texture_nom(3));
  Image tourne = dessine(r);
  int q2[4] = {quart(tourne, 75, 75), quart(tourne, 125, 75), quart(tourne, 75, 125), quart(tourne, 125, 125)};
  for (int k = 0; k < 4; ++k) EXPECT_EQ(q2[k], (q[k] + 1) % 4) << k;
  EXPECT_EQ(textures_nb(), 1);
  vol_rt_libere(r);
  std::filesystem::remove_all(d);
}

TEST(TextureGl, ImageAbsenteEtCoordonneesDonnees) {
  monde_tex();
  Objet* o = cube(1, 50);
  const float t[1] = {77};
  attribut_ecrit_1(o, 1, 54, t, 1, 1);
  // An image that does not exist: the message, and the volume abandoned.
  std::string s = sortie_de([&] { EXPECT_EQ(vol_rt_cree(o), nullptr); });
  EXPECT_EQ(s, "77: M9\n");
  EXPECT_EQ(textures_nb(), 0);
  // Coordinates given per vertex: a face of one vertex's colour only.
  ASSERT_EQ(ima_installe(4, damier(16, 16)), 0);
  std::vector<float> c{4};
  for (int i = 0; i < 8; ++i) c.insert(c.end(), {0.1f, 0.1f});
  attribut_ecrit_1(o, 1, 54, c.data(), static_cast<int>(c.size()), 1);
  lumiere(1, {{86, {0, 0, -1000}}, {17, {1, 1, 1}}});
  Vol_rt* r = vol_rt_cree(o);
  ASSERT_NE(r, nullptr);
  Image im = dessine(r);
  EXPECT_EQ(quart(im, 60, 60), 0);
  EXPECT_EQ(quart(im, 140, 140), 0);
  vol_rt_libere(r);
}
// A face's own list against the volume's: the face toward the eye shows
// its own image (the checker turned by two), the others the volume's; each
// GL name made is deleted with its record, many times over.
TEST(TextureGl, ParFaceEtNomsRendus) {
  monde_tex();
  lumiere(1, {{86, {0, 0, -1000}}, {17, {1, 1, 1}}});
  ASSERT_EQ(ima_installe(3, damier(64, 64)), 0);
  ASSERT_EQ(ima_installe(4, damier(64, 64, 2)), 0);
  const float il[5] = {1, 1, 0, 0, 0};
  const float t[1] = {3}, f[1] = {4};
  Objet* o = cube(1, 50);
  vol_illum_ecrit(o, il, 5);
  attribut_ecrit_1(o, 1, 54, t, 1, 1);
  Vol_rt* r = vol_rt_cree(o);
  ASSERT_NE(r, nullptr);
  Image seul = dessine(r);
  vol_rt_libere(r);
  attribut_ecrit_2(o, 1, 54, 1, 15, f, 1, 1);
  r = vol_rt_cree(o);
  ASSERT_NE(r, nullptr);
  EXPECT_EQ(textures_nb(), 2);
  ASSERT_EQ(r->gl->tex_fac.size(), 6u);
  EXPECT_EQ(r->gl->tex_fac[0], texture_nom(4));
  for (int i = 1; i < 6; ++i) EXPECT_EQ(r->gl->tex_fac[i], texture_nom(3)) << i;
  Image im = dessine(r);
  const int xy[4][2] = {{75, 75}, {125, 75}, {75, 125}, {125, 125}};
  for (auto [x, y] : xy) {
    ASSERT_GE(quart(seul, x, y), 0);
    EXPECT_EQ(quart(im, x, y), (quart(seul, x, y) + 2) % 4) << x << " " << y;
  }
  vol_rt_libere(r);

  std::vector<GLuint> anciens;
  long faits = textures_noms_faits();
  std::mt19937 g(31);
  for (int tour = 0; tour < 5; ++tour) {
    for (GLuint n : anciens) EXPECT_FALSE(glIsTexture(n)) << n;
    anciens.clear();
    for (int n = 10; n < 40; ++n) ASSERT_EQ(ima_installe(n, damier(1 + g() % 200, 1 + g() % 50, n)), 0);
    EXPECT_EQ(textures_creer(0), 0);
    for (int n = 10; n < 40; ++n) {
      ASSERT_TRUE(texture_nom(n) > 0 && glIsTexture(static_cast<GLuint>(texture_nom(n)))) << n;
      anciens.push_back(static_cast<GLuint>(texture_nom(n)));
    }
    EXPECT_EQ(texture_nom(9), -1);
    textures_libere();
    EXPECT_EQ(textures_nb(), 0);
  }
  for (GLuint n : anciens) EXPECT_FALSE(glIsTexture(n)) << n;
  // Images 3 and 4 were made already before the first round.
  EXPECT_EQ(textures_noms_faits() - faits, 5 * 30 + 4 * 2);
}
}  // namespace
