// The idle step: the frame pump of the program. The console is read in
// every mode, so that lines typed at the terminal reach a running tool as
// they reach the shell; the launch and loop texts run only in the shell's
// mode, as does nothing else.
#include <cstdio>

#include "display/display.h"
#include "startup/startup.h"

namespace {
// After the interruption menu asked for the restart point: the tool is
// left, the keys forgotten, and the window made again.
void reprise() {
  reprise_demandee = 0;
  clavier_vide();
  fenetre_rouvrir();
}
}  // namespace

bool pas_inactif() {
  if (interrompu) {
    console_fin();
    menu_interruption();
    if (reprise_demandee) reprise();
    return true;
  }
  ++fen.images;
  int& m = fen.mode_interactif;
  // "[" pauses the tool, "]" lets it go on.
  if (fen.clavier[0] == '[' && m > 0) m = -m;
  else if (fen.clavier[0] == ']' && m < 0) m = -m;
  bool fait = false;
  if (m == 0 && listes_inactif()) fait = true;
  else fait = console_pas();
  if (reprise_demandee) {
    reprise();
    return true;
  }
  if (m > 0) {
    const Outil* o = outil(m);
    if (o && o->pas) {
      fait = true;
      // A failing step hands the events back to the shell.
      if (o->pas() < 0 && m > 0) m = 0;
    }
  }
  if (fen.clavier[0] && commande_clavier()) fait = true;
  return fait;
}
