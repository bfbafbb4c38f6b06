/// @file
/// Copies the pattern of a series between the host application's repeat object and the packed
/// repeat record (RptNext.h), one function for each shape and direction. Only the pattern's own
/// fields are copied: type, start and end date, interval and exclusions are the caller's to set. No
/// state is kept; any thread may call, with objects of its own.
#ifndef QELUTILITY_REPEATCONVERSION_H
#define QELUTILITY_REPEATCONVERSION_H

#include "QelUtility/QelTypes.h"
#include "QelUtility/RptNext.h"

/// The host's repeat object, as far as this library calls it. The caller implements and owns it;
/// the order of the operations is their order in the table of virtual functions, so a client may be
/// compiled elsewhere. A status below 0, taken as 32 bits, is a failure. Weekdays are 1 (Sunday) to
/// 7, months 1 to 12, an instance is the week of the month.
class IRepeat {
  public:
    /// `*day` becomes the day of the month, 1 to 31.
    virtual long QELUTILITY_STDCALL GetDayOfMonth(short* day) = 0;
    /// As GetDayOfMonth gives it.
    virtual long QELUTILITY_STDCALL SetDayOfMonth(int day) = 0;
    /// `*month` becomes the month, 1 to 12.
    virtual long QELUTILITY_STDCALL GetMonthOfYear(short* month) = 0;
    /// As GetMonthOfYear gives it.
    virtual long QELUTILITY_STDCALL SetMonthOfYear(int month) = 0;
    /// `*weekday` becomes the weekday, 1 (Sunday) to 7.
    virtual long QELUTILITY_STDCALL GetDayOfWeek(short* weekday) = 0;
    /// As GetDayOfWeek gives it.
    virtual long QELUTILITY_STDCALL SetDayOfWeek(int weekday) = 0;
    /// `*week` becomes the week of the month, 1 to 5, 5 = last.
    virtual long QELUTILITY_STDCALL GetInstance(short* week) = 0;
    /// As GetInstance gives it.
    virtual long QELUTILITY_STDCALL SetInstance(int week) = 0;
    /// `days`: 7 flags of 32 bits, Sunday first, valid during the call.
    virtual long QELUTILITY_STDCALL SetDaysOfWeek(int* days) = 0;
    /// `*days` becomes a pointer to 7 flags of 16 bits, Sunday first, that the object keeps.
    /// Setting takes 32-bit flags and getting gives 16-bit ones: that is the host's contract.
    virtual long QELUTILITY_STDCALL GetDaysOfWeek(short** days) = 0;

  protected:
    /// Not virtual: a destructor in the table would move the operations.
    ~IRepeat() = default;
};

/// The copying between an IRepeat and a repeat record. Every function stops at the first operation
/// that fails and returns its status, and what was copied before stays; otherwise it returns the
/// status of the last operation. A null argument gives -1.
class QELUTILITY_API CRepeatConversion {
  public:
    /// Reads dayOfWeek: type 2.
    static long QELUTILITY_STDCALL ConstructWeekly_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                            _repeat* target);
    /// Reads days: type 12. A day is selected when the object's flag is exactly 1.
    static long QELUTILITY_STDCALL ConstructWeeklyDays_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                                _repeat* target);
    /// Reads dayOfMonth: type 3.
    static long QELUTILITY_STDCALL ConstructMonthly_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                             _repeat* target);
    /// Reads dayOfWeek, then weekOfMonth: type 4.
    static long QELUTILITY_STDCALL ConstructMonthlyByPos_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                                  _repeat* target);
    /// Reads month, then dayOfMonth: type 5.
    static long QELUTILITY_STDCALL ConstructYearly_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                            _repeat* target);
    /// Reads dayOfWeek, month, then weekOfMonth: type 6.
    static long QELUTILITY_STDCALL ConstructYearlyByPos_ZQTR_REPEAT_From_IRepeat(IRepeat* source,
                                                                                 _repeat* target);

    /// Sets dayOfWeek: type 2.
    static long QELUTILITY_STDCALL ConstructWeekly_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                            IRepeat* target);
    /// Sets days: type 12. Every flag that is not 0 is passed as 1.
    static long QELUTILITY_STDCALL ConstructWeeklyDays_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                                IRepeat* target);
    /// Sets dayOfMonth: type 3.
    static long QELUTILITY_STDCALL ConstructMonthly_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                             IRepeat* target);
    /// Sets dayOfWeek, then weekOfMonth: type 4.
    static long QELUTILITY_STDCALL ConstructMonthlyByPos_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                                  IRepeat* target);
    /// Sets month, then dayOfMonth: type 5.
    static long QELUTILITY_STDCALL ConstructYearly_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                            IRepeat* target);
    /// Sets dayOfWeek, month, then weekOfMonth: type 6.
    static long QELUTILITY_STDCALL ConstructYearlyByPos_IRepeat_From_ZQTR_REPEAT(_repeat* source,
                                                                                 IRepeat* target);
};

#endif
