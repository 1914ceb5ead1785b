// Saving and loading a volume of 1,000,000 vertices and 1,000,000 faces in
// the binary form. Prints the file's bytes and the seconds of the save
// (the file synced to the disk, as dd's conv=fdatasync does) and of the
// load; bench/fichiers.sh sets them beside dd on the same disk.
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "core/message.h"
#include "core/objet.h"
#include "persist/persist.h"

namespace {
double maintenant() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Objet* grand_volume(int n) {
  Objet* o = objet_cree(1, 4, 0, nullptr, nullptr, 1);
  mot* s = attribut_nouveau(o, 6 + 4 + 3 * n);
  s[1] = BLOC_PHRASE, s[2] = 6, s[3] = 1, s[4] = 1, s[5] = 86;
  s[6] = 4 + 3 * n, s[7] = BLOC_REEL, s[8] = n, s[9] = 3;
  for (int k = 0; k < 3 * n; ++k) ecrit_reel(s + 10 + k, static_cast<float>(k % 1000) * 0.25f);
  mot* f = attribut_nouveau(o, 6 + 4 + 7 * n);
  f[1] = BLOC_PHRASE, f[2] = 6, f[3] = 1, f[4] = 1, f[5] = 15;
  f[6] = 4 + 7 * n, f[7] = BLOC_LISTE, f[8] = n, f[9] = 0;
  mot* e = f + 10;
  for (int k = 0; k < n; ++k, e += 7) {
    e[0] = 7, e[1] = BLOC_ENTIER, e[2] = 1, e[3] = 3;
    e[4] = 1 + k, e[5] = 1 + (k + 1) % n, e[6] = 1 + (k + 2) % n;
  }
  return o;
}
}  // namespace

int main(int argc, char** argv) {
  std::string dir = argc > 1 ? argv[1] : ".";
  if (!tas::init() || piles_alloue(100, 1000, 100, 100) != 0) return 1;
  constexpr int N = 1000000;
  grand_volume(N);
  std::string nom = dir + "/grand";
  OptionsFichier opt;
  opt.demande = -3;
  double meilleure_e = 1e9, meilleure_l = 1e9;
  long long octets = 0;
  for (int essai = 0; essai < 3; ++essai) {
    std::filesystem::remove(nom + ".vol");
    double t0 = maintenant();
    if (objets_ecrit(4, nom, {}, opt) <= 0) return 1;
    int fd = ::open((nom + ".vol").c_str(), O_RDONLY);
    fdatasync(fd);
    ::close(fd);
    double t1 = maintenant();
    if (objets_lit(4, nom, opt) != 1) return 1;
    double t2 = maintenant();
    meilleure_e = std::min(meilleure_e, t1 - t0);
    meilleure_l = std::min(meilleure_l, t2 - t1);
    octets = static_cast<long long>(std::filesystem::file_size(nom + ".vol"));
  }
  std::filesystem::remove(nom + ".vol");
  std::printf("%lld %.6f %.6f\n", octets, meilleure_e, meilleure_l);
  return 0;
}
