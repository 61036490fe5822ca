// The settings that a program can ask for by two words, such as "Output" and "Language".
#ifndef KOVADX_ENGINE_SETTINGS_H
#define KOVADX_ENGINE_SETTINGS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/engine_state.h"
#include "engine/error_codes.h"

namespace kova::engine {

// The setting as text; nothing when there is none of these words. Upper and lower case are the same.
std::optional<std::string> settingOf(const EngineState& state, std::string_view item, std::string_view subItem);

// All of them with their values, in the order of the words.
struct Setting {
  std::string item;
  std::string subItem;
  std::string value;
};
std::vector<Setting> allSettings(const EngineState& state);

// Changes one of them, or answers with the code of what is wrong: kLanguageNotValid; kOutputNumberOutOfRange for a
// width that no line of output can have.
ErrorCode changeOutputLanguage(EngineState* state, const std::string& language);
ErrorCode changeOutputWidth(EngineState* state, double width);

// The locale of the C library that this process uses.
std::string cLocale();

}  // namespace kova::engine

#endif
