// Serial channels through termios: eight bits, no parity, one stop bit, no
// flow control, a speed from the table, reads that return at once with what
// has come (at most one buffer of 256 bytes), writes that give up after one
// second.
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "device/periph_interne.h"
#include "interp/interp.h"

namespace {
struct Vitesse {
  int baud;
  speed_t code;
};
constexpr std::array<Vitesse, 8> vitesses{{{1200, B1200},
                                           {2400, B2400},
                                           {4800, B4800},
                                           {9600, B9600},
                                           {19200, B19200},
                                           {38400, B38400},
                                           {57600, B57600},
                                           {115200, B115200}}};
constexpr int ECRITURE_MS = 1000;

speed_t code_vitesse(int v) {
  for (const Vitesse& x : vitesses)
    if (x.baud == v) return x.code;
  return B9600;
}
}  // namespace

int com_vitesse(int v) {
  for (const Vitesse& x : vitesses)
    if (x.baud == v) return v;
  return 9600;
}

int com_ouvre(Periph* p, const Ouverture& o) {
  int fd = open(o.nom.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  termios t{};
  if (fd < 0 || tcgetattr(fd, &t) != 0) {
    if (fd >= 0) close(fd);
    std::printf("ERREUR OUVERTURE COM%s\x07\n", o.nom.c_str());
    return -1;
  }
  ioctl(fd, TIOCEXCL);  // no other process opens it while it is ours
  cfmakeraw(&t);
  t.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | CSTOPB | CRTSCTS);
  t.c_cflag |= CS8 | CLOCAL | CREAD;
  t.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY);
  t.c_cc[VMIN] = 0;
  t.c_cc[VTIME] = 0;
  speed_t s = code_vitesse(o.vitesse);
  cfsetispeed(&t, s);
  cfsetospeed(&t, s);
  if (tcsetattr(fd, TCSANOW, &t) != 0) {
    close(fd);
    std::printf("ERREUR OUVERTURE COM%s\x07\n", o.nom.c_str());
    return -1;
  }
  tcflush(fd, TCIOFLUSH);
  p->canal = fd;
  return 0;
}

int com_lit(Periph* p, mot* phrase, const mot* limite, int octets, bool debug) {
  if (octets < 1) octets = 1;
  if (octets > COM_TAMPON) octets = COM_TAMPON;
  char buf[COM_TAMPON] = {};
  ssize_t n = read(p->canal, buf, static_cast<std::size_t>(octets));
  if (n < 0) n = 0;  // nothing there, or a port that went away: an empty text
  if (debug) {
    std::printf("%d octets lus: ", static_cast<int>(n));
    for (int k = 0; k < octets; ++k) std::printf("%d ", static_cast<signed char>(buf[k]));
    std::printf("\n");
  }
  return resultat_texte(phrase, limite, buf, n);
}

int com_ecrit(Periph* p, const mot* donnee) {
  const char* t = texte_de(donnee);
  if (!t) return 0;
  std::size_t lg = std::strlen(t), fait = 0;
  std::int64_t fin = tic_ms() + ECRITURE_MS;
  while (fait < lg) {
    ssize_t n = write(p->canal, t + fait, lg - fait);
    if (n > 0) {
      fait += static_cast<std::size_t>(n);
      continue;
    }
    std::int64_t reste = fin - tic_ms();
    if ((n < 0 && errno != EAGAIN && errno != EINTR) || reste <= 0) {
      std::printf("ERREUR ECRITURE COM%s\x07\n", p->nom);
      return -1;
    }
    pollfd f{p->canal, POLLOUT, 0};
    poll(&f, 1, static_cast<int>(reste));
  }
  return 0;
}

int com_purge(Periph* p) { return tcflush(p->canal, TCIOFLUSH); }
