// Printing of values: the $ keyword, the display of attributes with rows
// and numbers, and the names of a function's symbols.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "interp/interne.h"

namespace {
// A format text given as the first string of a list: each printed element
// takes its next part, parts being ended by a blank, a tab or a comma.
struct Format {
  const char* p = nullptr;
  bool actif() const { return p && *p; }
  // The next part, as a printf format whose one conversion is of kind
  // 'i' (integer), 'r' (float) or 's' (string); 0 if it has none.
  char prochaine(std::string& f) {
    f.clear();
    char genre = 0;
    while (*p && *p != ' ' && *p != '\t' && *p != ',') {
      if (*p != '%') {
        f += *p++;
        continue;
      }
      if (p[1] == '%') {
        f += "%%";
        p += 2;
        continue;
      }
      if (genre) {  // a second conversion is printed as it is written
        f += "%%";
        ++p;
        continue;
      }
      std::string conversion = "%";
      ++p;
      while (*p && std::strchr("-+ #0", *p)) conversion += *p++;
      while (*p >= '0' && *p <= '9') conversion += *p++;
      if (*p == '.') {
        conversion += *p++;
        while (*p >= '0' && *p <= '9') conversion += *p++;
      }
      while (*p && std::strchr("hlLqjzt", *p)) ++p;
      char c = *p;
      if (c && std::strchr("diouxXc", c)) genre = 'i';
      else if (c && std::strchr("eEfFgGaA", c)) genre = 'r';
      else if (c == 's') genre = 's';
      if (genre) {
        f += conversion + c;
        ++p;
      } else {
        f += "%%" + conversion.substr(1);
      }
    }
    if (*p) f += *p++ == ',' ? ',' : p[-1];
    return genre;
  }
};

void reel_formate(float x, Format* fmt) {
  if (fmt && fmt->actif()) {
    std::string f;
    char g = fmt->prochaine(f);
    if (g == 'i') std::printf(f.c_str(), entier_sature(x));
    else if (g == 'r') std::printf(f.c_str(), static_cast<double>(x));
    else if (g == 's') std::printf("%f ", static_cast<double>(x));
    else std::fputs(f.c_str(), stdout), std::printf("%f ", static_cast<double>(x));
    return;
  }
  std::printf("%f ", static_cast<double>(x));
}

void chaine_formatee(const char* s, Format* fmt, const char* format) {
  if (fmt && fmt->actif()) {
    std::string f;
    char g = fmt->prochaine(f);
    if (g == 's') std::printf(f.c_str(), s);
    else std::printf("%s ", s);
    return;
  }
  if (format) {
    Format un{format};
    std::string f;
    if (un.prochaine(f) == 's') {
      std::printf(f.c_str(), s);
      return;
    }
  }
  std::printf("%s ", s);
}

void nil() {
  if (const char* n = mot_nom(0, A_NIL)) std::printf("%s ", n);
}

void imprime_bloc(mot* b, Format* fmt, const char* format);

void imprime_liste(mot* b) {
  mot* e = b + 4;
  Format fmt;
  mot k = 0;
  if (b[2] > 0 && e[0] > 0 && e[1] == BLOC_CHAINE && bloc_texte(e)[0] == '%') {
    fmt.p = bloc_texte(e);
    e += e[0];
    k = 1;
  }
  for (; k < b[2]; ++k) {
    imprime_bloc(e, &fmt, nullptr);
    e += taille_item(e);
  }
}

void imprime_bloc(mot* b, Format* fmt, const char* format) {
  if (b[0] < 0) {
    imprimer(b, format);
    return;
  }
  if (b[0] == 0) {
    nil();
    return;
  }
  switch (b[1]) {
    case BLOC_NIL:
      nil();
      return;
    case BLOC_CHAINE:
      chaine_formatee(bloc_texte(b), fmt, format);
      return;
    case BLOC_REEL: {
      long n = b[0] - 4;
      const reel* x = reels(b + 4);
      // A format given by the caller serves every element again; one taken
      // from a list goes on part by part.
      auto un = [&](float v) {
        Format f{format};
        reel_formate(v, fmt ? fmt : (format ? &f : nullptr));
      };
      if (b[3] < 2 || fmt) {
        for (long k = 0; k < n; ++k) un(x[k]);
        return;
      }
      long r = b[3];
      for (long k = 0, ligne = 1; k < n; ++ligne) {
        std::printf("%ld: ", ligne);
        for (long c = 0; c < r && k < n; ++c, ++k) un(x[k]);
        std::putchar('\n');
      }
      return;
    }
    case BLOC_ENTIER: {
      long colonnes = b[3] > 0 ? b[3] : 1;
      long n = b[0] - 4;
      for (long k = 0; k < n; ++k) {
        std::printf("%d ", b[4 + k]);
        if ((k + 1) % colonnes == 0) std::putchar('\n');
      }
      return;
    }
    case BLOC_LISTE:
      imprime_liste(b);
      return;
    case VAL_VUE:
    case VAL_VUE3: {
      mot* t = piles.eva_haut > b + b[0] ? piles.eva_haut : b + b[0];
      if (materialiser(t, b, piles.eva_limite) == 0) imprime_bloc(t, fmt, format);
      return;
    }
    case BLOC_OBJET: {
      auto* o = static_cast<Objet*>(mot_vers_ptr(b[2]));
      if (o) std::printf("%s ", nom_fonction(o));
      return;
    }
  }
  nil();
}
}  // namespace

void imprimer(mot* v, const char* format) {
  if (v[0] >= 0) {
    imprime_bloc(v, nullptr, format);
    return;
  }
  switch (v[0]) {
    case IT_REEL: {
      Format un{format};
      reel_formate(lit_reel(v + 1), format ? &un : nullptr);
      return;
    }
    case IT_PI: {
      Valeur d;
      decrire(v, &d);
      std::printf("%f ", static_cast<double>(reels(d.donnees)[0]));
      return;
    }
    case IT_LOCAL: case IT_STATIQUE: case IT_GLOBAL:
    case IT_REF_GLOBAL: case IT_REF_LOCAL: case IT_REF_STATIQUE: {
      Objet* o = variable_de(v);
      if (!o || !o->donnees) {
        nil();
        return;
      }
      imprime_bloc(o->donnees, nullptr, format);
      if (v[0] == IT_REF_GLOBAL || v[0] == IT_REF_LOCAL || v[0] == IT_REF_STATIQUE)
        std::printf("@%s ", nom_variable(o));
      return;
    }
  }
  nil();
}

namespace {
void affiche_reels(const reel* x, long n, long k) {
  if (k == 0 || n < k) {
    for (long i = 0; i < n; ++i) std::printf("%f ", static_cast<double>(x[i]));
    std::putchar('\n');
    return;
  }
  for (long i = 0, ligne = 0; i < n; ++ligne) {
    std::printf("%ld: ", ligne);
    for (long c = 0; c < k && i < n; ++c, ++i) std::printf("%f ", static_cast<double>(x[i]));
    std::putchar('\n');
  }
}

void affiche_bloc(mot* b, long k) {
  Valeur d;
  if (decrire(b, &d) < 0) return;
  switch (d.type) {
    case BLOC_REEL:
      affiche_reels(reels(d.donnees), d.n, k);
      return;
    case BLOC_CHAINE: {
      const char* t = reinterpret_cast<const char*>(d.donnees);
      if (k == 0) {
        std::printf("%s\n", t);
        return;
      }
      // Every word on a row of its own.
      long ligne = 0;
      std::printf("%ld: ", ligne);
      bool premier = true;
      while (*t) {
        while (*t == ' ' || *t == '\t' || *t == '\n') ++t;
        if (!*t) break;
        if (!premier) std::printf("\n%ld: ", ++ligne);
        premier = false;
        while (*t && *t != ' ' && *t != '\t' && *t != '\n') std::putchar(*t++);
      }
      std::putchar('\n');
      return;
    }
    case BLOC_LISTE: {
      mot* e = d.donnees + 4;
      for (mot i = 0; i < d.donnees[2]; ++i) {
        affiche_bloc(e, k);
        e += taille_item(e);
      }
      return;
    }
    case VAL_VUE:
    case VAL_VUE3: {
      mot* t = piles.eva_haut > b + b[0] ? piles.eva_haut : b + b[0];
      if (materialiser(t, b, piles.eva_limite) == 0) affiche_bloc(t, k);
      return;
    }
  }
  nil();
  std::putchar('\n');
}
}  // namespace

namespace {
// One row of a stored block: floats with "%g ", integers with "%d "; a face
// with contours (word 3 = 0) joins them with -1, as it is written.
void rangee_stockee(const mot* t, long debut, long n) {
  for (long i = debut; i < debut + n; ++i) {
    if (t[1] == BLOC_REEL) std::printf("%g ", static_cast<double>(lit_reel(t + 4 + i)));
    else std::printf("%d ", t[4 + i]);
  }
}

void face_stockee(const mot* f) {
  if (f[0] < 4) return;
  if (f[1] == BLOC_ENTIER && f[3] > 0) {
    rangee_stockee(f, 0, std::min<long>(f[3], f[0] - 4));
    return;
  }
  if (f[1] != BLOC_LISTE) return;
  const mot* c = f + 4;
  for (mot k = 0; k < f[2] && c < f + f[0] && c[0] >= 4; ++k, c += c[0]) {
    if (k) std::fputs("-1 ", stdout);
    face_stockee(c);
  }
}

void numero_rangee(long i, long n) {
  if (n > 1) std::printf("\n    %ld: ", i + 1);
}
}  // namespace

void imprimer_attribut(const mot* t, char separateur) {
  if (t[0] < 0 || t[0] < 4) {
    if (t[0] == BLOC_REEL) std::printf("%g ", static_cast<double>(lit_reel(t + 1)));
    return;
  }
  switch (t[1]) {
    case BLOC_REEL:
    case BLOC_ENTIER: {
      long n = t[0] - 4;
      if (t[1] == BLOC_REEL && t[3] < 0) {
        // Records (w, values...): w a word, "-" for a record that holds none.
        long w = -static_cast<long>(t[3]), rangs = n / w;
        for (long i = 0; i < rangs; ++i) {
          numero_rangee(i, rangs);
          if (t[4 + i * w] < 1) {
            std::fputs("- ", stdout);
            continue;
          }
          rangee_stockee(t, i * w + 1, w - 1);
        }
        return;
      }
      // A plain vector (width below 2) is one row.
      long w = t[3] > 1 ? t[3] : n;
      long rangs = t[3] > 1 && t[2] > 1 && t[2] * w <= n ? t[2] : 1;
      if (rangs == 1) w = n;
      for (long i = 0; i < rangs; ++i) {
        numero_rangee(i, rangs);
        rangee_stockee(t, i * w, w);
      }
      return;
    }
    case BLOC_LISTE: {
      // Faces, one a row.
      const mot* f = t + 4;
      for (mot i = 0; i < t[2] && f < t + t[0] && f[0] >= 4; ++i, f += f[0]) {
        numero_rangee(i, t[2]);
        face_stockee(f);
      }
      return;
    }
    case BLOC_CHAINE:
      std::printf("\"%s\"%c", reinterpret_cast<const char*>(t + 4), separateur);
      return;
    case BLOC_NIL:
      nil();
      return;
  }
}

void afficher(mot* v, const reel* options, int n) {
  long k = options && n > 0 ? entier_sature(options[0]) : 3;
  if (k < 0) k = 0;
  affiche_bloc(v, k);
}

int imprimer_symboles(mot* phrase) {
  mot* e = phrase + 4;
  const char* nom = nullptr;
  for (mot k = 0; k < phrase[2]; ++k, e += e[0])
    if (e[1] == 0 && e[2] == A_FONC && e[0] > 3) nom = texte_de(e + 3);
  if (!nom) {
    for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o)
      if (o->type == OBJ_GLOBAL && o->nom) std::printf("%s\n", o->nom);
    return 0;
  }
  Objet* f = fonction_trouve(nom);
  if (!f || !f->code) {
    std::printf("%s: ", nom);
    message(0, M_INTROUVABLE);
    return ECHEC;
  }
  const mot* c = f->code;
  for (const mot* s = c + c[0] + 1; s[0] > 0; s += s[0]) {
    const char* classe = nullptr;
    switch (s[1]) {
      case IT_REF_STATIQUE: classe = "@statique\n"; break;
      case IT_REF_LOCAL: classe = "@locale\n"; break;
      case IT_REF_GLOBAL: classe = "@externe\n"; break;
      case IT_FORMEL: classe = "formel\n"; break;
      case IT_APPEL: classe = "indefini\n"; break;
      case IT_GLOBAL: classe = "externe\n"; break;
      case IT_STATIQUE: classe = "statique\n"; break;
      case IT_LOCAL: classe = "locale\n"; break;
    }
    if (!classe) continue;
    std::printf("%s ", reinterpret_cast<const char*>(s + 5));
    std::fputs(classe, stdout);
  }
  return 0;
}
