// Sets an environment variable for the length of a scope, for tests of the
// folders that follow HOME and the XDG variables.
#pragma once

#include <cstdlib>
#include <string>

namespace basicutils::testing {

class ScopedVariable {
  public:
    // A null value unsets the variable.
    ScopedVariable(const char* name, const char* value) : mName(name) {
        const char* old = std::getenv(name);
        mHad = old != nullptr;
        if (old) mOld = old;
        Put(value);
    }
    ScopedVariable(const char* name, const std::string& value)
        : ScopedVariable(name, value.c_str()) {}
    ~ScopedVariable() { Put(mHad ? mOld.c_str() : nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

  private:
    void Put(const char* value) {
        if (value)
            ::setenv(mName, value, 1);
        else
            ::unsetenv(mName);
    }
    const char* mName;
    std::string mOld;
    bool mHad;
};

}  // namespace basicutils::testing
