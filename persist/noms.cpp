// File names by type and form, and the search of a file: current, user
// and environment directories, in this order, with the question asked
// before a file is overwritten.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "lang/lang.h"
#include "persist/interne.h"
#include "startup/startup.h"

namespace {
struct Extension {
  int type;
  const char* ext;
};
constexpr Extension extensions[] = {
    {4, "vol"},   {8, "aff"},  {24, "lum"},  {25, "zbu"},  {28, "ima"},  {49, "tra"},  {59, "ale"},
    {69, "exec"}, {88, "cin"}, {114, "vue"}, {120, "bro"}, {148, "mem"}, {152, "alp"}, {161, "res"},
};
constexpr Extension extensions_texte[] = {
    {1, "h"}, {6, "fon"}, {21, "var"}, {63, "com"}, {105, "his"}, {106, "typ"}, {107, "ali"}, {22, ""},
};

const char* ext_de(int type) {
  for (const Extension& e : extensions)
    if (e.type == type) return e.ext;
  return nullptr;
}

bool existe(const std::string& c) {
  struct stat st;
  return ::stat(c.c_str(), &st) == 0;
}

bool trace_ouvre() { return dem.debug && etat_ou(0, 36, 0) > 0; }

// The places a name is looked for, in order.
std::vector<std::string> lieux(const std::string& base, int demande) {
  if (base.empty()) return {};
  if (demande == -3 || base[0] == '/') return {base};
  if (base[0] == '.') {
    // ".x" is x of the current directory only; "./x" and "../x" as given.
    if (base.size() > 1 && base[1] != '/' && base[1] != '.') return {base.substr(1)};
    return {base};
  }
  if (demande == -2 || demande == -1) return {std::string(dem.chemin_env) + base};
  std::vector<std::string> l{base};
  if (dem.chemin_uti[0]) l.push_back(std::string(dem.chemin_uti) + base);
  if (dem.chemin_env[0]) l.push_back(std::string(dem.chemin_env) + base);
  return l;
}

// The console's answer to the question: true to overwrite.
bool ecraser(const std::string& c) {
  std::printf("%s", c.c_str());
  message(0, M_EXISTE);
  std::fflush(stdout);
  char ligne[256];
  int n = lire_ligne(ligne, sizeof ligne);
  if (n < 0 || ligne[0] == '\n' || ligne[0] == '0' || ligne[0] == 'n') {
    message(0, M_ABANDON);
    return false;
  }
  return true;
}
}  // namespace

std::string extension_type(int type, int forme) {
  const char* prefixe = forme == FORME_ASCII ? "ascii" : forme == FORME_EXEC ? "exec" : "";
  // A file of alpha images lies under the volumes' extension.
  const char* e = ext_de(type == B_ALP_TYPE ? 4 : type);
  if (!e) return prefixe;
  if (!*prefixe) return e;
  return std::string(prefixe) + "." + e;
}

std::string extension_texte(int ordinal) {
  for (const Extension& e : extensions_texte)
    if (e.type == ordinal) return e.ext;
  const char* e = ext_de(ordinal);
  return e ? e : "";
}

int ouvre(std::string_view ext, std::string_view nom, bool ecriture, int demande, std::string* chemin) {
  std::string base(nom);
  if (!ext.empty()) {
    std::string e = "." + std::string(ext);
    if (base.size() < e.size() || base.compare(base.size() - e.size(), e.size(), e) != 0) base += e;
  }
  if (trace_ouvre())
    std::printf("ouvre(type=%.*s nom=%.*s wr=%sdemande=%d)\n", static_cast<int>(ext.size()), ext.data(),
                static_cast<int>(nom.size()), nom.data(), ecriture ? "w" : "r", demande);
  std::vector<std::string> l = lieux(base, demande);
  if (l.empty()) {
    std::printf("%.*s: ", static_cast<int>(nom.size()), nom.data());
    message(0, MES_FICHIER);
    return -1;
  }
  if (ecriture) {
    // A file is written where the name says, never in the other places.
    const std::string& c = l.front();
    if (demande == 0 && existe(c) && !ecraser(c)) return 0;
    *chemin = c;
    return 1;
  }
  for (const std::string& c : l)
    if (existe(c)) {
      *chemin = c;
      return 1;
    }
  if (demande != 2 && demande != 33) {
    std::printf("%s: ", base.c_str());
    message(0, MES_FICHIER);
  }
  return -1;
}
