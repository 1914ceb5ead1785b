// The mode menus in a real window: the "exec" and "menu" submenus made
// again at each entry into a mode with what the chains hold, the function
// menus from the bodies of functions, entries chosen through the roots'
// callback with what their lines print, and the menu files with their
// faults.
#include "outils.h"

namespace {
// The functions of a text, as a file would give them.
void fonctions(const std::string& t) { ASSERT_GT(fonctions_analyse(t.c_str(), t.size()), 0); }

int entrees_glut(int id) {
  glutSetMenu(id);
  return glutGet(GLUT_MENU_NUM_ITEMS);
}

std::vector<std::string> textes_de(int id) {
  std::vector<std::string> v;
  for (int n = 1; n <= menu_nb_entrees(id); ++n) v.push_back(menu_entree(id, n));
  return v;
}

struct Dossier {
  std::filesystem::path d;
  Dossier() {
    char m[] = "/tmp/orvane-menus-XXXXXX";
    d = mkdtemp(m);
  }
  ~Dossier() { std::filesystem::remove_all(d); }
  std::string ecrit(const std::string& nom, const std::string& texte) {
    std::ofstream(d / nom) << texte;
    return (d / nom).string();
  }
};

void vide_tout() {
  sortie_de([] { execute_ligne("menu(0)"); });
}
}  // namespace

TEST(Menus, RebatisAChaqueModeAvecLesChaines) {
  monde_outils();
  vide_tout();
  fonctions("couleurs(a, b)\n{\n  rouge = 11\n\n    vert = rouge * 2  \n  bleu = 3\n}\n");
  EXPECT_EQ(exec_ajoute("e1 = 101"), 1);
  EXPECT_EQ(exec_ajoute("e2 = 202"), 2);
  EXPECT_EQ(menu_ajoute("couleurs"), 1);
  EXPECT_EQ(menu_ajoute("inconnue_xyz"), 2);
  std::string s = sortie_de([] { EXPECT_EQ(entre_mode(0), 0); });
  EXPECT_EQ(s, "fonc inconnue_xyz: Introuvable\a\n");
  // The shell's slot: "exec", "menu", "clavier".
  int slot = fen.menus[slot_mode(0)];
  ASSERT_GT(slot, 0);
  EXPECT_EQ(textes_de(slot), (std::vector<std::string>{"exec", "menu", "clavier"}));
  EXPECT_EQ(entrees_glut(slot), 3);
  EXPECT_EQ(textes_de(fen.racines[0]), (std::vector<std::string>{"e1 = 101", "e2 = 202"}));
  EXPECT_EQ(entrees_glut(fen.racines[0]), 2);
  // One function menu: the head up to its ")", one entry per body line.
  EXPECT_EQ(textes_de(fen.racines[1]), (std::vector<std::string>{"couleurs(a, b)"}));
  ASSERT_EQ(nb_menus_fonction(), 1);
  EXPECT_STREQ(menu_fonction_titre(1), "couleurs(a, b)");
  ASSERT_EQ(menu_fonction_nb(1), 3);
  EXPECT_STREQ(menu_fonction_entree(1, 2), "vert = rouge * 2");

  // Entries chosen through the roots' callback, as the window system would.
  ASSERT_TRUE(menu_choisi);
  menu_choisi(0, 2);
  EXPECT_EQ(lit("e2"), std::vector<float>{202});
  EXPECT_EQ(sortie_de([] { menu_choisi(0, 3); menu_choisi(0, 0); menu_choisi(0, -7); }), "");
  menu_choisi(1, VALEUR_FONC(1, 1));
  menu_choisi(1, VALEUR_FONC(1, 2));
  EXPECT_EQ(lit("vert"), std::vector<float>{22});
  EXPECT_EQ(sortie_de([] { menu_choisi(1, VALEUR_FONC(1, 4)); menu_choisi(1, VALEUR_FONC(2, 1)); }), "");
  menu_choisi(1, VALEUR_FONC(1, 3));
  EXPECT_EQ(lit("bleu"), std::vector<float>{3});

  // Another mode: both submenus made anew, the old ones gone; what the
  // chains hold now is what it shows.
  int vieux_exec = fen.racines[0], vieux_menu = fen.racines[1];
  exec_ajoute("$ \"trois\"");
  static constexpr EntreeMode memoire[] = {{"rotx ", 101}, {"roty ", 102}};
  static const EntreeMode propres[] = {{"quitter sans valider", 1}, {"memoire", 0, memoire}, {"dep", 16}};
  menu_mode_def(85, propres, [](int) {});
  sortie_de([] { entre_mode(85); });
  EXPECT_NE(fen.racines[0], vieux_exec);
  EXPECT_NE(fen.racines[1], vieux_menu);
  EXPECT_EQ(menu_nb_entrees(vieux_exec), -1);
  EXPECT_EQ(textes_de(fen.menus[slot_mode(85)]),
            (std::vector<std::string>{"exec", "menu", "quitter sans valider", "memoire", "dep"}));
  EXPECT_EQ(entrees_glut(fen.racines[0]), 3);
  EXPECT_EQ(sortie_de([] { menu_choisi(0, 3); }), "trois \n");
  // An empty exec list lists no entries, but its GLUT menu keeps one mark
  // that chooses nothing: a menu of no entries would open as a window of no
  // size, which X refuses.
  exec_vide();
  sortie_de([] { entre_mode(85); });
  EXPECT_EQ(textes_de(fen.racines[0]), std::vector<std::string>{});
  EXPECT_EQ(entrees_glut(fen.racines[0]), 1);
  EXPECT_EQ(sortie_de([] { menu_choisi(0, 0); menu_choisi(0, 1); }), "");
  // Back to the shell: its slot takes the new submenus.
  sortie_de([] { entre_mode(0); });
  EXPECT_EQ(textes_de(fen.menus[slot_mode(0)]), (std::vector<std::string>{"exec", "menu", "clavier"}));
  EXPECT_EQ(slot_mode(161), 6);
  EXPECT_EQ(slot_mode(-85), slot_mode(85));
  EXPECT_EQ(entre_mode(12345), -1);
  vide_tout();
}

TEST(Menus, VingtEtUnMenusDeFonctionsAuPlus) {
  monde_outils();
  vide_tout();
  std::string t;
  for (int k = 1; k <= 23; ++k)
    t += "mf" + std::to_string(k) + "()\n{\n  z" + std::to_string(k) + " = " + std::to_string(k * 1000003) + "\n}\n";
  fonctions(t);
  std::string s = sortie_de([] {
    for (int k = 1; k <= 23; ++k) menu_ajoute("mf" + std::to_string(k));
  });
  EXPECT_EQ(compte(s, "Trop de menus de fonctions (21 au plus)"), 2u);
  sortie_de([] { entre_mode(0); });
  EXPECT_EQ(nb_menus_fonction(), NB_FONC_MENUS);
  EXPECT_EQ(entrees_glut(fen.racines[1]), NB_FONC_MENUS);
  EXPECT_STREQ(menu_fonction_titre(21), "mf21()");
  menu_choisi(1, VALEUR_FONC(21, 1));
  EXPECT_EQ(lit("z21"), std::vector<float>{21000064});
  // Through the language: the names, a line, the counts.
  vide_tout();
  sortie_de([] {
    execute_ligne("menu(\"mf3 mf4\")");
    execute_ligne("menu exec(\"q = 9\")");
  });
  EXPECT_EQ(lit("menu"), (std::vector<float>{1, 2}));
  vide_tout();
  EXPECT_EQ(lit("menu"), (std::vector<float>{0, 0}));
  // A text past 127 characters is refused with its message.
  EXPECT_NE(sortie_de([] { EXPECT_EQ(exec_ajoute(std::string(128, 'x')), -1); }).find("Depassement"),
            std::string::npos);
  EXPECT_EQ(exec_ajoute(std::string(127, ' ')), 1);
  vide_tout();
}

TEST(Menus, FichierDeMenus) {
  monde_outils();
  vide_tout();
  puls_vide();
  textes_vide();
  fonctions("rouge_f()\n{\n  $ \"rouge\"\n}\nvert_f()\n{\n  $ \"vert\"\n}\n");
  Dossier d;
  std::string f = d.ecrit("palette.men",
                          "# une palette\n"
                          "n 4\n"
                          "t Palette de couleurs\n"
                          "m rouge rouge_f\n"
                          "m \"vert clair\" vert_f\n"
                          "m seul\n"
                          "m\n"
                          "m x une_fonction_au_nom_bien_trop_long\n"
                          "e cote = 5\n"
                          "p -20 30 teinte = 7\n"
                          "l 1.5 -2 3 \"une etiquette\"\n"
                          "t\n");
  std::string s = sortie_de([&] { EXPECT_EQ(lit_menus(f.substr(0, f.size() - 4).c_str()), 0); });
  EXPECT_EQ(s,
            "PAS ASSEZ DE FONCTIONS: m seul\a\n"
            "PAS ASSEZ DE TEXTE: m\a\n"
            "NOMS DE FONCTIONS TROP LONGS: une_fonction_au_nom_bien_trop_long\a\n"
            "PAS ASSEZ DE TEXTE: t\a\n"
            "PAS ASSEZ DE FONCTIONS: " + f.substr(0, f.size() - 4) + "\a\n");
  ASSERT_EQ(nb_menus_fonction(), 1);
  EXPECT_STREQ(menu_fonction_titre(1), "Palette de couleurs");
  EXPECT_STREQ(menu_fonction_entree(1, 2), "vert clair");
  EXPECT_EQ(textes_de(fen.racines[1]), (std::vector<std::string>{"Palette de couleurs"}));
  EXPECT_EQ(sortie_de([] { menu_choisi(1, VALEUR_FONC(1, 2)); }), "vert \n");
  EXPECT_EQ(textes_de(fen.racines[0]), (std::vector<std::string>{"cote = 5"}));
  EXPECT_STREQ(puls_table[0].nom, "teinte = 7");
  EXPECT_FLOAT_EQ(boutons[0].x, -20);
  ASSERT_NE(textes[0].texte, 0);
  EXPECT_STREQ(bloc_texte(bloc_pointe(textes[0].texte)), "une etiquette");
  EXPECT_FLOAT_EQ(textes[0].z, 3);
  // The file's menu stays across rebuilds, before those of the chain.
  fonctions("autre_f()\n{\n  a = 1\n}\n");
  menu_ajoute("autre_f");
  sortie_de([] { entre_mode(0); });
  EXPECT_EQ(textes_de(fen.racines[1]), (std::vector<std::string>{"Palette de couleurs", "autre_f()"}));

  // Too many entries for its count; an unknown function ends the reading.
  std::string g = d.ecrit("trop.men", "n 1\nm a rouge_f\nm b vert_f\nm c vert_f\n");
  EXPECT_EQ(sortie_de([&] { lit_menus(g.c_str()); }), "TROP DE MENUS\a\n");
  std::string h = d.ecrit("manque.men", "m a rouge_f\nm b fonction_absente\nm c vert_f\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(lit_menus(h.c_str()), -1); }), "fonction_absente: Introuvable\a\n");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(lit_menus((d.d / "absent").c_str()), -1); }),
            (d.d / "absent").string() + ": Introuvable\a\n");
  // Through the language.
  EXPECT_EQ(sortie_de([&] { execute_ligne(("menu lire(\"" + h + "\")").c_str()); }).find("fonction_absente"), 0u);
  // What was made before stays.
  EXPECT_EQ(nb_menus_fonction(), 3);
  vide_tout();
  puls_vide();
  textes_vide();
}

TEST(Menus, LesEtiquettesSontDessinees) {
  monde_outils();
  textes_vide();
  glClearColor(0, 0, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  EXPECT_EQ(dessine_textes(), 0);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(0, LARGEUR, HAUTEUR, 0, -1, 1);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  EXPECT_EQ(texte_ajoute("MMMM", 50, 100, 0), 0);
  EXPECT_EQ(texte_ajoute("WWWW", 200, 40, 0), 1);
  EXPECT_EQ(dessine_textes(), 2);
  Pixels im = lit_pixels();
  int a = 0, b = 0;
  for (int y = 85; y < 105; ++y)
    for (int x = 50; x < 90; ++x) a += im.blanc(x, y);
  for (int y = 25; y < 45; ++y)
    for (int x = 200; x < 240; ++x) b += im.blanc(x, y);
  EXPECT_GT(a, 20);
  EXPECT_GT(b, 20);
  // A hundred slots, then the message.
  for (int k = 2; k < NB_TEXTES; ++k) ASSERT_EQ(texte_ajoute("t" + std::to_string(k), 0, 0, 0), k);
  EXPECT_NE(sortie_de([] { EXPECT_EQ(texte_ajoute("de trop", 0, 0, 0), -1); }).find("Depassement"), std::string::npos);
  textes_vide();
  EXPECT_EQ(dessine_textes(), 0);
}

TEST(Menus, PanneauDesEntreesExec) {
  monde_outils();
  vide_tout();
  exec_ajoute("$ \"premiere\"");
  exec_ajoute("$ \"seconde\"");
  // Rows of 20 pixels from the top, 200 wide: the pointer on the second.
  ASSERT_TRUE(pointe(37, 31));
  glClearColor(0, 0, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  EXPECT_EQ(sortie_de([] { affiche_menu(); }), "");
  Pixels im = lit_pixels();
  EXPECT_GT(im.at(190, 31)[0], im.at(190, 11)[0]);
  int blancs = 0;
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < 200; ++x) blancs += im.blanc(x, y);
  EXPECT_GT(blancs, 30);
  // A click runs its line once, however many frames the press lasts.
  ASSERT_TRUE(bouton_gauche(true));
  EXPECT_EQ(sortie_de([] { affiche_menu(); affiche_menu(); affiche_menu(); }), "seconde \n");
  ASSERT_TRUE(bouton_gauche(false));
  EXPECT_EQ(sortie_de([] { affiche_menu(); }), "");
  ASSERT_TRUE(bouton_gauche(true));
  EXPECT_EQ(sortie_de([] { affiche_menu(); }), "seconde \n");
  ASSERT_TRUE(bouton_gauche(false));
  // Below the rows nothing runs.
  ASSERT_TRUE(pointe(37, 120));
  ASSERT_TRUE(bouton_gauche(true));
  EXPECT_EQ(sortie_de([] { affiche_menu(); }), "");
  ASSERT_TRUE(bouton_gauche(false));
  vide_tout();
}
