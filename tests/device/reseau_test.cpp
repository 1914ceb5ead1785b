// TCP, UDP and OSC channels against Python peers on loopback.
#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <cmath>

#include "tests/device/outils.h"

namespace {
constexpr int A_INI = 24, A_NOM = 82, A_PORT = 57, A_TEM = 98, A_DEBUG = 3, A_FLO = 44, A_FIN = 61,
              A_SEPARATEUR = 90, B_SERVEUR = 61;
using Reseau = Periphs;

Clause port(int p) { return cl(0, A_PORT, std::vector<float>{float(p)}); }
Clause tem(int ms) { return cl(0, A_TEM, std::vector<float>{float(ms)}); }

long depuis(std::chrono::steady_clock::time_point t0) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - t0).count();
}

constexpr const char* CLIENT_TCP = R"(
import socket, sys, time
p = int(sys.argv[1])
for k in range(200):
    try:
        s = socket.create_connection(('127.0.0.1', p)); break
    except OSError: time.sleep(0.02)
def repond(t):
    assert s.recv(1) == b'?'
    s.sendall(t)
repond(b'12.5 7 -3e2')
repond(b'X1.5,2.5 3.5\t4.5#9 9')
repond(b'Z' + b'7 ' * 400)
d = b''
while b'!' not in d: d += s.recv(100)
print('recu', d[:d.index(b'!') + 1].decode(), flush=True)
if not d.endswith(b'?'): assert s.recv(1) == b'?'
s.sendall(b'12')   # the peer leaves mid-message
s.close()
)";

TEST_F(Reseau, TcpServerWithAPythonClient) {
  int p = port_libre();
  Python client(CLIENT_TCP, std::to_string(p));
  ASSERT_EQ(lance({num(12), cl(0, A_INI, "TCP"), cl(1, B_SERVEUR), port(p), tem(5000), cl(0, A_DEBUG)}), 0) << sortie;
  EXPECT_NE(sortie.find("SERVEUR OUVERT sur le port " + std::to_string(p) + "\nLancer le client\n"), std::string::npos);
  EXPECT_NE(sortie.find("CONNECTION OK socket = "), std::string::npos);
  lance({num(12)});
  EXPECT_EQ(texte(), "12.5 7 -3e2");
  EXPECT_EQ(resultat[2], 11);
  EXPECT_EQ(sortie, " recv 12.5 7 -3e2\n");
  // A separator: a marker and a count; the floats from the second character
  // up to the marker, the rest zero.
  lance({num(12), cl(0, A_SEPARATEUR, "#5")});
  EXPECT_EQ(nombres(), (std::vector<float>{1.5f, 2.5f, 3.5f, 4.5f, 0}));
  lance({num(12), cl(0, A_SEPARATEUR, "#300")});
  EXPECT_EQ(nombres().size(), 300u);
  EXPECT_EQ(nombres()[299], 7);
  lance({cl(1, 128)});
  EXPECT_NE(sortie.find("12: TCP_serveur host  debug timeout 5000 ms  char \n"), std::string::npos) << sortie;
  EXPECT_EQ(ecrit({num(12)}, "du langage!"), 0);
  // The peer sends part of a message and leaves: what came, then empty values.
  lance({num(12)});
  EXPECT_EQ(texte(), "12") << sortie;
  auto t0 = std::chrono::steady_clock::now();
  for (int k = 0; k < 3; ++k) {
    lance({num(12)});
    EXPECT_TRUE(nil());
  }
  EXPECT_LT(depuis(t0), 2000);
  EXPECT_NE(client.fin().find("recu du langage!"), std::string::npos);
  // Writes of values other than texts do nothing.
  Clause v = cl(0, 0, std::vector<float>{1, 2});
  EXPECT_EQ(lance({num(12)}, &v), 0);
  EXPECT_EQ(lance({num(12), cl(0, A_FIN)}), 0);
  EXPECT_NE(sortie.find("Closed connection"), std::string::npos);
  // No client within the timeout: a failure, the channel free, the port free.
  t0 = std::chrono::steady_clock::now();
  EXPECT_LT(lance({num(12), cl(0, A_INI, "TCP"), cl(1, B_SERVEUR), port(p), tem(200)}), 0);
  EXPECT_GE(depuis(t0), 200);
  EXPECT_NE(sortie.find("accept() failed with error 110\n"), std::string::npos) << sortie;
  lance({num(12)});
  EXPECT_TRUE(nil());
}

constexpr const char* SERVEUR_TCP = R"(
import socket, sys, time
l = socket.socket(); l.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
l.bind(('127.0.0.1', int(sys.argv[1]))); l.listen(1)
print('pret', flush=True)
s, _ = l.accept()
n = 0
while True:
    d = s.recv(1)
    if not d: break
    if d == b'?':
        n += 1
        if n == 1: s.sendall(b'1 2 3.25\t-4 -1e30')
        if n == 2: s.sendall(b'pas un nombre')
        if n == 3: pass          # silent: the read times out
    else:
        print('octet', d.decode(), flush=True)
print('polls', n, flush=True)
)";

TEST_F(Reseau, TcpClientOfAPythonServer) {
  int p = port_libre();
  Python serveur(SERVEUR_TCP, std::to_string(p));
  ASSERT_TRUE(serveur.attend("pret"));
  ASSERT_EQ(lance({num(13), cl(0, A_INI, "TCP"), cl(0, A_NOM, "127.0.0.1"), port(p), cl(0, A_FLO), tem(300)}), 0) << sortie;
  EXPECT_NE(sortie.find("LANCEMENT CLIENT_TCP sur machine 127.0.0.1 et port " + std::to_string(p)), std::string::npos);
  EXPECT_NE(sortie.find("CONNECTION OK\n"), std::string::npos);
  lance({num(13)});
  EXPECT_EQ(nombres(), (std::vector<float>{1, 2, 3.25f, -4, -1e30f}));
  lance({num(13)});
  EXPECT_EQ(resultat[1], BLOC_REEL);
  EXPECT_TRUE(nombres().empty());
  auto t0 = std::chrono::steady_clock::now();
  lance({num(13)});
  EXPECT_TRUE(nil());
  EXPECT_GE(depuis(t0), 300);
  EXPECT_LT(depuis(t0), 1500);
  EXPECT_EQ(ecrit({num(13)}, "k"), 0);
  lance({num(13), cl(0, A_FIN)});
  std::string out = serveur.fin();
  EXPECT_NE(out.find("octet k"), std::string::npos) << out;
  EXPECT_NE(out.find("polls 3"), std::string::npos) << out;
  // A host that does not resolve, and a port where nobody listens.
  EXPECT_LT(lance({num(13), cl(0, A_INI, "TCP"), cl(0, A_NOM, "pas-de-machine.invalid"), port(p)}), 0);
  EXPECT_NE(sortie.find("Unable to resolve pas-de-machine.invalid\n"), std::string::npos);
  EXPECT_LT(lance({num(13), cl(0, A_INI, "TCP"), cl(0, A_NOM, "127.0.0.1"), port(p)}), 0);
  EXPECT_NE(sortie.find("connect() failed\n"), std::string::npos);
  lance({num(13)});
  EXPECT_TRUE(nil());
}

// ---- UDP ----------------------------------------------------------------------
constexpr const char* ENVOI_UDP = R"(
import random, socket, sys, time
p = int(sys.argv[1])
s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
r = random.Random(5)
def paquet(vals, L=None, entete=None):
    if L is None: L = 20 + 4 * len(vals)
    b = bytes(r.randrange(256) for _ in range(19)) + bytes([L]) + bytes(r.randrange(256) for _ in range(4))
    for v in vals: b += bytes([r.randrange(256), r.randrange(256), v // 255, v % 255])
    return b
time.sleep(0.2)
for b in [paquet([], 20), paquet([257]), paquet([0, 65024, 12345], 255), b'court',
          paquet([1, 2, 3], 27), paquet([9] * 300, 255)[:2000], paquet([7], 19), bytes(range(24))]:
    s.sendto(b, ('127.0.0.1', p)); time.sleep(0.01)
vals = [r.randrange(65025) for _ in range(58)]
s.sendto(paquet(vals), ('127.0.0.1', p))
print(' '.join(map(str, vals)), flush=True)
s.settimeout(3)
print('reponse', s.recvfrom(2000)[0].decode(), flush=True)
)";

TEST_F(Reseau, UdpServerReadsThePacketLayout) {
  int p = port_libre();
  ASSERT_EQ(lance({num(20), cl(0, A_INI, "UDP"), cl(1, B_SERVEUR), port(p), tem(3000)}), 0) << sortie;
  EXPECT_EQ(sortie, "\nperiph \tnumero = 20 LANCEMENT SERVEUR_UDP\ncreate socket " + sortie.substr(sortie.find("socket ") + 7, sortie.find('\n', sortie.find("socket ")) - sortie.find("socket ") - 7) + "\nCONNECTION OK\n");
  Python envoi(ENVOI_UDP, std::to_string(p));
  lance({num(20)});
  EXPECT_TRUE(nil());  // L = 20
  lance({num(20)});
  EXPECT_EQ(nombres(), std::vector<float>{257});
  lance({num(20)});  // L lies: the values the datagram holds
  EXPECT_EQ(nombres(), (std::vector<float>{0, 65024, 12345}));
  lance({num(20)});
  EXPECT_TRUE(nil());  // shorter than the layout
  lance({num(20)});  // L = 27: (27 - 20) / 4 = 1
  EXPECT_EQ(nombres(), std::vector<float>{1});
  lance({num(20)});  // 2000 bytes: the first 1024, L = 255 gives 58 values
  EXPECT_EQ(nombres(), std::vector<float>(58, 9));
  lance({num(20)});  // L = 19
  EXPECT_TRUE(nil());
  lance({num(20)});  // L = 19 again, read from the bytes 0..23
  EXPECT_TRUE(nil());
  lance({num(20)});
  std::vector<float> v = nombres();
  // The server answers the last sender.
  EXPECT_EQ(ecrit({num(20)}, "merci"), 0);
  std::string out = envoi.fin();
  std::string attendu;
  for (std::size_t k = 0; k < v.size(); ++k) attendu += (k ? " " : "") + std::to_string(static_cast<int>(v[k]));
  EXPECT_EQ(out, attendu + "\nreponse merci\n");
  // Nothing more: an empty value after the timeout.
  lance({num(20), tem(0)});
  Clause z = cl(0, 0, std::vector<float>{50});
  lance({num(20), cl(0, A_TEM)}, &z);
  auto t0 = std::chrono::steady_clock::now();
  lance({num(20)});
  EXPECT_TRUE(nil());
  EXPECT_LT(depuis(t0), 500);
}

constexpr const char* ECOUTE_UDP = R"(
import socket, sys
s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM); s.bind(('127.0.0.1', int(sys.argv[1])))
s.settimeout(5)
print('pret', flush=True)
d, a = s.recvfrom(2000)
print('recu', d.decode(), flush=True)
s.sendto(bytes(19) + bytes([28]) + bytes(4) + bytes([0, 0, 1, 2, 0, 0, 254, 254]), a)
)";

TEST_F(Reseau, UdpClientBothWaysAndABusyPort) {
  int p = port_libre();
  Python ecoute(ECOUTE_UDP, std::to_string(p));
  ASSERT_TRUE(ecoute.attend("pret"));
  ASSERT_EQ(lance({num(21), cl(0, A_INI, "UDP"), cl(0, A_NOM, "localhost"), port(p), tem(3000)}), 0) << sortie;
  EXPECT_NE(sortie.find("LANCEMENT CLIENT_UDP\n"), std::string::npos);
  EXPECT_EQ(ecrit({num(21)}, "bonjour udp"), 0);
  lance({num(21)});
  EXPECT_EQ(nombres(), (std::vector<float>{257, 254 * 255 + 254}));
  EXPECT_EQ(ecoute.fin(), "pret\nrecu bonjour udp\n");
  EXPECT_LT(lance({num(22), cl(0, A_INI, "UDP"), cl(0, A_NOM, "nulle-part.invalid"), port(p)}), 0);
  EXPECT_NE(sortie.find("Unable to resolve nulle-part.invalid"), std::string::npos);
  // A server whose port is taken ends the program with status 1.
  int s = socket(AF_INET, SOCK_DGRAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_port = htons(static_cast<uint16_t>(p));
  ASSERT_EQ(bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a), 0);
  std::string cmd = "printf 'periph(1) ini(\"UDP\") num(" + std::to_string(p) + ") lead\\n$ 1\\n' | (cd " ORVANE_SOURCE
                    " && " ORVANE_BIN " gra=0 ID ini=env/initb.h)";
  FILE* f = popen(cmd.c_str(), "r");
  std::string out;
  char buf[4096];
  std::size_t n;
  while ((n = fread(buf, 1, sizeof buf, f)) > 0) out.append(buf, n);
  int statut = pclose(f);
  close(s);
  EXPECT_EQ(WEXITSTATUS(statut), 1);
  EXPECT_NE(out.find("bin erreur 98\n"), std::string::npos) << out;
  EXPECT_EQ(out.find("1.000000"), std::string::npos);
}

// ---- OSC ------------------------------------------------------------------------
constexpr const char* ENVOI_OSC = R"(
import socket, struct, sys, time
def chaine(t):
    b = t.encode() + b'\0'
    return b + b'\0' * (-len(b) % 4)
def msg(adr, types, *vals):
    b = chaine(adr) + chaine(',' + types)
    for t, v in zip(types, vals):
        if t == 'f': b += struct.pack('>f', v)
        elif t == 'i': b += struct.pack('>i', v)
        elif t == 'd': b += struct.pack('>d', v)
        elif t == 's': b += chaine(v)
    return b
s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
p = ('127.0.0.1', int(sys.argv[1]))
time.sleep(0.2)
for b in [msg('/fader/1', 'f', 0.25), msg('/note', 'iis', 60, -100000, 'piano'), b'\x00\x01garbage',
          msg('/fader/1', 'fT', 0.75), msg('/x', 'dfi', 1e300, -2.5, 2147483647), msg('/vide', ''),
          b'/tronque\0\0\0\0,fff\0\0\0\0\0\0\0\1']:
    s.sendto(b, p); time.sleep(0.01)
print('fini', flush=True)
)";

TEST_F(Reseau, OscFromARawPythonSender) {
  int p = port_libre();
  ASSERT_EQ(lance({num(30), cl(0, A_INI, "OSC"), cl(1, B_SERVEUR), port(p)}), 0) << sortie;
  lance({num(30)});
  EXPECT_TRUE(nil());
  Python envoi(ENVOI_OSC, std::to_string(p));
  EXPECT_EQ(envoi.fin(), "fini\n");
  dort(50);
  // The last message per address, kept for every poll.
  for (int k = 0; k < 2; ++k) {
    lance({num(30), cl(0, A_NOM, "/fader/1")});
    EXPECT_EQ(nombres(), (std::vector<float>{0.75f, 1})) << sortie;
  }
  lance({num(30), cl(0, A_NOM, "/x")});
  std::vector<float> x = nombres();
  ASSERT_EQ(x.size(), 3u);
  EXPECT_TRUE(std::isinf(x[0]));
  EXPECT_EQ(x[1], -2.5f);
  EXPECT_EQ(x[2], 2147483647.f);
  // With a text: a list of the values.
  lance({num(30), cl(0, A_NOM, "/note")});
  ASSERT_EQ(resultat[1], BLOC_LISTE);
  EXPECT_EQ(resultat[2], 2);
  mot* e = resultat + 4;
  EXPECT_EQ(e[1], BLOC_REEL);
  EXPECT_EQ(lit_reel(e + 4), 60);
  EXPECT_EQ(lit_reel(e + 5), -100000);
  e += e[0];
  EXPECT_STREQ(bloc_texte(e), "piano");
  lance({num(30), cl(0, A_NOM, "/vide")});
  EXPECT_EQ(resultat[1], BLOC_REEL);
  EXPECT_TRUE(nombres().empty());
  lance({num(30), cl(0, A_NOM, "/jamais")});
  EXPECT_TRUE(nil());
  // Without an address: the last message with its address, once.
  lance({num(30)});
  ASSERT_EQ(resultat[1], BLOC_LISTE);
  EXPECT_STREQ(bloc_texte(resultat + 4), "/vide");
  lance({num(30)});
  EXPECT_TRUE(nil());
  // Too little room: -12.
  EXPECT_EQ(lance({num(30), cl(0, A_NOM, "/note")}, nullptr, piles.eva_base + 12), PILE_PLEINE);
}

constexpr const char* ECOUTE_OSC = R"(
import socket, struct, sys
s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM); s.bind(('127.0.0.1', int(sys.argv[1])))
s.settimeout(5)
def chaine(b, i):
    j = b.index(b'\0', i)
    return b[i:j].decode(), (j + 4) & ~3
print('pret', flush=True)
for _ in range(2):
    b = s.recv(4096)
    adr, i = chaine(b, 0)
    types, i = chaine(b, i)
    vals = []
    for t in types[1:]:
        if t == 'f': vals.append('%g' % struct.unpack_from('>f', b, i)[0]); i += 4
        elif t == 'i': vals.append(str(struct.unpack_from('>i', b, i)[0])); i += 4
        elif t == 's':
            v, i = chaine(b, i); vals.append(v)
    print(adr, types, *vals, flush=True)
)";

TEST_F(Reseau, OscToAPythonListener) {
  int p = port_libre();
  Python ecoute(ECOUTE_OSC, std::to_string(p));
  ASSERT_TRUE(ecoute.attend("pret"));
  ASSERT_EQ(lance({num(31), cl(0, A_INI, "OSC"), cl(0, A_NOM, "127.0.0.1"), port(p)}), 0) << sortie;
  Clause v = cl(0, 0, std::vector<float>{440.5f, -3, 1e20f});
  EXPECT_EQ(lance({num(31), cl(0, A_NOM, "/synth/freq")}, &v), 0) << sortie;
  EXPECT_EQ(ecrit({num(31), cl(0, A_NOM, "/texte")}, "bonjour"), 0);
  EXPECT_EQ(ecoute.fin(), "pret\n/synth/freq ,fff 440.5 -3 1e+20\n/texte ,s bonjour\n");
  // An address that is not one: a message, nothing sent.
  EXPECT_LT(ecrit({num(31), cl(0, A_NOM, "sans-barre")}, "x"), 0);
  EXPECT_LT(ecrit({num(31)}, "x"), 0);
  EXPECT_LT(lance({num(32), cl(0, A_INI, "OSC"), cl(0, A_NOM, "nulle-part.invalid"), port(p)}), 0);
  EXPECT_NE(sortie.find("Unable to resolve"), std::string::npos);
}
}  // namespace
