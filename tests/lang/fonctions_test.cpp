// The function store on real files: a .fon file read into functions, the
// search path, a call by name that reads its file, file groups, includes,
// macros of the file and of the function.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "lang/lang.h"
#include "startup/startup.h"
#include "tests/lang/aide_lang.h"
#include "tests/outils/sortie.h"

namespace {
// A scratch directory that the test works in, and the way back.
struct Dossier {
  std::string chemin;
  std::string avant;
  Dossier() {
    char modele[] = "/tmp/orvane_lang_XXXXXX";
    chemin = mkdtemp(modele);
    char t[4096];
    avant = getcwd(t, sizeof t);
    EXPECT_EQ(chdir(chemin.c_str()), 0);
  }
  ~Dossier() {
    EXPECT_EQ(chdir(avant.c_str()), 0);
    std::string c = "rm -rf " + chemin;
    EXPECT_EQ(std::system(c.c_str()), 0);
  }
  void ecrit(const std::string& nom, const std::string& texte) const {
    std::ofstream(chemin + "/" + nom) << texte;
  }
};

int nombre_fonctions() {
  int n = 0;
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o) n += o->type == A_FONC;
  return n;
}
}  // namespace

TEST(Fonctions, FileIntoFunctions) {
  prepare_lang();
  Dossier d;
  d.ecrit("essai.fon",
          "/* trois fonctions */\n"
          "#define N 4\n"
          "un(x)\n{\n  retour x + N\n}\n"
          "\n/* entre deux */\n"
          "deux() { \"}\" ; /* } */ }\n"
          "trois()\n{\n  a = 1\n  b = a,,2\n}\n"
          "quatre(x)\n  retour x\n");
  EXPECT_EQ(fonctions_lit("essai", false), 4);
  Objet* un = fonction_trouve("un");
  Objet* deux = fonction_trouve("deux");
  Objet* trois = fonction_trouve("trois");
  ASSERT_TRUE(un && deux && trois);
  EXPECT_STREQ(un->nom, "un");
  // Each text runs to the brace that closes its first one; strings and
  // comments do not count.
  std::size_t n;
  EXPECT_EQ(std::string(fonction_texte(deux, &n)), "\n\n/* entre deux */\ndeux() { \"}\" ; /* } */ }");
  // One file, one group; reports give file lines.
  EXPECT_EQ(un->f2, deux->f2);
  EXPECT_EQ(un->f1, 0);
  EXPECT_EQ(trois->f1, 8);
  testing::internal::CaptureStdout();
  EXPECT_EQ(compiler_tout(), -1);
  std::string s = testing::internal::GetCapturedStdout();
  EXPECT_EQ(s, ", ,: M66\ntrois 13:   b = a,,2\nM107\n");
  // A text with no braces runs to the end of the file: its body is empty.
  Objet* quatre = fonction_trouve("quatre");
  ASSERT_TRUE(quatre && quatre->code);
  EXPECT_EQ(texte_items(quatre->code), "fonc(quatre) ; #4 ( retour )");
  // The file's #define is a macro for every function of the session.
  EXPECT_EQ(texte_items(un->code), "fonc(un) #5 ( retour ( l:x + 4 ) ) ; #6 ( retour )");
  Objet* l = ligne("y = N");
  compile(l);
  EXPECT_EQ(texte_items(l->code), "#1 ( g:y = ( 4 ) ) ; FIN");

  // Read again: the functions of those names are replaced, not doubled.
  int avant = nombre_fonctions();
  d.ecrit("essai.fon", "un() { }\n");
  EXPECT_EQ(fonctions_lit("essai.fon", false), 1);
  EXPECT_EQ(nombre_fonctions(), avant);
  EXPECT_EQ(std::string(fonction_texte(fonction_trouve("un"), &n)), "un() { }");
  // Reading empties the macros of the previous files.
  compile(l);
  EXPECT_EQ(texte_items(l->code), "#1 ( g:y = ( g:N ) ) ; FIN");
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(fonctions_lit("absent", false), -1); }), "absent: M36\n");
}

TEST(Fonctions, CallByNameReadsItsFile) {
  prepare_lang();
  Dossier d;
  std::string uti = d.chemin + "/uti/";
  ASSERT_EQ(system(("mkdir -p " + uti).c_str()), 0);
  std::strcpy(dem.chemin_uti, uti.c_str());
  std::ofstream(uti + "outil.fon") << "outil(a) { retour a * 2 }\naide2() { }\n";
  d.ecrit("local.fon", "local() { outil(1) }\n");
  // The current directory first, then the user's.
  Objet* f = fonction_appel("local");
  ASSERT_NE(f, nullptr);
  Objet* o = fonction_appel("outil");
  ASSERT_NE(o, nullptr);
  EXPECT_NE(fonction_trouve("aide2"), nullptr);  // the whole file came in
  // Linking is asked for: the caller's call is resolved.
  EXPECT_NE(o->code, nullptr);
  EXPECT_NE(f->code, nullptr);
  EXPECT_NE(texte_items(f->code).find("fonction/1"), std::string::npos);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(fonction_appel("nulle"), nullptr); }), "nulle: M41\n");
  // A name that begins with "." is looked up in the current directory only.
  std::ofstream(uti + "cache.fon") << "cache() { }\n";
  std::string t;
  dem.chemin_uti[0] = 0;
  EXPECT_FALSE(lire_fichier_recherche(".cache", "fon", t));
  std::strcpy(dem.chemin_uti, uti.c_str());
  EXPECT_TRUE(lire_fichier_recherche("cache", "fon", t));
  EXPECT_FALSE(lire_fichier_recherche(".cache", "fon", t));
  dem.chemin_uti[0] = 0;
}

TEST(Fonctions, GroupsChooseTheirOwnHelper) {
  prepare_lang();
  Dossier d;
  d.ecrit("a.fon", "aide_a() { retour 1 }\nappel_a() { aide_a() + commun() }\ncommun() { }\n");
  d.ecrit("b.fon", "commun() { }\nappel_b() { commun() }\n");
  fonctions_lit("a", false);
  Objet* commun_a = fonction_trouve("commun");
  Objet* appel_a = fonction_trouve("appel_a");
  fonctions_lit("b", false);
  // b's commun stands beside a's: each file keeps its group whole.
  Objet* appel_b = fonction_trouve("appel_b");
  Objet* commun_b = nullptr;
  int communs = 0;
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o)
    if (o->type == A_FONC && o->nom && std::string(o->nom) == "commun") {
      ++communs;
      if (o != commun_a) commun_b = o;
    }
  EXPECT_EQ(communs, 2);
  ASSERT_NE(commun_b, nullptr);
  EXPECT_EQ(fonction_trouve("commun"), commun_a);
  EXPECT_EQ(commun_b->f2, appel_b->f2);
  EXPECT_NE(commun_b->f2, appel_a->f2);
  EXPECT_EQ(lier_tout(), 0);
  EXPECT_EQ(texte_items(appel_a->code), "fonc(appel_a) #2 ( fonction/0 + fonction/0 ) ; ( retour )");
  // Each caller is linked to the commun of its own file.
  auto appelee = [](const Objet* f) -> const Objet* {
    const mot* c = f->code;
    for (const mot* p = c + 4; p[0] != 0; p += p[0] < 0 ? 2 : p[0])
      if (p[0] > 0 && p[1] == BLOC_OBJET) return reinterpret_cast<const Objet*>(mot_vers_ptr(p[2]));
    return nullptr;
  };
  Objet* appel_c = nullptr;
  d.ecrit("c.fon", "commun() { retour 3 }\nappel_c() { commun() }\n");
  fonctions_lit("c", false);
  appel_c = fonction_trouve("appel_c");
  EXPECT_EQ(lier_tout(), 0);
  EXPECT_EQ(appelee(appel_b), commun_b);
  EXPECT_NE(appelee(appel_c), commun_b);
  EXPECT_NE(appelee(appel_c), commun_a);
  // The same file read again, by another road: its own group, its commun
  // replaced, the others kept.
  d.ecrit("b.fon", "commun() { retour 2 }\nappel_b() { commun() }\n");
  fonctions_lit(("./" + std::string("b")).c_str(), false);
  communs = 0;
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o)
    communs += o->type == A_FONC && o->nom && std::string(o->nom) == "commun";
  EXPECT_EQ(communs, 3);
  EXPECT_EQ(fonction_trouve("appel_b")->f2, commun_b->f2);
}

TEST(Fonctions, DocRunsAndLinkAtReading) {
  prepare_lang();
  Dossier d;
  static int appels = 0;
  lang.executer = [](Objet* l) -> mot* {
    ++appels;
    EXPECT_NE(texte_items(l->code).find("fonction/0"), std::string::npos);
    return nullptr;
  };
  d.ecrit("avec_doc.fon", "doc() { }\nf() { }\n");
  fonctions_lit("avec_doc", false);
  EXPECT_EQ(appels, 1);
  // Keyword a23 on: each reading links.
  vocab.tables[0].etats[A_LIEN] = 1;
  d.ecrit("lie.fon", "g() { }\n");
  fonctions_lit("lie", false);
  EXPECT_NE(fonction_trouve("g")->code, nullptr);
}

TEST(Fonctions, IncludesOfFilesAndFunctions) {
  prepare_lang();
  Dossier d;
  d.ecrit("entete.h", "/* commentaire */ a = 1\n#include \"second.h\"\n");
  d.ecrit("second.h", "b = 2\n");
  d.ecrit("ouvert.h", "c = 3 /* jamais ferme\n");
  d.ecrit("boucle.h", "#include boucle.h\n");
  // Included lines carry no number of their own; an include may include.
  Objet* l = ligne("#include entete.h\nx = a + b");
  int r;
  EXPECT_EQ(compile(l, &r), "");
  EXPECT_EQ(texte_items(l->code), "#1 ( g:a = ( 1 ) ) ; ( g:b = ( 2 ) ) ; #2 ( g:x = ( g:a + g:b ) ) ; FIN");
  EXPECT_EQ(compile(ligne("#include ouvert.h"), &r), "M64\n 1: {#include ouvert.h}\nM107\n");
  EXPECT_EQ(compile(ligne("#include boucle.h"), &r), "M2\n 1: {#include boucle.h}\nM107\n");
  // The body of a function, between its first braces.
  fonction("corps() /* { */ { y = 5; z = \"}\" }");
  l = ligne("#include corps(\nw = y");
  EXPECT_EQ(compile(l, &r), "");
  EXPECT_EQ(texte_items(l->code), "#1 ( g:y = ( 5 ) ) ; ( g:z = ( \"}\" ) ) ; #2 ( g:w = ( g:y ) ) ; FIN");
}

TEST(Fonctions, MacrosOfTheFunctionAndGlobal) {
  prepare_lang();
  // "#define B A+1" stores "1+1": a macro's text is expanded when defined.
  Objet* f = fonction("#define A 1\n#define B A+1\nf() { x = B; s = \"B\"; v = 'B'; Bx = 2 }");
  int r;
  EXPECT_EQ(compile(f, &r), "");
  EXPECT_EQ(texte_items(f->code),
            "fonc(f) #3 ( l:x = ( 1 + 1 ) ) ; ( l:s = ( \"B\" ) ) ; ( l:v = ( '66' ) ) ; ( l:Bx = ( 2 ) ) ; ( retour )");
  const mot* c = f->code;
  bool vu = false;
  for (const mot* e = c + c[0] + 1; e[0] > 0; e += e[0])
    if (e[1] == SYM_MACRO && std::string(reinterpret_cast<const char*>(e + 5)) == "B") {
      const mot* v = e + 4 + e[4];
      EXPECT_STREQ(reinterpret_cast<const char*>(v + 4), "1+1");
      vu = true;
    }
  EXPECT_TRUE(vu);
  // A function's macros are its own; a line's are the session's.
  Objet* l = ligne("y = B");
  compile(l);
  EXPECT_EQ(texte_items(l->code), "#1 ( g:y = ( g:B ) ) ; FIN");
  compile(ligne("#define C 3"));
  compile(l = ligne("y = C"));
  EXPECT_EQ(texte_items(l->code), "#1 ( g:y = ( 3 ) ) ; FIN");
  // A macro that would grow for ever is refused.
  compile(ligne("#define D D D D D"));
  EXPECT_EQ(compile(ligne("#define E D"), &r), "E: M43\n 1: {#define E D}\nM107\n");
}

TEST(Fonctions, CompileByNames) {
  prepare_lang();
  Objet* f = fonction("f() { }");
  Objet* g = fonction("g() { }");
  mot t[8] = {8, BLOC_CHAINE, 1, 1};
  std::memcpy(t + 4, "f, g\tx\n", 8);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(compiler_noms(t), -1); }), "x: M41\n");
  EXPECT_NE(f->code, nullptr);
  EXPECT_NE(g->code, nullptr);
  mot reel[5] = {5, BLOC_REEL, 1, 1, 0};
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(compiler_noms(reel), -1); }), "M80\n");
  EXPECT_EQ(compiler_noms(nullptr), 0);
}
