// The seam's language: Windows error numbers, 0 for success, on every platform.
#ifndef KOVADX_PLATFORM_OS_ERROR_H
#define KOVADX_PLATFORM_OS_ERROR_H

#include <cstdint>
#include <string>

namespace kova::os {

using Error = std::uint32_t;

// The numbers that the portable code itself compares with; every other number passes through unread.
constexpr Error kSuccess = 0;
constexpr Error kFileNotFound = 2;
constexpr Error kAccessDenied = 5;
constexpr Error kInvalidHandle = 6;
constexpr Error kNotEnoughMemory = 8;
constexpr Error kInvalidData = 13;
constexpr Error kGeneralFailure = 31;
constexpr Error kNotSupported = 50;
constexpr Error kBrokenPipe = 109;
constexpr Error kDiskFull = 112;
constexpr Error kSemTimeout = 121;
constexpr Error kFileNameTooLong = 206;
constexpr Error kPipeBusy = 231;
constexpr Error kNoData = 232;            // Write to a pipe whose reader has gone; read of an empty no-wait pipe.
constexpr Error kPipeNotConnected = 233;  // Read of a server end after it disconnected its client.
constexpr Error kMoreData = 234;
constexpr Error kWaitTimeout = 258;
constexpr Error kPipeConnected = 535;
constexpr Error kPipeListening = 536;
constexpr Error kOperationAborted = 995;

// The platform's own text for an error number, without a line break at its end; empty when it has none.
std::string ErrorText(Error error);

}  // namespace kova::os

#endif
