// Attributes written and read back through a real process, with vectors of
// random length and random values, typed at the prompt and run inside
// functions: the `=` form and the argument form store the same thing, a
// write gives its value back whole, and nothing crashes or hangs.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "../outils/processus.h"

namespace {
// Runs orvane on the given console lines; gives the output and the status.
int execute(const std::vector<std::string>& args, const std::string& texte, std::string* sortie) {
  // A crashed orvane must fail the test, not kill it with SIGPIPE.
  signal(SIGPIPE, SIG_IGN);
  Processus p = lance_orvane(args);
  if (p.pid <= 0) return -1;
  nourrit(p, texte, "\x01 jamais", 60000);
  int statut = termine(p);
  *sortie = p.lu;
  return statut;
}

// A float with at most 24 significant bits and a random exponent, so that its
// nine-digit text reads back to the same float: large, odd, tiny or negative.
float au_hasard(std::mt19937& g) {
  std::uniform_int_distribution<int> m(1, (1 << 24) - 1), e(-30, 60), genre(0, 5);
  switch (genre(g)) {
    case 0: return 0.0f;
    case 1: return static_cast<float>(m(g) % 1000);
    default: {
      float x = std::ldexp(static_cast<float>(m(g)), e(g) - 24);
      return genre(g) < 3 ? -x : x;
    }
  }
}

std::string litteral(const std::vector<float>& v) {
  std::string s;
  char t[40];
  for (std::size_t i = 0; i < v.size(); ++i) {
    std::snprintf(t, sizeof t, "%s%.9g", i ? "," : "", static_cast<double>(v[i]));
    s += t;
  }
  return s;
}

// The text `$` prints for these floats.
std::string imprime(const std::vector<float>& v) {
  std::string s;
  char t[80];
  for (float x : v) {
    std::snprintf(t, sizeof t, "%f ", static_cast<double>(x));
    s += t;
  }
  return s;
}

// The text between two marker lines of the output.
std::string entre(const std::string& sortie, const std::string& a, const std::string& b) {
  std::size_t i = sortie.find(a + " ");
  std::size_t j = sortie.find(b + " ", i == std::string::npos ? 0 : i);
  if (i == std::string::npos || j == std::string::npos) return "<absent " + a + ">";
  return sortie.substr(i + a.size() + 1, j - i - a.size() - 1);
}
}  // namespace

TEST(EcritureAttributs, RandomVectorsWrittenWithEqualsAtThePromptAndInFunctions) {
  char modele[] = "/tmp/orvane-attr-XXXXXX";
  ASSERT_NE(mkdtemp(modele), nullptr);
  std::filesystem::path dir = modele;
  std::mt19937 g(20261123);
  std::uniform_int_distribution<int> longueur(1, 160);
  const int ESSAIS = 40;
  std::vector<std::vector<float>> valeurs;
  std::string texte = "vol(1)\nvol(2)\nvol(3)\n$ \"D\"\n$ \"E\"\n";
  for (int i = 0; i < ESSAIS; ++i) {
    // Vertex counts from 1 to 160, so lengths from 3 to 480, odd ones among them.
    std::vector<float> v(3 * static_cast<std::size_t>(longueur(g)));
    for (float& x : v) x = au_hasard(g);
    valeurs.push_back(v);
    std::string l = litteral(v), m = "M" + std::to_string(i);
    std::ofstream(dir / ("ec" + std::to_string(i) + ".fon"))
        << "ec" << i << "()\n{\n  vol(3) coul = " << l << "\n  vol(3) som = " << l << "\n}\n";
    // A console line holds some 780 characters: longer vectors are built in
    // a variable, a few values a line.
    std::string x = l;
    if (v.size() > 36) {
      for (std::size_t k = 0; k < v.size(); k += 30) {
        std::vector<float> morceau(v.begin() + static_cast<long>(k),
                                   v.begin() + static_cast<long>(std::min(v.size(), k + 30)));
        texte += (k ? "x = x, " : "x = ") + litteral(morceau) + "\n";
      }
      x = "x";
    }
    texte += "vol(1) coul = " + x + "\nvol(2) coul(" + x + ")\nvol(1) som = " + x + "\nec" + std::to_string(i) +
             "()\n";
    texte += "$ \"" + m + "a\"\n$ vol(1) coul\n$ \"" + m + "b\"\n$ vol(2) coul\n$ \"" + m + "c\"\n$ vol(3) coul\n";
    texte += "$ \"" + m + "d\"\n$ vol(1) som\n$ \"" + m + "e\"\n$ vol(3) som\n$ \"" + m + "f\"\n";
    texte += "$ (vol(2) som = " + x + ")\n$ \"" + m + "g\"\n";
  }
  std::string sortie;
  int statut = execute({"gra=0", "ID", "ini=env/initb.h", "uti=" + dir.string()}, texte, &sortie);
  std::filesystem::remove_all(dir);
  ASSERT_EQ(statut, 0) << sortie.substr(sortie.size() > 3000 ? sortie.size() - 3000 : 0);
  // Every line ends with the same prompt lines: compare them whole.
  std::string invite = entre(sortie, "D", "E");
  for (int i = 0; i < ESSAIS; ++i) {
    const auto& v = valeurs[static_cast<std::size_t>(i)];
    std::string m = "M" + std::to_string(i);
    std::string coul = invite + imprime({v[0], v[1], v[2]}) + invite, som = invite + imprime(v) + invite;
    EXPECT_EQ(entre(sortie, m + "a", m + "b"), coul) << "coul =, trial " << i;
    EXPECT_EQ(entre(sortie, m + "b", m + "c"), coul) << "coul(...), trial " << i;
    EXPECT_EQ(entre(sortie, m + "c", m + "d"), coul) << "coul = in a function, trial " << i;
    EXPECT_EQ(entre(sortie, m + "d", m + "e"), som) << "som =, trial " << i;
    EXPECT_EQ(entre(sortie, m + "e", m + "f"), som) << "som = in a function, trial " << i;
    EXPECT_EQ(entre(sortie, m + "f", m + "g"), som) << "value of the write, trial " << i;
  }
}
