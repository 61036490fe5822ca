#include "tests/conformance/seam_fixture.h"

#include <cstdio>
#include <ostream>

#ifdef KOVA_KIT_FAKE
#include "tests/os_fake/os_fake.h"
#endif

namespace kova::conformance {
namespace {

using Reader = Error (*)(os::NativeHandle, void*, std::uint32_t, std::uint32_t*);

Received receiveBy(Reader reader, const Pipe& pipe, std::uint32_t size) {
  std::string area(size, '?');
  std::uint32_t count = 12345;
  Received result;
  result.error = reader(pipe.get(), area.data(), size, &count);
  EXPECT_LE(count, size) << "the count is always stored";
  result.bytes = area.substr(0, count);
  return result;
}

}  // namespace

void resetBackend() {
#ifdef KOVA_KIT_FAKE
  fake::reset();
#endif
}

#ifdef KOVA_KIT_FAKE
std::string readOwnInput(char end) {
  std::string text;
  for (std::string next = fake::readInput(1); !next.empty() && next[0] != end; next = fake::readInput(1)) text += next;
  return text;
}

void writeOwnOutput(const std::string& bytes) { fake::writeOutput(bytes); }

void writeOwnErrors(const std::string& bytes) { fake::writeOutput(bytes); }
#else
std::string readOwnInput(char end) {
  std::string text;
  for (int next = std::getchar(); next != EOF && next != end; next = std::getchar()) text += static_cast<char>(next);
  return text;
}

namespace {

void writeAtOnce(const std::string& bytes, std::FILE* stream) {
  std::fwrite(bytes.data(), 1, bytes.size(), stream);
  std::fflush(stream);
}

}  // namespace

void writeOwnOutput(const std::string& bytes) { writeAtOnce(bytes, stdout); }

void writeOwnErrors(const std::string& bytes) { writeAtOnce(bytes, stderr); }
#endif

Error Pipe::write(const std::string& message) {
  std::uint32_t written = 12345;
  const Error error = os::WriteMessage(handle_, message.data(), static_cast<std::uint32_t>(message.size()), &written);
  if (error == os::kSuccess) {
    EXPECT_EQ(written, message.size());
  }
  return error;
}

void PrintTo(const Received& received, std::ostream* out) {
  *out << "error " << received.error << ", " << received.bytes.size() << " bytes";
  if (received.bytes.size() <= 40) *out << " \"" << received.bytes << '"';
}

Received receive(const Pipe& pipe, std::uint32_t size) { return receiveBy(&os::ReadMessage, pipe, size); }

Received tryReceive(const Pipe& pipe, std::uint32_t size) { return receiveBy(&os::TryReadMessage, pipe, size); }

std::string pattern(std::size_t length, unsigned seed) {
  std::string bytes(length, '\0');
  for (std::size_t i = 0; i < length; ++i) bytes[i] = static_cast<char>((i * 31 + i / 256 + seed * 7) & 0xFF);
  return bytes;
}

Connection::Connection(const std::string& pipeName) : name(pipeName) {
  EXPECT_EQ(server.create(name), os::kSuccess);
  EXPECT_EQ(client.open(name), os::kSuccess);
  EXPECT_EQ(server.accept(), os::kPipeConnected);
}

}  // namespace kova::conformance
