#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <proj.h>

/// Frees what PROJ hands out.
struct ProjDeleter {
    void operator()(PJ_CONTEXT* context) const { proj_context_destroy(context); }
    void operator()(PJ* object) const { proj_destroy(object); }
};
using ProjContextPointer = std::unique_ptr<PJ_CONTEXT, ProjDeleter>;
using ProjPointer = std::unique_ptr<PJ, ProjDeleter>;

/// A context that reaches no network and prints nothing, whatever environment and proj.ini say.
ProjContextPointer MakeProjContext();

/// " +name=value" with every digit of the value, always with a decimal point.
std::string ProjParameter(std::string_view name, double value);

/// Two numbers in and out of a PROJ operation.
struct ProjPair {
    double first;
    double second;
};

/// A PROJ operation with a context of its own, so that objects in different threads share nothing. One
/// object is for one thread at a time.
class ProjTransform {
public:
    /// The description is a PROJ string. Empty() when PROJ can make nothing of it.
    explicit ProjTransform(const std::string& description);

    bool Empty() const { return operation_ == nullptr; }

    /// Both numbers are HUGE_VAL where the operation is not defined. The height is 0 on the way in and
    /// dropped on the way out.
    ProjPair Forward(const ProjPair& input) const { return Run(PJ_FWD, input); }
    ProjPair Inverse(const ProjPair& input) const { return Run(PJ_INV, input); }

private:
    ProjPair Run(PJ_DIRECTION direction, const ProjPair& input) const;

    ProjContextPointer context_; // before the operation, which must go first
    ProjPointer operation_;
};
