#include "engine/xpath_documents.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <new>
#include <unordered_map>
#include <utility>

#include "engine/output_texts.h"
#include "engine/output_xml.h"
#include "engine/xpath_dictionary.h"
#include "trace/DxTracer.h"

namespace kova::engine {
namespace {

using Expression = std::unique_ptr<pugi::xpath_query>;

// Null when the text is no expression; the trace tells the place then.
Expression compile(const std::string& text) {
  try {
    return std::make_unique<pugi::xpath_query>(text.c_str());
  } catch (const pugi::xpath_exception& problem) {
    if (DxTracer* tracer = GetDxTracer()) {
      tracer->write("XPath: " + std::string(problem.what()) + " at byte " + std::to_string(problem.result().offset) +
                    " of " + onOneLine(text));
    }
    return nullptr;
  }
}

// Numbers everything that a result can hold in the order of the document: an element, its attributes, its children.
class Numbering : public pugi::xml_tree_walker {
 public:
  bool for_each(pugi::xml_node& node) override {
    numbers_.emplace(node.internal_object(), numbers_.size());
    for (const pugi::xml_attribute attribute : node.attributes()) {
      numbers_.emplace(attribute.internal_object(), numbers_.size());
    }
    return true;
  }

  // The document itself, which is not walked, comes first.
  std::size_t of(const pugi::xpath_node& node) const {
    const void* key = node.attribute() ? static_cast<const void*>(node.attribute().internal_object())
                                       : static_cast<const void*>(node.node().internal_object());
    const auto found = numbers_.find(key);
    return found == numbers_.end() ? 0 : found->second + 1;
  }

 private:
  std::unordered_map<const void*, std::size_t> numbers_;
};

// The library's own sort takes quadratic time for a union: there one sorted run stands behind another.
std::vector<pugi::xpath_node> inOrder(const pugi::xpath_node_set& set, pugi::xml_node root) {
  std::vector<pugi::xpath_node> nodes(set.begin(), set.end());
  if (set.type() == pugi::xpath_node_set::type_sorted_reverse) std::reverse(nodes.begin(), nodes.end());
  if (set.type() != pugi::xpath_node_set::type_unsorted) return nodes;
  Numbering numbering;
  root.traverse(numbering);
  std::sort(nodes.begin(), nodes.end(), [&numbering](const pugi::xpath_node& left, const pugi::xpath_node& right) {
    return numbering.of(left) < numbering.of(right);
  });
  return nodes;
}

void addTexts(const pugi::xpath_query& expression, const pugi::xpath_node& context, std::vector<std::string>* texts) {
  if (expression.return_type() != pugi::xpath_type_node_set) {
    texts->push_back(expression.evaluate_string(context));
    return;
  }
  static const pugi::xpath_query textOfNode("string()");
  const pugi::xml_node root = context.attribute() ? context.parent().root() : context.node().root();
  for (const pugi::xpath_node& node : inOrder(expression.evaluate_node_set(context), root)) {
    texts->push_back(textOfNode.evaluate_string(node));
  }
}

class ByteWriter : public pugi::xml_writer {
 public:
  void write(const void* data, std::size_t size) override { bytes_.append(static_cast<const char*>(data), size); }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

// The same document, read from its own text. The library compares two nodes that it has read by their places in the
// text, but two that were added by walking along their siblings: sorting the cells of a large table took minutes.
std::unique_ptr<pugi::xml_document> reread(const pugi::xml_document& document) {
  ByteWriter writer;
  document.save(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
  const std::string& bytes = writer.bytes();
  auto copy = std::make_unique<pugi::xml_document>();
  constexpr unsigned int kKeepsWhiteSpace = pugi::parse_escapes | pugi::parse_ws_pcdata;
  // What was written can be read, unless there is no memory.
  if (!copy->load_buffer(bytes.data(), bytes.size(), kKeepsWhiteSpace, pugi::encoding_utf8)) throw std::bad_alloc();
  return copy;
}

// Collects what the library writes in 16-bit units.
class WideWriter : public pugi::xml_writer {
 public:
  explicit WideWriter(std::u16string* text) : text_(text) {}

  void write(const void* data, std::size_t size) override {
    const std::size_t before = text_->size();
    text_->resize(before + size / sizeof(char16_t));
    std::memcpy(text_->data() + before, data, size);
  }

 private:
  std::u16string* text_;
};

}  // namespace

struct XPathDocuments::Documents {
  std::unique_ptr<pugi::xml_document> output = std::make_unique<pugi::xml_document>();
  std::size_t sectionsInOutput = 0;
  std::map<std::string, std::unique_ptr<pugi::xml_document>> own;

  // Null when there is no such document. The output's takes in what was finished meanwhile.
  const pugi::xml_document* find(const OutputLog& log, const std::string& handle) {
    if (handle != kOutputHandle) {
      const auto found = own.find(handle);
      return found == own.end() ? nullptr : found->second.get();
    }
    if (!output->first_child()) output->append_child("output");
    if (sectionsInOutput == log.sections().size()) return output.get();
    for (; sectionsInOutput < log.sections().size(); ++sectionsInOutput) {
      appendSection(output->first_child(), log.sections()[sectionsInOutput]);
    }
    output = reread(*output);
    return output.get();
  }
};

XPathDocuments::XPathDocuments() : documents_(std::make_unique<Documents>()) {}
XPathDocuments::XPathDocuments(XPathDocuments&&) noexcept = default;
XPathDocuments& XPathDocuments::operator=(XPathDocuments&&) noexcept = default;
XPathDocuments::~XPathDocuments() = default;

std::vector<std::string> XPathDocuments::handles() const {
  std::vector<std::string> handles = {kOutputHandle};
  for (const auto& entry : documents_->own) handles.push_back(entry.first);
  return handles;
}

ErrorCode XPathDocuments::create(const std::string& handle, const DataSet& dataSet) {
  if (handle.empty()) return ErrorCode::kOutputNameEmpty;
  if (handle == kOutputHandle) return ErrorCode::kHandleReserved;
  if (documents_->own.contains(handle)) return ErrorCode::kHandleExists;
  pugi::xml_document made;
  appendDictionary(made, dataSet);
  documents_->own.emplace(handle, reread(made));
  return ErrorCode::kNone;
}

ErrorCode XPathDocuments::remove(const std::string& handle) {
  if (handle == kOutputHandle) return ErrorCode::kHandleReserved;
  return documents_->own.erase(handle) == 0 ? ErrorCode::kUnknownHandle : ErrorCode::kNone;
}

ErrorCode XPathDocuments::evaluate(const OutputLog& log, const std::string& handle, const std::string& context,
                                   const std::string& expression, std::vector<std::string>* texts) {
  const pugi::xml_document* document = documents_->find(log, handle);
  if (document == nullptr) return ErrorCode::kUnknownHandle;
  const Expression contextQuery = compile(context.empty() ? "/" : context);
  const Expression query = compile(expression);
  if (!contextQuery || !query || contextQuery->return_type() != pugi::xpath_type_node_set) {
    return ErrorCode::kXPathSyntax;
  }
  const auto nodes = inOrder(contextQuery->evaluate_node_set(*document), *document);
  if (nodes.empty()) return ErrorCode::kXPathContext;
  addTexts(*query, nodes.front(), texts);
  return ErrorCode::kNone;
}

ErrorCode XPathDocuments::text(const OutputLog& log, const std::string& handle, std::u16string* xml) {
  const pugi::xml_document* document = documents_->find(log, handle);
  if (document == nullptr) return ErrorCode::kUnknownHandle;
  WideWriter writer(xml);
  *xml = u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n";
  document->save(writer, "  ", pugi::format_default | pugi::format_no_declaration, pugi::encoding_utf16_le);
  lastLength_ = static_cast<int>(xml->size());
  return ErrorCode::kNone;
}

}  // namespace kova::engine
