// Numbers written as text, for the printers and the line marks.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "lang/lang.h"

int entier_texte(char* dst, int n) { return std::sprintf(dst, "%d", n); }

// The integer part, then up to six decimals without trailing zeros, and none
// at all when the fraction is 0.
int flottant_texte(char* dst, float f) {
  int n = std::snprintf(dst, 64, "%.6f", static_cast<double>(f));
  if (n <= 0 || n >= 64) return std::snprintf(dst, 64, "%g", static_cast<double>(f));
  char* point = std::strchr(dst, '.');
  if (!point) return n;
  char* fin = dst + n;
  while (fin > point + 1 && fin[-1] == '0') --fin;
  if (fin == point + 1) --fin;
  *fin = 0;
  // "-0" when a small negative rounds away.
  if (std::strcmp(dst, "-0") == 0) std::strcpy(dst, "0");
  return static_cast<int>(std::strlen(dst));
}

// fmt: a digit count, and b, o or h (capitals too) for base 2, 8 or 16;
// zero-filled to that width. An empty fmt is plain decimal.
int format_entier(char* dst, const char* fmt, int n) {
  int largeur = 0;
  const char* p = fmt ? fmt : "";
  while (*p >= '0' && *p <= '9' && largeur < 64) largeur = largeur * 10 + (*p++ - '0');
  if (largeur > 64) largeur = 64;
  int base = 10;
  bool majuscule = false;
  switch (*p) {
    case 'b': case 'B': base = 2; break;
    case 'o': case 'O': base = 8; break;
    case 'h': base = 16; break;
    case 'H': base = 16; majuscule = true; break;
  }
  if (base == 10) return std::sprintf(dst, "%0*d", largeur, n);
  char tmp[40];
  int k = 0;
  auto u = static_cast<unsigned>(n);
  const char* chiffres = majuscule ? "0123456789ABCDEF" : "0123456789abcdef";
  do {
    tmp[k++] = chiffres[u % base];
    u /= base;
  } while (u);
  int lg = 0;
  for (int i = k; i < largeur; ++i) dst[lg++] = '0';
  while (k) dst[lg++] = tmp[--k];
  dst[lg] = 0;
  return lg;
}
