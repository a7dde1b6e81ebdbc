// Fuzzes the quoted extraction against std::string's own search.
//
// For any line: SeekLeftDoubleQuat answers the first quote's index plus 1
// (0 without one), GetString copies exactly the text before that quote, the
// 8-bit and 16-bit forms agree, and walking a line piece by piece visits the
// same pieces as splitting it at every quote.
#include <basicutils/text/CStringExtract.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "FuzzSupport.h"

using namespace basicutils;

using fuzzsupport::Check;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The functions read zero-terminated text: the line ends at the first 0.
    std::string line(reinterpret_cast<const char*>(data), size);
    line = line.c_str();
    std::u16string wide;
    for (unsigned char c : line) wide.push_back(c == '"' ? u'"' : static_cast<char16_t>(0x100 + c));

    const size_t quote = line.find('"');
    const int expected = quote == std::string::npos ? 0 : static_cast<int>(quote) + 1;
    Check(CStringExtract::SeekLeftDoubleQuatChar(line.c_str()) == expected);
    Check(CStringExtract::SeekLeftDoubleQuat(wide.c_str()) == expected);

    std::vector<char> out(line.size() + 1, '#');
    std::vector<char16_t> wout(line.size() + 1, u'#');
    Check(CStringExtract::GetStringChar(line.c_str(), out.data()) == expected);
    Check(CStringExtract::GetString(wide.c_str(), wout.data()) == expected);
    const std::string before = expected ? line.substr(0, quote) : std::string();
    Check(std::string(out.data()) == before);
    Check(std::u16string(wout.data()) == (expected ? wide.substr(0, quote) : std::u16string()));

    // Walk: each GetString moves behind the next quote; the pieces are the
    // fields between quotes, as a split would give them.
    std::vector<std::string> pieces;
    size_t at = 0;
    for (;;) {
        int step = CStringExtract::GetStringChar(line.c_str() + at, out.data());
        if (step == 0) break;
        pieces.emplace_back(out.data());
        at += static_cast<size_t>(step);
    }
    std::vector<std::string> model;
    for (size_t from = 0, q; (q = line.find('"', from)) != std::string::npos; from = q + 1)
        model.push_back(line.substr(from, q - from));
    Check(pieces == model);
    return 0;
}
