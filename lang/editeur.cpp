// The line editor of recalled lines: the line is shown, and the console's
// reply says what becomes of it. An empty reply keeps it; "0" drops it;
// "-" (or the end of the input) stops the recall; "s/old/new/" replaces
// the first "old" by "new" and shows the line again; any other reply is
// the new line.
#include <cstdio>
#include <cstring>
#include <string>

#include "lang/interne.h"

int editer_ligne(std::string& ligne) {
  for (;;) {
    std::printf("%s\n", ligne.c_str());
    std::fflush(stdout);
    char r[1024];
    int n = lire_ligne(r, sizeof r);
    if (n < 0) return -1;
    std::string rep(r, static_cast<std::size_t>(n));
    while (!rep.empty() && (rep.back() == '\n' || rep.back() == '\r' || rep.back() == 1)) rep.pop_back();
    if (rep.empty()) return 1;
    if (rep == "0") return 0;
    if (rep == "-") return -1;
    if (rep.size() > 2 && rep[0] == 's' && rep[1] == '/') {
      std::size_t m = rep.find('/', 2);
      if (m != std::string::npos) {
        std::string ancien = rep.substr(2, m - 2);
        std::size_t f = rep.find('/', m + 1);
        std::string nouveau = rep.substr(m + 1, f == std::string::npos ? std::string::npos : f - m - 1);
        std::size_t p = ancien.empty() ? std::string::npos : ligne.find(ancien);
        if (p != std::string::npos) ligne.replace(p, ancien.size(), nouveau);
        continue;
      }
    }
    ligne = rep;
    return 1;
  }
}
