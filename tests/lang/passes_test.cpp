// The compiled words of lines and functions: the two worked examples word
// for word, the priorities, the statement shapes, labels, strings, and a
// source that only compiles after the buffer has been doubled.
#include <gtest/gtest.h>

#include "core/message.h"
#include "lang/lang.h"
#include "startup/startup.h"
#include "tests/lang/aide_lang.h"

namespace {
constexpr mot OUVRE = '(', FERME = ')', PV = ';';

std::string compile_ligne(const std::string& t) {
  Objet* o = ligne(t);
  int r = 0;
  std::string sortie = compile(o, &r);
  EXPECT_EQ(r, 1) << t << "\n" << sortie;
  return o->code ? texte_items(o->code) : "";
}

std::string compile_fonction(const std::string& t) {
  Objet* o = fonction(t);
  int r = 0;
  std::string sortie = compile(o, &r);
  EXPECT_EQ(r, 1) << t << "\n" << sortie;
  return o->code ? texte_items(o->code) : "";
}
}  // namespace

TEST(Passes, KeywordPhraseWordForWord) {
  prepare_lang();
  Objet* o = ligne("vol(1) rotx(30)");
  int r;
  EXPECT_EQ(compile(o, &r), "");
  ASSERT_EQ(r, 1);
  mot vol = mot_cle(1, 4), rotx = mot_cle(1, 35);
  std::vector<mot> attendu = {CEL_LIGNE, 1, CEL_OP, OUVRE, CEL_MOT, vol, CEL_OP, OUVRE,
                              CEL_REEL, reel_mot(1), CEL_OP, FERME, CEL_MOT, rotx, CEL_OP, OUVRE,
                              CEL_REEL, reel_mot(30), CEL_OP, FERME, CEL_OP, FERME, CEL_OP, PV,
                              CEL_FIN, 0, 0};
  EXPECT_EQ(mots_items(o->code), attendu);
  const mot* c = o->code;
  EXPECT_EQ(c[1], CODE_BLOC);
  EXPECT_EQ(c[0], 4 + static_cast<mot>(attendu.size()));
  EXPECT_EQ(c[c[0]], 2);  // an empty symbol run: its length and its 0
  EXPECT_EQ(c[c[0] + 1], 0);
}

TEST(Passes, AssignmentWordForWord) {
  prepare_lang();
  Objet* o = ligne("x = a + b * 2");
  int r;
  EXPECT_EQ(compile(o, &r), "");
  ASSERT_EQ(r, 1);
  // Globals are numbered 0, -1, -2 in the order of their first use.
  std::vector<mot> attendu = {CEL_LIGNE, 1, CEL_OP, OUVRE, CEL_GLOBAL, 0, CEL_OP, '=', CEL_OP, OUVRE,
                              CEL_GLOBAL, -1, CEL_OP, '+', CEL_OP, OUVRE, CEL_GLOBAL, -2, CEL_OP, '*',
                              CEL_REEL, reel_mot(2), CEL_OP, FERME, CEL_OP, FERME, CEL_OP, FERME,
                              CEL_OP, PV, CEL_FIN, 0, 0};
  EXPECT_EQ(mots_items(o->code), attendu);
  EXPECT_EQ(texte_items(o->code), "#1 ( g:x = ( g:a + ( g:b * 2 ) ) ) ; FIN");
}

TEST(Passes, Priorities) {
  prepare_lang();
  // ^ binds below + and *: 2 ^ 3 + 1 is 2 to the power 4.
  EXPECT_EQ(compile_ligne("x = 2 ^ 3 + 1"), "#1 ( g:x = ( 2 ^ ( 3 + 1 ) ) ) ; FIN");
  // "," takes its whole right side.
  EXPECT_EQ(compile_ligne("1,2+3"), "#1 ( 1 , ( 2 + 3 ) ) ; FIN");
  EXPECT_EQ(compile_ligne("a < b , c"), "#1 ( g:a < ( g:b , ( g:c ) ) ) ; FIN");
  // Equal priorities group to the left; three levels nest right.
  EXPECT_EQ(compile_ligne("a - b - c"), "#1 ( ( g:a - g:b ) - g:c ) ; FIN");
  EXPECT_EQ(compile_ligne("a < b + c * d"), "#1 ( g:a < ( g:b + ( g:c * g:d ) ) ) ; FIN");
  EXPECT_EQ(compile_ligne("a && b || c == d"), "#1 ( ( g:a && g:b ) || ( g:c == g:d ) ) ; FIN");
  // A unary minus binds to its operand, also behind a tighter operator.
  EXPECT_EQ(compile_ligne("a * -b"), "#1 ( g:a * ( 0 - g:b ) ) ; FIN");
  EXPECT_EQ(compile_ligne("!a && b"), "#1 ( ( ! g:a ) && g:b ) ; FIN");
  EXPECT_EQ(compile_ligne("x = y = 1, 2"), "#1 ( g:x = ( g:y = ( 1 , ( 2 ) ) ) ) ; FIN");
}

TEST(Passes, IncrementsAndIndexes) {
  prepare_lang();
  // a+++b reads a ++ + b.
  EXPECT_EQ(compile_ligne("x = a+++b"), "#1 ( g:x = ( ( g:a ++ ) + g:b ) ) ; FIN");
  EXPECT_EQ(compile_ligne("++i"), "#1 ( ( ++ g:i ) ) ; FIN");
  EXPECT_EQ(compile_ligne("x[i++] = 2"), "#1 ( ( g:x [ ( g:i ++ ) ] ) = ( 2 ) ) ; FIN");
  EXPECT_EQ(compile_ligne("a = x{0} + 1"), "#1 ( g:a = ( ( g:x { 0 } ) + 1 ) ) ; FIN");
}

TEST(Passes, ControlShapes) {
  prepare_lang();
  EXPECT_EQ(compile_ligne("si(a) b=1 sinon b=2"),
            "#1 SI ( g:a ) {B ( g:b = ( 1 ) ) }B SINON {B ( g:b = ( 2 ) ) ; }B FIN");
  EXPECT_EQ(compile_ligne("tantque(i<3){i=i+1}"),
            "#1 TANTQUE ( g:i < 3 ) {B ( g:i = ( g:i + 1 ) ) }B ; FIN");
  // The counting form: loop entry, header, start, limit, step, body.
  EXPECT_EQ(compile_ligne("pour(i=0,10,2) x=x+i"),
            "#1 BOUCLE POUR_COMPTE ( g:i = ( 0 ) ) ( 10 ) ( 2 ) {B ( g:x = ( g:x + g:i ) ) ; }B FIN");
  // The three-part form: the start group stands ahead of the header.
  EXPECT_EQ(compile_ligne("pour(i=0;i<3;i++) x=x+i"),
            "#1 ( g:i = ( 0 ) ) POUR_TROIS ( g:i < 3 ) ( ( g:i ++ ) ) {B ( g:x = ( g:x + g:i ) ) ; }B FIN");
  EXPECT_EQ(compile_ligne("pour(;;) sortir"), "#1 ( ) POUR_TROIS ( ) ( ) {B sortir ; }B FIN");
  // A table of one pair per cas, the defaut counted among them.
  EXPECT_EQ(compile_ligne("selon(x){cas 1: a=1; sortir; cas y+1: a=2; defaut: a=3}"),
            "#1 SELON/3 ( g:x ) { cas:1065353216 ; ( g:a = ( 1 ) ) ; sortir ; cas:0 ( g:y + 1 ) ; "
            "( g:a = ( 2 ) ) ; defaut: ( g:a = ( 3 ) ) } ; FIN");
  // No defaut: one pair more for the end of the body.
  Objet* o = ligne("selon(x){cas 'b': a=2}");
  compile(o);
  EXPECT_EQ(texte_items(o->code), "#1 SELON/2 ( g:x ) { cas:98 ; ( g:a = ( 2 ) ) } ; FIN");

  // Headers with the words that a shrinking header frees as no-operations.
  Objet* s = ligne("si(a) b");
  compile(s);
  std::vector<std::string> w = items(s->code);
  EXPECT_EQ(std::vector<std::string>(w.begin(), w.begin() + 6),
            (std::vector<std::string>{"#1", "SI", "NOP", "NOP", "NOP", "NOP"}));
  const mot* h = s->code + 6;
  EXPECT_EQ(h[0], 5);
  EXPECT_EQ(h[1], BLOC_SI);
}

TEST(Passes, PourHeaderCountsItsStep) {
  prepare_lang();
  Objet* a = ligne("pour(i=0,3) x");
  Objet* b = ligne("pour(i=3,0,-1) x");
  compile(a);
  compile(b);
  const mot* ha = a->code + 8;  // behind the line mark and the loop entry
  const mot* hb = b->code + 8;
  ASSERT_EQ(ha[1], BLOC_POUR_COMPTE);
  EXPECT_EQ(ha[6], 0);
  EXPECT_EQ(lit_reel(ha + 7), 1.f);
  EXPECT_EQ(hb[6], 1);
  EXPECT_EQ(texte_items(b->code),
            "#1 BOUCLE POUR_COMPTE ( g:i = ( 3 ) ) ( 0 ) ( 0 - 1 ) {B ( g:x ) ; }B FIN");
}

TEST(Passes, KeywordArgumentsAndCalls) {
  prepare_lang();
  EXPECT_EQ(compile_ligne("rotx 30"), "#1 ( rotx ( 30 ) ) ; FIN");
  EXPECT_EQ(compile_ligne("rotx -30"), "#1 ( rotx ( 0 - 30 ) ) ; FIN");
  EXPECT_EQ(compile_ligne("vol(1) rotx = 30"), "#1 ( vol ( 1 ) rotx = ( 30 ) ) ; FIN");
  EXPECT_EQ(compile_ligne("$x"), "#1 ( $ ( g:x ) ) ; FIN");
  EXPECT_EQ(compile_ligne("vol 1,2"), "#1 ( vol ( 1 , ( 2 ) ) ) ; FIN");
  // Every argument of a call has its own group; the count is in the block.
  EXPECT_EQ(compile_ligne("y = f(1, a+b) + g()"),
            "#1 ( g:y = ( appel:f/2 ( 1 ) ( g:a + g:b ) + appel:g/0 ) ) ; FIN");
  EXPECT_EQ(compile_ligne("f((1,2))"), "#1 ( appel:f/1 ( ( 1 , ( 2 ) ) ) ) ; FIN");
  EXPECT_EQ(compile_ligne("x = NIL; y = PI; RC"), "#1 ( g:x = ( NIL ) ) ; ( g:y = ( PI ) ) ; ( RC ) ; FIN");
  EXPECT_EQ(compile_ligne("aide vol roty"), "#1 ( brut:vol roty ) ; FIN");
  EXPECT_EQ(compile_ligne("? rotx"), "#1 ( ?rotx ) ; FIN");
  EXPECT_EQ(compile_ligne("@a = 3"), "#1 ( @g:a = ( 3 ) ) ; FIN");
  EXPECT_EQ(compile_ligne("var a, b=2, c"), "#1 ( g:a = ( 0 ) ) ; ( g:b = ( 2 ) ) ; ( g:c = ( 0 ) ) ; FIN");
  // "var" alone is the other keyword of that spelling.
  Objet* v = ligne("var");
  compile(v);
  EXPECT_EQ(v->code[9], mot_cle(0, 21));
}

TEST(Passes, ConstantsAndStrings) {
  prepare_lang();
  EXPECT_EQ(compile_ligne("x = 0x1F, 017, .5, 1e2, 09"), "#1 ( g:x = ( 31 , ( 15 , ( 0.5 , ( 100 , ( 9 ) ) ) ) ) ) ; FIN");
  EXPECT_EQ(compile_ligne("x = 'ab\\n'"), "#1 ( g:x = ( '97 98 10' ) ) ; FIN");
  // A quote written with a backslash survives pass 1 as byte 1 and comes out
  // of pass 2 as the quote itself.
  Objet* o = ligne("x = \"dit \\\"oui\\\"\\tpuis\"");
  compile(o);
  EXPECT_EQ(items(o->code)[5], "\"dit \"oui\"\tpuis\"");
  const mot* b = o->code + 14;
  ASSERT_EQ(b[1], BLOC_CHAINE);
  EXPECT_EQ(b[2], 1);
  EXPECT_EQ(b[3], 14);
  EXPECT_EQ(b[0], long_chaine(14));
  // Comments go, strings keep what looks like one.
  EXPECT_EQ(compile_ligne("x = \"/* a */\" /* b */ + 1"), "#1 ( g:x = ( \"/* a */\" + 1 ) ) ; FIN");
}

TEST(Passes, LabelsUsedBeforeTheyStand) {
  prepare_lang();
  // Labels are collected before anything else, so aller can go forward.
  EXPECT_EQ(compile_ligne("aller fin; a=1; fin: b=2; aller fin"),
            "#1 aller1 ; ( g:a = ( 1 ) ) ; E1: ( g:b = ( 2 ) ) ; aller1 ; FIN");
  EXPECT_EQ(compile_ligne("haut: aller bas; bas: aller haut"), "#1 E1: aller2 ; E2: aller1 ; FIN");
  // Neither "cas x:" nor "defaut:" declares a label.
  Objet* o = ligne("selon(x){cas y: a=1; defaut: a=2}");
  compile(o);
  const mot* c = o->code;
  for (const mot* e = c + c[0] + 1; e[0] > 0; e += e[0]) EXPECT_NE(e[1], SYM_ETIQUETTE);
}

TEST(Passes, FunctionsLocalsStaticsFormals) {
  prepare_lang();
  // A name used in a function is a local unless declared otherwise.
  EXPECT_EQ(compile_fonction("f(a, b) { c = a + b; retour c }"),
            "fonc(f) #1 ( l:c = ( l:a + l:b ) ) ; ( retour ( l:c ) ) ; ( retour )");
  Objet* f = fonction("g(x, y) fonc x; { x(1); y(2); z = x }");
  compile(f);
  EXPECT_EQ(texte_items(f->code), "fonc(g) #1 ( formel/1 ( 1 ) ) ; ( appel:y/1 ( 2 ) ) ; ( l:z = ( l:x ) ) ; ( retour )");
  EXPECT_EQ(f->code[3], 2);  // formals
  EXPECT_EQ(f->code[2], 3);  // slots: x, y, z
  Objet* h = fonction("h() { statique s = 3, t[2]; externe e; s = s + e + t; statique }");
  compile(h);
  EXPECT_EQ(texte_items(h->code), "fonc(h) #1 ; ; ( s:s = ( ( s:s + g:e ) + s:t ) ) ; ( statique ) ; ( retour )");
  EXPECT_EQ(h->code[2], 2);  // the statics count among the slots
  // A static carries its value twice: the second is its Objet's.
  const mot* c = h->code;
  const mot* e = c + c[0] + 1;
  ASSERT_EQ(e[1], SYM_STATIQUE);
  EXPECT_STREQ(reinterpret_cast<const char*>(e + 5), "s");
  EXPECT_EQ(e[0], 4 + e[4] + 10);
  EXPECT_EQ(lit_reel(e + 4 + e[4] + 4), 3.f);
  EXPECT_EQ(lit_reel(e + 4 + e[4] + 9), 3.f);
  // Fresh numbers: the statics of a function bear it.
  int n = h->numero;
  compile(h);
  EXPECT_GT(h->numero, n);
}

TEST(Passes, StatementsEndAtLineEnds) {
  prepare_lang();
  EXPECT_EQ(compile_fonction("k(n)\n{\n  a = 1\n  b = a +\n   2\n  si(a)\n    b = 3\n  sinon\n    b = 4\n}"),
            "fonc(k) #3 ( l:a = ( 1 ) ) ; #4 ( l:b = ( l:a + 2 ) ) ; #6 SI ( l:a ) {B ( l:b = ( 3 ) ) }B "
            "#8 SINON {B ( l:b = ( 4 ) ) ; }B #10 ( retour )");
  // A phrase on one line stays one phrase; a new line starts a statement.
  EXPECT_EQ(compile_fonction("m()\n{\n vol(1) rotx(30)\n aff\n}"),
            "fonc(m) #3 ( vol ( 1 ) rotx ( 30 ) ) ; #4 ( aff ) ; #5 ( retour )");
}

TEST(Passes, OverflowRestartsWithTwiceTheRoom) {
  prepare_lang();
  // Each use of A grows the text ten times beyond the source's own size.
  std::string t = "#define A 1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1\n";
  for (int i = 0; i < 400; ++i) t += "x = A\n";
  Objet* o = ligne(t);
  lang.taille_code = 1000;
  vocab.tables[0].etats[A_EDI] = 2;  // trace: each doubling tells the size
  int r;
  std::string sortie = compile(o, &r);
  ASSERT_EQ(r, 1) << sortie;
  EXPECT_GT(lang.taille_code, 10 * o->donnees[0]);
  int doublements = 0;
  for (std::size_t i = sortie.find("M18"); i != std::string::npos; i = sortie.find("M18", i + 1)) ++doublements;
  EXPECT_GE(doublements, 2);
  EXPECT_NE(sortie.find(": " + std::to_string(lang.taille_code) + "\n"), std::string::npos);
  // The same words as a compile with room enough from the start.
  std::vector<mot> apres = mots_items(o->code);
  compile(o);
  EXPECT_EQ(mots_items(o->code), apres);
  std::string debut = texte_items(o->code).substr(0, 40);
  EXPECT_EQ(debut, "#2 ( g:x = ( ( ( ( ( ( ( ( ( ( ( ( ( ( (");
}

TEST(Passes, SymbolAreaGrowsAndGoesOn) {
  prepare_lang();
  dem.compile = 64;
  vocab.tables[0].etats[A_EDI] = 2;
  std::string t = "f() {";
  for (int i = 0; i < 40; ++i) t += " v" + std::to_string(i) + " = " + std::to_string(i) + ";";
  Objet* f = fonction(t + " }");
  int r;
  std::string s = compile(f, &r);
  EXPECT_EQ(r, 1);
  // 40 entries of 6 words, and the run's closing 0.
  EXPECT_EQ(s, "M18\n: 128\nM18\n: 256\n");
  EXPECT_EQ(dem.compile, 256);
  EXPECT_EQ(f->code[2], 40);
}

TEST(Passes, AliasesAndStepPromptNames) {
  prepare_lang();
  // The alias table: lines "name=text" in an Objet of type a107.
  std::string lignes = "tourne=rotx\nmoins = 0 -\n";
  Objet* a = objet_cree(0, TYPE_ALIAS, 0, nullptr, nullptr, 0);
  a->donnees = bloc_alloue(long_chaine(lignes.size()));
  a->donnees[1] = BLOC_CHAINE;
  a->donnees[2] = a->donnees[3] = 1;
  std::memcpy(bloc_texte(a->donnees), lignes.c_str(), lignes.size() + 1);
  EXPECT_EQ(compile_ligne("tourne(30); x = moins 2; tourner = 1"),
            "#1 ( rotx ( 30 ) ) ; ( g:x = ( 0 - 2 ) ) ; ( g:tourner = ( 1 ) ) ; FIN");
  objet_supprime(a);
  // A line typed at a step prompt inside f sees f's locals and statics.
  Objet* f = fonction("f(a) { statique s; b = a + s }");
  compile(f);
  lier(f);
  lang.fonction_pas = f;
  // (The local's name is in f's run, not the line's: "l:?".)
  EXPECT_EQ(compile_ligne("$b + s + c"), "#1 ( $ ( ( l:? + s:s ) + g:c ) ) ; FIN");
  Objet* l = ligne("s = 1");
  compile(l);
  lier(l);
  EXPECT_EQ(l->code[8], CEL_STATIQUE);
  EXPECT_EQ(l->code[9], ptr_vers_mot(objet_trouve(OBJ_STATIQUE, 0, f->numero, "s")));
}

TEST(Passes, EdgesOfTheGrammar) {
  prepare_lang();
  // A source without braces compiles to an empty body.
  Objet* o = objet_cree(0, OBJ_TRANSITOIRE, 0, nullptr, nullptr, 0);
  o->donnees = bloc_alloue(long_chaine(5));
  o->donnees[1] = BLOC_CHAINE;
  std::memcpy(bloc_texte(o->donnees), "a = 1", 6);
  int r;
  EXPECT_EQ(compile(o, &r), "");
  EXPECT_EQ(texte_items(o->code), "#1 ; FIN");
  // In a keyword's argument "a -b" is a - b; "--" behind ")" is postfix.
  EXPECT_EQ(compile_ligne("vol a -b"), "#1 ( vol ( g:a - g:b ) ) ; FIN");
  EXPECT_EQ(compile_ligne("x = (a)-- - 1"), "#1 ( g:x = ( ( ( g:a ) -- ) - 1 ) ) ; FIN");
  // A name with a dot is one name.
  EXPECT_EQ(compile_ligne("a.b = 1"), "#1 ( g:a.b = ( 1 ) ) ; FIN");
}
