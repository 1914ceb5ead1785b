// Pigments: a pigment with no type, the reading of pigment lists with
// their bad entries, and each of the 19 evaluators on a lit sphere
// drawn by the software renderer, saved as a PNG (in $ORVANE_PIGMENTS when
// set), distinct from the others and the same after the tables are made
// again, as they are at every start.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "display/aff_interne.h"
#include "display/moteurs.h"
#include "display/oeil.h"
#include "display/rendu_interne.h"
#include "geom/geom.h"
#include "tests/image/outils.h"
#include "tests/outils/blocs.h"

namespace {

TEST(Pigment, SansTypeEtCartesHorsBornes) {
  monde_ima();
  // No type given: said, and the default type with its map; a pigment
  // already post-processed is left alone.
  Pigment* p = Create_Pigment();
  EXPECT_EQ(sortie_de([&] { Post_Pigment(p); }), "No pigment type given \n");
  EXPECT_EQ(p->type, 1);
  EXPECT_NE(p->carte, nullptr);
  p->type = 7;
  EXPECT_EQ(sortie_de([&] { Post_Pigment(p); }), "");
  EXPECT_EQ(p->type, 7);
  delete p;
  EXPECT_EQ(carte_coul(-1), nullptr);
  EXPECT_EQ(carte_coul(CARTES_NB), nullptr);
}

TEST(Pigment, ListesEtEntreesFausses) {
  monde_ima();
  Free_Noise_Tables();
  static Pigment out[PIGMENTS_MAX];
  // A whole element: every field in record order.
  mot* a = vecteur({105, 3, 0.7f, 3, 4.9f, 2.5f, 0.25f, 1, 2, 3, 9, 8, 7, 6, 0.1f, 0.2f, 0.3f, 99});
  EXPECT_EQ(pigments_lit(a, out, PIGMENTS_MAX), 1);
  EXPECT_TRUE(bruit.pret);  // the tables made on the first use
  // Fields in record order: the map, the octaves, turbulence, fields, ratios.
  const Pigment& p = out[0];
  EXPECT_EQ(p.type, 5);
  EXPECT_EQ(p.carte, carte_coul(3));
  EXPECT_EQ(p.octaves, 4);
  EXPECT_EQ(p.phase, 0.25);
  EXPECT_EQ(p.turbulence[2], 3);
  EXPECT_EQ(p.champs[3], 6);
  EXPECT_FLOAT_EQ(p.rapports[2], 0.3f);
  // A short element: the missing values are 0; the entry -1 is the type's map.
  EXPECT_EQ(pigments_lit(vecteur({108, -1, 0.25f}), out, PIGMENTS_MAX), 1);
  EXPECT_EQ(out[0].type, 8);
  EXPECT_EQ(out[0].lambda, 0);
  EXPECT_EQ(out[0].champs[0], 1);  // the checker's square by default
  EXPECT_NE(out[0].carte, nullptr);
  // A list: values outside 10..119 are passed on, a string names the
  // pigment before it, 10 holds a colour, 100 has no type.
  std::string s;
  mot* l = blocs({vecteur({9.99f, 1}), vecteur({119, 90}), chaine("nuages"), vecteur({120}), vecteur({10, .2f, .4f}),
                  chaine("x"), vecteur({-5}), vecteur({100, 0})});
  s = sortie_de([&] { EXPECT_EQ(pigments_lit(l, out, PIGMENTS_MAX), 3); });
  EXPECT_EQ(s, "No pigment type given \n");
  EXPECT_EQ(out[0].type, 19);
  EXPECT_EQ(out[0].carte, carte_coul(90));
  EXPECT_STREQ(out[0].nom, "nuages");
  EXPECT_EQ(out[1].type, -1);
  EXPECT_FLOAT_EQ(out[1].coul[1], .4f);
  EXPECT_EQ(out[1].coul[2], 0);
  EXPECT_STREQ(out[1].nom, "x");
  EXPECT_EQ(out[2].type, 1);
  float rgb[3];
  const float pt[3] = {1, 2, 3};
  pigment_couleur(out[1], pt, rgb);
  EXPECT_FLOAT_EQ(rgb[0], .2f);
  // Entries out of range: the value, then message 1:14, and failure.
  const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
  for (auto [e, texte] : std::vector<std::pair<float, std::string>>{
           {91, "91: "}, {-2, "-2: "}, {1e30f, "2147483647: "}, {-7.5e9f, "-2147483647: "}, {nan, "0: "}, {inf, "0: "}}) {
    s = sortie_de([&] { EXPECT_EQ(pigments_lit(vecteur({112, e, 1, 2}), out, PIGMENTS_MAX), -1); });
    EXPECT_EQ(s, texte + "M1:14\n") << e;
  }
  // A list that stops at its bad element; a 101st pigment.
  s = sortie_de([&] { EXPECT_EQ(pigments_lit(blocs({vecteur({101, 1}), vecteur({102, 200})}), out, 100), -1); });
  EXPECT_EQ(s, "200: M1:14\n");
  std::vector<mot*> cent;
  for (int i = 0; i < 101; ++i) cent.push_back(vecteur({static_cast<float>(101 + i % 19), -1}));
  s = sortie_de([&] { EXPECT_EQ(pigments_lit(blocs(cent), out, PIGMENTS_MAX), -1); });
  EXPECT_EQ(s, "101: M0:105\n");
  cent.pop_back();
  EXPECT_EQ(pigments_lit(blocs(cent), out, PIGMENTS_MAX), 100);
  // Values that are not finite or huge give a pigment that still colours.
  std::mt19937 g(104);
  std::uniform_real_distribution<float> u(-1e6f, 1e6f);
  for (int k = 0; k < 300; ++k) {
    std::vector<float> x{static_cast<float>(100 + k % 20), static_cast<float>(k % 92 - 1)};
    for (int j = 0; j < 16; ++j) x.push_back(j == k % 16 ? (k & 1 ? nan : inf) : u(g));
    ASSERT_EQ(sortie_de([&] { EXPECT_EQ(pigments_lit(vecteur(x), out, PIGMENTS_MAX), 1); }).size() <= 23, true);
    for (float q : {0.f, 1e7f, -3e9f, 1e30f}) {
      const float pq[3] = {q, u(g), q * 0.5f};
      pigment_couleur(out[0], pq, rgb);
      for (float c : rgb) ASSERT_TRUE(c >= 0 && c <= 1) << k;
    }
  }
}

// A lit sphere of radius 80 at the centre of a 160 x 160 working image,
// with a list of one pigment of the given type, drawn with smooth normals.
struct Sphere {
  Objet* o = nullptr;
  std::vector<float> som, nsom;
  std::vector<mot> fac;
  float coul[3] = {1, 1, 1};
  float illum[5] = {2, 1, 0.3f, 20, 0};
  Sphere() {
    o = objet_cree(1, B_VOL, 0, nullptr, nullptr, 1);
    EXPECT_EQ(vol_sphere(o, 48, 24, 75), 0);
    int ns, d;
    const float* s = vol_som(o, &ns, &d);
    som.assign(s, s + ns * d);
    const mot* f = vol_fac(o);
    fac.assign(f, f + f[0]);
    mot* n = gen_normale_som(o, nullptr, 1);
    const mot* v = valeur_de(n);
    nsom.assign(reels(v + 4), reels(v + 4) + 3L * ns);
  }
  mot* dessine(const Pig_liste& pl) {
    mot* im = ima_ecran();
    std::fill(ima_octets(im), ima_octets(im) + 3L * ima_l(im) * ima_h(im), octet{0});
    init_zbuf(1);
    Vol_aff v;
    v.som = som.data(), v.ns = static_cast<int>(som.size() / 3);
    v.fac = fac.data(), v.nf = fac[2];
    v.n_som = nsom.data();
    v.coul = coul, v.illum = illum, v.type = 2;
    v.pig = &pl;
    int l = 1;
    v.lum = &l, v.nlum = 1;
    EXPECT_EQ(rendu_vol(v), 0);
    return im;
  }
};

std::vector<octet> octets(const mot* im) {
  return std::vector<octet>(ima_octets(im), ima_octets(im) + 3L * ima_l(im) * ima_h(im));
}

TEST(Pigment, DixNeufSurUneSphere) {
  monde_ima();
  ecran.largeur = ecran.hauteur = 160;
  ASSERT_EQ(ima_ecran_retaille(160, 160), 0);
  oeil_courant = Oeil{};
  oeil_courant.projection = 63;
  zb.mode = 1;
  Objet* lum = objet_cree(1, B_LUM, 0, nullptr, nullptr, 1);
  const float pos[3] = {-300, -400, -900};
  attribut_ecrit_1(lum, 1, 86, pos, 3, 1);
  Sphere sph;
  const char* dir = std::getenv("ORVANE_PIGMENTS");
  static Pigment p[1];
  std::vector<std::vector<octet>> vues;
  for (int t = 1; t <= PIGMENT_TYPES; ++t) {
    mot* e = vecteur({static_cast<float>(100 + t), -1, 0.5f, 2, 5, 0.04f, 0});
    ASSERT_EQ(pigments_lit(e, p, 1), 1);
    Pig_liste pl{p, 1};
    mot* im = sph.dessine(pl);
    if (dir) ima_ecrit_png(im, (std::string(dir) + "/pigment" + std::to_string(t) + ".png").c_str());
    vues.push_back(octets(im));
    // The sphere is there and not of one colour: its lit pixels spread.
    long dessines = 0;
    double s = 0, s2 = 0;
    for (int y = 0; y < 160; ++y)
      for (int x = 0; x < 160; ++x) {
        int r = px(im, x, y, 0), g = px(im, x, y, 1), b = px(im, x, y, 2);
        if (!(r || g || b)) continue;
        ++dessines;
        double l = r + g + b;
        s += l, s2 += l * l;
      }
    EXPECT_GT(dessines, 15000) << t;
    double m = s / dessines;
    EXPECT_GT(s2 / dessines - m * m, 200) << "type " << t << " is flat";
    EXPECT_TRUE(px(im, 2, 2, 0) == 0 && px(im, 157, 157, 2) == 0);
    if (t == 10) {
      // The onion on a sphere centred at the origin still shows its shells:
      // sharp steps across the middle row, at each dark skin.
      int sauts = 0;
      for (int x = 12; x < 148; ++x) {
        auto l = [&](int i) { return px(im, i, 80, 0) + px(im, i, 80, 1) + px(im, i, 80, 2); };
        sauts += std::abs(l(x + 1) - l(x)) > 90;
      }
      EXPECT_GE(sauts, 6) << "onion shells";
    }
  }
  // Distinct looks: every two pictures differ on many pixels.
  for (int a = 0; a < PIGMENT_TYPES; ++a)
    for (int b = a + 1; b < PIGMENT_TYPES; ++b) {
      long diff = 0;
      for (std::size_t i = 0; i < vues[a].size(); ++i) diff += std::abs(vues[a][i] - vues[b][i]) > 24;
      EXPECT_GT(diff, 3000) << a + 1 << " and " << b + 1;
    }
  // The same pictures after the tables are made again, as in a new run.
  Free_Noise_Tables();
  Initialize_Noise();
  for (int t = 1; t <= PIGMENT_TYPES; ++t) {
    ASSERT_EQ(pigments_lit(vecteur({static_cast<float>(100 + t), -1, 0.5f, 2, 5, 0.04f, 0}), p, 1), 1);
    Pig_liste pl{p, 1};
    EXPECT_TRUE(octets(sph.dessine(pl)) == vues[t - 1]) << t;
  }
}

// The software engine's texture: an image of four quadrants on a square
// whose corners take the image's corners, read back at the four quarters.
TEST(Pigment, TextureLogicielle) {
  monde_ima();
  ecran.largeur = ecran.hauteur = 100;
  ASSERT_EQ(ima_ecran_retaille(100, 100), 0);
  oeil_courant = Oeil{};
  oeil_courant.projection = 63;
  zb.mode = 2;
  mot* b = ima_alloue(8, 6);
  const octet q[4][3] = {{250, 0, 0}, {0, 250, 0}, {0, 0, 250}, {250, 250, 250}};
  for (int y = 0; y < 6; ++y)
    for (int x = 0; x < 8; ++x)
      for (int c = 0; c < 3; ++c) ima_rouge(b, y)[x + 8 * c] = q[(x >= 4) + 2 * (y >= 3)][c];
  // Lower left, upper left, upper right, lower right as the screen shows
  // them (y down in the world).
  std::vector<float> som{-40, 40, 0, -40, -40, 0, 40, -40, 0, 40, 40, 0};
  std::vector<mot> fac{12, BLOC_LISTE, 1, 0, 8, BLOC_ENTIER, 1, 4, 1, 2, 3, 4};
  float mappe[8] = {0, 0, 0, 1, 1, 1, 1, 0};
  int deb[2] = {0, 4};
  Pigment t;
  t.type = -2;
  t.ima = b;
  Pig_liste tl{&t, 1};
  float coul[3] = {1, 1, 1}, illum[5] = {-1, 1, 0, 0, 0};
  Vol_aff v;
  v.som = som.data(), v.ns = 4, v.fac = fac.data(), v.nf = 1, v.coul = coul, v.illum = illum, v.type = -1;
  v.tex = &tl, v.mappe = mappe, v.mappe_deb = deb;
  mot* im = ima_ecran();
  std::fill(ima_octets(im), ima_octets(im) + 3L * 100 * 100, octet{0});
  init_zbuf(1);
  // A light behind the eye: the diffuse part shows the texture's colours.
  Objet* lum = objet_cree(1, B_LUM, 0, nullptr, nullptr, 1);
  const float pos[3] = {0, 0, -1000};
  attribut_ecrit_1(lum, 1, 86, pos, 3, 1);
  ASSERT_EQ(rendu_vol(v), 0);
  auto quel = [&](int x, int y) {
    int best = -1;
    for (int k = 0; k < 4; ++k) {
      bool ok = true;
      for (int c = 0; c < 3; ++c) ok = ok && (q[k][c] > 0 ? px(im, x, y, c) > 150 : px(im, x, y, c) < 60);
      if (ok) best = k;
    }
    return best;
  };
  // Row 0 of the working image is its bottom row, as the window's.
  EXPECT_EQ(quel(30, 30), 0);
  EXPECT_EQ(quel(70, 30), 1);
  EXPECT_EQ(quel(30, 70), 2);
  EXPECT_EQ(quel(70, 70), 3);
  EXPECT_EQ(px(im, 5, 5, 0), 0);
  bloc_libere(b);
}
}  // namespace
