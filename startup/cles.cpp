// Base keys (command line and enva.h) and graphic keys (command line and
// envb.h). Keys are compared on their first three characters.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/message.h"
#include "startup/interne.h"
#include "startup/startup.h"

Demarrage dem;

namespace {
enum Cle { C_MAC, C_BUF, C_LOC, C_EVA, C_COM, C_OBJ, C_EMP, C_ESC, C_ENV, C_UTI, C_SON, C_LAN, C_COD,
           C_DEB, C_MAL, C_INI, C_SYS, C_ID, C_AUCUNE };
constexpr const char* NOMS_CLES[] = {"mac", "buf", "loc", "eva", "com", "obj", "emp", "esc", "env",
                                     "uti", "son", "lan", "cod", "deb", "mal", "ini", "sys", "ID"};

Cle cle_de(const char* nom3) {
  for (int k = 0; k < C_AUCUNE; ++k)
    if (std::strcmp(nom3, NOMS_CLES[k]) == 0) return static_cast<Cle>(k);
  return C_AUCUNE;
}

// A path value stops at the first blank. One longer than LONG_CHEMIN is
// refused whole, since a cut path names another file: the key keeps what
// it had, and the refusal is said once (signale), by its key.
void copie_chemin(char* dst, std::string_view v, const char* cle, bool signale) {
  std::size_t n = 0;
  while (n < v.size() && v[n] != ' ' && v[n] != '\t') ++n;
  if (n > LONG_CHEMIN) {
    if (signale) {
      std::printf("%s=%.20s...: %zu > %zu: ", cle, v.data(), n, LONG_CHEMIN);
      message(0, M_CHEMIN_LONG);
    }
    return;
  }
  std::memcpy(dst, v.data(), n);
  dst[n] = 0;
}

void pose_lan(std::string_view v) {
  if (!dem.lancement_vu) {
    dem.fonction_lancement.assign(v);
    dem.lancement_vu = true;
  } else {
    dem.fonction_boucle.assign(v);
    dem.boucle_vue = true;
  }
}

long entier(std::string_view v) { return std::strtol(std::string(v).c_str(), nullptr, 10); }

// signale: the pass that reports a refused value (the second pass of the
// command line, and enva.h), once the messages are loaded.
void applique(Cle c, std::string_view v, bool ligne_commande, bool signale) {
  switch (c) {
    case C_MAC: {
      std::size_t n = v.size() < 80 ? v.size() : 80;
      std::memcpy(dem.machine, v.data(), n);
      dem.machine[n] = 0;
      break;
    }
    case C_BUF: dem.buf = entier(v); break;
    case C_LOC: dem.loc = entier(v); break;
    case C_EVA: dem.eva = entier(v); break;
    case C_COM: dem.com = entier(v); break;
    case C_OBJ: dem.obj = entier(v); break;
    case C_EMP: dem.emp = entier(v); break;
    case C_ESC: dem.esc = entier(v); break;
    case C_ENV: copie_chemin(dem.chemin_env, v, "env", signale); break;
    case C_UTI: copie_chemin(dem.chemin_uti, v, "uti", signale); break;
    case C_SON: break;  // read, and of no use
    case C_LAN: pose_lan(v); break;
    case C_COD: dem.cle_code = v.empty() ? "*" : std::string(v); break;
    case C_DEB: dem.debug = true; break;
    case C_MAL: dem.mal = v.empty() ? 100000 : entier(v); break;
    case C_INI:
      if (ligne_commande) copie_chemin(dem.chemin_init, v, "ini", signale);
      break;
    case C_SYS: dem.sysinfo = true; break;
    case C_ID: dem.sans_id = true; break;
    case C_AUCUNE: break;
  }
}

// The first name token, cut at three characters.
const char* nom3(const char* p, char* dst) {
  int n = 0;
  while (!fin_de_nom(static_cast<unsigned char>(*p))) {
    if (n < 3) dst[n++] = *p;
    ++p;
  }
  dst[n] = 0;
  return p;
}

inline const char* saute_blancs(const char* p) {
  while (*p == ' ' || *p == '\t') ++p;
  return p;
}

inline std::string_view mot_valeur_texte(const char* p) {
  const char* f = p;
  while (*f && *f != ' ' && *f != '\t' && *f != '\n' && *f != '\r') ++f;
  return {p, static_cast<std::size_t>(f - p)};
}

[[noreturn]] void erreur_ligne(const char* fichier, int ligne, const char* texte, const char* debut,
                               bool commentaire) {
  std::printf(commentaire ? "ERREUR COMMENTAIRE dans %s ligne %d\x07\n" : "ERREUR dans %s ligne %d\x07\n", fichier,
              ligne);
  if (!commentaire) {
    while (debut > texte && debut[-1] != '\n') --debut;  // the whole offending line
    const char* f = debut;
    while (*f && *f != '\n') ++f;
    std::printf("%.*s\n", static_cast<int>(f - debut), debut);
  }
  arret_fatal(nullptr);
}

// Walks the entries key=value of a key file and hands each to f.
template <class F>
void lit_entrees(const char* texte, const char* fichier, bool sys_seul, F f) {
  int ligne = 1;
  const char* p = texte;
  for (;;) {
    p = saute_commentaires(p, &ligne);
    if (!p) erreur_ligne(fichier, ligne, texte, texte, true);
    if (!*p) return;
    const char* debut = p;
    if (sys_seul && std::strncmp(p, "sys", 3) == 0) {
      dem.sysinfo = true;
      while (*p && *p != ' ' && *p != '\t' && *p != '\n') ++p;
      continue;
    }
    char nom[4];
    const char* q = nom3(p, nom);
    if (q == p) ++q;  // a lone separator is an entry without "="
    q = saute_blancs(q);
    if (*q != '=') {
      while (*q && *q != '\n' && *q != '=') ++q;
      if (*q != '=') erreur_ligne(fichier, ligne, texte, debut, false);
    }
    q = saute_blancs(q + 1);
    std::string_view v = mot_valeur_texte(q);
    f(nom, v);
    p = q + v.size();
  }
}
}  // namespace

void cles_ligne_commande(int argc, char** argv, bool premiere) {
  for (int i = 1; i < argc; ++i) {
    char nom[4];
    const char* p = saute_blancs(nom3(argv[i], nom));
    if (*p == '=') p = saute_blancs(p + 1);
    applique(cle_de(nom), p, true, !premiere);
  }
}

void cles_enva(const char* texte) {
  lit_entrees(texte, "enva.h", true, [](const char* nom, std::string_view v) {
    Cle c = cle_de(nom);
    if (c != C_INI) applique(c, v, false, true);
  });
}

// ---- graphic keys ------------------------------------------------------
namespace {
void applique_graphique(const char* nom, std::string_view v, bool ligne_commande) {
  std::string s(v);
  const char* t = s.c_str();
  if (std::strcmp(nom, "x") == 0) ecran.largeur = std::atoi(t);
  else if (std::strcmp(nom, "y") == 0) ecran.hauteur = std::atoi(t);
  else if (std::strcmp(nom, "cx") == 0) ecran.cx = std::strtof(t, nullptr);
  else if (std::strcmp(nom, "cy") == 0) ecran.cy = std::strtof(t, nullptr);
  else if (std::strcmp(nom, "rvb") == 0) ecran.rvb = std::atoi(t);
  else if (std::strcmp(nom, "zbu") == 0) ecran.zbu = std::atoi(t);
  else if (std::strcmp(nom, "ale") == 0) ecran.ale = std::atoi(t);
  else if (std::strcmp(nom, "gra") == 0) ecran.gra = std::atoi(t) != 0;
  else if (std::strcmp(nom, "hau") == 0) ecran.hau = std::strtof(t, nullptr);
  else if (std::strcmp(nom, "lig") == 0) ecran.lig = entier_sature(std::strtof(t, nullptr));
  else if (std::strcmp(nom, "mac") == 0) {
    std::size_t n = s.size() < 80 ? s.size() : 80;
    std::memcpy(dem.machine2, t, n);
    dem.machine2[n] = 0;
  } else if (std::strcmp(nom, "win") == 0) {
    if (ligne_commande && s.compare(0, 3, "vid") == 0) {
      ecran.largeur = ecran.video_l;
    } else if (ligne_commande && s.compare(0, 3, "ful") == 0) {
      ecran.plein = true;
    } else {
      char* fin;
      ecran.largeur = static_cast<int>(std::strtol(t, &fin, 10));
      if (*fin == ',') ecran.hauteur = static_cast<int>(std::strtol(fin + 1, nullptr, 10));
    }
  }
}
}  // namespace

// envb.h knows its keys by their first one to three letters: "xx" is "x".
void cles_envb(const char* texte) {
  lit_entrees(texte, "envb.h", false, [](const char* nom, std::string_view v) {
    char canon[4] = {};
    if (nom[0] == 'x' || nom[0] == 'y') canon[0] = nom[0];
    else if (nom[0] == 'c' && (nom[1] == 'x' || nom[1] == 'y')) canon[0] = 'c', canon[1] = nom[1];
    else std::memcpy(canon, nom, 3);
    applique_graphique(canon, v, false);
  });
}

void cles_graphiques_ligne_commande(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    char nom[4];
    const char* p = saute_blancs(nom3(argv[i], nom));
    if (*p != '=' || !nom[0]) continue;
    applique_graphique(nom, saute_blancs(p + 1), true);
  }
}

void aide_base() {
  std::fputs(
      "**************** INTERPRETEUR ****************\n"
      "   cle=Valeur par defaut Signification\n\n"
      "   mac=SGI PC            Nom de la machine\n"
      "   buf=100000            Buffer de lecture\n"
      "   loc=1000              Variables locales\n"
      "   eva=100000            Evaluations\n"
      "   com=100000            Compilation\n"
      "   obj=20000             Objets\n"
      "   emp=10000             Empilement des commandes\n"
      "   esc=27                Escape\n"
      "   env=/usr/orvane       Directory de l'environnement*\n"
      "   uti=                  Directory utilisateur\n"
      "   lan=/usr/orvane/lance Fonction de lancement\n"
      "   cod=ccc               Decodage selon la cle ccc\n"
      "   deb                   Debug interpreteur\n"
      "   mal=dim               Debug malloc(dim) 100000 par defaut\n"
      "   ini=/bin/init[abc].h  Fichier d'initialisation\n"
      "   sys                   Imprime les sysinfo\n"
      "   ID                    N'ecrit pas threadID\n"
      "**********************************************\n\n",
      stdout);
}

void aide_graphique() {
  std::fputs(
      "******************* ORVANE *******************\n\n"
      "   cle=Valeur par defaut Signification\n"
      "   -----------------------------------\n"
      "     x=                  Largeur de l'ecran\n"
      "     y=                  Hauteur de l'ecran\n"
      "   win=dimx,dimy         Window de taille (dimx,dimy)\n"
      "   win=vid               Window de la taille video\n"
      "   win=ful               Full window\n"
      "    cx=1                 Coeffiocient en x\n"
      "    cy=-1                Coeffiocient en y\n"
      "   rvb=8                 Composantes RVB\n"
      "   zbu=1                 Zbuffer (1: short, 2: float)\n"
      "   ale=10000             Aleatoires\n"
      "   gra=1                 Processuer graphique (0: off, 1: on)\n"
      "   hau=0                 Haute definition\n"
      "   lig=1280              Buffer ligne\n"
      "Ces cles peuvent etre mises dans le fichier envb.h\n\n"
      "**********************************************\n\n",
      stdout);
}
