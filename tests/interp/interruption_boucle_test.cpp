// Ctrl-C reaches the menu while a program runs, not only at the prompt:
// the engine looks at the flag at every statement, and a restart unwinds by
// return codes back to the top-level prompt.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "../outils/processus.h"

namespace {
// Processor time the process has used, in clock ticks.
long temps_cpu(pid_t pid) {
  std::ifstream f("/proc/" + std::to_string(pid) + "/stat");
  std::string l;
  std::getline(f, l);
  std::istringstream s(l.substr(l.rfind(')') + 2));
  std::string champ;
  long utime = 0;
  for (int k = 3; k <= 14 && s >> champ; ++k)
    if (k == 14) utime = std::stol(champ);
  return utime;
}

// Waits (20 s at most) until the process has computed `ticks` more: a loop
// is running, whatever the load of the machine.
void attend_calcul(pid_t pid, long ticks) {
  long t0 = temps_cpu(pid);
  for (int k = 0; k < 2000 && temps_cpu(pid) < t0 + ticks; ++k) usleep(10000);
}

Processus boucle_lancee(const char* ligne) {
  Processus p = lance_orvane({"gra=0", "ID", "ini=env/initb.h"});
  EXPECT_TRUE(attend(p, "empilements", 20000));
  // A line answered: the prompt reads, so the handler is set.
  tape(p, "$ \"@pret\"");
  EXPECT_TRUE(attend(p, "@pret", 20000));
  tape(p, ligne);
  attend_calcul(p.pid, 10);  // well into the loop
  p.lu.clear();
  kill(p.pid, SIGINT);
  EXPECT_TRUE(attend(p, "Interruption", 20000));
  return p;
}
// Ctrl-C, then "0": the loop in hand is abandoned, back at the prompt.
void abandonne(Processus& p) {
  kill(p.pid, SIGINT);
  ASSERT_TRUE(attend(p, "Interruption", 20000));
  tape(p, "0");
  ASSERT_TRUE(attend(p, "Abandon", 20000));
  p.lu.clear();
}

}  // namespace

TEST(InterruptionBoucle, AbandonReturnsToThePrompt) {
  Processus p = boucle_lancee("n = 0; tantque (1) n += 1");
  tape(p, "x");  // any other answer: the loop goes on
  ASSERT_TRUE(attend(p, "Reponse illegale"));
  usleep(50000);
  p.lu.clear();
  kill(p.pid, SIGINT);
  ASSERT_TRUE(attend(p, "Interruption"));
  tape(p, "0");
  ASSERT_TRUE(attend(p, "Abandon"));
  tape(p, "$ n > 1000");
  EXPECT_TRUE(attend(p, "1.000000"));
  EXPECT_EQ(termine(p), 0);
}

TEST(InterruptionBoucle, PauseRunsOneLineThenRestarts) {
  Processus p = boucle_lancee("pour (i = 1, 1e9) x = i");
  tape(p, "2");
  ASSERT_TRUE(attend(p, "Pause>", 20000));
  tape(p, "$ i > 1");  // the line sees the interrupted loop's variable
  ASSERT_TRUE(attend(p, "1.000000", 20000));
  p.lu.clear();
  tape(p, "$ 8");  // back at the prompt, the loop abandoned
  EXPECT_TRUE(attend(p, "8.000000", 20000));
  EXPECT_EQ(termine(p), 0);
}

// The direct ways: a counting loop whose body writes an element, one whose
// body is empty, and one of appends to a string still look at the flag at
// every turn; an empty text appended keeps the string short for a billion
// turns, and the string is whole after Ctrl-C.
TEST(InterruptionBoucle, TightLoopsOfTheDirectWaysStop) {
  Processus p = boucle_lancee("x = vecteur(7); pour (i = 1, 1e9) x[3] = x[3] + 1");
  tape(p, "0");
  ASSERT_TRUE(attend(p, "Abandon"));
  p.lu.clear();
  tape(p, "$ x[3] > 1000");
  tape(p, "$ x[2] - 0.5");
  tape(p, "$ i >= x[3]");
  EXPECT_TRUE(attend(p, "1.000000 \n> -0.500000 \n> 1.000000"));
  tape(p, "pour (k = 1, 1e9) ;");
  attend_calcul(p.pid, 10);
  abandonne(p);
  tape(p, "$ k > 1000");
  EXPECT_TRUE(attend(p, "1.000000"));
  tape(p, "s = \"ab\"; e = \"\"; pour (i = 1, 1e9) s = s, e");
  attend_calcul(p.pid, 10);
  abandonne(p);
  tape(p, "$ i > 1000");
  tape(p, "s = s, \"c\"");
  tape(p, "$ s");
  EXPECT_TRUE(attend(p, "1.000000 \n> > abc "));
  EXPECT_EQ(termine(p), 0);
}

TEST(InterruptionBoucle, DeepRecursionUnwinds) {
  Processus p = lance_orvane({"gra=0", "ID", "ini=env/initb.h", "uti=tests/transcripts/fixtures/fonctions"});
  ASSERT_TRUE(attend(p, "empilements"));
  usleep(100000);
  tape(p, "$ profond(200)");
  usleep(250000);  // some hundred frames deep
  abandonne(p);
  tape(p, "$ profond(2)");  // the frames of the abandoned run are gone
  EXPECT_TRUE(attend(p, "0.000000"));
  EXPECT_EQ(termine(p), 0);
}

// A function that only computes on scalars runs on floats, and a counting
// loop over one scalar assignment turns alone; Ctrl-C in such an endless
// loop, or deep in a recursion, still reaches the menu, and the prompt then
// works as before.
TEST(InterruptionBoucle, ScalarFunctionsStopToo) {
  char modele[] = "/tmp/orviXXXXXX";
  ASSERT_NE(mkdtemp(modele), nullptr);
  std::string dir = modele;
  std::ofstream(dir + "/tourne.fon") << "tourne(n)\n{\n  tantque (1) n = n + 1\n  retour n\n}\n";
  std::ofstream(dir + "/fib.fon") << "fib(n)\n{\n  si (n < 2) retour n\n  retour fib(n - 1) + fib(n - 2)\n}\n";
  Processus p = lance_orvane({"gra=0", "ID", "ini=env/initb.h", "uti=" + dir + "/"});
  ASSERT_TRUE(attend(p, "empilements"));
  tape(p, "$ \"@pret\"");
  ASSERT_TRUE(attend(p, "@pret", 20000));
  for (const char* ligne : {"$ tourne(3)", "$ fib(60)", "s = 0; pour (i = 1, 1e9) s = s + sin(i)",
                            "s = 0; pour (i = 1e9, 1, -1) s = s - i"}) {
    tape(p, ligne);
    attend_calcul(p.pid, 10);
    SCOPED_TRACE(ligne);
    abandonne(p);
    tape(p, "$ fib(17) + 0.5");
    EXPECT_TRUE(attend(p, "1597.500000", 20000)) << ligne;
  }
  EXPECT_EQ(termine(p), 0);
  std::system(("rm -rf " + dir).c_str());
}
