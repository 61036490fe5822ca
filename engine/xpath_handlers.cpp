#include "engine/xpath_handlers.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "engine/data_set_access.h"

namespace kova::engine {
namespace {

void addTexts(const std::vector<std::string>& texts, CleXDSmb* reply) {
  for (const std::string& text : texts) reply->SetString(text);
}

ErrorCode createDictionary(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = reachDataSet<OfActive>(state, request, &dataSet);
  return code == ErrorCode::kNone ? state.output.documents.create(request.Strings()[0], *dataSet) : code;
}

ErrorCode removeHandle(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  return state.output.documents.remove(request.Strings()[0]);
}

ErrorCode evaluate(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  if (const ErrorCode code = checkAllTexts(request); code != ErrorCode::kNone) return code;
  const StringData& asked = request.Strings();
  std::vector<std::string> texts;
  const ErrorCode code = state.output.documents.evaluate(state.output.log, asked[0], asked[1], asked[2], &texts);
  if (code == ErrorCode::kNone) addTexts(texts, &reply);
  return code;
}

ErrorCode getXml(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  std::u16string xml;
  const ErrorCode code = state.output.documents.text(state.output.log, request.Strings()[0], &xml);
  if (code == ErrorCode::kNone) reply.SetwString(xml.c_str());
  return code;
}

ErrorCode getXmlLength(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetLong(state.output.documents.lastLength());
  return ErrorCode::kNone;
}

// The first text is a document's handle; images belong to the output alone.
ErrorCode getImage(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  const StringData& asked = request.Strings();
  const std::vector<std::string> handles = state.output.documents.handles();
  if (std::find(handles.begin(), handles.end(), asked[0]) == handles.end()) return ErrorCode::kUnknownHandle;
  const bool isOutput = asked[0] == XPathDocuments::kOutputHandle;
  const Graphic* graphic = isOutput ? state.output.log.findGraphic(asked[1]) : nullptr;
  if (graphic == nullptr) return ErrorCode::kUnknownImage;
  const auto size = static_cast<int>(graphic->bytes.size());
  reply.SetString(graphic->type);
  reply.SetBinaryString(graphic->bytes.data(), size);
  reply.SetLong(size);
  return ErrorCode::kNone;
}

// Texts in the order of their first mention, each once.
class Tags {
 public:
  void add(const std::string& tag) {
    if (!tag.empty() && seen_.insert(tag).second) tags_.push_back(tag);
  }
  const std::vector<std::string>& all() const { return tags_; }

 private:
  std::vector<std::string> tags_;
  std::unordered_set<std::string> seen_;
};

// What a reader of the output can ask for: the names of its procedures and the subtypes of its tables.
ErrorCode getTags(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  Tags names;
  Tags subtypes;
  for (const OutputSection& section : state.output.log.sections()) {
    names.add(section.name);
    for (const OutputItem& item : section.items) {
      if (const auto* table = std::get_if<PivotTable>(&item.content)) subtypes.add(table->key().subtype);
    }
  }
  addTexts(names.all(), &reply);
  addTexts(subtypes.all(), &reply);
  return ErrorCode::kNone;
}

ErrorCode getHandles(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  addTexts(state.output.documents.handles(), &reply);
  return ErrorCode::kNone;
}

constexpr HandlerRow kRows[] = {
    {Command::CreateXPathDictionary, createDictionary},
    {Command::RemoveXPathHandle, removeHandle},
    {Command::EvaluateXPath, evaluate},
    {Command::GetXmlUtf16, getXml},
    {Command::GetXmlUtf16Length, getXmlLength},
    {Command::GetImage, getImage},
    {Command::GetOMSTagList, getTags},
    {Command::GetHandleList, getHandles},
};

}  // namespace

std::span<const HandlerRow> xpathHandlers() { return kRows; }

}  // namespace kova::engine
