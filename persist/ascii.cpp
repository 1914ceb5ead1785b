// The ASCII form: keyword text that a person can read and change.
//
//   Volume Numero(3) Nom("cube") Type_fichier(0, 0, 0, 0, 0) {
//   	Coordonnees	{
//   		-1039 reel 3 3 9
//   		0 0 0 2 0 0 0 2 0
//   		}
//   }
//
// An object is the long name of its type, its number, name and small fields
// as clauses, and "{" when it has attributes. An attribute is the long
// names of its key's pairs, then its validity word and its tail: a tag word
// (reel, entier, chaine, liste, or mots and the tag's number), rows,
// columns and the count of items that follow: floats, integers, one quoted
// string, or the elements of a list, each written the same way. Comments
// /* ... */ may stand anywhere between words.
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "persist/interne.h"
#include "startup/startup.h"

namespace {
constexpr int A_TYPE_FICHIER = 106;
constexpr int VALEURS_LIGNE = 8;

// ---- writing ---------------------------------------------------------------------
void texte_cite(std::string& d, const char* s) {
  d += '"';
  for (; *s; ++s) {
    unsigned char c = static_cast<unsigned char>(*s);
    if (c == '"' || c == '\\') d += '\\', d += static_cast<char>(c);
    else if (c == '\n') d += "\\n";
    else if (c == '\t') d += "\\t";
    else if (c < 32 || c == 127) {
      char b[8];
      std::snprintf(b, sizeof b, "\\%03o", c);
      d += b;
    } else {
      d += static_cast<char>(c);
    }
  }
  d += '"';
}

void ecrit_bloc(std::string& d, const mot* t, int profondeur) {
  char b[64];
  long n = t[0] - 4;
  const char* mot_tag = t[1] == BLOC_REEL ? "reel" : t[1] == BLOC_ENTIER ? "entier" : t[1] == BLOC_CHAINE ? "chaine"
                      : t[1] == BLOC_LISTE ? "liste" : nullptr;
  long items = n;
  if (t[1] == BLOC_CHAINE) items = 1;
  if (t[1] == BLOC_LISTE) {
    items = 0;
    for (long p = 4; p < t[0]; p += t[p]) ++items;
  }
  if (mot_tag) std::snprintf(b, sizeof b, "%s %d %d %ld", mot_tag, t[2], t[3], items);
  else std::snprintf(b, sizeof b, "mots %d %d %d %ld", t[1], t[2], t[3], items);
  d += b;
  if (t[1] == BLOC_CHAINE) {
    d += ' ';
    texte_cite(d, reinterpret_cast<const char*>(t + 4));
    return;
  }
  if (t[1] == BLOC_LISTE) {
    for (long p = 4; p < t[0]; p += t[p]) {
      d += "\n\t\t";
      ecrit_bloc(d, t + p, profondeur + 1);
    }
    return;
  }
  for (long k = 0; k < n; ++k) {
    d += k % VALEURS_LIGNE == 0 ? "\n\t\t" : " ";
    if (t[1] == BLOC_REEL) std::snprintf(b, sizeof b, "%.9g", static_cast<double>(lit_reel(t + 4 + k)));
    else std::snprintf(b, sizeof b, "%d", t[4 + k]);
    d += b;
  }
}

bool nom_cle(std::string& d, const mot* a) {
  for (mot k = 0; k < a[3]; ++k) {
    mot e = a[4 + 2 * k], o = a[5 + 2 * k];
    const char* n = mot_nom_long(e, o < 0 ? -o : o);
    if (!n) return false;
    if (k) d += ' ';
    if (o < 0) d += '-';
    d += n;
  }
  return true;
}

// An object, or a sub-object of a memory attribute (one tab deeper).
int ecrit_objet(std::string& d, const Objet* o, const mot tete[8], const char* nom_objet,
                const std::vector<const mot*>& attrs, int prof) {
  const char* type = mot_nom_long(1, tete[6]);
  const char* num = mot_nom_long(0, A_NUM);
  const char* nom = mot_nom_long(0, A_NOM);
  const char* tf = mot_nom_long(0, A_TYPE_FICHIER);
  if (!type || !num || !nom || !tf) {
    objet_imprime(o);
    message(0, MES_SANS_TABLE);
    return -1;
  }
  std::string marge(static_cast<std::size_t>(2 * prof), '\t');
  char b[160];
  std::snprintf(b, sizeof b, "%s %s(%d)", type, num, tete[1]);
  d += marge;
  d += b;
  if (nom_objet && *nom_objet) {
    d += ' ';
    d += nom;
    d += '(';
    texte_cite(d, nom_objet);
    d += ')';
  }
  std::snprintf(b, sizeof b, " %s(%d, %d, %d, %d, %d)", tf, tete[7], tete[3], tete[4], tete[5], tete[0]);
  d += b;
  if (attrs.empty()) {
    d += '\n';
    return 0;
  }
  d += " {\n";
  for (const mot* a : attrs) {
    if (a[0] > MOTS_ASCII) {
      // The work Bloc of an attribute holds 20000 words: the attribute stays
      // out of the file, and the save says so.
      objet_imprime(o);
      cle_imprime(a);
      message(0, MES_DEBORDEMENT);
      continue;
    }
    bool memoire = a[3] == 1 && a[4] == 1 && a[5] == B_MEM_TYPE && a[0] >= a[2] + 4 && a[a[2] + 1] == BLOC_BLOCS;
    if (tail_pointeurs(a) && !(memoire && prof < 4)) continue;
    std::string cle;
    if (!nom_cle(cle, a)) continue;
    d += marge + '\t';
    d += cle;
    d += "\t{\n" + marge + "\t\t";
    std::snprintf(b, sizeof b, "%d ", a[1]);
    d += b;
    if (memoire) {
      // Sub-objects: each with its head of 8 words and its attributes.
      const mot* t = a + a[2];
      std::snprintf(b, sizeof b, "objets %d\n", t[0] - 4);
      d += b;
      for (mot k = 4; k < t[0]; ++k) {
        const mot* s = bloc_pointe(t[k]);
        mot ts[8] = {0, k - 4, 0, 0, 0, 0, B_MEM_TYPE, 0};
        std::vector<const mot*> sous;
        if (s && s[0] >= 5 && s[1] == BLOC_BLOCS) {
          const mot* h = bloc_pointe(s[4]);
          if (h && h[0] == 12 && h[1] == BLOC_ENTIER) std::memcpy(ts, h + 4, sizeof ts);
          for (mot j = 5; j < s[0]; ++j)
            if (const mot* x = bloc_pointe(s[j]); x && x[0] >= 6 && x[0] <= MOTS_MAX && x[2] <= x[0]) sous.push_back(x);
        }
        if (!type_objet(ts[6])) ts[6] = B_MEM_TYPE;
        if (ecrit_objet(d, o, ts, nullptr, sous, prof + 1) < 0) return -1;
      }
      d += marge + "\t\t}\n";
      continue;
    }
    if (a[0] >= a[2] + 4) ecrit_bloc(d, a + a[2], 0);
    d += "\n" + marge + "\t\t}\n";
  }
  d += marge + "}\n";
  return 0;
}

// ---- reading ---------------------------------------------------------------------
// A type whose objects a file of `type` may hold: images only in a file of
// images.
bool de_fichier(int ordinal, int type) { return type_objet(ordinal) || (type == B_IMA_TYPE && ordinal == type); }

struct Jeton {
  enum Sorte { FIN, MOT, CHAINE, PONCT } sorte = FIN;
  std::string texte;
  char p = 0;
  int ligne = 1;
};

struct Analyse {
  const std::string& s;
  std::size_t i = 0;
  int ligne = 1;
  bool faute = false;
  Jeton suivant;
  bool regarde = false;

  // Blanks and comments; false on an unterminated comment (message 0:64).
  bool blancs() {
    for (;;) {
      while (i < s.size() && (s[i] == ' ' || s[i] == '\t' || s[i] == '\r' || s[i] == '\n')) ligne += s[i++] == '\n';
      if (i + 1 < s.size() && s[i] == '/' && s[i + 1] == '*') {
        std::size_t f = s.find("*/", i + 2);
        if (f == std::string::npos) {
          message(0, MES_COMMENTAIRE);
          return false;
        }
        for (std::size_t k = i; k < f; ++k) ligne += s[k] == '\n';
        i = f + 2;
        continue;
      }
      return true;
    }
  }
  bool lit(Jeton& j) {
    j = Jeton{};
    if (!blancs()) return faute = true, false;
    j.ligne = ligne;
    if (i >= s.size()) return true;
    char c = s[i];
    if (c == '{' || c == '}' || c == '(' || c == ')' || c == ',') {
      j.sorte = Jeton::PONCT;
      j.p = c;
      ++i;
      return true;
    }
    if (c == '"') {
      j.sorte = Jeton::CHAINE;
      for (++i; i < s.size() && s[i] != '"'; ++i) {
        char x = s[i];
        if (x == '\n') return faute = true, false;
        if (x == '\\' && i + 1 < s.size()) {
          char y = s[++i];
          if (y == 'n') x = '\n';
          else if (y == 't') x = '\t';
          else if (y >= '0' && y <= '7') {
            int v = 0;
            for (int k = 0; k < 3 && i < s.size() && s[i] >= '0' && s[i] <= '7'; ++k) v = v * 8 + (s[i++] - '0');
            --i;
            x = static_cast<char>(v);
          } else {
            x = y;
          }
        }
        if (j.texte.size() >= MOTS_ASCII * 4) {
          message(0, MES_DEBORDEMENT);
          return faute = true, false;
        }
        j.texte += x;
      }
      if (i >= s.size()) return faute = true, false;
      ++i;
      return true;
    }
    j.sorte = Jeton::MOT;
    while (i < s.size() && !std::strchr(" \t\r\n{}(),\"", s[i]) && !(s[i] == '/' && i + 1 < s.size() && s[i + 1] == '*')) {
      if (j.texte.size() >= 255) {
        message(0, MES_DEBORDEMENT);
        return faute = true, false;
      }
      j.texte += s[i++];
    }
    return true;
  }
  bool prend(Jeton& j) {
    if (regarde) {
      j = suivant;
      regarde = false;
      return true;
    }
    return lit(j);
  }
  const Jeton* voit() {
    if (!regarde) {
      if (!lit(suivant)) return nullptr;
      regarde = true;
    }
    return &suivant;
  }
};

struct Erreur {
  bool inconnu = false;
  std::string mot;
};

bool entier_lu(const std::string& t, long long* v) {
  if (t.empty()) return false;
  char* f;
  errno = 0;
  *v = std::strtoll(t.c_str(), &f, 10);
  return *f == 0 && errno == 0;
}

bool reel_lu(const std::string& t, float* v) {
  if (t.empty()) return false;
  char* f;
  *v = std::strtof(t.c_str(), &f);
  return *f == 0;
}

bool mot_entier(Analyse& a, long long* v, long long min, long long max) {
  Jeton j;
  return a.prend(j) && j.sorte == Jeton::MOT && entier_lu(j.texte, v) && *v >= min && *v <= max;
}

// A tail into the words of dst; false with a fault (message given for
// sizes, else a syntax fault for the caller).
bool lit_bloc(Analyse& a, std::vector<mot>& d, int profondeur, long* mots_attr) {
  Jeton j;
  if (profondeur > 32 || !a.prend(j) || j.sorte != Jeton::MOT) return false;
  mot tag;
  if (j.texte == "reel") tag = BLOC_REEL;
  else if (j.texte == "entier") tag = BLOC_ENTIER;
  else if (j.texte == "chaine") tag = BLOC_CHAINE;
  else if (j.texte == "liste") tag = BLOC_LISTE;
  else if (j.texte == "mots") {
    long long t;
    if (!mot_entier(a, &t, INT32_MIN, INT32_MAX)) return false;
    tag = static_cast<mot>(t);
    if (tag == BLOC_BLOCS || tag == BLOC_OBJETS || tag == BLOC_OBJET || tag == CELLULE_OBJET || tag == BLOC_LIGNE ||
        tag == BLOC_PHRASE || tag == BLOC_REEL || tag == BLOC_ENTIER || tag == BLOC_CHAINE || tag == BLOC_LISTE)
      return false;
  } else {
    return false;
  }
  long long nl, nc, n;
  if (!mot_entier(a, &nl, INT32_MIN, INT32_MAX) || !mot_entier(a, &nc, INT32_MIN, INT32_MAX) ||
      !mot_entier(a, &n, 0, MOTS_MAX))
    return false;
  if (*mots_attr + n > MOTS_ASCII) {
    message(0, MES_DEBORDEMENT);
    a.faute = true;
    return false;
  }
  std::size_t debut = d.size();
  d.insert(d.end(), {0, tag, static_cast<mot>(nl), static_cast<mot>(nc)});
  *mots_attr += 4;
  if (tag == BLOC_CHAINE) {
    if (n != 1 || !a.prend(j) || j.sorte != Jeton::CHAINE) return false;
    mot l = long_chaine(j.texte.size());
    d.resize(debut + static_cast<std::size_t>(l), 0);
    std::memcpy(d.data() + debut + 4, j.texte.data(), j.texte.size());
    *mots_attr += l - 4;
  } else if (tag == BLOC_LISTE) {
    for (long long k = 0; k < n; ++k)
      if (!lit_bloc(a, d, profondeur + 1, mots_attr)) return false;
  } else {
    for (long long k = 0; k < n; ++k) {
      if (!a.prend(j) || j.sorte != Jeton::MOT) return false;
      if (tag == BLOC_REEL) {
        float x;
        if (!reel_lu(j.texte, &x)) return false;
        d.push_back(reel_mot(x));
      } else {
        long long x;
        if (!entier_lu(j.texte, &x) || x < INT32_MIN || x > INT32_MAX) return false;
        d.push_back(static_cast<mot>(x));
      }
    }
    *mots_attr += n;
  }
  if (d.size() - debut > static_cast<std::size_t>(MOTS_MAX)) return false;
  d[debut] = static_cast<mot>(d.size() - debut);
  return true;
}

// One clause's arguments: "(" values separated by "," ")".
bool arguments(Analyse& a, std::vector<Jeton>& v) {
  Jeton j;
  if (!a.prend(j) || j.sorte != Jeton::PONCT || j.p != '(') return false;
  for (;;) {
    if (!a.prend(j)) return false;
    if (j.sorte == Jeton::PONCT && j.p == ')' && v.empty()) return true;
    if (j.sorte != Jeton::MOT && j.sorte != Jeton::CHAINE) return false;
    v.push_back(j);
    if (!a.prend(j) || j.sorte != Jeton::PONCT) return false;
    if (j.p == ')') return true;
    if (j.p != ',') return false;
  }
}

int lit_objet(Analyse& a, ObjetLu& x, int type, Erreur& err, int prof);

// A memory attribute: "objets k", k sub-objects, "}"; built as in memory,
// each sub-object a list whose first Bloc holds its head.
mot* lit_memoire(Analyse& a, std::vector<mot>& d, Erreur& err, int prof) {
  long long k;
  if (!mot_entier(a, &k, 0, ATTRIBUTS_MAX)) return nullptr;
  TableLue sous;
  for (long long i = 0; i < k; ++i) {
    sous.objets.emplace_back();
    if (lit_objet(a, sous.objets.back(), -1, err, prof + 1) != 1) return nullptr;
  }
  Jeton j;
  if (!a.prend(j) || j.sorte != Jeton::PONCT || j.p != '}') return nullptr;
  mot h = static_cast<mot>(d.size());
  mot* b = bloc_alloue(h + 4 + static_cast<mot>(k));
  if (!b) return nullptr;
  std::memcpy(b, d.data(), sizeof(mot) * d.size());
  b[0] = h + 4 + static_cast<mot>(k);
  b[1] = BLOC_PHRASE;
  b[h] = 4 + static_cast<mot>(k);
  b[h + 1] = BLOC_BLOCS;
  b[h + 2] = static_cast<mot>(k);
  b[h + 3] = 1;
  std::memset(b + h + 4, 0, sizeof(mot) * k);
  for (long long i = 0; i < k; ++i) {
    ObjetLu& o = sous.objets[static_cast<std::size_t>(i)];
    mot n = static_cast<mot>(o.attributs.size());
    mot* s = bloc_alloue(5 + n);
    mot* t = s ? bloc_alloue(12) : nullptr;
    if (!t) {
      bloc_libere_force(s);
      bloc_supprime(b);
      return nullptr;
    }
    s[1] = BLOC_BLOCS, s[2] = 1 + n, s[3] = 1;
    t[1] = BLOC_ENTIER, t[2] = 8, t[3] = 1;
    o.tete[2] = n;
    std::memcpy(t + 4, o.tete, sizeof o.tete);
    s[4] = ptr_vers_mot(t);
    for (mot j2 = 0; j2 < n; ++j2) {
      s[5 + j2] = ptr_vers_mot(o.attributs[static_cast<std::size_t>(j2)]);
      o.attributs[static_cast<std::size_t>(j2)] = nullptr;
    }
    b[h + 4 + i] = ptr_vers_mot(s);
  }
  return b;
}

// An object: 1 read, 0 end of the file, -1 fault (erreur filled unless a
// message was already given).
int lit_objet(Analyse& a, ObjetLu& x, int type, Erreur& err, int prof) {
  Jeton j;
  if (!a.prend(j)) return -1;
  if (j.sorte == Jeton::FIN) return 0;
  MotCle* m = j.sorte == Jeton::MOT ? mot_cherche_long(j.texte.c_str()) : nullptr;
  if (!m || m->env != 1 || !de_fichier(m->ordinal, type) || m->ordinal == B_SCENE) {
    err = {j.sorte == Jeton::MOT, j.texte};
    return -1;
  }
  bool bon = type < 0 || (type == B_SCENE ? type_de_scene(m->ordinal) : m->ordinal == type);
  if (!bon) {
    err = {true, j.texte};
    return -1;
  }
  x.tete[6] = m->ordinal;
  // Clauses of the head, then "{" or the next object.
  for (;;) {
    const Jeton* v = a.voit();
    if (!v) return -1;
    if (v->sorte == Jeton::FIN || (prof > 0 && v->sorte == Jeton::PONCT && v->p == '}')) return 1;
    if (v->sorte == Jeton::PONCT && v->p == '{') {
      a.prend(j);
      break;
    }
    if (v->sorte != Jeton::MOT) return -1;
    MotCle* c = mot_cherche_long(v->texte.c_str());
    if (!c || c->env != 0 || (c->ordinal != A_NUM && c->ordinal != A_NOM && c->ordinal != A_TYPE_FICHIER)) {
      if (c && c->env == 1 && de_fichier(c->ordinal, type)) return 1;  // an object with no attributes
      err = {true, v->texte};
      return -1;
    }
    a.prend(j);
    std::vector<Jeton> args;
    if (!arguments(a, args)) return -1;
    long long n;
    if (c->ordinal == A_NUM) {
      if (args.size() != 1 || !entier_lu(args[0].texte, &n) || n < -NUMERO_MAX || n > NUMERO_MAX) return -1;
      x.tete[1] = static_cast<mot>(n);
    } else if (c->ordinal == A_NOM) {
      if (args.size() != 1 || args[0].sorte != Jeton::CHAINE || args[0].texte.size() > 255) return -1;
      x.nom = args[0].texte;
    } else {
      if (args.size() != 5) return -1;
      const int place[5] = {7, 3, 4, 5, 0};
      for (int k = 0; k < 5; ++k) {
        if (!entier_lu(args[k].texte, &n) || n < (k == 4 ? -32768 : 0) || n > 65535) return -1;
        x.tete[place[k]] = static_cast<mot>(n);
      }
    }
  }
  // Attributes up to "}".
  for (;;) {
    std::vector<mot> cle;
    for (;;) {
      if (!a.prend(j)) return -1;
      if (j.sorte == Jeton::PONCT && j.p == '}' && cle.empty()) {
        x.tete[2] = static_cast<mot>(x.attributs.size());
        return 1;
      }
      if (j.sorte == Jeton::PONCT && j.p == '{' && !cle.empty()) break;
      if (j.sorte != Jeton::MOT) return -1;
      bool negatif = j.texte[0] == '-' && j.texte.size() > 1;
      MotCle* c = mot_cherche_long(j.texte.c_str() + (negatif ? 1 : 0));
      if (!c) {
        err = {true, j.texte};
        return -1;
      }
      if (cle.size() >= 12) return -1;
      cle.push_back(c->env);
      cle.push_back(negatif ? -c->ordinal : c->ordinal);
    }
    long long validite;
    if (!mot_entier(a, &validite, INT32_MIN, INT32_MAX) ||
        (validite != BLOC_PHRASE && validite != 0 && validite != 1))
      return -1;
    std::vector<mot> d(4 + cle.size(), 0);
    d[1] = static_cast<mot>(validite);
    d[2] = static_cast<mot>(4 + cle.size());
    d[3] = static_cast<mot>(cle.size() / 2);
    std::memcpy(d.data() + 4, cle.data(), sizeof(mot) * cle.size());
    long mots_attr = 0;
    const Jeton* v = a.voit();
    if (!v) return -1;
    if (v->sorte == Jeton::MOT && v->texte == "objets") {
      if (cle.size() != 2 || cle[0] != 1 || cle[1] != B_MEM_TYPE || prof >= 4) return -1;
      a.prend(j);
      mot* b = lit_memoire(a, d, err, prof);
      if (!b) return -1;
      x.attributs.push_back(b);
      continue;
    }
    if (!(v->sorte == Jeton::PONCT && v->p == '}') && !lit_bloc(a, d, 0, &mots_attr)) return -1;
    if (!a.prend(j) || j.sorte != Jeton::PONCT || j.p != '}') return -1;
    d[0] = static_cast<mot>(d.size());
    if (d.size() > static_cast<std::size_t>(d[2]) && !bloc_sain(d.data() + d[2], static_cast<long>(d.size()) - d[2]))
      return -1;
    mot* b = bloc_alloue(d[0]);
    if (!b) return -1;
    std::memcpy(b, d.data(), sizeof(mot) * d.size());
    x.attributs.push_back(b);
  }
}
}  // namespace

int ascii_ecrit(std::string& d, const Objet* o, const OptionsFichier& opt, bool scene) {
  std::vector<const mot*> attrs = attributs_gardes(o, opt, FORME_ASCII, scene);
  mot tete[8] = {static_cast<mot>(static_cast<std::int16_t>(o->f4)), o->numero, 0, o->f1, o->f2, o->f3, o->type,
                 o->sous_type};
  return ecrit_objet(d, o, tete, o->nom, attrs, 0);
}

int ascii_ecrit_attributs(std::string& d, const Objet* o, const std::vector<const mot*>& attrs) {
  mot tete[8] = {static_cast<mot>(static_cast<std::int16_t>(o->f4)), o->numero, 0, o->f1, o->f2, o->f3, o->type,
                 o->sous_type};
  return ecrit_objet(d, o, tete, o->nom, attrs, 0);
}

int ascii_lit(const std::string& texte, TableLue& t, int type) {
  Analyse a{texte, 0, 1, false, {}, false};
  for (;;) {
    Erreur err;
    t.objets.emplace_back();
    int r = lit_objet(a, t.objets.back(), type, err, 0);
    if (r == 0) t.objets.pop_back();
    if (r == 0) return 0;
    if (r > 0) continue;
    if (!a.faute) {
      if (err.inconnu) {
        std::printf("%s: ", err.mot.c_str());
        message(0, M_INCONNU_MOT);
      } else {
        message(0, M_SYNTAXE);
      }
    }
    // The object under way goes; so does the rest, since the table takes
    // nothing from a file with a fault.
    message(0, M_OBJET_ABANDONNE);
    std::printf(": %d \n", a.ligne);
    t.vide();
    return -1;
  }
}
