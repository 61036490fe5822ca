// The style sheet of HTML reports: light and dark after the reader's own choice, and plain on paper.
#ifndef KOVADX_ENGINE_REPORT_STYLE_H
#define KOVADX_ENGINE_REPORT_STYLE_H

namespace kova::engine {

// A static text.
const char* reportStyle();

}  // namespace kova::engine

#endif
