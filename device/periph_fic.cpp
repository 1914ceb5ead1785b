// File channels: the file `nom` + ".dat" is opened at each access, read
// whole (as text or as binary floats) or written anew.
#include <cstdio>
#include <cstring>
#include <string>

#include "core/message.h"
#include "device/periph_interne.h"
#include "interp/interp.h"

namespace {
std::string chemin(const Periph* p) { return std::string(p->nom) + ".dat"; }
}  // namespace

int fic_lit(Periph* p, mot* phrase, const mot* limite) {
  std::string c = chemin(p);
  std::FILE* f = std::fopen(c.c_str(), p->format == BLOC_REEL ? "rb" : "r");
  if (!f) {
    std::printf("%s: ", c.c_str());
    message(0, MES_FICHIER);
    message(0, MES_INDICE);
    resultat_nil(phrase);
    return 0;
  }
  // Room left on the stack, less the header (and the text's closing NUL).
  long place = 4 * static_cast<long>(limite - phrase - 5);
  if (place <= 0) {
    std::fclose(f);
    return PILE_PLEINE;
  }
  char* dst = reinterpret_cast<char*>(phrase + 4);
  long lu = static_cast<long>(std::fread(dst, 1, static_cast<std::size_t>(place), f));
  // A file that fills the room may hold more than it.
  bool plein = lu == place && std::fgetc(f) != EOF;
  std::fclose(f);
  if (plein) return PILE_PLEINE;
  if (p->format == BLOC_REEL) {
    long n = lu / 4;
    phrase[0] = static_cast<mot>(4 + n);
    phrase[1] = BLOC_REEL;
    phrase[2] = static_cast<mot>(n);
    phrase[3] = 1;
    return 0;
  }
  return resultat_texte(phrase, limite, dst, lu);
}

int fic_ecrit(Periph* p, const mot* donnee) {
  std::string c = chemin(p);
  const char* t = texte_de(donnee);
  std::FILE* f = std::fopen(c.c_str(), "w");
  if (!f) {
    std::printf("%s: ", c.c_str());
    message(0, MES_ECRITURE);
    return -1;
  }
  std::size_t lg = t ? std::strlen(t) : 0;
  bool ok = std::fwrite(t ? t : "", 1, lg, f) == lg;
  ok = std::fclose(f) == 0 && ok;
  if (!ok) {
    message(0, MES_DISQUE);
    return -1;
  }
  return 0;
}
