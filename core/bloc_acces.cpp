// Element, row and vector access (1-based), and the accumulator append.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/bloc.h"
#include "core/message.h"

namespace {
mot* mauvais_indice(int i) {
  std::printf("%d: ", i);
  message(0, 66);
  return nullptr;
}

// Start of the i-th ragged row (1-based), hopping over rows and holes alike.
inline mot* rangee_ragged(mot* b, int i) {
  mot* p = b + 4;
  for (int k = 1; k < i; ++k) p += p[0] > 0 ? p[0] : (p[0] < 0 ? -p[0] : 1);
  return p;
}

inline mot saut(mot w) { return w < 0 ? -w : w; }
}  // namespace

mot* bloc_element(mot* b, int i, mot* tag, mot* nc) {
  *tag = b[1];
  *nc = b[3];
  if (i < 1 || i > b[2]) return mauvais_indice(i);
  switch (b[1]) {
    case BLOC_LISTE: {
      mot* p = b + 4;
      for (int k = 1; k < i; ++k) p += saut(p[0]);
      return p;
    }
    case BLOC_CHAINE: {
      if (b[3] != 0) return b + 4;
      mot* p = b;
      for (int k = 1; k < i; ++k) p += saut(p[0]);
      return p;
    }
  }
  if (b[3] != 0) return b + 4 + static_cast<long>(saut(b[3])) * (i - 1);
  return rangee_ragged(b, i);
}

mot* bloc_ligne(mot* b, int i, int* n) {
  if (b[1] != BLOC_BLOCS && b[1] != BLOC_REEL) return nullptr;
  if (i < 1 || i > b[2]) return mauvais_indice(i);
  if (b[1] == BLOC_BLOCS) {
    mot* e = bloc_pointe(b[3 + i]);
    return e ? bloc_ligne(e, 1, n) : nullptr;
  }
  mot nc = b[3];
  if (nc > 0) {
    // i counts elements, not rows: only used with one-element rows.
    *n = nc;
    return b + 4 + (i - 1);
  }
  if (nc < 0) {
    *n = -nc - 1;
    mot* r = b + 4 + static_cast<long>(-nc) * (i - 1);
    return r[0] < 1 ? nullptr : r + 1;
  }
  mot* r = rangee_ragged(b, i);
  *n = r[0] - 1;
  return *n < 1 ? nullptr : r + 1;
}

mot* bloc_vecteur(mot* b, int* n) {
  if (b[1] == BLOC_LISTE) {
    mot* p = b + 4;
    for (mot k = 0; k < b[2]; ++k, p += saut(p[0]))
      if (p[0] > 0 && p[1] == BLOC_REEL) return bloc_vecteur(p, n);
    return nullptr;
  }
  if (b[1] == BLOC_REEL) {
    if (b[3] == 0) {
      *n = b[4] - 1;
      return b + 5;
    }
    *n = b[2];
    return b + 4;
  }
  std::printf("%d: ", b[1]);
  message(0, 66);
  return nullptr;
}

int vecteur_cherche(const mot* v, float x) {
  if (!v) return 1;
  const mot* p = v + 4;
  long n = v[0] - 4;
  for (long i = 0; i < n; ++i)
    if (std::trunc(lit_reel(p + i)) == x) return static_cast<int>(i + 1);
  return 0;
}

namespace {
// Appends n words of floats from p (or integers converted) to acc.
inline int pousse_reels(mot* acc, const mot* limite, const mot* p, long n, bool entiers) {
  mot* fin = acc + acc[0];
  if (fin + n > limite) return -12;
  if (entiers)
    for (long k = 0; k < n; ++k) ecrit_reel(fin + k, static_cast<float>(p[k]));
  else
    std::memcpy(fin, p, static_cast<std::size_t>(n) * sizeof(mot));
  acc[0] += static_cast<mot>(n);
  acc[2] += static_cast<mot>(n);
  return 0;
}

int ajoute_reel(mot* acc, const mot* limite, const mot* src, int i) {
  mot nl = src[2], nc = src[3];
  if (nc > 0) {
    if (i == 0) return pousse_reels(acc, limite, src + 4, static_cast<long>(nl) * nc, false);
    if (i > nl) return 0;
    return pousse_reels(acc, limite, src + 4 + static_cast<long>(nc) * (i - 1), nc, false);
  }
  if (nc < 0) {
    for (mot r = 1; r <= nl; ++r) {
      const mot* p = src + 4 + static_cast<long>(-nc) * (r - 1);
      if ((i == 0 || i == r) && p[0] > 0) {
        int e = pousse_reels(acc, limite, p + 1, -nc - 1, false);
        if (e) return e;
      }
    }
    return 0;
  }
  const mot* p = src + 4;
  for (mot r = 1; r <= nl; ++r) {
    mot l = p[0];
    if ((i == 0 || i == r) && l > 0) {
      int e = pousse_reels(acc, limite, p + 1, l - 1, false);
      if (e) return e;
    }
    p += l > 0 ? l : (l < 0 ? -l : 1);
  }
  return 0;
}
}  // namespace

int bloc_ajoute(mot* acc, const mot* limite, const mot* src, int i) {
  if (acc[0] == 4) {
    acc[1] = src[1];
    acc[2] = 0;
    acc[3] = 1;
  } else if (acc[1] != src[1]) {
    return -1;
  }
  if (src[2] == 0) return 0;
  switch (src[1]) {
    case BLOC_REEL:
      return ajoute_reel(acc, limite, src, i);
    case BLOC_ENTIER:
      acc[1] = BLOC_REEL;
      return pousse_reels(acc, limite, src + 4, static_cast<long>(src[2]) * src[3], true);
    case BLOC_LISTE: {
      const mot* p = src + 4;
      for (int k = 1; k < i; ++k) p += saut(p[0]);
      acc[1] = BLOC_REEL;
      if (p[0] > 0 && p[1] == BLOC_REEL)
        return pousse_reels(acc, limite, p + 4, static_cast<long>(p[0]) - 4, false);
      if (p[0] > 0 && p[1] == BLOC_ENTIER)
        return pousse_reels(acc, limite, p + 4, static_cast<long>(p[0]) - 4, true);
      return 0;
    }
    case BLOC_BLOCS: {
      const mot* e = bloc_pointe(src[i + 3]);
      if (!e) return 0;
      if (acc + e[0] > limite) return -12;
      bloc_copie(acc, e);
      return 0;
    }
    case BLOC_CHAINE: {
      const char* t = reinterpret_cast<const char*>(src + 4);
      std::size_t lg = std::strlen(t);
      mot plus = static_cast<mot>(lg / 4) + 1;
      if (acc[0] > 4) {
        char* fin_texte = reinterpret_cast<char*>(acc + 4);
        std::size_t deja = std::strlen(fin_texte);
        // The text grows by whole words; the string case answers overflow
        // with -1, not -12.
        if (acc + acc[0] + plus > limite) return -1;
        std::memcpy(fin_texte + deja, t, lg + 1);
        acc[0] += plus;
        return 0;
      }
      if (acc + 4 + plus > limite) return -1;
      acc[1] = BLOC_CHAINE;
      acc[2] = 1;
      acc[3] = 1;
      std::memcpy(acc + 4, t, lg + 1);
      acc[0] = 4 + plus;
      return 0;
    }
  }
  return 0;
}

int bloc_nombres(const mot* v, float* x, int max) {
  if (!v) return 0;
  if (v[0] == BLOC_REEL || v[0] == BLOC_ENTIER) {
    if (max > 0) x[0] = v[0] == BLOC_REEL ? lit_reel(v + 1) : static_cast<float>(v[1]);
    return 1;
  }
  if (v[0] < 4) return -1;
  if (v[1] == BLOC_NIL) return 0;
  if (v[1] != BLOC_REEL && v[1] != BLOC_ENTIER) return -1;
  const int n = v[0] - 4 < max ? static_cast<int>(v[0] - 4) : max;
  if (v[1] == BLOC_REEL)
    for (int k = 0; k < n; ++k) x[k] = lit_reel(v + 4 + k);
  else
    for (int k = 0; k < n; ++k) x[k] = static_cast<float>(v[4 + k]);
  return n;
}
