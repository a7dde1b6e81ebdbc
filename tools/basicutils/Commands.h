// The subcommands of the basicutils tool. Each lives in its own file and
// registers here; main.cpp dispatches on the first argument.
#pragma once

#include <string>
#include <vector>

namespace basicutils_tool {

using Args = std::vector<std::string>;

// A subcommand gets the arguments after its name and returns the process's
// exit status: 0 for success, 1 when the work failed, 2 for a usage error.
// Errors go to stderr with the prefix "basicutils: ".
struct Command {
    const char* name;
    const char* alias;    // may be nullptr
    const char* summary;  // one line for --help
    const char* usage;    // the lines printed by `basicutils help NAME`
    int (*run)(const Args& args);
};

// Every subcommand; the list ends with a null name.
extern const Command kCommands[];

// The built-in example that runs when the tool is given no argument.
int RunExample();

// Shared helpers for the subcommands.
int UsageError(const std::string& message);  // prints, returns 2
int Failure(const std::string& message);     // prints, returns 1
// Parses a whole decimal number; false (and nothing stored) for any other text.
bool ParseInt(const std::string& text, long long& value);
// Parses a whole finite decimal number with optional fraction.
bool ParseDouble(const std::string& text, double& value);

// Subcommands. Add the declaration here and the entry in main.cpp.
int RunTimecode(const Args& args);
int RunBits(const Args& args);
int RunBytes(const Args& args);
int RunFile(const Args& args);
// Segmented files (SegmentsCommand.cpp).
int RunSplit(const Args& args);
int RunJoin(const Args& args);
int RunInfo(const Args& args);
int RunConcat(const Args& args);
int RunSum(const Args& args);
// A background task with a progress line, pumped from the main thread.
int RunTask(const Args& args);
int RunTaskExample();
int RunTaskExample(int megabytes);
// The application's environment (EnvironmentCommands.cpp), whole entries.
extern const Command kEnvCommand;
extern const Command kSettingsCommand;
extern const Command kChooseCommand;
// The script reader (ScriptCommand.cpp).
extern const Command kScriptCommand;

}  // namespace basicutils_tool
