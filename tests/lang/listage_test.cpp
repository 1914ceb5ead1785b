// Listing of code: every item kind prints and the walk ends at the code's 0;
// jump targets are counted in items, backwards negative; the debug listings
// of the passes.
#include <gtest/gtest.h>

#include "lang/lang.h"
#include "tests/lang/aide_lang.h"

namespace {
std::string liste(const Objet* o, int ligne = 0) {
  testing::internal::CaptureStdout();
  lister_code(o, ligne);
  return testing::internal::GetCapturedStdout();
}

constexpr const char* TOUT =
    "f(a, b) fonc b;\n{ statique s = 2; externe e;\n @a = s + e + @s + @e; b(1); g(2); h(1)\n"
    "aide vol\n err x\n ? rotx\n RC\n x = NIL, PI, \"ch\", 'ab'\n"
    "si(a) b(2) sinon a = 1\n pour(i=0,3) a = i\n pour(;;) sortir\n tantque(a) sortir\n"
    "selon(a){cas 1: a = 2; cas a + 1: a = 3; defaut: a = 4}\n aller fin; fin: a = 0\n vol(1) rotx(30)\n}";
}  // namespace

TEST(Listage, JumpBackCountsNegative) {
  prepare_lang();
  Objet* o = ligne("tantque(i) i = i - 1");
  compile(o);
  EXPECT_EQ(liste(o), "\n1:\ttantque ( GLB0 ) { ( GLB0 = ( GLB0 - 1.000000 ) ) ; } \n");
  lier(o);
  // The header's targets count items forward; the loop's end jumps back.
  EXPECT_EQ(liste(o), "\n1:\tsi V: 7 F: 18 ( GLB i ) { ( GLB i = ( GLB i - 1.000000 ) ) ; aller -17 \n");
}

TEST(Listage, EveryItemKindBeforeAndAfterLink) {
  prepare_lang();
  Objet* f = fonction(TOUT);
  fonction("g(x) { }");
  int r;
  ASSERT_EQ(compile(f, &r), "");
  std::string avant = liste(f);
  ASSERT_EQ(lie(f, &r), "");
  std::string apres = liste(f);
  for (const char* morceau : {"fonc(f)\n2:\t; ; ", "STA0", "@LOC0", "( F1 ( 1.000000 ) )", "aide vol",
                              "err x", "? rotx", "RC ", "NIL , ( PI , ( \"ch \", ( 97.000000 98.000000 )",
                              "si ( LOC0 )", "sinon {", "pour ( LOC3", "( ) pour ( ) ( ) { sortir ; }",
                              "tantque ( LOC0 )", "selon ( LOC0 ) { cas: 1065353216 ; ", "cas: 0 ( LOC0 + 1.000000 )",
                              "defaut: ( LOC0", "aller 1 ; ETIQUETTE 1:", "( vol ( 1.000000 ) rotx ( 30.000000 ) )",
                              "( vol ( 1.000000 ) rotx ( 30.000000 ) ) ; \n16:\t( retour ) \n"})
    EXPECT_NE(avant.find(morceau), std::string::npos) << morceau << "\n" << avant;
  for (const char* morceau : {"( @LOC0 = ( ( ( STA s + GLB e ) + @STA s ) + @GLB e ) )", "( g ( 2.000000 ) )",
                              "( h ( 1.000000 ) )", "si V: 9 F: 17 ( LOC0 )", "aller 11 {",
                              "pour V: 15 F: 24", "aller -14 ", "aller -23 ", "selon \n\t5: \n\t21: \n\tDEF: 30 ",
                              "aller 3 ; ETIQUETTE 1:"})
    EXPECT_NE(apres.find(morceau), std::string::npos) << morceau << "\n" << apres;
  // One line alone: from its mark to the next one.
  EXPECT_EQ(liste(f, 4), "\n4:\t( aide vol ) ; \n");
  EXPECT_EQ(liste(f, 99), "\n");
}

TEST(Listage, HandMadeBlockEndsAtItsZero) {
  prepare_lang();
  // Kinds that compiled code only holds before link, a block of an unknown
  // tag, and a length word past the 0 that ends the run.
  mot code[] = {60,       CODE_BLOC, 0, 0,  CEL_ALLER, 3, 13, BLOC_SI, 0, 0, 0, 0, 0,
                0,        0,         0, 0,  0,         0, 9,  BLOC_TANTQUE, 0, 0, 0, 0, 0,
                0,        0,         3, BLOC_SELON, 0, 4, BLOC_APPEL, -1, 2, 4, 4242, 1, 2,
                CEL_OP,   OP_SINON,  CEL_OP, OP_NOP, CEL_OP, OP_BOUCLE, CEL_OP, OP_ET, CEL_FIN, 0, 0,
                CEL_REEL, 0,         0, 0,  0,         0, 0,  0};
  Objet* o = objet_cree(0, OBJ_LIGNE, 0, nullptr, nullptr, 0);
  o->code = code;
  EXPECT_EQ(liste(o), "aller 3 si tantque selon F1 ?4242 sinon && \n");
  o->code = nullptr;
}

TEST(Listage, SourceLineOfAFunctionCountsFromItsFile) {
  prepare_lang();
  Objet* f = fonction("f()\n/* ... */\n{\n  a = 1\n}\n");
  f->f1 = 10;  // the text begins behind line 10 of its file
  testing::internal::CaptureStdout();
  lister_ligne(f, 4);
  lister_ligne(f, 40);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "f 14:   a = 1\nf 50: \n");
}

TEST(Listage, PassListingsAndBug) {
  prepare_lang();
  lang.liste_passes = true;
  lang.liste_lien = true;
  Objet* l = ligne("x = 1");
  EXPECT_EQ(compile(l),
            "PASSE 1\n-------\n\n1:\t{x  = 1}\n"
            "PASSE 2\n-------\n\n1:\tGLB0 = 1.000000 ; \n"
            "PASSE 3\n-------\n\n1:\t( GLB0 = ( 1.000000 ) ) ; \n");
  EXPECT_EQ(lie(l), "LINK\n----\n\n1:\t( GLB x = ( 1.000000 ) ) ; \n");
  // At a failure: the words the failing stage had.
  std::string s = compile(ligne("x = * 1"));
  EXPECT_NE(s.find("* M32\nBUG\n-------\n\n1:\t( GLB0 = * 1.000000 ) ; \n 1: {x = * 1}\nM107\n"), std::string::npos)
      << s;
  // A function's name field prints as fonc(name).
  lang.liste_lien = false;
  s = compile(fonction("f() { }"));
  EXPECT_EQ(s.substr(0, 34), "PASSE 1\n-------\n\n1:\tfonc(f)() { }\n");
}
