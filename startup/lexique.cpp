// Lexical rules shared by the readers of the environment files.
#include <array>

#include "core/message.h"
#include "startup/startup.h"

namespace {
constexpr std::array<bool, 256> table_fin_nom = [] {
  std::array<bool, 256> t{};
  for (unsigned char c : std::string_view("\0\3\t\n\r !#%&()*+,-/:;<=>[\\]^{|}~", 30)) t[c] = true;
  return t;
}();
}  // namespace

bool fin_de_nom(unsigned char c) { return table_fin_nom[c]; }

const char* saute_commentaires(const char* p, int* ligne) {
  for (;;) {
    char c = *p;
    if (c == ' ' || c == '\t' || c == '\r') {
      ++p;
    } else if (c == '\n') {
      ++p;
      if (ligne) ++*ligne;
    } else if (c == '/' && p[1] == '*') {
      p += 2;
      while (*p && !(p[0] == '*' && p[1] == '/')) {
        if (*p == '\n' && ligne) ++*ligne;
        ++p;
      }
      if (!*p) {
        message(0, 64);
        return nullptr;
      }
      p += 2;
    } else {
      return p;
    }
  }
}

const char* lit_nom(const char* p, char* dst, int taille) {
  int n = 0;
  while (!fin_de_nom(static_cast<unsigned char>(p[n]))) {
    if (n >= taille - 1) {
      message(0, 2);
      return nullptr;
    }
    dst[n] = p[n];
    ++n;
  }
  dst[n] = 0;
  return p + n;
}
