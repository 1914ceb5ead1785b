"""The window's idle step and its keys, on an X server (run under
tests/display/sous_xvfb.sh by bench/lance.sh, or on the user's display).

Idle calls per second with an empty scene: the mouse tool with no function
owns the events, so every idle call is a full step (events, console, tool,
end of frame) and nothing waits; the frame counter of `fen` is read twice a
second apart. The cost of a step is the second divided by that count.

A key's way to the keyboard buffer: xdotool sends "q", bound to a function
that prints; the time from xdotool's return to the printed line, in the
shell's mode (which sleeps on the console and the X connection when idle)
and with the tool running."""
import os, select, subprocess, sys, time

orvane = sys.argv[1] if len(sys.argv) > 1 else "build/orvane"
p = subprocess.Popen([orvane, "ID", "ini=env/initb.h", "x=320", "y=240", "uti=bench/fenetre"],
                     stdin=subprocess.PIPE, stdout=subprocess.PIPE)
lu = b""


def tape(ligne):
    p.stdin.write(ligne.encode() + b"\n")
    p.stdin.flush()


def attend(texte, delai=10.0):
    global lu
    fin = time.monotonic() + delai
    while texte.encode() not in lu:
        r, _, _ = select.select([p.stdout], [], [], max(0.0, fin - time.monotonic()))
        if not r:
            sys.exit("pas de reponse: " + texte)
        b = os.read(p.stdout.fileno(), 65536)
        if not b:
            sys.exit("orvane a fini")
        lu += b
    return time.monotonic()


marque = 0


def valeurs(expr):
    global marque, lu
    marque += 1
    lu = b""
    tape('$ "@d%d"' % marque)
    tape("$ " + expr)
    tape('$ "@f%d"' % marque)
    attend("@f%d " % marque)
    t = lu.decode(errors="replace")
    t = t[t.index("@d%d" % marque) + 4:t.index("@f%d" % marque)]
    return [float(m) for m in t.split() if m.replace(".", "").replace("-", "").isdigit()]


attend("empilements")
fenetre = subprocess.run(["xdotool", "search", "--sync", "--name", "^orvane$"],
                         capture_output=True, text=True).stdout.split()[0]
subprocess.run(["xdotool", "windowfocus", "--sync", fenetre])


def latence(n=20):
    ts = []
    for _ in range(n):
        global lu
        lu = b""
        subprocess.run(["xdotool", "key", "q"])
        t0 = time.monotonic()
        t1 = attend("vu ")
        ts.append(t1 - t0)
        time.sleep(0.02)
    ts.sort()
    return ts[len(ts) // 2] * 1e6, ts[-1] * 1e6


tape('cle("vu q")')
med0, max0 = latence()
tape("sou(1)")
f0 = valeurs("fen")[3]
t0 = time.monotonic()
time.sleep(1.0)
f1 = valeurs("fen")[3]
t1 = time.monotonic()
par_s = (f1 - f0) / (t1 - t0)
med1, max1 = latence()
print("fenetre: %.0f pas inactifs par seconde, scene vide; %.1f us par pas (but < 50)" % (par_s, 1e6 / par_s))
print("fenetre: touche -> tampon, au repos: mediane %.0f us, pire %.0f us" % (med0, max0))
print("fenetre: touche -> tampon, outil en marche: mediane %.0f us, pire %.0f us, soit %.1f pas; une image a 60 Hz: 16667 us"
      % (med1, max1, med1 * par_s / 1e6))
p.kill()
