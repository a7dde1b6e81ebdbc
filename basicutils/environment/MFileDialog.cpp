#include <basicutils/environment/MFileDialog.h>
#include <basicutils/platform/FileDialog.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/text/WideString.h>

#include <algorithm>
#include <memory>
#include <new>

namespace basicutils {
namespace {

constexpr size_t kFieldUnits = 128;

// Copies at most 127 units and a terminator into a record's field.
void Store(char16_t (&field)[kFieldUnits], const char16_t* text) {
    size_t n = 0;
    for (; text && text[n] && n < kFieldUnits - 1; ++n) field[n] = text[n];
    std::fill(field + n, field + kFieldUnits, u'\0');
}

// The leading whole patterns of a list that fit a record's field.
void StorePatterns(char16_t (&field)[kFieldUnits], const char16_t* patterns) {
    Store(field, patterns);
    if (!patterns || wcslen(patterns) < kFieldUnits) return;
    char16_t* lastSeparator = wcsrchr(field, u';');
    if (lastSeparator) std::fill(lastSeparator, field + kFieldUnits, u'\0');
}

constexpr const char16_t* kAudioPattern = u"*.ac3;*.aif;*.aiff;*.dts;*.mpa;*.wav";
constexpr const char16_t* kImagePattern =
    u"*.bmp;*.dib;*.gif;*.jfif;*.jif;*.jpeg;*.jpg;*.pcd;*.pct;*.pic;*.pict;*.psd;*.8pbs;*.sgi;"
    u"*.bw;*.rgb;*.rgba;*.tga;*.tpic;*.tif;*.tiff;*.yuv";
constexpr const char16_t* kVideoPattern = u"*.mpeg;*.mpg;*.mpv;*.mps";
constexpr const char16_t* kAllDataPattern =
    u"*.ac3;*.aif;*.aiff;*.dts;*.mpa;*.wav;*.bmp;*.dib;*.gif;*.jfif;*.jif;*.jpeg;*.jpg;*.pcd;"
    u"*.pct;*.pic;*.pict;*.psd;*.8pbs;*.sgi;*.bw;*.rgb;*.rgba;*.tga;*.tpic;*.tif;*.tiff;*.yuv;"
    u"*.mpeg;*.mpg;*.mpv;*.mps";

struct StandardFilter {
    int group;  // 0 always, 1 video, 2 audio, 3 image
    const char16_t* description;
    const char16_t* pattern;  // null: the composed "All Data Files" pattern
};

constexpr StandardFilter kStandardFilters[] = {
    {0, u"All files (*.*)", u"*.*"},
    {0, u"All Data Files", nullptr},
    {1, u"All Video Files", kVideoPattern},
    {1, u"  Mpeg1, Mpeg2 Video (mpeg,mpg,mpv)", u"*.mpeg;*.mpg;*.mpv"},
    {1, u"  Mpeg1, Mpeg2 Still (mps)", u"*.mps"},
    {2, u"All Audio Files", kAudioPattern},
    {2, u"  Dolby Digital Audio (ac3)", u"*.ac3"},
    {2, u"  AIFF [PCM,DTS] Audio (aif,aiff)", u"*.aif;*.aiff"},
    {2, u"  Digital Theater Sound (dts)", u"*.dts"},
    {2, u"  Mpeg1, Mpeg2 Audio (mpa)", u"*.mpa"},
    {2, u"  Windows Wave [PCM] Audio (wav)", u"*.wav"},
    {3, u"All Image Files", kImagePattern},
    {3, u"  Windows,OS2 Bitmap (bmp,dib)", u"*.bmp;*.dib"},
    {3, u"  CompuServe Bitmap (gif)", u"*.gif"},
    {3, u"  JPEG Image (jfif,jif,jpeg,jpg)", u"*.jfif;*.jif;*.jpeg;*.jpg"},
    {3, u"  Kodak Photo CD Image (pcd)", u"*.pcd"},
    {3, u"  Macintosh PICT Image (pct,pic,pict)", u"*.pct;*.pic;*.pict"},
    {3, u"  Adobe Photoshop Image (psd,8pbs)", u"*.psd;*.8pbs"},
    {3, u"  Silicon Graphics Image (sgi,bw,rgb,rgba)", u"*.sgi;*.bw;*.rgb;*.rgba"},
    {3, u"  Truevision Targa Image (tga,tpic)", u"*.tga;*.tpic"},
    {3, u"  TIFF Bitmap (tif,tiff)", u"*.tif;*.tiff"},
    {3, u"  YUV [NTSC,PAL] 4:2:0 Image (yuv)", u"*.yuv"},
};

}  // namespace

MFileDialog::MFileDialog() : mFilters{}, mFilterCount(0), mSelectedFilter(1) {}

MFileDialog::MFileDialog(const MFileDialog& other) : MFileDialog() {
    *this = other;
}

MFileDialog& MFileDialog::operator=(const MFileDialog& other) {
    if (this == &other) return *this;
    std::copy(std::begin(other.mFilters), std::end(other.mFilters), std::begin(mFilters));
    for (int i = 0; i < kMaxFilters; ++i) mFullPatterns[i] = other.mFullPatterns[i];
    mFilterCount = other.mFilterCount;
    mFileSpec = other.mFileSpec;
    mSelectedFilter = other.mSelectedFilter;
    return *this;
}

MFileDialog::~MFileDialog() = default;

bool MFileDialog::Execute() {
    if (mFileSpec.IsNull() && !sLastFile.IsNull()) mFileSpec = GetDirectory(sLastFile);
    if (!ExecuteSelf()) return false;
    sLastFile = mFileSpec;
    return true;
}

bool MFileDialog::AddFilter(const char16_t* description, const char16_t* pattern) {
    if (mFilterCount >= kMaxFilters) return false;
    SFileFilter& filter = mFilters[mFilterCount];
    Store(filter.mDescription, description);
    StorePatterns(filter.mPattern, pattern);
    mFullPatterns[mFilterCount] = pattern ? pattern : u"";
    ++mFilterCount;
    return true;
}

MFileSpecWin& MFileDialog::GetFileSpec() {
    return mFileSpec;
}

int MFileDialog::GetSelectedFilter() {
    return mSelectedFilter;
}

void MFileDialog::SetFileSpec(MFileSpecWin& spec) {
    mFileSpec = spec;
}

bool MFileDialog::AddFilters(bool audio, bool image, bool video) {
    MString allData;
    if (audio && image && video) {
        allData = kAllDataPattern;
    } else {
        if (audio) (allData += kAudioPattern) += u";";
        if (image) (allData += kImagePattern) += u";";
        if (video) allData += kVideoPattern;
    }
    const bool wanted[] = {true, video, audio, image};
    for (const StandardFilter& f : kStandardFilters)
        if (wanted[f.group])
            AddFilter(f.description, f.pattern ? f.pattern : static_cast<const char16_t*>(allData));
    return true;
}

SFileFilter* MFileDialog::FindFileFilterByDescription(const char16_t* description) {
    if (!description) return nullptr;
    for (int32_t i = mFilterCount - 1; i >= 0; --i)
        if (wcscmp(mFilters[i].mDescription, description) == 0) return &mFilters[i];
    return nullptr;
}

const char16_t* MFileDialog::FullPattern(const SFileFilter* filter) const {
    const std::ptrdiff_t index = filter - mFilters;
    if (index >= 0 && index < mFilterCount) return mFullPatterns[index];
    return filter->mPattern;
}

// ---- MFileDialogWin ---------------------------------------------------------

MFileDialogWin::MFileDialogWin(CWnd* parent) : mParent(parent) {}

bool MFileDialogWin::ExecuteSelf() {
    return runFileDialog(true);
}

MFileSpecWin MFileDialogWin::GetDirectory(MFileSpecWin& spec) {
    MString path = spec.GetFilePath();
    const char16_t* text = path;
    const char16_t* slash = wcsrchr(text, u'\\');
    if (slash) path.Cut(0, static_cast<int>(slash - text) + 1);
    return MFileSpecWin(path);
}

void MFileDialogWin::SetParent(CWnd* parent) {
    mParent = parent;
}

bool MFileDialogWin::runFileDialog(bool open) {
    // "description|pattern|" for each filter, then "|".
    size_t units = 2;
    for (int32_t i = 0; i < mFilterCount; ++i)
        units += wcslen(mFilters[i].mDescription) + wcslen(mFullPatterns[i]) + 2;
    std::unique_ptr<char16_t[]> filterText(new (std::nothrow) char16_t[units]);
    if (!filterText) return false;
    filterText[0] = u'\0';
    for (int32_t i = 0; i < mFilterCount; ++i) {
        wcscat(filterText.get(), mFilters[i].mDescription);
        wcscat(filterText.get(), u"|");
        wcscat(filterText.get(), mFullPatterns[i]);
        wcscat(filterText.get(), u"|");
    }
    wcscat(filterText.get(), u"|");

    const MString& path = mFileSpec.GetFilePath();
    const int length = path.GetLength();
    const char16_t* firstPattern =
        mFilterCount > 0 ? static_cast<const char16_t*>(mFullPatterns[0]) : u"*.*";
    MString initial(path);
    if (length == 0)
        initial = firstPattern;
    else if (path[length - 1] == u':')
        (initial += u"\\") += firstPattern;
    else if (path[length - 1] == u'\\')
        initial += firstPattern;

    CFileDialog dialog(open, nullptr, initial,
                       open
                           ? OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY
                           : OFN_HIDEREADONLY,
                       filterText.get(), mParent);
    dialog.m_ofn.nFilterIndex = static_cast<DWORD>(std::max(mSelectedFilter, 0));
    if (dialog.DoModal() != IDOK) return false;
    mFileSpec.SetFilePath(dialog.GetPathName().GetString());
    mSelectedFilter = static_cast<int>(dialog.m_ofn.nFilterIndex);
    return true;
}

// ---- MFileSaveDialogWin -----------------------------------------------------

MFileSaveDialogWin::MFileSaveDialogWin() : MFileDialogWin(nullptr) {}

bool MFileSaveDialogWin::ExecuteSelf() {
    const bool chosen = runFileDialog(false);
    const MString path = mFileSpec.GetFilePath();
    char16_t drive[_MAX_DRIVE], dir[_MAX_DIR], name[_MAX_FNAME], ext[_MAX_EXT];
    _wsplitpath(path, drive, dir, name, ext);
    if (ext[0] != u'\0') return chosen;
    SFileFilter* filter = mSelectedFilter >= 1 && mSelectedFilter <= mFilterCount
                              ? &mFilters[mSelectedFilter - 1]
                              : nullptr;
    AppendFilterExtension(path, filter);
    return chosen;
}

void MFileSaveDialogWin::AppendFilterExtension(const char16_t* path, SFileFilter* filter) {
    if (!path || !filter) return;
    const char16_t* pattern = FullPattern(filter);
    const char16_t* dot = wcschr(pattern, u'.');
    const char16_t* semicolon = wcschr(pattern, u';');
    MString extension;
    if (dot && semicolon && dot < semicolon)
        extension = MString(dot, static_cast<int>(semicolon - dot));
    else if (dot && !semicolon)
        extension = dot;
    else if (semicolon)
        extension = MString(pattern, static_cast<int>(semicolon - pattern));
    else
        extension = pattern;
    MString file(path);
    file += extension;
    mFileSpec.SetFilePath(file);
}

}  // namespace basicutils
