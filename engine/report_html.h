// Output as one HTML page that needs nothing else: no script, no other file.
#ifndef KOVADX_ENGINE_REPORT_HTML_H
#define KOVADX_ENGINE_REPORT_HTML_H

#include <deque>
#include <string>

#include "engine/output_log.h"

namespace kova::engine {

// The page in UTF-8.
std::string htmlReport(const std::deque<OutputSection>& sections);

}  // namespace kova::engine

#endif
