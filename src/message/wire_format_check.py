"""Checks the byte layout with an implementation of its own.

Usage: wire_format_check.py [RUNNER] WIRE_MESSAGES

The program writes messages and says what they hold: they are decoded here. Then messages are encoded here and the
program says what it reads. RUNNER is an emulator for a program of another platform.
"""
import os
import random
import struct
import subprocess
import sys
import tempfile


def int32(value):
    return struct.pack("<i", value)


def text(value):
    return int32(len(value)) + value


ENCODERS = {"l": int32, "d": lambda value: value, "s": text,
            "c": lambda value: text(value[0]) + struct.pack("<iii", *value[1:4]) + value[4] + text(value[5])}


def encode_list(kind, values):
    return int32(len(values)) + b"".join(ENCODERS[kind](value) for value in values)


def encode(message):
    body = int32(message["action"]) + int32(message["error"])
    for kind in "ldsc":
        body += encode_list(kind, message[kind])
    for kind in "LDS":
        body += int32(len(message[kind])) + b"".join(encode_list(kind.lower(), values) for values in message[kind])
    body += text(message["binary"])
    body += int32(len(message["wide"]) // 2) + message["wide"]
    body += text(message["void"])
    return int32(len(body) + 4) + body


class Reader:
    def __init__(self, data):
        self.data = data
        self.at = 0

    def take(self, count):
        if count < 0 or self.at + count > len(self.data):
            raise ValueError("field beyond the end at %d" % self.at)
        self.at += count
        return self.data[self.at - count:self.at]

    def l(self):
        return struct.unpack("<i", self.take(4))[0]

    def d(self):
        return self.take(8)

    def s(self):
        return self.take(self.l())

    def c(self):
        return (self.s(), self.l(), self.l(), self.l(), self.d(), self.s())

    def values(self, kind):
        read = getattr(self, kind)
        return [read() for _ in range(self.l())]


def decode(data):
    reader = Reader(data)
    if reader.l() != len(data):
        raise ValueError("the first field is not the length")
    message = {"action": reader.l(), "error": reader.l()}
    for kind in "ldsc":
        message[kind] = reader.values(kind)
    for kind in "LDS":
        message[kind] = [reader.values(kind.lower()) for _ in range(reader.l())]
    message["binary"] = reader.s()
    message["wide"] = reader.take(2 * reader.l())
    message["void"] = reader.s()
    if reader.at != len(data):
        raise ValueError("%d bytes behind the last field" % (len(data) - reader.at))
    return message


def show_value(kind, value):
    if kind == "l":
        return str(value)
    if kind == "d":
        return value.hex()
    if kind == "s":
        return "'" + value.hex() + "'"
    return "(" + " ".join(show_value(part, item) for part, item in zip("slllds", value)) + ")"


def show_list(kind, values):
    return "[" + " ".join(show_value(kind, value) for value in values) + "]"


def describe(message):
    lists = "".join(show_list(kind, message[kind]) for kind in "ldsc")
    arrays = "".join("{" + "".join(show_list(kind.lower(), values) for values in message[kind]) + "}" for kind in "LDS")
    blocks = "|".join(message[kind].hex() for kind in ("binary", "wide", "void"))
    return "%d %d%s%s%s" % (message["action"], message["error"], lists, arrays, blocks)


def random_message(source):
    def some(make, most=4):
        return [make() for _ in range(source.randint(0, most))]

    def word():
        return source.choice([0, 1, -1, 2**31 - 1, -2**31, source.randint(-10**6, 10**6)])

    def data(most=20):
        return bytes(source.randrange(256) for _ in range(source.randint(0, most)))

    def number():
        return struct.pack("<d", source.choice([0.0, -0.0, 1e-300, float("inf"), source.uniform(-1e6, 1e6)]))

    makers = {"l": word, "d": number, "s": data, "c": lambda: (data(), word(), word(), word(), number(), data())}
    message = {"action": word(), "error": word()}
    for kind in "ldsc":
        message[kind] = some(makers[kind])
    for kind in "LDS":
        message[kind] = some(lambda kind=kind: some(makers[kind.lower()]))
    wide = "".join(source.choice("aZ\u00e9\u20ac\U0001F600") for _ in range(source.randint(0, 8)))
    message.update(binary=data(), wide=wide.encode("utf-16-le"), void=data(30000))
    return message


def compare(direction, expected, found):
    if len(expected) != len(found):
        sys.exit("%s: %d messages expected, %d found" % (direction, len(expected), len(found)))
    for number, (one, other) in enumerate(zip(expected, found)):
        if one != other:
            sys.exit("%s: message %d\n expected %s\n found    %s" % (direction, number, one, other))
    print("%s: %d messages agree" % (direction, len(found)))


def split(data):
    messages = []
    while data:
        total = struct.unpack("<i", data[:4])[0]
        if not 52 <= total <= len(data):
            sys.exit("a message of %d bytes in a rest of %d" % (total, len(data)))
        messages.append(data[:total])
        data = data[total:]
    return messages


def run(command, mode, path):
    return subprocess.run(command + [mode, path], check=True, stdout=subprocess.PIPE).stdout.decode().splitlines()


def main(command):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "messages.bin")
        said = run(command, "write", path)
        with open(path, "rb") as file:
            images = split(file.read())
        compare("program to script", said, [describe(decode(image)) for image in images])
        compare("script's own bytes", [image.hex() for image in images], [encode(decode(image)).hex() for image in images])

        source = random.Random(20)
        messages = [random_message(source) for _ in range(200)]
        with open(path, "wb") as file:
            file.write(b"".join(encode(message) for message in messages))
        compare("script to program", [describe(message) for message in messages], run(command, "read", path))


if __name__ == "__main__":
    main(sys.argv[1:])
