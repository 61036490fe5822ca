// Stands for a program that lives outside the emulator in which tests of builds for Windows run: for the console of R,
// or for Java. It bears that program's name and lies where the library looks for it. It tells a server on this machine
// (relay_server.py) how it was started; the server starts the program itself, gets its input from here, and sends what
// it prints and how it ends. This process ends in the same way.
//
// The server listens on the port KOVA_RELAY_PORT. There are two connections, because a socket serves one thread: over
// the first come frames, a letter and a number of 4 bytes each: 'o' or 'e' and so many bytes for the standard output or
// error stream, or 'x' and the exit code. Over the second goes the standard input.
//
// The standard streams are in text mode, as those of programs for Windows are.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "platform/os/environment.h"
#include "platform/os/file.h"
#include "platform/os/process.h"
#include "platform/os/socket.h"

namespace {

namespace os = kova::os;

// What the program itself could not end with in a test.
constexpr int kNoServer = 97;
constexpr int kServerGone = 98;

// The entries of the environment that are made for the program.
constexpr const char* kTold[] = {"KOVA_HOME",   "KOVADXTEMP", "R_HOME",    "KOVA_R_LIBS",
                                 "R_LIBS_USER", "PATH",       "CLASSPATH", "KOVA_RELAY_ORDER"};

[[noreturn]] void leave(int code, const char* why) {
  if (why != nullptr) std::fprintf(stderr, "relay: %s\n", why);
  std::fflush(stdout);
  std::fflush(stderr);
  // The thread that reads the standard input may be in the middle of that.
  std::_Exit(code);
}

bool send(os::Socket& socket, const std::string& bytes) {
  std::uint32_t sent = 0;
  return bytes.empty() || !socket.Send(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &sent).failed();
}

std::string receive(os::Socket& socket, std::uint32_t length) {
  std::string bytes(length, '\0');
  for (std::uint32_t received = 0; received < length;) {
    std::uint32_t count = 0;
    const bool failed = socket.Receive(&bytes[received], length - received, &count).failed();
    if (failed || count == 0) leave(kServerGone, "the server has gone");
    received += count;
  }
  return bytes;
}

std::uint32_t numberIn(const std::string& bytes) {
  std::uint32_t number = 0;
  for (std::size_t i = bytes.size(); i > 0; --i) number = number << 8 | static_cast<unsigned char>(bytes[i - 1]);
  return number;
}

// Connects, and sends the texts: their length in 4 bytes, then each with a NUL behind it.
os::Socket connect(const std::vector<std::string>& texts) {
  const std::string port = os::GetEnvironment("KOVA_RELAY_PORT").value_or("0");
  os::Socket socket;
  os::SocketResult result = os::Socket::Open(&socket);
  if (!result.failed()) {
    result = socket.Connect(os::kLoopbackAddress, static_cast<std::uint16_t>(std::strtoul(port.c_str(), nullptr, 10)));
  }
  std::string record(sizeof(std::uint32_t), '\0');
  for (const std::string& text : texts) record.append(text).push_back('\0');
  const std::size_t length = record.size() - sizeof(std::uint32_t);
  for (std::size_t i = 0; i < sizeof(std::uint32_t); ++i) record[i] = static_cast<char>(length >> (8 * i));
  if (result.failed() || !send(socket, record)) leave(kNoServer, "no server listens on the port KOVA_RELAY_PORT");
  return socket;
}

std::vector<std::string> startOf(const std::string& id, int argc, char** argv) {
  const std::string path = os::ProgramPath();
  const std::string name = path.substr(path.find_last_of("/\\") + 1);
  std::vector<std::string> texts = {"start", id, name, std::to_string(argc - 1)};
  texts.insert(texts.end(), argv + 1, argv + argc);
  for (const char* entry : kTold) {
    const auto value = os::GetEnvironment(entry);
    if (value) texts.push_back(std::string(entry) + "=" + *value);
  }
  return texts;
}

// The end of the input is that of the connection.
void forwardInput(os::Socket socket) {
  std::string line;
  while (std::getline(std::cin, line)) {
    if (!send(socket, line + "\n")) return;
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::uint16_t obtained = 0;
  os::StartSockets(os::kSocketVersion, &obtained);
  const std::string id = std::to_string(os::CurrentProcessId());
  os::Socket output = connect(startOf(id, argc, argv));
  std::thread(forwardInput, connect({"input", id})).detach();
  for (;;) {
    const char kind = receive(output, 1)[0];
    const std::uint32_t number = numberIn(receive(output, sizeof(std::uint32_t)));
    if (kind == 'x') leave(static_cast<int>(number), nullptr);
    std::FILE* const stream = kind == 'o' ? stdout : stderr;
    const std::string bytes = receive(output, number);
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
    std::fflush(stream);
  }
}
