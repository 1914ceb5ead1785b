// Interactive tools: the pop-up menus of the modes with their "exec" and
// "menu" submenus, the function menus, the on-screen command buttons and
// the `puls` table behind them, the menu files, and the text slots that
// label a scene. Everything here runs commands written in the language,
// through the shell's line runner, so that a performer needs no console.
//
// The window's folder owns the GLUT ids (fen.menus for the 11 mode slots,
// fen.racines for the "exec" and "menu" submenus) and the root callback
// pointer `menu_choisi`; this folder fills them. The real-time loop reaches
// what it needs here through its own hook table, filled by
// outils_enregistre().
#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "core/bloc.h"

// Called once by the program's entry: sets the root menus' callback and
// registers the language's `puls` (a95) and `menu` (b74) phrases.
void outils_enregistre();

// ---- mode menus --------------------------------------------------------------
constexpr int NB_FONC_MENUS = 21;  // function menus at most
constexpr int LONG_TITRE = 79;     // characters of a slot's or menu's title

// An entry of a mode's own menu, after "exec" and "menu": its text and the
// value its choice hands to the mode's owner. A non-null `sous` makes it a
// submenu of those entries instead (one level).
struct EntreeMode {
  const char* texte;
  int valeur;
  std::span<const EntreeMode> sous = {};
};
// The folder that owns a mode gives its own entries and what choosing one
// does; the shell's "clavier" is this folder's own.
void menu_mode_def(int mode, std::span<const EntreeMode> entrees, void (*choix)(int valeur));
// Entering a mode: the "exec" and "menu" submenus are destroyed and made
// again from the two chains, the function menus with them, the mode's slot
// menu takes them, and it is attached to the right button when `attache`.
// Without a window it does nothing. 0, or -1 for a mode with no slot.
int entre_mode_menu(int mode, bool attache);
inline int entre_mode(int mode) { return entre_mode_menu(mode, true); }
// The slot of a mode (0 to 10), -1 when the mode has none.
int slot_mode(int mode);
// A slot's title, at most 79 characters kept.
void menu_titre(int mode, std::string_view titre);
const char* menu_titre_de(int mode);

// The chains: packed string Blocs ended by a zero word. `exec` holds
// command lines, "menu" function names. Adding returns the entry's number
// from 1, or -1 (message 0:2) for a text past 127 characters.
int exec_ajoute(std::string_view ligne);
int menu_ajoute(std::string_view fonction);
void exec_vide();
void menu_vide();
std::span<const mot> chaine_exec();
std::span<const mot> chaine_menu();

// What a chosen entry of a root menu runs: racine 0 entry n runs the n-th
// text of the `exec` chain; racine 1 value k * 1000 + n runs line n of
// function menu k (from 1). An entry past the chain does nothing. The
// result of the line run, or 0 when nothing ran.
int menu_choix(int racine, int valeur);
// Value of a function menu's entry for its GLUT callback.
constexpr int VALEUR_FONC(int k, int n) { return k * 1000 + n; }

// Function menus as last built: their count, and title and entries of one.
int nb_menus_fonction();
const char* menu_fonction_titre(int k);            // from 1
int menu_fonction_nb(int k);
const char* menu_fonction_entree(int k, int n);    // label, from 1
// Adds a menu of entries that each run a line; the title at most 79
// characters. Its number from 1, or -1 after message 1:35 (the 22nd).
int menu_fonction_ajoute(std::string_view titre, std::span<const std::string_view> etiquettes,
                         std::span<const std::string_view> lignes);

// Record of the GLUT menus this folder made, for the tests and the
// overlay: entry count and the text of entry n (from 1) of menu id; null
// when unknown.
int menu_nb_entrees(int id);
const char* menu_entree(int id, int n);

// ---- command buttons and puls ----------------------------------------------
constexpr int NB_PULS = 100;
constexpr int LONG_NOM_PULS = 23;
// One command button: 27 words. Word 0 is 0 for a free entry.
//   words 0-20  the command text, NUL-ended (83 characters at most)
//   words 21-22 x, y in window pixels from the window's centre, y down
//   word 23     the text's length n (the rectangle is x - 6n .. x + 6n)
//   words 24-26 its own colour, r, g, b from 0 to 1
struct Bouton {
  char texte[84];
  float x, y;
  std::int32_t n;
  float coul[3];
};
static_assert(sizeof(Bouton) == 27 * 4);
// One `puls` entry: 60 bytes, found by name; entry i owns button i.
//   name (23 characters), x and y with their start values, the step, the
//   axis (the ordinal of b16, b89, b90, b91, b128 or b136; 0 none), its
//   amount, the phase the step advances, and the flags (PULS_MINUTE: the
//   step is per second of the tick counter, not per frame).
struct Puls {
  char nom[24];
  float x, x0, y, y0;
  float pas;
  std::int32_t axe;
  float quantite;
  float phase;
  std::int32_t drapeaux;
};
static_assert(sizeof(Puls) == 60);
constexpr std::int32_t PULS_MINUTE = 1;
extern Bouton boutons[NB_PULS];
extern Puls puls_table[NB_PULS];

// Creates or finds the entry of that name and places its button. Its index,
// or -1 after "TROP DE PULS" (or message 0:2 for a name past 23 characters).
int puls_cree(std::string_view nom, float x, float y, float pas);
void puls_vide();
// The language's phrase, as the dispatch hands it (also reached from the
// running interaction's option a95).
int puls_commande(mot* bloc, mot* valeur, const mot* limite);
// Frame step of the real-time loop: every button drawn in window
// coordinates with depth, lighting and fog off (and back as they were);
// under the pointer it is red and its text runs. Buttons fired.
int dessine_puls();

// ---- the overlay panel and the text slots -------------------------------------
// The "exec" entries as a column of buttons at the window's left, run by a
// click on them (frame step of the overlay).
void affiche_menu();
constexpr int NB_TEXTES = 100;
// Text slot: 8 words. Word 0 holds the text's string Bloc (arena offset, 0
// for a free slot); then x, y, z in world units, r, g, b, and a volume
// number (0: the world's frame) kept for the loop.
struct Texte {
  mot texte;
  float x, y, z;
  float coul[3];
  std::int32_t vol;
};
static_assert(sizeof(Texte) == 8 * 4);
extern Texte textes[NB_TEXTES];
// A label at a world position; its slot, or -1 (message 0:2) when full.
int texte_ajoute(std::string_view t, float x, float y, float z);
void textes_vide();
// Draws the labels with the bitmap font when the first slot is set; the
// count drawn.
int dessine_textes();

// ---- menu files -----------------------------------------------------------------
// Reads the menu file `nom` (the name as given, then with ".men"; searched
// as function files are). Lines, one keyword letter each, fields split at
// blanks, a field in double quotes may hold blanks:
//   n <count>              entries the file promises
//   t <title>              title of the file's menu
//   m <text> <function>    an entry that runs function()
//   e <command line>       a line added to the `exec` chain
//   p <x> <y> <text>       a command button
//   l <x> <y> <z> <text>   a label
//   # ...                  a comment
// 0, or -1 when the file cannot be read or names an unknown function (the
// interaction then ends).
int lit_menus(const char* nom);

// ---- the brush (mode 156) -----------------------------------------------------
// 20 brushes numbered from 1; `pinceau_courant` 0 means none, and a setting
// tried then prints "pinceau OFF". The masks are made on the first dab and
// again when the radius, shape or angle changes.
constexpr int NB_PINCEAUX = 20;
constexpr int FORME_ROND = 50, FORME_CARRE = 53, FORME_LIGNE = 22, FORME_BITMAP = 147;
constexpr int MODE_DRAW = 82, MODE_LISSER = 145;
constexpr float RAYON_MAX = 512;  // a box of 1024 x 1024 pixels at most
// One brush: 18 words. The four arrays are arena offsets (0 none):
//   masque   w x h x 4 bytes, the weight of each pixel in byte 3
//   couleur  w x h x 4 bytes, the work copy of a smoothing
//   fond     w x h x 4 bytes, the box read from the window
//   pts      taille_max points of a stroke, two words each, pointer coordinates
// Invariants: w = h = the box of the masks as last made (0 before the first
// dab); 1 <= rayon <= RAYON_MAX; transp and alea in [0, 1]; nb_pts <= taille_max.
struct Pinceau {
  std::int32_t forme, mode, w, h;
  float rayon, transp, alea;
  std::int32_t nb_pts;
  mot pts;
  float angle;
  mot masque, couleur, fond;
  float coul[3];
  std::int32_t taille_max;
  std::int32_t fonc;  // 1 when the function named in fonc_noms runs at each dab
};
constexpr int LONG_FONC = 63;
static_assert(sizeof(Pinceau) == 18 * 4);
extern Pinceau pinceaux[NB_PINCEAUX];
extern char fonc_noms[NB_PINCEAUX][LONG_FONC + 1];
extern int pinceau_courant;
// What the mouse changes now: 0 paints, 17 / 155 the pickers, 68, 116, 59,
// 37, 57 a slider, 22 / 147 a stroke's capture.
extern int brosse_commande;
// The current brush, or null after "pinceau OFF".
Pinceau* pinceau_actif();
// Sets a brush's radius: -1 after a message when outside [1, RAYON_MAX].
int pinceau_rayon(Pinceau& p, float r);
// Makes the masks for the brush's radius, shape and angle (nothing when
// they already fit). 0, or -1 after "%d: " and message 0:28.
int pinceau_masques(Pinceau& p);
// The dab itself over a box of w x h RGBA pixels (w, h at most the masks'):
// draw mixes the colour by 1 - transp (times a draw in [alea, 1]), lisser
// puts the mean of the 3 x 3 neighbours inside the box.
void touche_boite(Pinceau& p, unsigned char* boite, int w, int h);
// A dab of the current brush centred at the pointer's (x, y) (y down) in the
// window. 0, or -1 (no brush, no window, no memory, a failing function).
int touche(int x, int y);
// A stroke: the point appended; at `taille_max` points "fin saisie" ends the
// capture and the stroke is played as dabs (also by brosse_trait_fin).
int brosse_trait_point(int x, int y);
int brosse_trait_fin(bool dire = true);
// The undo image: the whole window kept and drawn back. 0 or -1.
int brosse_sauve();
int brosse_restitue();
// Entry n (1 to 20) of the tool's menu.
void brosse_menu(int entree);
// Enters mode 156 (the window must be open): 0 or -1.
int brosse_entre();
// The fonts of the text mode: the window system's names, in order.
constexpr const char* POLICES[] = {"9_BY_15",  "8_BY_13",      "ROMAN_10",     "ROMAN_24",
                                   "HELVETICA_10", "HELVETICA_12", "HELVETICA_18", "STROKE_ROMAN"};
void brosse_enregistre();

// ---- image sequences and movies (mode 127) -----------------------------------
// `lecture` (b127), for the language:
//   lecture("f.png", i1, i2 [, pas]) cadence(n)    plays f0001.png... in the window
//   lecture("f.png", i1, i2) affiche               reviews them at the console
//   lecture("f.png", i1, i2) film("nom") taille(w, h) [aff]
//                                                  makes the movie (and plays it)
//   lecture film("nom") aff                        only plays it
//   lecture("f.png", i1, i2) ecrire("liste")       the list file
//   lecture                                        the numbers the last playback showed
//   lecture(0)                                     stops the playback
// Frame k of a root: "f.png" gives "f0007.png"; a root with no extension
// takes the number at its end.
std::string film_image(std::string_view racine, long k);
// The step with the sign that goes from i1 to i2.
int film_pas(int i1, int i2, int s);
// Runs "makemovie -o nom [-s w,h] frames..." (one argument each, no shell):
// i1 = i2, or a 0 among them, fails with -1 and runs nothing; ffmpeg
// missing is told with its package. With `jouer` the movie plays after (a
// name alone only plays). 0 or -1.
int film_fabrique(std::string_view racine, int i1, int i2, int s, const char* nom, int w, int h, bool jouer);
// Writes the names of the range into `fichier`, one a line, printing each
// with its size; the count, or -1.
int film_liste(std::string_view racine, int i1, int i2, int s, const char* fichier);
// The numbers the last playback showed, in order.
int film_montrees(const int** nums);
void film_enregistre();
