// Image files through real files: round trips in every format, files
// read by an outside reader (PIL) and made by it, and bad files of every
// kind refused with a message while the images held stay.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/image/outils.h"

namespace {
bool memes_pixels(const mot* a, const mot* b) {
  return ima_l(a) == ima_l(b) && ima_h(a) == ima_h(b) && std::memcmp(ima_octets(a), ima_octets(b), a[6]) == 0;
}

struct ImageFichier : testing::Test {
  std::mt19937 g{77031};
  Dossier dir;
  void SetUp() override { monde_ima(); }
};

TEST_F(ImageFichier, EveryFormatReadsBackWhatWasWritten) {
  // Odd widths whose BMP rows need 1, 2 or 3 bytes of padding.
  for (auto [w, h] : {std::pair{1, 1}, {37, 23}, {101, 7}, {6, 113}, {999, 3}}) {
    mot* b = ima_hasard(w, h, g);
    for (const char* ext : {"raw", "bmp", "png", "ima"}) {
      std::string nom = dir / ("i" + std::to_string(w) + "." + ext);
      ASSERT_EQ(ima_ecrit_fichier(b, nom), 0) << nom;
      mot* l = ima_lit_fichier(nom);
      ASSERT_NE(l, nullptr) << nom;
      EXPECT_TRUE(memes_pixels(b, l)) << nom;
      if (std::string(ext) == "ima") {
        EXPECT_EQ(std::memcmp(b, l, 4 * b[0]), 0);  // the words themselves
      }
      bloc_libere_force(l);
    }
    bloc_libere_force(b);
  }
  // JPEG loses a little: a smooth picture comes back within a small mean.
  mot* b = ima_alloue(123, 77);
  for (int y = 0; y < 77; ++y)
    for (int x = 0; x < 123; ++x)
      for (int c = 0; c < 3; ++c) ima_rouge(b, y)[x + c * 123] = static_cast<octet>((x * 2 + y * (c + 1)) % 256 / 2 + 40);
  ASSERT_EQ(ima_ecrit_fichier(b, dir / "j.jpg"), 0);
  mot* l = ima_lit_fichier(dir / "j.jpg");
  ASSERT_NE(l, nullptr);
  ASSERT_EQ(ima_l(l), 123);
  double e = 0;
  for (long k = 0; k < b[6]; ++k) e += std::abs(ima_octets(b)[k] - ima_octets(l)[k]);
  EXPECT_LT(e / b[6], 3.0);
  bloc_libere_force(b);
  bloc_libere_force(l);
}

TEST_F(ImageFichier, NamesSplitAtTheLastPointAndFrameNumbers) {
  auto n = nom_coupe("vue.1.png");
  EXPECT_EQ(n.nom, "vue.1");
  EXPECT_EQ(n.ext, "png");
  n = nom_coupe("dossier.d/vue");
  EXPECT_EQ(n.nom, "dossier.d/vue");
  EXPECT_EQ(n.ext, "ima");
  // Frame numbers: width and base, the low digits kept, the sign counted.
  const struct {
    const char* forme;
    int n;
    const char* attendu;
  } numeros[] = {{"4D", 7, "0007"},     {"4D", 123456, "3456"}, {"4D", -12, "-012"},
                 {"8b", 37, "00100101"}, {"3o", 64, "100"},      {"5x", 48879, "0BEEF"}};
  for (const auto& c : numeros) {
    char s[64];
    nom_numero(s, c.forme, c.n);
    EXPECT_STREQ(s, c.attendu) << c.forme << " " << c.n;
  }
  // A two-point name is written and read under its last extension.
  mot* b = ima_hasard(9, 4, g);
  ASSERT_EQ(ima_ecrit_fichier(b, dir / "a.b.bmp"), 0);
  mot* l = ima_lit_fichier(dir / "a.b.bmp");
  ASSERT_NE(l, nullptr);
  EXPECT_TRUE(memes_pixels(b, l));
  bloc_libere_force(b);
  bloc_libere_force(l);
}

TEST_F(ImageFichier, RawWiderThan9999KeepsItsLowDigits) {
  mot* b = ima_hasard(10003, 2, g);
  ASSERT_EQ(ima_ecrit_raw(b, (dir / "large.raw").c_str()), 0);
  auto f = octets_de(dir / "large.raw");
  EXPECT_EQ(std::string(f.data(), 8), "00030002");
  EXPECT_EQ(f.size(), 8u + 4 * 10003 * 2);
  mot* l = ima_lit_fichier(dir / "large.raw");
  ASSERT_NE(l, nullptr);
  EXPECT_EQ(ima_l(l), 3);  // misread, as the format has it
  bloc_libere_force(b);
  bloc_libere_force(l);
}

TEST_F(ImageFichier, OutsideReaderSeesOurFilesAndWeReadItsFiles) {
  mot* b = ima_hasard(53, 31, g);
  ASSERT_EQ(ima_ecrit_fichier(b, dir / "n.bmp"), 0);
  ASSERT_EQ(ima_ecrit_fichier(b, dir / "n.png"), 0);
  // PIL's top row is our row h - 1.
  std::string code =
      "import sys\nfrom PIL import Image\n"
      "for e in (\"bmp\", \"png\"):\n"
      " im = Image.open(sys.argv[1] + \"/n.\" + e)\n"
      " print(im.size, im.mode, im.getpixel((0, 0)), im.getpixel((52, 30)), im.getpixel((17, 11)))\n";
  std::string attendu;
  auto triple = [&](int x, int y) {
    return "(" + std::to_string(px(b, x, y, 0)) + ", " + std::to_string(px(b, x, y, 1)) + ", " +
           std::to_string(px(b, x, y, 2)) + ")";
  };
  std::string ligne = "(53, 31) RGB " + triple(0, 30) + " " + triple(52, 0) + " " + triple(17, 19) + "\n";
  EXPECT_EQ(python_pil(code, dir.p.string()), ligne + ligne);
  // ImageMagick reads the same size and top-left pixel.
  std::string im = commande_sortie("identify -format \"%w %h %[fx:int(255*p{0,0}.r)] %[fx:int(255*p{0,0}.b)]\" " +
                                   (dir / "n.bmp") + " " + (dir / "n.png"));
  std::string coin = "53 31 " + std::to_string(px(b, 0, 30, 0)) + " " + std::to_string(px(b, 0, 30, 2));
  EXPECT_EQ(im, coin + coin);
  bloc_libere_force(b);

  // Files made by PIL, widths that pad, grey and palette PNGs too.
  std::string fait =
      "import sys\nfrom PIL import Image\n"
      "d = sys.argv[1]\n"
      "for w in (1, 2, 3, 5, 641):\n"
      " im = Image.new(\"RGB\", (w, 9))\n"
      " im.putdata([((x * 7 + y) % 256, (x * 3) % 256, (y * 29) % 256) for y in range(9) for x in range(w)])\n"
      " im.save(d + \"/p%d.bmp\" % w)\n"
      " im.save(d + \"/p%d.png\" % w)\n"
      "im.convert(\"L\").save(d + \"/gris.png\")\n"
      "im.convert(\"P\").save(d + \"/palette.png\")\n"
      "im.save(d + \"/entrelace.png\", interlace=1)\n";
  ASSERT_EQ(python_pil(fait, dir.p.string()), "");
  for (int w : {1, 2, 3, 5, 641})
    for (const char* ext : {"bmp", "png"}) {
      mot* l = ima_lit_fichier(dir / ("p" + std::to_string(w) + "." + ext));
      ASSERT_NE(l, nullptr);
      ASSERT_EQ(ima_l(l), w);
      ASSERT_EQ(ima_h(l), 9);
      for (int y = 0; y < 9; ++y)
        for (int x = 0; x < w; ++x) {
          int py = 8 - y;  // PIL's row y is our row 8 - y
          ASSERT_EQ(px(l, x, py, 0), (x * 7 + y) % 256) << ext << w;
          ASSERT_EQ(px(l, x, py, 1), (x * 3) % 256);
          ASSERT_EQ(px(l, x, py, 2), (y * 29) % 256);
        }
      bloc_libere_force(l);
    }
  mot* e = ima_lit_fichier(dir / "entrelace.png");
  mot* p = ima_lit_fichier(dir / "p641.png");
  ASSERT_NE(e, nullptr);
  EXPECT_TRUE(memes_pixels(e, p));
  mot* gr = ima_lit_fichier(dir / "gris.png");
  ASSERT_NE(gr, nullptr);
  EXPECT_EQ(px(gr, 100, 4, 0), px(gr, 100, 4, 2));
  mot* pa = ima_lit_fichier(dir / "palette.png");
  ASSERT_NE(pa, nullptr);
  EXPECT_EQ(ima_l(pa), 641);
  for (mot* b2 : {e, p, gr, pa}) bloc_libere_force(b2);
}

TEST_F(ImageFichier, BadFilesAreRefusedByMessage) {
  mot* b = ima_hasard(21, 13, g);
  for (const char* ext : {"raw", "bmp", "png", "jpg", "ima"}) ASSERT_EQ(ima_ecrit_fichier(b, dir / (std::string("b.") + ext)), 0);
  std::string code =
      "import sys\nfrom PIL import Image\n"
      "d = sys.argv[1]\n"
      "im = Image.new(\"RGB\", (10, 10), (9, 8, 7))\n"
      "im.convert(\"1\").save(d + \"/un.bmp\")\n"
      "im.convert(\"P\").save(d + \"/huit.bmp\")\n"
      "im.convert(\"RGBA\").save(d + \"/trentedeux.bmp\")\n";
  ASSERT_EQ(python_pil(code, dir.p.string()), "");
  auto bmp16 = octets_de(dir / "b.bmp");
  bmp16[28] = 16;
  ecrit(dir / "seize.bmp", bmp16);

  struct Cas {
    std::string nom;
    std::vector<char> contenu;
    const char* message;
  };
  std::vector<Cas> cas;
  for (const char* ext : {"raw", "bmp", "png", "jpg", "ima"}) {
    auto f = octets_de(dir / (std::string("b.") + ext));
    cas.push_back({std::string("tronque.") + ext, std::vector<char>(f.begin(), f.begin() + f.size() / 2), "M1:121"});
    cas.push_back({std::string("vide.") + ext, {}, nullptr});
  }
  // Headers that lie: sizes far past the file, zero and negative sizes.
  auto raw = octets_de(dir / "b.raw");
  std::memcpy(raw.data(), "99999999", 8);
  cas.push_back({"grand.raw", raw, "M1:121"});
  std::memcpy(raw.data(), "00000013", 8);
  cas.push_back({"zero.raw", raw, "M1:122"});
  std::memcpy(raw.data(), "00x10013", 8);
  cas.push_back({"lettres.raw", raw, "M1:122"});
  auto bmp = octets_de(dir / "b.bmp");
  auto mentir = [&](int pos, std::int32_t v, const char* nom, const char* m) {
    auto c = bmp;
    std::memcpy(c.data() + pos, &v, 4);
    cas.push_back({nom, c, m});
  };
  mentir(18, 100000, "large.bmp", "M1:121");
  mentir(18, 30000, "menteur.bmp", "M1:121");
  mentir(18, 0, "zero.bmp", "M1:122");
  mentir(18, -21, "negatif.bmp", "M1:122");
  mentir(22, 0x7fffffff, "haut.bmp", "M1:122");
  mentir(10, 0x7ffffff0, "decale.bmp", "M1:121");
  auto png = octets_de(dir / "b.png");
  auto c = png;
  c[18] = 0x7f;  // width in the IHDR: the CRC no longer matches
  cas.push_back({"crc.png", c, "M1:121"});
  c = png;
  for (std::size_t k = 40; k < c.size() - 20; k += 3) c[k] ^= 0x5a;
  cas.push_back({"corrompu.png", c, "M1:121"});
  auto jpg = octets_de(dir / "b.jpg");
  c = jpg;
  for (std::size_t k = jpg.size() / 3; k < jpg.size() - 2; k += 7) c[k] = static_cast<char>(0xff);
  cas.push_back({"corrompu.jpg", c, "M1:121"});
  auto ima = octets_de(dir / "b.ima");
  c = ima;
  c[32 + 16] = 0x7f;  // the width word: size and byte count disagree
  cas.push_back({"faux.ima", c, nullptr});
  for (auto& k : cas) ecrit(dir / k.nom, k.contenu);

  ASSERT_EQ(ima_installe(3, bloc_duplique(b)), 0);
  for (auto& k : cas) {
    std::string s = sortie_de([&] { EXPECT_EQ(ima_lit_fichier(dir / k.nom), nullptr) << k.nom; });
    EXPECT_NE(s.find(dir / k.nom), std::string::npos) << k.nom << ": " << s;
    if (k.message) {
      EXPECT_NE(s.find(k.message), std::string::npos) << k.nom << ": " << s;
    }
  }
  for (const char* n : {"un.bmp", "huit.bmp", "seize.bmp", "trentedeux.bmp"}) {
    std::string s = sortie_de([&] { EXPECT_EQ(ima_lit_fichier(dir / n), nullptr); });
    EXPECT_NE(s.find("M1:124"), std::string::npos) << n << ": " << s;
  }
  // Missing files, a folder, an unknown format.
  std::filesystem::create_directory(dir / "dossier.png");
  for (auto [n, m] : {std::pair{"absent.png", "M0:36"}, {"dossier.png", "M0:36"}, {"b.gif", "M1:120"}}) {
    std::string s = sortie_de([&] { EXPECT_EQ(ima_lit_fichier(dir / n), nullptr); });
    EXPECT_NE(s.find(m), std::string::npos) << n << ": " << s;
  }
  std::string s = sortie_de([&] { EXPECT_EQ(ima_ecrit_fichier(b, dir / "absent/x.png"), -1); });
  EXPECT_NE(s.find("M0:36"), std::string::npos);
  // Nothing held was touched.
  EXPECT_TRUE(memes_pixels(ima_bloc(3), b));
  bloc_libere_force(b);
}
}  // namespace
