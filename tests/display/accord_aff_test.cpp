// One scene typed at orvane's console (two volumes, flat and smooth, a
// light, an eye off the axis, fog off then on) drawn by `aff` through the
// software renderer and by `aff gl` through the real-time OpenGL path, in a
// window under an Xvfb server of the test's own; each picture saved as a
// PNG by the image commands and read back. The two engines must agree on
// what is covered (the silhouettes) and on the mean colour of what both
// cover, within stated bounds, and fog must change both alike.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <tuple>
#include <vector>

#include "outils_fenetre.h"
#include "core/bloc.h"
#include "image/image.h"

namespace {
// Agreement of two pictures of one size on a black background.
struct Accord {
  long a = 0, b = 0, les_deux = 0, un_seul = 0;
  double moy_a[3] = {0, 0, 0}, moy_b[3] = {0, 0, 0};  // over les_deux
};

Accord compare(mot* ia, mot* ib) {
  Accord r;
  const int l = ima_l(ia), h = ima_h(ia);
  for (int y = 0; y < h; ++y) {
    const octet* pa = ima_rouge(ia, y);
    const octet* pb = ima_rouge(ib, y);
    for (int x = 0; x < l; ++x) {
      bool ca = pa[x] || pa[x + l] || pa[x + 2 * l], cb = pb[x] || pb[x + l] || pb[x + 2 * l];
      r.a += ca, r.b += cb;
      if (ca && cb) {
        ++r.les_deux;
        for (int k = 0; k < 3; ++k) r.moy_a[k] += pa[x + k * l], r.moy_b[k] += pb[x + k * l];
      } else if (ca || cb) {
        ++r.un_seul;
      }
    }
  }
  for (int k = 0; k < 3 && r.les_deux; ++k) r.moy_a[k] /= r.les_deux, r.moy_b[k] /= r.les_deux;
  return r;
}

TEST(AccordAff, SoftwareAndOpenGlDrawTheSameScene) {
  char modele[] = "/tmp/orvane_accord_XXXXXX";
  ASSERT_NE(mkdtemp(modele), nullptr);
  const std::string dossier = modele;
  Session s;
  ASSERT_TRUE(attend(s.p, "empilements", 20000));
  for (const char* l : {"vol(1) cube(260)", "vol(1) rotx(30) roty(40) dep(-150, 20, 0)",
                        "vol(2) sphere(130, 32, 16)", "vol(2) dep(170, -40, 300)", "vol(2) coul = 0.3, 0.9, 0.4",
                        "vol(2) illum = 2, 1, 0, 0, 0", "vol(3) cube(90)", "vol(3) dep(40, 150, -200)",
                        "vol(3) coul = 0.9, 0.5, 0.2", "lum(1)", "lum(1) som = -600, -900, -1500", "lum(1) coul = 1, 1, 1",
                        "oeil(150, -250, -750) vise(20, 0, 100)"})
    tape(s.p, l);
  // Each picture: drawn, saved, read back once the file is whole.
  auto image = [&](const std::string& affiche, const std::string& nom) -> mot* {
    std::string f = dossier + "/" + nom + ".png";
    tape(s.p, affiche);
    tape(s.p, "ecrire(\"" + f + "\") ima");
    tape(s.p, "$ \"@" + nom + "\"");
    if (!attend(s.p, "@" + nom + " ", 20000)) return nullptr;
    return ima_lit_fichier(f);
  };
  tas::init();
  mot* logiciel = image("aff fond(0, 0, 0) vol(1, 2, 3)", "logiciel");
  // The window whitened first: what the OpenGL frame shows is its own.
  tape(s.p, "fond_ecran(1, 1, 1)");
  mot* gl = image("aff gl", "gl");
  tape(s.p, "brou bro(0.55, 0.55, 0.75) zbu(300, 1600)");
  mot* logiciel_b = image("aff fond(0, 0, 0) vol(1, 2, 3)", "logiciel_brouillard");
  tape(s.p, "fond_ecran(1, 1, 1)");
  mot* gl_b = image("aff gl", "gl_brouillard");
  ASSERT_TRUE(logiciel && gl && logiciel_b && gl_b) << s.p.lu;
  ASSERT_EQ(ima_l(logiciel), 320);
  ASSERT_EQ(ima_h(gl), 240);
  for (auto [a, b, quoi] : {std::tuple{logiciel, gl, "sans brouillard"}, std::tuple{logiciel_b, gl_b, "brouillard"}}) {
    Accord r = compare(a, b);
    SCOPED_TRACE(quoi);
    if (std::getenv("ACCORD_IMAGES"))
      std::printf("%s: covered %ld / %ld, by one only %ld, mean %.1f %.1f %.1f / %.1f %.1f %.1f\n", quoi, r.a, r.b,
                  r.un_seul, r.moy_a[0], r.moy_a[1], r.moy_a[2], r.moy_b[0], r.moy_b[1], r.moy_b[2]);
    // The three volumes cover a good part of the window in both.
    EXPECT_GT(r.a, 8000);
    EXPECT_GT(r.b, 8000);
    // Silhouettes: pixels covered by one engine only, at most 2 % of those
    // either covers (the edges' rounding differs by a pixel at most).
    EXPECT_LT(static_cast<double>(r.un_seul) / (r.les_deux + r.un_seul), 0.02)
        << r.un_seul << " of " << r.les_deux + r.un_seul;
    // Mean colour of what both cover, within 6 levels a channel.
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(r.moy_a[k], r.moy_b[k], 6.0) << "channel " << k;
  }
  // Fog moves the colours toward its own in both, and by as much.
  Accord sans = compare(logiciel, gl), avec = compare(logiciel_b, gl_b);
  EXPECT_GT(avec.moy_a[2] - sans.moy_a[2], 15);
  EXPECT_GT(avec.moy_b[2] - sans.moy_b[2], 15);
  for (mot* m : {logiciel, gl, logiciel_b, gl_b}) bloc_libere(m);
  if (!HasFailure() && !std::getenv("ACCORD_IMAGES")) {
    for (const char* n : {"logiciel", "gl", "logiciel_brouillard", "gl_brouillard"})
      std::remove((dossier + "/" + n + ".png").c_str());
    rmdir(modele);
  } else {
    std::fprintf(stderr, "pictures in %s\n", modele);
  }
}
}  // namespace
