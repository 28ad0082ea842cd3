// The one family of failures in the agent. Every error the logic raises or lets
// pass is a RuntimeException or one of its subclasses; the agent's last-resort
// handler reports Message and Stack of whatever reaches it.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

class RuntimeException : public std::exception {
  public:
    // Captures the call stack of the place that makes the exception.
    explicit RuntimeException(std::string message = {}, int64_t errorNumber = 0);

    const std::string& Message() const { return message_; }
    int64_t ErrorNumber() const { return errorNumber_; }
    // Demangled function names, innermost first; empty when none could be read.
    const std::vector<std::string>& Stack() const { return stack_; }
    // The run-time class name, as the crash report shows it.
    virtual const char* ClassName() const { return "RuntimeException"; }

    const char* what() const noexcept override { return message_.c_str(); }

  private:
    std::string message_;
    int64_t errorNumber_;
    std::vector<std::string> stack_;
};

// NOLINTBEGIN(bugprone-macro-parentheses): the argument is a class name
#define LARKFEN_DECLARE_EXCEPTION(Name)                          \
    class Name : public RuntimeException {                       \
      public:                                                    \
        using RuntimeException::RuntimeException;                \
        const char* ClassName() const override { return #Name; } \
    }
// NOLINTEND(bugprone-macro-parentheses)

// Using a nil object.
LARKFEN_DECLARE_EXCEPTION(NilObjectException);
// An argument out of range; value types use a fixed English message and number 0.
LARKFEN_DECLARE_EXCEPTION(InvalidArgumentException);
// A conversion that cannot be done.
LARKFEN_DECLARE_EXCEPTION(UnsupportedOperationException);
// A failed file operation; ErrorNumber is the platform's code (errno on Linux).
LARKFEN_DECLARE_EXCEPTION(IOException);
// Dictionary::Value of a key that is not there.
LARKFEN_DECLARE_EXCEPTION(KeyNotFoundException);
// A typed view of an array whose elements do not fit, or a failed cast.
LARKFEN_DECLARE_EXCEPTION(TypeMismatchException);
// Ends the current event quietly: never reported.
LARKFEN_DECLARE_EXCEPTION(EndException);
// Ends a thread quietly: never reported.
LARKFEN_DECLARE_EXCEPTION(ThreadEndException);

#undef LARKFEN_DECLARE_EXCEPTION
