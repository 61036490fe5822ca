#include "engine/settings.h"

#include <algorithm>
#include <clocale>
#include <cmath>

#include "engine/text_rules.h"

namespace kova::engine {
namespace {

constexpr std::size_t kLongestLanguage = 40;
constexpr double kNarrowest = 20;  // Of a line of output.
constexpr double kWidest = 1000;

struct Row {
  std::string_view item;
  std::string_view subItem;
  std::string (*value)(const EngineState& state);
};

constexpr Row kRows[] = {
    {"Data", "Active", [](const EngineState& state) { return state.active == nullptr ? "" : state.active->name; }},
    {"Data", "Source", [](const EngineState& state) { return state.active == nullptr ? "" : state.active->source; }},
    {"Data", "Weight", [](const EngineState& state) { return state.active == nullptr ? "" : state.active->weight; }},
    {"Engine", "Encoding", [](const EngineState& /*state*/) { return std::string("UTF-8"); }},
    {"Engine", "Version", [](const EngineState& /*state*/) { return engineVersion(); }},
    {"Host", "Copyright", [](const EngineState& state) { return state.session.hostCopyright; }},
    {"Host", "Name", [](const EngineState& state) { return state.session.hostName; }},
    {"Host", "Version", [](const EngineState& state) { return state.session.hostVersion; }},
    {"Locale", "C", [](const EngineState& /*state*/) { return cLocale(); }},
    {"Locale", "Engine", [](const EngineState& state) { return state.session.locale; }},
    {"Mode", "Drive", [](const EngineState& state) { return std::to_string(state.session.driveMode); }},
    {"Mode", "Run", [](const EngineState& state) { return std::to_string(state.session.mode); }},
    {"Mode", "Server", [](const EngineState& state) { return std::to_string(state.session.serverMode); }},
    {"Output", "Language", [](const EngineState& state) { return state.session.outputLanguage; }},
    {"Output", "Width", [](const EngineState& state) { return std::to_string(state.session.outputWidth); }},
};

bool isLanguage(const std::string& text) {
  const auto fits = [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
  };
  return !text.empty() && text.size() <= kLongestLanguage && std::all_of(text.begin(), text.end(), fits);
}

}  // namespace

std::optional<std::string> settingOf(const EngineState& state, std::string_view item, std::string_view subItem) {
  for (const Row& row : kRows) {
    if (sameName(row.item, item) && sameName(row.subItem, subItem)) return row.value(state);
  }
  return std::nullopt;
}

std::vector<Setting> allSettings(const EngineState& state) {
  std::vector<Setting> all;
  for (const Row& row : kRows) all.push_back({std::string(row.item), std::string(row.subItem), row.value(state)});
  return all;
}

ErrorCode changeOutputLanguage(EngineState* state, const std::string& language) {
  if (!isLanguage(language)) return ErrorCode::kLanguageNotValid;
  state->session.outputLanguage = language;
  return ErrorCode::kNone;
}

ErrorCode changeOutputWidth(EngineState* state, double width) {
  if (width != std::floor(width) || width < kNarrowest || width > kWidest) return ErrorCode::kOutputNumberOutOfRange;
  state->session.outputWidth = static_cast<int>(width);
  return ErrorCode::kNone;
}

std::string cLocale() {
  const char* locale = std::setlocale(LC_ALL, nullptr);
  return locale == nullptr ? "C" : locale;
}

}  // namespace kova::engine
