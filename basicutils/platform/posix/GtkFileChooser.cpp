// The default file dialog: GTK 3's file chooser, loaded with dlopen on first
// use. Nothing of GTK is linked; its few functions are looked up by name.
#include <basicutils/platform/FileDialog.h>
#include <basicutils/platform/internal/Env.h>
#include <basicutils/platform/internal/Paths.h>
#include <dlfcn.h>

#include <cstdlib>
#include <mutex>
#include <string>
#include <vector>

namespace basicutils::detail {
namespace {

// GTK's types, as far as this file needs them: opaque pointers and ints.
using Widget = void;
using Filter = void;
constexpr int kActionOpen = 0;       // GTK_FILE_CHOOSER_ACTION_OPEN
constexpr int kActionSave = 1;       // GTK_FILE_CHOOSER_ACTION_SAVE
constexpr int kResponseAccept = -3;  // GTK_RESPONSE_ACCEPT
constexpr int kResponseCancel = -6;  // GTK_RESPONSE_CANCEL

struct Gtk {
    void (*disableSetlocale)();
    int (*initCheck)(int*, char***);
    Widget* (*dialogNew)(const char*, void*, int, const char*, ...);
    Filter* (*filterNew)();
    void (*filterSetName)(Filter*, const char*);
    void (*filterAddPattern)(Filter*, const char*);
    void (*addFilter)(Widget*, Filter*);
    void (*setFilter)(Widget*, Filter*);
    Filter* (*getFilter)(Widget*);
    int (*setCurrentFolder)(Widget*, const char*);
    void (*setCurrentName)(Widget*, const char*);
    int (*setFilename)(Widget*, const char*);
    void (*setDefaultResponse)(Widget*, int);
    int (*run)(Widget*);
    char* (*getFilename)(Widget*);
    void (*destroy)(Widget*);
    int (*eventsPending)();
    int (*mainIteration)();
    void (*gFree)(void*);
};

template <typename Function>
bool Find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(CurrentEnv().Dlsym(library, name));
    return function != nullptr;
}

// GTK, loaded and initialised once; null where no dialog can be shown. The
// display is asked for on every call, so that a process without one never
// loads GTK.
const Gtk* LoadGtk() {
    const char* x = std::getenv("DISPLAY");
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    if ((!x || !*x) && (!wayland || !*wayland)) return nullptr;
    static std::once_flag once;
    static Gtk gtk;
    static bool ready = false;
    std::call_once(once, [] {
        void* library = CurrentEnv().Dlopen("libgtk-3.so.0", RTLD_NOW | RTLD_LOCAL);
        if (!library) return;  // kept loaded for the process once it is: GTK can't unload
        const bool found =
            Find(library, "gtk_disable_setlocale", gtk.disableSetlocale) &&
            Find(library, "gtk_init_check", gtk.initCheck) &&
            Find(library, "gtk_file_chooser_dialog_new", gtk.dialogNew) &&
            Find(library, "gtk_file_filter_new", gtk.filterNew) &&
            Find(library, "gtk_file_filter_set_name", gtk.filterSetName) &&
            Find(library, "gtk_file_filter_add_pattern", gtk.filterAddPattern) &&
            Find(library, "gtk_file_chooser_add_filter", gtk.addFilter) &&
            Find(library, "gtk_file_chooser_set_filter", gtk.setFilter) &&
            Find(library, "gtk_file_chooser_get_filter", gtk.getFilter) &&
            Find(library, "gtk_file_chooser_set_current_folder", gtk.setCurrentFolder) &&
            Find(library, "gtk_file_chooser_set_current_name", gtk.setCurrentName) &&
            Find(library, "gtk_file_chooser_set_filename", gtk.setFilename) &&
            Find(library, "gtk_dialog_set_default_response", gtk.setDefaultResponse) &&
            Find(library, "gtk_dialog_run", gtk.run) &&
            Find(library, "gtk_file_chooser_get_filename", gtk.getFilename) &&
            Find(library, "gtk_widget_destroy", gtk.destroy) &&
            Find(library, "gtk_events_pending", gtk.eventsPending) &&
            Find(library, "gtk_main_iteration", gtk.mainIteration) &&
            Find(library, "g_free", gtk.gFree);
        if (!found) return;
        gtk.disableSetlocale();  // the host program's locale stays its own
        ready = gtk.initCheck(nullptr, nullptr) != 0;
    });
    return ready ? &gtk : nullptr;
}

std::string Utf8(const std::u16string& text) {
    std::string out;
    return ToSystemPath(text.c_str(), out) ? out : std::string();
}

// One pattern without regard to case: "*.mpg" becomes "*.[mM][pP][gG]", and
// "*.*" every file.
std::string CaseBlind(const std::string& pattern) {
    if (pattern == "*.*" || pattern == "*") return "*";
    std::string out;
    for (const char c : pattern) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (!letter) {
            out += c;
            continue;
        }
        out += '[';
        out += static_cast<char>(c | 0x20);
        out += static_cast<char>(c & ~0x20);
        out += ']';
    }
    return out;
}

void AddPatterns(const Gtk& gtk, Filter* filter, const std::string& patterns) {
    size_t start = 0;
    while (start <= patterns.size()) {
        size_t end = patterns.find(';', start);
        if (end == std::string::npos) end = patterns.size();
        std::string one = patterns.substr(start, end - start);
        while (!one.empty() && one.front() == ' ') one.erase(0, 1);
        while (!one.empty() && one.back() == ' ') one.pop_back();
        if (!one.empty()) gtk.filterAddPattern(filter, CaseBlind(one).c_str());
        start = end + 1;
    }
}

// A folder or file as an absolute system path: a relative one lies in the
// current folder, as on Windows.
std::string Absolute(const std::u16string& name) {
    std::string path = Utf8(name);
    if (!path.empty() && path.front() == '/') return path;
    char folder[4096];
    if (!CurrentEnv().Getcwd(folder, sizeof folder)) return path;
    return std::string(folder) + "/" + path;
}

// The start folder and name of "folder\name" or "folder\pattern".
void ApplyInitialName(const Gtk& gtk, Widget* dialog, const SFileDialogRequest& request) {
    const std::u16string& initial = request.initialName;
    const size_t cut = initial.find_last_of(u"\\/");
    const std::u16string folder = cut == std::u16string::npos ? u"" : initial.substr(0, cut + 1);
    const std::u16string leaf = cut == std::u16string::npos ? initial : initial.substr(cut + 1);
    gtk.setCurrentFolder(dialog, Absolute(folder).c_str());
    if (leaf.empty() || leaf.find_first_of(u"*?") != std::u16string::npos) return;
    if (request.open)
        gtk.setFilename(dialog, Absolute(initial).c_str());
    else
        gtk.setCurrentName(dialog, Utf8(leaf).c_str());
}

}  // namespace

bool RunGtkFileChooser(SFileDialogRequest& request, void*) {
    const Gtk* gtk = LoadGtk();
    if (!gtk) return false;
    const std::string title = Utf8(request.title);
    Widget* dialog =
        gtk->dialogNew(title.c_str(), nullptr, request.open ? kActionOpen : kActionSave, "_Cancel",
                       kResponseCancel, request.open ? "_Open" : "_Save", kResponseAccept,
                       static_cast<const char*>(nullptr));
    if (!dialog) return false;
    gtk->setDefaultResponse(dialog, kResponseAccept);
    std::vector<Filter*> filters;
    for (const auto& [description, patterns] : request.filters) {
        Filter* filter = gtk->filterNew();
        gtk->filterSetName(filter, Utf8(description).c_str());
        AddPatterns(*gtk, filter, Utf8(patterns));
        gtk->addFilter(dialog, filter);  // the dialog owns it from here
        filters.push_back(filter);
    }
    if (request.filterIndex >= 1 && request.filterIndex <= static_cast<int>(filters.size()))
        gtk->setFilter(dialog, filters[static_cast<size_t>(request.filterIndex - 1)]);
    ApplyInitialName(*gtk, dialog, request);

    const bool accepted = gtk->run(dialog) == kResponseAccept;
    if (accepted) {
        char* name = gtk->getFilename(dialog);
        request.path = name ? FromSystemPath(name) : std::u16string();
        if (name) gtk->gFree(name);
        const Filter* chosen = gtk->getFilter(dialog);
        for (size_t i = 0; i < filters.size(); ++i)
            if (filters[i] == chosen) request.chosenFilter = static_cast<int>(i + 1);
    }
    gtk->destroy(dialog);
    while (gtk->eventsPending()) gtk->mainIteration();  // the window goes away now
    return accepted && !request.path.empty();
}

}  // namespace basicutils::detail
