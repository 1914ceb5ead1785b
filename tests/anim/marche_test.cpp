// A figure that walks, in a real window under Xvfb: a body and two legs of
// two segments hang from one another, sinusoid trajectories swing the
// thighs and bend the knees, and an anchor on the feet pins the support.
// The 100 frames are saved; in each, the figure's lowest point is the
// supporting foot (the world's y points down the screen, and the figure
// faces the eye). While one foot supports, its corner stays within one
// pixel; from one support to the next the feet land further on, and the
// figure has moved on at the end.
#include <filesystem>

#include "../display/outils_fenetre.h"
#include "image/image.h"

namespace {
namespace fs = std::filesystem;

// The lowest row of the figure (from the top) in a picture read back by the
// image reader (row 0 at the bottom), the right end of that row, and the
// figure's leftmost column.
struct Bas {
  int y = -1, x_droite = -1, x_gauche = 1 << 30;
};

Bas bas_de(const mot* im) {
  Bas b;
  const int l = ima_l(im), h = ima_h(im);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < l; ++x) {
      const octet* r = ima_rouge(im, h - 1 - y);
      if (r[x] == 0 && r[l + x] == 0 && r[2 * l + x] == 0) continue;
      b.x_gauche = std::min(b.x_gauche, x);
      if (y > b.y) b.y = y, b.x_droite = x;
      else if (y == b.y) b.x_droite = std::max(b.x_droite, x);
    }
  return b;
}

const char* const FIGURE[] = {
    "lum(1) som(0, 0, -1000)",
    "vol(1)",
    "vol(1) som = -200,-150,0, -40,-150,0, -40,-70,0, -200,-70,0",
    "vol(1) fac = 4,3,2,1",
    "vol(2)", "vol(3)", "vol(4)", "vol(5)",
    "vol(2) som = 0,0,0, 16,0,0, 16,120,0, 0,120,0",
    "vol(3) som = 0,0,0, 16,0,0, 16,120,0, 0,120,0",
    "vol(4) som = 0,0,0, 16,0,0, 16,120,0, 0,120,0",
    "vol(5) som = 0,0,0, 16,0,0, 16,120,0, 0,120,0",
    "vol(2) fac = 4,3,2,1", "vol(3) fac = 4,3,2,1", "vol(4) fac = 4,3,2,1", "vol(5) fac = 4,3,2,1",
    "oui anc",
};

TEST(Marche, LePiedPorteurResteSurPlaceEtLaFigureAvance) {
  Session s({"x=640", "y=480", "uti=tests/anim/fixtures"});
  ASSERT_TRUE(attend(s.p, "empilements", 20000));
  fs::path d = fs::temp_directory_path() / ("marche_" + std::to_string(getpid()));
  fs::remove_all(d);
  fs::create_directories(d);
  for (const char* l : FIGURE) tape(s.p, l);
  tape(s.p, "interaction vol(1, 2, 3, 4, 5) fonc(0, \"figure\") tem(100) cadence(0) nom_img(\"" +
                (d / "f.bmp").string() + "\")");
  // The frames are written, then the interaction ends.
  ASSERT_TRUE(s.attend_mode(0, 60000));
  ASSERT_TRUE(fs::exists(d / "f0100.bmp"));
  EXPECT_FALSE(fs::exists(d / "f0101.bmp"));
  ASSERT_TRUE(tas::init());
  std::vector<Bas> b;
  for (int k = 1; k <= 100; ++k) {
    char nom[32];
    std::snprintf(nom, sizeof nom, "f%04d.bmp", k);
    mot* im = ima_lit_fichier((d / nom).string());
    ASSERT_NE(im, nullptr) << nom;
    b.push_back(bas_de(im));
    bloc_libere(im);
    ASSERT_GE(b.back().y, 0) << nom << ": nothing drawn";
  }
  // Runs of frames on one support: its corner within one pixel of where the
  // run began. A foot that slid would give no long run at all.
  struct Appui {
    int debut, n, x, y;
  };
  std::vector<Appui> appuis;
  for (int k = 0; k < 100; ++k) {
    if (!appuis.empty() && std::abs(b[k].x_droite - appuis.back().x) <= 1 && std::abs(b[k].y - appuis.back().y) <= 1)
      ++appuis.back().n;
    else
      appuis.push_back({k, 1, b[k].x_droite, b[k].y});
  }
  std::vector<Appui> longs;
  int couverts = 0;
  for (const Appui& a : appuis)
    if (a.n >= 10) longs.push_back(a), couverts += a.n;
  ASSERT_GE(longs.size(), 2u);
  EXPECT_GE(couverts, 80);
  for (std::size_t k = 1; k < longs.size(); ++k) EXPECT_GT(longs[k].x, longs[k - 1].x + 10) << k;
  // The body has moved on with its feet.
  EXPECT_GT(b[99].x_gauche, b[0].x_gauche + 10);
  fs::remove_all(d);
}
}  // namespace
