// Each numbered compile message from a source that earns it, with its
// context, and always closed by message 107. The message texts of the test
// tables say their own number ("M66").
#include <gtest/gtest.h>

#include "lang/lang.h"
#include "tests/lang/aide_lang.h"

namespace {
struct Cas {
  const char* source;
  const char* sortie;
};

void verifie(Objet* o, const char* attendu) {
  int r = 0;
  std::string s = compile(o, &r);
  EXPECT_EQ(r, -1);
  EXPECT_EQ(s, attendu);
}
}  // namespace

TEST(Messages, BadLines) {
  const Cas cas[] = {
      {"a,,b", ", ,: M66\n 1: {a,,b}\nM107\n"},
      {"x = a==,b", "== ,: M66\n 1: {x = a==,b}\nM107\n"},
      {"x <<= ,2", "<<= ,: M66\n 1: {x <<= ,2}\nM107\n"},
      {"si (1) x = 1 sinon ,2", "sinon ,: M66\n 1: {si (1) x = 1 sinon ,2}\nM107\n"},
      {"x = [ ,2]", "[ ,: M66\n 1: {x = [ ,2]}\nM107\n"},
      {"x = (a;b)", "M3\n 1: {x = (a;b)}\nM107\n"},
      {"a]", "M51\n 1: {a]}\nM107\n"},
      {"a = [1,2", "M51\n 1: {a = [1,2}\nM107\n"},
      {"x = \"abc", "M83\n 1: {x = \"abc}\nM107\n"},
      {"x = 1 /* abc", "M64\n 1: {x = 1 /* abc}\nM107\n"},
      {"{ a ", "M34\n 1: {{ a }\nM107\n"},
      {"#foo", "foo: M68\n 1: {#foo}\nM107\n"},
      {"#define", "M43\n 1: {#define}\nM107\n"},
      {"pour(i=0;3) a", "M33\n 1: {pour(i=0;3) a}\nM107\n"},
      {"pour(i) a", "M33\n 1: {pour(i) a}\nM107\n"},
      {"si a", "M45\n 1: {si a}\nM107\n"},
      {"sinon a", "M45\n 1: {sinon a}\nM107\n"},
      {"tantque a", "M47\n 1: {tantque a}\nM107\n"},
      {"selon(x) a", "M58\n 1: {selon(x) a}\nM107\n"},
      {"selon(x){cas 1 a}", "M59\n 1: {selon(x){cas 1 a}}\nM107\n"},
      {"selon(x){defaut: a; defaut: b}", "M59\n 1: {selon(x){defaut: a; defaut: b}}\nM107\n"},
      {"aller nulle", "nulle: M55\n 1: {aller nulle}\nM107\n"},
      {"externe -x", "-x: M60\n 1: {externe -x}\nM107\n"},
      {"x = * 2", "* M32\n 1: {x = * 2}\nM107\n"},
      {"a b", "b M32\n 1: {a b}\nM107\n"},
      {"a f(1)", "f M32\n 1: {a f(1)}\nM107\n"},
      {"#include f(", "f: M9\n 1: {#include f(}\nM107\n"},
      {"#include \"/nonexistent/x\"", "/nonexistent/x: M36\n 1: {#include \"/nonexistent/x\"}\nM107\n"},
      {"x = v(((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((("
       "(((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((("
       "((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((1",
       nullptr},
  };
  for (const Cas& c : cas) {
    prepare_lang();
    if (c.sortie) {
      verifie(ligne(c.source), c.sortie);
    } else {  // too deep: the limit of a table, message 2
      int r;
      std::string s = compile(ligne(c.source), &r);
      EXPECT_EQ(r, -1);
      EXPECT_EQ(s.substr(0, 3), "M2\n") << s;
    }
  }
}

TEST(Messages, BadFunctions) {
  const Cas cas[] = {
      {"vol(x) { }", "vol: M89\nvol 1: vol(x) { }\nM107\n"},
      {"f { }", "M44\nf 1: f { }\nM107\n"},
      {"f(1) { }", "M44\nf 1: f(1) { }\nM107\n"},
      {"f(a\n{ }", "M44\nf 2: { }\nM107\n"},
      {"f(a, b", "M44\nf 1: f(a, b\nM107\n"},
      {"f(a,\n b; c)\n{ }", "M44\nf 2:  b; c)\nM107\n"},
      {"f(a)\n{\n a = 1\n", "M34\nf 4: \nM107\n"},
      {"f()\n{\n a = 1\n b = * 2\n}", "* M32\nf 4:  b = * 2\nM107\n"},
  };
  for (const Cas& c : cas) {
    prepare_lang();
    Objet* f = fonction(c.source);
    f->code = bloc_alloue(4);  // a failed function is left without code
    verifie(f, c.sortie);
    EXPECT_EQ(f->code, nullptr);
    EXPECT_EQ(lang.statut, -1);
  }
  // A keyword's name is refused, but "menu".
  prepare_lang();
  int r;
  EXPECT_EQ(compile(fonction("menu(x) { a = 1 }"), &r), "");
  EXPECT_EQ(r, 1);
  EXPECT_EQ(lang.statut, 0);
}

TEST(Messages, NoTextAndLinkFailures) {
  prepare_lang();
  Objet* sans = objet_cree(0, TYPE_FONCTION, 0, nullptr, "vide", 0);
  verifie(sans, "vide: M22\nM107\n");
  // A line that failed keeps the code it had; nothing else changes.
  Objet* l = ligne("a = 1");
  compile(l);
  mot* avant = l->code;
  l->donnees[4] = 0;  // text made empty: "" is no error...
  EXPECT_EQ(compile(l), "");
  std::string t = "{a,,b}";
  std::memcpy(l->donnees + 4, t.c_str(), t.size() + 1);
  EXPECT_EQ(compile(l), ", ,: M66\n 1: {a,,b}\nM107\n");
  EXPECT_NE(l->code, nullptr);
  (void)avant;
  // Link: sortir with nowhere to go.
  Objet* s = ligne("sortir");
  compile(s);
  int r;
  EXPECT_EQ(lie(s, &r), "M57\n 1: {sortir}\nM107\n");
  EXPECT_EQ(r, -1);
  EXPECT_EQ(lang.lie, -1);
  Objet* s2 = ligne("si(a) sortir");
  compile(s2);
  EXPECT_EQ(lie(s2, &r), "M57\n 1: {si(a) sortir}\nM107\n");
}
