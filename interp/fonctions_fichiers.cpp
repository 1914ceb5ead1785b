// The file family of the built-ins: 256 slots of open files, a file being
// known to the language by its slot number; -1 stands for failure.
#include <cstdio>
#include <string>

#include "core/message.h"
#include "interp/fonctions_interne.h"
#include "startup/startup.h"

namespace {
constexpr int NB_FICHIERS = 256;
struct Fichiers {
  std::FILE* f[NB_FICHIERS] = {};
};
Fichiers fichiers;

bool trace() { return etat_ou(0, 36, 0) > 0; }

// The file number: first element of a float argument, or of a list's first
// float element. `numero` tells whether there was one at all: a number that
// names no open file is a failure without message, no number a bad argument.
std::FILE* fichier_de(const Argument& a, int* num, bool* numero = nullptr) {
  float x;
  if (numero) *numero = false;
  if (a.type == BLOC_REEL && a.n > 0) x = a.x[0];
  else if (a.type == BLOC_LISTE && a.bloc[4] > 0 && a.bloc[5] == BLOC_REEL && a.bloc[4] > 4)
    x = lit_reel(a.bloc + 8);
  else return nullptr;
  if (numero) *numero = true;
  mot k;
  if (!reel_entier(x, &k, 0, NB_FICHIERS - 1)) return nullptr;
  *num = k;
  return fichiers.f[k];
}

int usage_fopen(mot* bloc, const mot* limite) {
  std::printf("%s(\"nom mode\"): r rb w wb a ab\a\n", mot_nom(0, F_FOPEN));
  return resultat_scalaire(bloc, limite, -1.f);
}

int usage_lecture_ecriture() {
  std::fputs("fread fwrite(pf,datas)\x07\n", stdout);
  return -1;
}

int ouvre(mot* bloc, const mot* limite, const Argument& a) {
  if (a.type != BLOC_CHAINE) return usage_fopen(bloc, limite);
  std::string texte(a.s, a.n);
  std::size_t blanc = texte.find(' ');
  if (blanc == std::string::npos) return usage_fopen(bloc, limite);
  std::string nom = texte.substr(0, blanc);
  std::size_t m = texte.find_first_not_of(' ', blanc);
  if (m == std::string::npos) return usage_fopen(bloc, limite);
  std::string mode = texte.substr(m, texte.find(' ', m) - m);
  std::string chemin = std::string(dem.chemin_uti) + nom;
  int k = 0;
  while (k < NB_FICHIERS && fichiers.f[k]) ++k;
  if (k == NB_FICHIERS) {
    std::printf("TROP DE FICHIERS OUVERTS %d\x07\n", NB_FICHIERS);
    return resultat_scalaire(bloc, limite, -1.f);
  }
  std::FILE* f = std::fopen(chemin.c_str(), mode.c_str());
  if (!f) k = -1;
  else fichiers.f[k] = f;
  if (trace()) std::printf("fopen(%s %s) -> %d\n", chemin.c_str(), mode.c_str(), k);
  return resultat_scalaire(bloc, limite, static_cast<float>(k));
}

int mot_suivant(mot* bloc, const mot* limite, std::FILE* f) {
  int c;
  do c = std::fgetc(f);
  while (c == ' ' || c == '\t' || c == '\n');
  std::string s;
  while (c != EOF && c != ' ' && c != '\t' && c != '\n') {
    s.push_back(static_cast<char>(c));
    c = std::fgetc(f);
  }
  if (s.empty()) {
    resultat_nil(bloc);
    return 0;
  }
  return resultat_chaine(bloc, limite, s.data(), s.size());
}

int lit(mot* bloc, const mot* limite, const Argument& a, std::FILE* f) {
  mot n = 1;
  if (a.type == BLOC_REEL && a.n > 1 && !reel_entier(a.x[1], &n, 0)) return usage_lecture_ecriture();
  mot l = long_chaine(static_cast<std::size_t>(n));
  if (bloc + l >= limite) return PILE_PLEINE;
  // Straight into the result's place: the argument is no longer needed.
  char* dst = reinterpret_cast<char*>(bloc + 4);
  std::size_t lu = std::fread(dst, 1, static_cast<std::size_t>(n), f);
  return resultat_chaine(bloc, limite, dst, lu);
}

// A float vector writes one byte per element after the file number; a list
// writes its strings' bytes and its floats' bytes in order.
int ecrit(mot* bloc, const mot* limite, const Argument& a, std::FILE* f) {
  long ecrits = 0;
  auto octets = [&](const reel* x, long n) {
    for (long i = 0; i < n; ++i) ecrits += std::fputc(static_cast<unsigned char>(entier_sature(x[i])), f) != EOF;
  };
  if (a.type == BLOC_REEL) {
    octets(a.x + 1, a.n - 1);
  } else {
    const mot* e = a.bloc + 4;
    for (mot k = 0; k < a.bloc[2]; ++k, e += e[0] > 0 ? e[0] : 2) {
      if (e[0] <= 0) continue;
      if (e[1] == BLOC_CHAINE) {
        const char* s = reinterpret_cast<const char*>(e + 4);
        ecrits += static_cast<long>(std::fwrite(s, 1, std::strlen(s), f));
      } else if (e[1] == BLOC_REEL) {
        octets(reels(e + 4) + (k == 0), e[0] - 4 - (k == 0));  // the first float is the file
      }
    }
  }
  std::fflush(f);
  return resultat_scalaire(bloc, limite, static_cast<float>(ecrits));
}
}  // namespace

int fonction_fichier(int ord, mot* bloc, const mot* limite, const Argument& a) {
  if (ord == F_FOPEN) return ouvre(bloc, limite, a);
  int num = -1;
  bool numero;
  std::FILE* f = fichier_de(a, &num, &numero);
  if (!f) return !numero && (ord == F_FREAD || ord == F_FWRITE) ? usage_lecture_ecriture() : -1;
  switch (ord) {
    case F_FMOT:
      return mot_suivant(bloc, limite, f);
    case F_FCLOSE:
      std::fclose(f);
      fichiers.f[num] = nullptr;
      if (trace()) std::printf("fclose %d\n", num);
      return resultat_scalaire(bloc, limite, 0.f);
    case F_FREAD:
      return lit(bloc, limite, a, f);
    case F_FWRITE:
      return ecrit(bloc, limite, a, f);
  }
  return -1;
}
