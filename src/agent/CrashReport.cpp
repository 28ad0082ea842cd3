// The last resort: an exception that reached the top of the start-up event is
// logged, written to the desktop, and ends the process.
#include "agent/App.h"

#include "files/GlobalMethods.h"
#include "runtime/BinaryStream.h"
#include "runtime/DebugLog.h"
#include "runtime/RuntimeException.h"
#include "runtime/SpecialFolder.h"
#include "runtime/Text.h"

namespace {

constexpr const char* kCrashLogName = "LarkfenHelperCrashLog.txt";
constexpr const char* kNoDesktop = "The desktop folder is nil.";

void WriteLine(BinaryStream& stream, const std::string& text) {
    stream.Write(text + std::string(EndOfLine));
}

}  // namespace

bool App::Event_UnhandledException(const RuntimeException& error) {
    const std::string stack = Join(error.Stack(), " ");
    System::DebugLog(error.Message());
    System::DebugLog(stack);
    // Without a home there is no desktop; that fails as using any nil object does.
    const auto desktop = SpecialFolder::Desktop();
    if (desktop == nullptr)
        throw NilObjectException(kNoDesktop);
    const auto stream = BinaryStream::Create(desktop->Child(kCrashLogName, true), true);
    WriteLine(*stream, error.Message());
    WriteLine(*stream, stack);
    stream->Close();
    GlobalMethods::ForceQuit();
}
