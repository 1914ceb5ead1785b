// Ctrl-C at the console: the menu, its answers, and a run that goes on.
#include <gtest/gtest.h>

#include "../outils/processus.h"

TEST(Interruption, MenuAnswersThenLeaveOnB) {
  Processus p = lance_orvane({"gra=0", "ID", "ini=env/initb.h"});
  ASSERT_GT(p.pid, 0);
  ASSERT_TRUE(attend(p, "empilements"));
  usleep(300000);  // the handler is set just after the sizes report
  kill(p.pid, SIGINT);
  ASSERT_TRUE(attend(p, "Interruption")) << p.lu;
  tape(p, "x");  // any other answer: the run goes on
  ASSERT_TRUE(attend(p, "Reponse illegale"));
  p.lu.clear();
  kill(p.pid, SIGINT);
  ASSERT_TRUE(attend(p, "Interruption")) << p.lu;
  tape(p, "0");  // back to the restart point, still running
  ASSERT_TRUE(attend(p, "Abandon"));
  p.lu.clear();
  kill(p.pid, SIGINT);
  ASSERT_TRUE(attend(p, "Interruption")) << p.lu;
  tape(p, "b");
  ASSERT_TRUE(attend(p, "Fin du programme"));
  EXPECT_EQ(termine(p), 0);
}

TEST(Interruption, EndOfInputEndsWithZero) {
  Processus p = lance_orvane({"gra=0", "ID", "ini=env/initb.h"});
  tape(p, "ligne");
  EXPECT_EQ(termine(p), 0);
  EXPECT_NE(p.lu.find("empilements"), std::string::npos);
}
