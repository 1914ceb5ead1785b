// A lit cube rendered by orvane with no window and saved as a PNG file by
// its own image writer: the file's pixels hold the cube's silhouette, as
// the eye's matrices place its corners, and the background everywhere else.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "../outils/processus.h"
#include "core/bloc.h"
#include "display/oeil.h"
#include "geom/geom.h"
#include "image/image.h"

namespace {
struct P {
  double x, y;
};

double croix(P o, P a, P b) { return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x); }

// Convex hull, counter-clockwise.
std::vector<P> enveloppe(std::vector<P> p) {
  std::sort(p.begin(), p.end(), [](P a, P b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
  std::vector<P> h(2 * p.size());
  std::size_t k = 0;
  for (std::size_t i = 0; i < p.size(); ++i) {
    while (k >= 2 && croix(h[k - 2], h[k - 1], p[i]) <= 0) --k;
    h[k++] = p[i];
  }
  for (std::size_t i = p.size() - 1, t = k + 1; i-- > 0;) {
    while (k >= t && croix(h[k - 2], h[k - 1], p[i]) <= 0) --k;
    h[k++] = p[i];
  }
  h.resize(k - 1);
  return h;
}

// Signed distance to the hull's border: positive inside.
double dedans(const std::vector<P>& h, P q) {
  double d = 1e30;
  for (std::size_t i = 0; i < h.size(); ++i) {
    P a = h[i], b = h[(i + 1) % h.size()];
    double l = std::hypot(b.x - a.x, b.y - a.y);
    d = std::min(d, croix(a, b, q) / l);
  }
  return d;
}

TEST(AffImage, LitCubeSavedAsPngHoldsItsSilhouetteOnTheBackground) {
  char modele[] = "/tmp/orvane_aff_XXXXXX";
  ASSERT_NE(mkdtemp(modele), nullptr);
  std::string fichier = std::string(modele) + "/cube.png";
  Processus p = lance_orvane({"gra=0", "ID", "ini=env/initb.h"});
  ASSERT_GT(p.pid, 0);
  for (const char* l : {"vol(1) cube(300)", "vol(1) rotx(30) roty(40)", "lum(1)", "lum(1) som = -500, -800, -1500",
                        "lum(1) coul = 1, 1, 1", "aff fond(0, 0, 0.5) vol(1)"})
    tape(p, l);
  tape(p, "ecrire(\"" + fichier + "\") ima");
  tape(p, "$ \"SOM\"");
  tape(p, "$ vol(1) som");
  ASSERT_EQ(termine(p), 0) << p.lu;
  // The corners as the language turned them, read back from its output:
  // the numbers after the mark.
  std::vector<float> som;
  std::size_t m = p.lu.rfind("SOM");
  ASSERT_NE(m, std::string::npos) << p.lu;
  for (const char* c = p.lu.c_str() + m + 3; *c && som.size() < 24;) {
    char* fin;
    float x = std::strtof(c, &fin);
    if (fin != c && (*fin == ' ' || *fin == '\n')) {
      som.push_back(x);
      c = fin;
    } else {
      ++c;
    }
  }
  ASSERT_EQ(som.size(), 24u) << p.lu;
  // A turned cube of side 300 centred on the origin.
  for (float x : som) ASSERT_LE(std::fabs(x), 260.f) << p.lu;
  tas::init();
  mot* im = ima_lit_fichier(fichier);
  ASSERT_NE(im, nullptr);
  const int l = ima_l(im), h = ima_h(im);
  ASSERT_EQ(l, 768);
  ASSERT_EQ(h, 576);
  Oeil oeil_depart = oeil_courant = Oeil{};
  float vue[16], pr[16];
  oeil_matrices(l, h, vue, pr);
  std::vector<P> coins;
  for (int i = 0; i < 8; ++i) {
    float x[4] = {som[3 * i], som[3 * i + 1], som[3 * i + 2], 1}, e[4], c[4];
    matrice_applique(vue, x, e);
    e[3] = 1;
    for (int k = 0; k < 4; ++k) c[k] = pr[k] * e[0] + pr[4 + k] * e[1] + pr[8 + k] * e[2] + pr[12 + k];
    coins.push_back({(c[0] / c[3] + 1) * 0.5 * l, (c[1] / c[3] + 1) * 0.5 * h});
  }
  oeil_courant = oeil_depart;
  std::vector<P> env = enveloppe(coins);
  // Pixels clearly inside are the cube's (lit grey: r = g = b, not the
  // blue background); pixels clearly outside are the background, exactly.
  long dans = 0, hors = 0, mauvais_dans = 0, mauvais_hors = 0;
  for (int y = 0; y < h; ++y) {
    const octet* r = ima_rouge(im, y);
    const octet* g = r + l;
    const octet* b = r + 2 * l;
    for (int x = 0; x < l; ++x) {
      double d = dedans(env, {x + 0.5, y + 0.5});
      bool fond = r[x] == 0 && g[x] == 0 && b[x] == 128;
      if (d > 1.5) {
        ++dans;
        if (fond) ++mauvais_dans;
      } else if (d < -1.5) {
        ++hors;
        if (!fond) ++mauvais_hors;
      }
    }
  }
  EXPECT_GT(dans, 20000);
  EXPECT_GT(hors, 300000);
  EXPECT_EQ(mauvais_dans, 0);
  EXPECT_EQ(mauvais_hors, 0);
  // The face turned to the light is brighter than the one turned away.
  std::vector<int> niveaux;
  for (int y = 0; y < h; y += 4)
    for (int x = 0; x < l; x += 4)
      if (dedans(env, {x + 0.5, y + 0.5}) > 3) niveaux.push_back(ima_rouge(im, y)[x]);
  auto [mn, mx] = std::minmax_element(niveaux.begin(), niveaux.end());
  EXPECT_GT(*mx - *mn, 40);
  bloc_libere(im);
  std::remove(fichier.c_str());
  rmdir(modele);
}
}  // namespace
