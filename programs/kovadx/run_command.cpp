#include "run_command.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "api/InitDxGlobal.h"
#include "config/process_values.h"
#include "engine/data_package.h"
#include "engine/data_package_writer.h"
#include "engine/engine.h"
#include "engine/text_file.h"
#include "engine/xdapi_server.h"
#include "platform/os/environment.h"
#include "platform/os/file.h"
#include "platform/os/named_pipe.h"
#include "platform/os/process.h"
#include "report_file.h"
#include "script_job.h"
#include "script_run.h"
#include "transport/KovaPipe.h"
#include "transport/XPipes.h"

namespace kova::program {
namespace {

// The engine's own instance name: its trace file must not be the program's.
constexpr const char* kEngineInstance = "KOVAENGINE";

constexpr int kLocalMode = 1;  // This engine's runtimes are on its own machine.

constexpr const char* kUsualTemporary = "/tmp";

constexpr std::uint32_t kLookMs = 50;     // How often a wait for the program looks for an end request.
constexpr std::uint32_t kOwnEndMs = 500;  // Ctrl-C at a terminal reaches the program too.
constexpr std::uint32_t kAskedEndMs = 2000;
constexpr std::uint32_t kLastCallMs = 5000;  // How long the engine may go on with a call after its program has gone.

std::atomic<bool> endRequested{false};
std::atomic<bool> outputLost{false};

std::string withoutEndSeparator(std::string folder) {
  while (folder.size() > 1 && (folder.back() == '/' || folder.back() == '\\')) folder.pop_back();
  return folder;
}

// The home folder by its full path, since the program may change its own folder; empty when there is no such folder.
std::string fullHome(const std::string& home) {
  std::error_code absent;
  const std::filesystem::path path = std::filesystem::absolute(os::NativePath(home), absent);
  return !absent && std::filesystem::is_directory(path, absent) ? withoutEndSeparator(path.string()) : std::string();
}

std::string temporaryFolder() {
  const std::string chosen = os::GetEnvironment("KOVADXTEMP").value_or("");
  if (!chosen.empty()) return chosen;
  std::error_code absent;
  std::filesystem::path folder = std::filesystem::temp_directory_path(absent);
  // The variable that names it may name one that is not there.
  if (absent) folder = std::filesystem::is_directory(kUsualTemporary, absent) ? kUsualTemporary : ".";
  return withoutEndSeparator(std::filesystem::absolute(folder, absent).string());
}

// Where a platform's programs look for libraries besides their own folder.
const char* libraryPathName() { return os::kListSeparator == ';' ? "PATH" : "LD_LIBRARY_PATH"; }

std::string libraryPath(const std::string& home) {
  const auto present = os::GetEnvironment(libraryPathName());
  return present && !present->empty() ? home + os::kListSeparator + *present : home;
}

// What a program or a script finds in its environment.
std::vector<std::pair<std::string, std::string>> environmentOf(const std::string& name, const std::string& home) {
  return {{"KOVA_HOME", home},
          {"KOVA_XNAME", name},
          {"KOVADXTEMP", temporaryFolder()},
          {"KOVA_PIPE_DIR", os::PipeFolder()},  // What the program makes of its environment may differ.
          {libraryPathName(), libraryPath(home)}};
}

os::ProcessStart programStart(const RunOptions& options, const std::string& home) {
  os::ProcessStart start;
  start.program = options.program.front();
  start.arguments.assign(options.program.begin() + 1, options.program.end());
  start.environment = environmentOf(options.name, home);
  start.endsWithParent = true;
  return start;
}

// What the first line of a script names; empty for any other program.
std::string interpreterOf(const std::string& program) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(os::OpenFile(program, "r", nullptr), &std::fclose);
  char area[256] = "";
  if (file == nullptr || std::fgets(area, sizeof area, file.get()) == nullptr) return {};
  const std::string line = area;
  if (!line.starts_with("#!")) return {};
  const std::size_t begin = std::min(line.find_first_not_of(" \t", 2), line.size());
  return line.substr(begin, line.find_first_of(" \t\r\n", begin) - begin);
}

int reportNotStarted(const std::string& program, os::Error error) {
  if (error == os::kFileNotFound && program.find_first_of("/\\") != std::string::npos && os::FileExists(program)) {
    const std::string interpreter = interpreterOf(program);
    printError("program can not be run: " + program + "; it is there, but not its interpreter" +
               (interpreter.empty() ? "" : " " + interpreter));
    return kNotRunnable;
  }
  if (error == os::kFileNotFound) {
    printError("program not found: " + program + "; check its path, or PATH");
    return kNotFound;
  }
  printError("program can not be run: " + program + " (" + os::ErrorText(error) + "); check that it is executable");
  return kNotRunnable;
}

std::string pidText(std::uint32_t id) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%04x", static_cast<unsigned>(id));
  return digits;
}

// The user asked kovadx to end: the program is given time to end by itself, then it is asked, then it is ended.
int endProgram(os::Process* program) {
  int exitCode = kOwnFailure;
  if (program->Wait(kOwnEndMs, &exitCode) == os::kSuccess) return exitCode;
  if (program->Interrupt() == os::kSuccess && program->Wait(kAskedEndMs, &exitCode) == os::kSuccess) return exitCode;
  program->Terminate();
  program->Wait(os::kWaitForever, &exitCode);
  return exitCode;
}

int waitForProgram(os::Process* program) {
  int exitCode = kOwnFailure;
  while (!endRequested) {
    const os::Error error = program->Wait(kLookMs, &exitCode);
    if (error == os::kSuccess) return exitCode;
    if (error != os::kWaitTimeout) break;
  }
  return endProgram(program);
}

// A program that was killed, or that ends without a word, leaves the name of its reply pipe behind. Taking the name
// over and giving it up removes it; a name that somebody still uses is left alone.
void removeReplyPipe(const std::string& baseName) {
  KovaPipe pipe(baseName + XPipes::XDAPI_RESULT_PIPE);
  pipe.CreatePipe();
}

// Why no pipe of that name can be made: what one more try meets.
std::string whyNoPipe(const std::string& name) {
  os::NativeHandle pipe = nullptr;
  const os::Error error = os::CreateMessagePipe(name.c_str(), kPipeChunk, &pipe);
  if (error == os::kSuccess) os::ClosePipeHandle(pipe);
  std::string why = " (" + os::ErrorText(error) + ", error " + std::to_string(error) + ")";
  if (error == os::kAccessDenied) why += "; check that the folder belongs to you alone";
  if (error == os::kFileNotFound) why += "; check that the folder above it is there";
  return why;
}

int reportNotServed(const std::string& pipe, int code) {
  const std::string folder = os::PipeFolder();
  const bool noPipe = code != static_cast<int>(os::kNotEnoughMemory);
  printError("can not serve the program: its pipe " + pipe + " can not be made" +
             (folder.empty() ? "" : " in the folder " + folder) + (noPipe ? whyNoPipe(pipe) : " for want of memory"));
  return kOwnFailure;
}

// The engine is still carrying out a call of a program that is gone. Nobody can take that from it, nor ask it for its
// output meanwhile.
[[noreturn]] void leave(const RunOptions& options, int exitCode) {
  printError(std::string("the engine was still busy with the program's last call; its output is lost") +
             (options.save.empty() ? "" : ", and no data are saved"));
  std::fflush(stdout);
  std::_Exit(exitCode == 0 ? kOwnFailure : exitCode);
}

int serve(engine::Engine* engine, const RunOptions& options, os::Process* program) {
  const std::string baseName = engine::XdapiServer::baseName(program->Id(), options.name, 0);
  engine::XdapiServer server(
      baseName, [engine](const CleXDSmb& request, CleXDSmb& reply) { engine->perform(request, reply); },
      [engine] { engine->leave(); });
  const int started = server.start();
  if (started != 0) {
    program->Terminate();
    int ignored = 0;
    program->Wait(os::kWaitForever, &ignored);
    return reportNotServed(baseName + XPipes::XDAPI_PIPE, started);
  }
  const int exitCode = waitForProgram(program);
  if (!server.stop(kLastCallMs)) leave(options, exitCode);
  removeReplyPipe(baseName);
  return exitCode;
}

bool openData(const RunOptions& options, engine::Engine* engine) {
  if (options.data.empty()) return true;
  engine::DataSet dataSet;
  std::string problem;
  if (!engine::readDataPackage(options.data, &dataSet, &problem)) {
    printError("can not read the data: " + problem);
    return false;
  }
  engine->open(std::move(dataSet));
  return true;
}

// A piece of output goes out whole. The program waits for its call meanwhile, so that no line of its own comes between.
void print(const std::string& text) {
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (std::fflush(stdout) != 0 || !isWritten) outputLost = true;
}

// The program's exit code; kovadx's own when the program did well and its output could not be shown.
int tellLostOutput(int exitCode) {
  if (!outputLost) return exitCode;
  printError("the output could not be written to the standard output; it is lost");
  return exitCode == 0 ? kOwnFailure : exitCode;
}

bool canSave(const RunOptions& options) {
  if (options.save.empty()) return true;
  engine::FileSystem files;
  std::string problem;
  if (engine::checkPackagePlace(options.save, files, &problem) == ErrorCode::kNone) return true;
  printError("can not save the data: " + problem);
  return false;
}

// The program's exit code; kovadx's own when the program did well and its data could not be saved.
int saveData(const RunOptions& options, const engine::Engine& engine, int exitCode) {
  std::string problem;
  if (options.save.empty() || exitCode != 0) return exitCode;
  if (engine.saveActive(options.save, &problem) == ErrorCode::kNone) return exitCode;
  printError("the data could not be saved: " + problem);
  return kOwnFailure;
}

bool canWriteReport(const RunOptions& options) {
  std::string problem;
  if (options.output.empty() || ReportFile(options.output).check(&problem)) return true;
  printError("can not write the report to " + options.output + " (" + problem + "); give --output another path");
  return false;
}

// The program's exit code; kovadx's own when the program did well and its report could not be written.
int writeReport(const RunOptions& options, const engine::Engine& engine, int exitCode) {
  std::string problem;
  if (options.output.empty() || ReportFile(options.output).write(engine.htmlOutput(), &problem)) return exitCode;
  printError("the report could not be written to " + options.output + " (" + problem + ")");
  return exitCode == 0 ? kOwnFailure : exitCode;
}

// The program's exit code, or nothing when it was not started; *exitCode is then kovadx's.
std::optional<int> runProgram(const RunOptions& options, const std::string& home, engine::Engine* engine,
                              int* exitCode) {
  os::Process program;
  const os::Error error = os::Process::Start(programStart(options, home), &program);
  if (error == os::kSuccess) return serve(engine, options, &program);
  *exitCode = reportNotStarted(options.program.front(), error);
  return std::nullopt;
}

// The same for a script in a runtime of this process or of a child of it, which finds in the environment what a program
// would, and where it lies.
std::optional<int> runScriptHere(const RunOptions& options, const std::string& home,
                                 const std::vector<std::string>& lines, engine::Engine* engine) {
  for (const auto& [name, value] : environmentOf(options.language, home)) os::SetEnvironment(name, value);
  os::SetEnvironment("KOVA_SCRIPT", std::filesystem::absolute(os::NativePath(options.script)).string());
  return runScript(options, home, lines, engine, endRequested);
}

// The process-wide objects of the library, for as long as the engine serves.
class LibraryState {
 public:
  explicit LibraryState(const std::string& home) {
    InitDxGlobal(temporaryFolder(), pidText(os::CurrentProcessId()), kEngineInstance, home);
    SetAppMode(kLocalMode);
  }
  LibraryState(const LibraryState&) = delete;
  LibraryState& operator=(const LibraryState&) = delete;
  ~LibraryState() { FinalizeDXGlobal(); }
};

}  // namespace

int runCommand(const RunOptions& options) {
  const std::string named = options.home.empty() ? engine::folderOf(os::ProgramPath()) : options.home;
  const std::string home = fullHome(named);
  if (home.empty()) {
    printError("no such home folder: " + named + "; give the folder that holds the library with --home");
    return kOwnFailure;
  }
  std::optional<std::vector<std::string>> script;
  if (!options.language.empty() && !(script = prepareScript(options, home))) return kOwnFailure;
  if (!canSave(options) || !canWriteReport(options)) return kOwnFailure;
  engine::Engine engine;
  if (!openData(options, &engine)) return kOwnFailure;
  engine.onOutput(print);
  const LibraryState library(home);
  // A folder that is not as it should be is told of when the program is served.
  os::SweepStalePipes("");
  os::SetEndRequestHandler([] { endRequested = true; });
  int failure = kOwnFailure;
  const std::optional<int> exitCode = options.language.empty() ? runProgram(options, home, &engine, &failure)
                                                               : runScriptHere(options, home, *script, &engine);
  if (!exitCode) return failure;
  engine.endOutput();
  return writeReport(options, engine, tellLostOutput(saveData(options, engine, *exitCode)));
}

}  // namespace kova::program
