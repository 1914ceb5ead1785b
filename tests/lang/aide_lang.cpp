#include "tests/lang/aide_lang.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <map>

#include "core/message.h"
#include "lang/lang.h"
#include "startup/startup.h"

namespace {
std::string table(int n, const std::map<int, std::pair<std::string, int>>& noms) {
  std::string t = "vocabulaire de test\n";
  for (int i = 0; i < n; ++i) {
    auto it = noms.find(i);
    std::string nom = it == noms.end() ? "?" + std::to_string(i) : it->second.first;
    int etat = it == noms.end() ? 0 : it->second.second;
    t += "|" + std::to_string(i) + ": " + nom + "\n0 " + std::to_string(etat) + " 0 0 .\n";
  }
  return t;
}

const std::map<int, std::pair<std::string, int>> LISTE_A = {
    {2, {"aide", 0}},     {6, {"fonc", 0}},     {8, {"externe", 0}}, {10, {"pour", 0}},
    {11, {"retour", 0}},  {12, {"aller", 0}},   {16, {"si", 0}},     {17, {"sinon", 0}},
    {18, {"tantque", 0}}, {21, {"var", 0}},     {22, {"NIL", 0}},    {25, {"PI", 0}},
    {29, {"sortir", 0}},  {30, {"selon", 0}},   {31, {"cas", 0}},    {32, {"defaut", 0}},
    {34, {"lib", 1}},     {36, {"edi", 0}},     {45, {"statique", 0}}, {62, {"$", 0}},
    {65, {"?", 0}},       {66, {"RC", 0}},      {97, {"var", 0}},    {101, {"fonc", 0}},
    {107, {"ali", 0}},    {108, {"err", 0}},
};
const std::map<int, std::pair<std::string, int>> LISTE_B = {
    {4, {"vol volume", 0}}, {8, {"aff", 0}},  {24, {"lum", 0}},  {35, {"rotx", 0}},
    {36, {"roty", 0}},      {74, {"menu", 0}}, {86, {"som", 0}},
};

std::string nom_symbole(const mot* code, mot sorte, mot index) {
  for (const mot* e = code + code[0] + 1; e[0] > 0; e += e[0])
    if (e[1] == sorte && e[2] == index) return reinterpret_cast<const char*>(e + 5);
  return "?";
}

std::string nombre(float x) {
  char t[32];
  std::snprintf(t, sizeof t, "%g", static_cast<double>(x));
  return t;
}

std::string operateur(mot v) {
  switch (v) {
    case OP_EGAL_EGAL: return "==";
    case OP_DIFF: return "!=";
    case OP_INF_EGAL: return "<=";
    case OP_SUP_EGAL: return ">=";
    case OP_ET: return "&&";
    case OP_OU: return "||";
    case OP_TILDE: return "~";
    case OP_DECAL_G: return "<<";
    case OP_DECAL_D: return ">>";
    case OP_PLUS_AFF: return "+=";
    case OP_MOINS_AFF: return "-=";
    case OP_MUL_AFF: return "*=";
    case OP_DIV_AFF: return "/=";
    case OP_INCR: return "++";
    case OP_DECR: return "--";
    case OP_VIRG_AFF: return ",=";
    case OP_SINON: return "SINON";
    case OP_NOP: return "NOP";
    case OP_DEBUT: return "{B";
    case OP_FIN: return "}B";
    case OP_BOUCLE: return "BOUCLE";
  }
  return std::string(1, static_cast<char>(v));
}

std::string variable(const mot* code, const mot* p) {
  static const std::map<mot, std::pair<std::string, mot>> sortes = {
      {CEL_LOCAL, {"l:", SYM_LOCAL}},         {CEL_REF_LOCAL, {"@l:", SYM_LOCAL}},
      {CEL_STATIQUE, {"s:", SYM_STATIQUE}},   {CEL_REF_STATIQUE, {"@s:", SYM_STATIQUE}},
      {CEL_GLOBAL, {"g:", SYM_GLOBAL}},       {CEL_REF_GLOBAL, {"@g:", SYM_GLOBAL}}};
  auto [prefixe, sorte] = sortes.at(p[0]);
  if (p[0] == CEL_LOCAL || p[0] == CEL_REF_LOCAL) {
    // A slot: its symbol bears the same index, made negative.
    mot index = p[1] > 0 ? -p[1] : p[1];
    std::string n = nom_symbole(code, SYM_LOCAL, index);
    if (n == "?") n = nom_symbole(code, SYM_FORMEL_FONC, index);
    return prefixe + n;
  }
  if (p[1] > 0) {
    auto* o = static_cast<Objet*>(mot_vers_ptr(p[1]));
    return prefixe + std::string(o && o->nom ? o->nom : "?") + "*";
  }
  return prefixe + nom_symbole(code, sorte, p[1]);
}
}  // namespace

void prepare_lang() {
  ASSERT_TRUE(tas::init());
  ASSERT_EQ(piles_alloue(100, 20000, 2000, 1000), 0);
  vocab = Vocabulaire{};
  ASSERT_EQ(kom_analyse(table(112, LISTE_A), 0), 0);
  ASSERT_EQ(kom_analyse(table(90, LISTE_B), 1), 0);
  std::string mes = "messages de test\n";
  for (int i = 0; i < 112; ++i) mes += "|" + std::to_string(i) + ":M" + std::to_string(i) + "\\n\n";
  messages = Messages{};
  ASSERT_EQ(mes_analyse(mes, 0), 0);
  messages.charges = true;
  lang = Lang{};
  macros_globales_vide();
  dem.compile = 200000;
}

mot mot_cle(int env, int ord) { return ptr_vers_mot(mot_entree(env, ord)); }

int ord_b(const char* nom) {
  MotCle* m = mot_cherche(nom);
  return m ? m->ordinal : -1;
}

namespace {
mot* bloc_de_texte(const std::string& t, mot tag) {
  std::vector<mot> b(long_chaine(t.size()), 0);
  b[0] = static_cast<mot>(b.size());
  b[1] = tag;
  b[2] = 1;
  b[3] = 1;
  std::memcpy(b.data() + 4, t.data(), t.size());
  mot* r = bloc_alloue(b[0]);
  std::memcpy(r, b.data(), sizeof(mot) * b.size());
  return r;
}
}  // namespace

Objet* ligne(const std::string& texte) {
  Objet* o = objet_cree(0, OBJ_LIGNE, 0, nullptr, nullptr, 0);
  o->donnees = bloc_de_texte("{" + texte + "}", BLOC_LIGNE);
  return o;
}

Objet* fonction(const std::string& texte) {
  std::size_t d = texte.find_first_not_of(" \t\n");
  std::size_t f = texte.find_first_of(" (\t\n", d);
  std::string nom = texte.substr(d, f - d);
  Objet* o = objet_cree(0, TYPE_FONCTION, 0, nullptr, nom.c_str(), 0);
  o->donnees = bloc_de_texte(texte, BLOC_CHAINE);
  return o;
}

std::string compile(Objet* o, int* r) {
  testing::internal::CaptureStdout();
  int x = compiler(o);
  if (r) *r = x;
  return testing::internal::GetCapturedStdout();
}

std::string lie(Objet* o, int* r) {
  testing::internal::CaptureStdout();
  int x = lier(o);
  if (r) *r = x;
  return testing::internal::GetCapturedStdout();
}

std::vector<mot> mots_items(const mot* code) { return std::vector<mot>(code + 4, code + code[0]); }

std::vector<std::string> items(const mot* code) {
  std::vector<std::string> v;
  for (const mot* p = code + 4; p[0] != 0; p += p[0] < 0 ? 2 : p[0]) {
    if (p[0] < 0) {
      switch (p[0]) {
        case CEL_OP: v.push_back(operateur(p[1])); break;
        case CEL_REEL: v.push_back(nombre(lit_reel(p + 1))); break;
        case CEL_MOT: v.push_back(static_cast<MotCle*>(mot_vers_ptr(p[1]))->noms); break;
        case CEL_LIGNE: v.push_back("#" + std::to_string(p[1])); break;
        case CEL_FIN: v.push_back("FIN"); break;
        case CEL_ETIQUETTE: v.push_back("E" + std::to_string(p[1]) + ":"); break;
        case CEL_ALLER: v.push_back("aller" + std::to_string(p[1])); break;
        case CEL_SAUT: v.push_back("saut" + std::to_string(p[1])); break;
        case CEL_NIL: v.push_back("NIL"); break;
        case CEL_PI: v.push_back("PI"); break;
        case CEL_SORTIR: v.push_back("sortir"); break;
        case CEL_CAS: v.push_back("cas:" + std::to_string(p[1])); break;
        case CEL_DEFAUT: v.push_back("defaut:"); break;
        case CEL_RC: v.push_back("RC"); break;
        case CEL_AIDE: v.push_back(std::string("?") + (p[1] ? static_cast<MotCle*>(mot_vers_ptr(p[1]))->noms : "")); break;
        default: v.push_back(variable(code, p));
      }
      continue;
    }
    switch (p[1]) {
      case BLOC_CHAINE: v.push_back("\"" + std::string(reinterpret_cast<const char*>(p + 4)) + "\""); break;
      case BLOC_REEL: {
        std::string s = "'";
        for (mot i = 0; i < p[2]; ++i) s += (i ? " " : "") + nombre(lit_reel(p + 4 + i));
        v.push_back(s + "'");
        break;
      }
      case BLOC_NOM_FONCTION: v.push_back("fonc(" + std::string(reinterpret_cast<const char*>(p + 2)) + ")"); break;
      case BLOC_APPEL:
        v.push_back("appel:" + nom_symbole(code, SYM_APPEL, p[2]) + "/" + std::to_string(p[3]));
        break;
      case BLOC_APPEL_FORMEL: v.push_back("formel/" + std::to_string(p[3])); break;
      case BLOC_OBJET: v.push_back("fonction/" + std::to_string(p[3])); break;
      case BLOC_NOM: v.push_back("nom:" + std::string(static_cast<const char*>(mot_vers_ptr(p[2]))) + "/" + std::to_string(p[3])); break;
      case BLOC_TEXTE_AIDE:
      case BLOC_TEXTE_ERR: v.push_back("brut:" + std::string(reinterpret_cast<const char*>(p + 4))); break;
      case BLOC_SI: case BLOC_TEST: v.push_back(p[1] == BLOC_SI ? "SI" : "TEST"); break;
      case BLOC_TANTQUE: v.push_back("TANTQUE"); break;
      case BLOC_POUR_COMPTE: case BLOC_POUR_COMPTE_LIE: v.push_back("POUR_COMPTE"); break;
      case BLOC_POUR_TROIS: case BLOC_POUR_TROIS_LIE: v.push_back("POUR_TROIS"); break;
      case BLOC_SELON: case BLOC_SELON_LIE: v.push_back("SELON/" + std::to_string(p[2])); break;
      default: v.push_back("bloc" + std::to_string(p[1]));
    }
  }
  return v;
}

std::string texte_items(const mot* code) {
  std::string s;
  for (const std::string& i : items(code))
    if (i != "NOP") s += (s.empty() ? "" : " ") + i;
  return s;
}
