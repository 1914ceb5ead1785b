// Capture end to end through real ALSA and no sound card: each case writes
// an asoundrc whose default device is ALSA's file plugin reading raw 8-bit
// samples from a file made here (over the null device), points HOME at it,
// and runs orvane on console lines.
#include <random>

#include "tests/device/son_essai.h"

namespace {
int pic_spectre(const std::vector<double>& s) {
  const std::size_t w = s.size() / 2;
  int meilleur = 1;
  double m = -1;
  for (std::size_t k = 1; k < w / 2; ++k) {
    double p = s[k] * s[k] + s[k + w] * s[k + w];
    if (p > m) m = p, meilleur = static_cast<int>(k);
  }
  return meilleur;
}

TEST(AudioCapture, TonsEtSilence) {
  // 440 Hz and two random tones of random amplitude: the level, and the
  // peak of the spectrum at the tone's bin, window after window.
  std::mt19937 g(2027);
  std::vector<std::pair<double, double>> tons{{440, 100}};
  for (int k = 0; k < 2; ++k) tons.push_back({150 + g() % 3500 + 0.37, 17 + g() % 110});
  for (auto [hz, amp] : tons) {
    Essai e;
    e.son(ton(8 * 1024, hz, amp, 0.7));
    std::string s = e.lance("audio ini(5000)\n$ audio\n$ audio fenetre\n$ audio fenetre\naudio fin\n");
    // Where ALSA cannot open even this device, say so and fail.
    ASSERT_NE(s.find("Fenetre d'echantillonnage = 1024\n"), std::string::npos) << "ALSA refused the file plugin:\n" << s;
    auto v = valeurs(s);
    ASSERT_EQ(v.size(), 3u) << s;
    ASSERT_EQ(v[0].size(), 3u);
    EXPECT_NEAR(v[0][0], std::round(amp) / 127, 1.5 / 127) << hz;
    for (int k : {1, 2}) {
      ASSERT_EQ(v[static_cast<std::size_t>(k)].size(), 2048u);
      EXPECT_NEAR(pic_spectre(v[static_cast<std::size_t>(k)]), hz * 1024 / 8000, 1.0) << hz;
    }
    EXPECT_NE(s.find("Capture micro OFF\n"), std::string::npos);
  }
  Essai e;
  e.son(std::vector<unsigned char>(4 * 1024, 128));
  std::string s = e.lance("audio ini(0)\naudio ini(2000.9)\n$ audio\n$ audio var\n$ audio fenetre\n");
  EXPECT_NE(s.find("Fenetre d'echantillonnage = 1\n"), std::string::npos) << s;
  auto v = valeurs(s);
  ASSERT_EQ(v.size(), 3u) << s;
  EXPECT_EQ(v[0], (std::vector<double>{0, 0, 0}));
  EXPECT_EQ(v[1], std::vector<double>(1024, 0));
  EXPECT_EQ(v[2], std::vector<double>(2048, 0));
}

TEST(AudioCapture, GateFiltrePicsHauteur) {
  // A window of 16 made by hand: the gate of 10 keeps only the loud samples,
  // the click filter holds the step of 90, the peaks and the pitch counter
  // read fresh windows of the same pattern.
  std::vector<unsigned char> motif{128, 131, 137, 120, 228, 129, 170, 171, 128, 40, 127, 128, 160, 128, 128, 128};
  std::vector<unsigned char> son;
  for (int k = 0; k < 1024 * 6 / 16; ++k) son.insert(son.end(), motif.begin(), motif.end());
  Essai e;
  e.son(son);
  std::string s = e.lance("audio ini(16, 10)\n$ audio var\naudio ini(16) min(0)\n$ audio max(30)\n"
                          "audio planche(5)\n$ audio pic(2) var\n$ audio tem(35, 0, 4)\n");
  auto v = valeurs(s);
  ASSERT_EQ(v.size(), 4u) << s;
  EXPECT_EQ(v[0], (std::vector<double>{0, 0, 0, 0, 100, 0, 42, 43, 0, 88, 0, 0, 32, 0, 0, 0}));
  EXPECT_EQ(v[1], (std::vector<double>{0, 3, 9, 8, 8, 8, 8, 43, 43, 43, 43, 0, 0, 0, 0, 0}));
  // Half-window 2: 100 at 4 stands 5 over its neighbours; the walk jumps to
  // 6; 43 at 7 is not 5 over 42; 88 at 9 is; the 0 at 11 is not 5 under
  // 1; 32 at 12 stands over 0, 0, 1, 0.
  EXPECT_EQ(v[2], (std::vector<double>{100, 88, 32}));
  // Each window's first amplitude above 35 is at 4: 4, then 0 three times.
  EXPECT_EQ(v[3], (std::vector<double>{1}));
}

TEST(AudioCapture, PeripheriquesEtParametresRefuses) {
  Essai e;
  // No such card: the messages, actif stays 0, reads say so, the language
  // goes on.
  e.peripherique("pcm.!default { type hw card 97 }\n");
  int code = -1;
  std::string s = e.lance("audio ini(512)\n$ audio\n$ audio tem(3)\n$ 6 * 7\naudio fin\n", &code);
  EXPECT_EQ(code, 0);
  EXPECT_NE(s.find("Pas de capture du son"), std::string::npos) << s;
  EXPECT_NE(s.find("ERREUR InitDirectSound\a\n"), std::string::npos);
  EXPECT_EQ(s.find("Fenetre d'echantillonnage"), std::string::npos);
  std::size_t n = 0;
  for (std::size_t p = 0; (p = s.find("AUDIO OFF\a\n", p)) != std::string::npos; ++p) ++n;
  EXPECT_EQ(n, 2u) << s;
  EXPECT_NE(s.find("42.000000"), std::string::npos);
  EXPECT_NE(s.find("audio fin\nCapture micro OFF\n"), std::string::npos);
  // Bad values: a text, an infinity, too many windows; the capture opened
  // before stays open.
  e.son(ton(4096, 1000, 50, 0));
  s = e.lance("audio ini(64)\naudio ini(\"abc\")\naudio min(1/0)\n$ audio tem(10, 0, 1e9)\n$ audio\n", &code);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(valeurs(s).size(), 1u) << s;
  EXPECT_NE(s.find("Type de valeur illegal"), std::string::npos);
  // A spectrum of a window that is not a power of two ends the process
  // with the FFT's line.
  s = e.lance("audio ini(1000)\n$ audio fenetre\n$ 1\n", &code);
  EXPECT_EQ(code, 1);
  EXPECT_NE(s.find("Error in fft():  NumSamples=1000 is not power of two\n"), std::string::npos) << s;
  EXPECT_EQ(valeurs(s).size(), 0u);
}
}  // namespace
