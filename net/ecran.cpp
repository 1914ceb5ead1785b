#include "interp/interp.h"
#include "net/interne.h"
int res_interaction(mot*, mot*, const mot*) { return COMMANDE_SUITE; }
