// Image sequences made into movies, and their list files. A sequence is a
// root ("f.png") and a range of numbers: frame k is the root with k in four
// digits before its extension ("f0007.png"). The movie is made by the
// `makemovie` script the project ships (over ffmpeg), run as a program with
// its arguments one by one: no name ever goes through a shell.
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/message.h"
#include "image/image.h"
#include "startup/startup.h"
#include "tools/tools.h"

extern char** environ;

namespace {
constexpr int B_TRACE = 55;
constexpr int M_FFMPEG = 132, M_EGALES = 134, M_EXTERNE = 135;  // env 1

bool executable(const std::string& c) { return access(c.c_str(), X_OK) == 0; }

// A program by name in PATH; empty when none.
std::string dans_path(const char* nom) {
  const char* p = std::getenv("PATH");
  std::string t = p ? p : "";
  for (std::size_t i = 0; i <= t.size();) {
    std::size_t f = t.find(':', i);
    if (f == std::string::npos) f = t.size();
    std::string d = t.substr(i, f - i);
    if (!d.empty() && executable(d + "/" + nom)) return d + "/" + nom;
    i = f + 1;
  }
  return {};
}

// The project's scripts beside the program (build/orvane -> scripts/), in
// the installed environment, then in PATH.
std::string script(const char* nom) {
  char exe[4096];
  ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
  if (n > 0) {
    std::string d(exe, static_cast<std::size_t>(n));
    d.resize(d.rfind('/') + 1);
    for (const char* rel : {"../scripts/", "../../scripts/", "scripts/", ""})
      if (executable(d + rel + nom)) return d + rel + nom;
  }
  if (executable(std::string("/usr/orvane/") + nom)) return std::string("/usr/orvane/") + nom;
  return dans_path(nom);
}

// Runs argv[0] with its arguments and waits: its exit status, or -1.
int lance(const std::vector<std::string>& a) {
  std::vector<char*> argv;
  for (const std::string& s : a) argv.push_back(const_cast<char*>(s.c_str()));
  argv.push_back(nullptr);
  std::fflush(stdout);
  pid_t pid;
  if (posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) return -1;
  int statut = 0;
  while (waitpid(pid, &statut, 0) < 0)
    if (errno != EINTR) return -1;
  return WIFEXITED(statut) ? WEXITSTATUS(statut) : -1;
}

bool trace() { return nb_etats[1] > B_TRACE && etats[1][B_TRACE] > 0; }
}  // namespace

std::string film_image(std::string_view racine, long k) {
  char num[64];
  nom_numero(num, "4D", k);
  std::size_t point = racine.rfind('.'), barre = racine.rfind('/');
  std::string c;
  if (point != std::string_view::npos && point > 0 && (barre == std::string_view::npos || point > barre + 1))
    c.append(racine.substr(0, point)).append(num).append(racine.substr(point));
  else
    c.append(racine).append(num);
  return c;
}

int film_pas(int i1, int i2, int s) {
  if (s < 0) s = -s;
  return i1 < i2 ? s : -s;
}

int film_fabrique(std::string_view racine, int i1, int i2, int s, const char* nom, int w, int h, bool jouer) {
  std::string film = nom && *nom ? nom : "NONAME";
  std::vector<std::string> a;
  if (i1 != 0 || i2 != 0) {
    if (i1 == 0 || i2 == 0 || i1 == i2 || s == 0) {
      std::printf("%d, %d: ", i1, i2);
      message(1, M_EGALES);
      return -1;
    }
    s = film_pas(i1, i2, s);
    a = {script("makemovie"), "-o", film};
    if (w > 0 && h > 0) {
      a.emplace_back("-s");
      a.push_back(std::to_string(w) + "," + std::to_string(h));
    }
    for (long k = i1; s > 0 ? k <= i2 : k >= i2; k += s) a.push_back(film_image(racine, k));
    if (trace()) {
      std::fputs("makemovie", stdout);
      for (std::size_t k = 1; k < a.size(); ++k) std::printf(" %s", a[k].c_str());
      std::putchar('\n');
    }
    if (a[0].empty()) {
      std::fputs("makemovie: ", stdout);
      message(1, M_EXTERNE);
      return -1;
    }
    if (dans_path("ffmpeg").empty()) {
      message(1, M_FFMPEG);
      return -1;
    }
    if (lance(a) != 0) {
      std::fputs("makemovie: ", stdout);
      message(1, M_EXTERNE);
      return -1;
    }
  }
  if (jouer) {
    std::string lecteur = script("movieplayer");
    if (lecteur.empty()) lecteur = dans_path("ffplay");
    if (lecteur.empty()) {
      message(1, M_FFMPEG);
      return -1;
    }
    if (film.find('.') == std::string::npos) film += ".mp4";
    if (lance({lecteur, "-autoexit", film}) != 0) {
      std::fputs("movieplayer: ", stdout);
      message(1, M_EXTERNE);
      return -1;
    }
  }
  return 0;
}

int film_liste(std::string_view racine, int i1, int i2, int s, const char* fichier) {
  if (s == 0 || i1 == 0 || i2 == 0) {
    std::printf("%d, %d: ", i1, i2);
    message(1, M_EGALES);
    return -1;
  }
  std::FILE* f = std::fopen(fichier, "w");
  if (!f) {
    std::printf("%s: ", fichier);
    message(0, 37);
    return -1;
  }
  s = film_pas(i1, i2, s);
  int n = 0;
  for (long k = i1; s > 0 ? k <= i2 : k >= i2; k += s, ++n) {
    std::string c = film_image(racine, k);
    std::fprintf(f, "%s\n", c.c_str());
    struct stat st;
    long taille = stat(c.c_str(), &st) == 0 ? static_cast<long>(st.st_size) : 0;
    std::printf("%s: %ld ", c.c_str(), taille);
  }
  std::putchar('\n');
  std::fclose(f);
  return n;
}
