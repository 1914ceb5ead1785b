// MIDI from a raw byte stream: a character device (/dev/snd/midiC1D0), a
// pty or a plain file named as the port. A thread reads what comes and
// gives it to the parser; a stream that vanishes (a pty closed on the other
// side) ends it with MIM_ERROR, and a file read to its end is watched for
// more.
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include "device/midi_interne.h"
#include "device/periph_interne.h"

namespace {
int fd = -1;
std::atomic<bool> arret{false};
std::thread* fil = nullptr;  // never destroyed: a process that ends with it running ends cleanly

void boucle(std::int64_t debut) {
  Analyseur a;
  std::uint8_t buf[512];
  while (!arret.load()) {
    pollfd f{fd, POLLIN, 0};
    if (poll(&f, 1, 50) <= 0) continue;
    ssize_t n = read(fd, buf, sizeof buf);
    if (n > 0) {
      analyse(a, buf, n, static_cast<std::uint32_t>(tic_ms() - debut));
      continue;
    }
    if (n == 0 && !(f.revents & POLLHUP)) {  // the end of a file, for now
      usleep(50000);
      continue;
    }
    if (n < 0 && (errno == EAGAIN || errno == EINTR)) continue;
    rappel(MIM_ERROR, 0, 0, nullptr);
    return;
  }
}
}  // namespace

int flux_ouvre(const char* nom) {
  fd = open(nom, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) {
    erreur_ouverture(std::strerror(errno));
    return -1;
  }
  // A terminal passes the bytes as they are: no line discipline, no signals.
  termios t{};
  if (tcgetattr(fd, &t) == 0) {
    cfmakeraw(&t);
    t.c_cc[VMIN] = 0;
    t.c_cc[VTIME] = 0;
    tcsetattr(fd, TCSANOW, &t);
  }
  arret.store(false);
  fil = new std::thread(boucle, tic_ms());
  return 0;
}

void flux_ferme() {
  arret.store(true);
  if (fil) {
    fil->join();
    delete fil;
    fil = nullptr;
  }
  close(fd);
  fd = -1;
}
