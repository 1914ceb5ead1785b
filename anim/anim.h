// The live scene: `interaction` (b85) turns volumes into working records
// and owns the window's idle event in mode 85, one frame of 32 ordered
// steps at a time, until Escape, a menu entry, a failing hook, the frame
// count or the clearing of b85's state ends it.
//
// The menus and the on-screen buttons live in tools/, above the window:
// they offer themselves here through `outils_inter`, whose members may be
// null (a null member does nothing).
#pragma once
#include <cstdint>

struct Objet;
using mot = std::int32_t;

struct OutilsInter {
  void (*dessine_puls)() = nullptr;     // frame step 23: the on-screen buttons
  void (*affiche_menu)() = nullptr;     // frame step 23: the menu overlay
  void (*entre_mode)(int mode) = nullptr;  // a mode is entered (85) or left (0)
  int (*lit_menus)(const char* nom) = nullptr;  // the menu file of b74
};
extern OutilsInter outils_inter;

// Called once by the program's entry: the command and the frame's tool.
void interaction_enregistre();

// ---- what tests and the benchmark drive directly ----------------------------
// Arguments of a start, as the phrase gives them.
struct ArgsInter {
  const int* vols = nullptr;  // null: every volume in table order
  int nb_vols = 0;
  Objet* fonc[6] = {};        // fonc_debut, fonc_1 .. fonc_5
  Objet* fonc_fin = nullptr;
  const char* nom_images = nullptr;
  int nb_images = 0, nb_premieres = 0, echap_permis = 1;
  int cadence = 25;
};
// The hook functions that a phrase names (fonc, fin) into their slots;
// -1 after a message. The network's screen reads them too.
int interaction_fonctions(const mot* bloc, Objet* fonc[6], Objet** fonc_fin);
// Runs a hook function (null: nothing); below 0 when it failed.
int interaction_lance(Objet* f);
// Starts an interaction: 0, or -1 after a message (nothing is left running).
int interaction_debut(const ArgsInter& a);
// One idle event of mode 85; below 0 when the interaction ended in it.
int interaction_image();
// Ends the running interaction, in its order; nothing when none runs.
void interaction_fin();
// A menu entry (1 to 18) of the running interaction; its printed line.
void interaction_menu(int entree);
// The "memoire" submenu, entries 1 to 4.
void interaction_memoire(int entree);
// Frames completed, and whether an interaction runs.
long interaction_num_image();
bool interaction_en_cours();
