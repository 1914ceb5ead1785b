// Compile speed: a generated function file of 10,000 lines, read into
// functions and compiled, with the vocabulary of env/. Run from the
// repository root.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "core/message.h"
#include "core/objet.h"
#include "lang/lang.h"
#include "startup/startup.h"

namespace {
bool lit(const char* chemin, std::string& t) {
  std::ifstream f(chemin, std::ios::binary);
  if (!f) return false;
  std::ostringstream s;
  s << f.rdbuf();
  t = s.str();
  return true;
}

// Functions of 20 lines: expressions, control statements, calls of the
// neighbours, keyword phrases, strings and comments.
std::string fichier(int lignes) {
  std::string t;
  int n = 0;
  for (int f = 0; n < lignes; ++f) {
    std::string i = std::to_string(f);
    t += "/* fonction " + i + " */\n";
    t += "fon" + i + "(a, b, c)\n{\n";
    t += "  statique compte = 0\n";
    t += "  x = a + b * 2 - c / 3\n";
    t += "  y = (x, a, b) + 1\n";
    t += "  si(x > 10 && y[0] < 5) z = x ^ 2 sinon z = -x\n";
    t += "  pour(i = 0, 10) { z = z + i; compte++ }\n";
    t += "  pour(j = 0; j < 3; j++) y[j] = y[j] * z\n";
    t += "  tantque(z > 100) z = z / 2\n";
    t += "  selon(a){cas 1: z = 2; sortir; cas 2: z = 3; defaut: z = 4}\n";
    t += "  vol(1) rotx(30) roty(z)\n";
    t += "  s = \"texte \", \"" + i + "\"\n";
    t += "  si(z == 0) aller fin\n";
    t += "  w = fon" + std::to_string(f > 0 ? f - 1 : 0) + "(x, y, z) + sqrt(x)\n";
    t += "  v = [1, 10] * 0.5\n";
    t += "  fin: u = !w || (v ~ 1)\n";
    t += "  retour u, v, w\n}\n";
    n += 19;
  }
  return t;
}
}  // namespace

int main() {
  tas::init();
  if (piles_alloue(1000, 100000, 20000, 10000) != 0) return 1;
  std::string t;
  for (int e = 0; e < 2; ++e) {
    const char* kom = e ? "env/komb.h" : "env/koma.h";
    if (!lit(kom, t) || kom_analyse(t, e) < 0) {
      std::printf("%s: cannot be read (run from the repository root)\n", kom);
      return 1;
    }
  }
  if (lit("env/mesa.h", t)) {
    mes_analyse(t, 0);
    messages.charges = true;
  }
  mots_reinit();

  constexpr int LIGNES = 10000;
  std::string texte = fichier(LIGNES);
  int lignes = static_cast<int>(std::count(texte.begin(), texte.end(), '\n'));
  char modele[] = "/tmp/bench_compile_XXXXXX";
  int fd = mkstemp(modele);
  if (fd < 0) return 1;
  close(fd);
  std::string nom = std::string(modele) + ".fon";
  std::rename(modele, nom.c_str());
  std::ofstream(nom) << texte;

  double meilleur = 1e30, lien = 0;
  int fonctions = 0;
  for (int essai = 0; essai < 5; ++essai) {
    objets_vide();
    auto t0 = std::chrono::steady_clock::now();
    fonctions = fonctions_lit(nom.c_str(), false);
    int r = compiler_tout();
    auto t1 = std::chrono::steady_clock::now();
    int l = lier_tout();
    auto t2 = std::chrono::steady_clock::now();
    if (fonctions <= 0 || r != 0 || l != 0) {
      std::printf("compilation failed (%d functions, %d, %d)\n", fonctions, r, l);
      return 1;
    }
    double ms = std::chrono::duration<double, std::milli>(t1 - t0).count();
    if (ms < meilleur) {
      meilleur = ms;
      lien = std::chrono::duration<double, std::milli>(t2 - t1).count();
    }
  }
  std::remove(nom.c_str());
  std::printf("compile of a %d-line function file (%d functions): %.1f ms, %.0f lines/s (goal >= 100000); "
              "link %.1f ms\n",
              lignes, fonctions, meilleur, lignes / (meilleur / 1000), lien);
  return 0;
}
