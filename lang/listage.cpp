// Listing of compiled code, item by item, for the debug options and for
// the reports of failures. Jump targets are shown counted in items from the
// item that jumps: a jump back shows a negative count.
#include <cstdio>

#include "lang/interne.h"

namespace {
const char* nom_a(int ord) {
  MotCle* m = mot_entree(0, ord);
  return m ? m->noms : "?";
}

const char* nom_mot(mot w) {
  const auto* m = static_cast<const MotCle*>(mot_vers_ptr(w));
  return m ? m->noms : "?";
}

// Items from a to b, negative when b stands before a.
int compte(const mot* code, const mot* a, const mot* b) {
  if (!code) return static_cast<int>(b - a);
  const mot* fin = code + code[0];
  auto rang = [&](const mot* x) {
    int n = 0;
    const mot* p = code + 4;
    while (p < x && p < fin && p[0] != 0) {
      p += taille_item(p);
      ++n;
    }
    return n;
  };
  return rang(b) - rang(a);
}

const char* jeton(mot v) {
  switch (v) {
    case OP_EGAL_EGAL: return "==";
    case OP_DIFF: return "!=";
    case OP_INF_EGAL: return "<=";
    case OP_SUP_EGAL: return ">=";
    case OP_ET: return "&&";
    case OP_OU: return "||";
    case OP_DECAL_G: return "<<";
    case OP_DECAL_D: return ">>";
    case OP_PLUS_AFF: return "+=";
    case OP_MOINS_AFF: return "-=";
    case OP_MUL_AFF: return "*=";
    case OP_DIV_AFF: return "/=";
    case OP_INCR: return "++";
    case OP_DECR: return "--";
    case OP_TILDE: return "~";
    case OP_PUIS_AFF: return "^=";
    case OP_MOD_AFF: return "%=";
    case OP_DECAL_G_AFF: return "<<=";
    case OP_DECAL_D_AFF: return ">>=";
    case OP_ET_AFF: return "&=";
    case OP_OU_AFF: return "|=";
    case OP_VIRG_AFF: return ",=";
    case OP_DEBUT: return "{";
    case OP_FIN: return "}";
  }
  return nullptr;
}

void operateur(mot v) {
  if (v == OP_NOP || v == OP_BOUCLE) return;
  if (v == OP_SINON) {
    std::printf("%s ", nom_a(A_SINON));
  } else if (const char* t = jeton(v)) {
    std::printf("%s ", t);
  } else if (v > 0 && v < 256) {
    std::printf("%c ", static_cast<char>(v));
  } else {
    std::printf("OP%d ", v);
  }
}

void variable(const char* classe, mot v) {
  if (v > 0) {
    const auto* o = static_cast<const Objet*>(mot_vers_ptr(v));
    std::printf("%s %s ", classe, o && o->nom ? o->nom : "?");
  } else {
    std::printf("%s%d ", classe, -v);
  }
}

void paire(const mot* code, const mot* p) {
  mot v = p[1];
  switch (p[0]) {
    case CEL_RC: std::fputs("RC ", stdout); return;
    case CEL_AIDE: std::printf("%s %s ", nom_a(A_AIDE_MOT), v ? nom_mot(v) : ""); return;
    case CEL_DEFAUT: std::printf("%s: ", nom_a(A_DEFAUT)); return;
    case CEL_CAS: std::printf("%s: %d ", nom_a(A_CAS), v); return;
    case CEL_PI: std::fputs("PI ", stdout); return;
    case CEL_NIL: std::printf("%s ", nom_a(A_NIL)); return;
    case CEL_ALLER: std::printf("%s %d ", nom_a(A_ALLER), v); return;
    case CEL_SORTIR: std::printf("%s ", nom_a(A_SORTIR)); return;
    case CEL_OP: operateur(v); return;
    case CEL_REEL: std::printf("%f ", static_cast<double>(lit_reel(p + 1))); return;
    case CEL_MOT: std::printf("%s ", nom_mot(v)); return;
    case CEL_LOCAL: std::printf("LOC%d ", v < 0 ? -v : v); return;
    case CEL_REF_LOCAL: std::printf("@LOC%d ", v < 0 ? -v : v); return;
    case CEL_STATIQUE: variable("STA", v); return;
    case CEL_REF_STATIQUE: variable("@STA", v); return;
    case CEL_GLOBAL: variable("GLB", v); return;
    case CEL_REF_GLOBAL: variable("@GLB", v); return;
    case CEL_LIGNE: std::printf("\n%d:\t", v); return;
    case CEL_ETIQUETTE: std::printf("ETIQUETTE %d:", v); return;
    case CEL_SAUT: std::printf("%s %d ", nom_a(A_ALLER), compte(code, p, p + v)); return;
    case CEL_FIN: return;
  }
  std::printf("?%d ", p[0]);
}

void cible(const char* quoi, const mot* code, const mot* p, mot decalage) {
  std::printf("%s%d ", quoi, compte(code, p, p + decalage));
}
}  // namespace

void lister_item(const mot* code, const mot* p) {
  if (p[0] < 0) {
    paire(code, p);
    return;
  }
  if (p[0] == 0) return;
  switch (p[1]) {
    case BLOC_NOM_FONCTION:
      std::printf("fonc(%.*s)", static_cast<int>((p[0] - 2) * 4), reinterpret_cast<const char*>(p + 2));
      return;
    case BLOC_CHAINE:
      std::printf("\"%.*s \"", static_cast<int>((p[0] - 4) * 4), reinterpret_cast<const char*>(p + 4));
      return;
    case BLOC_REEL:
      for (mot i = 0; i < p[2] && 4 + i < p[0]; ++i) std::printf("%f ", static_cast<double>(lit_reel(p + 4 + i)));
      return;
    case BLOC_TEXTE_AIDE:
    case BLOC_TEXTE_ERR:
      std::printf("%s %.*s ", nom_a(p[1]), static_cast<int>((p[0] - 4) * 4), reinterpret_cast<const char*>(p + 4));
      return;
    case BLOC_SELON: std::printf("%s ", nom_a(A_SELON)); return;
    case BLOC_SELON_LIE: {
      std::printf("%s ", nom_a(A_SELON));
      for (mot i = 0; i < p[2] && 3 + 2 * i + 1 < p[0]; ++i) {
        mot w = p[3 + 2 * i];
        mot d = w < 1 ? -w : w;
        if (i + 1 < p[2]) {
          std::printf("\n\t%d: ", compte(code, p, p + d));
        } else {
          std::printf("\n\tDEF: %d ", compte(code, p, p + d));
        }
      }
      return;
    }
    case BLOC_SI: std::printf("%s ", nom_a(A_SI)); return;
    case BLOC_TANTQUE: std::printf("%s ", nom_a(A_TANTQUE)); return;
    case BLOC_TEST:
      std::printf("%s ", nom_a(A_SI));
      cible("V: ", code, p, p[3]);
      cible("F: ", code, p, p[4]);
      return;
    case BLOC_POUR:
    case BLOC_POUR_COMPTE:
    case BLOC_POUR_TROIS: std::printf("%s ", nom_a(A_POUR)); return;
    case BLOC_POUR_COMPTE_LIE:
      std::printf("%s ", nom_a(A_POUR));
      cible("V: ", code, p, p[8]);
      cible("F: ", code, p, p[9]);
      return;
    case BLOC_POUR_TROIS_LIE:
      std::printf("%s ", nom_a(A_POUR));
      cible("V: ", code, p, p[3]);
      cible("F: ", code, p, p[4]);
      return;
    case BLOC_NOM: {
      const char* n = static_cast<const char*>(mot_vers_ptr(p[2]));
      std::printf("%s ", n ? n : "?");
      return;
    }
    case BLOC_OBJET: {
      const auto* o = static_cast<const Objet*>(mot_vers_ptr(p[2]));
      if (o && o->nom) {
        std::printf("%s ", o->nom);
      } else {
        std::printf("F%d ", p[2]);
      }
      return;
    }
    case BLOC_APPEL:
    case BLOC_APPEL_FORMEL: std::printf("F%d ", p[2] < 0 ? -p[2] : p[2]); return;
  }
  std::printf("?%d ", p[1]);
}

void lister_mots(const mot* code) {
  const mot* fin = code + code[0];
  for (const mot* p = code + 4; p < fin && p[0] != 0; p += taille_item(p)) lister_item(code, p);
  std::putchar('\n');
  std::fflush(stdout);
}

void lister_code(const Objet* o, int ligne) {
  const mot* code = o ? o->code : nullptr;
  if (!code) return;
  const mot* fin = code + code[0];
  const mot* p = code + 4;
  if (ligne > 0) {
    while (p < fin && p[0] != 0 && !(p[0] == CEL_LIGNE && p[1] == ligne)) p += taille_item(p);
  }
  bool dedans = false;
  for (; p < fin && p[0] != 0; p += taille_item(p)) {
    if (ligne > 0 && p[0] == CEL_LIGNE) {
      if (dedans) break;
      dedans = true;
    }
    lister_item(code, p);
  }
  std::putchar('\n');
  std::fflush(stdout);
}

void lister_texte(const char* t) {
  while (*t) {
    if (*t == MARQUE_LIGNE) {
      std::printf("\n%d:\t", lire_marque(t));
      t = saute_marque(t);
    } else if (*t == MARQUE_NOM) {
      std::printf("fonc(%.*s)", long_nom_champ(t), t + 1);
      t = saute_champ(t);
    } else {
      std::putchar(*t++);
    }
  }
}

const char* nom_objet(const Objet* o, char* tampon, int taille) {
  tampon[0] = 0;
  if (!o) return tampon;
  if (o->nom) return o->nom;
  std::size_t n;
  const char* t = o->type == TYPE_FONCTION ? fonction_texte(o, &n) : nullptr;
  if (!t) return tampon;
  std::string copie(t, n);
  // Comments and "#" lines may stand ahead of the name; quietly skipped.
  const char* p = copie.c_str();
  for (;;) {
    while (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r') ++p;
    if (p[0] == '/' && p[1] == '*') {
      const char* f = std::strstr(p + 2, "*/");
      if (!f) return tampon;
      p = f + 2;
    } else if (*p == '#') {
      while (*p && *p != '\n') ++p;
    } else {
      break;
    }
  }
  int k = 0;
  while (k < taille - 1 && !est_fin_nom(static_cast<unsigned char>(p[k]))) tampon[k] = p[k], ++k;
  tampon[k] = 0;
  return tampon;
}

int decalage_lignes(const Objet* o) { return o && o->type == TYPE_FONCTION ? o->f1 : 0; }

int ligne_fichier(const Objet* o, int n) { return n + decalage_lignes(o); }

void lister_ligne(const Objet* o, int n) {
  char nom[TAILLE_NOM];
  std::fputs(nom_objet(o, nom, sizeof nom), stdout);
  std::printf(" %d: ", ligne_fichier(o, n));
  std::size_t lg = 0;
  const char* t = fonction_texte(o, &lg);
  if (t) {
    const char* fin = t + lg;
    for (int i = 1; i < n && t < fin; ++t)
      if (*t == '\n') ++i;
    const char* e = t;
    while (e < fin && *e != '\n') ++e;
    std::fwrite(t, 1, e - t, stdout);
  }
  std::putchar('\n');
  std::fflush(stdout);
}
