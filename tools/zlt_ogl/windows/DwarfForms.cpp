#include "DwarfForms.h"

#include <stdexcept>

namespace ZLT::Interception::Dwarf {

namespace {

enum Form : unsigned int { // DW_FORM_...
    formAddress = 0x01,
    formBlock2 = 0x03,
    formBlock4,
    formData2,
    formData4,
    formData8,
    formString,
    formBlock,
    formBlock1,
    formData1,
    formFlag,
    formSdata,
    formStrp,
    formUdata,
    formRefAddress,
    formRef1,
    formRef2,
    formRef4,
    formRef8,
    formRefUdata,
    formIndirect,
    formSecOffset,
    formExprloc,
    formFlagPresent,
    formData16 = 0x1E,
    formLineStrp,
    formRefSig8,
    formImplicitConst
};

// Of a number; 0 where it is something else, or of any size.
unsigned int sizeOf(unsigned int form, const Format& format) {
    switch (form) {
    case formData1:
    case formFlag:
    case formRef1:
        return 1;
    case formData2:
    case formRef2:
        return 2;
    case formData4:
    case formRef4:
        return 4;
    case formData8:
    case formRef8:
    case formRefSig8:
        return 8;
    case formAddress:
        return Format::addressSize;
    case formStrp:
    case formLineStrp:
    case formSecOffset:
        return format.offsetSize;
    case formRefAddress:
        return format.version == 2 ? Format::addressSize : format.offsetSize;
    default:
        return 0;
    }
}

} // namespace

bool AttributeForm::isConstant() const { return form == formImplicitConst; }
bool Value::isAddress() const { return form == formAddress; }
bool Value::isReference() const { return form >= formRefAddress && form <= formRefUdata; }

Value readValue(Bytes& bytes, const Format& format, const AttributeForm& attribute,
                std::uint64_t unitOffset) {
    Value value;
    value.form = attribute.form;
    if (value.form == formIndirect)
        value.form = static_cast<unsigned int>(bytes.grouped());
    if (const unsigned int size = sizeOf(value.form, format)) {
        value.number = bytes.number(size);
    } else {
        switch (value.form) {
        case formUdata:
        case formRefUdata:
            value.number = bytes.grouped();
            break;
        case formSdata:
            value.number = static_cast<std::uint64_t>(bytes.groupedSigned());
            break;
        case formImplicitConst:
            value.number = static_cast<std::uint64_t>(attribute.constant);
            break;
        case formFlagPresent:
            value.number = 1;
            break;
        case formString:
            value.bytes = bytes.text();
            break;
        case formBlock1:
        case formBlock2:
        case formBlock4:
            value.bytes = bytes.take(bytes.number(value.form == formBlock1   ? 1
                                                  : value.form == formBlock2 ? 2
                                                                             : 4));
            break;
        case formBlock:
        case formExprloc:
            value.bytes = bytes.take(bytes.grouped());
            break;
        case formData16:
            value.bytes = bytes.take(16);
            break;
        default:
            throw std::runtime_error("its debug information has an unknown form");
        }
    }
    if (value.form >= formRef1 && value.form <= formRefUdata)
        value.number += unitOffset;
    return value;
}

std::string_view textOf(const Value& value, const Sections& sections) {
    switch (value.form) {
    case formString:
        return value.bytes;
    case formStrp:
        return Bytes(sections.str, value.number).text();
    case formLineStrp:
        return Bytes(sections.lineStr, value.number).text();
    default:
        return "";
    }
}

} // namespace ZLT::Interception::Dwarf
