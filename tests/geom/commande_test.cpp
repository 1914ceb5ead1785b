// The geometry's commands through the dispatch, on phrases built as the
// engine builds them, with the real vocabulary: volumes written and read as
// flat lists, transformations, shapes, curves, fitting and generer.
#include <cmath>

#include "interp/interp.h"
#include "outils.h"
#include "tests/outils/phrase.h"
#include "tests/outils/vocabulaire.h"

namespace {
struct CommandeGeom : testing::Test, Lanceur {
  void SetUp() override {
    vocabulaire_charge();
    ASSERT_EQ(piles_alloue(100, 200000, 100, 2000), 0);
    geom = Geom{};
  }

  // vol(n) key = values
  void ecrit(int n, int cle, std::vector<float> x) {
    lance({vol({static_cast<float>(n)}), el(1, cle)}, &x);
    ASSERT_EQ(r, 0) << sortie;
  }
  std::vector<float> lit(int n, int cle) { return lance({vol({static_cast<float>(n)}), el(1, cle)}); }
  Objet* volume(int n) { return objet_trouve(B_VOL, 0, n, nullptr); }
  void cree(int n) {
    lance({vol({static_cast<float>(n)})});
    ASSERT_NE(volume(n), nullptr);
  }
};


constexpr int B_MASQUE_ = 75, B_TRAIT_ = 76;

int nb_faces(Objet* o) { return vol_fac(o) ? vol_fac(o)[2] : -1; }
int nb_som(Objet* o) {
  int n, d;
  return vol_som(o, &n, &d) ? n : -1;
}
}  // namespace

// Writing, reading and each transformation of a triangle are in the
// volumes transcript; here what it cannot see.
TEST_F(CommandeGeom, TurnedVolumeKeepsStaleNormalsAndAPhraseWithNoVolumeTakesTheLast) {
  cree(1);
  ecrit(1, B_SOM, {0, 0, 0, 2, 0, 0, 0, 2, 0});
  ecrit(1, B_FAC, {1, 2, 3});
  ASSERT_NE(gen_normale_fac(volume(1), nullptr, 0, 1), nullptr);
  lance({vol({1}), el(1, B_ROTX, {90}), el(1, B_SOM, {0, 0, 0})});
  ASSERT_EQ(r, 0) << sortie;
  const mot cle[] = {1, B_NORMALE, 1, B_FAC};
  EXPECT_EQ(vol_attribut(volume(1), 2, cle)[1], 0);  // normals stale, storage kept
  // Mirrored in x about its centre, 2/3, by a phrase that names no volume.
  lance({el(1, B_SYMX)});
  proche(lit(1, B_SOM), {4.f / 3, 0, 0, -2.f / 3, 0, 0, 4.f / 3, 0, 2});
}

TEST_F(CommandeGeom, SingleVerticesAndFacesSelectionsAndCompositeFaces) {
  cree(1);
  ecrit(1, B_SOM, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0.2f, 0.2f, 0, 0.4f, 0.2f, 0, 0.3f, 0.4f, 0});
  EXPECT_EQ(lance({vol({1}), el(1, B_SOM, {2, 4})}), (std::vector<float>{1, 0, 0, 0, 1, 0}));
  std::vector<float> cinq{5, 5, 5};
  lance({vol({1}), el(1, B_SOM, {3})}, &cinq);
  EXPECT_EQ(lance({vol({1}), el(1, B_SOM, {3})}), cinq);
  // A square with a triangular hole, then a face of its own.
  ecrit(1, B_FAC, {1, 2, 3, 4, -1, 5, 6, 7, 0, 1, 2, 4});
  EXPECT_EQ(nb_faces(volume(1)), 2);
  EXPECT_EQ(lit(1, B_FAC), (std::vector<float>{1, 2, 3, 4, -1, 5, 6, 7, 0, 1, 2, 4}));
  std::vector<float> f{2, 3, 4};
  lance({vol({1}), el(1, B_FAC, {2})}, &f);
  lance({vol({1}), el(1, B_FAC, {3})}, &f);  // one past the last: added
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(lance({vol({1}), el(1, B_FAC, {2, 3})}), (std::vector<float>{2, 3, 4, 0, 2, 3, 4}));
  // Only the vertices of the selection move.
  lance({vol({1}), el(1, B_DEP, {0, 0, 1}), el(1, B_SOMMET, {1, 2})});
  EXPECT_EQ(lance({vol({1}), el(1, B_SOM, {1, 2, 4})}), (std::vector<float>{0, 0, 1, 1, 0, 1, 0, 1, 0}));
  // Fewer vertices than the faces use: the faces go, to be written again.
  ecrit(1, B_SOM, {0, 0, 0, 1, 0, 0});
  EXPECT_EQ(vol_fac(volume(1)), nullptr);
  // Other keywords with fac leave the phrase to the attribute routine.
  lance({vol({1}), el(1, B_SOMMET, {1}), el(1, B_COUL, {1, 0, 0})});
  EXPECT_EQ(r, 0);
  EXPECT_EQ(lance({vol({1}), el(1, B_SOMMET, {1}), el(1, B_COUL)}), (std::vector<float>{1, 0, 0}));
}

TEST_F(CommandeGeom, ShapesInOnePhrase) {
  const struct {
    int forme;
    std::vector<float> v;
    int som, fac;
  } formes[] = {{B_CUBE, {2}, 8, 6},           {B_SPHERE, {1, 8, 4}, 2 + 8 * 3, 8 + 8 * 2 + 8},
                {B_CYLINDRE, {1, 2, 12}, 24, 14}, {B_CONE, {1, 2, 12}, 13, 13},
                {B_TORE, {2, 0.5f, 12, 6}, 72, 72}, {B_GRILLE, {4, 3}, 20, 12}};
  for (int n = 1; n <= 6; ++n) {
    const auto& f = formes[n - 1];
    lance({vol({static_cast<float>(n)}), el(1, f.forme, f.v)});
    EXPECT_EQ(nb_som(volume(n)), f.som) << "forme " << f.forme;
    EXPECT_EQ(nb_faces(volume(n)), f.fac) << "forme " << f.forme;
  }
  EXPECT_EQ(lit(1, B_SOM)[0], -1);
  Objet* g = volume(6);
  EXPECT_EQ(vol_forme(g), B_GRILLE);
  const mot tailles[] = {1, B_GRILLE};
  EXPECT_EQ(vol_valeur(g, 1, tailles)[0], 6);  // its sizes, kept as they were given
  lance({vol({7}), el(1, B_GRILLE, {4, 3}), el(1, B_F4)});  // rows closed
  EXPECT_EQ(nb_som(volume(7)), 16);
  EXPECT_EQ(vol_ferme(volume(7)), 1);
  // Alone, a shape takes the next number; a shape again replaces.
  lance({el(1, B_CUBE)});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(nb_som(volume(8)), 8);
  lance({vol({8}), el(1, B_TORE, {1, 0.2f, 3, 3})});
  EXPECT_EQ(nb_som(volume(8)), 9);
  EXPECT_EQ(volume(9), nullptr);
}

TEST_F(CommandeGeom, CurvesKeepControlPointsAndCloseOnTheFirst) {
  std::vector<float> p{0, 0, 0, 1, 1, 0, 2, 0, 0, 3, 1, 0};
  auto c = lance({el(1, B_COURBE, {3}), el(1, B_SOM, p)});
  ASSERT_EQ(c.size(), 3u * 13);
  for (int i = 0; i < 4; ++i)
    for (int k = 0; k < 3; ++k) EXPECT_EQ(c[12 * i + k], p[3 * i + k]);
  EXPECT_EQ(lance({el(1, B_COURBE, {0}), el(1, B_SOM, p)}), p);
  // A closed line: 2n - 1 rows with one point between, the last the first.
  cree(1);
  ecrit(1, B_SOM, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0});
  lance({vol({1}), el(1, B_COURBE, {1})});
  ASSERT_EQ(r, 0) << sortie;
  auto s = lit(1, B_SOM);
  ASSERT_EQ(s.size(), 3u * 7);
  EXPECT_EQ(std::vector<float>(s.end() - 3, s.end()), std::vector<float>(s.begin(), s.begin() + 3));
  EXPECT_EQ(nb_faces(volume(1)), 6);  // the segments of the line
  // Written into a volume that does not exist yet.
  lance({vol({2}), el(1, B_COURBE, {1}), el(1, B_SOM, p)});
  EXPECT_EQ(nb_som(volume(2)), 7);
}

TEST_F(CommandeGeom, FittingResamplesSpreadsAndStraightensJoints) {
  proche(lance({el(1, B_AJUST, {5}), el(1, B_SOM, {0, 0, 0, 10, 0, 0})}),
         {0, 0, 0, 2.5f, 0, 0, 5, 0, 0, 7.5f, 0, 0, 10, 0, 0});
  cree(1);
  ecrit(1, B_SOM, {0, 0, 0, 4, 0, 0, 4, 4, 0});
  lance({vol({1}), el(1, B_AJUST, {5})});
  ASSERT_EQ(r, 0) << sortie;
  proche(lit(1, B_SOM), {0, 0, 0, 2, 0, 0, 4, 0, 0, 4, 2, 0, 4, 4, 0});
  EXPECT_EQ(nb_faces(volume(1)), 4);
  // Spread at equal steps, faces kept.
  ecrit(1, B_SOM, {0, 0, 0, 1, 0, 0, 10, 0, 0});
  ecrit(1, B_FAC, {1, 2, 3});
  lance({vol({1}), el(1, B_AJUST)});
  proche(lit(1, B_SOM), {0, 0, 0, 5, 0, 0, 10, 0, 0});
  EXPECT_EQ(nb_faces(volume(1)), 1);
  // A joint of 120 degrees limited to 90: the rest of the chain follows.
  float c = std::cos(2.0943951f), s = std::sin(2.0943951f);
  ecrit(1, B_SOM, {0, 0, 0, 1, 0, 0, 1 + c, s, 0, 1 + 2 * c, 2 * s, 0});
  lance({vol({1}), el(1, B_AJUST), el(1, B_JOINT, {1.5707963f})});
  ASSERT_EQ(r, 0) << sortie;
  proche(lit(1, B_SOM), {0, 0, 0, 1, 0, 0, 1, 1, 0, 1, 2, 0});
}

TEST_F(CommandeGeom, GenerateOnDemand) {
  lance({vol({1}), el(1, B_CUBE, {2})});
  etats[0][A_EDI] = 1;
  lance({el(0, A_GENERER), vol({1, 9}), el(1, B_NORMALE), el(1, B_FAC)});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(sortie, "+1\n");  // 9 does not exist: passed over
  const mot cle[] = {1, B_NORMALE, 1, B_FAC};
  EXPECT_EQ(vol_attribut(volume(1), 2, cle)[1], 1);
  lance({el(0, A_GENERER), vol({1}), el(1, B_BOITE)});
  const mot boite[] = {1, B_BOITE};
  mot* b = vol_valeur(volume(1), 1, boite);
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(std::vector<float>(reels(b + 4), reels(b + 10)), (std::vector<float>{-1, -1, -1, 1, 1, 1}));
  lance({el(0, A_GENERER), vol({1}), el(0, A_CENTRE), el(1, B_FAC)});
  const mot centres[] = {0, A_CENTRE, 1, B_FAC};
  EXPECT_EQ(vol_valeur(volume(1), 2, centres)[2], 6);
  lance({el(0, A_GENERER), vol({1}), el(1, B_SEGMENT)});
  EXPECT_EQ(vol_valeur(volume(1), 1, std::vector<mot>{1, B_SEGMENT}.data())[2], 12);
  // Routes this system does not have say so; a bad option fails and
  // clears the printing flag.
  lance({el(0, A_GENERER), vol({1}), el(1, 75)});
  EXPECT_NE(sortie.find("generer: non implemente"), std::string::npos);
  lance({el(0, A_GENERER), vol({1}), el(1, B_PROJ), el(1, B_COUL)});
  EXPECT_EQ(r, -1);
  EXPECT_NE(sortie.find("proj: Type de valeur illegal"), std::string::npos);
  EXPECT_EQ(etats[0][A_EDI], 0);
  // Faces from a line to a point.
  cree(2);
  ecrit(2, B_SOM, {0, 0, 0, 1, 0, 0, 2, 0, 0});
  lance({el(0, A_GENERER), vol({2}), el(1, B_FAC), el(0, A_TAILLE, {1, 1, 0})});
  EXPECT_EQ(lit(2, B_FAC), (std::vector<float>{4, 1, 2, 0, 4, 2, 3}));
}

TEST_F(CommandeGeom, MatrixOfTheVolumeStepsAndVariables) {
  cree(1);
  ecrit(1, B_SOM, {0, 0, 0, 1, 0, 0});
  etats[1][B_AFFICHE] = 1;
  lance({vol({1}), el(1, B_DEP, {1, 0, 0}), el(0, A_PULS)});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(lit(1, B_SOM), (std::vector<float>{0, 0, 0, 1, 0, 0}));  // baked nowhere
  EXPECT_EQ(lance({vol({1}), el(1, B_SOM), el(0, A_TOP)}), (std::vector<float>{1, 0, 0, 2, 0, 0}));
  // One step of an animation of nb = 2 steps, then back to the origin.
  int n;
  mot_valeur(1, B_NB, &n)[0] = 2;
  lance({vol({1}), el(1, B_ROTZ, {90}), el(1, B_SOM, {0, 0, 0}), el(1, 10001)});
  float h = std::sqrt(0.5f);
  proche(lit(1, B_SOM), {0, 0, 0, h, h, 0});
  lance({vol({1}), el(1, B_ROTZ, {90}), el(1, 129)});
  EXPECT_EQ(lit(1, B_SOM), (std::vector<float>{0, 0, 0, 1, 0, 0}));
  // The points held by a global variable.
  std::vector<mot> p = reels_({0, 0, 0, 2, 0, 0});
  Objet* g = objet_cree(0, OBJ_GLOBAL, 0, p.data(), "p", 0);
  ASSERT_NE(g, nullptr);
  lance({el(1, B_HOMO, {3}), texte(0, A_VAR, "p")});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(std::vector<float>(reels(g->donnees + 4), reels(g->donnees + 10)),
            (std::vector<float>{-2, 0, 0, 4, 0, 0}));
  lance({el(1, B_HOMO, {3}), el(0, A_VAR)});
  EXPECT_EQ(r, -1);
  EXPECT_NE(sortie.find("var sans valeur"), std::string::npos);
  // Alone, rota and sec are values of the configuration.
  EXPECT_EQ(lance({el(1, B_SEC)}), (std::vector<float>{0}));
}

TEST_F(CommandeGeom, AxisFromTheOperationTheLineTheVectorOrTheDefault) {
  cree(1);
  ecrit(1, B_SOM, {1, 0, 0, -1, 0, 0});
  lance({vol({1}), el(1, B_ROTA, {90})});  // axe's value: y
  proche(lit(1, B_SOM), {0, 0, -1, 0, 0, 1});
  lance({vol({1}), el(1, B_ROTA, {90}), el(1, B_SEQ, {0, 0, 0, 1, 0, 0})});
  proche(lit(1, B_SOM), {0, 1, 0, 0, -1, 0});
  lance({vol({1}), el(1, B_ROTA), el(0, A_ROTV, {0, 0, 1})});  // asin(1) about z
  proche(lit(1, B_SOM), {-1, 0, 0, 1, 0, 0});
  // About an axis by two points, the first the pivot.
  lance({vol({1}), el(1, B_ROTA, {90}), el(1, B_SEGMENT, {1, 0, 0, 1, 0, 1})});
  proche(lit(1, B_SOM), {1, -2, 0, 1, 0, 0});
}

TEST_F(CommandeGeom, BadInputReportsAndKeepsWhatExists) {
  cree(1);
  ecrit(1, B_SOM, {0, 0, 0, 1, 0, 0, 0, 1, 0});
  ecrit(1, B_FAC, {1, 2, 3});
  cree(4);
  const auto avant = lit(1, B_SOM);
  // Each refused with -1 and its message: bad faces and vertices, wrong
  // shapes of values, missing and empty volumes, negative and huge sizes.
  const struct {
    std::vector<El> phrase;
    std::vector<float> affecte;
    const char* message;
  } refus[] = {
      {{vol({1}), el(1, B_FAC)}, {1, 2, 9}, "9: Valeur ou indice illegal"},
      {{vol({1}), el(1, B_FAC)}, {1, 2.5f, 3}, ""},
      {{vol({1}), el(1, B_SOM)}, {1, 2}, ""},
      {{vol({1}), el(1, B_SOM, {4})}, {}, ""},
      {{vol({1}), el(1, B_DEP, {1, 2, 3, 4})}, {}, "dep: "},
      {{vol({1}), texte(1, B_ROTX, "a")}, {}, "Type de valeur illegal"},
      {{vol({1}), el(1, B_ROTA, {90, 1, 0})}, {}, ""},
      {{vol({3}), el(1, B_ROTX, {30})}, {}, "vol 3: Introuvable"},
      {{vol({4}), el(1, B_ROTX, {30})}, {}, "4: Objet nul"},
      {{vol({4}), el(1, B_FAC)}, {1}, ""},
      {{vol({1}), el(1, B_SPHERE, {-1})}, {}, ""},
      {{vol({1}), el(1, B_CYLINDRE, {1, 1, 1e30f})}, {}, ""},
      {{vol({1}), el(1, B_TIRER, {5, 30})}, {}, ""},
  };
  for (const auto& c : refus) {
    lance(c.phrase, c.affecte.empty() ? nullptr : &c.affecte);
    EXPECT_EQ(r, -1) << c.message;
    EXPECT_NE(sortie.find(c.message), std::string::npos) << sortie;
  }
  // A zero axis is no rotation; a radius of 0 reaches only the pivot; the
  // others of a list go on past a missing volume.
  for (const auto& ph : {std::vector<El>{vol({1}), el(1, B_ROTA, {90, 0, 0, 0})},
                         {vol({1}), el(1, B_HOMO, {5}), el(0, A_MAX, {0}), el(1, B_SOM, {9, 9, 9})},
                         {vol({3, 1}), el(1, B_DEP, {0, 0, 0})}}) {
    lance(ph);
    EXPECT_EQ(r, 0) << sortie;
  }
  EXPECT_EQ(objet_trouve(B_VOL, 0, -12345, nullptr), nullptr);  // no scratch left
  // A request too large for the stack is reported and changes nothing;
  // routes this system does not have say so.
  lance({vol({1}), el(1, B_AJUST, {2000000})});
  EXPECT_EQ(r, 0);
  EXPECT_EQ(sortie.rfind("ajust_1: 6000004 ", 0), 0u) << sortie;
  lance({el(0, A_GENERER), vol({1}), el(1, B_MASQUE_)});
  EXPECT_EQ(sortie.rfind("generer: non implemente", 0), 0u) << sortie;
  lance({el(1, B_IMAGE, {1}), el(1, B_ROTX, {30})});
  EXPECT_NE(sortie.find("non implemente"), std::string::npos);
  EXPECT_EQ(lit(1, B_SOM), avant);
  EXPECT_EQ(lit(1, B_FAC), (std::vector<float>{1, 2, 3}));
}

namespace {
// The box of rows a..b (from 0, b excluded) of a flat list of vertices.
std::vector<float> boite_de(const std::vector<float>& s, std::size_t a, std::size_t b) {
  std::vector<float> r{1e30f, 1e30f, 1e30f, -1e30f, -1e30f, -1e30f};
  for (std::size_t i = a; i < b; ++i)
    for (int k = 0; k < 3; ++k) r[k] = std::min(r[k], s[3 * i + k]), r[3 + k] = std::max(r[3 + k], s[3 * i + k]);
  return r;
}
std::vector<float> valeur(Objet* o, std::vector<mot> cle) {
  mot* v = vol_valeur(o, static_cast<int>(cle.size() / 2), cle.data());
  if (!v || v[1] != BLOC_REEL) return {};
  return std::vector<float>(reels(v + 4), reels(v + 4) + v[0] - 4);
}
}  // namespace

// Boxes of groups and of a grid's rows and columns are in the generer
// transcript; here a group larger than the volume and a volume that is no
// grid.
TEST_F(CommandeGeom, BoxesOfAGroupLargerThanTheVolumeAndOfNoGrid) {
  cree(1);
  std::vector<float> s{3.5f, -7.25f, 1e6f, -2, 9, 0.125f, 4, 4, -4, -1e-3f, 17, 2, 8, -9, 6, 0, 0, 0, -33, 1, 7};
  ecrit(1, B_SOM, s);
  lance({el(0, A_GENERER), vol({1}), el(1, B_BOITE), el(1, B_SOMMET), el(1, B_NORMALE, {999999})});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(valeur(volume(1), {1, B_BOITE, 1, B_SOMMET}), boite_de(s, 0, 7));
  // Not a grid: one row, and a column per vertex.
  lance({el(0, A_GENERER), vol({1}), el(1, B_BOITE), el(1, B_TRAIT_)});
  EXPECT_EQ(valeur(volume(1), {1, B_BOITE, 1, B_TRAIT_}), boite_de(s, 0, 7));
  lance({el(0, A_GENERER), vol({1}), el(1, B_BOITE), el(1, B_BORNES)});
  EXPECT_EQ(valeur(volume(1), {1, B_BOITE, 1, B_BORNES}).size(), 42u);
}

TEST_F(CommandeGeom, WeightsShareTheAreaOfFaces) {
  lance({vol({1}), el(1, B_CUBE, {2})});
  lance({el(0, A_GENERER), vol({1}), el(1, B_POIDS)});
  ASSERT_EQ(r, 0) << sortie;
  proche(valeur(volume(1), {1, B_POIDS, 1, B_SOMMET}), std::vector<float>(8, 3.f));
  // A triangle and a quad sharing an edge, with large odd coordinates: the
  // weights add up to the area.
  cree(2);
  ecrit(2, B_SOM, {0, 0, 0, 3e3f, 0, 0, 3e3f, 7e3f, 0, 0, 7e3f, 0, -5e3f, 0, 0});
  ecrit(2, B_FAC, {1, 2, 3, 4, 0, 1, 4, 5});
  lance({el(0, A_GENERER), vol({2}), el(1, B_POIDS)});
  ASSERT_EQ(r, 0) << sortie;
  std::vector<float> w = valeur(volume(2), {1, B_POIDS, 1, B_SOMMET});
  ASSERT_EQ(w.size(), 5u);
  EXPECT_NEAR(w[1], 21e6f / 4, 1);
  EXPECT_NEAR(w[4], 17.5e6f / 3, 1);
  EXPECT_NEAR(w[0] + w[1] + w[2] + w[3] + w[4], 21e6f + 17.5e6f, 8);
  // Points with no faces weigh 1 each.
  cree(3);
  ecrit(3, B_SOM, {1, 2, 3, 4, 5, 6});
  lance({el(0, A_GENERER), vol({3}), el(1, B_POIDS)});
  EXPECT_EQ(valeur(volume(3), {1, B_POIDS, 1, B_SOMMET}), (std::vector<float>{1, 1}));
}

// The surface over two lines and its refusal of lines of different
// lengths are in the generer transcript; here the lines that are not there.
TEST_F(CommandeGeom, SurfaceOverLinesThatAreNotThere) {
  cree(1), cree(2), cree(5);
  ecrit(1, B_SOM, {0, 0, 0, 1, 0, 0, 2, 0.5f, 0});
  ecrit(2, B_SOM, {0, 3, 1, 1, 3, 1, 2, 3.5f, 1});
  etats[0][A_EDI] = 1;
  // 9 is no line: passed over.
  lance({el(0, A_GENERER), vol({3}), el(1, B_SURFACE), el(0, A_NUM, {1, 9, 2, 1})});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(sortie, "+3\n");
  const std::vector<float> v = lit(3, B_SOM);
  // A line with no vertices, or no line at all: refused, the volume kept.
  for (const auto& l : {std::vector<float>{1, 5}, {77}}) {
    lance({el(0, A_GENERER), vol({3}), el(1, B_SURFACE), el(0, A_NUM, l)});
    EXPECT_EQ(r, -1) << l.back();
  }
  EXPECT_EQ(lit(3, B_SOM), v);
}

// The default square and the copy of volume 0 are in the generer
// transcript; here an empty volume 0, the copy's own data, and the number
// after the highest a float can name.
TEST_F(CommandeGeom, GenerateWithNoTargetMakesTheNextVolume) {
  cree(41);
  cree(0);
  lance({el(0, A_GENERER), el(1, B_NORMALE)});
  EXPECT_EQ(r, -1);
  EXPECT_EQ(volume(42), nullptr);
  lance({vol({0}), el(1, B_CUBE, {3})});
  lance({el(0, A_GENERER)});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(sortie, "+42\n");
  ecrit(42, B_SOM, std::vector<float>(24, 5.f));
  EXPECT_NE(lit(0, B_SOM), lit(42, B_SOM));
  cree(999999936);
  lance({el(0, A_GENERER)});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(sortie, "+999999937\n");
}
