#include "engine/session_handlers.h"

#include <string>
#include <utility>

#include "engine/data_set_access.h"
#include "engine/settings.h"
#include "engine/transcode.h"

namespace kova::engine {
namespace {

template <std::string Session::*text>
ErrorCode tellText(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetString(state.session.*text);
  return ErrorCode::kNone;
}

template <int Session::*number>
ErrorCode tellNumber(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetLong(state.session.*number);
  return ErrorCode::kNone;
}

template <int answer>
ErrorCode tellAlways(EngineState& /*state*/, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetLong(answer);
  return ErrorCode::kNone;
}

template <int Session::*mode>
ErrorCode changeMode(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  if (request.FirstLong() < 0) return ErrorCode::kModeOutOfRange;
  state.session.*mode = request.FirstLong();
  return ErrorCode::kNone;
}

ErrorCode setOutputLanguage(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  return changeOutputLanguage(&state, request.Strings()[0]);
}

ErrorCode getNestDepth(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetLong(state.nestDepth);
  return ErrorCode::kNone;
}

ErrorCode getCLocale(EngineState& /*state*/, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetString(cLocale());
  return ErrorCode::kNone;
}

ErrorCode getHostAppNameAndVersion(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetString(state.session.hostName);
  reply.SetString(state.session.hostVersion);
  return ErrorCode::kNone;
}

ErrorCode setHostAppNameAndVersion(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  const ErrorCode code = checkAllTexts(request);
  if (code != ErrorCode::kNone) return code;
  std::string name = request.Strings()[0];
  std::string version = request.Strings()[1];
  state.session.hostName.swap(name);
  state.session.hostVersion.swap(version);
  return ErrorCode::kNone;
}

ErrorCode setHostAppCopyright(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  const ErrorCode code = checkAllTexts(request);
  if (code == ErrorCode::kNone) state.session.hostCopyright = request.Strings()[0];
  return code;
}

ErrorCode getSetting(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  const auto value = settingOf(state, request.Strings()[0], request.Strings()[1]);
  if (!value) return ErrorCode::kNoSuchSetting;
  reply.SetString(*value);
  return ErrorCode::kNone;
}

// Each data set that came from a file is a handle for it: two texts, its name and the file.
ErrorCode getFileHandles(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  for (const auto& dataSet : state.dataSets) {
    if (dataSet->source.empty()) continue;
    reply.SetString(dataSet->name);
    reply.SetString(dataSet->source);
  }
  return ErrorCode::kNone;
}

ErrorCode transCode(EngineState& /*state*/, const CleXDSmb& request, CleXDSmb& reply) {
  const std::string& text = request.Strings()[0];
  if (text.find('\0') != std::string::npos) return ErrorCode::kTextWithNul;
  reply.SetString(toUtf8(text));
  return ErrorCode::kNone;
}

constexpr int kYes = 1;
constexpr int kNo = 0;

constexpr HandlerRow kRows[] = {
    {Command::GetKovaOutputWidth, tellNumber<&Session::outputWidth>},
    {Command::GetKOVALocale, tellText<&Session::locale>},
    {Command::GetCLocale, getCLocale},
    {Command::GetOutputLanguage, tellText<&Session::outputLanguage>},
    {Command::SetOutputLanguage, setOutputLanguage},
    {Command::GetHostAppNameAndVersion, getHostAppNameAndVersion},
    {Command::SetHostAppNameAndVersion, setHostAppNameAndVersion},
    {Command::GetHostAppCopyright, tellText<&Session::hostCopyright>},
    {Command::SetHostAppCopyright, setHostAppCopyright},
    {Command::GetSetting, getSetting},
    {Command::GetXDriveMode, tellNumber<&Session::driveMode>},
    {Command::SetXDriveMode, changeMode<&Session::driveMode>},
    {Command::SetMode, changeMode<&Session::mode>},
    {Command::GetZenthorServerMode, tellNumber<&Session::serverMode>},
    {Command::SetZenthorServerMode, changeMode<&Session::serverMode>},
    {Command::IsUTF8mode, tellAlways<kYes>},
    {Command::IsDistributedMode, tellAlways<kNo>},
    {Command::GetNestDepth, getNestDepth},
    {Command::GetFileHandles, getFileHandles},
    {Command::TransCode, transCode},
};

}  // namespace

std::span<const HandlerRow> sessionHandlers() { return kRows; }

}  // namespace kova::engine
