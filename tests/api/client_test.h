// What the tests of the client interface share: a client process in its first moments, and messages written by hand.
#ifndef KOVADX_TESTS_API_CLIENT_TEST_H
#define KOVADX_TESTS_API_CLIENT_TEST_H

#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "api/InitDxGlobal.h"
#include "api/client_cursor.h"
#include "api/client_state.h"
#include "api/data_set_caches.h"
#include "api/kovadx.h"
#include "api/kovadx_ext.h"
#include "api/new_values.h"
#include "message/dataSet.h"
#include "tests/kit/scripted_engine.h"
#include "tests/os_fake/os_fake.h"
#include "tests/transport/traced_test.h"

namespace kova {

// A message as its layout says, byte by byte and without the library's own encoder.
struct WireImage {
  std::int32_t code = -1;
  std::int32_t error = 0;
  std::vector<std::int32_t> longs = {};
  std::vector<double> doubles = {};
  std::vector<std::string> texts = {};
  std::vector<dataSet> cells = {};
  std::vector<std::vector<std::int32_t>> longLists = {};
  std::vector<std::vector<double>> doubleLists = {};
  std::vector<std::vector<std::string>> lists = {};
  std::string binary = {};
  std::u16string wide = {};
  std::string block = {};

  kit::Bytes bytes() const {
    kit::Bytes out;
    put(out, code);
    put(out, error);
    putNumbers(out, longs);
    putDoubles(out, doubles);
    putTexts(out, texts);
    putCells(out);
    put(out, size(longLists));
    for (const auto& list : longLists) putNumbers(out, list);
    put(out, size(doubleLists));
    for (const auto& list : doubleLists) putDoubles(out, list);
    put(out, size(lists));
    for (const auto& list : lists) putTexts(out, list);
    putBytes(out, binary);
    put(out, size(wide));
    for (const char16_t unit : wide) put(out, static_cast<std::uint16_t>(unit));
    putBytes(out, block);
    kit::Bytes whole;
    put(whole, static_cast<std::int32_t>(out.size()) + 4);
    whole.insert(whole.end(), out.begin(), out.end());
    return whole;
  }

 private:
  template <class List>
  static std::int32_t size(const List& list) {
    return static_cast<std::int32_t>(list.size());
  }

  template <class Number>
  static void put(kit::Bytes& out, Number value) {
    for (std::size_t i = 0; i < sizeof value; ++i) {
      out.push_back(static_cast<char>(static_cast<std::uint64_t>(value) >> (8 * i)));
    }
  }

  static void putNumbers(kit::Bytes& out, const std::vector<std::int32_t>& numbers) {
    put(out, size(numbers));
    for (const std::int32_t value : numbers) put(out, value);
  }

  static void putDoubles(kit::Bytes& out, const std::vector<double>& numbers) {
    put(out, size(numbers));
    for (const double value : numbers) put(out, std::bit_cast<std::uint64_t>(value));
  }

  static void putBytes(kit::Bytes& out, const std::string& bytes) {
    put(out, size(bytes));
    out.insert(out.end(), bytes.begin(), bytes.end());
  }

  static void putTexts(kit::Bytes& out, const std::vector<std::string>& texts) {
    put(out, size(texts));
    for (const std::string& text : texts) putBytes(out, text);
  }

  void putCells(kit::Bytes& out) const {
    put(out, size(cells));
    for (const dataSet& cell : cells) {
      putBytes(out, cell.datasetName);
      for (const std::int32_t number : {cell.caseIndex, cell.varIndex, cell.valueKind}) put(out, number);
      put(out, std::bit_cast<std::uint64_t>(cell.numValue));
      putBytes(out, cell.strValue);
    }
  }
};

// A client of the name TEST and the process id 1234, with the engine marked as running and none there yet.
class ClientTest : public TracedTest {
 protected:
  using Answer = kit::ScriptedEngine::Answer;

  static constexpr const char* kBase = "\\\\.\\pipe\\1234TEST0";
  static constexpr const char* kRequestPipe = "\\\\.\\pipe\\1234TEST0xdapi";
  static constexpr const char* kReplyPipe = "\\\\.\\pipe\\1234TEST0xdapiresult";

  ClientTest() {
    fake::reset();  // What the fixture itself has called is nobody's concern.
    SetXNameAndSHome("TEST", "");
    SetKovaRunning(true);
  }

  ~ClientTest() override {
    EndConversation();
    ForgetDataSets();
    SetKovaRunning(false);
    SetXNameAndSHome(nullptr, nullptr);
    SetRecordBrowserOutput(nullptr, false);
    DropSharedText();
    DropWideText();
    DropClientCursor();
    TheNewValues().clear();
  }

  // Starts an engine that gives each request the answer that `script` makes.
  void StartEngine(kit::ScriptedEngine::Script script) {
    engine_ = std::make_unique<kit::ScriptedEngine>(kBase, std::move(script));
    ASSERT_EQ(engine_->created(), 0);
  }

  // The same for one answer to all.
  void StartEngine(const WireImage& reply) {
    StartEngine([bytes = reply.bytes()](const kit::Bytes&) { return Answer{bytes}; });
  }

  // Closes the client's pipes, upon which the engine ends.
  void EndConversation() {
    FinalizeDXGlobal();
    engine_.reset();
  }

  std::vector<kit::Bytes> Requests() const { return engine_->received(); }

  // The command codes of the requests so far.
  std::vector<int> RequestCodes() const {
    std::vector<int> codes;
    for (const kit::Bytes& request : Requests()) codes.push_back(CodeOf(request));
    return codes;
  }

  static std::int32_t CodeOf(const kit::Bytes& request) {
    std::int32_t code = 0;
    std::memcpy(&code, request.data() + sizeof code, sizeof code);
    return code;
  }

  // How often the client or the engine has called that function of the seam for that pipe.
  static std::ptrdiff_t CallsFor(const std::string& function, const std::string& pipe) {
    const auto calls = fake::calls();
    return std::count(calls.begin(), calls.end(), function + " " + pipe);
  }

 private:
  std::unique_ptr<kit::ScriptedEngine> engine_;
};

}  // namespace kova

#endif
