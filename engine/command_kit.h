// Text submitted to an engine's state as a client does it, and what it puts out. For tests alone.
#ifndef KOVADX_ENGINE_COMMAND_KIT_H
#define KOVADX_ENGINE_COMMAND_KIT_H

#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "engine/report_text.h"
#include "engine/request_kit.h"

namespace kova::engine {

// The data set "main" of the kit, with values: score 1, 2, -5 (missing), none, 4; town "Bremen", "NA" (missing),
// "Bonn", "", "Z\u00FCrich"; one 1 to 5; two 10, 0, 0, 20 and none. Neither weight nor split.
class CommandTest : public RequestTest {
 protected:
  CommandTest() {
    const double scores[] = {1, 2, -5, kSystemMissing, 4};
    const char* const towns[] = {"Bremen", "NA", "Bonn", "", "Z\u00FCrich"};
    const double twos[] = {10, 0, 0, 20, kSystemMissing};
    for (std::size_t i = 0; i < 5; ++i) {
      main().cases.setNumber(i, 0, scores[i]);
      main().cases.setText(i, 1, towns[i]);
      main().cases.setNumber(i, 2, static_cast<double>(i + 1));
      main().cases.setNumber(i, 3, twos[i]);
    }
    main().weight.clear();
    main().split.clear();
  }

  int submit(const std::string& text) { return tell(Command::Submit, text); }

  // Submits text that must succeed.
  void run(const std::string& text) { EXPECT_EQ(submit(text), 0) << text << "\n" << last(); }

  // Everything that was put out last, as text.
  std::string last() const {
    const auto& sections = state_.output.log.sections();
    return sections.empty() ? "" : sectionText(sections.back(), 120);
  }

  // Submits text that must fail with the code; the problem's line holds the words.
  void refuse(ErrorCode code, const std::string& text, const std::string& words) {
    const DataSet before = *state_.active;
    EXPECT_STREQ(errorName(submit(text)), errorName(static_cast<int>(code))) << text << "\n" << last();
    EXPECT_THAT(last(), testing::HasSubstr(words)) << text;
    EXPECT_TRUE(before == *state_.active) << text << " changed something";
  }

  // The values that a numeric variable has; missing ones as not-a-number.
  std::vector<double> numbers(const std::string& name) {
    const std::size_t position = main().variables.find(name).value();
    std::vector<double> values;
    for (std::size_t i = 0; i < main().cases.caseCount(); ++i) {
      const double value = main().cases.number(i, position);
      values.push_back(value == kSystemMissing ? std::nan("") : value);
    }
    return values;
  }

  Texts texts(const std::string& name) {
    const std::size_t position = main().variables.find(name).value();
    Texts values;
    for (std::size_t i = 0; i < main().cases.caseCount(); ++i) {
      values.emplace_back(withoutEndBlanks(main().cases.text(i, position)));
    }
    return values;
  }
};

}  // namespace kova::engine

#endif
