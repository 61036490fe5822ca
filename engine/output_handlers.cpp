#include "engine/output_handlers.h"

#include <utility>

#include "engine/data_set_access.h"
#include "engine/output_graphic.h"
#include "engine/output_variable.h"
#include "engine/text_file.h"

namespace kova::engine {
namespace {

// Runs a handler once every text of the request is known to be one.
template <Handler handler>
ErrorCode withTexts(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  const ErrorCode code = checkAllTexts(request);
  return code == ErrorCode::kNone ? handler(state, request, reply) : code;
}

ErrorCode startProcedure(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  const StringData& texts = request.Strings();
  return state.output.log.startProcedure(texts[0], texts[1]);
}

ErrorCode endProcedure(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {
  return state.output.log.endProcedure();
}

ErrorCode hasProcedure(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetLong(state.output.log.hasProcedure() ? 1 : 0);
  return ErrorCode::kNone;
}

ErrorCode addProcFootnotes(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  return state.output.log.addProcedureNote(request.Strings()[0]);
}

ErrorCode addTextBlock(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  const StringData& texts = request.Strings();
  return state.output.log.addTextBlock(texts[0], texts[1], texts[2], request.FirstLong());
}

// The split's values are the data's affair; here the output of the next group begins.
ErrorCode splitChange(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {
  state.output.log.changeSplit();
  return ErrorCode::kNone;
}

// Deliberate: NUL bytes are kept here, as in no other text.
ErrorCode postKovaOutput(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  const std::string& text = request.Strings()[0];
  if (findInvalidUtf8(text) != std::string_view::npos) return ErrorCode::kTextNotUtf8;
  state.output.log.post(text);
  return ErrorCode::kNone;
}

ErrorCode getGraphic(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  Graphic graphic;
  const ErrorCode code = readGraphic(request.Strings()[0], &graphic);
  if (code == ErrorCode::kNone) state.output.log.addGraphic(std::move(graphic));
  return code;
}

ErrorCode setGraphicsLabel(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  state.output.log.labelGraphics(request.Strings()[0], request.Strings()[1]);
  return ErrorCode::kNone;
}

// The number styles, one handler for each row of the table.

ErrorCode setOwnStyle(EngineState& state, const NumberStyle& style) { return state.output.log.setStyle(style); }

// A style that is taken from a variable: the request's number is its position.
ErrorCode setVariableStyle(EngineState& state, const CleXDSmb& request, NumberStyle style, int addedDecimals) {
  const Variable* variable = nullptr;
  if (!state.output.log.hasProcedure()) return ErrorCode::kNoProcedureOpen;
  const ErrorCode code = findVariable(state, request.FirstLong(), &variable);
  if (code != ErrorCode::kNone) return code;
  if (!variable->isNumeric()) return ErrorCode::kWrongKind;
  style.format = withMoreDecimals(variable->format, addedDecimals);
  return state.output.log.setStyle(style);
}

#define KOVA_OWN_STYLE(Name, type, decimals, small)                                                      \
  ErrorCode style##Name(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {          \
    return setOwnStyle(state, {#Name, {FormatType::type, kWidestNumber, decimals}, SmallAmount::small}); \
  }
#define KOVA_VARIABLE_STYLE(Name, addedDecimals, small)                                      \
  ErrorCode style##Name(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {  \
    return setVariableStyle(state, request, {#Name, {}, SmallAmount::small}, addedDecimals); \
  }
#include "engine/output_styles.def"
#undef KOVA_OWN_STYLE
#undef KOVA_VARIABLE_STYLE

constexpr HandlerRow kRows[] = {
    {Command::StartProcedure, withTexts<startProcedure>},
    {Command::EndProcedure, endProcedure},
    {Command::HasProcedure, hasProcedure},
    {Command::AddProcFootnotes, withTexts<addProcFootnotes>},
    {Command::AddTextBlock, withTexts<addTextBlock>},
    {Command::SplitChange, withTexts<splitChange>},
    {Command::PostKovaOutput, postKovaOutput},
    {Command::GetGraphic, withTexts<getGraphic>},
    {Command::SetGraphicsLabel, withTexts<setGraphicsLabel>},
#define KOVA_OWN_STYLE(Name, type, decimals, small) {Command::SetFormatSpec##Name, style##Name},
#define KOVA_VARIABLE_STYLE(Name, addedDecimals, small) {Command::SetFormatSpec##Name, style##Name},
#include "engine/output_styles.def"
#undef KOVA_OWN_STYLE
#undef KOVA_VARIABLE_STYLE
};

}  // namespace

std::span<const HandlerRow> outputHandlers() { return kRows; }

}  // namespace kova::engine
