// CFileDialog: the request from its arguments, the process's runner, the
// answer back.
#include <basicutils/platform/FileDialog.h>

#include <atomic>
#include <mutex>

namespace basicutils {
namespace {

std::mutex gRunnerLock;
FileDialogRunner gRunner = nullptr;  // null: GTK
void* gRunnerContext = nullptr;

// The pairs of "description|patterns|...|".
std::vector<std::pair<std::u16string, std::u16string>> ParseFilter(const char16_t* filter) {
    std::vector<std::u16string> parts;
    std::u16string current;
    for (const char16_t* c = filter; c && *c; ++c) {
        if (*c == u'|') {
            parts.push_back(current);
            current.clear();
        } else {
            current += *c;
        }
    }
    std::vector<std::pair<std::u16string, std::u16string>> filters;
    for (size_t i = 0; i + 1 < parts.size(); i += 2) {
        if (parts[i].empty() && parts[i + 1].empty()) break;  // the closing "||"
        filters.emplace_back(parts[i], parts[i + 1]);
    }
    return filters;
}

bool HasExtension(const std::u16string& path) {
    const size_t cut = path.find_last_of(u"\\/");
    const size_t dot = path.rfind(u'.');
    return dot != std::u16string::npos && (cut == std::u16string::npos || dot > cut + 1);
}

}  // namespace

void SetFileDialogRunner(FileDialogRunner runner, void* context) {
    std::lock_guard<std::mutex> hold(gRunnerLock);
    gRunner = runner;
    gRunnerContext = context;
}

CFileDialog::CFileDialog(BOOL openFileDialog, const char16_t* defaultExtension,
                         const char16_t* fileName, DWORD flags, const char16_t* filter,
                         CWnd* parentWnd)
    : m_ofn{flags, 0},
      mDefaultExtension(defaultExtension),
      mHasDefaultExtension(defaultExtension != nullptr) {
    mRequest.open = openFileDialog != 0;
    mRequest.parent = parentWnd;
    mRequest.title = mRequest.open ? u"Open" : u"Save As";
    mRequest.initialName = fileName ? fileName : u"";
    mRequest.filters = ParseFilter(filter);
}

CFileDialog::~CFileDialog() = default;

intptr_t CFileDialog::DoModal() {
    FileDialogRunner runner;
    void* context;
    {
        std::lock_guard<std::mutex> hold(gRunnerLock);
        runner = gRunner ? gRunner : detail::RunGtkFileChooser;
        context = gRunnerContext;
    }
    mRequest.flags = m_ofn.Flags;
    mRequest.filterIndex = m_ofn.nFilterIndex == 0 ? 1 : static_cast<int>(m_ofn.nFilterIndex);
    mRequest.path.clear();
    mRequest.chosenFilter = mRequest.filterIndex;
    if (!runner(mRequest, context) || mRequest.path.empty()) return IDCANCEL;
    std::u16string path = mRequest.path;
    if (mHasDefaultExtension && !HasExtension(path) && !mDefaultExtension.IsEmpty())
        path += u"." + std::u16string(mDefaultExtension.GetString());
    mPathName = CString(path.c_str(), static_cast<int>(path.size()));
    m_ofn.nFilterIndex = static_cast<DWORD>(mRequest.chosenFilter);
    return IDOK;
}

CString CFileDialog::GetPathName() const {
    return mPathName;
}

}  // namespace basicutils
