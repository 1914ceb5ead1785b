// Character classes and the cursor primitives that every reader of text
// shares. There is no token object: each primitive takes a cursor into a
// NUL-ended text, moves it and returns what it read.
#include <array>
#include <cstdlib>
#include <cstring>

#include "core/message.h"
#include "lang/lang.h"
#include "startup/startup.h"

namespace {
enum : unsigned char {
  BLANC = 1,
  REFUS = 2,      // a name may not start here
  FIN = 4,        // ends a name
  SEP = 8,        // separates words of data
  FIN_TAPE = 16,  // ends a typed name in a comparison
  FIN_RANGE = 32, // ends a stored name in a comparison
};

constexpr std::array<unsigned char, 256> classes = [] {
  std::array<unsigned char, 256> t{};
  auto met = [&t](std::string_view s, unsigned char c) {
    for (unsigned char x : s) t[x] |= c;
  };
  met(std::string_view("\t ", 2), BLANC);
  met(std::string_view("\0\2\n;{", 5), REFUS);
  met(std::string_view("\0\3\t\n\r !#%&()*+,-/:;<=>[]^{|}", 28), FIN);
  met(std::string_view("\0\t\n ,", 5), SEP);
  met(std::string_view("\0\t\n !%&()*+,-/;<=>[]^{|}", 24), FIN_TAPE);
  met(std::string_view("\0\t\n (", 5), FIN_RANGE);
  return t;
}();

inline bool a(unsigned char c, unsigned char classe) { return classes[c] & classe; }
}  // namespace

bool est_blanc(unsigned char c) { return a(c, BLANC); }
bool est_fin_nom(unsigned char c) { return a(c, FIN); }
bool est_separateur(unsigned char c) { return a(c, SEP); }

const char* sauter_blancs(const char* p) {
  while (a(*p, BLANC)) ++p;
  return p;
}

namespace {
// Copies up to the first byte of class `fin`; -1 and message 2 when the
// buffer can't hold it.
int copie_jusque(char* dst, const char** p, int taille, bool (*fin)(unsigned char)) {
  const char* s = *p;
  int n = 0;
  while (!fin(static_cast<unsigned char>(s[n]))) {
    if (n >= taille - 1) {
      dst[0] = 0;
      message(0, M_LONG);
      return -1;
    }
    dst[n] = s[n];
    ++n;
  }
  dst[n] = 0;
  *p = s + n;
  return n ? n + 1 : 0;
}
}  // namespace

int lire_nom(char* dst, const char** p, int taille) {
  *p = sauter_blancs(*p);
  if (a(**p, REFUS)) {
    dst[0] = 0;
    return 0;
  }
  return copie_jusque(dst, p, taille, est_fin_nom);
}

int lire_mot(char* dst, const char** p, int taille) {
  *p = sauter_blancs(*p);
  char c = **p;
  if (c == 0 || c == '\n' || c == ';' || c == '{') {
    dst[0] = 0;
    return 0;
  }
  return copie_jusque(dst, p, taille, [](unsigned char x) {
    return x == 0 || x == '\t' || x == '\n' || x == '\r' || x == ' ';
  });
}

int lire_champ(char* dst, const char** p, int taille) {
  *p = sauter_blancs(*p);
  if (**p == 0 || **p == '\n') {
    dst[0] = 0;
    return 0;
  }
  return copie_jusque(dst, p, taille, [](unsigned char x) {
    return x == 0 || x == '\t' || x == '\n' || x == ' ' || x == ',' || x == ';';
  });
}

int comparer_noms(const char* t, const char* r) {
  for (;; ++t, ++r) {
    bool ft = a(*t, FIN_TAPE), fr = a(*r, FIN_RANGE);
    if (ft || fr) return ft && fr ? 0 : 1;
    if (*t != *r) return 1;
  }
}

const char* fin_nom(const char* p) {
  while (!a(*p, FIN) && *p != '~') ++p;
  return p;
}

const char* sauter_commentaires(const char* p, int* ligne) {
  for (;;) {
    if (a(*p, BLANC) || *p == '\r') {
      ++p;
    } else if (*p == '\n') {
      ++p;
      if (ligne) ++*ligne;
    } else if (p[0] == '/' && p[1] == '*') {
      p += 2;
      while (*p && !(p[0] == '*' && p[1] == '/')) {
        if (*p == '\n' && ligne) ++*ligne;
        ++p;
      }
      if (!*p) {
        message(0, M_COMMENTAIRE);
        return nullptr;
      }
      p += 2;
    } else {
      return p;
    }
  }
}

const char* sauter_entete(const char* p, int* ligne) {
  for (;;) {
    p = sauter_commentaires(p, ligne);
    if (!p || *p != '#') return p;
    while (*p && *p != '\n') ++p;
  }
}

const char* mot_suivant(const char* p) {
  while (!a(*p, SEP)) ++p;
  return *p ? p + 1 : p;
}

const char* lire_entier(int* n, const char* p) {
  *n = std::atoi(p);
  return mot_suivant(p);
}

const char* lire_flottants(int* n, std::vector<float>& dst, const char* p) {
  std::size_t depart = dst.size();
  for (;;) {
    char c = *p;
    if (c == ',' || c == '\t' || c == '\n' || c == ' ' || c == '\r') {
      ++p;
    } else if (c == '\\') {  // the list goes on with the next line
      while (*p && *p != '\n') ++p;
      if (*p) ++p;
    } else if (c == '.' || c == 0) {
      break;
    } else if (c == '[') {
      char* f;
      long k = std::strtol(p + 1, &f, 10);
      p = *f == ']' ? f + 1 : f;
      float v = 0;
      if (*p == '=') {
        v = std::strtof(p + 1, &f);
        p = f;
      }
      for (long i = 0; i < k && i < (1 << 24); ++i) dst.push_back(v);
    } else {
      char* f;
      float v = std::strtof(p, &f);
      if (f == p) break;  // no number here: the list ends
      dst.push_back(v);
      p = f;
    }
  }
  *n = static_cast<int>(dst.size() - depart);
  return p;
}

int compter_mots(const char* s) {
  int n = 0;
  while (*s) {
    while (*s && a(*s, SEP)) ++s;
    if (!*s) break;
    ++n;
    while (!a(*s, SEP)) ++s;
  }
  return n;
}

// Removes comments in place and the blanks ahead of each line's end; strings
// and line marks stay as they are. The newlines of a comment are kept, so the
// line count of the text does not change.
int nettoyer_texte(char* s, int* lignes) {
  char* d = s;
  const char* p = s;
  int n = 1;
  auto fin_ligne = [&] {
    while (d > s && (d[-1] == ' ' || d[-1] == '\t')) --d;
  };
  while (*p) {
    char c = *p;
    if (c == '"') {
      *d++ = *p++;
      while (*p && *p != '"' && *p != '\n') {
        if (*p == '\\' && p[1] && p[1] != '\n') *d++ = *p++;
        *d++ = *p++;
      }
      if (*p != '"') {
        *d = 0;
        if (lignes) *lignes = n;
        message(0, M_CHAINE);
        return -1;
      }
      *d++ = *p++;
    } else if (c == '/' && p[1] == '*') {
      p += 2;
      while (*p && !(p[0] == '*' && p[1] == '/')) {
        if (*p == '\n') {
          fin_ligne();
          *d++ = '\n';
          ++n;
        }
        ++p;
      }
      if (!*p) {
        *d = 0;
        if (lignes) *lignes = n;
        message(0, M_COMMENTAIRE);
        return -1;
      }
      p += 2;
    } else if (c == MARQUE_LIGNE) {
      for (int k = 0; k < LONG_MARQUE && *p; ++k) *d++ = *p++;
    } else if (c == '\n') {
      fin_ligne();
      *d++ = *p++;
      ++n;
    } else {
      *d++ = *p++;
    }
  }
  fin_ligne();
  *d = 0;
  if (lignes) *lignes = n;
  return 0;
}

int lire_ligne(char* dst, int limite) {
  bool reprise = false;
  int n = console_lit(dst, limite - 1, &reprise);
  if (n < 0) return -1;
  dst[n++] = '\n';
  dst[n] = 0;
  // After an interrupt the line says so with byte 1 ahead of its newline.
  if (reprise) dst[n - 2 >= 0 ? n - 2 : 0] = 1;
  return n;
}

char* marquer_ligne(char* p, const char* debut, int n) {
  if (n > 2 && p - debut >= LONG_MARQUE && p[-LONG_MARQUE] == MARQUE_LIGNE) p -= LONG_MARQUE;
  if (n < 0) n = 0;
  if (n > 9999) n = 9999;
  char chiffres[8];
  int k = entier_texte(chiffres, n);
  p[0] = MARQUE_LIGNE;
  for (int i = 0; i < 4; ++i) p[1 + i] = static_cast<char>((i < k ? chiffres[i] : 0) + 1);
  return p + LONG_MARQUE;
}

int lire_marque(const char* p) {
  int n = 0;
  for (int i = 1; i <= 4; ++i) {
    int c = static_cast<unsigned char>(p[i]) - 1;
    if (c < '0' || c > '9') break;
    n = n * 10 + (c - '0');
  }
  return n;
}
