#include <basicutils/platform/LocalTime.h>
#include <basicutils/time/CDateTime.h>

#include <cmath>
#include <cstdint>

namespace basicutils {

namespace {

// Truncates toward zero into int, holding the ends and reading NaN as 0.
int TruncateToInt(double value) {
    if (std::isnan(value)) return 0;
    if (value >= 2147483647.0) return 2147483647;
    if (value <= -2147483648.0) return -2147483647 - 1;
    return static_cast<int>(value);
}

// Leap years among 1..n (n >= 0).
int64_t LeapYearsThrough(int64_t n) {
    return n / 4 - n / 100 + n / 400;
}

// Days from 1 January of year 0 to 1 January of the given year; nothing for
// years at or below 0, as a walk from year 0 up to the year would add.
int64_t DaysBeforeYear(int year) {
    if (year <= 0) return 0;
    return 365 * static_cast<int64_t>(year) + LeapYearsThrough(year - 1);
}

constexpr int kDaysIn400Years = 146097;
constexpr int kDaysIn100Years = 36524;
constexpr int kDaysIn4Years = 1461;

}  // namespace

int CDateTime::IsLeapYear(int year) {
    if (year == 0 || year % 4 != 0) return 0;
    return (year % 100 != 0 || year % 400 == 0) ? 1 : 0;
}

int CDateTime::GetTotalDayOfYear(int year) {
    return IsLeapYear(year) ? 366 : 365;
}

int CDateTime::GetTotalDayOfMonth(int month, int leap) {
    switch (month) {
        case 1:
        case 3:
        case 5:
        case 7:
        case 8:
        case 10:
        case 12:
            return 31;
        case 2:
            return 28 + leap;
        default:
            return 30;
    }
}

CDateTime::CDateTime(double value) : mDateTime(value), mYear(0), mMonth(1), mDay(1) {
    ParseDate();
}

void CDateTime::SetDate(int year, int month, int day) {
    int64_t days = DaysBeforeYear(year);
    int leap = IsLeapYear(year);
    // Months past 12 count 30 days each, as GetTotalDayOfMonth gives them.
    int whole = month > 13 ? 13 : month;
    for (int m = 1; m < whole; ++m) days += GetTotalDayOfMonth(m, leap);
    if (month > 13) days += 30 * (static_cast<int64_t>(month) - 13);
    double fraction = mDateTime - std::trunc(mDateTime);
    if (std::isnan(fraction)) fraction = 0.0;
    mDateTime = fraction + static_cast<double>(days) + (static_cast<double>(day) - 1.0);
    ParseDate();
}

void CDateTime::ParseDate() {
    int days = TruncateToInt(mDateTime);
    mYear = 0;
    mMonth = 1;
    if (days >= 365) {
        // Years from 1 on repeat every 400 years; within a cycle come three
        // 100-year blocks of 36524 days and a last one of 36525, and within
        // those 4-year blocks whose fourth year is the leap year.
        int n = days - 365;
        int cycles = n / kDaysIn400Years;
        n %= kDaysIn400Years;
        int centuries = n / kDaysIn100Years;
        if (centuries > 3) centuries = 3;
        n -= centuries * kDaysIn100Years;
        int quads = n / kDaysIn4Years;
        n %= kDaysIn4Years;
        int years = n / 365;
        if (years > 3) years = 3;
        n -= years * 365;
        mYear = 1 + 400 * cycles + 100 * centuries + 4 * quads + years;
        days = n;
    }
    int leap = IsLeapYear(mYear);
    while (days >= GetTotalDayOfMonth(mMonth, leap)) {
        days -= GetTotalDayOfMonth(mMonth, leap);
        ++mMonth;
    }
    mDay = days + 1;
}

void CDateTime::SetTime(int hour, int minute, int second) {
    int64_t seconds =
        static_cast<int64_t>(hour) * 3600 + static_cast<int64_t>(minute) * 60 + second;
    mDateTime = std::trunc(mDateTime) + static_cast<double>(seconds) / 86400.0;
}

int CDateTime::SecondsOfDay() const {
    return TruncateToInt((mDateTime - std::trunc(mDateTime)) * 86400.0);
}

int CDateTime::GetHour() {
    return SecondsOfDay() / 3600;
}

int CDateTime::GetMinute() {
    return (SecondsOfDay() - GetHour() * 3600) / 60;
}

int CDateTime::GetSecond() {
    return SecondsOfDay() % 60;
}

int operator<(const CDateTime& a, const CDateTime& b) {
    return a.GetDateTime() < b.GetDateTime();
}
int operator>(const CDateTime& a, const CDateTime& b) {
    return a.GetDateTime() > b.GetDateTime();
}
int operator<=(const CDateTime& a, const CDateTime& b) {
    return a.GetDateTime() <= b.GetDateTime();
}
int operator>=(const CDateTime& a, const CDateTime& b) {
    return a.GetDateTime() >= b.GetDateTime();
}

CDateTime operator+(const CDateTime& a, const CDateTime& b) {
    return CDateTime(a.GetDateTime() + b.GetDateTime());
}

CDateTime operator-(const CDateTime& a, const CDateTime& b) {
    return CDateTime(a.GetDateTime() - b.GetDateTime());
}

int GetNowDate(char*, unsigned int) {
    return 0;
}

namespace {
std::tm LocalNow() {
    platform::_tzset();
    platform::time64_t now = platform::_time64(nullptr);
    std::tm fields{};
    platform::_localtime64_s(&fields, &now);
    return fields;
}
}  // namespace

int GetDayNumberofYear() {
    return LocalNow().tm_yday + 1;
}

int GetYearWithinCentury() {
    int year = LocalNow().tm_year;
    return year >= 100 ? year % 100 : year;
}

int GetLocalDayNumberofYear() {
    return 0;
}

int GetLocalYearWithinCentury() {
    return 0;
}

}  // namespace basicutils
