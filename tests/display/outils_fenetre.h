// For the window's tests: an Xvfb server owned by the test, orvane run in
// it with its console on pipes, xdotool as the second process that sends
// real key and mouse events, and the values the language prints read back.
#pragma once
// Xlib's macros (None, Status...) would break gtest's own names: gtest first.
#include <gtest/gtest.h>
#include <X11/Xlib.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "../outils/processus.h"

// The server picks a free display itself; it is stopped with the test.
struct Xvfb {
  pid_t pid = -1;
  std::string ecran;
  Xvfb() {
    int p[2];
    if (pipe(p)) return;
    pid = fork();
    if (pid == 0) {
      close(p[0]);
      // Its probing of taken displays is noise.
      (void)!freopen("/dev/null", "w", stderr);
      std::string fd = std::to_string(p[1]);
      execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset",
             static_cast<char*>(nullptr));
      _exit(127);
    }
    close(p[1]);
    // The server writes the number, then the newline apart: the pipe stays
    // open until the newline, or the second write would kill the server.
    std::string num;
    char c;
    while (read(p[0], &c, 1) == 1 && c != '\n') num.push_back(c);
    close(p[0]);
    if (!num.empty()) {
      ecran = ":" + num;
      setenv("DISPLAY", ecran.c_str(), 1);
      // The number comes a little before the server takes clients.
      for (int k = 0; k < 250; ++k) {
        if (Display* d = XOpenDisplay(nullptr)) {
          XCloseDisplay(d);
          break;
        }
        usleep(20000);
      }
    }
  }
  ~Xvfb() {
    if (pid > 0) {
      kill(pid, SIGTERM);
      waitpid(pid, nullptr, 0);
    }
  }
};

// Runs xdotool with these arguments; its standard output.
inline std::string xdo(const std::string& args) {
  std::string c = "timeout 10 xdotool " + args + " 2>/dev/null";
  std::string r;
  if (std::FILE* f = popen(c.c_str(), "r")) {
    char buf[256];
    while (std::fgets(buf, sizeof buf, f)) r += buf;
    pclose(f);
  }
  return r;
}

// The identifiers of the windows named orvane. One search may come back
// empty on a loaded machine, or when a window is destroyed while xdotool
// walks the tree (it stops on the X error): search again for up to a minute.
inline std::string fenetre_orvane() {
  std::string f;
  for (int k = 0; k < 6 && f.empty(); ++k) f = xdo("search --sync --name '^orvane$'");
  return f;
}

inline void dort(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

// The numbers that `$ expr` prints, read between two marks.
inline std::vector<float> valeurs(Processus& p, const std::string& expr) {
  static int k = 0;
  std::string debut = "@d" + std::to_string(++k), fin = "@f" + std::to_string(k);
  tape(p, "$ \"" + debut + "\"");
  tape(p, "$ " + expr);
  tape(p, "$ \"" + fin + "\"");
  std::vector<float> v;
  if (!attend(p, fin + " ", 20000)) return v;
  std::size_t a = p.lu.rfind(debut), b = p.lu.rfind(fin);
  std::istringstream s(p.lu.substr(a + debut.size(), b - a - debut.size()));
  std::string m;
  while (s >> m) {
    char* e;
    float x = std::strtof(m.c_str(), &e);
    if (e != m.c_str() && *e == 0) v.push_back(x);
  }
  return v;
}

// Reads `expr` until `ok` holds of its values or `ms` pass (a loaded
// machine is slow, never wrong): the last values read.
template <class F>
inline std::vector<float> attend_valeurs(Processus& p, const std::string& expr, F ok, int ms = 20000) {
  auto fin = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
  std::vector<float> v;
  for (;;) {
    v = valeurs(p, expr);
    if (ok(v) || std::chrono::steady_clock::now() > fin) return v;
    dort(20);
  }
}

inline std::size_t compte(const std::string& s, const std::string& motif) {
  std::size_t n = 0;
  for (std::size_t i = s.find(motif); i != std::string::npos; i = s.find(motif, i + 1)) ++n;
  return n;
}

// orvane with its window on the test's own server, 320 x 240.
struct Session {
  Xvfb x;
  Processus p;
  std::string fenetre;
  explicit Session(std::vector<std::string> plus = {}) {
    std::vector<std::string> a{"ID", "ini=env/initb.h", "x=320", "y=240", "uti=tests/display/fixtures"};
    a.insert(a.end(), plus.begin(), plus.end());
    p = lance_orvane(a);
    fenetre = fenetre_orvane();
    if (auto n = fenetre.find('\n'); n != std::string::npos) fenetre.resize(n);
    if (!fenetre.empty()) xdo("windowfocus --sync " + fenetre);
  }
  ~Session() {
    int statut = 0;
    if (p.pid > 0) {
      kill(p.pid, SIGKILL);
      statut = termine(p);
    }
    // What the console showed, to see why.
    if (::testing::Test::HasFailure())
      std::fprintf(stderr, "---- console (statut %d)\n%s\n----\n", statut,
                   p.lu.substr(p.lu.find("empilements") != std::string::npos ? p.lu.find("empilements") : 0).c_str());
  }
  // Keys typed into the window, then a moment for the idle step to see them.
  void touches(const std::string& texte) {
    std::string t = texte;
    for (std::size_t i = 0; (i = t.find('\'', i)) != std::string::npos; i += 4) t.replace(i, 1, "'\\''");
    xdo("type --delay 2 '" + t + "'");
  }
  void touche(const std::string& nom) { xdo("key " + nom); }
  // The mode of the window, as `fen` gives it, and a wait for one.
  float mode() {
    auto v = valeurs(p, "fen");
    return v.size() > 2 ? v[2] : -1;
  }
  bool attend_mode(float m, int ms = 20000) {
    for (int t = 0; t < ms; t += 50) {
      if (mode() == m) return true;
      dort(50);
    }
    return false;
  }
  // A variable of the program, -1 if it has no value.
  float compteur(const std::string& nom) {
    auto v = valeurs(p, nom);
    return v.empty() ? -1 : v[0];
  }
};
