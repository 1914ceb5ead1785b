// Copy, duplication, growth and conversion of Blocs.
#include <cstdio>
#include <cstring>

#include "core/bloc.h"
#include "core/message.h"
#include "core/objet.h"

mot* bloc_nil = nullptr;

mot* bloc_copie(mot* dst, const mot* src) {
  if (dst == src) return dst;
  mot n = src[0];
  if (n < 0) {
    dst[0] = src[0];
    dst[1] = src[1];
  } else if (n == 0) {
    dst[0] = 0;
  } else {
    std::memmove(dst, src, static_cast<std::size_t>(n) * sizeof(mot));
  }
  return dst;
}

namespace {
mot* copie_plate(const mot* b) {
  mot* c = bloc_alloue(b[0]);
  if (c) std::memcpy(c, b, static_cast<std::size_t>(b[0]) * sizeof(mot));
  return c;
}

// Duplicates in place the owned elements of a BLOC_BLOCS or BLOC_OBJETS
// body that was just copied flat; null slots are packed away.
bool duplique_possedes(mot* b) {
  mot* p = b + 4;
  mot n = b[0] - 4;
  if (b[3] > 0 && static_cast<long>(b[2]) * b[3] < n) n = b[2] * b[3];
  mot k = 0;
  bool ok = true;
  for (mot i = 0; i < n; ++i) {
    mot w = p[i];
    if (!w) continue;
    mot c = 0;
    if (b[1] == BLOC_BLOCS) {
      c = ptr_vers_mot(bloc_duplique(bloc_pointe(w)));
    } else {
      c = ptr_vers_mot(objet_duplique(static_cast<Objet*>(mot_vers_ptr(w))));
    }
    if (!c) ok = false;
    else p[k++] = c;
  }
  for (mot i = k; i < n; ++i) p[i] = 0;
  if (b[3] == 1) b[2] = k;
  return ok;
}

inline bool plate(mot tag) {
  switch (tag) {
    case BLOC_NIL: case BLOC_CHAINE: case BLOC_REEL: case BLOC_LISTE:
    case BLOC_ENTIER: case BLOC_IMAGE: case BLOC_FONCTION: case 70:
      return true;
  }
  return false;
}
}  // namespace

mot* bloc_duplique(const mot* b) {
  if (!b || b[0] == 0) return nullptr;
  if (b[0] < 0) {
    if (b[0] == BLOC_NIL) {
      mot* c = bloc_alloue(4);
      if (c) c[1] = BLOC_NIL, c[2] = c[3] = 0;
      return c;
    }
    if (b[0] == CELLULE_OBJET) {
      auto* o = static_cast<Objet*>(mot_vers_ptr(b[1]));
      return o && o->donnees ? bloc_duplique(o->donnees) : nullptr;
    }
    mot* c = bloc_alloue(-2);
    if (c) c[0] = b[0], c[1] = b[1];
    return c;
  }
  mot* c = copie_plate(b);
  if (!c || plate(b[1])) return c;
  mot* possede = nullptr;
  if (b[1] == BLOC_BLOCS || b[1] == BLOC_OBJETS) {
    possede = c;
  } else if (b[3] > 0 && b[2] >= 4 && b[2] + 4 <= b[0]) {
    // Any other tag is a form A phrase: its tail may own Blocs or objects.
    mot* queue = c + b[2];
    if (queue[1] == BLOC_BLOCS || queue[1] == BLOC_OBJETS) possede = queue;
  }
  if (possede && !duplique_possedes(possede)) {
    bloc_supprime(c);
    return nullptr;
  }
  return c;
}

mot* bloc_agrandit(mot* b, mot n) {
  mot* c = bloc_alloue(n);
  if (!c) return nullptr;
  if (b[0] > n) b[0] = n;
  bloc_copie(c, b);
  c[0] = n;
  bloc_libere_force(b);
  return c;
}

mot* bloc_retaille(mot* b, mot ancien, mot nouveau) {
  mot* c = bloc_alloue(nouveau);
  if (!c) return nullptr;
  mot n = ancien < nouveau ? ancien : nouveau;
  if (n > 0) std::memcpy(c, b, static_cast<std::size_t>(n) * sizeof(mot));
  bloc_libere_force(b);
  return c;
}

int bloc_convertit(mot* dst, const mot* src) {
  if (src[0] < 0) {
    dst[0] = src[0];
    dst[1] = src[1];
    return 0;
  }
  if (src[0] == 0) {
    dst[0] = 0;
    return 0;
  }
  mot td = dst[1], ts = src[1];
  if (td == ts) {
    bloc_copie(dst, src);
    return 0;
  }
  long n = static_cast<long>(src[2]) * src[3];
  if (td == BLOC_ENTIER && ts == BLOC_REEL) {
    for (long i = 0; i < n; ++i) dst[4 + i] = entier_sature(lit_reel(src + 4 + i));
  } else if (td == BLOC_REEL && ts == BLOC_ENTIER) {
    for (long i = 0; i < n; ++i) ecrit_reel(dst + 4 + i, static_cast<float>(src[4 + i]));
  } else {
    std::printf("%d %d: ", td, ts);
    message(0, 98);
    return -1;
  }
  dst[0] = static_cast<mot>(4 + n);
  dst[2] = 1;
  dst[3] = static_cast<mot>(n);
  return 0;
}

int bloc_compare_cle(const mot* a, const mot* b) {
  if (a[1] != b[1]) return 0;
  if (a[1] == BLOC_REEL) return lit_reel(a + 4) != lit_reel(b + 4) ? 1 : 0;
  if (a[1] == BLOC_CHAINE)
    return std::strcmp(reinterpret_cast<const char*>(a + 4), reinterpret_cast<const char*>(b + 4));
  return 0;
}
