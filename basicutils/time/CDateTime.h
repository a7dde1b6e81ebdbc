// CDateTime: the library's calendar value. One double counts days since
// 1 January of year 0 (day 0); its fraction is the part of the day gone by.
// Year, month and day are kept beside it and follow the whole part after
// construction, SetDate, + and -. There is no time zone and no link to the
// platform's own date formats. The difference of two values is a CDateTime
// too, whose year, month and day are then of little use (below zero it
// reads as year 0, month 1 and a day of 1 or below).
//
// Nothing is checked: SetDate(2023, 4, 31) is 1 May, SetTime(25, 0, 0)
// moves the whole part (the calendar fields catch up at the next ParseDate).
// The time getters truncate, so a second can read one low once the fraction
// has been through a double.
//
// Choices of this implementation:
//   - Leap years follow the Gregorian rule (divisible by 4, but centuries
//     only when divisible by 400: 2000 is a leap year, 1900 is not), except
//     that year 0 is an ordinary year of 365 days. SetDate and ParseDate use
//     the same rule, so they are exact inverses for every real date.
//   - A day count beyond the range of int (or NaN) is read as the nearest
//     int (NaN as 0) instead of overflowing.
#pragma once

#include <basicutils/Export.h>

namespace basicutils {

class BASICUTILS_EXPORT CDateTime {
  public:
    CDateTime(double value = 0.0);
    CDateTime(const CDateTime& other) = default;
    CDateTime& operator=(const CDateTime& other) = default;
    virtual ~CDateTime() = default;

    virtual void SetDate(int year, int month, int day);
    virtual int GetYear() { return mYear; }
    virtual int GetMonth() { return mMonth; }
    virtual int GetDay() { return mDay; }
    virtual void SetTime(int hour, int minute, int second);
    virtual int GetHour();
    virtual int GetMinute();
    virtual int GetSecond();

    // The day count itself, fraction included.
    double GetDateTime() const { return mDateTime; }

    int operator==(const CDateTime& other) const { return mDateTime == other.mDateTime; }
    int operator!=(const CDateTime& other) const { return mDateTime != other.mDateTime; }

    static int IsLeapYear(int year);
    static int GetTotalDayOfYear(int year);
    static int GetTotalDayOfMonth(int month, int leap);

  protected:
    void ParseDate();

    double mDateTime;
    int mYear;
    int mMonth;
    int mDay;

  private:
    int SecondsOfDay() const;
};

BASICUTILS_EXPORT int operator<(const CDateTime& a, const CDateTime& b);
BASICUTILS_EXPORT int operator>(const CDateTime& a, const CDateTime& b);
BASICUTILS_EXPORT int operator<=(const CDateTime& a, const CDateTime& b);
BASICUTILS_EXPORT int operator>=(const CDateTime& a, const CDateTime& b);
BASICUTILS_EXPORT CDateTime operator+(const CDateTime& a, const CDateTime& b);
BASICUTILS_EXPORT CDateTime operator-(const CDateTime& a, const CDateTime& b);

// Today's date from the machine's clock in its local time zone.
// GetNowDate writes nothing and returns 0; the two Local forms return 0.
BASICUTILS_EXPORT int GetNowDate(char* buffer, unsigned int size);
// The day of the year, 1 for 1 January.
BASICUTILS_EXPORT int GetDayNumberofYear();
// The year within its century: 2004 gives 4.
BASICUTILS_EXPORT int GetYearWithinCentury();
BASICUTILS_EXPORT int GetLocalDayNumberofYear();
BASICUTILS_EXPORT int GetLocalYearWithinCentury();

}  // namespace basicutils
