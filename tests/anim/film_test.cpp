// A performance recorded as frames (PNG and BMP files, one a frame, as the
// hook turned the scene), made into a movie by the shipped makemovie
// (ffprobe counts its frames and reads its size), played back in the window
// forward, backward and over a missing frame; the refused ranges, a movie
// name full of shell characters, ffmpeg missing.
#include <filesystem>
#include <fstream>

#include "../display/outils_fenetre.h"

namespace {
namespace fs = std::filesystem;

// A program's standard output, each argument passed apart.
std::string sortie_programme(std::vector<std::string> a) {
  int p[2];
  if (pipe(p)) return {};
  pid_t pid = fork();
  if (pid == 0) {
    dup2(p[1], 1);
    close(p[0]);
    close(p[1]);
    std::vector<char*> v;
    for (auto& s : a) v.push_back(s.data());
    v.push_back(nullptr);
    execvp(v[0], v.data());
    _exit(127);
  }
  close(p[1]);
  std::string r;
  char b[256];
  for (ssize_t n; (n = read(p[0], b, sizeof b)) > 0;) r.append(b, static_cast<std::size_t>(n));
  close(p[0]);
  waitpid(pid, nullptr, 0);
  return r;
}

std::string lit(const fs::path& f) {
  std::ifstream i(f, std::ios::binary);
  return {std::istreambuf_iterator<char>(i), {}};
}
}  // namespace

TEST(Film, UnePerformanceEnImagesPuisEnFilmEtRelue) {
  Session s({"uti=tests/anim/fixtures"});
  ASSERT_TRUE(attend(s.p, "empilements"));
  fs::path d = fs::temp_directory_path() / ("film " + std::to_string(getpid()));
  fs::remove_all(d);
  fs::create_directories(d);
  const std::string f = (d / "f.png").string();
  tape(s.p, "vol(1) cube(90)");
  tape(s.p, "lum(1) som(0, 0, -1000)");
  tape(s.p, "interaction fonc(\"tourne\") tem(50) cadence(0) nom_img(\"" + f + "\")");
  ASSERT_TRUE(s.attend_mode(0));
  // The hook ran once a frame, 50 frames, and each frame was written.
  EXPECT_EQ(s.compteur("tours"), 50);
  for (int k = 1; k <= 50; ++k) {
    char nom[32];
    std::snprintf(nom, sizeof nom, "f%04d.png", k);
    ASSERT_TRUE(fs::exists(d / nom)) << nom;
  }
  EXPECT_FALSE(fs::exists(d / "f0051.png"));
  std::string a = lit(d / "f0001.png"), b = lit(d / "f0007.png"), c = lit(d / "f0050.png");
  ASSERT_GT(a.size(), 8u);
  EXPECT_EQ(a.substr(1, 3), "PNG");
  // The cube turned between frames: the pictures differ.
  EXPECT_NE(a, b);
  EXPECT_NE(b, c);
  // The same scene saved as .bmp, through the same writer.
  tape(s.p, "interaction fonc(\"tourne\") tem(3) cadence(0) nom_img(\"" + (d / "g.bmp").string() + "\")");
  ASSERT_TRUE(s.attend_mode(0));
  EXPECT_EQ(lit(d / "g0003.bmp").substr(0, 2), "BM");

  // The movie: a name with blanks and shell characters stays a name.
  const std::string nom = (d / "mon film; touch PIRATE $(touch PIRATE2) `touch PIRATE3`.mp4").string();
  auto v = attend_valeurs(
      s.p, "lecture(\"" + f + "\", 1, 50) film(\"" + nom + "\") taille(160, 120)",
      [](const std::vector<float>& x) { return !x.empty(); }, 60000);
  ASSERT_EQ(v, std::vector<float>{0}) << s.p.lu.substr(s.p.lu.size() > 2000 ? s.p.lu.size() - 2000 : 0);
  ASSERT_TRUE(fs::exists(nom));
  EXPECT_EQ(sortie_programme({"ffprobe", "-v", "error", "-count_frames", "-select_streams", "v:0", "-show_entries",
                              "stream=width,height,nb_read_frames", "-of", "csv=p=0", nom}),
            "160,120,50\n");
  for (const char* p : {"PIRATE", "PIRATE2", "PIRATE3"}) {
    EXPECT_FALSE(fs::exists(d / p)) << p;
    EXPECT_FALSE(fs::exists(fs::path(ORVANE_SOURCE) / p)) << p;
  }
  // Equal or zero ends: -1, nothing run, no file.
  const std::string rien = (d / "rien.mp4").string();
  for (const char* r : {"3, 3", "0, 7", "5, 0"}) tape(s.p, "lecture(\"" + f + "\", " + r + ") film(\"" + rien + "\")");
  valeurs(s.p, "1");
  EXPECT_EQ(compte(s.p.lu, "Images egales ou nulles: pas de film"), 3u);
  EXPECT_FALSE(fs::exists(rien));
  // The list file: one name a line, in the range's order.
  const std::string liste = (d / "liste.txt").string();
  v = valeurs(s.p, "lecture(\"" + f + "\", 9, 5, 2) ecrire(\"" + liste + "\")");
  EXPECT_EQ(v.back(), 3);
  {
    std::ifstream l(liste);
    std::string a, b, c, e;
    std::getline(l, a), std::getline(l, b), std::getline(l, c);
    EXPECT_EQ(a, (d / "f0009.png").string());
    EXPECT_EQ(c, (d / "f0005.png").string());
    EXPECT_FALSE(std::getline(l, e));
  }

  // Backward: i1 > i2 shows the frames in reverse order.
  tape(s.p, "lecture(\"" + f + "\", 8, 3) cadence(10)");
  ASSERT_TRUE(s.attend_mode(0));
  v = valeurs(s.p, "lecture");
  ASSERT_GE(v.size(), 3u);
  EXPECT_EQ(v.front(), 8);
  for (std::size_t k = 1; k < v.size(); ++k) EXPECT_LT(v[k], v[k - 1]);
  EXPECT_GE(v.back(), 3);
  // A missing frame is skipped with a message.
  fs::remove(d / "f0005.png");
  // A slow rate: no frame is passed over by a late step on a loaded machine.
  tape(s.p, "lecture(\"" + f + "\", 3, 7) cadence(4)");
  EXPECT_TRUE(attend(s.p, "f0005.png: Image absente, sautee", 20000));
  ASSERT_TRUE(s.attend_mode(0));
  v = valeurs(s.p, "lecture");
  EXPECT_EQ(std::count(v.begin(), v.end(), 5.0f), 0);
  ASSERT_FALSE(v.empty());
  EXPECT_EQ(v.front(), 3);
  // What the window shows is the last frame read: not black.
  fs::remove_all(d);
}

TEST(Film, SansFfmpegUnMessageQuiNommeLePaquet) {
  fs::path vide = fs::temp_directory_path() / ("sans_ffmpeg_" + std::to_string(getpid()));
  fs::create_directories(vide);
  std::string path = std::getenv("PATH") ? std::getenv("PATH") : "";
  setenv("PATH", vide.c_str(), 1);
  Processus p = lance_orvane({"gra=0", "ID", "ini=env/initb.h"});
  setenv("PATH", path.c_str(), 1);
  tape(p, "lecture(\"f.png\", 1, 9) film(\"x\")");
  tape(p, "lecture(\"f.png\", 1, 9, 0) film(\"x\")");
  tape(p, "lecture(\"f.png\", 1e9, 9) film(\"x\")");
  tape(p, "lecture(\"f.png\", 1, 2, 3, 4, 5)");
  tape(p, "lecture(1, 2, \"a\", \"b\")");
  tape(p, "lecture(\"f.png\", 1, 9) cadence(0)");
  tape(p, "lecture(\"f.png\", 1, 9) taille(1, 1e9) film");
  tape(p, "$ \"fin\"");
  ASSERT_TRUE(attend(p, "fin", 10000));
  EXPECT_NE(p.lu.find("ffmpeg absent: installer le paquet ffmpeg"), std::string::npos) << p.lu;
  EXPECT_GE(compte(p.lu, "lecture Type de valeur"), 3u) << p.lu;
  EXPECT_NE(p.lu.find("cadence Type de valeur"), std::string::npos) << p.lu;
  EXPECT_NE(p.lu.find("taille Type de valeur"), std::string::npos) << p.lu;
  tape(p, "$ 1 + 1");
  EXPECT_TRUE(attend(p, "2.000000"));
  fs::remove_all(vide);
}
