// Link: slots, globals and statics as objects with their values, calls by
// name and by file group, and control offsets checked by walking the linked
// code the way the engine walks it.
#include <gtest/gtest.h>

#include "lang/lang.h"
#include "tests/lang/aide_lang.h"
#include "tests/lang/marche_essai.h"

namespace {
Objet* lie_ligne(const std::string& t) {
  Objet* o = ligne(t);
  int r;
  std::string s = compile(o, &r);
  EXPECT_EQ(r, 1) << s;
  s = lie(o, &r);
  EXPECT_EQ(r, 0) << s;
  return o;
}

// The first call block of a code.
const mot* appel(const mot* c) {
  for (const mot* p = c + 4; p[0] != 0; p += p[0] < 0 ? 2 : p[0])
    if (p[0] > 0 && (p[1] == BLOC_APPEL || p[1] == BLOC_OBJET || p[1] == BLOC_NOM)) return p;
  return nullptr;
}

// Runs a line and gives the printed trace with the value of each name asked.
std::string execute(const std::string& t, std::map<const Objet*, float>& g) {
  Objet* o = lie_ligne(t);
  return o->code ? marche(o->code, g) : "";
}
}  // namespace

TEST(Lien, SlotsAndObjects) {
  prepare_lang();
  Objet* f = fonction("f(a) { statique s = 5; externe e = 2; b = a + s + e; @b = 1 }");
  int r;
  compile(f, &r);
  ASSERT_EQ(r, 1);
  ASSERT_EQ(lie(f, &r), "");
  EXPECT_EQ(r, 0);
  EXPECT_EQ(lang.lie, 1);
  // Slots are numbered from 0, positive once linked.
  EXPECT_EQ(texte_items(f->code),
            "fonc(f) #1 ; ; ( l:b = ( ( l:a + s:s* ) + g:e* ) ) ; ( @l:b = ( 1 ) ) ; ( retour )");
  Objet* s = objet_trouve(OBJ_STATIQUE, 0, f->numero, "s");
  Objet* e = objet_trouve(OBJ_GLOBAL, 0, 0, "e");
  ASSERT_NE(s, nullptr);
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(lit_reel(s->donnees + 4), 5.f);
  EXPECT_EQ(lit_reel(e->donnees + 4), 2.f);
  // The item and its symbol both hold the pointer.
  const mot* c = f->code;
  bool vu = false;
  for (const mot* x = c + c[0] + 1; x[0] > 0; x += x[0])
    if (x[1] == SYM_STATIQUE) {
      EXPECT_EQ(x[3], ptr_vers_mot(s));
      vu = true;
    }
  EXPECT_TRUE(vu);

  // An existing global takes the declared value at the first link; a later
  // link of the same code leaves the value the program gave it.
  lit_reel(e->donnees + 4);
  ecrit_reel(e->donnees + 4, 9);
  fonctions_modifiees();
  EXPECT_EQ(lier(f), 0);
  EXPECT_EQ(lit_reel(e->donnees + 4), 9.f);
  Objet* g = fonction("g() { externe e = 3; e }");
  compile(g);
  lier(g);
  EXPECT_EQ(objet_trouve(OBJ_GLOBAL, 0, 0, "e"), e);
  EXPECT_EQ(lit_reel(e->donnees + 4), 3.f);

  // Recompiling deletes the statics of the old number; link makes new ones.
  int ancien = f->numero;
  compile(f);
  EXPECT_EQ(objet_trouve(OBJ_STATIQUE, 0, ancien, "s"), nullptr);
  lier(f);
  EXPECT_NE(objet_trouve(OBJ_STATIQUE, 0, f->numero, "s"), nullptr);
}

TEST(Lien, DeclarationValuesAreCompiledAndRun) {
  prepare_lang();
  // The interpreter's part, reduced: the walker gives the value of the line.
  static std::map<const Objet*, float> g;
  static mot valeur[5];
  lang.executer = [](Objet* l) -> mot* {
    // The line is "{(expression)}": one group.
    std::map<const Objet*, float> locaux;
    const mot* c = l->code;
    std::string t = marche(c, locaux);
    (void)t;
    // Walk again to read the group's value: the test keeps it simple, the
    // expression is a sum of constants.
    float x = 0;
    for (const mot* p = c + 4; p[0] != 0; p += p[0] < 0 ? 2 : p[0])
      if (p[0] == CEL_REEL) x += lit_reel(p + 1);
    mot v[5] = {5, BLOC_REEL, 1, 1, reel_mot(x)};
    std::memcpy(valeur, v, sizeof v);
    return valeur;
  };
  Objet* f = fonction("f() { statique s = (1 + 2 + 4), z[3]; externe e = [2] }");
  int r;
  std::string sortie = compile(f, &r);
  ASSERT_EQ(r, 1) << sortie;
  ASSERT_EQ(lie(f, &r), "");
  Objet* s = objet_trouve(OBJ_STATIQUE, 0, f->numero, "s");
  ASSERT_NE(s, nullptr);
  EXPECT_EQ(lit_reel(s->donnees + 4), 7.f);
  Objet* z = objet_trouve(OBJ_STATIQUE, 0, f->numero, "z");
  ASSERT_NE(z, nullptr);
  EXPECT_EQ(z->donnees[0], 7);
  EXPECT_EQ(z->donnees[2], 3);
  EXPECT_EQ(lit_reel(objet_trouve(OBJ_GLOBAL, 0, 0, "e")->donnees + 4), 2.f);
  // Without an interpreter such a value is refused.
  lang.executer = nullptr;
  EXPECT_EQ(compile(fonction("h() { externe e = (1) }"), &r), "(1): M66\nh 1: h() { externe e = (1) }\nM107\n");
}

TEST(Lien, CallsByNameAndByGroup) {
  prepare_lang();
  Objet* a = fonction("a() { b(1) + c() }");
  Objet* b = fonction("b(x) { retour x }");
  compile(a);
  lier(a);
  // b exists, c not yet: a pointer to its name, resolved on the call.
  EXPECT_EQ(texte_items(a->code), "fonc(a) #1 ( fonction/1 ( 1 ) + nom:c/0 ) ; ( retour )");
  EXPECT_EQ(appel(a->code)[1], BLOC_OBJET);
  EXPECT_EQ(appel(a->code)[2], ptr_vers_mot(b));
  // Once c exists, the next link finds it, and b again after a new b.
  Objet* c = fonction("c() { }");
  objet_supprime(b);
  Objet* b2 = fonction("b(y) { }");
  fonctions_modifiees();
  EXPECT_EQ(lier_tout(), 0);
  EXPECT_EQ(texte_items(a->code), "fonc(a) #1 ( fonction/1 ( 1 ) + fonction/0 ) ; ( retour )");
  EXPECT_EQ(appel(a->code)[2], ptr_vers_mot(b2));
  EXPECT_NE(c->code, nullptr);  // lier_tout compiles what has no code

  // Two functions of one name: the caller's file group goes first.
  Objet* autre = fonction("d() { }");
  Objet* voisin = fonction("d() { }");
  a->f2 = voisin->f2 = 7;
  Objet* e = fonction("e() { d() }");
  e->f2 = 7;
  compile(e);
  lier(e);
  EXPECT_EQ(appel(e->code)[2], ptr_vers_mot(voisin));
  e->f2 = 0;
  compile(e);
  lier(e);
  EXPECT_EQ(appel(e->code)[2], ptr_vers_mot(autre));
}

TEST(Lien, LinkAllRunsOncePerChange) {
  prepare_lang();
  Objet* f = fonction("f() { x = 1 }");
  EXPECT_EQ(lier_tout(), 0);
  mot* code = f->code;
  ASSERT_NE(code, nullptr);
  // No change: nothing is done, not even a new compile of a code removed
  // behind the table's back.
  f->code = nullptr;
  EXPECT_EQ(lier_tout(), 0);
  EXPECT_EQ(f->code, nullptr);
  f->code = code;
  // A change: a failing function fails the whole, reported twice at most.
  Objet* g = fonction("g() { a,,b }");
  fonctions_modifiees();
  testing::internal::CaptureStdout();
  EXPECT_EQ(lier_tout(), -1);
  std::string s = testing::internal::GetCapturedStdout();
  EXPECT_EQ(s, ", ,: M66\ng 1: g() { a,,b }\nM107\n, ,: M66\ng 1: g() { a,,b }\nM107\n");
  EXPECT_EQ(lier_tout(), -1);  // remembered until the next change
  (void)g;
}

TEST(Lien, ControlFlowWalks) {
  prepare_lang();
  std::map<const Objet*, float> g;
  EXPECT_EQ(execute("x = 0; pour(i=0,3) x = x + i; $x", g), "6 ");
  EXPECT_EQ(execute("x = 0; pour(i=0,10,2){ x = x + i }; $x; $i", g), "30 12 ");
  EXPECT_EQ(execute("x = 0; pour(i=3,1,-1) x = x * 10 + i; $x", g), "321 ");
  EXPECT_EQ(execute("x = 0; pour(i=0;i<4;i++) x = x + i; $x", g), "6 ");
  EXPECT_EQ(execute("i = 0; tantque(i < 5) i = i + 2; $i", g), "6 ");
  EXPECT_EQ(execute("a = 1; si(a) $1 sinon $2; si(a == 0) $3 sinon { $4; $5 }; si(a) $6", g), "1 4 5 6 ");
  EXPECT_EQ(execute("si(0) $1 sinon; $2", g), "2 ");
  // selon: constant cases, an expression case, defaut, and falling through.
  for (int x = 0; x < 5; ++x) {
    std::string t = "x = " + std::to_string(x) +
                    "; y = 2; selon(x){cas 1: $10; sortir; cas y+1: $30; cas 4: $40; sortir; defaut: $99}; $0";
    std::string attendu[] = {"99 0 ", "10 0 ", "99 0 ", "30 40 0 ", "40 0 "};
    EXPECT_EQ(execute(t, g), attendu[x]) << x;
  }
  EXPECT_EQ(execute("x = 7; selon(x){cas 1: $1}; $2", g), "2 ");
  // sortir leaves the innermost pour; from a si, the body around the si.
  EXPECT_EQ(execute("pour(i=0,9){ si(i == 3) sortir; $i }; $100", g), "0 1 2 100 ");
  EXPECT_EQ(execute("pour(;;) sortir; $1", g), "1 ");
  EXPECT_EQ(execute("i = 0; tantque(1){ i = i + 1; si(i > 2) sortir }; $i", g), "3 ");
  EXPECT_EQ(execute("pour(i=0,2){ pour(j=0,9){ si(j > 0) sortir; $j } $i }", g), "0 0 0 1 0 2 ");
  // A brace group among statements; sortir leaves the pour around it.
  EXPECT_EQ(execute("{ a = 1; { b = 2 } }; pour(i=0,5){ { a = i } si(i == 2) sortir; $i }; $a + b", g), "0 1 4 ");
  // From a si, sortir counts two closing braces: a brace group around the si
  // is the second one.
  EXPECT_EQ(execute("pour(i=0,3){ { si(i == 1) sortir; $i } }", g), "0 2 3 ");
  // aller, forward and back.
  EXPECT_EQ(execute("i = 0; haut: i = i + 1; si(i < 3) aller haut; $i; aller fin; $99; fin: $0", g), "3 0 ");
}

TEST(Lien, LinkingTwiceChangesNothing) {
  prepare_lang();
  Objet* o = lie_ligne("x = 0; pour(i=0,3) x = x + i; tantque(x) x = 0; aller f; f: selon(x){cas 1: sortir}");
  std::vector<mot> avant = mots_items(o->code);
  fonctions_modifiees();
  EXPECT_EQ(lier(o), 0);
  EXPECT_EQ(mots_items(o->code), avant);
}
