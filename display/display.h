// The window: one GLUT window whose idle callback runs all the language,
// the keyboard buffer that lets a running tool receive typed commands, the
// mouse and its speed, the console read without blocking while the window
// lives, the GL helpers, and the window's pixels read back into the working
// image.
//
// `mode_interactif` routes the events: 0 is the shell, any other value the
// keyword ordinal of the tool that owns them (16, 74, 85, 127, 156, 161),
// negative the same tool paused. The keyboard buffer holds at most 128
// characters and a terminator; outside capture it holds the last key alone,
// within capture the mark ("<" or "!") at byte 0 and the line in progress.
#pragma once
#include <cstdint>

#include "core/bloc.h"

constexpr int CLAVIER_MAX = 128;
constexpr int NB_TOUCHES = 100;
constexpr int NB_MENUS = 11;

struct Fenetre {
  int fenetre = -1;            // GLUT identifier; -1 before the first opening
  int dimx = 0, dimy = 0;      // the displayed size
  int ima_x = 0, ima_y = 0;    // the size the images use
  int mode_interactif = 0;
  char clavier[CLAVIER_MAX + 2] = {};
  int clavier_i = 0;
  bool clavier_capture = false;
  bool echap = true;           // escape leaves a tool (the shell's escape is Escape)
  bool curseur = true;
  // Mouse: last position, last button (-1 none), press position.
  int souris_x = 0, souris_y = 0, souris_z = 0;
  int bouton = -1, appuye = 0;
  int clic_x = 0, clic_y = 0, clic_z = 0;
  // Positions of the speed: [0] the newest, [2] the oldest.
  int prec_x[3] = {}, prec_y[3] = {}, prec_z[3] = {};
  float vitesse[3] = {}, accel[3] = {};
  long frequence = 100;        // unit of the mouse clock, per second
  std::int64_t horloge_depart = 0;
  int menus[NB_MENUS] = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
  // The two root menus made at each opening: the "exec" list's and the
  // "menu" list's; -1 when none.
  int racines[2] = {-1, -1};
  long images = 0;             // idle steps run since the opening
  bool glut_pret = false;
};
extern Fenetre fen;

// A tool that owns the events in its mode. Any member may be null: a null
// step does nothing, a null exit makes escape fall back to the shell.
struct Outil {
  int (*pas)() = nullptr;  // one frame; below 0 makes the tool leave its mode
  void (*sortie)() = nullptr;
  void (*souris)(int bouton, int etat, int x, int y) = nullptr;
  void (*mouvement)(int x, int y) = nullptr;
  void (*passif)(int x, int y) = nullptr;
  void (*affiche)() = nullptr;
  void (*projection)() = nullptr;  // after a reshape, for the 2D tools
};
void outil_enregistre(int mode, const Outil& o);
const Outil* outil(int mode);

// Called once by the program's entry: offers the window's road to the
// start-up.
void fenetre_enregistre();
// Opens the window (or destroys and opens it again) and, the first time,
// enters the event loop. Returns only when no window could be opened, or
// when the window was closed from outside: the console shell goes on.
void fenetre_ouvrir();
// Destroys the window and its menus and makes it again, inside the loop.
void fenetre_rouvrir();
// Full screen, when `demande` or the start-up setting (win=ful) asks for it;
// the real-time loop calls it at its start. True when it was asked.
bool plein_ecran(bool demande);
// What a chosen entry of a root menu runs (the menus' own folder sets it):
// the root's index (0 "exec", 1 "menu") and the entry's value.
extern void (*menu_choisi)(int racine, int valeur);

// One turn of the idle callback; true when it found something to do.
bool pas_inactif();

// ---- keyboard ---------------------------------------------------------------
void clavier_touche(unsigned char c);  // a character from the window
void clavier_vide();
// The end of a frame: runs a finished "!" line, looks a finished "<" line
// or a single key up in the key table.
bool commande_clavier();  // true when a line or a binding ran
// The language's reading: a key, the text of a finished "<" line, or empty.
// Returns the byte count written into dst (at most taille - 1).
int clavier_lire(char* dst, int taille);
// Binds a key name (at most 24 characters) to a function name; -1 when the
// table is full.
int touche_lie(const char* nom, const char* fonction);
void touches_vide();

// ---- mouse ------------------------------------------------------------------
void souris_bouton(int bouton, int etat, int x, int y);
void souris_mouvement(int x, int y);
void souris_passif(int x, int y);
void souris_vitesse();
// Ticks since the stored start scaled by `rate` / 1000; a non-zero `reset`
// stores the ticks and gives 0.
long horloge(int reset, long rate);
std::int64_t ticks_ms();

// ---- the window's size and its GL helpers -------------------------------------
// The reshape callback; a zero or negative size is refused with a warning.
void Reshape_Func(int w, int h);
void gl_avant();   // draw and read the front buffer
void gl_arriere(); // draw and read the back buffer
void gl_echange();
void gl_profondeur(bool oui);
void gl_sans_lumiere();
void fond_ecran(float r, float g, float b);
void entree_outil_2d();  // a 2D tool takes the window
void projection_2d();    // the 2D projection over the viewport
// Reads the window's pixels into the working image (object 0) and its RGBA
// buffer. 0, or -1 without a window.
int fenetre_lit_image();
// Draws the working image 0 into the window; -1 when sizes differ or no window.
int fenetre_montre_image();
// Rebuilds the working image at a new size; -1 (message 0:28) leaves the
// old one.
int image_ecran_taille(int w, int h);

// ---- the console while the window lives ------------------------------------
// One turn of the console: at a terminal the line editor reads the bytes
// that wait, and a finished line runs as one call of the shell; otherwise a
// whole line, when one waits, runs the same way. True when a line ran.
bool console_pas();
void console_fin();  // gives the terminal back to the console's own mode

// The command aff and the eye's commands; registered at start-up, since
// they draw into the working image with or without a window.
void aff_enregistre();

// Language handlers; registered when the window opens.
void commandes_fenetre_enregistre();
