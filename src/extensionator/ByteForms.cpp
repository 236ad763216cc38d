#include "extensionator/ValueForms.h"

namespace ZLT::OGL::ValueForms::Detail {

void writeByte(std::ostream& out, char value) { out << value; }
void writeText(std::ostream& out, const char* text) { out << text; }

} // namespace ZLT::OGL::ValueForms::Detail
