// UStringUtils: the 8-bit names for the 16-bit string functions, and two
// conversions between system-code-page text and 16-bit text.
//
// Each function but the conversions forwards to the library's wcs* function
// of the same meaning (WideString.h) and behaves exactly like it.
//
// TtoA and AtoT answer pointers into two static buffers, one each for the
// whole process, overwritten by the next call of the same function. Copy
// what you keep; neither conversion may run on two threads at once.
//
// TtoA converts into mABuffer, which holds 1024 bytes of text plus one byte
// for the terminator: a text that converts to exactly 1024 bytes comes out
// whole and terminated, and only a longer one leaves the buffer empty. A null
// text gives the empty text.
//
// AtoT converts into mTBuffer, 2048 units. A text longer than 2047 units is
// cut at 2047 units so that the buffer is never overrun. A null text gives
// the empty text.
#pragma once

#include <basicutils/Export.h>

namespace basicutils {

class BASICUTILS_EXPORT UStringUtils {
  public:
    static char16_t* strchr(const char16_t* s, int c);
    static char16_t* strrchr(const char16_t* s, int c);
    static char16_t* strstr(const char16_t* s, const char16_t* needle);
    static unsigned int strlen(const char16_t* s);
    static char16_t* strcpy(char16_t* dst, const char16_t* src);
    static char16_t* strncpy(char16_t* dst, const char16_t* src, unsigned int count);
    static char16_t* strcat(char16_t* dst, const char16_t* src);
    static char16_t* strncat(char16_t* dst, const char16_t* src, unsigned int count);
    static int strcmp(const char16_t* a, const char16_t* b);
    static int strncmp(const char16_t* a, const char16_t* b, unsigned int count);
    static int stricmp(const char16_t* a, const char16_t* b);
    static int strnicmp(const char16_t* a, const char16_t* b, unsigned int count);
    static int atoi(const char16_t* s);
    static double atof(const char16_t* s);
    static char16_t* strtok(char16_t* s, const char16_t* delims);

    static char* TtoA(const char16_t* text);
    static char16_t* AtoT(const char* text);

    static constexpr int kTBufferUnits = 2048;
    static constexpr int kABufferBytes = 1024;

  protected:
    static char16_t mTBuffer[kTBufferUnits];
    static char mABuffer[kABufferBytes + 1];
};

}  // namespace basicutils
