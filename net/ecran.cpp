// The training of a network on screen: `interaction res(n) nb(P, ...) ...`
// gives the window's events to mode 161. Each idle turn may run one pass
// of the stored `res` phrase at start pass `num_image` and draw the network
// on one pattern: the layers from the inputs (bottom) to the outputs (top),
// each neuron a square as light as its output, each weight a line from blue
// (the smallest weight at the start) to red (the largest). The menu of the
// right button starts, restarts and paces the training.
//
// State: `num_image` in [0, nb_images); 0 waits for the menu. `motif` in
// [1, pattern count]. The network is found again by its number at every
// step, so a network destroyed from the console ends the mode.
#include <GL/freeglut.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "anim/anim.h"
#include "core/message.h"
#include "display/display.h"
#include "interp/interp.h"
#include "net/interne.h"
#include "startup/startup.h"

namespace {
constexpr int MODE = 161;
constexpr int B_INTER = RB_INTERACTION;  // its state word: the screen runs
constexpr int M_SANS_FENETRE = 95;  // env 1
constexpr int M_INVITE = 48;        // env 0: the prompt of a line to run
constexpr Tirage TIRAGE_MENU = {-2, -10, 10, 0.1f};

struct Ecran {
  int numero = 0;  // the network's number
  OptionsRes opt;
  std::vector<float> depart;  // the start weights, as loaded
  float wmin = 0, wmax = 0;
  int nb_images = 1, num_image = 0, pas_a_pas = 0;
  long vitesse = 0, cpt_vitesse = 0;
  int motif = 1, fixe = 0;
  float cx = -1, cy = -1, zoom = 1;  // cx < 0: the window's centre
  int bouton = -1;
  int menu = -1;
  Objet* fonc[6] = {};  // the phrase's hooks: fonc_1 to fonc_3 run here
  Reseau r;  // kept, so that its arrays are reused from frame to frame
  Motifs m;
};
Ecran ec;

Objet* reseau() { return objet_trouve(B_RES, 0, ec.numero, nullptr); }

void etat_inter(int e) {
  if (nb_etats[1] > B_INTER) etats[1][B_INTER] = e;
}

void bornes(const std::vector<float>& w) {
  ec.wmin = ec.wmax = 0;
  if (w.empty()) return;
  auto [a, b] = std::minmax_element(w.begin(), w.end());
  ec.wmin = *a;
  ec.wmax = *b;
}

// The start weights back into the network.
void restaure() {
  Objet* o = reseau();
  if (!o || res_charge(o, &ec.r, Tirage{TIRAGE_AUCUN}, false) < 0) return;
  if (ec.r.w.size() != ec.depart.size()) return;
  ec.r.w = ec.depart;
  res_range(&ec.r);
}

void dessine() {
  if (fen.fenetre < 1) return;
  gl_arriere();
  glClearColor(0, 0, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  Objet* o = reseau();
  if (o && res_charge(o, &ec.r, Tirage{TIRAGE_AUCUN}, false) == 0) {
    Reseau& r = ec.r;
    const int nc = r.couches();
    if (nc >= 1 && res_motifs(o, RB_MOTIF, r.taille(0), &ec.m) == 0 && ec.m.nb > 0) {
      ec.motif = std::clamp(ec.motif, 1, ec.m.nb);
      res_avant(&r, ec.m.motif(ec.motif - 1));
    }
    const float W = static_cast<float>(fen.dimx), H = static_cast<float>(fen.dimy);
    const float cx = ec.cx < 0 ? W / 2 : ec.cx, cy = ec.cy < 0 ? H / 2 : ec.cy;
    auto px = [&](int k, int i) { return cx + ((i + 1.0f) / (r.taille(k) + 1.0f) - 0.5f) * W * ec.zoom; };
    auto py = [&](int k) { return cy + ((k + 0.5f) / nc - 0.5f) * H * ec.zoom; };
    const float e = ec.wmax - ec.wmin;
    glBegin(GL_LINES);
    for (int k = 1; k < nc; ++k) {
      const float* w = r.matrice(k);
      for (int j = 0; j < r.taille(k); ++j)
        for (int i = 0; i < r.taille(k - 1); ++i) {
          float t = e > 0 ? (w[j * r.taille(k - 1) + i] - ec.wmin) / e : 0.5f;
          t = std::clamp(t, 0.0f, 1.0f);
          glColor3f(t, 0.2f, 1 - t);
          glVertex2f(px(k - 1, i), py(k - 1));
          glVertex2f(px(k, j), py(k));
        }
    }
    glEnd();
    const float c = std::max(2.0f, std::min(W, H) * ec.zoom / 60);
    glBegin(GL_QUADS);
    for (int k = 0; k < nc; ++k)
      for (int i = 0; i < r.taille(k); ++i) {
        float s = r.sortie[r.debut[k] + i];
        s = s == s ? std::clamp(s, 0.0f, 1.0f) : 0;
        glColor3f(s, s, s);
        const float x = px(k, i), y = py(k);
        glVertex2f(x - c, y - c);
        glVertex2f(x + c, y - c);
        glVertex2f(x + c, y + c);
        glVertex2f(x - c, y + c);
      }
    glEnd();
  }
  // The frame goes to the front by a copy rather than a swap: with Mesa's
  // software drivers a swapped frame is not what the front buffer reads
  // back, and the language reads the window's picture from the front.
  glReadBuffer(GL_BACK);
  glDrawBuffer(GL_FRONT);
  glRasterPos2i(0, 0);
  glCopyPixels(0, 0, fen.dimx, fen.dimy, GL_COLOR);
  glFlush();
  gl_avant();
}

// One pass of the phrase at start pass `num_image`, then the drawing on the
// next pattern. False when the network is gone or the pass failed.
bool etape() {
  Objet* o = reseau();
  if (!o) return false;
  OptionsRes opt = ec.opt;
  opt.depart = ec.num_image;
  float t[3];
  if (res_apprend(o, opt, t) < 0) return false;
  dessine();
  if (ec.fixe) {
    ec.motif = ec.fixe;
  } else if (++ec.motif > std::max(1, ec.m.nb)) {
    ec.motif = 1;
  }
  return true;
}

void sortie();

// One idle event's training: a pass and a drawing when the pace allows.
void entraine() {
  // The space bar steps by hand.
  if (fen.clavier[0] == ' ' && !fen.clavier[1] && !fen.clavier_capture) {
    clavier_vide();
    if (ec.pas_a_pas >= 1) {
      std::printf("Pas %d\n", ec.pas_a_pas);
      std::fflush(stdout);
      ++ec.pas_a_pas;
    }
  }
  if (!reseau()) {
    sortie();
    fen.mode_interactif = 0;
    return;
  }
  if (ec.num_image >= ec.nb_images) ec.num_image = 0;
  if (ec.num_image == 0) return;
  if (ec.pas_a_pas == 0) {
    if (--ec.cpt_vitesse < 0) {
      ec.cpt_vitesse = ec.vitesse;
      if (!etape()) return;
      ++ec.num_image;
    }
  } else if (ec.pas_a_pas > ec.num_image) {
    ec.num_image = ec.pas_a_pas;
    etape();
  }
}

int pas() {
  // The hooks around the step: a failing fonc_1, or a hook that clears the
  // running state, leaves the mode.
  if (interaction_lance(ec.fonc[1]) < 0 || etat_ou(1, B_INTER, 1) == 0) {
    sortie();
    return -1;
  }
  interaction_lance(ec.fonc[2]);
  entraine();
  interaction_lance(ec.fonc[3]);
  return fen.mode_interactif == MODE ? 0 : -1;
}

int lit_entier(int* n) {
  char l[128];
  bool reprise = false;
  if (console_lit(l, sizeof l, &reprise) < 0) return -1;
  char* fin = nullptr;
  long v = std::strtol(l, &fin, 10);
  if (fin == l || v < -1000000 || v > 1000000) return -1;
  *n = static_cast<int>(v);
  return 0;
}

void demarre(const char* texte) {
  ec.pas_a_pas = 0;
  ec.num_image = 1;
  ec.motif = ec.fixe ? ec.fixe : 1;
  ec.cpt_vitesse = ec.vitesse;
  std::printf("%s\n", texte);
}

void choix(int v) {
  switch (v) {
    case 1:
      std::fputs("help: Help\nquitter: Retour a l'interpreteur\ninterp: Acces a l'interpreteur\n"
                 "centre: Centre l'image\ngo_init: Lance l'apprentissage initial\n"
                 "go_rand: Lance l'apprentissage aleatoire\npas a pas: Lance l'apprentissage pas a pas\n"
                 "vitesse: Lire la vitesse (entre 0 et 1)\n",
                 stdout);
      break;
    case 2:
      std::fputs("quitter\n", stdout);
      sortie();
      fen.mode_interactif = 0;
      break;
    case 3: {
      std::fputs("interpreteur\n", stdout);
      message(0, M_INVITE);
      std::fflush(stdout);
      char l[1024];
      bool reprise = false;
      if (console_lit(l, sizeof l, &reprise) >= 0) executer_texte(l);
      break;
    }
    case 4:
      ec.cx = ec.cy = -1;
      ec.zoom = 1;
      dessine();
      break;
    case 5:
      restaure();
      demarre("go_init");
      break;
    case 6:
      if (Objet* o = reseau(); o && res_charge(o, &ec.r, TIRAGE_MENU, true) == 0) {
        bornes(ec.r.w);
        res_range(&ec.r);
      }
      demarre("go_rand");
      break;
    case 7:
      restaure();
      ec.num_image = 1;
      std::fputs("pas a pas\n", stdout);
      ec.pas_a_pas = 1;
      break;
    case 8: {
      std::fputs("vitesse (1,25) = ", stdout);
      std::fflush(stdout);
      int n = 0;
      if (lit_entier(&n) == 0 && n >= 0) ec.vitesse = 5000L * n;
      ec.cpt_vitesse = ec.vitesse;
      break;
    }
    case 9: {
      Objet* o = reseau();
      int nb = o && res_motifs(o, RB_MOTIF, ec.r.couches() >= 1 ? ec.r.taille(0) : 0, &ec.m) == 0 ? ec.m.nb : 0;
      std::printf("numero [1, %d] (0: Tous) = ", nb);
      std::fflush(stdout);
      int n = 0;
      if (lit_entier(&n) == 0 && n >= 1 && n <= nb) {
        ec.fixe = ec.motif = n;
      } else {
        std::printf("[1, %d]\x07\n", nb);
        ec.fixe = 0;
      }
      break;
    }
    default: break;
  }
  std::fflush(stdout);
}

void souris(int b, int etat, int x, int y) {
  ec.bouton = etat == 0 ? b : -1;
  if (etat != 0) return;
  if (b == GLUT_MIDDLE_BUTTON) {
    ec.zoom = 4.9f * static_cast<float>(x) / static_cast<float>(std::max(1, fen.dimx)) + 0.1f;
  } else {
    ec.cx = static_cast<float>(x);
    ec.cy = static_cast<float>(fen.dimy - y);
  }
}

void mouvement(int x, int y) {
  if (ec.bouton < 0 || ec.bouton == GLUT_MIDDLE_BUTTON) return;
  ec.cx = static_cast<float>(x);
  ec.cy = static_cast<float>(fen.dimy - y);
}

void sortie() {
  if (ec.menu > 0 && fen.fenetre > 0) {
    glutSetWindow(fen.fenetre);
    glutDetachMenu(GLUT_RIGHT_BUTTON);
    glutDestroyMenu(ec.menu);
  }
  ec.menu = -1;
  ec.num_image = 0;
  etat_inter(0);
}

void enregistre() {
  static bool fait = false;
  if (fait) return;
  fait = true;
  Outil o;
  o.pas = pas;
  o.sortie = sortie;
  o.souris = souris;
  o.mouvement = mouvement;
  o.affiche = dessine;
  o.projection = entree_outil_2d;
  outil_enregistre(MODE, o);
}

void cree_menu() {
  constexpr const char* textes[] = {"help",    "quitter",   "interp",  "centre",      "go_init",
                                    "go_rand", "pas a pas", "vitesse", "numero motif"};
  ec.menu = glutCreateMenu(choix);
  for (int i = 0; i < 9; ++i) glutAddMenuEntry(textes[i], i + 1);
  glutAttachMenu(GLUT_RIGHT_BUTTON);
}
}  // namespace

int res_interaction(mot* bloc, mot* valeur, const mot* limite) {
  (void)limite;
  if (valeur || bloc[2] < 2) return COMMANDE_SUITE;
  const mot* e = bloc + 4;
  const mot* f = e + e[0];
  if (f[1] != 1 || f[2] != B_RES) return COMMANDE_SUITE;
  OptionsRes opt;
  std::vector<Objet*> nets;
  int r = res_phrase(bloc, 1, &opt, &nets);
  if (r > 0) return COMMANDE_SUITE;
  if (r < 0 || nets.empty()) return -1;
  Objet* fonc[6] = {};
  Objet* fin = nullptr;
  if (interaction_fonctions(bloc, fonc, &fin) < 0) return -1;
  if (fen.fenetre < 1) {
    message(1, M_SANS_FENETRE);
    return -1;
  }
  Objet* o = nets[0];
  Reseau& w = ec.r;
  if (res_charge(o, &w, opt.tirage, false) < 0) return -1;
  Motifs m;
  if (res_motifs(o, RB_MOTIF, w.taille(0), &m) < 0) return -1;
  // The drawn weights must be those kept: write back any drawn anew.
  if (res_range(&w) < 0) return -1;
  if (ec.menu > 0) sortie();
  enregistre();
  ec.numero = o->numero;
  ec.opt = opt;
  std::copy(fonc, fonc + 6, ec.fonc);
  etat_inter(1);
  ec.depart = w.w;
  bornes(w.w);
  ec.nb_images = opt.passes;
  ec.num_image = ec.pas_a_pas = 0;
  ec.vitesse = ec.cpt_vitesse = 0;
  ec.motif = 1;
  ec.fixe = 0;
  ec.cx = ec.cy = -1;
  ec.zoom = 1;
  entree_outil_2d();
  cree_menu();
  fen.mode_interactif = MODE;
  dessine();
  bloc[0] = 0;
  return 0;
}
