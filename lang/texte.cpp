// Steps over the pieces of a text between the stages of pass 1: strings,
// quoted vectors, numbers, line marks and name fields.
#include "lang/interne.h"

// Before the canonical stage a string still holds its backslash pairs.
const char* saute_chaine(const char* p) {
  ++p;
  while (*p && *p != '"') {
    if (*p == '\\' && p[1]) ++p;
    ++p;
  }
  return *p ? p + 1 : nullptr;
}

// After it, the escapes are resolved and the next quote ends the string.
const char* saute_chaine_norm(const char* p) {
  ++p;
  while (*p && *p != '"') ++p;
  return *p ? p + 1 : p;
}

// A quoted vector ends at its quote, at a line's end or at the text's end.
const char* saute_vecteur(const char* p) {
  ++p;
  while (*p && *p != '\'' && *p != MARQUE_LIGNE) {
    if (*p == '\\' && p[1] && p[1] != MARQUE_LIGNE) ++p;
    ++p;
  }
  return *p == '\'' ? p + 1 : p;
}

// A name field: byte 2, the name, byte 1 to the end of its fixed size (a
// NUL there would end the text for every walker).
const char* saute_champ(const char* p) {
  for (int i = 0; i < LONG_CHAMP_NOM; ++i)
    if (!p[i]) return p + i;
  return p + LONG_CHAMP_NOM;
}

int long_nom_champ(const char* p) {
  int n = 0;
  while (n < LONG_CHAMP_NOM - 1 && static_cast<unsigned char>(p[1 + n]) > 2) ++n;
  return n;
}

const char* saute_marque(const char* p) {
  for (int i = 0; i < LONG_MARQUE; ++i)
    if (!p[i]) return p + i;
  return p + LONG_MARQUE;
}

// A number: 0x and hexadecimal digits, or digits with a fraction and an
// exponent as the C library reads them.
const char* fin_nombre(const char* p) {
  if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
    p += 2;
    while ((*p >= '0' && *p <= '9') || (*p >= 'a' && *p <= 'f') || (*p >= 'A' && *p <= 'F')) ++p;
    return p;
  }
  while (*p >= '0' && *p <= '9') ++p;
  if (*p == '.') {
    ++p;
    while (*p >= '0' && *p <= '9') ++p;
  }
  if (*p == 'e' || *p == 'E') {
    const char* q = p + 1;
    if (*q == '+' || *q == '-') ++q;
    if (*q >= '0' && *q <= '9') {
      while (*q >= '0' && *q <= '9') ++q;
      p = q;
    }
  }
  return p;
}

bool debut_nombre(const char* p) {
  return (*p >= '0' && *p <= '9') || (*p == '.' && p[1] >= '0' && p[1] <= '9');
}

// A quote opens a vector only where a token may begin: a quote inside a name
// belongs to it.
bool debut_de_mot(const char* debut, const char* p) {
  if (p == debut) return true;
  auto c = static_cast<unsigned char>(p[-1]);
  return fin_nom_lang(c) || c == '\'' || c == 1;
}
