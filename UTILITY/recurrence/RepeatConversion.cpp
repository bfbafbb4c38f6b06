// The copying between the host's repeat object and the repeat record.
#include "QelUtility/RepeatConversion.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>

namespace {

using Getter = long (QELUTILITY_STDCALL IRepeat::*)(short*);
using Setter = long (QELUTILITY_STDCALL IRepeat::*)(int);

// A field of the record by its offset: the record is packed, so no pointer to it need be aligned.
struct Field {
    std::size_t offset;

    void store(_repeat& record, short value) const {
        std::memcpy(reinterpret_cast<char*>(&record) + offset, &value, sizeof(value));
    }
    [[nodiscard]] short load(const _repeat& record) const {
        short value = 0;
        std::memcpy(&value, reinterpret_cast<const char*>(&record) + offset, sizeof(value));
        return value;
    }
};

constexpr Field kDayOfMonth{offsetof(_repeat, dayOfMonth)};
constexpr Field kMonth{offsetof(_repeat, month)};
constexpr Field kDayOfWeek{offsetof(_repeat, dayOfWeek)};
constexpr Field kWeekOfMonth{offsetof(_repeat, weekOfMonth)};

struct Reading {
    Getter get;
    Field field;
};

struct Writing {
    Setter set;
    Field field;
};

// Statuses are 32 bits wide whatever the width of a long.
bool isFailure(long status) {
    return static_cast<std::int32_t>(status) < 0;
}

long read(IRepeat* source, _repeat* target, std::initializer_list<Reading> readings) {
    if (source == nullptr || target == nullptr) return QEL_FAILED;
    long status = QEL_OK;
    for (const Reading& reading : readings) {
        short value = 0;
        status = (source->*reading.get)(&value);
        if (isFailure(status)) break;
        reading.field.store(*target, value);
    }
    return status;
}

long write(const _repeat* source, IRepeat* target, std::initializer_list<Writing> writings) {
    if (source == nullptr || target == nullptr) return QEL_FAILED;
    long status = QEL_OK;
    for (const Writing& writing : writings) {
        status = (target->*writing.set)(writing.field.load(*source));
        if (isFailure(status)) break;
    }
    return status;
}

}  // namespace

long QELUTILITY_STDCALL
CRepeatConversion::ConstructWeekly_ZQTR_REPEAT_From_IRepeat(IRepeat* source, _repeat* target) {
    return read(source, target, {{&IRepeat::GetDayOfWeek, kDayOfWeek}});
}

long QELUTILITY_STDCALL
CRepeatConversion::ConstructWeeklyDays_ZQTR_REPEAT_From_IRepeat(IRepeat* source, _repeat* target) {
    if (source == nullptr || target == nullptr) return QEL_FAILED;
    short* days = nullptr;
    const long status = source->GetDaysOfWeek(&days);
    if (isFailure(status)) return status;
    if (days == nullptr) return QEL_FAILED;
    for (int i = 0; i < 7; ++i) target->days[i] = days[i] == 1 ? 1 : 0;
    return status;
}

long QELUTILITY_STDCALL
CRepeatConversion::ConstructMonthly_ZQTR_REPEAT_From_IRepeat(IRepeat* source, _repeat* target) {
    return read(source, target, {{&IRepeat::GetDayOfMonth, kDayOfMonth}});
}

long QELUTILITY_STDCALL CRepeatConversion::ConstructMonthlyByPos_ZQTR_REPEAT_From_IRepeat(
    IRepeat* source, _repeat* target) {
    return read(source, target,
                {{&IRepeat::GetDayOfWeek, kDayOfWeek}, {&IRepeat::GetInstance, kWeekOfMonth}});
}

long QELUTILITY_STDCALL
CRepeatConversion::ConstructYearly_ZQTR_REPEAT_From_IRepeat(IRepeat* source, _repeat* target) {
    return read(source, target,
                {{&IRepeat::GetMonthOfYear, kMonth}, {&IRepeat::GetDayOfMonth, kDayOfMonth}});
}

long QELUTILITY_STDCALL
CRepeatConversion::ConstructYearlyByPos_ZQTR_REPEAT_From_IRepeat(IRepeat* source, _repeat* target) {
    return read(source, target,
                {{&IRepeat::GetDayOfWeek, kDayOfWeek},
                 {&IRepeat::GetMonthOfYear, kMonth},
                 {&IRepeat::GetInstance, kWeekOfMonth}});
}

long QELUTILITY_STDCALL
CRepeatConversion::ConstructWeekly_IRepeat_From_ZQTR_REPEAT(_repeat* source, IRepeat* target) {
    return write(source, target, {{&IRepeat::SetDayOfWeek, kDayOfWeek}});
}

long QELUTILITY_STDCALL
CRepeatConversion::ConstructWeeklyDays_IRepeat_From_ZQTR_REPEAT(_repeat* source, IRepeat* target) {
    if (source == nullptr || target == nullptr) return QEL_FAILED;
    int days[7];
    for (int i = 0; i < 7; ++i) days[i] = source->days[i] != 0 ? 1 : 0;
    return target->SetDaysOfWeek(days);
}

long QELUTILITY_STDCALL
CRepeatConversion::ConstructMonthly_IRepeat_From_ZQTR_REPEAT(_repeat* source, IRepeat* target) {
    return write(source, target, {{&IRepeat::SetDayOfMonth, kDayOfMonth}});
}

long QELUTILITY_STDCALL CRepeatConversion::ConstructMonthlyByPos_IRepeat_From_ZQTR_REPEAT(
    _repeat* source, IRepeat* target) {
    return write(source, target,
                 {{&IRepeat::SetDayOfWeek, kDayOfWeek}, {&IRepeat::SetInstance, kWeekOfMonth}});
}

long QELUTILITY_STDCALL
CRepeatConversion::ConstructYearly_IRepeat_From_ZQTR_REPEAT(_repeat* source, IRepeat* target) {
    return write(source, target,
                 {{&IRepeat::SetMonthOfYear, kMonth}, {&IRepeat::SetDayOfMonth, kDayOfMonth}});
}

long QELUTILITY_STDCALL
CRepeatConversion::ConstructYearlyByPos_IRepeat_From_ZQTR_REPEAT(_repeat* source, IRepeat* target) {
    return write(source, target,
                 {{&IRepeat::SetDayOfWeek, kDayOfWeek},
                  {&IRepeat::SetMonthOfYear, kMonth},
                  {&IRepeat::SetInstance, kWeekOfMonth}});
}
