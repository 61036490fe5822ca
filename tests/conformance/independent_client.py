"""A client of a message pipe that shares no code with the library: it knows the documented rules alone.

usage: independent_client.py PIPE-NAME MESSAGE-LENGTH
Sends one message of that length in chunks of 8192 bytes, reads the answer to its end and checks it.
"""

import os
import socket
import struct
import sys

CHUNK = 8192
PREFIX = "\\\\.\\pipe\\"
LONGEST_PATH = 107


def folder():
    if os.environ.get("KOVA_PIPE_DIR"):
        return os.environ["KOVA_PIPE_DIR"]
    if os.environ.get("XDG_RUNTIME_DIR"):
        return os.environ["XDG_RUNTIME_DIR"] + "/kova"
    return "/tmp/kova-%d" % os.geteuid()


def hashed(name):
    value = 0xCBF29CE484222325
    for byte in name.encode():
        value = ((value ^ byte) * 0x100000001B3) % 2**64
    return "k%016x" % value


def path_of(pipe):
    name = pipe[len(PREFIX):]
    path = folder() + "/" + name
    return path if len(path) <= LONGEST_PATH else folder() + "/" + hashed(name)


def main():
    pipe, length = sys.argv[1], int(sys.argv[2])
    message = struct.pack("<i", length) + bytes(i % 251 for i in range(length - 4))
    with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as client:
        client.connect(path_of(pipe))
        for begin in range(0, length, CHUNK):
            client.send(message[begin:begin + CHUNK])
        answer = client.recv(CHUNK)
        (total,) = struct.unpack_from("<i", answer)
        while len(answer) < total:
            answer += client.recv(CHUNK)
    if answer != message:
        sys.exit("the answer differs from the message")


if __name__ == "__main__":
    main()
