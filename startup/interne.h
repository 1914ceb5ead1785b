// Private helpers of the start-up folder.
#pragma once
#include <string>

// A key value longer than its bound: refused.
constexpr int M_CHEMIN_LONG = 112;

// Key readers.
void cles_ligne_commande(int argc, char** argv, bool premiere);
void cles_enva(const char* texte);
void cles_envb(const char* texte);
void cles_graphiques_ligne_commande(int argc, char** argv);
void aide_base();
void aide_graphique();
void init_graphique(int argc, char** argv, bool aide);
// Text of an environment's key file, kept until the end of start-up.
const char* texte_env(int e);
