// Faces, edges and neighbour tables of grids, and the general edge and
// neighbour searches they must agree with.
#include <algorithm>
#include <set>
#include <utility>

#include "outils.h"

namespace {
std::set<std::pair<int, int>> paires(const mot* b) {
  std::set<std::pair<int, int>> s;
  for (int e = 0; e < b[2]; ++e) s.insert(std::minmax(b[4 + 2 * e], b[5 + 2 * e]));
  return s;
}

std::vector<std::vector<int>> liste_faces(const mot* attribut) {
  const mot* l = valeur_de(const_cast<mot*>(attribut));
  std::vector<std::vector<int>> r;
  const mot* p = l + 4;
  for (int i = 0; i < l[2]; ++i, p += p[0]) r.emplace_back(p + 4, p + 4 + p[3]);
  return r;
}
}  // namespace

TEST(GrilleFaces, ClosedOpenWithLayersAndThinned) {
  monde();
  Objet* cube = volume();
  ASSERT_EQ(vol_cube(cube, 1), 0);
  using Faces = std::vector<std::vector<int>>;
  const struct {
    const char* nom;
    mot* faces;
    std::size_t nombre;
    Faces attendu;  // when given
  } cas[] = {
      // A strip of two closed on itself; one column closed on itself has no face.
      {"fermee", gen_fac_fermer(2, 1), 2, {{1, 2, 4, 3}, {2, 1, 3, 4}}},
      {"une colonne", gen_fac_fermer(1, 3), 0, {}},
      // Two layers of one face each, then the faces between the layers, row by row.
      {"couches", gen_fac_ouvert(1, 1, 1), 4, {{1, 2, 4, 3}, {5, 6, 8, 7}, {1, 2, 6, 5}, {3, 4, 8, 7}}},
      // One vertex in 3 of a 9 x 4 grid; a cube's faces through its first vertex.
      {"precision", gen_fac_precision(9, 4, 0, 3, nullptr, nullptr), 3, {}},
      {"cube", gen_fac_precision(0, 0, 0, 2, cube, nullptr), 3, {{1, 4, 3, 2}, {1, 2, 6, 5}, {1, 5, 8, 4}}},
  };
  for (const auto& c : cas) {
    ASSERT_NE(c.faces, nullptr) << c.nom;
    const Faces f = liste_faces(c.faces);
    EXPECT_EQ(f.size(), c.nombre) << c.nom;
    if (!c.attendu.empty()) {
      EXPECT_EQ(f, c.attendu) << c.nom;
    }
    bloc_libere(c.faces);
  }
}

TEST(GrilleSegments, CountsAndOrder) {
  monde();
  EXPECT_EQ(nb_segments_grille(3, 2, 0, 0), 3 * 3 + 2 * 4);
  EXPECT_EQ(nb_segments_grille(4, 2, 0, 1), 4 * 5);
  EXPECT_EQ(nb_segments_grille(2, 1, 2, 0), 7 + 2 * 7 + 2 * 6);
  mot* b = generer_segment(2, 1, 0, 1);
  ASSERT_NE(b, nullptr);
  // Rows (each closed), then columns.
  EXPECT_EQ(entiers(b), (std::vector<int>{1, 2, 2, 1, 3, 4, 4, 3, 1, 3, 2, 4}));
  bloc_libere(b);
  b = generer_segment(1, 1, 1, 0);
  EXPECT_EQ(entiers(b), (std::vector<int>{1, 2, 3, 4, 1, 3, 2, 4,   // layer 0
                                          5, 6, 7, 8, 5, 7, 6, 8,   // layer 1
                                          1, 5, 2, 6, 3, 7, 4, 8}));  // joining
  bloc_libere(b);
}

TEST(GrilleSegments, GridRuleAgreesWithTheFaceSearch) {
  monde();
  struct Cas {
    int nx, ny, nz, ferme;
  };
  for (Cas c : {Cas{3, 2, 0, 0}, Cas{4, 3, 0, 1}, Cas{2, 1, 2, 0}, Cas{1, 2, 0, 0}}) {
    Objet* o = volume();
    ASSERT_EQ(vol_grille(o, c.nx, c.ny, c.nz, c.ferme, 1, 1, 1), 0);
    mot* g = generer_segment_vol(o, 0, 1, 0);
    ASSERT_NE(g, nullptr);
    EXPECT_EQ(g[2], nb_segments_grille(c.nx, c.ny, c.nz, c.ferme));
    auto s = paires(g);
    EXPECT_EQ(static_cast<int>(s.size()), g[2]) << "no edge twice";
    mot* f = generer_segment_vol(o, 0, 1, 2);
    EXPECT_EQ(paires(f), s) << c.nx << " " << c.ny << " " << c.nz << " " << c.ferme;
    objet_supprime(o);
  }
}

TEST(Segments, SharedEdgeKeptOnceInItsFirstDirection) {
  monde();
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0}, {{1, 2, 3}, {3, 2, 4}});
  EXPECT_EQ(entiers(generer_segment_vol(o, 0, 1, 0)), (std::vector<int>{1, 2, 2, 3, 3, 1, 2, 4, 4, 3}));
  // Not closed: no closing pairs.
  EXPECT_EQ(entiers(generer_segment_vol(o, 0, 0, 1)), (std::vector<int>{1, 2, 2, 3, 2, 4}));
  // Negative: every pair, duplicates stay.
  EXPECT_EQ(entiers(generer_segment_vol(o, 0, -1, 1)),
            (std::vector<int>{1, 2, 2, 3, 3, 1, 3, 2, 2, 4, 4, 3}));
}

TEST(Voisins, OneColumnOpenGrid) {
  monde();
  Objet* o = volume();
  ASSERT_EQ(vol_grille(o, 1, 2, 0, 0, 1, 1, 0), 0);
  mot* v = gen_voisin_fac_som(o, 0);
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v[2], 6);
  EXPECT_EQ(v[3], 0);
  EXPECT_EQ(entiers(v), (std::vector<int>{2, 1, 2, 1, 3, 1, 2, 3, 1, 2, 2, 2, 2, 2}));
  EXPECT_EQ(entiers(gen_voisin_fac_som(o, 2)), entiers(v));
}

TEST(Voisins, GridTablesAgreeWithTheSearch) {
  monde();
  for (int ferme : {0, 1})
    for (int nx : {1, 2, 5}) {
      Objet* o = volume();
      ASSERT_EQ(vol_grille(o, nx, 3, 0, ferme, 1, 1, 0), 0);
      auto g = entiers(gen_voisin_fac_som(o, 1));
      EXPECT_EQ(entiers(gen_voisin_fac_som(o, 2)), g) << "nx " << nx << " ferme " << ferme;
      objet_supprime(o);
    }
}

TEST(Voisins, EachFaceOnceAndVerticesWithoutFaces) {
  monde();
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0, 5, 5, 5}, {{1, 2, 1, 3}, {2, 3, 1}});
  EXPECT_EQ(entiers(gen_voisin_fac_som(o, 0)), (std::vector<int>{3, 1, 2, 3, 1, 2, 3, 1, 2, 1}));
}

TEST(Facettes, AddressesInsteadOfNumbers) {
  monde();
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {{3, 1, 2}});
  int n, d;
  reel* s = vol_som(o, &n, &d);
  mot* b = ad_poi_facette(vol_fac(o), s, d, n);
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(b[0], vol_fac(o)[0]);
  EXPECT_EQ(reels(bloc_pointe(b[8])), s + 6);
  EXPECT_EQ(reels(bloc_pointe(b[9])), s);
  bloc_libere(b);
}
