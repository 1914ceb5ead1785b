// The window and sound libraries are mapped only once a window or the sound
// is opened, on the test's own Xvfb server; and when one cannot be loaded,
// its numbered message, no window, and the console goes on.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "device/device.h"
#include "tests/display/outils_fenetre.h"

namespace {

std::string carte(pid_t pid) {
  std::stringstream s;
  s << std::ifstream("/proc/" + std::to_string(pid) + "/maps").rdbuf();
  return s.str();
}

// A temporary HOME whose ALSA default device writes into /dev/null, and a
// short sound file of odd length to play; the environment is given back.
struct Lieu {
  std::string dir, home, wav;
  Lieu() {
    char modele[] = "/tmp/orvane_charge_XXXXXX";
    dir = mkdtemp(modele) ? modele : "";
    std::ofstream(dir + "/.asoundrc") << "pcm.!default {\n type file\n slave.pcm \"null\"\n file \"/dev/null\"\n"
                                         " format \"raw\"\n}\n";
    wav = dir + "/court.wav";
    std::vector<std::uint8_t> o = son_entete(format_son(0), 1237);
    o.resize(o.size() + 1237, 131);
    o.push_back(0);
    std::ofstream(wav, std::ios::binary).write(reinterpret_cast<const char*>(o.data()), static_cast<std::streamsize>(o.size()));
    if (const char* h = std::getenv("HOME")) home = h;
    setenv("HOME", dir.c_str(), 1);
  }
  ~Lieu() {
    setenv("HOME", home.c_str(), 1);
    unsetenv("ORVANE_BIB_REP");
    if (!dir.empty()) std::system(("rm -rf " + dir).c_str());
  }
};

TEST(Chargement, WindowAndSoundLibrariesMappedOnFirstNeed) {
  Lieu l;
  Xvfb x;
  ASSERT_FALSE(x.ecran.empty());
  const char* fen[] = {"libX11.so", "libGLX.so", "libOpenGL.so"};
  {
    Processus p = lance_orvane({"gra=0", "ID", "ini=env/initb.h"});
    tape(p, "$ 6 * 7");
    ASSERT_TRUE(attend(p, "42.000000")) << p.lu;
    std::string c = carte(p.pid);
#ifdef ORVANE_TARDIF
    for (const char* b : fen) EXPECT_EQ(c.find(b), std::string::npos) << b << " mapped without a window";
    EXPECT_EQ(c.find("libasound.so"), std::string::npos);
#endif
    EXPECT_EQ(termine(p), 0);
  }
  Processus p = lance_orvane({"ID", "ini=env/initb.h", "x=320", "y=240"});
  EXPECT_FALSE(fenetre_orvane().empty()) << p.lu;
  tape(p, "$ 6 * 7");
  ASSERT_TRUE(attend(p, "42.000000", 20000)) << p.lu;
  std::string c = carte(p.pid);
  for (const char* b : fen) EXPECT_NE(c.find(b), std::string::npos) << b;
#ifdef ORVANE_TARDIF
  EXPECT_EQ(c.find("libasound.so"), std::string::npos);
#endif
  // The sound, asked from the window's idle step, loads its own library.
  tape(p, "audio bip(\"" + l.wav + "\")");
  tape(p, "$ 5 * 7");
  ASSERT_TRUE(attend(p, "35.000000", 20000)) << p.lu;
  EXPECT_NE(carte(p.pid).find("libasound.so"), std::string::npos);
  EXPECT_EQ(p.lu.find("introuvable"), std::string::npos) << p.lu;
  kill(p.pid, SIGKILL);
  termine(p);
}

TEST(Chargement, MissingLibraryGivesItsMessage) {
#ifndef ORVANE_TARDIF
  GTEST_SKIP() << "this build links the window and sound libraries";
#endif
  Lieu l;
  Xvfb x;
  ASSERT_FALSE(x.ecran.empty());
  // An empty directory in place of the system's: no library of either group.
  setenv("ORVANE_BIB_REP", l.dir.c_str(), 1);
  Processus p = lance_orvane({"ID", "ini=env/initb.h", "x=320", "y=240"});
  tape(p, "a = 1234567 * 7");
  tape(p, "audio bip(\"" + l.wav + "\")");
  tape(p, "audio bip(\"" + l.wav + "\")");
  tape(p, "$ a");
  EXPECT_EQ(termine(p), 0) << p.lu;
  EXPECT_NE(p.lu.find("libX11.so.6: Bibliotheque partagee introuvable: la fenetre ou le son reste ferme"),
            std::string::npos)
      << p.lu;
  // Asked twice, the sound tries again and says so again.
  EXPECT_EQ(compte(p.lu, "libasound.so.2: Bibliotheque partagee introuvable"), 2u) << p.lu;
  EXPECT_NE(p.lu.find("8641969.000000"), std::string::npos) << p.lu;
  EXPECT_EQ(xdo("search --name '^orvane$'"), "");
}

}  // namespace
