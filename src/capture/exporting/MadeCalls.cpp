#include "capture/exporting/MadeCalls.h"

#include <stdexcept>

namespace ZLT::Capture {

CapturedCall& MadeCalls::begin(const char* function, std::size_t count) {
    CapturedCall call;
    call.function = functionNamed(function);
    if (!call.function || call.function->parameters.size() != count)
        throw std::logic_error(std::string("no function ") + function + " of " + std::to_string(count) +
                               " parameters");
    for (const Parameter& parameter : call.function->parameters) {
        CapturedValue value;
        value.form = parameter.form;
        value.element = parameter.element;
        call.values.push_back(value);
    }
    call.result.form = call.function->result.form;
    calls_.push_back(std::move(call));
    return calls_.back();
}

void MadeCalls::setMemory(CapturedCall& call, std::size_t index, std::string bytes) {
    CapturedValue& value = call.values[index];
    call.held.push_back(std::make_shared<const std::string>(std::move(bytes)));
    value.pointer = PointerForm::Stored;
    value.bytes = *call.held.back();
}

} // namespace ZLT::Capture
