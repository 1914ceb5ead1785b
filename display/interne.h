// Private to the window's folder.
#pragma once

// The mouse tool (mode 16): speed and acceleration each frame, and a
// function of the language run at each frame when one is given.
void outil_souris_enregistre();
void outil_souris_entre(const char* fonction);
void outil_souris_sort();
// Runs a line at the top level, the stacks reset first as the shell does.
int execute_au_sommet(const char* texte);
