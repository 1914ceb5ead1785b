// The executable: start-up, then the window's event loop or the top level
// of the shell for ever. The end of the console's input ends the program
// with status 0; a restart from the interruption menu comes back here by
// return codes.
#include "anim/anim.h"
#include "device/device.h"
#include "display/display.h"
#include "interp/interp.h"
#include "persist/persist.h"
#include "startup/startup.h"
#include "tools/tools.h"

int main(int argc, char** argv) {
  fenetre_enregistre();
  persist_enregistre();
  interaction_enregistre();
  periph_enregistre();
  audio_enregistre();
  outils_enregistre();
  demarrer(argc, argv);
  interruption_installe();
  interp_init();
  // With graphics on the window's event loop runs the shell; it comes back
  // only when no window could be opened or the window was closed.
  if (dem.graphique && entree_fenetre) entree_fenetre();
  for (;;) {
    reprise_demandee = 0;
    shell_console();
  }
}
