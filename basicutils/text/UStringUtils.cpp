#include <basicutils/text/MString.h>
#include <basicutils/text/UStringUtils.h>
#include <basicutils/text/WideString.h>

#include <algorithm>
#include <cstring>

namespace basicutils {

// Zero-initialised arrays: constant initialisation, no load-time order.
char16_t UStringUtils::mTBuffer[kTBufferUnits];
char UStringUtils::mABuffer[kABufferBytes + 1];

char16_t* UStringUtils::strchr(const char16_t* s, int c) {
    return const_cast<char16_t*>(wcschr(s, static_cast<char16_t>(c)));
}

char16_t* UStringUtils::strrchr(const char16_t* s, int c) {
    return const_cast<char16_t*>(wcsrchr(s, static_cast<char16_t>(c)));
}

char16_t* UStringUtils::strstr(const char16_t* s, const char16_t* needle) {
    return const_cast<char16_t*>(wcsstr(s, needle));
}

unsigned int UStringUtils::strlen(const char16_t* s) {
    return static_cast<unsigned int>(wcslen(s));
}

char16_t* UStringUtils::strcpy(char16_t* dst, const char16_t* src) {
    return wcscpy(dst, src);
}

char16_t* UStringUtils::strncpy(char16_t* dst, const char16_t* src, unsigned int count) {
    return wcsncpy(dst, src, count);
}

char16_t* UStringUtils::strcat(char16_t* dst, const char16_t* src) {
    return wcscat(dst, src);
}

char16_t* UStringUtils::strncat(char16_t* dst, const char16_t* src, unsigned int count) {
    return wcsncat(dst, src, count);
}

int UStringUtils::strcmp(const char16_t* a, const char16_t* b) {
    return wcscmp(a, b);
}

int UStringUtils::strncmp(const char16_t* a, const char16_t* b, unsigned int count) {
    return wcsncmp(a, b, count);
}

int UStringUtils::stricmp(const char16_t* a, const char16_t* b) {
    return _wcsicmp(a, b);
}

int UStringUtils::strnicmp(const char16_t* a, const char16_t* b, unsigned int count) {
    return _wcsnicmp(a, b, count);
}

int UStringUtils::atoi(const char16_t* s) {
    return _wtoi(s);
}

double UStringUtils::atof(const char16_t* s) {
    return _wtof(s);
}

char16_t* UStringUtils::strtok(char16_t* s, const char16_t* delims) {
    return wcstok(s, delims);
}

char* UStringUtils::TtoA(const char16_t* text) {
    if (!text) {
        mABuffer[0] = 0;
        return mABuffer;
    }
    MString(text).ExportASCII(mABuffer, kABufferBytes, kCharacterSetWindows);
    return mABuffer;
}

char16_t* UStringUtils::AtoT(const char* text) {
    MString wide;
    wide.ImportASCII(text, -1);
    const char16_t* units = wide;
    size_t n = std::min(wcslen(units), static_cast<size_t>(kTBufferUnits - 1));
    std::memcpy(mTBuffer, units, n * sizeof(char16_t));
    mTBuffer[n] = 0;
    return mTBuffer;
}

}  // namespace basicutils
