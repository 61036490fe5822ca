// The XML documents that programs query: the output so far under the handle "output", and dictionaries under handles of
// their makers' choice.
//
// A part of the engine's state; used by request handlers alone, one at a time.
#ifndef KOVADX_ENGINE_XPATH_DOCUMENTS_H
#define KOVADX_ENGINE_XPATH_DOCUMENTS_H

#include <memory>
#include <string>
#include <vector>

#include "engine/data_set.h"
#include "engine/error_codes.h"
#include "engine/output_log.h"

namespace kova::engine {

class XPathDocuments {
 public:
  static constexpr const char* kOutputHandle = "output";

  XPathDocuments();
  XPathDocuments(XPathDocuments&&) noexcept;
  XPathDocuments& operator=(XPathDocuments&&) noexcept;
  ~XPathDocuments();

  // All handles, the output's first, the others in the order of their letters.
  std::vector<std::string> handles() const;

  // A document with the dictionary as it is now. kOutputNameEmpty, kHandleReserved or kHandleExists when the handle
  // will not do.
  ErrorCode create(const std::string& handle, const DataSet& dataSet);
  // kHandleReserved or kUnknownHandle.
  ErrorCode remove(const std::string& handle);

  // The result of the expression at the first node that the context selects (an empty one is the document itself): the
  // text of each node in the document's order, or one text for a number, a truth value or a string. kUnknownHandle,
  // kXPathSyntax (the place is written to the trace) or kXPathContext.
  ErrorCode evaluate(const OutputLog& log, const std::string& handle, const std::string& context,
                     const std::string& expression, std::vector<std::string>* texts);

  // The whole document. kUnknownHandle.
  ErrorCode text(const OutputLog& log, const std::string& handle, std::u16string* xml);
  // The units of the last text that was asked for; 0 before the first.
  int lastLength() const { return lastLength_; }

 private:
  struct Documents;

  std::unique_ptr<Documents> documents_;
  int lastLength_ = 0;
};

}  // namespace kova::engine

#endif
