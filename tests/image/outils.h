// Shared set-up of the image tests: an object table, message tables whose
// text n of env e reads "Me:n", a scratch directory, and images filled
// with random bytes.
#pragma once
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "core/message.h"
#include "core/objet.h"
#include "image/image.h"
#include "startup/startup.h"
#include "tests/outils/sortie.h"

inline void monde_ima() {
  if (!piles.obj_base) {
    ASSERT_EQ(piles_alloue(100, 10000, 200, 1000), 0);
  }
  objets_vide();
  ecran = Ecran{};
  ecran.largeur = 64;
  ecran.hauteur = 48;
  for (int e = 0; e < 2; ++e) {
    std::string t;
    for (int n = 0; n <= 130; ++n) t += "|" + std::to_string(n) + ":M" + std::to_string(e) + ":" + std::to_string(n) + "\\n\n";
    mes_analyse(t, e);
  }
  messages.charges = true;
}

// A fresh directory under the build's temporary area, removed at the end.
struct Dossier {
  std::filesystem::path p;
  Dossier() {
    char modele[] = "/tmp/orvane-ima-XXXXXX";
    p = mkdtemp(modele);
  }
  ~Dossier() { std::filesystem::remove_all(p); }
  std::string operator/(const std::string& n) const { return (p / n).string(); }
};

// A w x h image of random bytes.
inline mot* ima_hasard(int w, int h, std::mt19937& g) {
  mot* b = ima_alloue(w, h);
  octet* p = ima_octets(b);
  for (long k = 0; k < 3L * w * h; ++k) p[k] = static_cast<octet>(g());
  return b;
}

// A file's bytes, read and written whole.
inline std::vector<char> octets_de(const std::string& chemin) {
  std::ifstream f(chemin, std::ios::binary);
  return std::vector<char>(std::istreambuf_iterator<char>(f), {});
}
inline void ecrit(const std::string& chemin, const std::vector<char>& v) {
  std::ofstream f(chemin, std::ios::binary | std::ios::trunc);
  f.write(v.data(), static_cast<std::streamsize>(v.size()));
}

inline octet px(const mot* b, int x, int y, int c) { return ima_rouge(b, y)[x + static_cast<long>(c) * ima_l(b)]; }

// A shell command's standard output and error.
inline std::string commande_sortie(const std::string& cmd_seule) {
  std::string cmd = cmd_seule + " 2>&1";
  std::string out;
  FILE* f = popen(cmd.c_str(), "r");
  if (!f) return "popen";
  char buf[4096];
  std::size_t n;
  while ((n = fread(buf, 1, sizeof buf, f)) > 0) out.append(buf, n);
  pclose(f);
  return out;
}

// Runs a Python snippet with PIL (the system's python), the directory as
// its first argument; its standard output.
inline std::string python_pil(const std::string& code, const std::string& dossier) {
  return commande_sortie("/usr/bin/python3 -c '" + code + "' " + dossier);
}
