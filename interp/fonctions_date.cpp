// The date: year, month, day, hour, minute, second, in local time.
#include <ctime>

#include "interp/fonctions_interne.h"

int fonction_date(mot* bloc, const mot* limite) {
  std::time_t t = std::time(nullptr);
  std::tm l{};
  localtime_r(&t, &l);
  reel* r = resultat_reels(bloc, limite, 6);
  if (!r) return -12;
  const int v[6] = {l.tm_year + 1900, l.tm_mon + 1, l.tm_mday, l.tm_hour, l.tm_min, l.tm_sec};
  for (int k = 0; k < 6; ++k) r[k] = static_cast<float>(v[k]);
  return 0;
}
