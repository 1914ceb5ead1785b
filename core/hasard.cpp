// The language's random numbers: one stream, the C library's, and the table
// of draws that the shakes read in turn.
//
// The table holds the stream's first draws after start, and every other
// draw (alea, a network's weights) continues the stream behind them. It is
// filled at the first use of either rather than at start: nothing the user
// sees changes, and a start that never draws does not pay for thousands of
// calls and the pages they fill. A new seed fills it first, so that it
// still holds the draws of the starting seed.
#include <cstdlib>

#include "core/bloc.h"

namespace {
float* table = nullptr;
int nb = 0;
bool a_remplir = false;

void remplit() {
  a_remplir = false;
  for (int i = 0; i < nb; ++i)
    table[i] = static_cast<float>(static_cast<double>(std::rand() % 32767) / 32767.0);
}
}  // namespace

void hasard_table_prevue(float* t, int n) {
  table = t;
  nb = t ? n : 0;
  a_remplir = nb > 0;
}

const float* hasard_table(int* n) {
  if (a_remplir) remplit();
  *n = nb;
  return table;
}

int hasard() {
  if (a_remplir) remplit();
  return std::rand();
}

void hasard_graine(unsigned graine) {
  if (a_remplir) remplit();
  std::srand(graine);
}
