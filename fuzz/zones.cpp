#include "Fuzz.h"
#include "QelUtility/BxTimezones.h"

using namespace qel::fuzz;

QEL_FUZZ_TARGET(zones) {
    const int zone = in.take<std::int8_t>();
    const int other = in.take<std::int8_t>();
    const int hours = in.take<int>();
    const int minutes = in.take<int>();
    const std::string text = in.text();
    VStr utc;
    const bool known = zone >= 1 && zone <= 77;
    const int there = BxTZ_LocalToUTC(zone, text.c_str(), utc);
    FUZZ_CHECK(there == 0 || (!known && there == 2016));
    VStr local;
    const int back = BxTZ_UTCToLocal(zone, text.c_str(), local);
    FUZZ_CHECK(back == 0 || back == 2098 || (!known && back == 2016));
    BxTZ_LocalToUTCByOffset(hours, minutes, text.c_str(), utc);
    VStr moved(text.c_str());
    BxTZ_ConvertZone(moved, zone, other);
    VStr name;
    FUZZ_CHECK(BxTZ_GetZoneName(zone, name) == (known ? zone : 0));
    BxTZ_GetZoneID(text.c_str());
    CBxTimeZoneUtility current;
    current.Initialize();
    const std::string moment = current.LocalToUTC(text.c_str());
    FUZZ_CHECK(moment.size() <= text.size() + 1);
    current.UTCToLocal(moment.c_str());
}
