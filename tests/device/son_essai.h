// The set-up of the sound tests that run orvane: a temporary HOME whose
// asoundrc makes ALSA's default device a file plugin (capture from a raw
// file made by the test, or playback into one), console lines in, the
// output and exit status back, and the numbers of its result lines.
#pragma once
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

struct Essai {
  std::string dir;
  Essai() {
    char modele[] = "/tmp/orvane_son_XXXXXX";
    dir = mkdtemp(modele) ? modele : "";
  }
  ~Essai() {
    if (!dir.empty()) std::system(("rm -rf " + dir).c_str());
  }
  // The device: the file plugin reading `octets` as its capture, or any
  // other definition of the default device.
  void son(const std::vector<unsigned char>& octets) {
    std::ofstream(dir + "/son.raw", std::ios::binary)
        .write(reinterpret_cast<const char*>(octets.data()), static_cast<std::streamsize>(octets.size()));
    peripherique("pcm.!default {\n type file\n slave.pcm \"null\"\n file \"/dev/null\"\n infile \"" + dir +
                 "/son.raw\"\n format \"raw\"\n}\n");
  }
  void peripherique(const std::string& conf) { std::ofstream(dir + "/.asoundrc") << conf; }
  // Runs the lines; the output, and the exit status in *code.
  std::string lance(const std::string& lignes, int* code = nullptr) {
    std::ofstream(dir + "/entree") << lignes;
    std::string cmd = "cd " ORVANE_SOURCE " && HOME=" + dir + " " ORVANE_BIN " gra=0 ID ini=env/initb.h < " + dir +
                      "/entree > " + dir + "/sortie 2>&1";
    int r = std::system(cmd.c_str());
    if (code) *code = WIFEXITED(r) ? WEXITSTATUS(r) : -1;
    std::stringstream s;
    s << std::ifstream(dir + "/sortie").rdbuf();
    return s.str();
  }
};

inline std::vector<unsigned char> ton(int n, double hz, double amp, double phase) {
  std::vector<unsigned char> o(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i)
    o[static_cast<std::size_t>(i)] =
        static_cast<unsigned char>(std::lround(128 + amp * std::sin(2 * M_PI * hz * i / 8000 + phase)));
  return o;
}

// The numbers of each line of results ("> " then floats).
inline std::vector<std::vector<double>> valeurs(const std::string& sortie) {
  std::vector<std::vector<double>> r;
  std::istringstream in(sortie);
  std::string l;
  while (std::getline(in, l)) {
    while (l.rfind("> ", 0) == 0) l = l.substr(2);
    std::istringstream m(l);
    std::vector<double> v;
    double x;
    while (m >> x) v.push_back(x);
    if (!v.empty() && m.eof()) r.push_back(v);
  }
  return r;
}

