// The paint tool in a real window, the pointer moved and pressed by
// xdotool: a dab changes exactly the pixels within its radius by the
// transparency's mix, moves its box in at the corners, smooths a
// checkerboard; the undo image; strokes bounded by taille_max; the menu's
// printed lines; "pinceau OFF" and the refused settings.
#include "outils.h"

namespace {
struct Rvb {
  int r, g, b;
};

// The tool entered over a plain background of that colour.
void fond(Rvb c) {
  ASSERT_EQ(brosse_entre(), 0);
  glClearColor(static_cast<float>(c.r) / 255, static_cast<float>(c.g) / 255, static_cast<float>(c.b) / 255, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  glFinish();
}

void quitte() {
  fen.mode_interactif = 0;
  glDrawBuffer(GL_BACK);
  glReadBuffer(GL_BACK);
}

bool dans_disque(int x, int y, float cx, float cy, float r) {
  float dx = static_cast<float>(x) + 0.5f - cx, dy = static_cast<float>(y) + 0.5f - cy;
  return dx * dx + dy * dy <= r * r;
}

// A press and release of the real pointer at (x, y) of the window.
void clic(int x, int y) {
  ASSERT_TRUE(pointe(x, y));
  ASSERT_TRUE(bouton_gauche(true));
  ASSERT_TRUE(bouton_gauche(false));
  glFinish();
}

int mixe(int f, float c, float k) { return static_cast<int>(static_cast<float>(f) + k * (255 * c - static_cast<float>(f)) + 0.5f); }
}  // namespace

TEST(Brosse, UneToucheChangeExactementLeDisqueParLeMelange) {
  monde_outils();
  std::mt19937 hasard(977);
  struct Cas {
    int x, y;
    float r, transp, c[3];
  };
  std::vector<Cas> cas = {{160, 120, 10, 0.25f, {1, 0.5f, 0}}, {37, 211, 7.5f, 0, {0.2f, 0.9f, 0.3f}}};
  for (int k = 0; k < 3; ++k) {
    std::uniform_real_distribution<float> u(0, 1);
    cas.push_back({static_cast<int>(40 + u(hasard) * 240), static_cast<int>(40 + u(hasard) * 160), 3 + u(hasard) * 37,
                   u(hasard), {u(hasard), u(hasard), u(hasard)}});
  }
  const Rvb bg{40, 80, 120};
  for (const Cas& c : cas) {
    fond(bg);
    char l[256];
    std::snprintf(l, sizeof l, "bro(1) rond dessine rayon(%f) transp(%f) ale(1) coul(%f, %f, %f)", c.r, c.transp,
                  c.c[0], c.c[1], c.c[2]);
    ASSERT_GE(execute_ligne(l), 0) << l;
    clic(c.x, c.y);
    Pixels im = lit_pixels();
    const float k = 1 - c.transp;
    const int attendu[3] = {mixe(bg.r, c.c[0], k), mixe(bg.g, c.c[1], k), mixe(bg.b, c.c[2], k)};
    int faux = 0, dedans = 0;
    for (int y = 0; y < HAUTEUR; ++y)
      for (int x = 0; x < LARGEUR; ++x) {
        const unsigned char* p = im.at(x, y);
        bool d = dans_disque(x, y, static_cast<float>(c.x), static_cast<float>(c.y), c.r);
        dedans += d;
        const int* e = d ? attendu : &bg.r;
        for (int q = 0; q < 3; ++q) faux += std::abs(p[q] - e[q]) > 1;
      }
    EXPECT_EQ(faux, 0) << l;
    EXPECT_GT(dedans, 20) << l;
  }

  // At the corner the box moves in: the whole disc, centred a radius in.
  fond(bg);
  ASSERT_GE(execute_ligne("bro(1) rayon(10) transp(0) coul(1, 1, 1)"), 0);
  clic(0, 0);
  Pixels im = lit_pixels();
  int blancs = 0, hors = 0;
  for (int y = 0; y < HAUTEUR; ++y)
    for (int x = 0; x < LARGEUR; ++x) {
      bool b = im.blanc(x, y);
      blancs += b;
      hors += b != dans_disque(x, y, 10, 10, 10);
    }
  EXPECT_EQ(hors, 0);
  EXPECT_EQ(blancs, 316);  // the pixels of a disc of radius 10 centred on a corner of pixels
  // The far corner too.
  fond(bg);
  clic(LARGEUR - 1, HAUTEUR - 1);
  im = lit_pixels();
  hors = 0;
  for (int y = 0; y < HAUTEUR; ++y)
    for (int x = 0; x < LARGEUR; ++x) hors += im.blanc(x, y) != dans_disque(x, y, LARGEUR - 10, HAUTEUR - 10, 10);
  EXPECT_EQ(hors, 0);
  // Random jitter keeps every change between the background and the full mix.
  fond(bg);
  ASSERT_GE(execute_ligne("bro(1) rayon(30) transp(0) ale(0) coul(1, 1, 1)"), 0);
  clic(160, 120);
  im = lit_pixels();
  int varies = 0, faux = 0;
  for (int y = 90; y < 150; ++y)
    for (int x = 130; x < 190; ++x) {
      const unsigned char* p = im.at(x, y);
      if (!dans_disque(x, y, 160, 120, 30)) {
        faux += p[0] != bg.r;
        continue;
      }
      faux += p[0] < bg.r || p[2] < bg.b;
      varies += p[0] != 255;
    }
  EXPECT_EQ(faux, 0);
  EXPECT_GT(varies, 100);
  execute_ligne("bro(1) ale(1)");
  quitte();
}

TEST(Brosse, LisserUnDamierFaitLaMoyenneEtDefaireRestitue) {
  monde_outils();
  fond({0, 0, 0});
  std::vector<unsigned char> damier(static_cast<std::size_t>(LARGEUR) * HAUTEUR * 3);
  for (int y = 0; y < HAUTEUR; ++y)
    for (int x = 0; x < LARGEUR; ++x)
      for (int q = 0; q < 3; ++q) damier[3 * (static_cast<std::size_t>(y) * LARGEUR + x) + q] = (x + y) % 2 ? 255 : 0;
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glWindowPos2i(0, 0);
  glDrawPixels(LARGEUR, HAUTEUR, GL_RGB, GL_UNSIGNED_BYTE, damier.data());
  glFinish();
  // The checkerboard is the undo image.
  EXPECT_EQ(sortie_de([] { brosse_menu(4); }), "sauver image\n");
  ASSERT_GE(execute_ligne("bro(1) etat rond rayon(12)"), 0);
  clic(100, 100);
  Pixels im = lit_pixels();
  int moyens = 0, faux = 0;
  for (int y = 80; y < 120; ++y)
    for (int x = 80; x < 120; ++x) {
      int v = im.at(x, y)[0];
      bool d = dans_disque(x, y, 100, 100, 12);
      // Inside, 3 x 3 means of a checkerboard: 4/9 or 5/9 of white.
      if (d) moyens += v == 113 || v == 142;
      else faux += v != 0 && v != 255;
    }
  EXPECT_GT(moyens, 350);
  EXPECT_EQ(faux, 0);
  EXPECT_EQ(sortie_de([] { brosse_menu(5); }), "restituer image\n");
  im = lit_pixels();
  int differe = 0;
  for (int y = 0; y < HAUTEUR; ++y)
    for (int x = 0; x < LARGEUR; ++x) differe += im.at(x, y)[1] != ((x + (HAUTEUR - 1 - y)) % 2 ? 255 : 0);
  EXPECT_EQ(differe, 0);
  execute_ligne("bro(1) dessine");
  quitte();
}

TEST(Brosse, TraitsBornesParTailleMax) {
  monde_outils();
  fond({0, 0, 0});
  // Through the language: 6 points given, 4 kept, played as a line.
  ASSERT_GE(execute_ligne("n = bro(1) seq rayon(2) transp(0) coul(1, 1, 1) taille(4) som(20, 20, 60, 20, 60, 60, "
                          "20, 60, 200, 200, 300, 10)"),
            0);
  EXPECT_EQ(lit("n"), std::vector<float>{4});
  Pixels im = lit_pixels();
  EXPECT_TRUE(im.blanc(40, 20));  // on the first segment, between two points
  EXPECT_TRUE(im.blanc(60, 40));
  EXPECT_FALSE(im.blanc(200, 200));
  // By the pointer: the capture ends at taille_max with "fin saisie".
  fond({0, 0, 0});
  execute_ligne("bro(1) taille(3)");
  EXPECT_EQ(sortie_de([] { brosse_menu(15); }), "bitmap\n");
  EXPECT_EQ(brosse_commande, FORME_BITMAP);
  std::string s = sortie_de([] {
    pointe(30, 30);
    bouton_gauche(true);
    pointe(80, 30);
    pointe(130, 30);
    pointe(180, 30);
    bouton_gauche(false);
  });
  EXPECT_EQ(compte(s, "fin saisie\n"), 1u) << s;
  EXPECT_EQ(brosse_commande, 0);
  im = lit_pixels();
  EXPECT_TRUE(im.blanc(30, 30));
  EXPECT_TRUE(im.blanc(130, 30));
  EXPECT_FALSE(im.blanc(55, 30));  // bitmap: dabs at the points only
  EXPECT_TRUE(im.blanc(180, 30));  // past the capture the drag paints again
  execute_ligne("bro(1) rond taille(1000) rayon(10)");

  // Text at each point in the brush's colour, with every font of the text
  // mode: lit pixels only near the baseline's start, none elsewhere.
  for (int k = 1; k <= 8; ++k) {
    fond({0, 0, 0});
    std::string l = "bro(1) coul(1, 1, 0) transp(0) texte(\"HIHI\") police(" + std::to_string(k) + ") som(100, 120)";
    ASSERT_EQ(execute_ligne(l.c_str()), 0) << l;
    Pixels t = lit_pixels();
    int jaunes = 0, ailleurs = 0;
    for (int y = 0; y < HAUTEUR; ++y)
      for (int x = 0; x < LARGEUR; ++x) {
        const unsigned char* q = t.at(x, y);
        bool allume = q[0] > 128 && q[1] > 128 && q[2] < 60;
        bool pres = x >= 98 && x < 220 && y >= 90 && y <= 126;
        jaunes += allume && pres;
        ailleurs += (q[0] || q[1] || q[2]) && !pres;
      }
    EXPECT_GT(jaunes, 15) << k;
    EXPECT_EQ(ailleurs, 0) << k;
  }
  for (const char* l : {"bro(1) texte(\"a\") police(0) som(1, 1)", "bro(1) texte(\"a\") police(9) som(1, 1)",
                        "bro(1) texte(\"a\") police(2.5) som(1, 1)", "bro(1) texte(7) som(1, 1)"}) {
    std::string s = sortie_de([l] { EXPECT_LT(execute_ligne(l), 0) << l; });
    EXPECT_NE(s.find("Type de valeur illegal"), std::string::npos) << l << s;
  }
  quitte();
}

TEST(Brosse, EntreesDuMenuEtReglagesRefuses) {
  monde_outils();
  fond({0, 0, 0});
  const std::pair<int, const char*> lignes[] = {
      {6, "ecr\n"},   {7, "RVB\n"},    {8, "TSV\n"},     {9, "numero\n"}, {11, "rond"},   {12, "carre\n"},
      {13, ""},       {14, "ligne\n"}, {15, "bitmap\n"}, {16, "draw\n"},  {17, "lisser\n"}, {18, ""},
      {19, ""},       {20, ""},        {10, "reset\n"}};
  for (auto [n, t] : lignes) {
    EXPECT_EQ(sortie_de([n = n] { brosse_menu(n); }), t) << n;
    if (n == 7 || n == 8) {
      EXPECT_EQ(brosse_commande, n == 7 ? 17 : 155);
    }
    if (n >= 18) {
      EXPECT_EQ(brosse_commande, n == 18 ? 116 : n == 19 ? 59 : 37);
    }
  }
  EXPECT_EQ(pinceau_courant, 1);
  EXPECT_EQ(brosse_commande, 0);
  EXPECT_NE(sortie_de([] { brosse_menu(3); }).find("pinceau: outil de peinture"), std::string::npos);

  // A slider reads the pointer's x across the window.
  brosse_menu(18);
  clic(LARGEUR * 3 / 4, 100);
  EXPECT_NEAR(pinceaux[0].transp, 0.75f, 0.01f);
  EXPECT_EQ(brosse_commande, 0);
  brosse_menu(13);
  clic(LARGEUR / 2, 100);
  EXPECT_NEAR(pinceaux[0].rayon, 100.5f, 1.0f);
  // The RGB picker: the upper half, a third per channel, height the value.
  sortie_de([] { brosse_menu(7); });
  clic(LARGEUR / 6, HAUTEUR / 4);
  EXPECT_NEAR(pinceaux[0].coul[0], 0.5f, 0.02f);
  const Pinceau avant_selecteur = pinceaux[0];
  sortie_de([] { brosse_menu(7); });
  clic(LARGEUR - 2, HAUTEUR - 10);  // outside the picker: nothing
  EXPECT_EQ(std::memcmp(&avant_selecteur, &pinceaux[0], sizeof avant_selecteur), 0);
  execute_ligne("bro(1) rayon(10) transp(0) coul(1, 1, 1)");

  // No brush: every setting says so and changes nothing, and no dab.
  ASSERT_GE(execute_ligne("bro(0)"), 0);
  fond({0, 0, 0});
  Pinceau avant = pinceaux[0];
  for (int n : {7, 11, 12, 16, 17, 18})
    EXPECT_EQ(sortie_de([n] { brosse_menu(n); }), "pinceau OFF\x07\n") << n;
  EXPECT_EQ(sortie_de([] { execute_ligne("bro rayon(30)"); }).rfind("pinceau OFF\x07\n", 0), 0u);
  EXPECT_EQ(sortie_de([] { clic(100, 100); }), "pinceau OFF\x07\n");
  EXPECT_EQ(std::memcmp(&avant, &pinceaux[0], sizeof avant), 0);
  EXPECT_FALSE(lit_pixels().blanc(100, 100));
  ASSERT_GE(execute_ligne("bro(1)"), 0);

  // Refused values: a message each, the brush as it was.
  avant = pinceaux[0];
  const std::pair<const char*, const char*> refus[] = {
      {"bro(21)", "21: Numero de pinceau hors de [0, 20]"},
      {"bro(-3)", "-3: Numero"},
      {"bro(2.5)", "2.5: Numero"},
      {"bro(1000000000)", "Numero de pinceau"},
      {"bro(1) rayon(0)", "0: Rayon du pinceau hors de [1, 512]"},
      {"bro(1) rayon(10000)", "10000: Rayon"},
      {"bro(1) rayon(-1e30)", "Rayon"},
      {"bro(1) transp(1.5)", "transp"},
      {"bro(1) coul(2, 0, 0)", "coul"},
      {"bro(1) coul(1, 0)", "coul"},
      {"bro(1) som(1, 2, 3)", "som"},
      {"bro(1) som(\"x\")", "som"},
      {"bro(1) fonc(3)", "fonc"},
      {"bro(1) taille(0)", "taille"},
      {"bro(1) rayon(5) taille(-7)", "taille"},
  };
  for (auto [l, m] : refus) {
    std::string s = sortie_de([l = l] { EXPECT_LT(execute_ligne(l), 0) << l; });
    EXPECT_NE(s.find(m), std::string::npos) << l << " -> " << s;
  }
  EXPECT_EQ(std::memcmp(&avant, &pinceaux[0], sizeof avant), 0);
  EXPECT_EQ(pinceau_courant, 1);
  // A function at each dab.
  execute_ligne("touches = 0");
  ASSERT_GT(fonctions_analyse("compte_touche()\n{\n  externe touches\n  touches = touches + 1\n}\n", 62), 0);
  EXPECT_EQ(execute_ligne("bro(1) fonc(\"compte_touche\") som(50, 50, 90, 90, 130, 130)"), 0);
  EXPECT_EQ(lit("touches"), std::vector<float>{3});
  execute_ligne("bro(1) fonc(\"\")");
  quitte();
}
