// The initialisation, step by step in the order that the keys' overrides
// depend on: command line, files, command line again.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "core/objet.h"
#include "startup/interne.h"
#include "startup/startup.h"

// One read into a string sized from the file: start-up reads seven files,
// and a stream per file would cost its buffers and the locale's set-up.
bool lit_fichier(const char* chemin, std::string& texte) {
  int fd = open(chemin, O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat st;
  bool ok = fstat(fd, &st) == 0 && !S_ISDIR(st.st_mode);
  texte.clear();
  if (ok && st.st_size > 0) texte.resize(static_cast<std::size_t>(st.st_size));
  std::size_t lu = 0;
  while (ok) {
    // Past the size fstat gave (a file that grew, a pipe): small reads.
    char plus[4096];
    bool dedans = lu < texte.size();
    ssize_t n = dedans ? read(fd, texte.data() + lu, texte.size() - lu) : read(fd, plus, sizeof plus);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      ok = n == 0;
      break;
    }
    if (!dedans) texte.append(plus, static_cast<std::size_t>(n));
    lu += static_cast<std::size_t>(n);
  }
  close(fd);
  texte.resize(lu);
  return ok;
}

namespace {
constexpr const char* NOM_DEFAUT = "initb.h";
constexpr const char* ETOILES = "*************************************************\n";

struct FichiersEnv {
  char env[80], kom[80], mes[80];
};

void banniere() {
  dem.banniere = std::string(ETOILES) + "*                    ORVANE                     *\n" +
                 "*          Version 8.3 de janvier 2005          *\n" + ETOILES;
  std::fputs(dem.banniere.c_str(), stdout);
}

// Reads the init file, or the built-in text when none can be read.
std::string texte_init() {
  std::string texte;
  const char* chemin = dem.chemin_init[0] ? dem.chemin_init : NOM_DEFAUT;
  if (lit_fichier(chemin, texte)) {
    std::printf("Initialisation = %s\n", chemin);
    return texte;
  }
  std::printf("%s: erreur fichier\n", chemin);
  std::string bin = std::string("/bin/") + NOM_DEFAUT;
  if (lit_fichier(bin.c_str(), texte)) {
    std::printf("Initialisation = %s\n", bin.c_str());
    return texte;
  }
  if (std::strcmp(NOM_DEFAUT, "initb.h") == 0)
    texte = "\t/usr/orvane/\n\tenva,koma,mesa\n\tenvb,komb,mesb\n";
  else if (std::strcmp(NOM_DEFAUT, "inita.h") == 0)
    texte = "\t/usr/orvane/\n\tenva,koma,mesa\n";
  else {
    std::printf("ERREUR %s\n\x07", NOM_DEFAUT);
    arret_fatal(nullptr);
  }
  std::printf("Initialisation par defaut\n%s\n", texte.c_str());
  return texte;
}

// Directory line, then one "env,kom,mes" line per environment.
// The init file names its environment directory relative to where the
// system was started from. Started elsewhere, the directory given by
// env= is tried, then the init file's own directory, so that
// "orvane ini=/x/env/initb.h env=/x/env/" works from any directory.
static std::string repertoire_trouve(const std::string& rep) {
  auto existe = [](const std::string& d) {
    struct stat st;
    return ::stat(d.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
  };
  if (rep.empty() || rep[0] == '/' || existe(rep)) return rep;
  if (dem.chemin_env[0] && existe(dem.chemin_env)) {
    std::string d = dem.chemin_env;
    if (d.back() != '/') d += '/';
    return d;
  }
  if (const char* b = std::strrchr(dem.chemin_init, '/')) {
    std::string d(dem.chemin_init, static_cast<std::size_t>(b - dem.chemin_init + 1));
    if (existe(d)) return d;
  }
  return rep;
}

int analyse_init(const std::string& texte, std::string& repertoire, FichiersEnv* envs) {
  int ligne = 1;
  const char* p = saute_commentaires(texte.c_str(), &ligne);
  if (!p) arret_fatal(nullptr);
  const char* f = p;
  while (*f && *f != '\n' && !(f[0] == '/' && f[1] == '*')) ++f;
  repertoire.assign(p, f);
  if (!repertoire.empty() && repertoire.back() == '\r') repertoire.pop_back();
  int n = 0;
  p = f;
  for (;;) {
    p = saute_commentaires(p, &ligne);
    if (!p) arret_fatal(nullptr);
    if (!*p) break;
    if (*p == '=') {
      while (*p && *p != '\n') ++p;
      continue;
    }
    if (n >= MAX_ENV) {
      std::printf("%d > %d: Trop d'environnements\x07\n", n + 1, MAX_ENV);
      arret_fatal(nullptr);
    }
    char* champs[3] = {envs[n].env, envs[n].kom, envs[n].mes};
    for (int k = 0; k < 3; ++k) {
      p = lit_nom(p, champs[k], 80);
      if (!p) arret_fatal(nullptr);
      if (k < 2 && *p && *p != '\n') ++p;  // one separator character
    }
    while (*p && *p != '\n') ++p;
    ++n;
  }
  return n;
}

void reglages_base() {
  dem.buf = 100000;
  dem.loc = 1000;
  dem.eva = 100000;
  dem.com = 100000;
  dem.obj = 20000;
  dem.emp = 10000;
  dem.esc = 27;
  std::strcpy(dem.machine, "SGI");
  dem.compile = 200000;
}

std::string textes_env[MAX_ENV];
}  // namespace

const char* texte_env(int e) { return textes_env[e].c_str(); }

namespace {

void charge_environnements(const std::string& rep, const FichiersEnv* envs, int n) {
  for (int e = 0; e < n; ++e) {
    std::string base = rep + envs[e].env + ".h";
    if (!lit_fichier(base.c_str(), textes_env[e])) {
      erreur_fichier(base.c_str());
      arret_fatal(nullptr);
    }
    kom_charge((rep + envs[e].kom + ".h").c_str(), e);
    mes_charge((rep + envs[e].mes + ".h").c_str(), e);
  }
}

void ajoute_barre(char* chemin) {
  std::size_t n = std::strlen(chemin);
  if (n > 0 && n <= LONG_CHEMIN && chemin[n - 1] != '/') std::strcpy(chemin + n, "/");
}

[[noreturn]] void echec_pile(const char* texte, long dim) {
  std::printf(texte, dim);
  std::printf("%d: ERREUR ALLOCATION dans inita\n\x07", 0);
  arret_fatal(nullptr);
}

void affiche_escape() {
  std::fputs("Caractere d'escape: ", stdout);
  if (dem.esc == 27) std::fputs("escape", stdout);
  else if (dem.esc == 96) std::fputs("` (accent grave)", stdout);
  else std::putchar(static_cast<int>(dem.esc));
  std::putchar('\n');
}

void ecrit_thread_id() {
  dem.thread_id = static_cast<int>(syscall(SYS_gettid));
  if (dem.sans_id) return;
  std::printf("GetCurrentThreadId = %d\n", dem.thread_id);
  std::FILE* f = std::fopen("threadID", "w");
  if (!f) {
    std::printf("%s: ", "threadID");
    message(0, 37);
    return;
  }
  std::fprintf(f, "%d", dem.thread_id);
  std::fclose(f);
}
}  // namespace

mot table_builtins[256];
mot* valeurs_tolerance = nullptr;

int demarrer(int argc, char** argv) {
  tas::init();
  bool aide = argc == 2 && std::strcmp(argv[1], "help") == 0;
  if (aide) aide_base();
  banniere();
  dem.chemin_uti[0] = dem.chemin_init[0] = dem.chemin_env[0] = 0;
  dem.machine[0] = 0;
  dem.code_machine = -1;
  dem.fonction_lancement.clear();
  dem.fonction_boucle.clear();
  dem.lancement_vu = dem.boucle_vue = false;
  dem.mal = 0;
  cles_ligne_commande(argc, argv, true);

  std::string texte = texte_init();
  std::string repertoire;
  FichiersEnv envs[MAX_ENV];
  int n = analyse_init(texte, repertoire, envs);
  repertoire = repertoire_trouve(repertoire);
  dem.repertoire = repertoire;
  reglages_base();
  charge_environnements(repertoire, envs, n);

  // The state integers are in place; messages now come from the tables.
  messages.charges = true;
  dem.tables_lues = true;
  if (n > 0) cles_enva(textes_env[0].c_str());
  cles_ligne_commande(argc, argv, false);

  if (dem.mal > 0) {
    if (!mal_init(dem.mal)) {
      std::printf("ERREUR ALLOCATION %ld\x07\n", dem.mal);
      arret_fatal(nullptr);
    }
    std::printf("DEBUG ALLOC %ld\n", dem.mal);
  }
  if (std::strcmp(dem.machine, "SGI") == 0) dem.code_machine = 0;
  else if (std::strcmp(dem.machine, "PC") == 0) dem.code_machine = 1;
  else {
    std::printf("%s: ", dem.machine);
    message(0, 101);
    std::fputs("SGI PC\n", stdout);
    arret_fatal(nullptr);
  }
  std::printf("Machine: %s\n", dem.machine);

  if (!dem.chemin_env[0]) std::strcpy(dem.chemin_env, "/usr/orvane");
  ajoute_barre(dem.chemin_env);
  ajoute_barre(dem.chemin_uti);
  std::printf("Environnement dans %s\n", dem.chemin_env);
  std::printf("Utilitaires dans %s\n", dem.chemin_uti);

  switch (piles_alloue(dem.loc, dem.eva, dem.obj, dem.emp)) {
    case 1: echec_pile("Dim_loc = %ld: ", dem.loc);
    case 2: echec_pile("Dim_ev = %ld: ", dem.eva);
    case 3: echec_pile("Dim_obj = %ld: ", dem.obj);
    case 4: echec_pile("Dim_com = %ld: ", dem.emp);
  }
  affiche_escape();

  piles_reset();
  std::memset(table_builtins, 0, sizeof table_builtins);
  int nv;
  valeurs_tolerance = mot_bloc_defaut(0, 50, &nv);
  bloc_nil = bloc_alloue(4);
  if (bloc_nil) bloc_nil[1] = BLOC_NIL, bloc_nil[2] = bloc_nil[3] = 0;

  dem.version = "Executable: ";
  for (int i = 0; i < argc; ++i) {
    if (i) dem.version += ' ';
    dem.version += argv[i];
  }
  dem.version += "\nVersion: 6.1 mars 2000\nGraphique: OpenGL\nMachines: SGI PC\n";

  init_graphique(argc, argv, aide);

  mots_reinit();
  long com = dem.com < 8 ? 200 : dem.com;
  std::printf("buffer de lecture       %ld\n", dem.buf);
  std::printf("variables locales       %ld\n", dem.loc);
  std::printf("evaluations             %ld\n", dem.eva);
  std::printf("edition                 %ld\n", com);
  std::printf("objets                  %ld\n", dem.obj);
  std::printf("empilements             %ld\n", dem.emp);

  for (auto& t : textes_env) std::string().swap(t);
  ecrit_thread_id();
  std::fflush(stdout);
  return 0;
}
