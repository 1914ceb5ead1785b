// The console: line reads that survive an interrupt, the interruption menu,
// the page prompt and the one way of stopping on a fatal error.
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/message.h"
#include "startup/startup.h"

volatile int interrompu = 0;
volatile int reprise_demandee = 0;

namespace {
// The handler only raises a flag: the menu runs where the program can
// safely print and read, at the next console read or engine check, and a
// restart unwinds by return codes rather than a long jump, so no destructor
// is ever skipped.
void sur_interruption(int) { interrompu = 1; }

// Reads up to the newline; false at end of input. EINTR is reported to the
// caller through errno.
// Waits for input with the interrupt blocked except inside ppoll, so that an
// interrupt landing between the flag's test and the wait is not lost until
// the next line. False when interrupted.
bool attend_console() {
  sigset_t bloque, ancien;
  sigemptyset(&bloque);
  sigaddset(&bloque, SIGINT);
  sigprocmask(SIG_BLOCK, &bloque, &ancien);
  bool pret = !interrompu;
  if (pret) {
    pollfd f{STDIN_FILENO, POLLIN, 0};
    while (ppoll(&f, 1, nullptr, &ancien) < 0 && !interrompu) {
    }
    pret = !interrompu;
  }
  sigprocmask(SIG_SETMASK, &ancien, nullptr);
  return pret;
}

// Our own buffer over read(2): stdio would retry an interrupted read.
char tampon[4096];
int t_pos = 0, t_fin = 0;

bool trop_long = false;
bool fin_vue = false;  // the input ended; a read will say so

// Moves what is left of the buffer to its start, to make room behind it.
void tasse() {
  if (t_pos == 0) return;
  std::memmove(tampon, tampon + t_pos, static_cast<std::size_t>(t_fin - t_pos));
  t_fin -= t_pos;
  t_pos = 0;
}

bool lit_brut(char* buf, int taille, int* n) {
  *n = 0;
  trop_long = false;
  for (;;) {
    if (t_pos == t_fin) {
      if (!attend_console()) return true;  // interrupted while waiting
      ssize_t r = read(STDIN_FILENO, tampon, sizeof tampon);
      if (r == 0) return *n > 0;
      if (r < 0) {
        if (errno == EINTR && interrompu) return true;
        if (errno == EINTR) continue;
        return *n > 0;
      }
      t_pos = 0;
      t_fin = static_cast<int>(r);
    }
    char c = tampon[t_pos++];
    if (c == '\n') return true;
    if (*n < taille - 1) buf[(*n)++] = c;
    else trop_long = true;
  }
}
}  // namespace

namespace {
void pose_gestionnaire() {
  struct sigaction sa {};
  sa.sa_handler = sur_interruption;
  sigemptyset(&sa.sa_mask);
  sa.sa_flags = 0;  // no restart: a blocked read must come back
  sigaction(SIGINT, &sa, nullptr);
}
}  // namespace

// A program started with the interrupt ignored (in the background) keeps it so.
void interruption_installe() {
  struct sigaction ancien {};
  sigaction(SIGINT, nullptr, &ancien);
  if (ancien.sa_handler != SIG_IGN) pose_gestionnaire();
}

[[noreturn]] void arret_fatal(const char* texte) {
  if (texte) std::fputs(texte, stdout);
  std::fputs("0 pour finir\n", stdout);
  std::fflush(stdout);
  char buf[64];
  int n;
  lit_brut(buf, sizeof buf, &n);
  std::exit(0);
}

int menu_interruption() {
  interrompu = 0;
  signal(SIGINT, SIG_IGN);
  message(0, 71);
  char buf[256];
  int n;
  bool lu = lit_brut(buf, sizeof buf, &n);
  char r = lu && n > 0 ? buf[n - 1] : '0';
  pose_gestionnaire();
  switch (r) {
    case '0':
      message(0, 8);
      emp_vide();
      reprise_demandee = 1;
      return MENU_REPRISE;
    case '2':
      // One line at the top level, under the pause prompt, then the
      // restart point. The stacks of the interrupted run are given up.
      shell(1, 79, piles.eva_base, 0);
      reprise_demandee = 1;
      return MENU_REPRISE;
    case 'b':
      message(0, 5);
      std::fflush(stdout);
      std::exit(0);
  }
  message(0, 72);
  return MENU_CONTINUE;
}

int console_lit(char* buf, int taille, bool* reprise) {
  std::fflush(stdout);
  *reprise = false;
  int n;
  for (;;) {
    bool lu = lit_brut(buf, taille, &n);
    if (interrompu) {
      if (menu_interruption() == MENU_REPRISE) {
        *reprise = true;
        buf[0] = 0;
        return 0;
      }
      continue;
    }
    if (!lu) return -1;
    if (trop_long) {
      message(0, 2);  // the whole line is read again
      continue;
    }
    buf[n] = 0;
    return n;
  }
}

bool console_ligne_prete() {
  for (;;) {
    if (std::memchr(tampon + t_pos, '\n', static_cast<std::size_t>(t_fin - t_pos))) return true;
    if (fin_vue) return true;
    tasse();
    // A line longer than the buffer: the reader takes it whole, and
    // reports it as too long.
    if (t_fin == static_cast<int>(sizeof tampon)) return true;
    if (lecture_console.editeur) return false;  // its lines come queued
    pollfd f{STDIN_FILENO, POLLIN, 0};
    if (poll(&f, 1, 0) <= 0) return false;
    ssize_t r = read(STDIN_FILENO, tampon + t_fin, sizeof tampon - static_cast<std::size_t>(t_fin));
    if (r < 0) return false;
    if (r == 0) fin_vue = true;
    t_fin += static_cast<int>(r);
  }
}

bool console_fin_seule() {
  return console_ligne_prete() && fin_vue && !std::memchr(tampon + t_pos, '\n', static_cast<std::size_t>(t_fin - t_pos)) &&
         t_fin == t_pos;
}

void console_injecte(const char* ligne) {
  tasse();
  std::size_t n = std::strlen(ligne);
  std::size_t place = sizeof tampon - static_cast<std::size_t>(t_fin) - 1;
  if (n > place) n = place;
  std::memcpy(tampon + t_fin, ligne, n);
  t_fin += static_cast<int>(n);
  tampon[t_fin++] = '\n';
}

int pause_page(int c) {
  message(0, 78);
  char buf[256];
  int n;
  if (!lit_brut(buf, sizeof buf, &n) || n == 0) return '\n';
  int r = static_cast<unsigned char>(buf[n > 1 ? n - 1 : 0]);
  return r == c ? 0 : r;
}
void (*entree_fenetre)() = nullptr;
