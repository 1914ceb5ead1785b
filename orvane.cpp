// The executable: start-up, then the top level of the console shell for ever. The
// end of the console's input ends the program with status 0; a restart
// from the interruption menu comes back here by return codes.
#include "interp/interp.h"
#include "startup/startup.h"

int main(int argc, char** argv) {
  demarrer(argc, argv);
  interruption_installe();
  interp_init();
  for (;;) {
    reprise_demandee = 0;
    shell_console();
  }
}
