// The executable: start-up, then the console loop.
#include "startup/startup.h"

int main(int argc, char** argv) {
  demarrer(argc, argv);
  interruption_installe();
  char ligne[800];
  bool reprise;
  while (console_lit(ligne, sizeof ligne, &reprise) >= 0) {
  }
  return 0;
}
