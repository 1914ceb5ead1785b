// The live scene's frame in the test's own process, on a GLUT window under
// Xvfb: no allocation across 100 frames, a hook that turns a volume, the
// menu entries as the menu's callback gives them, and what "quitter en
// validant" and "quitter sans valider" leave in the objects.
#include <algorithm>
#include <cmath>
#include <array>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "../display/gl_outils.h"
#include "anim/anim.h"
#include "anim/interne.h"
#include "image/image.h"
#include "lang/lang.h"

namespace {
// The window, the real vocabulary (the hooks' text names keywords) and
// `count` cubes of side 40 in a row.
void monde_scene(int count) {
  if (piles.dim_obj < 20000) {
    ASSERT_EQ(piles_alloue(100, 100000, 20000, 1000), 0);
  }
  monde();
  contexte(200, 200);
  vol_rt_tous_libere();
  ASSERT_GE(kom_charge("env/koma.h", 0), 0);
  ASSERT_GE(kom_charge("env/komb.h", 1), 0);
  ASSERT_GE(mes_charge("env/mesa.h", 0), 0);
  ASSERT_GE(mes_charge("env/mesb.h", 1), 0);
  for (int i = 1; i <= count; ++i) {
    Objet* o = volume(i);
    ASSERT_EQ(vol_cube(o, 40), 0);
    const float d[3] = {-60.f + 30.f * static_cast<float>(i % 5), 0, 0};
    Transfo t;
    t.op = B_DEP;
    std::memcpy(t.v, d, sizeof d);
    transformer_vol(o, &t, nullptr, false);
  }
  oeil_courant.projection = 13;
  oeil_courant.oeil[2] = -400;
}

Objet* fonction_de_texte(const char* nom, const std::string& texte) {
  fonctions_analyse(texte.data(), texte.size());
  return fonction_trouve(nom);
}

std::vector<float> som(int num) {
  int n = 0, d = 3;
  const reel* s = vol_som(objet_trouve(B_VOL, 0, num, nullptr), &n, &d);
  return std::vector<float>(s, s + static_cast<long>(n) * d);
}
// Every test starts the scene with no frame rate: frames run when asked.
struct SceneGl : testing::Test {
  ArgsInter a;
  void SetUp() override { a.cadence = 0; }
  // A start that must fail: nothing runs, the shell keeps the idle event.
  std::string rate() {
    std::string s = sortie_de([&] { EXPECT_EQ(interaction_debut(a), -1); });
    EXPECT_FALSE(interaction_en_cours());
    EXPECT_EQ(fen.mode_interactif, 0);
    return s;
  }
  // The dynamics switched on for one test; its state and first value are
  // given back after it.
  reel* dyn_v = nullptr;
  mot dyn_etat = 0;
  float dyn_valeur = 0;
  void dynamique_allumee() {
    int n = 0;
    reel* v = mot_valeur(1, 150, &n);
    ASSERT_NE(v, nullptr);
    dyn_v = v, dyn_etat = etats[1][150], dyn_valeur = v[0];
    etats[1][150] = 1, v[0] = 1;
  }
  void TearDown() override {
    if (dyn_v) etats[1][150] = dyn_etat, dyn_v[0] = dyn_valeur;
  }
};
}  // namespace

TEST_F(SceneGl, CentImagesSansAllocation) {
  monde_scene(7);
  Objet* f = fonction_de_texte("tourne_gl", "tourne_gl()\n{\n  vol(3) roty(5)\n  vol(4) dep(1, 0, 0)\n}\n");
  ASSERT_NE(f, nullptr);
  ArgsInter a;
  a.fonc[1] = f;
  a.cadence = 0;
  ASSERT_EQ(interaction_debut(a), 0);
  ASSERT_TRUE(interaction_en_cours());
  // One frame first: the hook's function is linked by its first call.
  ASSERT_EQ(interaction_image(), 0);
  std::vector<float> avant3 = som(3);
  long appels = memoire.appels, compteur = memoire.compteur;
  for (int k = 0; k < 100; ++k) ASSERT_EQ(interaction_image(), 0) << k;
  EXPECT_EQ(memoire.appels, appels);
  EXPECT_EQ(memoire.compteur, compteur);
  EXPECT_EQ(interaction_num_image(), 101);
  // The hook did turn volume 3, 100 times 5 degrees.
  EXPECT_NE(som(3), avant3);
  interaction_fin();
  EXPECT_FALSE(interaction_en_cours());
  EXPECT_EQ(fen.mode_interactif, 0);
}

TEST_F(SceneGl, ValiderOuRestaurer) {
  monde_scene(2);
  const std::vector<float> depart = som(1);
  // "quitter en validant": the live placement goes into the vertices.
  ASSERT_EQ(interaction_debut(a), 0);
  Vol_inter* v = vol_inter_de(1);
  ASSERT_NE(v, nullptr);
  v->pos[0] = 17;
  EXPECT_EQ(sortie_de([&] { interaction_menu(2); }), "quitter en validant\n");
  EXPECT_FALSE(interaction_en_cours());
  std::vector<float> apres = som(1);
  ASSERT_EQ(apres.size(), depart.size());
  for (std::size_t k = 0; k < apres.size(); k += 3) EXPECT_FLOAT_EQ(apres[k], depart[k] + 17);
  // "quitter sans valider": vertices changed meanwhile come back.
  ASSERT_EQ(interaction_debut(a), 0);
  int n = 0, d = 3;
  reel* s = vol_som(objet_trouve(B_VOL, 0, 1, nullptr), &n, &d);
  s[0] = 999;
  ASSERT_EQ(interaction_image(), 0);
  EXPECT_EQ(sortie_de([&] { interaction_menu(1); }), "quitter sans valider\n");
  EXPECT_EQ(som(1), apres);
}

TEST_F(SceneGl, EntreesDuMenu) {
  monde_scene(3);
  ASSERT_EQ(interaction_debut(a), 0);
  struct {
    int entree;
    const char* ligne;
    int cmd;
  } cas[] = {{8, "tirer(vol)\n", 95}, {9, "dep(oeil)\n", 9}, {16, "dep(vol)\n", 31}};
  for (auto& c : cas) {
    EXPECT_EQ(sortie_de([&] { interaction_menu(c.entree); }), c.ligne);
    EXPECT_EQ(inter.cmd_souris, c.cmd);
  }
  testing::internal::CaptureStdout();
  interaction_menu(7);
  interaction_menu(17);
  EXPECT_EQ(inter.projection, 13);
  interaction_menu(18);
  EXPECT_EQ(inter.projection, 63);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "rayon\npers\northo\n");
  EXPECT_EQ(inter.cmd_rayon, 68);
  // reset: the mouse forgets, the records go back to their start.
  vol_inter_de(2)->rotx = 45;
  EXPECT_EQ(sortie_de([&] { interaction_menu(4); }), "reset\n");
  EXPECT_EQ(inter.cmd_souris, 0);
  EXPECT_EQ(vol_inter_de(2)->rotx, 0);
  // A frame at ortho still draws; an entry past 18 does nothing.
  EXPECT_EQ(interaction_image(), 0);
  EXPECT_EQ(sortie_de([] { interaction_menu(19), interaction_menu(-3); }), "");
  interaction_fin();
}

TEST_F(SceneGl, GlissementDeLOeil) {
  monde_scene(2);
  ASSERT_EQ(interaction_debut(a), 0);
  // A record far out of the window: the eye glides to it in 4 frames.
  Vol_inter* v = vol_inter_de(2);
  v->pos[0] = 5000;
  const Oeil depart = oeil_courant;
  ASSERT_EQ(inter_glide(2, 4), 0);
  ASSERT_EQ(interaction_image(), 0);
  EXPECT_GT(oeil_courant.vise[0], depart.vise[0]);
  EXPECT_LT(oeil_courant.vise[0], v->pos[0] + v->centre[0]);
  for (int k = 0; k < 5; ++k) ASSERT_EQ(interaction_image(), 0);
  EXPECT_NEAR(oeil_courant.vise[0], v->pos[0] + v->centre[0], 1e-2);
  EXPECT_NEAR(oeil_courant.oeil[2] - oeil_courant.vise[2], depart.oeil[2] - depart.vise[2], 1e-2);
  // One already in the window: no glide.
  const Oeil ici = oeil_courant;
  ASSERT_EQ(inter_glide(2, 4), 0);
  ASSERT_EQ(interaction_image(), 0);
  EXPECT_EQ(oeil_courant.vise[0], ici.vise[0]);
  EXPECT_NE(sortie_de([&] { EXPECT_EQ(inter_glide(99, 4), -1); }).find("99: "), std::string::npos);
  interaction_fin();
}

// A cloth in the live scene with the dynamics on: a 9 x 9 spring grid
// falling under a field onto a collider plane. Its lowest point goes down
// from frame to frame, then stops on the plane; no Bloc is allocated once
// the first frame made the velocity blocks.
namespace {
Objet* grille_xz(int numero, int n, float pas, float y) {
  std::vector<float> s;
  std::vector<std::vector<int>> f;
  const float o = -pas * static_cast<float>(n - 1) / 2;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) s.insert(s.end(), {o + pas * static_cast<float>(i), y, o + pas * static_cast<float>(j)});
  for (int j = 0; j + 1 < n; ++j)
    for (int i = 0; i + 1 < n; ++i) f.push_back({j * n + i + 1, (j + 1) * n + i + 1, (j + 1) * n + i + 2, j * n + i + 2});
  return volume_de(s, f, numero);
}

// The window's picture, as the frame left it.
std::vector<unsigned char> photo() {
  std::vector<unsigned char> p(3 * static_cast<std::size_t>(fen.dimx) * fen.dimy);
  glFinish();
  glReadBuffer(GL_BACK);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, fen.dimx, fen.dimy, GL_RGB, GL_UNSIGNED_BYTE, p.data());
  return p;
}

float plus_bas(int num) {
  std::vector<float> s = som(num);
  float m = 1e30f;
  for (std::size_t k = 1; k < s.size(); k += 3) m = std::min(m, s[k]);
  return m;
}
}  // namespace

TEST_F(SceneGl, DrapTombeSurUnCollisionneur) {
  monde_scene(0);
  Objet* drap = grille_xz(1, 9, 10, 20);
  Objet* sol = grille_xz(2, 25, 5, -30);
  mot* nv = gen_normale_som(sol, nullptr, 0);
  ASSERT_NE(nv, nullptr);
  ASSERT_GT(reels(valeur_de(nv) + 4)[1], 0.99f);  // the plane faces the cloth
  const float un = 1, res[2] = {0.15f, -0.02f}, col[4] = {2, 3, 0, 6}, lim = 3;
  attribut_ecrit_1(drap, 1, 112, &un, 1, 1);  // mas
  attribut_ecrit_1(drap, 1, 151, res, 2, 1);  // ressort
  attribut_ecrit_1(drap, 1, 153, col, 4, 1);  // col
  attribut_ecrit_2(drap, 1, 111, 0, 41, &lim, 1, 1);  // vit lim
  Objet* g = objet_cree(1, B_CHA, 0, nullptr, nullptr, 1);
  const float gravite[3] = {0, -0.2f, 0};
  attribut_ecrit_1(g, 1, 42, gravite, 3, 1);  // coe
  lumiere(1, {{86, {0, 400, -300}}});
  oeil_courant.oeil[0] = 0, oeil_courant.oeil[1] = 150, oeil_courant.oeil[2] = -250;
  ASSERT_NO_FATAL_FAILURE(dynamique_allumee());
  ASSERT_EQ(interaction_debut(a), 0);
  std::vector<float> bas;
  std::vector<unsigned char> p1;
  long appels = 0;
  for (int k = 1; k <= 60; ++k) {
    ASSERT_EQ(interaction_image(), 0) << k;
    bas.push_back(plus_bas(1));
    if (k == 1) p1 = photo();
    if (k == 13) appels = memoire.appels;
  }
  EXPECT_EQ(memoire.appels, appels);
  const std::vector<unsigned char> p60 = photo();
  interaction_fin();
  // Down at every frame until it meets the plane...
  for (int k = 1; k < 12; ++k) EXPECT_LT(bas[k], bas[k - 1]) << "frame " << k + 1;
  EXPECT_LT(bas[11], 15);
  // ... then held on it: never far below, and no longer going down.
  for (int k = 20; k < 60; ++k) EXPECT_GT(bas[k], -30 - 7) << "frame " << k + 1;
  EXPECT_NEAR(bas[59], bas[45], 1.0f);
  // The frames differ: the cloth moved in the picture, and it shows.
  EXPECT_GT(std::count_if(p1.begin(), p1.end(), [](unsigned char c) { return c > 20; }), 100);
  EXPECT_NE(p1, p60);
}

// The background image under the scene, stretched to the window, and its
// fade into a second image; the first frames' overlay. Each frame's
// pixels are read back by the frame's own capture into the working image.
namespace {
// An image of w x h: left half (r1, g1, b1), right half (r2, g2, b2).
void image_deux(int num, int w, int h, const int c1[3], const int c2[3]) {
  mot* b = ima_alloue(w, h);
  ASSERT_NE(b, nullptr);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x)
      for (int c = 0; c < 3; ++c) ima_rouge(b, y)[c * w + x] = static_cast<octet>(x < w / 2 ? c1[c] : c2[c]);
  ASSERT_EQ(ima_installe(num, b), 0);
}

std::array<int, 3> pixel(int x, int y) {
  const mot* im = ima_ecran();
  const int w = ima_l(im);
  const octet* r = ima_rouge(im, y);
  return {r[x], r[w + x], r[2 * w + x]};
}

bool proche(std::array<int, 3> p, const int c[3], int tol) {
  for (int k = 0; k < 3; ++k)
    if (std::abs(p[k] - c[k]) > tol) return false;
  return true;
}

// White pixels of the frame's picture in the rectangle.
int blancs(int x1, int y1, int x2, int y2) {
  int n = 0;
  for (int y = y1; y < y2; ++y)
    for (int x = x1; x < x2; ++x) {
      auto p = pixel(x, y);
      n += p[0] > 200 && p[1] > 200 && p[2] > 200;
    }
  return n;
}
}  // namespace

TEST_F(SceneGl, ImageDeFondEtFondu) {
  monde_scene(1);
  ASSERT_EQ(image_ecran_taille(200, 200), 0);
  const int rouge[3] = {230, 20, 10}, bleu[3] = {15, 30, 240}, vert[3] = {10, 220, 40}, jaune[3] = {250, 240, 5};
  // 73 x 41: odd sizes, stretched to the 200 x 200 window.
  image_deux(7, 73, 41, rouge, bleu);
  image_deux(8, 73, 41, vert, jaune);
  const std::string dir = ::testing::TempDir();
  const std::string nom = dir + "fond_.png";
  a.nom_images = nom.c_str();
  ASSERT_EQ(interaction_debut(a), 0);
  EXPECT_NE(sortie_de([&] { EXPECT_EQ(inter_fond(3311, 0, 0), -1); }).find("3311: "), std::string::npos);
  EXPECT_EQ(inter.num_fond, 0);
  ASSERT_EQ(inter_fond(7, 0, 0), 0);
  ASSERT_EQ(interaction_image(), 0);
  // The corners show the image's halves; the cube in the middle hides it.
  EXPECT_TRUE(proche(pixel(3, 3), rouge, 2));
  EXPECT_TRUE(proche(pixel(196, 196), bleu, 2));
  EXPECT_TRUE(proche(pixel(90, 197), rouge, 2));
  EXPECT_TRUE(proche(pixel(110, 2), bleu, 2));
  int cube = 0;
  for (int y = 0; y < 200; ++y)
    for (int x = 0; x < 200; ++x) cube += !proche(pixel(x, y), rouge, 30) && !proche(pixel(x, y), bleu, 30);
  EXPECT_GT(cube, 200);
  EXPECT_LT(cube, 200 * 200 / 2);
  // A fade over 4 frames: between the two images, then the second alone.
  ASSERT_EQ(inter_fond(7, 8, 4), 0);
  ASSERT_EQ(interaction_image(), 0);  // k = 4 / 4: the first image
  EXPECT_TRUE(proche(pixel(3, 3), rouge, 2));
  ASSERT_EQ(interaction_image(), 0);  // 3 / 4
  ASSERT_EQ(interaction_image(), 0);  // 2 / 4: half of each
  const int mi[3] = {(rouge[0] + vert[0]) / 2, (rouge[1] + vert[1]) / 2, (rouge[2] + vert[2]) / 2};
  EXPECT_TRUE(proche(pixel(3, 3), mi, 3)) << pixel(3, 3)[0] << " " << pixel(3, 3)[1];
  ASSERT_EQ(interaction_image(), 0);  // 1 / 4, the fade ends
  EXPECT_EQ(inter.num_fond, 8);
  ASSERT_EQ(interaction_image(), 0);
  EXPECT_TRUE(proche(pixel(3, 3), vert, 2)) << pixel(3, 3)[0] << " " << pixel(3, 3)[1] << " " << pixel(3, 3)[2];
  EXPECT_TRUE(proche(pixel(196, 196), jaune, 2)) << pixel(196, 196)[0] << " " << pixel(196, 196)[1] << " " << pixel(196, 196)[2];
  // The image removed meanwhile: the cleared colour again, no fault.
  objet_supprime(ima_objet(8));
  objet_supprime(ima_objet(7));
  ASSERT_EQ(interaction_image(), 0);
  EXPECT_EQ(inter.num_fond, 0);
  EXPECT_FALSE(proche(pixel(3, 3), vert, 30));
  interaction_fin();
}

TEST_F(SceneGl, SurimpressionDesPremieresImages) {
  monde_scene(0);
  ASSERT_EQ(image_ecran_taille(200, 200), 0);
  a.nb_premieres = 3;
  const std::string nom = ::testing::TempDir() + "premieres_.png";
  a.nom_images = nom.c_str();
  ASSERT_EQ(interaction_debut(a), 0);
  // The text sits at the top left of the window over the first 3 frames
  // only; the rest of the window stays the background.
  for (int k = 1; k <= 5; ++k) {
    ASSERT_EQ(interaction_image(), 0);
    const int haut = blancs(0, 150, 120, 200), bas = blancs(0, 0, 200, 120);
    if (k <= 3)
      EXPECT_GT(haut, 20) << k;
    else
      EXPECT_EQ(haut, 0) << k;
    EXPECT_EQ(bas, 0) << k;
  }
  interaction_fin();
}

// The record's faces as vertex addresses; a volume whose faces name a
// vertex it does not have: its builder names itself, nothing starts, the
// records already made are freed and the objects stay as they were.
TEST_F(SceneGl, FacesEnAdressesEtConstructeurQuiEchoue) {
  monde_scene(2);
  ASSERT_EQ(interaction_debut(a), 0);
  const Vol_inter* v = vol_inter_de(2);
  ASSERT_NE(v, nullptr);
  ASSERT_NE(v->fac_poi, nullptr);
  ASSERT_EQ(v->fac_poi[0], v->fac[0]);
  // Every vertex number k of the faces became the address of vertex k.
  long vus = 0;
  const mot* f = v->fac + 4;
  const mot* p = v->fac_poi + 4;
  for (int i = 0; i < v->nb_fac; ++i, f += f[0], p += p[0]) {
    ASSERT_EQ(f[0], p[0]);
    for (int j = 4; j < f[0]; ++j, ++vus)
      EXPECT_EQ(mot_vers_ptr(p[j]), v->som + static_cast<long>(f[j] - 1) * v->stride) << i << " " << j;
  }
  EXPECT_EQ(vus, 24);
  interaction_fin();

  // Volume 3: its second face names vertex 4097 of 8.
  int n = 0, d = 3;
  const reel* s1 = vol_som(objet_trouve(B_VOL, 0, 1, nullptr), &n, &d);
  std::vector<float> s(s1, s1 + 3L * n);
  Objet* o = volume_de(s, {{1, 2, 3, 4}, {5, 6, 7, 8}}, 3);
  ASSERT_NE(o, nullptr);
  // Written past the check that a face list gets when it is given.
  mot* fb = vol_fac(o);
  ASSERT_NE(fb, nullptr);
  mot* f2 = fb + 4 + fb[4];
  ASSERT_EQ(f2[6], 7);
  f2[6] = 4097;
  const std::vector<float> avant1 = som(1), avant3 = som(3);
  // Twice: the second attempt leaves as many live blocks as the first
  // (what the first made on the objects stays with them).
  long vivants[2] = {0, 0};
  for (long& viv : vivants) {
    const std::string sortie = rate();
    EXPECT_NE(sortie.find("\ninteraction_creer_1(3)\n"), std::string::npos) << sortie;
    viv = memoire.compteur;
  }
  EXPECT_EQ(vivants[0], vivants[1]);
  EXPECT_EQ(som(1), avant1);
  EXPECT_EQ(som(3), avant3);
  // Without it the others start again.
  objet_supprime(o);
  ASSERT_EQ(interaction_debut(a), 0);
  EXPECT_EQ(interaction_image(), 0);
  interaction_fin();
}

// A grid drawn as a cubic surface with the surfaces' state on: its net of
// 5 x 4 vertices, sampled three times finer, the tolerance from the
// window's width; a net whose size does not match its vertices is refused.
TEST_F(SceneGl, SurfaceNurbsDUneGrille) {
  monde_scene(0);
  ASSERT_EQ(image_ecran_taille(200, 200), 0);
  std::vector<float> s;
  std::vector<std::vector<int>> f;
  for (int j = 0; j <= 3; ++j)
    for (int i = 0; i <= 4; ++i)
      s.insert(s.end(), {-80.f + 40.f * static_cast<float>(i), -60.f + 40.f * static_cast<float>(j), (i == 2 && j == 1) ? -40.f : 0.f});
  for (int j = 0; j < 3; ++j)
    for (int i = 0; i < 4; ++i) f.push_back({j * 5 + i + 1, j * 5 + i + 2, (j + 1) * 5 + i + 2, (j + 1) * 5 + i + 1});
  Objet* o = volume_de(s, f, 1);
  ASSERT_NE(o, nullptr);
  o->f1 = 4, o->f2 = 3;
  lumiere(1, {{86, {0, 0, -1000}}});
  const float sub = 2, tol = 4;
  attribut_ecrit_1(o, 1, 45, &sub, 1, 1);
  attribut_ecrit_2(o, 1, 45, 1, 85, &tol, 1, 1);
  const mot etat_avant = etats[1][45];
  etats[1][45] = 1;
  const std::string nom = ::testing::TempDir() + "nurbs_.png";
  a.nom_images = nom.c_str();
  ASSERT_EQ(interaction_debut(a), 0);
  const Vol_inter* v = vol_inter_de(1);
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v->nu, 12);
  EXPECT_EQ(v->nv, 9);
  EXPECT_FLOAT_EQ(v->tol_nurbs, 50);
  ASSERT_EQ(interaction_image(), 0);
  // The surface covers the middle of the window, not its corners.
  int vus = 0;
  for (int y = 0; y < 200; ++y)
    for (int x = 0; x < 200; ++x) {
      auto p = pixel(x, y);
      vus += p[0] + p[1] + p[2] > 30;
    }
  EXPECT_GT(vus, 2000);
  EXPECT_LT(vus, 200 * 200 - 2000);
  interaction_fin();
  // The same surface with a net of 4 x 4 announced over 20 vertices.
  o->f2 = 4;
  EXPECT_NE(rate().find("objet_incoherent\ninteraction_creer_1(1)\n"), std::string::npos);
  etats[1][45] = etat_avant;
}

namespace {
// Vertex k (from 0) of a working grid.
std::array<float, 3> sommet_grille(const Grille_inter* g, int k) {
  const reel* s = reels(g->som + 4) + 3L * k;
  return {s[0], s[1], s[2]};
}
}  // namespace

// A surface of lines: its rows are the vertices of other volumes (all of a
// line, or those it names, in its order), its pins put a vertex on a vertex
// of another volume; at every frame it follows where they stand, with no
// allocation; rows of different lengths, an unknown line, a vertex out of
// range and pins not in triples are refused, nothing started.
TEST_F(SceneGl, SurfaceDeLignes) {
  monde_scene(0);
  const std::vector<float> l1 = {-50.5f, 10, 3, -17.25f, 12, 3, 16, 9.5f, 3, 49, 11, 3};
  const std::vector<float> l2 = {-51, 40.75f, 3, -18, 41, 3, 15.5f, 39, 3, 48.25f, 42, 3};
  std::vector<float> l3;
  for (int i = 0; i < 6; ++i) l3.insert(l3.end(), {-70.f + 27.5f * i, -33.f - i, 3.f + 0.5f * i});
  volume_de(l1, {{1, 2}, {2, 3}, {3, 4}}, 1);
  volume_de(l2, {{1, 2}, {2, 3}, {3, 4}}, 2);
  volume_de(l3, {{1, 2}}, 3);
  Objet* n = volume(4);
  n->sous_type = 79;
  // Each value written afresh, whatever its length before.
  auto lignes = [n](const std::vector<float>& x) {
    const mot k[2] = {1, 79};
    attribut_supprime(n, 1, k);
    ASSERT_NE(attribut_ecrit_1(n, 1, 79, x.data(), static_cast<int>(x.size()), 1), nullptr);
  };
  auto epingles = [n](const std::vector<float>& x) {
    const mot k[4] = {1, 79, 1, 30};
    attribut_supprime(n, 2, k);
    ASSERT_NE(attribut_ecrit_2(n, 1, 79, 1, 30, x.data(), static_cast<int>(x.size()), 1), nullptr);
  };
  // Row 1: line 3's vertices 6, 4, 2, 1; row 2: all of line 1; row 3: line 2.
  const std::vector<float> rangs = {3, 6, 4, 2, 1, 0, 1, 0, 2};
  lignes(rangs);
  epingles({12, 3, 5});
  ASSERT_EQ(interaction_debut(a), 0);
  Vol_inter* v = vol_inter_de(4);
  ASSERT_NE(v, nullptr);
  ASSERT_NE(v->nappe, nullptr);
  const Grille_inter* g = v->nappe->grille;
  ASSERT_NE(g, nullptr);
  EXPECT_EQ(g->ns, 12);
  EXPECT_EQ(g->nf, 6);
  // Face 1 is the quad 1, 2, 6, 5, its addresses those of the grid.
  const mot* f = g->fac + 4;
  EXPECT_EQ(std::vector<mot>(f + 4, f + 8), (std::vector<mot>{1, 2, 6, 5}));
  EXPECT_EQ(mot_vers_ptr(g->fac_poi[4 + 4 + 2]), reels(g->som + 4) + 3 * 5);
  // Neighbours: a corner has one face, an edge vertex two, the inside four.
  const mot* nb = g->voisin + 4;
  std::vector<int> comptes;
  for (int k = 0; k < g->ns; ++k, nb += nb[0]) comptes.push_back(nb[0] - 1);
  EXPECT_EQ(comptes, (std::vector<int>{1, 2, 2, 1, 2, 4, 4, 2, 1, 2, 2, 1}));
  const int ordre3[] = {6, 4, 2, 1};
  for (int k = 0; k < 4; ++k) {
    const float* p = &l3[3 * (ordre3[k] - 1)];
    EXPECT_EQ(sommet_grille(g, k), (std::array<float, 3>{p[0], p[1], p[2]})) << k;
    EXPECT_EQ(sommet_grille(g, 4 + k), (std::array<float, 3>{l1[3 * k], l1[3 * k + 1], l1[3 * k + 2]})) << k;
  }
  // Vertex 12 is pinned on line 3's fifth vertex.
  EXPECT_EQ(sommet_grille(g, 11), (std::array<float, 3>{l3[12], l3[13], l3[14]}));
  // Rows 2 and 3 lie in z = 3: the normals there are +z (x right, y down).
  proche(reels(g->nfac + 4) + 3 * 3, {0, 0, 1});
  EXPECT_NEAR(reels(g->nsom + 4)[3 * 8 + 2], 1, 1e-5);
  ASSERT_NE(v->rt, nullptr);
  // Line 2 and line 3 move; the rows and the pin follow them frame by frame.
  ASSERT_EQ(interaction_image(), 0);
  Vol_inter* v2 = vol_inter_de(2);
  Vol_inter* v3 = vol_inter_de(3);
  long appels = memoire.appels;
  for (int t = 1; t <= 20; ++t) {
    v2->pos[0] = 7.f * t, v2->pos[1] = -3, v2->pos[2] = 11.5f;
    v3->pos[2] = -250.f + t;
    ASSERT_EQ(interaction_image(), 0) << t;
  }
  EXPECT_EQ(memoire.appels, appels);
  for (int k = 0; k < 3; ++k) {
    proche(sommet_grille(g, 8 + k).data(), {l2[3 * k] + 140, l2[3 * k + 1] - 3, 14.5f}, 1e-3f);
    EXPECT_NEAR(sommet_grille(g, k)[2], l3[3 * (ordre3[k] - 1) + 2] - 230, 1e-3) << k;
  }
  EXPECT_NEAR(sommet_grille(g, 11)[2], l3[14] - 230, 1e-3);
  EXPECT_EQ(std::vector<float>(v->rt->som, v->rt->som + 36),
            std::vector<float>(reels(g->som + 4), reels(g->som + 4) + 36));
  interaction_fin();
  EXPECT_EQ(som(1), l1);
  EXPECT_EQ(som(2), l2);
  EXPECT_EQ(som(3), l3);

  // Refusals (rows of different lengths, an unknown line, a vertex out of
  // range, a line number that is no whole number, pins not in triples),
  // each naming what it refuses and leaving the objects and no block.
  lignes({1, 0, 3});
  EXPECT_NE(rate().find("objet_incoherent\ninteraction_creer_1(4)\n"), std::string::npos);
  const long vivants = memoire.compteur;
  const struct {
    std::vector<float> lignes, epingles;
    const char* debut;
  } refus[] = {{{1, 0, 3}, {12, 3, 5}, "objet_incoherent\n"},
               {{1, 0, 99}, {12, 3, 5}, "99: "},
               {{1, 1, 2, 3, 0, 3, 1, 2, 7}, {12, 3, 5}, "7: "},
               {{1, 0, 2.5f}, {12, 3, 5}, ""},
               {rangs, {1, 3}, ""}};
  for (const auto& r : refus) {
    lignes(r.lignes);
    epingles(r.epingles);
    const std::string s = rate();
    EXPECT_NE(s.find(r.debut), std::string::npos) << s;
    EXPECT_NE(s.find("interaction_creer_1(4)\n"), std::string::npos) << s;
  }
  EXPECT_EQ(memoire.compteur, vivants);
  EXPECT_EQ(som(1), l1);
  EXPECT_EQ(som(2), l2);
}

// A smooth surface's net sampled finer: with a net that does not change
// across its rows, the samples follow the cubic basis over the knots
// 0 0 0 0 .5 1 1 1 1 (at u = .25: 1/8, 19/32, 1/4, 1/32, 0); a flat net
// gives flat samples with +-z normals, a random one keeps its corners and
// stays within its values; a net changed in the object is sampled again.
TEST_F(SceneGl, SurfaceFineDUnFilet) {
  monde_scene(0);
  const mot etat_avant = etats[1][45];
  etats[1][45] = 1;
  auto filet = [](int num, int cx, int cy, const std::function<float(int, int)>& z) {
    std::vector<float> s;
    std::vector<std::vector<int>> f;
    for (int j = 0; j < cy; ++j)
      for (int i = 0; i < cx; ++i) s.insert(s.end(), {-90.5f + 33.f * i, -70.f + 41.25f * j, z(i, j)});
    for (int j = 0; j + 1 < cy; ++j)
      for (int i = 0; i + 1 < cx; ++i) f.push_back({j * cx + i + 1, j * cx + i + 2, (j + 1) * cx + i + 2, (j + 1) * cx + i + 1});
    Objet* o = volume_de(s, f, num);
    o->f1 = static_cast<std::int16_t>(cx - 1), o->f2 = static_cast<std::int16_t>(cy - 1);
    return s;
  };
  const float un = 1;
  // Volume 1: columns 0, 0, 16, 0, 32 - 32 at the last column's clamp.
  filet(1, 5, 4, [](int i, int) { return i == 2 ? 16.f : (i == 0 ? 32.f : 0.f); });
  // Volume 2: flat at z = 123.25; volume 3: 7 x 5 random heights.
  filet(2, 5, 4, [](int, int) { return 123.25f; });
  std::srand(4097);
  const std::vector<float> s3 = filet(3, 7, 5, [](int, int) { return static_cast<float>(std::rand() % 200001 - 100000) / 97.f; });
  for (int k = 1; k <= 3; ++k) attribut_ecrit_1(objet_trouve(B_VOL, 0, k, nullptr), 1, 45, &un, 1, 1);
  ASSERT_EQ(interaction_debut(a), 0);
  const Vol_inter* v1 = vol_inter_de(1);
  ASSERT_NE(v1, nullptr);
  ASSERT_NE(v1->fine, nullptr);
  const Grille_inter* g = v1->fine;
  EXPECT_EQ(g->ns, 9 * 7);
  EXPECT_EQ(g->nf, 48);
  for (int j = 0; j <= 6; ++j) {
    EXPECT_NEAR(sommet_grille(g, 9 * j + 0)[2], 32, 1e-4) << j;
    EXPECT_NEAR(sommet_grille(g, 9 * j + 2)[2], 32 * 0.125f + 16 * 0.25f, 1e-4) << j;
    EXPECT_NEAR(sommet_grille(g, 9 * j + 4)[2], 8, 1e-4) << j;
    EXPECT_NEAR(sommet_grille(g, 9 * j + 8)[2], 0, 1e-4) << j;
    EXPECT_NEAR(sommet_grille(g, 9 * j + 4)[0], -90.5f + 66, 1e-3) << j;
  }
  EXPECT_NEAR(sommet_grille(g, 0)[1], -70, 1e-4);
  EXPECT_NEAR(sommet_grille(g, 62)[1], -70 + 3 * 41.25f, 1e-3);
  const Grille_inter* g2 = vol_inter_de(2)->fine;
  ASSERT_NE(g2, nullptr);
  for (int k = 0; k < g2->ns; ++k) {
    EXPECT_NEAR(sommet_grille(g2, k)[2], 123.25f, 1e-3) << k;
    EXPECT_NEAR(std::fabs(reels(g2->nsom + 4)[3 * k + 2]), 1, 1e-5) << k;
  }
  const Grille_inter* g3 = vol_inter_de(3)->fine;
  ASSERT_NE(g3, nullptr);
  EXPECT_EQ(g3->ns, 13 * 9);
  const float bas = *std::min_element(s3.begin(), s3.end()), haut = *std::max_element(s3.begin(), s3.end());
  const int coins[4][2] = {{0, 0}, {12, 6}, {8 * 13, 28}, {8 * 13 + 12, 34}};
  for (auto [k, c] : coins)
    for (int q = 0; q < 3; ++q) EXPECT_NEAR(sommet_grille(g3, k)[q], s3[3 * c + q], 1e-2) << k << " " << q;
  for (int k = 0; k < g3->ns; ++k) {
    float z = sommet_grille(g3, k)[2];
    EXPECT_GE(z, bas - 1e-2) << k;
    EXPECT_LE(z, haut + 1e-2) << k;
  }
  // The net's middle column raised to 48 in the object: from the next
  // frame the samples follow, with no allocation.
  ASSERT_EQ(interaction_image(), 0);
  int n1 = 0, d1 = 3;
  reel* s1 = vol_som(objet_trouve(B_VOL, 0, 1, nullptr), &n1, &d1);
  ASSERT_EQ(n1, 20);
  const long appels = memoire.appels;
  for (int j = 0; j < 4; ++j) s1[(5 * j + 2) * d1 + 2] = 48;
  ASSERT_EQ(interaction_image(), 0);
  for (int j = 0; j <= 6; ++j) {
    EXPECT_NEAR(sommet_grille(g, 9 * j + 2)[2], 32 * 0.125f + 48 * 0.25f, 1e-4) << j;
    EXPECT_NEAR(sommet_grille(g, 9 * j + 4)[2], 24, 1e-4) << j;
    EXPECT_NEAR(sommet_grille(g, 9 * j + 0)[2], 32, 1e-4) << j;
  }
  for (int k = 0; k < 10; ++k) ASSERT_EQ(interaction_image(), 0);
  EXPECT_EQ(memoire.appels, appels);
  interaction_fin();
  etats[1][45] = etat_avant;
}

// What a running record takes from its volume follows the volume between
// frames, as typed lines change it: a limit rewritten longer (its block
// moves) holds at the next dynamics step and mouse drag, a removed one no
// more; the frame's force and the trace, moved or removed, are written where
// they now are or not at all; vertices given anew are dragged where they
// now are; a deleted volume's record keeps its place and its own values
// but is no longer drawn or dragged, the other goes on, and the end
// restores what remains.
TEST_F(SceneGl, LeRecordSuitSonVolume) {
  monde_scene(2);
  Objet* o = objet_trouve(B_VOL, 0, 1, nullptr);
  const float rx[2] = {-0.5f, 0.5f}, dep[6] = {-10, -10, -10, 10, 10, 10}, f0[3] = {0, 0, 0};
  attribut_ecrit_2(o, 1, B_ROTX, 0, A_LIM, rx, 2, 1);
  attribut_ecrit_2(o, 1, B_DEP2, 0, A_LIM, dep, 6, 1);
  attribut_ecrit_2(o, 1, 113, 1, 130, f0, 3, 1);
  ASSERT_NO_FATAL_FAILURE(dynamique_allumee());
  a.nb_traces = 2;
  ASSERT_EQ(interaction_debut(a), 0);
  Vol_inter* v = vol_inter_de(1);
  ASSERT_NE(v, nullptr);
  ASSERT_EQ(interaction_image(), 0);
  // Limits moved, then removed.
  const float rx2[4] = {-1, 1, 0, 0};
  attribut_ecrit_2(o, 1, B_ROTX, 0, A_LIM, rx2, 4, 1);
  const float dep2[12] = {-5, -5, -5, 5, 5, 5};
  attribut_ecrit_2(o, 1, B_DEP2, 0, A_LIM, dep2, 12, 1);
  v->rotx = 500, v->pos[0] = 300;
  ASSERT_EQ(interaction_image(), 0);
  EXPECT_NEAR(v->rotx, 57.295776f, 1e-3);
  EXPECT_EQ(v->pos[0], 5);
  inter.cmd_souris = 35, inter.souris_active = 1, v->actif = 1;
  inter.pick_x = 100;
  attribut_ecrit_2(o, 1, B_ROTX, 0, A_LIM, rx2, 4, 1);
  const float rx3[6] = {-2, 2};
  attribut_ecrit_2(o, 1, B_ROTX, 0, A_LIM, rx3, 6, 1);
  inter_mouvement(-5000, 100);
  EXPECT_NEAR(v->rotx, 2 * 57.295776f, 1e-3);
  const mot kx[4] = {1, B_ROTX, 0, A_LIM}, kd[4] = {1, B_DEP2, 0, A_LIM};
  attribut_supprime(o, 2, kx);
  attribut_supprime(o, 2, kd);
  inter_mouvement(-5000, 100);
  EXPECT_GT(v->rotx, 1000);
  v->rotx = 500, v->pos[0] = 300;
  ASSERT_EQ(interaction_image(), 0);
  EXPECT_EQ(v->rotx, 500);
  EXPECT_EQ(v->pos[0], 300);
  v->actif = 0, inter.souris_active = 0;
  // The frame's force moved: the new one is zeroed, all of its first three.
  const float f6[6] = {5, 5, 5, 7, 7, 7};
  attribut_ecrit_2(o, 1, 113, 1, 130, f6, 6, 1);
  ASSERT_EQ(interaction_image(), 0);
  const mot kf[4] = {1, 113, 1, 130};
  EXPECT_EQ(floats(vol_valeur(o, 2, kf)), (std::vector<float>{0, 0, 0, 7, 7, 7}));
  // The trace removed: the frames go on without it.
  const mot kt[2] = {1, 28};
  attribut_supprime(o, 1, kt);
  ASSERT_EQ(interaction_image(), 0);
  // 27 vertices in place of 8: vertex 20 dragged lands in the new block.
  std::vector<float> s27(81, 1.f);
  ASSERT_EQ(vol_som_ecrit(o, s27.data(), 27, 3), 0);
  inter.cmd_souris = 95, inter.souris_active = 1, v->actif = 1, v->courant = 20;
  inter_mouvement(130, 110);
  EXPECT_EQ(som(1)[3 * 19], 30);
  EXPECT_EQ(som(1)[3 * 19 + 1], 10);
  v->actif = 0, inter.souris_active = 0;
  ASSERT_EQ(interaction_image(), 0);
  // Deleted: frames, a drag and the end with the other.
  objet_supprime(o);
  ASSERT_EQ(interaction_image(), 0);
  v->actif = 1, inter.souris_active = 1;
  inter_mouvement(140, 90);
  ASSERT_EQ(interaction_image(), 0);
  EXPECT_EQ(vol_inter_de(1), v);
  EXPECT_EQ(v->rt, nullptr);
  EXPECT_EQ(v->som, nullptr);
  ASSERT_NE(vol_inter_de(2)->rt, nullptr);
  EXPECT_EQ(sortie_de([&] { interaction_menu(1); }), "quitter sans valider\n");
  EXPECT_EQ(objet_trouve(B_VOL, 0, 1, nullptr), nullptr);
}
