// The table of channels, files, shared memory against a second process, and
// serial ports against a socat pty pair.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>

#include <poll.h>

#include <filesystem>
#include <tuple>

#include "tests/device/outils.h"

extern char** environ;

namespace {
constexpr int A_INI = 24, A_NOM = 82, A_TEM = 98, A_DEBUG = 3, A_FLO = 44, A_OCTETS = 58, A_FIN = 61,
              A_PURGE = 79, B_VIT = 111;

using Canaux = Periphs;

TEST_F(Canaux, UsageReportsAndTheLastChannel) {
  // An opening without a number: the usage line, a failure.
  EXPECT_LT(lance({cl(0, A_INI, "FIC"), cl(0, A_NOM, "x")}), 0);
  EXPECT_EQ(sortie, "ini(\"FIC MEM COM TCP UDP MID\") nom(\"...\") periph([1-100])\a\n");
  // Unused and out-of-range channels: the report and an empty value.
  for (float n : {5.f, 0.f, 101.f, -7.f, 1e9f}) {
    EXPECT_EQ(lance({num(n)}), 0);
    EXPECT_TRUE(nil()) << n;
    EXPECT_NE(sortie.find("Valeur ou indice illegal"), std::string::npos) << sortie;
  }
  EXPECT_EQ(sortie.rfind("periph ", 0), 0u) << sortie;
  // Channel 100 opens, works, and cannot be closed.
  std::string nom = "/tmp/orvane-c100-" + std::to_string(getpid());
  ASSERT_EQ(lance({num(100), cl(0, A_INI, "FIC"), cl(0, A_NOM, nom)}), 0) << sortie;
  EXPECT_EQ(sortie, "\nperiph \tnumero = 100 fichier " + nom + "\n");
  EXPECT_EQ(ecrit({num(100)}, "cent"), 0);
  EXPECT_EQ(lance({num(100), cl(0, A_FIN)}), 0);
  EXPECT_EQ(sortie, "100: Valeur ou indice illegal\a\n");
  EXPECT_EQ(lance({num(100)}), 0);
  EXPECT_EQ(texte(), "cent");
  // In use: message 1:71 and a failure; the channel keeps its file.
  EXPECT_LT(lance({num(100), cl(0, A_INI, "FIC"), cl(0, A_NOM, "autre")}), 0);
  EXPECT_NE(sortie.find("Peripherique deja utilise"), std::string::npos);
  // A kind that does not exist, and a name missing where one is needed.
  EXPECT_LT(lance({num(7), cl(0, A_INI, "XYZ")}), 0);
  EXPECT_NE(sortie.find("XYZ: Type illegal\a\n"), std::string::npos);
  EXPECT_LT(lance({num(7), cl(0, A_INI, "MEM")}), 0);
  EXPECT_NE(sortie.find("MEM: Type illegal"), std::string::npos);
  EXPECT_LT(lance({num(7), cl(0, A_INI, std::vector<float>{3})}), 0);
  EXPECT_NE(sortie.find(": Type illegal"), std::string::npos);
  std::remove((nom + ".dat").c_str());
}

TEST_F(Canaux, HundredChannelsTimeoutsAndListing) {
  std::string base = "/tmp/orvane-cent-" + std::to_string(getpid()) + "-";
  for (int n = 1; n <= 100; ++n) ASSERT_EQ(lance({num(float(n)), cl(0, A_INI, "FIC"), cl(0, A_NOM, base + std::to_string(n))}), 0);
  EXPECT_LT(lance({num(42), cl(0, A_INI, "FIC"), cl(0, A_NOM, "x")}), 0);
  // Timeouts by channel, truncated; odd and large values.
  Clause v = cl(0, 0, std::vector<float>{1234.9f});
  EXPECT_EQ(lance({num(17), cl(0, A_TEM)}, &v), 0);
  EXPECT_EQ(lance({num(17), cl(0, A_TEM)}), 0);
  EXPECT_EQ(nombres(), std::vector<float>{1234});
  v.x = {3e9f};
  lance({num(18), cl(0, A_TEM)}, &v);
  lance({num(18), cl(0, A_TEM)});
  EXPECT_EQ(nombres(), std::vector<float>{2147483647.f});
  lance({num(0), cl(0, A_TEM)});
  EXPECT_TRUE(nil());
  // The listing: one line per channel.
  EXPECT_EQ(lance({cl(1, 128)}), 0);
  EXPECT_NE(sortie.find("1: Fichier " + base + "1 \n"), std::string::npos) << sortie;
  EXPECT_NE(sortie.find("100: Fichier " + base + "100 \n"), std::string::npos);
  // Closing several at once, then all: channel 100 stays.
  EXPECT_EQ(lance({cl(1, 128, std::vector<float>{3, 4, 250}), cl(0, A_FIN)}), 0);
  EXPECT_EQ(sortie, "250: Valeur ou indice illegal\a\n");
  lance({cl(1, 128)});
  EXPECT_EQ(sortie.find("\n3: "), std::string::npos);
  lance({cl(0, A_FIN), cl(1, 128)});
  lance({cl(1, 128)});
  EXPECT_EQ(sortie, "100: Fichier " + base + "100 \n");
}

TEST_F(Canaux, FilesAsTextAndFloats) {
  std::string nom = "/tmp/orvane-fic-" + std::to_string(getpid());
  ASSERT_EQ(lance({num(2), cl(0, A_INI, "FIC"), cl(0, A_NOM, nom)}), 0);
  // Missing file: name, messages 0:36 and 0:66, empty value.
  EXPECT_EQ(lance({num(2)}), 0);
  EXPECT_TRUE(nil());
  EXPECT_EQ(sortie, nom + ".dat: Ouverture du fichier impossible\a\nValeur ou indice illegal\a\n");
  // A long random text goes and comes back whole.
  std::mt19937 g(7);
  std::string t;
  for (int k = 0; k < 150000; ++k) t += static_cast<char>(' ' + g() % 90);
  EXPECT_EQ(ecrit({num(2)}, t), 0);
  EXPECT_EQ(lance({num(2)}), 0);
  EXPECT_EQ(texte(), t);
  EXPECT_EQ(resultat[2], 150000 / 4 + 1);
  // A file larger than the room left: -12.
  EXPECT_EQ(lance({num(2)}, nullptr, piles.eva_base + 1000), PILE_PLEINE);
  // Binary floats.
  lance({num(2), cl(0, A_FIN)});
  ASSERT_EQ(lance({num(2), cl(0, A_INI, "FIC"), cl(0, A_NOM, nom), cl(0, A_FLO)}), 0);
  float x[5] = {1.5f, -3e38f, 7e-40f, 12345678.f, 0};
  std::ofstream(nom + ".dat", std::ios::binary).write(reinterpret_cast<char*>(x), sizeof x - 1);
  lance({num(2)});
  EXPECT_EQ(nombres(), (std::vector<float>{1.5f, -3e38f, 7e-40f, 12345678.f}));
  // An unwritable place: name and message 0:37.
  lance({num(2), cl(0, A_FIN)});
  lance({num(2), cl(0, A_INI, "FIC"), cl(0, A_NOM, "/nonexistent/dir/f")});
  EXPECT_LT(ecrit({num(2)}, "x"), 0);
  EXPECT_EQ(sortie, "/nonexistent/dir/f.dat: Erreur en ecriture\a\n");
  std::remove((nom + ".dat").c_str());
}

// ---- shared memory ----------------------------------------------------------
constexpr const char* PAIR_MEM = R"(
import mmap, os, struct, sys, time
nom, tours = sys.argv[1], int(sys.argv[2])
f = open('/dev/shm/' + nom, 'r+b')
m = mmap.mmap(f.fileno(), 1024)
def mot(i): return struct.unpack_from('<i', m, 4 * i)[0]
def attend(i):
    fin = time.time() + 5
    while mot(i) == 0:
        if time.time() > fin: print('rien'); sys.exit(1)
for t in range(tours):
    attend(0)
    n = mot(0)
    b = [mot(i) for i in range(n)]
    struct.pack_into('<i', m, 400, 0)      # entree emptied before the answer
    struct.pack_into('<i', m, 0, 0)        # taken
    if b[1] == -1002:
        x = struct.unpack_from('<%df' % (n - 4), m, 16)
        rep = [sum(x), 42.0, float(t)]
        print('recu', ' '.join('%g' % v for v in x), flush=True)
    else:
        print('texte', m[16:4 * n].split(b'\0')[0].decode(), flush=True)
        rep = [float(n)]
    struct.pack_into('<iii%df' % len(rep), m, 404, -1002, len(rep), 1, *rep)
    struct.pack_into('<i', m, 400, 4 + len(rep))
)";

TEST_F(Canaux, SharedMemoryHandshakeWithAnotherProcess) {
  std::string nom = "orvane-mem-" + std::to_string(getpid());
  ASSERT_EQ(lance({num(9), cl(0, A_INI, "MEM"), cl(0, A_NOM, nom), cl(0, A_TEM, std::vector<float>{5000})}), 0);
  EXPECT_NE(sortie.find("Memoire partagee Windows (" + nom + ")\n"), std::string::npos);
  Python pair(PAIR_MEM, nom + " 3");
  // A read with a second element sends it, waits for it to be taken, then
  // for the answer.
  std::mt19937 g(3);
  for (int t = 0; t < 2; ++t) {
    std::vector<float> x;
    float somme = 0;
    for (int k = 0; k < 90; ++k) x.push_back(static_cast<float>(static_cast<int>(g() % 2000) - 1000)), somme += x.back();
    lance({num(9), cl(1, 4, x)});
    EXPECT_EQ(nombres(), (std::vector<float>{somme, 42, float(t)})) << sortie;
  }
  // A write alone: the text lands in `sortie`; the answer is read after.
  // (A read empties `sortie` first: the other side must have taken the text.)
  EXPECT_EQ(ecrit({num(9)}, "bonjour la memoire"), 0);
  int fd = shm_open(("/" + nom).c_str(), O_RDWR, 0);
  auto* m = static_cast<volatile mot*>(mmap(nullptr, 1024, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
  close(fd);
  for (int k = 0; k < 500 && __atomic_load_n(m, __ATOMIC_ACQUIRE) != 0; ++k) dort(10);
  munmap(const_cast<mot*>(m), 1024);
  lance({num(9)});
  std::string out = pair.fin();
  EXPECT_NE(out.find("texte bonjour la memoire"), std::string::npos) << out;
  EXPECT_EQ(nombres(), (std::vector<float>{9}));  // 4 + 19 bytes / 4 + 1
  // A message too long for `sortie`: refused with a message.
  EXPECT_LT(lance({num(9), cl(1, 4, std::vector<float>(120, 1.f))}), 0);
  EXPECT_NE(sortie.find("MEMOIRE PARTAGEE"), std::string::npos);
  shm_unlink(("/" + nom).c_str());
}

TEST_F(Canaux, SharedMemoryTimeoutWrongSizeAndCorruptBlock) {
  std::string nom = "orvane-mt-" + std::to_string(getpid());
  ASSERT_EQ(lance({num(4), cl(0, A_INI, "MEM"), cl(0, A_NOM, nom), cl(0, A_TEM, std::vector<float>{150})}), 0);
  auto t0 = std::chrono::steady_clock::now();
  EXPECT_EQ(lance({num(4)}), 0);
  long ms = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - t0).count();
  EXPECT_EQ(sortie, "TIMEOUT\a\n");
  EXPECT_EQ(resultat[0], 0);
  EXPECT_GE(ms, 150);
  EXPECT_LT(ms, 1000);
  // The other side writes a block that lies about its length, then one whose tag is not a value.
  int fd = shm_open(("/" + nom).c_str(), O_RDWR, 0);
  ASSERT_GE(fd, 0);
  auto* m = static_cast<mot*>(mmap(nullptr, 1024, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
  close(fd);
  for (mot faux : {9999, 2, -5}) {
    m[101] = BLOC_REEL;
    m[100] = faux;
    lance({num(4)});
    EXPECT_TRUE(nil() || resultat[0] == 0) << faux;
    if (faux > 0) { EXPECT_NE(sortie.find("MEMOIRE PARTAGEE"), std::string::npos) << faux; }
  }
  m[101] = BLOC_PHRASE;
  m[100] = 8;
  lance({num(4)});
  EXPECT_TRUE(nil());
  // A text without its end: it is closed within its block.
  m[101] = BLOC_CHAINE;
  std::memset(m + 104, 'a', 16);
  m[100] = 8;
  lance({num(4)});
  EXPECT_EQ(texte(), "aaaaaaaaaaaaaaa");
  munmap(m, 1024);
  shm_unlink(("/" + nom).c_str());
  // An object of another size is refused.
  std::string petit = "orvane-mp-" + std::to_string(getpid());
  fd = shm_open(("/" + petit).c_str(), O_RDWR | O_CREAT, 0600);
  ASSERT_EQ(ftruncate(fd, 100), 0);
  close(fd);
  EXPECT_LT(lance({num(5), cl(0, A_INI, "MEM"), cl(0, A_NOM, petit)}), 0);
  EXPECT_NE(sortie.find("ERREUR CreateFileMapping " + petit), std::string::npos);
  lance({num(5)});
  EXPECT_TRUE(nil());
  shm_unlink(("/" + petit).c_str());
}

// ---- serial port ------------------------------------------------------------
struct Socat {
  pid_t pid = -1;
  std::string a, b;
  Socat() {
    std::string base = "/tmp/orvane-pty-" + std::to_string(getpid()) + "-" + std::to_string(rand());
    a = base + "a", b = base + "b";
    std::string pa = "pty,raw,echo=0,link=" + a, pb = "pty,raw,echo=0,link=" + b;
    const char* argv[] = {"socat", pa.c_str(), pb.c_str(), nullptr};
    posix_spawnp(&pid, "socat", nullptr, nullptr, const_cast<char**>(argv), environ);
    for (int k = 0; k < 200 && !(std::filesystem::exists(a) && std::filesystem::exists(b)); ++k) dort(10);
  }
  void arrete() {
    if (pid > 0) kill(pid, SIGTERM), waitpid(pid, nullptr, 0);
    pid = -1;
  }
  ~Socat() { arrete(); }
};

int ouvre_brut(const std::string& chemin) {
  int fd = open(chemin.c_str(), O_RDWR | O_NOCTTY);
  termios t{};
  tcgetattr(fd, &t);
  cfmakeraw(&t);
  tcsetattr(fd, TCSANOW, &t);
  return fd;
}

std::string lit_tout(int fd, std::size_t n, int ms = 3000) {
  std::string s;
  auto fin = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
  while (s.size() < n && std::chrono::steady_clock::now() < fin) {
    pollfd f{fd, POLLIN, 0};
    if (poll(&f, 1, 50) <= 0) continue;
    char buf[512];
    ssize_t k = read(fd, buf, sizeof buf);
    if (k > 0) s.append(buf, static_cast<std::size_t>(k));
  }
  return s;
}

TEST_F(Canaux, SerialPortThroughAPtyPair) {
  Socat s;
  ASSERT_TRUE(std::filesystem::exists(s.a)) << "socat";
  // 7200 is not in the table: 9600.
  ASSERT_EQ(lance({num(3), cl(0, A_INI, "COM"), cl(0, A_NOM, s.a), cl(1, B_VIT, std::vector<float>{7200})}), 0) << sortie;
  EXPECT_NE(sortie.find("Port serie (" + s.a + ") 9600\n"), std::string::npos) << sortie;
  lance({cl(1, 128)});
  EXPECT_EQ(sortie, "3: Port serie " + s.a + " vitesse = 9600 \n");
  int autre = ouvre_brut(s.b);
  // The language writes; the other end reads every byte.
  std::mt19937 g(11);
  std::string t;
  for (int k = 0; k < 3000; ++k) t += static_cast<char>(1 + g() % 255);
  EXPECT_EQ(ecrit({num(3)}, t), 0);
  EXPECT_EQ(lit_tout(autre, t.size()), t);
  // The other end writes; reads of up to n bytes return at once with what came.
  std::string recu, envoi = t.substr(0, 700);
  ASSERT_EQ(write(autre, envoi.data(), envoi.size()), 700);
  for (int k = 0; k < 400 && recu.size() < 700; ++k) {
    lance({num(3), cl(0, A_OCTETS, std::vector<float>{300})});
    ASSERT_EQ(resultat[1], BLOC_CHAINE);
    std::string m(bloc_texte(resultat));
    EXPECT_LE(m.size(), 256u);
    if (m.empty()) dort(5);
    recu += m;
  }
  EXPECT_EQ(recu, envoi);
  // Nothing there: an empty text at once.
  lance({num(3)});
  EXPECT_EQ(texte(), "");
  // The debug clause prints the bytes as signed numbers.
  ASSERT_EQ(write(autre, "\x01\xff", 2), 2);
  dort(50);
  lance({num(3), cl(0, A_OCTETS, std::vector<float>{2}), cl(0, A_DEBUG)});
  EXPECT_EQ(sortie, "2 octets lus: 1 -1 \n");
  // Flush: what waited is gone.
  ASSERT_EQ(write(autre, "zzz", 3), 3);
  dort(50);
  lance({cl(1, 128, std::vector<float>{3, 0, 99, 500}), cl(0, A_PURGE)});
  lance({num(3), cl(0, A_OCTETS, std::vector<float>{10})});
  EXPECT_EQ(texte(), "");
  // The port vanishes: reads give empty texts, writes fail with a message,
  // and the channel closes.
  close(autre);
  s.arrete();
  dort(50);
  for (int k = 0; k < 3; ++k) {
    EXPECT_EQ(lance({num(3), cl(0, A_OCTETS, std::vector<float>{5})}), 0);
    EXPECT_EQ(texte(), "");
  }
  EXPECT_LT(ecrit({num(3)}, std::string(5000, 'x')), 0);
  EXPECT_NE(sortie.find("ERREUR ECRITURE COM"), std::string::npos);
  EXPECT_EQ(lance({num(3), cl(0, A_FIN)}), 0);
  // A port that does not exist.
  EXPECT_LT(lance({num(3), cl(0, A_INI, "COM"), cl(0, A_NOM, "/dev/pas-de-port")}), 0);
  EXPECT_NE(sortie.find("ERREUR OUVERTURE COM/dev/pas-de-port\a\n"), std::string::npos);
}

TEST_F(Canaux, SerialSpeedTable) {
  Socat s;
  for (auto [demande, donne, code] : {std::tuple{115200, 115200, B115200}, {1200, 1200, B1200}, {7200, 9600, B9600},
                                      {0, 9600, B9600}, {-38400, 9600, B9600}, {57600, 57600, B57600}}) {
    ASSERT_EQ(lance({num(6), cl(0, A_INI, "COM"), cl(0, A_NOM, s.a), cl(1, B_VIT, std::vector<float>{float(demande)})}), 0);
    EXPECT_NE(sortie.find(") " + std::to_string(donne) + "\n"), std::string::npos) << demande;
    int fd = open(s.a.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK);
    termios t{};
    if (fd >= 0) {  // a root process may still open the exclusive port
      tcgetattr(fd, &t);
      EXPECT_EQ(cfgetospeed(&t), code) << demande;
      EXPECT_EQ(t.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
      EXPECT_EQ(t.c_cflag & (PARENB | CSTOPB | CRTSCTS), 0u);
      close(fd);
    }
    lance({num(6), cl(0, A_FIN)});
  }
}
}  // namespace
