// The file that a report is written to: there in full, or not at all.
#ifndef KOVADX_PROGRAMS_KOVADX_REPORT_FILE_H
#define KOVADX_PROGRAMS_KOVADX_REPORT_FILE_H

#include <string>

namespace kova::program {

// A plain value; its functions may be called on any thread.
class ReportFile {
 public:
  explicit ReportFile(std::string path);

  // True when a file can be written there, which takes no place but an empty file's or an older report's. *problem
  // tells otherwise why not. Leaves nothing behind.
  bool check(std::string* problem) const;

  // Writes a new file beside the old one and puts it in its place. False, with the reason, when that failed; the old
  // file is unharmed then.
  bool write(const std::string& bytes, std::string* problem) const;

 private:
  std::string target_;     // Behind links.
  std::string temporary_;  // In the same folder, so that putting it in place is one step.
};

}  // namespace kova::program

#endif
