// Sets TZ for the life of the object and restores the previous value after.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

class ZoneGuard {
  public:
    explicit ZoneGuard(const char* zone) {
        if (const char* old = std::getenv("TZ"))
            previous_ = old;
        setenv("TZ", zone, 1);
        tzset();
    }
    ~ZoneGuard() {
        if (previous_) {
            setenv("TZ", previous_->c_str(), 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }
    ZoneGuard(const ZoneGuard&) = delete;
    ZoneGuard& operator=(const ZoneGuard&) = delete;

  private:
    std::optional<std::string> previous_;
};
