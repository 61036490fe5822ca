// A client and an engine that answers each command in its own way, for tests of what is asked in which order.
#ifndef KOVADX_TESTS_API_DATA_SET_TEST_H
#define KOVADX_TESTS_API_DATA_SET_TEST_H

#include <map>
#include <string>
#include <vector>

#include "tests/api/client_test.h"

namespace kova {

class DataSetTest : public ClientTest {
 protected:
  static constexpr int kRefusal = 31;
  static constexpr int kPeerGone = 109;

  // Starts the engine; what a command is answered with may be changed between calls.
  void Serve() {
    StartEngine([this](const kit::Bytes& request) {
      const int code = CodeOf(request);
      if (code == diesAt_) return Answer{{}, true};
      return Answer{answers_[code].bytes()};
    });
  }

  // Has the engine answer that command with an error, or with nothing at all.
  void Refuse(int code) { answers_[code] = {.error = kRefusal}; }
  void Accept(int code) { answers_.erase(code); }

  // The codes since the last call of this.
  std::vector<int> Asked() {
    std::vector<int> codes = RequestCodes();
    codes.erase(codes.begin(), codes.begin() + static_cast<std::ptrdiff_t>(seen_));
    seen_ += codes.size();
    return codes;
  }

  kit::Bytes LastRequest() const { return Requests().back(); }

  std::map<int, WireImage> answers_;
  int diesAt_ = -1;

 private:
  std::size_t seen_ = 0;
};

}  // namespace kova

#endif
