"""The real programs behind those that relay.cpp stands for: starts R and Java outside the emulator for the relays that
connect, gives them the relays' input, sends back what they print and how they end, and ends those whose relay has gone.
"""
import os
import socket
import struct
import subprocess
import threading
import time

# R takes its standard streams for a terminal only when it is told so, and without the line editor, which would echo.
CONSOLE = ("R", "--silent", "--no-save", "--no-restore", "--no-readline", "--interactive")
CHUNK = 4096
SIGNAL_BASE = 128


def native(path):
    """A path of the emulator's drive for this system's files, in this system's form."""
    return path.replace("\\", "/").removeprefix("Z:").removeprefix("z:")


def native_list(paths):
    return os.pathsep.join(native(path) for path in paths.split(";") if path)


class Start:
    """How a relay was started, and what became of its program."""

    def __init__(self, texts):
        self.relay, self.name, count = texts[0], texts[1], int(texts[2])
        self.arguments = texts[3:3 + count]
        self.environment = dict(text.split("=", 1) for text in texts[3 + count:])
        self.process = None
        self.lostAt = None  # When the relay had gone before its program had ended.
        self.ended = threading.Event()

    def command(self):
        return CONSOLE if self.name == "Rterm.exe" else ("java", *self.arguments)

    def variables(self):
        told = {f"TOLD_{name}": value for name, value in self.environment.items()}
        own = {name: value for name, value in os.environ.items()
               if name not in ("JAVA_TOOL_OPTIONS", "JDK_JAVA_OPTIONS", "_JAVA_OPTIONS", "R_HOME", "CLASSPATH")}
        return {**own, **told, "LC_ALL": "C.UTF-8", "R_PROFILE_USER": "", "R_ENVIRON_USER": "",
                "R_LIBS_USER": native_list(self.environment.get("R_LIBS_USER", "")),
                "CLASSPATH": native_list(self.environment.get("CLASSPATH", ""))}


class RelayServer:
    """Listens from its beginning on; `starts` are those so far."""

    def __init__(self):
        self.starts = []
        self.changed = threading.Condition()
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.accept, daemon=True).start()

    def close(self):
        self.listener.close()
        for start in self.starts:
            if start.process is not None and start.process.poll() is None:
                start.process.kill()

    def left(self, patience):
        """The starts whose programs still run when that time is over."""
        end = time.monotonic() + patience
        return [start for start in self.starts if not start.ended.wait(max(0, end - time.monotonic()))]

    def accept(self):
        while True:
            try:
                connection, _ = self.listener.accept()
            except OSError:
                return
            threading.Thread(target=self.serve, args=(connection,), daemon=True).start()

    def serve(self, connection):
        with connection:
            length, = struct.unpack("<I", self.receive(connection, 4))
            role, *texts = self.receive(connection, length).decode().split("\0")[:-1]
            try:
                if role == "start":
                    self.run(connection, Start(texts))
                else:
                    self.forward_input(connection, texts[0])
            except (BrokenPipeError, ConnectionResetError):
                pass  # Either side may have gone.

    @staticmethod
    def receive(connection, length):
        return connection.recv(length, socket.MSG_WAITALL)

    def run(self, connection, start):
        is_console = start.name == "Rterm.exe"
        start.process = subprocess.Popen(
            start.command(), env=start.variables(), stdin=subprocess.PIPE if is_console else subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT if is_console else subprocess.PIPE, bufsize=0)
        with self.changed:
            self.starts.append(start)
            self.changed.notify_all()
        threading.Thread(target=self.watch, args=(connection, start), daemon=True).start()
        turn = threading.Lock()
        pumps = [threading.Thread(target=self.pump, args=(stream, kind, connection, turn)) for stream, kind in
                 ((start.process.stdout, b"o"), (start.process.stderr, b"e")) if stream is not None]
        for pump in pumps:
            pump.start()
        for pump in pumps:
            pump.join()
        code = start.process.wait()
        start.ended.set()
        connection.sendall(b"x" + struct.pack("<I", code if code >= 0 else SIGNAL_BASE - code))

    @staticmethod
    def pump(stream, kind, connection, turn):
        with stream:
            while chunk := os.read(stream.fileno(), CHUNK):
                try:
                    with turn:
                        connection.sendall(kind + struct.pack("<I", len(chunk)) + chunk)
                except OSError:
                    pass  # The relay has gone; the program is about to.

    @staticmethod
    def watch(connection, start):
        """A relay sends nothing more; it closes when it ends."""
        try:
            connection.recv(1)
        except OSError:
            pass
        if not start.ended.is_set():
            start.lostAt = time.monotonic()
            start.process.kill()

    def forward_input(self, connection, relay):
        """The same relay's console may still be at its beginning."""
        with self.changed:
            self.changed.wait_for(lambda: self.started(relay))
        process = self.started(relay).process
        if process.stdin is None:
            return
        with process.stdin:
            while chunk := connection.recv(CHUNK):
                process.stdin.write(chunk)

    def started(self, relay):
        return next((start for start in reversed(self.starts) if start.relay == relay), None)
