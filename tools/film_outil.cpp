// Playback of a numbered sequence in the window, mode 127: frame k of the
// range is shown when the clock reaches k / rate seconds, so a slow file
// costs frames, never the rate; a missing file is skipped with a message.
// Its menu, the console review of a sequence, and the `lecture` command.
//
// Invariants: the range goes from i1 to i2 by `pas`, whose sign goes from
// i1 to i2; `montrees` holds the numbers shown by the last playback, in
// order, `nb_montrees` of them (at most NB_MONTREES).
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>
#include <GL/glext.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/message.h"
#include "display/display.h"
#include "image/image.h"
#include "interp/interp.h"
#include "startup/startup.h"
#include "tools/interne.h"
#include "tools/tools.h"

namespace {
constexpr int MODE = 127;
constexpr int M_ABSENTE = 133, M_SANS_FENETRE = 95;  // env 1
constexpr int A_ECRIRE = 33, A_TAILLE = 59, A_FILM = 70, A_AFFICHE = 113;
constexpr int B_AFF = 8, B_CADENCE = 106, B_LECTURE = 127;
constexpr int NB_MONTREES = 100000;

struct Lecture {
  std::string racine = "image.png";
  int i1 = 1, i2 = 1, pas = 1;
  int cadence = 25;
  std::int64_t depart = 0;
  long dernier = -1;  // index in the range of the last frame handled
  bool en_cours = false;
  unsigned char* rvb = nullptr;  // the frame as GL takes it
  std::size_t rvb_taille = 0;
};
Lecture lec;
int montrees[NB_MONTREES];
int nb_montrees = 0;

void dit(const char* t) {
  std::fputs(t, stdout);
  std::fflush(stdout);
}

bool existe(const std::string& c) {
  struct stat s;
  return stat(c.c_str(), &s) == 0 && S_ISREG(s.st_mode);
}

// Draws image block b at the window's bottom left. 0, or -1.
int montre(const mot* b) {
  const int w = ima_l(b), h = ima_h(b);
  std::size_t n = static_cast<std::size_t>(w) * h * 3;
  if (n > lec.rvb_taille) {
    auto* q = static_cast<unsigned char*>(tas::alloue(n));
    if (!q) {
      std::printf("%d: ", MODE);
      message(0, 28);
      return -1;
    }
    if (lec.rvb) tas::libere(lec.rvb);
    lec.rvb = q, lec.rvb_taille = n;
  }
  for (int y = 0; y < h; ++y) {
    const octet* r = ima_rouge(b, y);
    unsigned char* d = lec.rvb + 3 * static_cast<std::size_t>(w) * y;
    for (int x = 0; x < w; ++x) {
      d[3 * x] = r[x];
      d[3 * x + 1] = r[w + x];
      d[3 * x + 2] = r[2 * w + x];
    }
  }
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelZoom(1, 1);
  glDisable(GL_DEPTH_TEST);
  glWindowPos2i(0, 0);
  glDrawPixels(w, h, GL_RGB, GL_UNSIGNED_BYTE, lec.rvb);
  glFlush();
  return 0;
}

// Frame number k of the sequence read and shown; a missing one is told.
void image(long k) {
  std::string c = film_image(lec.racine, k);
  if (!existe(c)) {
    std::printf("%s: ", c.c_str());
    message(1, M_ABSENTE);
    return;
  }
  mot* b = ima_lit_fichier(c);
  if (!b) return;
  if (fen.fenetre > 0 && montre(b) == 0 && nb_montrees < NB_MONTREES) montrees[nb_montrees++] = static_cast<int>(k);
  bloc_libere(b);
}

long nb_range() { return std::labs(static_cast<long>(lec.i2) - lec.i1) / std::labs(lec.pas) + 1; }

void fin() {
  lec.en_cours = false;
  if (fen.mode_interactif == MODE || fen.mode_interactif == -MODE) {
    fen.mode_interactif = 0;
    entre_mode(0);
  }
}

int pas() {
  if (!lec.en_cours) return 0;
  // The clock starts at the first frame, not at the command's line.
  if (lec.dernier < 0) lec.depart = ticks_ms();
  long k = static_cast<long>((ticks_ms() - lec.depart) * lec.cadence / 1000);
  long n = nb_range();
  if (k >= n) {
    // The last frame is always shown, however late.
    if (lec.dernier < n - 1) {
      lec.dernier = n - 1;
      image(lec.i1 + (n - 1) * lec.pas);
      return 0;
    }
    fin();
    return -1;
  }
  if (k > lec.dernier) {
    lec.dernier = k;
    image(lec.i1 + k * lec.pas);
  }
  return 0;
}

void sortie() {
  lec.en_cours = false;
  entre_mode(0);
}

void demarre() {
  lec.pas = film_pas(lec.i1, lec.i2, lec.pas == 0 ? 1 : lec.pas);
  lec.depart = ticks_ms();
  lec.dernier = -1;
  nb_montrees = 0;
  lec.en_cours = true;
}

bool lit_ligne(char* l, int n) {
  bool reprise = false;
  return console_lit(l, n, &reprise) >= 0;
}

void choix(int v) {
  char l[256];
  switch (v) {
    case 1:
      dit("clavier\n");
      sortie();
      fen.mode_interactif = 0;
      break;
    case 2: {
      dit("nombre d'images par seconde=");
      int n = 0;
      if (lit_ligne(l, sizeof l) && std::sscanf(l, "%d", &n) == 1 && n >= 1 && n <= 1000) lec.cadence = n;
      break;
    }
    case 3: {
      dit("go = ");
      if (!lit_ligne(l, sizeof l)) break;
      dit("Im1,Im2 = ");
      int a = 0, b = 0;
      if (lit_ligne(l, sizeof l) && std::sscanf(l, "%d,%d", &a, &b) == 2) lec.i1 = a, lec.i2 = b;
      demarre();
      break;
    }
    case 4: {
      static const char* invites[] = {"xo,yo,zo = ", "xf,yf,zf = ", "foc = ", "roul = "};
      static const char* lignes[] = {"oeil(%f, %f, %f)", "vise(%f, %f, %f)", "foc(%f)", "roul(%f)"};
      for (int k = 0; k < 4; ++k) {
        dit(invites[k]);
        float x[3];
        if (!lit_ligne(l, sizeof l)) break;
        int n = k < 2 ? std::sscanf(l, "%f,%f,%f", &x[0], &x[1], &x[2]) : std::sscanf(l, "%f", &x[0]);
        if (n != (k < 2 ? 3 : 1)) continue;
        char t[128];
        std::snprintf(t, sizeof t, lignes[k], static_cast<double>(x[0]), static_cast<double>(x[1]),
                      static_cast<double>(x[2]));
        outils::lance_ligne(t);
      }
      break;
    }
    case 5: dit("pers\n"); outils::lance_ligne("pers"); break;
    case 6: dit("ortho\n"); outils::lance_ligne("ortho"); break;
    case 7: dit("automatique\n"); demarre(); break;
    case 8: {
      dit("gare = ");
      char r[200];
      if (lit_ligne(l, sizeof l) && std::sscanf(l, "%199s", r) == 1) lec.racine = r;
      break;
    }
    default: break;
  }
}

constexpr EntreeMode entrees[] = {{"clavier", 1}, {"vitesse", 2}, {"go", 3},          {"oeil", 4},
                                  {"pers", 5},    {"ortho", 6},   {"automatique", 7}, {"gare", 8}};

// The review at the console: each image shown, a line read.
int revue() {
  long n = nb_range();
  long k = 0;
  char l[64];
  while (k >= 0 && k < n) {
    int num = static_cast<int>(lec.i1 + k * lec.pas);
    std::printf("image: %d = (h: help) ", num);
    std::fflush(stdout);
    image(num);
    if (!lit_ligne(l, sizeof l)) break;
    char* t = l;
    while (*t == ' ') ++t;
    if (*t == 'h') {
      dit("RC: suite, -: precedent, num: numero, 0:fin\n");
    } else if (*t == '-') {
      k = std::max(0L, k - 1);
    } else if (*t == 0 || *t == '\n') {
      ++k;
    } else {
      char* e;
      long v = std::strtol(t, &e, 10);
      if (e == t) continue;
      if (v == 0) break;
      long j = (v - lec.i1) / lec.pas;
      if (j >= 0 && j < n) k = j;
    }
  }
  return 0;
}

// The value of a phrase element: a name and up to four numbers.
bool lit_valeur(const mot* v, std::string* nom, float* x, int* nx) {
  *nx = 0;
  if (!v) return true;
  if (v[0] == BLOC_REEL || v[0] == BLOC_ENTIER) return bloc_nombres(v, x, 4) == 1 && (*nx = 1);
  if (v[0] < 4) return false;
  if (v[1] == BLOC_CHAINE) {
    *nom = reinterpret_cast<const char*>(v + 4);
    return true;
  }
  if (v[1] == BLOC_REEL || v[1] == BLOC_ENTIER) {
    *nx = bloc_nombres(v, x, 4);
    return v[0] - 4 <= 4;
  }
  if (v[1] != BLOC_LISTE) return false;
  for (const mot *c = v + 4, *f = v + v[0]; c < f; c += c[0]) {
    if (c[0] < 4) return false;
    if (c[1] == BLOC_CHAINE && nom->empty()) {
      *nom = reinterpret_cast<const char*>(c + 4);
    } else if (c[1] == BLOC_REEL || c[1] == BLOC_ENTIER) {
      for (mot i = 4; i < c[0]; ++i) {
        if (*nx >= 4) return false;
        x[(*nx)++] = c[1] == BLOC_REEL ? lit_reel(c + i) : static_cast<float>(c[i]);
      }
    } else {
      return false;
    }
  }
  return true;
}

int refuse(int env, int ord) {
  mot_imprime(env, ord);
  message(0, MES_VALEUR);
  return ECHEC;
}

bool entier(float x) { return x > -1e7f && x < 1e7f && x == static_cast<float>(static_cast<int>(x)); }

int lecture_commande(mot* bloc, mot* valeur, const mot* limite) {
  if (valeur) return COMMANDE_SUITE;
  mot* e = bloc + 4;
  std::string racine, film, liste;
  float x[4];
  int nx = 0;
  if (!lit_valeur(e[0] > 3 ? e + 3 : nullptr, &racine, x, &nx)) return refuse(1, B_LECTURE);
  for (int k = 0; k < nx; ++k)
    if (!entier(x[k])) return refuse(1, B_LECTURE);
  bool avec_film = false, jouer = false, voir = false;
  int w = 0, h = 0, cadence = lec.cadence;
  for (mot k = 1, *c = e + e[0]; k < bloc[2]; ++k, c += c[0]) {
    const mot* v = c[0] > 3 ? c + 3 : nullptr;
    int env = c[1], ord = c[2];
    float y[2];
    if (env == 0 && ord == A_FILM) {
      avec_film = true;
      if (v) {
        const char* t = outils::chaine_de(v);
        if (!t) return refuse(env, ord);
        film = t;
      }
    } else if (env == 0 && ord == A_ECRIRE) {
      const char* t = outils::chaine_de(v);
      if (!t || !*t) return refuse(env, ord);
      liste = t;
    } else if (env == 0 && ord == A_TAILLE) {
      if (bloc_nombres(v, y, 2) != 2 || !entier(y[0]) || !entier(y[1]) || y[0] < 2 || y[1] < 2 ||
          y[0] > 8192 || y[1] > 8192)
        return refuse(env, ord);
      w = static_cast<int>(y[0]), h = static_cast<int>(y[1]);
    } else if (env == 0 && ord == A_AFFICHE) {
      voir = true;
    } else if (env == 1 && ord == B_AFF) {
      jouer = true;
    } else if (env == 1 && ord == B_CADENCE) {
      if (bloc_nombres(v, y, 1) != 1 || !entier(y[0]) || y[0] < 1 || y[0] > 1000) return refuse(env, ord);
      cadence = static_cast<int>(y[0]);
    } else {
      return COMMANDE_SUITE;
    }
  }
  // Alone: the numbers the last playback showed, or 0 (and the playback
  // stops) for lecture(0).
  if (bloc[2] == 1 && racine.empty() && nx <= 1) {
    if (nx == 1) {
      if (x[0] != 0) return refuse(1, B_LECTURE);
      fin();
      return resultat_scalaire(bloc, limite, 0);
    }
    if (nb_montrees == 0) return resultat_scalaire(bloc, limite, 0);
    reel* r = resultat_reels(bloc, limite, nb_montrees);
    if (!r) return PILE_PLEINE;
    for (int k = 0; k < nb_montrees; ++k) r[k] = static_cast<float>(montrees[k]);
    return 0;
  }
  int i1 = nx > 0 ? static_cast<int>(x[0]) : 0, i2 = nx > 1 ? static_cast<int>(x[1]) : i1;
  int s = nx > 2 ? static_cast<int>(x[2]) : 1;
  if (nx > 2 && s == 0) return refuse(1, B_LECTURE);
  if (avec_film || jouer) {
    if (!avec_film) film.clear();
    int r = film_fabrique(racine, i1, i2, s, film.c_str(), w, h, jouer);
    return r < 0 ? ECHEC : resultat_scalaire(bloc, limite, 0);
  }
  if (racine.empty()) return refuse(1, B_LECTURE);
  if (!liste.empty()) {
    int n = film_liste(racine, i1, i2, s, liste.c_str());
    return n < 0 ? ECHEC : resultat_scalaire(bloc, limite, static_cast<float>(n));
  }
  if (nx < 2 || i1 < 0 || i2 < 0) return refuse(1, B_LECTURE);
  lec.racine = racine;
  lec.i1 = i1, lec.i2 = i2, lec.pas = s;
  lec.cadence = cadence;
  if (voir) {
    lec.pas = film_pas(i1, i2, s);
    revue();
    return resultat_scalaire(bloc, limite, 0);
  }
  if (fen.fenetre < 1) {
    message(1, M_SANS_FENETRE);
    return ECHEC;
  }
  entree_outil_2d();
  entre_mode(MODE);
  demarre();
  fen.mode_interactif = MODE;
  return resultat_scalaire(bloc, limite, static_cast<float>(nb_range()));
}
}  // namespace

int film_montrees(const int** nums) {
  *nums = montrees;
  return nb_montrees;
}

void film_enregistre() {
  Outil o;
  o.pas = pas;
  o.sortie = sortie;
  o.projection = entree_outil_2d;
  outil_enregistre(MODE, o);
  menu_mode_def(MODE, entrees, choix);
  commande_enregistre(1, B_LECTURE, lecture_commande);
}
