// MIDI input: messages sent as a raw byte stream through a pty, read as the
// hex text of the last one; System Exclusive dumps; the ALSA sequencer
// where one exists.
#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>

#include <filesystem>

#include "tests/device/outils.h"

namespace {
constexpr int A_INI = 24, A_NOM = 82, A_PORT = 57, A_FIN = 61;

struct Midi : Periphs {
  int maitre = -1;
  std::string esclave;
  void SetUp() override {
    Periphs::SetUp();
    maitre = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(maitre, 0);
    grantpt(maitre);
    unlockpt(maitre);
    esclave = ptsname(maitre);
    termios t{};
    tcgetattr(maitre, &t);
    cfmakeraw(&t);
    tcsetattr(maitre, TCSANOW, &t);
  }
  void TearDown() override {
    Periphs::TearDown();
    if (maitre >= 0) close(maitre);
  }
  void envoie(std::vector<int> octets) {
    std::string s;
    for (int o : octets) s += static_cast<char>(o);
    ASSERT_EQ(write(maitre, s.data(), s.size()), static_cast<ssize_t>(s.size()));
  }
  // The next message the language reads, waiting for one; "" after a second.
  std::string prochain() {
    for (int k = 0; k < 200; ++k) {
      lance({num(40)});
      std::string t = texte();
      if (!t.empty()) return t;
      dort(5);
    }
    return "";
  }
  // The text without its time byte.
  static std::string sans_temps(const std::string& t) { return t.size() >= 9 ? t.substr(0, 9) : t; }
};

TEST_F(Midi, ShortMessagesAsHexAndRunningStatus) {
  ASSERT_EQ(lance({num(40), cl(0, A_INI, "MID"), cl(0, A_NOM, esclave), cl(0, A_PORT, std::vector<float>{3})}), 0) << sortie;
  EXPECT_EQ(sortie, "\nperiph \tnumero = 40 MIM_OPEN\nMIDI ouvert sur port 3\n");
  // Nothing yet: an empty text.
  lance({num(40)});
  EXPECT_EQ(texte(), "");
  envoie({0x90, 0x3C, 0x64});  // note-on
  std::string t = prochain();
  EXPECT_EQ(sans_temps(t), "90 3c 64 ");
  EXPECT_EQ(t.size(), 13u);
  EXPECT_EQ(t.substr(11), "\r\n");
  lance({num(40)});  // read once: empty after
  EXPECT_EQ(texte(), "");
  envoie({0xB3, 0x07, 0x7F});  // control change, channel 4
  EXPECT_EQ(sans_temps(prochain()), "b3 07 7f ");
  envoie({0xEF, 0x00, 0x40});  // pitch bend centre, channel 16
  EXPECT_EQ(sans_temps(prochain()), "ef 00 40 ");
  envoie({0xC5, 0x11});  // program change: one data byte
  EXPECT_EQ(sans_temps(prochain()), "c5 11 00 ");
  // Running status, a real-time byte in the middle of a message, data with
  // no status before it: the last complete message counts.
  envoie({0x45, 0x80, 0x3C, 0x00, 0x3E, 0xF8, 0x40});
  EXPECT_EQ(sans_temps(prochain()), "80 3e 40 ");
  // The string of the type, channel closed and opened again.
  lance({num(40), cl(0, A_FIN)});
  EXPECT_EQ(sortie, "MIM_CLOSE\n");
  EXPECT_FALSE(midi_ouvert());
  ASSERT_EQ(lance({num(40), cl(0, A_INI, "MID"), cl(0, A_NOM, esclave)}), 0);
  // One input at a time.
  EXPECT_LT(lance({num(41), cl(0, A_INI, "MID"), cl(0, A_NOM, esclave)}), 0);
  EXPECT_NE(sortie.find("Error opening the default MIDI In Device!\r\n"), std::string::npos);
  lance({num(41)});
  EXPECT_TRUE(nil());
  EXPECT_LT(lance({num(41), cl(0, A_INI, "MID"), cl(0, A_NOM, "/dev/pas-de-midi")}), 0);
}

TEST_F(Midi, LongSystemExclusiveInPiecesClosedBy247) {
  std::string out = sortie_de([&] {
    lance({num(40), cl(0, A_INI, "MID"), cl(0, A_NOM, esclave)});
    std::vector<int> s{0xF0};
    for (int k = 0; k < 598; ++k) s.push_back(k % 128);
    s.push_back(0xF7);
    envoie(s);
    envoie({0x91, 0x30, 0x31});
    prochain();
    dort(100);
  });
  EXPECT_NE(out.find("*************** System Exclusive **************\r\n0x"), std::string::npos) << out;
  std::size_t tete = out.find("System Exclusive");
  EXPECT_EQ(out.find("System Exclusive", tete + 1), std::string::npos);  // one message, one header
  // 600 bytes: 37 full rows of 16, and 8 more.
  std::size_t n = 0, lignes = 0;
  for (std::size_t k = out.find("0xF0 "); k < out.size() && out.compare(k, 2, "0x") == 0;) {
    ++n;
    k += 4;
    if (out.compare(k, 2, "\r\n") == 0) ++lignes, k += 2;
    else if (out[k] == ' ') ++k;
    else break;
  }
  EXPECT_EQ(n, 600u);
  EXPECT_EQ(lignes, 37u);
  EXPECT_NE(out.find("0xF7 \r\n******************************************\r\n"), std::string::npos) << out;
  lance({num(40)});
  EXPECT_EQ(sans_temps(texte()), "");  // read by prochain already
}

TEST_F(Midi, RandomBytesAndAVanishingStream) {
  ASSERT_EQ(lance({num(40), cl(0, A_INI, "MID"), cl(0, A_NOM, esclave)}), 0);
  std::mt19937 g(99);
  std::string lu;
  std::string out = sortie_de([&] {
    for (int k = 0; k < 50; ++k) {
      std::vector<int> o;
      for (int i = 0; i < 400; ++i) o.push_back(static_cast<int>(g() % 256));
      envoie(o);
      lance({num(40)});
      std::string t = texte();
      // Every text read is a whole message: four hex bytes, a status first.
      if (!t.empty()) {
        EXPECT_EQ(t.size(), 13u) << t;
        EXPECT_GE(std::stoi(t.substr(0, 2), nullptr, 16), 0x80) << t;
      }
    }
    // The input may still be parsing the random bytes: the marker message
    // comes after them.
    envoie({0xF7, 0x92, 0x01, 0x02});
    std::string t;
    for (int k = 0; k < 50 && sans_temps(t) != "92 01 02 "; ++k) t = prochain();
    EXPECT_EQ(sans_temps(t), "92 01 02 ");
    // The other side closes: the input reports it and the channel still closes.
    close(maitre);
    maitre = -1;
    dort(300);
    lance({num(40)});
    lance({num(40), cl(0, A_FIN)});
  });
  EXPECT_NE(out.find("MIM_ERROR\n"), std::string::npos);
  EXPECT_NE(out.find("MIM_CLOSE\n"), std::string::npos);
}

TEST_F(Midi, AlsaSequencer) {
  if (!std::filesystem::exists("/dev/snd/seq")) {
    std::printf("ALSA sequencer test skipped: /dev/snd/seq does not exist on this machine\n");
    GTEST_SKIP() << "no /dev/snd/seq";
  }
  ASSERT_EQ(lance({num(40), cl(0, A_INI, "MID")}), 0) << sortie;
  EXPECT_NE(sortie.find("MIDI ouvert sur port 0\n"), std::string::npos);
  lance({num(40)});
  EXPECT_EQ(texte(), "");
  lance({num(40), cl(0, A_FIN)});
}
}  // namespace
