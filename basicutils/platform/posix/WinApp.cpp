// The application object: its names and its four profile functions.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/SystemFolders.h>
#include <basicutils/platform/WinApp.h>
#include <basicutils/platform/internal/Paths.h>
#include <basicutils/platform/internal/ProfileStore.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>

namespace basicutils {
namespace {

constinit std::atomic<CWinApp*> gCurrentApp{nullptr};
constinit AFX_MODULE_STATE gModuleState{nullptr};

CWinApp* DefaultApp() {
    static CWinApp* app = [] {
        CWinApp* made = new CWinApp;  // kept for the process: settings may be read at exit
        // The default stands in only while no other object exists.
        CWinApp* expected = made;
        gCurrentApp.compare_exchange_strong(expected, nullptr);
        return made;
    }();
    return app;
}

size_t Length(const char16_t* text) {
    size_t n = 0;
    while (text[n]) ++n;
    return n;
}

// The number at the start of a value: blanks, one sign, decimal digits;
// clamped to the int range; 0 when there are no digits.
int LeadingNumber(const std::u16string& text) {
    size_t i = 0;
    while (i < text.size() && (text[i] == u' ' || (text[i] >= u'\t' && text[i] <= u'\r'))) ++i;
    const bool negative = i < text.size() && text[i] == u'-';
    if (i < text.size() && (text[i] == u'-' || text[i] == u'+')) ++i;
    long long value = 0;
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i)
        if (value <= 2147483648LL) value = value * 10 + (text[i] - u'0');
    value = negative ? -value : value;
    return static_cast<int>(std::clamp(value, -2147483648LL, 2147483647LL));
}

// A name in the system's spelling; empty when it can't be spelled there.
std::string SystemText(const char16_t* text) {
    std::string out;
    return detail::ToSystemPath(text, out) ? out : std::string();
}

void Replace(const char16_t*& field, const char16_t* text) {
    std::free(const_cast<char16_t*>(field));
    field = _wcsdup(text);
}

}  // namespace

char16_t* _wcsdup(const char16_t* text) {
    if (!text) return nullptr;
    const size_t bytes = (Length(text) + 1) * sizeof(char16_t);
    auto* copy = static_cast<char16_t*>(std::malloc(bytes));
    if (copy) std::memcpy(copy, text, bytes);
    return copy;
}

CWinApp::CWinApp(const char16_t* appName)
    : m_pszAppName(nullptr), m_pszRegistryKey(nullptr), m_pszProfileName(nullptr) {
    const std::u16string name =
        appName ? std::u16string(appName) : detail::FromSystemName(detail::ProgramName());
    m_pszAppName = _wcsdup(name.c_str());
    gCurrentApp.store(this);
}

CWinApp::~CWinApp() {
    CWinApp* self = this;
    gCurrentApp.compare_exchange_strong(self, nullptr);
    std::free(const_cast<char16_t*>(m_pszAppName));
    std::free(const_cast<char16_t*>(m_pszRegistryKey));
    std::free(const_cast<char16_t*>(m_pszProfileName));
}

AFX_MODULE_STATE* AfxGetModuleState() {
    CWinApp* app = gCurrentApp.load();
    gModuleState.m_pCurrentWinApp = app ? app : DefaultApp();
    return &gModuleState;
}

void CWinApp::SetRegistryKey(const char16_t* key) {
    Replace(m_pszRegistryKey, key);
    Replace(m_pszProfileName, m_pszAppName);
}

namespace {

// The settings file in the system's spelling, and whether it lies in the
// user's settings folder (which the store may create). Empty when it needs
// that folder and there is no home.
std::string ProfileFile(const CWinApp& app, bool& inUserFolder) {
    std::string name;
    inUserFolder = true;
    if (app.m_pszRegistryKey) {
        const char16_t* file = app.m_pszProfileName ? app.m_pszProfileName : app.m_pszAppName;
        name = SystemText(app.m_pszRegistryKey) + "/" + SystemText(file ? file : u"") + ".ini";
    } else if (app.m_pszProfileName && app.m_pszProfileName[0]) {
        name = SystemText(app.m_pszProfileName);
        if (name.find('/') != std::string::npos) {
            inUserFolder = false;
            return name;
        }
    } else {
        name = detail::ProgramName() + ".ini";
    }
    const std::string folder = detail::UserConfigFolder();
    return folder.empty() ? std::string() : folder + "/" + name;
}

}  // namespace

std::u16string CWinApp::GetProfileFile() const {
    bool inUserFolder = false;
    return detail::FromSystemPath(ProfileFile(*this, inUserFolder));
}

UINT CWinApp::GetProfileIntW(const char16_t* section, const char16_t* entry, int defaultValue) {
    bool inUserFolder = false;
    const auto value = detail::ReadProfileValue(ProfileFile(*this, inUserFolder), section, entry);
    if (!value || value->empty()) return static_cast<UINT>(defaultValue);
    return static_cast<UINT>(LeadingNumber(*value));
}

BOOL CWinApp::WriteProfileInt(const char16_t* section, const char16_t* entry, int value) {
    const std::string digits = std::to_string(value);
    const std::u16string text(digits.begin(), digits.end());
    return WriteProfileStringW(section, entry, text.c_str());
}

CString CWinApp::GetProfileStringW(const char16_t* section, const char16_t* entry,
                                   const char16_t* defaultValue) {
    bool inUserFolder = false;
    const auto value = detail::ReadProfileValue(ProfileFile(*this, inUserFolder), section, entry);
    if (value) return CString(value->c_str(), static_cast<int>(value->size()));
    return CString(defaultValue);
}

BOOL CWinApp::WriteProfileStringW(const char16_t* section, const char16_t* entry,
                                  const char16_t* value) {
    bool inUserFolder = false;
    const std::string file = ProfileFile(*this, inUserFolder);
    if (file.empty()) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return 0;
    }
    return detail::WriteProfileValue(file, section, entry, value, inUserFolder) ? 1 : 0;
}

}  // namespace basicutils
