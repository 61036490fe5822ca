// The settings that a program can ask for by two words, such as "Output" and "Language".
#ifndef KOVADX_ENGINE_SETTINGS_H
#define KOVADX_ENGINE_SETTINGS_H

#include <optional>
#include <string>
#include <string_view>

#include "engine/engine_state.h"

namespace kova::engine {

// The setting as text; nothing when there is none of these words. Upper and lower case are the same.
std::optional<std::string> settingOf(const EngineState& state, std::string_view item, std::string_view subItem);

// The locale of the C library that this process uses.
std::string cLocale();

}  // namespace kova::engine

#endif
