#include "Entries.h"
#include "ExpectError.h"
#include "RecordRows.h"
#include "StartedLibrary.h"
#include "extensionator/OpenGLRekorder.h"
#include "extensionator/OpenGLTracer.h"
#include "extensionator/TokenName.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

using namespace ZLT::OGL;
using FakeGL::Call;
using FakeGL::Value;

namespace {

const char* const file = "ogl\\Texture";

// How a value of each type is written that is not a pointer, a float or a size.
using Form = void (*)(std::ostream&, const Value&);
template <class T>
constexpr Form number = [](std::ostream& out, const Value& value) { out << value.as<T>(); };
const std::map<std::string, Form> formsByValue = {
    {"GLenum", [](std::ostream& out, const Value& value) { out << TokenName(value.as<unsigned int>()); }},
    {"GLboolean",
     [](std::ostream& out, const Value& value) { out << boolToString(value.as<unsigned char>()); }},
    {"GLhandleARB",
     [](std::ostream& out, const Value& value) { out << "(GLhandleARB)" << value.as<unsigned>(); }},
    {"GLuint", number<unsigned int>},
    {"GLbitfield", number<unsigned int>},
    {"GLhalfNV", number<unsigned short>},
    {"GLint", number<int>},
    {"GLsizei", number<int>},
    {"GLshort", number<short>},
    {"GLushort", number<unsigned short>},
    {"GLdouble", number<double>},
    {"GLclampd", number<double>},
    {"GLuint64", number<unsigned long long>},
    {"GLuint64EXT", number<unsigned long long>},
    {"GLbyte", number<signed char>},
    {"GLubyte", number<unsigned char>}}; // the last two: one raw character
const std::set<std::string> textPointers = {"GLchar*", "GLcharARB*", "GLbyte*", "GLubyte*", "GLboolean*"};
const std::set<std::string> sizes = {"GLintptr", "GLsizeiptr", "GLintptrARB", "GLsizeiptrARB"};

// The entries whose GLfloat is written bare.
const std::set<std::string> plainFloats = {"FragmentMaterialfEXT", "FragmentMaterialfSGIX",
                                           "ImageTransformParameterfHP", "PixelTransformParameterfEXT"};

// How a layer writes an argument of `entry` that the GL headers give this type.
std::string textOf(const Entry& entry, std::string type, const Value& value) {
    if (type.starts_with("const "))
        type.erase(0, 6);
    std::ostringstream out;
    if (textPointers.contains(type)) {
        out << value.as<const char*>();
    } else if (type.ends_with('*') || type == "GLsync") {
        char digits[17];
        const auto address = reinterpret_cast<std::uintptr_t>(value.as<void*>());
        std::snprintf(digits, sizeof(digits), "%016llX", static_cast<unsigned long long>(address));
        out << digits;
    } else if (sizes.contains(type)) {
        out << static_cast<int>(value.as<long long>() & 0xFFFFFFFF);
    } else if (type != "GLfloat" && type != "GLclampf") {
        formsByValue.at(type)(out, value);
    } else if (plainFloats.contains(entry.name)) {
        out << value.as<float>();
    } else {
        int bits;
        const float real = value.as<float>();
        std::memcpy(&bits, &real, sizeof(bits));
        out << "makeFloat(" << bits << ") /* " << real << " */";
    }
    return out.str();
}

std::string callText(const Entry& entry, const Attempt& attempt) {
    std::string text = "gl" + entry.name + '(';
    for (std::size_t i = 0; i < entry.types.size(); ++i)
        text += (i > 0 ? ", " : "") + textOf(entry, entry.types[i], attempt.arguments.at(i));
    return text + ')';
}

std::string statement(const Entry& entry, const Attempt& attempt, const std::string& comment) {
    if (entry.takesPointer)
        return "OpenGLRekorderUnsupported(\"Capturing an OpenGL function (gl" + entry.name +
               ") with pointer parameter requires a specialized implementation!\");\n";
    return callText(entry, attempt) + ';' + comment + '\n';
}

// The entries that are recorded in a form of their own.
std::set<std::string> ownForms() {
    std::set<std::string> names = {"ReadPixels"};
    for (const RecordRow& row : recordRows())
        names.insert(row.name);
    return names;
}

// A tracer in front of the checker.
class SweepTest : public testing::Test {
protected:
    SweepTest() : tracer(text) { OpenGLInterceptor::Instance()->addInterceptor(&tracer); }
    ~SweepTest() override {
        tracer.popInterceptor();
        OpenGLInterceptor::destroy();
    }

    // Runs `body` for every entry but those left out, with no text before.
    template <class Body>
    void forEachBut(const std::set<std::string>& leftOut, const Body& body) {
        forEachEntryBut(leftOut, [&](const Entry& entry) {
            text.str("");
            body(entry);
        });
    }

    LibraryWithAllOfGL library;
    std::ostringstream text;
    OpenGLTracer tracer;
};

TEST_F(SweepTest, everyEntryHasItsVirtualSlot) {
    std::size_t slot = 0;
    for (const Entry& entry : entries()) {
        EXPECT_EQ(slot, entry.slot) << entry.name;
        EXPECT_EQ(slot++, entry.virtualSlot) << entry.name;
    }
    // With every slot up to there taken, only the two that a destructor has are left.
    EXPECT_EQ(1833u + 2u, slotBehindTheLast());
}

TEST_F(SweepTest, everyCallIsTracedByItsTypesPassedOnUnchangedAndCheckedOnce) {
    int results = 0, handles = 0;
    for (int line = 0; line < 4; ++line)
        forEachBut({}, [&](const Entry& entry) {
            Attempt attempt;
            entry.viaChain(attempt, file, line);
            expectCheckedCall(entry, attempt);
            EXPECT_EQ(attempt.scripted, attempt.returned);
            EXPECT_EQ(file + (':' + std::to_string(line)) + ": " + callText(entry, attempt) + '\n',
                      text.str());
            results += attempt.returned != Value();
            handles += std::ranges::count(entry.types, "GLhandleARB");
        });
    EXPECT_EQ(4 * 81, results);
    EXPECT_EQ(4 * 22, handles);
}

// With and without comments, and with a tracer on either side.
TEST_F(SweepTest, everyCallIsRecordedByItsTypesAndThenMade) {
    std::ostringstream commented, bare, data, traceInFront;
    OpenGLRekorder inner(bare, data, nullptr, false), outer(commented, data, nullptr, true);
    OpenGLTracer front(traceInFront);
    for (OpenGLInterceptorDecorator* layer :
         std::initializer_list<OpenGLInterceptorDecorator*>{&inner, &outer, &front})
        OpenGLInterceptor::Instance()->addInterceptor(layer);
    const std::set<std::string> own = ownForms();
    EXPECT_EQ(67u, own.size());
    int marked = 0, plain = 0;
    forEachBut(own, [&](const Entry& entry) {
        for (std::ostringstream* out : {&commented, &bare, &traceInFront})
            out->str("");
        std::string textOnCall;
        FakeGL::setHook([&](const Call& call) {
            if (call.function == "gl" + entry.name && textOnCall.empty())
                textOnCall = commented.str() + bare.str();
        });
        Attempt attempt;
        entry.viaChain(attempt, file, 412);
        EXPECT_EQ(statement(entry, attempt, "\t\t// ogl\\Texture, line 412"), commented.str());
        EXPECT_EQ(statement(entry, attempt, ""), bare.str());
        EXPECT_EQ(commented.str() + bare.str(), textOnCall)
            << "written before the call, and nothing after it";
        EXPECT_EQ(text.str(), traceInFront.str());
        expectCheckedCall(entry, attempt);
        EXPECT_EQ(attempt.scripted, attempt.returned);
        ++(entry.takesPointer ? marked : plain);
    });
    EXPECT_EQ("", data.str());
    EXPECT_EQ(910, marked);
    EXPECT_EQ(856, plain);
    for (int layers = 0; layers < 3; ++layers)
        OpenGLInterceptor::Instance()->popInterceptor();
}

TEST_F(SweepTest, everyErrorComesBackWithTheCallersPlace) {
    int line = 100;
    forEachBut({"Begin"}, [&](const Entry& entry) {
        Attempt attempt;
        ++line;
        if (entry.name == "GetError") // which hands a first error to its caller
            FakeGL::pushError(0x0500);
        FakeGL::pushError(0x0502);
        expectError(file, line, "invalid operation", 0x0502, [&] { entry.viaChain(attempt, file, line); });
        expectCheckedCall(entry, attempt);
    });
}

TEST_F(SweepTest, nothingBetweenBeginAndEndAsksForErrors) {
    forEachBut({"Begin", "End"}, [&](const Entry& entry) {
        tracer.cgmBegin(file, 1, 0);
        FakeGL::reset();
        Attempt attempt;
        if (entry.name != "GetError") // whose scripted result comes first
            FakeGL::pushError(0x0502);
        entry.viaChain(attempt, file, 2);
        EXPECT_EQ((std::vector<Call>{{"gl" + entry.name, attempt.arguments}}), FakeGL::calls());
        EXPECT_EQ(attempt.scripted, attempt.returned);
        if (entry.name == "GetError")
            FakeGL::pushError(0x0502);
        expectError("end.cpp", 7, "invalid operation", 0x0502, [&] { tracer.cgmEnd("end.cpp", 7); });
    });
}

TEST_F(SweepTest, everyMacroOfGlInterceptCallsItsEntryFromItsOwnLine) {
    forEachBut({}, [&](const Entry& entry) {
        Attempt attempt;
        entry.viaMacro(attempt);
        expectCheckedCall(entry, attempt);
        EXPECT_EQ(attempt.scripted, attempt.returned);
        const std::string place = entry.macroFile + (':' + std::to_string(entry.macroLine));
        const std::string expected = place + ": gl" + entry.name + '(';
        EXPECT_EQ(expected, text.str().substr(0, expected.size()));
    });
}

} // namespace
