// The table of textures with no GL context (no window): records keep their
// pixels only, many times made, replaced from files and freed with no
// growth of the arena or of the heap; the texture lists of a volume read
// per face, with their bad entries (an image that does not exist, by number
// or by name, a face's 101st texture, an image of width 0).
#include <malloc.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "display/display.h"
#include "geom/geom.h"
#include "image/image.h"
#include "tests/geom/outils.h"
#include "tests/outils/blocs.h"

namespace {
void monde_tex() {
  monde();
  static mot t[200];
  std::fill(t, t + 200, 0);
  t[54] = 1;
  etats[1] = t;
  nb_etats[1] = 200;
  textures_libere();
}

mot* damier(int w, int h, int graine) {
  mot* b = ima_alloue(w, h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < 3 * w; ++x) ima_rouge(b, y)[x] = static_cast<octet>((x / 3 + y + graine) & 1 ? 250 : 5);
  return b;
}

// An attribute of these keyword pairs whose value is the block `queue`
// (copied; the blocks a BLOC_BLOCS points at become the attribute's).
void attache(Objet* o, std::vector<mot> paires, const mot* queue) {
  mot n = static_cast<mot>(paires.size() / 2), h = 4 + 2 * n;
  mot* a = bloc_alloue(h + queue[0]);
  a[0] = h + queue[0];
  phrase_paires(a, n, paires.data());
  std::memcpy(a + h, queue, sizeof(mot) * queue[0]);
  ASSERT_GE(liste_ajoute(o, a), 0);
}

Objet* carre_double(int numero) {
  return volume_de({-1, -1, 0, 0, -1, 0, 0, 1, 0, -1, 1, 0, 1, -1, 0, 1, 1, 0}, {{1, 4, 3, 2}, {2, 3, 6, 5}}, numero);
}

TEST(Texture, ListesParFaceEtEntreesFausses) {
  monde_tex();
  ASSERT_EQ(ima_installe(3, damier(8, 8, 0)), 0);
  ASSERT_NE(objet_cree(1, BLOC_IMAGE, 0, damier(8, 8, 1), "damier", 4), nullptr);
  ASSERT_NE(ima_bloc(4), nullptr);
  std::vector<int> ima, toutes;
  // No list: no texture.
  Objet* o = carre_double(1);
  EXPECT_EQ(vol_textures(o, 2, ima), 0);
  EXPECT_TRUE(ima.empty());
  // The volume's list by name; face 2's own list by number.
  attache(o, {1, 54}, chaine("damier"));
  mot* v = vecteur({0, 3});
  attache(o, {1, 54, 1, 15}, v);
  EXPECT_EQ(vol_textures(o, 2, ima, &toutes), 0);
  EXPECT_EQ(ima, (std::vector<int>{4, 3}));
  EXPECT_EQ(toutes, (std::vector<int>{4, 3}));
  // The path that `vol fac(2) tex(3)` writes counts too.
  Objet* p = carre_double(2);
  attache(p, {1, 15, 1, 54}, vecteur({0, 3}));
  EXPECT_EQ(vol_textures(p, 2, ima), 0);
  EXPECT_EQ(ima, (std::vector<int>{0, 3}));
  std::vector<float> uv;
  int premiere = -1;
  EXPECT_EQ(vol_mappe(p, uv, &premiere), 0);
  EXPECT_EQ(uv.size(), 16u);

  // Bad entries: the message with the name or number, nothing kept.
  auto lit = [&](std::vector<mot*> faces) {
    Objet* q = carre_double(9);
    attache(q, {1, 54, 1, 15}, blocs(faces));
    std::string s = sortie_de([&] { EXPECT_EQ(vol_textures(q, 2, ima), -1); });
    objet_supprime(q);
    return s;
  };
  EXPECT_EQ(lit({vecteur({3}), chaine("absent")}), "absent: M9\n");
  EXPECT_EQ(lit({vecteur({3, 77})}), "77: M9\n");
  EXPECT_EQ(lit({vecteur({3, 1e30f})}), "1e+30: M9\n");
  // A face's 100 textures are taken, its 101st is refused.
  std::mt19937 g(101);
  std::vector<float> cent;
  for (int k = 0; k < TEX_FACE_MAX; ++k) cent.push_back(3 + static_cast<float>(g() % 2));
  Objet* q = carre_double(8);
  attache(q, {1, 54, 1, 15}, blocs({chaine("damier"), vecteur(cent)}));
  EXPECT_EQ(vol_textures(q, 2, ima, &toutes), 0);
  EXPECT_EQ(ima[1], static_cast<int>(cent[0]));
  EXPECT_EQ(toutes.size(), 101u);
  cent.push_back(4);
  EXPECT_EQ(lit({chaine("damier"), vecteur(cent)}), "101: M105\n");
  // An image of width 0 is no image: named by a list, it does not exist.
  mot* vide = damier(4, 4, 0);
  vide[4] = 0;
  Objet* z = objet_cree(1, BLOC_IMAGE, 0, vide, nullptr, 5);
  ASSERT_NE(z, nullptr);
  EXPECT_EQ(lit({vecteur({5})}), "5: M9\n");
  EXPECT_EQ(textures_creer(5), 0);
  EXPECT_EQ(textures_nb(), 0);
}

// Made, replaced from files and freed many times: the arena's count and the
// heap come back to where they were, every record its own pixels.
TEST(Texture, ManyTimesWithNoGrowth) {
  monde_tex();
  std::filesystem::path d = std::filesystem::temp_directory_path() / ("orvane-texfuite-" + std::to_string(getpid()));
  std::filesystem::create_directories(d);
  std::mt19937 g(7);
  for (int k = 0; k < 4; ++k) {
    mot* b = damier(1 + static_cast<int>(g() % 97), 1 + static_cast<int>(g() % 61), k);
    ASSERT_EQ(ima_ecrit_bmp(b, (d / ("f" + std::to_string(k) + ".bmp")).c_str()), 0);
    bloc_libere(b);
  }
  long arene = 0;
  std::size_t tas = 0;
  for (int tour = 0; tour < 6; ++tour) {
    for (int n = 10; n < 40; ++n) {
      ASSERT_EQ(ima_installe(n, damier(1 + static_cast<int>(g() % 300), 1 + static_cast<int>(g() % 9), n)), 0);
      EXPECT_EQ(textures_creer(n), 0);
      std::string f = (d / ("f" + std::to_string(n % 4))).string();
      EXPECT_EQ(charger_texture(f.c_str(), "bmp", n), 0);
      int w = 0, h = 0;
      const std::uint8_t* px = texture_pixels(n, &w, &h);
      ASSERT_NE(px, nullptr);
      EXPECT_GT(w * h, 0);
      // No window, no GL name.
      EXPECT_EQ(texture_nom(n), -1);
    }
    EXPECT_EQ(textures_nb(), 30);
    textures_libere();
    EXPECT_EQ(textures_nb(), 0);
    if (tour == 1) arene = memoire.compteur, tas = mallinfo2().uordblks;
    if (tour > 1) {
      EXPECT_EQ(memoire.compteur, arene) << tour;
      EXPECT_LE(mallinfo2().uordblks, tas + 65536) << tour;
    }
  }
  std::filesystem::remove_all(d);
}
}  // namespace
