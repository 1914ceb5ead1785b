// The window under Xvfb with Mesa: keys and mouse from xdotool, a second
// process; the picture read back by the language (glReadPixels).
#include <algorithm>
#include <atomic>

#include "outils_fenetre.h"

namespace {
const std::string DEBORDE = "Depassement de taille";

TEST(Fenetre, ClavierCaptureBorneEtLecture) {
  Session s;
  ASSERT_FALSE(s.fenetre.empty());
  ASSERT_TRUE(attend(s.p, "empilements"));
  // "<" and a finished line: the language reads the text.
  s.touches("<abc");
  s.touche("Return");
  dort(100);
  tape(s.p, "$ cle");
  EXPECT_TRUE(attend(s.p, "> abc \n"));
  // A key alone: the buffer holds the last key.
  s.touches("q");
  dort(100);
  tape(s.p, "$ cle");
  EXPECT_TRUE(attend(s.p, "> q \n"));
  // A line not finished: empty, and it stays through frames.
  s.touches("<de");
  dort(200);
  tape(s.p, "$ cle");
  EXPECT_TRUE(attend(s.p, "> q \n>  \n"));
  // "!" and 200 characters: the buffer keeps to its bound, one report per
  // character past it, and the line still runs when finished.
  std::size_t avant = compte(s.p.lu, DEBORDE);
  s.touches("!$ 73" + std::string(196, ' '));
  s.touche("Return");
  ASSERT_TRUE(attend(s.p, "73.000000"));
  EXPECT_EQ(compte(s.p.lu, DEBORDE) - avant, 200u - 126u);
}

TEST(Fenetre, LigneTapeeEtTableDesTouches) {
  Session s;
  ASSERT_TRUE(attend(s.p, "empilements"));
  s.touches("!x = 4217");
  s.touche("Return");
  dort(100);
  EXPECT_EQ(valeurs(s.p, "x"), std::vector<float>{4217});
  // The background cleared by a line typed in the window, read back.
  s.touches("!fond_ecran(0, 1, 0.2)");
  s.touche("Return");
  dort(100);
  EXPECT_EQ(valeurs(s.p, "pixel_fenetre(3, 7)"), (std::vector<float>{0, 255, 51}));
  EXPECT_EQ(valeurs(s.p, "pixel_fenetre(319, 239)"), (std::vector<float>{0, 255, 51}));
  // A key bound by name and a line bound after "<".
  tape(s.p, "cle(\"marque t\")");
  tape(s.p, "cle(\"marque encore\")");
  s.touches("t");
  dort(150);
  s.touches("<encore");
  s.touche("Return");
  dort(150);
  EXPECT_EQ(valeurs(s.p, "marques"), std::vector<float>{2});
  // Outside the window: a refused read, and the program goes on.
  tape(s.p, "$ pixel_fenetre(320, 0)");
  tape(s.p, "cle(\"seul\")");
  EXPECT_TRUE(attend(s.p, "cle Type de valeur illegal"));
  EXPECT_EQ(valeurs(s.p, "x + 1"), std::vector<float>{4218});
}

TEST(Fenetre, PauseRepriseEtEchappement) {
  Session s;
  ASSERT_TRUE(attend(s.p, "empilements"));
  tape(s.p, "sou(\"clignote\")");
  EXPECT_TRUE(s.attend_mode(16));
  float a = valeurs(s.p, "vues").at(0);
  EXPECT_GT(attend_valeurs(s.p, "vues", [&](auto& v) { return !v.empty() && v[0] > a; }).at(0), a);
  // "[" pauses: no frame runs, the picture stands.
  s.touches("[");
  EXPECT_TRUE(s.attend_mode(-16));
  std::vector<float> p1 = valeurs(s.p, "vues, pixel_fenetre(10, 10)");
  dort(150);
  std::vector<float> p2 = valeurs(s.p, "vues, pixel_fenetre(10, 10)");
  EXPECT_EQ(p1, p2);
  s.touches("[");  // no further effect
  dort(100);
  EXPECT_EQ(s.mode(), -16);
  s.touches("]");
  EXPECT_GT(attend_valeurs(s.p, "vues", [&](auto& v) { return !v.empty() && v[0] > p2.at(0); }).at(0), p2.at(0));
  // Escape with the option on leaves the tool.
  s.touche("Escape");
  ASSERT_TRUE(attend(s.p, "clavier\n", 20000));
  EXPECT_EQ(s.mode(), 0);
}

TEST(Fenetre, EchappementSansOption) {
  Session s({"esc=96"});
  ASSERT_TRUE(attend(s.p, "empilements"));
  tape(s.p, "sou(1)");
  s.touche("Escape");
  dort(150);
  EXPECT_EQ(s.mode(), 16);
  EXPECT_EQ(s.p.lu.find("clavier\n"), std::string::npos);
  tape(s.p, "sou(0)");
  EXPECT_EQ(s.mode(), 0);
}

TEST(Fenetre, RedimensionsExtremes) {
  Session s;
  ASSERT_FALSE(s.fenetre.empty());
  ASSERT_TRUE(attend(s.p, "empilements"));
  // A height of 0 is refused with the warning; the size stays.
  tape(s.p, "fen(320, 0)");
  EXPECT_TRUE(attend(s.p, "Warning Reshape_Func(320, 0)\n", 20000));
  std::vector<float> f = valeurs(s.p, "fen");
  EXPECT_EQ(f.at(0), 320);
  EXPECT_EQ(f.at(1), 240);
  for (auto [w, h] : {std::pair{1, 1}, std::pair{8000, 8000}, std::pair{517, 389}}) {
    xdo("windowsize --sync " + s.fenetre + " " + std::to_string(w) + " " + std::to_string(h));
    f = attend_valeurs(s.p, "fen", [&](auto& v) { return v.size() >= 2 && v[0] == w && v[1] == h; });
    ASSERT_GE(f.size(), 2u);
    EXPECT_EQ(f[0], w);
    EXPECT_EQ(f[1], h);
    // The top left corner is on the screen at every size (a window larger
    // than the screen keeps no pixels beyond it, and is slow to clear).
    // Mesa's software GL may send the first drawings after a change of size
    // to the old buffer: the background is set again until it shows.
    if (w > 1280) continue;
    const std::vector<float> violet{153, 51, 255};
    tape(s.p, "fond_ecran(0, 0, 0)");
    std::string lit = "pixel_fenetre(0, " + std::to_string(h - 1) + ")";
    std::vector<float> c;
    for (int k = 0; k < 100 && c != violet; ++k) {
      tape(s.p, "fond_ecran(0.6, 0.2, 1)");
      c = valeurs(s.p, lit);
    }
    EXPECT_EQ(c, violet);
  }
}

TEST(Fenetre, SourisPositionBoutonsEtVitesse) {
  Session s;
  ASSERT_FALSE(s.fenetre.empty());
  ASSERT_TRUE(attend(s.p, "empilements"));
  tape(s.p, "sou(1)");
  auto onze = [](auto ok) { return [ok](const std::vector<float>& v) { return v.size() == 11 && ok(v); }; };
  xdo("mousemove --window " + s.fenetre + " 40 100");
  std::vector<float> m = attend_valeurs(s.p, "sou", onze([](auto& v) { return v[0] == 40 && v[1] == 100; }));
  ASSERT_EQ(m.size(), 11u);
  EXPECT_EQ(m[0], 40);
  EXPECT_EQ(m[1], 100);
  xdo("mousedown 1");
  m = attend_valeurs(s.p, "sou", onze([](auto& v) { return v[4] == 1; }));
  EXPECT_EQ(m[3], 0);  // button 0, pressed
  EXPECT_EQ(m[4], 1);
  xdo("mouseup 1");
  m = attend_valeurs(s.p, "sou", onze([](auto& v) { return v[4] == 0; }));
  EXPECT_EQ(m[3], -1);
  EXPECT_EQ(m[4], 0);
  // A scripted motion to the right, read while it runs: the speed is
  // positive in x and nil in y. The motion goes on until a read has seen
  // it (or 20 s), so that a slow machine cannot miss it.
  std::string pas;
  for (int i = 0; i <= 100; ++i)
    pas += " mousemove --window " + s.fenetre + " " + std::to_string(40 + 2 * i) + " 100 sleep 0.004";
  for (int i = 100; i >= 0; --i)
    pas += " mousemove --window " + s.fenetre + " " + std::to_string(40 + 2 * i) + " 100 sleep 0.004";
  std::atomic<bool> vu{false};
  std::thread mouvement([&] {
    for (int k = 0; k < 20 && !vu; ++k) (void)!std::system(("xdotool" + pas).c_str());
  });
  float vx_max = 0, vy_abs = 0;
  auto fin = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (vx_max <= 0.5f && std::chrono::steady_clock::now() < fin) {
    m = valeurs(s.p, "sou");
    if (m.size() == 11) {
      vx_max = std::max(vx_max, m[5]);
      vy_abs = std::max(vy_abs, std::abs(m[6]));
    }
  }
  vu = true;
  mouvement.join();
  EXPECT_GT(vx_max, 0.5f);
  EXPECT_EQ(vy_abs, 0);
  // Still, the speed falls back to 0.
  EXPECT_EQ(attend_valeurs(s.p, "sou", onze([](auto& v) { return v[5] == 0; })).at(5), 0);
  // A drag out of the window: the window keeps the pointer, and positions
  // past its edges arrive as they are, without harm.
  xdo("mousemove --window " + s.fenetre + " 300 200 mousedown 1 mousemove 1100 900");
  m = attend_valeurs(s.p, "sou", onze([](auto& v) { return v[0] == 1100 && v[1] == 900; }));
  ASSERT_EQ(m.size(), 11u);
  EXPECT_EQ(m[0], 1100);
  EXPECT_EQ(m[1], 900);
  xdo("mouseup 1 mousemove 1200 1000");
  EXPECT_EQ(attend_valeurs(s.p, "sou", onze([](auto& v) { return v[4] == 0; })).at(4), 0);
  EXPECT_EQ(valeurs(s.p, "1 + 1"), std::vector<float>{2});
}

TEST(Fenetre, DixMilleTouchesEtFermeture) {
  Session s;
  ASSERT_TRUE(attend(s.p, "empilements"));
  s.touche("--delay 0 --repeat 10000 a");
  tape(s.p, "$ cle");
  EXPECT_TRUE(attend(s.p, "> a \n", 20000));
  // Closed by the window manager's request: a message, and the console
  // goes on; the window opens again on demand.
  Display* d = XOpenDisplay(nullptr);
  ASSERT_NE(d, nullptr);
  Window w = std::strtoul(s.fenetre.c_str(), nullptr, 10);
  XEvent e{};
  e.xclient.type = ClientMessage;
  e.xclient.window = w;
  e.xclient.message_type = XInternAtom(d, "WM_PROTOCOLS", False);
  e.xclient.format = 32;
  e.xclient.data.l[0] = static_cast<long>(XInternAtom(d, "WM_DELETE_WINDOW", False));
  e.xclient.data.l[1] = CurrentTime;
  XSendEvent(d, w, False, NoEventMask, &e);
  XFlush(d);
  EXPECT_TRUE(attend(s.p, "Fenetre fermee"));
  EXPECT_EQ(valeurs(s.p, "7 * 6"), std::vector<float>{42});
  tape(s.p, "fen(0)");
  EXPECT_FALSE(fenetre_orvane().empty());
  tape(s.p, "fond_ecran(1, 1, 0)");
  EXPECT_EQ(valeurs(s.p, "pixel_fenetre(5, 5)"), (std::vector<float>{255, 255, 0}));
  XCloseDisplay(d);
}

// The windows freeglut made for menus, by X identifier.
std::vector<std::string> menus() {
  std::vector<std::string> v;
  std::istringstream s(xdo("search --name '^freeglut menu$'"));
  for (std::string l; s >> l;) v.push_back(l);
  std::sort(v.begin(), v.end());
  return v;
}

TEST(Fenetre, ReouvertureMenusEtPleinEcran) {
  Session s;
  ASSERT_TRUE(attend(s.p, "empilements"));
  // Slow builds make the window late: wait for what is asked.
  auto attend_menus = [](auto ok) {
    std::vector<std::string> v;
    for (int k = 0; k < 100 && !ok(v = menus()); ++k) dort(50);
    return v;
  };
  // The two roots and the shell's own menu that holds them.
  std::vector<std::string> avant = attend_menus([](auto& v) { return v.size() == 3; });
  EXPECT_EQ(avant.size(), 3u);
  // Opened again twice: the old window and its menus go, new ones come,
  // and the new window is the one the commands draw in.
  tape(s.p, "fen(0)");
  tape(s.p, "fen(0)");
  std::vector<std::string> apres = attend_menus([&](auto& v) { return v.size() == 3 && v != avant; });
  tape(s.p, "$ \"@r\"");
  ASSERT_TRUE(attend(s.p, "@r "));
  apres = menus();
  ASSERT_EQ(apres.size(), 3u);
  for (const std::string& m : apres) EXPECT_EQ(std::count(avant.begin(), avant.end(), m), 0);
  std::string f = xdo("search --name '^orvane$'");
  EXPECT_EQ(std::count(f.begin(), f.end(), '\n'), 1);
  EXPECT_NE(f, s.fenetre + "\n");
  tape(s.p, "fond_ecran(0.2, 0.4, 1)");
  EXPECT_EQ(valeurs(s.p, "pixel_fenetre(9, 9)"), (std::vector<float>{51, 102, 255}));
  // Full screen: the whole of the server's 1280 x 1024; a word it does not
  // know is refused.
  tape(s.p, "fen(\"ful\")");
  dort(300);
  std::vector<float> t = valeurs(s.p, "fen");
  ASSERT_GE(t.size(), 2u);
  EXPECT_EQ(t[0], 1280);
  EXPECT_EQ(t[1], 1024);
  tape(s.p, "fen(\"mi\")");
  EXPECT_TRUE(attend(s.p, "fen Type de valeur illegal"));
  EXPECT_EQ(valeurs(s.p, "3 * 3"), std::vector<float>{9});
}

TEST(Fenetre, SansEcranLaConsoleSeule) {
  // No display named, and one named where no server listens.
  for (const char* ecran : {static_cast<const char*>(nullptr), ":917"}) {
    if (ecran) setenv("DISPLAY", ecran, 1);
    else unsetenv("DISPLAY");
    Processus p = lance_orvane({"ID", "ini=env/initb.h"});
    tape(p, "$ 2 * 21");
    tape(p, "fond_ecran(1, 0, 0)");
    tape(p, "$ 3 * 21");
    EXPECT_EQ(termine(p), 0);
    EXPECT_NE(p.lu.find("Pas d'ecran graphique"), std::string::npos);
    EXPECT_NE(p.lu.find("> 42.000000"), std::string::npos);
    EXPECT_NE(p.lu.find("> 63.000000"), std::string::npos);
  }
  unsetenv("DISPLAY");
}
}  // namespace
