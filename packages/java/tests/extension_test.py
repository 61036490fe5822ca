#!/usr/bin/python3
"""The process of a Java extension, started as the engine starts it; the test is the engine's end of the socket.

Usage: extension_test.py --classes FOLDER, and the arguments of kovadx_kit.py.
"""
import contextlib
import shutil
import socket
import struct
import subprocess
import time
import zipfile

from java_kit import CLASSES, PATIENCE, KovadxTest, home, java, java_environment, run_java_tests

FIXED = ("/tmp", "1234", "JAVAEXTENSION")
TELLER = "kovajavaplugin: "
DAMAGED = TELLER + "the engine's record is damaged: "
RECORD_LIMIT = 1 << 24
GOLDEN = bytes.fromhex("22000000 2f746d7000 34643200 4a415641455854454e53494f4e00 4164656c696500")  # As documented.


def texts_of(*texts):
    return b"".join((text if isinstance(text, bytes) else text.encode()) + b"\0" for text in texts)


def with_length(body, length=None):
    return struct.pack("<i", 4 + len(body) if length is None else length) + body


def record(*arguments):
    return with_length(texts_of(*FIXED, *arguments))


def send_whole(peer, data):
    peer.sendall(data)


def send_in_bytes(peer, data):
    peer.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    for byte in data:
        peer.sendall(bytes([byte]))
        time.sleep(0.001)  # So that the bytes travel one by one.


def send_and_close(peer, data):
    peer.sendall(data)
    peer.shutdown(socket.SHUT_WR)


def reset(peer, data):
    peer.sendall(data)
    peer.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    peer.close()


class ExtensionTest(KovadxTest):
    def variables(self, *more, kova_home=None):
        path = [home() / "kovajavaplugin.jar", *more, CLASSES.folder / "commands"]
        found = {"CLASSPATH": ":".join(map(str, path)), "KOVADXTEMP": str(self.scratch)}
        return {**found, "KOVA_HOME": str(kova_home or home())}

    def start_extension(self, *arguments, variables=None):
        command = [java(), "com.qor.statistics.plugin.Extension", *map(str, arguments)]
        environment = java_environment(self.environment(variables=self.variables() if variables is None else variables))
        process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def end(self, process):
        output, errors = process.communicate(timeout=PATIENCE)
        return process.returncode, output.splitlines(), errors.splitlines()

    @contextlib.contextmanager
    def connected(self, command, **more):
        """A started process and the engine's end of its connection."""
        with socket.create_server(("127.0.0.1", 0)) as listener:
            listener.settimeout(PATIENCE)
            process = self.start_extension("LOCAL", listener.getsockname()[1], command, **more)
            peer, _ = listener.accept()
            with peer:
                yield process, peer

    def run_command(self, command, data, send=send_whole, **more):
        """Runs the process to its end: exit code, output lines, error lines. The connection stays open."""
        with self.connected(command, **more) as (process, peer):
            send(peer, data)
            return self.end(process)

    def fails(self, text):
        return 2, [], [TELLER + text]


class Commands(ExtensionTest):
    def test_the_arguments_arrive_and_a_return_is_0(self):
        arguments = ("one", "", "größe 😀")
        shown = [str(list(n - 256 if n > 127 else n for n in text.encode())) for text in arguments]
        self.assertEqual(self.run_command("Returns", record(*arguments)), (0, ["3 arguments", *shown], []))

    def test_the_record_of_the_documentation(self):
        shown = str(list(b"Adelie"))
        self.assertEqual(self.run_command("Returns", GOLDEN), (0, ["1 arguments", shown], []))

    def test_a_record_may_come_byte_by_byte(self):
        self.assertEqual(self.run_command("Returns", record("a"), send_in_bytes), (0, ["1 arguments", "[97]"], []))

    def test_there_may_be_no_arguments_and_empty_texts(self):
        data = with_length(texts_of("", "", ""))
        self.assertEqual(self.run_command("Returns", data), (0, ["0 arguments"], []))

    def test_what_follows_the_record_is_not_looked_at(self):
        self.assertEqual(self.run_command("Returns", record() + b"\xff\xff"), (0, ["0 arguments"], []))

    def test_exit_gives_its_number(self):
        self.assertEqual(self.run_command("Exits", record()), (7, [], []))

    def test_an_exception_is_1_with_its_stack_trace(self):
        code, output, errors = self.run_command("Throws", record())
        self.assertEqual((code, output), (1, []))
        self.assertEqual(errors[0], 'Exception in thread "main" java.io.IOException: the data are odd')
        self.assertTrue(errors[1].startswith("\tat Throws.main(Throws.java:"), errors)

    def test_a_class_that_fails_to_begin_is_1_too(self):
        code, output, errors = self.run_command("StaticFailure", record())
        self.assertEqual((code, output), (1, []))
        self.assertEqual(errors[0], 'Exception in thread "main" java.lang.ExceptionInInitializerError')

    def test_output_comes_out_and_threads_are_waited_for(self):
        lines = ["without a line end, with one", "later"]
        self.assertEqual(self.run_command("Prints", record()), (0, lines, ["to the error stream"]))


class Finding(ExtensionTest):
    """Where the command is looked for."""

    def jar(self, name, manifest=None, classes=()):
        path = self.scratch / f"{name}.jar"
        with zipfile.ZipFile(path, "w") as file:
            if manifest is not None:
                file.writestr("META-INF/MANIFEST.MF", f"Manifest-Version: 1.0\n{manifest}\n")
            for class_name in classes:
                file.write(CLASSES.folder / "commands" / f"{class_name}.class", f"{class_name}.class")
        return path

    def run_jar(self, path):
        return self.run_command(path.stem, record(), variables=self.variables(path))

    def test_the_main_class_of_the_jar(self):
        self.assertEqual(self.run_jar(self.jar("Tool", "Main-Class: Exits\n", ["Exits"])), (7, [], []))

    def test_the_class_of_that_name_without_a_main_class(self):
        self.assertEqual(self.run_jar(self.jar("Exits", "", ["Exits"])), (7, [], []))
        self.assertEqual(self.run_jar(self.jar("Exits", None, ["Exits"])), (7, [], []))

    def test_no_such_command(self):
        expected = self.fails("the command Absent was not found: the class path has neither Absent.jar nor a class Absent")
        self.assertEqual(self.run_command("Absent", record()), expected)

    def test_a_jar_without_the_class(self):
        path = self.jar("Tool", "")
        self.assertEqual(self.run_jar(path), self.fails(
            f"the command Tool was not found: {path} names no Main-Class, and there is no class Tool"))

    def test_a_main_class_that_is_not_there(self):
        path = self.jar("Tool", "Main-Class: some.Where\n")
        self.assertEqual(self.run_jar(path), self.fails(
            f"the class some.Where was not found, which {path} names as its Main-Class"))

    def test_a_jar_that_is_none(self):
        path = self.scratch / "Tool.jar"
        path.write_text("no jar")
        code, output, errors = self.run_jar(path)
        self.assertEqual((code, output, len(errors)), (2, [], 1))
        self.assertTrue(errors[0].startswith(f"{TELLER}can not read {path}: "), errors)

    def test_a_class_without_a_main_method(self):
        self.assertEqual(self.run_command("NoMain", record()),
                         self.fails("the class NoMain has no public static void main(String[])"))

    def test_a_class_that_is_damaged(self):
        folder = self.scratch / "classes"
        folder.mkdir()
        (folder / "Broken.class").write_text("no class")
        code, output, errors = self.run_command("Broken", record(), variables=self.variables(folder))
        self.assertEqual((code, output, len(errors)), (2, [], 1))
        self.assertTrue(errors[0].startswith(f"{TELLER}the command Broken can not be loaded: "
                                             "java.lang.ClassFormatError: "), errors)


class Damage(ExtensionTest):
    """Records that can not be right."""

    def check(self, data, reason, send=send_whole):
        with self.subTest(reason):
            self.assertEqual(self.run_command("Returns", data, send), (2, [], [DAMAGED + reason]))

    def test_the_length(self):
        body = texts_of(*FIXED)
        self.check(with_length(body, -5), "its length can not be -5")
        self.check(with_length(body, 3), "its length can not be 3")
        self.check(with_length(body, RECORD_LIMIT + 1), "its length can not be 16777217")

    def test_a_record_that_is_cut_short(self):
        self.check(b"", "the connection ended before it came", send_and_close)
        self.check(b"\x20\0", "2 bytes came of the 4 of its length", send_and_close)
        self.check(record()[:-2], f"{len(record()) - 2} bytes came of {len(record())}", send_and_close)
        self.check(with_length(texts_of(*FIXED), RECORD_LIMIT), f"{len(record())} bytes came of 16777216", send_and_close)

    def test_the_texts(self):
        self.check(with_length(b""), "it has 0 texts, and at least 3 are needed")
        self.check(with_length(texts_of("/tmp", "1234")), "it has 2 texts, and at least 3 are needed")
        self.check(with_length(texts_of(*FIXED) + b"argument"), "its last text has no end")
        self.check(with_length(texts_of(*FIXED), len(record()) - 1), "its last text has no end")
        self.check(with_length(texts_of("/tmp", b"\xff", "JAVAEXTENSION")), "its text 2 is not UTF-8")
        self.check(record(b"half \xc3"), "its text 4 is not UTF-8")


class Engine(ExtensionTest):
    """An engine that is not there, not any more, or not as it should be."""

    def test_nobody_listens(self):
        with socket.socket() as bound:
            bound.bind(("127.0.0.1", 0))
            port = bound.getsockname()[1]
            process = self.start_extension("LOCAL", port, "Returns")
            self.assertEqual(self.end(process), self.fails(f"no engine listens on port {port} of 127.0.0.1"))

    def test_the_connection_is_reset(self):
        self.assertEqual(self.run_command("Returns", record()[:6], reset),
                         self.fails("the connection to the engine failed: Connection reset"))

    def test_arguments_that_are_none(self):
        for port in ("0", "65536", "-1", "http", "999999999999"):
            with self.subTest(port):
                self.assertEqual(self.end(self.start_extension("LOCAL", port, "Returns")),
                                 self.fails(f'expected a port from 1 to 65535, found "{port}"'))
        self.assertEqual(self.end(self.start_extension("LOCAL", 1)),
                         self.fails("expected a mode, a port and a command as arguments, found 2"))

    def test_no_home_folder(self):
        variables = self.variables()
        del variables["KOVA_HOME"]
        self.assertEqual(self.run_command("Returns", record(), variables=variables), self.fails(
            "Engine.initProcess: 17 EngineNotStarted. The environment variable KOVA_HOME names no home folder."))

    def test_a_home_folder_without_the_library(self):
        variables = self.variables(kova_home=self.scratch)
        library = self.scratch / "libkovajni.so"
        self.assertEqual(self.run_command("Returns", record(), variables=variables),
                         self.fails(f"System.load: 99114 RuntimeNotLoaded. Can't load library: {library}"))

    def test_a_home_folder_without_the_client_library(self):
        shutil.copy(home() / "libkovajni.so", self.scratch)
        variables = self.variables(kova_home=self.scratch)
        code, output, errors = self.run_command("Returns", record(), variables=variables)
        self.assertEqual((code, output, len(errors)), (2, [], 1))
        self.assertIn("RuntimeNotLoaded", errors[0])
        self.assertIn("libkovadx.so.1: cannot open shared object file", errors[0])

    def check_end_with_engine(self, *arguments):
        with self.connected("Waits") as (process, peer):
            peer.sendall(record(*arguments))
            self.assertEqual(process.stdout.readline(), "waiting\n")
            peer.close()
            begin = time.monotonic()
            self.assertEqual(self.end(process),
                             self.fails("the engine closed the connection; the command is ended"))
            self.assertLess(time.monotonic() - begin, 2)

    def test_the_command_ends_with_its_engine(self):
        self.check_end_with_engine()

    def test_the_command_ends_with_its_engine_in_a_call_too(self):
        self.check_end_with_engine("call")
        # The engine takes away what a process leaves behind that it has cut off in a call.
        (self.pipes / "1234JAVAEXTENSION0xdapiresult").unlink()


if __name__ == "__main__":
    run_java_tests([Commands, Finding, Damage, Engine])
