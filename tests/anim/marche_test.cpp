// A figure that walks, in a real window under Xvfb: a body and two legs of
// two segments hang from one another, sinusoid trajectories swing the
// thighs and bend the knees, and an anchor on the feet pins the support.
// The 100 frames are saved; in each, the figure's lowest point is the
// supporting foot (the world's y points down the screen, and the figure
// faces the eye). While one foot supports, its corner stays within one
// pixel; from one support to the next the feet land further on, and the
// figure has moved on at the end.
#include <filesystem>
#include <fstream>

#include "../display/outils_fenetre.h"

namespace {
namespace fs = std::filesystem;

struct Image24 {
  int l = 0, h = 0;
  std::vector<unsigned char> rgb;
  bool fond(int x, int y) const {
    const unsigned char* c = &rgb[3 * (static_cast<std::size_t>(y) * l + x)];
    return c[0] == 0 && c[1] == 0 && c[2] == 0;
  }
};

// An uncompressed BMP of 24 bits, rows from the bottom (or the top).
bool lit_bmp(const fs::path& f, Image24* im) {
  std::ifstream i(f, std::ios::binary);
  std::vector<unsigned char> d((std::istreambuf_iterator<char>(i)), {});
  if (d.size() < 54 || d[0] != 'B' || d[1] != 'M') return false;
  auto u32 = [&](std::size_t o) { return static_cast<std::int32_t>(d[o] | d[o + 1] << 8 | d[o + 2] << 16 | d[o + 3] << 24); };
  const std::size_t off = static_cast<std::size_t>(u32(10));
  im->l = u32(18);
  const int h = u32(22);
  im->h = h < 0 ? -h : h;
  if (d[28] != 24 || im->l <= 0) return false;
  const std::size_t rang = (static_cast<std::size_t>(im->l) * 3 + 3) / 4 * 4;
  if (d.size() < off + rang * static_cast<std::size_t>(im->h)) return false;
  im->rgb.assign(static_cast<std::size_t>(im->l) * im->h * 3, 0);
  for (int y = 0; y < im->h; ++y) {
    const int yy = h > 0 ? im->h - 1 - y : y;
    for (int x = 0; x < im->l; ++x) {
      const unsigned char* s = &d[off + static_cast<std::size_t>(y) * rang + 3 * static_cast<std::size_t>(x)];
      unsigned char* o = &im->rgb[3 * (static_cast<std::size_t>(yy) * im->l + x)];
      o[0] = s[2], o[1] = s[1], o[2] = s[0];
    }
  }
  return true;
}

// The lowest row of the figure, the right end of that row, and the
// figure's leftmost column.
struct Bas {
  int y = -1, x_droite = -1, x_gauche = 1 << 30;
};

Bas bas_de(const Image24& im) {
  Bas b;
  for (int y = 0; y < im.h; ++y)
    for (int x = 0; x < im.l; ++x) {
      if (im.fond(x, y)) continue;
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
  bool fini = false;
  for (int t = 0; t < 60000 && !fini; t += 100) {
    auto v = valeurs(s.p, "fen");
    fini = fs::exists(d / "f0100.bmp") && v.size() > 2 && v[2] == 0;
    if (!fini) dort(100);
  }
  ASSERT_TRUE(fini);
  EXPECT_FALSE(fs::exists(d / "f0101.bmp"));
  std::vector<Bas> b;
  for (int k = 1; k <= 100; ++k) {
    char nom[16];
    std::snprintf(nom, sizeof nom, "f%04d.bmp", k);
    Image24 im;
    ASSERT_TRUE(lit_bmp(d / nom, &im)) << nom;
    b.push_back(bas_de(im));
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
