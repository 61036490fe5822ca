#include "decode_command.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "command_line.h"
#include "message/CleXDSmb.h"

namespace kova::program {
namespace {

constexpr std::size_t kSmallestMessage = 52;
constexpr std::size_t kShownBytes = 32;  // Of a block.
constexpr int kNotAllMessages = 1;

// A text as a JSON string, so that it stands on one line whatever it holds and no terminal obeys it. Other bytes from
// 0x80 on are left as they are.
std::string quoted(const std::string& text) {
  std::string result = "\"";
  const auto addCode = [&result](unsigned control) {
    char code[8];
    std::snprintf(code, sizeof code, "\\u%04x", control);
    result += code;
  };
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
    if (byte == '"' || byte == '\\') {
      result += {'\\', text[i]};
    } else if (byte < 0x20 || byte == 0x7F) {
      addCode(byte);
    } else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) {  // A control beyond ASCII, in UTF-8.
      addCode(next);
      ++i;
    } else {
      result += text[i];
    }
  }
  return result + '"';
}

// The shortest text that reads back as the same number.
std::string shown(double value) {
  char text[40];
  for (int digits = 15; digits <= 17; ++digits) {
    std::snprintf(text, sizeof text, "%.*g", digits, value);
    if (std::strtod(text, nullptr) == value) break;
  }
  return text;
}
std::string shown(int value) { return std::to_string(value); }
std::string shown(const std::string& value) { return quoted(value); }

std::string shown(const dataSet& record) {
  const std::string value = record.valueKind == 0 ? shown(record.numValue) : quoted(record.strValue);
  return quoted(record.datasetName) + " case " + shown(record.caseIndex) + " variable " + shown(record.varIndex) +
         " kind " + shown(record.valueKind) + " value " + value;
}

std::string hexOf(const char* bytes, std::size_t length) {
  std::string text;
  for (std::size_t i = 0; i < std::min(length, kShownBytes); ++i) {
    char code[4];
    std::snprintf(code, sizeof code, " %02x", static_cast<unsigned char>(bytes[i]));
    text += code;
  }
  return length > kShownBytes ? text + " ..." : text;
}

// Lines of a message: what it is, then what it holds.
class Lines {
 public:
  void add(const std::string& what, const std::string& value) {
    text_ << "  " << what << std::string(what.size() < kColumn ? kColumn - what.size() : 1, ' ') << value << '\n';
  }

  template <typename List>
  void addList(const std::string& what, const List& values) {
    if (values.empty()) return;
    std::string line;
    for (const auto& value : values) line += (line.empty() ? "" : ", ") + shown(value);
    add(what, line);
  }

  template <typename Lists>
  void addLists(const std::string& what, const Lists& lists) {
    for (std::size_t i = 0; i < lists.size(); ++i) {
      const std::string name = what + ' ' + std::to_string(i);
      if (lists[i].values().empty()) add(name, "(empty)");
      addList(name, lists[i].values());
    }
  }

  void addBlock(const std::string& what, const char* bytes, int length) {
    if (length > 0) add(what, std::to_string(length) + " bytes:" + hexOf(bytes, static_cast<std::size_t>(length)));
  }

  std::string text() const { return text_.str(); }

 private:
  static constexpr std::size_t kColumn = 14;
  std::ostringstream text_;
};

std::string commandText(int code) {
  const char* const name = commandName(code);
  return std::to_string(code) + (*name == '\0' ? " (not assigned)" : std::string(" ") + name);
}

std::string describe(const CleXDSmb& message) {
  Lines lines;
  lines.add("command", commandText(static_cast<int>(message.GetCommandAction())));
  lines.add("error", std::to_string(message.GetErrorCode()));
  lines.addList("integers", message.Longs().values());
  lines.addList("doubles", message.Doubles().values());
  lines.addList("texts", message.Strings().values());
  for (const dataSet& record : message.Structs().values()) lines.add("cell", shown(record));
  lines.addLists("integers", message.LongArrays());
  lines.addLists("doubles", message.DoubleArrays());
  lines.addLists("texts", message.StringArrays());
  lines.addBlock("binary", message.GetBinaryData(), message.BinaryLength());
  if (const auto* const wide = message.GetwStringData()) {
    const auto* const units = reinterpret_cast<const char*>(wide);
    lines.addBlock("wide text", units,
                   static_cast<int>(std::char_traits<char16_t>::length(reinterpret_cast<const char16_t*>(wide)) * 2));
  }
  int length = 0;
  const void* const block = message.GetVoidData(length);
  lines.addBlock("void data", static_cast<const char*>(block), length);
  return lines.text();
}

// Where the first field lies that does not fit the message, counted from the message's first byte; the message's length
// when all fit. What was read is written again: it differs where the reading has ended.
std::size_t endOfReading(CleXDSmb& message, const char* bytes, std::size_t length) {
  // A received binary block is not sent again by itself.
  if (message.BinaryLength() > 0) {
    const std::string binary(message.GetBinaryData(), static_cast<std::size_t>(message.BinaryLength()));
    message.SetBinaryString(binary.data(), static_cast<int>(binary.size()));
  }
  if (message.ContructSendData() != 0) return 0;
  int written = 0;
  const char* const again = message.GetSendBuf(written);
  const std::size_t compared = std::min(length, static_cast<std::size_t>(written));
  // The total lengths, which come first, differ too when the reading ended early; they tell nothing.
  const char* const place = std::mismatch(bytes + 4, bytes + compared, again + 4).first;
  const bool isSame = place == bytes + compared && compared == length;
  return isSame ? length : static_cast<std::size_t>(place - bytes);
}

// The stated length of the message at the front, and how much of it is there; false when that length can not be right.
bool measure(const std::string& bytes, std::size_t at, std::int32_t* stated, std::size_t* there) {
  if (bytes.size() - at < sizeof *stated) return false;
  std::memcpy(stated, bytes.data() + at, sizeof *stated);
  if (*stated < static_cast<std::int32_t>(kSmallestMessage)) return false;
  *there = std::min(bytes.size() - at, static_cast<std::size_t>(*stated));
  return true;
}

// Adds the text of the messages to *text; false when the bytes are not all messages.
bool decodeMessages(const std::string& bytes, std::string* text) {
  if (bytes.empty()) *text += "no message; the file is empty\n";
  std::size_t at = 0;
  for (int number = 1; at < bytes.size(); ++number) {
    std::int32_t stated = 0;
    std::size_t there = 0;
    const std::string where = "at byte " + std::to_string(at);
    if (!measure(bytes, at, &stated, &there)) {
      *text += where + ": no message; its first four bytes, the length, must be at least 52\n";
      return false;
    }
    CleXDSmb message;
    message.ParseBuf(bytes.data() + at, static_cast<int>(there));
    *text += "message " + std::to_string(number) + ' ' + where + ", " + std::to_string(stated) + " bytes\n";
    *text += describe(message);
    if (there < static_cast<std::size_t>(stated)) {
      *text += "  cut short: only " + std::to_string(there) + " bytes are there\n";
      return false;
    }
    const std::size_t end = endOfReading(message, bytes.data() + at, there);
    if (end < there) {
      *text += "  damaged: the field at byte " + std::to_string(at + end) + " does not fit the message\n";
      return false;
    }
    at += there;
  }
  return !bytes.empty();
}

}  // namespace

int decodeCommand(const std::string& path) {
  std::error_code ignored;
  std::ifstream file(path, std::ios::binary);
  if (!file || std::filesystem::is_directory(path, ignored)) {
    printError(path + " can not be read; check the path");
    return kOwnFailure;
  }
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  std::string text;
  const bool whole = decodeMessages(bytes, &text);
  std::fputs(text.c_str(), stdout);
  return whole ? 0 : kNotAllMessages;
}

}  // namespace kova::program
