// A scripted engine with cases, for tests of the case cursor: it describes its variables and answers each request for a
// batch with the next of those that the test has laid out, and with "no further case" behind the last.
#ifndef KOVADX_TESTS_API_CASE_ENGINE_H
#define KOVADX_TESTS_API_CASE_ENGINE_H

#include <cstring>
#include <deque>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "tests/api/client_test.h"

namespace kova {

// The engine reads what follows on its own thread, while the test's waits for the reply: a test changes it between
// calls.
class CaseClientTest : public ClientTest {
 protected:
  static constexpr int kRefusal = 55;

  // The bytes of numbers within a case.
  static std::string Numbers(std::initializer_list<double> values) {
    std::string bytes(values.size() * sizeof(double), '\0');
    std::memcpy(bytes.data(), values.begin(), bytes.size());
    return bytes;
  }

  // A reply with cases, whose last units may be cut: they are filled with blanks.
  template <class... Cases>
  static WireImage Batch(int error, int count, const Cases&... cases) {
    std::string block;
    for (const std::string& bytes : {std::string(cases)...}) {
      block += bytes;
      block.append((kUnitBytes - bytes.size() % kUnitBytes) % kUnitBytes, ' ');
    }
    return {.error = error, .longs = {count}, .block = block};
  }

  void Serve() {
    StartEngine([this](const kit::Bytes& request) {
      kit::Bytes reply = ReplyTo(request).bytes();
      const bool isCut = reply.size() > cutsAt;
      if (isCut) reply.resize(cutsAt);
      return Answer{std::move(reply), isCut};
    });
  }

  // Appends the code of NextCase. True when there is a case.
  static bool NextCaseInto(std::vector<int>& codes) {
    codes.push_back(NextCase());
    return codes.back() == 0;
  }

  // The codes of all requests so far, and the integers of one of them.
  std::vector<int> Codes() const {
    std::vector<int> codes;
    for (const kit::Bytes& request : Requests()) codes.push_back(IntAt(request, 4));
    return codes;
  }
  std::vector<int> LongsOf(std::size_t request) const {
    const kit::Bytes bytes = Requests()[request];
    std::vector<int> longs;
    for (int i = 0; i < IntAt(bytes, 12); ++i) longs.push_back(IntAt(bytes, 16 + 4 * static_cast<std::size_t>(i)));
    return longs;
  }

  std::vector<int> types = {};
  WireImage missingNumbers = {.longs = {0}};
  WireImage missingTexts = {.longs = {0}};
  std::deque<WireImage> batches = {};
  std::map<int, WireImage> others = {};  // Replies to other codes; without one the reply is empty.
  int refused = 0;                       // The code that is answered with the refusal.
  std::size_t cutsAt = ~std::size_t{0};  // It dies behind so many bytes of a reply.

 private:
  static int IntAt(const kit::Bytes& bytes, std::size_t place) {
    std::int32_t value = 0;
    std::memcpy(&value, bytes.data() + place, sizeof value);
    return value;
  }

  WireImage NextBatch() {
    if (batches.empty()) return {.error = 23, .longs = {0}};
    const WireImage batch = batches.front();
    batches.pop_front();
    return batch;
  }

  WireImage ReplyTo(const kit::Bytes& request) {
    const int code = IntAt(request, 4);
    if (code == refused) return {.error = kRefusal};
    switch (code) {
      case 104:
        return {.longs = {static_cast<int>(types.size())}};
      case 109:
        return {.longs = {types[static_cast<std::size_t>(IntAt(request, 16))]}};
      case 32:
        return missingNumbers;
      case 31:
        return missingTexts;
      case 227:
        return NextBatch();
      default:
        return others[code];
    }
  }
};

}  // namespace kova

#endif
