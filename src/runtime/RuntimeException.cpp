#include "runtime/RuntimeException.h"

#include <utility>

#include "platform/StackTrace.h"

RuntimeException::RuntimeException(std::string message, int64_t errorNumber)
    : message_(std::move(message)),
      errorNumber_(errorNumber),
      stack_(platform::CaptureStack(/*skipFrames=*/1)) {}
