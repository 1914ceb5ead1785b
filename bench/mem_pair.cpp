// The other side of a shared-memory channel, as a small native reader: it
// maps the object, and for each message in the writer's area empties its
// answer area, takes the message, and answers with one float. It ends after
// `tours` messages.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  int fd = shm_open(argv[1], O_RDWR, 0);
  if (fd < 0) return 1;
  auto* m = static_cast<volatile std::int32_t*>(mmap(nullptr, 1024, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
  long tours = std::atol(argv[2]);
  std::int32_t copie[100];
  for (long t = 0; t < tours; ++t) {
    std::int32_t n;
    while ((n = __atomic_load_n(m, __ATOMIC_ACQUIRE)) == 0) {
    }
    if (n < 4 || n > 100) n = 4;
    for (int k = 1; k < n; ++k) copie[k] = m[k];
    __atomic_store_n(m + 100, 0, __ATOMIC_RELEASE);
    __atomic_store_n(m, 0, __ATOMIC_RELEASE);
    float x = static_cast<float>(t);
    std::int32_t w;
    std::memcpy(&w, &x, 4);
    m[101] = -1002;
    m[102] = 1;
    m[103] = 1;
    m[104] = w;
    __atomic_store_n(m + 100, 5, __ATOMIC_RELEASE);
  }
  (void)copie;
  return 0;
}
