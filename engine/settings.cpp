#include "engine/settings.h"

#include <clocale>

#include "engine/text_rules.h"

namespace kova::engine {
namespace {

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

}  // namespace

std::optional<std::string> settingOf(const EngineState& state, std::string_view item, std::string_view subItem) {
  for (const Row& row : kRows) {
    if (sameName(row.item, item) && sameName(row.subItem, subItem)) return row.value(state);
  }
  return std::nullopt;
}

std::string cLocale() {
  const char* locale = std::setlocale(LC_ALL, nullptr);
  return locale == nullptr ? "C" : locale;
}

}  // namespace kova::engine
