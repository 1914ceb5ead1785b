// WAV files: the format table, the reader against every cut and every lie
// about sizes, the header of the writer read back, the fade on built
// signals, and the edit of real files, whose other chunks come back whole.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "device/device.h"

namespace {
using Octets = std::vector<std::uint8_t>;

void mot32(Octets& o, std::size_t p, std::uint32_t x) {
  for (int i = 0; i < 4; ++i) o[p + i] = static_cast<std::uint8_t>(x >> (8 * i));
}

// A file: header of format f, an odd "LIST" chunk between fmt and data when
// asked, the data, and a trailing "note" chunk.
Octets fichier(const FormatSon& f, const Octets& donnees, bool autres) {
  Octets o = son_entete(f, static_cast<std::uint32_t>(donnees.size()));
  if (autres) {
    Octets liste{'L', 'I', 'S', 'T', 5, 0, 0, 0, 'o', 'r', 'v', 'a', 'n', 0};
    o.insert(o.begin() + 36, liste.begin(), liste.end());
  }
  o.insert(o.end(), donnees.begin(), donnees.end());
  if (donnees.size() & 1) o.push_back(0);
  if (autres) {
    Octets note{'n', 'o', 't', 'e', 3, 0, 0, 0, 'a', 'b', 'c', 0};
    o.insert(o.end(), note.begin(), note.end());
  }
  mot32(o, 4, static_cast<std::uint32_t>(o.size() - 8));
  return o;
}

Octets hasard(std::mt19937& g, std::size_t n) {
  Octets d(n);
  for (auto& x : d) x = static_cast<std::uint8_t>(g());
  return d;
}

struct Dossier {
  std::string d;
  Dossier() {
    char m[] = "/tmp/orvane_wav_XXXXXX";
    d = mkdtemp(m) ? m : "";
  }
  ~Dossier() { std::system(("rm -rf " + d).c_str()); }
  void pose(const std::string& nom, const Octets& o) const {
    std::ofstream(d + "/" + nom, std::ios::binary).write(reinterpret_cast<const char*>(o.data()), static_cast<std::streamsize>(o.size()));
  }
  Octets prend(const std::string& nom) const {
    std::ifstream f(d + "/" + nom, std::ios::binary);
    return Octets(std::istreambuf_iterator<char>(f), {});
  }
};

TEST(SonWav, LectureDeCeQueLEcritureFait) {
  std::mt19937 g(1431);
  for (int k = 0; k < 40; ++k) {
    const FormatSon f = format_son(static_cast<int>(g() % 16));
    const std::size_t n = (g() % 5000 + 1) * f.bloc;
    const Octets d = hasard(g, n);
    const bool autres = k % 2;
    const Octets o = fichier(f, d, autres);
    Son s;
    ASSERT_EQ(son_analyse(o, s), 0) << k;
    EXPECT_EQ(s.format.taux, f.taux);
    EXPECT_EQ(s.format.canaux, f.canaux);
    EXPECT_EQ(s.format.bits, f.bits);
    EXPECT_EQ(s.debut, autres ? 44u + 14 : 44u);
    ASSERT_EQ(s.taille, n);
    EXPECT_TRUE(std::equal(d.begin(), d.end(), o.begin() + static_cast<long>(s.debut)));
    // Trailing bytes past the RIFF chunk are no lie.
    Octets plus = o;
    plus.insert(plus.end(), {1, 2, 3});
    EXPECT_EQ(son_analyse(plus, s), 0);
  }
}

TEST(SonWav, FichiersCoupesOuMenteurs) {
  std::mt19937 g(77);
  const FormatSon f = format_son(7);
  const Octets bon = fichier(f, hasard(g, 4 * 301), true);
  Son s;
  ASSERT_EQ(son_analyse(bon, s), 0);
  // Cut anywhere: refused.
  for (std::size_t l = 0; l < bon.size(); ++l)
    ASSERT_EQ(son_analyse(std::span(bon.data(), l), s), -1) << l;
  auto faux = [&](std::size_t p, std::uint32_t x, bool seize = false) {
    Octets o = bon;
    if (seize) {
      o[p] = static_cast<std::uint8_t>(x);
      o[p + 1] = static_cast<std::uint8_t>(x >> 8);
    } else {
      mot32(o, p, x);
    }
    return son_analyse(o, s);
  };
  EXPECT_EQ(faux(4, static_cast<std::uint32_t>(bon.size())), -1);  // RIFF longer than the file
  EXPECT_EQ(faux(4, 0xFFFFFFF0u), -1);
  EXPECT_EQ(faux(4, 100), -1);                                      // RIFF ends inside a chunk
  EXPECT_EQ(faux(16, 15), -1);                                      // fmt too short
  EXPECT_EQ(faux(16, 0x7FFFFFFF), -1);
  EXPECT_EQ(faux(20, 3, true), -1);                                 // floats
  EXPECT_EQ(faux(22, 6, true), -1);                                 // six channels
  EXPECT_EQ(faux(24, 11024), -1);                                   // rate against byte rate
  EXPECT_EQ(faux(28, 44101), -1);
  EXPECT_EQ(faux(32, 2, true), -1);                                 // block align
  EXPECT_EQ(faux(34, 24, true), -1);                                // 24 bits
  EXPECT_EQ(faux(40 + 14, 4 * 400), -1);                            // data past the RIFF end
  EXPECT_EQ(son_analyse(fichier(f, hasard(g, 4 * 301 + 2), false), s), -1);  // not whole frames
  Octets sans = bon;
  sans[12] = 'x';                                                    // no fmt chunk
  EXPECT_EQ(son_analyse(sans, s), -1);
  sans = bon;
  sans[8] = 'A';
  EXPECT_EQ(son_analyse(sans, s), -1);
}

TEST(SonWav, Fondu) {
  // 8 bits mono, all at 128 + 100: untouched before trunc(n f), then a
  // ramp from 100 down to 0.
  for (float fr : {0.5f, 0.3333f, 0.0f, 0.97f}) {
    const std::size_t n = 1001;
    Octets d(n, 228);
    son_fondu(d, format_son(0), fr);
    std::size_t debut = std::max<std::size_t>(16, static_cast<std::size_t>(std::floor(n * static_cast<double>(fr))));
    for (std::size_t i = 0; i < debut; ++i) ASSERT_EQ(d[i], 228) << fr << " " << i;
    EXPECT_EQ(d[debut], 228) << fr;
    EXPECT_EQ(d[n - 1], 128) << fr;
    for (std::size_t i = debut + 1; i < n; ++i) {
      ASSERT_LE(d[i], d[i - 1]) << i;
      const double attendu = 128 + 100.0 * (1 - static_cast<double>(i - debut) / static_cast<double>(n - 1 - debut));
      ASSERT_NEAR(d[i], attendu, 0.51) << fr << " " << i;
    }
  }
  // A fraction past the end, or a file of 16 bytes or less: nothing moves.
  Octets d(16, 200), e = d;
  son_fondu(d, format_son(0), 0.1f);
  EXPECT_EQ(d, e);
  Octets f(500, 7), h = f;
  son_fondu(f, format_son(0), 1.5f);
  EXPECT_EQ(f, h);
  // 16-bit stereo random: both channels of a frame by the same gain, the
  // first faded frame whole, the last silent.
  std::mt19937 g(606);
  const FormatSon st = format_son(3);
  Octets r = hasard(g, 4 * 777), avant = r;
  son_fondu(r, st, 0.25f);
  const std::size_t t0 = static_cast<std::size_t>(std::floor(r.size() * 0.25)) / 4, m = 777 - t0;
  auto echant = [](const Octets& o, std::size_t i) { return static_cast<std::int16_t>(o[2 * i] | o[2 * i + 1] << 8); };
  for (std::size_t t = 0; t < 777; ++t)
    for (int c = 0; c < 2; ++c) {
      const double gain = t < t0 ? 1 : 1 - static_cast<double>(t - t0) / static_cast<double>(m - 1);
      ASSERT_NEAR(echant(r, 2 * t + c), echant(avant, 2 * t + c) * gain, 0.51) << t << " " << c;
    }
  EXPECT_EQ(echant(r, 2 * 776), 0);
}

TEST(SonWav, EditionDeFichiers) {
  Dossier dos;
  std::mt19937 g(9001);
  const Octets d = hasard(g, 2 * 4999);
  const Octets o = fichier(format_son(5), d, true);
  dos.pose("a.wav", o);
  const std::string a = dos.d + "/a.wav";
  ASSERT_EQ(son_bosse(a.c_str(), 0.6f), 0);
  Octets apres = dos.prend("a.wav");
  ASSERT_EQ(apres.size(), o.size());
  Son s;
  ASSERT_EQ(son_analyse(o, s), 0);
  Octets attendu = o;
  son_fondu(std::span(attendu).subspan(s.debut, s.taille), s.format, 0.6f);
  EXPECT_EQ(apres, attendu);
  EXPECT_NE(apres, o);
  // Only the data moved: the chunks before and after are as they were.
  EXPECT_TRUE(std::equal(o.begin(), o.begin() + static_cast<long>(s.debut), apres.begin()));
  EXPECT_TRUE(std::equal(o.end() - 12, o.end(), apres.end() - 12));
  // A truncated file, a missing one, one too large, one that cannot be
  // replaced: refused, and what was there stays.
  Octets coupe(o.begin(), o.begin() + 3000);
  dos.pose("b.wav", coupe);
  EXPECT_EQ(son_bosse((dos.d + "/b.wav").c_str(), 0.5f), -1);
  EXPECT_EQ(dos.prend("b.wav"), coupe);
  EXPECT_EQ(son_bosse((dos.d + "/rien.wav").c_str(), 0.5f), -1);
  const Octets gros = fichier(format_son(0), Octets(SON_MAX_DONNEES + 2, 128), false);
  dos.pose("c.wav", gros);
  EXPECT_EQ(son_bosse((dos.d + "/c.wav").c_str(), 0.5f), -1);
  EXPECT_EQ(dos.prend("c.wav"), gros);
  ASSERT_EQ(mkdir((dos.d + "/a.wav.tmp").c_str(), 0700), 0);
  EXPECT_EQ(son_bosse(a.c_str(), 0.1f), -1);
  EXPECT_EQ(dos.prend("a.wav"), apres);
  EXPECT_EQ(son_bosse(dos.d.c_str(), 0.5f), -1);  // a directory
}
}  // namespace
