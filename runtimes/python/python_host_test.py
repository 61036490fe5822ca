#!/usr/bin/env python3
"""The Python runtime in a process that has Python already: this one.

Usage: python_host_test.py LIBRARY
"""
import ctypes
import sys
import threading
import unittest

LIBRARY = sys.argv.pop()
OUTPUT = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_int)


class HostWithPython(unittest.TestCase):
    def setUp(self):
        self.shown = b""
        self.keep = OUTPUT(self.take)
        self.runtime = ctypes.CDLL(LIBRARY)
        self.runtime.set_post_kova_output(self.keep)
        self.assertEqual(self.runtime.init_embedded_x(0, None), 0)
        self.assertEqual(self.runtime.pre_action(), 0)
        self.addCleanup(self.runtime.set_post_kova_output, None)
        self.addCleanup(self.runtime.stop_embedded_x)

    def test_nobody_need_start_it(self):
        self.assertEqual(self.runtime.stop_embedded_x(), 0)
        self.assertEqual(self.runtime.execute_x(b"print('x')"), 99115)
        self.assertEqual(self.runtime.pre_action(), 0)
        self.assertEqual(self.run_block("print('joined')"), (0, "joined\n"))

    def take(self, text, length):
        self.shown += ctypes.string_at(text, length)
        return 0

    def run_block(self, block):
        result = self.runtime.execute_x(block.encode())
        shown, self.shown = self.shown.decode(), b""
        return result, shown

    def test_a_block_runs_on_the_calling_thread(self):
        self.assertEqual(self.run_block("import threading\nprint(threading.get_ident())\n"),
                         (0, f"{threading.get_ident()}\n"))
        results = []
        thread = threading.Thread(target=lambda: results.append((*self.run_block("print(threading.get_ident())\n"),
                                                                 threading.get_ident())))
        thread.start()
        thread.join()
        (result, shown, ident), = results
        self.assertEqual((result, shown), (0, f"{ident}\n"))

    def test_a_block_from_a_caller_that_keeps_the_lock(self):
        self.assertEqual(ctypes.PyDLL(LIBRARY).execute_x(b"print('held')\n"), 0)
        self.assertEqual(self.shown, b"held\n")

    def test_the_namespace_is_the_runtimes_own(self):
        self.assertEqual(self.run_block("LIBRARY = 1\nprint(__name__)\n"), (0, "__main__\n"))
        self.assertEqual(self.run_block("print(LIBRARY, 'unittest' in globals())\n"), (0, "1 False\n"))
        self.assertEqual(self.runtime.stop_embedded_x(), 0)
        self.assertIs(sys.modules["__main__"].unittest, unittest)
        self.assertEqual(self.runtime.init_embedded_x(0, None), 0)
        self.assertEqual(self.run_block("print('LIBRARY' in globals())\n"), (0, "False\n"))

    def test_the_process_keeps_what_is_its_own(self):
        before = sys.stdout, sys.stderr, sys.argv, threading.excepthook
        result, shown = self.run_block("import sys\nprint(sys.argv)\nsys.exit(7)\n")
        self.assertEqual((result, shown), (7, f"{sys.argv}\n"))
        self.assertEqual((sys.stdout, sys.stderr, sys.argv, threading.excepthook), before)

    def test_a_stop_does_not_wait_for_the_processs_threads(self):
        end = threading.Event()
        thread = threading.Thread(target=end.wait)
        thread.start()
        self.assertEqual(self.runtime.stop_embedded_x(), 0)
        end.set()
        thread.join()

    def test_errors_show_the_blocks_lines_alone(self):
        result, shown = self.run_block("raise ValueError('x')\n")
        self.assertEqual(result, 1)
        self.assertRegex(shown, r'\ATraceback \(most recent call last\):\n  File "<syntax \d+>", line 1, in <module>\n'
                                r"    raise ValueError\('x'\)\nValueError: x\n\Z")


if __name__ == "__main__":
    unittest.main()
