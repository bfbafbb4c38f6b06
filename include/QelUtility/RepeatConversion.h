// Copies the pattern of a series between the host application's repeat object and the packed repeat
// record (RptNext.h), one function for each shape and direction. Only the pattern's own fields are
// copied: type, start and end date, interval and exclusions are the caller's to set. No state is
// kept; any thread may call, with objects of its own.
#ifndef QELUTILITY_REPEATCONVERSION_H
#define QELUTILITY_REPEATCONVERSION_H

#include "QelUtility/QelTypes.h"
#include "QelUtility/RptNext.h"

// The host's repeat object, as far as this library calls it. The caller implements and owns it; the
// order of the operations is their order in the table of virtual functions, so a client may be
// compiled elsewhere. A status below 0, taken as 32 bits, is a failure. Weekdays are 1 (Sunday) to
// 7, months 1 to 12, an instance is the week of the month.
class IRepeat {
  public:
    virtual long QELUTILITY_STDCALL GetDayOfMonth(short* day) = 0;
    virtual long QELUTILITY_STDCALL SetDayOfMonth(int day) = 0;
    virtual long QELUTILITY_STDCALL GetMonthOfYear(short* month) = 0;
    virtual long QELUTILITY_STDCALL SetMonthOfYear(int month) = 0;
    virtual long QELUTILITY_STDCALL GetDayOfWeek(short* weekday) = 0;
    virtual long QELUTILITY_STDCALL SetDayOfWeek(int weekday) = 0;
    virtual long QELUTILITY_STDCALL GetInstance(short* week) = 0;
    virtual long QELUTILITY_STDCALL SetInstance(int week) = 0;
    // `days`: 7 flags of 32 bits, Sunday first, valid during the call.
    virtual long QELUTILITY_STDCALL SetDaysOfWeek(int* days) = 0;
    // *days becomes a pointer to 7 flags of 16 bits, Sunday first, that the object keeps. Setting
    // takes 32-bit flags and getting gives 16-bit ones: that is the host's contract.
    virtual long QELUTILITY_STDCALL GetDaysOfWeek(short** days) = 0;

  protected:
    // Not virtual: a destructor in the table would move the operations.
    ~IRepeat() = default;
};

// Every function stops at the first operation that fails and returns its status, and what was
// copied before stays; otherwise it returns the status of the last operation. A null argument gives
// -1.
class QELUTILITY_API CRepeatConversion {
  public:
    static long QELUTILITY_STDCALL ConstructWeekly_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                            _repeat* target);
    // A day is selected when the object's flag is exactly 1.
    static long QELUTILITY_STDCALL ConstructWeeklyDays_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                                _repeat* target);
    static long QELUTILITY_STDCALL ConstructMonthly_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                             _repeat* target);
    static long QELUTILITY_STDCALL ConstructMonthlyByPos_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                                  _repeat* target);
    static long QELUTILITY_STDCALL ConstructYearly_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                            _repeat* target);
    static long QELUTILITY_STDCALL ConstructYearlyByPos_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                                 _repeat* target);

    static long QELUTILITY_STDCALL ConstructWeekly_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                            IRepeat* target);
    // Every flag that is not 0 is passed as 1.
    static long QELUTILITY_STDCALL ConstructWeeklyDays_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                                IRepeat* target);
    static long QELUTILITY_STDCALL ConstructMonthly_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                             IRepeat* target);
    static long QELUTILITY_STDCALL ConstructMonthlyByPos_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                                  IRepeat* target);
    static long QELUTILITY_STDCALL ConstructYearly_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                            IRepeat* target);
    static long QELUTILITY_STDCALL ConstructYearlyByPos_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                                 IRepeat* target);
};

#endif
