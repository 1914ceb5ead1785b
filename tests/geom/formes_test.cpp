// Shape builders, and the refusals of bad input: each gives a numbered
// message, and what existed stays as it was.
#include <cmath>

#include "outils.h"

namespace {
// Every vertex normal points away from the shape's centre.
void normales_dehors(Objet* o) {
  mot* a = gen_normale_som(o, nullptr, 0);
  ASSERT_NE(a, nullptr);
  int n, d;
  reel* s = vol_som(o, &n, &d);
  float c[3];
  centre_sommets(s, n, d, c);
  const reel* nv = reels(valeur_de(a) + 4);
  for (int i = 0; i < n; ++i) {
    float r[3] = {s[3 * i] - c[0], s[3 * i + 1] - c[1], s[3 * i + 2] - c[2]};
    EXPECT_GT(produit_scalaire(r, nv + 3 * i), 0) << "sommet " << i + 1;
    EXPECT_NEAR(module(nv + 3 * i), 1, 1e-5);
  }
}
}  // namespace

TEST(Formes, NormalsPointOut) {
  monde();
  Objet* o = volume();
  ASSERT_EQ(vol_cube(o, 2), 0);
  normales_dehors(o);
  ASSERT_EQ(vol_sphere(o, 8, 5, 3), 0);
  normales_dehors(o);
  ASSERT_EQ(vol_tore(o, 12, 6, 5, 1), 0);
  // A torus's normals point away from the tube's centre line.
  mot* a = gen_normale_som(o, nullptr, 0);
  int n, d;
  reel* s = vol_som(o, &n, &d);
  for (int i = 0; i < n; ++i) {
    const float* p = s + 3 * i;
    double r = std::hypot(p[0], p[2]);
    float axe[3] = {static_cast<float>(p[0] - 5 * p[0] / r), p[1], static_cast<float>(p[2] - 5 * p[2] / r)};
    EXPECT_GT(produit_scalaire(axe, reels(valeur_de(a) + 4) + 3 * i), 0.99) << i;
  }
  ASSERT_EQ(vol_cylindre(o, 10, 1, 1, 4, true), 0);
  mot* f = gen_normale_fac(o, nullptr, 0, 1);
  const reel* nf = reels(valeur_de(f) + 4);
  EXPECT_EQ(valeur_de(f)[2], 12);
  EXPECT_NEAR(nf[3 * 10 + 1], -1, 1e-6);  // top cap, y pointing down
  EXPECT_NEAR(nf[3 * 11 + 1], 1, 1e-6);
  ASSERT_EQ(vol_cylindre(o, 6, 2, 0, 3, true), 0);  // a cone: apex and base
  EXPECT_EQ(vol_fac(o)[2], 7);
}

TEST(Formes, GridSizesAndForm) {
  monde();
  Objet* o = volume();
  ASSERT_EQ(vol_grille(o, 4, 2, 1, 0, 1, 1, 1), 0);
  int n, d;
  vol_som(o, &n, &d);
  EXPECT_EQ(n, 5 * 3 * 2);
  EXPECT_EQ(vol_forme(o), B_GRILLE);
  EXPECT_EQ(vol_nz(o), 1);
  ASSERT_EQ(vol_grille(o, 6, 3, 0, 1, 1, 1, 0), 0);
  vol_som(o, &n, &d);
  EXPECT_EQ(n, 6 * 4);
  EXPECT_EQ(vol_fac(o)[2], 6 * 3);
  normales_dehors(o);  // a closed grid is a tube, faces out
  EXPECT_EQ(vol_genere(o), 0);
}

TEST(MauvaiseEntree, ShapesRefuseAndKeepWhatExists) {
  monde();
  Objet* o = volume();
  ASSERT_EQ(vol_cube(o, 2), 0);
  int n, d;
  reel* s = vol_som(o, &n, &d);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_sphere(o, 8, 5, -1), -1); }), "-1: M66\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_tore(o, 2, 5, 1, 1), -1); }), "2: M66\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_cylindre(o, 5, 0, 0, 1, false), -1); }), "0: M66\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_grille(o, 0, 3, 0, 0, 1, 1, 1), -1); }), "0: M66\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_cube(o, std::nanf("")), -1); }), "nan: M66\n");
  EXPECT_EQ(vol_som(o, &n, &d), s);
  EXPECT_EQ(n, 8);
  EXPECT_EQ(vol_fac(o)[2], 6);
}

TEST(MauvaiseEntree, FacesNamingMissingVertices) {
  monde();
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {{1, 2, 3}});
  auto f = faces({{1, 2, 9}});
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_fac_ecrit(o, f.data()), -1); }), "9: M66\n");
  EXPECT_EQ(vol_fac(o)[4 + 4 + 2], 3);
  // Written behind the checks, as a user's assignment could: every
  // generator refuses with the message instead of reading out of bounds.
  const mot cle[] = {1, B_FAC};
  mot* a = attribut_prepare(o, 1, cle, f[0]);
  bloc_copie(valeur_de(a), f.data());
  a[1] = BLOC_PHRASE;
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(gen_normale_fac(o, nullptr, 0, 1), nullptr); }), "9: M66\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(gen_normale_som(o, nullptr, 0), nullptr); }), "9: M66\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(gen_voisin_fac_som(o, 0), nullptr); }), "9: M66\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(generer_segment_vol(o, 0, 1, 0), nullptr); }), "9: M66\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_genere(o), -1); }), "9: M66\ngen_normale_fac\n");
  // A face whose length runs past the list: a corrupt header.
  std::vector<mot> casse{12, BLOC_LISTE, 1, 0, 40, BLOC_ENTIER, 1, 3, 1, 2, 3, 0};
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_fac_ecrit(o, casse.data()), -1); }), "1: M105\n");
  casse[4] = 7;
  casse[7] = -3;
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(fac_verifie(casse.data(), 3), -1); }), "1: M105\n");
}

TEST(MauvaiseEntree, EmptyVolumesAndOtherObjects) {
  monde();
  Objet* o = volume(5);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(gen_normale_som(o, nullptr, 0), nullptr); }), "5: M22\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(gen_centre(o, 0), nullptr); }), "5: M22\n");
  Transfo t;
  t.op = B_ROTX;
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(transformer_vol(o, &t, nullptr, false), -1); }), "5: M22\n");
  // Vertices but no faces: empty normal tables, every vertex normal 0.
  ASSERT_EQ(vol_som_ecrit(o, std::vector<float>{1, 2, 3}.data(), 1, 3), 0);
  mot* a = gen_normale_som(o, nullptr, 0);
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(floats(valeur_de(a)), (std::vector<float>{0, 0, 0}));
  EXPECT_EQ(vol_genere(o), 0);
  Objet* lum = objet_cree(1, 24, 0, nullptr, nullptr, 3);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_cube(lum, 1), -1); }), "3 M14\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(gen_normale_fac(nullptr, nullptr, 0, 1), nullptr); }), "M14\n");
}

TEST(Apparence, DefaultsAndPerElementColours) {
  monde();
  Objet* o = volume();
  ASSERT_EQ(vol_cube(o, 1), 0);
  EXPECT_EQ(std::vector<float>(vol_coul(o), vol_coul(o) + 3), (std::vector<float>{1, 1, 1}));
  float ill[2] = {2, 0.5f};
  ASSERT_EQ(vol_illum_ecrit(o, ill, 2), 0);
  EXPECT_EQ(std::vector<float>(vol_illum(o), vol_illum(o) + 5), (std::vector<float>{2, 0.5f, 0, 0, 0}));
  float rouge[3] = {1, 0, 0};
  ASSERT_EQ(vol_coul_element_ecrit(o, B_FAC, 4, rouge), 0);
  const mot cle[] = {1, B_COUL, 1, B_FAC};
  mot* v = vol_valeur(o, 2, cle);
  EXPECT_EQ(coul_element(v, 3), nullptr);
  EXPECT_EQ(coul_element(v, 4)[0], 1.f);
  EXPECT_EQ(coul_element(v, 7), nullptr);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(vol_coul_element_ecrit(o, B_SOMMET, 9, rouge), -1); }), "9: M66\n");
}
