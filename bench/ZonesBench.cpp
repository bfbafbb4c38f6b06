// UTC texts to local ones: by the table of zones, by the rules of the computer's zone, and by what
// the system and ICU offer.
#include <unicode/timezone.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>

#include "Comparison.h"
#include "QelUtility/BxTimezones.h"
#include "QelUtility/VStr.h"

namespace qel::bench {

namespace {

constexpr char kUtc[] = "20050615T123000Z";
constexpr char kLocal[] = "20050615T083000";
constexpr int kEastern = 11;
constexpr char kEasternName[] = "America/New_York";
constexpr std::time_t kMoment = 1118838600;  // kUtc

int localHourBySystem(std::time_t moment) {
    std::tm local{};
    localtime_r(&moment, &local);
    return local.tm_hour;
}

int offsetByIcu(const icu::TimeZone& zone, std::time_t moment) {
    int32_t raw = 0;
    int32_t daylight = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone.getOffset(static_cast<double>(moment) * 1000, 0, raw, daylight, status);
    return (raw + daylight) / 1000;
}

// The converter of a computer in kEasternName.
CBxTimeZoneUtility& ownZone() {
    static CBxTimeZoneUtility zone = [] {
        ::setenv("TZ", kEasternName, 1);
        tzset();
        CBxTimeZoneUtility made;
        made.Initialize();
        return made;
    }();
    return zone;
}

}  // namespace

void addZones() {
    static const std::shared_ptr<icu::TimeZone> icuZone(
        icu::TimeZone::createTimeZone(kEasternName));
    const auto same = [] {
        VStr text;
        ownZone();
        return BxTZ_UTCToLocal(kEastern, kUtc, text) == 0 && text.Compare(kLocal) == 0 &&
               std::strcmp(ownZone().UTCToLocal(kUtc), kLocal) == 0 &&
               localHourBySystem(kMoment) == 8 && offsetByIcu(*icuZone, kMoment) == -4 * 3600;
    };
    const auto system = [] { benchmark::DoNotOptimize(localHourBySystem(kMoment)); };
    const auto byIcu = [] { benchmark::DoNotOptimize(offsetByIcu(*icuZone, kMoment)); };
    Comparison({"UTC text to local text, zone table", 40, "16 bytes read, 16 written", 0,
                "localtime_r, no text", 51},
               same)
        .ours([out = VStr()]() mutable {
            benchmark::DoNotOptimize(BxTZ_UTCToLocal(kEastern, kUtc, out));
        })
        .peer("localtime_r, no text", system)
        .peer("ICU, no text", byIcu);
    Comparison({"local text to UTC text, zone table", 40, "15 bytes read, 17 written"}, same)
        .ours([out = VStr()]() mutable {
            benchmark::DoNotOptimize(BxTZ_LocalToUTC(kEastern, kLocal, out));
        });
    Comparison({"UTC text to local text, own zone", 40, "16 bytes read, 16 written", 0,
                "localtime_r, no text", 51},
               same)
        .ours([] { benchmark::DoNotOptimize(ownZone().UTCToLocal(kUtc)); })
        .peer("localtime_r, no text", system)
        .peer("ICU, no text", byIcu);
}

}  // namespace qel::bench
