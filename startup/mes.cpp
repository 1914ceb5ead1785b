// Message files: "|N:text", the position being the number; a text runs to
// a newline followed by "|", or to the end of the file.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "core/message.h"
#include "startup/interne.h"
#include "startup/startup.h"

namespace {
// Decodes the escapes of one text: \7 bell, \e blank, \n, \t, and \c<number>
// for the byte of that decimal value. A backslash before anything without a
// number stands for that character itself.
void decode(const char* d, const char* f, std::string& sortie) {
  while (d < f) {
    // The plain run up to the next backslash, at once.
    const char* b = static_cast<const char*>(std::memchr(d, '\\', static_cast<std::size_t>(f - d)));
    if (!b) b = f;
    sortie.append(d, b);
    d = b;
    if (d >= f) break;
    if (++d >= f) {
      sortie.push_back('\\');
      break;
    }
    char e = *d++;
    switch (e) {
      case '7': sortie.push_back('\a'); continue;
      case 'e': sortie.push_back(' '); continue;
      case 'n': sortie.push_back('\n'); continue;
      case 't': sortie.push_back('\t'); continue;
    }
    if (d < f && *d >= '0' && *d <= '9') {
      const char* n = d;
      while (d < f && !fin_de_nom(static_cast<unsigned char>(*d))) ++d;
      sortie.push_back(static_cast<char>(std::atoi(std::string(n, d).c_str())));
    } else {
      sortie.push_back(e);
    }
  }
}
}  // namespace

int mes_analyse(std::string_view texte, int env) {
  std::vector<std::size_t> debuts;
  std::string store;
  store.reserve(texte.size());  // the texts decoded are never longer
  std::size_t p = texte.find('|');
  while (p != std::string_view::npos) {
    std::size_t d = texte.find(':', p + 1);
    if (d == std::string_view::npos) d = texte.size();
    else ++d;
    // The text ends at a newline that is followed by "|".
    std::size_t f = d;
    std::size_t suivant = std::string_view::npos;
    for (; f < texte.size(); ++f)
      if (texte[f] == '\n' && f + 1 < texte.size() && texte[f + 1] == '|') {
        suivant = f + 1;
        break;
      }
    debuts.push_back(store.size());
    decode(texte.data() + d, texte.data() + f, store);
    store.push_back('\0');
    p = suivant;
  }
  int nb = static_cast<int>(debuts.size());
  auto* textes = static_cast<char**>(tas::alloue(sizeof(char*) * (nb ? nb : 1)));
  auto* zone = static_cast<char*>(tas::alloue(store.size() + 1));
  if (!textes || !zone) {
    std::fputs("ALLOCATION ALLOCATION\n", stdout);
    arret_fatal("ERREUR DANS INIT_MES\x07\n");
  }
  std::memcpy(zone, store.data(), store.size());
  for (int i = 0; i < nb; ++i) textes[i] = zone + debuts[i];
  messages.tables[env].nb = nb;
  messages.tables[env].textes = textes;
  if (env >= messages.nb_env) messages.nb_env = env + 1;
  return 0;
}

int mes_charge(const char* chemin, int env) {
  std::string texte;
  if (!lit_fichier(chemin, texte)) {
    std::printf("%s: ", chemin);
    arret_fatal("ERREUR DANS INIT_MES\x07\n");
  }
  return mes_analyse(texte, env);
}
