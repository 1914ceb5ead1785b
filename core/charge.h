// The window and sound libraries (GL, GLX, X11 and its friends, ALSA) are
// loaded on first need, not at start-up: a program that never opens a window
// does not map and relocate them. The release executable calls them through
// stubs written at build time (scripts/tardif.sh); other builds link them
// directly, and there these calls only answer yes.
#pragma once
#include <cstdint>

enum Groupe_bib : std::uint8_t {
  BIB_FENETRE = 0,  // GL, GLX, X11, Xi, Xxf86vm
  BIB_SON = 1,      // ALSA
  BIB_NB = 2,
};

constexpr int M_BIBLIOTHEQUE = 145;  // env 1: a shared library cannot be loaded

// Loads every library of the group once and fills its entry points; false
// after "library: " and message 1:145 when one cannot be loaded (nothing of
// the group is then usable; a later call tries again).
bool charge_bib(Groupe_bib g);
