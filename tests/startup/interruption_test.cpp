// Ctrl-C at the prompt, while the console read waits: "0" goes back to the
// restart point and the run goes on, "b" ends it. The other answers, and
// Ctrl-C while a program runs, are tried on running loops.
#include <gtest/gtest.h>

#include "../outils/processus.h"

TEST(Interruption, AtThePromptRestartThenLeaveOnB) {
  Processus p = lance_orvane({"gra=0", "ID", "ini=env/initb.h"});
  ASSERT_GT(p.pid, 0);
  ASSERT_TRUE(attend(p, "empilements"));
  usleep(300000);  // the handler is set just after the sizes report
  kill(p.pid, SIGINT);
  ASSERT_TRUE(attend(p, "Interruption")) << p.lu;
  tape(p, "0");
  ASSERT_TRUE(attend(p, "Abandon"));
  p.lu.clear();
  kill(p.pid, SIGINT);
  ASSERT_TRUE(attend(p, "Interruption")) << p.lu;
  tape(p, "b");
  ASSERT_TRUE(attend(p, "Fin du programme"));
  EXPECT_EQ(termine(p), 0);
}
