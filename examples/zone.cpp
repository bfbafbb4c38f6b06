// Moves times between a zone and UTC by the built-in table.
#include <QelUtility/QelUtility.h>
#include <stdio.h>

int main() {
    const int zone = BxTZ_GetZoneID("Eastern Time (US and Canada)");
    VStr utc;
    VStr local;
    for (const char* text : {"20050401T090000", "20050404T090000"}) {  // daylight saving between
        if (BxTZ_LocalToUTC(zone, text, utc) != 0) return 1;
        if (BxTZ_UTCToLocal(zone, utc, local) != 0) return 1;
        printf("%s is %s, and back %s\n", text, (const char*)utc, (const char*)local);
    }
    VStr meeting("20050615T083000");
    const int rome = BxTZ_GetZoneID("Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna");
    if (BxTZ_ConvertZone(meeting, zone, rome) != 0) return 1;
    printf("8:30 in New York is %s in Rome\n", (const char*)meeting);
    return 0;
}

// Prints:
// 20050401T090000 is 20050401T140000Z, and back 20050401T090000
// 20050404T090000 is 20050404T130000Z, and back 20050404T090000
// 8:30 in New York is 20050615T143000 in Rome
