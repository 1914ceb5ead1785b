// The console while the window lives. At a terminal, GNU readline's
// callback interface takes the bytes that wait, one at a time, from the
// idle step, so the picture goes on while a line is edited; a finished line
// is queued in the console's buffer and runs as one call of the shell.
// Elsewhere (a pipe, a file) lines are taken whole when they have arrived.
#include <poll.h>
#include <unistd.h>

#include <readline/history.h>
#include <readline/readline.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/message.h"
#include "display/display.h"
#include "startup/startup.h"

namespace {
bool terminal = false, pret = false, installe = false;
std::string invite;

bool octet_attend() {
  pollfd f{STDIN_FILENO, POLLIN, 0};
  return poll(&f, 1, 0) > 0;
}

void sur_ligne(char* l) {
  // The terminal goes back to its own mode while the line runs: a pause or
  // a question inside it reads as at the console.
  rl_callback_handler_remove();
  installe = false;
  if (!l) {
    // The end of the console's input ends the program.
    std::putchar('\n');
    std::fflush(stdout);
    std::exit(0);
  }
  if (*l) add_history(l);
  console_injecte(l);
  std::free(l);
}

void prepare() {
  pret = true;
  terminal = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
  if (!terminal) return;
  // Ctrl-C keeps the program's own handler and menu.
  rl_catch_signals = 0;
  rl_catch_sigwinch = 0;
  using_history();
  lecture_console.editeur = true;
}

void installe_invite() {
  invite_rappel();
  invite.clear();
  if (const char* t = message_texte(0, MES_INVITE))
    for (; *t; ++t)
      if (*t != '\a' && *t != '\n') invite.push_back(*t);
  std::fflush(stdout);
  rl_callback_handler_install(invite.c_str(), sur_ligne);
  installe = true;
}
}  // namespace

bool console_pas() {
  if (!pret) prepare();
  if (terminal) {
    if (!installe && !console_ligne_prete()) installe_invite();
    for (int n = 0; installe && n < 512 && octet_attend(); ++n) rl_callback_read_char();
  }
  if (!console_ligne_prete()) return false;
  if (fen.outil_fini_seul && fen.mode_interactif != 0 && console_fin_seule()) return false;
  lecture_console.non_bloquante = true;
  shell(1, 0, piles.eva_base, 0);
  lecture_console.non_bloquante = false;
  std::fflush(stdout);
  return true;
}

void console_fin() {
  if (installe) rl_callback_handler_remove();
  installe = false;
  lecture_console.editeur = false;
  pret = false;
}
