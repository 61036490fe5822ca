#include "runtimes/python/interpreter.h"

#include <Python.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include "session_source.h"

namespace kova::python {
namespace {

std::atomic<ShowOutput> output{nullptr};

// The functions of session.py, from the time when it is loaded.
PyObject* sessionFunctions = nullptr;

struct DropReference {
  void operator()(PyObject* object) const { Py_XDECREF(object); }
};
using Object = std::unique_ptr<PyObject, DropReference>;

// Holds the interpreter's lock, on a thread that has it as on one that Python has never seen.
class PythonLock {
 public:
  PythonLock() : state_(PyGILState_Ensure()) {}
  PythonLock(const PythonLock&) = delete;
  PythonLock& operator=(const PythonLock&) = delete;
  ~PythonLock() { PyGILState_Release(state_); }

 private:
  PyGILState_STATE state_;
};

int show(const char* text, int length) {
  if (const ShowOutput function = output) return function(text, length);
  std::fwrite(text, 1, static_cast<std::size_t>(length), stdout);
  return std::fflush(stdout);
}

// post(text) of session.py. What the function answers changes nothing: a block does not fail for its output. Other
// threads run meanwhile, since the function calls the engine, and the engine may run a nested block before it answers.
PyObject* post(PyObject*, PyObject* text) {
  constexpr Py_ssize_t kLongest = 1 << 30;  // The length is an int.
  Py_ssize_t length = 0;
  const char* bytes = PyUnicode_AsUTF8AndSize(text, &length);
  if (bytes == nullptr) return nullptr;
  Py_BEGIN_ALLOW_THREADS;
  for (; length > kLongest; length -= kLongest, bytes += kLongest) show(bytes, kLongest);
  show(bytes, static_cast<int>(length));
  Py_END_ALLOW_THREADS;
  Py_RETURN_NONE;
}

PyMethodDef postMethod = {"post", &post, METH_O, "Hands a text to the engine's output function."};

std::string textOf(const PyStatus& status) {
  return status.err_msg == nullptr ? "it gave no reason" : std::string(status.err_msg);
}

// Empty, or what is wrong with the folder that PYTHONHOME names. Python itself would tell so at length, and after that
// it could not be started any more.
std::string checkHome() {
  const char* const home = std::getenv("PYTHONHOME");
  if (home == nullptr || *home == '\0') return std::string();
  // A second folder, for compiled modules, may stand behind a colon.
  const std::filesystem::path prefix = std::string(home).substr(0, std::string(home).find(':'));
  const std::filesystem::path module = prefix / "lib" / KOVA_PYTHON_FOLDER / "os.py";
  std::error_code ignored;
  if (std::filesystem::exists(module, ignored)) return std::string();
  return "PYTHONHOME is wrong; there is no " + module.string();
}

// Texts are UTF-8 here, whatever the process's locale says, and the locale stays as it is: it is the process's affair,
// as signals are.
std::string initialise() {
  PyPreConfig before;
  PyPreConfig_InitPythonConfig(&before);
  before.parse_argv = 0;
  before.configure_locale = 0;
  before.coerce_c_locale = 0;
  before.utf8_mode = 1;
  PyStatus status = Py_PreInitialize(&before);
  if (PyStatus_Exception(status)) return textOf(status);
  PyConfig config;
  PyConfig_InitPythonConfig(&config);
  config.parse_argv = 0;
  config.install_signal_handlers = 0;
  config.buffered_stdio = 0;  // What is never ended flushes nothing at its end.
  status = PyConfig_SetBytesString(&config, &config.program_name, KOVA_PYTHON_PROGRAM);
  if (!PyStatus_Exception(status)) status = Py_InitializeFromConfig(&config);
  PyConfig_Clear(&config);
  return PyStatus_Exception(status) ? textOf(status) : std::string();
}

// Calls a function of session.py, all of which take one argument and give a number that fits. 1 when it failed, which
// Python's error output then tells of.
int callSession(const char* function, PyObject* argument) {
  const Object owned(argument);
  PyObject* const callee = PyDict_GetItemString(sessionFunctions, function);
  const Object result(argument == nullptr ? nullptr : PyObject_CallOneArg(callee, argument));
  const long code = result ? PyLong_AsLong(result.get()) : -1;
  if (PyErr_Occurred() == nullptr) return static_cast<int>(code);
  PyErr_WriteUnraisable(callee);
  return 1;
}

}  // namespace

bool isPythonThere() { return Py_IsInitialized() != 0; }

bool hasPythonLock() { return PyGILState_Check() != 0; }

std::string startPython() {
  std::string problem = checkHome();
  if (problem.empty()) problem = initialise();
  if (problem.empty()) PyEval_SaveThread();
  return problem;
}

void setOutput(ShowOutput show) { output = show; }

bool Session::load(bool ownsPython) {
  if (loaded_) return true;
  const PythonLock lock;
  const Object globals(PyDict_New());
  const Object postFunction(PyCFunction_New(&postMethod, nullptr));
  const Object name(PyUnicode_FromString("kovapython"));
  PyDict_SetItemString(globals.get(), "__builtins__", PyEval_GetBuiltins());
  PyDict_SetItemString(globals.get(), "__name__", name.get());
  PyDict_SetItemString(globals.get(), "post", postFunction.get());
  PyDict_SetItemString(globals.get(), "owns_python", ownsPython ? Py_True : Py_False);
  const Object code(Py_CompileString(kSessionSource, "<kovapython>", Py_file_input));
  const Object done(code ? PyEval_EvalCode(code.get(), globals.get(), globals.get()) : nullptr);
  if (!done) {
    PyErr_WriteUnraisable(globals.get());
    return false;
  }
  sessionFunctions = Py_NewRef(globals.get());
  loaded_ = true;
  return true;
}

int Session::start(const std::vector<std::string>& arguments) {
  const PythonLock lock;
  PyObject* const list = PyList_New(0);
  for (const std::string& argument : arguments) {
    const Object text(PyBytes_FromStringAndSize(argument.data(), static_cast<Py_ssize_t>(argument.size())));
    PyList_Append(list, text.get());
  }
  return callSession("start", list);
}

int Session::run(const char* syntax) {
  const PythonLock lock;
  return callSession("run", PyBytes_FromString(syntax));
}

int Session::stop() {
  const PythonLock lock;
  return callSession("stop", Py_NewRef(Py_None));
}

}  // namespace kova::python
