// A line typed at a terminal while the window animates: orvane on a
// pseudo-terminal (its line editor on), the mouse tool redrawing at every
// frame on an Xvfb server, and the window's pixels read from the server
// while the line is half typed.
#include <pty.h>

#include <set>

#include "outils_fenetre.h"
// After gtest (in the helpers): Xlib's macros would break its names.
#include <X11/Xutil.h>

namespace {
struct Terminal {
  pid_t pid = -1;
  int maitre = -1;
  std::string lu;
  Terminal() {
    pid = forkpty(&maitre, nullptr, nullptr, nullptr);
    if (pid == 0) {
      if (chdir(ORVANE_SOURCE) != 0) _exit(127);
      setenv("TERM", "dumb", 1);
      execl(ORVANE_BIN, ORVANE_BIN, "ID", "ini=env/initb.h", "x=320", "y=240", "uti=tests/display/fixtures",
            static_cast<char*>(nullptr));
      _exit(127);
    }
  }
  ~Terminal() {
    if (pid > 0) {
      kill(pid, SIGKILL);
      waitpid(pid, nullptr, 0);
    }
    if (maitre >= 0) close(maitre);
  }
  void ecrit(const std::string& s) { (void)!write(maitre, s.data(), s.size()); }
  bool attend(const std::string& texte, int ms = 5000) {
    auto fin = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    while (lu.find(texte) == std::string::npos) {
      auto reste = std::chrono::duration_cast<std::chrono::milliseconds>(fin - std::chrono::steady_clock::now());
      if (reste.count() <= 0) return false;
      pollfd f{maitre, POLLIN, 0};
      if (poll(&f, 1, static_cast<int>(reste.count())) <= 0) return false;
      char buf[4096];
      ssize_t n = read(maitre, buf, sizeof buf);
      if (n <= 0) return false;
      lu.append(buf, static_cast<std::size_t>(n));
    }
    return true;
  }
};

// Red of the window's pixel at x, y (from the top), read from the server.
int rouge(Display* d, Window w, int x, int y) {
  XImage* im = XGetImage(d, w, x, y, 1, 1, AllPlanes, ZPixmap);
  if (!im) return -1;
  unsigned long p = XGetPixel(im, 0, 0), masque = im->red_mask;
  XDestroyImage(im);
  return static_cast<int>((p & masque) >> 16);
}

TEST(Terminal, LaFenetreBougePendantLaFrappe) {
  Xvfb x;
  ASSERT_FALSE(x.ecran.empty());
  Terminal t;
  ASSERT_GT(t.pid, 0);
  std::string id = fenetre_orvane();
  ASSERT_FALSE(id.empty());
  Window w = std::strtoul(id.c_str(), nullptr, 10);
  ASSERT_TRUE(t.attend("empilements", 20000));
  Display* d = XOpenDisplay(nullptr);
  ASSERT_NE(d, nullptr);
  t.ecrit("sou(\"degrade\")\r");
  // Many different pictures read back within `ms` (a frame every few
  // milliseconds when the machine is free; a loaded one is slower, and the
  // wait only ends early).
  auto images = [&](std::size_t voulu, int ms) {
    std::set<int> vus;
    auto fin = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    while (vus.size() < voulu && std::chrono::steady_clock::now() < fin) {
      vus.insert(rouge(d, w, 20, 20));
      dort(37);
    }
    return vus;
  };
  EXPECT_GE(images(2, 20000).size(), 2u);
  // Half a line, typed one key at a time as a person would.
  for (char c : std::string("x = 42"))
    t.ecrit(std::string(1, c)), dort(30);
  ASSERT_TRUE(t.attend("x = 42", 20000));  // echoed: the editor has the keys
  std::set<int> vus = images(6, 20000);
  EXPECT_EQ(vus.count(-1), 0u);
  EXPECT_GE(vus.size(), 6u);
  // Not run yet: the line is not finished.
  EXPECT_EQ(t.lu.find("4217"), std::string::npos);
  t.ecrit("17\r");
  t.ecrit("$ x + 1\r");
  EXPECT_TRUE(t.attend("4218.000000", 20000));
  // Still animating after the line ran.
  EXPECT_GE(images(3, 20000).size(), 3u);
  XCloseDisplay(d);
  if (HasFailure()) std::fprintf(stderr, "---- terminal\n%s\n----\n", t.lu.c_str());
}
}  // namespace
