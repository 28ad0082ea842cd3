#include "runtime/TimeZone.h"

#include <date/tz.h>

#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "runtime/RuntimeException.h"
#include "runtime/Text.h"

namespace {

using std::chrono::sys_seconds;

constexpr const char* kUnknownZone = "Unknown time zone: ";
constexpr const char* kOffsetOutOfRange = "Time zone offset out of range";
constexpr int64_t kLargestOffset = int64_t{18} * 3600;

struct CommonAbbreviation {
    std::string_view name;
    int64_t offset;
};

// Abbreviations read where the current zone does not use them itself. An
// abbreviation several regions share takes its most widespread reading.
constexpr std::array<CommonAbbreviation, 34> kCommonAbbreviations{{
    {"UTC", 0},      {"GMT", 0},      {"UT", 0},       {"Z", 0},        {"WET", 0},
    {"WEST", 3600},  {"BST", 3600},   {"CET", 3600},   {"CEST", 7200},  {"MET", 3600},
    {"MEST", 7200},  {"EET", 7200},   {"EEST", 10800}, {"MSK", 10800},  {"IST", 19800},
    {"PKT", 18000},  {"ICT", 25200},  {"HKT", 28800},  {"SGT", 28800},  {"JST", 32400},
    {"KST", 32400},  {"AWST", 28800}, {"ACST", 34200}, {"AEST", 36000}, {"AEDT", 39600},
    {"NZST", 43200}, {"NZDT", 46800}, {"EST", -18000}, {"EDT", -14400}, {"CST", -21600},
    {"CDT", -18000}, {"MST", -25200}, {"PST", -28800}, {"PDT", -25200},
}};

sys_seconds NowSeconds() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}

bool AllDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// "+04", "-0330", "+05:45", "+5": the offset in seconds, or nothing.
std::optional<int64_t> NumericOffset(std::string_view name) {
    if (name.size() < 2 || (name[0] != '+' && name[0] != '-'))
        return std::nullopt;
    std::string_view rest = name.substr(1);
    std::string_view hours = rest;
    std::string_view minutes;
    if (const size_t colon = rest.find(':'); colon != std::string_view::npos) {
        hours = rest.substr(0, colon);
        minutes = rest.substr(colon + 1);
        if (minutes.size() != 2)
            return std::nullopt;
    } else if (rest.size() == 4) {
        hours = rest.substr(0, 2);
        minutes = rest.substr(2);
    }
    if (!AllDigits(hours) || hours.size() > 2 || (!minutes.empty() && !AllDigits(minutes))) {
        return std::nullopt;
    }
    const auto h = static_cast<int64_t>(Val(hours));
    const auto m = minutes.empty() ? 0 : static_cast<int64_t>(Val(minutes));
    if (h > 24 || m > 59)
        return std::nullopt;
    const int64_t offset = h * 3600 + m * 60;
    return name[0] == '-' ? -offset : offset;
}

// The offset the zone last used under this abbreviation, looking back from a
// year ahead to 1900; nothing when it never used it.
std::optional<int64_t> OffsetOfAbbreviation(const date::time_zone& zone, std::string_view name) {
    const sys_seconds stop = date::sys_days{date::year{1900} / 1 / 1};
    sys_seconds at = NowSeconds() + std::chrono::days{366};
    for (int step = 0; step < 2000 && at > stop; ++step) {
        const date::sys_info info = zone.get_info(at);
        if (info.abbrev == name)
            return info.offset.count();
        at = info.begin - std::chrono::seconds{1};
    }
    return std::nullopt;
}

const date::time_zone* CurrentRegion() {
    const char* tz = std::getenv("TZ");
    if (tz != nullptr && *tz != '\0') {
        std::string_view name(tz);
        if (name.front() == ':')
            name.remove_prefix(1);
        try {
            return date::locate_zone(name);
        } catch (const std::exception&) {
            // A TZ that names no region (a POSIX rule string) leaves the system's zone.
        }
    }
    try {
        return date::current_zone();
    } catch (const std::exception&) {
        return date::locate_zone("Etc/UTC");
    }
}

std::string FixedAbbreviation(int64_t offset) {
    if (offset == 0)
        return "GMT";
    const int64_t magnitude = offset < 0 ? -offset : offset;
    std::string text(offset < 0 ? "-" : "+");
    const int64_t hours = magnitude / 3600;
    const int64_t minutes = magnitude % 3600 / 60;
    text += Format(static_cast<double>(hours), "00");
    if (minutes != 0)
        text += Format(static_cast<double>(minutes), "00");
    return text;
}

}  // namespace

TimeZone::TimeZone(int64_t secondsFromGMT)
    : fixedOffset_(secondsFromGMT), name_(FixedAbbreviation(secondsFromGMT)) {
    if (secondsFromGMT > kLargestOffset || secondsFromGMT < -kLargestOffset) {
        throw InvalidArgumentException(kOffsetOutOfRange);
    }
}

TimeZone::TimeZone(const date::time_zone* region, std::string name)
    : region_(region), name_(std::move(name)) {}

TimeZone::TimeZone(const std::string& name) : name_(name) {
    if (name.empty()) {
        region_ = CurrentRegion();
        name_ = std::string(region_->name());
        return;
    }
    if (const auto offset = NumericOffset(name)) {
        fixedOffset_ = *offset;
        return;
    }
    if (const auto offset = OffsetOfAbbreviation(*CurrentRegion(), name)) {
        fixedOffset_ = *offset;
        return;
    }
    for (const CommonAbbreviation& common : kCommonAbbreviations) {
        if (common.name == name) {
            fixedOffset_ = common.offset;
            return;
        }
    }
    try {
        region_ = date::locate_zone(name);
    } catch (const std::exception&) {
        throw InvalidArgumentException(kUnknownZone + name);
    }
}

std::shared_ptr<TimeZone> TimeZone::Current() {
    return std::make_shared<TimeZone>(std::string());
}

int64_t TimeZone::SecondsFromGMT() const {
    return SecondsFromGMTAt(at_.value_or(NowSeconds()));
}

std::string TimeZone::Abbreviation() const {
    return AbbreviationAt(at_.value_or(NowSeconds()));
}

int64_t TimeZone::SecondsFromGMTAt(sys_seconds instant) const {
    return region_ != nullptr ? region_->get_info(instant).offset.count() : fixedOffset_;
}

std::string TimeZone::AbbreviationAt(sys_seconds instant) const {
    return region_ != nullptr ? region_->get_info(instant).abbrev : name_;
}

sys_seconds TimeZone::ToInstant(sys_seconds wallClock) const {
    if (region_ == nullptr)
        return wallClock - std::chrono::seconds{fixedOffset_};
    const date::local_seconds local{wallClock.time_since_epoch()};
    // For a reading the clock passed twice `first` is the earlier offset; for one it
    // jumped over, the offset before the jump.
    return wallClock - region_->get_info(local).first.offset;
}

std::shared_ptr<TimeZone> TimeZone::At(sys_seconds instant) const {
    auto zone = std::make_shared<TimeZone>(*this);
    zone->at_ = instant;
    return zone;
}
