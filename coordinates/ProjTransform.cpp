#include "coordinates/ProjTransform.h"

#include "base/NumberText.h"

#include <cmath>
#include <new>

namespace {

void LogNothing(void* /*data*/, int /*level*/, const char* /*message*/) {}

} // namespace

ProjContextPointer MakeProjContext() {
    ProjContextPointer context(proj_context_create());
    if (!context)
        throw std::bad_alloc();
    // The log level alone does not silence the complaint about a missing proj.db.
    proj_log_func(context.get(), nullptr, LogNothing);
    proj_context_set_enable_network(context.get(), 0);
    return context;
}

std::string ProjParameter(std::string_view name, double value) {
    return " +" + std::string(name) + "=" + NumberToText(value);
}

ProjTransform::ProjTransform(const std::string& description)
    : context_(MakeProjContext()), operation_(proj_create(context_.get(), description.c_str())) {}

ProjPair ProjTransform::Run(PJ_DIRECTION direction, const ProjPair& input) const {
    proj_errno_reset(operation_.get());
    const PJ_COORD output =
        proj_trans(operation_.get(), direction, proj_coord(input.first, input.second, 0, 0));
    if (!std::isfinite(output.v[0]) || !std::isfinite(output.v[1]))
        return {HUGE_VAL, HUGE_VAL};
    return {output.v[0], output.v[1]};
}
