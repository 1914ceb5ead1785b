# Sends N sensor packets to a UDP port on loopback at a set rate; each
# packet carries its sequence number as two values (seq // 65000, seq %
# 65000), each value v as the bytes v // 255, v % 255 at places 2 and 3.
import socket, sys, time
port, n, cadence = int(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3])
s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
entete = bytes(19) + bytes([28]) + bytes(4)
def val(v): return bytes([0, 0, v // 255, v % 255])
time.sleep(0.3)
t0 = time.perf_counter()
for i in range(n):
    s.sendto(entete + val(i // 65000) + val(i % 65000), ('127.0.0.1', port))
    if i % 64 == 63:
        avance = t0 + (i + 1) / cadence - time.perf_counter()
        if avance > 0: time.sleep(avance)
