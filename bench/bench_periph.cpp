// Channels at speed: a UDP server channel reading packets from a Python
// sender on loopback (counted by their sequence numbers), and round trips
// through a shared-memory channel with a native reader on the other side.
//   bench_periph PYTHON_SENDER MEM_PAIR
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <cstdio>
#include <string>
#include <vector>

#include "core/message.h"
#include "device/device.h"
#include "interp/interp.h"
#include "startup/startup.h"
#include "tests/outils/vocabulaire.h"

extern char** environ;

namespace {
using horloge = std::chrono::steady_clock;

// A phrase periph(n) with clauses given as (env, ordinal, value or NaN, text).
struct Cl {
  int env, ord;
  std::vector<float> x;
  std::string s;
};
mot* phrase(mot* b, const std::vector<Cl>& cs) {
  mot* p = b + 4;
  for (const Cl& c : cs) {
    p[1] = c.env, p[2] = c.ord;
    mot* v = p + 3;
    if (!c.s.empty()) {
      mot l = long_chaine(c.s.size());
      std::memset(v, 0, 4 * static_cast<std::size_t>(l));
      v[0] = l, v[1] = BLOC_CHAINE, v[2] = 1, v[3] = static_cast<mot>(c.s.size());
      std::memcpy(v + 4, c.s.data(), c.s.size());
      p[0] = 3 + l;
    } else if (!c.x.empty()) {
      mot n = static_cast<mot>(c.x.size());
      v[0] = 4 + n, v[1] = BLOC_REEL, v[2] = n, v[3] = 1;
      for (mot k = 0; k < n; ++k) ecrit_reel(v + 4 + k, c.x[k]);
      p[0] = 7 + n;
    } else {
      p[0] = 3;
    }
    p += p[0];
  }
  b[0] = static_cast<mot>(p - b), b[1] = BLOC_PHRASE, b[2] = static_cast<mot>(cs.size()), b[3] = 0;
  return b;
}

pid_t lance(std::vector<std::string> args) {
  std::vector<char*> argv;
  for (auto& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  pid_t pid = -1;
  posix_spawnp(&pid, argv[0], nullptr, nullptr, argv.data(), environ);
  return pid;
}
}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "bench_periph envoi_udp.py mem_pair\n");
    return 2;
  }
  vocabulaire_charge();
  piles_alloue(100, 100000, 100, 1000);
  periph_enregistre();
  mot* b = piles.eva_base;
  const mot* limite = piles.eva_limite;
  int echecs = 0;

  // ---- UDP: N packets at a set rate; each carries its sequence number in
  // two values of the layout.
  int port = 20000 + getpid() % 30000;
  constexpr long N = 40000;
  constexpr int CADENCE = 15000;
  commande(phrase(b, {{1, 128, {1}, ""}, {0, 24, {}, "UDP"}, {1, 61, {}, ""}, {0, 57, {float(port)}, ""}, {0, 98, {2000}, ""}}), limite, nullptr);
  pid_t py = lance({"python3", argv[1], std::to_string(port), std::to_string(N), std::to_string(CADENCE)});
  std::vector<char> vu(N, 0);
  long recus = 0, hors = 0;
  horloge::time_point t0{}, t1{};
  auto debut = horloge::now();
  for (;;) {
    phrase(b, {{1, 128, {1}, ""}});
    commande(b, limite, nullptr);
    if (b[0] < 6 || b[1] != BLOC_REEL) {
      // Empty: the sender is done, or, on a loaded machine, not started yet.
      if (recus == 0 && horloge::now() - debut < std::chrono::seconds(30)) continue;
      break;
    }
    long seq = static_cast<long>(lit_reel(b + 4)) * 65000 + static_cast<long>(lit_reel(b + 5));
    if (recus == 0) t0 = horloge::now();
    t1 = horloge::now();
    if (seq >= 0 && seq < N && !vu[seq]) vu[seq] = 1, ++recus;
    else ++hors;
  }
  waitpid(py, nullptr, 0);
  double s = std::chrono::duration<double>(t1 - t0).count();
  double debit = recus > 1 ? (recus - 1) / s : 0;

  // ---- shared memory: round trips with the native reader.
  std::string nom = "/orvane-bench-" + std::to_string(getpid());
  commande(phrase(b, {{1, 128, {2}, ""}, {0, 24, {}, "MEM"}, {0, 82, {}, nom}, {0, 98, {1000}, ""}}), limite, nullptr);
  constexpr long TOURS = 20000;
  pid_t pair = lance({argv[2], nom, std::to_string(TOURS)});
  std::vector<double> us;
  us.reserve(TOURS);
  for (long t = 0; t < TOURS; ++t) {
    auto a = horloge::now();
    phrase(b, {{1, 128, {2}, ""}, {1, 4, {float(t), 1, 2, 3}, ""}});
    commande(b, limite, nullptr);
    us.push_back(std::chrono::duration<double, std::micro>(horloge::now() - a).count());
    if (b[0] != 5 || lit_reel(b + 4) != static_cast<float>(t)) ++echecs;
  }
  waitpid(pair, nullptr, 0);
  shm_unlink(nom.c_str());
  std::sort(us.begin(), us.end());
  std::printf("UDP: %ld of %ld packets read, %ld lost, %ld duplicates or strangers, %.0f packets/s (sender at %d/s)\n",
               recus, N, N - recus, hors, debit, CADENCE);
  std::printf("MEM: %ld round trips with a native reader: median %.2f us, 99th %.2f us, %d wrong answers\n", TOURS,
               us[us.size() / 2], us[us.size() * 99 / 100], echecs);
  bool ok = recus == N && debit >= 10000 && us[us.size() / 2] < 20 && echecs == 0;
  std::printf(ok ? "OK\n" : "BELOW TARGET (10,000 packets/s without loss, 20 us)\n");
  return ok ? 0 : 1;
}
