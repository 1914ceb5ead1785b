// A second process for the tests: orvane run from the repository root with
// pipes on its console, so that a test can type, read and send signals.
#pragma once
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

struct Processus {
  pid_t pid = -1;
  int entree = -1, sortie = -1;
  std::string lu;
};

inline Processus lance_orvane(std::vector<std::string> args, const char* rep = ORVANE_SOURCE) {
  int in[2], out[2];
  Processus p;
  if (pipe(in) || pipe(out)) return p;
  p.pid = fork();
  if (p.pid == 0) {
    dup2(in[0], 0);
    dup2(out[1], 1);
    close(in[1]);
    close(out[0]);
    if (chdir(rep) != 0) _exit(127);
    std::vector<char*> argv{const_cast<char*>(ORVANE_BIN)};
    for (auto& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    execv(ORVANE_BIN, argv.data());
    _exit(127);
  }
  close(in[0]);
  close(out[1]);
  p.entree = in[1];
  p.sortie = out[0];
  return p;
}

// Reads until `texte` has appeared in the output, or the time is up.
inline bool attend(Processus& p, const std::string& texte, int ms = 5000) {
  auto fin = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
  while (p.lu.find(texte) == std::string::npos) {
    int reste = static_cast<int>(
        std::chrono::duration_cast<std::chrono::milliseconds>(fin - std::chrono::steady_clock::now()).count());
    if (reste <= 0) return false;
    pollfd f{p.sortie, POLLIN, 0};
    if (poll(&f, 1, reste) <= 0) return false;
    char buf[4096];
    ssize_t n = read(p.sortie, buf, sizeof buf);
    if (n <= 0) return p.lu.find(texte) != std::string::npos;
    p.lu.append(buf, static_cast<std::size_t>(n));
  }
  return true;
}

// Types a whole text and closes the console once it is written, reading the
// output meanwhile, or both ends would wait on full pipes. Gives whether
// `texte_fin` appeared within `ms`.
inline bool nourrit(Processus& p, const std::string& texte, const std::string& texte_fin, int ms) {
  std::thread ecrivain([&] {
    (void)!write(p.entree, texte.data(), texte.size());
    close(p.entree);
  });
  bool vu = attend(p, texte_fin, ms);
  ecrivain.join();
  p.entree = -1;
  return vu;
}

inline void tape(Processus& p, const std::string& ligne) {
  std::string l = ligne + "\n";
  (void)!write(p.entree, l.data(), l.size());
}

// Closes the console, reads what is left of the output, and gives the status.
inline int termine(Processus& p) {
  close(p.entree);
  char buf[4096];
  ssize_t n;
  while ((n = read(p.sortie, buf, sizeof buf)) > 0) p.lu.append(buf, static_cast<std::size_t>(n));
  int statut = 0;
  waitpid(p.pid, &statut, 0);
  close(p.sortie);
  return WIFEXITED(statut) ? WEXITSTATUS(statut) : 128 + WTERMSIG(statut);
}
