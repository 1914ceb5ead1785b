// Started from another directory, the relative environment directory of
// the init file is found through env= or beside the init file.
#include <gtest/gtest.h>

#include "tests/outils/processus.h"

namespace {

std::string lance_de(const char* rep, std::vector<std::string> args) {
  Processus p = lance_orvane(std::move(args), rep);
  EXPECT_GT(p.pid, 0);
  tape(p, "$ 6 * 7");
  EXPECT_EQ(termine(p), 0);
  return p.lu;
}

TEST(Demarrage, EnvironmentFoundFromAnotherDirectory) {
  const std::string src = ORVANE_SOURCE;
  std::string par_env = lance_de("/", {"gra=0", "ID", "ini=" + src + "/env/initb.h", "env=" + src + "/env/"});
  EXPECT_EQ(par_env.find("erreur fichier"), std::string::npos) << par_env;
  EXPECT_NE(par_env.find("42.000000"), std::string::npos) << par_env;
  // Without env=, the init file's own directory holds the files.
  std::string a_cote = lance_de("/", {"gra=0", "ID", "ini=" + src + "/env/initb.h"});
  EXPECT_NE(a_cote.find("42.000000"), std::string::npos) << a_cote;
}

}  // namespace
