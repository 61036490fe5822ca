#include "engine/session.h"

namespace kova::engine {

Session::Session() : hostVersion(engineVersion()) {}

std::string engineVersion() { return KOVADX_VERSION; }

}  // namespace kova::engine
