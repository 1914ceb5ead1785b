// The function store: a function file (.fon) holds function texts one
// after the other; each becomes an Objet of type a6 bearing its text. They
// compile on their first call. The functions of one file form a group: a
// call in one of them finds its neighbours before any other function.
//
// Fields of a function Objet: f1 the line of the file ahead of its text (so
// that reports give file lines), f2 and f3 the number of the file read.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "lang/interne.h"

namespace {

// Steps over blanks, newlines, comments and strings where braces are
// counted; counts the newlines.
struct Lecteur {
  const char* p;
  const char* fin;
  int lignes = 0;
};

void saute_commentaire(Lecteur& l) {
  l.p += 2;
  while (l.p + 1 < l.fin && !(l.p[0] == '*' && l.p[1] == '/')) {
    if (*l.p == '\n') ++l.lignes;
    ++l.p;
  }
  l.p = l.p + 1 < l.fin ? l.p + 2 : l.fin;
}

void saute_ligne(Lecteur& l) {
  while (l.p < l.fin && *l.p != '\n') ++l.p;
}

// Ahead of a function: blanks, comments and "#" lines; a #define there is a
// macro of the whole session.
void saute_entete_fichier(Lecteur& l) {
  for (;;) {
    while (l.p < l.fin && (*l.p == ' ' || *l.p == '\t' || *l.p == '\r' || *l.p == '\n')) {
      if (*l.p == '\n') ++l.lignes;
      ++l.p;
    }
    if (l.p + 1 < l.fin && l.p[0] == '/' && l.p[1] == '*') {
      saute_commentaire(l);
    } else if (l.p < l.fin && *l.p == '#') {
      const char* d = l.p;
      saute_ligne(l);
      std::string ligne(d, l.p);
      const char* q = sauter_blancs(ligne.c_str() + 1);
      if (std::strncmp(q, "define", 6) == 0) macro_globale(ligne.c_str());
    } else {
      return;
    }
  }
}

// The end of a function's text: behind the brace that closes its first one,
// or the end of the file.
const char* fin_fonction(Lecteur& l) {
  int prof = 0;
  while (l.p < l.fin) {
    char ch = *l.p;
    if (ch == '\n') {
      ++l.lignes;
    } else if (ch == '/' && l.p + 1 < l.fin && l.p[1] == '*') {
      saute_commentaire(l);
      continue;
    } else if (ch == '"') {
      for (++l.p; l.p < l.fin && *l.p != '"' && *l.p != '\n'; ++l.p)
        if (*l.p == '\\' && l.p + 1 < l.fin) ++l.p;
      if (l.p >= l.fin || *l.p == '\n') continue;
    } else if (ch == '{') {
      ++prof;
    } else if (ch == '}' && --prof == 0) {
      return ++l.p;
    }
    ++l.p;
  }
  // No brace: the rest of the file is the text, and its body is empty.
  return l.fin;
}

// The function of that name in a group, or null.
Objet* du_groupe(const std::string& nom, unsigned long groupe) {
  const auto f2 = static_cast<std::uint16_t>(groupe & 0xffff);
  const auto f3 = static_cast<std::uint16_t>((groupe >> 16) & 0xffff);
  char t[TAILLE_NOM];
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o)
    if (o->type == TYPE_FONCTION && o->sous_type == 0 && o->f2 == f2 && o->f3 == f3 &&
        nom == nom_objet(o, t, sizeof t))
      return o;
  return nullptr;
}

// A function of the same name in another file stays: each group calls its
// own. In the same file's group, the new text replaces the old.
Objet* range(const char* d, const char* f, const std::string& nom, int decalage, unsigned long groupe) {
  if (Objet* ancien = du_groupe(nom, groupe)) objet_supprime(ancien);
  std::size_t n = f - d;
  std::vector<mot> b(long_chaine(n), 0);
  b[0] = static_cast<mot>(b.size());
  b[1] = BLOC_CHAINE;
  b[2] = 1;
  b[3] = 1;
  std::memcpy(b.data() + 4, d, n);
  Objet* o = objet_cree(0, TYPE_FONCTION, 0, b.data(), nom.c_str(), 0);
  if (!o) return nullptr;
  o->f1 = static_cast<std::uint16_t>(decalage > 65535 ? 65535 : decalage);
  o->f2 = static_cast<std::uint16_t>(groupe & 0xffff);
  o->f3 = static_cast<std::uint16_t>((groupe >> 16) & 0xffff);
  return o;
}

// Runs a line through the interpreter, when one is installed.
void execute(const char* texte) {
  if (!lang.executer) return;
  std::string t = std::string("{") + texte + "}";
  mot* b = bloc_alloue(long_chaine(t.size()));
  if (!b) return;
  b[1] = BLOC_CHAINE;
  b[2] = b[3] = 1;
  std::memcpy(bloc_texte(b), t.c_str(), t.size() + 1);
  Objet ligne{};
  ligne.type = OBJ_TRANSITOIRE;
  ligne.donnees = b;
  if (compiler(&ligne) > 0 && lier(&ligne) == 0) lang.executer(&ligne);
  bloc_libere_force(ligne.code);
  bloc_libere_force(b);
}

int lit_fonctions(const char* nom, bool avec_lien, bool signale) {
  std::string texte, chemin;
  if (!lire_fichier_recherche(nom, "fon", texte, &chemin)) {
    if (signale) erreur_fichier(nom);
    return -1;
  }
  int n = fonctions_analyse(texte.c_str(), texte.size(), chemin.c_str());
  if (n < 0) return -1;
  const TableMots& t = vocab.tables[0];
  bool lie_a_la_lecture = vocab.nb_env > 0 && t.nb > A_LIEN && t.etats && t.etats[A_LIEN] != 0;
  if (avec_lien || lie_a_la_lecture) lier_tout();
  if (fonction_trouve("doc")) execute("doc()");
  return n;
}
}  // namespace

bool lire_fichier_recherche(const char* nom, const char* ext, std::string& texte, std::string* chemin) {
  std::string lu;
  if (!chemin) chemin = &lu;
  auto lit = [&](const std::string& c, std::string& t) {
    *chemin = c;
    return lit_fichier(c.c_str(), t);
  };
  std::string base = nom;
  if (ext) {
    std::string e = std::string(".") + ext;
    if (base.size() < e.size() || base.compare(base.size() - e.size(), e.size(), e) != 0) base += e;
  }
  if (base.empty()) return false;
  if (base[0] == '/') return lit(base, texte);
  if (base[0] == '.') {
    // ".x" is x of the current directory, and nowhere else.
    if (base.size() > 1 && base[1] != '/' && base[1] != '.') base.erase(0, 1);
    return lit(base, texte);
  }
  if (lit(base, texte)) return true;
  if (dem.chemin_uti[0] && lit(std::string(dem.chemin_uti) + base, texte)) return true;
  return dem.chemin_env[0] && lit(std::string(dem.chemin_env) + base, texte);
}

int fonctions_analyse(const char* texte, std::size_t n, const char* fichier) {
  macros_globales_vide();
  unsigned long groupe = ++lang.lectures;
  if (fichier && *fichier) {
    // Where the file lies now: the same file by another road is one group.
    char* vrai = realpath(fichier, nullptr);
    std::string cle = vrai ? vrai : fichier;
    std::free(vrai);
    groupe = lang.groupes.emplace(cle, groupe).first->second;
  }
  Lecteur l{texte, texte + n};
  int compte = 0;
  while (l.p < l.fin) {
    const char* debut = l.p;
    int decalage = l.lignes;
    saute_entete_fichier(l);
    if (l.p >= l.fin) break;
    // The name is the first word; a text without one is no function.
    const char* d = l.p;
    while (d < l.fin && !est_fin_nom(static_cast<unsigned char>(*d))) ++d;
    std::string nom(l.p, d);
    const char* fin = fin_fonction(l);
    if (nom.empty()) continue;
    if (!range(debut, fin, nom, decalage, groupe)) return -1;
    ++compte;
  }
  fonctions_modifiees();
  return compte;
}

int fonctions_lit(const char* nom, bool avec_lien) { return lit_fonctions(nom, avec_lien, true); }

Objet* fonction_cherche(const char* nom) {
  Objet* f = fonction_trouve(nom);
  if (!f && lit_fonctions(nom, true, false) >= 0) f = fonction_trouve(nom);
  return f;
}

Objet* fonction_appel(const char* nom) {
  Objet* f = fonction_cherche(nom);
  if (!f) {
    std::printf("%s: ", nom);
    message(0, M_FONCTION);
  }
  return f;
}
