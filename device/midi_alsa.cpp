// MIDI from the ALSA sequencer: a client with one input port that other
// clients connect to, connected at once to the client numbered `port` when
// it is above 0. A thread waits on the sequencer, turns its events back into
// bytes and gives them to the parser.
#include <alsa/asoundlib.h>
#include <poll.h>

#include <thread>
#include <vector>

#include "core/charge.h"
#include "device/midi_interne.h"
#include "device/periph_interne.h"

namespace {
snd_seq_t* seq = nullptr;
snd_midi_event_t* codeur = nullptr;
std::atomic<bool> arret{false};
std::thread* fil = nullptr;  // never destroyed: a process that ends with it running ends cleanly

void boucle(std::int64_t debut) {
  Analyseur a;
  int nf = snd_seq_poll_descriptors_count(seq, POLLIN);
  std::vector<pollfd> fds(static_cast<std::size_t>(nf > 0 ? nf : 1));
  snd_seq_poll_descriptors(seq, fds.data(), static_cast<unsigned>(fds.size()), POLLIN);
  std::uint8_t buf[MIDI_TAMPON * 4];
  while (!arret.load()) {
    if (poll(fds.data(), fds.size(), 50) <= 0) continue;
    snd_seq_event_t* ev = nullptr;
    while (snd_seq_event_input(seq, &ev) >= 0 && ev) {
      long n = snd_midi_event_decode(codeur, buf, sizeof buf, ev);
      if (n > 0) analyse(a, buf, n, static_cast<std::uint32_t>(tic_ms() - debut));
    }
  }
}

void libere() {
  if (codeur) snd_midi_event_free(codeur);
  if (seq) snd_seq_close(seq);
  codeur = nullptr;
  seq = nullptr;
}
}  // namespace

int alsa_ouvre(int port) {
  if (!charge_bib(BIB_SON)) return -1;
  int r = snd_seq_open(&seq, "default", SND_SEQ_OPEN_INPUT, SND_SEQ_NONBLOCK);
  int p = -1;
  if (r >= 0) {
    snd_seq_set_client_name(seq, "orvane");
    p = r = snd_seq_create_simple_port(seq, "entree", SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE,
                                       SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_APPLICATION);
  }
  if (r >= 0 && port > 0) r = snd_seq_connect_from(seq, p, port, 0);
  if (r >= 0) r = snd_midi_event_new(MIDI_TAMPON * 4, &codeur);
  if (r < 0) {
    erreur_ouverture(snd_strerror(r));
    libere();
    return -1;
  }
  snd_midi_event_no_status(codeur, 1);
  arret.store(false);
  fil = new std::thread(boucle, tic_ms());
  return 0;
}

void alsa_ferme() {
  arret.store(true);
  if (fil) {
    fil->join();
    delete fil;
    fil = nullptr;
  }
  libere();
}
