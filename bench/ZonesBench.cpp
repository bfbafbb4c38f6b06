// UTC texts to local ones: by the table of zones, by the rules of the computer's zone, and by what
// the system and ICU offer.
#ifdef QEL_BENCH_ALL_PEERS
#include <unicode/timezone.h>
#endif

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

#ifdef QEL_BENCH_ALL_PEERS
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
#endif

// The converter of a computer in eastern America, which elsewhere must be the system's zone.
CBxTimeZoneUtility& ownZone() {
    static CBxTimeZoneUtility zone = [] {
#ifdef QEL_BENCH_ALL_PEERS
        ::setenv("TZ", kEasternName, 1);
        tzset();
#endif
        CBxTimeZoneUtility made;
        made.Initialize();
        return made;
    }();
    return zone;
}

#ifdef QEL_BENCH_ALL_PEERS
const icu::TimeZone& icuZone() {
    static const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(kEasternName));
    return *zone;
}

bool peersAgree() {
    return localHourBySystem(kMoment) == 8 && offsetByIcu(icuZone(), kMoment) == -4 * 3600;
}

void addPeers(Comparison& row) {
    row.peer(
           "localtime_r, no text", [] { benchmark::DoNotOptimize(localHourBySystem(kMoment)); })
        .peer(
            "ICU, no text", [] { benchmark::DoNotOptimize(offsetByIcu(icuZone(), kMoment)); });
}
#else
bool peersAgree() {
    return true;
}

void addPeers(Comparison& /*row*/) {}
#endif

}  // namespace

void addZones() {
    const auto same = [] {
        VStr text;
        ownZone();
        return BxTZ_UTCToLocal(kEastern, kUtc, text) == 0 && text.Compare(kLocal) == 0 &&
               std::strcmp(ownZone().UTCToLocal(kUtc), kLocal) == 0 && peersAgree();
    };
    Comparison byTable({"UTC text to local text, zone table", 40, "16 bytes read, 16 written", 0,
                        "localtime_r, no text", 51},
                       same);
    byTable.ours([out = VStr()]() mutable {
        benchmark::DoNotOptimize(BxTZ_UTCToLocal(kEastern, kUtc, out));
    });
    addPeers(byTable);
    Comparison({"local text to UTC text, zone table", 40, "15 bytes read, 17 written"}, same)
        .ours([out = VStr()]() mutable {
            benchmark::DoNotOptimize(BxTZ_LocalToUTC(kEastern, kLocal, out));
        });
    Comparison byOwn({"UTC text to local text, own zone", 40, "16 bytes read, 16 written", 0,
                      "localtime_r, no text", 51},
                     same);
    byOwn.ours([] { benchmark::DoNotOptimize(ownZone().UTCToLocal(kUtc)); });
    addPeers(byOwn);
}

}  // namespace qel::bench
