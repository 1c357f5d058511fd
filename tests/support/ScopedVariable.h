#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// An environment variable with another value, until the end of the scope.
class ScopedVariable {
public:
    ScopedVariable(std::string name, const std::string& value) : name_(std::move(name)) {
        if (const char* old = std::getenv(name_.c_str()))
            old_ = old;
        setenv(name_.c_str(), value.c_str(), 1);
    }
    ~ScopedVariable() {
        if (old_)
            setenv(name_.c_str(), old_->c_str(), 1);
        else
            unsetenv(name_.c_str());
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    std::string name_;
    std::optional<std::string> old_;
};
