// Texts for the error numbers that the seam names.
#include "platform/os/error.h"

#include <algorithm>
#include <iterator>

namespace kova::os {

namespace {

struct Text {
  Error error;
  const char* text;
};

constexpr Text kTexts[] = {
    {kSuccess, "fake: success"},
    {kFileNotFound, "fake: not found"},
    {kAccessDenied, "fake: access denied"},
    {kInvalidHandle, "fake: invalid handle"},
    {kNotEnoughMemory, "fake: not enough memory"},
    {kInvalidData, "fake: invalid data"},
    {kGeneralFailure, "fake: general failure"},
    {kNotSupported, "fake: not supported"},
    {kBrokenPipe, "fake: broken pipe"},
    {kSemTimeout, "fake: time is up"},
    {kFileNameTooLong, "fake: name too long"},
    {kPipeBusy, "fake: all pipe ends are taken"},
    {kNoData, "fake: the pipe is being closed"},
    {kMoreData, "fake: more data"},
    {kWaitTimeout, "fake: wait timed out"},
    {kPipeConnected, "fake: peer is there already"},
    {kPipeListening, "fake: no peer yet"},
    {kOperationAborted, "fake: cancelled"},
};

}  // namespace

std::string ErrorText(Error error) {
  const auto* const found =
      std::find_if(std::begin(kTexts), std::end(kTexts), [error](const Text& entry) { return entry.error == error; });
  return found == std::end(kTexts) ? std::string() : found->text;
}

}  // namespace kova::os
