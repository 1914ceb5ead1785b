// The 19 pigments drawn by two runs of the program from the console, each
// saved as a PNG: the files of one run are the other's byte for byte (the
// noise is seeded the same at every start), and no two pigments give the
// same picture.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace {
std::string contenu(const std::filesystem::path& p) {
  std::ifstream f(p, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
}

// One run: the lines on standard input, the pictures into `dossier`.
void une_execution(const std::filesystem::path& dossier) {
  std::filesystem::create_directories(dossier);
  std::ofstream s(dossier / "lignes.in");
  s << "lum(1)\nlum(1) som = -300, -400, -900\nvol(1) sphere(200)\noui pigments\n";
  for (int t = 1; t <= 19; ++t)
    s << "vol(1) pigments(" << 100 + t << ", -1, 0.5, 2, 5, 0.01)\naff fond(0, 0, 0) vol(1)\necrire(\""
      << (dossier / ("p" + std::to_string(t) + ".png")).string() << "\") ima\n";
  s.close();
  std::string cmd = "cd " ORVANE_SOURCE " && " ORVANE_BIN " gra=0 ID ini=env/initb.h < " +
                    (dossier / "lignes.in").string() + " > " + (dossier / "sortie").string() + " 2>&1";
  ASSERT_EQ(std::system(cmd.c_str()), 0);
}

TEST(PigmentExecutions, MemesImagesDUneExecutionALAutre) {
  auto base = std::filesystem::temp_directory_path() / ("orvane-pig-" + std::to_string(getpid()));
  une_execution(base / "a");
  une_execution(base / "b");
  std::set<std::string> vues;
  for (int t = 1; t <= 19; ++t) {
    std::string n = "p" + std::to_string(t) + ".png";
    std::string a = contenu(base / "a" / n), b = contenu(base / "b" / n);
    ASSERT_GT(a.size(), 1000u) << n;
    EXPECT_TRUE(a == b) << n;
    vues.insert(a);
  }
  EXPECT_EQ(vues.size(), 19u);
  std::filesystem::remove_all(base);
}
}  // namespace
