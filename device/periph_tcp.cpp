// TCP channels, as server (one client) or client, and the fixed test client
// of port 8889. A read is a poll: one request byte goes out, and the answer
// is awaited at most the channel's timeout, so that a silent or departed
// peer gives an empty value instead of stopping the frame. Accepting and
// connecting wait the same way.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/message.h"
#include "device/periph_interne.h"
#include "interp/interp.h"

namespace {
constexpr int PORT_TEST = 8889;
constexpr int TEST_ESSAIS = 12, TEST_OCTETS = 128, TEST_ATTENTE_MS = 100;

void non_bloquant(int s, bool oui) {
  int f = fcntl(s, F_GETFL);
  fcntl(s, F_SETFL, oui ? f | O_NONBLOCK : f & ~O_NONBLOCK);
}

// What both ends do once connected: the blocking mode the phrase asked for,
// and a close that never waits for unsent data.
void regle(int s, int bloquant) {
  non_bloquant(s, bloquant == 0);
  linger l{0, 10};
  setsockopt(s, SOL_SOCKET, SO_LINGER, &l, sizeof l);
  int un = 1;
  setsockopt(s, IPPROTO_TCP, 1 /* TCP_NODELAY */, &un, sizeof un);
}

bool attend(int s, short quoi, int ms) {
  pollfd f{s, quoi, 0};
  int r;
  do r = poll(&f, 1, ms < 0 ? 0 : ms);
  while (r < 0 && errno == EINTR);
  return r > 0;
}

// A connection to a:port that waits at most ms; the socket, or -1.
int connecte(const in_addr& a, int port, int ms) {
  int s = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (s < 0) return -2;
  sockaddr_in sa{};
  sa.sin_family = AF_INET;
  sa.sin_port = htons(static_cast<std::uint16_t>(port));
  sa.sin_addr = a;
  non_bloquant(s, true);
  int r = connect(s, reinterpret_cast<sockaddr*>(&sa), sizeof sa);
  if (r != 0 && errno == EINPROGRESS && attend(s, POLLOUT, ms)) {
    int err = 0;
    socklen_t lg = sizeof err;
    getsockopt(s, SOL_SOCKET, SO_ERROR, &err, &lg);
    r = err == 0 ? 0 : -1;
  }
  if (r != 0) {
    close(s);
    return -1;
  }
  return s;
}

bool envoie_tout(int s, const char* t, std::size_t lg, int ms) {
  std::size_t fait = 0;
  std::int64_t fin = tic_ms() + ms;
  while (fait < lg) {
    ssize_t n = send(s, t + fait, lg - fait, MSG_NOSIGNAL);
    if (n > 0) {
      fait += static_cast<std::size_t>(n);
      continue;
    }
    if (n < 0 && errno != EAGAIN && errno != EINTR) return false;
    if (tic_ms() >= fin || !attend(s, POLLOUT, static_cast<int>(fin - tic_ms()))) return false;
  }
  return true;
}

// The floats of a text separated by blanks or tabs, up to the first word
// that is not one.
int lit_flottants(const char* t, float* x, int max) {
  int n = 0;
  while (n < max) {
    while (*t == ' ' || *t == '\t') ++t;
    char* fin;
    float v = std::strtof(t, &fin);
    if (fin == t) break;
    x[n++] = v;
    t = fin;
  }
  return n;
}
}  // namespace

int tcp_ouvre_serveur(Periph* p, const Ouverture& o) {
  int port = o.port ? o.port : PORT_DEFAUT;
  int s = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (s < 0) {
    std::printf("socket() failed with error %d\n", errno);
    return -1;
  }
  std::printf("socket = %d\n", s);
  int un = 1;
  setsockopt(s, SOL_SOCKET, SO_REUSEADDR, &un, sizeof un);
  sockaddr_in sa{};
  sa.sin_family = AF_INET;
  sa.sin_addr.s_addr = htonl(INADDR_ANY);
  sa.sin_port = htons(static_cast<std::uint16_t>(port));
  const char* echec = nullptr;
  if (bind(s, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0) echec = "bind";
  else if (listen(s, 1) != 0) echec = "listen";
  if (!echec) {
    std::printf("SERVEUR OUVERT sur le port %d\n", port);
    std::printf("Lancer le client\n");
    std::fflush(stdout);
  }
  int c = -1;
  if (!echec) {
    if (!attend(s, POLLIN, o.timeout)) errno = ETIMEDOUT, echec = "accept";
    else if ((c = accept4(s, nullptr, nullptr, SOCK_CLOEXEC)) < 0) echec = "accept";
  }
  if (echec) {
    std::printf("%s() failed with error %d\n", echec, errno);
    close(s);
    return -1;
  }
  regle(c, o.bloquant);
  std::printf("CONNECTION OK socket = %d\n", c);
  p->ecoute = s;
  p->canal = c;
  return 0;
}

int tcp_ouvre_client(Periph* p, const Ouverture& o) {
  int port = o.port ? o.port : PORT_DEFAUT;
  std::printf("LANCEMENT CLIENT_TCP sur machine %s et port %d\n", o.nom.c_str(), port);
  in_addr a{};
  if (!resout_hote(o.nom.c_str(), &a)) {
    std::printf("Unable to resolve %s\n", o.nom.c_str());
    return -1;
  }
  std::printf("host %d addr %d\n", AF_INET, static_cast<int>(a.s_addr));
  int s = connecte(a, port, o.timeout);
  if (s == -2) {
    std::printf("socket() failed\n");
    return -1;
  }
  if (s < 0) {
    std::printf("connect() failed\n");
    return -1;
  }
  regle(s, o.bloquant);
  std::printf("create socket %d\n", s);
  std::printf("CONNECTION OK\n");
  p->canal = s;
  return 0;
}

int tcp_lit(Periph* p, mot* phrase, const mot* limite, const char* separateur) {
  char buf[RESEAU_TAMPON];
  if (send(p->canal, &PERIPH_DEMANDE, 1, MSG_NOSIGNAL | MSG_DONTWAIT) != 1 ||
      !attend(p->canal, POLLIN, p->timeout)) {
    resultat_nil(phrase);
    return 0;
  }
  ssize_t n = recv(p->canal, buf, sizeof buf - 1, MSG_DONTWAIT);
  if (n <= 0) {  // the peer left, or nothing after all
    resultat_nil(phrase);
    return 0;
  }
  buf[n] = 0;
  if (p->debug) std::printf(" recv %s\n", buf);
  if (phrase + n / 4 + 5 > limite) return PILE_PLEINE;
  if (separateur && std::strlen(separateur) >= 2) {
    char marque = separateur[0];
    long attendus = std::atol(separateur + 1);
    if (attendus < 1) {
      resultat_nil(phrase);
      return 0;
    }
    // Read first, written after: the message may lie where the value goes.
    float x[RESEAU_TAMPON];
    long k = 0;
    for (const char* c = buf + 1; *c && *c != marque && k < attendus && k < RESEAU_TAMPON;) {
      char* fin;
      x[k++] = std::strtof(c, &fin);
      c = fin;
      while (*c && *c != '\t' && *c != ' ' && *c != ',' && *c != marque) ++c;
      if (*c == '\t' || *c == ' ' || *c == ',') ++c;
    }
    reel* r = resultat_reels(phrase, limite, attendus);
    if (!r) return PILE_PLEINE;
    for (long i = 0; i < attendus; ++i) r[i] = i < k ? x[i] : 0.f;
    return 0;
  }
  if (p->format == BLOC_REEL) {
    float x[RESEAU_TAMPON / 2];
    int k = lit_flottants(buf, x, RESEAU_TAMPON / 2);
    reel* r = resultat_reels(phrase, limite, k);
    if (!r) return PILE_PLEINE;
    std::memcpy(r, x, sizeof(float) * static_cast<std::size_t>(k));
    return 0;
  }
  int r = resultat_texte(phrase, limite, buf, n);
  if (r == 0) phrase[2] = static_cast<mot>(n);
  return r;
}

int tcp_ecrit(Periph* p, const mot* donnee) {
  const char* t = texte_de(donnee);
  if (!t) return 0;
  if (!envoie_tout(p->canal, t, std::strlen(t), p->timeout)) {
    if (errno == EMSGSIZE) std::printf("WSAEMSGSIZE\n");
    return -1;
  }
  return 0;
}

int client_test_ouvre(const char* hote) {
  std::printf("LANCEMENT CLIENT\n");
  in_addr a{};
  if (!resout_hote(hote, &a)) {
    std::printf("Unable to resolve \n");
    return -1;
  }
  std::printf("host = %d addr = %d\n", AF_INET, static_cast<int>(a.s_addr));
  int s = connecte(a, PORT_TEST, TIMEOUT_DEFAUT);
  if (s >= 0) std::printf("create socket %d\n", s);
  if (s < 0) {
    std::printf("connect() failed\n");
    return -1;
  }
  std::printf("CONNECTION OK\n");
  return s;
}

int client_test_envoi(int s) {
  static constexpr char envoi[] = "ENVOI\n";
  if (!envoie_tout(s, envoi, sizeof envoi - 1, TIMEOUT_DEFAUT) || !envoie_tout(s, &PERIPH_DEMANDE, 1, TIMEOUT_DEFAUT)) {
    std::printf("ERREUR send %d\n", errno);
    close(s);
    return -1;
  }
  std::printf("send %s\n", envoi);
  char buf[TEST_OCTETS + 1] = {};
  for (int k = 0; k < TEST_ESSAIS; ++k) {
    if (!attend(s, POLLIN, TEST_ATTENTE_MS)) continue;
    ssize_t n = recv(s, buf, TEST_OCTETS, MSG_DONTWAIT);
    if (n > 0) {
      buf[n] = 0;
      break;
    }
  }
  std::printf("recv %s\n", buf);
  return 0;
}
