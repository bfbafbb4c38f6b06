// The look-up of a field identifier.
#include "Comparison.h"
#include "QelUtility/BxFieldIDs.h"

namespace qel::bench {

void addCatalogue() {
    constexpr unsigned long kIds[] = {0x11000000, 0x31000001, 0x34000007, 0x33000002};
    Comparison({"field look-up", 4, "three rows read, 64 bytes written"}, [kIds] {
        FieldData data{};
        for (const unsigned long id : kIds)
            if (BxUtil_GetFieldDataByID(id, &data) != 0 || data.fieldId != id) return false;
        return true;
    }).ours([kIds, i = 0U]() mutable {
        FieldData data;
        benchmark::DoNotOptimize(BxUtil_GetFieldDataByID(kIds[i++ % 4], &data));
        benchmark::DoNotOptimize(data);
    });
}

}  // namespace qel::bench
