"""The part of the Python runtime that is written in Python: runs blocks of syntax, collects what they write, and tells
how they ended. The library has this file inside; it is no module that a block could import.

The library provides `post(text)`, which hands a text to the engine's output function, and `owns_python`, which is true
when Python was started for the runtime alone.
"""
import codecs
import gc
import io
import linecache
import os
import signal
import sys
import threading
import traceback
import types
import weakref

INTERRUPTED = 130  # What python3 exits with after a KeyboardInterrupt.


class Output(io.BufferedIOBase):
    """Where sys.stdout and sys.stderr lead while blocks run. Bytes of both stay in the order in which they came and go
    on as whole lines; what has no line end yet goes when its block ends.

    Only the thread that runs a block posts, because posting is a call of the engine and such calls take turns. What
    other threads write waits until that thread writes something, or its block ends.
    """

    def __init__(self):
        self.lock = threading.RLock()  # Never held while a text is posted.
        self.waiting = bytearray()
        self.threads = []  # Those that run a block, the innermost block's last.
        self.own_streams = None

    def writable(self):
        return True

    def close(self):
        """A block that closes its sys.stdout does not close that of the next one."""

    def write(self, data):
        data = bytes(memoryview(data))
        with self.lock:
            posts = b"\n" in data and self.threads[-1:] == [threading.get_ident()]
            if self.threads:
                self.waiting += data
            elif sys.__stdout__ is not None:
                # No block runs: the process's own output takes it.
                sys.__stdout__.buffer.write(data)
                sys.__stdout__.buffer.flush()
        if posts:
            self.post_lines()
        return len(data)

    def post_lines(self, also_the_rest=False):
        with self.lock:
            taken, self.waiting = self.waiting, bytearray()
            end = len(taken) if also_the_rest else taken.rfind(b"\n") + 1
            self.waiting[:0] = taken[end:]
        if end:
            post(taken[:end].decode("utf-8", "replace"))

    def begin_block(self):
        if not self.threads:
            self.own_streams = sys.stdout, sys.stderr
            sys.stdout, sys.stderr = self.text_stream(), self.text_stream()
        self.threads.append(threading.get_ident())

    def end_block(self):
        self.post_lines(also_the_rest=True)
        with self.lock:
            if self.threads:
                self.threads.pop()
            if self.threads:
                return
            late, self.waiting = self.waiting, bytearray()
        sys.stdout, sys.stderr = self.own_streams
        if late:
            self.write(late)  # Another thread's, while the last text was posted.

    def leave_engine(self):
        """A copy of the process that a block has made writes to the process's own output: the engine is not its own."""
        self.lock = threading.RLock()
        self.waiting = bytearray()
        self.threads = []

    def text_stream(self):
        return io.TextIOWrapper(self, encoding="utf-8", errors="backslashreplace", newline="", write_through=True)


class Session:
    def __init__(self):
        self.output = Output()
        self.module = None  # What the blocks define; each session has a new one.
        self.count = 0
        os.register_at_fork(after_in_child=self.output.leave_engine)
        if owns_python:
            threading.excepthook = show_end_of_thread
            if signal.getsignal(signal.SIGINT) is signal.default_int_handler:
                signal.signal(signal.SIGINT, signal.SIG_DFL)  # The module took it; signals are the engine's affair.

    def start(self, arguments):
        self.renew_module()
        script = os.environ.get("KOVA_SCRIPT", "")
        if script:
            self.module.__file__ = script
        if owns_python:
            sys.argv = [script, *map(os.fsdecode, arguments)]
            folder = os.path.dirname(script)
            if folder and folder not in sys.path:
                sys.path.insert(0, folder)
        return 0

    def stop(self, _):
        """Waits for the threads that blocks have started, as python3 does at its end, and forgets what they made."""
        if owns_python:
            end_pools()
            join_threads()
        self.renew_module()
        gc.collect()
        return 0

    def renew_module(self):
        self.module = types.ModuleType("__main__")
        self.count = 0
        if owns_python:
            sys.modules["__main__"] = self.module

    def run(self, text):
        """Runs a block. Its result is the number that python3 would have exited with after such a script."""
        process = os.getpid()
        self.output.begin_block()
        try:
            result = self.run_text(text)
        finally:
            self.output.end_block()
        if os.getpid() != process:
            os._exit(result & 0xFF)  # A forked copy of the process ends with its block: it is no second engine.
        return result

    def run_text(self, text):
        self.count += 1
        name = f"<syntax {self.count}>"
        try:
            code = compile(text, name, "exec", dont_inherit=True)
            remember_lines(name, text, code)
            exec(code, self.module.__dict__)
        except SystemExit as end:
            return self.exit_code(end.code)
        except BaseException as error:
            # The first frame is that of this function.
            self.tell("".join(traceback.format_exception(type(error), error, error.__traceback__.tb_next)))
            return INTERRUPTED if isinstance(error, KeyboardInterrupt) else 1
        return 0

    def exit_code(self, code):
        if code is None:
            return 0
        if isinstance(code, int):
            return int(code) if -(2**31) <= code < 2**31 else -1
        self.tell(f"{str(code)}\n")
        return 1

    def tell(self, text):
        """Goes past sys.stderr, which the block may have replaced."""
        self.output.write(text.encode("utf-8", "backslashreplace"))


def show_end_of_thread(end):
    """What threading.excepthook does, but with the lines of the blocks, which Python's own looks for in files alone."""
    if end.exc_type is SystemExit or sys.stderr is None:
        return
    name = threading.get_ident() if end.thread is None else end.thread.name
    lines = traceback.format_exception(end.exc_type, end.exc_value, end.exc_traceback)
    sys.stderr.write(f"Exception in thread {name}:\n{''.join(lines)}")


def remember_lines(name, text, code):
    """Lets tracebacks show the lines of a block for as long as anything of its code is left, a function for example."""
    lines = text.decode("utf-8", "replace").splitlines(keepends=True)
    entry = linecache.cache[name] = (len(text), None, lines, name)
    left = set()

    def forget(part):
        left.discard(part)
        if not left and linecache.cache.get(name) is entry:
            del linecache.cache[name]

    for part in code_parts(code):
        left.add(id(part))
    for part in code_parts(code):
        weakref.finalize(part, forget, id(part))


def code_parts(code):
    """A block's code and that of all functions and classes in it."""
    yield code
    for constant in code.co_consts:
        if isinstance(constant, types.CodeType):
            yield from code_parts(constant)


def end_pools():
    """Lets the threads and processes of concurrent.futures go, which otherwise wait for work until Python ends."""
    # Later blocks may have pools again, so that no pool's end stays marked as Python's.
    for name, mark in (("thread", "_shutdown"), ("process", "_global_shutdown")):
        pools = sys.modules.get(f"concurrent.futures.{name}")
        if pools is not None:
            pools._python_exit()
            setattr(pools, mark, False)


def join_threads():
    """Threads may start others, so it goes on until there is none. Daemon threads are not waited for."""
    while True:
        threads = [
            thread
            for thread in threading.enumerate()
            if not thread.daemon and thread not in (threading.main_thread(), threading.current_thread())
        ]
        if not threads:
            return
        for thread in threads:
            thread.join()


session = Session()
start, run, stop = session.start, session.run, session.stop
