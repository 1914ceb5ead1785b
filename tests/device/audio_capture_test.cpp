// Capture end to end through real ALSA and no sound card: each case writes
// an asoundrc whose default device is ALSA's file plugin reading raw 8-bit
// samples from a file made here (over the null device), points HOME at it,
// and runs orvane on console lines.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {
struct Essai {
  std::string dir;
  Essai() {
    char modele[] = "/tmp/orvane_son_XXXXXX";
    dir = mkdtemp(modele) ? modele : "";
  }
  ~Essai() {
    if (!dir.empty()) std::system(("rm -rf " + dir).c_str());
  }
  // The device: the file plugin reading `octets` as its capture, or any
  // other definition of the default device.
  void son(const std::vector<unsigned char>& octets) {
    std::ofstream(dir + "/son.raw", std::ios::binary)
        .write(reinterpret_cast<const char*>(octets.data()), static_cast<std::streamsize>(octets.size()));
    peripherique("pcm.!default {\n type file\n slave.pcm \"null\"\n file \"/dev/null\"\n infile \"" + dir +
                 "/son.raw\"\n format \"raw\"\n}\n");
  }
  void peripherique(const std::string& conf) { std::ofstream(dir + "/.asoundrc") << conf; }
  // Runs the lines; the output, and the exit status in *code.
  std::string lance(const std::string& lignes, int* code = nullptr) {
    std::ofstream(dir + "/entree") << lignes;
    std::string cmd = "cd " ORVANE_SOURCE " && HOME=" + dir + " " ORVANE_BIN " gra=0 ID ini=env/initb.h < " + dir +
                      "/entree > " + dir + "/sortie 2>&1";
    int r = std::system(cmd.c_str());
    if (code) *code = WIFEXITED(r) ? WEXITSTATUS(r) : -1;
    std::stringstream s;
    s << std::ifstream(dir + "/sortie").rdbuf();
    return s.str();
  }
};

std::vector<unsigned char> ton(int n, double hz, double amp, double phase) {
  std::vector<unsigned char> o(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i)
    o[static_cast<std::size_t>(i)] =
        static_cast<unsigned char>(std::lround(128 + amp * std::sin(2 * M_PI * hz * i / 8000 + phase)));
  return o;
}

// The numbers of each line of results ("> " then floats).
std::vector<std::vector<double>> valeurs(const std::string& sortie) {
  std::vector<std::vector<double>> r;
  std::istringstream in(sortie);
  std::string l;
  while (std::getline(in, l)) {
    while (l.rfind("> ", 0) == 0) l = l.substr(2);
    std::istringstream m(l);
    std::vector<double> v;
    double x;
    while (m >> x) v.push_back(x);
    if (!v.empty() && m.eof()) r.push_back(v);
  }
  return r;
}

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
