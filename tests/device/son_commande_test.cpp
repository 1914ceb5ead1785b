// The sound files through the `audio` command of a running orvane: playback
// (bip) into ALSA's file plugin, whose output file must hold the samples
// played; the fade (bosse) of files on disk; the smoothing of the peaks
// (cadence, nurbs, tire) on a captured pattern; and their refusals.
#include <cmath>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "device/device.h"
#include "tests/device/son_essai.h"

namespace {
using Octets = std::vector<unsigned char>;

Octets wav(int code, const Octets& d) {
  std::vector<std::uint8_t> o = son_entete(format_son(code), static_cast<std::uint32_t>(d.size()));
  o.insert(o.end(), d.begin(), d.end());
  if (d.size() & 1) o.push_back(0);
  return Octets(o.begin(), o.end());
}

Octets lit(const std::string& nom) {
  std::ifstream f(nom, std::ios::binary);
  return Octets(std::istreambuf_iterator<char>(f), {});
}

void pose(const std::string& nom, const Octets& o) {
  std::ofstream(nom, std::ios::binary).write(reinterpret_cast<const char*>(o.data()), static_cast<std::streamsize>(o.size()));
}

TEST(AudioSon, LectureParLePeripheriqueFichier) {
  // Two formats of random samples: what the device received is the data,
  // byte for byte, and the language goes on after each sound.
  std::mt19937 g(5150);
  for (int code : {7, 0, 13}) {
    Essai e;
    e.peripherique("pcm.!default {\n type file\n slave.pcm \"null\"\n file \"" + e.dir +
                   "/joue.raw\"\n format \"raw\"\n}\n");
    const FormatSon f = format_son(code);
    Octets d((g() % 3000 + 500) * f.bloc);
    for (auto& x : d) x = static_cast<unsigned char>(g());
    pose(e.dir + "/x.wav", wav(code, d));
    std::string s = e.lance("audio bip(\"" + e.dir + "/x.wav\")\n$ 6 * 7\n");
    EXPECT_NE(s.find("42.000000"), std::string::npos) << s;
    EXPECT_EQ(s.find("ALSA"), std::string::npos) << s;
    Octets joue = lit(e.dir + "/joue.raw");
    ASSERT_EQ(joue.size(), d.size()) << "ALSA's file plugin did not take the sound:\n" << s;
    EXPECT_EQ(joue, d) << code;
  }
}

TEST(AudioSon, LecturesRefusees) {
  Essai e;
  e.peripherique("pcm.!default {\n type file\n slave.pcm \"null\"\n file \"" + e.dir + "/joue.raw\"\n format \"raw\"\n}\n");
  Octets bon = wav(0, Octets(800, 200));
  pose(e.dir + "/coupe.wav", Octets(bon.begin(), bon.begin() + 500));
  int code = -1;
  std::string s = e.lance("audio bip(\"" + e.dir + "/rien.wav\")\naudio bip(\"" + e.dir +
                              "/coupe.wav\")\naudio bip(3)\naudio bip\n$ 6 * 7\n",
                          &code);
  EXPECT_EQ(code, 0);
  EXPECT_NE(s.find("rien.wav: Ouverture du fichier impossible"), std::string::npos) << s;
  EXPECT_NE(s.find("coupe.wav: Fichier son tronque ou illisible"), std::string::npos) << s;
  EXPECT_NE(s.find("Type de valeur illegal"), std::string::npos) << s;
  EXPECT_NE(s.find("42.000000"), std::string::npos) << s;
  // No playback device: its message, and the language goes on.
  e.peripherique("pcm.!default { type hw card 97 }\n");
  pose(e.dir + "/bon.wav", bon);
  s = e.lance("audio bip(\"" + e.dir + "/bon.wav\")\n$ 6 * 7\n", &code);
  EXPECT_EQ(code, 0);
  EXPECT_NE(s.find("Pas de sortie du son"), std::string::npos) << s;
  EXPECT_NE(s.find("42.000000"), std::string::npos) << s;
}

TEST(AudioSon, FonduDeFichiers) {
  Essai e;
  const std::string a = e.dir + "/a.wav", b = e.dir + "/b.wav", c = e.dir + "/c.wav";
  pose(a, wav(0, Octets(2000, 228)));
  pose(b, wav(0, Octets(1001, 28)));
  const Octets entier = wav(0, Octets(100, 1)), coupe(entier.begin(), entier.begin() + 90);
  pose(c, coupe);
  int code = -1;
  std::string s = e.lance("audio bosse(\"" + a + "\", 0.25)\naudio bosse(\"" + b + "\")\naudio bosse(\"" + c +
                              "\", 0.5)\naudio bosse(\"" + a + "\", 0.1, 0.2)\n$ 6 * 7\n",
                          &code);
  EXPECT_EQ(code, 0);
  Octets da = lit(a), db = lit(b);
  ASSERT_EQ(da.size(), 2044u) << s;
  ASSERT_EQ(db.size(), 1046u) << s;  // 1001 bytes and a pad byte
  for (int i = 0; i < 500; ++i) ASSERT_EQ(da[44 + i], 228) << i;
  EXPECT_EQ(da[44 + 1999], 128);
  EXPECT_NEAR(da[44 + 1250], 128 + 100 * (1 - 750.0 / 1499), 0.51);
  for (int i = 0; i < 500; ++i) ASSERT_EQ(db[44 + i], 28) << i;
  EXPECT_EQ(db[44 + 1000], 128);
  EXPECT_EQ(lit(c), coupe);
  EXPECT_NE(s.find("c.wav: Fichier son tronque ou illisible"), std::string::npos) << s;
  EXPECT_NE(s.find("Type de valeur illegal"), std::string::npos) << s;
  EXPECT_NE(s.find("42.000000"), std::string::npos) << s;
}

TEST(AudioSon, PicsLisses) {
  // The pattern of the capture test: peaks 100, 88, 32 at 0, 1, 2. Five
  // points by chord length along (k, value): the ends kept, the inner ones
  // on the chords; with a curve first (nurbs) the ends are still kept; a
  // count of 0 is refused by the fitting with its message.
  std::vector<unsigned char> motif{128, 131, 137, 120, 228, 129, 170, 171, 128, 40, 127, 128, 160, 128, 128, 128};
  std::vector<unsigned char> son;
  for (int k = 0; k < 1024 * 8 / 16; ++k) son.insert(son.end(), motif.begin(), motif.end());
  Essai e;
  e.son(son);
  std::string s = e.lance("audio ini(16) planche(5)\n$ audio pic(2) var\n$ audio pic(2) var cadence(5)\n"
                          "$ audio pic(2) var cadence(7) nurbs(3, 1)\n$ audio pic(2) cadence(5)\n"
                          "$ audio pic(2) var cadence\n$ audio pic(2) var cadence(0)\n"
                          "$ audio pic(2) var cadence(4) tire(3e38) nurbs(2, 1e30, -4e20)\n$ audio pic var cadence(\"x\")\n"
                          "$ audio pic(2) var cadence(2e9)\n$ 6 * 7\n");
  auto v = valeurs(s);
  ASSERT_EQ(v.size(), 7u) << s;
  EXPECT_EQ(v[0], (std::vector<double>{100, 88, 32}));
  const double l1 = std::hypot(1, 12), l2 = std::hypot(1, 56), tot = l1 + l2;
  std::vector<double> attendu{100};
  for (int k = 1; k < 4; ++k) {
    const double c = tot * k / 4;
    attendu.push_back(c <= l1 ? 100 - 12 * c / l1 : 88 - 56 * (c - l1) / l2);
  }
  attendu.push_back(32);
  ASSERT_EQ(v[1].size(), 5u);
  for (int k = 0; k < 5; ++k) EXPECT_NEAR(v[1][k], attendu[k], 1e-3) << k;
  ASSERT_EQ(v[2].size(), 7u);
  EXPECT_EQ(v[2].front(), 100);
  EXPECT_EQ(v[2].back(), 32);
  EXPECT_EQ(v[3], (std::vector<double>{1}));
  // The same count: the inner peak moves onto the chord of the whole line.
  ASSERT_EQ(v[4].size(), 3u);
  EXPECT_NEAR(v[4][1], tot / 2 <= l1 ? 100 - 12 * (tot / 2) / l1 : 88 - 56 * (tot / 2 - l1) / l2, 1e-3);
  // Laws, tensions and flags far out of range give numbers, not a crash.
  EXPECT_EQ(v[5].size(), 4u);
  EXPECT_EQ(v[6], (std::vector<double>{42}));
  EXPECT_NE(s.find("Valeur ou indice illegal"), std::string::npos) << s;
}
}  // namespace
