// UDP channels. A server binds its port on every address and answers the
// last sender; a client writes to its host and reads the answers. A read
// takes one datagram of up to 1024 bytes laid out as a sensor packet:
//
//   offset 0, 19 bytes: header, ignored        offset 19, 1 byte: L
//   offset 20, 4 bytes: header, ignored        offset 24: n = (L - 20) / 4
//   values of 4 bytes, each worth (byte 2) x 255 + (byte 3), unsigned.
//
// A length that claims more values than the datagram holds gives those it
// holds. A read waits at most the channel's timeout; nothing come is an
// empty value.
#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "device/periph_interne.h"
#include "interp/interp.h"

namespace {
constexpr int UDP_ENTETE = 24, UDP_PLACE_L = 19, UDP_BASE_L = 20;
constexpr int UDP_RECEPTION = 1 << 20;  // bytes of the kernel's queue
}  // namespace

int udp_decode(const std::uint8_t* d, long lg, float* x) {
  if (lg < UDP_BASE_L) return 0;
  int n = (static_cast<int>(d[UDP_PLACE_L]) - UDP_BASE_L) / 4;
  long tient = lg < UDP_ENTETE ? 0 : (lg - UDP_ENTETE) / 4;
  if (n > tient) n = static_cast<int>(tient);
  for (int k = 0; k < n; ++k) {
    const std::uint8_t* v = d + UDP_ENTETE + 4 * k;
    x[k] = static_cast<float>(v[2] * 255 + v[3]);
  }
  return n < 0 ? 0 : n;
}

int udp_ouvre(Periph* p, const Ouverture& o) {
  std::printf(o.serveur ? "LANCEMENT SERVEUR_UDP\n" : "LANCEMENT CLIENT_UDP\n");
  in_addr hote{};
  if (!o.serveur && !resout_hote(o.nom.c_str(), &hote)) {
    std::printf("Unable to resolve %s\n", o.nom.c_str());
    return -1;
  }
  int s = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (s < 0) {
    std::printf("socket() erreur %d\n", errno);
    return -1;
  }
  int taille = UDP_RECEPTION;
  setsockopt(s, SOL_SOCKET, SO_RCVBUF, &taille, sizeof taille);
  sockaddr_in sa{};
  sa.sin_family = AF_INET;
  sa.sin_port = htons(static_cast<std::uint16_t>(o.port));
  if (o.serveur) {
    sa.sin_addr.s_addr = htonl(INADDR_ANY);
    if (bind(s, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0) {
      // A server that cannot have its port ends the program at once.
      std::printf("bin erreur %d\n", errno);
      std::fflush(stdout);
      std::exit(1);
    }
  } else {
    sa.sin_addr = hote;
    p->pair = sa;
    p->pair_connu = true;
  }
  std::printf("create socket %d\n", s);
  std::printf("CONNECTION OK\n");
  p->canal = s;
  p->ecoute = -1;
  return 0;
}

int udp_lit(Periph* p, mot* phrase, const mot* limite) {
  pollfd f{p->canal, POLLIN, 0};
  if (poll(&f, 1, p->timeout < 0 ? 0 : p->timeout) <= 0) {
    resultat_nil(phrase);
    return 0;
  }
  std::uint8_t d[RESEAU_TAMPON];
  sockaddr_in de{};
  socklen_t lg_de = sizeof de;
  ssize_t n = recvfrom(p->canal, d, sizeof d, MSG_DONTWAIT, reinterpret_cast<sockaddr*>(&de), &lg_de);
  if (n < 0) {
    if (errno == EAGAIN) {
      resultat_nil(phrase);
      return 0;
    }
    std::printf("recvfrom() erreur %d\n", errno);
    return -1;
  }
  if (p->type == PERIPH_UDP_SERVEUR) p->pair = de, p->pair_connu = true;
  float x[RESEAU_TAMPON / 4];
  int k = udp_decode(d, n, x);
  if (p->debug) std::printf(" recvfrom %d octets, %d valeurs\n", static_cast<int>(n), k);
  if (k == 0) {
    resultat_nil(phrase);
    return 0;
  }
  reel* r = resultat_reels(phrase, limite, k);
  if (!r) return PILE_PLEINE;
  std::memcpy(r, x, sizeof(float) * static_cast<std::size_t>(k));
  return 0;
}

int udp_ecrit(Periph* p, const mot* donnee) {
  const char* t = texte_de(donnee);
  if (!t) return 0;
  if (!p->pair_connu) {
    std::printf("sendto() erreur %d\n", EDESTADDRREQ);
    return -1;
  }
  if (sendto(p->canal, t, std::strlen(t), MSG_DONTWAIT, reinterpret_cast<const sockaddr*>(&p->pair), sizeof p->pair) < 0) {
    std::printf("sendto() erreur %d\n", errno);
    return -1;
  }
  return 0;
}
