// Random datagrams and byte streams through real sockets and ptys: every
// read gives a well-formed value or an empty one, and nothing stops. The
// seed is printed; ORVANE_GRAINE replays it.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>

#include <atomic>
#include <cstdlib>

#include "tests/device/outils.h"

namespace {
constexpr int A_INI = 24, A_NOM = 82, A_PORT = 57, A_TEM = 98, A_FLO = 44, A_OCTETS = 58, B_SERVEUR = 61;
using FuzzPeriph = Periphs;

unsigned graine() {
  const char* g = std::getenv("ORVANE_GRAINE");
  unsigned s = g ? static_cast<unsigned>(std::strtoul(g, nullptr, 10)) : std::random_device{}();
  std::printf("graine %u\n", s);
  return s;
}

// A value block as the language would see it: one of the shapes a read gives.
void bien_forme(const mot* r) {
  if (r[0] == 0) return;
  ASSERT_GE(r[0], 4);
  switch (r[1]) {
    case BLOC_NIL: EXPECT_EQ(r[0], 4); break;
    case BLOC_REEL: EXPECT_EQ(r[2], r[0] - 4); break;
    case BLOC_CHAINE: EXPECT_NE(std::memchr(r + 4, 0, 4 * static_cast<std::size_t>(r[0] - 4)), nullptr); break;
    case BLOC_LISTE:
      for (const mot *c = r + 4, *fin = r + r[0]; c < fin; c += c[0]) {
        ASSERT_GE(c[0], 4);
        ASSERT_LE(c + c[0], fin);
      }
      break;
    default: ADD_FAILURE() << "tag " << r[1];
  }
}

std::string hasard(std::mt19937& g, std::size_t max) {
  std::string s(g() % (max + 1), '\0');
  for (char& c : s) c = static_cast<char>(g());
  // Some look like what the channel expects, to get past the first checks.
  if (s.size() > 20 && g() % 2) s[19] = static_cast<char>(20 + g() % 236);
  if (s.size() > 8 && g() % 3 == 0) std::memcpy(s.data(), "/a\0\0,fsi", 8);
  return s;
}

TEST_F(FuzzPeriph, RandomDatagramsToUdpAndOscServers) {
  std::mt19937 g(graine());
  int pu = port_libre(), po = port_libre();
  ASSERT_EQ(lance({num(50), cl(0, A_INI, "UDP"), cl(1, B_SERVEUR), cl(0, A_PORT, std::vector<float>{float(pu)}), cl(0, A_TEM, std::vector<float>{0})}), 0);
  ASSERT_EQ(lance({num(51), cl(0, A_INI, "OSC"), cl(1, B_SERVEUR), cl(0, A_PORT, std::vector<float>{float(po)})}), 0);
  int s = socket(AF_INET, SOCK_DGRAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto fin = std::chrono::steady_clock::now() + std::chrono::milliseconds(1500);
  long n = 0;
  std::string out = sortie_de([&] {
    while (std::chrono::steady_clock::now() < fin) {
      for (int k = 0; k < 20; ++k, ++n) {
        std::string d = hasard(g, g() % 8 ? 200 : 1600);
        a.sin_port = htons(static_cast<uint16_t>(k % 2 ? pu : po));
        sendto(s, d.data(), d.size(), 0, reinterpret_cast<sockaddr*>(&a), sizeof a);
      }
      lance({num(50)});
      bien_forme(resultat);
      lance({num(51)});
      bien_forme(resultat);
      lance({num(51), cl(0, A_NOM, "/a")});
      bien_forme(resultat);
    }
  });
  close(s);
  EXPECT_GT(n, 1000);
}

TEST_F(FuzzPeriph, RandomStreamsThroughAPtyAndATcpPeer) {
  std::mt19937 g(graine());
  // A pty as the serial port, and as the MIDI stream.
  int m1 = posix_openpt(O_RDWR | O_NOCTTY), m2 = posix_openpt(O_RDWR | O_NOCTTY);
  for (int m : {m1, m2}) {
    grantpt(m), unlockpt(m);
    termios t{};
    tcgetattr(m, &t);
    cfmakeraw(&t);
    tcsetattr(m, TCSANOW, &t);
    fcntl(m, F_SETFL, O_NONBLOCK);
  }
  ASSERT_EQ(lance({num(52), cl(0, A_INI, "COM"), cl(0, A_NOM, std::string(ptsname(m1)))}), 0);
  ASSERT_EQ(lance({num(53), cl(0, A_INI, "MID"), cl(0, A_NOM, std::string(ptsname(m2)))}), 0);
  // A TCP peer that answers each poll with random bytes, and sometimes
  // with nothing or a closed connection.
  int l = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t lg = sizeof a;
  ASSERT_EQ(bind(l, reinterpret_cast<sockaddr*>(&a), sizeof a), 0);
  listen(l, 4);
  getsockname(l, reinterpret_cast<sockaddr*>(&a), &lg);
  int port = ntohs(a.sin_port);
  std::atomic<bool> fini{false};
  unsigned gp = static_cast<unsigned>(g());
  std::thread pair([&] {
    std::mt19937 h(gp);
    while (!fini) {
      pollfd f{l, POLLIN, 0};
      if (poll(&f, 1, 50) <= 0) continue;
      int c = accept(l, nullptr, nullptr);
      while (!fini) {
        pollfd fc{c, POLLIN, 0};
        if (poll(&fc, 1, 50) <= 0) continue;
        char b[64];
        if (recv(c, b, sizeof b, 0) <= 0) break;
        if (h() % 50 == 0) break;
        std::string d = hasard(h, 1500);
        send(c, d.data(), d.size(), MSG_NOSIGNAL);
      }
      close(c);
    }
  });
  auto fin = std::chrono::steady_clock::now() + std::chrono::milliseconds(2000);
  std::string out = sortie_de([&] {
    int ouvert = 0;
    while (std::chrono::steady_clock::now() < fin) {
      if (!ouvert) {
        ouvert = lance({num(54), cl(0, A_INI, "TCP"), cl(0, A_NOM, "127.0.0.1"), cl(0, A_PORT, std::vector<float>{float(port)}),
                        cl(0, A_TEM, std::vector<float>{20}), g() % 2 ? cl(0, A_FLO) : cl(0, 13)}) == 0;
      }
      std::string d = hasard(g, 300);
      (void)!write(m1, d.data(), d.size());
      d = hasard(g, 300);
      (void)!write(m2, d.data(), d.size());
      lance({num(52), cl(0, A_OCTETS, std::vector<float>{float(g() % 400) - 50})});
      bien_forme(resultat);
      lance({num(53)});
      bien_forme(resultat);
      if (ouvert) {
        if (g() % 3 == 0) lance({num(54), cl(0, 90, std::string("#") + std::to_string(g() % 2000))});
        else lance({num(54)});
        bien_forme(resultat);
        if (g() % 40 == 0) {
          lance({num(54), cl(0, 61)});
          ouvert = 0;
        }
      }
    }
  });
  fini = true;
  pair.join();
  sortie_de([] { periph_ferme_tout(); });
  close(l);
  close(m1);
  close(m2);
}
}  // namespace
