// Helpers shared by the kinds of channel: the tick counter, host names,
// texts of values and received texts as results.
#include <arpa/inet.h>
#include <netdb.h>

#include <cstring>
#include <ctime>

#include "core/message.h"
#include "device/periph_interne.h"

std::int64_t tic_ms() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<std::int64_t>(t.tv_sec) * 1000 + t.tv_nsec / 1000000;
}

bool resout_hote(const char* nom, in_addr* a) {
  if (!nom || !*nom) return false;
  addrinfo indice{};
  indice.ai_family = AF_INET;
  addrinfo* res = nullptr;
  if (getaddrinfo(nom, nullptr, &indice, &res) == 0 && res) {
    *a = reinterpret_cast<sockaddr_in*>(res->ai_addr)->sin_addr;
    freeaddrinfo(res);
    return true;
  }
  return inet_aton(nom, a) != 0;
}

const char* texte_de(const mot* v) {
  if (!v || v[0] < 5 || v[1] != BLOC_CHAINE) return nullptr;
  // A text ends at its NUL or at the end of its block.
  const char* t = reinterpret_cast<const char*>(v + 4);
  if (!std::memchr(t, 0, 4 * static_cast<std::size_t>(v[0] - 4))) return nullptr;
  return t;
}

int resultat_texte(mot* phrase, const mot* limite, const char* s, long lg) {
  mot l = static_cast<mot>(4 + lg / 4 + 1);
  if (phrase + l > limite) return PILE_PLEINE;
  std::memmove(phrase + 4, s, static_cast<std::size_t>(lg));
  std::memset(reinterpret_cast<char*>(phrase + 4) + lg, 0, static_cast<std::size_t>(4 * (l - 4) - lg));
  phrase[0] = l;
  phrase[1] = BLOC_CHAINE;
  phrase[2] = static_cast<mot>(lg / 4 + 1);
  phrase[3] = 1;
  return 0;
}
