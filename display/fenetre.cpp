// The window's opening and its callbacks. All language runs from the idle
// callback; the other callbacks only store events or hand them to the tool
// of the mode.
#include <GL/freeglut.h>
#include <GL/glx.h>
#include <X11/Xlib.h>
#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "core/charge.h"
#include "core/message.h"
#include "display/display.h"
#include "display/moteurs.h"
#include "image/image.h"
#include "startup/startup.h"

Fenetre fen;

namespace {
constexpr int M_SANS_ECRAN = 2, M_FERMEE = 3;  // messages of env 1
constexpr int B_GRAPHIQUE = 146;

Outil outils[200];
Display* dpy = nullptr;

void Display_Func() {
  const Outil* o = outil(fen.mode_interactif);
  if (o && o->affiche) o->affiche();
}

void Visibility_Func(int) {}

void Keyboard_Func(unsigned char c, int x, int y) {
  (void)x;
  (void)y;
  if (c == 27) {
    if (!fen.echap) return;
    int m = fen.mode_interactif < 0 ? -fen.mode_interactif : fen.mode_interactif;
    const Outil* o = outil(m);
    if (o && o->sortie) o->sortie();
    fen.mode_interactif = 0;
    return;
  }
  clavier_touche(c);
}

void Mouse_Func(int b, int e, int x, int y) { souris_bouton(b, e == GLUT_UP ? 1 : 0, x, y); }

// When nothing was to do, wait a little for the console or the window, so
// that an idle shell does not spin a whole core.
void attend_evenement() {
  if (dpy && XEventsQueued(dpy, QueuedAlready) > 0) return;
  pollfd f[2] = {{STDIN_FILENO, POLLIN, 0}, {dpy ? ConnectionNumber(dpy) : -1, POLLIN, 0}};
  poll(f, 2, 5);
}

void Idle_Func() {
  if (!pas_inactif()) attend_evenement();
}

void Close_Func() {
  // freeglut destroys a window at its next turn: the window a re-opening
  // replaced closes after the new one is made, and must not forget it.
  if (glutGetWindow() != fen.fenetre) return;
  fen.fenetre = -1;
  fen.mode_interactif = 0;
}

void choix_exec(int v) {
  if (menu_choisi) menu_choisi(0, v);
}
void choix_menu(int v) {
  if (menu_choisi) menu_choisi(1, v);
}

void detruit_menus() {
  for (int& m : fen.menus)
    if (m > 0) glutDestroyMenu(m);
  for (int& m : fen.racines)
    if (m > 0) glutDestroyMenu(m);
  for (int& m : fen.menus) m = -1;
  for (int& m : fen.racines) m = -1;
}

void cree() {
  fen.mode_interactif = 0;
  if (fen.fenetre > 0) {
    detruit_menus();
    glutDestroyWindow(fen.fenetre);
    fen.fenetre = -1;
  }
  glutInitWindowSize(fen.dimx, fen.dimy);
  glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH);
  glutInitWindowSize(fen.dimx, fen.dimy);
  glutInitWindowPosition(0, 0);
  fen.fenetre = glutCreateWindow("orvane");
  glutDisplayFunc(Display_Func);
  glutReshapeFunc(Reshape_Func);
  glutKeyboardFunc(Keyboard_Func);
  glutMouseFunc(Mouse_Func);
  glutMotionFunc(souris_mouvement);
  glutPassiveMotionFunc(souris_passif);
  glutIdleFunc(Idle_Func);
  glutVisibilityFunc(Visibility_Func);
  glutCloseFunc(Close_Func);
  glutSetCursor(fen.curseur ? GLUT_CURSOR_INHERIT : GLUT_CURSOR_NONE);
  // The entries come with the menus' commands; a new window starts with
  // the two roots empty.
  fen.racines[0] = glutCreateMenu(choix_exec);
  fen.racines[1] = glutCreateMenu(choix_menu);
  fen.images = 0;
  gl_avant();
  dpy = glXGetCurrentDisplay();
  if (apres_ouverture) apres_ouverture();
}

void entree() { fenetre_ouvrir(); }

// An error of the window system (a read past the screen's edge, a size it
// refuses) is reported and the program goes on; Xlib's own handler would
// end the process.
int erreur_x(Display* d, XErrorEvent* e) {
  char texte[128] = "";
  XGetErrorText(d, e->error_code, texte, sizeof texte);
  std::printf("X: %s (%d)\n", texte, e->request_code);
  std::fflush(stdout);
  return 0;
}
}  // namespace

void outil_enregistre(int mode, const Outil& o) {
  if (mode > 0 && mode < 200) outils[mode] = o;
}

const Outil* outil(int mode) {
  if (mode < 0) mode = -mode;
  return mode > 0 && mode < 200 ? &outils[mode] : nullptr;
}

void (*menu_choisi)(int, int) = nullptr;
void (*apres_ouverture)() = nullptr;

int menu_racine_cree(int racine) { return glutCreateMenu(racine ? choix_menu : choix_exec); }

bool plein_ecran(bool demande) {
  if (!(demande || ecran.plein) || fen.fenetre < 1) return false;
  glutSetWindow(fen.fenetre);
  glutFullScreen();
  return true;
}

void fenetre_enregistre() {
  entree_fenetre = entree;
  // aff, the eye and the renderer's keys work without a window too.
  aff_enregistre();
  rendu_enregistre();
}

void fenetre_rouvrir() {
  if (!fen.glut_pret) {
    fenetre_ouvrir();
    return;
  }
  cree();
}

void fenetre_ouvrir() {
  if (fen.glut_pret) {
    cree();
    return;
  }
  // Without a display, or without the window's libraries, the program
  // stays a console shell; freeglut would end the process instead.
  bool bib = charge_bib(BIB_FENETRE);
  Display* d = bib ? XOpenDisplay(nullptr) : nullptr;
  if (!d) {
    if (bib) {
      const char* nom = std::getenv("DISPLAY");
      std::printf("%s: ", nom ? nom : "");
      message(1, M_SANS_ECRAN);
    }
    dem.graphique = false;
    int n = 0;
    if (mot_entree(1, B_GRAPHIQUE))
      if (reel* v = mot_valeur(1, B_GRAPHIQUE, &n); v && n > 0) v[0] = 0;
    return;
  }
  int argc = 1;
  char nom[] = "orvane";
  char* argv[] = {nom, nullptr};
  glutInit(&argc, argv);
  // Closed only now: a server left with no client resets, and would refuse
  // freeglut's connection for a moment.
  XCloseDisplay(d);
  XSetErrorHandler(erreur_x);
  glutSetOption(GLUT_ACTION_ON_WINDOW_CLOSE, GLUT_ACTION_GLUTMAINLOOP_RETURNS);
  fen.glut_pret = true;
  if (fen.dimx < 1 || fen.dimy < 1) {
    fen.dimx = ecran.largeur;
    fen.dimy = ecran.hauteur;
  }
  fen.ima_x = ecran.largeur;
  fen.ima_y = ecran.hauteur;
  fen.echap = dem.esc == 27;
  commandes_fenetre_enregistre();
  // The image commands read the working image 0 from the frame first, so a
  // save or copy of the window takes what is shown, and show what they wrote.
  ima_fenetre.avant_lecture = [] { fenetre_lit_image(); };
  ima_fenetre.apres_ecriture = [] { fenetre_montre_image(); };
  cree();
  glutMainLoop();
  // The window was closed from outside: the console goes on alone, and a
  // command may open the window again.
  console_fin();
  // freeglut has destroyed the menus with the window.
  for (int& m : fen.menus) m = -1;
  for (int& m : fen.racines) m = -1;
  fen.fenetre = -1;
  fen.glut_pret = false;
  ima_fenetre.avant_lecture = nullptr;
  ima_fenetre.apres_ecriture = nullptr;
  dpy = nullptr;
  fen.mode_interactif = 0;
  message(1, M_FERMEE);
}
