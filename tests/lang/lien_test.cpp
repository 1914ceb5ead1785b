// Link: slots, globals and statics as objects with their values, calls by
// name and by file group, link run once per change and idempotent. The
// control offsets it writes are walked by the engine in the transcripts.
#include <gtest/gtest.h>

#include "lang/lang.h"
#include "tests/lang/aide_lang.h"

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
  // The interpreter's part, reduced: the value of the line, which here is
  // a sum of constants in one group.
  static mot valeur[5];
  lang.executer = [](Objet* l) -> mot* {
    const mot* c = l->code;
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

TEST(Lien, LinkingTwiceChangesNothing) {
  prepare_lang();
  Objet* o = lie_ligne("x = 0; pour(i=0,3) x = x + i; tantque(x) x = 0; aller f; f: selon(x){cas 1: sortir}");
  std::vector<mot> avant = mots_items(o->code);
  fonctions_modifiees();
  EXPECT_EQ(lier(o), 0);
  EXPECT_EQ(mots_items(o->code), avant);
}
